// Start-up, opening a ROM with and without its offset file, the tree, adding
// and deleting entries through the add-offset window, and a translation
// exported and imported with a font whose "M" is 7 px wide.
#include "app/progress.h"
#include "discover/find_texts.h"
#include "edit/add_offset_form.h"
#include "edit/open_rom.h"
#include "offsets/offset_file.h"
#include "offsets/startup.h"
#include "support/workspace.h"
#include "translate/po_file.h"
#include "translate/translate_commands.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <gtest/gtest.h>

#include <tuple>

using namespace quillon;
using namespace quillon::test;

namespace {

const std::string kWarning =
    "Warning: Before using any ROM-Hacking tools, always remember to create Backup copies of your ROM!\r\n"
    "The creator of this Tool doesn't take any responsibility for what might happen to your ROM!";
const std::string kStory = "[Town]\r\nMom=100000\r\nSign=100010\r\n[Lab]\r\nOak=100020\r\n";

class App : public ::testing::Test {
protected:
    // StoryRom opened with `offsets` as its offset file.
    void OpenStory(std::string_view offsets = kStory) {
        StoryRom().Save(w.Rom());
        w.WriteOffsetFile(offsets);
        w.Open();
    }
    std::vector<std::string> Keys() const {
        std::vector<std::string> keys;
        for (const auto& n : w.session.tree.Nodes()) keys.push_back(n.key);
        return keys;
    }
    // Opens the add-offset window empty and fills it as the user would; whether it closed.
    bool AddThroughWindow(std::string section, std::string key, std::string offset) {
        bool closed = false;
        w.user.Then(FakePrompter::AddOffsetAction([&](AddOffsetFields& f) {
            f.sectionName = section;
            f.textName = key;
            f.offsetDecimal = offset;
            closed = f.Add();
        }));
        ShowAddOffset(w.session);
        return closed;
    }
    Workspace w;
};

}  // namespace

// WarningShown is read as a boolean word; a warning shown is remembered as
// True unless the settings file is write-protected.
TEST(StartUp, ShowsTheBackupWarningUntilItIsRememberedAsShown) {
    const struct {
        const char* value;
        bool shownBefore, locked = false;
    } cases[] = {
        {"true", true}, {"TRUE", true}, {"1", true}, {"-1", true}, {"0", false},
        {"False", false}, {"", false}, {"yes", false}, {"2x", false}, {"False", false, true},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.value);
        Workspace w;
        const auto settings = w.dir / "ini" / "settings.ini";
        WriteFile(settings, std::string("[Settings]\r\nWarningShown=") + c.value + "\r\nFreeSpaceOffset=0\r\n");
        if (c.locked) MakeReadOnly(settings);
        EXPECT_TRUE(StartUp(w.session));
        EXPECT_TRUE(StartUp(w.session));
        const std::size_t warnings = c.shownBefore ? 0 : c.locked ? 2 : 1;
        EXPECT_EQ(w.user.Take(), std::vector<Shown>(warnings, Msg(Icon::Warning, kWarning)));
        if (!c.shownBefore && !c.locked) {
            EXPECT_EQ(ReadFile(settings), "[Settings]\r\nWarningShown=True\r\nFreeSpaceOffset=0\r\n");
        }
    }
}

TEST_F(App, MissingSettingsStopTheProgramAfterCreatingTheIniFolder) {
    std::filesystem::remove_all(w.dir / "ini");
    EXPECT_FALSE(StartUp(w.session));
    EXPECT_TRUE(std::filesystem::is_directory(w.dir / "ini"));
    EXPECT_EQ(w.user.Take(), std::vector<Shown>{Msg(Icon::Critical,
                                                    "Settings file 'settings.ini' could not be found.\r\n"
                                                    "Please re-download Quillon from the Official Website.")});
}

