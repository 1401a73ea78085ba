# One set of warnings for all of our own code; third-party headers come in as SYSTEM and stay silent.
add_library(qe_warnings INTERFACE)
target_compile_options(qe_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wformat=2 -Wundef
    $<IF:$<CXX_COMPILER_ID:GNU>,-Wcast-align=strict;-Wduplicated-cond;-Wlogical-op,-Wcast-align>
    $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast;-Wnon-virtual-dtor;-Woverloaded-virtual>)
if(QEADRS_WERROR)
    target_compile_options(qe_warnings INTERFACE -Werror)
endif()
if(QEADRS_SANITIZE AND QEADRS_SANITIZE_THREAD)
    message(FATAL_ERROR "QEADRS_SANITIZE and QEADRS_SANITIZE_THREAD need a build folder each")
endif()
if(QEADRS_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
# The option parser is a header of templates that takes half a minute to compile where each of its operations is watched
# for undefined behaviour. qe_options_of_a_program(SOURCE...): these files, which say what the options are, go without, and
# unoptimised.
function(qe_options_of_a_program)
    if(QEADRS_SANITIZE)
        set_source_files_properties(${ARGN} PROPERTIES COMPILE_OPTIONS "-O0;-fno-sanitize=undefined")
    endif()
endfunction()
if(QEADRS_SANITIZE_THREAD)
    add_compile_options(-fsanitize=thread -fno-omit-frame-pointer)
    add_link_options(-fsanitize=thread)
endif()
