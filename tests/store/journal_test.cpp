// The save journal read back in each of its forms: the binary one written
// now and the two earlier ones with bytes as hex digits (checked by CRC-32 and
// by FNV-1a); a changed byte anywhere makes it unreadable.
#include "store/journal.h"

#include <gtest/gtest.h>

using namespace quillon;

TEST(Journal, EveryFormReadsBackAndAChangedByteIsRefused) {
    const WritePlan plan{"Save Text", "Town / Mom", "game.gba", 4096, {{256, "\xC2\xD9", "\xC3\xFF"}},
                         "ini/QLNE.ini", "[Town]\r\n", "[Town]\r\nMom=200\r\n"};
    const std::string hexBody =
        "\ncommand 536176652054657874\nsubject 546F776E202F204D6F6D\nsize 4096\n"
        "ini 696E692F514C4E452E696E69 1 5B546F776E5D0D0A 5B546F776E5D0D0A4D6F6D3D3230300D0A\nrom 256 C2D9 C3FF\n";
    const std::string forms[] = {JournalText(plan), "QUILLON WRITE JOURNAL 3" + hexBody + "end 1938e80f\n",
                                 "QUILLON WRITE JOURNAL 2" + hexBody + "end 8fe27d1bbfe8f72c\n"};
    for (const std::string& text : forms) {
        SCOPED_TRACE(text.substr(0, 23));
        const std::optional<WritePlan> read = ParseJournal(text, plan.rom);
        ASSERT_TRUE(read);
        EXPECT_EQ(JournalText(*read), JournalText(plan));  // every field as written
        std::string changed = text;
        changed[30] ^= 1;
        EXPECT_FALSE(ParseJournal(changed, plan.rom));
    }
}
