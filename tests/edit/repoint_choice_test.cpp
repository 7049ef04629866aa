// A repoint when some places of the old pointer are no references.
#include "edit/save_text.h"
#include "fit/fit_settings.h"
#include "support/save_messages.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

namespace quillon::test {
namespace {

TEST(RepointChoice, PlacesThatAreNoReferencesAreKeptUnlessTheUserSaysAll) {
    const std::string old = Bytes("00001008"), moved = Bytes("01002008");
    const std::string question =
        "This text's pointer is held by 1 script, 1 table, 1 place of unknown use. 1 of these 3 places is no "
        "reference to the text. Rewrite only the 2 references (recommended), or all 3 as before?";
    struct Case {
        Choice answer;
        std::string atCode;  // the pointer at 0x70003 afterwards
        bool moves;
    } cases[] = {{Choice::First, old, true}, {Choice::Second, moved, true}, {Choice::Cancel, old, false}};
    for (const Case& c : cases) {
        Workspace w;
        // The bytes before the pointer at 0x70003 read as no script.
        w.OpenAt(HelloRom().PutHex(0x70001, "FFFF"), "[Town]\r\nMom=100000\r\n", "Town", "Mom");
        w.session.controls.text1.SetText("Hello there!");
        w.user.Yes().Then(c.answer);
        SaveText(w.session, fit::ConfirmFitBeforeSave);
        const auto shown = w.user.Take();
        ASSERT_GE(shown.size(), 2u);
        EXPECT_EQ(shown[1], (Shown{Shown::Choices, question, "Only references|All|Quillon", Icon::Question}));
        const std::string rom = w.RomBytes();
        EXPECT_EQ(rom.substr(0x70003, 4), c.atCode);
        EXPECT_EQ(rom.substr(0x50000, 4), c.moves ? moved : old);
        EXPECT_EQ(rom.substr(0x60001, 4), c.moves ? moved : old);
    }
}

}  // namespace
}  // namespace quillon::test
