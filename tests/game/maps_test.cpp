#include "game/map_names.h"
#include "game/maps.h"
#include "game/words.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <tuple>

namespace quillon::game {
namespace {

// Little-endian record bytes.
struct Bytes {
    std::string s;
    Bytes& u8(unsigned v) { return s.push_back(static_cast<char>(v)), *this; }
    Bytes& u16(unsigned v) { return u8(v & 0xFF).u8(v >> 8 & 0xFF); }
    Bytes& u32(std::uint32_t v) { return u16(v & 0xFFFF).u16(v >> 16); }
    Bytes& ptr(std::uint32_t offset) { return u32(offset == 0 ? 0 : PointerTo(offset)); }
    Bytes& zeros(std::size_t n) { return s.append(n, '\0'), *this; }
};

// An image of seeded random bytes with records appended between a few more.
// The records start past 64 KiB, where a name record of height 8 reads as
// a pointer into the image.
constexpr std::uint32_t kRecordsStart = 0x10400;
struct Rom {
    explicit Rom(unsigned seed) : random(seed) { Noise(kRecordsStart); }
    std::uint32_t Put(const Bytes& data, std::uint32_t align = 4) {
        Noise(random() % 6);
        while (image.size() % align != 0) Noise(1);
        const auto at = static_cast<std::uint32_t>(image.size());
        image += data.s;
        return at;
    }
    void Set(std::uint32_t at, const Bytes& data) { image.replace(at, data.s.size(), data.s); }
    void Noise(std::size_t n) { for (; n > 0; --n) image.push_back(static_cast<char>(random())); }
    std::mt19937 random;
    std::string image;
};

// Where the builder put things, as the finders should report them.
struct Fixture { std::string image; MapSet maps; MapNameTable names; };

// Two groups (three maps, then one whose header lies last) in one family's
// records, every kind of event and map script, a {var, value, script}
// table, and decoys: a lone pointer to the second group, a table of groups
// whose headers fail, a shorter name table and an empty name just before
// the real one.
Fixture Build(Family family) {
    const bool fireRed = family == Family::FireRedLeafGreen;
    Rom rom(7 + static_cast<unsigned>(family));
    const auto script = [&] { return rom.Put(Bytes().u8(0x6A).u8(0x02), 1); };
    const auto layout = [&](std::uint32_t width) {
        const std::uint32_t border = rom.Put(Bytes().zeros(8), 2), blocks = rom.Put(Bytes().zeros(12), 2);
        const std::uint32_t tileset = rom.Put(Bytes().zeros(0x18));
        Bytes b;
        b.u32(width).u32(2).ptr(border).ptr(blocks).ptr(tileset).ptr(tileset);
        return rom.Put(fireRed ? b.u8(2).u8(2).u16(0) : b);
    };
    const auto header = [&](std::uint32_t layoutAt, std::uint32_t events, std::uint32_t scripts,
                            std::uint32_t connections, std::uint8_t section) {
        Bytes b;
        b.ptr(layoutAt).ptr(events).ptr(scripts).ptr(connections).u16(0x150).u16(1).u8(section).u8(0).u8(2).u8(1);
        if (fireRed) return rom.Put(b.u8(1).u8(5).u8(0).u8(0));  // cycling, flags, floor, battle scene
        return rom.Put(b.u16(0).u8(family == Family::Emerald ? 0x0D : 1).u8(0));
    };
    const auto object = [](Bytes&& b, std::uint32_t script) {
        return std::move(b.u8(1).u8(5).u8(0).u8(0).u16(4).u16(5).u8(3).u8(8).u8(0x11).u8(0).u32(0).ptr(script).u32(0));
    };
    const std::uint8_t first = fireRed ? 0x20 : 0;  // the first section of the name table

    // Five names; the maps use the first, second and fourth.
    std::uint32_t texts[5];
    for (std::uint8_t i = 0; i < 5; ++i) texts[i] = rom.Put(Bytes().u8(0xBB + i).u8(0x00).u8(0xA2 + i).u8(0xFF), 1);
    Bytes shortNames;
    for (int i = 0; i < (fireRed ? 3 : 2); ++i) (fireRed ? shortNames : shortNames.u32(0x01010101)).ptr(texts[i]);
    rom.Put(shortNames);

    // Map A: every kind of script.
    std::uint32_t s[9];
    for (std::uint32_t& at : s) at = script();
    const std::uint32_t rows = rom.Put(Bytes().u16(0x4001).u16(0).ptr(s[1]).u16(0x4002).u16(1).ptr(s[2]).u16(0), 1);
    const std::uint32_t mapScripts = rom.Put(Bytes().u8(3).ptr(s[0]).u8(2).ptr(rows).u8(1).ptr(s[3]).u8(0), 1);
    const std::uint32_t objectsAt = rom.Put(object(object(Bytes(), s[4]), 0)), warps = rom.Put(Bytes().u16(1).u16(2).u32(0), 2);
    const std::uint32_t coords = rom.Put(Bytes().u32(3).u32(0x40030000).u32(0).ptr(s[5]).u32(3).u32(0).u32(0).u32(0));
    // A sign, a hidden item whose value reads as a pointer, kind 8 (a secret
    // base in Emerald, a sign in FireRed).
    const std::uint32_t bgs = rom.Put(Bytes().u32(7).u8(0).u8(0).u16(0).ptr(s[6]).u32(7).u8(0).u8(7).u16(0)
                                          .u32(0x08000100).u32(7).u8(0).u8(8).u16(0).ptr(s[7]));
    const std::uint32_t eventsA =
        rom.Put(Bytes().u8(2).u8(1).u8(2).u8(3).ptr(objectsAt).ptr(warps).ptr(coords).ptr(bgs));
    const std::uint32_t plain = layout(3);
    const std::uint32_t a = header(plain, eventsA, mapScripts, 0, first);
    // Map B: no events, an empty map script list. Map C: connections, no map scripts.
    const std::uint32_t b = header(plain, rom.Put(Bytes().zeros(0x14)), rom.Put(Bytes().u8(0), 1), 0, first + 1);
    const std::uint32_t objectCAt = rom.Put(object(Bytes(), s[8]));
    const std::uint32_t eventsC = rom.Put(Bytes().u8(1).u8(0).u8(0).u8(0).ptr(objectCAt).u32(0).u32(0).u32(0));
    const std::uint32_t links = rom.Put(Bytes().u8(1).zeros(3).u32(0).u8(0).u8(2).u16(0));
    const std::uint32_t c = header(plain, eventsC, 0, rom.Put(Bytes().u32(1).ptr(links)), first + 3);

    const std::uint32_t groups = rom.Put(Bytes().ptr(a).ptr(b).ptr(c).u32(0));
    rom.Put(Bytes().ptr(groups + 12));
    const std::uint32_t broken = header(layout(0), eventsA, mapScripts, 0, first);
    const std::uint32_t brokenGroup = rom.Put(Bytes().ptr(broken).ptr(broken));
    rom.Put(Bytes().ptr(brokenGroup).ptr(brokenGroup));
    const std::uint32_t table = rom.Put(Bytes().ptr(groups).ptr(groups + 12));

    const std::uint32_t empty = rom.Put(Bytes().u8(0xFF), 1);
    Bytes names;
    (fireRed ? names : names.u32(0x01010000)).ptr(empty);
    for (std::uint8_t i = 0; i < 5; ++i) (fireRed ? names : names.u8(i).u8(2).u8(1).u8(i == 2 ? 8 : 1)).ptr(texts[i]);
    const std::uint32_t namesAt = rom.Put(names) + (fireRed ? 4 : 8);
    // Map D, past every table, so that a cut through it leaves the table whole.
    const std::uint32_t d = header(plain, eventsC, 0, 0, first + 3);
    rom.Set(groups + 12, Bytes().ptr(d));
    rom.Noise(0x40);

    Fixture f{rom.image, {table, family, {}, {}}, {namesAt, first, {}, {}}};
    std::vector<MapEntry> entriesA = {
        {s[0], EntryKind::MapScript, mapScripts + 1},   {s[1], EntryKind::MapScript, rows + 4},
        {s[2], EntryKind::MapScript, rows + 12},        {s[3], EntryKind::MapScript, mapScripts + 11},
        {s[4], EntryKind::ObjectEvent, objectsAt + 0x10}, {s[5], EntryKind::CoordEvent, coords + 0x0C},
        {s[6], EntryKind::BgEvent, bgs + 8}};
    if (fireRed) entriesA.push_back({s[7], EntryKind::BgEvent, bgs + 32});
    const std::vector<MapEntry> entriesC = {{s[8], EntryKind::ObjectEvent, objectCAt + 0x10}};
    f.maps.maps = {{a, 0, 0, first, entriesA},
                   {b, 0, 1, static_cast<std::uint8_t>(first + 1), {}},
                   {c, 0, 2, static_cast<std::uint8_t>(first + 3), entriesC},
                   {d, 1, 0, static_cast<std::uint8_t>(first + 3), entriesC}};
    f.maps.tablePlaces = {a, a + 4, a + 8, b, b + 4, b + 8, c, c + 4, c + 12, d, d + 4,
                          table, table + 4, groups, groups + 4, groups + 8, groups + 12,
                          mapScripts + 6, eventsA + 4, eventsA + 8, eventsA + 12, eventsA + 16, eventsC + 4};
    std::sort(f.maps.tablePlaces.begin(), f.maps.tablePlaces.end());
    for (std::uint8_t i = 0; i < 5; ++i) {
        f.names.places.push_back(namesAt + (fireRed ? 4 * i : 8 * i + 4));
        f.names.names[first + i] = texts[i];
    }
    return f;
}

class MapsTest : public ::testing::TestWithParam<Family> {};

TEST_P(MapsTest, FindsTheMapsTheirScriptsAndTheirNamesPastTheDecoys) {
    const Fixture f = Build(GetParam());
    // With the family given and without: the other families' header fields do not fit.
    for (const MapSet& found : {FindMaps(f.image, GetParam()), FindMaps(f.image)}) {
        EXPECT_EQ(found.groupTable, f.maps.groupTable);
        EXPECT_EQ(found.family, GetParam());
        ASSERT_EQ(found.maps.size(), f.maps.maps.size());
        for (std::size_t i = 0; i < found.maps.size(); ++i) {
            const Map &got = found.maps[i], &want = f.maps.maps[i];
            EXPECT_EQ(std::tie(got.header, got.group, got.number, got.section),
                      std::tie(want.header, want.group, want.number, want.section));
            EXPECT_EQ(got.entries, want.entries) << "map " << i;
        }
        EXPECT_EQ(found.tablePlaces, f.maps.tablePlaces);
    }
    MapSet maps = FindMaps(f.image, GetParam());
    const MapNameTable names = FindMapNameTable(f.image, GetParam(), maps);
    EXPECT_EQ(std::tie(names.table, names.firstSection, names.places),
              std::tie(f.names.table, f.names.firstSection, f.names.places));
    EXPECT_EQ(FindMapNames(f.image, GetParam(), maps), f.names.names);
    std::uint8_t apart = 0;  // sections too far apart for any table to name most of them
    for (Map& map : maps.maps) map.section = apart += 0x40;
    EXPECT_FALSE(FindMapNameTable(f.image, GetParam(), maps).table);

    // Cut short anywhere, the image yields only what lies inside it, and
    // the whole name table once the cut passes its end.
    for (std::size_t size = kRecordsStart; size <= f.image.size(); ++size) {
        const std::string cut = f.image.substr(0, size);  // its own allocation, for the sanitizers
        const MapSet found = FindMaps(cut, GetParam());
        const MapNameTable cutNames = FindMapNameTable(cut, GetParam(), found);
        for (const Map& map : found.maps) EXPECT_LE(map.header + 0x1C, size);
        for (const std::uint32_t place : found.tablePlaces) EXPECT_LE(place + 4, size);
        for (const std::uint32_t place : cutNames.places) EXPECT_LE(place + 4, size);
        if (size >= f.names.places.back() + 4) {
            ASSERT_EQ(cutNames.places, f.names.places) << size;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Families, MapsTest, ::testing::Values(Family::FireRedLeafGreen, Family::Emerald,
                                                                  Family::RubySapphire));

}  // namespace
}  // namespace quillon::game
