#pragma once
// How much of the image one text may take.
#include <cstdint>

namespace quillon {

// The longest text the editor reads: a text without its end (0xFF) within
// this many bytes is read as its first kMaxTextBytes.
inline constexpr std::int16_t kMaxTextBytes = 10000;

}  // namespace quillon
