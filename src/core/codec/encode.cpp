#include <quillon/codec.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "core/codec/tables.h"

namespace quillon {
namespace {

// Stands for one input byte that does not begin a well-formed UTF-8 sequence.
constexpr char32_t kInvalid = 0x110000;

struct TagByte {
    std::string_view tag;
    std::uint8_t byte;
};

constexpr std::array<TagByte, 7> kFourCharTags = {{
    {"[Lv]", 0x34}, {"[PK]", 0x53}, {"[MN]", 0x54}, {"[PO]", 0x55},
    {"[Ke]", 0x56}, {"[BL]", 0x57}, {"[OC]", 0x58},
}};

constexpr std::array<TagByte, 15> kThreeCharTags = {{
    {"[K]", 0x59}, {"[U]", 0x79}, {"[D]", 0x7A}, {"[L]", 0x7B}, {"[R]", 0x7C},
    {"[.]", 0xB0}, {"[\"]", 0xB1}, {"[']", 0xB3}, {"[m]", 0xB5}, {"[f]", 0xB6},
    {"[x]", 0xB9}, {"[>]", 0xEF}, {"[u]", 0xF7}, {"[d]", 0xF8}, {"[l]", 0xF9},
}};

// Value of a hexadecimal digit of either case, or -1.
constexpr int HexValue(char32_t c) {
    if (c >= '0' && c <= '9') return static_cast<int>(c - '0');
    if (c >= 'A' && c <= 'F') return static_cast<int>(c - 'A' + 10);
    if (c >= 'a' && c <= 'f') return static_cast<int>(c - 'a' + 10);
    return -1;
}

struct CodePoint {
    char32_t value;
    std::size_t length;  // bytes taken from the input
};

// The code point starting at s[i]; a byte that does not begin a well-formed
// sequence (truncated, overlong, surrogate, out of range) is taken alone.
CodePoint NextCodePoint(std::string_view s, std::size_t i) {
    const auto lead = static_cast<unsigned char>(s[i]);
    if (lead < 0x80) return {lead, 1};
    std::size_t length = 0;
    char32_t value = 0;
    char32_t minimum = 0;
    if ((lead & 0xE0) == 0xC0) {
        length = 2, value = lead & 0x1Fu, minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3, value = lead & 0x0Fu, minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4, value = lead & 0x07u, minimum = 0x10000;
    } else {
        return {kInvalid, 1};
    }
    if (s.size() - i < length) return {kInvalid, 1};
    for (std::size_t k = 1; k < length; ++k) {
        const auto next = static_cast<unsigned char>(s[i + k]);
        if ((next & 0xC0) != 0x80) return {kInvalid, 1};
        value = value << 6 | (next & 0x3Fu);
    }
    if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return {kInvalid, 1};
    return {value, length};
}

// Walks the rewritten UTF-8 text character by character; every step yields
// one byte. Tags, prefixes and line breaks are ASCII and no byte of a longer
// character is, so comparing bytes answers as comparing characters would,
// also near the end of the text. Only single characters and the skipped sixth
// character of a hex tag need their UTF-8 length.
class Walker {
public:
    Walker(std::string_view text, bool specialDialog, bool hex)
        : text_(text), specialDialog_(specialDialog), hex_(hex) {}

    std::string Run() {
        std::string out(text_.size() * (hex_ ? 2 : 1), '\0');  // each step takes at least one input byte
        w_ = out.data();
        while (p_ < text_.size()) {
            Step();
        }
        out.resize(static_cast<std::size_t>(w_ - out.data()));
        return out;
    }

private:
    std::size_t Left() const { return text_.size() - p_; }
    char32_t At(std::size_t i) const { return static_cast<unsigned char>(text_[p_ + i]); }

    // The text at p starts with `ascii`.
    bool Is(std::string_view ascii) const {
        if (Left() < ascii.size()) return false;
        for (std::size_t i = 0; i < ascii.size(); ++i) {
            if (text_[p_ + i] != ascii[i]) return false;
        }
        return true;
    }

    void Emit(std::uint8_t byte, std::size_t consumed) {
        static constexpr std::string_view kDigits = "0123456789ABCDEF";
        if (hex_) {
            *w_++ = kDigits[byte >> 4];
            *w_++ = kDigits[byte & 0x0F];
        } else {
            *w_++ = static_cast<char>(byte);
        }
        p_ += std::min(consumed, Left());
    }

    void Step() {
        const auto lead = static_cast<unsigned char>(text_[p_]);
        switch (lead) {
            case '[':
                if (Bracket()) return;
                break;
            case '\\':
                if (Prefix()) return;
                break;
            case '\r':
                if (LineBreak()) return;
                break;
            case '"':
                Emit(quoteOpen_ ? 0xB2 : 0xB1, 1);
                quoteOpen_ = !quoteOpen_;
                return;
            default:
                break;
        }
        if (lead < 0x80) {
            Emit(codec::EncodeChar(lead), 1);
            return;
        }
        const CodePoint c = NextCodePoint(text_, p_);
        Emit(codec::EncodeChar(c.value), c.length);
    }

    bool MatchTag(std::span<const TagByte> tags) {
        for (const TagByte& t : tags) {
            if (Is(t.tag)) {
                Emit(t.byte, t.tag.size());
                return true;
            }
        }
        return false;
    }

    // Four-character tags, the hex tag, then three-character tags.
    bool Bracket() { return MatchTag(kFourCharTags) || HexTag() || MatchTag(kThreeCharTags); }

    // "[&H" and two digits; the sixth character is skipped unread. With one
    // character left after "[&H", that one digit alone is the byte.
    bool HexTag() {
        if (Left() < 4 || !Is("[&H")) return false;
        const int high = HexValue(At(3));
        if (high < 0) return false;
        if (Left() == 4) {
            Emit(static_cast<std::uint8_t>(high), 4);
            return true;
        }
        const int low = HexValue(At(4));
        if (low < 0) return false;
        const std::size_t sixth = Left() > 5 ? NextCodePoint(text_, p_ + 5).length : 0;
        Emit(static_cast<std::uint8_t>(high << 4 | low), 5 + sixth);
        return true;
    }

    bool Prefix() {
        if (Is("\\c")) {
            Emit(0xFC, 2);
            return true;
        }
        if (Is("\\v")) {
            Emit(0xFD, 2);
            return true;
        }
        return false;
    }

    bool LineBreak() {
        if (!Is("\r\n")) return false;
        if (specialDialog_) {
            Emit(0xFE, 2);
        } else if (Is("\r\n\r\n")) {
            Emit(0xFB, 4);
            lineBreakSeen_ = false;
        } else {
            Emit(lineBreakSeen_ ? 0xFA : 0xFE, 2);
            lineBreakSeen_ = true;
        }
        return true;
    }

    std::string_view text_;
    bool specialDialog_;
    bool hex_;
    std::size_t p_ = 0;
    char* w_ = nullptr;
    bool quoteOpen_ = false;
    bool lineBreakSeen_ = false;
};

}  // namespace

std::string EncodeText(std::string_view text, bool specialDialog) {
    const std::string rewritten = codec::RewriteAll(std::string(text), codec::EncodeRewrites());
    return Walker(rewritten, specialDialog, true).Run();
}

std::string codec::EncodeBytes(std::string_view text, bool specialDialog) {
    const std::string rewritten = RewriteAll(std::string(text), EncodeRewrites());
    return Walker(rewritten, specialDialog, false).Run();
}

bool IsHex(std::string_view s) {
    return !s.empty() && std::ranges::all_of(s, [](char c) { return HexValue(static_cast<unsigned char>(c)) >= 0; });
}

}  // namespace quillon
