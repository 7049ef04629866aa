// quillon-cli's reading commands, its help and its failures.
#include "cli/cli_program.h"
#include "support/translation_game.h"
#include "support/workspace.h"
#include "translate/po_file.h"

#include <quillon/codec.h>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

class Cli : public ::testing::Test {
protected:
    void SetUp() override {
        RomBuilder rom = StoryRom();
        rom.Put(0x100010, Bytes(EncodeText("Hello there,\r\nfriend.", false)) + "\xFF");
        rom.Put(0x100040, Bytes(EncodeText("Say hello", false)) + "\xFF");
        rom.Save(cli.Rom());
    }
    CliProgram cli;
};

struct Case {
    const char* name;
    std::vector<std::string> args;  // "ROM" stands for the generated image
    int status;
    const char* out;  // expected in standard output
};

TEST_F(Cli, CommandsPrintWhatTheyFound) {
    const Case cases[] = {
        {"info", {"info", "ROM"}, 0, "Game code: QLNE\n"},
        {"info title", {"info", "ROM"}, 0, "Title:     QUILLONTEST"},
        {"read", {"read", "ROM", "100010"}, 0, "Hello there,\nfriend.\n"},
        {"read with 0x", {"read", "ROM", "0x100040"}, 0, "Say hello\n"},
        {"search lists each match", {"search", "ROM", "ello"}, 0, "100011  ello there,\n100045  ello\n"},
    };
    for (const auto& c : cases) {
        std::vector<std::string> args = c.args;
        for (auto& a : args)
            if (a == "ROM") a = cli.Rom().string();
        CliRun run = cli.Run(args);
        EXPECT_EQ(run.status, c.status) << c.name << ": " << run.err;
        EXPECT_NE(run.out.find(c.out), std::string::npos) << c.name << ": " << run.out;
        EXPECT_EQ(run.err, "") << c.name;
    }
}

TEST_F(Cli, FailuresGiveOneLineOnStandardErrorAndStatusOne) {
    const Case cases[] = {
        {"no command", {}, 0, ""},
        {"unknown command", {"frobnicate"}, 0, ""},
        {"missing ROM", {"info", "nothing.gba"}, 0, "not a file"},
        {"short ROM", {"info", "short"}, 0, "too short"},
        {"offset not hex", {"read", "ROM", "12G"}, 0, "not a hexadecimal number"},
        {"offset past the end", {"read", "ROM", "300000"}, 0, "past the end"},
        {"text not found", {"search", "ROM", "Goodbye"}, 0, "not found"},
    };
    WriteFile(cli.dir / "short", "tiny");
    for (const auto& c : cases) {
        std::vector<std::string> args = c.args;
        for (auto& a : args) {
            if (a == "ROM") a = cli.Rom().string();
            if (a == "short") a = (cli.dir / "short").string();
        }
        CliRun run = cli.Run(args);
        EXPECT_NE(run.status, 0) << c.name;
        EXPECT_EQ(LineCount(run.err), 1u) << c.name << ": " << run.err;
        EXPECT_NE(run.err.find(c.out), std::string::npos) << c.name << ": " << run.err;
        EXPECT_EQ(run.out, "") << c.name;
    }
}

TEST_F(Cli, EveryCommandHasItsHelp) {
    for (const char* command : {"info", "read", "search", "scan", "check", "export", "import"}) {
        CliRun run = cli.Run({command, "--help"});
        EXPECT_EQ(run.status, 0) << command;
        EXPECT_NE(run.out.find(command), std::string::npos) << command << ": " << run.out;
        EXPECT_NE(run.out.find("ROM"), std::string::npos) << command;
    }
}

}  // namespace

namespace {

class CliTranslation : public ::testing::Test {
protected:
    void SetUp() override {
        game = MakeGame(3u << 20, 40, 3);
        WriteFile(cli.Rom(), game.image);
        WriteFile(cli.OffsetFile(), game.offsetFile);
        // The first text grows past its room, the second stays as long.
        PoCatalog po;
        po.messages = {{"Section 0/Text 0", "-", "A much longer first text that must move away", {}, false},
                       {"Section 0/Text 1", "-", TextOfLength(game.texts[1].length, 5), {}, false}};
        WritePo(cli.dir / "in.po", po);
    }
    std::vector<std::string> Import(std::vector<std::string> extra = {}) const {
        std::vector<std::string> args = {"import", cli.Rom().string(), "--po", (cli.dir / "in.po").string()};
        args.insert(args.end(), extra.begin(), extra.end());
        return args;
    }
    CliProgram cli;
    GeneratedGame game;
};

TEST_F(CliTranslation, ExportsAndImportsThroughAPoFile) {
    CliRun exported = cli.Run({"export", cli.Rom().string(), "--po", (cli.dir / "out.po").string()});
    EXPECT_EQ(exported.status, 0) << exported.err;
    EXPECT_EQ(ReadPo(cli.dir / "out.po").messages.size(), game.texts.size());
    EXPECT_EQ(exported.err, "40 texts written to " + (cli.dir / "out.po").string() + "\n");

    CliRun dry = cli.Run(Import({"--dry-run"}));
    EXPECT_EQ(dry.status, 0) << dry.err;
    EXPECT_NE(dry.out.find("1 moved to free space (2 pointers rewritten)"), std::string::npos) << dry.out;
    EXPECT_TRUE(ReadFile(cli.Rom()) == game.image);

    CliRun run = cli.Run(Import());
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");  // no progress line off a terminal
    EXPECT_NE(run.out.find("Written: 2 texts saved"), std::string::npos) << run.out;
    const std::string offsets = ReadFile(cli.OffsetFile());
    const std::string moved = offsets.substr(offsets.find("Text 0=") + 7, 6);
    EXPECT_EQ(cli.Run({"read", cli.Rom().string(), moved}).out, "A much longer first text that must move away\n");
}

TEST_F(CliTranslation, FreeSpaceComesFromSettingsOrTheOption) {
    CliProgram bare("");
    WriteFile(bare.Rom(), game.image);
    WriteFile(bare.OffsetFile(), game.offsetFile);
    std::filesystem::copy_file(cli.dir / "in.po", bare.dir / "in.po");
    const std::vector<std::string> import = {"import", bare.Rom().string(), "--po", (bare.dir / "in.po").string()};

    CliRun refused = bare.Run(import);
    EXPECT_NE(refused.status, 0);
    EXPECT_NE(refused.err.find("'settings.ini' could not be found"), std::string::npos) << refused.err;

    std::vector<std::string> overridden = import;
    overridden.insert(overridden.begin(), {"--free-space-offset", "3145720"});  // 8 bytes before the end
    CliRun full = bare.Run(overridden);
    EXPECT_NE(full.out.find("no free space is left"), std::string::npos) << full.out << full.err;

    overridden[1] = std::to_string(game.freeFrom + 1);
    CliRun fits = bare.Run(overridden);
    EXPECT_EQ(fits.status, 0) << fits.err;
    EXPECT_NE(ReadFile(bare.OffsetFile()).find("Text 0=" + [&] {
        char b[16];
        std::snprintf(b, sizeof b, "%X", game.freeFrom + 1);
        return std::string(b);
    }()), std::string::npos);
}

}  // namespace
