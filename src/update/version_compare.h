#pragma once
// Version texts of the live update.
#include <string>
#include <string_view>

namespace quillon {

// The running program's major, minor and revision numbers joined by ".",
// in decimal without padding ("3.1.1").
std::string CurrentVersionText();

// Whether `remote` is greater than `current` as a string, character code by
// character code (0-255): "3.10.0" > "3.1.1" and "3.9" > "3.10.0"; a longer
// string that starts with the shorter one is the greater.
bool IsNewerVersion(std::string_view remote, std::string_view current);

}  // namespace quillon
