// The version check against a local update server: the answers of the two
// server files, the failures and the window's state while checking.
#include "update_fixture.h"

#include <filesystem>

using namespace quillon;
using namespace quillon::test;

namespace {

const std::vector<std::string> kBothFiles = {"/updates/quillon.txt", "/updates/quillon2.txt"};

struct VersionCase {
    const char* name;
    std::string body;
    std::string current;
    std::string status;
    bool offered;
};

void PrintTo(const VersionCase& c, std::ostream* os) { *os << c.name; }

class CheckVersions : public UpdateFixture, public ::testing::WithParamInterface<VersionCase> {};

TEST_P(CheckVersions, FetchesBothFilesThenComparesTheBodyAsItStands) {
    const VersionCase& c = GetParam();
    form = MakeForm(dir.path(), c.current);
    ServeFiles(c.body, server.Url("/files/new.zip"));
    CheckAndWait();

    EXPECT_EQ(server.Paths(), kBothFiles);
    EXPECT_EQ(server.Requests()[0].headers.at("cache-control"), "no-cache");  // never from a cache
    EXPECT_TRUE(std::filesystem::is_directory(dir / "updates"));
    EXPECT_EQ(form->remoteVersion, c.body);
    EXPECT_EQ(form->updateURL, server.Url("/files/new.zip"));
    EXPECT_EQ(form->lblUpdateMsg, c.status);
    EXPECT_EQ(form->cmdDownloadVisible, c.offered);
    EXPECT_EQ(form->cmdCheckVisible, !c.offered);
    EXPECT_TRUE(form->cmdCheckEnabled);
    EXPECT_FALSE(form->busy);
    EXPECT_TRUE(user.Take().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Bodies, CheckVersions,
    ::testing::Values(
        VersionCase{"Newer", "3.1.2", "3.1.1", "There's an update from v3.1.1 to v3.1.2 available.", true},
        VersionCase{"Same", "3.1.1", "3.1.1", "There is no update available.", false},
        VersionCase{"Older", "3.0.9", "3.1.1", "There is no update available.", false},
        VersionCase{"TenAfterOne", "3.10.0", "3.1.1", "There's an update from v3.1.1 to v3.10.0 available.", true},
        VersionCase{"NineAfterTen", "3.9", "3.10.0", "There's an update from v3.10.0 to v3.9 available.", true},
        VersionCase{"NewerWithLineBreak", "3.1.2\r\n", "3.1.1",
                    "There's an update from v3.1.1 to v3.1.2\r\n available.", true},
        VersionCase{"SameWithLineBreak", "3.1.1\n", "3.1.1", "There's an update from v3.1.1 to v3.1.1\n available.",
                    true},
        VersionCase{"CapitalNo", "No", "3.1.1", "There's an update from v3.1.1 to vNo available.", true},
        VersionCase{"NoWithLineBreak", "no\n", "3.1.1", "There's an update from v3.1.1 to vno\n available.", true},
        VersionCase{"Empty", "", "3.1.1", "Update failed.", false}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(UpdateFixture, ExactlyNoSwitchesTheUpdateOff) {
    ServeFiles("no", server.Url("/files/new.zip"));
    CheckAndWait();
    EXPECT_EQ(server.Paths(), kBothFiles);
    EXPECT_EQ(form->lblUpdateMsg, "Update disabled.");
    EXPECT_EQ(user.Take(), std::vector<Shown>{Msg(Icon::Critical,
                                                  "The update feature has been disabled by the author. Please "
                                                  "try again later.")});
    ExpectReady();
}

struct FailureCase {
    const char* name;
    HttpReply version;
    HttpReply address;
    std::size_t requests;
    std::string title;
    std::string description;
};

void PrintTo(const FailureCase& c, std::ostream* os) { *os << c.name; }

class CheckFailures : public UpdateFixture, public ::testing::WithParamInterface<FailureCase> {};

TEST_P(CheckFailures, ReportTheNumberAndDescription) {
    const FailureCase& c = GetParam();
    server.Serve("/updates/quillon.txt", c.version);
    server.Serve("/updates/quillon2.txt", c.address);
    CheckAndWait();
    EXPECT_EQ(server.Requests().size(), c.requests);
    EXPECT_EQ(form->lblUpdateMsg, "Update failed.");
    EXPECT_EQ(user.Take(), std::vector<Shown>{Msg(Icon::Critical,
                                                  "An error has occured. Update failed.\r\n\r\nError description: "
                                                  "\r\n" + c.description,
                                                  c.title)});
    ExpectReady();
}

INSTANTIATE_TEST_SUITE_P(
    Http, CheckFailures,
    ::testing::Values(FailureCase{"VersionFileMissing", Status(404, "Not Found"), Body("x"), 1, "Error #404",
                                  "Not Found"},
                      FailureCase{"AddressFileMissing", Body("3.1.2"), Status(404, "Not Found"), 2, "Error #404",
                                  "Not Found"},
                      FailureCase{"ServerError", Status(503, "Service Unavailable"), Body("x"), 1, "Error #503",
                                  "Service Unavailable"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(UpdateFixture, AServerThatIsDownGivesTheConnectionError) {
    server.Close();
    CheckAndWait();
    EXPECT_EQ(form->lblUpdateMsg, "Update failed.");
    EXPECT_EQ(user.Take(), std::vector<Shown>{Msg(Icon::Critical,
                                                  "An error has occured. Update failed.\r\n\r\nError description: "
                                                  "\r\nConnection refused",
                                                  "Error #1")});
    ExpectReady();
}

TEST_F(UpdateFixture, ARedirectToAnotherHostOverHttpIsRefused) {
    LocalHttpServer other("127.0.0.2");
    other.Serve("/v.txt", Body("9.9.9"));
    server.Serve("/updates/quillon.txt", Redirect(other.Url("/v.txt")));
    CheckAndWait();
    EXPECT_TRUE(other.Requests().empty());
    const std::vector<Shown> shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].title, "Error #11");
    EXPECT_NE(shown[0].text.find("Redirect to " + other.Url("/v.txt") + " refused"), std::string::npos);
}

TEST_F(UpdateFixture, ASecondClickWhileCheckingStartsNothing) {
    HttpReply slow = Body("3.1.2");
    slow.delayMs = 150;
    server.Serve("/updates/quillon.txt", slow);
    server.Serve("/updates/quillon2.txt", Body(server.Url("/files/new.zip")));
    form->Check();
    EXPECT_TRUE(form->busy);
    EXPECT_FALSE(form->cmdCheckEnabled);
    EXPECT_EQ(form->lblUpdateMsg, "Please wait...");
    form->Check();
    ASSERT_TRUE(WaitUntil([&] { return !form->busy; }));
    EXPECT_EQ(server.Paths(), kBothFiles);
    EXPECT_TRUE(form->cmdDownloadVisible);
}

TEST_F(UpdateFixture, AnUpdatesFolderThatCannotBeMadeEndsTheCheckSilently) {
    WriteFile(dir / "blocker", "a file, not a folder");
    form = MakeForm(dir / "blocker" / "program");
    form->Check();
    EXPECT_TRUE(server.Requests().empty());
    EXPECT_TRUE(user.Take().empty());
    EXPECT_EQ(form->lblUpdateMsg, "Please wait...");
    EXPECT_TRUE(form->cmdCheckEnabled);
    EXPECT_FALSE(form->busy);
}

}  // namespace
