// The tool windows on a ROM of texts: the search window (first search,
// resume, preview, hand-over to the offset file), dialog scripts written into
// free space, and the editor text exported to a file.
#include "core/file_io.h"
#include "edit/add_offset_form.h"
#include "edit/free_space.h"
#include "store/journal.h"
#include "support/workspace.h"
#include "tools/add_script.h"
#include "tools/export_text.h"
#include "tools/search.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;
using namespace ::testing;

namespace {

Shown Saved(std::string_view hex) {
    return Msg(Icon::Information, "Saved script to offset " + std::string(hex) +
                                      "(Hex).\r\nUse this offset in the 'Script' box of your Map-Editor in order "
                                      "to use the script.");
}

// One critical message that names `part`.
auto OneCritical(const std::string& part) {
    return ElementsAre(AllOf(Field(&Shown::icon, Icon::Critical), Field(&Shown::text, HasSubstr(part))));
}

class Tools : public ::testing::Test {
protected:
    // A text with its terminator, encoded as the game stores it.
    void Put(std::size_t at, std::string_view text) { rom.Put(at, Bytes(EncodeText(text, false)) + "\xFF"); }
    void Save(std::string_view code = "QLNE") {
        rom.Save(w.Rom());
        w.session.romPath = w.Rom();
        w.session.controls.gameCode = code;
    }
    void Settings(std::string_view lines) {
        WriteFile(w.dir / "ini" / "settings.ini", "[Settings]\r\n" + std::string(lines));
    }
    void Find(std::string_view text) {
        search.text1.SetText(std::string(text));
        search.SearchText();
    }
    // The status line, the match's offset, its length and the text shown.
    std::vector<std::string> Result() const { return {search.status, search.text2, search.text4, search.text3}; }
    AddScriptForm Script(std::string offset, std::string text = {}) {
        AddScriptForm form(w.session);
        form.ChooseOption(text.empty() ? 0 : 1);
        form.txtOffset = std::move(offset);
        form.txtText.SetText(std::move(text));
        return form;
    }
    // Expects `message` alone, with the ROM and the window left as they were.
    void ExpectRefused(AddScriptForm form, const std::string& message) {
        const std::string before = w.RomBytes();
        form.AddScript();
        EXPECT_EQ(w.user.Take(), std::vector<Shown>{Msg(Icon::Critical, message)});
        EXPECT_EQ(w.RomBytes(), before);
        EXPECT_FALSE(form.Closed());
    }
    // Exports `text` to `target`; what the user was shown after the save dialog.
    std::vector<Shown> Export(std::string text, const std::filesystem::path& target) {
        w.session.controls.text1.SetText(std::move(text));
        w.user.Then(target);
        ExportText(w.session);
        auto shown = w.user.Take();
        EXPECT_EQ(shown.at(0), (Shown{Shown::SaveFile, "Select location to export to...",
                                      "Quillon Export (*.txt)|*.txt", Icon::Information}));
        return {shown.begin() + 1, shown.end()};
    }
    void ExpectExportFails(const std::filesystem::path& target, std::string_view reason) {
        EXPECT_THAT(Export("new", target), OneCritical(std::string(reason)));
    }

    Workspace w;  // FreeSpaceOffset=2097152: StoryRom's free space begins at 0x200000
    RomBuilder rom = StoryRom();  // 0x01 filler, no terminators outside the texts put here
    SearchForm search{w.session};
};

}  // namespace

