#include "ui/dialog_folder.h"

#include <QFileInfo>

namespace quillon::ui {
namespace {

std::function<std::filesystem::path()>& Rom() {
    static std::function<std::filesystem::path()> rom;
    return rom;
}

QString& Last() {
    static QString last;
    return last;
}

}  // namespace

void SetDialogRom(std::function<std::filesystem::path()> rom) { Rom() = std::move(rom); }

QString DialogFolder() {
    if (!Last().isEmpty()) return Last();
    const std::filesystem::path rom = Rom() ? Rom()() : std::filesystem::path();
    if (rom.empty()) return {};
    return QString::fromStdU16String(rom.parent_path().u16string());
}

void RememberDialogFile(const QString& file) {
    if (!file.isEmpty()) Last() = QFileInfo(file).absolutePath();
}

void ForgetDialogFolder() { Last().clear(); }

}  // namespace quillon::ui
