// Saving a text with a line over its box asks first; games without a font
// found, texts that fit, and texts over only with names at their longest,
// save as before.
#include "edit/save_text.h"
#include "fit/fit_settings.h"
#include "support/save_messages.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

const std::string kWide(31, '\xC7');                                       // 31 x "M": 217 px
const std::string kNames = "\xFD\x01\xFD\x01\xFD\x01\xFD\x01\xBB\xBB\xBB";  // 4 x [PLAYER], "AAA": 115 px, 211 at the longest

Shown TooWide(int width, std::string count = "One line", std::string verb = "is") {
    return Ask(count + " of this text " + verb + " wider than the message box (widest: " + std::to_string(width) +
                   " / 208 px).\r\nThe game will not show it as you see it here.\r\n\r\nDo you want to save it anyway?",
               "Line too wide");
}

TEST(SaveFit, ALineOverTheBoxAsksFirstAndNoWritesNothing) {
    struct Case {
        const char* name;
        std::string code, text, settings;
        std::string edit;  // empty: saved as loaded
        std::vector<bool> answers;
        std::vector<Shown> shown;
    };
    const std::string sameWidth = std::string(30, 'M') + "W";  // "W" is as wide as "M"
    const std::string twoWide = std::string(31, 'M') + "\r\n" + std::string(32, 'M');
    const Case cases[] = {
        {"no", "BPRE", kWide, "", sameWidth, {false}, {TooWide(217)}},
        {"yes", "BPRE", kWide, "", sameWidth, {true}, {TooWide(217), kSaved}},
        {"before the repoint", "BPRE", kWide, "", twoWide, {true, false}, {TooWide(224, "2 lines", "are"), kLonger}},
        {"names over only at their longest", "BPRE", kNames, "", "", {}, {kSaved}},
        {"a wide sample name", "BPRE", kNames, "[Fit]\r\nSampleName=MMMMMMM\r\n", "", {false}, {TooWide(211)}},
        {"named font offsets", "QLNE", kWide, "[Fit]\r\nQLNEGlyphs=1FF300\r\nQLNEWidths=207300\r\n", "", {false},
         {TooWide(217)}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        Workspace w;
        AppendFile(w.dir / "ini" / "settings.ini", c.settings);
        // Shown by a message script; a font that only named offsets find has no pointers.
        RomBuilder rom = HelloRom(c.code).Font().Put(0x100000, c.text + "\xFF");
        if (!c.settings.empty() && c.settings.find("Glyphs") != std::string::npos) rom.Fill(0x66EC, 12, '\x01');
        w.OpenAt(rom, "[Town]\r\nSign=100000\r\n", "Town", "Sign");
        if (!c.edit.empty()) w.session.controls.text1.SetText(c.edit);
        for (bool a : c.answers) w.user.Then(a);
        SaveText(w.session, fit::ConfirmFitBeforeSave);
        EXPECT_EQ(w.user.Take(), c.shown);
        EXPECT_EQ(w.RomBytes() != rom.bytes(), c.shown.back() == kSaved && !c.edit.empty());
        EXPECT_TRUE(w.session.controls.saveEnabled);
    }
}

}  // namespace
