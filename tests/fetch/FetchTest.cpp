// The fetch against a server on 127.0.0.1, well-behaved and otherwise. After every failure the folder is compared
// byte by byte with what it was before.
#include "builder/Fetch.h"
#include "tests/fetch/LoopbackServer.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>
#include <zip.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <random>
#include <sstream>

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

char const szTowns[] = "/utf/zip/utf_ken_all.zip";
char const szOffices[] = "/office/zip/jigyosyo.zip";
char const szOldDate[] = "Last-Modified: Fri, 29 May 2026 00:00:00 GMT";

std::string ReadFile(fs::path const& path) {
    std::string str(fs::file_size(path), '\0');
    std::ifstream(path, std::ios::binary).read(str.data(), static_cast<std::streamsize>(str.size()));
    return str;
}

void WriteFile(fs::path const& path, std::string const& strBytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << strBytes;
}

// Every name below the folder; a file with its bytes, a folder with "/".
std::map<std::string, std::string> Content(fs::path const& dir) {
    std::map<std::string, std::string> content;
    if (fs::exists(dir))
        for (auto const& entry : fs::recursive_directory_iterator(dir))
            content[entry.path().string()] = entry.is_directory() ? "/" : ReadFile(entry.path());
    return content;
}

// A text that does not compress much; another seed gives another text of the same size.
std::string Rows(unsigned nSeed, size_t nBytes = 200000) {
    std::mt19937 random(nSeed);
    std::string str(nBytes, '\n');
    for (size_t i = 0; i < nBytes; i++)
        if (i % 80 != 79) str[i] = static_cast<char>('0' + random() % 64);
    return str;
}

// Stored, not deflated: a changed byte then is a wrong checksum and nothing else.
std::string Zip(std::string const& strMember, std::string const& strText) {
    char szPath[] = "/tmp/qeadrs-fetch-zip-XXXXXX";
    close(mkstemp(szPath));
    zip_t* const pZip = zip_open(szPath, ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    zip_source_t* const pSource = zip_source_buffer(pZip, strText.data(), strText.size(), 0);
    zip_int64_t const n = zip_file_add(pZip, strMember.c_str(), pSource, 0);
    EXPECT_EQ(zip_set_file_compression(pZip, static_cast<zip_uint64_t>(n), ZIP_CM_STORE, 0), 0);
    EXPECT_EQ(zip_file_set_mtime(pZip, static_cast<zip_uint64_t>(n), 1780000000, 0), 0);
    EXPECT_EQ(zip_close(pZip), 0);
    std::string strZip = ReadFile(szPath);
    fs::remove(szPath);
    return strZip;
}

CReply Whole(std::string const& strBody, std::vector<std::string> vHeaders = {}) {
    CReply reply;
    reply.strBody = strBody;
    reply.vHeaders = std::move(vHeaders);
    return reply;
}

CReply Status(std::string const& strStatus) {
    CReply reply;
    reply.strStatus = strStatus;
    reply.strBody = "<html>" + strStatus + "</html>";
    return reply;
}

CReply CutAfter(size_t nBytes, CReply reply) {
    reply.nCutAfter = nBytes;
    return reply;
}

// The rest of the file that the request asks for, whatever its If-Range says.
CReply Rest(CRequest const& request, std::string const& strBody, std::vector<std::string> vHeaders) {
    size_t const nFrom = std::stoul(request.Header("range").substr(6));
    CReply reply = Whole(strBody.substr(nFrom), std::move(vHeaders));
    reply.strStatus = "206 Partial Content";
    reply.vHeaders.push_back("Content-Range: bytes " + std::to_string(nFrom) + "-" +
                             std::to_string(strBody.size() - 1) + "/" + std::to_string(strBody.size()));
    return reply;
}

// A server that does ranges properly: the rest only when the ETag is still the same.
CReply ByETag(CRequest const& request, std::string const& strBody, std::string const& strETag) {
    std::vector<std::string> const vHeaders{"ETag: " + strETag, "Accept-Ranges: bytes"};
    bool const bRest = !request.Header("range").empty() && request.Header("if-range") == strETag;
    return bRest ? Rest(request, strBody, vHeaders) : Whole(strBody, vHeaders);
}

class Fetch : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        setenv("no_proxy", "*", 1); // a proxy of the machine must never see these requests
        setenv("NO_PROXY", "*", 1);
    }

    void SetUp() override {
        char szRoot[] = "/tmp/qeadrs-fetch-XXXXXX";
        ASSERT_NE(mkdtemp(szRoot), nullptr);
        m_root = szRoot;
        m_dir = m_root / "official data";
        m_options.strBase = m_server.Base();
        m_options.strDir = m_dir.string();
        m_options.nConnectSeconds = 2;
        m_options.nPauseMilliseconds = 1;
        ServeGoodFiles();
    }

    void TearDown() override { fs::remove_all(m_root); }

    void ServeGoodFiles() {
        m_server.On(szTowns, [this](CRequest const&) { return Whole(m_strTowns); });
        m_server.On(szOffices, [this](CRequest const&) { return Whole(m_strOffices); });
    }

    void PutOldFiles() {
        WriteFile(TownsPath(), "the towns of last year");
        WriteFile(OfficesPath(), "the organisations of last year");
    }

    std::vector<qe::CFetchedFile> Run() {
        std::ostringstream remarks;
        auto vFetched = qe::FetchOfficialFiles(m_options, remarks);
        m_strRemarks = remarks.str();
        return vFetched;
    }

    // The message of the failure that must come; the folder must be what it was.
    std::string RunToFailure() {
        auto const before = Content(m_root);
        std::ostringstream remarks;
        std::string strMessage;
        EXPECT_THROW(
            try { qe::FetchOfficialFiles(m_options, remarks); } catch (qe::CBuildError const& e) {
                strMessage = e.what();
                throw;
            },
            qe::CBuildError);
        m_strRemarks = remarks.str();
        auto after = Content(m_root);
        if (before.count(m_dir.string()) == 0) after.erase(m_dir.string()); // an empty folder may have been made
        EXPECT_EQ(before, after);
        return strMessage;
    }

    // The reply as either of the two files, into a folder with old files and into none.
    void ExpectRefused(CReply const& reply, std::string const& strWhat, size_t nRequests = 1) {
        for (std::string const strPath : {szTowns, szOffices}) {
            SCOPED_TRACE(strPath);
            ServeGoodFiles();
            m_server.On(strPath, [reply](CRequest const&) { return reply; });
            for (bool const bOld : {false, true}) {
                fs::remove_all(m_dir);
                if (bOld) PutOldFiles();
                size_t const nBefore = m_server.Requests(strPath).size();
                EXPECT_THAT(RunToFailure(), AllOf(StartsWith(m_server.Base() + strPath.substr(1) + ": "),
                                                  HasSubstr(strWhat), HasSubstr("Try again later"),
                                                  HasSubstr(" by hand as " + m_dir.string()), HasSubstr("--base")));
                EXPECT_EQ(m_server.Requests(strPath).size() - nBefore, nRequests);
            }
        }
    }

    void ExpectGoodFiles() {
        EXPECT_EQ(Content(m_dir), (std::map<std::string, std::string>{{TownsPath().string(), m_strTowns},
                                                                      {OfficesPath().string(), m_strOffices}}));
    }

    fs::path TownsPath() const { return m_dir / "utf_ken_all.zip"; }
    fs::path OfficesPath() const { return m_dir / "jigyosyo.zip"; }

    // Made once: every test serves the same files.
    struct CFiles {
        std::string strTowns = Zip("utf_ken_all.csv", Rows(1));
        std::string strOffices = Zip("JIGYOSYO.CSV", Rows(2));
        std::string strOtherTowns = Zip("utf_ken_all.csv", Rows(3)); // of the same size
    };
    static CFiles const& Files() {
        static CFiles const files;
        return files;
    }

    std::string const& m_strTowns = Files().strTowns;
    std::string const& m_strOffices = Files().strOffices;
    std::string const& m_strOtherTowns = Files().strOtherTowns;
    fs::path m_root, m_dir;
    qe::CFetchOptions m_options;
    std::string m_strRemarks;
    CLoopbackServer m_server;
};

