#pragma once
// The program folder: where ini/ (the settings and the offset files) and
// updates/ live. Found once at start from the executable's folder and then
// passed in; nothing below looks it up itself.
#include <filesystem>
#include <string_view>

namespace quillon {

// Where the shipped data lies, seen from an installed program's bin folder
// (the GNU layout that the package follows: /usr/bin and /usr/share/quillon).
inline constexpr std::string_view kInstalledDataFromBin = "../share/quillon";

struct ProgramFolder {
    std::filesystem::path folder;   // holds ini/ and updates/
    std::filesystem::path shipped;  // the shipped ini/ the program's files come from
    bool installed = false;         // folder is the user's data folder
};

// Chooses the program folder for an executable in `exeFolder`:
// - an executable with ini/ beside it in a folder it can write into (the
//   build tree, a portable copy) keeps its files there;
// - an installed one (no ini/ beside it, but ../share/quillon/ini), or one
//   whose folder takes no new file (a read-only medium), keeps them in the
//   user's data folder, $XDG_DATA_HOME/quillon, or ~/.local/share/quillon
//   when that is unset or not absolute.
// The layout decides first because root writes into any folder, /usr/bin
// included: a probe alone would put root's files there. `xdgDataHome` and
// `home` are the environment's values, empty when unset.
[[nodiscard]] ProgramFolder ChooseProgramFolder(const std::filesystem::path& exeFolder, std::string_view xdgDataHome,
                                                std::string_view home);

// On the first start in a data folder (no ini/settings.ini there yet), copies
// the shipped settings.ini and offset files into its ini/. Files already
// there are kept. False when the folder or a file could not be made; start-up
// then reports the missing settings file.
[[nodiscard]] bool CopyShippedFiles(const ProgramFolder& choice);

// Whether a new file can be created in `folder`, tried with a probe file that
// is removed again (permission bits do not tell for root, a read-only mount does).
[[nodiscard]] bool FolderTakesFiles(const std::filesystem::path& folder);

}  // namespace quillon
