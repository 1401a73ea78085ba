// World.h - what the benchmarks work on: one dictionary, its rows, and codes to ask for.
//
//   CBenchDictionary dictionary("qeadrs.dic");
//   CCodes codes = MakeCodes(dictionary.Rows(), 7, NO_LIMIT);   // every code once, in an order fixed by BENCH_SEED
//   CProfile profile("qeadrs.dic");                              // PstAdrOpen finds it from now on
#ifndef QEADRS_BENCH_WORLD_H
#define QEADRS_BENCH_WORLD_H

#include "dic/AddrDic.h"

#include <cstddef>
#include <string>
#include <vector>

constexpr unsigned BENCH_SEED = 20260529;
constexpr size_t NO_LIMIT = static_cast<size_t>(-1);

// An entry as the lookups return it, and the old code that stands behind its code (never null, may be "").
struct tagROW {
    tagADDR addr;
    char const* pszOld;
};

// A dictionary mapped as a host maps it, with an object of its own. Throws when the file is no dictionary.
class CBenchDictionary {
  public:
    explicit CBenchDictionary(std::string const& strPath);
    ~CBenchDictionary();
    CBenchDictionary(CBenchDictionary const&) = delete;
    CBenchDictionary& operator=(CBenchDictionary const&) = delete;

    CAddrDic& Dic() { return m_dic; }
    std::string const& Path() const { return m_strPath; }
    size_t Size() const { return m_nSize; }
    std::string const& Description() const { return m_strDescription; } // source, edition, size, entries

    // All entries in table order, except those that a lookup by code leaves out: no town level or no city.
    std::vector<tagROW> const& Rows() const { return m_vRow; }
    size_t EntriesLeftOut() const { return m_nLeftOut; }
    // The codes of all entries in table order: what a plain sorted array would search.
    std::vector<std::string> const& EntryCodes() const { return m_vEntryCode; }

  private:
    void ReadRows();

    std::string m_strPath;
    std::string m_strDescription;
    size_t m_nSize;
    void* m_pMapping;
    CAddrDic m_dic;
    std::vector<tagROW> m_vRow;
    std::vector<std::string> m_vEntryCode;
    size_t m_nLeftOut = 0;
};

// A code to ask for, in memory of its own: a text inside the dictionary would bring the answer's cache lines along.
struct tagCODE {
    char szCode[8];
    char szEnd[8]; // the first text above all that begin with szCode
};

// Different codes in random order, asked for one after the other, round and round.
using CCodes = std::vector<tagCODE>;

// The leading nDigits of every row's code, each once, shuffled and cut to nLimit; MakeOldCodes the same of old codes.
CCodes MakeCodes(std::vector<tagROW> const& vRow, size_t nDigits, size_t nLimit);
CCodes MakeOldCodes(std::vector<tagROW> const& vRow, size_t nLimit);

// A profile in a temporary folder that names the dictionary, in force as long as the object lives.
class CProfile {
  public:
    explicit CProfile(std::string const& strDictionary);
    ~CProfile();
    CProfile(CProfile const&) = delete;
    CProfile& operator=(CProfile const&) = delete;

  private:
    std::string m_strFolder;
};

#endif