TEST_F(Tools, SearchShowsTheMatchMovesToTheBeginningOfItsTextOnRequestOrClearsIt) {
    rom.Put(0, Bytes(EncodeText("Zqx", false)));
    rom.Put(0x10000F, "\xFF");
    Put(0x100010, "Hello there");
    Put(0x180000, "Lonely");  // no terminator within reach before it
    Save();
    Find("there");
    EXPECT_EQ(Result(), (std::vector<std::string>{"Result: Text found at Offset 1048598 (Decimal)!", "1048598", "5",
                                                  "there"}));
    EXPECT_TRUE(search.command2Enabled && search.command3Visible);
    w.user.Then(FakePrompter::AddOffsetAction([](AddOffsetFields& f) {  // "Write to INI" hands the match over
        EXPECT_EQ(f.offsetDecimal, "1048598");
        EXPECT_FALSE(f.offsetEnabled);
    }));
    search.WriteToIni();

    search.check1 = true;
    search.SearchText();
    EXPECT_EQ(Result(), (std::vector<std::string>{"Result: Text found at Offset 1048592 (Decimal)!", "1048592", "11",
                                                  "Hello there"}));
    Find("Hello");  // right behind the terminator already
    EXPECT_EQ(search.text2, "1048592");
    Find("Lonely");
    EXPECT_EQ(search.text2, std::to_string(0x180000));
    for (std::string_view text : {"Nowhere", "Zqx" /* only at offset 0 */, ""}) {
        search.text2 = search.text3 = "stale";
        Find(text);
        EXPECT_EQ(search.status, "Result: Text could not be found!") << text;
        EXPECT_EQ(search.text2, "");
        EXPECT_EQ(search.text3, "");
        EXPECT_FALSE(search.command2Enabled || search.command3Visible);
    }
}

// Resume goes on behind the current text, across read blocks, and never
// reports the same match again: not for an empty text at the match (Text4
// "0"), a one-byte text, or a match in the last byte of a text shown from its
// beginning.
TEST_F(Tools, SearchResumesBehindTheCurrentTextAndNeverRepeatsAMatch) {
    Put(0x100000, "Hi Hi");  // the second Hi lies before the text's last byte: skipped
    Put(0x150000, "Hi");
    Put(0x280000, "xHi");
    for (std::size_t at : {0x100100, 0x100200}) rom.Put(at, "\xFF" + Bytes(EncodeText("Ab", false)) + "\xFF");
    Put(0x100300, "Q");
    Put(0x100400, "Q");
    rom.Put(0x1004FF, "\xFF");
    Put(0x100500, "abcZ");
    rom.Put(0x1005FF, "\xFF");
    Put(0x100600, "Z");
    Save();
    Find("Hi");
    EXPECT_EQ(search.text2, "1048576");
    search.ResumeSearch();
    EXPECT_EQ(search.status, "Result: Found at Offset 1376256 (Decimal)!");
    search.ResumeSearch();
    EXPECT_EQ(Result(), (std::vector<std::string>{"Result: Found at Offset 2621441 (Decimal)!", "2621441", "2", "Hi"}));
    search.ResumeSearch();
    EXPECT_EQ(search.status, "Result: Text could not be found!");
    EXPECT_FALSE(search.command2Enabled);

    const std::tuple<const char*, std::string, std::size_t, std::size_t> again[] = {
        {"[&HFF]Ab", "0", 0x100100, 0x100200}, {"Q", "1", 0x100300, 0x100400}, {"Z", "4", 0x100500, 0x100600}};
    for (const auto& [text, length, first, next] : again) {
        search.check1 = text == std::string("Z");  // shown from the beginning of its text
        Find(text);
        EXPECT_EQ(search.text2, std::to_string(first)) << text;
        EXPECT_EQ(search.text4, length) << text;
        search.ResumeSearch();
        EXPECT_EQ(search.text2, std::to_string(next)) << text;
    }
}

TEST_F(Tools, SearchPreviewTableSwitchAndSpecialDialogAndBadInputGoesToTheStatusLine) {
    Put(0x100000, "Héllo");
    rom.PutHex(0x100100, EncodeText("A\r\nB\r\nC", true) + "FF");
    Save();
    search.ChooseTable(true);  // no match yet: only the choice changes
    EXPECT_TRUE(search.command1Enabled && search.command4Enabled);
    search.ChooseTable(false);
    Find("Héllo");
    search.ChooseTable(true);
    EXPECT_EQ(search.text3, DecodeText(Bytes(EncodeText("Héllo", false)), true));
    EXPECT_FALSE(search.command1Enabled || search.command2Enabled || search.command4Enabled);
    search.ChooseTable(false);
    EXPECT_EQ(search.text3, "Héllo");
    EXPECT_TRUE(search.command1Enabled && search.command2Enabled && search.command4Enabled);

    // The pattern follows Special Dialog.
    Find("A\r\nB\r\nC");
    EXPECT_EQ(search.text2, "");
    w.session.controls.specialDialog = true;
    search.SearchText();
    EXPECT_EQ(search.text2, std::to_string(0x100100));

    search.text2 = "abc";
    search.ResumeSearch();
    EXPECT_EQ(search.status, "Result: The offset 'abc' is not a decimal number.");
    search.text2 = "12";
    search.text4 = "-1";
    search.ResumeSearch();
    EXPECT_EQ(search.status, "Result: The text length '-1' is not a decimal number.");
    w.session.romPath = w.dir / "gone.gba";
    search.SearchText();
    EXPECT_THAT(search.status, AllOf(StartsWith("Result: The ROM could not be read: "), HasSubstr("No such file")));
}