double Seconds(std::chrono::steady_clock::time_point since) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - since).count();
}

} // namespace

// What arrives

TEST_F(Fetch, PutsBothFilesIntoAFolderThatItMakes) {
    auto const v = Run();
    ASSERT_THAT(v, SizeIs(2));
    EXPECT_EQ(v[0].strPath, TownsPath().string());
    EXPECT_EQ(v[0].strMember, "utf_ken_all.csv");
    EXPECT_EQ(v[0].nBytes, m_strTowns.size());
    EXPECT_FALSE(v[0].bUnchanged);
    EXPECT_EQ(v[1].strPath, OfficesPath().string());
    EXPECT_EQ(v[1].strMember, "JIGYOSYO.CSV");
    EXPECT_EQ(v[1].nBytes, m_strOffices.size());
    EXPECT_FALSE(v[1].bUnchanged);
    ExpectGoodFiles();
    EXPECT_EQ(m_strRemarks, "");
}

TEST_F(Fetch, AsksTheOfficialServerUnlessToldOtherwise) {
    EXPECT_EQ(qe::CFetchOptions().strBase, "https://www.post.japanpost.jp/service/search/zipcode/download/");
}

TEST_F(Fetch, TakesABaseAddressWithoutItsLastSlash) {
    m_options.strBase.pop_back();
    Run();
    ExpectGoodFiles();
}

TEST_F(Fetch, TakesABaseAddressWithAPathAndCapitals) {
    m_server.On("/mirror/of/it/utf/zip/utf_ken_all.zip", [this](CRequest const&) { return Whole(m_strTowns); });
    m_server.On("/mirror/of/it/office/zip/jigyosyo.zip", [this](CRequest const&) { return Whole(m_strOffices); });
    m_options.strBase = "HTTP" + m_server.Base().substr(4) + "mirror/of/it";
    Run();
    ExpectGoodFiles();
}

TEST_F(Fetch, SaysWhoItIsAndAsksForTheWholeFileAtFirst) {
    Run();
    ASSERT_THAT(m_server.Requests(szTowns), SizeIs(1));
    EXPECT_EQ(m_server.Requests(szTowns)[0].Header("user-agent"), "qeadrs-dic");
    EXPECT_EQ(m_server.Requests(szTowns)[0].Header("range"), "");
}

TEST_F(Fetch, ReplacesOlderFiles) {
    PutOldFiles();
    Run();
    ExpectGoodFiles();
}

