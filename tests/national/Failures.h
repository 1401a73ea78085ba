// Failures.h - failures of a test over very many rows: the first twenty are told, then the test ends.
#ifndef QEADRS_TESTS_NATIONAL_FAILURES_H
#define QEADRS_TESTS_NATIONAL_FAILURES_H

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

namespace national {

class CFailures {
  public:
    // A failure of the running test; strWhat names the row: line, code, text.
    void Add(std::string const& strWhat) {
        ADD_FAILURE() << strWhat;
        if (++m_nCount == LIMIT) ADD_FAILURE() << "stopped after " << LIMIT << " failures";
    }

    // Loops over rows end when this is true.
    bool Enough() const { return m_nCount >= LIMIT; }

  private:
    static constexpr unsigned LIMIT = 20;
    unsigned m_nCount = 0;
};

// A figure of the data, for the log of the run.
inline void PrintFigure(char const* pszWhat, size_t nFigure) {
    std::printf("%9zu  %s\n", nFigure, pszWhat);
}

} // namespace national

#endif
