// Start-up, opening a ROM with and without its offset file, and the tree.
#include "offsets/offset_file.h"
#include <quillon/rom.h>
#include "discover/find_texts.h"
#include "offsets/open_rom.h"
#include "offsets/startup.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

const std::string kWarning =
    "Warning: Before using any ROM-Hacking tools, always remember to create Backup copies of your ROM!\r\n"
    "The creator of this Tool doesn't take any responsibility for what might happen to your ROM!";

std::vector<std::string> Keys(const TreeModel& tree) {
    std::vector<std::string> keys;
    for (const auto& n : tree.Nodes()) keys.push_back(n.key);
    return keys;
}

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
        EXPECT_EQ(w.user.Take(), std::vector<Shown>(c.shownBefore ? 0 : c.locked ? 2 : 1, Msg(Icon::Warning, kWarning)));
        if (!c.shownBefore && !c.locked)
            EXPECT_EQ(ReadFile(settings), "[Settings]\r\nWarningShown=True\r\nFreeSpaceOffset=0\r\n");
    }
}

TEST(StartUp, MissingSettingsStopsTheProgramAfterCreatingTheIniFolder) {
    Workspace w;
    std::filesystem::remove_all(w.dir / "ini");
    EXPECT_FALSE(StartUp(w.session));
    EXPECT_TRUE(std::filesystem::is_directory(w.dir / "ini"));
    EXPECT_EQ(w.user.Take(), std::vector<Shown>{Msg(Icon::Critical,
                                                    "Settings file 'settings.ini' could not be found.\r\n"
                                                    "Please re-download Quillon from the Official Website.")});
}

TEST(OpenRom, BuildsTheTreeFromAnExistingOffsetFile) {
    Workspace w;
    StoryRom().Save(w.Rom());
    w.WriteOffsetFile("'head\r\n[Town]\r\nMom=100000\r\nSign=100010\r\n[Lab]\r\nOak=100020\r\n");
    w.Open();
    EXPECT_EQ(Keys(w.session.tree),
              (std::vector<std::string>{"Parent0001", "P0001Mom", "P0001Sign", "Parent0002", "P0002Oak"}));
    const auto& nodes = w.session.tree.Nodes();
    EXPECT_EQ(nodes[0].image, "small");
    EXPECT_EQ(nodes[1].image, nodes[2].image);
    EXPECT_NE(nodes[1].image, "small");
    EXPECT_EQ(nodes[4].parent, 3u);
    const auto& c = w.session.controls;
    EXPECT_EQ(c.gameCode, "QLNE");
    EXPECT_TRUE(c.treeEnabled && c.text1.enabled && c.searchEnabled && c.textScriptEnabled);
    EXPECT_FALSE(c.saveEnabled || c.tableEnabled || c.specialDialogEnabled || c.japaneseTable);
    EXPECT_EQ(c.repointCaption, "0 Characters left until repoint.");
    EXPECT_EQ(w.user.Take(), std::vector<Shown>({{Shown::OpenFile, "Open a Pokémon ROM...",
                                                  "GameBoy Advance ROMs (*.gba;*.agb;*.bin)|*.agb;*.gba;*.bin|"
                                                  "All files (*.*)|*.*"}}));
    w.user.Cancelled();  // a cancelled dialog keeps the open ROM
    OpenRom(w.session);
    EXPECT_EQ(w.session.tree.Nodes().size(), 5u);
    EXPECT_TRUE(w.session.controls.searchEnabled);
}

TEST(OpenRom, CreatesABlankOffsetFileOnYes) {
    Workspace w;
    StoryRom().Title("ABC").Code("QLNJ").Save(w.Rom());
    w.user.Yes().No();  // create the file; do not look for texts now
    w.Open();
    auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 4u);
    EXPECT_EQ(shown[1], Ask("INI file does not exist!\r\nDo you want to create one?"));
    EXPECT_EQ(shown[2], Msg(Icon::Information,
                            "Blank INI file created!\r\nUse the search function to add offsets to your new file!"));
    EXPECT_EQ(shown[3], Ask(std::string(kOfferFindTexts)));
    std::string head = ReadFile(w.OffsetFile("QLNJ"));
    std::string stars = "'" + std::string(44, '*') + "'";
    std::string expected = stars + "\r\n'\r\n' Quillon Offset-file\r\n'\r\n' Created with Quillon Version: 3.1.1\r\n'\r\n"
                           "' Created on: " + ShortDate() + "\r\n'\r\n" + stars + "\r\n'\r\n"
                           "' ROM Name     : ABC" + std::string(9, '\0') + "\r\n' ROM Code     : QLNJ\r\n"
                           "' ROM Language : Japanese\r\n' ROM Maker    : Nintendo\r\n'\r\n" + stars;
    EXPECT_EQ(head, expected);
    EXPECT_TRUE(w.session.tree.Nodes().empty());
    EXPECT_TRUE(w.session.controls.treeEnabled);
    EXPECT_TRUE(w.session.controls.japaneseTable);
    EXPECT_FALSE(w.session.controls.tableEnabled);
}

TEST(OpenRom, AnsweringNoLeavesTheRomClosedAndCreatesNothing) {
    Workspace w;
    StoryRom().Save(w.Rom());
    w.user.No();
    w.Open();
    EXPECT_FALSE(FileExists(w.OffsetFile()));
    auto shown = w.user.Take();
    EXPECT_EQ(shown.back(), Msg(Icon::Warning, "No INI file was created.\r\nThe ROM can't be edited."));
    const auto& c = w.session.controls;
    EXPECT_FALSE(c.treeEnabled || c.searchEnabled || c.text1.enabled || c.textScriptEnabled);
    EXPECT_EQ(c.gameCode, "QLNE");
}

TEST(OpenRom, StopsTheTreeAtADuplicateKey) {
    Workspace w;
    StoryRom().Save(w.Rom());
    w.WriteOffsetFile("[Lab]\r\nOak=1\r\nElm=2\r\nOak=3\r\nAsh=4\r\n[Town]\r\nMom=5\r\n");
    w.Open();
    EXPECT_EQ(Keys(w.session.tree), (std::vector<std::string>{"Parent0001", "P0001Oak", "P0001Elm"}));
    EXPECT_EQ(w.user.Take().back(),
              Msg(Icon::Critical,
                  "Error: A Key used in the Offsets file is not unique!\r\n"
                  "Please make sure all Key and Sections names are unique and fix them if needed!"));
}

TEST(OpenRom, UnreadableRomOrHeaderWithoutCodeIsRefused) {
    Workspace w;
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
    auto files = std::distance(std::filesystem::directory_iterator(w.dir / "ini"), {});
    EXPECT_EQ(files, 1);  // only settings.ini: no offset file for a header without a code
}
