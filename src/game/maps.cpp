#include "game/maps.h"

#include "game/words.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <set>

namespace quillon::game {
namespace {

// Record layouts, alike in the three families unless noted.
constexpr std::uint32_t kMapHeaderSize = 0x1C;
constexpr std::uint32_t kEventsSize = 0x14;  // four u8 counts, four array pointers
constexpr std::uint32_t kObjectEventSize = 0x18, kObjectScript = 0x10;
constexpr std::uint32_t kWarpSize = 0x08;
constexpr std::uint32_t kCoordEventSize = 0x10, kCoordScript = 0x0C;
constexpr std::uint32_t kBgEventSize = 0x0C, kBgKind = 0x05, kBgScript = 0x08;
constexpr std::uint32_t kConnectionSize = 0x0C;
// FireRed's layout adds border width and height and two zero bytes.
constexpr std::uint32_t kLayoutSize = 0x18, kFireRedLayoutSize = 0x1C;

// Map scripts: a type byte and an unaligned pointer, until a 0 type. Two
// types point at a table of {u16 var, u16 value, script} rows that ends
// with a 0 var; the others point at a script.
constexpr std::uint32_t kMapScriptSize = 5, kScriptRowSize = 8;
constexpr std::uint8_t kOnFrameTable = 2, kOnWarpIntoMapTable = 4, kLastMapScriptType = 7;

// Bounds well above anything the games hold, to reject other data.
constexpr std::uint32_t kMaxLayoutSide = 0x400, kMaxLayoutId = 0x400, kMaxBorderSide = 8;
constexpr std::uint32_t kMaxMapScripts = 16, kMaxScriptRows = 64, kMaxConnections = 16;

// A word whose top byte is 0x08 or 0x09: a cartridge pointer.
constexpr std::uint32_t kPointerMask = 0xFE000000;

[[nodiscard]] bool Fits(std::string_view image, std::uint32_t at, std::size_t size) {
    return std::size_t{at} + size <= image.size();
}

// The target of the pointer at `at` when it is aligned to `align`.
[[nodiscard]] std::optional<std::uint32_t> AlignedAt(std::string_view image, std::uint32_t at,
                                                     std::uint32_t align = 4) {
    const auto target = PointerAt(image, at);
    if (!target || *target % align != 0) return std::nullopt;
    return target;
}

// A 0 word, or a pointer into the image.
[[nodiscard]] bool NullOrPointer(std::string_view image, std::uint32_t at) {
    return Word(image, at) == 0 || PointerAt(image, at).has_value();
}

// An event array: null when empty, else aligned with all `count` records inside.
[[nodiscard]] bool ValidArray(std::string_view image, std::uint32_t slot, std::uint32_t count,
                              std::uint32_t recordSize, std::uint32_t align) {
    if (count == 0) return NullOrPointer(image, slot);
    const auto at = AlignedAt(image, slot, align);
    return at && Fits(image, *at, std::size_t{count} * recordSize);
}

[[nodiscard]] bool ValidLayout(std::string_view image, std::uint32_t at, Family family) {
    const bool fireRed = family == Family::FireRedLeafGreen;
    if (!Fits(image, at, fireRed ? kFireRedLayoutSize : kLayoutSize)) return false;
    const std::uint32_t width = Word(image, at), height = Word(image, at + 4);
    if (width - 1 >= kMaxLayoutSide || height - 1 >= kMaxLayoutSide) return false;
    const auto blocks = AlignedAt(image, at + 0x0C, 2);
    if (!AlignedAt(image, at + 0x08, 2) || !blocks || !Fits(image, *blocks, width * height * 2)) return false;
    for (const std::uint32_t tileset : {at + 0x10, at + 0x14})
        if (Word(image, tileset) != 0 && !AlignedAt(image, tileset)) return false;
    return !fireRed || (Byte(image, at + 0x18) <= kMaxBorderSide &&
                        Byte(image, at + 0x19) <= kMaxBorderSide && Half(image, at + 0x1A) == 0);
}

[[nodiscard]] bool ValidEvents(std::string_view image, std::uint32_t at) {
    return Fits(image, at, kEventsSize) &&
           ValidArray(image, at + 0x04, Byte(image, at + 0), kObjectEventSize, 4) &&
           ValidArray(image, at + 0x08, Byte(image, at + 1), kWarpSize, 2) &&
           ValidArray(image, at + 0x0C, Byte(image, at + 2), kCoordEventSize, 4) &&
           ValidArray(image, at + 0x10, Byte(image, at + 3), kBgEventSize, 4);
}

// Visits a {var, value, script} table's script slots; false when a row
// is cut off or points nowhere, or no 0 var ends the table in time.
template <typename Visit>
[[nodiscard]] bool WalkScriptTable(std::string_view image, std::uint32_t at, Visit&& visit) {
    for (std::uint32_t row = 0; row < kMaxScriptRows; ++row, at += kScriptRowSize) {
        if (!Fits(image, at, 2)) return false;
        if (Half(image, at) == 0) return true;
        if (!Fits(image, at, kScriptRowSize) || !PointerAt(image, at + 4)) return false;
        visit(at + 4);
    }
    return false;
}

// Visits each map script's pointer slot with its type; false as above.
template <typename Visit>
[[nodiscard]] bool WalkMapScripts(std::string_view image, std::uint32_t at, Visit&& visit) {
    for (std::uint32_t n = 0; n < kMaxMapScripts; ++n, at += kMapScriptSize) {
        if (!Fits(image, at, 1)) return false;
        const std::uint8_t type = Byte(image, at);
        if (type == 0) return true;
        if (type > kLastMapScriptType || !Fits(image, at, kMapScriptSize) || !PointerAt(image, at + 1))
            return false;
        visit(type, at + 1);
    }
    return false;
}

[[nodiscard]] bool IsTableType(std::uint8_t type) { return type == kOnFrameTable || type == kOnWarpIntoMapTable; }

[[nodiscard]] bool ValidMapScripts(std::string_view image, std::uint32_t at) {
    bool rows = true;
    const bool list = WalkMapScripts(image, at, [&](std::uint8_t type, std::uint32_t slot) {
        if (IsTableType(type)) rows = rows && WalkScriptTable(image, *PointerAt(image, slot), [](std::uint32_t) {});
    });
    return list && rows;
}

[[nodiscard]] bool ValidConnections(std::string_view image, std::uint32_t at) {
    if (!Fits(image, at, 8)) return false;
    const std::uint32_t count = Word(image, at);
    if (count > kMaxConnections || !ValidArray(image, at + 4, count, kConnectionSize, 4)) return false;
    if (count == 0) return true;
    const std::uint32_t list = *PointerAt(image, at + 4);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::uint8_t direction = Byte(image, list + i * kConnectionSize);  // south .. emerge
        if (direction < 1 || direction > 6) return false;
    }
    return true;
}

// The small fields after the pointers, which differ by family: FireRed has
// a cycling byte and a flag byte where Ruby and Emerald keep two zero
// bytes; Ruby's show-name byte is a flag where Emerald packs four.
[[nodiscard]] bool ValidHeaderFields(std::string_view image, std::uint32_t at, Family family) {
    if (Half(image, at + 0x12) - 1u >= kMaxLayoutId - 1) return false;  // layout id, from 1
    if (Byte(image, at + 0x15) > 1 || Byte(image, at + 0x16) >= 0x20 || Byte(image, at + 0x17) >= 0x10 ||
        Byte(image, at + 0x1B) >= 0x20)
        return false;  // flash, weather, map type, battle scene
    switch (family) {
    case Family::FireRedLeafGreen: return Byte(image, at + 0x18) <= 1 && Byte(image, at + 0x19) <= 7;
    case Family::RubySapphire: return Half(image, at + 0x18) == 0 && Byte(image, at + 0x1A) <= 1;
    case Family::Emerald: return Half(image, at + 0x18) == 0 && Byte(image, at + 0x1A) <= 0x0F;
    }
    return false;
}

[[nodiscard]] bool ValidHeader(std::string_view image, std::uint32_t at, Family family) {
    if (!Fits(image, at, kMapHeaderSize) || !ValidHeaderFields(image, at, family)) return false;
    const auto layout = AlignedAt(image, at), events = AlignedAt(image, at + 4);
    if (!layout || !events || !ValidLayout(image, *layout, family) || !ValidEvents(image, *events)) return false;
    const auto scripts = PointerAt(image, at + 8);
    if (scripts ? !ValidMapScripts(image, *scripts) : Word(image, at + 8) != 0) return false;
    const auto connections = AlignedAt(image, at + 12);
    return connections ? ValidConnections(image, *connections) : Word(image, at + 12) == 0;
}

// The group array that the slot at `at` points to, when its first slot
// points to a valid header: the test for one slot of the group table.
[[nodiscard]] std::optional<std::uint32_t> GroupAt(std::string_view image, std::uint32_t at, Family family) {
    const auto group = AlignedAt(image, at);
    if (!group) return std::nullopt;
    const auto header = AlignedAt(image, *group);
    if (!header || !ValidHeader(image, *header, family)) return std::nullopt;
    return group;
}

// Map headers from `group` on, stopping at the first slot that does not
// validate or at `limit`, where other data of the table begins.
[[nodiscard]] std::vector<std::uint32_t> GroupHeaders(std::string_view image, std::uint32_t group,
                                                      std::uint32_t limit, Family family) {
    std::vector<std::uint32_t> headers;
    for (std::uint32_t slot = group; slot < limit && headers.size() < 256; slot += 4) {
        const auto header = AlignedAt(image, slot);
        if (!header || !ValidHeader(image, *header, family)) break;
        headers.push_back(*header);
    }
    return headers;
}

// The headers of every group of the table at `table`, which has `count` slots.
[[nodiscard]] std::vector<std::vector<std::uint32_t>> TableHeaders(std::string_view image, std::uint32_t table,
                                                                   std::uint32_t count, Family family) {
    std::vector<std::uint32_t> groups;
    for (std::uint32_t i = 0; i < count; ++i) groups.push_back(*PointerAt(image, table + 4 * i));
    // A group ends where another group's slots or the table itself begin.
    std::set<std::uint32_t> starts(groups.begin(), groups.end());
    starts.insert(table);
    std::vector<std::vector<std::uint32_t>> headers;
    for (const std::uint32_t group : groups) {
        const auto next = starts.upper_bound(group);
        const std::uint32_t limit = next == starts.end() ? static_cast<std::uint32_t>(image.size()) : *next;
        headers.push_back(GroupHeaders(image, group, limit, family));
    }
    return headers;
}

// The scripts one map's header leads to; the slots followed on the way go to `places`.
void CollectEntries(std::string_view image, Family family, Map& map, std::vector<std::uint32_t>& places) {
    const auto add = [&](EntryKind kind, std::uint32_t slot) {
        if (const auto script = PointerAt(image, slot)) map.entries.push_back({*script, kind, slot});
    };
    const std::uint32_t h = map.header;
    places.push_back(h);
    places.push_back(h + 4);
    for (const std::uint32_t slot : {h + 8, h + 12})
        if (Word(image, slot) != 0) places.push_back(slot);

    if (const auto scripts = PointerAt(image, h + 8)) {
        (void)WalkMapScripts(image, *scripts, [&](std::uint8_t type, std::uint32_t slot) {
            if (!IsTableType(type)) return add(EntryKind::MapScript, slot);
            places.push_back(slot);
            (void)WalkScriptTable(image, *PointerAt(image, slot),
                                  [&](std::uint32_t row) { add(EntryKind::MapScript, row); });
        });
    }

    const std::uint32_t events = *PointerAt(image, h + 4);
    for (std::uint32_t slot = events + 4; slot < events + kEventsSize; slot += 4)
        if (Word(image, slot) != 0) places.push_back(slot);
    const auto each = [&](std::uint32_t count, std::uint32_t slot, std::uint32_t size, auto&& visit) {
        if (count == 0) return;
        const std::uint32_t array = *PointerAt(image, slot);
        for (std::uint32_t i = 0; i < count; ++i) visit(array + i * size);
    };
    each(Byte(image, events), events + 0x04, kObjectEventSize,
         [&](std::uint32_t at) { add(EntryKind::ObjectEvent, at + kObjectScript); });
    each(Byte(image, events + 2), events + 0x0C, kCoordEventSize,
         [&](std::uint32_t at) { add(EntryKind::CoordEvent, at + kCoordScript); });
    // Kinds 5 to 7 hold a hidden item, and in Ruby and Emerald 8 a secret
    // base id; every other kind holds a script.
    const std::uint8_t firstNonScript = 5, lastNonScript = family == Family::FireRedLeafGreen ? 7 : 8;
    each(Byte(image, events + 3), events + 0x10, kBgEventSize, [&](std::uint32_t at) {
        const std::uint8_t kind = Byte(image, at + kBgKind);
        if (kind < firstNonScript || kind > lastNonScript) add(EntryKind::BgEvent, at + kBgScript);
    });
}

}  // namespace

