#include <quillon/inifile.h>

#include "core/file_io.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon;
using namespace quillon::test;
namespace fs = std::filesystem;

namespace {

class IniFile : public ::testing::Test {
protected:
    void SetUp() override { ini.SetPath(file); }
    cInifile& At(std::string section, std::string key = {}) {
        ini.SetSection(std::move(section));
        ini.SetKey(std::move(key));
        return ini;
    }
    TempDir dir;
    fs::path file = dir / "game.ini";
    cInifile ini;
};

// A comment head, LF-only lines, a comment, an odd line, a blank line and a
// last line without a line end.
const std::string kMixed =
    "'head\r\nMom=never read\r\n[Town]\n  Mom = 100  \n; Sign=comment\r\nodd line\r\nSign=200\r\n\r\n"
    "[Lab]\r\nOak=300";

}  // namespace

TEST_F(IniFile, ValueReadsKeysOfSectionsByTheirRules) {
    WriteFile(file, "'[Head]\r\nk=head\r\n[ Town ]\r\n k = v1 \r\nEq=a=b\r\nQ=\"  q \"\r\nOne='x\r\nEmpty=\r\n;C=1\r\n"
                    "[\xC4rea]\nSch\xF6n=\xE9t\xE9\n[Town]\r\nk=second\r\n[Last]\r\nEnd=" +
                        std::string(300, 'x'));
    ini.SetDefault("dflt  ");
    struct Case { const char* section; const char* key; std::string expected; };
    const Case cases[] = {
        {" town ", " K", "v1"},                // trimmed, case-insensitive; the second [Town] unread
        {"Town", "Eq", "a=b"},                 // split at the first '='
        {"Town", "Q", "  q "},                 // one pair of quotes dropped
        {"Town", "One", "'x"},
        {"Town", "Empty", ""},                 // present but empty is not the default
        {"Town", "C", "dflt"},                 // a comment is no key; trailing blanks leave the default
        {"\xC4rea", "Sch\xF6n", "\xE9t\xE9"},  // Latin-1 bytes as they stand
        {"\xE4rea", "Sch\xF6n", "dflt"},       // no case folding beyond ASCII
        {"Last", "End", std::string(254, 'x')},
        {"Head", "k", "dflt"},                 // the comment head is never read
        {"Missing", "k", "dflt"},
    };
    for (const auto& c : cases) EXPECT_EQ(At(c.section, c.key).Value(), c.expected) << c.section << "/" << c.key;
    for (const fs::path& p : {dir / "none.ini", dir.path()}) {
        ini.SetPath(p);
        EXPECT_EQ(At("Town", "k").Value(), "dflt");
    }
}

TEST_F(IniFile, WritesKeepEveryOtherLineByteForByte) {
    WriteFile(file, kMixed);
    At("Town", "Mom").SetValue("100");  // the same value: the line stays as it is
    EXPECT_EQ(ReadFile(file), kMixed);
    At("Town", "Sign").SetValue("2A0");
    At("town", "NEW").SetValue("1");      // after the section's last key, before the blank line
    At("Lab", "Prof").SetValue("5");      // the last line receives a line end first
    At("Route 1", "Sign").SetValue("7");  // a new section at the end
    At("TOWN", "mom").SetValue(std::string("1\0" "01", 4));  // zeros dropped; the file's spelling stays
    EXPECT_EQ(ini.LastReturnCode(), 1);
    EXPECT_EQ(ReadFile(file),
              "'head\r\nMom=never read\r\n[Town]\nMom=101\r\n; Sign=comment\r\nodd line\r\nSign=2A0\r\nNEW=1\r\n"
              "\r\n[Lab]\r\nOak=300\r\nProf=5\r\n[Route 1]\r\nSign=7\r\n");

    const std::string latin = "\xC4\xE9\xFF\x80";
    fs::remove(file);
    At(latin, latin).SetValue(latin);  // a new file
    EXPECT_EQ(ReadFile(file), "[" + latin + "]\r\n" + latin + "=" + latin + "\r\n");
    EXPECT_EQ(At(latin, latin).Value(), latin);

    ini.SetPath(dir / "missing" / "game.ini");
    At("S", "k").SetValue("1");
    EXPECT_FALSE(ini.Success());
    EXPECT_FALSE(fs::exists(dir / "missing"));
}

