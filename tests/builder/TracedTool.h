// TracedTool.h - the program qeadrs-dic as it is, stopped at each of its calls of the system on the files of a
// folder, and what may befall it there.
//
//   for (int n = 0;; ++n) {
//       CTracedRun const run = RunTraced(vArgument, strFolder, CFault::Error(n, ENOSPC));   // the nth call fails
//       if (!run.bReached) break;                                                           // it makes no more
//       ...
//   }
//
// A call counts when it opens, makes, names, renames or removes a file of the folder, or writes, reads at a place,
// syncs or changes one by its descriptor.
#ifndef QEADRS_TESTS_BUILDER_TRACEDTOOL_H
#define QEADRS_TESTS_BUILDER_TRACEDTOOL_H

#include "tests/builder/Tool.h"

// What befalls the program at its call number nCall, counted from 0.
struct CFault {
    enum EKind {
        Nothing,
        Signals, // the signal is sent before the call is carried out
        Fails,   // the call is not carried out and gives the error
        Halves,  // a write takes half of its bytes; nothing else happens to another call
    };

    static CFault None() { return {Nothing, -1, 0}; }
    static CFault Signal(int nCall, int nSignal) { return {Signals, nCall, nSignal}; }
    static CFault Error(int nCall, int nError) { return {Fails, nCall, nError}; }
    static CFault Half(int nCall) { return {Halves, nCall, 0}; }

    EKind nKind;
    int nCall;
    int nNumber; // signal or error
};

struct CTracedRun : CToolRun {
    std::vector<std::string> vCall; // "write t.dic.new-XXXXXX": name of the call, and of the file in the folder
    bool bReached = false;          // the fault happened

    std::string Last() const { return vCall.empty() ? "" : vCall.back(); }
};

// Runs it to its end. In the child prepare is called before the program begins.
CTracedRun RunTraced(CArguments const& vArgument, std::string const& strFolder, CFault const& fault,
                     std::function<void()> const& prepare = nullptr);

#endif
