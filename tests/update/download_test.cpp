// The download into the updates folder: progress, the file as received,
// refused names, broken and empty transfers, redirects and restarts.
#include "update_fixture.h"

#include <filesystem>
#include <set>

using namespace quillon;
using namespace quillon::test;

namespace {

namespace fs = std::filesystem;

const Shown kFailed = Msg(Icon::Critical, "The update failed.", "Error");
const Shown kSucceeded = Msg(Icon::Information, "The update was successfull.\r\nCheck the Updates folder!",
                             "Update downloaded!");

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

class Download : public UpdateFixture {
protected:
    void SetUp() override { fs::create_directory(dir / "updates"); }
    // Download with `url` as the download address, then wait until the
    // transfer has ended.
    void DownloadAndWait(std::string url) {
        form->updateURL = std::move(url);
        form->cmdDownloadVisible = true;
        form->cmdCheckVisible = false;
        form->Download();
        ASSERT_TRUE(WaitUntil([&] { return form->DL().Running() == 0; }));
    }
};

TEST_F(Download, ACheckedUpdateLandsByteExactWithProgressInSteps) {
    const std::string bytes = Pattern(64 * 1024);
    HttpReply file = Body(bytes);
    file.chunkSize = 16 * 1024;
    file.chunkGapMs = 130;  // longer than the 100 ms Qt keeps between progress notices
    server.Serve("/files/new.zip", file);
    ServeFiles("3.1.2", server.Url("/files/new.zip"));
    WriteFile(dir / "updates" / "new.zip", "an older update");
    CheckAndWait();
    ASSERT_TRUE(form->cmdDownloadVisible);

    std::vector<std::pair<std::int32_t, std::string>> progress;
    form->OnChanged([&] {
        if (progress.empty() || progress.back().second != form->label1)
            progress.emplace_back(form->progValue, form->label1);
    });
    form->Download();
    EXPECT_EQ(form->lblUpdateMsg, "Downloading the update...");
    ExpectReady();
    ASSERT_TRUE(WaitUntil([&] { return form->DL().Running() == 0; }));

    EXPECT_EQ(form->updateSavePath, dir / "updates" / "new.zip");
    EXPECT_EQ(ReadFile(dir / "updates" / "new.zip"), bytes);
    EXPECT_EQ(FolderNames(dir / "updates"), std::set<std::string>{"new.zip"});
    ASSERT_GE(progress.size(), 3u);  // the start, at least one step between, the last notice
    EXPECT_LT(progress[progress.size() - 2].first, 65536);
    EXPECT_EQ(progress.back().second, "Downloaded: 65536 / 65536 Bytes.");
    EXPECT_EQ(form->progMax, 65536);
    EXPECT_EQ(form->progValue, 0);
    EXPECT_EQ(form->lblUpdateMsg, "Update successfull.");
    EXPECT_EQ(user.Take(), std::vector<Shown>{kSucceeded});
    EXPECT_EQ(server.Requests().back().headers.at("cache-control"), "no-cache");
}

TEST_F(Download, HostileFileNamesAreRefusedBeforeAnythingIsFetched) {
    for (std::string tail : {"/files/", "/files/.", "/files/..", "/files/..\\..\\evil.exe", "/files/new.zip\r\n",
                             "/files/ne\x01w.zip"}) {
        DownloadAndWait(server.Url(tail));
        EXPECT_EQ(form->lblUpdateMsg, "Update failed.") << tail;
        EXPECT_EQ(user.Take(), std::vector<Shown>{Msg(Icon::Critical, "The update failed.",
                                                      "Error 52: Bad file name or number")})
            << tail;
        ExpectReady();
    }
    EXPECT_TRUE(server.Requests().empty());
    EXPECT_EQ(FolderNames(dir.path()), std::set<std::string>{"updates"});
    EXPECT_TRUE(fs::is_empty(dir / "updates"));
}

TEST_F(Download, ATransferCutOffHalfWayLeavesTheOlderFileAlone) {
    HttpReply cut = Body(Pattern(8192));
    cut.cutAfter = 4096;
    server.Serve("/files/new.zip", cut);
    WriteFile(dir / "updates" / "new.zip", "an older update");
    DownloadAndWait(server.Url("/files/new.zip"));
    EXPECT_EQ(ReadFile(dir / "updates" / "new.zip"), "an older update");
    EXPECT_EQ(FolderNames(dir / "updates"), std::set<std::string>{"new.zip"});
    EXPECT_EQ(form->lblUpdateMsg, "Update failed.");
    EXPECT_EQ(user.Take(), std::vector<Shown>{kFailed});
    ExpectReady();
}

TEST_F(Download, FailedAndEmptyTransfersWriteNothing) {
    HttpReply unsized = Body("");
    unsized.contentLength = false;
    HttpReply missing = Status(404, "Not Found");
    missing.body.clear();
    server.Serve("/files/missing.zip", missing);
    server.Serve("/files/empty.zip", Body(""));
    server.Serve("/files/unsized.zip", unsized);
    for (std::string url : {server.Url("/files/missing.zip"), server.Url("/files/empty.zip"),
                            server.Url("/files/unsized.zip"), std::string("ftp://127.0.0.1/files/new.zip")}) {
        DownloadAndWait(url);
        // An empty transfer is reported once, as failed, and never as done.
        EXPECT_EQ(user.Take(), std::vector<Shown>{kFailed}) << url;
        EXPECT_EQ(form->lblUpdateMsg, "Update failed.") << url;
        EXPECT_EQ(form->label1, "Downloaded: 0 / 0 Bytes.") << url;
        ExpectReady();
    }
    EXPECT_TRUE(fs::is_empty(dir / "updates"));
}

TEST_F(Download, RedirectsStayOnTheHostOrGoToHttps) {
    LocalHttpServer other("127.0.0.2");
    other.Serve("/new.zip", Body("elsewhere"));
    server.Serve("/go/new.zip", Redirect("/files/real.zip"));
    server.Serve("/files/real.zip", Body("the update"));
    server.Serve("/away/other.zip", Redirect(other.Url("/new.zip"), 301));

    DownloadAndWait(server.Url("/go/new.zip"));
    EXPECT_EQ(ReadFile(dir / "updates" / "new.zip"), "the update");
    EXPECT_EQ(user.Take(), std::vector<Shown>{kSucceeded});

    DownloadAndWait(server.Url("/away/other.zip"));
    EXPECT_TRUE(other.Requests().empty());
    EXPECT_FALSE(fs::exists(dir / "updates" / "other.zip"));
    EXPECT_EQ(user.Take(), std::vector<Shown>{kFailed});
}

TEST_F(Download, AnUpdatesFolderThatIsAFileFailsAfterThreeRestarts) {
    fs::remove(dir / "updates");
    WriteFile(dir / "updates", "not a folder");
    DownloadAndWait(server.Url("/files/new.zip"));
    EXPECT_TRUE(server.Requests().empty());
    EXPECT_EQ(form->lblUpdateMsg, "Update failed.");
    EXPECT_EQ(user.Take(),
              std::vector<Shown>{Msg(Icon::Critical, "The update failed.", "Error 75: Path/File access error")});
    ExpectReady();
}

TEST_F(Download, CancelAbandonsARunningTransfer) {
    HttpReply slow = Body(Pattern(8192));
    slow.chunkSize = 1024;
    slow.chunkGapMs = 60;
    server.Serve("/files/new.zip", slow);
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

TEST(Downloader, AnEmptyTransferRaisesErrorThenCompleteWithZero) {
    LocalHttpServer server;
    server.Serve("/empty", Body(""));
    TempDir dir;
    Downloader dl;
    std::vector<std::string> events;
    dl.DownloadError = [&](const fs::path& f) { events.push_back("error " + f.filename().string()); };
    dl.DownloadComplete = [&](std::int32_t max, const fs::path& f) {
        events.push_back("complete " + std::to_string(max) + " " + f.filename().string());
    };
    dl.DownloadProgress = [&](std::int32_t, std::int32_t max, const fs::path&) {
        events.push_back("progress " + std::to_string(max));
    };
    EXPECT_FALSE(dl.BeginDownload(server.Url("/empty"), dir / "e.bin").has_value());
    ASSERT_TRUE(WaitUntil([&] { return dl.Running() == 0; }));
    EXPECT_EQ(events, (std::vector<std::string>{"error e.bin", "complete 0 e.bin"}));
    EXPECT_FALSE(fs::exists(dir / "e.bin"));
}

}  // namespace
