# zn_platform_library(<lib> [DEPS <targets>...] [PRIVATE_DEPS <targets>...])
#
# Builds the shared library libZN<lib> from every .cpp below platform/src/<lib>/
# and publishes platform/include as its include root, so that code includes
# <lib>/xxx.h (include/tessera in an installed tree). Installed, it is the
# imported target Tessera::<lib> (cmake/TesseraInstall.cmake).
#
# Its symbols are hidden: what it exports carries its export macro, declared
# in <lib>/<lib>Export.h (docs/host.md).
function(zn_platform_library lib)
    cmake_parse_arguments(ARG "" "" "DEPS;PRIVATE_DEPS" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS
        ${PROJECT_SOURCE_DIR}/platform/src/${lib}/*.cpp)
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS
        ${PROJECT_SOURCE_DIR}/platform/include/${lib}/*.h)
    set(target ZN${lib})
    add_library(${target} SHARED ${sources} ${headers})
    target_include_directories(${target} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/platform/include>
        $<INSTALL_INTERFACE:include/tessera>)
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${lib} CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON)
    target_link_libraries(${target} PUBLIC ${ARG_DEPS} PRIVATE tessera_flags ${ARG_PRIVATE_DEPS})
endfunction()
