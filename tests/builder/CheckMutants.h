// CMutants - damaged dictionaries tried one after another: refused, or accepted and then harmless.
//
//   CMutants mutants;
//   mutants.Try("set node[4].nParent = none");     // of the small world
//   mutants.Finish("parents");                     // prints the figures
//
// Accepted  Every operation of the library runs on the image, between pages that cannot be touched, and the text index
//           is made of it, with which it is accepted as well.
// Refused   The same, when header and tables are in order, with the operations that keep to the tables by themselves.
// Death     When the process dies, or when a trial takes too long, it says what was being tried.
#ifndef QEADRS_TESTS_BUILDER_CHECKMUTANTS_H
#define QEADRS_TESTS_BUILDER_CHECKMUTANTS_H

#include "tests/builder/CheckWorld.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

class CTrial {
  public:
    explicit CTrial(std::string const& strWhat);
    ~CTrial();
    CTrial(CTrial const&) = delete;
    CTrial& operator=(CTrial const&) = delete;
};

class CMutants {
  public:
    // Tries so many of the refused ones: all, or each second, third, ... one.
    explicit CMutants(size_t nRefusedEach = 1) : m_nRefusedEach(nRefusedEach) {}

    void Try(std::string const& strRecipe);
    void Try(CImageBytes const& vByte, std::string const& strWhat);

    // Some must have been accepted and some refused, or nothing has been tried.
    void Finish(char const* pszWhat) const;
    size_t Accepted() const { return m_nAccepted; }
    size_t Refused() const { return m_nRefused; }
    size_t Bounded() const { return m_nBounded; } // refused ones that were tried

  private:
    static void TryIndex(CImageBytes vByte, unsigned char const* pGuarded, std::string const& strWhat);

    size_t m_nRefusedEach;
    size_t m_nRefused = 0, m_nInItsFile = 0, m_nAccepted = 0, m_nBounded = 0;
    uint32_t m_nSeed = 0;
};

// A place of a record, an index or the header that holds a number, as a recipe names it.
struct CField {
    std::string strRecord; // "node[4]"; "header", "city", "office" for places of one number, by their index
    std::string strMember; // ".nParent", "[4]"
    uint32_t nIndex;
    uint32_t nValue; // in the sound file
    std::string Name() const { return strRecord + strMember; }
    bool IsLike(CField const& other) const; // the same place of another record, or a place of the same table
};
std::vector<CField> AllFields(CImageBytes const& vByte);

// The numbers at which a bound may be off by one, those that overflow, and those of other records in this place.
std::vector<uint32_t> ValuesFor(CImageBytes const& vByte, CField const& field, std::vector<CField> const& vField);

#endif
