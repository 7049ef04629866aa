// Where the program keeps its files: beside itself in a build tree or a
// portable copy, in the user's data folder when installed, with the shipped
// ini files copied there on the first start only.
#include "app/program_folder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace quillon;
using namespace quillon::test;
namespace fs = std::filesystem;

namespace {

TEST(ProgramFolder, BesideTheProgramUnlessInstalledOrUnwritableThenInTheDataFolder) {
    TempDir root;
    fs::create_directories(root / "build/bin/ini");
    fs::create_directories(root / "usr/bin");
    fs::create_directories(root / "usr/share/quillon/ini");
    const std::string data = (root / "data").string(), home = (root / "home").string();
    // exe folder, XDG_DATA_HOME, HOME -> folder, installed, shipped ini
    const std::tuple<fs::path, std::string, std::string, fs::path, bool, fs::path> cases[] = {
        {root / "build/bin", data, home, root / "build/bin", false, root / "build/bin/ini"},
        {root / "usr/bin", data, home, root / "data/quillon", true, root / "usr/share/quillon/ini"},
        {root / "usr/bin", "", home, root / "home/.local/share/quillon", true, root / "usr/share/quillon/ini"},
        {root / "usr/bin", "relative/data", home, root / "home/.local/share/quillon", true, root / "usr/share/quillon/ini"},
        {root / "usr/bin", "", "", root / "usr/bin", false, root / "usr/share/quillon/ini"},
        // A folder that takes no file (here: one that is gone), with its ini/ as shipped.
        {root / "medium", data, home, root / "data/quillon", true, root / "medium/ini"},
    };
    for (const auto& [exe, xdg, homeVar, folder, installed, shipped] : cases) {
        const ProgramFolder choice = ChooseProgramFolder(exe, xdg, homeVar);
        EXPECT_EQ(choice.folder, folder) << exe << " " << xdg;
        EXPECT_EQ(choice.installed, installed) << exe << " " << xdg;
        EXPECT_EQ(choice.shipped, shipped) << exe << " " << xdg;
    }
    EXPECT_TRUE(FolderTakesFiles(root / "usr/bin"));
    EXPECT_TRUE(fs::is_empty(root / "usr/bin"));  // the probe is gone again
}

TEST(ProgramFolder, TheFirstStartCopiesTheShippedIniFilesAndLaterStartsKeepTheUsers) {
    TempDir root;
    fs::create_directories(root / "usr/bin");
    fs::create_directories(root / "usr/share/quillon/ini");
    WriteFile(root / "usr/share/quillon/ini/settings.ini", "[Settings]\r\nWarningShown=False\r\n");
    WriteFile(root / "usr/share/quillon/ini/QDME.ini", "[Harbour]\r\n");
    WriteFile(root / "usr/share/quillon/ini/README.txt", "not an ini file");
    MakeReadOnly(root / "usr/share/quillon/ini/QDME.ini");
    const ProgramFolder choice = ChooseProgramFolder(root / "usr/bin", (root / "data").string(), "");

    ASSERT_TRUE(CopyShippedFiles(choice));
    const fs::path ini = root / "data/quillon/ini";
    EXPECT_EQ(ReadFile(ini / "settings.ini"), "[Settings]\r\nWarningShown=False\r\n");
    EXPECT_EQ(ReadFile(ini / "QDME.ini"), "[Harbour]\r\n");
    EXPECT_FALSE(fs::exists(ini / "README.txt"));
    EXPECT_NE(fs::status(ini / "QDME.ini").permissions() & fs::perms::owner_write, fs::perms::none);

    WriteFile(ini / "settings.ini", "[Settings]\r\nWarningShown=True\r\n");
    fs::remove(ini / "QDME.ini");
    ASSERT_TRUE(CopyShippedFiles(choice));
    EXPECT_EQ(ReadFile(ini / "settings.ini"), "[Settings]\r\nWarningShown=True\r\n");
    EXPECT_FALSE(fs::exists(ini / "QDME.ini"));  // a file the user removed stays removed

    WriteFile(root / "blocked", "a file where the data folder belongs");
    EXPECT_FALSE(CopyShippedFiles(ChooseProgramFolder(root / "usr/bin", (root / "blocked").string(), "")));
}

}  // namespace
