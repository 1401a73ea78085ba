// The profile: which file is read, what counts as a value, and what is written where.
#include "platform/QeProfile.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// The value as a caller with plenty of room gets it. The default is one that no file here contains, so that it cannot
// be mistaken for a value.
std::string Get(char const* pszSection = "General", char const* pszKey = "DicDir",
                char const* pszDefault = "(none)") {
    static char szBuffer[20000];
    std::memset(szBuffer, '#', sizeof szBuffer);
    int n = QeGetProfileString(pszSection, pszKey, pszDefault, szBuffer, sizeof szBuffer);
    EXPECT_EQ(size_t(n), std::strlen(szBuffer));
    return szBuffer;
}

// A folder of its own for each test, and an environment that leads into it.
class Profile : public testing::Test {
  protected:
    void SetUp() override {
        std::string strName = (fs::temp_directory_path() / "qe-profile-XXXXXX").string();
        ASSERT_NE(mkdtemp(strName.data()), nullptr);
        m_pathFolder = strName;
        for (char const* psz : {"QE_PROFILE", "XDG_CONFIG_HOME", "HOME"}) {
            char const* pszValue = getenv(psz);
            m_mapBefore[psz] = pszValue ? std::optional<std::string>(pszValue) : std::nullopt;
            unsetenv(psz);
        }
    }
    void TearDown() override {
        for (auto const& [strName, strValue] : m_mapBefore) {
            if (strValue) {
                setenv(strName.c_str(), strValue->c_str(), 1);
            } else {
                unsetenv(strName.c_str());
            }
        }
        if (!m_pathFolder.empty()) fs::remove_all(m_pathFolder);
    }

    std::string Path(std::string const& strName) const { return (m_pathFolder / strName).string(); }

    void Write(std::string const& strName, std::string const& strText) const {
        fs::create_directories((m_pathFolder / strName).parent_path());
        std::ofstream file(m_pathFolder / strName, std::ios::binary);
        file << strText;
        ASSERT_TRUE(file.flush());
    }

    // Makes this text the profile.
    void Use(std::string const& strText) const {
        Write("profile.ini", strText);
        setenv("QE_PROFILE", Path("profile.ini").c_str(), 1);
    }

  private:
    fs::path m_pathFolder;
    std::map<std::string, std::optional<std::string>> m_mapBefore;
};

std::string General(std::string const& strLines) {
    return "[General]\n" + strLines;
}

// --- which file ---------------------------------------------------------------------------------------------------

TEST_F(Profile, TheFileNamedByTheEnvironmentComesFirst) {
    Write("xdg/qe/qe.ini", General("DicDir=/xdg\n"));
    Write("home/.config/qe/qe.ini", General("DicDir=/home\n"));
    setenv("XDG_CONFIG_HOME", Path("xdg").c_str(), 1);
    setenv("HOME", Path("home").c_str(), 1);
    Use(General("DicDir=/named\n"));
    EXPECT_EQ(Get(), "/named");
}

TEST_F(Profile, TheConfigurationFolderComesBeforeTheHomeFolder) {
    Write("xdg/qe/qe.ini", General("DicDir=/xdg\n"));
    Write("home/.config/qe/qe.ini", General("DicDir=/home\n"));
    setenv("XDG_CONFIG_HOME", Path("xdg").c_str(), 1);
    setenv("HOME", Path("home").c_str(), 1);
    EXPECT_EQ(Get(), "/xdg");
}

TEST_F(Profile, WithoutAConfigurationFolderTheHomeFolderIsAsked) {
    Write("home/.config/qe/qe.ini", General("DicDir=/home\n"));
    setenv("HOME", Path("home").c_str(), 1);
    EXPECT_EQ(Get(), "/home");
}

TEST_F(Profile, AnEmptyVariableCountsAsUnset) {
    Write("home/.config/qe/qe.ini", General("DicDir=/home\n"));
    setenv("HOME", Path("home").c_str(), 1);
    setenv("QE_PROFILE", "", 1);
    setenv("XDG_CONFIG_HOME", "", 1);
    EXPECT_EQ(Get(), "/home");
}

TEST_F(Profile, ASetConfigurationFolderReplacesTheOneInTheHomeFolder) {
    Write("home/.config/qe/qe.ini", General("QeTestOnlyInHome=/home\n"));
    setenv("HOME", Path("home").c_str(), 1);
    setenv("XDG_CONFIG_HOME", Path("no-such-folder").c_str(), 1);
    EXPECT_EQ(Get("General", "QeTestOnlyInHome"), "(none)");
}

