#pragma once
// Adds found texts to an offset file's text: existing sections and entries
// stay byte for byte, a text already listed (same offset) is not added again,
// and the new entries go into new sections named after where the texts lie.
#include "discover/discover.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::discover {

// At most this many entries in one new section.
inline constexpr std::size_t kMaxSectionEntries = 300;

struct Merge {
    std::string text;            // the offset file's new text
    std::size_t added = 0;       // entries added
    std::vector<const FoundText*> fresh;  // the texts added, in offset order
    std::size_t listed = 0;      // found texts whose offset the file lists already
    std::size_t sections = 0;    // sections added
};

// A new text whose use is known goes into a section named after it (its map,
// its table), in name order; the rest are grouped by 64 KiB ("Texts
// 3A0000-3AFFFF"), a group of more than kMaxSectionEntries split into runs
// named by their first and last offsets. A section of more than
// kMaxSectionEntries goes on in a second one; a name the file holds already
// gets " (2)", " (3)", ... Names of fixed length go to sections of their
// own, each with the comment line that gives the length (FixedLengthLine).
Merge MergeFoundTexts(std::string_view offsetFile, const std::vector<FoundText>& found);

// A key name from a text's first words ("Welcome to the world of"), in the
// offset file's Latin-1 bytes: letters, digits, blanks and ' - . ! ? only,
// at most 30 bytes, never holding "Parent" (which marks section nodes);
// "Text 3A0010" when no word is left.
std::string KeyNameFor(std::string_view preview, std::uint32_t offset);

}  // namespace quillon::discover
