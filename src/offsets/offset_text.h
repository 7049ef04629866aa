#pragma once
// Offsets as users type them: decimal where a box asks for decimal, except
// that a number written with 0x is hexadecimal; and the echo that shows
// beside a box what was understood, so that no offset is misread.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

// A decimal whole number, or "0x" and hexadecimal digits, from 0 to
// 0xFFFFFFFF; blanks around it allowed. Nothing for anything else.
std::optional<std::uint32_t> ParseDecimalOrHexOffset(std::string_view text);

// The echo of a decimal box: "= 0x186F5" for 100085, "= 100085" for
// 0x186F5, "not a number" for anything else, nothing for an empty box.
std::string DecimalBoxEcho(std::string_view text);

// The echo of a hexadecimal box: "= 100085" for 186F5, "not a hex number"
// for anything else, nothing for an empty box.
std::string HexBoxEcho(std::string_view text);

}  // namespace quillon