std::vector<std::uint32_t> PointerSlots(std::string_view image, std::uint32_t targetAlign) {
    // Sixteen words at a time: the mask test over a block vectorises and
    // most blocks hold no pointer at all; a block that does is compacted
    // without branches, as its hits fall too irregularly to predict.
    constexpr std::uint32_t kBlock = 16;
    const std::uint32_t mask = kPointerMask | (targetAlign - 1);
    const std::uint32_t size = static_cast<std::uint32_t>(std::min<std::size_t>(image.size(), kRomReach));
    const auto word = [](const char* at) {
        std::uint32_t w;
        std::memcpy(&w, at, 4);
        if constexpr (std::endian::native == std::endian::big)
            w = (w >> 24) | (w >> 8 & 0xFF00) | (w << 8 & 0xFF0000) | (w << 24);
        return w;
    };
    std::vector<std::uint32_t> slots(1024);
    std::size_t count = 0;
    const auto test = [&](std::uint32_t at) {
        const std::uint32_t w = word(image.data() + at), target = w - kRomBase;
        slots[count] = at;
        count += ((w & mask) == kRomBase) & (target >= kHeaderSize) & (target < size);
    };
    std::uint32_t at = kHeaderSize;
    for (; at + 4 * kBlock <= size; at += 4 * kBlock) {
        const char* const block = image.data() + at;
        unsigned any = 0;
        for (std::uint32_t k = 0; k < kBlock; ++k) any |= (word(block + 4 * k) & mask) == kRomBase;
        if (any == 0) continue;
        if (count + kBlock > slots.size()) slots.resize(2 * slots.size());
        for (std::uint32_t k = 0; k < kBlock; ++k) test(at + 4 * k);
    }
    slots.resize(count + kBlock);
    for (; at + 4 <= size; at += 4) test(at);
    slots.resize(count);
    return slots;
}

