// Fetch.h - downloads the two official files of the Japanese post: the towns and the organisations.
//
//   qe::CFetchOptions options;
//   options.strDir = "japanpost";                              // made when it is missing
//   for (qe::CFetchedFile const& file : qe::FetchOfficialFiles(options, std::cerr))
//       std::cout << file.strPath << (file.bUnchanged ? " is up to date\n" : " is new\n");
//
// Files     DIR/utf_ken_all.zip and DIR/jigyosyo.zip. Both are complete and checked (zip structure, expected member,
//           its checksum) before either replaces an older one, so that DIR never mixes two editions.
// Meanwhile A transfer collects in NAME.part; NAME.part.old is the way back while the two files are put in place.
//           Both names belong to us and are gone afterwards. What a killed run left behind of them is not trusted: it
//           is thrown away. A kill between the two renames alone leaves two editions side by side; the next fetch ends
//           that. A second fetch into the same DIR at the same time is refused.
// Cuts      A transfer that was cut is resumed where the server proves (If-Range, then the answer's own ETag or
//           Last-Modified, place and total size) that it still has the same file; else it begins again.
// Failure   CBuildError with the address, what happened and the way out. DIR is as it was: no .part, old files intact.
// Remarks   One line per new try, and the progress line; nothing else is written there.
// Threads   One call at a time: libcurl is started by the first call, and a lock on DIR is held during each.
#ifndef QEADRS_BUILDER_FETCH_H
#define QEADRS_BUILDER_FETCH_H

#include "builder/Error.h"

#include <csignal>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace qe {

struct CFetchOptions {
    // The files are utf/zip/utf_ken_all.zip and office/zip/jigyosyo.zip below it; http and https only.
    std::string strBase = "https://www.post.japanpost.jp/service/search/zipcode/download/";
    std::string strDir;
    bool bProgress = false;                   // one line per file, rewritten with \r: bytes, percent, rate
    int nTries = 3;                           // per file; a server that was never reached is not asked again
    long nConnectSeconds = 10;                // until the connection stands, TLS included
    long nStallSeconds = 30;                  // this long under one byte a second counts as cut
    long nPauseMilliseconds = 1000;           // before the second try; doubles each time
    uint64_t nMaxBytes = uint64_t(256) << 20; // most that a file may have, packed and unpacked alike
    // Set to non-zero (by a signal handler, say) it ends the call as a failure does, within about a second.
    volatile std::sig_atomic_t const* pStop = nullptr;
};

struct CFetchedFile {
    std::string strPath;   // DIR/NAME
    std::string strMember; // the name of its CSV, as the archive spells it
    uint64_t nBytes;       // size of the zip
    bool bUnchanged;       // DIR held exactly these bytes already; that file was left alone
};

// Returns the town file, then the organisation file. Throws CBuildError.
std::vector<CFetchedFile> FetchOfficialFiles(CFetchOptions const& options, std::ostream& remarks);

} // namespace qe

#endif
