#pragma once
// What the editor marks in a text: the tags that encode to control bytes,
// bracketed texts that look like tags but are none, and characters that have
// no byte in the European table (they would be saved as 0x00).
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class Session;

struct TextMark {
    enum Kind { Tag, NotATag, NoByte } kind;
    std::size_t start;   // byte offset into the text
    std::size_t length;  // bytes
};

// The marks of `text` (editor text, UTF-8), in order.
std::vector<TextMark> MarkText(std::string_view text);

// A short explanation of a mark, for a tooltip.
std::string MarkExplanation(std::string_view text, const TextMark& mark);

// Before a save: when the editor text holds marks other than tags, asks
// whether to save anyway, naming them. True when saving may go on.
bool ConfirmUnencodable(Session& session);

}  // namespace quillon