TEST_F(Profile, ANamedFileThatDoesNotExistIsPassedOver) {
    Write("xdg/qe/qe.ini", General("DicDir=/xdg\n"));
    setenv("XDG_CONFIG_HOME", Path("xdg").c_str(), 1);
    setenv("QE_PROFILE", Path("no-such-file.ini").c_str(), 1);
    EXPECT_EQ(Get(), "/xdg");
}

TEST_F(Profile, OnlyTheFirstFileThatExistsIsRead) {
    Write("xdg/qe/qe.ini", General("DicDir=/xdg\n"));
    setenv("XDG_CONFIG_HOME", Path("xdg").c_str(), 1);
    Use(General("Other=1\n"));
    EXPECT_EQ(Get(), "(none)");
    Use("");
    EXPECT_EQ(Get(), "(none)");
}

TEST_F(Profile, WithoutAnyFileTheDefaultIsGiven) {
    // A key that /etc/qe.ini will not have, should this machine have one.
    EXPECT_EQ(Get("General", "QeTestNoSuchKey"), "(none)");
    setenv("HOME", Path("").c_str(), 1);
    EXPECT_EQ(Get("General", "QeTestNoSuchKey"), "(none)");
}

TEST_F(Profile, ADirectoryInPlaceOfTheFileGivesTheDefault) {
    Write("xdg/qe/qe.ini", General("DicDir=/xdg\n"));
    setenv("XDG_CONFIG_HOME", Path("xdg").c_str(), 1);
    setenv("QE_PROFILE", Path("").c_str(), 1);
    EXPECT_EQ(Get(), "(none)") << "it exists, so it is the one";
}

TEST_F(Profile, PipesAndDevicesGiveTheDefaultAtOnce) {
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    for (std::string const& str : {Path("pipe"), std::string("/dev/zero"), std::string("/dev/null")}) {
        setenv("QE_PROFILE", str.c_str(), 1);
        EXPECT_EQ(Get(), "(none)") << str;
    }
}

TEST_F(Profile, AnUnreadableFileGivesTheDefault) {
    Use(General("DicDir=/secret\n"));
    ASSERT_EQ(chmod(Path("").c_str(), 0755), 0);
    ASSERT_EQ(chmod(Path("profile.ini").c_str(), 0), 0);
    uid_t uid = geteuid();
    ASSERT_EQ(seteuid(uid == 0 ? 65534 : uid), 0) << "root may read anything";
    std::string strFound = Get();
    ASSERT_EQ(seteuid(uid), 0);
    EXPECT_EQ(strFound, "(none)");
}

TEST_F(Profile, AnOverlongPathGivesTheDefault) {
    setenv("QE_PROFILE", std::string(100000, 'x').c_str(), 1);
    setenv("XDG_CONFIG_HOME", std::string(100000, '/').c_str(), 1);
    EXPECT_EQ(Get("General", "QeTestNoSuchKey"), "(none)");
}

TEST_F(Profile, AnOverlongPathIsNotCutToOneThatExists) {
    Use(General("QeTestOnlyHere=1\n"));
    std::string strPath = Path("profile.ini");
    strPath.insert(strPath.rfind('/'), PATH_MAX - 1 - strPath.size(), '/');
    setenv("QE_PROFILE", strPath.c_str(), 1);
    EXPECT_EQ(Get("General", "QeTestOnlyHere"), "1") << "the longest path there is";
    setenv("QE_PROFILE", (strPath + "x").c_str(), 1);
    EXPECT_EQ(Get("General", "QeTestOnlyHere"), "(none)");
}

// --- what counts as a value ---------------------------------------------------------------------------------------

TEST_F(Profile, SectionAndKeyAreFoundInAnyCase) {
    Use("[gENERAL]\ndicDIR=/data\n");
    EXPECT_EQ(Get("General", "DicDir"), "/data");
    EXPECT_EQ(Get("GENERAL", "DICDIR"), "/data");
}

TEST_F(Profile, OnlyAsciiLettersHaveTwoCases) {
    Use("[設定]\nキー=値\n[[x]\n{=brace\n");
    EXPECT_EQ(Get("設定", "キー"), "値");
    EXPECT_EQ(Get("[x", "["), "(none)");
    EXPECT_EQ(Get("[x", "{"), "brace");
}

