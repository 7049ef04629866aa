// What a save does when the world is hostile: cut off after any write, the
// ROM changed by another program, a journal left behind, offsets that point
// where no text can be written.
#include "core/file_io.h"
#include "edit/save_text.h"
#include "edit/write_plan.h"
#include "support/save_messages.h"
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

// "Hello" at 0x100000 with three pointers to it, selected, edited to a text
// that must move.
std::unique_ptr<Workspace> Prepared() {
    auto w = std::make_unique<Workspace>();
    w->OpenAt(HelloRom(), "[Town]\r\nMom=100000\r\n", "Town", "Mom");
    w->session.controls.text1.SetText("Hello there!");
    return w;
}

Snapshot Take(const Workspace& w) { return {w.RomBytes(), ReadFile(w.OffsetFile())}; }

// A repoint cut off after its first `writes` writes, leaving the journal.
void SaveCutOff(Workspace& w, int writes) {
    io::ScopedWriteHook hook(io::StopAfterWrites(writes));
    w.user.Yes();
    SaveText(w.session);
}

bool Mentions(const std::vector<Shown>& shown, std::string_view text) {
    for (const auto& s : shown)
        if (s.text.find(text) != std::string::npos) return true;
    return false;
}

}  // namespace

TEST(DataSafety, ARepointCutAfterAnyWriteComesBackAsBeforeOrAfter) {
    auto clean = Prepared();
    const Snapshot before = Take(*clean);
    clean->user.Yes();
    SaveText(clean->session);
    const Snapshot after = Take(*clean);
    ASSERT_NE(before, after);

    int cutOffs = 0;
    for (int writes = 0; writes <= 10; ++writes) {
        auto w = Prepared();
        SaveCutOff(*w, writes);
        if (Take(*w) != after) ++cutOffs;
        w->Open();  // no hook now: a kept journal is replayed
        const Snapshot left = Take(*w);
        EXPECT_TRUE(left == before || left == after) << "cut after write " << writes;
        EXPECT_FALSE(FileExists(JournalPath(w->Rom()))) << writes;
    }
    // The journal, three pointers, the cleared text, the moved text and the offset file.
    EXPECT_EQ(cutOffs, 7);
}

TEST(DataSafety, APendingJournalIsReplayedBeforeTheNextSaveAndNeverOverwritten) {
    auto w = Prepared();
    const Snapshot before = Take(*w);
    SaveCutOff(*w, 3);
    ASSERT_TRUE(FileExists(JournalPath(w->Rom())));
    const std::string journal = ReadFile(JournalPath(w->Rom()));

    // A second program's save meets the journal and writes nothing.
    WritePlan other{"Save Text", "", w->Rom(), before.rom.size(), {{0x100000, "\xC2", "\xC3"}}, {}, {}, {}};
    EXPECT_THROW(CommitPlan(other), PlanRefused);
    EXPECT_EQ(ReadFile(JournalPath(w->Rom())), journal);

    // The same session's next save replays it first, then saves.
    w->user.Take();
    w->user.Yes();
    SaveText(w->session);
    auto shown = w->user.Take();
    EXPECT_TRUE(Mentions(shown, "cut off before it was finished")) << shown.front();
    EXPECT_EQ(shown.back(), kSaved);
    EXPECT_FALSE(FileExists(JournalPath(w->Rom())));
    EXPECT_NE(Take(*w).rom, before.rom);
}

TEST(DataSafety, AJournalThatNoLongerFitsTheFilesIsKeptAndTheRomOpensReadOnly) {
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
    };
    for (const Case& c : cases) {
        auto w = Prepared();
        SaveCutOff(*w, 3);
        c.meddle(*w);
        const Snapshot meddled = Take(*w);
        const std::string journal = ReadFile(JournalPath(w->Rom()));
        w->user.Take();
        w->Open();
        EXPECT_EQ(Take(*w), meddled) << c.name;
        EXPECT_EQ(ReadFile(JournalPath(w->Rom())), journal) << c.name;
        auto shown = w->user.Take();
        EXPECT_TRUE(Mentions(shown, c.reason)) << c.name;
        EXPECT_TRUE(Mentions(shown, JournalPath(w->Rom()).string())) << c.name;

        w->Select("Town", "Mom");
        EXPECT_FALSE(w->session.controls.saveEnabled) << c.name;
        SaveText(w->session);
        EXPECT_EQ(Take(*w), meddled) << c.name;
    }
}

TEST(DataSafety, AJournalWhoseRangesHoldTheirOldBytesIsSimplyRemoved) {
    auto w = Prepared();
    const Snapshot before = Take(*w);
    SaveCutOff(*w, 1);  // the journal only
    ASSERT_TRUE(FileExists(JournalPath(w->Rom())));
    w->user.Take();
    w->Open();
    EXPECT_EQ(Take(*w), before);
    EXPECT_FALSE(FileExists(JournalPath(w->Rom())));
    EXPECT_FALSE(Mentions(w->user.Take(), "cut off"));
}

