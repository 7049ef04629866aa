// The history beside a ROM: fifty saves of every kind undone to the first
// byte and redone to the last across reopening, going back before an entry;
// undo refuses changed ranges, survives a cut at any write, shows a damaged or
// missing folder as empty with its reason, and keeps within its size limit.
#include "core/file_io.h"
#include "edit/add_offset_form.h"
#include "edit/save_text.h"
#include "fit/fit_settings.h"
#include "history/history_commands.h"
#include "history/patch.h"
#include "store/journal.h"
#include "store/recovery.h"
#include "store/replay.h"
#include "store/writer.h"
#include "support/workspace.h"
#include "tools/add_script.h"

#include <quillon/errors.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

namespace {

constexpr int kTexts = 10, kSaves = 50;

struct State {
    std::string rom, offsets;
    bool operator==(const State&) const = default;
};

// Ten "Hello" texts with two pointers each, opened with their offset file.
class History : public ::testing::Test {
protected:
    void SetUp() override {
        RomBuilder image = StoryRom();
        std::string ini = "[Town]\r\n";
        for (int k = 0; k < kTexts; ++k) {
            const std::uint32_t at = 0x100000 + 0x40 * k;
            image.Put(at, Bytes("C2D9E0E0E3FF")).Pointer(0x50000 + 8 * k, at).Pointer(0x60004 + 8 * k, at);
            ini += "T" + std::to_string(k) + "=" + PadHex(at) + "\r\n";
        }
        image.Save(rom);
        w.WriteOffsetFile(ini);
        w.Open();
    }
    State Now() const { return {w.RomBytes(), ReadFile(ini)}; }

    // Save number `i`: in place, a repoint, a dialog script, or a new offset
    // file entry, in turn.
    void Save(int i) {
        w.user.answers.clear();
        if (i % 4 == 3) {
            AddOffsetForm form(w.session);
            form.sectionName = "Added";
            form.textName = "E" + std::to_string(i);
            form.offsetDecimal = std::to_string(0x100000 + i);
            ASSERT_TRUE(form.Add());
            return;
        }
        if (i % 4 == 2) {
            AddScriptForm form(w.session);
            form.txtOffset = "100000";
            form.AddScript();
            return;
        }
        w.Select("Town", "T" + std::to_string(i % kTexts));
        const std::string text = i % 4 == 0 ? std::string(1, static_cast<char>('A' + i % 26)) + "ello"
                                            : "Hello again, number " + std::to_string(i);
        w.session.controls.text1.SetText(text);
        w.user.answers.assign(2, FakePrompter::Answer(true));  // shorter or longer: go on
        SaveText(w.session, fit::ConfirmFitBeforeSave);
    }
    // Writes `bytes` at `offset` and a line into the offset file, through the writer.
    void Write(std::uint64_t offset, std::string bytes) {
        const std::string before = ReadFile(ini), after = before + "K" + std::to_string(offset) + "=1\r\n";
        const WritePlan plan{"Save Text", "", rom, io::FileSize(rom), RangesFor(rom, {{offset, std::move(bytes)}}),
                             ini, before, after};
        ASSERT_EQ(CommitPlan(plan).outcome, CommitOutcome::Written);
    }