TEST_F(Profile, AMissingSectionGivesTheDefault) {
    Use("[Other]\nDicDir=/other\n");
    EXPECT_EQ(Get(), "(none)");
}

TEST_F(Profile, AMissingKeyGivesTheDefault) {
    Use(General("DicDirs=/a\nDicDi=/b\nDicDir\n"));
    EXPECT_EQ(Get(), "(none)");
}

TEST_F(Profile, AKeyOfAnotherSectionIsNotTaken) {
    Use("DicDir=/before\n[General]\nx=1\n[Generals]\nDicDir=/after\n[Gener]\nDicDir=/short\n");
    EXPECT_EQ(Get(), "(none)");
    EXPECT_EQ(Get(""), "/before");
}

TEST_F(Profile, ANullDefaultCountsAsTheEmptyText) {
    Use(General("x=1\n"));
    EXPECT_EQ(Get("General", "DicDir", nullptr), "");
    EXPECT_EQ(Get("General", "x", nullptr), "1");
}

TEST_F(Profile, AnEmptyValueIsAValue) {
    Use(General("DicDir=\n"));
    EXPECT_EQ(Get(), "");
    Use(General("DicDir=   \n"));
    EXPECT_EQ(Get(), "");
}

TEST_F(Profile, OfEqualKeysTheFirstCounts) {
    Use(General("DicDir=/one\nDICDIR=/two\n[general]\nDicDir=/three\n"));
    EXPECT_EQ(Get(), "/one");
    Use(General("DicDir=\nDicDir=/two\n"));
    EXPECT_EQ(Get(), "") << "also when it is empty";
}

TEST_F(Profile, ASectionMayComeInTwoParts) {
    Use("[General]\nx=1\n[Other]\nDicDir=/other\n[General]\nDicDir=/data\n");
    EXPECT_EQ(Get(), "/data");
}

TEST_F(Profile, CommentsAreNoValues) {
    Use(General("; DicDir=/one\n# DicDir=/two\n  ;DicDir=/three\nDicDir=/four ; not /five\n"));
    EXPECT_EQ(Get(), "/four");
    Use(General("DicDir= ; nothing\n"));
    EXPECT_EQ(Get(), "");
}

TEST_F(Profile, ASemicolonOrHashInsideAValueIsPartOfIt) {
    Use(General("DicDir=/a;b#c #d\n"));
    EXPECT_EQ(Get(), "/a;b#c #d");
}

TEST_F(Profile, SpacesInsideAValueStayAndThoseAroundItGo) {
    Use(General("\t DicDir \t=  /My  Documents/post office\t \n"));
    EXPECT_EQ(Get(), "/My  Documents/post office");
}

TEST_F(Profile, AnIndentedKeyIsAKeyOfItsOwn) {
    Use(General("x=1\n    DicDir=/data\n"));
    EXPECT_EQ(Get(), "/data");
    EXPECT_EQ(Get("General", "x"), "1");
}

TEST_F(Profile, AValueMayContainTheSignsThatSeparateIt) {
    Use(General("DicDir=C:/a=b:c\nother: x=y\n"));
    EXPECT_EQ(Get(), "C:/a=b:c");
    EXPECT_EQ(Get("General", "other"), "x=y");
}

TEST_F(Profile, Utf8ValuesComeBackByteForByte) {
    // 堀 ends in 0xA0, a blank in some locales; 表 and ソ are troublesome in Shift_JIS.
    Use(General("DicDir=/辞書/郵便番号 表ソ堀\n"));
    EXPECT_EQ(Get(), "/辞書/郵便番号 表ソ堀");
}

TEST_F(Profile, AByteOrderMarkIsNoPartOfTheFirstLine) {
    Use("\xEF\xBB\xBF[General]\nDicDir=/data\n");
    EXPECT_EQ(Get(), "/data");
    Use("\xEF\xBB\xBF"
        "DicDir=/top\n");
    EXPECT_EQ(Get(""), "/top");
}

TEST_F(Profile, LinesMayEndAsInDosFiles) {
    Use("[General]\r\nDicDir=/data\r\nx=1\r\n");
    EXPECT_EQ(Get(), "/data");
    EXPECT_EQ(Get("General", "x"), "1");
}

