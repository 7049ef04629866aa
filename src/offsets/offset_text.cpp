#include "offsets/offset_text.h"
#include "core/hex_text.h"

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

}  // namespace quillon
