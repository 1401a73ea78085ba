// `qeadrs browse` on a terminal: picking from the lists. The terminal library sends only what changes on the screen, so
// the tests keep a screen of their own, wait for texts on it, and look at what is printed when it has been put back.
#include "tests/cli/CliTest.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>
#include <tuple>
#include <utility>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

// What a terminal of the type below is told to do, and what its keys send.
constexpr char TERMINAL[] = "xterm-256color";
constexpr char SCREEN_ON[] = "\x1B[?1049h";  // the command's screen
constexpr char SCREEN_OFF[] = "\x1B[?1049l"; // the screen as it was before
constexpr char UP[] = "\x1BOA";
constexpr char DOWN[] = "\x1BOB";
constexpr char RIGHT[] = "\x1BOC";
constexpr char LEFT[] = "\x1BOD";
constexpr char HOME[] = "\x1BOH";
constexpr char END[] = "\x1BOF";
constexpr char PAGE_UP[] = "\x1B[5~";
constexpr char PAGE_DOWN[] = "\x1B[6~";
constexpr char DELETE[] = "\x1B[3~";
constexpr char KEYPAD_ENTER[] = "\x1BOM";
constexpr char F1[] = "\x1BOP";
constexpr char ESCAPE[] = "\x1B";
constexpr char CTRL_C[] = "\x03";
constexpr char CTRL_U[] = "\x15";

constexpr char NOTHING_PICKED[] = "qeadrs: browse: not found; nothing was picked\n";
constexpr char CHIYODA[] = "postal code  old code  prefecture  city      town    area   organisation\n"
                           "1000001      100       東京都      千代田区  千代田\n"
                           "1008111      100       東京都      千代田区  千代田  １−１  宮内庁\n";

struct CSize {
    size_t nRows;
    size_t nColumns;
};

// What a terminal shows that is told so by the terminal library: as much of an xterm as that uses.
class CScreen {
  public:
    explicit CScreen(CSize size) { Resize(size); }

    void Resize(CSize size) {
        m_vRow.resize(size.nRows);
        for (std::vector<CCell>& row : m_vRow) row.resize(size.nColumns);
        m_nTop = 0;
        m_nBottom = size.nRows;
    }

    // What has been printed so far.
    std::string Text() const {
        std::string strText;
        for (std::vector<CCell> const& row : m_vRow) strText += Line(row) + '\n';
        return strText;
    }

    // The line that begins in reverse; "" when there is none.
    std::string Bar() const {
        for (std::vector<CCell> const& row : m_vRow)
            if (!row.empty() && row[0].bReverse) return Line(row);
        return "";
    }

    // Takes what is whole at the beginning of a text off it, and prints it.
    void Print(std::string& strText) {
        while (size_t const nLength = FirstLength(strText)) {
            std::string const strFirst = strText.substr(0, nLength);
            strText.erase(0, nLength);
            if (strFirst[0] == '\x1B')
                Obey(strFirst);
            else if (strFirst == "\r")
                m_nColumn = 0;
            else if (strFirst == "\b")
                m_nColumn -= m_nColumn > 0 ? 1 : 0;
            else if (strFirst == "\n")
                m_nRow + 1 == m_nBottom ? Scroll(m_nTop, 1) : void(++m_nRow);
            else
                Put(strFirst);
        }
    }

  private:
    struct CCell {
        std::string strText = " "; // "" behind a wide character
        bool bReverse = false;
    };

    static std::string Line(std::vector<CCell> const& row) {
        std::string strLine;
        for (CCell const& cell : row) strLine += cell.strText;
        return strLine.substr(0, strLine.find_last_not_of(' ') + 1);
    }

    // The length of the first character or control, 0 when its end has not come yet.
    static size_t FirstLength(std::string const& strText) {
        if (strText.empty()) return 0;
        size_t nLength = 1;
        if (strText[0] == '\x1B') {
            nLength = strText.size() > 1 && strText[1] == '(' ? 3 : 2;
            if (strText.size() > 1 && strText[1] == '[')
                while (nLength++ < strText.size() && (strText[nLength - 1] < '@' || strText[nLength - 1] > '~')) {
                }
        } else if (auto const c = static_cast<unsigned char>(strText[0]); c >= 0xC0) {
            nLength = c < 0xE0 ? 2 : c < 0xF0 ? 3 : 4;
        }
        return nLength <= strText.size() ? nLength : 0;
    }

    void Put(std::string const& strCharacter) {
        m_strLast = strCharacter;
        size_t const nWidth = strCharacter.size() < 3 ? 1 : 2; // in the texts of the tests
        for (size_t i = 0; i < nWidth; ++i, ++m_nColumn)
            if (m_nRow < m_vRow.size() && m_nColumn < m_vRow[m_nRow].size())
                m_vRow[m_nRow][m_nColumn] = {i == 0 ? strCharacter : "", m_bReverse};
    }

    void Erase(size_t nRow, size_t nFirst, size_t nEnd) {
        if (nRow >= m_vRow.size()) return;
        nEnd = std::min(nEnd, m_vRow[nRow].size());
        for (size_t n = nFirst; n < nEnd; ++n) m_vRow[nRow][n] = CCell();
    }