    Workspace w;
    const std::filesystem::path rom = w.Rom(), ini = w.OffsetFile();
};

TEST_F(History, FiftySavesUndoneAndRedoneByteForByteAcrossReopening) {
    // Each state as the ROM's CRC and the offset file: fifty whole images would not fit.
    const auto sum = [&] { return std::pair(Crc32(w.RomBytes()), ReadFile(ini)); };
    std::vector sums{sum()};
    const State first = Now();
    for (int i = 0; i < kSaves; ++i) {
        Save(i);
        sums.push_back(sum());
        ASSERT_NE(sums.back(), sums[sums.size() - 2]) << "save " << i << " wrote nothing";
    }
    const State last = Now();
    ASSERT_EQ(ListHistory(w.Rom()).entries.size(), static_cast<std::size_t>(kSaves));

    for (int i = kSaves; i > 0; --i) {
        if (i % 7 == 0) w.Open();
        w.user.answers.assign(1, FakePrompter::Answer(true));  // a save over other entries' texts asks first
        UndoLastSaveCommand(w.session);
        ASSERT_EQ(sum(), sums[i - 1]) << "undo of save " << i;
    }
    EXPECT_EQ(Now(), first);
    for (int i = 1; i <= kSaves; ++i) {
        if (i % 9 == 0) w.Open();
        w.user.answers.assign(1, FakePrompter::Answer(true));
        RedoSaveCommand(w.session);
        ASSERT_EQ(sum(), sums[i]) << "redo of save " << i;
    }
    EXPECT_EQ(Now(), last);
}

TEST_F(History, GoingBackBeforeAnEntryUndoesItAndEveryLaterOneAndReloadsTheText) {
    std::vector<State> states{Now()};
    for (int i = 0; i < 6; ++i) {
        Save(i);
        states.push_back(Now());
    }
    const auto entries = ListHistory(w.Rom()).entries;
    ASSERT_EQ(entries.size(), 6u);
    EXPECT_EQ(entries.front().number, 6u);  // newest first
    w.Select("Town", "T1");
    ASSERT_TRUE(GoBackCommand(w.session, 2));
    EXPECT_EQ(Now(), states[1]);
    EXPECT_EQ(w.session.controls.text1.Text(), "Hello");
    const auto after = ListHistory(w.Rom()).entries;
    EXPECT_EQ(std::count_if(after.begin(), after.end(), [](const auto& e) { return e.undone; }), 5);

    Save(0);  // a new save ends what could be redone
    EXPECT_EQ(ListHistory(w.Rom()).entries.size(), 2u);
    w.user.Take();
    RedoSaveCommand(w.session);
    EXPECT_EQ(w.user.Take().back().text, "There is no undone save to redo.");
}

TEST_F(History, UndoNamesEveryChangedRangeAndChangesNothing) {
    Write(0x1000, "abcd");
    Write(0x2000, "efgh");
    Write(0x3000, "ijkl");
    PatchFile(rom, 0x3001, "X");
    const State before = Now();
    EXPECT_THAT([&] { (void)UndoLastSave(rom, ini); }, ThrowsMessage<ChangedOnDisk>(HasSubstr("0x3000-0x3003")));
    EXPECT_EQ(Now(), before);
    EXPECT_FALSE(ListHistory(rom).entries.front().undone);
}

TEST_F(History, AnUndoCutAtAnyWriteLeavesTheStateBeforeOrAfterIt) {
    Write(0x1000, "abcd");
    Write(0x2000, std::string(300, 'z'));
    const State saved = Now();
    (void)UndoLastSave(rom, ini);
    const State undone = Now();
    (void)RedoSave(rom, ini);

    // Cut after none, the journal, the range: the offset file is the last write.
    int writes = 0;
    for (bool cutOff = true; cutOff; ++writes) {
        SCOPED_TRACE(writes);
        try {
            io::ScopedWriteHook cut(io::StopAfterWrites(writes));
            (void)UndoLastSave(rom, ini);
            cutOff = false;
        } catch (const std::exception&) {
        }
        ASSERT_NE(RecoverPending(rom, ini).outcome, RecoveryOutcome::Refused);  // as the next opening does
        const State left = Now();
        ASSERT_TRUE(left == saved || left == undone);
        // The history agrees with the files: one more step reaches the other state.
        if (left == saved) {
            (void)UndoLastSave(rom, ini);
            EXPECT_EQ(Now(), undone);
        }
        (void)RedoSave(rom, ini);
        EXPECT_EQ(Now(), saved);
    }
    EXPECT_EQ(writes, 4);
}

TEST_F(History, AMissingOrDamagedFolderShowsAnEmptyHistoryWithTheReasonAndSavesGoOn) {
    const auto folder = HistoryFolder(rom);
    struct Case {
        const char* name;
        std::function<void()> damage;
        std::string reason;
    } cases[] = {
        {"missing", [&] { std::filesystem::remove_all(folder); }, "No save"},
        {"a_file", [&] { std::filesystem::remove_all(folder); WriteFile(folder, "x"); }, "is not a folder"},
        {"garbage_entry", [&] { WriteFile(folder / "00000009-0.journal", "garbage"); }, "entry 9 is damaged"},
        {"out_of_order", [&] { WriteFile(folder / "00000001-0.undone", ""); }, "out of order"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ClearHistory(rom);
        Write(0x4000, "first");
        c.damage();
        HistoryListing listing = ListHistory(rom);
        EXPECT_TRUE(listing.entries.empty());
        EXPECT_NE(listing.problem.find(c.reason), std::string::npos) << listing.problem;
        const std::string before = ReadFile(rom);
        Write(0x5000, c.name);
        EXPECT_NE(ReadFile(rom), before);
    }
}

// An entry is data, not orders: one naming a file that is not this ROM's
// offset file, a range a new save could not write, or lying behind a link is
// refused on undo and on redo, and nothing is written anywhere.
TEST_F(History, ACraftedEntryOfEachKindIsRefusedWithItsReasonAndWritesNothing) {
    const auto dir = w.dir.path(), folder = HistoryFolder(rom);
    const std::uint64_t size = io::FileSize(rom);
    const std::string at = ReadFile(rom).substr(0x4000, 2);
    const WritePlan base{"Save Text", "", rom, size, {{0x4000, at, "zz"}}, {}, {}, {}};
    WriteFile(dir / "other.ini", "[Keep]\r\n");
    std::filesystem::create_directories(dir / "elsewhere");
    std::filesystem::create_symlink(dir / "elsewhere", dir / "ini-link");
    WriteFile(dir / "elsewhere" / "QLNE.ini", "[Keep]\r\n");
    auto withFile = [&](std::filesystem::path file) {
        WritePlan p = base;
        p.offsetFile = std::move(file);
        p.offsetBefore = "[Keep]\r\n";
        p.offsetAfter = "[Gone]\r\n";
        return p;
    };
    auto withRange = [&](std::uint64_t offset) {
        WritePlan p = base;
        p.romWrites = {{offset, "ab", "cd"}};
        return p;
    };
    enum class Place { Entry, LinkedEntry, LinkedFolder };
    const struct Case {
        const char* name;
        WritePlan plan;
        Place place;
        const char* reason;
    } cases[] = {
        {"another_file", withFile(dir / "other.ini"), Place::Entry, "not this ROM's offset file"},
        {"through_a_link", withFile(dir / "ini-link" / "QLNE.ini"), Place::Entry, "not this ROM's offset file"},
        {"in_the_header", withRange(0x10), Place::Entry, "cartridge header"},
        {"past_the_end", withRange(size - 1), Place::Entry, "past the end"},
        {"entry_is_a_link", base, Place::LinkedEntry, "is a link"},
        {"folder_is_a_link", base, Place::LinkedFolder, "is a link"},
    };
    const State before = Now();
    for (const Case& c : cases)
        for (const bool undo : {true, false}) {
            SCOPED_TRACE(std::string(c.name) + (undo ? " undo" : " redo"));
            std::filesystem::remove_all(folder);
            std::filesystem::remove_all(dir / "outside");
            std::filesystem::create_directories(dir / "outside");
            const auto entry = EntryPath(c.place == Place::LinkedFolder ? dir / "outside" : folder, 1, 0, !undo);
            if (c.place == Place::LinkedFolder)
                std::filesystem::create_directory_symlink(dir / "outside", folder);
            else
                std::filesystem::create_directories(folder);
            if (c.place == Place::LinkedEntry) std::filesystem::create_symlink(dir / "outside" / "1.journal", entry);
            WriteFile(c.place == Place::LinkedEntry ? dir / "outside" / "1.journal" : entry, JournalText(c.plan));
            EXPECT_THAT([&] { (void)(undo ? UndoLastSave(rom, ini) : RedoSave(rom, ini)); },
                        ThrowsMessage<PlanRefused>(HasSubstr(c.reason)));
            EXPECT_EQ(Now(), before);
            EXPECT_EQ(ReadFile(dir / "other.ini"), "[Keep]\r\n");
            EXPECT_EQ(ReadFile(dir / "elsewhere" / "QLNE.ini"), "[Keep]\r\n");
        }
}

TEST_F(History, TheOldestEntriesGoFirstWhenTheLimitIsReached) {
    for (int k = 0; k < 6; ++k) Write(0x1000 + 0x800 * k, std::string(512, static_cast<char>('a' + k)));
    auto listing = ListHistory(rom);
    ASSERT_EQ(listing.entries.size(), 6u);
    const std::uint64_t one = listing.entries.front().bytes;

    SetHistoryLimit(rom, one * 3 + one / 2);
    listing = ListHistory(rom);
    EXPECT_EQ(listing.limit, one * 3 + one / 2);
    ASSERT_EQ(listing.entries.size(), 3u);
    EXPECT_EQ(listing.entries.back().number, 4u);
    Write(0x7000, std::string(512, 'q'));
    EXPECT_EQ(ListHistory(rom).entries.back().number, 5u);

    SetHistoryLimit(rom, 1);  // the newest entry always stays
    EXPECT_EQ(ListHistory(rom).entries.size(), 1u);
    ClearHistory(rom);
    listing = ListHistory(rom);
    EXPECT_TRUE(listing.entries.empty());
    EXPECT_EQ(listing.limit, 1u);
    EXPECT_THROW((void)UndoLastSave(rom, ini), PlanRefused);
}

}  // namespace
