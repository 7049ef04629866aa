// Hex text conversions: the form in which byte sequences travel between the
// parts of the program.
#include <quillon/errors.h>
#include <quillon/rom.h>

#include <cstdint>
#include <string>

namespace quillon {
namespace {

constexpr char kDigits[] = "0123456789ABCDEF";

int DigitValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

[[noreturn]] void Mismatch(std::string_view what, std::string_view text) {
    throw TypeMismatch("Type mismatch: '" + std::string(text) + "' is not " + std::string(what));
}

}  // namespace

std::int32_t HexToLong(std::string_view hex) {
    if (hex.size() > 8) Mismatch("a hex number of at most eight digits", hex);
    std::uint32_t value = 0;
    for (char c : hex) {
        int d = DigitValue(c);
        if (d < 0) Mismatch("a hex number", hex);
        value = value << 4 | static_cast<std::uint32_t>(d);
    }
    return static_cast<std::int32_t>(value);
}

std::string PadHex(std::int64_t value) {
    // Negative values print as their 32-bit two's complement, as offsets do.
    auto v = static_cast<std::uint64_t>(value < 0 ? static_cast<std::uint32_t>(value) : value);
    std::string out;
    do {
        out.insert(out.begin(), kDigits[v & 0xF]);
        v >>= 4;
    } while (v != 0);
    if (out.size() % 2) out.insert(out.begin(), '0');
    return out;
}

std::string ByteHex(char byte) {
    auto b = static_cast<unsigned char>(byte);
    return {kDigits[b >> 4], kDigits[b & 0xF]};
}

char HexByte(std::string_view hex) {
    std::int32_t v = HexToLong(hex);
    if (v < 0 || v > 0xFF) Mismatch("a byte value", hex);
    return static_cast<char>(v);
}

std::string HexToBytes(std::string_view hex) {
    std::string out;
    out.reserve((hex.size() + 1) / 2);
    for (std::size_t i = 0; i < hex.size(); i += 2) out.push_back(HexByte(hex.substr(i, 2)));
    return out;
}

std::string PointerHex(std::string_view offset) {
    if (offset.empty() || offset.size() > 6) Mismatch("an offset of one to six hex digits", offset);
    std::string d(6 - offset.size(), '0');
    for (char c : offset) {
        int v = DigitValue(c);
        if (v < 0) Mismatch("an offset of one to six hex digits", offset);
        d.push_back(kDigits[v]);
    }
    return d.substr(4, 2) + d.substr(2, 2) + d.substr(0, 2) + "08";
}

}  // namespace quillon