TEST_F(Profile, TheLastLineNeedsNoEnd) {
    Use(General("DicDir=/data"));
    EXPECT_EQ(Get(), "/data");
}

// --- long lines ---------------------------------------------------------------------------------------------------

TEST_F(Profile, ValuesOfEveryLengthUpTo4096ComeBackWhole) {
    for (size_t nLength = 0; nLength <= 4096; nLength += nLength < 600 ? 1 : 97) {
        std::string strValue;
        for (size_t n = 0; n < nLength; ++n) strValue += static_cast<char>('a' + n % 26);
        Use(General("before=1\nDicDir = " + strValue + "\nafter=2\n"));
        ASSERT_EQ(Get(), strValue) << nLength;
        ASSERT_EQ(Get("General", "after"), "2") << nLength;
    }
    std::string strValue(4096, 'x');
    Use(General("DicDir=" + strValue));
    EXPECT_EQ(Get(), strValue);
}

TEST_F(Profile, LongLinesFollowTheSameRulesAsShortOnes) {
    std::string const strLong(300, 'x');
    Use(General("  DicDir \t=  " + strLong + "  y;z=1: # 辞書 \t ; comment = 2 \r\n"));
    EXPECT_EQ(Get(), strLong + "  y;z=1: # 辞書");
    Use(General("DicDir:" + strLong + "=\n"));
    EXPECT_EQ(Get(), strLong + "=");
    Use(General("DicDir=" + std::string(400, ' ') + "/data" + std::string(400, ' ') + "\n"));
    EXPECT_EQ(Get(), "/data");
    Use(General("DicDir=" + std::string(400, ' ') + ";" + strLong + "\n"));
    EXPECT_EQ(Get(), "");
    Use("\xEF\xBB\xBF"
        "DicDir = " +
        strLong + "\n");
    EXPECT_EQ(Get(""), strLong);
}

TEST_F(Profile, NoPartOfALongLineBecomesALineOfItsOwn) {
    for (size_t nLength = 150; nLength <= 420; ++nLength) {
        std::string const strFill(nLength, 'x');
        Use(General("; " + strFill + "DicDir=/comment\nother=" + strFill + "DicDir=/value\n" + strFill +
                    "DicDir=/name\n[x" + strFill + "]DicDir=/section\n"));
        ASSERT_EQ(Get(), "(none)") << nLength;
    }
    // And none of what is dropped of a line beyond any measure.
    for (size_t nLength = 8150; nLength <= 8230; ++nLength) {
        Use(General("other=" + std::string(nLength, 'x') + "DicDir=/tail\nlast=1\n"));
        ASSERT_EQ(Get(), "(none)") << nLength;
        ASSERT_EQ(Get("General", "last"), "1") << nLength;
    }
}

TEST_F(Profile, ALongSectionNameEndsTheSectionBefore) {
    for (size_t nLength : {40u, 49u, 50u, 190u, 196u, 197u, 198u, 199u, 200u, 5000u, 10000u}) {
        Use("[General]\nx=1\n[" + std::string(nLength, 'n') + "]\nDicDir=/other\n");
        EXPECT_EQ(Get(), "(none)") << nLength;
        EXPECT_EQ(Get(std::string(nLength, 'n').c_str()), "/other") << nLength;
    }
}

TEST_F(Profile, ALineBeyondAnyMeasureIsCutAndDoesNoHarm) {
    Use(General("DicDir=" + std::string(4 * 1024 * 1024, 'x') + "\nlast=1\n"));
    EXPECT_EQ(Get(), std::string(8191 - std::strlen("DicDir="), 'x'));
    EXPECT_EQ(Get("General", "last"), "1");
}

TEST_F(Profile, BytesThatAreNoTextDoNoHarm) {
    using namespace std::string_literals;
    Use(General("a\0b=1\nDicDir=/da\0ta\nlast=1\n"s));
    EXPECT_EQ(Get(), "/da") << "a text ends at its NUL";
    EXPECT_EQ(Get("General", "last"), "1");
    Use(std::string(100000, '\0'));
    EXPECT_EQ(Get(), "(none)");
    Use(std::string(100000, '\n') + "[General]\nDicDir=/data\n");
    EXPECT_EQ(Get(), "/data");
}