TEST_F(Fetch, LeavesAFileAloneThatIsTheSameAlready) {
    PutOldFiles();
    WriteFile(TownsPath(), m_strTowns);
    auto const before = fs::file_time_type::clock::now() - std::chrono::hours(24);
    fs::last_write_time(TownsPath(), before);
    auto const v = Run();
    EXPECT_TRUE(v[0].bUnchanged);
    EXPECT_FALSE(v[1].bUnchanged);
    EXPECT_EQ(fs::last_write_time(TownsPath()), before);
    ExpectGoodFiles();
}

TEST_F(Fetch, FindsTheMemberWhateverItsLetterCase) {
    std::string const strZip = Zip("UTF_KEN_ALL.CSV", Rows(1));
    m_server.On(szTowns, [&](CRequest const&) { return Whole(strZip); });
    EXPECT_EQ(Run()[0].strMember, "UTF_KEN_ALL.CSV");
    EXPECT_EQ(ReadFile(TownsPath()), strZip);
}

TEST_F(Fetch, FollowsARedirect) {
    m_server.On(szTowns, [this](CRequest const&) {
        CReply reply = Status("302 Found");
        reply.vHeaders = {"Location: " + m_server.Base() + "elsewhere.zip", "ETag: \"of the redirect\""};
        return reply;
    });
    m_server.On("/elsewhere.zip", [this](CRequest const&) { return Whole(m_strTowns); });
    Run();
    ExpectGoodFiles();
}

TEST_F(Fetch, DoesNotTakeTheETagOfARedirectForThatOfTheFile) {
    m_server.On(szTowns, [this](CRequest const&) {
        CReply reply = Status("302 Found");
        reply.vHeaders = {"Location: " + m_server.Base() + "elsewhere.zip", "ETag: \"of the redirect\""};
        return reply;
    });
    m_server.On("/elsewhere.zip", [this](CRequest const& request) {
        return CutAfter(request.nAsked == 1 ? 50000 : 1000000, Whole(m_strTowns));
    });
    Run();
    ExpectGoodFiles();
    ASSERT_THAT(m_server.Requests(szTowns), SizeIs(2));
    EXPECT_EQ(m_server.Requests(szTowns)[1].Header("range"), "");
}

TEST_F(Fetch, TakesAFileOfUnknownLength) {
    m_server.On(szTowns, [this](CRequest const&) {
        CReply reply = Whole(m_strTowns);
        reply.bLength = false;
        return reply;
    });
    Run();
    ExpectGoodFiles();
}

// Transfers that are cut

TEST_F(Fetch, ResumesACutTransferWhileTheETagIsTheSame) {
    m_server.On(szTowns, [this](CRequest const& request) {
        return CutAfter(request.nAsked < 3 ? 50000 : 1000000, ByETag(request, m_strTowns, "\"2026-05\""));
    });
    Run();
    ExpectGoodFiles();
    auto const v = m_server.Requests(szTowns);
    ASSERT_THAT(v, SizeIs(3));
    EXPECT_EQ(v[1].Header("range"), "bytes=50000-");
    EXPECT_EQ(v[1].Header("if-range"), "\"2026-05\"");
    EXPECT_EQ(v[2].Header("range"), "bytes=100000-");
    EXPECT_THAT(m_strRemarks, AllOf(StartsWith("utf_ken_all.zip: "), HasSubstr("; trying again (2 of 3)\n"),
                                    HasSubstr("; trying again (3 of 3)\n")));
}

TEST_F(Fetch, ResumesByALastModifiedThatWasOldWhenItWasSent) {
    m_server.On(szTowns, [this](CRequest const& request) {
        std::vector<std::string> const vHeaders{"Date: Mon, 01 Jun 2026 00:00:00 GMT", szOldDate};
        if (request.nAsked == 1) return CutAfter(50000, Whole(m_strTowns, vHeaders));
        return Rest(request, m_strTowns, vHeaders);
    });
    Run();
    ExpectGoodFiles();
    auto const v = m_server.Requests(szTowns);
    ASSERT_THAT(v, SizeIs(2));
    EXPECT_EQ(v[1].Header("range"), "bytes=50000-");
    EXPECT_EQ(v[1].Header("if-range"), "Fri, 29 May 2026 00:00:00 GMT");
}

TEST_F(Fetch, StartsAgainWhenNothingTellsTheFileFromAnother) {
    std::vector<std::vector<std::string>> const vCases{
        {},
        {"ETag: W/\"weak\""},
        {szOldDate},                                        // without a Date its age is unknown
        {szOldDate, "Date: Fri, 29 May 2026 00:00:59 GMT"}, // too young
        {"Last-Modified: yesterday", "Date: Mon, 01 Jun 2026 00:00:00 GMT"},
        {"ETag: \""},
    };
    for (auto const& vHeaders : vCases) {
        SCOPED_TRACE(testing::PrintToString(vHeaders));
        fs::remove_all(m_dir);
        size_t const nBefore = m_server.Requests(szTowns).size();
        m_server.On(szTowns, [&, nBefore](CRequest const& request) {
            bool const bFirst = request.nAsked == static_cast<int>(nBefore) + 1;
            return CutAfter(bFirst ? 50000 : 1000000, Whole(m_strTowns, vHeaders));
        });
        Run();
        ExpectGoodFiles();
        auto const v = m_server.Requests(szTowns);
        ASSERT_EQ(v.size() - nBefore, 2u);
        EXPECT_EQ(v.back().Header("range"), "");
        EXPECT_EQ(v.back().Header("if-range"), "");
    }
}

