#include "discover/text_shape.h"

#include "core/codec/tables.h"

#include <algorithm>

namespace quillon::discover {
namespace {

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
    std::uint32_t run = 0;  // letters in a row
    for (std::size_t i = start; i < limit; ++i) {
        const auto b = static_cast<unsigned char>(image[i]);
        const ByteKind k = kinds[b];
        if (i == start) s.first = k;
        switch (k) {
            case ByteKind::None: return std::nullopt;
            case ByteKind::End: s.length = static_cast<std::uint32_t>(i - start); return s;
            case ByteKind::Upper:
            case ByteKind::Lower:
                ++s.letters;
                s.vowels += vowels[b];
                if (k == ByteKind::Upper) ++s.upper;
                if (k == ByteKind::Upper && previous == ByteKind::Lower) ++s.innerCaps;
                if (++run == 2) ++s.words;
                break;
            case ByteKind::Digit: ++s.digits; break;
            case ByteKind::Space: ++s.spaces; break;
            case ByteKind::Punct: ++s.punct; break;
            case ByteKind::Symbol: ++s.symbols; break;
            case ByteKind::Break: ++s.breaks; break;
            case ByteKind::Control:
                ++s.controls;
                // The parameter byte may be any value but the terminator.
                if (++i >= limit || static_cast<unsigned char>(image[i]) == 0xFF) return std::nullopt;
                break;
        }
        if (k != ByteKind::Upper && k != ByteKind::Lower) run = 0;
        previous = k;
    }
    return std::nullopt;
}

bool LooksLikeText(const TextShape& s) {
    if (s.letters < 2 || s.words == 0) return false;
    const std::uint32_t characters = s.length - s.controls;  // a control and its parameter count once
    const std::uint32_t plain = s.letters + s.digits + s.spaces + s.punct + s.breaks;
    if (plain * 5 < characters * 4) return false;
    if (s.letters >= 6 && (s.vowels * 5 < s.letters || s.vowels * 10 > s.letters * 7)) return false;
    return s.innerCaps * 8 <= s.letters;
}

int TextScore(const TextShape& s) {
    int score = 40;
    if (s.first == ByteKind::Upper || s.first == ByteKind::Control || s.first == ByteKind::Digit) score += 20;
    if (s.words >= 2) score += 20;
    if (s.spaces > 0 || s.breaks > 0) score += 10;
    if (s.innerCaps == 0) score += 10;
    return std::min(score, 100);
}

}  // namespace quillon::discover
