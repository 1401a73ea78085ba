// Picker.cpp - a list with a bar and a filter, over ncurses.
#include "cli/Picker.h"

#include "cli/Text.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstring>

#include <langinfo.h>
#include <unistd.h>

#define NCURSES_NOMACROS 1 // its short names stay out of our way
#include <ncurses.h>
#include <term.h>

namespace qe {

namespace {

constexpr char CTRL_C = 0x03;
constexpr char CTRL_H = 0x08;
constexpr char CTRL_U = 0x15;
constexpr char ESCAPE = 0x1B;
constexpr char DELETE = 0x7F;
constexpr int ESCAPE_DELAY = 50; // milliseconds in which the rest of a key's sequence follows, also over ssh
constexpr char HELP[] = "Enter: take   Esc: back   Ctrl-C: end   type to filter";

// One line of the screen, cut to its width and padded with blanks.
void PrintLine(int nRow, std::string const& strText, attr_t nAttributes = A_NORMAL) {
    // The last column stays free: a terminal may begin a new line behind it.
    size_t const nWidth = static_cast<size_t>(std::max(getmaxx(stdscr) - 1, 0));
    std::string strLine(CutToWidth(strText, nWidth));
    strLine.append(nWidth - DisplayWidth(strLine), ' ');
    attrset(static_cast<int>(nAttributes));
    mvaddstr(nRow, 0, strLine.c_str());
    attrset(A_NORMAL);
}

// A list while it is on the screen: the items that the filter lets through, and the bar on one of them.
class CListView {
  public:
    CListView(std::string const& strTitle, std::vector<CPickItem> const& vItem, size_t nItem)
        : m_strTitle(strTitle), m_vItem(vItem) {
        Filter();
        m_nBar = std::min(nItem, m_vShown.empty() ? 0 : m_vShown.size() - 1);
    }

    // The item under the bar. REQUIRES: one is shown.
    size_t Item() const { return m_vShown[m_nBar]; }
    bool IsEmpty() const { return m_vShown.empty(); }

    void Move(long nStep) {
        long const nLast = static_cast<long>(m_vShown.size()) - 1;
        m_nBar = static_cast<size_t>(std::max(std::min(static_cast<long>(m_nBar) + nStep, nLast), 0L));
    }
    void MoveToEnd() { Move(static_cast<long>(m_vShown.size())); }
    void MoveToStart() { m_nBar = 0; }
    static int Page() { return std::max(getmaxy(stdscr) - FRAME, 1); }

    void Type(std::string const& strCharacter) { SetFilter(m_strFilter + strCharacter); }
    void TakeBack() { SetFilter(std::string(DropLast(m_strFilter))); }
    void ClearFilter() { SetFilter(""); }

    void Draw() {
        size_t const nPage = static_cast<size_t>(Page());
        if (m_nBar < m_nTop) m_nTop = m_nBar;
        if (m_nBar >= m_nTop + nPage) m_nTop = m_nBar - nPage + 1;
        erase();
        PrintLine(0, m_strTitle + "  " + Grouped(m_vShown.size()) + " of " + Grouped(m_vItem.size()), A_BOLD);
        for (size_t i = 0; i < nPage && m_nTop + i < m_vShown.size(); ++i)
            PrintLine(static_cast<int>(i) + 1, m_vItem[m_vShown[m_nTop + i]].strLine,
                      m_nTop + i == m_nBar ? A_REVERSE : A_NORMAL);
        PrintLine(static_cast<int>(nPage) + 1, HELP, A_DIM);
        std::string const strFilter = "> " + Clean(m_strFilter);
        PrintLine(static_cast<int>(nPage) + 2, strFilter);
        move(static_cast<int>(nPage) + 2, static_cast<int>(DisplayWidth(strFilter)));
        refresh();
    }

  private:
    static constexpr int FRAME = 3; // lines of title, help and filter

    void SetFilter(std::string const& strFilter) {
        m_strFilter = strFilter;
        Filter();
        m_nBar = m_nTop = 0;
    }

    void Filter() {
        m_vShown.clear();
        std::string const strFolded = FoldForFilter(m_strFilter);
        for (size_t i = 0; i < m_vItem.size(); ++i) {
            auto const& vKey = m_vItem[i].vKey;
            bool const bFits = std::any_of(vKey.begin(), vKey.end(), [&](std::string const& strKey) {
                return strKey.find(strFolded) != std::string::npos;
            });
            if (bFits) m_vShown.push_back(i);
        }
    }