    // Takes lines off the region at nFrom; blank ones follow at its end. With a negative number the other way.
    void Scroll(size_t nFrom, long nLines) {
        std::vector<CCell> const blank(m_vRow.empty() ? 0 : m_vRow[0].size());
        for (; nLines != 0 && nFrom < m_nBottom && m_nBottom <= m_vRow.size(); nLines -= nLines > 0 ? 1 : -1) {
            auto const itFrom = m_vRow.begin() + static_cast<long>(nFrom);
            auto const itLast = m_vRow.begin() + static_cast<long>(m_nBottom) - 1;
            nLines > 0 ? std::rotate(itFrom, itFrom + 1, itLast + 1) : std::rotate(itFrom, itLast, itLast + 1);
            *(nLines > 0 ? itLast : itFrom) = blank;
        }
    }

    // Takes cells off the line at the cursor, or puts blank ones in.
    void Shift(long nCells) {
        if (m_nRow >= m_vRow.size()) return;
        std::vector<CCell>& row = m_vRow[m_nRow];
        size_t const nColumns = row.size();
        for (; nCells != 0 && m_nColumn<row.size(); nCells -= nCells> 0 ? 1 : -1) {
            auto const itCell = row.begin() + static_cast<long>(m_nColumn);
            nCells > 0 ? void(row.erase(itCell)) : void(row.insert(itCell, CCell()));
        }
        row.resize(nColumns);
    }

    // A sequence of ESC.
    void Obey(std::string const& strSequence) {
        if (strSequence == "\x1BM") m_nRow == m_nTop ? Scroll(m_nTop, -1) : void(--m_nRow);
        if (strSequence[1] != '[' || strSequence[2] == '?') return;
        std::vector<size_t> vNumber = {0};
        for (char const c : strSequence.substr(2)) {
            if (c == ';') vNumber.push_back(0);
            if (c >= '0' && c <= '9') vNumber.back() = vNumber.back() * 10 + static_cast<size_t>(c - '0');
        }
        size_t const nCount = std::max<size_t>(vNumber[0], 1);
        size_t const nSecond = vNumber.size() > 1 ? std::max<size_t>(vNumber[1], 1) : 1;
        long const nLines = static_cast<long>(nCount);
        switch (strSequence.back()) {
        case 'A':
            m_nRow -= std::min(nCount, m_nRow);
            break;
        case 'B':
            m_nRow += nCount;
            break;
        case 'C':
            m_nColumn += nCount;
            break;
        case 'D':
            m_nColumn -= std::min(nCount, m_nColumn);
            break;
        case 'G':
            m_nColumn = nCount - 1;
            break;
        case 'd':
            m_nRow = nCount - 1;
            break;
        case 'H':
            std::tie(m_nRow, m_nColumn) = std::pair(nCount - 1, nSecond - 1);
            break;
        case 'r':
            std::tie(m_nTop, m_nBottom) = std::pair(nCount - 1, nSecond);
            m_nRow = m_nColumn = 0;
            break;
        case 'S':
            Scroll(m_nTop, nLines);
            break;
        case 'T':
            Scroll(m_nTop, -nLines);
            break;
        case 'M':
            Scroll(m_nRow, nLines);
            break;
        case 'L':
            Scroll(m_nRow, -nLines);
            break;
        case 'P':
            Shift(nLines);
            break;
        case '@':
            Shift(-nLines);
            break;
        case 'X':
            Erase(m_nRow, m_nColumn, m_nColumn + nCount);
            break;
        case 'K':
            Erase(m_nRow, vNumber[0] == 0 ? m_nColumn : 0, vNumber[0] == 1 ? m_nColumn + 1 : std::string::npos);
            break;
        case 'J':
            Erase(m_nRow, vNumber[0] == 0 ? m_nColumn : 0, std::string::npos);
            for (size_t n = vNumber[0] == 0 ? m_nRow + 1 : 0; n < m_vRow.size(); ++n) Erase(n, 0, std::string::npos);
            break;
        case 'b':
            for (size_t i = 0; i < nCount; ++i) Put(std::string(m_strLast));
            break;
        case 'm':
            for (size_t const n : vNumber) m_bReverse = n == 7 || (m_bReverse && n != 0 && n != 27);
            break;
        default:
            break; // modes
        }
    }

    std::vector<std::vector<CCell>> m_vRow;
    size_t m_nRow = 0;
    size_t m_nColumn = 0;
    size_t m_nTop = 0; // the region that scrolls
    size_t m_nBottom = 0;
    bool m_bReverse = false;
    std::string m_strLast;
};

// A terminal as a shell leaves it: lines, an echo, Ctrl-C as a signal, CR before LF.
termios ShellModes() {
    termios modes = {};
    modes.c_iflag = ICRNL | IXON;
    modes.c_oflag = OPOST | ONLCR;
    modes.c_lflag = ISIG | ICANON | ECHO;
    modes.c_cflag = CS8 | CREAD | B38400;
    modes.c_cc[VINTR] = 3;
    modes.c_cc[VEOF] = 4;
    modes.c_cc[VERASE] = 0x7F;
    modes.c_cc[VMIN] = 1;
    return modes;
}

class QeadrsPick : public CliTest {
  protected:
    using CClock = std::chrono::steady_clock;
    using CTime = CClock::time_point;

