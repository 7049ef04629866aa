// Adding and deleting offset-file entries through the add-offset window.
#include "offsets/add_offset_form.h"
#include "support/workspace.h"

#include <quillon/rom.h>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

class Entries : public ::testing::Test {
protected:
    void SetUp() override {
        StoryRom().Save(w.Rom());
        w.WriteOffsetFile("[Town]\r\nMom=100000\r\nSign=100010\r\n[Lab]\r\nOak=100020\r\n");
        w.Open();
        w.user.Take();
    }
    // Opens the window empty and fills it as the user would.
    void AddThroughWindow(std::string section, std::string key, std::string offset, bool* added = nullptr) {
        w.user.Then(FakePrompter::AddOffsetAction([=](AddOffsetForm& f) {
            f.sectionName = section;
            f.textName = key;
            f.offsetDecimal = offset;
            bool closed = f.Add();
            if (added) *added = closed;
        }));
        ShowAddOffset(w.session);
    }
    Workspace w;
};

}  // namespace

TEST_F(Entries, AddingWritesTheOffsetInHexAndSelectsTheNewEntry) {
    AddOffsetForm form(w.session);  // the sections to choose from; a preset offset is locked
    EXPECT_EQ(form.Sections(), (std::vector<std::string>{"Town", "Lab"}));
    form.ChooseSection(1);
    EXPECT_EQ(form.sectionName, "Lab");
    EXPECT_TRUE(form.offsetEnabled && form.cancelEnabled);
    AddOffsetForm preset(w.session, std::string("4096"));
    EXPECT_EQ(preset.offsetDecimal, "4096");
    EXPECT_TRUE(!preset.offsetEnabled && preset.cancelEnabled);  // only the "O&ffset" command disables Cancel
    EXPECT_FALSE(AddOffsetForm(w.session, std::string("4096"), false).cancelEnabled);
    bool closed = false;
    AddThroughWindow("Town", "Dad", "1000000", &closed);
    EXPECT_TRUE(closed);
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Town]\r\nMom=100000\r\nSign=100010\r\nDad=F4240\r\n[Lab]\r\nOak=100020\r\n");
    EXPECT_EQ(w.user.Take().back(), Msg(Icon::Information, "Text added successfully!"));
    ASSERT_NE(w.session.tree.SelectedNode(), nullptr);
    EXPECT_EQ(w.session.tree.SelectedNode()->key, "P0001Dad");
    EXPECT_EQ(w.session.controls.offsetCaption, "F4240");

    AddThroughWindow("Town", "Dad", "1048576");  // same name: replaced, still one node
    EXPECT_NE(ReadFile(w.OffsetFile()).find("Dad=100000\r\n"), std::string::npos);
    EXPECT_EQ(w.session.tree.Nodes().size(), 6u);
    AddThroughWindow("Route 1", "Boy", "16");
    EXPECT_EQ(w.session.tree.Nodes().back().key, "P0003Boy");
}

TEST_F(Entries, EmptyBoxesDoNothingAndBadInputIsRefusedWithTheWindowOpen) {
    const std::string before = ReadFile(w.OffsetFile());
    bool closed = true;
    AddThroughWindow("Town", "", "12", &closed);
    EXPECT_FALSE(closed);
    EXPECT_EQ(w.user.Take().size(), 1u);  // only the window itself

    // Keys the offset file could not hold: no later read would find them.
    const char* kBadKey =
        "A text name can't start with \";\" or \"#\", start or end with a blank, or contain line breaks, \"=\", "
        "\"[\" or \"]\": the offset file could not hold it.";
    const std::tuple<const char*, const char*, const char*, const char*> refused[] = {
        {"Town", "Dad", "12a", "The offset must be a whole number from 0 to 4294967295, in decimal or in hexadecimal written with 0x."},
        {"Town", "Dad", "-5", "The offset must be a whole number from 0 to 4294967295, in decimal or in hexadecimal written with 0x."},
        {"Town", "Dad", "1.5", "The offset must be a whole number from 0 to 4294967295, in decimal or in hexadecimal written with 0x."},
        {"Town", "Dad", "4294967296", "The offset must be a whole number from 0 to 4294967295, in decimal or in hexadecimal written with 0x."},
        {"Town", "Dad", "3145728", "The offset 3145728 lies past the end of the ROM (3145728 bytes)."},
        {"Town", "A=B", "16", kBadKey},
        {"Town", "A\r\nB", "16", kBadKey},
        {"Town", ";Mom", "16", kBadKey},
        {"Town", "#Mom", "16", kBadKey},
        {"Town", " Mom", "16", kBadKey},
        {"Town", "Mom ", "16", kBadKey},
        {"Town", "M[o]m", "16", kBadKey},
        {"[Town]", "Dad", "16", "A section name can't contain line breaks, \"[\" or \"]\"."},
        {"To\nwn", "Dad", "16", "A section name can't contain line breaks, \"[\" or \"]\"."},
    };
    for (auto [section, key, offset, message] : refused) {
        AddThroughWindow(section, key, offset, &closed);
        EXPECT_FALSE(closed) << offset;
        EXPECT_EQ(w.user.Take().back(), Msg(Icon::Warning, message));
    }
    EXPECT_EQ(ReadFile(w.OffsetFile()), before);
}

TEST_F(Entries, DeletingATextOrASectionRebuildsTheTree) {
    const std::string before = ReadFile(w.OffsetFile());
    w.session.tree.Select(std::nullopt);
    DeleteOffset(w.session);  // nothing selected: nothing changes
    EXPECT_EQ(ReadFile(w.OffsetFile()), before);
    w.Select("Town", "Sign");
    DeleteOffset(w.session);
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Town]\r\nMom=100000\r\n[Lab]\r\nOak=100020\r\n");
    EXPECT_EQ(w.session.tree.Nodes().size(), 4u);

    w.session.tree.Select(0);  // the section node Town
    DeleteOffset(w.session);
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Lab]\r\nOak=100020\r\n");
    EXPECT_EQ(w.session.tree.Nodes()[0].key, "Parent0001");
    EXPECT_EQ(w.session.tree.Nodes()[0].text, "Lab");
    EXPECT_EQ(AddOffsetForm(w.session).Sections(), std::vector<std::string>{"Lab"});
    EXPECT_TRUE(w.user.Take().empty());

    // A write-protected file: reported, and the tree stays.
    MakeReadOnly(w.OffsetFile());
    w.Select("Lab", "Oak");
    DeleteOffset(w.session);
    EXPECT_EQ(w.user.Take().back(), Msg(Icon::Critical, "Error: Could not delete the Entry!"));
    w.session.tree.Select(0);
    DeleteOffset(w.session);
    EXPECT_EQ(w.user.Take().back(), Msg(Icon::Critical, "Error: Could not delete the Section!"));
    EXPECT_EQ(w.session.tree.Nodes().size(), 2u);
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Lab]\r\nOak=100020\r\n");
}
