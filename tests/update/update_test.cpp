// The live update: the names allowed in the updates folder, the redirect
// rule, and the window's form against a local update server: the check (the
// answers of the two server files, the failures) and the download into the
// updates folder (progress, the file as received, refused names, broken and
// empty transfers, a redirect and cancelling).
#include "update_fixture.h"
#include "update/last_slash.h"
#include "update/redirect_policy.h"

#include <filesystem>
#include <set>
#include <tuple>

using namespace quillon;
using namespace quillon::test;

namespace {

namespace fs = std::filesystem;

TEST(UpdateFileName, OnlyPlainNamesAreSafeInTheUpdatesFolder) {
    for (const char* good : {"new.zip", "quillon-3.1.2.exe", ".hidden", "...", "a b.zip", "caf\xC3\xA9.zip"})
        EXPECT_TRUE(IsSafeUpdateFileName(good)) << good;
    for (std::string bad : {"", ".", "..", "a/b", "..\\evil.exe", "new.zip\r\n", "new\tzip", "x\x7F"})
        EXPECT_FALSE(IsSafeUpdateFileName(bad)) << bad;
    EXPECT_FALSE(IsSafeUpdateFileName(std::string("a\0b", 3)));
}

TEST(RedirectPolicy, FollowsHttpsAnywhereAndPlainHttpOnlyOnTheSameHost) {
    const struct { const char *from, *to; bool allowed; } cases[] = {
        {"http://a.test/x", "http://a.test/y", true}, {"http://a.test:80/x", "http://A.TEST/y", true},
        {"http://a.test/x", "/elsewhere/y", true}, {"http://a.test:8080/x", "http://a.test:9090/y", false},
        {"http://a.test/x", "http://b.test/y", false}, {"http://a.test/x", "https://b.test/y", true},
        {"https://a.test/x", "https://b.test/y", true}, {"https://a.test/x", "http://a.test/y", false},
        {"http://a.test/x", "ftp://a.test/y", false}, {"http://a.test/x", "file:///etc/passwd", false},
    };
    for (const auto& c : cases) EXPECT_EQ(RedirectAllowed(c.from, c.to), c.allowed) << c.from << " -> " << c.to;
}

std::string Offer(std::string now, std::string next) {
    return "There's an update from v" + now + " to v" + next + " available.";
}

// The version file's body is compared with the running version character
// code by character code, as it stands; exactly "no" switches the update off.
using Check = UpdateFixture;

TEST_F(Check, FetchesBothFilesThenComparesTheVersions) {
    const struct { std::string body, current, status; bool offered; std::vector<Shown> shown = {}; } cases[] = {
        {"3.1.2", "3.1.1", Offer("3.1.1", "3.1.2"), true},
        {"3.1.1", "3.1.1", "There is no update available.", false},
        {"3.1", "3.1.1", "There is no update available.", false},
        {"3.10.0", "3.1.1", Offer("3.1.1", "3.10.0"), true},
        {"3.9", "3.10.0", Offer("3.10.0", "3.9"), true},
        {"3.1.1\r\n", "3.1.1", Offer("3.1.1", "3.1.1\r\n"), true},
        {"No", "3.1.1", Offer("3.1.1", "No"), true},
        {"no\n", "3.1.1", Offer("3.1.1", "no\n"), true},
        {"\xC3\xA9", "3.1.1", Offer("3.1.1", "\xC3\xA9"), true},  // bytes above 0x7F count as large
        {"", "3.1.1", "Update failed.", false},
        {"no", "3.1.1", "Update disabled.", false,
         {Msg(Icon::Critical, "The update feature has been disabled by the author. Please try again later.")}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.body + " against " + c.current);
        form = MakeForm(dir.path(), c.current);
        ServeFiles(c.body, server.Url("/files/new.zip"));
        const std::size_t before = server.Requests().size();
        CheckAndWait();
        ASSERT_EQ(server.Requests().size(), before + 2);  // a wrong path would have failed the check
        EXPECT_NE(server.Requests()[before].head.find("cache-control: no-cache"), std::string::npos);
        EXPECT_EQ(std::tuple(form->lblUpdateMsg, form->cmdDownloadVisible, form->cmdCheckVisible),
                  std::tuple(c.status, c.offered, !c.offered));
        EXPECT_EQ(user.Take(), c.shown);
    }
}

// Failures give their number and description. Plain HTTP may not leave the
// host: that redirect is refused before any connection to the other address.
TEST_F(Check, FailuresReportTheirNumberAndDescription) {
    const struct { HttpReply version, address; std::size_t requests; std::string title, description; } cases[] = {
        {Status(404, "Not Found"), Body("x"), 1, "Error #404", "Not Found"},
        {Body("3.1.2"), Status(404, "Not Found"), 2, "Error #404", "Not Found"},
        {Status(503, "Service Unavailable"), Body("x"), 1, "Error #503", "Service Unavailable"},
        {Body(std::string(5000, '3')), Body("x"), 1, "Error #7", "The server's reply is larger than 4 KiB."},
        {Body("3.1.2"), Body(std::string(5000, 'h')), 2, "Error #7", "The server's reply is larger than 4 KiB."},
        {Redirect("http://127.0.0.2:1/v.txt"), Body("x"), 1, "Error #11",
         "Redirect to http://127.0.0.2:1/v.txt refused"},
        {{}, {}, 0, "Error #1", "Connection refused"},  // last: the server is down
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.title);
        server.Serve("/updates/quillon.txt", c.version);
        server.Serve("/updates/quillon2.txt", c.address);
        if (c.requests == 0) server.Close();
        const std::size_t before = server.Requests().size();
        CheckAndWait();
        EXPECT_EQ(server.Requests().size(), before + c.requests);
        EXPECT_EQ(form->lblUpdateMsg, "Update failed.");
        const std::string shown = "An error has occured. Update failed.\r\n\r\nError description: \r\n" + c.description;
        EXPECT_EQ(user.Take(), std::vector<Shown>{Msg(Icon::Critical, shown, c.title)});
        ExpectReady();
    }
}


