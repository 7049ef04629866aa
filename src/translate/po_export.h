#pragma once
// "Export All Texts": every entry of an offset file (or of one section) to a
// PO file, one message per entry, for translators.
#include "app/progress.h"
#include "fit/fit_settings.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

struct ExportRequest {
    std::filesystem::path rom;
    std::filesystem::path offsetFile;
    std::filesystem::path po;             // the file to write
    std::optional<std::string> section;   // only this section (its name in UTF-8)
    bool fillTranslations = false;        // msgstr = the current text instead of ""
    fit::FitSettings fit{};               // the font of a game the table does not list, the sample name
};

struct EntryProblem {
    std::string context;  // "Section/Key"
    std::string reason;
};

struct ExportSummary {
    std::size_t exported = 0;
    std::vector<EntryProblem> skipped;  // entries whose text cannot be read
};

// Each message's comments name the offset, the length, the room before a
// repoint, the pointers and, when the game's font is known, the box width and
// the widest line. Throws FileError for an unreadable ROM or offset file, PoError when the PO
// file cannot be written, std::invalid_argument for a section not in the file.
ExportSummary ExportPo(const ExportRequest& request, Progress& progress);

// Header field names of the game the file was exported from.
inline constexpr std::string_view kGameCodeField = "X-Game-Code";
inline constexpr std::string_view kGameTitleField = "X-Game-Title";

}  // namespace quillon
