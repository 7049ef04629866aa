#pragma once
// Sections of names of fixed length in an offset file. Such a section holds
// one comment line, which readers of plain offset files pass over:
//
//   [Item names]
//   ; Fixed length: 14 bytes, padded with 00, records of 44 bytes
//   MASTER BALL=3DB054
//
// Each entry of the section is then a name in a field of that many bytes,
// its end mark (0xFF) included, filled behind the end mark with the padding
// byte. A name is written in its field only: never moved, never longer.
#include "core/ini_document.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

struct FixedLength {
    std::uint32_t bytes = 0;    // of the field, end mark included
    std::uint8_t padding = 0;
    std::uint32_t stride = 0;   // from one record to the next; 0 when not told

    [[nodiscard]] std::uint32_t Letters() const { return bytes - 1; }
};

// The comment line, without its line end.
[[nodiscard]] std::string FixedLengthLine(const FixedLength& fixed);
// The fixed length a comment line gives; nothing for any other line.
[[nodiscard]] std::optional<FixedLength> ParseFixedLengthLine(std::string_view line);
// The fixed length of a section, from the first such line in it.
[[nodiscard]] std::optional<FixedLength> SectionFixedLength(const ini::IniDocument& doc,
                                                            const ini::IniDocument::Section& section);
// The fixed length of an entry at `offset`: that of the first section with
// such a line that lists the offset.
[[nodiscard]] std::optional<FixedLength> FixedLengthAt(std::string_view fileText, std::uint32_t offset);

// What a name's field becomes, or why it cannot: `field` is the field's
// bytes now, `name` the new name's bytes without end mark.
struct NameWrite {
    std::string bytes;    // the name, 0xFF, then the padding to the field's end
    std::string refusal;  // empty when it can be written
};
[[nodiscard]] NameWrite WriteName(std::string_view field, std::string_view name, const FixedLength& fixed);

}  // namespace quillon
