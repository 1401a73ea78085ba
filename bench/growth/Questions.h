// Questions.h - a mapped dictionary of any size, and what is asked of it: random entries, drawn with a fixed seed.
//
// A country a hundred times as large has too many entries for the lists of the other benchmarks: here the questions
// are a sample, the same number of each kind whatever the size, so that a list of them takes as much of the caches.
#ifndef QEADRS_BENCH_GROWTH_QUESTIONS_H
#define QEADRS_BENCH_GROWTH_QUESTIONS_H

#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"

#include <cstddef>
#include <string>
#include <vector>

class CMappedDictionary {
  public:
    // Throws std::runtime_error when the file cannot be mapped.
    explicit CMappedDictionary(std::string const& strPath);
    ~CMappedDictionary();
    CMappedDictionary(CMappedDictionary const&) = delete;
    CMappedDictionary& operator=(CMappedDictionary const&) = delete;

    unsigned char const* Image() const { return m_pImage; }
    size_t Size() const { return m_nSize; }
    uint32_t Word(tagHEADERWORD nWord) const { return HeaderWord(m_pImage, nWord); }

  private:
    unsigned char const* m_pImage;
    size_t m_nSize;
};

struct CPlaceQuestion {
    std::string strAddress;
    std::string strOffice; // without blanks; "" for none
};

struct CGrowthQuestions {
    std::vector<std::string> vCode;       // of random entries: frequent codes as often as they are
    std::vector<std::string> vLead;       // three digits of a code
    std::vector<std::string> vOld;        //
    std::vector<CPlaceQuestion> vWhole;   // 東京都千代田区丸の内１－２－３
    std::vector<CPlaceQuestion> vBare;    // the same without the prefecture
    std::vector<CPlaceQuestion> vOffice;  // an organisation at its address
    std::vector<std::string> vGone;       // towns of earlier editions; none in a dictionary without them
    std::vector<std::string> vPartCity;   // a city's name without its last character: 千代田
    std::vector<std::string> vCity;       // 東京都千代田区
    std::vector<CPlaceQuestion> vNothing; // texts that begin with no name at all
};

// At most nMost of each kind. Throws std::runtime_error when the dictionary has no addresses, and when one of the
// texts that name nothing names something.
CGrowthQuestions DrawQuestions(CMappedDictionary const& dictionary, size_t nMost);

#endif