    void SetUp() override {
        CliTest::SetUp();
        m_environment["TERM"] = TERMINAL;
    }

    void TearDown() override {
        if (m_nProcess > 0) {
            kill(m_nProcess, SIGKILL);
            Wait(m_nProcess);
        }
        CliTest::TearDown();
    }

    // `qeadrs browse` with these arguments, its standard input and output on a terminal of this size. The test keeps the
    // terminal open, also when the program has ended.
    void BeginIn(std::string const& strDic, std::vector<std::string> vArgument, CSize size = {24, 80}) {
        m_terminal = CTerminal();
        termios const modes = ShellModes();
        ASSERT_EQ(tcsetattr(m_terminal.hSlave, TCSANOW, &modes), 0);
        m_strPrinted.clear();
        m_strUnread.clear();
        m_screen = CScreen(size);
        Resize(size);
        vArgument = WithDic("browse", strDic, std::move(vArgument));
        vArgument.insert(vArgument.begin(), QEADRS_FILE);
        CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        m_nProcess = Start(vArgument, m_environment, m_pathFolder.string(), m_terminal.hSlave, m_terminal.hSlave,
                           m_bRemarkOnTerminal ? int{m_terminal.hSlave} : int{hError}, m_bOwnTerminal);
    }

    // The same, until the program has taken the screen.
    void OpenIn(std::string const& strDic, std::vector<std::string> vArgument = {}, CSize size = {24, 80}) {
        BeginIn(strDic, std::move(vArgument), size);
        AwaitThat(SCREEN_ON, [this] { return m_strPrinted.find(SCREEN_ON) != std::string::npos; });
    }
    void Open(std::vector<std::string> vArgument = {}, CSize size = {24, 80}) {
        OpenIn(Sample(), std::move(vArgument), size);
    }

    // The program may be about to wait for a key, where it would not notice the signal before the key comes: it gets
    // more of them while the test waits for something.
    void Resize(CSize size) {
        winsize const window = {static_cast<unsigned short>(size.nRows), static_cast<unsigned short>(size.nColumns),
                                0, 0};
        m_screen.Resize(size);
        m_bResized = m_nProcess > 0;
        ASSERT_EQ(ioctl(m_terminal.hMaster, TIOCSWINSZ, &window), 0);
    }

    void Type(std::string const& strKeys) { WriteAll(m_terminal.hMaster, strKeys); }

    // Waits for a text on the screen, and for the line of the bar to begin with one.
    void Await(std::string const& strText) {
        AwaitThat(strText, [&] { return m_screen.Text().find(strText) != std::string::npos; });
    }
    void AwaitBar(std::string const& strText) {
        AwaitThat("bar: " + strText, [&] { return m_screen.Bar().compare(0, strText.size(), strText) == 0; });
    }

    // The program's end: its status, what it has printed since it put the screen back, and its remarks.
    CResult Finish() {
        ReadToEnd();
        size_t const nBack = m_strPrinted.rfind(SCREEN_OFF);
        EXPECT_NE(nBack, std::string::npos) << "the screen was not put back";
        return {m_nStatus, nBack == std::string::npos ? "" : Plain(m_strPrinted.substr(nBack)),
                ReadFile(Path("stderr"))};
    }
    CResult FinishBy(std::string const& strKeys) {
        Type(strKeys);
        return Finish();
    }

    // All that the program prints until it ends, its status in m_nStatus.
    std::string ReadToEnd() {
        m_terminal.hSlave = CHandle(); // the program's copies are the only ones now, so that their end can be seen
        CTime const tEnd = CClock::now() + PATIENCE;
        while (ReadBefore(tEnd)) {
        }
        m_nStatus = WaitFor(PATIENCE);
        return Plain(m_strPrinted);
    }

