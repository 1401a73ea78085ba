// ReplaceFile.h - a file is replaced whole or not at all.
#ifndef QEADRS_BUILDER_REPLACEFILE_H
#define QEADRS_BUILDER_REPLACEFILE_H

#include <string>
#include <vector>

namespace qe {

// Writes the image to a temporary file beside strPath, syncs it, reads it back and compares it, and renames it over
// strPath: whoever opens the path meets the old edition or the new one, and a mapping of the old one stays whole. On
// failure throws CBuildError, removes the temporary file and leaves strPath as it was. SIGHUP, SIGINT and SIGTERM wait
// until that is done; only a kill can leave a temporary file behind (NAME.new-XXXXXX), which nobody reads.
void ReplaceFile(std::string const& strPath, std::vector<unsigned char> const& vByte);

} // namespace qe

#endif
