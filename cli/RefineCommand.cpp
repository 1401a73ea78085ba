// RefineCommand.cpp - `qeadrs refine`: the candidate tree, level by level, as indented lines or as objects.
#include "cli/RefineCommand.h"

#include "cli/Candidates.h"
#include "cli/Command.h"
#include "cli/Dictionary.h"
#include "cli/Text.h"

#include <iostream>
#include <utility>

#include <nlohmann/json.hpp>

namespace qe {

namespace {

using CObject = nlohmann::ordered_json;

constexpr int LEVEL_CITIES = 2;
constexpr int LEVEL_TOWNS = 3;

// "1 city", "1,593 towns".
std::string CountOf(long n, char const* pszOne, char const* pszMany) {
    return Grouped(static_cast<size_t>(n)) + ' ' + (n == 1 ? pszOne : pszMany);
}

CObject WordOrNull(std::string const& strText) {
    return strText.empty() ? CObject() : CObject(strText);
}

char const* DetailName(int nDetailKind) {
    switch (nDetailKind) {
    case GA_DETAIL_AREA:
        return "area";
    case GA_DETAIL_OFFICE:
        return "organisation";
    case GA_DETAIL_BUILDING:
        return "building";
    default:
        return "";
    }
}

// A tree in one of its two forms; each prefecture, with all below it, is printed when it is complete.
class CTreeOutput {
  public:
    CTreeOutput(bool bJson, int nLevels, std::ostream& out) : m_bJson(bJson), m_nLevels(nLevels), m_out(out) {}

    void AddPrefecture(std::string const& strName, int nCities) {
        if (!m_bJson) return AddLine(0, strName + " (" + CountOf(nCities, "city", "cities") + ')');
        m_object = {{"prefecture", WordOrNull(strName)}, {"city_count", nCities}};
        if (m_nLevels >= LEVEL_CITIES) m_object["cities"] = CObject::array();
    }
    void AddCity(std::string const& strName, int nTowns) {
        if (!m_bJson) return AddLine(1, strName + " (" + CountOf(nTowns, "address", "addresses") + ')');
        CObject object = {{"city", WordOrNull(strName)}, {"address_count", nTowns}};
        if (m_nLevels >= LEVEL_TOWNS) object["addresses"] = CObject::array();
        m_object["cities"].push_back(std::move(object));
    }
    void AddTown(CCandidate const& town) {
        if (!m_bJson) return AddLine(2, Line(town));
        m_object["cities"].back()["addresses"].push_back({{"postal_code", WordOrNull(town.strCode)},
                                                          {"old_code", WordOrNull(town.strOldCode)},
                                                          {"town", WordOrNull(town.strTown)},
                                                          {"detail", WordOrNull(town.strDetail)},
                                                          {"detail_kind", WordOrNull(DetailName(town.nDetailKind))}});
    }
    void EndPrefecture() {
        if (m_bJson) m_out << m_object.dump(-1, ' ', false, CObject::error_handler_t::replace) << '\n';
    }

  private:
    static std::string Line(CCandidate const& town) {
        std::string strLine = town.strCode;
        for (std::string const* pstr : {&town.strTown, &town.strDetail})
            if (!pstr->empty()) strLine += ' ' + *pstr;
        return strLine;
    }
    void AddLine(size_t nDepth, std::string const& strText) {
        m_out << std::string(2 * nDepth, ' ') << Clean(strText) << '\n';
    }

    bool m_bJson;
    int m_nLevels;
    std::ostream& m_out;
    CObject m_object;
};

class CTreePrinter {
  public:
    CTreePrinter(CCandidates& candidates, int nLevels, bool bJson)
        : m_candidates(candidates), m_nLevels(nLevels), m_output(bJson, nLevels, std::cout) {}

    // Prints the tree, or the lists of the whole dictionary, and returns its size in words as far as it has been
    // printed; "" when there is none.
    std::string Print(bool bTree) {
        int const nPrefs = m_candidates.Count(0, 0).nPrefs;
        if (nPrefs == 0 || m_candidates.IsTree() != bTree) return "";
        for (int n = 0; n < nPrefs; ++n) PrintPrefecture(n);
        std::string strSize =
            CountOf(nPrefs, "prefecture", "prefectures") + ", " + CountOf(m_nCities, "city", "cities");
        return m_nLevels < LEVEL_CITIES ? strSize : strSize + ", " + CountOf(m_nTowns, "address", "addresses");
    }

  private:
    // The first city is selected first: in the lists of the whole dictionary another prefecture begins there.
    void PrintPrefecture(int nPref) {
        int const nCities = m_candidates.Count(nPref, 0).nCities;
        m_nCities += nCities;
        m_output.AddPrefecture(m_candidates.Prefecture(nPref), nCities);
        for (int n = 0; n < nCities && m_nLevels >= LEVEL_CITIES; ++n) PrintCity(nPref, n);
        m_output.EndPrefecture();
    }

    void PrintCity(int nPref, int nCity) {
        int const nTowns = m_candidates.Count(nPref, nCity).nTowns;
        m_nTowns += nTowns;
        m_output.AddCity(m_candidates.City(nCity), nTowns);
        for (int n = 0; n < nTowns && m_nLevels >= LEVEL_TOWNS; ++n) m_output.AddTown(m_candidates.Town(n));
    }

    CCandidates& m_candidates;
    int m_nLevels;
    CTreeOutput m_output;
    long m_nCities = 0, m_nTowns = 0;
};

} // namespace

EExit RunRefine(CRefineOptions const& options, CCommonOptions const& common) {
    std::string const strCode = options.strCode ? ReadCode(*options.strCode) : "";
    std::string const strAddr = options.strAddr ? ReadAddressField(*options.strAddr, CANDIDATE_ADDRESS_LENGTH) : "";
    auto const Remark = [&](std::string const& strText) {
        if (!common.bQuiet) std::cerr << "qeadrs: " << strText << '\n';
    };
    if (options.strCode && options.strAddr) Remark("the address is not looked at beside a code");
    CDictionaryFile const file(common.strDic);
    CCandidates candidates(file.Name());
    file.CheckUnchanged();
    candidates.Search(strCode, strAddr);
    bool const bTree = options.strCode || options.strAddr;
    std::string const strSize = CTreePrinter(candidates, options.nLevels, common.bJson).Print(bTree);
    CheckWritten(std::cout);
    std::string const strQuery = options.strCode ? strCode : options.strAddr ? Shorten(strAddr) : "";
    Remark((strQuery.empty() ? "" : strQuery + ": ") + (strSize.empty() ? "not found" : strSize));
    return strSize.empty() ? EXIT_NOT_FOUND : EXIT_FOUND;
}

} // namespace qe