TEST_F(App, OpeningBuildsTheTreeFromAnExistingOffsetFileUpToADuplicateKey) {
    OpenStory("'head\r\n" + kStory);
    EXPECT_EQ(Keys(), (std::vector<std::string>{"Parent0001", "P0001Mom", "P0001Sign", "Parent0002", "P0002Oak"}));
    const auto& nodes = w.session.tree.Nodes();
    EXPECT_EQ(nodes[1].image, nodes[2].image);
    EXPECT_NE(nodes[1].image, "small");
    EXPECT_EQ(nodes[4].parent, 3u);
    EXPECT_EQ(w.session.controls.gameCode, "QLNE");
    EXPECT_EQ(w.user.Take(), std::vector<Shown>({{Shown::OpenFile, "Open a Pokémon ROM...",
                                                  "GameBoy Advance ROMs (*.gba;*.agb;*.bin)|*.agb;*.gba;*.bin|"
                                                  "All files (*.*)|*.*"}}));
    w.user.Cancelled();  // a cancelled dialog keeps the open ROM
    OpenRom(w.session, OfferFindTexts);
    EXPECT_EQ(w.session.tree.Nodes().size(), 5u);
    EXPECT_TRUE(w.session.controls.searchEnabled);

    // A duplicate key stops the tree there.
    w.WriteOffsetFile("[Lab]\r\nOak=1\r\nElm=2\r\nOak=3\r\nAsh=4\r\n[Town]\r\nMom=5\r\n");
    w.Open();
    EXPECT_EQ(Keys(), (std::vector<std::string>{"Parent0001", "P0001Oak", "P0001Elm"}));
    EXPECT_EQ(w.user.Take().back(),
              Msg(Icon::Critical,
                  "Error: A Key used in the Offsets file is not unique!\r\n"
                  "Please make sure all Key and Sections names are unique and fix them if needed!"));
}

TEST_F(App, WithoutAnOffsetFileYesCreatesABlankOneAndNoLeavesTheRomClosed) {
    StoryRom().Title("ABC").Code("QLNJ").Save(w.Rom());
    w.user.Yes().No();  // create the file; do not look for texts now
    w.Open();
    auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 4u);
    EXPECT_EQ(shown[1], Ask("INI file does not exist!\r\nDo you want to create one?"));
    EXPECT_EQ(shown[2], Msg(Icon::Information,
                            "Blank INI file created!\r\nUse the search function to add offsets to your new file!"));
    const std::string stars = "'" + std::string(44, '*') + "'";
    EXPECT_EQ(ReadFile(w.OffsetFile("QLNJ")),
              stars + "\r\n'\r\n' Quillon Offset-file\r\n'\r\n' Created with Quillon Version: 3.1.1\r\n'\r\n"
                      "' Created on: " + ShortDate() + "\r\n'\r\n" + stars + "\r\n'\r\n"
                      "' ROM Name     : ABC" + std::string(9, '\0') + "\r\n' ROM Code     : QLNJ\r\n"
                      "' ROM Language : Japanese\r\n' ROM Maker    : Nintendo\r\n'\r\n" + stars);
    EXPECT_TRUE(w.session.tree.Nodes().empty());
    EXPECT_TRUE(w.session.controls.treeEnabled && w.session.controls.japaneseTable);

    StoryRom().Save(w.Rom());  // QLNE: no offset file yet
    w.user.No();
    w.Open();
    EXPECT_FALSE(FileExists(w.OffsetFile()));
    EXPECT_EQ(w.user.Take().back(), Msg(Icon::Warning, "No INI file was created.\r\nThe ROM can't be edited."));
    const auto& c = w.session.controls;
    EXPECT_FALSE(c.treeEnabled || c.searchEnabled || c.text1.enabled || c.textScriptEnabled);
    EXPECT_EQ(c.gameCode, "QLNE");
}

TEST_F(App, AnUnreadableRomOrAHeaderWithoutCodeIsRefused) {
    w.Open();  // the file does not exist
    auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[1].icon, Icon::Critical);
    EXPECT_NE(shown[1].text.find("game.gba"), std::string::npos);
    EXPECT_FALSE(w.session.controls.searchEnabled);

    WriteFile(w.Rom(), "tiny");
    w.Open();
    EXPECT_EQ(w.user.Take().back(),
              Msg(Icon::Warning, "This file has no game code in its header.\r\nThe ROM can't be edited."));
    // Only settings.ini: no offset file for a header without a code.
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(w.dir / "ini"), {}), 1);
}

