#include "app/progress.h"
#include "core/ini_document.h"
#include "discover/find_texts.h"
#include "discover/offset_merge.h"
#include "edit/add_offset_form.h"
#include "support/progress_recorder.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

namespace quillon::discover {
namespace {

using test::Bytes;

FoundText Found(std::uint32_t offset, std::string preview) {
    FoundText f;
    f.offset = offset;
    f.preview = std::move(preview);
    return f;
}

TEST(KeyNameFor, FirstWordsInANameTheFileCanHold) {
    struct Case {
        const char* preview;
        const char* key;
    } cases[] = {
        {"Welcome to the world of Zalbor! Have fun.", "Welcome to the world of"},
        {"[PLAYER], come here = now", "PLAYER come here now"},
        {"; # [Odd] name", "Odd name"},
        {"  Parents say hi", "parents say hi"},
        {"Caf\xC3\xA9 open", "Caf\xE9 open"},  // Latin-1 in the file
        {"Superlongwordwithoutanyblanksinitatall", "Superlongwordwithoutanyblanksi"},
        {"... [...] ?!", "Text 3A0010"},
    };
    for (const Case& c : cases) {
        const std::string key = KeyNameFor(c.preview, 0x3A0010);
        EXPECT_EQ(key, c.key) << c.preview;
        EXPECT_TRUE(UsableKeyName(key)) << key;
    }
}

TEST(MergeFoundTexts, KeepsTheFileAndAddsEachNewOffsetOnce) {
    const std::string before = "' head without a line end\r\n[Town]\r\nMom=1001";
    const std::vector<FoundText> found = {
        Found(0x1001, "Mom's text"), Found(0x3A0100, "Welcome home!"), Found(0x3A0010, "Welcome home!"),
        Found(0x3B0000, "; [Odd] = name"), Found(0x3A0100, "Welcome home!")};
    const Merge m = MergeFoundTexts(before, found);
    EXPECT_EQ(m.added, 3u);
    EXPECT_EQ(m.listed, 1u);
    EXPECT_EQ(m.text, before + "\r\n[Texts 3A0000-3AFFFF]\r\nWelcome home!=3A0010\r\nWelcome home! 2=3A0100\r\n"
                                "[Texts 3B0000-3BFFFF]\r\nOdd name=3B0000\r\n");
    EXPECT_EQ(MergeFoundTexts(m.text, found).text, m.text);  // a second scan adds nothing
}

TEST(MergeFoundTexts, SplitsCrowdedAreasAndNeverReusesASectionName) {
    std::vector<FoundText> found;
    for (std::uint32_t i = 0; i < 650; ++i) found.push_back(Found(0x100000 + 16 * i, "Same words"));
    found.push_back(Found(0x3A0010, "Hello"));
    const Merge m = MergeFoundTexts("[Texts 3A0000-3AFFFF]\r\nOld=3A0000\r\n", found);
    const ini::IniDocument doc(m.text);
    std::vector<std::string> names;
    std::size_t keys = 0;
    for (const auto& s : doc.Sections()) {
        names.emplace_back(s.name);
        EXPECT_LE(doc.Keys(s).size(), kMaxSectionEntries);
        keys += doc.Keys(s).size();
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Texts 3A0000-3AFFFF", "Texts 100000-1012B0", "Texts 1012C0-102570",
                                               "Texts 102580-102890", "Texts 3A0000-3AFFFF (2)"}));
    EXPECT_EQ(keys, 652u);
}

TEST(MergeFoundTexts, NamesGoToSectionsOfTheirOwnThatGiveTheirField) {
    auto name = [](std::uint32_t offset, const char* preview, const char* section, std::uint32_t length,
                   std::uint32_t stride) {
        FoundText f = Found(offset, preview);
        f.section = section, f.fixedLength = length, f.recordStride = stride;
        return f;
    };
    FoundText text = Found(0x3A0010, "Welcome");
    text.section = "Species names";  // a text of a use by that name stays apart from the names
    const Merge m = MergeFoundTexts("", {name(0x20000, "BULB", "Species names", 11, 11),
                                         name(0x26000, "BALL", "Item names", 14, 44), text});
    EXPECT_EQ(m.text, "[Species names]\r\nWelcome=3A0010\r\n"
                      "[Item names]\r\n; Fixed length: 14 bytes, padded with 00, records of 44 bytes\r\nBALL=26000\r\n"
                      "[Species names (2)]\r\n; Fixed length: 11 bytes, padded with 00\r\nBULB=20000\r\n");
}

// Opening a ROM without an offset file offers to look for its texts; they go
// in after a yes, and neither a no nor a cancelled scan writes anything.
TEST(FindTextsInRom, AddsTheTextsAfterYesOnlyAndRebuildsTheTree) {
    test::Workspace w;
    test::StoryRom()
        .Put(0x180000, Bytes("FFC2D9E0E0E300E8DCD9E6D9ADFFC1E3E3D800D8D5EDABFF"))  // Hello there. / Good day!
        .Pointer(0x190000, 0x180001)
        .Pointer(0x190004, 0x18000E)
        .Save(w.Rom());
    w.user.Yes().Yes().No();  // create the offset file, look for the texts, but do not add them
    w.Open();
    const auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 5u);
    EXPECT_EQ(shown[3], test::Ask(std::string(kOfferFindTexts)));
    EXPECT_NE(shown[4].text.find("Found 2 texts in the ROM.\r\n0 of them are in the offset file already."),
              std::string::npos);
    EXPECT_NE(shown[4].text.find("180001  Hello there."), std::string::npos);
    const std::string created = test::ReadFile(w.OffsetFile());
    NoProgress quiet;
    test::ProgressRecorder stop;
    stop.stopAtStep = 1;
    w.user.No();
    EXPECT_FALSE(FindTextsInRom(w.session, quiet));
    EXPECT_FALSE(FindTextsInRom(w.session, stop));
    EXPECT_EQ(w.user.Take().size(), 1u);  // the question; the cancelled scan asks nothing
    EXPECT_EQ(test::ReadFile(w.OffsetFile()), created);
    EXPECT_TRUE(w.session.tree.Nodes().empty());

    // An entry added while the question is open stays beside the found texts.
    w.user.Yes();
    w.user.atNextQuestion = [&] { test::WriteFile(w.OffsetFile(), created + "\r\n[Mine]\r\nKept=180001\r\n"); };
    EXPECT_TRUE(FindTextsInRom(w.session, quiet));
    std::vector<std::string> nodes;
    for (const auto& n : w.session.tree.Nodes()) nodes.push_back(n.text);
    EXPECT_EQ(nodes, (std::vector<std::string>{"Mine", "Kept", "Texts 180000-18FFFF", "Good day!"}));

    // A second scan finds nothing new and says so.
    const std::string file = test::ReadFile(w.OffsetFile());
    w.user.Take();
    EXPECT_FALSE(FindTextsInRom(w.session, quiet));
    EXPECT_EQ(w.user.Take().at(0).kind, test::Shown::Message);
    EXPECT_EQ(test::ReadFile(w.OffsetFile()), file);
}

}  // namespace
}  // namespace quillon::discover