TEST_F(Fetch, StartsAgainOnAServerThatKnowsNoRanges) {
    m_server.On(szTowns, [this](CRequest const& request) {
        return CutAfter(request.nAsked == 1 ? 50000 : 1000000, Whole(m_strTowns, {"ETag: \"same\""}));
    });
    Run();
    ExpectGoodFiles();
    EXPECT_THAT(m_server.Requests(szTowns), SizeIs(2));
}

TEST_F(Fetch, StartsAgainWhenTheFileChangedBetweenTheTries) {
    m_server.On(szTowns, [this](CRequest const& request) {
        if (request.nAsked == 1) return CutAfter(50000, ByETag(request, m_strOtherTowns, "\"april\""));
        return ByETag(request, m_strTowns, "\"may\"");
    });
    Run();
    ExpectGoodFiles();
    EXPECT_EQ(m_server.Requests(szTowns)[1].Header("if-range"), "\"april\"");
}

char const szForeign[] = "utf_ken_all.zip: the server sent a part that does not continue ours";

// Each of these servers ignores If-Range; what it sends after the cut must not be glued on.
class RudeServer : public Fetch {
  protected:
    void ExpectStartsAgain(std::string const& strRemark, std::function<CReply(CRequest const&)> const& second) {
        m_server.On(szTowns, [&, second](CRequest const& request) {
            if (request.nAsked == 1) return CutAfter(50000, Whole(m_strOtherTowns, {"ETag: \"april\""}));
            return request.nAsked == 2 ? second(request) : Whole(m_strTowns);
        });
        Run();
        ExpectGoodFiles();
        auto const v = m_server.Requests(szTowns);
        ASSERT_THAT(v, SizeIs(3));
        EXPECT_EQ(v[1].Header("range"), "bytes=50000-");
        EXPECT_EQ(v[2].Header("range"), "");
        EXPECT_THAT(m_strRemarks, HasSubstr(strRemark + "; trying again (3 of 3)\n"));
    }
};

TEST_F(RudeServer, CannotGlueOnTheTailOfAFileWithAnotherETag) {
    ExpectStartsAgain(szForeign,
                      [&](CRequest const& request) { return Rest(request, m_strTowns, {"ETag: \"may\""}); });
}

TEST_F(RudeServer, CannotGlueOnTheTailOfAFileWithoutAnETag) {
    ExpectStartsAgain(szForeign, [&](CRequest const& request) { return Rest(request, m_strTowns, {}); });
}

TEST_F(RudeServer, CannotGlueOnARestThatBeginsElsewhere) {
    ExpectStartsAgain(szForeign, [&](CRequest const&) {
        CRequest other;
        other.headers["range"] = "bytes=49999-";
        return Rest(other, m_strOtherTowns, {"ETag: \"april\""});
    });
}

TEST_F(RudeServer, CannotGlueOnTheRestOfALongerFile) {
    ExpectStartsAgain(szForeign, [&](CRequest const& request) {
        return Rest(request, m_strOtherTowns + "more", {"ETag: \"april\""});
    });
}

TEST_F(RudeServer, CannotGlueOnARestThatDoesNotSayWhereItBelongs) {
    std::string const strTotal = std::to_string(m_strOtherTowns.size());
    std::string const strPlace = "bytes 50000-" + std::to_string(m_strOtherTowns.size() - 1);
    std::vector<std::string> const vRanges{"",
                                           "bytes",
                                           "bytes ",
                                           "bytes 50000",
                                           "bytes 50000-",
                                           "bytes -1-2/" + strTotal,
                                           "bytes */" + strTotal,
                                           strPlace,
                                           strPlace + "/",
                                           strPlace + "/*",
                                           strPlace + "/" + strTotal + "x",
                                           strPlace + " /" + strTotal,
                                           "lines" + strPlace.substr(5) + "/" + strTotal,
                                           "bytes 99999999999999999999999999-1/" + strTotal};
    for (std::string const& strRange : vRanges) {
        SCOPED_TRACE(strRange);
        fs::remove_all(m_dir);
        size_t const nBefore = m_server.Requests(szTowns).size();
        m_server.On(szTowns, [&, nBefore](CRequest const& request) {
            size_t const nAsked = static_cast<size_t>(request.nAsked) - nBefore;
            if (nAsked == 1) return CutAfter(50000, Whole(m_strOtherTowns, {"ETag: \"april\""}));
            if (nAsked == 3) return Whole(m_strTowns);
            CReply reply = Whole(m_strOtherTowns.substr(50000), {"ETag: \"april\"", "Content-Range: " + strRange});
            reply.strStatus = "206 Partial Content";
            return reply;
        });
        Run();
        ExpectGoodFiles();
        EXPECT_EQ(m_server.Requests(szTowns).size() - nBefore, 3u);
        EXPECT_THAT(m_strRemarks, HasSubstr(szForeign));
    }
}

TEST_F(RudeServer, IsAskedForTheWholeFileWhenTheRangeIsGone) {
    ExpectStartsAgain("HTTP status 416", [](CRequest const&) { return Status("416 Range Not Satisfiable"); });
}

TEST_F(RudeServer, GetsAnotherChanceWhenTheSeamShowsOnlyInTheChecksum) {
    std::string strRepaired = m_strOtherTowns; // one digit, while the ETag stayed
    strRepaired[100000] ^= 1;
    ExpectStartsAgain("utf_ken_all.csv in the zip archive is not usable: CRC error",
                      [&](CRequest const& request) { return Rest(request, strRepaired, {"ETag: \"april\""}); });
}