TEST_F(Profile, RandomBytesDoNoHarm) {
    constexpr unsigned int nSeed = 20240302;
    std::printf("seed %u\n", nSeed);
    std::mt19937 random(nSeed);
    // Mostly the bytes that mean something to the parser, so that it gets beyond the first line.
    static char const signs[] = "[]=:;# \t\r\n\n\n\xEF\xBB\xBF\0General\nDicDir";
    std::string const strSigns(signs, sizeof signs - 1);
    for (int nRound = 0; nRound < 300; ++nRound) {
        std::string strText;
        size_t nLength = random() % 20000;
        bool bRaw = nRound % 3 == 0;
        while (strText.size() < nLength) {
            strText += bRaw ? static_cast<char>(random()) : strSigns[random() % strSigns.size()];
        }
        Use(strText + "\n[QeTestEnd]\nkey=value\n");
        Get();
        ASSERT_EQ(Get("QeTestEnd", "key"), "value") << "round " << nRound;
    }
}

// --- what is written where ----------------------------------------------------------------------------------------

TEST_F(Profile, TheValueIsCutToTheBufferAndNothingIsWrittenBeyond) {
    Use(General("DicDir=/usr/share\n"));
    std::string const strValue = "/usr/share";
    for (int nSize = 1; nSize <= 20; ++nSize) {
        char szBuffer[32];
        std::memset(szBuffer, '#', sizeof szBuffer);
        size_t nWritten = std::min(strValue.size(), size_t(nSize) - 1);
        EXPECT_EQ(QeGetProfileString("General", "DicDir", "", szBuffer, nSize), int(nWritten)) << nSize;
        std::string strExpected = strValue.substr(0, nWritten) + '\0';
        strExpected.resize(sizeof szBuffer, '#');
        EXPECT_EQ(std::string(szBuffer, sizeof szBuffer), strExpected) << nSize;
    }
}

TEST_F(Profile, TheDefaultIsCutInTheSameWay) {
    Use("");
    for (int nSize = 1; nSize <= 20; ++nSize) {
        char szBuffer[32];
        std::memset(szBuffer, '#', sizeof szBuffer);
        std::string strExpected = std::string("default").substr(0, size_t(nSize) - 1);
        EXPECT_EQ(QeGetProfileString("General", "DicDir", "default", szBuffer, nSize), int(strExpected.size()));
        strExpected += '\0';
        strExpected.resize(sizeof szBuffer, '#');
        EXPECT_EQ(std::string(szBuffer, sizeof szBuffer), strExpected) << nSize;
    }
}

TEST_F(Profile, WithoutRoomNothingIsWritten) {
    Use(General("DicDir=/data\n"));
    char szBuffer[] = "untouched";
    for (int nSize : {0, -1, -260, INT_MIN}) {
        EXPECT_EQ(QeGetProfileString("General", "DicDir", "x", szBuffer, nSize), 0) << nSize;
        EXPECT_STREQ(szBuffer, "untouched") << nSize;
    }
}

TEST_F(Profile, ANullBufferIsLeftAlone) {
    Use(General("DicDir=/data\n"));
    for (int nSize : {260, 1, 0, -1}) EXPECT_EQ(QeGetProfileString("General", "DicDir", "x", nullptr, nSize), 0);
}

TEST_F(Profile, NullSectionOrKeyGivesTheDefault) {
    Use(General("DicDir=/data\n"));
    EXPECT_EQ(Get(nullptr, "DicDir"), "(none)");
    EXPECT_EQ(Get("General", nullptr), "(none)");
    EXPECT_EQ(Get(nullptr, nullptr, nullptr), "");
}

TEST_F(Profile, TheDefaultMayBeTheBufferItself) {
    Use("");
    char szBuffer[16] = "/data";
    EXPECT_EQ(QeGetProfileString("General", "DicDir", szBuffer, szBuffer, sizeof szBuffer), 5);
    EXPECT_STREQ(szBuffer, "/data");
    EXPECT_EQ(QeGetProfileString("General", "DicDir", szBuffer + 1, szBuffer, sizeof szBuffer), 4);
    EXPECT_STREQ(szBuffer, "data");
}

TEST_F(Profile, EveryCallReadsTheFileAnew) {
    Use(General("DicDir=/one\n"));
    EXPECT_EQ(Get(), "/one");
    Use(General("DicDir=/two\n"));
    EXPECT_EQ(Get(), "/two");
}

} // namespace
