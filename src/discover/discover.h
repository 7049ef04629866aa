#pragma once
// Finds the texts of a ROM image by itself, as the game reaches them: texts
// that a script operand, a table slot or a literal pool of program code
// points at, and that decode as text. Nothing inside program code or picture
// and sound data is taken.
#include "game/game_model.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {
class Progress;
}

namespace quillon::discover {

struct FoundText {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;             // bytes before the 0xFF
    std::string preview;                  // the first characters, decoded, on one line
    std::vector<game::Place> pointers;    // every place that holds its pointer, in file order
    int confidence = 0;                   // 0-100
    std::string section;                  // where the game uses it (Latin-1); empty: not known
    game::TextContext context = game::TextContext::Other;
    // A name in a record of a table of names: never moved, never longer
    // than its field. 0 for a text.
    std::uint32_t fixedLength = 0;        // bytes of the field, end mark included
    std::uint8_t padding = 0;             // what fills the field behind the end mark
    std::uint32_t recordStride = 0;       // bytes from one record of its table to the next
};

// Texts below this confidence are not reported.
inline constexpr int kMinConfidence = 50;

// Reads `image` into a game model and takes its texts and the names of its
// tables of names, in offset order. A text inside a name's field is left out.
// Throws Cancelled when `progress` asks to stop.
[[nodiscard]] std::vector<FoundText> DiscoverTexts(std::string_view image, Progress* progress = nullptr);
// The same over a model read from `image` already.
[[nodiscard]] std::vector<FoundText> DiscoverTexts(const game::GameModel& model, std::string_view image);

// How the bytes before a text end the run before it: a pointer into the
// middle of a run of text needs more evidence than one at a run's start.
enum class Boundary {
    Terminator,  // 0xFF: the previous text's end
    NotText,     // a byte without table entry, or the image's start
    Blank,       // 0x00: padding or a space
    InsideText   // a character: the offset lies inside a longer run
};
[[nodiscard]] Boundary BoundaryBefore(std::string_view image, std::uint32_t offset);

// The preview: decoded text, line breaks as blanks, at most `maxChars` characters.
[[nodiscard]] std::string Preview(std::string_view bytes, std::size_t maxChars = 60);

// The section a text goes into: the map that shows it ("Pallet Town"), its
// trainer battles ("Pallet Town - Trainer battles"), the kind of table that
// holds it, "Common scripts"; empty when none of these is known. Latin-1.
[[nodiscard]] std::string SectionFor(const game::GameModel& model, const game::TextUse& use);

}  // namespace quillon::discover