TEST_F(App, EmptyBoxesDoNothingBadInputIsRefusedWithTheWindowOpenAndAddingWritesTheOffsetInHex) {
    OpenStory();
    w.user.Take();
    EXPECT_FALSE(AddThroughWindow("Town", "", "12"));
    EXPECT_EQ(w.user.Take().size(), 1u);  // only the window itself

    // Keys the offset file could not hold: no later read would find them.
    const std::string badOffset =
        "The offset must be a whole number from 0 to 4294967295, in decimal or in hexadecimal written with 0x.";
    const std::string badKey =
        "A text name can't start with \";\" or \"#\", start or end with a blank, or contain line breaks, \"=\", "
        "\"[\" or \"]\": the offset file could not hold it.";
    const std::string badSection = "A section name can't contain line breaks, \"[\" or \"]\".";
    const std::tuple<std::vector<std::string>, std::vector<std::string>, std::vector<std::string>, std::string>
        refused[] = {
            {{"Town"}, {"Dad"}, {"12a", "-5", "1.5", "4294967296"}, badOffset},
            {{"Town"}, {"Dad"}, {"3145728"}, "The offset 3145728 lies past the end of the ROM (3145728 bytes)."},
            {{"Town"}, {"A=B", "A\r\nB", ";Mom", "#Mom", " Mom", "Mom ", "M[o]m"}, {"16"}, badKey},
            {{"[Town]", "To\nwn"}, {"Dad"}, {"16"}, badSection},
        };
    for (const auto& [sections, keys, offsets, message] : refused)
        for (const auto& section : sections)
            for (const auto& key : keys)
                for (const auto& offset : offsets) {
                    EXPECT_FALSE(AddThroughWindow(section, key, offset)) << section << key << offset;
                    EXPECT_EQ(w.user.Take().back(), Msg(Icon::Warning, message));
                }
    EXPECT_EQ(ReadFile(w.OffsetFile()), kStory);

    // A good entry: the offset written in hex, and the new entry selected.
    EXPECT_TRUE(AddThroughWindow("Town", "Dad", "1000000"));
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

TEST_F(App, DeletingATextOrASectionRebuildsTheTree) {
    OpenStory();
    w.user.Take();
    w.session.tree.Select(std::nullopt);
    DeleteOffset(w.session);  // nothing selected: nothing changes
    EXPECT_EQ(ReadFile(w.OffsetFile()), kStory);
    w.Select("Town", "Sign");
    DeleteOffset(w.session);
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Town]\r\nMom=100000\r\n[Lab]\r\nOak=100020\r\n");

    w.session.tree.Select(0);  // the section node Town
    DeleteOffset(w.session);
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Lab]\r\nOak=100020\r\n");
    EXPECT_EQ(Keys(), (std::vector<std::string>{"Parent0001", "P0001Oak"}));
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
    AddOffsetForm form(w.session);  // adding says why it could not
    form.sectionName = "Lab", form.textName = "New", form.offsetDecimal = "1048576";
    EXPECT_FALSE(form.Add());
    EXPECT_EQ(w.user.Take().back().text, "Error: Could not add the Entry!\r\n'" + w.OffsetFile().string() +
                                             "' is write-protected. Nothing was written.");
    EXPECT_EQ(w.session.tree.Nodes().size(), 2u);
    EXPECT_EQ(ReadFile(w.OffsetFile()), "[Lab]\r\nOak=100020\r\n");
}

TEST_F(App, ExportNamesTheBoxAndImportWritesOnlyAfterOk) {
    // A game of no known family: its texts are taken for messages.
    w.OpenAt(StoryRom().Font().Put(0x100000, HexToBytes(EncodeText("Hello", false)) + "\xFF").Pointer(0x50000, 0x100000)
                 .Pointer(0x50004, 0x1FF300),  // a table of two pointers
             "[Town]\r\nSign=100000\r\n", "Town", "Sign");
    const std::filesystem::path po = w.dir / "town.po";
    NoProgress none;
    w.user.Then(po);
    ASSERT_TRUE(ExportAllTexts(w.session, none));
    EXPECT_NE(ReadPo(po).messages.at(0).comments.find("\nbox: 208 px, widest line 31 px"),  // H7 e5 l7 l7 o5
              std::string::npos);
    const std::string wide(31, 'M');  // 217 px
    WritePo(po, {{{"X-Game-Code", "QLNE"}}, {{"Town/Sign", "Hello", wide, {}, false}}});
    const std::string rom = w.RomBytes(), offsets = ReadFile(w.OffsetFile());
    w.user.Then(po).No().Then(po).Yes();
    EXPECT_FALSE(ImportTranslation(w.session, none));
    EXPECT_TRUE(w.RomBytes() == rom && ReadFile(w.OffsetFile()) == offsets);
    EXPECT_TRUE(ImportTranslation(w.session, none));
    // Save dialog, message; open dialog, plan (Cancel); open dialog, plan (OK), report.
    const auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 7u);
    EXPECT_NE(shown[3].text.find("1 moved to free space (1 pointer rewritten)"), std::string::npos);
    EXPECT_NE(shown[6].text.find("Town/Sign: 217 / 208 px\nRefused: none.\nWritten: 1 text saved"), std::string::npos);
    EXPECT_NE(w.session.controls.offsetCaption, "100000");  // the text shown, read from its new place
    EXPECT_EQ(w.session.controls.text1.Text(), wide);
}
