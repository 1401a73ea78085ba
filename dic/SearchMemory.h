// SearchMemory.h - what an object remembers of the bound image's names and codes, so that it need not look again
// (internal).
//
// All of it is made by the searches that use it, says what the image says, and goes with the image. Without memory for
// it the searches read the image each time. At most, for the national dictionary: 48 KB for the code search, 384 KB of
// marks, 16 KB for cities and half a megabyte for towns, these two by searches over the whole country only.
#ifndef QEADRS_DIC_SEARCHMEMORY_H
#define QEADRS_DIC_SEARCHMEMORY_H

#include "dic/CodeProbes.h"
#include "dic/NameMarks.h"
#include "dic/NameTable.h"

#include <memory>
#include <new>
#include <optional>

// The names of a whole level, for those who ask for them again and again.
class CLevelNames {
  public:
    // To be called by each search of the level; null means to compare with every name. The table takes the time of some
    // searches without it, so that a few searches wait for it.
    CNameTable const* Table(CImageView const& image, CNodeRange const& level, CNameTable::EParts nParts) {
        if (m_nSearches < SEARCHES_BEFORE && ++m_nSearches == SEARCHES_BEFORE) m_table.Make(image, level, nParts);
        return m_table.IsMade() ? &m_table : nullptr;
    }

  private:
    static constexpr unsigned SEARCHES_BEFORE = 4;

    unsigned m_nSearches = 0;
    CNameTable m_table;
};

struct CSearchMemory {
    CCodeProbes probes;
    CNameMarks marks;
    CLevelNames cities;
    CLevelNames towns;
};

// The memory of an object for one operation: its own, made when it is first asked for, or one that goes with the
// operation when there is no room for that.
class CSearchMemoryRef {
  public:
    explicit CSearchMemoryRef(std::unique_ptr<CSearchMemory>& pMemory) : m_pMemory(pMemory.get()) {
        if (m_pMemory != nullptr) return;
        pMemory.reset(new (std::nothrow) CSearchMemory);
        m_pMemory = pMemory != nullptr ? pMemory.get() : &m_passing.emplace();
    }
    CSearchMemoryRef(CSearchMemoryRef const&) = delete;
    CSearchMemoryRef& operator=(CSearchMemoryRef const&) = delete;

    CSearchMemory* operator->() const { return m_pMemory; }

  private:
    CSearchMemory* m_pMemory;
    std::optional<CSearchMemory> m_passing;
};

#endif
