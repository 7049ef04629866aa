// Fifty saves of every kind, undone to the first byte and redone to the last,
// with the ROM closed and opened again between some steps.
#include "edit/save_text.h"
#include "history/history.h"
#include "history/history_commands.h"
#include "history/patch.h"
#include "offsets/add_offset_form.h"
#include "support/workspace.h"
#include "tools/add_script.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

constexpr int kTexts = 10, kSaves = 50;

struct State {
    std::string rom, offsets;
    bool operator==(const State&) const = default;
};

class HistoryStory : public ::testing::Test {
protected:
    void SetUp() override {
        RomBuilder rom = StoryRom();
        for (int k = 0; k < kTexts; ++k) {
            const std::uint32_t at = 0x100000 + 0x40 * k;
            rom.Put(at, Bytes("C2D9E0E0E3FF")).Pointer(0x50000 + 8 * k, at).Pointer(0x60004 + 8 * k, at);
        }
        rom.Save(w.Rom());
        std::string ini = "[Town]\r\n";
        for (int k = 0; k < kTexts; ++k) {
            char line[32];
            std::snprintf(line, sizeof line, "T%d=%X\r\n", k, 0x100000 + 0x40 * k);
            ini += line;
        }
        w.WriteOffsetFile(ini);
        w.Open();
    }
    State Now() const { return {w.RomBytes(), ReadFile(w.OffsetFile())}; }

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
        SaveText(w.session);
    }
    Workspace w;
};

TEST_F(HistoryStory, FiftySavesUndoneAndRedoneByteForByteAcrossReopening) {
    std::vector<std::uint32_t> romCrc{Crc32(w.RomBytes())};
    std::vector<std::string> offsets{ReadFile(w.OffsetFile())};
    const State first = Now();
    for (int i = 0; i < kSaves; ++i) {
        Save(i);
        romCrc.push_back(Crc32(w.RomBytes()));
        offsets.push_back(ReadFile(w.OffsetFile()));
        ASSERT_TRUE(romCrc.back() != romCrc[romCrc.size() - 2] || offsets.back() != offsets[offsets.size() - 2])
            << "save " << i << " wrote nothing";
    }
    const State last = Now();
    ASSERT_EQ(ListHistory(w.Rom()).entries.size(), static_cast<std::size_t>(kSaves));

    for (int i = kSaves; i > 0; --i) {
        if (i % 7 == 0) w.Open();
        w.user.answers.clear();
        UndoLastSaveCommand(w.session);
        ASSERT_EQ(Crc32(w.RomBytes()), romCrc[i - 1]) << "undo of save " << i;
        ASSERT_EQ(ReadFile(w.OffsetFile()), offsets[i - 1]) << "undo of save " << i;
    }
    EXPECT_EQ(Now(), first);
    for (int i = 1; i <= kSaves; ++i) {
        if (i % 9 == 0) w.Open();
        RedoSaveCommand(w.session);
        ASSERT_EQ(Crc32(w.RomBytes()), romCrc[i]) << "redo of save " << i;
        ASSERT_EQ(ReadFile(w.OffsetFile()), offsets[i]) << "redo of save " << i;
    }
    EXPECT_EQ(Now(), last);
}

TEST_F(HistoryStory, GoingBackBeforeAnEntryUndoesItAndEveryLaterOneAndReloadsTheText) {
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

}  // namespace
