#pragma once
// The Tools menu's "Export All Texts..." and "Import Translation..." on the
// open game: the file dialogs, the work with a progress bar, the import plan
// shown for OK or Cancel before anything is written, and the closing report.
#include <string_view>

namespace quillon {

class Progress;
class Session;

inline constexpr std::string_view kExportAllTitle = "Export All Texts";
inline constexpr std::string_view kImportTitle = "Import Translation";
// The import window's check box: the texts reflowed to their boxes before they are written.
inline constexpr std::string_view kReflowOption = "Break the texts into lines that fit their boxes (reflow)";
inline constexpr std::string_view kPoFilter = "PO files (*.po)|*.po|All files (*.*)|*.*";

// Asks where to save, writes every entry of the game's offset file to a PO
// file and says how many were written and which were skipped. True when the
// file was written.
bool ExportAllTexts(Session& session, Progress& progress);

// Asks for a translated PO file, plans the import and shows the plan; only
// OK writes it, in one journaled write. Then shows the report and reloads
// the tree and the text. True when something was written.
bool ImportTranslation(Session& session, Progress& progress);

}  // namespace quillon
