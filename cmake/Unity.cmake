# Tools and tests whose sources are compiled as one (QEADRS_UNITY): what they include is read once, and what they make of
# templates is made once, in little more than half of the time under the sanitizers. It holds for the folders that call
# qe_unity(). The library never does: what a host loads is the same in every build, but for its flags. The preset `release`
# goes without, so that each file of a tool is compiled by itself somewhere and says what it includes (of a test with
# -DQEADRS_PRECOMPILE=OFF).
#
# A variable, a type or a function with the same parameters that two files of a program have ends such a build. One is
# renamed, or the file goes alone: qe_alone(SOURCE...); where most files are alike, the program does (UNITY_BUILD OFF). Functions
# of one name with other parameters become overloads without a word: give them names of their own.
macro(qe_unity)
    if(QEADRS_UNITY)
        set(CMAKE_UNITY_BUILD ON)
        set(CMAKE_UNITY_BUILD_BATCH_SIZE 0)
    endif()
endmacro()

function(qe_alone)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()