TEST_F(RudeServer, IsAskedForTheRestOfAPartOfTheRest) {
    m_server.On(szTowns, [this](CRequest const& request) {
        if (request.nAsked == 1) return CutAfter(50000, ByETag(request, m_strTowns, "\"may\""));
        CReply reply = ByETag(request, m_strTowns, "\"may\"");
        if (request.nAsked == 2) reply.strBody.resize(10000); // its Content-Length agrees
        return reply;
    });
    Run();
    ExpectGoodFiles();
    EXPECT_EQ(m_server.Requests(szTowns).back().Header("range"), "bytes=60000-");
}

TEST_F(Fetch, RefusesAPartThatNobodyAskedFor) {
    CReply reply = Whole(m_strTowns);
    reply.strStatus = "206 Partial Content";
    ExpectRefused(reply, "HTTP status 206");
}

TEST_F(Fetch, GivesUpAfterTheLastTryWhenEveryTransferIsCut) {
    ExpectRefused(CutAfter(50000, Whole(m_strTowns)), "(gave up after 3 tries)", 3);
    ExpectRefused(CutAfter(0, Whole(m_strTowns)), "(gave up after 3 tries)", 3);
}

TEST_F(Fetch, GivesUpAtOnceWithASingleTry) {
    m_options.nTries = 1;
    ExpectRefused(CutAfter(50000, Whole(m_strTowns)), "transfer closed", 1);
    EXPECT_EQ(m_strRemarks, "");
    m_options.nTries = 0; // nothing could be fetched without one
    ExpectRefused(CutAfter(50000, Whole(m_strTowns)), "transfer closed", 1);
}

TEST_F(Fetch, GivesUpWhenTheResumedTransferIsCutEveryTime) {
    PutOldFiles();
    m_server.On(szOffices,
                [this](CRequest const& request) { return CutAfter(1000, ByETag(request, m_strOffices, "\"may\"")); });
    EXPECT_THAT(RunToFailure(), AllOf(HasSubstr("jigyosyo.zip"), HasSubstr("(gave up after 3 tries)")));
    EXPECT_EQ(m_server.Requests(szOffices).back().Header("range"), "bytes=2000-");
}

TEST_F(Fetch, TriesAgainWhenTheConnectionClosesWithoutAnAnswer) {
    m_server.On(szTowns, [this](CRequest const& request) {
        CReply reply = Whole(m_strTowns);
        if (request.nAsked == 1) reply.strRaw = "HTTP/1.1";
        return reply;
    });
    Run();
    ExpectGoodFiles();
}

TEST_F(Fetch, DoesNotTrustAPartThatAKilledRunLeftBehind) {
    WriteFile(TownsPath().string() + ".part", m_strOtherTowns.substr(0, 50000));
    WriteFile(OfficesPath().string() + ".part.old", "old");
    WriteFile(OfficesPath(), "older");
    Run();
    ExpectGoodFiles();
    EXPECT_EQ(m_server.Requests(szTowns)[0].Header("range"), "");
}

TEST_F(Fetch, DoesNotWriteThroughALinkInThePlaceOfAPart) {
    fs::create_directories(m_dir);
    WriteFile(m_root / "precious", "mine");
    fs::create_symlink(m_root / "precious", TownsPath().string() + ".part");
    Run();
    ExpectGoodFiles();
    EXPECT_EQ(ReadFile(m_root / "precious"), "mine");
}

// Servers that have no file for us

TEST_F(Fetch, RefusesAPageThatSaysNotFound) {
    ExpectRefused(Status("404 Not Found"), "HTTP status 404");
}

TEST_F(Fetch, TriesAgainWhenTheServerIsInTrouble) {
    ExpectRefused(Status("500 Internal Server Error"), "HTTP status 500 (gave up after 3 tries)", 3);
    m_server.On(szTowns, [&](CRequest const& request) {
        return request.nAsked % 2 == 1 ? Status("503 Service Unavailable") : Whole(m_strTowns);
    });
    m_server.On(szOffices, [&](CRequest const& request) {
        return request.nAsked % 2 == 1 ? Status("429 Too Many Requests") : Whole(m_strOffices);
    });
    Run();
    ExpectGoodFiles();
}

TEST_F(Fetch, RefusesAnAnswerThatIsNoFile) {
    CReply reply = Status("204 No Content");
    reply.strBody.clear();
    reply.bLength = false;
    ExpectRefused(reply, "HTTP status 204");
    ExpectRefused(Status("300 Multiple Choices"), "HTTP status 300");
    reply = {};
    reply.strRaw = "SSH-2.0-OpenSSH_9.2p1\r\n";
    ExpectRefused(reply, "HTTP/0.9");
}

TEST_F(Fetch, RefusesARedirectToAnythingButHttp) {
    WriteFile(m_root / "secret.zip", m_strTowns);
    for (std::string const& strTo : {"file://" + (m_root / "secret.zip").string(), std::string("ftp://127.0.0.1/x"),
                                     std::string("gopher://127.0.0.1/x")}) {
        CReply reply = Status("302 Found");
        reply.vHeaders = {"Location: " + strTo};
        ExpectRefused(reply, strTo.substr(0, strTo.find(':')));
    }
}

