# Targets that look at the sources: `format` rewrites them, `format-check` fails on a difference, `tidy` and
# `cppcheck` analyse them and fail on a finding. What the two are not asked to find is in .clang-tidy and .cppcheck,
# with the reasons.
set(QE_FOLDERS dic tree api platform builder options text cli bench bench/growth fuzz)
list(TRANSFORM QE_FOLDERS REPLACE "(.+)" "${CMAKE_SOURCE_DIR}/\\1/[A-Za-z]*.[ch]*" OUTPUT_VARIABLE QE_PATTERNS)
file(GLOB QEADRS_SOURCES CONFIGURE_DEPENDS ${QE_PATTERNS} ${CMAKE_SOURCE_DIR}/examples/*.c*)
file(GLOB_RECURSE QEADRS_TEST_SOURCES CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/*.cpp ${CMAKE_SOURCE_DIR}/tests/*.h)
find_program(CLANG_FORMAT NAMES clang-format-14 clang-format)
find_program(CLANG_TIDY NAMES clang-tidy-14 clang-tidy)
find_program(RUN_CLANG_TIDY NAMES run-clang-tidy-14 run-clang-tidy)
find_program(CPPCHECK cppcheck)
if(CLANG_FORMAT)
    add_custom_target(format COMMAND ${CLANG_FORMAT} -i ${QEADRS_SOURCES} ${QEADRS_TEST_SOURCES} VERBATIM)
    add_custom_target(format-check
        COMMAND ${CLANG_FORMAT} --dry-run --Werror ${QEADRS_SOURCES} ${QEADRS_TEST_SOURCES} VERBATIM)
endif()
# What this build compiles of them; `tidy-library` only what a host loads, in a tenth of the time.
if(CLANG_TIDY AND RUN_CLANG_TIDY)
    set(QE_TIDY ${RUN_CLANG_TIDY} -quiet -clang-tidy-binary ${CLANG_TIDY} -p ${CMAKE_BINARY_DIR}
        -extra-arg=-Wno-unknown-warning-option)
    string(REGEX REPLACE "([][.+*?|(){}^$])" "\\\\\\1" QE_ROOT ${CMAKE_SOURCE_DIR})
    add_custom_target(tidy
        COMMAND ${QE_TIDY} "^${QE_ROOT}/(dic|tree|api|platform|builder|options|text|cli|bench|fuzz|examples|tests/support)/"
        USES_TERMINAL VERBATIM)
    add_custom_target(tidy-library COMMAND ${QE_TIDY} "^${QE_ROOT}/(dic|tree|api|platform)/" USES_TERMINAL VERBATIM)
endif()
# In both word sizes where the word size matters.
if(CPPCHECK)
    set(QE_FOLDERS_THERE)
    foreach(folder ${QE_FOLDERS} examples tests/support)
        if(IS_DIRECTORY ${CMAKE_SOURCE_DIR}/${folder})
            list(APPEND QE_FOLDERS_THERE ${folder})
        endif()
    endforeach()
    set(QE_CPPCHECK ${CPPCHECK} --quiet --error-exitcode=1 --enable=warning,style,performance,portability --std=c++17
        --suppressions-list=.cppcheck "--template={file}:{line}: {severity}: {message} [{id}]"
        -I . -D_FILE_OFFSET_BITS=64 -DNDEBUG)
    add_custom_target(cppcheck
        COMMAND ${QE_CPPCHECK} --platform=unix64 -D__x86_64__ ${QE_FOLDERS_THERE}
        COMMAND ${QE_CPPCHECK} --platform=unix32 -D__i386__ dic tree api platform
        WORKING_DIRECTORY ${CMAKE_SOURCE_DIR} USES_TERMINAL VERBATIM)
endif()
