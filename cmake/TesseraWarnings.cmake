# Compiler flags shared by every target of the project.
add_library(tessera_flags INTERFACE)
target_compile_options(tessera_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow=local -Wnon-virtual-dtor -Woverloaded-virtual)
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
