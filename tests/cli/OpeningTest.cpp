// Which dictionary is opened, which is refused, and what a user is told then.
#include "tests/cli/CliTest.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstring>
#include <utility>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace fs = std::filesystem;

namespace {

char const CHIYODA[] = "1000001\t100\t東京都\t千代田区\t千代田\t\t\t\t\n";
char const WAY_OUT[] =
    "Way out: run ./quickstart.sh in the source folder, or compile a dictionary with `qeadrs-dic build` and name it\n"
    "by --dic FILE, or its folder by DicDir in section [General] of ~/.config/qe/qe.ini.\n";

class QeadrsOpening : public CliTest {
  protected:
    std::string Folder() { return fs::path(Sample()).parent_path().string(); }

    // The sample in a folder of the test's own.
    std::string CopyTo(std::string const& strFolder) {
        fs::create_directories(Path(strFolder));
        fs::copy_file(Sample(), Path(strFolder + "/qeadrs.dic"));
        return Path(strFolder);
    }

    // A copy of the sample with one word of its header changed.
    std::string WithWord(size_t nOffset, uint32_t nWord) {
        std::string strBytes = ReadFile(Sample());
        std::memcpy(&strBytes[nOffset], &nWord, sizeof nWord);
        return WriteFile("changed.dic", strBytes);
    }

