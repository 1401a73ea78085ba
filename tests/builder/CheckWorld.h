// CheckWorld.h - the dictionaries that the checker is tried on: compiled from readable tables in any word size, or
// put together against all rules; and what it tells of them.
#ifndef QEADRS_TESTS_BUILDER_CHECKWORLD_H
#define QEADRS_TESTS_BUILDER_CHECKWORLD_H

#include "builder/Check.h"
#include "builder/Compiler.h"
#include "dic/AddrNode.h"
#include "dic/ImageHeader.h"

#include <string>
#include <vector>

using CImageBytes = std::vector<unsigned char>;

// The rows of tables, as their readers give them.
struct CTables {
    std::vector<qe::CTownRow> vTown;
    std::vector<qe::COfficeRow> vOffice;
    std::vector<std::vector<qe::CTownRow>> vPrevious; // oldest first
};
CImageBytes Compile(CTables const& tables, qe::ESource nSource = qe::ESource::Official);

// Rows of a few columns; readings and JIS codes are always the same.
qe::CTownRow TownRow(std::string const& strPref, std::string const& strCity, std::string const& strTown,
                     std::string const& strCode);
qe::COfficeRow OfficeRow(std::string const& strName, std::string const& strPref, std::string const& strCity,
                         std::string const& strTown, std::string const& strRest, std::string const& strCode);

// The rows of a CSV file.
std::vector<qe::CTownRow> TownTable(std::string const& strPath);
std::vector<qe::COfficeRow> OfficeTable(std::string const& strPath);
std::string BytesOf(std::string const& strPath);

// The small world, less than 2 KB in which everything can be tried. Its tables are in recipes/small-world/:
//
//   東京都  千代田区  丸の内    1000005  below it a building with a floor, and an organisation in a subdivision
//                     丸        1000009  begins 丸の内, and so stands behind it
//                     一ツ橋             refers to the entry of its only subdivision, 1000003
//                     永楽町             superseded by 丸の内
//                     -         1000000  the nameless town; below it two organisations
//           利島村    -         1000301
//           千代田市  大手      1000000  a city that is gone: superseded by the nameless town of 千代田区
//   北海道  札幌市中央区  大通西         two subdivisions of different codes
CImageBytes const& SmallWorld();

// The sample of the official tables that stands in the repository.
CImageBytes SampleWorld();

// A file without regard to rules: these records and texts, and a header that is right.
CImageBytes Hostile(std::vector<tagADDRNODE> const& vNode, std::string const& strArea,
                    std::vector<tagADDRINFO> const& vEntry = {}, std::vector<uint32_t> const& vCity = {},
                    std::vector<uint32_t> const& vOffice = {});

uint32_t WordAt(CImageBytes const& vByte, size_t nOffset);
void SetWordAt(CImageBytes& vByte, size_t nOffset, uint32_t n);

// The violations as the program tells them, without their counts.
std::vector<std::string> LinesOf(qe::CCheckReport const& report);
std::vector<std::string> LinesOf(CImageBytes const& vByte);

// Whether the violations are of a kind that leaves header, tables and string area in their places.
bool LiesInItsFile(qe::CCheckReport const& report);

#endif
