// BatchProgress.cpp - the line of progress: "1,200,000 records, 48%, 400,000 a second, 0:03 left".
#include "cli/BatchProgress.h"

#include "cli/Text.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <string>

namespace qe {

namespace {

constexpr std::chrono::milliseconds INTERVAL(250);

// Seconds as "1:02:03" or "2:03".
std::string Duration(uint64_t nSeconds) {
    char sz[40];
    uint64_t const nHours = nSeconds / 3600;
    auto const nMinutes = static_cast<unsigned>(nSeconds / 60 % 60);
    auto const nRest = static_cast<unsigned>(nSeconds % 60);
    if (nHours > 0)
        std::snprintf(sz, sizeof sz, "%llu:%02u:%02u", static_cast<unsigned long long>(nHours), nMinutes, nRest);
    else
        std::snprintf(sz, sizeof sz, "%u:%02u", nMinutes, nRest);
    return sz;
}

} // namespace

void CBatchProgress::Show(uint64_t nRecords, uint64_t nBytes) {
    CClock::time_point const now = CClock::now();
    if (!m_bShown || now - m_shown < INTERVAL) return;
    m_shown = now;
    double const nSeconds = std::chrono::duration<double>(now - m_begun).count();
    std::string strLine = Grouped(nRecords) + " records";
    if (m_nBytes && *m_nBytes > 0)
        strLine += ", " + std::to_string(std::min<uint64_t>(nBytes * 100 / *m_nBytes, 100)) + '%';
    strLine += ", " + Grouped(static_cast<size_t>(static_cast<double>(nRecords) / nSeconds)) + " a second";
    if (m_nBytes && nBytes > 0) {
        auto const nLeft = static_cast<double>(*m_nBytes - std::min(nBytes, *m_nBytes));
        strLine += ", " + Duration(static_cast<uint64_t>(nLeft * nSeconds / static_cast<double>(nBytes))) + " left";
    }
    std::cerr << '\r' << strLine << "\x1B[K" << std::flush;
    m_bThere = true;
}

void CBatchProgress::Clear() {
    if (m_bThere) std::cerr << "\r\x1B[K" << std::flush;
    m_bThere = false;
}

} // namespace qe
