// IndexProbe.cpp - qeadrs_index_memory DICTIONARY FIGURES: makes the index of a dictionary's names in a process that
// does nothing else, and writes by how many KB its memory rose at most, and the KB of the index.
#include "bench/World.h"
#include "text/AddressText.h"

#include <malloc.h>

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

// A line of /proc/self/status in KB.
long Status(std::string const& strKey) {
    std::ifstream in("/proc/self/status");
    for (std::string strLine; std::getline(in, strLine);)
        if (strLine.compare(0, strKey.size(), strKey) == 0) return std::stol(strLine.substr(strKey.size() + 1));
    throw std::runtime_error("/proc/self/status has no " + strKey);
}

// From now on the peak is counted anew.
void ForgetPeak() {
    std::ofstream out("/proc/self/clear_refs");
    out << "5\n";
    if (!out.flush()) throw std::runtime_error("/proc/self/clear_refs cannot be written");
}

} // namespace

int main(int nArguments, char** ppszArgument) try {
    if (nArguments != 3) throw std::runtime_error("usage: qeadrs_index_memory DICTIONARY FIGURES");
    CBenchDictionary dictionary(ppszArgument[1]); // reads all entries: the pages are in memory then
    qeadrs::BuildTextIndex(dictionary.Dic());     // and those that only the index needs
    malloc_trim(0);
    long const nBefore = Status("VmRSS");
    ForgetPeak();
    std::vector<unsigned char> const vIndex = qeadrs::BuildTextIndex(dictionary.Dic());
    std::ofstream out(ppszArgument[2]);
    out << Status("VmHWM") - nBefore << '\n' << vIndex.size() / 1000 << '\n';
    return out.flush() ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (std::exception const& error) {
    std::cerr << "qeadrs_index_memory: " << error.what() << '\n';
    return EXIT_FAILURE;
}