    // The program's status; -1 when it does not end, and then it is ended.
    int WaitFor(std::chrono::milliseconds tLongest) {
        CTime const tEnd = CClock::now() + tLongest;
        siginfo_t info = {};
        while (waitid(P_PID, static_cast<id_t>(m_nProcess), &info, WEXITED | WNOHANG | WNOWAIT) == 0) {
            if (info.si_pid != 0) return Wait(std::exchange(m_nProcess, 0));
            if (CClock::now() >= tEnd) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ADD_FAILURE() << "the command does not end";
        kill(m_nProcess, SIGKILL);
        Wait(std::exchange(m_nProcess, 0));
        return -1;
    }

    static std::string Town(int i) { return 't' + std::to_string(i / 10) + std::to_string(i % 10); }

    // A dictionary of one city with 100 towns, t00 to t99.
    std::string WriteHundredTowns() const {
        std::vector<CEntryText> vEntry;
        for (int i = 0; i < 100; ++i)
            vEntry.push_back({std::to_string(1000000 + i), {{0, "東京都"}, {1, "港区"}, {2, Town(i)}}});
        return WriteDictionary(vEntry);
    }

    static std::string Times(int nTimes, std::string const& strKey) {
        std::string strKeys;
        while (nTimes-- > 0) strKeys += strKey;
        return strKeys;
    }

    static constexpr std::chrono::seconds PATIENCE{10};

    CTerminal m_terminal;
    CScreen m_screen = CScreen({0, 0});
    std::string m_strPrinted; // by the program
    pid_t m_nProcess = 0;
    int m_nStatus = -1;
    bool m_bOwnTerminal = true;
    bool m_bRemarkOnTerminal = false;

  private:
    bool ReadBefore(CTime tEnd) {
        auto const tLeft = std::chrono::duration_cast<std::chrono::milliseconds>(tEnd - CClock::now());
        size_t const nSize = m_strPrinted.size();
        if (tLeft.count() <= 0 || !ReadSome(m_terminal.hMaster, static_cast<int>(tLeft.count()), m_strPrinted))
            return false;
        m_strUnread += m_strPrinted.substr(nSize);
        m_screen.Print(m_strUnread);
        return true;
    }

    template <typename TCondition>
    void AwaitThat(std::string const& strWhat, TCondition const& IsSo) {
        CTime const tEnd = CClock::now() + PATIENCE;
        while (!HasFailure() && !IsSo()) {
            if (ReadBefore(std::min(tEnd, CClock::now() + std::chrono::milliseconds(50)))) continue;
            ASSERT_LT(CClock::now(), tEnd) << testing::PrintToString(strWhat) << " did not come; the screen is\n"
                                           << m_screen.Text();
            if (m_bResized) kill(m_nProcess, SIGWINCH);
        }
    }

    bool m_bResized = false;
    std::string m_strUnread; // printed, and not on the screen yet

    // A text without the controls in it: CR, and sequences of ESC.
    static std::string Plain(std::string const& strText) {
        std::string strPlain;
        for (size_t i = 0; i < strText.size(); ++i) {
            if (strText[i] == '\x1B') {
                bool const bLong = strText[++i] == '[';
                while (bLong && i + 1 < strText.size() && (strText[++i] < '@' || strText[i] > '~')) {
                }
            } else if (strText[i] != '\r') {
                strPlain += strText[i];
            }
        }
        return strPlain;
    }
};

// --- three levels --------------------------------------------------------------------------------------------------

TEST_F(QeadrsPick, LeadsToTheAddressesOfATownByEnter) {
    Open();
    Await("都道府県  47 of 47");
    AwaitBar("北海道  ホッカイドウ");
    Await("Enter: take   Esc: back   Ctrl-C: end   type to filter");
    Type("\r");
    Await("北海道  8 of 8");
    AwaitBar("札幌市中央区  サッポロシチュウオウク");
    Type("\r");
    Await("北海道札幌市中央区  10 of 10");
    AwaitBar("旭ケ丘  アサヒガオカ  0640941");
    CResult const result = FinishBy("\r");
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, "postal code  old code  prefecture  city          town\n"
                             "0640941      064       北海道      札幌市中央区  旭ケ丘\n");
}

TEST_F(QeadrsPick, TakesByTheEnterOfEveryKeyboard) {
    for (char const* pszEnter : {"\r", "\n", KEYPAD_ENTER, RIGHT}) {
        SCOPED_TRACE(testing::PrintToString(pszEnter));
        Open();
        std::string const strEnter = pszEnter;
        EXPECT_EQ(FinishBy("東京都" + strEnter + "千代田" + strEnter + "千代田" + strEnter).strOut, CHIYODA);
    }
}

TEST_F(QeadrsPick, TellsTownsOfOneNameApart) {
    Open();
    EXPECT_EQ(FinishBy("富山県\r富山市\r" + std::string(DOWN) + "\r").strOut,
              "postal code  old code  prefecture  city    town\n"
              "9300974      930       富山県      富山市  石田\n");
}

TEST_F(QeadrsPick, EndsAtACityWithoutTowns) {
    Open();
    CResult const result = FinishBy("東京都\r利島\r");
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_EQ(result.strErr, "");
    EXPECT_EQ(result.strOut, "postal code  old code  prefecture  city\n1000301      10003     東京都      利島村\n");
}

// --- options -------------------------------------------------------------------------------------------------------

TEST_F(QeadrsPick, EndsAtTheCityForItsLines) {
    std::string const strNamed = AskOnTerminal("browse", {"--ui", "東京都", "千代田区"}).strOut;
    Open({"--ui"});
    CResult const result = FinishBy("東京都\r千代田\r");
    EXPECT_EQ(result.nStatus, 0);
    EXPECT_THAT(result.strOut, StartsWith("postal code  old code  line "));
    EXPECT_EQ(result.strOut, strNamed);
}

TEST_F(QeadrsPick, ShowsSortedListsOnDemand) {
    Open({"--sort"});
    EXPECT_EQ(FinishBy("東京都\r\r\r").strOut, "postal code  old code  prefecture  city          town\n"
                                               "1001101      10011     東京都      三宅島三宅村  神着\n");
}

TEST_F(QeadrsPick, PrintsReadingsOnDemand) {
    Open({"--kana"});
    EXPECT_EQ(FinishBy("東京都\r港区\r芝公園\r").strOut,
              "postal code  old code  prefecture  city  town    prefecture kana  city kana  town kana\n"
              "1050011      105       東京都      港区  芝公園  トウキョウト     ミナトク   シバコウエン\n");
}

// --- the filter ----------------------------------------------------------------------------------------------------

