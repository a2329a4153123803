# The software development kit: what `cmake --install` puts beside the programs
# so that a module can be built outside this tree against an installed Tessera.
#
#   include/tessera/<lib>/          the public headers of each library
#   lib/libZN<lib>.so               the libraries (the module is installed by
#                                   tools/tessera, the programs by apps)
#   lib/cmake/Tessera/              the CMake package: Tessera::<lib> and
#                                   Tessera::tesseraUi
#   lib/pkgconfig/tessera.pc        the same for pkg-config
#
# Public are the headers of platform/include, except the reference host's own
# rooms of the keyer's core: its scene and setups, the pixel engine, plate
# files, colour management, renders and the demo plate. A module reaches the
# keyer through its stage interfaces, tools and types (tesseraCore/*.h), never
# through those. The module's own sources (tools/tessera/src) and the host
# programs' (apps/) are not installed.
include(CMakePackageConfigHelpers)

set(tessera_libraries base resmgt pluginAPI tesseraUtil tesseraCore gfx ui appUi internalAPI
    primitives tessera)
set(tessera_library_targets)
foreach(lib ${tessera_libraries})
    list(APPEND tessera_library_targets ZN${lib})
endforeach()

install(TARGETS ${tessera_library_targets} EXPORT TesseraTargets
    LIBRARY DESTINATION lib
    INCLUDES DESTINATION include/tessera)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/ DESTINATION include/tessera
    FILES_MATCHING PATTERN "*.h"
    PATTERN "tesseraCore/img" EXCLUDE
    PATTERN "tesseraCore/io" EXCLUDE
    PATTERN "tesseraCore/colour" EXCLUDE
    PATTERN "tesseraCore/render" EXCLUDE
    PATTERN "tesseraCore/demo" EXCLUDE
    PATTERN "tesseraCore/setup" EXCLUDE
    PATTERN "tesseraCore/tsKeyerScene.h" EXCLUDE
    PATTERN "tesseraCore/tsSetup.h" EXCLUDE)

install(EXPORT TesseraTargets NAMESPACE Tessera:: DESTINATION lib/cmake/Tessera)
set(TESSERA_MODULE_DIR lib)
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/TesseraConfig.cmake.in
    ${PROJECT_BINARY_DIR}/TesseraConfig.cmake
    INSTALL_DESTINATION lib/cmake/Tessera
    PATH_VARS TESSERA_MODULE_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/TesseraConfigVersion.cmake
    VERSION ${PROJECT_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/TesseraConfig.cmake
    ${PROJECT_BINARY_DIR}/TesseraConfigVersion.cmake
    DESTINATION lib/cmake/Tessera)

list(JOIN tessera_library_targets " -l" tessera_pc_libs)
set(tessera_pc_libs "-l${tessera_pc_libs}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/tessera.pc.in ${PROJECT_BINARY_DIR}/tessera.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tessera.pc DESTINATION lib/pkgconfig)
