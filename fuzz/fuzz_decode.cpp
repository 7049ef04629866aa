// Decoding arbitrary bytes with both tables, and the round trip of bytes whose
// text re-encodes to the same bytes.
#include <quillon/codec.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

bool IsValidUtf8(std::string_view s) {
    for (std::size_t i = 0; i < s.size();) {
        const auto lead = static_cast<unsigned char>(s[i]);
        const std::size_t length = lead < 0x80 ? 1 : (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3 : 0;
        if (length == 0 || s.size() - i < length || (length == 2 && lead < 0xC2)) return false;
        for (std::size_t k = 1; k < length; ++k) {
            if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) return false;
        }
        i += length;
    }
    return true;
}

std::string Hex(std::string_view bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out;
    for (const char c : bytes) {
        out += kDigits[static_cast<unsigned char>(c) >> 4];
        out += kDigits[static_cast<unsigned char>(c) & 15];
    }
    return out;
}

// The input turned into bytes whose European decoding encodes back to them:
// 0x2C and 0xB3 share their text with 0xAF and 0xB4 and are left out, as is
// 0xFF (its "\x" is no tag); straight double quotes take the byte the
// encoder alternates to; a single line break is 0xFE first and after an empty
// line, else 0xFA, and is never directly followed by another line break or an
// empty line (the encoder would read the two as one empty line). A parameter
// after 0xFC or 0xFD is kept whatever its value, since it decodes as a hex tag.
std::string RoundTripBytes(std::string_view input) {
    std::string bytes;
    bool parameter = false;
    bool quoteOpen = false;
    bool lineBreakSeen = false;
    bool afterSingleBreak = false;
    for (const char c : input) {
        const auto b = static_cast<unsigned char>(c);
        if (parameter) {
            bytes += c;
            parameter = false;
            afterSingleBreak = false;
            continue;
        }
        switch (b) {
            case 0x2C:
            case 0xB3:
            case 0xFF:
                continue;
            case 0xB1:
            case 0xB2:
                bytes += static_cast<char>(quoteOpen ? 0xB2 : 0xB1);
                quoteOpen = !quoteOpen;
                break;
            case 0xFA:
            case 0xFE:
                if (afterSingleBreak) continue;
                bytes += static_cast<char>(lineBreakSeen ? 0xFA : 0xFE);
                lineBreakSeen = true;
                afterSingleBreak = true;
                continue;
            case 0xFB:
                if (afterSingleBreak) continue;
                bytes += c;
                lineBreakSeen = false;
                continue;
            default:
                bytes += c;
                parameter = b == 0xFC || b == 0xFD;
                break;
        }
        afterSingleBreak = false;
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    for (const bool japanese : {false, true}) {
        const std::string text = quillon::DecodeText(input, japanese);
        // A byte's text is at most a hex tag; every text is UTF-8.
        if (text.size() > 6 * size || !IsValidUtf8(text)) __builtin_trap();
        if (input.empty() != text.empty()) __builtin_trap();
    }
    const std::string bytes = RoundTripBytes(input);
    if (quillon::EncodeText(quillon::DecodeText(bytes, false), false) != Hex(bytes)) __builtin_trap();
    return 0;
}
