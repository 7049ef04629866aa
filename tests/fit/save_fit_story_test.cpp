// Saving a text with a line over the message box asks first; games without a
// known font, and texts that fit, save as before.
#include "edit/save_text.h"
#include "fit/fit_settings.h"
#include "support/save_messages.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

#include <memory>

using namespace quillon;
using namespace quillon::test;

namespace {

constexpr std::size_t kText = 0x100000;
const std::string kWide(31, '\xC7');  // 31 x "M": 217 px with the font below

std::string Widths() {
    std::string w(512, '\0');
    for (int b = 0; b < 512; ++b) w[static_cast<std::size_t>(b)] = static_cast<char>(3 + (b % 256) % 5);
    return w;
}

Shown TooWide(std::string count, std::string verb, int width) {
    return Ask(count + " of this text " + verb + " wider than the message box (widest: " + std::to_string(width) +
                   " / 208 px).\r\nThe game will not show it as you see it here.\r\n\r\nDo you want to save it anyway?",
               "Line too wide");
}

class SaveFit : public ::testing::Test {
protected:
    void Build(std::string_view code, std::string_view text, std::string_view extraSettings = "") {
        w = std::make_unique<Workspace>();
        RomBuilder rom = StoryRom(code);
        rom.Put(0xBC, std::string(1, '\0'));
        rom.Fill(0x1FF300, 0x4000, '\0').Put(0x207300, Widths());
        rom.Pointer(0x66EC, 0x1FF300).Pointer(0x66F4, 0x207300);
        rom.Put(kText, std::string(text) + "\xFF").Pointer(0x50000, kText);
        rom.Save(w->Rom());
        if (!extraSettings.empty()) WriteFile(w->dir / "ini" / "settings.ini", ReadFile(w->dir / "ini" / "settings.ini") + std::string(extraSettings));
        w->WriteOffsetFile("[Town]\r\nSign=100000\r\n", code);
        w->Open();
        w->Select("Town", "Sign");
        w->user.Take();
    }
    std::unique_ptr<Workspace> w;
};

}  // namespace

TEST_F(SaveFit, ALineOverTheBoxAsksFirstAndNoWritesNothing) {
    Build("BPRE", kWide);
    const std::string before = w->RomBytes();
    w->user.No();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{TooWide("One line", "is", 217)});
    EXPECT_EQ(w->RomBytes(), before);
    EXPECT_TRUE(w->session.controls.saveEnabled);

    w->user.Yes();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), (std::vector<Shown>{TooWide("One line", "is", 217), kSaved}));
}

TEST_F(SaveFit, TheQuestionComesBeforeTheOthers) {
    Build("BPRE", kWide);
    w->session.controls.text1.SetText(std::string(31, 'M') + "\r\n" + std::string(31, 'M') + "M");
    w->user.No();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{TooWide("2 lines", "are", 224)});

    w->user.Yes().No();  // save anyway, then no repoint
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), (std::vector<Shown>{TooWide("2 lines", "are", 224), kLonger}));
}

TEST_F(SaveFit, TextsThatFitAndUnknownGamesSaveWithoutTheQuestion) {
    Build("BPRE", "\xC7");
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{kSaved});

    Build("QLNE", kWide);  // no font known for this game
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{kSaved});
}

TEST_F(SaveFit, ASampleNameFromTheSettingsCountsForPlayer) {
    // Four names at 7 x 7 px and "AAA" (3 x 5): 211 px; with "ASH" (15 px) it fits.
    const std::string text = "\xFD\x01\xFD\x01\xFD\x01\xFD\x01\xBB\xBB\xBB";
    Build("BPRE", text);
    w->user.No();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{TooWide("One line", "is", 211)});

    Build("BPRE", text, "[Fit]\r\nSampleName=ASH\r\n");
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{kSaved});
}

TEST_F(SaveFit, NamedFontOffsetsCheckAGameTheTableDoesNotList) {
    Build("QLNE", kWide, "[Fit]\r\nQLNEGlyphs=1FF300\r\nQLNEWidths=207300\r\n");
    w->user.No();
    SaveText(w->session);
    EXPECT_EQ(w->user.Take(), std::vector<Shown>{TooWide("One line", "is", 217)});
    const fit::FitSettings s = fit::ReadFitSettings(w->dir / "ini" / "settings.ini", "QLNE");
    ASSERT_TRUE(s.named);
    EXPECT_EQ(*s.named, (fit::FontPlace{0x1FF300, 0x207300}));
}
