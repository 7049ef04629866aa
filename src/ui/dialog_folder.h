#pragma once
// Where the file dialogs open: the folder last used in one of them, else the
// folder of the open ROM, else the platform's default.
#include <QString>

#include <filesystem>
#include <functional>

namespace quillon::ui {

// The open ROM's path, asked each time a dialog opens; the main window sets
// it (and clears it with an empty function when it goes).
void SetDialogRom(std::function<std::filesystem::path()> rom);
QString DialogFolder();
// Remembers the folder of a file chosen in a dialog; an empty name changes nothing.
void RememberDialogFile(const QString& file);
// Forgets the folder last used (a new session starts beside its ROM).
void ForgetDialogFolder();

}  // namespace quillon::ui