TEST_F(QeadrsPick, NarrowsAListByAPartOfTheName) {
    Open();
    Type("京都");
    Await("都道府県  2 of 47"); // 東京都 and 京都府
    Await("> 京都");
    AwaitBar("東京都");
    EXPECT_EQ(FinishBy("\r代田\r代田\r").strOut, CHIYODA);
}

TEST_F(QeadrsPick, NarrowsAListByAPartOfTheReadingInEitherKana) {
    for (char const* pszKeys : {"とうきょう\rちよだ\rちよだ\r", "トウキヨウ\rチヨダ\rチヨダ\r", "ﾄｳｷｮｳ\rﾁﾖﾀﾞ\rﾁﾖﾀﾞ\r",
                                "うきようと\rよだく\rちよだ\r"}) {
        SCOPED_TRACE(pszKeys);
        Open();
        EXPECT_EQ(FinishBy(pszKeys).strOut, CHIYODA);
    }
}

TEST_F(QeadrsPick, NarrowsAListByAPartOfTheCode) {
    for (char const* pszCode : {"1000001",
                                "00001\x7F\x7F\x7F\x7F\x7F"
                                "1000001",
                                "１０００００１"}) {
        SCOPED_TRACE(pszCode);
        Open();
        Type("東京都\r千代田\r");
        Await("東京都千代田区  12 of 12");
        Type(pszCode);
        Await("東京都千代田区  1 of 12");
        AwaitBar("千代田  チヨダ  1000001");
        EXPECT_EQ(FinishBy("\r").strOut, CHIYODA);
    }
}

TEST_F(QeadrsPick, TakesTheLastCharacterOffTheFilter) {
    for (char const* pszKey : {"\x7F", "\x08", DELETE}) {
        SCOPED_TRACE(testing::PrintToString(pszKey));
        std::string const strKey = pszKey;
        Open();
        Type("東京都x");
        Await("都道府県  0 of 47");
        Type(strKey);
        Await("都道府県  1 of 47");
        Type(strKey + strKey + strKey + strKey); // one more than there are characters
        Await("都道府県  47 of 47");
        EXPECT_EQ(FinishBy("東京都県" + strKey + "\r千代田\r千代田\r").strOut, CHIYODA);
    }
}

TEST_F(QeadrsPick, TakesTheWholeFilterOffByCtrlU) {
    Open();
    Type("架空");
    Await("都道府県  0 of 47");
    Await("> 架空");
    Type(CTRL_U);
    Await("都道府県  47 of 47");
    EXPECT_EQ(FinishBy("東京都\r千代田\r千代田\r").strOut, CHIYODA);
}

TEST_F(QeadrsPick, DoesNotTakeWhatNoPlaceFits) {
    Open();
    Type("架空");
    Await("都道府県  0 of 47");
    Type(std::string("\r\n") + RIGHT + DOWN + UP + PAGE_DOWN + PAGE_UP + END + HOME + "\rx");
    Await("> 架空x"); // all of the keys have been obeyed
    Await("都道府県  0 of 47");
    EXPECT_EQ(FinishBy(std::string(CTRL_U) + "東京都\r千代田\r千代田\r").strOut, CHIYODA);
}

TEST_F(QeadrsPick, PutsTheBarOnTheFirstPlaceThatTheFilterLeaves) {
    Open();
    Type(std::string(END) + "山");
    Await("都道府県  6 of 47");
    AwaitBar("山形県");
    Type(DOWN);
    AwaitBar("富山県");
    Type("梨");
    AwaitBar("山梨県");
    Type("\x7F");
    AwaitBar("山形県");
    FinishBy(CTRL_C);
}

TEST_F(QeadrsPick, IgnoresKeysWithoutAMeaning) {
    Open();
    std::string const strKeys = std::string("\0\x01\t\x1A\x1C\x04\x11\x13", 8) + F1;
    EXPECT_EQ(FinishBy(strKeys + "東京" + strKeys + "都\r千代田\r千代田\r").strOut, CHIYODA);
}

TEST_F(QeadrsPick, SurvivesAFilterOfOddCharacters) {
    Open();
    Type("\u0085\u2028\u200B\U0001F600e\u0301か\u3099\uFEFF");
    Await("都道府県  0 of 47");
    EXPECT_EQ(FinishBy(std::string(CTRL_U) + "東京都\r千代田\r千代田\r").strOut, CHIYODA);
}

TEST_F(QeadrsPick, SurvivesAFilterThatIsLongerThanTheScreen) {
    Open({}, {10, 24});
    std::string strLong;
    for (int i = 0; i < 100; ++i) strLong += "京x";
    Type(strLong);
    Await("都道府県  0 of 47");
    EXPECT_EQ(FinishBy(std::string(CTRL_U) + "東京都\r千代田\r千代田\r").strOut, CHIYODA);
}

// From a terminal that is not set to UTF-8, or by a key that sends eight bits.
TEST_F(QeadrsPick, EndsByCtrlCThoughABrokenCharacterWasTyped) {
    for (char const* pszBroken : {"\xFF", "\xB2\xB0", "\xE6\x9D"}) {
        SCOPED_TRACE(testing::PrintToString(pszBroken));
        Open();
        Await("type to filter");
        Type(std::string(pszBroken) + CTRL_C);
        ASSERT_EQ(WaitFor(std::chrono::seconds(3)), 1);
    }
}