// Every byte value, repeated to `size` bytes.
std::string Pattern(std::size_t size) {
    std::string bytes(size, '\0');
    for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<char>((i * 7 + i / 256) & 0xFF);
    return bytes;
}

std::set<std::string> FolderNames(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& e : fs::directory_iterator(folder)) names.insert(e.path().filename().string());
    return names;
}

struct Download : UpdateFixture {
    void SetUp() override { fs::create_directory(dir / "updates"); }
};

TEST_F(Download, ACheckedUpdateLandsByteExactWithProgressInSteps) {
    const std::string bytes = Pattern(64 * 1024);
    // The gap is longer than the 100 ms Qt keeps between progress notices.
    server.Serve("/files/real.zip", HttpReply{.body = bytes, .chunkSize = 16 * 1024, .chunkGapMs = 130});
    server.Serve("/files/new.zip", Redirect("/files/real.zip"));  // followed on the same host
    ServeFiles("3.1.2", server.Url("/files/new.zip"));
    WriteFile(dir / "updates" / "new.zip", "an older update");
    CheckAndWait();
    ASSERT_TRUE(form->cmdDownloadVisible);

    std::vector<std::pair<std::int32_t, std::string>> progress;  // each new label with its value
    form->OnChanged([&] {
        if (progress.empty() || progress.back().second != form->label1)
            progress.emplace_back(form->progValue, form->label1);
    });
    form->Download();
    EXPECT_EQ(form->lblUpdateMsg, "Downloading the update...");
    ExpectReady();
    ASSERT_TRUE(WaitUntil([&] { return form->DL().Running() == 0; }));

    EXPECT_EQ(ReadFile(dir / "updates" / "new.zip"), bytes);
    EXPECT_EQ(FolderNames(dir / "updates"), std::set<std::string>{"new.zip"});
    ASSERT_GE(progress.size(), 3u);  // the start, at least one step between, the last notice
    EXPECT_LT(progress[progress.size() - 2].first, 65536);
    EXPECT_EQ(progress.back().second, "Downloaded: 65536 / 65536 Bytes.");
    EXPECT_EQ(std::pair(form->progMax, form->progValue), std::pair(65536, 0));
    EXPECT_EQ(form->lblUpdateMsg, "Update successfull.");
    EXPECT_EQ(user.Take(), std::vector<Shown>{Msg(Icon::Information,
                                                  "The update was successfull.\r\nCheck the Updates folder!",
                                                  "Update downloaded!")});
    EXPECT_NE(server.Requests().back().head.find("cache-control: no-cache"), std::string::npos);
}

