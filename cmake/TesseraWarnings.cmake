# Compiler flags shared by every target of the project.
add_library(tessera_flags INTERFACE)
target_compile_options(tessera_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow=local -Wnon-virtual-dtor -Woverloaded-virtual)
if(TESSERA_WERROR)
    target_compile_options(tessera_flags INTERFACE -Werror)
endif()
if(TESSERA_SANITIZE)
    target_compile_options(tessera_flags INTERFACE
        -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(tessera_flags INTERFACE -fsanitize=address,undefined)
    target_compile_definitions(tessera_flags INTERFACE TESSERA_SANITIZED=1)
endif()
