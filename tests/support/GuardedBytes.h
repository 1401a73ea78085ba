// CGuardedBytes - a copy of some bytes whose last one is the last of its page; the page behind cannot be touched. Or,
// with StartOfPage, whose first one is the first of its page; then it is the page before that cannot be touched.
//
//   CGuardedBytes bytes("100\x82", CGuardedBytes::Writable);
//   dic.MakePostCode(bytes.Text());                // one byte too far ends the test program
//
// At the end of a page the first byte is aligned as its distance from there allows: an image needs a size divisible
// by 4.
#ifndef QEADRS_TESTS_SUPPORT_GUARDEDBYTES_H
#define QEADRS_TESTS_SUPPORT_GUARDEDBYTES_H

#include <cstddef>
#include <string>
#include <vector>

class CGuardedBytes {
  public:
    enum EAccess { ReadOnly, Writable };
    enum EPlace { EndOfPage, StartOfPage };

    CGuardedBytes(void const* p, size_t nSize, EAccess nAccess, EPlace nPlace = EndOfPage);

    // The bytes of an image, or of any record.
    explicit CGuardedBytes(std::vector<unsigned char> const& vByte)
        : CGuardedBytes(vByte.data(), vByte.size(), ReadOnly) {}

    // A text with its NUL.
    CGuardedBytes(std::string const& str, EAccess nAccess, EPlace nPlace = EndOfPage)
        : CGuardedBytes(str.c_str(), str.size() + 1, nAccess, nPlace) {}

    ~CGuardedBytes();
    CGuardedBytes(CGuardedBytes const&) = delete;
    CGuardedBytes& operator=(CGuardedBytes const&) = delete;

    unsigned char* Data() const { return m_p; }
    char* Text() const { return reinterpret_cast<char*>(m_p); }

  private:
    void* m_pMapping;
    size_t m_nMapping;
    unsigned char* m_p;
};

#endif
