// quillon-cli run as a user runs it: its commands, their help and their failures.
#include "core/hex_text.h"
#include "edit/save_text.h"
#include "fit/fit_settings.h"
#include "history/history_commands.h"
#include "support/game_image.h"
#include "support/translation_game.h"
#include "support/workspace.h"
#include "translate/po_file.h"
#include "translate/rom_texts.h"

#include <quillon/codec.h>

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdlib>
#include <functional>
#include <set>

using namespace quillon;
using namespace quillon::test;

namespace {

std::string Quoted(std::string_view arg) {
    std::string out = "'";
    for (char c : arg) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

struct CliRun {
    int status = -1;
    std::string out, err;
};

// A program folder of its own (a copy of the executable with ini/settings.ini).
class Cli : public ::testing::Test {
protected:
    void SetUp() override { std::filesystem::copy_file(QUILLON_CLI_PATH, dir / "quillon-cli"); }
    // Runs the program; "ROM" stands for the image, a leading "@" for the program folder.
    CliRun Run(std::vector<std::string> args) const {
        std::string command = Quoted((dir / "quillon-cli").string());
        for (auto& a : args) {
            if (a == "ROM") a = w.Rom().string();
            if (a.starts_with("@")) a = (dir / a.substr(1)).string();
            command += " " + Quoted(a);
        }
        command += " >" + Quoted((dir / "out.txt").string()) + " 2>" + Quoted((dir / "err.txt").string());
        const int raw = std::system((command + " </dev/null").c_str());
        return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, ReadFile(dir / "out.txt"), ReadFile(dir / "err.txt")};
    }
    Workspace w;
    const TempDir& dir = w.dir;
};

struct Case {
    const char* name;
    std::vector<std::string> args;
    const char* out;  // expected in standard output, or in standard error on failure
};

TEST_F(Cli, CommandsPrintWhatTheyFoundAndFailuresOneLine) {
    StoryRom()
        .Put(0x100010, Bytes(EncodeText("Hello there,\r\nfriend.", false)) + "\xFF")
        .Put(0x100040, Bytes(EncodeText("Say hello", false)) + "\xFF")
        .Save(w.Rom());
    WriteFile(dir / "short", "tiny");
    const Case found[] = {
        {"info", {"info", "ROM"}, "Game code: QLNE\n"},
        {"info title", {"info", "ROM"}, "Title:     QUILLONTEST"},
        {"info as JSON", {"info", "ROM", "--json"}, R"({"title":"QUILLONTEST","gameCode":"QLNE","language":"E",)"},
        {"read", {"read", "ROM", "100010"}, "Hello there,\nfriend.\n"},
        {"read with 0x", {"read", "ROM", "0x100040"}, "Say hello\n"},
        {"search lists each match", {"search", "ROM", "ello"}, "100011  ello there,\n100045  ello\n"},
    };
    for (const auto& c : found) {
        CliRun run = Run(c.args);
        EXPECT_EQ(run.status, 0) << c.name << ": " << run.err;
        EXPECT_NE(run.out.find(c.out), std::string::npos) << c.name << ": " << run.out;
        EXPECT_EQ(run.err, "") << c.name;
    }
    const Case failures[] = {
        {"no command", {}, ""},
        {"unknown command", {"frobnicate"}, ""},
        {"missing ROM", {"info", "@nothing.gba"}, "not a file"},
        {"short ROM", {"info", "@short"}, "too short"},
        {"offset not hex", {"read", "ROM", "12G"}, "not a hexadecimal number"},
        {"offset past the end", {"read", "ROM", "300000"}, "past the end"},
        {"text not found", {"search", "ROM", "Goodbye"}, "not found"},
    };
    for (const auto& c : failures) {
        CliRun run = Run(c.args);
        EXPECT_NE(run.status, 0) << c.name;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << c.name << ": " << run.err;
        EXPECT_NE(run.err.find(c.out), std::string::npos) << c.name << ": " << run.err;
        EXPECT_EQ(run.out, "") << c.name;
    }
    // Every command has its help, and the shell completes its name.
    const std::string script = ReadFile(QUILLON_COMPLETION_PATH);
    const std::size_t listed = script.find("commands=\"") + 10;
    const std::string completion = " " + script.substr(listed, script.find('"', listed) - listed) + " ";
    for (const char* command : {"info", "read", "search", "export", "import", "check", "scan", "refs", "reflow", "write",
                                "history", "undo", "redo"}) {
        CliRun run = Run({command, "--help"});
        EXPECT_EQ(run.status, 0) << command;
        EXPECT_NE(run.out.find(command), std::string::npos) << command << ": " << run.out;
        EXPECT_NE(run.out.find("ROM"), std::string::npos) << command;
        EXPECT_NE(completion.find(" " + std::string(command) + " "), std::string::npos) << command;
    }
    EXPECT_EQ(Run({"--version"}).out, "quillon-cli " QUILLON_VERSION "\n");
}

TEST_F(Cli, ExportsAndImportsThroughAPoFile) {
    const GeneratedGame game = MakeGame(3u << 20, 40, 3);
    WriteFile(w.Rom(), game.image);
    WriteFile(w.OffsetFile(), game.offsetFile);
    // The first text grows past its room, the second stays as long.
    PoCatalog po;
    po.messages = {{"Section 0/Text 0", "-", "A much longer first text that must move away", {}, false},
                   {"Section 0/Text 1", "-", TextOfLength(game.texts[1].length, 5), {}, false}};
    WritePo(dir / "in.po", po);
    const std::vector<std::string> import = {"import", "ROM", "--po", "@in.po"};
    auto with = [&](std::vector<std::string> args, std::size_t at) {  // the options before or after the command
        args.insert(args.begin() + static_cast<std::ptrdiff_t>(at), import.begin(), import.end());
        return args;
    };

    CliRun exported = Run({"export", "ROM", "--po", "@out.po"});
    EXPECT_EQ(exported.status, 0) << exported.err;
    EXPECT_EQ(exported.err, "40 texts written to " + (dir / "out.po").string() + "\n");

    CliRun dry = Run(with({"--dry-run"}, 0));
    EXPECT_EQ(dry.status, 0) << dry.err;
    EXPECT_NE(dry.out.find("1 moved to free space (2 pointers rewritten)"), std::string::npos) << dry.out;
    EXPECT_TRUE(ReadFile(w.Rom()) == game.image);

    // The free space from the option.
    CliRun run = Run(with({"--free-space-offset", std::to_string(game.freeFrom + 1)}, 2));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");  // no progress line off a terminal
    EXPECT_NE(run.out.find("Written: 2 texts saved"), std::string::npos) << run.out;
    EXPECT_NE(ReadFile(w.OffsetFile()).find("Text 0=" + PadHex(game.freeFrom + 1)), std::string::npos);

    // Without settings.ini and without the option there is no free space to use.
    std::filesystem::remove(dir / "ini" / "settings.ini");
    CliRun refused = Run(import);
    EXPECT_NE(refused.status, 0);
    EXPECT_NE(refused.err.find("'settings.ini' could not be found"), std::string::npos) << refused.err;
}

TEST_F(Cli, CheckListsTheTextsOverTheirBoxForPeopleOrAsTableOfFindings) {
    RomBuilder rom = StoryRom("QLNE")
                         .Font()
                         .Put(0x100000, Bytes("C2DDFF"))                                   // "Hi"
                         .Put(0x100010, Bytes("C2DDFE") + std::string(31, '\xC7') + "\xFF")  // "Hi", then 31 x "M": 217 px
                         .Put(0x100040, Bytes("FD01FD01FD01FD01BBBBBBFF"));  // 115 px, 211 with names at their longest
    rom.Save(w.Rom());
    WriteFile(w.OffsetFile(), "[Town]\r\nMom=100000\r\nSign=100010\r\nNames=100040\r\n");
    CliRun run = Run({"check", "ROM"});
    EXPECT_EQ(run.status, 0) << run.err;
    const std::string listed = "Town/Sign  100010  line 2  217 / 208 px  " + std::string(31, 'M') +
                               "\nOver only with names and buffers at their longest:\n"
                               "Town/Names  100040  line 1  211 / 208 px  [PLAYER][PLAYER][PLAYER][PLAYER]AAA\n"
                               "1 of 3 texts have a line over the message box.\n"
                               "1 more texts are over only with names and buffers at their longest.\n";
    EXPECT_EQ(run.out, listed);
    EXPECT_EQ(Run({"check", "ROM", "--format", "tsv"}).out, "Town/Sign\t100010\t2\t217\t208\tover\nTown/Names\t100040\t1\t211\t208\tnames\n");
    const std::string json = Run({"check", "ROM", "--json"}).out;
    EXPECT_EQ(json.substr(0, 32), R"({"entries":3,"over":1,"names":1,)") << json;
    EXPECT_NE(json.find(R"({"section":"Town","key":"Sign","offset":"100010","limit":208,"over":true,"findings":[{"line":2,"width":217,"kind":"over","text":"MMM)"),
              std::string::npos)
        << json;
    // A font whose pointers are gone: none found, unless named.
    rom.Fill(0x66EC, 12, '\x01').Save(w.Rom());
    run = Run({"check", "ROM"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("no fit check: no font was found in the image"), std::string::npos) << run.err;
    run = Run({"check", "ROM", "--glyphs", "1FF300", "--widths", "0x207300"});
    EXPECT_EQ(std::pair(run.status, run.out), std::pair(0, listed)) << run.err;
}

// Eight words of four "M" (245 px): six fit the message box, a line break
// takes the place of the seventh space, so the text keeps its length.
TEST_F(Cli, ReflowAndImportWithReflowBreakTheLinesThatDoNotFit) {
    std::string words, broken;
    for (int i = 0; i < 8; ++i) words += (i ? " " : "") + std::string(4, 'M');
    broken = words;
    broken.replace(6 * 5 - 1, 1, "\r\n");
    const auto bytes = [](const std::string& text) { return HexToBytes(EncodeText(text, false)) + "\xFF"; };
    StoryRom().Font().Put(0x100000, bytes(words)).Save(w.Rom());
    WriteFile(w.OffsetFile(), "[Town]\r\nSign=100000\r\n");
    const std::string before = ReadFile(w.Rom());
    CliRun run = Run({"reflow", "ROM", "--dry-run"});
    EXPECT_NE(run.out.find("1 in place\n"), std::string::npos) << run.out << run.err;
    EXPECT_TRUE(ReadFile(w.Rom()) == before);
    EXPECT_EQ(Run({"reflow", "ROM"}).status, 0);
    EXPECT_EQ(ReadFile(w.Rom()).substr(0x100000, words.size() + 1), bytes(broken));
    EXPECT_EQ(Run({"check", "ROM"}).out, "0 of 1 texts have a line over the message box.\n");
    // The same from a translation, on request only.
    WritePo(dir / "in.po", {{{"X-Game-Code", "QLNE"}}, {{"Town/Sign", "x", words, {}, false}}});
    EXPECT_EQ(Run({"import", "ROM", "--po", "@in.po"}).status, 0);
    EXPECT_EQ(ReadFile(w.Rom()).substr(0x100000, words.size() + 1), bytes(words));
    EXPECT_EQ(Run({"import", "ROM", "--po", "@in.po", "--reflow"}).status, 0);
    EXPECT_EQ(ReadFile(w.Rom()).substr(0x100000, words.size() + 1), bytes(broken));
}

TEST_F(Cli, ScanPrintsTheTextsOrAddsTheNewOnesToTheOffsetFile) {
    StoryRom()
        .Put(0x180000, "\xFF" + Bytes("C2D9E0E0E300E8DCD9E6D9AD") + "\xFF" + Bytes("C1E3E3D800D8D5EDAB") + "\xFF")
        .Pointer(0x190000, 0x180001)                                      // a table's slot
        .Pointer(0x190004, 0x190010)                                      // and a script of its
        .PutHex(0x190010, "67").Pointer(0x190011, 0x18000E).PutHex(0x190015, "02")
        .Save(w.Rom());
    CliRun run = Run({"scan", "ROM"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("180001  "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("1 pointer   Hello there.\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\n2 texts found.\n"), std::string::npos) << run.out;

    WriteFile(dir / "game.ini", "[Town]\r\nMom=180001\r\n");
    run = Run({"scan", "ROM", "--ini", "@game.ini"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(ReadFile(dir / "game.ini"), "[Town]\r\nMom=180001\r\n[Common scripts]\r\nGood day!=18000E\r\n");
    EXPECT_EQ(run.out.rfind("2 texts found, 1 listed already; 1 added in 1 sections to ", 0), 0u) << run.out;
}

// A patch made here turns the original into the edited ROM; applied to
// another ROM it is refused with one line and writes nothing.
TEST_F(Cli, PatchCreateThenApplyGivesTheEditedRom) {
    RomBuilder(0x40000, '\x01').Code("QLNE").Save(dir / "a.gba");
    RomBuilder(0x40000, '\x01').Code("QLNE").Put(0x1234, "new text").Save(dir / "b.gba");
    RomBuilder(0x40000, '\x02').Code("QLNE").Save(dir / "c.gba");
    EXPECT_EQ(Run({"patch", "create", "@a.gba", "@b.gba", "@p.bps"}).status, 0);
    CliRun run = Run({"patch", "apply", "@a.gba", "@p.bps", "@out.gba"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(ReadFile(dir / "out.gba") == ReadFile(dir / "b.gba"));

    run = Run({"patch", "apply", "@c.gba", "@p.bps", "@x.gba"});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.err.find("made for another image"), std::string::npos) << run.err;
    EXPECT_FALSE(std::filesystem::exists(dir / "x.gba"));
}

}  // namespace

namespace {

// The same steps by the command line and by the window's commands on a copy
// of a generated game: every byte of the image and the offset file agree.
TEST_F(Cli, WriteUndoAndRedoLeaveWhatTheWindowsCommandsLeave) {
    GameImage g = MakeGameImage(game::Family::FireRedLeafGreen, 11);
    // Two message texts, one held by references only, one by a code lookalike
    // too, moved with their pointers to where pointers reach: the start of
    // the free space.
    const auto raise = [&g](bool withCode, std::uint32_t to) {
        for (const PlacedText& t : g.texts) {
            std::set<std::string> kinds;
            for (const PlacedPointer& p : g.pointers)
                if (p.target == t.offset) kinds.insert(p.kind);
            if (t.context != "message" || kinds.empty() || kinds.contains("unknown") || kinds.contains("code") != withCode)
                continue;
            const std::size_t length = g.image.find('\xFF', t.offset) - t.offset;
            g.image.replace(to, length, g.image.substr(t.offset, length));
            g.image[to + length + 1] = '\0';  // no room behind it: a longer text moves
            for (const PlacedPointer& p : g.pointers)
                if (p.target == t.offset) g.image.replace(p.place, 4, PointerTo(to));
            return to;
        }
        return 0u;
    };
    const std::uint32_t plain = raise(false, g.freeSpace), coded = raise(true, g.freeSpace + 0x100);
    ASSERT_TRUE(plain && coded);
    const std::string section = "Town \"Old\" \xE9", ini = "[" + section + "]\r\nPlain=" + PlainHex(plain) +
                                                          "\r\nCoded=" + PlainHex(coded) + "\r\n";
    Workspace window("FreeSpaceOffset=" + std::to_string(g.freeSpace));
    for (const Workspace* at : {&w, &window}) {
        WriteFile(at->Rom(), g.image);
        at->WriteOffsetFile(ini, "BPRE");
    }
    window.Open();
    const auto textAt = [&](std::uint32_t offset) {
        const std::string out = Run({"read", "ROM", PlainHex(offset)}).out;
        return out.substr(0, out.size() - 1);
    };
    const std::string plainText = textAt(plain) + "\n\nMore.", codedText = textAt(coded) + "\n\nMore.";
    const auto save = [&](const char* key, const std::string& text, std::optional<Choice> choice) {
        return [&window, key, text, choice] {
            window.Select(std::string("Town \"Old\" \xE9"), key);
            window.session.controls.text1.SetText(FromPoText(text));
            window.user.Yes();  // longer: re-point
            if (choice) window.user.Then(*choice);
            SaveText(window.session, fit::ConfirmFitBeforeSave);
        };
    };
    const std::string free = std::to_string(g.freeSpace);
    struct Step {
        std::vector<std::string> cli;
        std::function<void()> window;
    } steps[] = {
        {{"--free-space-offset", free, "write", "ROM", section + "/Plain", plainText}, save("Plain", plainText, {})},
        {{"--free-space-offset", free, "write", "ROM", section + "/Coded", codedText, "--only-references"},
         save("Coded", codedText, Choice::First)},
        {{"undo", "ROM"}, [&] { UndoLastSaveCommand(window.session); }},
        {{"undo", "ROM"}, [&] { UndoLastSaveCommand(window.session); }},
        {{"redo", "ROM"}, [&] { RedoSaveCommand(window.session); }},
    };
    for (const Step& step : steps) {
        const std::string before = w.RomBytes();
        const CliRun run = Run(step.cli);
        step.window();
        EXPECT_EQ(run.status, 0) << step.cli[0] << step.cli[2] << ": " << run.err;
        EXPECT_FALSE(w.RomBytes() == before) << step.cli[0] << step.cli[2] << " wrote nothing";
        EXPECT_TRUE(w.RomBytes() == window.RomBytes()) << step.cli[0] << step.cli[2];
        EXPECT_EQ(ReadFile(w.OffsetFile("BPRE")), ReadFile(window.OffsetFile("BPRE"))) << step.cli[0];
    }
    EXPECT_TRUE(window.user.answers.empty()) << "the window asked less than the steps expect";
    EXPECT_NE(Run({"history", "ROM"}).out.find("\tSave Text\t" + section + " / Coded\t"), std::string::npos);
    const std::string json = Run({"history", "ROM", "--json"}).out;
    EXPECT_NE(json.find("\"command\":\"Save Text\",\"subject\":\"Town \\\"Old\\\" \xC3\xA9 / Plain\",\"bytes\":"),
              std::string::npos)
        << json;
    EXPECT_NE(json.find(R"("state":"applied"}]})"), std::string::npos) << json;

    struct Refusal {
        std::vector<std::string> args;
        const char* says;
        std::function<void()> before;
    } refusals[] = {
        {{"write", "ROM", section + "/Coded", textAt(coded)}, "holds this text already", [] {}},
        {{"--free-space-offset", free, "write", "ROM", section + "/Coded", codedText}, "--rewrite-code", [] {}},
        {{"undo", "ROM"}, "The ROM was changed since this save", [&] { WriteFile(w.Rom(), w.RomBytes().replace(plain, 1, "X")); }},
    };
    for (const Refusal& r : refusals) {
        r.before();
        const std::string before = w.RomBytes();
        const CliRun run = Run(r.args);
        EXPECT_EQ(run.status, 1) << r.says;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_NE(run.err.find(r.says), std::string::npos) << run.err;
        EXPECT_TRUE(w.RomBytes() == before) << r.says;
    }
}

}  // namespace