TEST_F(QeadrsPick, GoesOnBehindManyBrokenCharacters) {
    Open();
    Await("type to filter");
    EXPECT_EQ(FinishBy(std::string(1000, '\xFF') + CTRL_U + "東京都\r千代田\r千代田\r").strOut, CHIYODA);
}

// --- leaving -------------------------------------------------------------------------------------------------------

TEST_F(QeadrsPick, GoesBackALevelWithTheBarWhereItWas) {
    for (char const* pszBack : {ESCAPE, LEFT}) {
        SCOPED_TRACE(testing::PrintToString(pszBack));
        Open();
        Type(Times(12, DOWN) + "\r");
        AwaitBar("千代田区");
        Type(std::string(DOWN) + "\r");
        Await("東京都中央区  4 of 4");
        Type(pszBack);
        Await("東京都  12 of 12");
        AwaitBar("中央区");
        Type(pszBack);
        Await("都道府県  47 of 47");
        AwaitBar("東京都");
        Type("\r"); // a list that is entered again begins anew
        Await("東京都  12 of 12");
        AwaitBar("千代田区");
        EXPECT_EQ(FinishBy(Times(2, DOWN) + "\r" + DOWN + "\r").strOut,
                  "postal code  old code  prefecture  city  town\n"
                  "1050011      105       東京都      港区  芝公園\n");
    }
}

TEST_F(QeadrsPick, GoesBackToAPlaceThatWasPickedUnderAFilterWithoutThatFilter) {
    Open();
    Type("京都\x7F\x7F"
         "京都府\r");
    AwaitBar("京都市上京区");
    Type(ESCAPE);
    Await("都道府県  47 of 47");
    AwaitBar("京都府");
    FinishBy(CTRL_C);
}

TEST_F(QeadrsPick, EndsByEscapeAtTheTopWithoutAnAnswer) {
    for (char const* pszBack : {ESCAPE, LEFT}) {
        SCOPED_TRACE(testing::PrintToString(pszBack));
        Open();
        CResult const result = FinishBy(pszBack);
        EXPECT_EQ(result.nStatus, 1);
        EXPECT_EQ(result.strOut, "");
        EXPECT_EQ(result.strErr, NOTHING_PICKED);
    }
}

TEST_F(QeadrsPick, EndsByCtrlCAtEveryLevelWithoutAnAnswer) {
    for (char const* pszKeys : {"\x03", "東京\x03", "東京都\r\x03", "東京都\r千代田\r千\x03"}) {
        SCOPED_TRACE(pszKeys);
        Open();
        CResult const result = FinishBy(pszKeys);
        EXPECT_EQ(result.nStatus, 1);
        EXPECT_EQ(result.strOut, "");
        EXPECT_EQ(result.strErr, NOTHING_PICKED);
    }
}

TEST_F(QeadrsPick, PutsTheScreenBackBeforeItsRemark) {
    m_bRemarkOnTerminal = true;
    for (char const* pszKey : {ESCAPE, CTRL_C}) {
        SCOPED_TRACE(testing::PrintToString(pszKey));
        Open();
        EXPECT_EQ(FinishBy(pszKey).strOut, NOTHING_PICKED); // behind the end of the screen
    }
}

TEST_F(QeadrsPick, KeepsQuietAboutNothingOnDemand) {
    Open({"-q"});
    CResult const result = FinishBy(ESCAPE);
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, "");
}

// --- moving --------------------------------------------------------------------------------------------------------

TEST_F(QeadrsPick, MovesTheBarAndStopsAtTheEnds) {
    OpenIn(WriteHundredTowns());
    Type("\r\r");
    Await("東京都港区  100 of 100");
    AwaitBar("t00");
    // A page has 21 lines: the screen's 24 without title, help and filter.
    std::pair<std::string, char const*> const vMove[] = {
        {DOWN, "t01"},
        {UP + std::string(UP), "t00"}, // not beyond the first one
        {Times(2, UP) + DOWN, "t01"},
        {Times(29, DOWN), "t30"},
        {UP, "t29"},
        {END, "t99"},
        {DOWN + std::string(UP), "t98"}, // not beyond the last one
        {Times(110, DOWN), "t99"},
        {PAGE_UP, "t78"},
        {HOME, "t00"},
        {PAGE_DOWN, "t21"},
        {Times(3, PAGE_DOWN), "t84"},
        {PAGE_DOWN, "t99"},
        {PAGE_DOWN + std::string(UP), "t98"},
        {Times(4, PAGE_UP), "t14"},
        {PAGE_UP, "t00"},
        {PAGE_UP + std::string(DOWN), "t01"},
        {HOME + std::string(HOME) + DOWN, "t01"},
    };
    for (auto const& [strKeys, pszTown] : vMove) {
        SCOPED_TRACE(testing::PrintToString(strKeys));
        Type(strKeys);
        AwaitBar(pszTown);
    }
    EXPECT_THAT(FinishBy("\r").strOut, EndsWith("  港区  t01\n"));
}

