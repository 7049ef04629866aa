#pragma once
// Saves the text that the main window's text box shows, edits included, to a
// plain text file of the user's choosing.
#include <string>
#include <string_view>

namespace quillon {

class Session;

inline constexpr std::string_view kExportTitle = "Select location to export to...";
inline constexpr std::string_view kExportFilter = "Quillon Export (*.txt)|*.txt";

// Editor text (UTF-8) as Latin-1 bytes, one per character. A character above
// U+00FF, or a byte that is not valid UTF-8, becomes "?".
std::string ToLatin1(std::string_view utf8);

// Asks for a file, deletes an existing one of that name and writes the text
// as Latin-1 with its line breaks as held, nothing added. Cancel does nothing;
// a file that cannot be deleted or written is reported with the system's
// reason, and a folder of that name is never touched.
void ExportText(Session& session);

}  // namespace quillon
