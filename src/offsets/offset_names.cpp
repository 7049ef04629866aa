#include "offsets/offset_names.h"

namespace quillon {
namespace {

// Length of the well-formed UTF-8 sequence at s[i], or 0.
std::size_t SequenceAt(std::string_view s, std::size_t i) {
    const auto lead = static_cast<unsigned char>(s[i]);
    if (lead < 0x80) return 1;
    std::size_t length = 0;
    unsigned min = 0;
    if (lead >= 0xC2 && lead <= 0xDF) length = 2, min = 0x80;
    else if (lead >= 0xE0 && lead <= 0xEF) length = 3, min = 0x800;
    else if (lead >= 0xF0 && lead <= 0xF4) length = 4, min = 0x10000;
    if (length == 0 || s.size() - i < length) return 0;
    unsigned value = lead & (0x7Fu >> length);
    for (std::size_t k = 1; k < length; ++k) {
        const auto next = static_cast<unsigned char>(s[i + k]);
        if ((next & 0xC0) != 0x80) return 0;
        value = value << 6 | (next & 0x3Fu);
    }
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    return value < min || value > 0x10FFFF || surrogate ? 0 : length;
}

void AppendLatin1(std::string& out, unsigned char c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
        return;
    }
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
}

}  // namespace

bool IsUtf8(std::string_view bytes) {
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t n = SequenceAt(bytes, i);
        if (n == 0) return false;
        i += n;
    }
    return true;
}

std::string ReadableName(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 4);
    for (std::size_t i = 0; i < bytes.size();) {
        if (const std::size_t n = SequenceAt(bytes, i)) {
            out.append(bytes, i, n);
            i += n;
        } else {
            AppendLatin1(out, static_cast<unsigned char>(bytes[i++]));
        }
    }
    return out;
}

std::string NameBytes(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const std::size_t n = SequenceAt(utf8, i);
        const auto lead = static_cast<unsigned char>(utf8[i]);
        if (n == 1) {
            out += utf8[i++];
        } else if (n == 2 && lead <= 0xC3) {
            out += static_cast<char>((lead & 0x03) << 6 | (static_cast<unsigned char>(utf8[i + 1]) & 0x3F));
            i += 2;
        } else {
            return std::string(utf8);  // a character beyond Latin-1, or bytes that are not UTF-8
        }
    }
    return out;
}

}  // namespace quillon
