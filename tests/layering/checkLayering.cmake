# Every library includes only the libraries below it, and the keyer's core,
# the libraries under it and the module include no Qt header.
#   cmake -DSOURCE_DIR=<project> -P checkLayering.cmake
#
# Each row: a library, then what its headers and sources may include besides
# itself and the standard library (Q* for Qt). The order is the layering,
# bottom first.
set(layers
    "base sys"
    "resmgt base"
    "pluginAPI base resmgt"
    "tesseraUtil base"
    "tesseraCore base resmgt pluginAPI tesseraUtil OpenImageIO OpenColorIO oneapi sys"
    "gfx base resmgt pluginAPI"
    "ui base resmgt pluginAPI gfx Q*"
    "appUi base resmgt pluginAPI gfx ui Q*"
    "internalAPI base resmgt pluginAPI gfx ui Q*"
    "primitives base"
    "tessera base resmgt pluginAPI tesseraUtil tesseraCore gfx ui appUi internalAPI primitives")

set(failures "")
foreach(row IN LISTS layers)
    separate_arguments(allowed UNIX_COMMAND "${row}")
    list(POP_FRONT allowed lib)
    file(GLOB_RECURSE files ${SOURCE_DIR}/platform/include/${lib}/*.h
        ${SOURCE_DIR}/platform/src/${lib}/*.cpp ${SOURCE_DIR}/platform/src/${lib}/*.h)
    foreach(file IN LISTS files)
        file(STRINGS ${file} includes REGEX "^#include <")
        foreach(line IN LISTS includes)
            if(NOT line MATCHES "^#include <([A-Za-z0-9_]+)[/.>]")
                continue()
            endif()
            set(target ${CMAKE_MATCH_1})
            if(NOT line MATCHES "^#include <[A-Za-z0-9_]+/" AND NOT target MATCHES "^Q")
                continue() # the standard library (<vector>, <cstdint>, ...)
            endif()
            set(ok FALSE)
            foreach(a IN LISTS allowed ITEMS ${lib})
                if(a STREQUAL "Q*" AND target MATCHES "^Q")
                    set(ok TRUE)
                elseif(a STREQUAL target)
                    set(ok TRUE)
                endif()
            endforeach()
            if(NOT ok)
                file(RELATIVE_PATH rel ${SOURCE_DIR} ${file})
                string(APPEND failures "  ${rel}: ${line} (${lib} stands below ${target})\n")
            endif()
        endforeach()
    endforeach()
endforeach()

# OpenColorIO stays in the colour room.
file(GLOB_RECURSE sources ${SOURCE_DIR}/platform/*.h ${SOURCE_DIR}/platform/*.cpp
    ${SOURCE_DIR}/apps/*.h ${SOURCE_DIR}/apps/*.cpp ${SOURCE_DIR}/tools/*.h ${SOURCE_DIR}/tools/*.cpp)
foreach(file IN LISTS sources)
    if(file MATCHES "/tesseraCore/colour/")
        continue()
    endif()
    file(STRINGS ${file} includes REGEX "^#include <OpenColorIO/")
    foreach(line IN LISTS includes)
        file(RELATIVE_PATH rel ${SOURCE_DIR} ${file})
        string(APPEND failures "  ${rel}: ${line} (only tesseraCore/colour/ uses OpenColorIO)\n")
    endforeach()
endforeach()

# The module sees only the platform's own headers.
file(GLOB module_files ${SOURCE_DIR}/tools/tessera/src/*)
foreach(file IN LISTS module_files)
    file(STRINGS ${file} includes REGEX "^#include <Q")
    foreach(line IN LISTS includes)
        file(RELATIVE_PATH rel ${SOURCE_DIR} ${file})
        string(APPEND failures "  ${rel}: ${line} (the module includes no Qt header)\n")
    endforeach()
endforeach()

if(failures)
    message(FATAL_ERROR "includes that break the layering:\n${failures}")
endif()
