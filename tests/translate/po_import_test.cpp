// Import of a translated PO file: what is planned, what is refused, what
// lands in the ROM and the offset file, and what a cut-off write leaves.
#include "core/codec/text_bytes.h"
#include "core/file_io.h"
#include "support/progress_recorder.h"
#include "support/translation_game.h"
#include "support/workspace.h"
#include "translate/offset_entries.h"
#include "translate/po_file.h"
#include "translate/po_import.h"
#include "translate/rom_texts.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

using namespace quillon;
using namespace quillon::test;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

namespace {

// A folder with a ROM, its offset file and a PO file.
struct Stage {
    TempDir dir;
    std::filesystem::path rom = dir / "game.gba", offsets = dir / "QLNE.ini", po = dir / "texts.po";

    ImportPlan Plan(std::int32_t freeSpaceOffset = 0x200000, Progress* progress = nullptr,
                    bool rewriteUnknown = false) const {
        NoProgress none;
        ImportRequest request{rom, offsets, po, freeSpaceOffset};
        request.rewriteUnknown = rewriteUnknown;
        return PlanImport(request, progress ? *progress : none);
    }
    void WriteTranslations(const std::vector<PoMessage>& messages) const {
        WritePo(po, {{{"Content-Type", "text/plain; charset=UTF-8"}, {"X-Game-Code", "QLNE"}}, messages});
    }
};

PoMessage Translated(std::string context, std::string str) { return {std::move(context), "-", std::move(str), {}, false}; }
// A text as stored, with its end byte.
std::string Stored(const char* text, bool special = false) { return Bytes(EncodeText(text, special)) + "\xFF"; }

TEST(Import, RoundTripOfAWholeGame) {
    Stage s;
    const GeneratedGame game = MakeGame(16u << 20, 2000, 7);
    WriteFile(s.rom, game.image);
    WriteFile(s.offsets, game.offsetFile);
    NoProgress none;
    ExportPo({s.rom, s.offsets, s.po, {}, true}, none);

    // Every msgstr equal to its msgid: nothing to write.
    ImportPlan same = s.Plan(game.freeFrom);
    EXPECT_TRUE(same.WritesNothing());
    EXPECT_EQ(same.unchanged, game.texts.size());
    EXPECT_EQ(ApplyImport(same).outcome, CommitOutcome::Written);
    EXPECT_TRUE(ReadFile(s.rom) == game.image);
    EXPECT_EQ(ReadFile(s.offsets), game.offsetFile);

    // Every text changed, one in ten longer than its room.
    std::vector<PoMessage> messages;
    std::map<std::string, std::string> wanted;
    for (std::size_t i = 0; i < game.texts.size(); ++i) {
        const GameText& t = game.texts[i];
        const std::size_t length = i % 10 == 0 ? t.length + t.room + 1 + i % 7 : 1 + (i * 31) % (t.length + t.room);
        const std::string text = ToPoText(TextOfLength(length, static_cast<std::uint32_t>(i + 1000)));
        messages.push_back(Translated(t.section + "/" + t.key, text));
        wanted[messages.back().context] = messages.back().str;
    }
    s.WriteTranslations(messages);
    const ImportPlan plan = s.Plan(game.freeFrom);
    EXPECT_EQ(plan.changes.size(), game.texts.size());
    EXPECT_EQ(plan.Count(ImportKind::Moved), game.texts.size() / 10);
    EXPECT_TRUE(plan.refusals.empty()) << DescribePlan(plan);
    ASSERT_EQ(ApplyImport(plan).outcome, CommitOutcome::Written);

    ExportPo({s.rom, s.offsets, s.dir / "again.po", {}, false}, none);
    std::map<std::string, std::string> textsNow;
    for (const auto& m : ReadPo(s.dir / "again.po").messages) textsNow[m.context] = m.id;
    EXPECT_TRUE(textsNow == wanted);
    std::string expected = game.image;
    for (const RomWrite& w : plan.writes.romWrites) expected.replace(w.offset, w.after.size(), w.after);
    const std::string image = ReadFile(s.rom);
    EXPECT_TRUE(image == expected) << "bytes outside the planned ranges changed";
    for (const ImportChange& c : plan.changes) {
        if (c.kind != ImportKind::Moved) continue;
        const GameText& t =
            *std::ranges::find(game.texts, c.context, [](const GameText& g) { return g.section + "/" + g.key; });
        for (std::uint32_t p : t.pointers) EXPECT_EQ(image.substr(p, 4), PointerBytes(c.newOffset)) << c.context;
        EXPECT_EQ(image[c.newOffset + c.newLength + 1], '\xFF') << "the byte behind " << c.context << " stays free";
    }
}

// One entry per kind of change on a small image, free space from 0x200000.
class ImportKinds : public ::testing::Test {
protected:
    void SetUp() override {
        StoryRom()
            // In place, shorter, grown, moved (with special characters), moved.
            .Put(0x100000, Stored("Hello")).Put(0x100010, Stored("Goodbye"))
            .Put(0x100020, Stored("Hi") + "\xFF\xFF\xFF\xFF").Put(0x100030, Stored("One\r\nTwo\r\nThree", true))
            .Put(0x100050, Stored("Yo"))
            // A table of three slots, the second to a script that shows Move.
            .Pointer(0x50000, 0x100030).Pointer(0x50004, 0x60000).Pointer(0x50010, 0x100050)
            .PutHex(0x60000, "67").Pointer(0x60001, 0x100030).PutHex(0x60005, "02")
            .Save(s.rom);
        WriteFile(s.offsets, "[A]\r\nSame=100000\r\nShort=100010\r\nGrow=100020\r\nMove=100030\r\nAlso=100030\r\n"
                             "Yo=100050\r\n");
        s.WriteTranslations({Translated("A/Same", "Jello"), Translated("A/Short", "Bye"),
                             Translated("A/Grow", "Hiya"), Translated("A/Move", "Uno\nDos\nTres y mas"),
                             Translated("A/Yo", "Yo yo yo")});
    }
    Stage s;
};

TEST_F(ImportKinds, EachKindWritesWhatASaveWouldWrite) {
    const std::string before = ReadFile(s.rom);
    const ImportPlan plan = s.Plan();
    ASSERT_TRUE(plan.refusals.empty()) << DescribePlan(plan);
    for (auto [kind, n] : {std::pair{ImportKind::InPlace, 1u}, {ImportKind::Shorter, 1u}, {ImportKind::Grown, 1u},
                           {ImportKind::Moved, 2u}})
        EXPECT_EQ(plan.Count(kind), n) << static_cast<int>(kind);
    ASSERT_EQ(ApplyImport(plan).outcome, CommitOutcome::Written);

    const std::string rom = ReadFile(s.rom), moved = Stored("Uno\r\nDos\r\nTres y mas", true), yo = Stored("Yo yo yo");
    // Free space: a free byte before the first moved text and one behind each.
    const std::size_t first = 0x200001, second = first + moved.size() + 1;
    const struct { std::size_t at; std::string bytes; } checks[] = {
        {0x100000, Stored("Jello")},
        {0x100010, Stored("Bye") + std::string(4, '\xFF')},
        {0x100020, Stored("Hiya") + "\xFF\xFF"},
        {0x100030, std::string(14, '\xFF')},  // the old text cleared
        {first - 1, "\xFF" + moved + "\xFF" + yo + "\xFF"},
        {0x50000, PointerBytes(first)}, {0x60001, PointerBytes(first)}, {0x50010, PointerBytes(second)},
    };
    for (const auto& c : checks) EXPECT_EQ(rom.substr(c.at, c.bytes.size()), c.bytes) << std::hex << c.at;
    EXPECT_EQ(plan.freeUsed, moved.size() + yo.size());
    EXPECT_EQ(ReadFile(s.offsets), "[A]\r\nSame=100000\r\nShort=100010\r\nGrow=100020\r\nMove=200001\r\n"
                                   "Also=200001\r\nYo=" + PadHex(second) + "\r\n");
    EXPECT_NE(before, rom);
}

// "A/B/C" names two entries; the second stands right after the entry that
// the message before names, where a message's entry is looked for first.
TEST_F(ImportKinds, AMessageWritesTheFirstEntryOfItsName) {
    WriteFile(s.offsets, "[A/B]\r\nC=100000\r\n[Q]\r\nR=100010\r\n[A]\r\nB/C=100020\r\n");
    s.WriteTranslations({Translated("Q/R", "Bye"), Translated("A/B/C", "Jello")});
    const ImportPlan plan = s.Plan();
    ASSERT_EQ(plan.changes.size(), 2u) << DescribePlan(plan);
    ASSERT_EQ(ApplyImport(plan).outcome, CommitOutcome::Written);
    const std::string rom = ReadFile(s.rom);
    EXPECT_EQ(rom.substr(0x100000, Stored("Jello").size()), Stored("Jello"));
    EXPECT_EQ(rom.substr(0x100020, Stored("Hi").size()), Stored("Hi"));
}

TEST_F(ImportKinds, RefusalsNameTheirReasonAndWriteNothingForThoseTexts) {
    WriteFile(s.offsets, "[A]\r\nSame=100000\r\nShort=100010\r\nMove=100030\r\nYo=100050\r\nLow=F0000\r\n"
                         "Head=20\r\nPast=900000\r\nGrow=100020\r\nInside=100021\r\nZero=100060\r\nLong=100070\r\n");
    std::string rom = ReadFile(s.rom);
    rom.replace(0xF0000, 4, Stored("Low")).replace(0x100060, 3, Stored("Zz")).replace(0x100070, 3, Stored("Lo"));
    std::string withoutPointers = rom;
    withoutPointers.replace(0x50000, 4, "\x01\x01\x01\x01").replace(0x60001, 4, "\x01\x01\x01\x01");
    WriteFile(s.rom, withoutPointers);
    s.WriteTranslations({
        Translated("A/Same", "Price: 5\xE2\x82\xAC"),       // the euro sign has no byte
        Translated("A/Short", "Hey [FOO]"),                // no such tag
        Translated("A/Yo", "Y[&H01]"),                     // reads back as "YÀ"
        Translated("A/Move", "A text far longer than the old one, with no pointer left"),
        Translated("A/Low", "A longer text that must move"),
        Translated("A/Head", "x"), Translated("A/Past", "x"), Translated("A/Nobody", "x"),
        {"A/Fuzzy", "-", "fuzzy text", {}, true}, Translated("A/Empty", ""),
        Translated("A/Grow", "Ho"), Translated("A/Inside", "x"),  // the second text's bytes are the first's
        Translated("A/Zero", "Cut ZERO here"), Translated("A/Long", std::string(kMaxTextBytes + 1, 'a')),
    });
    std::string po = ReadFile(s.po);  // the library would end the string at the \0
    po.replace(po.find("ZERO"), 4, "\\0");
    WriteFile(s.po, po);

    const ImportPlan plan = s.Plan();
    const std::map<std::string, std::string> expected = {
        {"A/Same", "the character '\xE2\x82\xAC' (U+20AC) is not in the game's table"},
        {"A/Short", "the tag [FOO] is not known"},
        {"A/Yo", "would not read back as written"},
        {"A/Move", "no pointer to it was found"},
        {"A/Low", "pointers can only be rewritten for offsets from 100000"},
        {"A/Head", "lies in the cartridge header"}, {"A/Past", "lies past the end of the ROM"},
        {"A/Nobody", "the offset file has no entry of this name"},
        {"A/Inside", "it overlaps another changed text"},
        {"A/Zero", "it holds a zero byte (\\0)"}, {"A/Long", "10001 bytes long; a text may be at most 10000"},
    };
    ASSERT_EQ(plan.refusals.size(), expected.size()) << DescribePlan(plan);
    for (const auto& r : plan.refusals)
        EXPECT_NE(r.reason.find(expected.at(r.context)), std::string::npos) << r.context << ": " << r.reason;
    EXPECT_EQ(plan.fuzzy, 1u);
    EXPECT_EQ(plan.untranslated, 1u);
    ASSERT_EQ(plan.changes.size(), 1u);  // nothing of the refused texts
    EXPECT_EQ(plan.changes[0].context, "A/Grow");

    // With pointers but no free space behind the free-space offset.
    WriteFile(s.rom, rom);
    const ImportPlan full = s.Plan(0x2FFFF0);
    ASSERT_EQ(full.Count(ImportKind::Moved), 0u);
    EXPECT_NE(DescribePlan(full).find("A/Move: it needs moving, but no free space is left for it"), std::string::npos);
}

TEST_F(ImportKinds, APlaceOfUnknownUseKeepsTheTextUnlessTheUserRewritesIt) {
    WriteFile(s.rom, ReadFile(s.rom).replace(0x70001, 4, PointerBytes(0x100050)));  // unaligned, in data
    for (bool rewrite : {false, true}) {
        const ImportPlan plan = s.Plan(0x200000, nullptr, rewrite);
        const auto yo = std::ranges::find(plan.changes, "A/Yo", &ImportChange::context);
        EXPECT_EQ(yo != plan.changes.end(), rewrite) << DescribePlan(plan);
        if (rewrite) EXPECT_EQ(yo->pointers, 2u);
        else EXPECT_THAT(DescribePlan(plan), HasSubstr("A/Yo: it needs moving, and 1 place of unknown use holds its "
                                                       "pointer: 070001 (unaligned word in data)"));
    }
}

// A cut at any write of the writer is the save's story (tests/edit); here the
// import's own report of a journal that cannot be made.
TEST_F(ImportKinds, AJournalThatCannotBeMadeIsReportedAndWritesNothing) {
    const std::string before = ReadFile(s.rom);
    io::ScopedWriteHook cut(io::StopAfterWrites(0));
    EXPECT_EQ(ApplyImport(s.Plan()).outcome, CommitOutcome::RolledBack);
    EXPECT_EQ(ReadFile(s.rom), before);
}

TEST_F(ImportKinds, PlanningReportsProgressStopsOnRequestAndChecksTheGameAndTheFile) {
    ProgressRecorder progress;
    s.Plan(0x200000, &progress);
    EXPECT_EQ(progress.open, 0);
    EXPECT_GE(progress.stages.size(), 3u);

    ProgressRecorder stopping;
    stopping.stopAtStep = 2;
    EXPECT_THROW(s.Plan(0x200000, &stopping), Cancelled);
    EXPECT_EQ(stopping.open, 0);

    WritePo(s.po, PoCatalog{{{"X-Game-Code", "BPEE"}}, {Translated("A/Same", "Jello")}});
    EXPECT_THROW(s.Plan(), PoError);

    // A file in another charset, and a broken one: the message names the charset or the user's file.
    const std::string header = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=";
    for (auto [text, named] : {std::pair{header + "ISO-8859-1\\n\"\n", std::string("written in iso-8859-1")},
                               {header + "UTF-8\\n\"\n\nmsgctxt \"A/Same\"\nmsgid \"-\"\nmsgstr \"J\n", s.po.string() + ":"}}) {
        WriteFile(s.po, text);
        EXPECT_THAT([&] { s.Plan(); }, ThrowsMessage<PoError>(HasSubstr(named))) << text;
    }
}

}  // namespace
