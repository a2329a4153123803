# Compiler flags shared by every target of the project.
add_library(tessera_flags INTERFACE)
target_compile_options(tessera_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual)
# A local that hides another local. Clang has no -Wshadow=local; its -Wshadow
# is the nearest (it also covers a local hiding a global).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(tessera_flags INTERFACE -Wshadow=local)
else()
    target_compile_options(tessera_flags INTERFACE -Wshadow)
endif()
# GCC 12 reports out-of-bounds accesses on objects it wrongly assumes, after
# speculative devirtualisation at -O2 (a known false positive of that
# release); the check stays on for other compilers.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(tessera_flags INTERFACE -Wno-array-bounds)
endif()
if(TESSERA_WERROR)
    target_compile_options(tessera_flags INTERFACE -Werror)
endif()
if(TESSERA_SANITIZE)
    target_compile_options(tessera_flags INTERFACE
        -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(tessera_flags INTERFACE -fsanitize=address,undefined)
    target_compile_definitions(tessera_flags INTERFACE TESSERA_SANITIZED=1)
endif()
# Fuzzing: every library, the module and the host carry libFuzzer's coverage
# instrumentation (which needs clang); only the fuzz targets link libFuzzer's
# driver (tests/fuzz). The test programs run unchanged on the same objects, so
# one sanitised build serves both the test suite and the fuzzers.
option(TESSERA_FUZZ "Build the fuzz targets with libFuzzer (clang)" OFF)
if(TESSERA_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "TESSERA_FUZZ needs clang (libFuzzer)")
    endif()
    target_compile_options(tessera_flags INTERFACE -fsanitize=fuzzer-no-link)
    target_compile_definitions(tessera_flags INTERFACE TESSERA_FUZZING=1)
endif()
