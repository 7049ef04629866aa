#include <quillon/codec.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "core/codec/tables.h"

namespace quillon {
namespace {

constexpr std::string_view kHexDigits = "0123456789ABCDEF";

// Writes "[&H" + two upper-case digits + "]" at `w`; returns the end.
char* WriteHexTag(char* w, unsigned char b) {
    *w++ = '[';
    *w++ = '&';
    *w++ = 'H';
    *w++ = kHexDigits[b >> 4];
    *w++ = kHexDigits[b & 0x0F];
    *w++ = ']';
    return w;
}

// A byte's text padded for fixed-size copies; a byte without an entry holds
// its hex tag.
struct PackedEntry {
    std::array<char, 8> text{};
    std::uint8_t size = 0;
};
static_assert(codec::kMaxEntrySize <= sizeof(PackedEntry::text));
using PackedTable = std::array<PackedEntry, 256>;

PackedTable Pack(const codec::Table& table) {
    PackedTable packed;
    for (std::size_t b = 0; b < table.size(); ++b) {
        char* text = packed[b].text.data();
        const std::string_view entry = table[b];
        char* end = entry.empty() ? WriteHexTag(text, static_cast<unsigned char>(b))
                                  : std::copy(entry.begin(), entry.end(), text);
        packed[b].size = static_cast<std::uint8_t>(end - text);
    }
    return packed;
}

const PackedTable& PackedFor(bool japanese) {
    static const PackedTable european = Pack(codec::EuropeanTable());
    static const PackedTable japaneseTable = Pack(codec::JapaneseTable());
    return japanese ? japaneseTable : european;
}

// Each byte through the table; the byte after 0xFC or 0xFD is its parameter.
std::string DecodeBytes(std::string_view bytes, const PackedTable& table) {
    constexpr std::size_t kSlack = sizeof(PackedEntry::text) - codec::kMaxEntrySize;
    std::string out(bytes.size() * codec::kMaxEntrySize + kSlack, '\0');
    char* w = out.data();
    bool parameterPending = false;
    for (const char ch : bytes) {
        const auto b = static_cast<unsigned char>(ch);
        if (parameterPending) {
            w = WriteHexTag(w, b);
            parameterPending = false;
        } else {
            std::memcpy(w, table[b].text.data(), sizeof(PackedEntry::text));
            w += table[b].size;
            parameterPending = b == 0xFC || b == 0xFD;
        }
    }
    out.resize(static_cast<std::size_t>(w - out.data()));
    return out;
}

}  // namespace

std::string DecodeText(std::string_view bytes, bool japanese) {
    return codec::RewriteAll(DecodeBytes(bytes, PackedFor(japanese)), codec::DecodeRewrites());
}

}  // namespace quillon
