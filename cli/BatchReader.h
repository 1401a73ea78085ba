// BatchReader.h - the input of a batch, in chunks of whole records.
//
//   CBatchReader reader(hInput, bQuotes, stop);
//   for (CBatchChunk chunk; reader.Next(chunk);) ...
//
// A chunk is given out when it is large, and when nothing more is there at once: whoever writes one line and waits
// for its answer gets it. Memory does not depend on how much is read, but on the longest record.
#ifndef QEADRS_CLI_BATCHREADER_H
#define QEADRS_CLI_BATCHREADER_H

#include "cli/BatchCutter.h"
#include "cli/BatchStop.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qe {

struct CBatchChunk {
    std::string strText;
    std::vector<CBatchRecord> vRecord; // one behind the other, all of the text
};

class CBatchReader {
  public:
    // The file is borrowed; bQuotes as for CBatchCutter.
    CBatchReader(int hFile, bool bQuotes, CBatchStop const& stop) : m_hFile(hFile), m_stop(stop), m_cutter(bQuotes) {}

    // Replaces the chunk by the next one; waits for it. False at the end of the input, and when the batch is to end:
    // a record that is not whole then is left out. Throws CFailure when the input cannot be read.
    bool Next(CBatchChunk& chunk);

  private:
    bool ReadMore();

    int m_hFile;
    CBatchStop const& m_stop;
    CBatchCutter m_cutter;
    std::string m_strText; // read and not given out yet
    bool m_bEnd = false;
    bool m_bStopped = false;
};

} // namespace qe

#endif
