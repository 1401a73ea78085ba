# Tools and tests whose sources are compiled as one (QEADRS_UNITY): what they include is read once, and what they make of
# templates is made once, in little more than half of the time under the sanitizers. It holds for the folders that call
# qe_unity(). The library never does: what a host loads is the same in every build, but for its flags. The preset `release`
# goes without, so that each file is compiled by itself somewhere and says what it includes.
#
# A name of one file that another file of its program has, too, ends such a build. Either is renamed, or the file goes
# alone: qe_alone(SOURCE...).
macro(qe_unity)
    if(QEADRS_UNITY)
        set(CMAKE_UNITY_BUILD ON)
        set(CMAKE_UNITY_BUILD_BATCH_SIZE 0)
        # Tests stand on fixtures of their own file.
        add_compile_options($<$<AND:$<COMPILE_LANGUAGE:CXX>,$<CXX_COMPILER_ID:GNU>>:-Wno-subobject-linkage>)
    endif()
endmacro()

function(qe_alone)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
