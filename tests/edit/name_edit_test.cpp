// A name of fixed length in the editor: the counter counts the letters left
// in its field; saving writes the field with the game's padding, asks
// nothing, and refuses a longer name with the number of letters allowed.
#include "core/hex_text.h"
#include "edit/save_text.h"
#include "edit/text_view.h"
#include "offsets/fixed_length.h"
#include "support/name_records.h"
#include "support/save_messages.h"
#include "support/workspace.h"

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

constexpr std::uint32_t kTable = 0x120000, kName = kTable + 11;  // the second record

TEST(NameEdit, CountsLettersAndWritesTheFieldOnly) {
    const Shown tooLong = Msg(Icon::Critical,
                              "This name can hold at most 10 letters, and it has 12.\r\n"
                              "A name has a fixed length in its table and is never moved.\r\nNothing was written.");
    struct Case {
        const char* text;
        const char* counter;
        std::vector<Shown> shown;
        std::string field;  // after the save; empty: unchanged
    };
    const Case cases[] = {
        {"Bis", "7 letters left in this name (at most 10).", {kSaved}, std::string("\xBC\xDD\xE7\xFF\0\0\0\0\0\0\0", 11)},
        {"Bulbasaurs", "0 letters left in this name (at most 10).", {kSaved}, "\xBC\xE9\xE0\xD6\xD5\xE7\xD5\xE9\xE6\xE7\xFF"},
        {"Bulbasaurus!", "2 letters too many: this name holds at most 10.", {tooLong}, ""},
    };
    for (const Case& c : cases) {
        Workspace w;
        const std::string records = NameRecords({11, 11, '\0', 20});
        w.OpenAt(StoryRom().Put(kTable, records), "[Species names]\r\n" + FixedLengthLine({11, 0, 11}) +
                                                      "\r\nFirst=" + PlainHex(kTable) + "\r\nSecond=" + PlainHex(kName) + "\r\n",
                 "Species names", "Second");
        const std::string before = w.RomBytes();
        w.session.controls.text1.SetText(c.text);
        UpdateRepointCounter(w.session);
        EXPECT_EQ(w.session.controls.repointCaption, c.counter) << c.text;
        SaveText(w.session, [](Session&) { return true; });
        EXPECT_EQ(w.user.Take(), c.shown) << c.text;
        std::string after = before;
        if (!c.field.empty()) after.replace(kName, 11, c.field);
        EXPECT_TRUE(w.RomBytes() == after) << c.text;
    }
}

}  // namespace
