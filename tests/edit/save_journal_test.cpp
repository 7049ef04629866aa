// A repoint writes several places; cut off after any single write, the ROM and
// the offset file end up either as before the save or as after it.
#include "core/file_io.h"
#include "edit/save_journal.h"
#include "edit/save_text.h"
#include "support/workspace.h"

#include <quillon/core.h>

#include <gtest/gtest.h>

#include <memory>

using namespace quillon;
using namespace quillon::test;

namespace {

struct Snapshot {
    std::string rom, offsets;
    bool operator==(const Snapshot&) const = default;
};

// A workspace with "Hello" at 0x100000, three pointers to it and the entry
// selected, ready for a save that must move the text.
std::unique_ptr<Workspace> Prepared() {
    auto w = std::make_unique<Workspace>();
    StoryRom()
        .Put(0x100000, Bytes("C2D9E0E0E3FF"))
        .Pointer(0x50000, 0x100000)
        .Pointer(0x60001, 0x100000)
        .Pointer(0x70003, 0x100000)
        .Save(w->Rom());
    w->WriteOffsetFile("[Town]\r\nMom=100000\r\n");
    w->Open();
    w->Select("Town", "Mom");
    w->session.controls.text1.SetText("Hello there!");
    w->user.Take();
    return w;
}

Snapshot Take(const Workspace& w) { return {w.RomBytes(), ReadFile(w.OffsetFile())}; }

// Saves with every write from number `failAt` on failing, as when the machine
// stops there; `only` fails just that one write.
void SaveFailing(Workspace& w, int failAt, bool only) {
    int writes = 0;
    io::ScopedWriteHook hook([&](const std::filesystem::path&) {
        ++writes;
        return only ? writes != failAt : writes < failAt;
    });
    w.user.Yes();
    SaveText(w.session);
}

}  // namespace

TEST(SaveJournal, ACutOffRepointIsUndoneWhenTheRomIsOpenedAgain) {
    auto clean = Prepared();
    const Snapshot before = Take(*clean);
    clean->user.Yes();
    SaveText(clean->session);
    const Snapshot after = Take(*clean);
    ASSERT_NE(before, after);

    int cutOffs = 0;
    for (int failAt = 1; failAt <= 12; ++failAt) {
        auto w = Prepared();
        SaveFailing(*w, failAt, /*only=*/false);
        const Snapshot left = Take(*w);
        if (left == after) continue;  // the save was already complete
        ++cutOffs;
        auto shown = w->user.Take();
        ASSERT_GE(shown.size(), 2u);
        EXPECT_EQ(shown.back().icon, Icon::Critical) << failAt;
        w->Open();  // no hook now: the journal is played back
        EXPECT_EQ(Take(*w), before) << "cut off at write " << failAt;
        EXPECT_FALSE(FileExists(JournalPath(w->Rom()))) << failAt;
        if (failAt > 1) {
            EXPECT_EQ(w->user.Take().at(1),
                      Msg(Icon::Information,
                          "The last save to this ROM was cut off before it was finished.\r\n"
                          "The ROM and its offset file have been restored to their state before that save."))
                << failAt;
        }
    }
    // The journal, three pointers, the cleared text, the offset file and the text.
    EXPECT_EQ(cutOffs, 7);
}

TEST(SaveJournal, ASingleFailedWriteIsUndoneAtOnce) {
    auto clean = Prepared();
    const Snapshot before = Take(*clean);
    for (int failAt = 1; failAt <= 7; ++failAt) {
        auto w = Prepared();
        SaveFailing(*w, failAt, /*only=*/true);
        EXPECT_EQ(Take(*w), before) << "failed write " << failAt;
        EXPECT_FALSE(FileExists(JournalPath(w->Rom()))) << failAt;
        auto shown = w->user.Take();
        EXPECT_EQ(shown.back().icon, Icon::Critical);
        if (failAt > 1) {
            EXPECT_NE(shown.back().text.find("were left as they were"), std::string::npos) << shown.back();
        }
    }
}

TEST(SaveJournal, ADamagedJournalIsReportedAndNothingIsTouched) {
    auto w = Prepared();
    const Snapshot before = Take(*w);
    WriteFile(JournalPath(w->Rom()), "QUILLON SAVE JOURNAL 1\nrom 5 00");
    EXPECT_THROW(RecoverInterruptedSave(w->Rom()), FileError);
    EXPECT_EQ(Take(*w), before);
    EXPECT_TRUE(FileExists(JournalPath(w->Rom())));
}
