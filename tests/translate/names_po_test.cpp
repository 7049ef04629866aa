// Names of fixed length in a PO file: their notes on export, and on import
// a name written in its field with the game's padding, or refused with its limit.
#include "core/hex_text.h"
#include "offsets/fixed_length.h"
#include "translate/po_export.h"
#include "translate/po_file.h"
#include "translate/po_import.h"
#include "support/name_records.h"
#include "support/workspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

using namespace quillon;
using namespace quillon::test;
using ::testing::HasSubstr;

namespace {

constexpr std::uint32_t kSpecies = 0x120000, kItems = 0x130000;
constexpr NameSpec kSpeciesSpec{11, 11, '\0', 20}, kItemSpec{44, 14, '\xFF', 20};

// A section of names, one entry per record, keys N0, N1, ...
std::string Section(const char* name, const char* prefix, std::uint32_t at, const NameSpec& spec) {
    std::string s = std::string("[") + name + "]\r\n" +
                    FixedLengthLine({spec.length, static_cast<std::uint8_t>(spec.padding), spec.stride}) + "\r\n";
    for (std::uint32_t i = 0; i < spec.count; ++i) s += prefix + std::to_string(i) + "=" + PlainHex(at + spec.stride * i) + "\r\n";
    return s;
}

std::string Letters(std::size_t n) { return std::string("ABCDEFGHIJKLMNOPQRSTUVWXYZ").substr(0, n); }
std::string Field(std::string name, std::size_t length, char padding) {
    for (char& c : name) c = static_cast<char>(0xBB + (c - 'A'));
    name += '\xFF';
    name.resize(length, padding);
    return name;
}

TEST(NamesInPo, ExportedWithTheirFieldAndImportedIntoItOnly) {
    Workspace w;
    StoryRom().Put(kSpecies, NameRecords(kSpeciesSpec)).Put(kItems, NameRecords(kItemSpec)).Save(w.Rom());
    w.WriteOffsetFile(Section("Species names", "N", kSpecies, kSpeciesSpec) + Section("Item names (2)", "I", kItems, kItemSpec));
    NoProgress none;
    const std::filesystem::path po = w.dir / "names.po";
    ExportPo({w.Rom(), w.OffsetFile(), po, {}, false}, none);
    std::map<std::string, std::string> notes;
    for (const PoMessage& m : ReadPo(po).messages) notes[m.context] = m.comments;
    EXPECT_THAT(notes["Species names/N1"], HasSubstr("Fixed length: 10 letters\nTable: Species names, records of 11 bytes, padded with 00"));
    EXPECT_THAT(notes["Item names (2)/I0"], HasSubstr("Fixed length: 13 letters\nTable: Item names, fields of 14 bytes in records of 44, padded with FF"));
    EXPECT_THAT(notes["Item names (2)/I0"], ::testing::Not(HasSubstr("repoint")));

    struct Case {
        std::string context, translation;
        std::uint32_t field;
        const NameSpec& spec;
        bool written;
    };
    const Case cases[] = {
        {"Species names/N1", "BIS", kSpecies + 11, kSpeciesSpec, true},         // shorter: padded with zeros
        {"Species names/N2", Letters(10), kSpecies + 22, kSpeciesSpec, true},   // as long as the field allows
        {"Species names/N3", Letters(11), kSpecies + 33, kSpeciesSpec, false},  // one letter too many
        {"Item names (2)/I4", "POTION", kItems + 4 * 44, kItemSpec, true},         // padded with end marks
        {"Item names (2)/I5", Letters(14), kItems + 5 * 44, kItemSpec, false},
    };
    std::vector<PoMessage> messages;
    for (const Case& c : cases) messages.push_back({c.context, "-", c.translation, {}, false});
    WritePo(po, {{{"Content-Type", "text/plain; charset=UTF-8"}}, messages});
    std::string want = ReadFile(w.Rom());
    const ImportPlan plan = PlanImport({w.Rom(), w.OffsetFile(), po, 0x200000}, none);
    const std::string report = DescribeOutcome(plan, ApplyImport(plan));
    for (const Case& c : cases) {
        if (c.written) want.replace(c.field, c.spec.length, Field(c.translation, c.spec.length, c.spec.padding));
        else EXPECT_THAT(report, HasSubstr(c.context + ": Fixed length: " + std::to_string(c.spec.length - 1) + " letters"));
    }
    EXPECT_TRUE(ReadFile(w.Rom()) == want) << report;
    EXPECT_THAT(report, HasSubstr("3 names of fixed length, each in its own field"));
}

}  // namespace
