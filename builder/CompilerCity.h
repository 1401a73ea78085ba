// CompilerCity.h - a city while its dictionary is compiled (internal to the compiler's source files).
#ifndef QEADRS_BUILDER_COMPILERCITY_H
#define QEADRS_BUILDER_COMPILERCITY_H

#include "builder/Compiler.h"

namespace qe {

// A city and what is needed to find its towns again.
struct CCompiler::CCity {
    CPlace* pPlace = nullptr;
    std::unordered_map<std::string, CPlace*> mapTown;              // by name and reading
    std::unordered_map<std::string, std::vector<CPlace*>> mapName; // by name alone, in order
    std::unordered_map<std::string, CPlace*> mapFolded;   // by folded name, the first; made for organisations
    std::unordered_map<std::string, CPlace*> mapBuilding; // by town and building name
    std::unordered_map<std::string, CPlace*> mapRest;     // an organisation's level 3, by town and text
    std::vector<CTownRow const*> vFloor;                  // rows to be placed once all towns are known
    bool bFolded = false;
    CPlace* pDefault = nullptr; // the place whose entry stands for the whole city
    bool bDefaultIsWhole = false;
};

} // namespace qe

#endif
