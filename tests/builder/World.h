// World.h - small tables compiled into a dictionary that is open at once.
#ifndef QEADRS_TESTS_BUILDER_WORLD_H
#define QEADRS_TESTS_BUILDER_WORLD_H

#include "builder/Compiler.h"
#include "builder/DictionaryFile.h"
#include "dic/AddrDic.h"
#include "dic/ImageHeader.h"
#include "tests/builder/Support.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

// The tables compiled, and the dictionary opened. The tables are called TOWNS, OFFICES, and OLD1, OLD2, ... for the
// earlier editions, oldest first.
class CWorld {
  public:
    using Editions = std::vector<std::vector<CTown>>;

    explicit CWorld(std::string const& strTowns, std::string const& strOffices = "", Editions const& vPrevious = {}) {
        qe::CCompiler compiler(m_statistics);
        compiler.AddTowns(Rows(strTowns), "TOWNS");
        if (!strOffices.empty())
            compiler.AddOffices(qe::ReadOfficeTable(qe::ReadSource(m_folder.Write("offices.csv", strOffices))),
                                "OFFICES");
        for (size_t n = 0; n < vPrevious.size(); ++n)
            compiler.AddPrevious(Rows(Table(vPrevious[n])), "OLD" + std::to_string(n + 1));
        m_image = compiler.Compile(20260500, qe::ESource::Official);
        m_strSuccessions = compiler.Successions();
        m_dic.SetDictionary(m_image.vByte.data());
    }
    explicit CWorld(std::vector<CTown> const& vTown, std::vector<COffice> const& vOffice = {},
                    Editions const& vPrevious = {})
        : CWorld(Table(vTown), Table(vOffice), vPrevious) {}

    std::vector<unsigned char> const& Bytes() const { return m_image.vByte; }
    CAddrDic const& Dic() const { return m_dic; }
    CAddrDic& Dic() { return m_dic; }
    uint32_t Word(tagHEADERWORD nWord) const { return HeaderWord(Bytes().data(), nWord); }
    uint64_t Count(char const* pszName) const { return m_statistics.Get(pszName); }
    std::vector<std::string> const& Remarks() const { return m_statistics.Remarks(); }

    // The table of successors below its header line, "|" for each tab.
    std::vector<std::string> Successions() const {
        std::vector<std::string> vLine = Lines(m_strSuccessions);
        vLine.erase(vLine.begin());
        return vLine;
    }

    // The tree as text, "|" for each tab.
    std::string Tree(unsigned nLevel = LEVEL_OFFICE) const {
        std::string const strPath = m_folder.Write("t.dic", std::string(Bytes().begin(), Bytes().end()));
        std::ostringstream out;
        qe::PrintTree(qe::CDictionaryFile(strPath), nLevel, out);
        std::string str = out.str();
        std::replace(str.begin(), str.end(), '\t', '|');
        return str;
    }

    // The lines of one level, without indent and level number.
    std::vector<std::string> Names(char cLevel) const {
        std::vector<std::string> vName;
        for (std::string strLine : Lines(Tree())) {
            strLine.erase(0, strLine.find_first_not_of(' '));
            if (strLine[0] == cLevel) vName.push_back(strLine.substr(2));
        }
        return vName;
    }

    // "code name of the entry's node" for the entry that a city refers to, "none" when it refers to none.
    std::string CityRefersTo(uint32_t nCity = 0) const {
        tagADDRNODE const* const pNode = m_dic.GetAddrNode(Word(HDR_FIRST_CITY) + nCity);
        tagADDRINFO const* const pInfo = m_dic.GetAddrInfo(pNode->nInfo);
        if (pInfo == nullptr) return "none";
        return std::string(m_dic.GetString(pInfo->nCode)) + " " +
               m_dic.GetString(m_dic.GetAddrNode(pInfo->nNode & ~ADDRINFO_SUPERSEDED)->nName);
    }

    // Nodes of the organisation index, in its order.
    std::vector<uint32_t> OfficeIndex() const {
        std::vector<uint32_t> vNode;
        for (uint32_t n = 0; n < Word(HDR_OFFICE_COUNT); ++n)
            vNode.push_back(ReadWord(Bytes().data() + Word(HDR_OFFICE_INDEX) + 4 * n));
        return vNode;
    }
    std::string Name(uint32_t nNode) const { return m_dic.GetString(m_dic.GetAddrNode(nNode)->nName); }

    static std::vector<std::string> Lines(std::string str) {
        std::replace(str.begin(), str.end(), '\t', '|');
        std::vector<std::string> vLine;
        std::istringstream in(str);
        for (std::string strLine; std::getline(in, strLine);) vLine.push_back(strLine);
        return vLine;
    }

  private:
    std::vector<qe::CTownRow> Rows(std::string const& strTable) const {
        return qe::ReadTownTable(qe::ReadSource(m_folder.Write("towns.csv", strTable))).vRow;
    }

    CTestFolder m_folder;
    qe::CStatistics m_statistics;
    qe::CImage m_image;
    std::string m_strSuccessions;
    CAddrDic m_dic;
};

// Rows of 東京都 千代田区.
inline CTown Town(std::string const& strTown, std::string const& strKana, std::string const& strCode) {
    return {"東京都", "千代田区", strTown, strKana, strCode};
}
inline COffice Office(std::string const& strName, std::string const& strTown, std::string const& strRest,
                      std::string const& strCode = "1008111") {
    return {strName, "東京都", "千代田区", strTown, strRest, strCode};
}

#endif
