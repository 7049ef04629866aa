#include "game/name_tables.h"

#include "game/text_shape.h"
#include "game/words.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstring>
#include <unordered_set>

namespace quillon::game {
namespace {

// A table has at least this many names; fewer are too easily made by chance.
constexpr std::uint32_t kMinNames = 12;
constexpr std::uint32_t kMinField = 3;
// Empty records in a row that a table may hold (unused slots).
constexpr std::uint32_t kMaxEmptyRun = 8;
// Records with a text pointer that have room for a name beside it.
constexpr std::uint32_t kMinRecordStride = 12;
// Records that every Gen-3 game has, in every language.
constexpr std::uint32_t kSpecies = 412, kMoves = 355, kAbilities = 78, kTypes = 18;
// The header of FireRed, LeafGreen and Emerald, from its pointer to the
// species names on: the move names, the decoration records, the ability
// names and the item records.
constexpr std::uint32_t kHeaderMoves = 4, kHeaderDecorations = 8, kHeaderAbilities = 0x7C, kHeaderItems = 0x84;

constexpr std::string_view kSpeciesNames = "Species names", kMoveNames = "Move names", kAbilityNames = "Ability names",
                           kTypeNames = "Type names", kItemNames = "Item names", kDecorationNames = "Decoration names",
                           kDexCategories = "Pok\xC3\xA9" "dex categories";

// The plain letters A to Z and a to z of the European table.
constexpr std::uint8_t kFirstPlain = 0xBB, kLastPlain = 0xEE;

// Bytes that stand for one character of a name: letters, digits, blanks,
// punctuation and signs; no line break, control code or end mark.
const std::array<bool, 256>& NameChars() {
    static const std::array<bool, 256> chars = [] {
        std::array<bool, 256> c{};
        for (int b = 0; b < 256; ++b) {
            const ByteKind k = ByteKinds()[b];
            c[b] = k == ByteKind::Upper || k == ByteKind::Lower || k == ByteKind::Digit || k == ByteKind::Space ||
                   k == ByteKind::Punct || k == ByteKind::Symbol;
        }
        return c;
    }();
    return chars;
}

// A run of characters ended by 0xFF: where a name there would start (past
// the blanks and end marks of the record before) and where its end mark is.
struct Token {
    std::uint32_t start, end;
};

// The one pass over the image: every end mark behind a character.
std::vector<Token> Tokens(std::string_view image) {
    const auto& chars = NameChars();
    const auto* d = reinterpret_cast<const unsigned char*>(image.data());
    const std::size_t n = image.size();
    std::vector<Token> tokens;
    std::uint64_t allFF;
    std::memset(&allFF, 0xFF, sizeof allFF);
    for (std::size_t at = kHeaderSize; at < n;) {
        const void* hit = std::memchr(d + at, 0xFF, n - at);
        if (!hit) break;
        const auto end = static_cast<std::size_t>(static_cast<const unsigned char*>(hit) - d);
        if (end > kHeaderSize && chars[d[end - 1]]) {
            const std::size_t reach = std::max<std::size_t>(kHeaderSize, end > kMaxNameField ? end - kMaxNameField : 0);
            std::size_t start = end - 1;
            while (start > reach && chars[d[start - 1]]) --start;
            while (start < end && d[start] == 0) ++start;
            if (start < end) tokens.push_back({static_cast<std::uint32_t>(start), static_cast<std::uint32_t>(end)});
        }
        // Free space is megabytes of 0xFF: pass over it eight bytes at a time.
        at = end + 1;
        for (std::uint64_t word; at + sizeof word <= n; at += sizeof word) {
            std::memcpy(&word, d + at, sizeof word);
            if (word != allFF) break;
        }
        while (at < n && d[at] == 0xFF) ++at;
    }
    return tokens;
}

// Whether the records' names read as names: enough of them, mostly plain
// letters, of more than one length (so the padding shows), mostly distinct,
// and not all starting with one byte (a field of the record before them).
// Sets the padding to the byte most often behind an end mark.
bool LooksLikeNames(std::string_view image, NameTable& t) {
    std::uint32_t names = 0, bytes = 0, plain = 0, zeros = 0, marks = 0;
    std::bitset<kMaxNameField + 1> lengths;
    std::array<std::uint32_t, 256> firsts{};
    std::unordered_set<std::string_view> distinct;
    for (std::uint32_t i = 0; i < t.count; ++i) {
        const std::uint32_t at = t.Field(i);
        const auto k = NameFieldAt(image, at, t.length);
        if (!k || *k == 0) continue;
        ++names;
        bytes += *k;
        for (std::uint32_t j = 0; j < *k; ++j) plain += Byte(image, at + j) >= kFirstPlain && Byte(image, at + j) <= kLastPlain;
        lengths.set(*k);
        ++firsts[Byte(image, at)];
        distinct.insert(image.substr(at, *k));
        if (*k + 1 < t.length) (Byte(image, at + *k + 1) == 0 ? zeros : marks) += 1;
    }
    t.padding = zeros >= marks ? 0x00 : 0xFF;
    return names >= kMinNames && plain * 2 >= bytes && lengths.count() >= 2 && distinct.size() * 2 >= names &&
           *std::max_element(firsts.begin(), firsts.end()) * 10 < names * 9;
}

// Drops empty records at both ends.
void TrimEmpty(std::string_view image, NameTable& t) {
    while (t.count > 0 && NameFieldAt(image, t.first, t.length) == 0u) t.first += t.stride, --t.count;
    while (t.count > 0 && NameFieldAt(image, t.Field(t.count - 1), t.length) == 0u) --t.count;
}

// A table of names back to back: from a record at `seed`, every record of
// `stride` bytes before and after it that is a name field.
std::optional<NameTable> GrowFields(std::string_view image, std::uint32_t seed, std::uint32_t stride) {
    NameTable t{{}, seed, stride, 1, stride, 0};
    if (!NameFieldAt(image, seed, stride)) return std::nullopt;
    for (std::uint32_t empty = 0; t.first >= kHeaderSize + stride;) {
        const auto k = NameFieldAt(image, t.first - stride, stride);
        if (!k || (empty = *k ? 0 : empty + 1) > kMaxEmptyRun) break;
        t.first -= stride, ++t.count;
    }
    for (std::uint32_t empty = 0;;) {
        const auto k = NameFieldAt(image, t.Field(t.count), stride);
        if (!k || (empty = *k ? 0 : empty + 1) > kMaxEmptyRun) break;
        ++t.count;
    }
    TrimEmpty(image, t);
    if (t.count == 0 || !LooksLikeNames(image, t)) return std::nullopt;
    return t;
}

// The characters at `at` and their end mark, within `room` bytes: their count.
std::optional<std::uint32_t> NameRun(std::string_view image, std::uint32_t at, std::uint32_t room) {
    if (std::size_t{at} + room > image.size() || Byte(image, at) == 0x00) return std::nullopt;
    for (std::uint32_t k = 0; k < room; ++k) {
        const std::uint8_t b = Byte(image, at + k);
        if (b == 0xFF) return k > 0 ? std::optional<std::uint32_t>(k) : std::nullopt;
        if (!NameChars()[b]) return std::nullopt;
    }
    return std::nullopt;
}

// A name field in the records of a table of text pointers: the earliest
// place beside the pointer where nine records in ten hold a name. The field
// reaches up to the first byte behind a name that is neither 0x00 nor 0xFF.
std::optional<NameTable> FieldInRecords(std::string_view image, const TextTable& table) {
    if (table.stride < kMinRecordStride || table.count < kMinNames) return std::nullopt;
    const std::int64_t slot = table.first, stride = table.stride;
    for (std::int64_t p = std::max<std::int64_t>(slot + 4 - stride, kHeaderSize); p < slot + stride; ++p) {
        if (p >= slot && p < slot + 4) continue;
        const auto at = static_cast<std::uint32_t>(p);
        // The field ends before the record's pointer.
        const std::uint32_t room = std::min<std::uint32_t>(static_cast<std::uint32_t>((p < slot ? slot : slot + stride) - p),
                                                           kMaxNameField);
        if (room < kMinField) continue;
        std::uint32_t misses = 0, length = room, longest = 0;
        for (std::uint32_t i = 0; i < table.count && misses <= table.count / 10; ++i) {
            const std::uint32_t field = at + table.stride * i;
            const auto k = NameRun(image, field, room);
            if (!k) {
                ++misses;
                continue;
            }
            longest = std::max(longest, *k + 1);
            std::uint32_t j = *k + 1;
            while (j < length && (Byte(image, field + j) == 0x00 || Byte(image, field + j) == 0xFF)) ++j;
            length = j;
        }
        if (misses > table.count / 10 || length < longest || length < kMinField) continue;
        NameTable t{{}, at, table.stride, table.count, length, 0};
        TrimEmpty(image, t);
        if (t.count == 0 || !LooksLikeNames(image, t)) continue;
        if (table.kind == "Item descriptions") t.kind = kItemNames;
        if (table.kind == "Pok\xC3\xA9" "dex entries") t.kind = kDexCategories;
        return t;
    }
    return std::nullopt;
}

// Trims tables that overlap: where a pointer leads to the later one's first
// record, the earlier one ends before it; else the later one starts after
// the earlier one.
std::vector<NameTable> WithoutOverlaps(std::string_view image, std::vector<NameTable> tables, const GameModel& model) {
    std::sort(tables.begin(), tables.end(), [](const NameTable& a, const NameTable& b) { return a.first < b.first; });
    std::vector<NameTable> kept;
    for (NameTable t : tables) {
        if (!kept.empty() && kept.back().End() > t.first) {
            NameTable& before = kept.back();
            if (before.first == t.first) continue;
            if (!model.Pointers().PlacesOf(t.first).empty()) {
                while (before.count > 0 && before.End() > t.first) --before.count;
                TrimEmpty(image, before);
                if (before.count == 0 || !LooksLikeNames(image, before)) kept.pop_back();
            } else {
                while (t.count > 0 && t.first < before.End()) t.first += t.stride, --t.count;
                TrimEmpty(image, t);
                if (t.count == 0 || !LooksLikeNames(image, t)) continue;
            }
        }
        kept.push_back(t);
    }
    return kept;
}

// Names the tables the header points at, then those of the sizes every game has.
void NameKinds(std::string_view image, std::vector<NameTable>& tables, const GameModel& model) {
    auto pureAt = [&](std::optional<std::uint32_t> target) -> NameTable* {
        for (NameTable& t : tables)
            if (target && t.first == *target && t.stride == t.length) return &t;
        return nullptr;
    };
    // The header points at a record's start; its name may lie a few bytes in.
    auto recordAt = [&](std::optional<std::uint32_t> target) -> NameTable* {
        for (NameTable& t : tables)
            if (target && t.stride > t.length && t.first >= *target && t.first - *target < t.stride) return &t;
        return nullptr;
    };
    for (NameTable& species : tables) {
        if (species.stride != species.length) continue;
        for (std::uint32_t place : model.Pointers().PlacesOf(species.first)) {
            NameTable* moves = pureAt(PointerAt(image, place + kHeaderMoves));
            NameTable* abilities = pureAt(PointerAt(image, place + kHeaderAbilities));
            if (place % 4 || !moves || !abilities || moves == &species || abilities == &species) continue;
            species.kind = kSpeciesNames, moves->kind = kMoveNames, abilities->kind = kAbilityNames;
            if (NameTable* items = recordAt(PointerAt(image, place + kHeaderItems))) items->kind = kItemNames;
            if (NameTable* decorations = recordAt(PointerAt(image, place + kHeaderDecorations)))
                decorations->kind = kDecorationNames;
            break;
        }
    }
    auto taken = [&](std::string_view kind) {
        return std::any_of(tables.begin(), tables.end(), [&](const NameTable& t) { return t.kind == kind; });
    };
    for (NameTable& t : tables) {
        if (!t.kind.empty() || t.stride != t.length) continue;
        const std::string_view kind = t.count == kSpecies      ? kSpeciesNames
                                      : t.count == kMoves      ? kMoveNames
                                      : t.count == kAbilities  ? kAbilityNames
                                      : t.count == kTypes      ? kTypeNames
                                                               : std::string_view();
        if (!kind.empty() && !taken(kind)) t.kind = kind;
    }
}

}  // namespace

std::optional<std::uint32_t> NameFieldAt(std::string_view image, std::uint32_t at, std::uint32_t length) {
    if (length == 0 || std::size_t{at} + length > image.size()) return std::nullopt;
    const auto& chars = NameChars();
    std::uint32_t k = 0;
    for (; k < length && Byte(image, at + k) != 0xFF; ++k)
        if (!chars[Byte(image, at + k)]) return std::nullopt;
    if (k == length || (k > 0 && Byte(image, at) == 0x00)) return std::nullopt;
    for (std::uint32_t i = k + 1; i < length; ++i)
        if (Byte(image, at + i) != 0x00 && Byte(image, at + i) != 0xFF) return std::nullopt;
    return k;
}

std::vector<NameTable> FindNameTables(std::string_view image, const GameModel& model) {
    std::vector<NameTable> tables;
    // Names back to back: three records in a row at one stride seed a table.
    const std::vector<Token> tokens = Tokens(image);
    std::uint32_t covered = 0;
    for (std::size_t i = 0; i + 2 < tokens.size(); ++i) {
        const std::uint32_t seed = tokens[i].start, stride = tokens[i + 1].start - seed;
        if (seed < covered || stride < kMinField || stride > kMaxNameField || tokens[i + 2].start - tokens[i + 1].start != stride)
            continue;
        if (model.Code().IsCode(seed) || model.Code().IsBinaryData(seed)) continue;
        if (auto t = GrowFields(image, seed, stride)) {
            covered = t->End();
            tables.push_back(*t);
        }
    }
    // Names inside records that hold text pointers.
    for (const TextTable& table : model.TextTables())
        if (auto t = FieldInRecords(image, table)) tables.push_back(*t);
    tables = WithoutOverlaps(image, std::move(tables), model);
    NameKinds(image, tables, model);
    return tables;
}

}  // namespace quillon::game