namespace {

// The aligned-target pointer slots, and a bitmap of them by word index.
struct Slots {
    std::vector<std::uint32_t> list;
    std::vector<bool> isSlot;
};

[[nodiscard]] Slots AlignedSlots(std::string_view image) {
    Slots slots{PointerSlots(image, 4), std::vector<bool>(image.size() / 4 + 2)};
    for (const std::uint32_t at : slots.list) slots.isSlot[at / 4] = true;
    return slots;
}

[[nodiscard]] MapSet FindMapsAmong(std::string_view image, Family family, const Slots& slots) {
    // A run of adjacent slots that each lead to a group of valid headers
    // is a candidate table; the one whose groups hold the most maps wins.
    std::uint32_t bestTable = 0, bestCount = 0;
    std::size_t bestMaps = 0;
    std::uint32_t runStart = 0, runCount = 0;
    const auto closeRun = [&] {
        if (runCount == 0) return;
        std::size_t maps = 0;
        for (const auto& group : TableHeaders(image, runStart, runCount, family)) maps += group.size();
        if (maps > bestMaps) bestTable = runStart, bestCount = runCount, bestMaps = maps;
        runCount = 0;
    };
    // Group table, groups and the headers' first two fields all hold
    // aligned pointers. Before anything is read at a slot's target, the
    // target must be such a slot (the group's first), as must the first two
    // fields of the header it points at.
    const auto leadsToHeader = [&](std::uint32_t at) {
        const std::uint32_t group = Word(image, at) - kRomBase;
        if (!slots.isSlot[group / 4]) return false;
        const std::uint32_t header = Word(image, group) - kRomBase;
        return slots.isSlot[header / 4] && slots.isSlot[header / 4 + 1] && GroupAt(image, at, family);
    };
    for (const std::uint32_t at : slots.list) {
        if (!leadsToHeader(at)) continue;
        if (runCount > 0 && at != runStart + 4 * runCount) closeRun();
        if (runCount++ == 0) runStart = at;
    }
    closeRun();

    MapSet set;
    if (bestMaps == 0) return set;
    set.groupTable = bestTable;
    set.family = family;
    const auto groups = TableHeaders(image, bestTable, bestCount, family);
    for (std::uint32_t g = 0; g < groups.size(); ++g) {
        const std::uint32_t group = *PointerAt(image, bestTable + 4 * g);
        set.tablePlaces.push_back(bestTable + 4 * g);
        for (std::uint32_t n = 0; n < groups[g].size(); ++n) {
            set.tablePlaces.push_back(group + 4 * n);
            Map map{groups[g][n], static_cast<std::uint8_t>(g), static_cast<std::uint8_t>(n),
                    Byte(image, groups[g][n] + 0x14), {}};
            CollectEntries(image, family, map, set.tablePlaces);
            set.maps.push_back(std::move(map));
        }
    }
    std::sort(set.tablePlaces.begin(), set.tablePlaces.end());
    set.tablePlaces.erase(std::unique(set.tablePlaces.begin(), set.tablePlaces.end()), set.tablePlaces.end());
    return set;
}

}  // namespace

MapSet FindMaps(std::string_view image, Family family) { return FindMapsAmong(image, family, AlignedSlots(image)); }

MapSet FindMaps(std::string_view image) {
    // The stricter header checks first, so that a tie keeps them.
    const Slots slots = AlignedSlots(image);
    MapSet best;
    for (const Family family : {Family::FireRedLeafGreen, Family::RubySapphire, Family::Emerald}) {
        MapSet found = FindMapsAmong(image, family, slots);
        if (found.maps.size() > best.maps.size()) best = std::move(found);
    }
    return best;
}

}  // namespace quillon::game
