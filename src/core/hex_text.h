#pragma once
// Numbers as upper-case hex digits, as messages and offset files show them.
#include <cctype>
#include <charconv>
#include <cstdint>
#include <string>

namespace quillon {

// No leading zeros beyond `width` digits: 1000000 gives "F4240", and 0x1234
// with a width of 6 gives "001234".
inline std::string PlainHex(std::uint64_t value, std::size_t width = 1) {
    char buf[20];
    std::string out(buf, std::to_chars(buf, buf + sizeof buf, value, 16).ptr);
    for (char& c : out) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return out.size() < width ? std::string(width - out.size(), '0') + out : out;
}

// With the C prefix: "0x66F4".
inline std::string PrefixedHex(std::uint64_t value) { return "0x" + PlainHex(value); }

}  // namespace quillon
