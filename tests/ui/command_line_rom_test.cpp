// `quillon GAME.gba`: the ROM named on the command line opens as Open ROM
// opens a chosen file, with the same questions and checks.
#include "main_window_fixture.h"
#include "offsets/startup.h"

using namespace quillon;
using namespace quillon::test;

namespace {

TEST_F(MainWindowTest, ARomNamedOnTheCommandLineOpensAsOpenRomOpensTheChosenFile) {
    ASSERT_TRUE(StartUp(*session));
    user.Take();
    std::filesystem::copy_file(Rom(), dir / "other.gba");
    PatchFile(dir / "other.gba", 0xAC, "QXYZ");  // a game without an offset file

    window->OpenRomFile(Rom());
    EXPECT_EQ(user.Take(), std::vector<Shown>{});  // no file dialog
    EXPECT_EQ(Tree()->model()->rowCount(), 4);
    EXPECT_TRUE(Tree()->isEnabled());

    user.No();
    window->OpenRomFile(dir / "other.gba");
    EXPECT_EQ(user.Take(), (std::vector<Shown>{Ask("INI file does not exist!\r\nDo you want to create one?"),
                                               Msg(Icon::Warning, "No INI file was created.\r\nThe ROM can't be edited.")}));
    EXPECT_FALSE(Tree()->isEnabled());

    window->OpenRomFile(dir / "missing.gba");
    const std::vector<Shown> shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].icon, Icon::Critical);
    EXPECT_EQ(shown[0].text.rfind("The ROM could not be opened:", 0), 0u) << shown[0].text;
}

}  // namespace
