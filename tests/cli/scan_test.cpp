// quillon-cli scan: the texts a ROM holds, printed or added to an offset file.
#include "cli/cli_program.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

TEST(CliScan, PrintsTheTextsOrAddsTheNewOnesToTheOffsetFile) {
    CliProgram cli;
    StoryRom()
        .Put(0x180000, "\xFF" + Bytes("C2D9E0E0E300E8DCD9E6D9AD") + "\xFF" + Bytes("C1E3E3D800D8D5EDAB") + "\xFF")
        .Pointer(0x190000, 0x180001)
        .PutHex(0x190006, "67").Pointer(0x190007, 0x18000E)
        .Save(cli.Rom());
    CliRun run = cli.Run({"scan", cli.Rom().string()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("180001  "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("1 pointer   Hello there.\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\n2 texts found.\n"), std::string::npos) << run.out;

    const auto ini = cli.dir / "game.ini";
    WriteFile(ini, "[Town]\r\nMom=180001\r\n");
    run = cli.Run({"scan", cli.Rom().string(), "--ini", ini.string()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(ReadFile(ini), "[Town]\r\nMom=180001\r\n[Texts 180000-18FFFF]\r\nGood day!=18000E\r\n");
    EXPECT_EQ(run.out.rfind("2 texts found, 1 listed already; 1 added in 1 sections to ", 0), 0u) << run.out;
}

}  // namespace
