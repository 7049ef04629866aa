// Export of an offset file's texts to a PO file.
#include "translate/po_export.h"
#include "translate/po_file.h"
#include "support/progress_recorder.h"
#include "support/workspace.h"

#include <quillon/codec.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

using namespace quillon;
using namespace quillon::test;

namespace {

class Export : public ::testing::Test {
protected:
    void SetUp() override {
        StoryRom()
            .Put(0x100000, Bytes(EncodeText("Hello\r\nthere [PLAYER]", false)) + "\xFF\xFF\xFF\xFF")
            .Pointer(0x50000, 0x100000).Pointer(0x60002, 0x100000)
            .Put(0x100020, Bytes(EncodeText("Bye", false)) + "\xFF").Put(0x100030, "\xFF")
            .Save(w.Rom());
        w.WriteOffsetFile("[Town]\r\nMom=100000\r\nCaf\xE9=100020\r\n"
                          "[Bad]\r\nHeader=10\r\nPast=400000\r\nNonsense=XYZ\r\nEmpty=100030\r\n");
    }
    PoCatalog Run(std::optional<std::string> section = {}, bool fill = false) {
        const ExportRequest request{w.Rom(), w.OffsetFile(), w.dir / "out.po", std::move(section), fill};
        summary = ExportPo(request, progress);
        return ReadPo(request.po);
    }
    Workspace w;
    ProgressRecorder progress;
    ExportSummary summary;
};

// One message per entry with what a translator needs; entries whose text
// cannot be read are listed with the reason.
TEST_F(Export, OneMessagePerEntryAndTheReasonsForTheOthers) {
    WriteFile(w.dir / "out.po.part", "the user's own file");
    const PoCatalog po = Run();
    EXPECT_EQ(ReadFile(w.dir / "out.po.part"), "the user's own file");
    const std::vector<PoMessage> expected = {
        {"Town/Mom", "Hello\nthere [PLAYER]", "",
         {"Offset: 100000\nBytes: 14\nRoom before a repoint: 2 bytes\nPointers: 2\n"}, false},
        {"Town/Caf\xC3\xA9", "Bye", "", {"Offset: 100020\nBytes: 3\nRoom before a repoint: 0 bytes\nPointers: 0\n"}, false},
    };
    ASSERT_EQ(po.messages.size(), expected.size());
    const auto fields = [](const PoMessage& m) { return std::tie(m.context, m.id, m.str, m.comments); };
    for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_EQ(fields(po.messages[i]), fields(expected[i]));
    EXPECT_EQ(HeaderField(po, kGameCodeField), "QLNE");
    EXPECT_EQ(HeaderField(po, kGameTitleField), "QUILLONTEST");
    EXPECT_EQ(progress.open, 0);
    const std::vector<std::pair<std::string, std::string>> skipped = {
        {"Bad/Header", "its offset 10 lies in the cartridge header"},
        {"Bad/Past", "its offset 400000 lies past the end of the ROM"},
        {"Bad/Nonsense", "its offset 'XYZ' is not a hexadecimal number"}, {"Bad/Empty", "its text is empty"},
    };
    ASSERT_EQ(summary.skipped.size(), skipped.size());
    for (std::size_t i = 0; i < skipped.size(); ++i)
        EXPECT_EQ(std::tie(summary.skipped[i].context, summary.skipped[i].reason), std::tie(skipped[i].first, skipped[i].second));

    // One section, with the current texts as translations.
    const PoCatalog town = Run("Town", true);
    ASSERT_EQ(town.messages.size(), 2u);
    EXPECT_EQ(town.messages[0].str, town.messages[0].id);
    EXPECT_TRUE(summary.skipped.empty());
    EXPECT_THROW(Run("Nowhere"), std::invalid_argument);
}

// A large file is read in parts: together they are the whole file, a fault in
// a later part names its line in the file, and a message twice is refused.
TEST(PoFile, ALargeFileReadInPartsIsReadAsAWhole) {
    TempDir dir;
    const auto po = dir / "large.po";
    PoCatalog written{{{"Content-Type", "text/plain; charset=UTF-8"}, {"X-Game-Code", "QLNE"}}, {}};
    for (int i = 0; i < 3000; ++i)
        written.messages.push_back({"S/K" + std::to_string(i), "Text " + std::to_string(i) + "\nsecond line",
                                    i % 3 ? "Caf\xC3\xA9 " + std::to_string(i) : "", i % 7 ? "" : "Offset: 1\n", i % 5 == 1 && i % 3});
    WritePo(po, written);
    std::size_t parts = 0;
    PoCatalog read;
    ReadPo(po, [&](PoCatalog part) {
        ++parts;
        if (read.header.empty()) read.header = part.header;
        read.messages.insert(read.messages.end(), part.messages.begin(), part.messages.end());
    });
    EXPECT_GT(parts, 1u);
    EXPECT_EQ(read.header, written.header);
    const auto fields = [](const PoMessage& m) { return std::tie(m.context, m.id, m.str, m.comments, m.fuzzy); };
    ASSERT_EQ(read.messages.size(), written.messages.size());
    for (std::size_t i = 0; i < read.messages.size(); ++i)
        ASSERT_EQ(fields(read.messages[i]), fields(written.messages[i])) << i;

    const std::string text = ReadFile(po);
    const std::size_t late = text.find("msgctxt \"S/K2900\"");
    const std::size_t line = std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(late), '\n') + 1;
    // Blank lines inside entries, after a name continued on a second line, split nothing.
    std::string odd = text;
    for (std::size_t at = 0; (at = odd.find("msgctxt \"S/K", at)) != std::string::npos;) {
        odd.replace(at, 9, "msgctxt \"\"\n\"");
        odd.insert(odd.find('\n', at + 12) + 1, "\n");
    }
    WriteFile(po, odd);
    const PoCatalog again = ReadPo(po);
    ASSERT_EQ(again.messages.size(), written.messages.size());
    for (std::size_t i = 0; i < again.messages.size(); ++i)
        ASSERT_EQ(fields(again.messages[i]), fields(written.messages[i])) << i;

    // A zero escape that is marked shorter before the charset's declaration.
    WriteFile(po, "msgid \"\"\nmsgstr \"\"\n\"X-Note: a\\x0000000000z\\n\"\n"
                  "\"Content-Type: text/plain; charset=UTF-8\\n\"\n\nmsgctxt \"A/B\"\nmsgid \"x\"\nmsgstr \"Caf\xC3\xA9\"\n");
    const PoCatalog marked = ReadPo(po);
    EXPECT_EQ(HeaderField(marked, "Content-Type"), "text/plain; charset=UTF-8");
    ASSERT_EQ(marked.messages.size(), 1u);
    EXPECT_EQ(marked.messages[0].str, "Caf\xC3\xA9");

    const std::string broken = std::string(text).replace(late, 8, "msgctxt S");
    const std::string twice = text + "\nmsgctxt \"S/K5\"\nmsgid \"Text 5\\nsecond line\"\nmsgstr \"x\"\n";
    for (auto [bad, named] : {std::pair{broken, po.string() + ":" + std::to_string(line) + ":"},
                              {twice, std::string("duplicate message definition")}}) {
        WriteFile(po, bad);
        try {
            ReadPo(po);
            ADD_FAILURE() << named;
        } catch (const PoError& e) {
            EXPECT_NE(std::string(e.what()).find(named), std::string::npos) << e.what();
        }
    }
}

}  // namespace
