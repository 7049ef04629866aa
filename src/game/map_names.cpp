#include "game/map_names.h"

#include "game/words.h"

#include <algorithm>
#include <array>

namespace quillon::game {
namespace {

constexpr std::uint32_t kRecordSize = 8, kRecordName = 4;  // Ruby/Emerald: x, y, width, height, name
constexpr std::uint32_t kMaxNameLength = 24;
// The region map is 28 by 15 squares; a section covers a few of them.
constexpr std::uint8_t kMaxMapX = 32, kMaxMapY = 32, kMaxSpan = 16;

// A place name: up to kMaxNameLength characters, not starting with a
// space, without control codes (0xF7 and up), then 0xFF.
[[nodiscard]] bool IsName(std::string_view image, std::uint32_t at) {
    for (std::uint32_t i = 0; i <= kMaxNameLength && at + i < image.size(); ++i) {
        const std::uint8_t c = Byte(image, at + i);
        if (c == 0xFF) return i > 0;
        if (c >= 0xF7 || (i == 0 && c == 0x00)) return false;
    }
    return false;
}

[[nodiscard]] bool IsNameSlot(std::string_view image, std::uint32_t slot) {
    const auto name = PointerAt(image, slot);
    return name && IsName(image, *name);
}

[[nodiscard]] bool IsRecord(std::string_view image, std::uint32_t at) {
    const std::uint8_t x = Byte(image, at), y = Byte(image, at + 1), w = Byte(image, at + 2), h = Byte(image, at + 3);
    return x < kMaxMapX && y < kMaxMapY && w >= 1 && w <= kMaxSpan && h >= 1 && h <= kMaxSpan &&
           IsNameSlot(image, at + kRecordName);
}

struct Candidate {
    std::uint32_t table = 0, count = 0;
    int base = 0;
    std::size_t covered = 0;
};

}  // namespace

MapNameTable FindMapNameTable(std::string_view image, Family family, const MapSet& maps) {
    MapNameTable result;
    // inUse[s]: how many distinct sections below s the maps use.
    std::array<std::size_t, 257> inUse{};
    for (const Map& map : maps.maps) inUse[map.section + 1] = 1;
    for (std::size_t s = 1; s < inUse.size(); ++s) inUse[s] += inUse[s - 1];
    const std::size_t used = inUse.back();
    if (used == 0) return result;

    // A table must name more than half the sections in use. Runs of
    // pointer slots at the table's stride are found from the slot list
    // alone; only runs that long have their records and texts read.
    const bool records = family != Family::FireRedLeafGreen;
    const std::uint32_t stride = records ? kRecordSize : 4, offset = records ? kRecordName : 0;
    const std::uint32_t minCount = std::max<std::uint32_t>(2, static_cast<std::uint32_t>(used + 1) / 2);
    const auto fits = [&](std::uint32_t table) {
        return records ? IsRecord(image, table) : IsNameSlot(image, table);
    };
    const auto coverage = [&](int base, std::uint32_t count) {
        return inUse[std::min<std::size_t>(256, base + std::size_t{count})] - inUse[base];
    };

    Candidate best;
    const auto consider = [&](std::uint32_t table, std::uint32_t count) {
        if (count < minCount) return;
        // Records are indexed by the section itself; bare pointers from the
        // region's first section: of the bases that cover the most, the
        // highest, so that a table longer than needed starts at the lowest
        // section in use.
        Candidate c{table, count, 0, coverage(0, count)};
        if (!records) {
            for (int base = 1; base + 1 <= 256; ++base)
                if (const std::size_t n = coverage(base, count); n >= c.covered) c.base = base, c.covered = n;
        }
        if (c.covered > best.covered || (c.covered == best.covered && c.count < best.count)) best = c;
    };
    // Finds the stretches of a run of slots whose records all fit. Any
    // stretch of minCount records holds an index that is a multiple of
    // minCount, so only those are probed before a stretch is grown.
    const auto examine = [&](std::uint32_t first, std::uint32_t count) {
        const auto record = [&](std::uint32_t i) { return first - offset + i * stride; };
        std::uint32_t done = 0;
        for (std::uint32_t probe = minCount - 1; probe < count; probe += minCount) {
            if (probe < done || !fits(record(probe))) continue;
            std::uint32_t low = probe, high = probe + 1;
            while (low > done && fits(record(low - 1))) --low;
            while (high < count && fits(record(high))) ++high;
            consider(record(low), high - low);
            done = high;
        }
    };

    // Per phase of the stride: the start and length of the run of slots so far.
    std::uint32_t runFirst[2] = {}, runCount[2] = {};
    for (const std::uint32_t slot : PointerSlots(image, 1)) {
        const std::uint32_t phase = records ? slot / 4 % 2 : 0;
        if (runCount[phase] > 0 && slot == runFirst[phase] + runCount[phase] * stride) {
            ++runCount[phase];
            continue;
        }
        examine(runFirst[phase], runCount[phase]);
        runFirst[phase] = slot, runCount[phase] = 1;
    }
    for (std::uint32_t phase = 0; phase < 2; ++phase) examine(runFirst[phase], runCount[phase]);

    if (best.covered * 2 <= used) return result;
    result.table = best.table;
    result.firstSection = static_cast<std::uint8_t>(best.base);
    for (std::uint32_t i = 0; i < best.count && best.base + i <= 0xFF; ++i) {
        const std::uint32_t slot = best.table + i * stride + offset;
        result.places.push_back(slot);
        result.names[static_cast<std::uint8_t>(best.base + i)] = *PointerAt(image, slot);
    }
    return result;
}

std::map<std::uint8_t, std::uint32_t> FindMapNames(std::string_view image, Family family, const MapSet& maps) {
    return FindMapNameTable(image, family, maps).names;
}

}  // namespace quillon::game
