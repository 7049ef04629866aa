#include "game/text_shape.h"

#include "core/codec/tables.h"

#include <algorithm>

namespace quillon::game {
namespace {

// The small letters a to z of the European table.
constexpr std::pair<unsigned char, unsigned char> kPlainLower = {0xD5, 0xEE};
constexpr std::pair<unsigned char, unsigned char> kPlainUpper = {0xBB, 0xD4};

// The bytes that follow 0xFC for each of its codes, the code included, as
// the games' text printer skips them; 0: no such code.
constexpr std::array<std::uint8_t, 25> kExtendedLengths = {1, 2, 2, 2, 4, 2, 2, 1, 2, 1, 1, 3, 2,
                                                           2, 2, 1, 3, 2, 2, 2, 2, 1, 1, 1, 1};

// Code point of a table entry that is one Latin-1 character, else -1.
int SingleChar(std::string_view s) {
    if (s.size() == 1) return static_cast<unsigned char>(s[0]);
    if (s.size() == 2 && (s[0] == '\xC2' || s[0] == '\xC3'))
        return (static_cast<unsigned char>(s[0]) & 0x1F) << 6 | (static_cast<unsigned char>(s[1]) & 0x3F);
    return -1;
}

ByteKind KindOf(int byte, std::string_view entry) {
    if (byte == 0xFF) return ByteKind::End;
    if (byte == 0xFC || byte == 0xFD) return ByteKind::Control;
    if (byte == 0xFA || byte == 0xFB || byte == 0xFE) return ByteKind::Break;
    if (entry.empty()) return ByteKind::None;
    const int c = SingleChar(entry);
    if (c < 0) return ByteKind::Symbol;  // tags such as [PK] or [...]
    if (c == ' ') return ByteKind::Space;
    if (c >= '0' && c <= '9') return ByteKind::Digit;
    if (c >= 'A' && c <= 'Z') return ByteKind::Upper;
    if (c >= 'a' && c <= 'z') return ByteKind::Lower;
    if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return ByteKind::Upper;
    if (c >= 0xDF && c != 0xF7) return ByteKind::Lower;
    if (c == 0xA1 || c == 0xBF) return ByteKind::Punct;  // ¡ ¿
    if (c == '$' || c == '%' || c == '&' || c == '+' || c == '=' || c >= 0x80) return ByteKind::Symbol;
    return ByteKind::Punct;
}

std::array<ByteKind, 256> BuildKinds() {
    std::array<ByteKind, 256> kinds{};
    const codec::Table& table = codec::EuropeanTable();
    for (int b = 0; b < 256; ++b) kinds[b] = KindOf(b, table[b]);
    return kinds;
}

std::array<bool, 256> BuildVowels() {
    std::array<bool, 256> vowels{};
    const std::u32string_view set = U"AEIOUYaeiouyÀÁÂÄÈÉÊËÌÍÎÏÒÓÔÖÙÚÛÜàáâäèéêëìíîïòóôöùúûü";
    const codec::Table& table = codec::EuropeanTable();
    for (int b = 0; b < 256; ++b) {
        const int c = SingleChar(table[b]);
        vowels[b] = c >= 0 && set.find(static_cast<char32_t>(c)) != std::u32string_view::npos;
    }
    return vowels;
}

const std::array<bool, 256>& Vowels() {
    static const std::array<bool, 256> vowels = BuildVowels();
    return vowels;
}

}  // namespace

const std::array<ByteKind, 256>& ByteKinds() {
    static const std::array<ByteKind, 256> kinds = BuildKinds();
    return kinds;
}

std::optional<TextShape> MeasureText(std::string_view image, std::uint32_t start) {
    const auto& kinds = ByteKinds();
    const auto& vowels = Vowels();
    TextShape s;
    const std::size_t limit = std::min<std::size_t>(image.size(), std::size_t{start} + kMaxTextLength + 1);
    ByteKind previous = ByteKind::None;
    bool previousPlain = false;
    std::uint32_t run = 0;  // letters in a row
    for (std::size_t i = start; i < limit; ++i) {
        const auto b = static_cast<unsigned char>(image[i]);
        const ByteKind k = kinds[b];
        if (i == start) s.first = k;
        switch (k) {
            case ByteKind::None: return std::nullopt;
            case ByteKind::End:
                s.length = static_cast<std::uint32_t>(i - start);
                s.periodic = s.length >= 8 && image.substr(start, 6) == image.substr(start + 2, 6);
                return s;
            case ByteKind::Upper:
            case ByteKind::Lower:
                ++s.letters;
                s.plain += (b >= kPlainLower.first && b <= kPlainLower.second) || (b >= kPlainUpper.first && b <= kPlainUpper.second);
                s.vowels += vowels[b];
                if (k == ByteKind::Upper) ++s.upper;
                // An accented small letter inside capitals is how the games
                // spell some names ("POKéMON"); only a plain one counts.
                if (k == ByteKind::Upper && previous == ByteKind::Lower && previousPlain) ++s.innerCaps;
                if (++run == 2) ++s.words;
                break;
            case ByteKind::Digit: ++s.digits; break;
            case ByteKind::Space: ++s.spaces; break;
            case ByteKind::Punct: ++s.punct; break;
            case ByteKind::Symbol: ++s.symbols; break;
            case ByteKind::Break: ++s.breaks; break;
            case ByteKind::Control: {
                ++s.controls;
                // 0xFD names a buffer in one byte; 0xFC's next byte picks a
                // code that takes its own number of parameter bytes. They may
                // hold any value but the terminator.
                std::size_t params = 1;
                if (b == 0xFC) {
                    if (i + 1 >= limit) return std::nullopt;
                    const auto code = static_cast<unsigned char>(image[i + 1]);
                    if (code >= kExtendedLengths.size() || kExtendedLengths[code] == 0) return std::nullopt;
                    params = kExtendedLengths[code];
                }
                for (std::size_t n = 0; n < params; ++n)
                    if (++i >= limit || static_cast<unsigned char>(image[i]) == 0xFF) return std::nullopt;
                s.controlBytes += static_cast<std::uint32_t>(params + 1);
                break;
            }
        }
        // 0xF7 to 0xF9 show a symbol that the byte after them picks.
        if (b >= 0xF7 && b <= 0xF9 && i + 1 < limit && static_cast<unsigned char>(image[i + 1]) != 0xFF) ++i;
        if (k != ByteKind::Upper && k != ByteKind::Lower) run = 0;
        previous = k;
        previousPlain = b >= kPlainLower.first && b <= kPlainLower.second;
    }
    return std::nullopt;
}

bool LooksLikeText(const TextShape& s) {
    if (s.letters < 2 || s.words == 0 || s.plain * 2 < s.letters || s.plain < 2 || s.periodic) return false;
    const std::uint32_t characters = s.length - s.controlBytes + s.controls;  // a control with its parameters counts once
    const std::uint32_t plain = s.letters + s.digits + s.spaces + s.punct + s.breaks;
    if (plain * 5 < characters * 4) return false;
    if (s.letters >= 6 && (s.vowels * 5 < s.letters || s.vowels * 10 > s.letters * 7)) return false;
    return s.innerCaps * 8 <= s.letters;
}

bool LooksLikeLabel(const TextShape& s) {
    if (s.length == 0 || s.periodic || s.plain * 2 < s.letters) return false;
    return s.letters + s.digits + s.controls + s.punct > 0;
}

int TextScore(const TextShape& s) {
    int score = 40;
    if (s.first == ByteKind::Upper || s.first == ByteKind::Control || s.first == ByteKind::Digit) score += 20;
    if (s.words >= 2) score += 20;
    if (s.spaces > 0 || s.breaks > 0) score += 10;
    if (s.innerCaps == 0) score += 10;
    return std::min(score, 100);
}

}  // namespace quillon::game