    std::string const& m_strTitle;
    std::vector<CPickItem> const& m_vItem;
    std::vector<size_t> m_vShown;
    std::string m_strFilter;
    size_t m_nBar = 0;
    size_t m_nTop = 0; // the first item on the screen
};

// What a key of the keyboard's upper rows does. False when it ends the pick, with its result.
bool ObeyKey(CListView& view, int nKey, EPick& nResult) {
    switch (nKey) {
    case KEY_UP:
        view.Move(-1);
        return true;
    case KEY_DOWN:
        view.Move(1);
        return true;
    case KEY_PPAGE:
        view.Move(-CListView::Page());
        return true;
    case KEY_NPAGE:
        view.Move(CListView::Page());
        return true;
    case KEY_HOME:
        view.MoveToStart();
        return true;
    case KEY_END:
        view.MoveToEnd();
        return true;
    case KEY_BACKSPACE:
    case KEY_DC:
        view.TakeBack();
        return true;
    case KEY_LEFT:
        nResult = EPick::Back;
        return false;
    case KEY_RIGHT:
    case KEY_ENTER:
        nResult = EPick::Taken;
        return view.IsEmpty();
    default:
        return true; // KEY_RESIZE among them: the list is drawn anew
    }
}

// The same for a typed character.
bool ObeyCharacter(CListView& view, std::string const& strCharacter, EPick& nResult) {
    switch (strCharacter[0]) {
    case CTRL_C:
        nResult = EPick::Quit;
        return false;
    case ESCAPE:
        nResult = EPick::Back;
        return false;
    case '\r':
    case '\n':
        nResult = EPick::Taken;
        return view.IsEmpty();
    case CTRL_H:
    case DELETE:
        view.TakeBack();
        return true;
    case CTRL_U:
        view.ClearFilter();
        return true;
    default:
        bool const bControl = strCharacter[0] >= 0 && strCharacter[0] < ' ';
        if (!bControl) view.Type(strCharacter);
        return true;
    }
}

// Characters from the bytes that a terminal sends. (The terminal library's own way to read them stops for good at a
// byte that is not UTF-8.)
class CDecoder {
  public:
    // The character that the byte completes; "" when it needs more bytes, and for bytes that make no character.
    std::string Take(unsigned char nByte) {
        bool const bFollows = (nByte & 0xC0) == 0x80;
        m_strBytes = bFollows ? m_strBytes + static_cast<char>(nByte) : std::string(1, static_cast<char>(nByte));
        if (m_strBytes.size() < Length(static_cast<unsigned char>(m_strBytes[0]))) return "";
        std::string strCharacter;
        m_strBytes.swap(strCharacter);
        return IsUtf8(strCharacter) ? strCharacter : "";
    }

  private:
    static size_t Length(unsigned char nFirst) {
        return nFirst < 0xC0 ? 1 : nFirst < 0xE0 ? 2 : nFirst < 0xF0 ? 3 : 4;
    }

    std::string m_strBytes; // the beginning of a character
};

// Texts are UTF-8 whatever the user's locale; the terminal library asks the locale how wide a character is.
void UseUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) std::setlocale(LC_CTYPE, "C.UTF-8");
}

} // namespace

bool CPicker::IsPossible() {
    int nError = 0;
    if (setupterm(nullptr, STDOUT_FILENO, &nError) != OK) return false;
    char const* const pszMove = tigetstr("cup");
    bool const bMoves = pszMove != nullptr && pszMove != reinterpret_cast<char const*>(-1);
    del_curterm(cur_term);
    return bMoves;
}

bool CPicker::Start() {
    UseUtf8();
    m_pScreen = newterm(nullptr, stdout, stdin);
    if (m_pScreen == nullptr) return false;
    set_escdelay(ESCAPE_DELAY);
    raw(); // Ctrl-C is a key: the screen is put back before the program ends
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    return true;
}

void CPicker::Stop() {
    if (m_pScreen == nullptr) return;
    endwin();
    delscreen(static_cast<SCREEN*>(m_pScreen));
    m_pScreen = nullptr;
}

EPick CPicker::Pick(std::string const& strTitle, std::vector<CPickItem> const& vItem, size_t& nItem) {
    CListView view(strTitle, vItem, nItem);
    EPick nResult = EPick::Quit;
    CDecoder decoder;
    for (bool bGoOn = true; bGoOn;) {
        view.Draw();
        int const nKey = getch();
        if (nKey == ERR) return EPick::Quit; // the terminal is gone
        if (nKey >= KEY_MIN) {
            bGoOn = ObeyKey(view, nKey, nResult);
            continue;
        }
        std::string const strCharacter = decoder.Take(static_cast<unsigned char>(nKey));
        if (!strCharacter.empty()) bGoOn = ObeyCharacter(view, strCharacter, nResult);
    }
    if (!view.IsEmpty()) nItem = view.Item();
    return nResult;
}

} // namespace qe
