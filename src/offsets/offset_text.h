#pragma once
// Offsets as users type them: decimal where a box asks for decimal, except
// that a number written with 0x is hexadecimal; and the echo that shows
// beside a box what was understood, so that no offset is misread.
#include <cstdint>
#include <filesystem>
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

// Whether a text seems to start at `offset` of the ROM: the byte before it
// ends a text (FF), is no character or is padding, and what follows reads as
// game text up to its FF. `strict` asks for words, not only a label.
bool TextStartsAt(const std::filesystem::path& rom, std::uint32_t offset, bool strict);

// A plain decimal number typed into a decimal box, when no text starts at
// its decimal reading but one does at its hexadecimal reading (100258 typed
// from the main window's "Text offset (Hex)"): that hexadecimal reading.
std::optional<std::uint32_t> HexReadingInstead(const std::filesystem::path& rom, std::string_view typed);

class Prompter;
// Asks, when HexReadingInstead finds one, whether the hexadecimal reading was
// meant, naming the text that starts there; Yes turns `typed` into it
// ("0x100258"). Before anything is shown or added.
void OfferHexReading(Prompter& prompter, const std::filesystem::path& rom, std::string& typed);

}  // namespace quillon