// Hostile file names are refused before anything is fetched; a regular file
// where the updates folder belongs ends the download after its restarts;
// a failed, cut-off or empty transfer is reported once, as failed. None of
// them touches an older file of the same name.
TEST_F(Download, RefusedAndFailedDownloadsWriteNothing) {
    server.Serve("/cut/new.zip", HttpReply{.body = Pattern(8192), .cutAfter = 4096});
    // No length: a close can't be told from a cut.
    server.Serve("/cut-unsized/new.zip",
                 HttpReply{.body = Pattern(8192), .cutAfter = 4096, .sendLength = false});
    server.Serve("/empty/new.zip", Body(""));
    server.Serve("/large/new.zip", Body(Pattern(8192)));
    form->DL().maxBytes = 4096;
    const Shown failed = Msg(Icon::Critical, "The update failed.", "Error");
    const Shown badName = Msg(Icon::Critical, "The update failed.", "Error 52: Bad file name or number");
    const Shown noFolder = Msg(Icon::Critical, "The update failed.", "Error 75: Path/File access error");
    struct Case { std::string url; Shown shown; bool fetched; };
    std::vector<Case> cases;
    for (const char* name : {"", ".", "..", "..\\..\\evil.exe", "new.zip\r\n", "ne\x01w.zip"})
        cases.push_back({server.Url("/files/") + name, badName, false});
    cases.push_back({"ftp://127.0.0.1/new.zip", failed, false});
    for (const char* path : {"/missing", "/cut", "/cut-unsized", "/empty", "/large"})
        cases.push_back({server.Url(path) + "/new.zip", failed, true});
    cases.push_back({server.Url("/files/new.zip"), noFolder, false});  // last: the folder becomes a file
    for (const auto& c : cases) {
        SCOPED_TRACE(c.url);
        const bool folder = c.shown != noFolder;
        if (!folder) fs::remove_all(dir / "updates");
        const fs::path file = folder ? dir / "updates" / "new.zip" : dir / "updates";
        WriteFile(file, folder ? "an older update" : "not a folder");
        const std::size_t before = server.Requests().size();
        // As after a check that offered it.
        form->updateURL = c.url;
        form->cmdDownloadVisible = true;
        form->cmdCheckVisible = false;
        form->Download();
        ASSERT_TRUE(WaitUntil([&] { return form->DL().Running() == 0; }));
        EXPECT_EQ(user.Take(), std::vector<Shown>{c.shown});
        EXPECT_EQ(form->lblUpdateMsg, "Update failed.");
        EXPECT_EQ(server.Requests().size() > before, c.fetched);
        EXPECT_EQ(ReadFile(file), folder ? "an older update" : "not a folder");
        if (folder) { EXPECT_EQ(FolderNames(dir / "updates"), std::set<std::string>{"new.zip"}); }
        ExpectReady();
    }
    EXPECT_EQ(FolderNames(dir.path()), std::set<std::string>{"updates"});
}

TEST_F(Download, CancelAbandonsARunningTransfer) {
    server.Serve("/files/new.zip", HttpReply{.body = Pattern(8192), .chunkSize = 1024, .chunkGapMs = 60});
    form->updateURL = server.Url("/files/new.zip");
    form->Download();
    ASSERT_TRUE(WaitUntil([&] { return form->progValue > 0; }));
    form->Cancel();
    EXPECT_EQ(form->DL().Running(), 0u);
    WaitUntil([] { return false; }, 500);  // the server sends the rest meanwhile
    EXPECT_FALSE(fs::exists(dir / "updates" / "new.zip"));
    EXPECT_TRUE(user.Take().empty());
    ExpectReady();
}

}  // namespace
