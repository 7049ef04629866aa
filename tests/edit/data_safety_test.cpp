// Showing and saving texts: selecting entries, the repoint counter, the table
// choice, a text opened by its offset; every length written where it fits,
// every refusal before the first write, and what a save does when the world is hostile: cut off after
// any write, the ROM changed by another program, a journal left behind,
// offsets that point where no text can be written.
#include "app/commit.h"
#include "core/file_io.h"
#include "edit/add_offset_form.h"
#include "edit/save_text.h"
#include "edit/text_view.h"
#include "fit/fit_settings.h"
#include "store/journal.h"
#include "store/writer.h"
#include "support/save_messages.h"
#include "support/workspace.h"

#include <quillon/core.h>
#include <quillon/rom.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

using namespace quillon;
using namespace quillon::test;
using ::testing::ElementsAre;
using ::testing::Field;

namespace {

const std::string kOffsets = "[Town]\r\nMom=100000\r\nSign=100100\r\n";
constexpr std::size_t kText = 0x100000;

// HelloRom with "Men" at 0x100100.
RomBuilder Rom(std::string_view code = "QLNE") { return HelloRom(code).Put(0x100100, Bytes("C7D9E2FF")); }

struct Snapshot {
    std::string rom, offsets;
    bool operator==(const Snapshot&) const = default;
};

bool Mentions(const std::vector<Shown>& shown, std::string_view text) {
    for (const auto& s : shown)
        if (s.text.find(text) != std::string::npos) return true;
    return false;
}

class Save : public ::testing::Test {
protected:
    void Build(const RomBuilder& rom = Rom(), std::string_view settings = "FreeSpaceOffset=2097152",
               std::string_view offsets = kOffsets, std::string_view key = "Mom") {
        w = std::make_unique<Workspace>(settings);
        w->OpenAt(rom, offsets, "Town", key);
    }
    // Mom edited to a text that must move: a repoint with three pointers.
    void Prepared() {
        Build();
        w->session.controls.text1.SetText("Hello there!");
    }
    // Types `text`, answers the questions with `answers` and saves.
    std::vector<Shown> SaveAs(std::string text, std::vector<bool> answers) {
        w->session.controls.text1.SetText(std::move(text));
        for (bool a : answers) w->user.Then(a);
        SaveText(w->session, fit::ConfirmFitBeforeSave);
        return w->user.Take();
    }
    // The prepared repoint cut off after its first `writes` writes, leaving the journal.
    void SaveCutOff(int writes) {
        io::ScopedWriteHook hook(io::StopAfterWrites(writes));
        w->user.Yes();
        SaveText(w->session, fit::ConfirmFitBeforeSave);
    }
    Snapshot Take() const { return {w->RomBytes(), ReadFile(w->OffsetFile())}; }
    std::string At(std::size_t offset, std::size_t count) const { return w->RomBytes().substr(offset, count); }
    bool JournalLeft() const { return FileExists(JournalPath(w->Rom())); }

    std::unique_ptr<Workspace> w;
};

}  // namespace

