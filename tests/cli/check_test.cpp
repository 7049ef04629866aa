// quillon-cli check: the texts with a line over the message box.
#include "cli/cli_program.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

void Build(const CliProgram& cli, std::string_view code) {
    RomBuilder rom = StoryRom(code);
    std::string widths(512, '\0');
    for (int b = 0; b < 512; ++b) widths[static_cast<std::size_t>(b)] = static_cast<char>(3 + (b % 256) % 5);
    rom.Put(0xBC, std::string(1, '\0')).Fill(0x1FF300, 0x4000, '\0').Put(0x207300, widths);
    rom.Pointer(0x66EC, 0x1FF300).Pointer(0x66F4, 0x207300);
    rom.Put(0x100000, Bytes("C2DDFF"));                                   // "Hi"
    rom.Put(0x100010, Bytes("C2DDFE") + std::string(31, '\xC7') + "\xFF");  // "Hi", then 31 x "M": 217 px
    rom.Save(cli.Rom());
    WriteFile(cli.OffsetFile(code), "[Town]\r\nMom=100000\r\nSign=100010\r\n");
}

TEST(CliCheck, ListsTheTextsOverTheBox) {
    CliProgram cli;
    Build(cli, "BPRE");
    CliRun run = cli.Run({"check", cli.Rom().string()});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.out, "Town/Sign  100010  line 2  217 / 208 px  " + std::string(31, 'M') +
                           "\n1 of 2 texts have a line over the message box.\n");
    // A sample name and an explicit offset file.
    WriteFile(cli.dir / "other.ini", "[Names]\r\nTwo=100000\r\n");
    run = cli.Run({"check", cli.Rom().string(), "--ini", (cli.dir / "other.ini").string()});
    EXPECT_EQ(run.out, "0 of 1 texts have a line over the message box.\n");
}

TEST(CliCheck, AnUnknownGameIsCheckedOnlyWithNamedOffsets) {
    CliProgram cli;
    Build(cli, "QLNE");
    CliRun run = cli.Run({"check", cli.Rom().string()});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("no fit check: the font of game QLNE version 0 is not known"), std::string::npos) << run.err;
    run = cli.Run({"check", cli.Rom().string(), "--glyphs", "1FF300", "--widths", "0x207300"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("1 of 2 texts"), std::string::npos);
}

}  // namespace
