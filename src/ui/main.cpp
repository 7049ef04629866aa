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

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

namespace {

std::string_view Env(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

constexpr const char* kUsage =
    "Usage: quillon [GAME.gba]\n"
    "Edit the texts of a Game Boy Advance ROM image; GAME.gba is opened as Open ROM opens it.\n"
    "  -h, --help     show this help and exit\n"
    "  --version      show the version and exit\n";

}  // namespace

int main(int argc, char** argv) {
    // Answered before any window: they need no display.
    if (argc > 1 && (std::string_view(argv[1]) == "--help" || std::string_view(argv[1]) == "-h")) {
        std::fputs(kUsage, stdout);
        return 0;
    }
    if (argc > 1 && std::string_view(argv[1]) == "--version") {
        std::puts("quillon " QUILLON_VERSION);
        return 0;
    }
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillon"));
    // Qt has taken its own options out of the arguments; an option left is none of ours.
    const QStringList args = QCoreApplication::arguments();
    if (args.size() > 1 && args.at(1).startsWith(QLatin1Char('-'))) {
        std::fprintf(stderr, "quillon: unknown option %s\n%s", args.at(1).toLocal8Bit().constData(), kUsage);
        return 2;
    }

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

    // The first argument is the ROM, opened once the window shows, so its
    // questions sit over it.
    if (args.size() > 1 && !args.at(1).isEmpty()) {
        const std::filesystem::path rom(QFileInfo(args.at(1)).absoluteFilePath().toStdU16String());
        QTimer::singleShot(0, &window, [&window, rom] { window.OpenRomFile(rom); });
    }
    return app.exec();
}
