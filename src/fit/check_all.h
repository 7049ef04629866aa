#pragma once
// The whole-game check: every entry of an offset file measured in an image
// read once into memory; the entries with a line over the box.
#include "fit/measure.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::fit {

// One entry with a line over the box.
struct CheckRow {
    std::string section;
    std::string key;
    std::string offset;     // as the offset file writes it (hex)
    int line = 0;           // 0-based index of its widest line
    int width = 0;          // that line's width in pixels
    int linesOver = 0;      // how many of its lines are over the box
    std::string lineText;   // the widest line as editor text (European table)
};

struct CheckReport {
    std::string why;                    // no font: why there is no check
    bool checked = false;               // a font was found and the entries measured
    std::size_t entries = 0;            // entries measured
    std::vector<std::string> skipped;   // "Section/Key: why" of entries that could not be read
    std::vector<CheckRow> rows;         // in offset-file order
};

// Measures every entry of `offsetFileText` (sections in file order; a section
// name that repeats lists the keys of its first section, as the tree does).
// A text is read up to its 0xFF end byte, at most 10000 bytes.
CheckReport CheckTexts(std::string_view image, std::string_view offsetFileText, const Font& font,
                       const MeasureOptions& options = {});

// Reads the image (at most 32 MiB) and the offset file once, finds the font
// (or takes the named one) and checks every entry. Throws FileError for a file
// that cannot be read.
CheckReport CheckRom(const std::filesystem::path& rom, const std::filesystem::path& offsetFile,
                     std::optional<FontPlace> named = std::nullopt, const MeasureOptions& options = {});

}  // namespace quillon::fit
