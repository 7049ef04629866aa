// The write path under a second writer, a cut inside one range, and journals
// that Quillon did not write.
#include "core/file_io.h"
#include "store/history.h"
#include "store/journal.h"
#include "store/leftovers.h"
#include "store/recovery.h"
#include "store/rom_lock.h"
#include "store/writer.h"
#include "support/temp_dir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

using namespace quillon;
using ::testing::HasSubstr;

namespace {

struct Stage {
    test::TempDir dir;
    std::filesystem::path rom = dir / "game.gba", ini = dir / "QLNE.ini";
    std::string image = std::string(0x2000, '\x01');
    Stage() { io::ReplaceFile(rom, image); }
    // Eight bytes across the page boundary at 0x1000 become 0xAB.
    WritePlan Plan(std::uint64_t offset = 0xFFC) const {
        return {"Save Text", "A / B", rom, image.size(), {{offset, std::string(8, '\x01'), std::string(8, '\xAB')}}};
    }
};

TEST(Writers, ASecondWriterWaitsForTheLockThenIsRefused) {
    Stage s;
    std::string holder;
    std::optional<RomLock> held = RomLock::Take(s.rom, holder);
    ASSERT_TRUE(held);
    // Refused while another holds the lock: nothing written, no journal left.
    EXPECT_THAT([&] { (void)CommitPlan(s.Plan()); },
                testing::ThrowsMessage<PlanRefused>(HasSubstr("is being saved by Quillon, process")));
    EXPECT_EQ(io::ReadAll(s.rom), s.image);
    EXPECT_FALSE(std::filesystem::exists(JournalPath(s.rom)));
    // A journal found while the lock is held is a live save's: never rolled back.
    io::ReplaceFile(JournalPath(s.rom), JournalText(s.Plan()));
    EXPECT_EQ(RecoverPending(s.rom, s.ini).outcome, RecoveryOutcome::Refused);
    EXPECT_TRUE(std::filesystem::exists(JournalPath(s.rom)));
    std::filesystem::remove(JournalPath(s.rom));
    // Released while the second one waits: it writes.
    std::thread release([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        held.reset();
    });
    EXPECT_EQ(CommitPlan(s.Plan()).outcome, CommitOutcome::Written);
    release.join();
    EXPECT_EQ(io::ReadAll(s.rom).substr(0xFFC, 8), std::string(8, '\xAB'));
}

TEST(Writers, ACutAtEveryByteOfARangeIsPutBack) {
    Stage s;
    for (std::size_t cut = 0; cut <= 8; ++cut) {
        std::string now = s.image;
        now.replace(0xFFC, cut, std::string(cut, '\xAB'));  // the first `cut` bytes landed
        io::ReplaceFile(s.rom, now);
        io::ReplaceFile(JournalPath(s.rom), JournalText(s.Plan()));
        EXPECT_NE(RecoverPending(s.rom, s.ini).outcome, RecoveryOutcome::Refused) << cut;
        EXPECT_EQ(io::ReadAll(s.rom), s.image) << cut;
    }
    // A byte that is neither old nor new refuses, and nothing is written.
    std::string foreign = s.image;
    foreign[0x1001] = '\x77';
    io::ReplaceFile(s.rom, foreign);
    io::ReplaceFile(JournalPath(s.rom), JournalText(s.Plan()));
    EXPECT_THAT(RecoverPending(s.rom, s.ini).reason, HasSubstr("neither the old nor the new bytes"));
    EXPECT_EQ(io::ReadAll(s.rom), foreign);
}

TEST(Writers, AJournalNotWrittenForThisRomWritesNothing) {
    Stage s;
    WritePlan header = s.Plan(0x10);  // inside the cartridge header
    WritePlan elsewhere = s.Plan();
    elsewhere.offsetFile = s.dir / "notes.txt";  // no offset file
    elsewhere.offsetBefore = "keep";
    elsewhere.offsetAfter = "gone";
    io::ReplaceFile(s.dir / "notes.txt", "gone");
    for (const WritePlan& plan : {header, elsewhere}) {
        std::string landed = s.image;
        landed.replace(plan.romWrites[0].offset, 8, std::string(8, '\xAB'));
        io::ReplaceFile(s.rom, landed);
        io::ReplaceFile(JournalPath(s.rom), JournalText(plan));
        const Recovery r = RecoverPending(s.rom, s.ini);
        EXPECT_EQ(r.outcome, RecoveryOutcome::Refused);
        EXPECT_THAT(r.reason, HasSubstr("is not one Quillon wrote for this ROM"));
        EXPECT_EQ(io::ReadAll(s.rom), landed);
        std::filesystem::remove(JournalPath(s.rom));
    }
    EXPECT_EQ(io::ReadAll(s.dir / "notes.txt"), "gone");
}

// Temporary files of a stopped process go on the next opening: only ours
// (the ROM's, the offset file's, the history's), only old ones, and none
// while a writer holds the ROM.
TEST(Writers, StaleTemporaryFilesOfOursAloneAreRemovedWhenNoWriterHoldsTheRom) {
    Stage s;
    std::filesystem::create_directories(HistoryFolder(s.rom));
    const std::pair<std::filesystem::path, bool> files[] = {  // removed?
        {s.dir / "game.gba.tmp-a1B2c3", true},
        {s.dir / "game.gba.save-journal.tmp-Zz9Yy8", true},
        {s.dir / "QLNE.ini.tmp-000000", true},
        {HistoryFolder(s.rom) / "limit.tmp-qwerty", true},
        {s.dir / "game.gba.tmp-a1B2c", false},    // not the system's six letters
        {s.dir / "game.gba2.tmp-a1B2c3", false},  // another ROM's
        {s.dir / "notes.txt.tmp-a1B2c3", false},
        {s.dir / "other.gba.tmp-a1B2c3", false},
    };
    const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::minutes(5);
    for (const auto& [file, removed] : files) {
        io::ReplaceFile(file, "x");
        std::filesystem::last_write_time(file, old);
    }
    io::ReplaceFile(s.dir / "game.gba.tmp-YOUNG1", "a temporary file being written now");
    {
        std::string holder;
        const auto held = RomLock::Take(s.rom, holder);
        EXPECT_EQ(RemoveStaleTemporaries(s.rom, s.ini), 0u);
    }
    EXPECT_EQ(RemoveStaleTemporaries(s.rom, s.ini), 4u);
    for (const auto& [file, removed] : files) EXPECT_EQ(std::filesystem::exists(file), !removed) << file;
    EXPECT_TRUE(std::filesystem::exists(s.dir / "game.gba.tmp-YOUNG1"));
}

}  // namespace