TEST_F(IniFile, FailedWritesLeaveTheFileUntouched) {
    const std::string original = "[Town]\r\nMom=1\r\n";
    const fs::path locked = dir / "locked.ini", folder = dir / "folder.ini";
    WriteFile(locked, original);
    MakeReadOnly(locked);
    fs::create_directory(folder);
    void (*writes[])(cInifile&) = {[](cInifile& i) { i.SetValue("2"); }, [](cInifile& i) { i.DeleteKey(); },
                                   [](cInifile& i) { i.DeleteSection(); }};
    for (auto write : writes) {
        WriteFile(file, original);
        ini.SetPath(file);
        write(At("Nowhere", "x"));  // changes nothing or adds a section: a success
        ASSERT_EQ(ini.LastReturnCode(), 1);
        WriteFile(file, original);
        {
            io::ScopedWriteHook failing([](const fs::path&) { return false; });
            write(At("Town", "Mom"));
        }
        EXPECT_EQ(ini.LastReturnCode(), 0);
        EXPECT_FALSE(ini.Success());
        EXPECT_EQ(ReadFile(file), original);

        for (const fs::path& p : {locked, folder}) {
            ini.SetPath(p);
            write(At("Town", "Mom"));
            EXPECT_FALSE(ini.Success()) << p;
            write(At("Nowhere", "x"));  // refused even when nothing would change
            EXPECT_FALSE(ini.Success()) << p;
        }
        EXPECT_EQ(ReadFile(locked), original);
        EXPECT_TRUE(fs::is_empty(folder));
    }
    std::vector<fs::path> left;
    for (const auto& entry : fs::directory_iterator(dir.path())) left.push_back(entry.path().filename());
    EXPECT_EQ(left.size(), 3u);  // no temporary file behind
}

