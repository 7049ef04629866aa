#include "fit/font.h"

#include "core/file_io.h"
#include "core/hex_text.h"
#include "game/maps.h"
#include "game/pointer_index.h"
#include "game/words.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <stdexcept>

namespace quillon::fit {
namespace {

constexpr std::uint8_t kSpace = 0x00;
constexpr std::uint8_t kZero = 0xA1;
constexpr std::uint8_t kFirstCapital = 0xBB, kLastCapital = 0xD4;
constexpr std::uint8_t kFirstSmall = 0xD5, kLastSmall = 0xEE;
constexpr std::uint8_t kLastText = 0xF6;   // F7.. are codes and breaks
constexpr std::size_t kTextGlyphs = kLastText + 1;
constexpr std::uint32_t kPoolReach = 64;   // two pointers this close stand in one pool or record
constexpr std::array kFormats = {GlyphFormat::Wide2bpp, GlyphFormat::Narrow2bpp, GlyphFormat::Narrow4bpp};
// text.c: the table of glyph-width functions has a record for each font
// number, 7 in FireRed and LeafGreen, 9 in Emerald; a function and its
// literal pool take at most this many bytes before the pool's widths pointer.
constexpr std::uint32_t kMinWidthFunctions = 7;
constexpr std::uint32_t kFunctionReach = 64;
constexpr std::uint32_t kMaxFontNumber = 32;  // above any game's font numbers
// text.h: the font numbers of the roles. FONT_SMALL is 0 in FireRed,
// LeafGreen and Emerald; FONT_NORMAL is 1 and FONT_NARROW 7 in Emerald.
// Ruby and Sapphire's text engine has no such table: only their message
// font is told apart.
constexpr std::size_t kSmallNumber = 0, kEmeraldNormalNumber = 1, kEmeraldNarrowNumber = 7;

using Edges = std::array<std::uint8_t, kTextGlyphs>;

bool IsLetter(int g) { return g >= kFirstCapital && g <= kLastSmall; }

// 0 background, 1 letter, 2 shadow. The 2-bit formats keep a tile row in
// two bytes, the second holding the left four pixels, the highest two bits
// of a byte the leftmost pixel; the 4-bit one a pixel in a nibble, the low
// nibble left, letter 15 and shadow 14.
int PixelIn(const std::uint8_t* glyph, GlyphFormat format, int x, int y) {
    if (format == GlyphFormat::Narrow4bpp) {
        const std::uint8_t b = glyph[(y / 8) * 32 + (y % 8) * 4 + x / 2];
        const int v = (b >> (x % 2 * 4)) & 0xF;
        return v == 15 ? 1 : v == 14 ? 2 : 0;
    }
    const int tile = format == GlyphFormat::Wide2bpp ? (y / 8) * 2 + x / 8 : y / 8;
    const std::size_t at = static_cast<std::size_t>(tile * 16 + (y % 8) * 2);
    const int col = x % 8;
    const std::uint8_t b = glyph[col < 4 ? at + 1 : at];
    const int v = (b >> (6 - 2 * (col % 4))) & 3;
    return v == 1 || v == 2 ? v : 0;
}

// Which of the four pixels of a 2-bit byte hold ink (bit k: the k-th from
// the left), and of the two of a 4-bit byte.
constexpr std::array<std::uint8_t, 256> kInk2 = [] {
    std::array<std::uint8_t, 256> t{};
    for (int b = 0; b < 256; ++b)
        for (int k = 0; k < 4; ++k) {
            const int v = (b >> (6 - 2 * k)) & 3;
            if (v == 1 || v == 2) t[static_cast<std::size_t>(b)] = static_cast<std::uint8_t>(t[static_cast<std::size_t>(b)] | 1 << k);
        }
    return t;
}();
constexpr std::array<std::uint8_t, 256> kInk4 = [] {
    std::array<std::uint8_t, 256> t{};
    for (int b = 0; b < 256; ++b)
        t[static_cast<std::size_t>(b)] = static_cast<std::uint8_t>(((b & 0xF) >= 14) | ((b >> 4) >= 14) << 1);
    return t;
}();

// One past the rightmost column that holds ink; 0 for a blank glyph.
int InkRight(const std::uint8_t* glyph, GlyphFormat format) {
    unsigned columns = 0;
    if (format == GlyphFormat::Narrow4bpp) {
        for (int i = 0; i < 64; ++i) columns |= unsigned{kInk4[glyph[i]]} << (i % 4 * 2);
    } else {
        const int tiles = format == GlyphFormat::Wide2bpp ? 4 : 2;
        for (int t = 0; t < tiles; ++t) {
            const int shift = format == GlyphFormat::Wide2bpp ? t % 2 * 8 : 0;
            for (int r = 0; r < 8; ++r) {
                const std::uint8_t* row = glyph + t * 16 + r * 2;
                columns |= (unsigned{kInk2[row[1]]} | unsigned{kInk2[row[0]]} << 4) << shift;
            }
        }
    }
    int right = 0;
    while (columns >> right) ++right;
    return right;
}

const std::uint8_t* At(std::string_view image, std::size_t offset) {
    return reinterpret_cast<const std::uint8_t*>(image.data()) + offset;
}

// A width table of a variable-width font: every text character at most 16
// pixels, the space 2 to 10, each letter 2 to 12, and not all letters alike.
bool LooksLikeWidths(std::string_view image, std::uint32_t at) {
    if (std::size_t{at} + kTextGlyphs > image.size()) return false;
    const std::uint8_t* w = At(image, at);
    if (w[kSpace] < 2 || w[kSpace] > 10) return false;
    for (int g = kFirstCapital; g <= kLastSmall; ++g)
        if (w[g] < 2 || w[g] > 12) return false;
    if (std::all_of(w + kFirstCapital, w + kLastSmall + 1, [&](std::uint8_t v) { return v == w[kFirstCapital]; })) return false;
    return std::all_of(w, w + kTextGlyphs, [](std::uint8_t v) { return v <= 16; });
}

bool Blank(const std::uint8_t* glyph, GlyphFormat format) {
    const auto& ink = format == GlyphFormat::Narrow4bpp ? kInk4 : kInk2;
    for (std::size_t i = 0; i < GlyphBytes(format); ++i)
        if (ink[glyph[i]]) return false;
    return true;
}

// Whether the letters' ink fits `widths` (see PairScore).
bool LettersFit(const std::uint8_t* widths, const Edges& edges) {
    int fits = 0, tight = 0;
    for (int g = kFirstCapital; g <= kLastSmall; ++g) {
        const int r = edges[static_cast<std::size_t>(g)], w = widths[g];
        fits += r <= w;
        tight += r > 0 && r <= w && w - r <= 3;
    }
    return fits * 10 >= 52 * 9 && tight * 4 >= 50 * 3;
}

// The ink edges of a glyph block, when the block can be one: a blank space,
// ink in the digit zero and in every letter (two may be blank), the letters
// fitting one of `widthTables`.
std::optional<Edges> GlyphEdges(std::string_view image, std::uint32_t at, GlyphFormat format,
                                const std::vector<std::uint32_t>& widthTables) {
    const std::size_t bytes = GlyphBytes(format);
    if (std::size_t{at} + kGlyphCount * bytes > image.size()) return std::nullopt;
    const std::uint8_t* base = At(image, at);
    auto edge = [&](int g) { return static_cast<std::uint8_t>(InkRight(base + static_cast<std::size_t>(g) * bytes, format)); };
    if (!Blank(base, format) || edge(kZero) == 0 || edge(kFirstCapital) == 0 || edge(kFirstSmall) == 0) return std::nullopt;
    Edges e{};
    int blankLetters = 0;
    for (int g = kFirstCapital; g <= kLastSmall; ++g)
        if ((e[static_cast<std::size_t>(g)] = edge(g)) == 0 && ++blankLetters > 2) return std::nullopt;
    if (std::none_of(widthTables.begin(), widthTables.end(), [&](std::uint32_t w) { return LettersFit(At(image, w), e); }))
        return std::nullopt;
    for (int g = 0; g < kFirstCapital; ++g) e[static_cast<std::size_t>(g)] = edge(g);
    for (int g = kLastSmall + 1; g <= kLastText; ++g) e[static_cast<std::size_t>(g)] = edge(g);
    return e;
}

// How well widths and pictures belong together: the ink of nine glyphs in
// ten stays inside the glyph's width, and three letters in four end the same
// gap before their width (within a pixel; the font's space between letters,
// at most three). -1: they do not.
int PairScore(const std::uint8_t* widths, const Edges& edges) {
    int inked = 0, fits = 0, letters = 0;
    std::array<int, 4> gaps{};
    for (std::size_t g = 0; g < kTextGlyphs; ++g) {
        const int r = edges[g], w = widths[g];
        if (r == 0) continue;
        ++inked;
        fits += r <= w;
        if (IsLetter(static_cast<int>(g))) {
            ++letters;
            if (r <= w && w - r <= 3) ++gaps[static_cast<std::size_t>(w - r)];
        }
    }
    int tight = 0;
    for (std::size_t gap = 0; gap < gaps.size(); ++gap)
        tight = std::max(tight, gaps[gap] + (gap > 0 ? gaps[gap - 1] : 0));
    const bool ok = letters >= 50 && fits * 10 >= inked * 9 && tight * 4 >= letters * 3;
    return ok ? fits + tight : -1;
}

Font MakeFont(std::string_view image, const FontPlace& place) {
    Font font;
    font.place = place;
    const std::size_t widthBytes = std::min<std::size_t>(kWidthCount, image.size() - place.widths);
    std::copy_n(At(image, place.widths), widthBytes, font.widths.begin());
    const std::size_t glyphBytes = kGlyphCount * GlyphBytes(place.format);
    font.glyphs.assign(At(image, place.glyphs), At(image, place.glyphs) + glyphBytes);
    return font;
}

double MeanLetter(const Font& font) {
    const int sum = std::accumulate(font.widths.begin() + kFirstCapital, font.widths.begin() + kLastSmall + 1, 0);
    return sum / double(kLastSmall - kFirstCapital + 1);
}

// Every aligned pointer of the image by target: target << 32 | place, sorted.
std::vector<std::uint64_t> PointersByTarget(std::string_view image, const game::PointerIndex* index) {
    std::vector<std::uint64_t> out;
    if (index) {
        for (std::uint64_t e : index->Entries())
            if (static_cast<std::uint32_t>(e) % 4 == 0) out.push_back(e);
        return out;
    }
    for (std::uint32_t place : game::PointerSlots(image, 1))
        out.push_back(std::uint64_t{game::Word(image, place) - game::kRomBase} << 32 | place);
    std::sort(out.begin(), out.end());
    return out;
}

std::pair<std::vector<std::uint64_t>::const_iterator, std::vector<std::uint64_t>::const_iterator> PlacesOf(
    const std::vector<std::uint64_t>& byTarget, std::uint32_t target) {
    return {std::lower_bound(byTarget.begin(), byTarget.end(), std::uint64_t{target} << 32),
            std::lower_bound(byTarget.begin(), byTarget.end(), std::uint64_t{target + 1} << 32)};
}

struct Block {
    std::uint32_t at;
    GlyphFormat format;
    Edges edges;
};

struct Located {
    FontPlace place;
    bool confirmed = false;
};

std::vector<Located> Search(std::string_view image, const std::vector<std::uint64_t>& byTarget) {
    std::vector<std::uint32_t> widthTables;
    std::vector<Block> blocks;
    for (std::size_t i = 0; i < byTarget.size(); ++i) {
        const auto target = static_cast<std::uint32_t>(byTarget[i] >> 32);
        if (i > 0 && static_cast<std::uint32_t>(byTarget[i - 1] >> 32) == target) continue;
        if (LooksLikeWidths(image, target)) widthTables.push_back(target);
    }
    for (std::size_t i = 0; i < byTarget.size() && !widthTables.empty(); ++i) {
        const auto target = static_cast<std::uint32_t>(byTarget[i] >> 32);
        if (target % 4 != 0 || (i > 0 && static_cast<std::uint32_t>(byTarget[i - 1] >> 32) == target)) continue;
        for (GlyphFormat format : kFormats)
            if (auto edges = GlyphEdges(image, target, format, widthTables)) blocks.push_back({target, format, *edges});
    }
    auto near = [&](std::uint32_t a, std::uint32_t b) {
        const auto [a0, a1] = PlacesOf(byTarget, a);
        const auto [b0, b1] = PlacesOf(byTarget, b);
        for (auto p = a0; p != a1; ++p)
            for (auto q = b0; q != b1; ++q) {
                const auto pa = static_cast<std::uint32_t>(*p), pb = static_cast<std::uint32_t>(*q);
                if ((pa > pb ? pa - pb : pb - pa) <= kPoolReach) return true;
            }
        return false;
    };
    std::vector<Located> found;
    for (std::uint32_t widths : widthTables) {
        const Block* best = nullptr;
        std::pair<bool, int> bestKey{false, -1};
        for (const Block& block : blocks) {
            const int score = PairScore(At(image, widths), block.edges);
            if (score < 0) continue;
            const std::pair<bool, int> key{near(widths, block.at), score};
            if (key > bestKey) best = &block, bestKey = key;
        }
        if (best) found.push_back({{best->at, widths, best->format}, bestKey.first});
    }
    return found;
}

// text.c: the table of glyph-width functions, records of a font number and
// a Thumb function in number order, each function returning a character's
// width from its font's width table, whose pointer stands in its literal
// pool. The width table of each number, as the one table found gives it;
// nothing when none is found, or several that disagree. The tables are
// reached from the width tables found: the pool word that points at one,
// the functions that may own that pool, the records that point at those.
std::vector<std::optional<std::uint32_t>> WidthsByNumber(std::string_view image, const std::vector<std::uint64_t>& byTarget,
                                                         const std::vector<Located>& located) {
    std::vector<std::uint32_t> widths;
    for (const Located& l : located) widths.push_back(l.place.widths);
    std::sort(widths.begin(), widths.end());
    const auto size = static_cast<std::uint32_t>(image.size());
    auto thumb = [&](std::uint32_t word) { return (word & 1) && game::Target(word & ~1u, size); };
    auto record = [&](std::uint32_t at, std::uint32_t n) {
        return at + 8 * n + 8 <= size && game::Word(image, at + 8 * n) == n && thumb(game::Word(image, at + 8 * n + 4));
    };
    std::vector<std::uint32_t> starts;
    for (std::uint32_t table : widths)
        for (auto [p, pEnd] = PlacesOf(byTarget, table); p != pEnd; ++p) {
            const auto pool = static_cast<std::uint32_t>(*p);
            for (std::uint32_t function = pool >= kFunctionReach ? pool - kFunctionReach : 0; function < pool; function += 2)
                for (auto [r, rEnd] = PlacesOf(byTarget, function + 1); r != rEnd; ++r) {
                    const auto slot = static_cast<std::uint32_t>(*r);
                    if (slot < 4 + game::kHeaderSize) continue;
                    const std::uint32_t number = game::Word(image, slot - 4);
                    if (number > kMaxFontNumber || slot - 4 < game::kHeaderSize + 8 * number) continue;
                    const std::uint32_t start = slot - 4 - 8 * number;
                    if (record(start, number)) starts.push_back(start);
                }
        }
    std::sort(starts.begin(), starts.end());
    starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
    std::vector<std::vector<std::optional<std::uint32_t>>> tables;
    for (std::uint32_t at : starts) {
        std::uint32_t n = 0;
        while (record(at, n)) ++n;
        if (n < kMinWidthFunctions) continue;
        std::vector<std::optional<std::uint32_t>> byNumber(n);
        for (std::uint32_t k = 0; k < n; ++k) {
            const std::uint32_t function = (game::Word(image, at + 8 * k + 4) & ~1u) - game::kRomBase;
            for (std::uint32_t p = (function + 3) & ~3u; p < function + kFunctionReach && p + 4 <= size && !byNumber[k]; p += 4)
                if (const auto target = game::PointerAt(image, p); target && std::binary_search(widths.begin(), widths.end(), *target))
                    byNumber[k] = *target;
        }
        if (byNumber[0] && std::find(tables.begin(), tables.end(), byNumber) == tables.end()) tables.push_back(byNumber);
    }
    return tables.size() == 1 ? tables.front() : std::vector<std::optional<std::uint32_t>>();
}

}  // namespace

static FontResult LocateWith(std::string_view image, std::optional<FontPlace> named, const game::PointerIndex* index);

std::size_t GlyphBytes(GlyphFormat format) { return format == GlyphFormat::Narrow2bpp ? 32 : 64; }
int CellWidth(GlyphFormat format) { return format == GlyphFormat::Wide2bpp ? 16 : 8; }

int Font::Pixel(std::uint8_t byte, int x, int y) const {
    if (x < 0 || y < 0 || x >= CellWidth(place.format) || y >= kGlyphSize) return 0;
    return PixelIn(glyphs.data() + std::size_t{byte} * GlyphBytes(place.format), place.format, x, y);
}

double Font::MeanCapital() const {
    return std::accumulate(widths.begin() + kFirstCapital, widths.begin() + kLastCapital + 1, 0) /
           double(kLastCapital - kFirstCapital + 1);
}

int Font::WidestCapital() const { return *std::max_element(widths.begin() + kFirstCapital, widths.begin() + kLastCapital + 1); }

FontResult LocateFont(std::string_view image, std::optional<FontPlace> named) {
    return LocateWith(image, named, nullptr);
}

FontResult LocateFont(std::string_view image, std::optional<FontPlace> named, const game::PointerIndex& pointers) {
    return LocateWith(image, named, &pointers);
}

static FontResult LocateWith(std::string_view image, std::optional<FontPlace> named, const game::PointerIndex* index) {
    FontResult result;
    if (image.size() < game::kHeaderSize) {
        result.why = "no fit check: the image is too short to hold a cartridge header.";
        return result;
    }
    std::vector<Located> places;
    std::vector<std::uint64_t> byTarget;  // searched only when no font is named
    if (named) {
        if (std::uint64_t{named->widths} + kTextGlyphs > image.size()) {
            result.why = "no fit check: the glyph widths at " + PrefixedHex(named->widths) + " reach past the end of the image.";
            return result;
        }
        // The format the pictures fit best; the wide one when none fits.
        FontPlace place = *named;
        place.format = GlyphFormat::Wide2bpp;
        int best = -1;
        for (GlyphFormat format : kFormats)
            if (auto edges = GlyphEdges(image, named->glyphs, format, {named->widths}))
                if (const int score = PairScore(At(image, named->widths), *edges); score > best) best = score, place.format = format;
        if (std::uint64_t{place.glyphs} + kGlyphCount * GlyphBytes(place.format) > image.size()) {
            result.why = "no fit check: the glyph pictures at " + PrefixedHex(place.glyphs) + " reach past the end of the image.";
            return result;
        }
        places.push_back({place, false});
    } else {
        byTarget = PointersByTarget(image, index);
        places = Search(image, byTarget);
    }
    if (!named)
        for (const std::optional<std::uint32_t>& widths : WidthsByNumber(image, byTarget, places)) {
            const auto it = std::find_if(places.begin(), places.end(), [&](const Located& l) { return widths && l.place.widths == *widths; });
            result.byNumber.push_back(it == places.end() ? std::nullopt : std::optional<Font>(MakeFont(image, it->place)));
        }
    // Copies of one font (the games keep several) count once.
    std::vector<Font> fonts;
    std::vector<bool> confirmed;
    for (const Located& located : places) {
        Font font = MakeFont(image, located.place);
        const auto copy = std::find_if(fonts.begin(), fonts.end(), [&](const Font& f) {
            return std::equal(f.widths.begin(), f.widths.begin() + kTextGlyphs, font.widths.begin()) && f.glyphs == font.glyphs;
        });
        if (copy != fonts.end()) {
            confirmed[static_cast<std::size_t>(copy - fonts.begin())] = confirmed[static_cast<std::size_t>(copy - fonts.begin())] || located.confirmed;
            continue;
        }
        fonts.push_back(std::move(font));
        confirmed.push_back(located.confirmed);
    }
    if (fonts.empty()) {
        result.why = "no fit check: no font was found in the image; name the offsets of its glyph pictures and glyph "
                     "widths to check it.";
        return result;
    }
    double widest = 0;
    for (std::size_t i = 0; i < fonts.size(); ++i) {
        widest = std::max(widest, MeanLetter(fonts[i]));
        result.found.push_back({fonts[i].place, MeanLetter(fonts[i]), confirmed[i]});
    }
    // The normal-size fonts: letters within half a pixel of the widest.
    for (const Font& f : fonts) {
        if (MeanLetter(f) < widest - 0.5) continue;
        if (!result.font) {
            result.font = f;
            continue;
        }
        for (std::size_t i = 0; i < kWidthCount; ++i) result.font->widths[i] = std::max(result.font->widths[i], f.widths[i]);
    }
    // menu.c: Emerald prints its messages in FONT_NORMAL alone, with no
    // speakers' fonts to choose from; its other font of that size (FONT_SHORT)
    // must not widen them.
    if (game::FamilyOfCode(image.substr(0xAC, 4)) == game::Family::Emerald &&
        result.byNumber.size() > kEmeraldNormalNumber && result.byNumber[kEmeraldNormalNumber])
        result.font = result.byNumber[kEmeraldNormalNumber];
    return result;
}

const Font* FontResult::Of(FontRole role, std::optional<game::Family> family) const {
    auto number = [&](std::size_t n) { return n < byNumber.size() && byNumber[n] ? &*byNumber[n] : nullptr; };
    const bool numbered = family == game::Family::FireRedLeafGreen || family == game::Family::Emerald;
    switch (role) {
    case FontRole::Normal: return font ? &*font : nullptr;
    case FontRole::Small: return numbered ? number(kSmallNumber) : nullptr;
    case FontRole::Narrow: return family == game::Family::Emerald ? number(kEmeraldNarrowNumber) : nullptr;
    case FontRole::BattleTiles: return nullptr;
    }
    return nullptr;
}

std::string ReadImage(const std::filesystem::path& rom) {
    if (io::FileSize(rom) > kMaxImageBytes)
        throw std::runtime_error("The image " + rom.string() + " is larger than 32 MiB.");
    return io::ReadAll(rom);
}

std::string TooWideSummary(int lines) {
    if (lines <= 0) return {};
    return std::to_string(lines) + (lines == 1 ? " line too wide" : " lines too wide");
}

std::string BelowWindowSummary(int lines) {
    if (lines <= 0) return {};
    return std::to_string(lines) + (lines == 1 ? " line below its window" : " lines below its window");
}

std::string DescribePlace(const FontPlace& place) {
    const char* format = place.format == GlyphFormat::Wide2bpp     ? "16x16, 2 bits a pixel"
                         : place.format == GlyphFormat::Narrow2bpp ? "8x16, 2 bits a pixel"
                                                                   : "8x16, 4 bits a pixel";
    return std::string("glyphs (") + format + ") at " + PlainHex(place.glyphs) + ", widths at " + PlainHex(place.widths);
}

}  // namespace quillon::fit