TEST_F(Fetch, RefusesARedirectThatNeverEnds) {
    CReply reply = Status("302 Found");
    reply.vHeaders = {"Location: " + m_server.Base() + "round"};
    m_server.On("/round", [reply](CRequest const&) { return reply; });
    ExpectRefused(reply, "redirects");
}

TEST_F(Fetch, CountsAStallAsACut) {
    m_options.nStallSeconds = 1;
    m_server.On(szTowns, [this](CRequest const& request) {
        CReply reply = ByETag(request, m_strTowns, "\"may\"");
        if (request.nAsked == 1) {
            reply.nCutAfter = 1; // libcurl's rate is a mean over seconds: more bytes would only take longer
            reply.bStall = true;
        }
        return reply;
    });
    Run();
    ExpectGoodFiles();
    EXPECT_EQ(m_server.Requests(szTowns)[1].Header("range"), "bytes=1-");
}

TEST_F(Fetch, GivesUpOnAServerThatNeverAnswers) {
    PutOldFiles();
    m_options.nStallSeconds = 1;
    m_options.nTries = 2;
    m_server.On(szOffices, [](CRequest const&) {
        CReply reply;
        reply.bSilent = true;
        return reply;
    });
    auto const start = std::chrono::steady_clock::now();
    EXPECT_THAT(RunToFailure(), HasSubstr("(gave up after 2 tries)"));
    EXPECT_LT(Seconds(start), 8);
}

TEST_F(Fetch, ReportsAnUnreachableServerAtOnce) {
    int const hSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0); // bound, so that nobody else gets its port
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t nSize = sizeof(address);
    ASSERT_EQ(bind(hSocket, reinterpret_cast<sockaddr*>(&address), nSize), 0);
    ASSERT_EQ(getsockname(hSocket, reinterpret_cast<sockaddr*>(&address), &nSize), 0);
    m_options.strBase = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    m_options.nPauseMilliseconds = 5000; // would show
    PutOldFiles();
    auto const start = std::chrono::steady_clock::now();
    EXPECT_THAT(RunToFailure(), AllOf(HasSubstr("onnect"), Not(HasSubstr("gave up"))));
    EXPECT_LT(Seconds(start), 2);
    EXPECT_EQ(m_strRemarks, "");
    close(hSocket);
}

TEST_F(Fetch, WaitsNoLongerForAConnectionThanAllowed) {
    // A listener whose queue is full lets newcomers wait in silence.
    int const hListen = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t nSize = sizeof(address);
    auto* const pAddress = reinterpret_cast<sockaddr*>(&address);
    ASSERT_EQ(bind(hListen, pAddress, nSize), 0);
    ASSERT_EQ(listen(hListen, 0), 0);
    ASSERT_EQ(getsockname(hListen, pAddress, &nSize), 0);
    std::vector<int> vFillers;
    for (int i = 0; i < 4; i++) {
        vFillers.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        (void)connect(vFillers.back(), pAddress, nSize);
    }
    m_options.strBase = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));
    m_options.nConnectSeconds = 1;
    PutOldFiles();
    auto const start = std::chrono::steady_clock::now();
    EXPECT_THAT(RunToFailure(), Not(HasSubstr("gave up")));
    EXPECT_GT(Seconds(start), 0.8);
    EXPECT_LT(Seconds(start), 3);
    for (int h : vFillers) close(h);
    close(hListen);
}

// Content that is not the file

TEST_F(Fetch, RefusesRubbish) {
    ExpectRefused(Whole(Rows(9)), "not a sound zip archive");
    ExpectRefused(Whole("<html>Please log in to this network.</html>"), "not a sound zip archive");
}

TEST_F(Fetch, RefusesAnEmptyAnswer) {
    ExpectRefused(Whole(""), "the answer is empty");
    CReply reply = Whole("");
    reply.bLength = false;
    ExpectRefused(reply, "the answer is empty");
}

TEST_F(Fetch, RefusesAZipWithoutTheExpectedMember) {
    ExpectRefused(Whole(Zip("readme.txt", Rows(1))), "the zip archive holds no ");
    ExpectRefused(Whole(Zip("old/utf_ken_all.csv", Rows(1))), "the zip archive holds no ");
}

TEST_F(Fetch, RefusesAMemberWhoseChecksumIsWrong) {
    PutOldFiles();
    std::string strTowns = m_strTowns;
    strTowns[strTowns.size() / 2] ^= 1;
    m_server.On(szTowns, [&](CRequest const&) { return Whole(strTowns); });
    EXPECT_THAT(RunToFailure(), HasSubstr("utf_ken_all.csv in the zip archive is not usable: CRC error"));
    ServeGoodFiles();
    std::string strOffices = m_strOffices;
    strOffices[strOffices.size() / 2] ^= 1;
    m_server.On(szOffices, [&](CRequest const&) { return Whole(strOffices); });
    EXPECT_THAT(RunToFailure(), HasSubstr("JIGYOSYO.CSV in the zip archive is not usable: CRC error"));
}

TEST_F(Fetch, RefusesAnEmptyMember) {
    PutOldFiles();
    m_server.On(szOffices, [](CRequest const&) { return Whole(Zip("JIGYOSYO.CSV", "")); });
    EXPECT_THAT(RunToFailure(), HasSubstr("JIGYOSYO.CSV in the zip archive is not usable: it is empty"));
}

TEST_F(Fetch, RefusesAZipThatEndsEarlyAlthoughTheServerCallsItComplete) {
    for (size_t const nBytes : {size_t(1), size_t(4), size_t(30), m_strTowns.size() / 2, m_strTowns.size() - 1})
        ExpectRefused(Whole(m_strTowns.substr(0, nBytes)), "not a sound zip archive");
}

