#pragma once
// Finds the texts of a ROM image by itself: every run of bytes that reads as
// game text and that a pointer refers to.
#include "discover/references.h"

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
    std::vector<Reference> pointers;      // every place that holds its pointer, in file order
    int confidence = 0;                   // 0-100
};

// Texts below this confidence are not reported.
inline constexpr int kMinConfidence = 50;

// Scans `image` once: indexes every plausible pointer (0x08 as the fourth of
// four bytes at any alignment, aimed inside the image and past the header),
// checks each aimed-at offset as text once, and keeps the texts whose
// confidence reaches kMinConfidence, in offset order. Throws Cancelled when
// `progress` asks to stop.
std::vector<FoundText> DiscoverTexts(std::string_view image, Progress* progress = nullptr);

// How the bytes before a text end the run before it: a pointer into the
// middle of a run of text needs more evidence than one at a run's start.
enum class Boundary {
    Terminator,  // 0xFF: the previous text's end
    NotText,     // a byte without table entry, or the image's start
    Blank,       // 0x00: padding or a space
    InsideText   // a character: the offset lies inside a longer run
};
Boundary BoundaryBefore(std::string_view image, std::uint32_t offset);

// The preview: decoded text, line breaks as blanks, at most `maxChars` characters.
std::string Preview(std::string_view bytes, std::size_t maxChars = 60);

}  // namespace quillon::discover
