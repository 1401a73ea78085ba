// CCompiler - from the rows of the postal tables to a dictionary image.
//
//   CCompiler compiler(statistics);
//   compiler.AddTowns(ReadTownTable(towns), towns.Name());
//   compiler.AddOffices(ReadOfficeTable(offices), offices.Name());
//   compiler.AddPrevious(ReadTownTable(earlier), earlier.Name());       // any number, oldest first
//   CImage image = compiler.Compile(nEdition, ESource::Official);
//
// Every row becomes one entry or more, each with a node of its own that points back at it. A town of an earlier
// edition that today's table lacks becomes a superseded entry, which names the entry that took its place. Rows that
// cannot be placed are left out, counted and named in the statistics' remarks; nothing is dropped without one.
#ifndef QEADRS_BUILDER_COMPILER_H
#define QEADRS_BUILDER_COMPILER_H

#include "builder/Edition.h"
#include "builder/ImageWriter.h"
#include "builder/Source.h"
#include "builder/Statistics.h"

#include <deque>
#include <string>
#include <unordered_map>
#include <vector>

namespace qe {

class CCompiler {
  public:
    explicit CCompiler(CStatistics& statistics);
    ~CCompiler();

    // All rows of the town table; once, before the organisations.
    void AddTowns(std::vector<CTownRow> const& vRow, std::string const& strSource);

    // All rows of the organisation table.
    void AddOffices(std::vector<COfficeRow> const& vRow, std::string const& strSource);

    // All rows of an earlier edition of the town table; after the organisations, oldest edition first.
    void AddPrevious(std::vector<CTownRow> const& vRow, std::string const& strSource);

    // Orders everything and writes the image. Throws CBuildError when there is no town at all.
    CImage Compile(uint32_t nEdition, ESource nSource);

    // After Compile: what became of each town that today's table lacks, as tab-separated lines below a header line:
    // old path, old code, path of the successor (empty when there is none), the rule or rules that chose it.
    std::string const& Successions() const { return m_strSuccessions; }

  private:
    // A place of the tree, before it has a number. Children in the order of the table.
    struct CPlace {
        uint8_t nLevel = LEVEL_PREF;
        std::string strName;
        std::string strKana;
        std::string strCode; // of the place's own entry, empty when it has none
        std::string strOldCode;
        std::vector<CPlace*> vChild;
        CPlace const* pSuccessor = nullptr; // of a superseded place
        std::string strAlias;               // of an organisation: the name that is searched for
        uint32_t nNode = ADDR_NONE;         // ids in the image writer, once written
        uint32_t nEntry = ADDR_NONE;
        bool bAdded = false; // a town that only organisations name
    };
    struct CCity;
    class CTownOrder;

    // Calls visit for the place and all below it that have a code, organisations left out.
    template <typename F>
    static void ForEachWithCode(CPlace const& place, F const& visit) {
        if (place.nLevel == LEVEL_OFFICE) return;
        if (!place.strCode.empty()) visit(place);
        for (CPlace const* pChild : place.vChild) ForEachWithCode(*pChild, visit);
    }

    CPlace* NewPlace(CPlace* pParent, uint8_t nLevel, std::string const& strName, std::string const& strKana);
    CCity& FindOrAddCity(CTownRow const& row);
    CCity* FindCity(std::string const& strPref, std::string const& strCity);
    CPlace* FindOrAddTown(CCity& city, std::string const& strName, std::string const& strKana);
    CPlace* FreeTown(CCity& city, std::string const& strName, std::string const& strKana);
    void SetCode(CPlace* pPlace, std::string const& strCode, std::string const& strOldCode);
    void BeginRow(std::string const& strSource, size_t nLine);
    void Remark(std::string const& strText); // on the row that was begun last
    void AddTownRow(CCity& city, CTownRow const& row);
    static CPlace* BuildingTown(CCity const& city, std::string const& strName, std::string const& strKana);
    void AddFloorRow(CCity& city, CTownRow const& row);
    CPlace* OfficeTown(CCity& city, COfficeRow const& row);
    void OfferDefault(CCity& city, CPlace* pPlace, bool bWhole);
    void WritePlace(CImageWriter& writer, CPlace& place, uint32_t nParent);
    void PlaceSuperseded();
    void PlaceSuperseded(CEdition const& today, size_t nEdition, CEditionTown const& town);
    CCity& OldCity(CEditionTown const& town);
    CEdition TodaysTowns() const;
    CPlace const* FindHeir(CEditionTown const& town, std::string const& strCode);
    void ReferSingleCodes(CImageWriter& writer);
    void CountUnreachableOldCodes(CImage const& image);

    CStatistics& m_statistics;
    std::string const* m_pSource = nullptr; // of the row at hand
    size_t m_nLine = 0;
    std::deque<CPlace> m_vPlace;
    std::deque<CCity> m_vCity;
    std::vector<CPlace*> m_vPref; // by row of pref_order, null when the source lacks it
    std::unordered_map<std::string, CCity*> m_mapCity;

    struct CPrevious {
        std::string strSource;
        CEdition edition;
    };
    std::deque<CPrevious> m_vPrevious; // oldest first
    std::string m_strSuccessions;
};

} // namespace qe

#endif