TEST_F(Tools, ScriptFromOffsetGoesToTheFirstFreeRunAndItsSpareByteStartsTheNext) {
    Save();
    auto form = Script("123456");
    form.AddScript();
    EXPECT_EQ(w.user.Take(), std::vector<Shown>{Saved("200000")});
    rom.PutHex(0x200000, "6A5A0F005634120809036C0200");
    EXPECT_EQ(w.RomBytes(), rom.bytes());
    EXPECT_TRUE(form.Closed());

    // From Offset hands the script's own offset to the add-offset window.
    auto second = Script("2abcde");
    second.check1 = true;
    w.user.Then(FakePrompter::AddOffsetAction([](AddOffsetFields& f) {
        EXPECT_EQ(f.offsetDecimal, std::to_string(0x20000D));
    }));
    second.AddScript();
    EXPECT_EQ(w.user.Take().at(0), Saved("20000D"));
    EXPECT_EQ(w.RomBytes().substr(0x20000D, 14), Bytes("6A5A0F00DEBC2A0809036C0200FF"));
}

TEST_F(Tools, ScriptFromTextWritesTheTextBehindTheScriptAndHandsOverItsOffset) {
    rom.Put(0x200010, "\x01");  // 16 free bytes: one short of the 17 that "Hi" needs
    Save();
    auto form = Script("", "Hi");
    form.check1 = true;
    w.user.Then(FakePrompter::AddOffsetAction([](AddOffsetFields& f) {
        EXPECT_EQ(f.offsetDecimal, std::to_string(0x20001E));
        EXPECT_FALSE(f.offsetEnabled);
    }));
    form.AddScript();
    EXPECT_EQ(w.user.Take().at(0), Saved("200011"));
    EXPECT_TRUE(w.user.answers.empty());
    rom.PutHex(0x200011, "6A5A0F001E00200809036C0200C2DDFF");
    EXPECT_EQ(w.RomBytes(), rom.bytes());
    EXPECT_TRUE(form.Closed());
}

TEST_F(Tools, ScriptsOfGamesOfCodeBpeUseZeroBytesAsFreeSpace) {
    rom = StoryRom("BPEE").Fill(0x250000, 14, '\0');
    Save("BPEE");
    Script("123456").AddScript();
    EXPECT_EQ(w.user.Take(), std::vector<Shown>{Saved("250000")});
    EXPECT_EQ(w.RomBytes().substr(0x250000, 14), Bytes("6A5A0F005634120809036C020000"));
    ExpectRefused(Script("123456"), "No free space found.");  // the only run is taken
}

TEST_F(Tools, ScriptEmptyBoxesDoNothingAndBadOffsetsSettingsAndRomsAreRefusedBeforeAnyWrite) {
    Save();
    Settings("");  // empty boxes do nothing, not even read the settings; only the chosen box counts
    Script("").AddScript();
    auto textChosen = Script("123456");
    textChosen.ChooseOption(1);
    textChosen.AddScript();
    EXPECT_TRUE(w.user.shown.empty());
    EXPECT_FALSE(textChosen.Closed());
    Settings("FreeSpaceOffset=2097152\r\n");
    for (std::string bad : {"12G456", "FFFFF", "1000000", " 123456"})
        ExpectRefused(Script(bad), "The text offset '" + bad +
                                       "' is not a hexadecimal offset from 100000 to FFFFFF.\r\nNothing was written.");
    ExpectRefused(Script("400000"), "The text offset 400000 lies past the end of the ROM.\r\nNothing was written.");
    Settings("FreeSpaceOffset=abc\r\n");
    ExpectRefused(Script("123456"), std::string(kBadFreeSpaceOffset));
    Settings("FreeSpaceOffset=2097152\r\n");
    MakeReadOnly(w.Rom());
    Script("123456").AddScript();
    EXPECT_THAT(w.user.Take(), OneCritical("is write-protected"));
    EXPECT_EQ(w.RomBytes(), StoryRom().bytes());
    EXPECT_FALSE(FileExists(JournalPath(w.Rom())));
}

