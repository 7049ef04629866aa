// The history beside a ROM: undo refuses changed ranges, survives a cut at
// any write, shows a damaged or missing folder as empty with its reason, and
// keeps within its size limit.
#include "core/file_io.h"
#include "history/history.h"
#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <quillon/errors.h>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

class History : public ::testing::Test {
protected:
    void SetUp() override {
        RomBuilder(0x10000, '\x01').Code("QLNE").Save(rom);
        WriteFile(ini, "[Town]\r\n");
    }
    // Writes `bytes` at `offset` and a line into the offset file, through the writer.
    void Save(std::uint64_t offset, std::string bytes) {
        WritePlan plan;
        plan.command = "Save Text";
        plan.rom = rom;
        plan.romSize = io::FileSize(rom);
        plan.romWrites = RangesFor(rom, {{offset, std::move(bytes)}});
        plan.offsetFile = ini;
        plan.offsetBefore = ReadFile(ini);
        plan.offsetAfter = *plan.offsetBefore + "K" + std::to_string(offset) + "=1\r\n";
        ASSERT_EQ(CommitPlan(plan).outcome, CommitOutcome::Written);
    }
    std::string State() const { return ReadFile(rom) + "|" + ReadFile(ini); }

    TempDir dir;
    std::filesystem::path rom = dir / "game.gba", ini = dir / "QLNE.ini";
};

TEST_F(History, UndoNamesEveryChangedRangeAndChangesNothing) {
    Save(0x1000, "abcd");
    Save(0x2000, "efgh");
    Save(0x3000, "ijkl");
    PatchFile(rom, 0x3001, "X");
    const std::string before = State();
    try {
        UndoLastSave(rom);
        ADD_FAILURE() << "undone";
    } catch (const ChangedOnDisk& e) {
        EXPECT_NE(std::string(e.what()).find("0x3000-0x3003"), std::string::npos) << e.what();
    }
    EXPECT_EQ(State(), before);
    EXPECT_FALSE(ListHistory(rom).entries.front().undone);
}

TEST_F(History, AnUndoCutAtAnyWriteLeavesTheStateBeforeOrAfterIt) {
    Save(0x1000, "abcd");
    Save(0x2000, std::string(300, 'z'));
    const std::string saved = State();
    UndoLastSave(rom);
    const std::string undone = State();
    RedoSave(rom);

    // Cut after none, the journal, the range: the offset file is the last write.
    int writes = 0;
    for (bool cutOff = true; cutOff; ++writes) {
        SCOPED_TRACE(writes);
        try {
            io::ScopedWriteHook cut(io::StopAfterWrites(writes));
            UndoLastSave(rom);
            cutOff = false;
        } catch (const std::exception&) {
        }
        RecoverPending(rom);  // as the next opening does
        const std::string left = State();
        ASSERT_TRUE(left == saved || left == undone);
        // The history agrees with the files: one more step reaches the other state.
        if (left == saved) {
            UndoLastSave(rom);
            EXPECT_EQ(State(), undone);
        }
        RedoSave(rom);
        EXPECT_EQ(State(), saved);
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
        Save(0x4000, "first");
        c.damage();
        HistoryListing listing = ListHistory(rom);
        EXPECT_TRUE(listing.entries.empty());
        EXPECT_NE(listing.problem.find(c.reason), std::string::npos) << listing.problem;
        const std::string before = ReadFile(rom);
        Save(0x5000, c.name);
        EXPECT_NE(ReadFile(rom), before);
    }
}

TEST_F(History, TheOldestEntriesGoFirstWhenTheLimitIsReached) {
    for (int k = 0; k < 6; ++k) Save(0x1000 + 0x800 * k, std::string(512, static_cast<char>('a' + k)));
    auto listing = ListHistory(rom);
    ASSERT_EQ(listing.entries.size(), 6u);
    const std::uint64_t one = listing.entries.front().bytes;

    SetHistoryLimit(rom, one * 3 + one / 2);
    listing = ListHistory(rom);
    EXPECT_EQ(listing.limit, one * 3 + one / 2);
    ASSERT_EQ(listing.entries.size(), 3u);
    EXPECT_EQ(listing.entries.back().number, 4u);
    Save(0x7000, std::string(512, 'q'));
    EXPECT_EQ(ListHistory(rom).entries.back().number, 5u);

    SetHistoryLimit(rom, 1);  // the newest entry always stays
    EXPECT_EQ(ListHistory(rom).entries.size(), 1u);
    ClearHistory(rom);
    listing = ListHistory(rom);
    EXPECT_TRUE(listing.entries.empty());
    EXPECT_EQ(listing.limit, 1u);
    EXPECT_THROW(UndoLastSave(rom), PlanRefused);
}

}  // namespace
