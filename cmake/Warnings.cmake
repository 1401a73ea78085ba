# One set of warnings for all of our own code; third-party headers come in as SYSTEM and stay silent.
add_library(qe_warnings INTERFACE)
target_compile_options(qe_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wcast-align=strict -Wformat=2
    -Wduplicated-cond -Wlogical-op -Wundef
    $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast;-Wnon-virtual-dtor;-Woverloaded-virtual>)
if(QEADRS_WERROR)
    target_compile_options(qe_warnings INTERFACE -Werror)
endif()
if(QEADRS_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
