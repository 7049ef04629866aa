// quillon-cli's reading commands, its help and its failures.
#include "cli/cli_program.h"
#include "support/workspace.h"

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
    for (const char* command : {"info", "read", "search"}) {
        CliRun run = cli.Run({command, "--help"});
        EXPECT_EQ(run.status, 0) << command;
        EXPECT_NE(run.out.find(command), std::string::npos) << command << ": " << run.out;
        EXPECT_NE(run.out.find("ROM"), std::string::npos) << command;
    }
}

}  // namespace
