// SampleDictionary.cpp - the dictionary of the sample data, for the examples of the documentation, in every word size.
//
//   docs_sample_dictionary SAMPLE_FOLDER FILE
#include "builder/Compiler.h"
#include "builder/TextTable.h"

#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

namespace {

qe::CSource Table(std::string const& strPath) {
    std::ifstream file(strPath, std::ios::binary);
    qe::CSource source;
    source.strPath = strPath;
    source.strText.assign(std::istreambuf_iterator<char>(file), {});
    return qe::DecodeSource(std::move(source));
}

void Write(std::string const& strFolder, std::string const& strFile) {
    qe::CStatistics statistics;
    qe::CCompiler compiler(statistics);
    compiler.AddTowns(qe::ReadTownTable(Table(strFolder + "/utf_ken_all.csv")).vRow, "utf_ken_all.csv");
    compiler.AddOffices(qe::ReadOfficeTable(Table(strFolder + "/JIGYOSYO.CSV")), "JIGYOSYO.CSV");
    compiler.AddPrevious(qe::ReadTownTable(Table(strFolder + "/previous-2018-01.csv")).vRow, "previous-2018-01.csv");
    auto vByte = compiler.Compile(0, qe::ESource::Sample).vByte;
    qe::AppendTextIndex(vByte);
    std::ofstream file(strFile, std::ios::binary);
    file.write(reinterpret_cast<char const*>(vByte.data()), static_cast<std::streamsize>(vByte.size()));
    file.close();
    if (!file) throw std::runtime_error(strFile + " cannot be written.");
}

} // namespace

int main(int nArguments, char** ppszArgument) {
    try {
        if (nArguments != 3) throw std::invalid_argument("Usage: docs_sample_dictionary SAMPLE_FOLDER FILE");
        Write(ppszArgument[1], ppszArgument[2]);
        return 0;
    } catch (std::exception const& e) {
        std::cerr << e.what() << '\n';
        return 1;
    }
}