TEST_F(Fetch, StaysHarmlessForEveryDamagedByteOfTheArchivesFrame) {
    // The frame is all but the stored text: local header in front, directory and its end behind.
    std::string const strText = Rows(4, 300);
    std::string const strZip = Zip("utf_ken_all.csv", strText);
    size_t const nText = strZip.find(strText);
    ASSERT_NE(nText, std::string::npos);
    m_options.nMaxBytes = 100000;
    size_t nRefused = 0;
    for (size_t i = 0; i < strZip.size(); i++) {
        if (i == nText) i += strText.size();
        std::string strDamaged = strZip;
        strDamaged[i] = static_cast<char>(~strDamaged[i]);
        m_server.On(szTowns, [&](CRequest const&) { return Whole(strDamaged); });
        fs::remove_all(m_dir);
        try {
            Run();
            EXPECT_EQ(ReadFile(TownsPath()), strDamaged) << i;
        } catch (qe::CBuildError const&) {
            EXPECT_THAT(Content(m_dir), IsEmpty()) << i;
            nRefused++;
        }
    }
    EXPECT_GT(nRefused, (strZip.size() - strText.size()) / 2);
}

TEST_F(Fetch, RefusesAFileThatIsTooLarge) {
    m_options.nMaxBytes = m_strTowns.size() - 1;
    CReply reply = Whole(m_strTowns);
    std::string const strWhat = "larger than " + std::to_string(m_options.nMaxBytes) + " bytes";
    PutOldFiles();
    m_server.On(szTowns, [&](CRequest const&) { return reply; });
    EXPECT_THAT(RunToFailure(), HasSubstr(strWhat));
    reply.bLength = false;
    EXPECT_THAT(RunToFailure(), HasSubstr(strWhat));
    reply.bEndless = true;
    EXPECT_THAT(RunToFailure(), HasSubstr(strWhat));
    EXPECT_THAT(m_server.Requests(szTowns), SizeIs(3));
}

TEST_F(Fetch, TakesAFileThatIsJustNotTooLarge) {
    m_options.nMaxBytes = std::max(m_strTowns.size(), m_strOffices.size());
    Run();
    ExpectGoodFiles();
}

TEST_F(Fetch, RefusesAMemberThatUnpacksToTooMuch) {
    // 5 MB of blanks in 5 KB of zip.
    std::string const strPath = (m_root / "bomb.zip").string();
    std::string const strBlanks(5000000, ' ');
    zip_t* const pZip = zip_open(strPath.c_str(), ZIP_CREATE, nullptr);
    zip_file_add(pZip, "utf_ken_all.csv", zip_source_buffer(pZip, strBlanks.data(), strBlanks.size(), 0), 0);
    ASSERT_EQ(zip_close(pZip), 0);
    std::string const strZip = ReadFile(strPath);
    ASSERT_LT(strZip.size(), 100000u);
    m_options.nMaxBytes = 1000000;
    m_server.On(szTowns, [&](CRequest const&) { return Whole(strZip); });
    EXPECT_THAT(RunToFailure(), HasSubstr("it unpacks to more than 1000000 bytes"));
}

// The folder

TEST_F(Fetch, ReplacesNeitherFileWhenOnlyTheSecondIsMissing) {
    PutOldFiles();
    m_server.On(szOffices, [](CRequest const&) { return Status("404 Not Found"); });
    EXPECT_THAT(RunToFailure(), HasSubstr("jigyosyo.zip: HTTP status 404. Nothing was replaced."));
    EXPECT_EQ(ReadFile(TownsPath()), "the towns of last year");
    EXPECT_THAT(m_server.Requests(szTowns), SizeIs(1));
}

TEST_F(Fetch, PutsTheFirstFileBackWhenTheSecondCannotBePutInPlace) {
    for (bool const bOld : {true, false}) {
        fs::remove_all(m_dir);
        if (bOld) WriteFile(TownsPath(), "the towns of last year");
        m_server.On(szOffices, [this](CRequest const&) {
            WriteFile(OfficesPath() / "in the way", ""); // appears while we are busy
            return Whole(m_strOffices);
        });
        EXPECT_THROW(Run(), qe::CBuildError);
        std::map<std::string, std::string> expected{{OfficesPath().string(), "/"},
                                                    {(OfficesPath() / "in the way").string(), ""}};
        if (bOld) expected[TownsPath().string()] = "the towns of last year";
        EXPECT_EQ(Content(m_dir), expected);
    }
}

TEST_F(Fetch, AsksForNothingWhenAFolderStandsInAFilesPlace) {
    fs::create_directories(OfficesPath());
    EXPECT_THAT(RunToFailure(), AllOf(StartsWith(OfficesPath().string()), HasSubstr("is not a file")));
    EXPECT_THAT(m_server.Requests(szTowns), IsEmpty());
}

TEST_F(Fetch, SaysWhyAFolderCannotBeUsed) {
    m_options.strDir = "";
    EXPECT_THAT(RunToFailure(), HasSubstr("-d DIR"));
    WriteFile(m_root / "a file", "");
    m_options.strDir = (m_root / "a file").string();
    EXPECT_THAT(RunToFailure(), AllOf(StartsWith(m_options.strDir), HasSubstr("cannot use this folder")));
    m_options.strDir += "/below";
    EXPECT_THAT(RunToFailure(), AllOf(StartsWith(m_options.strDir), HasSubstr("cannot use this folder")));
    fs::create_directories(TownsPath().string() + ".part/full");
    m_options.strDir = m_dir.string();
    EXPECT_THAT(RunToFailure(), HasSubstr("utf_ken_all.zip.part: cannot replace"));
    EXPECT_THAT(m_server.Requests(szTowns), IsEmpty());
}

