#pragma once
// The whole-game check: every entry of an offset file measured in an image
// read once into memory against the box of its context; the entries with a
// line over it, or over it only when names and buffers are at their longest.
#include "fit/boxes.h"
#include "fit/measure.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::fit {

// One line of a text that does not fit.
struct Finding {
    int line = 0;           // 0-based
    int width = 0;          // its width: as usual for `over`, at the longest for `names`
    bool names = false;     // too wide only with names and buffers at their longest
    std::string lineText;   // the line as editor text (European table)
};

// One entry with a line that does not fit.
struct CheckRow {
    std::string section;
    std::string key;
    std::string offset;     // as the offset file writes it (hex)
    Box box;                // the window it shows in
    std::vector<Finding> findings;  // in line order
    bool over = false;      // a line is over whatever names and buffers hold

    // The finding to show first: the widest over line, else the widest of the others.
    const Finding& First() const;
};

struct CheckReport {
    std::string why;                    // no font: why there is no check
    bool checked = false;               // a font was found and the entries measured
    std::size_t entries = 0;            // entries measured
    std::size_t over = 0;               // entries with a line over
    std::size_t names = 0;              // entries over only with names at their longest
    int messageBox = kBoxWidth;         // the width of the game's message box
    std::vector<std::string> skipped;   // "Section/Key: why" of entries that could not be read
    std::vector<CheckRow> rows;         // in offset-file order
    std::vector<FoundFont> fonts;       // the fonts the check found
};

// Measures every entry of `offsetFileText` (sections in file order; a section
// name that repeats lists the keys of its first section, as the tree does).
// A text is read up to its 0xFF end byte, at most 10000 bytes, and measured
// in the font its box names; a text whose font `fonts` does not tell apart
// for sure is left out. `fonts` holds a message font.
[[nodiscard]] CheckReport CheckTexts(std::string_view image, std::string_view offsetFileText, const FontResult& fonts,
                                     const TextBoxes& boxes, std::optional<std::string> playerName = std::nullopt);

// Reads the image (at most 32 MiB) and the offset file once, finds the font
// (or takes the named one) and the boxes of the texts, and checks every
// entry. Throws FileError for a file that cannot be read.
[[nodiscard]] CheckReport CheckRom(const std::filesystem::path& rom, const std::filesystem::path& offsetFile,
                     std::optional<FontPlace> named = std::nullopt, std::optional<std::string> playerName = std::nullopt);

}  // namespace quillon::fit
