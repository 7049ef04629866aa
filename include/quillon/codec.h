#pragma once
// The game's one-byte text encoding. Editor text is UTF-8 with CR LF line
// breaks; bytes travel in std::string, one char per byte.
#include <string>
#include <string_view>

namespace quillon {

// Bytes of one text (without its 0xFF terminator) to editor text.
std::string DecodeText(std::string_view bytes, bool japanese);
// Editor text to upper-case hex text of its bytes, terminator not included.
std::string EncodeText(std::string_view text, bool specialDialog);
// At least one character, all hexadecimal digits.
bool IsHex(std::string_view s);

}  // namespace quillon
