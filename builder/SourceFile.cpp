// SourceFile.cpp - the files of the official tables: plain, or the one table of a zip.
#include "builder/Error.h"
#include "builder/Source.h"
#include "builder/Text.h"

#include <sys/stat.h>
#include <zip.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <fstream>
#include <memory>

namespace qe {

namespace {

constexpr size_t SIZE_LIMIT = 512u << 20; // no table is a tenth of it: a guard against decompression bombs
constexpr size_t PART = 1u << 20;         // of a file that is read

[[noreturn]] void FailFile(std::string const& strPath, std::string const& strWhat) {
    throw CBuildError(strPath + ": " + strWhat);
}

bool EndsWithoutCase(std::string_view str, std::string_view strTail) {
    return str.size() >= strTail.size() &&
           std::equal(strTail.begin(), strTail.end(), str.end() - static_cast<std::ptrdiff_t>(strTail.size()),
                      [](char a, char b) { return (a | 0x20) == (b | 0x20); });
}

std::string ReadPlainFile(std::string const& strPath) {
    struct stat status = {};
    if (stat(strPath.c_str(), &status) != 0) FailFile(strPath, std::strerror(errno));
    if (S_ISDIR(status.st_mode)) FailFile(strPath, "this is a directory; name a zip or CSV file in it.");
    std::ifstream file(strPath, std::ios::binary);
    std::string strBytes;
    for (std::vector<char> vPart(PART); file && strBytes.size() <= SIZE_LIMIT;) {
        file.read(vPart.data(), static_cast<std::streamsize>(vPart.size()));
        strBytes.append(vPart.data(), static_cast<size_t>(file.gcount()));
    }
    if (strBytes.size() > SIZE_LIMIT) FailFile(strPath, "is too large to be a postal table.");
    if (!file.eof()) FailFile(strPath, "cannot be read.");
    return strBytes;
}

// In parts: what a damaged zip says of a size is not set aside for it.
std::string ReadMember(zip_file_t* pFile, std::string const& strPath, std::string const& strMember, uint64_t nSize) {
    std::string strBytes;
    std::vector<char> vPart(PART);
    while (pFile != nullptr && strBytes.size() < nSize) {
        zip_int64_t const nRead =
            zip_fread(pFile, vPart.data(), std::min<uint64_t>(vPart.size(), nSize - strBytes.size()));
        if (nRead <= 0) break;
        strBytes.append(vPart.data(), static_cast<size_t>(nRead));
    }
    if (pFile == nullptr || strBytes.size() != nSize) FailFile(strPath, "its member " + strMember + " is damaged.");
    char cMore;
    if (zip_fread(pFile, &cMore, 1) != 0) // the end of the member is where its checksum is compared
        FailFile(strPath, "its member " + strMember + " is damaged: the checksum differs.");
    return strBytes;
}

// The one member of the zip that is a table, and its month.
std::string ReadZipMember(std::string const& strPath, std::string& strMember, uint32_t& nEdition) {
    int nError = 0;
    std::unique_ptr<zip_t, decltype(&zip_discard)> const pZip(zip_open(strPath.c_str(), ZIP_RDONLY, &nError),
                                                              &zip_discard);
    if (pZip == nullptr) FailFile(strPath, "is cut off or damaged: it cannot be opened as a zip file.");
    zip_stat_t status;
    zip_int64_t nFound = -1;
    for (zip_int64_t n = 0; n < zip_get_num_entries(pZip.get(), 0); ++n) {
        if (zip_stat_index(pZip.get(), static_cast<zip_uint64_t>(n), 0, &status) != 0) continue;
        if (!EndsWithoutCase(status.name, ".csv")) continue;
        if (nFound >= 0) FailFile(strPath, "holds more than one CSV file; unpack it and name the right one.");
        nFound = n;
    }
    if (nFound < 0) FailFile(strPath, "holds no CSV file.");
    zip_stat_index(pZip.get(), static_cast<zip_uint64_t>(nFound), 0, &status);
    if (status.size > SIZE_LIMIT) FailFile(strPath, "its CSV file is too large to be a postal table.");
    strMember = status.name;
    std::tm date = {};
    localtime_r(&status.mtime, &date); // zip dates are local times, and libzip read it as one
    nEdition = static_cast<uint32_t>((date.tm_year + 1900) * 10000 + (date.tm_mon + 1) * 100);
    std::unique_ptr<zip_file_t, decltype(&zip_fclose)> const pFile(
        zip_fopen_index(pZip.get(), static_cast<zip_uint64_t>(nFound), 0), &zip_fclose);
    return ReadMember(pFile.get(), strPath, strMember, status.size);
}

CSource ReadBytes(std::string const& strPath) {
    CSource source;
    source.strPath = strPath;
    source.strText = ReadPlainFile(strPath);
    if (BeginsWith(source.strText, "PK")) source.strText = ReadZipMember(strPath, source.strMember, source.nEdition);
    return source;
}

} // namespace

CSource ReadSource(std::string const& strPath) {
    return DecodeSource(ReadBytes(strPath));
}

CSource ReadEucSource(std::string const& strPath) {
    return DecodeEucSource(ReadBytes(strPath));
}

} // namespace qe
