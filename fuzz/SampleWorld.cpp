#include "builder/Compiler.h"
#include "builder/TextTable.h"
#include "fuzz/Worlds.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace {

qe::CSource Read(char const* pszName) {
    qe::CSource source;
    source.strPath = std::string(QEADRS_SAMPLE "/") + pszName;
    std::ifstream file(source.strPath, std::ios::binary);
    source.strText.assign(std::istreambuf_iterator<char>(file), {});
    if (source.strText.empty()) throw std::runtime_error("cannot read " + source.strPath);
    return qe::DecodeSource(std::move(source));
}

} // namespace

std::vector<unsigned char> SampleWorld() {
    qe::CStatistics statistics;
    qe::CCompiler compiler(statistics);
    compiler.AddTowns(qe::ReadTownTable(Read("utf_ken_all.csv")).vRow, "towns");
    compiler.AddOffices(qe::ReadOfficeTable(Read("JIGYOSYO.CSV")), "offices");
    compiler.AddPrevious(qe::ReadTownTable(Read("previous-2018-01.csv")).vRow, "2018-01");
    std::vector<unsigned char> vByte = compiler.Compile(20260500, qe::ESource::Sample).vByte;
    qe::AppendTextIndex(vByte);
    return vByte;
}
