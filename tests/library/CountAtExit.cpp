// Coverage builds only: a test's child leaves by _Exit, or by an assertion, and would take along what it has counted.
extern "C" { // around the header, too, which does not say it

#include <gcov.h>

[[noreturn]] void __real__Exit(int nStatus);
[[noreturn]] void __real__exit(int nStatus);
[[noreturn]] void __real___assert_fail(char const* pszText, char const* pszFile, unsigned nLine,
                                       char const* pszFunction);

// The linker sends the test programs' calls here.
[[noreturn]] void __wrap__Exit(int nStatus) {
    __gcov_dump();
    __real__Exit(nStatus);
}

[[noreturn]] void __wrap__exit(int nStatus) {
    __gcov_dump();
    __real__exit(nStatus);
}

[[noreturn]] void __wrap___assert_fail(char const* pszText, char const* pszFile, unsigned nLine,
                                       char const* pszFunction) {
    __gcov_dump();
    __real___assert_fail(pszText, pszFile, nLine, pszFunction);
}

} // extern "C"
