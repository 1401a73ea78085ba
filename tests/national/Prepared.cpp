// Prepared.cpp - no JSON reader: the files hold flat texts and numbers, one object within another.
#include "Prepared.h"

#include "Tables.h"

#include <stdexcept>

namespace national {

namespace {

// The numbers of an object, by name: "a":1,"b":2; objects within it are passed over.
std::map<std::string, size_t> Numbers(std::string_view strObject) {
    std::map<std::string, size_t> mapNumber;
    size_t nDepth = 0;
    for (size_t n = 0; n < strObject.size(); ++n) {
        if (strObject[n] == '{') ++nDepth;
        if (strObject[n] == '}') --nDepth;
        if (strObject[n] != '"') continue;
        size_t const nEnd = strObject.find('"', n + 1);
        if (nEnd == std::string_view::npos) throw std::runtime_error("a JSON text has no end");
        std::string_view const strBehind = strObject.substr(nEnd + 1);
        bool const bNumber =
            strBehind.size() > 1 && strBehind[0] == ':' && strBehind[1] >= '0' && strBehind[1] <= '9';
        if (nDepth == 0 && bNumber)
            mapNumber[std::string(strObject.substr(n + 1, nEnd - n - 1))] =
                std::stoul(std::string(strBehind.substr(1, 12)));
        n = nEnd;
    }
    return mapNumber;
}

// What stands between the brackets of "name":{...}; no text of these files holds a bracket of its own.
std::optional<std::string_view> Object(std::string_view strText, std::string const& strName) {
    std::string const strKey = "\"" + strName + "\":{";
    size_t const nFound = strText.find(strKey);
    if (nFound == std::string_view::npos) return {};
    strText.remove_prefix(nFound + strKey.size());
    size_t nDepth = 1, n = 0;
    for (; n < strText.size() && nDepth > 0; ++n)
        nDepth += strText[n] == '{' ? 1 : strText[n] == '}' ? size_t(-1) : 0;
    if (nDepth > 0) throw std::runtime_error("a JSON object has no end: " + strName);
    return strText.substr(0, n - 1);
}

} // namespace

size_t CompilersCount(std::string const& strName) {
    static std::map<std::string, size_t> const mapCount = [] {
        std::string const strFile = ReadFile(DataPath("statistics.json"));
        auto const strCounts = Object(strFile, "counts");
        if (!strCounts) throw std::runtime_error("statistics.json has no counts");
        return Numbers(*strCounts);
    }();
    auto const pFound = mapCount.find(strName);
    return pFound == mapCount.end() ? 0 : pFound->second;
}

std::optional<CFigure> Figure(std::string const& strKey) {
    static std::string const strFile = ReadFile(DataPath("figures.json"));
    auto const strFigure = Object(strFile, strKey);
    if (!strFigure) return {};
    std::map<std::string, size_t> const mapNumber = Numbers(*strFigure);
    CFigure figure{mapNumber.at("asked"), mapNumber.at("right"), {}};
    if (auto const strMisses = Object(*strFigure, "misses")) figure.mapMisses = Numbers(*strMisses);
    return figure;
}

} // namespace national
