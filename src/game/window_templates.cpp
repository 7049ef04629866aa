#include "game/window_templates.h"

#include "game/words.h"

#include <algorithm>

namespace quillon::game {
namespace {

// window.c: no more than 32 windows at once; a tilemap entry names one of
// 1024 tiles, and a background's tilemap is at most 64 tiles a side.
constexpr std::uint32_t kMaxWindows = 32;
constexpr std::uint32_t kTiles = 1024, kMapSide = 64;
constexpr std::uint32_t kTemplateSize = 8;
// The most slots walked back from a text's slot to the start of its table,
// and the most pointers to template arrays one table holds.
constexpr std::uint32_t kMaxTableSlots = 64, kMaxArrays = 16;
// How far a Thumb ldr reaches back to its pool word, and how many
// instructions after it the call that takes the loaded pointer is looked for.
constexpr std::uint32_t kLdrReach = 1020, kCallReach = 24;

[[nodiscard]] std::optional<WindowTemplate> TemplateAt(std::string_view image, std::uint32_t at) {
    if (at + kTemplateSize > image.size()) return std::nullopt;
    const WindowTemplate t{Byte(image, at),     Byte(image, at + 1), Byte(image, at + 2), Byte(image, at + 3),
                           Byte(image, at + 4), Byte(image, at + 5), Half(image, at + 6)};
    if (t.bg > 3 || t.width == 0 || t.height == 0 || t.palette > 15) return std::nullopt;
    if (t.left + t.width > kMapSide || t.top + t.height > kMapSide) return std::nullopt;
    if (t.baseBlock + std::uint32_t{t.width} * t.height > kTiles) return std::nullopt;
    return t;
}

[[nodiscard]] bool ClosesArray(std::string_view image, std::uint32_t at) {
    return at + kTemplateSize <= image.size() && image.substr(at, kTemplateSize) == std::string_view("\xFF\0\0\0\0\0\0\0", 8);
}

// The run of pool words around `word`: one function's literal pool, or
// the part of it placed after one branch.
[[nodiscard]] Span PoolRun(const CodeMap& code, std::uint32_t word) {
    std::uint32_t first = word, end = word + 4;
    while (first >= 4 && code.IsPoolWord(first - 4)) first -= 4;
    while (code.IsPoolWord(end)) end += 4;
    return {first, end - first};
}

// The largest constant moved into r1 to r3 between each `ldr Rd, [pc, #n]`
// that loads `word` and the call after it.
[[nodiscard]] int ConstantArguments(std::string_view image, const CodeMap& code, std::uint32_t word) {
    int largest = 0;
    const std::uint32_t from = word > kLdrReach ? word - kLdrReach : 0;
    for (std::uint32_t at = from; at + 2 <= word; at += 2) {
        const std::uint16_t h = Half(image, at);
        if ((h >> 11) != 0x09 || ((at + 4) & ~3u) + (h & 0xFFu) * 4 != word) continue;  // ldr Rd, [pc, #n]
        if (!code.IsCode(at) || code.IsPoolWord(at & ~3u)) continue;
        for (std::uint32_t k = 1, i = at + 2; k <= kCallReach && i + 2 <= image.size(); ++k, i += 2) {
            const std::uint16_t next = Half(image, i);
            const bool call = (next >> 11) == 0x1E;  // bl
            const bool away = (next >> 12) == 0xD || (next >> 11) == 0x1C || (next >> 8) == 0x47 || (next >> 8) == 0xBD;
            if (call || away) break;  // the call, or a branch or return before it
            const int reg = next >> 8 & 7;
            if ((next >> 11) == 0x04 && reg >= 1 && reg <= 3) largest = std::max(largest, next & 0xFF);  // movs Rd, #imm
        }
    }
    return largest;
}

// The templates that the pool run loads: arrays, and tables of pointers to arrays.
void TemplatesOfPool(std::string_view image, Span run, std::vector<WindowTemplate>& out) {
    for (std::uint32_t at = run.offset; at < run.End(); at += 4) {
        const std::optional<std::uint32_t> target = PointerAt(image, at);
        if (!target || *target % 2 != 0) continue;
        if (std::vector<WindowTemplate> array = TemplateArrayAt(image, *target); !array.empty()) {
            out.insert(out.end(), array.begin(), array.end());
            continue;
        }
        for (std::uint32_t k = 0; *target % 4 == 0 && k < kMaxArrays; ++k) {
            const std::optional<std::uint32_t> slot = PointerAt(image, *target + 4 * k);
            if (!slot || *slot % 2 != 0) break;
            const std::vector<WindowTemplate> array = TemplateArrayAt(image, *slot);
            if (array.empty()) break;
            out.insert(out.end(), array.begin(), array.end());
        }
    }
}

// The pool words that load the table holding the slot at `slot`: the
// nearest start of the table at or before it that pool words, and nothing
// else, point at.
[[nodiscard]] std::vector<std::uint32_t> TablePool(std::string_view image, const GameModel& model, std::uint32_t slot) {
    for (std::uint32_t k = 0, at = slot; k < kMaxTableSlots && at >= kHeaderSize && PointerAt(image, at); ++k, at -= 4) {
        std::vector<std::uint32_t> pools;
        bool other = false;
        for (const Place& p : model.ReferencesTo(at)) {
            if (p.kind == PlaceKind::Pool) pools.push_back(p.place);
            else if (IsReference(p.kind)) other = true;
        }
        if (other) return {};
        if (!pools.empty()) return pools;
    }
    return {};
}

}  // namespace

std::vector<WindowTemplate> TemplateArrayAt(std::string_view image, std::uint32_t at) {
    std::vector<WindowTemplate> array;
    if (at % 2 != 0) return array;
    for (std::uint32_t k = 0; k < kMaxWindows; ++k, at += kTemplateSize) {
        if (ClosesArray(image, at)) return array;
        const std::optional<WindowTemplate> t = TemplateAt(image, at);
        if (!t) break;
        array.push_back(*t);
    }
    return {};
}

std::optional<PrintWindows> WindowsOf(std::string_view image, const GameModel& model, std::uint32_t text) {
    std::vector<std::uint32_t> words;  // the pool words that load the text's pointer or its table's
    for (const Place& p : model.ReferencesTo(text)) {
        if (p.kind == PlaceKind::Pool) {
            words.push_back(p.place);
        } else if (p.kind == PlaceKind::Table && p.place % 4 == 0) {
            const std::vector<std::uint32_t> table = TablePool(image, model, p.place);
            if (table.empty()) return std::nullopt;
            words.insert(words.end(), table.begin(), table.end());
        } else if (p.kind == PlaceKind::Script) {
            return std::nullopt;
        }
    }
    if (words.empty()) return std::nullopt;
    PrintWindows found;
    for (const std::uint32_t word : words) {
        const std::size_t before = found.windows.size();
        TemplatesOfPool(image, PoolRun(model.Code(), word), found.windows);
        if (found.windows.size() == before) return std::nullopt;
        found.x = std::max(found.x, ConstantArguments(image, model.Code(), word));
    }
    return found;
}

}  // namespace quillon::game