// A rewrite replaces only the file it means: a user's own ".tmp" file and a
// link's target survive, a link stays a link, and the permissions stay.
TEST_F(IniFile, RewritesKeepLinksPermissionsAndOtherFiles) {
    const fs::path target = dir / "real.ini", link = dir / "link.ini", mine = dir / "game.ini.tmp";
    WriteFile(target, "[Town]\r\nMom=1\r\n");
    fs::create_symlink("real.ini", link);
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
    WriteFile(mine, "the user's own file");
    WriteFile(file, "[Town]\r\n");
    At("Town", "Mom").SetValue("5");
    ini.SetPath(link);
    At("Town", "Mom").SetValue("2");
    ASSERT_TRUE(ini.Success());
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(ReadFile(target), "[Town]\r\nMom=2\r\n");
    EXPECT_EQ(fs::status(target).permissions() & fs::perms::mask, fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(ReadFile(mine), "the user's own file");
    EXPECT_EQ(ReadFile(file), "[Town]\r\nMom=5\r\n");
}

TEST_F(IniFile, DeleteKeyAndDeleteSection) {
    WriteFile(file, kMixed + "\r\n[town]\r\nx=1\r\n[End]\r\n");
    std::string expected = ReadFile(file);
    expected.erase(expected.find("Sign=200\r\n"), 10);
    At("Town", "sign").DeleteKey();
    EXPECT_TRUE(ini.Success());
    EXPECT_EQ(ReadFile(file), expected);

    At("TOWN").DeleteSection();  // every section of the name, with all its lines
    EXPECT_TRUE(ini.Success());
    const std::string left = "'head\r\nMom=never read\r\n[Lab]\r\nOak=300\r\n[End]\r\n";
    EXPECT_EQ(ReadFile(file), left);
    EXPECT_EQ(At("Town", "Mom").Value(), "");
    EXPECT_EQ(ini.Sections(), std::string("Lab\0End\0", 8));

    // Deleting what is not there succeeds and writes nothing, not even a new file.
    At("Lab", "Nobody").DeleteKey();
    EXPECT_TRUE(ini.Success());
    At("Nowhere").DeleteSection();
    EXPECT_TRUE(ini.Success());
    EXPECT_EQ(ReadFile(file), left);
    ini.SetPath(dir / "absent.ini");
    At("Town", "Mom").DeleteKey();
    EXPECT_TRUE(ini.Success());
    EXPECT_FALSE(fs::exists(dir / "absent.ini"));
}

// Section headers count only at line starts; names end with a zero each.
TEST_F(IniFile, SectionHeadersAreFoundOnlyAtLineStarts) {
    const std::pair<std::string, std::string> cases[] = {
        {"[A]\r\n[B]", {"A\0B\0", 4}},
        {"\xEF\xBB\xBF[A]\n", {"A\0", 2}},                       // byte order mark passed over
        {" \t[ A b ]  \r\n", {"A b\0", 4}},                        // blanks before '[' and inside
        {"[A]b]\n[C] ; note\n", {"A]b\0C\0", 6}},                  // up to the line's last ']'
        {"[A\nx=[B]\n'[C]\nx [D]\n[[E]] [F\n", {"[E]\0", 4}},      // no ']', or not first on the line
        {"\r\r[A]\n", {"A\0", 2}},                                 // CR counts as a blank
        {"a\r[A]\n", ""},                                           // a lone CR ends no line
        {"[A]\n\n[A]\n", {"A\0A\0", 4}},
    };
    for (const auto& [text, sections] : cases) {
        WriteFile(file, text);
        EXPECT_EQ(ini.Sections(), sections) << text;
    }
}

TEST_F(IniFile, ListsAndEnumerations) {
    WriteFile(file, "'head\r\n[a]\r\n[]\r\n[Keys]\r\na=1\r\n=2\r\nb=3\r\n ; c=4\r\nc=5\r\n[Empty]\r\n");
    EXPECT_EQ(ini.Sections(), std::string("a\0\0Keys\0Empty\0", 14));
    EXPECT_EQ(At("keys").INISection(), std::string("a\0\0b\0c\0", 7));
    std::vector<std::string> names{"stale"};
    std::int32_t count = -1;
    ini.EnumerateAllSections(names, count);  // the empty name is skipped
    EXPECT_EQ(names, (std::vector<std::string>{"a", "Keys", "Empty"}));
    EXPECT_EQ(count, 3);
    At("Keys").EnumerateCurrentSection(names, count);  // the empty key name is kept
    EXPECT_EQ(names, (std::vector<std::string>{"a", "", "b", "c"}));
    EXPECT_EQ(count, 4);
}

TEST_F(IniFile, NameListsKeepOnlyNamesThatFitIn8190Characters) {
    // 818 names of 9 characters take 8180 characters with their zeros; a last
    // name is seen when its zero is character 8190 at the latest.
    std::string sections, keys, list;
    for (int i = 0; i < 818; ++i) {
        std::string name = "N" + std::string(8 - std::to_string(i).size(), '0') + std::to_string(i);
        sections += "[" + name + "]\r\n";
        keys += name + "=1\r\n";
        list += name + '\0';
    }
    for (std::size_t lastLength : {9u, 10u, 11u}) {
        SCOPED_TRACE(lastLength);
        const std::string last(lastLength, 'Z');
        WriteFile(file, sections + "[" + last + "]\r\n[Keys]\r\n" + keys + last + "=1\r\n");
        const std::string expected = list + (last + '\0').substr(0, 10);
        EXPECT_EQ(ini.Sections(), expected);  // the "Keys" after it is cut off too
        EXPECT_EQ(At("Keys").INISection(), expected);
        std::vector<std::string> names;
        std::int32_t count = 0;
        ini.EnumerateAllSections(names, count);
        EXPECT_EQ(count, lastLength == 9 ? 819 : 818);
        EXPECT_EQ(names.back(), lastLength == 9 ? last : "N00000817");
    }
}

TEST_F(IniFile, CLngDefaultConvertsDecimal32BitNumbers) {
    struct Case { const char* text; std::int32_t expected; };
    const Case cases[] = {
        {"123", 123}, {"-42", -42}, {"+7", 7}, {"  15\t", 15}, {"2147483647", 2147483647}, {"", -1},
        {"-2147483648", INT32_MIN}, {"2147483648", -1}, {"-2147483649", -1}, {"-", -1}, {"12a", -1},
    };
    for (const auto& c : cases) EXPECT_EQ(ini.CLngDefault(c.text, -1), c.expected) << '"' << c.text << '"';
    EXPECT_EQ(ini.CLngDefault("x"), 0);
}
