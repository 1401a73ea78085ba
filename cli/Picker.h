// Picker.h - picking one of many on a terminal, with a filter that narrows the list while one types.
//
//   if (!CPicker::IsPossible()) ...                    // not a terminal that could
//   CPicker picker;
//   picker.Start();                                    // the screen is ours
//   EPick nPick = picker.Pick("東京都", vItem, nItem); // the chosen item in nItem
//   picker.Stop();                                     // the screen is as it was before
//
// Keys: arrows, PgUp, PgDn, Home, End; Enter or Right takes; Esc or Left goes back; Ctrl-C ends. Everything else is
// typed into the filter, Backspace takes a character off it, Ctrl-U all.
#ifndef QEADRS_CLI_PICKER_H
#define QEADRS_CLI_PICKER_H

#include <cstddef>
#include <string>
#include <vector>

namespace qe {

enum class EPick { Taken, Back, Quit };

struct CPickItem {
    std::string strLine;                // as it is shown: UTF-8
    std::vector<std::string> vKey = {}; // what the filter looks at, as FoldForFilter makes it
};

class CPicker {
  public:
    CPicker() = default;
    ~CPicker() { Stop(); }
    CPicker(CPicker const&) = delete;
    CPicker& operator=(CPicker const&) = delete;

    // Whether the terminal's type (TERM) is known, and can move its cursor.
    static bool IsPossible();

    // Takes the screen over; false when that fails.
    bool Start();
    void Stop();

    // nItem is the item that the bar begins at, and the one it ended at. An empty list can only be left.
    EPick Pick(std::string const& strTitle, std::vector<CPickItem> const& vItem, size_t& nItem);

  private:
    void* m_pScreen = nullptr; // the terminal library's
};

} // namespace qe

#endif