TEST(DataSafety, ChangesMadeOutsideSinceLoadingStopTheSave) {
    struct Case {
        const char* name;
        std::function<void(Workspace&)> meddle;
        std::string text;  // the edit; longer texts repoint
    };
    const Case cases[] = {
        {"text bytes", [](Workspace& w) { PatchFile(w.Rom(), 0x100001, "\xDA"); }, "Jello"},
        {"repointed text", [](Workspace& w) { PatchFile(w.Rom(), 0x100004, "\xD5"); }, "Hello there!"},
        {"truncated", [](Workspace& w) { std::filesystem::resize_file(w.Rom(), 0x200000); }, "Jello"},
    };
    for (const Case& c : cases) {
        auto w = Prepared();
        w->session.controls.text1.SetText(c.text);
        c.meddle(*w);
        const Snapshot meddled = Take(*w);
        w->user.Yes().Yes();  // repoint (when asked), then reload
        SaveText(w->session);
        EXPECT_EQ(Take(*w), meddled) << c.name;
        EXPECT_TRUE(Mentions(w->user.Take(), "changed outside Quillon since the text was loaded")) << c.name;
    }
}

TEST(DataSafety, TheWriterRefusesPlansThatNoLongerMatchTheFiles) {
    auto w = Prepared();
    const auto rom = w->Rom();
    const std::uint64_t size = w->RomBytes().size();
    auto plan = [&](std::uint64_t at, std::string before, std::string after) {
        return WritePlan{"t", "", rom, size, {{at, std::move(before), std::move(after)}}, {}, {}, {}};
    };
    const std::string old = w->RomBytes().substr(0x50000, 4);
    const std::pair<const char*, WritePlan> refused[] = {
        {"header", plan(0x10, std::string(4, '\0'), "abcd")},
        {"past the end", plan(size - 1, "\xFF\xFF", "ab")},
        {"expected bytes differ", plan(0x50000, "zzzz", "abcd")},
        {"size differs", WritePlan{"t", "", rom, size + 1, {{0x50000, old, "abcd"}}, {}, {}, {}}},
        {"offset file differs", WritePlan{"t", "", rom, size, {}, w->OffsetFile(), std::string("x"), "y"}},
    };
    for (const auto& [name, p] : refused) {
        EXPECT_THROW(CommitPlan(p), PlanRefused) << name;
        EXPECT_FALSE(FileExists(JournalPath(rom))) << name;
    }
    EXPECT_EQ(w->RomBytes().substr(0x50000, 4), old);
}

TEST(DataSafety, WriteProtectedFilesAreFoundBeforeTheJournal) {
    for (bool offsetFile : {false, true}) {
        auto w = Prepared();
        const Snapshot before = Take(*w);
        MakeReadOnly(offsetFile ? w->OffsetFile() : w->Rom());
        w->user.Yes();
        SaveText(w->session);
        EXPECT_TRUE(Mentions(w->user.Take(), "is write-protected")) << offsetFile;
        EXPECT_EQ(Take(*w), before);
        EXPECT_FALSE(FileExists(JournalPath(w->Rom())));
    }
}

TEST(DataSafety, OffsetsWhereNoTextCanBeWrittenCannotBeSaved) {
    const std::pair<const char*, const char*> cases[] = {
        {"Mom=\r\n", "no offset"},
        {"Mom=10\r\n", "cartridge header"},
        {"Mom=300000\r\n", "past the end"},
        {"Mom=3FFFFF\r\n", "past the end"},
    };
    for (auto [line, reason] : cases) {
        Workspace w;
        w.OpenAt(StoryRom(), std::string("[Town]\r\n") + line, "Town", "Mom");
        EXPECT_FALSE(w.session.controls.saveEnabled) << line;
        EXPECT_NE(w.session.controls.saveRefusal.find(reason), std::string::npos) << line;
        w.session.controls.text1.SetText("x");
        w.user.Yes();
        SaveText(w.session);
        EXPECT_EQ(w.RomBytes(), StoryRom().bytes()) << line;
        EXPECT_TRUE(Mentions(w.user.Take(), reason)) << line;
    }
}

TEST(DataSafety, BytesTheEditorCannotReproduceAreNamedAndSavingAsksFirst) {
    Workspace w;
    w.OpenAt(StoryRom().Put(0x100000, Bytes("C2FEFEC3FF")), "[Town]\r\nMom=100000\r\n", "Town", "Mom");
    const std::string note = w.session.controls.roundTripNote;
    EXPECT_NE(note.find("from byte 2 on, the ROM holds FE FE C3"), std::string::npos) << note;
    w.user.No();
    SaveText(w.session);
    auto shown = w.user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].kind, Shown::Question);
    EXPECT_EQ(w.RomBytes(), StoryRom().Put(0x100000, Bytes("C2FEFEC3FF")).bytes());
}
