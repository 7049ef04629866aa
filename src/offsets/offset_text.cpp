#include "offsets/offset_text.h"
#include "core/hex_text.h"

#include "app/prompter.h"
#include "core/file_io.h"
#include "game/text_shape.h"

#include <quillon/codec.h>

#include <charconv>
#include <cstdio>

namespace quillon {
namespace {

std::string_view Trim(std::string_view s) {
    const auto first = s.find_first_not_of(' ');
    if (first == std::string_view::npos) return {};
    return s.substr(first, s.find_last_not_of(' ') - first + 1);
}

std::optional<std::uint32_t> Digits(std::string_view s, int base) {
    std::uint32_t value = 0;
    if (s.empty()) return std::nullopt;
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value, base);
    if (ec != std::errc() || end != s.data() + s.size()) return std::nullopt;
    return value;
}

bool HexPrefixed(std::string_view s) { return s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X'); }

}  // namespace

std::optional<std::uint32_t> ParseDecimalOrHexOffset(std::string_view text) {
    text = Trim(text);
    if (HexPrefixed(text)) return Digits(text.substr(2), 16);
    return Digits(text, 10);
}

std::string DecimalBoxEcho(std::string_view text) {
    text = Trim(text);
    if (text.empty()) return {};
    const auto value = ParseDecimalOrHexOffset(text);
    if (!value) return "not a number";
    return "= " + (HexPrefixed(text) ? std::to_string(*value) : PrefixedHex(*value));
}

std::string HexBoxEcho(std::string_view text) {
    text = Trim(text);
    if (text.empty()) return {};
    const auto value = Digits(HexPrefixed(text) ? text.substr(2) : text, 16);
    if (!value) return "not a hex number";
    return "= " + std::to_string(*value);
}

bool TextStartsAt(const std::filesystem::path& rom, std::uint32_t offset, bool strict) {
    if (offset < 2) return false;
    std::string window;
    try {
        window = io::ReadAt(rom, offset - 2, game::kMaxTextLength + 3);
    } catch (const std::exception&) {
        return false;
    }
    if (window.size() < 3) return false;
    // Before a text: the end of another, a byte that is no character, or
    // padding (two zeros; one zero alone is a blank inside a text).
    const auto before = static_cast<unsigned char>(window[1]), earlier = static_cast<unsigned char>(window[0]);
    const bool padding = before == 0x00 && (earlier == 0x00 || earlier == 0xFF);
    if (before != 0xFF && !padding && game::ByteKinds()[before] != game::ByteKind::None) return false;
    const auto shape = game::MeasureText(window, 2);
    return shape && (game::LooksLikeText(*shape) || (!strict && game::LooksLikeLabel(*shape)));
}

std::optional<std::uint32_t> HexReadingInstead(const std::filesystem::path& rom, std::string_view typed) {
    typed = Trim(typed);
    if (typed.empty() || HexPrefixed(typed)) return std::nullopt;
    const auto decimal = Digits(typed, 10);
    const auto hex = Digits(typed, 16);
    if (!decimal || !hex || TextStartsAt(rom, *decimal, false) || !TextStartsAt(rom, *hex, true)) return std::nullopt;
    return hex;
}

void OfferHexReading(Prompter& prompter, const std::filesystem::path& rom, std::string& typed) {
    const auto hex = HexReadingInstead(rom, typed);
    if (!hex) return;
    const std::string number(Trim(typed));
    std::string bytes = io::ReadAt(rom, *hex, 48);
    std::string preview = DecodeText(bytes.substr(0, bytes.find('\xFF')), false);
    preview = preview.substr(0, preview.find('\r'));  // its first line
    if (preview.size() > 40) {
        std::size_t cut = 40;
        while (cut > 0 && (static_cast<unsigned char>(preview[cut]) & 0xC0) == 0x80) --cut;
        preview = preview.substr(0, cut) + "...";
    }
    const std::string asHex = PrefixedHex(*hex);
    if (prompter.AskYesNo("No text starts at " + number + " read as a decimal number (" +
                              PrefixedHex(*Digits(number, 10)) + "), but one starts at " + asHex + ":\r\n\"" +
                              preview + "\"\r\n\r\nDid you mean the hexadecimal offset " + asHex + "?",
                          "Decimal or hexadecimal?"))
        typed = asHex;
}

}  // namespace quillon
