#pragma once
// File names taken from a download address.
#include <string>
#include <string_view>

namespace quillon {

// The part of `text` after its last "/": the whole text when it holds none,
// an empty string when "/" is its last character.
std::string GetLastSlash(std::string_view text);

// Whether `name` can be used as a file name inside the updates folder: not
// empty, not "." or "..", and free of path separators ("/" and "\") and of
// control characters, so the file lands in that folder and nowhere else.
bool IsSafeUpdateFileName(std::string_view name);

}  // namespace quillon
