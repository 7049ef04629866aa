// Tables of names found by their structure in a made-up image: tables of
// several strides and paddings, names inside item records, the header that
// names them, and decoys that must not be taken.
#include "discover/discover.h"
#include "game/name_tables.h"
#include "support/name_records.h"
#include "support/rom_builder.h"

#include <quillon/codec.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>

namespace quillon::game {
namespace {

using test::NameSpec;

struct Placed {
    std::string_view kind;
    std::uint32_t at;
    NameSpec spec;
};

// Items: a 14-byte name, its number at 14, a description pointer at 0x14.
constexpr NameSpec kItems{44, 14, '\0', 40};

TEST(NameTables, FoundByStructureAndNamedByPointersAndSizes) {
    const std::vector<Placed> tables = {
        {"Species names", 0x20000, {11, 11, '\0', 412}},  // the header points at these three
        {"Move names", 0x22000, {13, 13, '\xFF', 60}},
        {"Ability names", 0x23000, {13, 13, '\0', 40}},
        {"Type names", 0x24000, {7, 7, '\0', 18}},          // named by its size
        {"", 0x25001, {9, 9, '\xFF', 30}},                  // of no known kind, unaligned
        {"Item names", 0x26000, kItems},                    // inside records, named by the header
    };
    std::mt19937 random(5);
    std::string filler(1 << 20, '\0');
    for (char& c : filler) c = static_cast<char>(random());
    test::RomBuilder rom(filler.size());
    rom.Put(0, filler).Code("BPRE");
    for (const Placed& t : tables) rom.Put(t.at, test::NameRecords(t.spec));
    const std::string description = HexToBytes(EncodeText("A made up thing for the tests of names.", false)) + '\xFF';
    for (std::uint32_t i = 0; i < kItems.count; ++i)
        rom.Put(0x26000 + 44 * i + 14, std::string(1, static_cast<char>(i + 1)))
            .Pointer(0x26000 + 44 * i + 0x14, 0x28000 + 64 * i)
            .Put(0x28000 + 64 * i, description);
    // The header: species, moves, abilities, items.
    rom.Pointer(0x144, 0x20000).Pointer(0x148, 0x22000).Pointer(0x1C0, 0x23000).Pointer(0x1C8, 0x26000);

    // Decoys: a run of 0xFF; names made of any bytes a name may hold, as
    // picture data decodes by chance; one name over and over; names of one
    // length back to back, with no padding to show a field.
    rom.Fill(0x30000, 0x10000, '\xFF');
    std::string picture, same, packed;
    for (std::uint32_t i = 0; i < 60; ++i) {
        std::string field;
        while (field.size() < 2 + random() % 6) {
            const auto b = static_cast<std::uint8_t>(random());
            if (b != 0 && b != 0xFF && NameFieldAt(std::string(1, static_cast<char>(b)) + "\xFF", 0, 2)) field += static_cast<char>(b);
        }
        field += '\xFF';
        field.resize(10, '\0');
        picture += field;
        same += test::MadeUpName(3, 8) + '\xFF' + std::string(2, '\0');
        packed += test::MadeUpName(i, 4).substr(0, 4) + '\xFF';
    }
    rom.Put(0x40000, picture).Put(0x41000, same).Put(0x42000, packed);

    const std::string& image = rom.bytes();
    std::vector<std::tuple<std::string_view, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint8_t>>
        want, got;
    for (const Placed& t : tables)
        want.emplace_back(t.kind, t.at, t.spec.stride, t.spec.count, t.spec.length, static_cast<std::uint8_t>(t.spec.padding));
    const GameModel model = GameModel::Read(image);
    for (const NameTable& t : FindNameTables(image, model))
        got.emplace_back(t.kind, t.first, t.stride, t.count, t.length, t.padding);
    EXPECT_EQ(got, want);

    // Discovery takes every record as a name of its field, and nothing else inside the tables.
    std::size_t names = 0, records = 0;
    for (const Placed& t : tables) records += t.spec.count;
    for (const discover::FoundText& f : discover::DiscoverTexts(model, image)) {
        const bool inside = std::any_of(tables.begin(), tables.end(), [&](const Placed& t) {
            return f.offset >= t.at && f.offset < t.at + t.spec.stride * t.spec.count;
        });
        EXPECT_EQ(inside, f.fixedLength > 0) << std::hex << f.offset;
        names += f.fixedLength > 0;
    }
    EXPECT_EQ(names, records);
}

}  // namespace
}  // namespace quillon::game