TEST_F(QeadrsPick, ScrollsALongListSoThatTheBarIsSeen) {
    OpenIn(WriteHundredTowns(), {}, {7, 40}); // four places at once
    auto const Shown = [](int nFirst) {
        std::string strLines;
        for (int i = nFirst; i < nFirst + 4; ++i) strLines += Town(i) + "  " + std::to_string(1000000 + i) + '\n';
        return "港区  100 of 100\n" + strLines + "Enter: take";
    };
    Type("\r\r");
    Await(Shown(0));
    Type(Times(3, DOWN));
    AwaitBar("t03");
    Await(Shown(0));
    Type(DOWN);
    AwaitBar("t04");
    Await(Shown(1));
    Type(END);
    AwaitBar("t99");
    Await(Shown(96));
    Type(Times(4, UP));
    AwaitBar("t95");
    Await(Shown(95));
    Type(PAGE_UP);
    AwaitBar("t91");
    Await(Shown(91));
    Type(HOME);
    AwaitBar("t00");
    Await(Shown(0));
    FinishBy(CTRL_C);
}

// --- terminals -----------------------------------------------------------------------------------------------------

TEST_F(QeadrsPick, WorksOnScreensOfEverySize) {
    for (CSize const size : {CSize{3, 5}, CSize{1, 1}, CSize{2, 2}, CSize{4, 3}, CSize{1, 80}, CSize{24, 1},
                             CSize{0, 0}, CSize{300, 300}}) {
        SCOPED_TRACE(std::to_string(size.nRows) + "x" + std::to_string(size.nColumns));
        Open({}, size);
        Type(std::string(DOWN) + PAGE_DOWN + END + UP + PAGE_UP + HOME);
        EXPECT_EQ(FinishBy("東京都\r千代田\r千代田\r").strOut, CHIYODA);
    }
}

TEST_F(QeadrsPick, CutsWhatANarrowScreenCannotShow) {
    Open({}, {5, 13});
    Await("都道府県  47\n北海道  ホッ\n青森県  アオ\nEnter: take\n>");
    Type("東京都\r千代田\r千代田");
    Await("東京都千代田\n千代田  チヨ\n\nEnter: take\n> 千代田");
    EXPECT_EQ(FinishBy("\r").strOut, CHIYODA);
}

TEST_F(QeadrsPick, FollowsAChangeOfSize) {
    Open({}, {10, 40});
    Await("Enter: take");
    EXPECT_THAT(m_screen.Text(), Not(HasSubstr("沖縄県")));
    Resize({60, 100});
    Await("沖縄県  オキナワケン");
    Type(std::string(END) + UP);
    AwaitBar("鹿児島県");
    for (CSize const size : {CSize{1, 1}, CSize{3, 5}, CSize{2, 200}, CSize{200, 2}, CSize{12, 60}}) Resize(size);
    AwaitBar("鹿児島県  カゴシマケン"); // among the nine places that there is room for
    Await("Enter: take   Esc: back   Ctrl-C: end");
    EXPECT_EQ(FinishBy("東京都\r千代田\r千代田\r").strOut, CHIYODA);
}

TEST_F(QeadrsPick, ShowsJapaneseWhateverTheLocale) {
    for (char const* pszLocale : {"", "C", "POSIX", "C.UTF-8", "en_US.ISO-8859-1", "ja_JP.EUC-JP", "nonsense"}) {
        SCOPED_TRACE(pszLocale);
        m_environment["LC_ALL"] = pszLocale;
        Open();
        Await("東京都  トウキョウト\n");
        EXPECT_EQ(FinishBy("東京都\r千代田\r千代田\r").strOut, CHIYODA);
    }
}

// Some of them have no other screen to put back, but show the answer all the same.
TEST_F(QeadrsPick, WorksOnOtherTerminals) {
    for (char const* pszTerminal : {"vt100", "linux", "screen", "ansi"}) {
        SCOPED_TRACE(pszTerminal);
        m_environment["TERM"] = pszTerminal;
        BeginIn(Sample(), {});
        Await("都道府県  47 of 47");
        Type("東京都\r千代田\r千代田\r");
        EXPECT_THAT(ReadToEnd(), EndsWith(CHIYODA));
    }
}

TEST_F(QeadrsPick, PutsTheModesOfTheTerminalBack) {
    for (char const* pszKeys : {ESCAPE, CTRL_C, "東京都\r利島\r"}) {
        SCOPED_TRACE(testing::PrintToString(pszKeys));
        Open();
        Await("type to filter");
        termios modes = {};
        ASSERT_EQ(tcgetattr(m_terminal.hSlave, &modes), 0);
        EXPECT_EQ(modes.c_lflag & (ICANON | ECHO | ISIG), 0u);
        Type(pszKeys);
        WaitFor(PATIENCE);
        ASSERT_EQ(tcgetattr(m_terminal.hSlave, &modes), 0);
        termios const before = ShellModes();
        EXPECT_EQ(std::tie(modes.c_iflag, modes.c_oflag, modes.c_lflag, modes.c_cflag),
                  std::tie(before.c_iflag, before.c_oflag, before.c_lflag, before.c_cflag));
        EXPECT_EQ(std::memcmp(modes.c_cc, before.c_cc, sizeof modes.c_cc), 0);
    }
}

