// qetext.cpp - the C interface of the text layer: looks at the arguments, calls CAddressText, translates the answer.
#include "text/qetext.h"

#include "api/qeadrs.hpp"
#include "text/AddressText.h"
#include "text/FoldTable.h"
#include "text/ReadingParts.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

// A reader: the file unless the caller has mapped it, the dictionary over it, and what reads.
struct tagQETEXT {
    // REQUIRES: a well-formed image, that of the file unless there is none.
    tagQETEXT(std::optional<qeadrs::CDictionaryFile> mapped, unsigned char const* pImage)
        : file(std::move(mapped)), text(Bound(dic, pImage)) {}

    static CAddrDic const& Bound(CAddrDic& dic, unsigned char const* pImage) {
        dic.SetDictionary(pImage);
        return dic;
    }

    std::optional<qeadrs::CDictionaryFile> file; // unmapped last
    CAddrDic dic;
    qeadrs::CAddressText text;
    std::vector<std::string_view> vText; // those of a batch
};

namespace {

// The records are written whatever happens, so that nobody takes the last answer for this one.
int Refuse(int nError, QETEXTREADING* pReading, size_t nCount) {
    if (pReading != nullptr) std::fill_n(pReading, nCount, qeadrs::EmptyReading());
    return nError;
}

QETEXT* Fail(int nError, int* pnError) {
    if (pnError != nullptr) *pnError = nError;
    return nullptr;
}

// Nothing but a lack of memory makes the C++ layer throw.
QETEXT* MakeReader(std::optional<qeadrs::CDictionaryFile> file, unsigned char const* pImage, int* pnError) {
    auto* const pText = new tagQETEXT(std::move(file), pImage);
    if (pnError != nullptr) *pnError = QETEXT_OK;
    return pText;
}

int ErrorOf(qeadrs::EError nKind) {
    switch (nKind) {
    case qeadrs::EError::NoMemory:
        return QETEXT_ERR_MEMORY;
    case qeadrs::EError::NotOurs:
    case qeadrs::EError::NewerFormat:
    case qeadrs::EError::DamagedFile:
        return QETEXT_ERR_FORMAT;
    default:
        return QETEXT_ERR_FILE;
    }
}

// What errno is for something that can be opened and is no file: a folder, a pipe, a device.
int ErrnoOfNoFile(char const* pszFile) {
    struct stat status;
    return stat(pszFile, &status) == 0 && !S_ISDIR(status.st_mode) ? EINVAL : EISDIR;
}

} // namespace

uint32_t QeTextFoldingVersion(void) {
    return qeadrs::FOLD_VERSION;
}

QETEXT* QeTextOpen(char const* pszFile, int* pnError) {
    if (pszFile == nullptr) return Fail(QETEXT_ERR_ARGUMENT, pnError);
    int nSystem = 0;
    int nError = QETEXT_ERR_MEMORY;
    try {
        auto file = qeadrs::CDictionaryFile::Open(pszFile);
        if (file) {
            unsigned char const* const pImage = file->Bytes();
            return MakeReader(std::move(*file), pImage, pnError);
        }
        nError = ErrorOf(file.Error().nKind);
        nSystem = file.Error().nKind == qeadrs::EError::NotAFile ? ErrnoOfNoFile(pszFile) : file.Error().nSystem;
    } catch (...) {
        nError = QETEXT_ERR_MEMORY;
    }
    if (nSystem != 0) errno = nSystem; // closing the file may have changed it
    return Fail(nError, pnError);
}

QETEXT* QeTextOpenImage(void const* pImage, int* pnError) {
    if (pImage == nullptr) return Fail(QETEXT_ERR_ARGUMENT, pnError);
    try {
        return MakeReader(std::nullopt, static_cast<unsigned char const*>(pImage), pnError);
    } catch (...) {
        return Fail(QETEXT_ERR_MEMORY, pnError);
    }
}

void QeTextClose(QETEXT* pText) {
    delete pText;
}

int QeTextRead(QETEXT* pText, char const* pText8, size_t nSize, uint32_t nOptions, QETEXTREADING* pReading) {
    if (pText == nullptr || pText8 == nullptr || pReading == nullptr) return Refuse(QETEXT_ERR_ARGUMENT, pReading, 1);
    try {
        *pReading = pText->text.Read({pText8, nSize}, nOptions);
    } catch (...) {
        return Refuse(QETEXT_ERR_MEMORY, pReading, 1);
    }
    return QETEXT_OK;
}

int QeTextReadBatch(QETEXT* pText, char const* const* ppText8, size_t const* pnSize, size_t nCount, uint32_t nOptions,
                    QETEXTREADING* pReading) {
    if (pText == nullptr) return Refuse(QETEXT_ERR_ARGUMENT, pReading, nCount);
    if (nCount == 0) return QETEXT_OK;
    if (ppText8 == nullptr || pnSize == nullptr || pReading == nullptr)
        return Refuse(QETEXT_ERR_ARGUMENT, pReading, nCount);
    try {
        pText->vText.clear();
        pText->vText.reserve(nCount);
        for (size_t n = 0; n < nCount; ++n) {
            if (ppText8[n] == nullptr) return Refuse(QETEXT_ERR_ARGUMENT, pReading, nCount);
            pText->vText.emplace_back(ppText8[n], pnSize[n]);
        }
        pText->text.ReadBatch(pText->vText.data(), nCount, pReading, nOptions);
    } catch (...) {
        return Refuse(QETEXT_ERR_MEMORY, pReading, nCount);
    }
    return QETEXT_OK;
}

size_t QeTextCanonical(QETEXTREADING const* pReading, char const* pText8, char* pBuffer, size_t nBuffer) {
    if (pReading == nullptr || pText8 == nullptr || pReading->place.pszCity == nullptr) return 0;
    // The rest goes to the end of the text.
    std::string_view const strText(pText8, pReading->rest.nOffset + pReading->rest.nLength);
    auto const astrPart = qeadrs::CanonicalParts(*pReading, strText);
    size_t nLength = 0;
    for (std::string_view const strPart : astrPart) nLength += strPart.size();
    if (pBuffer == nullptr || nLength >= nBuffer) return nLength;
    for (std::string_view const strPart : astrPart) pBuffer += strPart.copy(pBuffer, strPart.size());
    *pBuffer = '\0';
    return nLength;
}