TEST_F(Fetch, RefusesASecondFetchIntoTheSameFolder) {
    PutOldFiles();
    int const hDir = open(m_dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(hDir, LOCK_EX | LOCK_NB), 0);
    EXPECT_THAT(RunToFailure(), HasSubstr("another fetch is at work in this folder"));
    EXPECT_THAT(m_server.Requests(szTowns), IsEmpty());
    close(hDir);
    Run();
    ExpectGoodFiles();
}

TEST_F(Fetch, SaysSoWhenTheDiskTakesNoMore) {
    PutOldFiles();
    auto* const pOld = std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &limit), 0);
    for (size_t const nBytes : {size_t(100000), m_strTowns.size() - 1}) { // in a write, and in the last flush
        rlimit const small{nBytes, limit.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
        std::string const strMessage = RunToFailure();
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
        EXPECT_THAT(strMessage, HasSubstr("utf_ken_all.zip.part: cannot write: File too large"));
    }
    std::signal(SIGXFSZ, pOld);
    EXPECT_THAT(m_server.Requests(szTowns), SizeIs(2));
}

// The caller

TEST_F(Fetch, RefusesABaseAddressThatIsNotHttp) {
    WriteFile(m_root / "utf/zip/utf_ken_all.zip", m_strTowns);
    WriteFile(m_root / "office/zip/jigyosyo.zip", m_strOffices);
    for (std::string const& strBase : {"file://" + m_root.string(), std::string("ftp://127.0.0.1/"), std::string(""),
                                       m_root.string(), m_server.Base().substr(7), std::string("http:/127.0.0.1/")}) {
        SCOPED_TRACE(strBase);
        m_options.strBase = strBase;
        EXPECT_THAT(RunToFailure(), AllOf(StartsWith("\"" + strBase + "\""), HasSubstr("http:// or https://")));
    }
}

TEST_F(Fetch, SaysWhatIsWrongWithAnAddressThatMakesNoSense) {
    m_options.strBase = "http://127.0.0.1:port/";
    EXPECT_THAT(RunToFailure(), AllOf(StartsWith(m_options.strBase), HasSubstr("bad/illegal format")));
}

TEST_F(Fetch, StopsWhenTold) {
    static volatile std::sig_atomic_t nStop;
    PutOldFiles();
    m_options.pStop = &nStop;
    for (bool const bSilent : {true, false}) {
        nStop = 0;
        m_server.On(szOffices, [&](CRequest const&) { // with a part of the file there, or with nothing
            nStop = 1;
            CReply reply = CutAfter(50000, Whole(m_strOffices));
            reply.bSilent = bSilent;
            reply.bStall = true;
            return reply;
        });
        auto const start = std::chrono::steady_clock::now();
        EXPECT_THAT(RunToFailure(), HasSubstr("jigyosyo.zip: stopped."));
        EXPECT_LT(Seconds(start), 4);
    }
}

TEST_F(Fetch, StopsInThePauseBeforeTheNextTry) {
    static volatile std::sig_atomic_t nStop;
    PutOldFiles();
    nStop = 0;
    m_options.pStop = &nStop;
    m_options.nPauseMilliseconds = 30000;
    std::thread waiter;
    m_server.On(szTowns, [&](CRequest const&) {
        waiter = std::thread([] {
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
            nStop = 1;
        });
        return Status("503 Service Unavailable");
    });
    auto const start = std::chrono::steady_clock::now();
    EXPECT_THAT(RunToFailure(), HasSubstr("stopped"));
    EXPECT_LT(Seconds(start), 4);
    waiter.join();
}

TEST_F(Fetch, ShowsItsProgressInOneLinePerFile) {
    m_options.bProgress = true;
    Run();
    auto const nLines = std::count(m_strRemarks.begin(), m_strRemarks.end(), '\n');
    EXPECT_EQ(nLines, 2);
    std::string const strTotal = std::to_string(m_strTowns.size());
    EXPECT_THAT(m_strRemarks,
                AllOf(StartsWith("\rutf_ken_all.zip: "), EndsWith("KiB/s\n"), HasSubstr("\n\rjigyosyo.zip: "),
                      HasSubstr(strTotal + " of " + strTotal + " bytes, 100 %, ")));
}

TEST_F(Fetch, ShowsTheBytesAloneWhileTheLengthIsUnknown) {
    m_options.bProgress = true;
    m_server.On(szTowns, [this](CRequest const&) {
        CReply reply = Whole(m_strTowns);
        reply.bLength = false;
        return reply;
    });
    Run();
    EXPECT_THAT(m_strRemarks, HasSubstr("\rutf_ken_all.zip: " + std::to_string(m_strTowns.size()) + " bytes, "));
}

TEST_F(Fetch, ShowsNoProgressOfAFileThatDoesNotCome) {
    m_options.bProgress = true;
    m_server.On(szTowns, [](CRequest const&) { return Status("404 Not Found"); });
    RunToFailure();
    EXPECT_EQ(m_strRemarks, "");
}