    // The command must refuse the file, with this reason behind its name, and tell the way out.
    void ExpectRefused(std::string const& strFile, std::string const& strReason) {
        CResult const result = Run(WithDic(strFile, {"1000001"}));
        EXPECT_EQ(result.nStatus, 3);
        EXPECT_EQ(result.strOut, "");
        EXPECT_EQ(result.strErr, "qeadrs: no dictionary: " + strFile + strReason + "\n" + WAY_OUT);
    }
};

// --- through the profile -------------------------------------------------------------------------------------------

TEST_F(QeadrsOpening, FollowsTheProfile) {
    UseProfile(Folder());
    EXPECT_EQ(Run({"zip", "1000001"}).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, FollowsTheProfileOfTheUser) {
    WriteFile("home/.config/qe/qe.ini", "[General]\nDicDir=" + Folder() + "\n");
    EXPECT_EQ(Run({"zip", "1000001"}).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, FollowsARelativeFolderInTheProfile) {
    CopyTo("some/folder");
    UseProfile("some/folder");
    EXPECT_EQ(Run({"zip", "1000001"}).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, FollowsAFolderWithBlanksInTheProfile) {
    UseProfile(CopyTo("郵便 番号 辞書"));
    EXPECT_EQ(Run({"zip", "1000001"}).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, TellsWhereItLookedForAProfile) {
    CResult const result = Run({"zip", "1000001"});
    EXPECT_EQ(result.nStatus, 3);
    EXPECT_EQ(result.strOut, "");
    EXPECT_EQ(result.strErr, "qeadrs: no dictionary: /qeadrs.dic: No such file or directory.\n"
                             "There is no profile: looked for QE_PROFILE (not set), " +
                                 Path("home/.config/qe/qe.ini") + " and /etc/qe.ini.\n" + WAY_OUT);
}

TEST_F(QeadrsOpening, TellsThatTheNamedProfileIsMissing) {
    m_environment["QE_PROFILE"] = Path("missing.ini");
    m_environment["XDG_CONFIG_HOME"] = Path("xdg");
    EXPECT_THAT(Run({"zip", "1000001"}).strErr,
                HasSubstr("\nThere is no profile: looked for QE_PROFILE (" + Path("missing.ini") + "), " +
                          Path("xdg/qe/qe.ini") + " and /etc/qe.ini.\n"));
}

TEST_F(QeadrsOpening, TellsThatThereIsNoHomeToLookIn) {
    m_environment.erase("HOME");
    EXPECT_THAT(Run({"zip", "1000001"}).strErr, HasSubstr("looked for QE_PROFILE (not set), HOME (not set) and "));
}

TEST_F(QeadrsOpening, TellsWhichProfileNamesAFolderWithoutADictionary) {
    UseProfile(Path("nowhere"));
    CResult const result = Run({"zip", "1000001"});
    EXPECT_EQ(result.nStatus, 3);
    EXPECT_EQ(result.strErr, "qeadrs: no dictionary: " + Path("nowhere/qeadrs.dic") +
                                 ": No such file or directory.\n"
                                 "The folder is that of DicDir in section [General] of the profile " +
                                 Path("profile.ini") + ".\n" + WAY_OUT);
}

TEST_F(QeadrsOpening, MissesTheFolderInAProfileOfOthers) {
    m_environment["QE_PROFILE"] = WriteFile("profile.ini", "[Other]\nDicDir=" + Folder() + "\n");
    EXPECT_THAT(Run({"zip", "1000001"}).strErr, StartsWith("qeadrs: no dictionary: /qeadrs.dic: No such file"));
}

// A folder of this very length below the test's own.
std::string LongFolder(std::string strFolder, size_t nLength) {
    while (nLength - strFolder.size() > 102) strFolder += '/' + std::string(99, 'x');
    return strFolder + '/' + std::string(nLength - strFolder.size() - 1, 'y');
}

TEST_F(QeadrsOpening, FollowsTheLongestFolderThatTheLibraryTakes) {
    std::string const strFolder = LongFolder(Path(""), 248);
    ASSERT_EQ(strFolder.size(), 248u);
    fs::create_directories(strFolder);
    fs::copy_file(Sample(), strFolder + "/qeadrs.dic");
    UseProfile(strFolder);
    EXPECT_EQ(Run({"zip", "1000001"}).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, ExplainsThatALongerFolderIsTooLong) {
    std::string const strFolder = LongFolder(Path(""), 249);
    fs::create_directories(strFolder);
    fs::copy_file(Sample(), strFolder + "/qeadrs.dic");
    UseProfile(strFolder);
    CResult const result = Run({"zip", "1000001"});
    EXPECT_EQ(result.nStatus, 3);
    EXPECT_EQ(result.strErr,
              "qeadrs: no dictionary: the folder that DicDir names has 249 bytes; the library takes up to 248.\n"
              "The folder is that of DicDir in section [General] of the profile " +
                  Path("profile.ini") + ".\nWay out: use a shorter path (a symbolic link will do), or --dic FILE.\n");
}

TEST_F(QeadrsOpening, CountsAFolderMuchTooLongAsAWhole) {
    UseProfile('/' + std::string(4999, 'x'));
    EXPECT_THAT(Run({"zip", "1000001"}).strErr, HasSubstr(" has 5000 bytes; "));
}

// The products copied to another place, without the library that reads the profile.
TEST_F(QeadrsOpening, TellsThatTheProfileLibraryIsMissing) {
    for (char const* pszFolder : {"bin", "lib"}) fs::create_directories(Path(pszFolder));
    fs::copy_file(QEADRS_FILE, Path("bin/qeadrs"));
    fs::copy_file(QEADRS_LIBRARY, Path("lib/") + QEADRS_SONAME);
    fs::copy_file(QETEXT_LIBRARY, Path("lib/") + QETEXT_SONAME);
    fs::copy_file(QEWIN_LIBRARY, Path("lib/libqewin.so"));
    CHandle const hError = open(Path("stderr").c_str(), O_WRONLY | O_CREAT, 0600);
    EXPECT_EQ(Wait(Start({Path("bin/qeadrs"), "zip", "1"}, m_environment, "/", hError, hError, hError)), 4);
    EXPECT_EQ(ReadFile(Path("stderr")), "qeadrs: libqeprof.so cannot be loaded; it belongs into the folder of "
                                        "libqewin.so. Install again.\n");
}

// --- through --dic -------------------------------------------------------------------------------------------------

TEST_F(QeadrsOpening, TakesAFileOfAnyName) {
    fs::copy_file(Sample(), Path("edition of May; 2026.bin"));
    EXPECT_EQ(Run(WithDic(Path("edition of May; 2026.bin"), {"1000001"})).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, TakesAFolderThatHoldsADictionary) {
    EXPECT_EQ(Run(WithDic(Folder(), {"1000001"})).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, TakesARelativePath) {
    CopyTo("folder");
    EXPECT_EQ(Run(WithDic("folder/qeadrs.dic", {"1000001"})).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, TakesASymbolicLink) {
    fs::create_symlink(Sample(), Path("link"));
    EXPECT_EQ(Run(WithDic("link", {"1000001"})).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, TakesAPathThatIsTooLongForTheLibrary) {
    std::string const strFolder = LongFolder(Path(""), 600);
    fs::create_directories(strFolder);
    fs::copy_file(Sample(), strFolder + "/qeadrs.dic");
    EXPECT_EQ(Run(WithDic(strFolder, {"1000001"})).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, PrefersTheOptionToTheProfile) {
    UseProfile(Path("nowhere"));
    EXPECT_EQ(Zip({"1000001"}).strOut, CHIYODA);
}

TEST_F(QeadrsOpening, NeedsNoUsableTmpdir) {
    for (char const* pszTmp : {"", "relative", "/has ;semicolon", "/has\nline"}) {
        SCOPED_TRACE(pszTmp);
        m_environment["TMPDIR"] = pszTmp;
        EXPECT_EQ(Zip({"1000001"}).strOut, CHIYODA);
    }
}

TEST_F(QeadrsOpening, ReportsATmpdirThatCannotBeWritten) {
    m_environment["TMPDIR"] = Path("missing");
    CResult const result = Zip({"1000001"});
    EXPECT_EQ(result.nStatus, 4);
    EXPECT_THAT(result.strErr, EndsWith(": a temporary folder cannot be made: No such file or directory\n"));
}

// --- refused -------------------------------------------------------------------------------------------------------

TEST_F(QeadrsOpening, RefusesAFileThatIsNotThere) {
    ExpectRefused(Path("missing.dic"), ": No such file or directory.");
}

TEST_F(QeadrsOpening, RefusesAnEmptyName) {
    ExpectRefused("", ": No such file or directory.");
}

TEST_F(QeadrsOpening, RefusesAFolderWithoutADictionary) {
    CResult const result = Run(WithDic(Path("home"), {"1000001"}));
    EXPECT_EQ(result.nStatus, 3);
    EXPECT_THAT(result.strErr, StartsWith("qeadrs: no dictionary: " + Path("home/qeadrs.dic") + ": No such file"));
}

TEST_F(QeadrsOpening, RefusesANamedPipeWithoutWaitingForIt) {
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    ExpectRefused(Path("pipe"), " is not a file.");
}

TEST_F(QeadrsOpening, RefusesAFileOfAnotherKind) {
    ExpectRefused(WriteFile("text", std::string(1000, 'x')), " is not a dictionary of ours.");
}

TEST_F(QeadrsOpening, RefusesAnEmptyFile) {
    ExpectRefused(WriteFile("empty", ""), " is not a dictionary of ours.");
}

TEST_F(QeadrsOpening, RefusesTheFileOfTheProfileInTheSameWay) {
    WriteFile("folder/qeadrs.dic", "text");
    UseProfile(Path("folder"));
    CResult const result = Run({"zip", "1000001"});
    EXPECT_EQ(result.nStatus, 3);
    EXPECT_THAT(result.strErr, HasSubstr("folder/qeadrs.dic is not a dictionary of ours.\n"));
}

TEST_F(QeadrsOpening, RefusesADictionaryThatIsCutOff) {
    std::string const strWhole = ReadFile(Sample());
    for (size_t nSize : {size_t{108}, size_t{109}, size_t{4096}, strWhole.size() / 2, strWhole.size() - 1}) {
        SCOPED_TRACE(nSize);
        ExpectRefused(WriteFile("cut.dic", strWhole.substr(0, nSize)),
                      " is damaged or cut off: " + std::to_string(nSize) + " bytes instead of " +
                          std::to_string(strWhole.size()) + ".");
    }
}

TEST_F(QeadrsOpening, RefusesADictionaryThatIsCutInItsHeader) {
    std::string const strWhole = ReadFile(Sample());
    for (size_t nSize : {8u, 20u, 24u, 107u}) {
        SCOPED_TRACE(nSize);
        ExpectRefused(WriteFile("cut.dic", strWhole.substr(0, nSize)),
                      " is damaged or cut off: " + std::to_string(nSize) + " bytes.");
    }
}

TEST_F(QeadrsOpening, RefusesADictionaryWithSomethingBehindIt) {
    std::string const strWhole = ReadFile(Sample());
    ExpectRefused(WriteFile("longer.dic", strWhole + "x"),
                  " is damaged or cut off: " + std::to_string(strWhole.size() + 1) + " bytes instead of " +
                      std::to_string(strWhole.size()) + ".");
}

TEST_F(QeadrsOpening, RefusesANewerFormat) {
    ExpectRefused(WithWord(8, 2), " has format 2, newer than this program's 1. Update the program.");
}

TEST_F(QeadrsOpening, RefusesATableThatDoesNotLieInTheFile) {
    for (size_t nOffset : {0x2Cu, 0x30u, 0x34u, 0x38u, 0x44u}) {
        SCOPED_TRACE(nOffset);
        ExpectRefused(WithWord(nOffset, 0xFFFFFFF0), " is damaged: the table that offset " + std::to_string(nOffset) +
                                                         " names does not lie in the file.");
    }
}

TEST_F(QeadrsOpening, RefusesATableThatEndsBehindTheFile) {
    constexpr std::pair<size_t, size_t> TABLES[] = {
        {0x20, 0x2C}, {0x24, 0x30}, {0x28, 0x34}, {0x50, 0x38}, {0x68, 0x44}};
    for (auto const& [nCountAt, nOffsetAt] : TABLES) {
        SCOPED_TRACE(nCountAt);
        ExpectRefused(WithWord(nCountAt, 0xFFFFFFFF), " is damaged: the table that offset " +
                                                          std::to_string(nOffsetAt) +
                                                          " names does not lie in the file.");
    }
}

TEST_F(QeadrsOpening, RefusesATableAtAnOddPlace) {
    ExpectRefused(WithWord(0x2C, 111), " is damaged: the table that offset 44 names does not lie in the file.");
}

TEST_F(QeadrsOpening, RefusesAStringAreaWithoutAnEnd) {
    ExpectRefused(WithWord(0x28, 1), " is damaged: its last text has no end.");
}

} // namespace
