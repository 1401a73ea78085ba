# Target `coverage` (QEADRS_COVERAGE): builds and runs the library tests and prints the lines and branches of dic/,
# tree/ and api/ that they reached, file by file, and those that they did not; it fails when that is less than it
# should be. Only the library's own objects count. It needs gcov, which comes with the compiler, and awk.
if(QEADRS_COVERAGE AND QEADRS_TESTS)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        message(FATAL_ERROR "QEADRS_COVERAGE needs g++: the counts are read in the words of its gcov")
    endif()
    string(REGEX MATCH "^[0-9]+" QE_GCC "${CMAKE_CXX_COMPILER_VERSION}")
    find_program(GCOV NAMES gcov-${QE_GCC} gcov REQUIRED)
    # Unoptimised, so that no branch goes that is in the text; with the inline functions that nobody calls, so that
    # they are missed; and counted exactly when several threads run.
    target_compile_options(qeadrs_objects PRIVATE --coverage -fprofile-update=atomic -fkeep-inline-functions -O0)
    target_link_options(qeadrs PRIVATE --coverage)
    # What a test's child has counted is kept when it leaves without the usual end of a program.
    add_library(qe_count_at_exit OBJECT ${CMAKE_SOURCE_DIR}/tests/library/CountAtExit.cpp)
    target_link_libraries(qe_count_at_exit PRIVATE qe_warnings)
    # In front of the tests' objects: the linker takes the first copy of an inline function, and that must be one that
    # counts.
    target_sources(qeadrs_static INTERFACE $<TARGET_OBJECTS:qe_count_at_exit> $<TARGET_OBJECTS:qeadrs_objects>)
    target_link_options(qeadrs_static INTERFACE
        --coverage LINKER:--wrap=_Exit LINKER:--wrap=_exit LINKER:--wrap=__assert_fail)
    get_property(QE_LIBRARY_TESTS DIRECTORY ${CMAKE_SOURCE_DIR}/tests/library PROPERTY BUILDSYSTEM_TARGETS)
    list(FILTER QE_LIBRARY_TESTS INCLUDE REGEX "^test_library_")
    add_custom_target(coverage
        COMMAND sh ${CMAKE_SOURCE_DIR}/tests/coverage.sh ${GCOV} ${CMAKE_SOURCE_DIR} ${CMAKE_BINARY_DIR}
            ${QE_LIBRARY_TESTS}
        DEPENDS ${QE_LIBRARY_TESTS} USES_TERMINAL VERBATIM)
endif()
