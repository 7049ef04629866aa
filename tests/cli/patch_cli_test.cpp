// patch create and patch apply: a patch made here turns the original into the
// edited ROM; one applied to another ROM is refused with one line.
#include "cli/cli_program.h"

#include <gtest/gtest.h>

using namespace quillon::test;

TEST(CliPatch, CreateThenApplyGivesTheEditedRomAndAnotherRomIsRefused) {
    CliProgram cli;
    const auto original = cli.dir / "a.gba", edited = cli.dir / "b.gba", other = cli.dir / "c.gba";
    RomBuilder(0x40000, '\x01').Code("QLNE").Save(original);
    RomBuilder(0x40000, '\x01').Code("QLNE").Put(0x1234, "new text").Save(edited);
    RomBuilder(0x40000, '\x02').Code("QLNE").Save(other);
    const auto patch = cli.dir / "p.bps", out = cli.dir / "out.gba";

    EXPECT_EQ(cli.Run({"patch", "create", original.string(), edited.string(), patch.string()}).status, 0);
    CliRun run = cli.Run({"patch", "apply", original.string(), patch.string(), out.string()});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(ReadFile(out) == ReadFile(edited));

    run = cli.Run({"patch", "apply", other.string(), patch.string(), (cli.dir / "x.gba").string()});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("made for another image"), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(cli.dir / "x.gba"));
}