TEST_F(Tools, ScriptFreeSpaceOutsideThePointersReachIsRefused) {
    rom.Fill(0x1000, 64, '\xFF');
    Save();
    Settings("FreeSpaceOffset=1\r\n");
    const std::string outside =
        " lies outside the offsets a script can use (100000 to FFFFFF).\r\nNothing was written.";
    ExpectRefused(Script("123456"), "The free space found at offset 1000" + outside);

    // In an image past 16 MiB a pointer of the second half reaches the text behind it.
    rom = RomBuilder(0x1000040, '\x01').Fill(0xFFFFF8, 0x48, '\xFF');
    Save();
    Settings("FreeSpaceOffset=16777200\r\n");
    Script("", "Hi").AddScript();
    EXPECT_EQ(w.user.Take(), std::vector<Shown>{Saved("FFFFF8")});
    EXPECT_EQ(w.RomBytes().substr(0xFFFFF8, 13), Bytes("6A5A0F000500000909036C0200"));
}

TEST_F(Tools, ExportReplacesALongerFileWithTheTextAsLatin1) {
    const Shown done = Msg(Icon::Information, "Text exported successfully!", "Export done!");
    const auto file = w.dir / "out.text";  // any extension stays; a bare name gets ".txt"
    WriteFile(file, std::string(200, 'x'));
    EXPECT_EQ(Export("[PLAYER] café €\r\nline 2", file), std::vector<Shown>{done});
    EXPECT_EQ(ReadFile(file), "[PLAYER] caf\xE9 ?\r\nline 2");
    // Stray and cut-off bytes, an overlong "A", U+0100, a 4-byte character: one '?' each.
    EXPECT_EQ(ToLatin1("\xC2\xA0" "a\xE9z\xC3|\xC1\x81\xC4\x80\xF0\x9F\x98\x80"), "\xA0" "a?z?|???");
    EXPECT_EQ(Export("", file), std::vector<Shown>{done});
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(ReadFile(file), "");
    EXPECT_EQ(Export("bare", w.dir / "bare"), std::vector<Shown>{done});
    EXPECT_EQ(ReadFile(w.dir / "bare.txt"), "bare");
    EXPECT_FALSE(std::filesystem::exists(w.dir / "bare"));

    w.user.Cancelled();
    ExportText(w.session);
    EXPECT_EQ(w.user.Take().size(), 1u);  // the dialog only
}

TEST_F(Tools, ExportFilesThatCannotBeWrittenAreReportedAndNothingElseChanges) {
    ExpectExportFails(w.dir / "missing" / "out.txt", "No such file or directory");
    EXPECT_FALSE(std::filesystem::exists(w.dir / "missing"));

    const auto folder = w.dir / "folder.txt";
    std::filesystem::create_directory(folder);
    ExpectExportFails(folder, "Is a directory");
    EXPECT_TRUE(std::filesystem::is_directory(folder));

    const auto locked = w.dir / "locked.txt";
    WriteFile(locked, "old");
    MakeReadOnly(locked);
    ExpectExportFails(locked, "Permission denied");
    EXPECT_EQ(ReadFile(locked), "old");

    // A failed write keeps the old file: the new one is renamed over it only when whole.
    const auto file = w.dir / "out.txt";
    WriteFile(file, "old");
    io::ScopedWriteHook failing([](const std::filesystem::path&) { return false; });
    ExpectExportFails(file, "out.txt");
    EXPECT_EQ(ReadFile(file), "old");
}
