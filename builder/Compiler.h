// CCompiler - from the rows of the postal tables to a dictionary image.
//
//   CCompiler compiler(statistics);
//   compiler.AddTowns(ReadTownTable(towns), towns.Name());
//   compiler.AddOffices(ReadOfficeTable(offices), offices.Name());
//   CImage image = compiler.Compile(nEdition, ESource::Official);
//
// Every row becomes one entry or more, each with a node of its own that points back at it. Rows that cannot be placed
// are left out, counted and named in the statistics' remarks; nothing is dropped without one.
#ifndef QEADRS_BUILDER_COMPILER_H
#define QEADRS_BUILDER_COMPILER_H

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

    // Orders everything and writes the image. Throws CBuildError when there is no town at all.
    CImage Compile(uint32_t nEdition, ESource nSource);

  private:
    // A place of the tree, before it has a number. Children in the order of the table.
    struct CPlace {
        uint8_t nLevel;
        std::string strName;
        std::string strKana;
        std::string strCode; // of the place's own entry, empty when it has none
        std::string strOldCode;
        std::vector<CPlace*> vChild;
        uint32_t nNode; // ids in the image writer, once written
        uint32_t nEntry;
        bool bAdded; // a town that only organisations name
    };
    struct CCity;
    class CTownOrder;

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
    void CountUnreachableOldCodes(CImage const& image);

    CStatistics& m_statistics;
    std::string const* m_pSource = nullptr; // of the row at hand
    size_t m_nLine = 0;
    std::deque<CPlace> m_vPlace;
    std::deque<CCity> m_vCity;
    std::vector<CPlace*> m_vPref; // by row of pref_order, null when the source lacks it
    std::unordered_map<std::string, CCity*> m_mapCity;
};

} // namespace qe

#endif
