// quillon: the program. Starts the session, runs the start-up checks and
// shows the main window centred on the screen.
#include "app/session.h"
#include "offsets/startup.h"
#include "ui/main_window.h"
#include "ui/qt_clipboard.h"
#include "ui/qt_prompter.h"

#include <QApplication>
#include <QScreen>

#include <filesystem>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillon"));

    const std::filesystem::path folder(QCoreApplication::applicationDirPath().toStdU16String());
    quillon::ui::QtPrompter prompter;
    quillon::ui::QtClipboard clipboard;
    quillon::Session session(folder, prompter);
    quillon::ui::MainWindow window(session, clipboard);
    prompter.SetParent(&window);
    if (!quillon::StartUp(session)) return 0;

    if (QScreen* screen = window.screen()) {
        QRect area = screen->availableGeometry();
        window.move(area.center() - window.rect().center());
    }
    window.show();
    return app.exec();
}