TEST_F(Save, EachLengthIsWrittenWhereItFits) {
    const Shown shorter = Ask("The text you entered is shorter than the old one.\r\n\r\nDo you want to continue?",
                              "Do you really want to do that?");
    const Shown enoughSpace =
        Msg(Icon::Information, "There's enough space after the Text.\r\nThe Text won't be re-pointed.");
    const std::string moved = "01002008";
    struct Case {
        const char* name;
        RomBuilder rom;
        std::string text;
        std::vector<bool> answers;
        std::vector<Shown> shown;
        std::vector<std::pair<std::size_t, std::string>> bytes;  // offset, hex
        std::string mom;  // the offset file's Mom line and the offset shown
        std::string code = "QLNE";
    };
    const Case cases[] = {
        {"equal", Rom(), "Jello", {}, {kSaved}, {{kText, "C4D9E0E0E3FF"}}, "100000"},
        {"shorter", Rom(), "Hel", {true}, {shorter, kSaved}, {{kText, "C2D9E0FFFFFF01"}}, "100000"},
        {"shorter, no", Rom(), "H", {false}, {shorter}, {{kText, "C2D9E0E0E3FF01"}}, "100000"},
        {"grown into free bytes", Rom().Fill(kText + 6, 4, '\xFF'), "Hello!!!", {true},
         {kLonger, enoughSpace, kSaved}, {{kText, "C2D9E0E0E3ABABABFFFF01"}}, "100000"},
        // The free run starts at 0x200000; one free byte stays in front of the text.
        {"repointed", Rom().Fill(kText + 6, 3, '\xFF'), "Hello!!!", {true}, {kLonger, kSaved},
         {{0x50000, moved}, {0x60001, moved}, {0x70003, moved}, {kText, "FFFFFFFFFFFFFF"},
          {0x200000, "FFC2D9E0E0E3ABABABFFFF"}}, "200001"},
        // BPE games use zeros as free space: three behind the text are not enough for three more.
        {"zeros as free space", Rom("BPEE").Fill(0x200000, 0x100000, '\0').Fill(kText + 6, 3, '\0'), "Hello!!!",
         {true}, {kLonger, kSaved}, {{kText, "000000000000"}, {0x200000, "00C2D9E0E0E3ABABABFF00"}}, "200001", "BPEE"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Build(c.rom);
        EXPECT_EQ(SaveAs(c.text, c.answers), c.shown);
        for (const auto& [at, hex] : c.bytes) EXPECT_EQ(At(at, hex.size() / 2), Bytes(hex)) << std::hex << at;
        EXPECT_EQ(ReadFile(w->OffsetFile(c.code)), "[Town]\r\nMom=" + c.mom + "\r\nSign=100100\r\n");
        EXPECT_EQ(w->session.controls.text1.Text(), c.text);  // read back after a save
        EXPECT_EQ(static_cast<std::size_t>(w->session.oldTextLength), c.answers == std::vector<bool>{false} ? 5 : c.text.size());
        EXPECT_FALSE(JournalLeft());
    }
}

TEST_F(Save, RefusalsComeBeforeTheFirstWrite) {
    struct Case {
        const char* name;
        RomBuilder rom;
        std::string settings, message;
        std::string offsets = kOffsets, key = "Mom", text = "Hello!!!";
        bool asked = true;  // whether the longer text's question comes first
    };
    const std::string range = " can't be pointed to: pointers can only be built for offsets from 100000 to FFFFFF "
                              "(Hex).\r\nNothing was written.";
    const Case cases[] = {
        {"no pointer", Rom().Fill(0x50000, 4, '\x01').Fill(0x60001, 4, '\x01').Fill(0x70003, 4, '\x01'),
         "FreeSpaceOffset=2097152", "The text pointer wasn't found!\r\nThe text can't be edited!"},
        {"no free space", Rom().Fill(0x200000, 0x100000, '\x01'), "FreeSpaceOffset=2097152",
         "No free space was found!"},
        {"no setting", Rom(), "",
         "The setting 'FreeSpaceOffset' in 'settings.ini' is missing or not a number.\r\nNothing was written."},
        {"free space below 0x100000", Rom().Fill(0x80000, 16, '\xFF'), "FreeSpaceOffset=0",
         "The free space found at offset 80001" + range},
        {"text below 0x100000", Rom().Put(0x0F0000, Bytes("C2D9E0E0E3FF")).Pointer(0x50010, 0x0F0000),
         "FreeSpaceOffset=2097152",
         "The text at offset F0000 can't be re-pointed: pointers can only be built for offsets from 100000 to "
         "FFFFFF (Hex).\r\nNothing was written.",
         "[Town]\r\nLow=F0000\r\n", "Low"},
        {"longer than a text may be", Rom(), "FreeSpaceOffset=2097152",
         "The text is 10001 bytes long; a text may be at most 10000 bytes.\r\nNothing was written.", kOffsets, "Mom",
         std::string(10001, 'a'), false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Build(c.rom, c.settings, c.offsets, c.key);
        std::vector<Shown> shown{kLonger, Msg(Icon::Critical, c.message)};
        if (!c.asked) shown.erase(shown.begin());
        EXPECT_EQ(SaveAs(c.text, {c.asked}), shown);
        EXPECT_EQ(w->RomBytes(), c.rom.bytes());
        EXPECT_EQ(ReadFile(w->OffsetFile()), c.offsets);
        EXPECT_TRUE(w->session.controls.saveEnabled);
    }
}

// Mom reads "Hello" CR LF "i"; Kana holds accented letters ("kaki" in the
// Japanese table), Long no terminator within 10000 bytes, Bad no offset.
TEST_F(Save, SelectingShowsTheTextInEitherTableAndTheCounterTellsBytesLeftOrBytesToRepoint) {
    RomBuilder rom = Rom().Put(0x100000, Bytes("C2D9E0E0E3FEDDFF")).Put(0x100200, Bytes("0607FF"));
    Build(rom.Fill(0x180000, 12000, '\xBB'), "FreeSpaceOffset=2097152",
          kOffsets + "Kana=100200\r\nLong=180000\r\nBad=XYZ\r\n");
    auto& c = w->session.controls;
    EXPECT_EQ(c.text1.Text(), "Hello\r\ni");
    const std::pair<const char*, const char*> cases[] = {
        {"Hello\r\ni", "0 Characters left until repoint."},
        {"Hell", "3 Characters left until repoint."},
        {"Hello\r\ni[PLAYER]", "9 Characters to repoint."},  // the new length itself
        {"", "7 Characters left until repoint."},
    };
    for (auto [text, caption] : cases) {
        c.text1.SetText(text);
        UpdateRepointCounter(w->session);
        EXPECT_EQ(c.repointCaption, caption) << text;
    }
    std::int16_t key = 45;
    EXPECT_FALSE(UpdateRepointCounter(w->session, key, true));  // Shift+Insert opens no menu
    key = 45;
    UpdateRepointCounter(w->session, key, false);
    EXPECT_EQ(key, 45);  // Insert without Shift goes through

    w->session.tree.Select(0);  // the section node
    Text_Load(w->session);
    EXPECT_FALSE(c.saveEnabled || c.tableEnabled || c.specialDialogEnabled);
    EXPECT_EQ(c.repointCaption, "0 Characters left until repoint.");

    w->Select("Town", "Kana");
    EXPECT_EQ(c.text1.Text(), "ÉÊ");
    ChooseTable(w->session, true);
    EXPECT_EQ(c.text1.Text(), "kaki");
    EXPECT_TRUE(c.text1.readOnly && !c.saveEnabled);
    ChooseTable(w->session, false);
    EXPECT_TRUE(!c.text1.readOnly && c.saveEnabled);

    w->Select("Town", "Long");
    EXPECT_EQ(c.text1.Text(), std::string(10000, 'A'));
    w->Select("Town", "Bad");
    EXPECT_EQ(c.offsetCaption, "XYZ");
    EXPECT_EQ(w->session.oldTextLength, 0);
    EXPECT_TRUE(w->user.Take().empty());  // errors end the load silently
}

TEST_F(Save, ATextOpenedByItsDecimalOffsetIsSavedWithoutTouchingAnEntry) {
    Build(Rom().Pointer(0x50020, 0x100100));
    // Mom stays selected; the text at 0x100100 ("Men") is opened by its offset.
    w->user.Then(std::string("1048832")).Then(FakePrompter::AddOffsetAction([&](AddOffsetFields& f) {
        EXPECT_FALSE(f.offsetEnabled);
    }));
    ViewOffset(w->session);
    EXPECT_EQ(w->user.inputDefaults.back(), "0");
    EXPECT_EQ(w->user.Take().front(),
              (Shown{Shown::Input, "Enter Text Offset to view (Dec):", "Text Offset", Icon::Question}));
    ASSERT_EQ(w->session.controls.text1.Text(), "Men");
    EXPECT_EQ(SaveAs("Menu!!", {true}), (std::vector<Shown>{kLonger, kSaved}));
    EXPECT_EQ(At(0x50020, 4), Bytes("01002008"));
    EXPECT_EQ(At(0x50000, 4), Bytes("00001008"));  // Mom's pointer is untouched
    EXPECT_EQ(ReadFile(w->OffsetFile()), kOffsets);
    EXPECT_EQ(w->session.controls.text1.Text(), "Menu!!");

    for (const char* answer : {"0", ""}) {
        w->user.Then(std::string(answer));
        ViewOffset(w->session);
        EXPECT_EQ(w->session.controls.text1.Text(), "") << answer;
        EXPECT_EQ(w->session.controls.offsetCaption, "") << answer;
        EXPECT_FALSE(w->session.controls.saveEnabled);
    }
    w->user.Take();
    w->user.Then(std::string("12x"));
    ViewOffset(w->session);
    // The prompt and a message, no add-offset window for "12x".
    EXPECT_THAT(w->user.Take(), ElementsAre(Field(&Shown::kind, Shown::Input), Field(&Shown::kind, Shown::Message)));
}

// A journal with only old bytes in its ranges (cut after write 1) is removed
// without a word; one that changed bytes is replayed and reported.
TEST_F(Save, ARepointCutAfterAnyWriteComesBackAsBeforeOrAfter) {
    Prepared();
    const Snapshot before = Take();
    w->user.Yes();
    SaveText(w->session, fit::ConfirmFitBeforeSave);
    const Snapshot after = Take();

    int cutOffs = 0;
    for (int writes = 0; writes <= 10; ++writes) {
        SCOPED_TRACE(writes);
        Prepared();
        SaveCutOff(writes);
        if (Take() != after) ++cutOffs;
        w->user.Take();
        w->Open();  // no hook now: a kept journal is replayed
        const Snapshot left = Take();
        EXPECT_TRUE(left == before || left == after);
        EXPECT_FALSE(JournalLeft());
        EXPECT_EQ(Mentions(w->user.Take(), kSaveRestored), writes >= 2 && writes <= 6);
    }
    // The journal, three pointers, the cleared text, the moved text and the offset file.
    EXPECT_EQ(cutOffs, 7);
}

TEST_F(Save, APendingJournalIsReplayedBeforeTheNextSaveAndNeverOverwritten) {
    Prepared();
    const Snapshot before = Take();
    SaveCutOff(3);
    ASSERT_TRUE(JournalLeft());
    const std::string journal = ReadFile(JournalPath(w->Rom()));

    // A second program's save meets the journal and writes nothing.
    WritePlan other{"Save Text", "", w->Rom(), before.rom.size(), {{0x100000, "\xC2", "\xC3"}}, {}, {}, {}};
    EXPECT_THROW(CommitPlan(other), PlanRefused);
    EXPECT_EQ(ReadFile(JournalPath(w->Rom())), journal);

    // The same session's next save replays it first, then saves.
    w->user.Take();
    w->user.Yes();
    SaveText(w->session, fit::ConfirmFitBeforeSave);
    auto shown = w->user.Take();
    EXPECT_TRUE(Mentions(shown, kSaveRestored));
    EXPECT_EQ(shown.back(), kSaved);
    EXPECT_FALSE(JournalLeft());
    EXPECT_NE(Take().rom, before.rom);
}

TEST_F(Save, AJournalThatNoLongerFitsTheFilesIsKeptAndTheRomOpensReadOnly) {
    struct Case {
        const char* name;
        std::function<void(Workspace&)> meddle;
        const char* reason;
    };
    const Case cases[] = {
        {"grown", [](Workspace& w) { AppendFile(w.Rom(), std::string(1 << 20, '\x55')); }, "size is now"},
        {"offsets edited", [](Workspace& w) { w.WriteOffsetFile("[Town]\r\nMom=100000\r\nDad=100010\r\n"); },
         "offset file"},
        {"bytes changed", [](Workspace& w) { PatchFile(w.Rom(), 0x50000, "\x12\x34\x56\x08"); }, "50000"},
        {"damaged", [](Workspace& w) { WriteFile(JournalPath(w.Rom()), "QUILLON WRITE JOURNAL 2\nrom 5"); },
         "damaged"},
        {"empty", [](Workspace& w) { WriteFile(JournalPath(w.Rom()), ""); }, "damaged"},
        {"cut short", [](Workspace& w) { std::filesystem::resize_file(JournalPath(w.Rom()), 200); }, "damaged"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Prepared();
        SaveCutOff(3);
        c.meddle(*w);
        const Snapshot meddled = Take();
        const std::string journal = ReadFile(JournalPath(w->Rom()));
        w->user.Take();
        w->Open();
        EXPECT_EQ(Take(), meddled);
        EXPECT_EQ(ReadFile(JournalPath(w->Rom())), journal);
        auto shown = w->user.Take();
        EXPECT_TRUE(Mentions(shown, c.reason));
        EXPECT_TRUE(Mentions(shown, JournalPath(w->Rom()).string()));

        w->Select("Town", "Mom");
        EXPECT_FALSE(w->session.controls.saveEnabled);
        SaveText(w->session, fit::ConfirmFitBeforeSave);
        EXPECT_EQ(Take(), meddled);
    }
}

// Files changed by another program since the text was loaded, or
// write-protected, are found before the journal is written.
TEST_F(Save, ChangedOrWriteProtectedFilesStopTheSaveBeforeAnyWrite) {
    const std::string outside = "changed outside Quillon since the text was loaded";
    const std::string locked = "is write-protected";
    struct Case {
        const char* name;
        std::function<void(Workspace&)> meddle;
        std::string text;  // the edit; longer texts repoint
        std::string message;
    };
    const Case cases[] = {
        {"text bytes", [](Workspace& w) { PatchFile(w.Rom(), 0x100001, "\xDA"); }, "Jello", outside},
        {"repointed text", [](Workspace& w) { PatchFile(w.Rom(), 0x100004, "\xD5"); }, "Hello there!", outside},
        {"truncated", [](Workspace& w) { std::filesystem::resize_file(w.Rom(), 0x200000); }, "Jello", outside},
        {"ROM locked", [](Workspace& w) { MakeReadOnly(w.Rom()); }, "Hello there!", locked},
        {"offsets locked", [](Workspace& w) { MakeReadOnly(w.OffsetFile()); }, "Hello there!", locked},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Build();
        w->session.controls.text1.SetText(c.text);
        c.meddle(*w);
        const Snapshot meddled = Take();
        w->user.Yes().Yes();  // repoint (when asked), then reload
        SaveText(w->session, fit::ConfirmFitBeforeSave);
        EXPECT_EQ(Take(), meddled);
        EXPECT_TRUE(Mentions(w->user.Take(), c.message));
        EXPECT_FALSE(JournalLeft());
    }
}

// The text's place is expected as it was loaded up to the write itself.
TEST_F(Save, AChangeMadeWhileAQuestionIsOpenIsNotOverwritten) {
    Prepared();
    std::string changed = Take().rom;
    changed[kText + 1] = '\xDA';
    w->user.atNextQuestion = [&] { WriteFile(w->Rom(), changed); };
    w->user.Yes().Yes();  // repoint, then reload
    SaveText(w->session, fit::ConfirmFitBeforeSave);
    EXPECT_EQ(w->RomBytes(), changed);
    EXPECT_TRUE(Mentions(w->user.Take(), "changed outside Quillon since the text was loaded"));
}

TEST_F(Save, TheWriterRefusesPlansThatNoLongerMatchTheFiles) {
    Build();
    const auto rom = w->Rom();
    const std::uint64_t size = w->RomBytes().size();
    auto plan = [&](std::uint64_t at, std::string before, std::string after) {
        return WritePlan{"t", "", rom, size, {{at, std::move(before), std::move(after)}}, {}, {}, {}};
    };
    const std::string old = At(0x50000, 4);
    const std::pair<const char*, WritePlan> refused[] = {
        {"header", plan(0x10, std::string(4, '\0'), "abcd")},
        {"past the end", plan(size - 1, "\xFF\xFF", "ab")},
        {"expected bytes differ", plan(0x50000, "zzzz", "abcd")},
        {"size differs", WritePlan{"t", "", rom, size + 1, {{0x50000, old, "abcd"}}, {}, {}, {}}},
        {"offset file differs", WritePlan{"t", "", rom, size, {}, w->OffsetFile(), std::string("x"), "y"}},
    };
    for (const auto& [name, p] : refused) {
        EXPECT_THROW(CommitPlan(p), PlanRefused) << name;
        EXPECT_FALSE(JournalLeft()) << name;
    }
    EXPECT_EQ(At(0x50000, 4), old);
}

TEST_F(Save, OffsetsWhereNoTextCanBeWrittenCannotBeSaved) {
    const std::pair<const char*, const char*> cases[] = {
        {"Mom=\r\n", "no offset"},
        {"Mom=10\r\n", "cartridge header"},
        {"Mom=300000\r\n", "past the end"},
        {"Mom=3FFFFF\r\n", "past the end"},
        {"Mom=XYZ\r\n", "is not a hexadecimal number"},
        {"Mom=180000\r\n", "has no end within 10000 bytes"},  // saving would cut it
    };
    for (auto [line, reason] : cases) {
        SCOPED_TRACE(line);
        Build(StoryRom(), "FreeSpaceOffset=2097152", std::string("[Town]\r\n") + line);
        EXPECT_FALSE(w->session.controls.saveEnabled);
        EXPECT_NE(w->session.controls.saveRefusal.find(reason), std::string::npos);
        EXPECT_TRUE(Mentions(SaveAs("x", {true}), reason));
        EXPECT_EQ(w->RomBytes(), StoryRom().bytes());
    }
}

TEST_F(Save, BytesTheEditorCannotReproduceAreNamedAndSavingAsksFirst) {
    const RomBuilder rom = StoryRom().Put(0x100000, Bytes("C2FEFEC3FF"));
    Build(rom, "FreeSpaceOffset=2097152", "[Town]\r\nMom=100000\r\n");
    const std::string note = w->session.controls.roundTripNote;
    EXPECT_NE(note.find("from byte 2 on, the ROM holds FE FE C3"), std::string::npos) << note;
    w->user.No();
    SaveText(w->session, fit::ConfirmFitBeforeSave);
    EXPECT_THAT(w->user.Take(), ElementsAre(Field(&Shown::kind, Shown::Question)));
    EXPECT_EQ(w->RomBytes(), rom.bytes());
}
