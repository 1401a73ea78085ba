#include "tests/builder/CheckWorld.h"

#include "builder/ImageWriter.h"
#include "builder/Source.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

CImageBytes Compile(CTables const& tables, qe::ESource nSource) {
    qe::CStatistics statistics;
    qe::CCompiler compiler(statistics);
    compiler.AddTowns(tables.vTown, "TOWNS");
    if (!tables.vOffice.empty()) compiler.AddOffices(tables.vOffice, "OFFICES");
    for (auto const& vRow : tables.vPrevious) compiler.AddPrevious(vRow, "PREVIOUS");
    return compiler.Compile(20260500, nSource).vByte;
}

qe::CTownRow TownRow(std::string const& strPref, std::string const& strCity, std::string const& strTown,
                     std::string const& strCode) {
    qe::CTownRow row;
    row.strJis = "13101";
    row.strOldCode = "100";
    row.strCode = strCode;
    row.strPrefKana = "ケン";
    row.strCityKana = "シ";
    row.strPref = strPref;
    row.strCity = strCity;
    row.strTown = strTown;
    return row;
}

qe::COfficeRow OfficeRow(std::string const& strName, std::string const& strPref, std::string const& strCity,
                         std::string const& strTown, std::string const& strRest, std::string const& strCode) {
    qe::COfficeRow row;
    row.strKana = "ナマエ";
    row.strName = strName;
    row.strPref = strPref;
    row.strCity = strCity;
    row.strTown = strTown;
    row.strRest = strRest;
    row.strCode = strCode;
    row.strOldCode = "100";
    return row;
}

std::string BytesOf(std::string const& strPath) {
    std::ifstream file(strPath, std::ios::binary);
    std::string const str{std::istreambuf_iterator<char>(file), {}};
    if (!file) throw std::runtime_error("cannot be read: " + strPath);
    return str;
}

namespace {

qe::CSource Source(std::string const& strPath) {
    qe::CSource source;
    source.strPath = strPath;
    source.strText = BytesOf(strPath);
    return qe::DecodeSource(std::move(source));
}

} // namespace

std::vector<qe::CTownRow> TownTable(std::string const& strPath) {
    return qe::ReadTownTable(Source(strPath)).vRow;
}

std::vector<qe::COfficeRow> OfficeTable(std::string const& strPath) {
    return qe::ReadOfficeTable(Source(strPath));
}

CImageBytes const& SmallWorld() {
    static CImageBytes const vByte = Compile({TownTable(QEADRS_RECIPES "/small-world/towns.csv"),
                                              OfficeTable(QEADRS_RECIPES "/small-world/organisations.csv"),
                                              {TownTable(QEADRS_RECIPES "/small-world/earlier-towns.csv")}});
    return vByte;
}

CImageBytes SampleWorld() {
    return Compile({TownTable(QEADRS_SAMPLE "/utf_ken_all.csv"),
                    OfficeTable(QEADRS_SAMPLE "/JIGYOSYO.CSV"),
                    {TownTable(QEADRS_SAMPLE "/previous-2018-01.csv")}},
                   qe::ESource::Sample);
}

CImageBytes Hostile(std::vector<tagADDRNODE> const& vNode, std::string const& strArea,
                    std::vector<tagADDRINFO> const& vEntry, std::vector<uint32_t> const& vCity,
                    std::vector<uint32_t> const& vOffice) {
    CImageBytes vByte(HDR_BYTES + 4);
    auto const Append = [&](tagHEADERWORD nTable, tagHEADERWORD nCount, auto const& vRecord) {
        SetWordAt(vByte, 4 * nTable, static_cast<uint32_t>(vByte.size()));
        SetWordAt(vByte, 4 * nCount, static_cast<uint32_t>(vRecord.size()));
        auto const* const p = reinterpret_cast<unsigned char const*>(vRecord.data());
        vByte.insert(vByte.end(), p, p + vRecord.size() * sizeof vRecord[0]);
    };
    Append(HDR_NODE_TABLE, HDR_NODE_COUNT, vNode);
    Append(HDR_INFO_TABLE, HDR_INFO_COUNT, vEntry);
    Append(HDR_CITY_INDEX, HDR_CITY_COUNT, vCity);
    Append(HDR_OFFICE_INDEX, HDR_OFFICE_COUNT, vOffice);
    Append(HDR_STRING_AREA, HDR_STRING_SIZE, strArea);
    vByte.resize((vByte.size() + 3) / 4 * 4);
    std::memcpy(vByte.data(), qe::IMAGE_MAGIC, sizeof qe::IMAGE_MAGIC);
    SetWordAt(vByte, 4 * HDR_VERSION, qe::IMAGE_VERSION);
    SetWordAt(vByte, 4 * HDR_FILE_SIZE, static_cast<uint32_t>(vByte.size()));
    qe::RepairChecksum(vByte);
    return vByte;
}

uint32_t WordAt(CImageBytes const& vByte, size_t nOffset) {
    if (nOffset > vByte.size() || vByte.size() - nOffset < 4) throw std::logic_error("a recipe reads too far");
    return ReadWord(vByte.data() + nOffset);
}

void SetWordAt(CImageBytes& vByte, size_t nOffset, uint32_t n) {
    if (nOffset > vByte.size() || vByte.size() - nOffset < 4) throw std::logic_error("a recipe writes too far");
    std::memcpy(vByte.data() + nOffset, &n, sizeof n);
}

std::vector<std::string> LinesOf(qe::CCheckReport const& report) {
    std::vector<std::string> vLine;
    for (qe::CViolation const& v : report.Violations())
        vLine.push_back(std::string(qe::CHECK_RULES[static_cast<size_t>(v.nRule)].pszName) + ": " + v.strWhere +
                        (v.strPath.empty() ? "" : " (" + v.strPath + ")") + ' ' + v.strWhat);
    return vLine;
}

std::vector<std::string> LinesOf(CImageBytes const& vByte) {
    return LinesOf(qe::CheckDictionary(vByte));
}

bool LiesInItsFile(qe::CCheckReport const& report) {
    using qe::ECheckRule;
    return report.CountOf(ECheckRule::File) == 0 && report.CountOf(ECheckRule::Format) == 0 &&
           report.CountOf(ECheckRule::Tables) == 0;
}
