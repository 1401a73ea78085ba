// ReportCommand.cpp - the figures as a table or an object, and all misses as lines.
#include "builder/ReportCommand.h"

#include "builder/DictionaryFile.h"
#include "builder/EditionDate.h"
#include "builder/FileMonth.h"
#include "builder/Measure.h"
#include "builder/MeasureText.h"
#include "builder/MeasureTextQuestions.h"
#include "builder/ReplaceFile.h"
#include "builder/Source.h"

#include <algorithm>
#include <filesystem>
#include <iomanip>
#include <iostream>

#include <nlohmann/json.hpp>

namespace qe {

namespace {

void PrintFigures(std::vector<CFigure> const& vFigure, bool bJson) {
    nlohmann::ordered_json all = nlohmann::ordered_json::object();
    std::cout << std::fixed << std::setprecision(3);
    if (!bJson) std::cout << "|   asked |   right |  percent | question |\n|--:|--:|--:|---|\n";
    for (CFigure const& figure : vFigure) {
        all[figure.strKey] = {{"asked", figure.nAsked}, {"right", figure.Right()}};
        for (auto const& [strCause, nCount] : figure.Causes()) all[figure.strKey]["misses"][strCause] = nCount;
        if (bJson) continue;
        std::cout << "| " << std::setw(7) << figure.nAsked << " | " << std::setw(7) << figure.Right() << " | "
                  << std::setw(8) << figure.Percent() << " | " << figure.strQuestion;
        for (auto const& [strCause, nCount] : figure.Causes()) std::cout << "; " << nCount << ": " << strCause;
        std::cout << " |\n";
    }
    if (bJson) std::cout << all.dump() << '\n';
}

// "99.95": a share of 10,000 in percent.
std::string Percent(unsigned nShare) {
    std::string const strHundredths = std::to_string(nShare % 100);
    return std::to_string(nShare / 100) + "." + (nShare % 100 < 10 ? "0" : "") + strHundredths;
}

// False when a figure is below what it must reach.
bool PrintTextFigures(std::vector<CTextFigure> const& vFigure, bool bJson) {
    nlohmann::ordered_json all = {{"seed", TEXT_SEED}};
    std::string strMissed; // figures that are not reached
    std::cout << std::fixed << std::setprecision(3);
    if (!bJson)
        std::cout << "|   asked |   right |  percent | must reach | sure and wrong | question |\n"
                     "|--:|--:|--:|--:|--:|---|\n";
    for (CTextFigure const& figure : vFigure) {
        if (!figure.IsReached()) strMissed += " " + figure.strKey;
        all[figure.strKey] = {{"asked", figure.nAsked},
                              {"right", figure.Right()},
                              {"must_reach", figure.nWanted / 100.0},
                              {"sure_and_wrong", figure.nSureWrong},
                              {"several", figure.nSeveral}};
        for (auto const& [strCause, nCount] : figure.Causes()) all[figure.strKey]["misses"][strCause] = nCount;
        if (bJson) continue;
        std::cout << "| " << std::setw(7) << figure.nAsked << " | " << std::setw(7) << figure.Right() << " | "
                  << std::setw(8) << figure.Percent() << " | " << std::setw(10) << Percent(figure.nWanted) << " | "
                  << std::setw(14) << figure.nSureWrong << " | " << figure.strQuestion;
        for (auto const& [strCause, nCount] : figure.Causes()) std::cout << "; " << nCount << ": " << strCause;
        std::cout << " |\n";
    }
    all["reached"] = strMissed.empty();
    if (bJson)
        std::cout << all.dump() << '\n';
    else
        std::cout << "missed:" << (strMissed.empty() ? " none" : strMissed) << "\nseed: " << TEXT_SEED << '\n';
    return strMissed.empty();
}

template <typename Figure>
void WriteMisses(std::string const& strPath, std::vector<Figure> const& vFigure) {
    if (strPath.empty()) return;
    std::string strMisses = "figure\tasked\tcause\tfound\n";
    for (Figure const& figure : vFigure)
        for (CMiss const& miss : figure.vMiss)
            strMisses += figure.strKey + '\t' + miss.strText + '\t' + miss.strCause + '\t' + miss.strFound + '\n';
    ReplaceFile(strPath, {strMisses.begin(), strMisses.end()});
}

// "2015-10", else the file's name; numbered when another one has that name already.
std::string NameOfPrevious(std::string const& strPath, std::vector<CMeasuredTables::CPrevious> const& vPrevious) {
    unsigned const nMonth = MonthOfName(strPath);
    std::string const strBase =
        nMonth == 0 ? std::filesystem::path(strPath).filename().string() : EditionText(nMonth * 100);
    std::string strName = strBase;
    auto const IsTaken = [&](CMeasuredTables::CPrevious const& other) { return other.strName == strName; };
    for (int n = 2; std::any_of(vPrevious.begin(), vPrevious.end(), IsTaken); ++n)
        strName = strBase + " (" + std::to_string(n) + ")";
    return strName;
}

} // namespace

bool RunReport(CReportOptions const& options) {
    CDictionaryFile const file(options.strFile);
    CMeasuredTables tables;
    tables.vTown = ReadTownTable(ReadSource(options.strTowns)).vRow;
    if (!options.strOffices.empty()) tables.vOffice = ReadOfficeTable(ReadSource(options.strOffices));
    for (std::string const& strPath : options.vPrevious) {
        CSource const source = ReadSource(strPath);
        tables.vPrevious.push_back({NameOfPrevious(strPath, tables.vPrevious), ReadTownTable(source).vRow});
    }
    if (options.bText) {
        std::vector<CTextFigure> const vFigure = MeasureText(file, tables);
        bool const bReached = PrintTextFigures(vFigure, options.bJson);
        WriteMisses(options.strMisses, vFigure);
        return bReached;
    }
    std::vector<CFigure> const vFigure = Measure(file, tables);
    PrintFigures(vFigure, options.bJson);
    WriteMisses(options.strMisses, vFigure);
    return true;
}

} // namespace qe