TEST_F(QeadrsPick, PutsTheScreenBackWhenItIsTerminated) {
    Open();
    Await("type to filter");
    kill(m_nProcess, SIGTERM);
    CResult const result = Finish();
    EXPECT_NE(result.nStatus, 0);
    EXPECT_EQ(result.strOut, "");
}

TEST_F(QeadrsPick, EndsWhenTheTerminalHangsUp) {
    Open();
    Await("type to filter");
    m_terminal = CTerminal();
    EXPECT_EQ(WaitFor(PATIENCE), 1000 + SIGHUP);
}

// As under `nohup`, or when the terminal is that of another session.
TEST_F(QeadrsPick, EndsWhenTheTerminalHangsUpWithoutASignal) {
    m_bOwnTerminal = false;
    Open();
    Await("type to filter");
    m_terminal = CTerminal();
    EXPECT_EQ(WaitFor(PATIENCE), 1);
    EXPECT_EQ(ReadFile(Path("stderr")), NOTHING_PICKED);
}

// --- no picking ----------------------------------------------------------------------------------------------------

TEST_F(QeadrsPick, ListsThePrefecturesWhereTheTerminalCannotDoMore) {
    for (char const* pszTerminal : {"", "dumb", "unknown", "no-such-terminal", "(none)"}) {
        SCOPED_TRACE(pszTerminal);
        m_environment["TERM"] = pszTerminal;
        if (pszTerminal == std::string("(none)")) m_environment.erase("TERM");
        BeginIn(Sample(), {});
        EXPECT_THAT(ReadToEnd(), AllOf(StartsWith("number  name\n0       北海道\n"), EndsWith("\n46      沖縄県\n")));
        EXPECT_EQ(m_nStatus, 0);
        EXPECT_EQ(ReadFile(Path("stderr")), "");
    }
}

TEST_F(QeadrsPick, IsNotOfferedWhereAListIsAskedFor) {
    std::pair<std::vector<std::string>, char const*> const vCase[] = {
        {{"--json"}, R"({"number":"0","name":"北海道","postal_code":null,)"},
        {{"--ui", "広島県", "府中市"}, "postal code  old code  line\n7260003      726       元町\n"},
        {{"広島県"}, "number  name\n0       広島市中区\n"},
    };
    for (auto const& [vArgument, pszStart] : vCase) {
        BeginIn(Sample(), vArgument);
        EXPECT_THAT(ReadToEnd(), StartsWith(pszStart));
        EXPECT_EQ(m_nStatus, 0);
        EXPECT_THAT(m_strPrinted, Not(HasSubstr("\x1B")));
    }
}

TEST_F(QeadrsPick, LeavesTheScreenAloneWhenThereIsNoDictionary) {
    BeginIn(Path("missing.dic"), {});
    EXPECT_EQ(ReadToEnd(), "");
    EXPECT_EQ(m_nStatus, 3);
    EXPECT_EQ(m_strPrinted, "");
}

// --- odd dictionaries ----------------------------------------------------------------------------------------------

TEST_F(QeadrsPick, CanOnlyBeLeftInAnEmptyDictionary) {
    OpenIn(WriteDictionary({}));
    Type(std::string("\r\r") + RIGHT + END + DOWN + "x");
    Await("都道府県  0 of 0");
    Await("> x");
    CResult const result = FinishBy(ESCAPE);
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strErr, NOTHING_PICKED);
}

// For the lines as for the addresses: there is no city to take them of.
TEST_F(QeadrsPick, EndsAtAPrefectureWithoutCities) {
    std::string const strDic = WriteDictionary({{"1000000", {{0, "東京都"}}}});
    for (std::vector<std::string> const& vArgument : std::vector<std::vector<std::string>>{{}, {"--ui"}}) {
        SCOPED_TRACE(testing::PrintToString(vArgument));
        OpenIn(strDic, vArgument);
        CResult const result = FinishBy("\r");
        EXPECT_EQ(result.nStatus, 1);
        EXPECT_EQ(result.strOut, "");
        EXPECT_THAT(result.strErr, StartsWith("qeadrs: 東京都: not found"));
    }
}

TEST_F(QeadrsPick, MarksSupersededPlacesAndHasNoAddressOfTodayThere) {
    OpenIn(WriteDictionary({{"1000000", {{0, "東京都"}, {1, "港区"}, {2, "旧町"}}, 1},
                            {"1000001", {{0, "東京都"}, {1, "港区"}, {2, "新町"}}}}));
    Type("\r\r");
    AwaitBar("旧町  1000000  (superseded)");
    CResult const result = FinishBy("\r");
    EXPECT_EQ(result.nStatus, 1);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: 東京都港区旧町: not found; no address of today there\n");
}

TEST_F(QeadrsPick, ShowsNoControlCharactersOfTheDictionary) {
    OpenIn(WriteDictionary({{"1000000", {{0, "東京都"}, {1, "a\x1B[31mb\x07"}, {2, "c\x1B]d"}}}}));
    Type("\r");
    AwaitBar("a [31mb");
    Type("\r");
    Await("東京都a [31mb   1 of 1");
    AwaitBar("c ]d");
    FinishBy(CTRL_C);
    EXPECT_THAT(m_strPrinted, AllOf(Not(HasSubstr("\x1B[31m")), Not(HasSubstr("\x1B]"))));
}

} // namespace
