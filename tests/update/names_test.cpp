// File names from download addresses, the binary version comparison and the
// redirect rule.
#include "update/last_slash.h"
#include "update/redirect_policy.h"
#include "update/version_compare.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;

namespace {

TEST(LastSlash, TakesThePartAfterTheLastSlash) {
    const std::pair<std::string, std::string> cases[] = {
        {"http://host/updates/new.zip", "new.zip"},
        {"new.zip", "new.zip"},
        {"http://host/dir/", ""},
        {"/", ""},
        {"", ""},
        {"a\\b/c\\d.zip", "c\\d.zip"},
        {"http://host/new.zip\r\n", "new.zip\r\n"},
    };
    for (const auto& [text, name] : cases) EXPECT_EQ(GetLastSlash(text), name) << text;
}

TEST(LastSlash, OnlyPlainNamesAreSafeInTheUpdatesFolder) {
    for (const char* good : {"new.zip", "quillon-3.1.2.exe", ".hidden", "...", "a b.zip", "caf\xC3\xA9.zip"})
        EXPECT_TRUE(IsSafeUpdateFileName(good)) << good;
    for (std::string bad : {"", ".", "..", "a/b", "..\\evil.exe", "new.zip\r\n", "new\tzip", "x\x7F"})
        EXPECT_FALSE(IsSafeUpdateFileName(bad)) << bad;
    EXPECT_FALSE(IsSafeUpdateFileName(std::string("a\0b", 3)));
}

TEST(VersionCompare, ComparesCharacterCodesNotNumbers) {
    struct Case {
        const char* remote;
        const char* current;
        bool newer;
    } cases[] = {
        {"3.1.2", "3.1.1", true},     {"3.1.1", "3.1.1", false},  {"3.1.0", "3.1.1", false},
        {"3.10.0", "3.1.1", true},    {"3.9", "3.10.0", true},    {"3.1.1\n", "3.1.1", true},
        {"3.1.2\r\n", "3.1.1", true}, {"3.1", "3.1.1", false},    {"No", "3.1.1", true},
        {"", "3.1.1", false},         {"\xC3\xA9", "3.1.1", true},  // bytes above 0x7F count as large
    };
    for (const Case& c : cases) EXPECT_EQ(IsNewerVersion(c.remote, c.current), c.newer) << c.remote << " vs " << c.current;
}

TEST(VersionCompare, TheProgramIsVersion3Point1Point1) { EXPECT_EQ(CurrentVersionText(), "3.1.1"); }

TEST(RedirectPolicy, FollowsHttpsAnywhereAndPlainHttpOnlyOnTheSameHost) {
    struct Case {
        const char* from;
        const char* to;
        bool allowed;
    } cases[] = {
        {"http://a.test/x", "http://a.test/y", true},
        {"http://a.test:80/x", "http://A.TEST/y", true},
        {"http://a.test/x", "/elsewhere/y", true},
        {"http://a.test:8080/x", "http://a.test:9090/y", false},
        {"http://a.test/x", "http://b.test/y", false},
        {"http://a.test/x", "https://b.test/y", true},
        {"https://a.test/x", "https://b.test/y", true},
        {"https://a.test/x", "http://a.test/y", false},
        {"http://a.test/x", "ftp://a.test/y", false},
        {"http://a.test/x", "file:///etc/passwd", false},
    };
    for (const Case& c : cases) EXPECT_EQ(RedirectAllowed(c.from, c.to), c.allowed) << c.from << " -> " << c.to;
}

}  // namespace
