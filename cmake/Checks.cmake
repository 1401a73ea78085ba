# Targets that look at the sources: `format` rewrites them, `format-check` fails on a difference, `tidy` analyses.
file(GLOB QEADRS_SOURCES CONFIGURE_DEPENDS
    ${CMAKE_SOURCE_DIR}/dic/*.[ch]* ${CMAKE_SOURCE_DIR}/tree/*.[ch]* ${CMAKE_SOURCE_DIR}/api/*.[ch]*
    ${CMAKE_SOURCE_DIR}/platform/*.[ch]* ${CMAKE_SOURCE_DIR}/builder/*.[ch]* ${CMAKE_SOURCE_DIR}/cli/*.[ch]*
    ${CMAKE_SOURCE_DIR}/bench/*.[ch]* ${CMAKE_SOURCE_DIR}/examples/*.c)
file(GLOB_RECURSE QEADRS_TEST_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/*.cpp ${CMAKE_SOURCE_DIR}/tests/*.h)
find_program(CLANG_FORMAT NAMES clang-format-14 clang-format)
find_program(RUN_CLANG_TIDY NAMES run-clang-tidy-14 run-clang-tidy)
if(CLANG_FORMAT)
    add_custom_target(format COMMAND ${CLANG_FORMAT} -i ${QEADRS_SOURCES} ${QEADRS_TEST_SOURCES} VERBATIM)
    add_custom_target(format-check
        COMMAND ${CLANG_FORMAT} --dry-run --Werror ${QEADRS_SOURCES} ${QEADRS_TEST_SOURCES} VERBATIM)
endif()
if(RUN_CLANG_TIDY)
    add_custom_target(tidy
        COMMAND ${RUN_CLANG_TIDY} -quiet -p ${CMAKE_BINARY_DIR} -extra-arg=-Wno-unknown-warning-option "/(dic|tree|api|platform|builder|cli)/" VERBATIM)
endif()
