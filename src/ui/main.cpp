// quillon: the program. Chooses the program folder, starts the session, runs
// the start-up checks, shows the main window centred on the screen and opens
// a ROM named on the command line (`quillon GAME.gba`, as a file manager
// starts it).
#include "app/program_folder.h"
#include "app/session.h"
#include "offsets/startup.h"
#include "ui/main_window.h"
#include "ui/qt_clipboard.h"
#include "ui/qt_prompter.h"

#include <QApplication>
#include <QFileInfo>
#include <QScreen>
#include <QTimer>

#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace {

std::string_view Env(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillon"));

    const std::filesystem::path exeFolder(QCoreApplication::applicationDirPath().toStdU16String());
    const quillon::ProgramFolder folder =
        quillon::ChooseProgramFolder(exeFolder, Env("XDG_DATA_HOME"), Env("HOME"));
    // A copy that fails shows as the missing settings file at start-up.
    (void)quillon::CopyShippedFiles(folder);

    quillon::ui::QtPrompter prompter;
    quillon::ui::QtClipboard clipboard;
    quillon::Session session(folder.folder, prompter);
    quillon::ui::MainWindow window(session, clipboard);
    prompter.SetParent(&window);
    if (!quillon::StartUp(session)) return 0;

    if (QScreen* screen = window.screen()) {
        QRect area = screen->availableGeometry();
        window.move(area.center() - window.rect().center());
    }
    window.show();

    // Qt has taken its own options out of the arguments; the first one left
    // is the ROM, opened once the window shows, so its questions sit over it.
    const QStringList args = QCoreApplication::arguments();
    if (args.size() > 1 && !args.at(1).isEmpty()) {
        const std::filesystem::path rom(QFileInfo(args.at(1)).absoluteFilePath().toStdU16String());
        QTimer::singleShot(0, &window, [&window, rom] { window.OpenRomFile(rom); });
    }
    return app.exec();
}
