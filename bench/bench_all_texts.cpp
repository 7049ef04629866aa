// The All Texts window over 10,000 entries of a 16 MiB image: opened (its
// rows built, the table laid out and drawn) and filtered by a word, against
// building its model alone; and the time of each key typed into its filter.
// Runs on Qt's offscreen platform unless another is set.
#include "app/session.h"
#include "edit/text_view.h"
#include "overview/all_texts.h"
#include "repoint/model_cache.h"
#include "support/translation_game.h"
#include "ui/all_texts_model.h"
#include "ui/all_texts_window.h"

#include "ratio.h"
#include "silent_prompter.h"

#include <QApplication>
#include <QLineEdit>

#include <cstdio>
#include <fstream>

namespace {

void Write(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

int main(int argc, char** argv) {
    using namespace quillon;
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);

    const auto folder = std::filesystem::temp_directory_path() / "quillon-bench-all-texts";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / "ini");
    const test::GeneratedGame game = test::MakeGame(16u << 20, 10000, 7);
    Write(folder / "rom.gba", game.image);
    Write(folder / "ini" / "QLNE.ini", game.offsetFile);

    bench::SilentPrompter user;
    Session session(folder, user);
    session.romPath = folder / "rom.gba";
    session.controls.gameCode = "QLNE";
    Tree_Load(session);
    (void)repoint::ModelOf(session.romPath);  // read once per ROM file, as the main window does

    // Opened, then a word typed at once (pasted); then the same word typed key by key.
    int shown = -1;
    std::vector<double> keys;
    auto open = [&](bool byKey) {
        ui::AllTextsWindow window(session, nullptr);
        window.show();
        QApplication::processEvents();
        auto* filter = window.findChild<QLineEdit*>(QStringLiteral("txtAllFilter"));
        const QString word = QStringLiteral("tea K");
        for (qsizetype n = byKey ? 1 : word.size(); n <= word.size(); ++n)
            keys.push_back(bench::TimeOnce([&] {
                filter->setText(word.left(n));
                QApplication::processEvents();
            }));
        shown = window.Model()->Shown();
    };
    const bench::Comparison c = bench::Compare([&] { open(false); }, [&] { (void)overview::BuildFor(session); }, 7);
    keys.clear();
    for (int run = 0; run < 3; ++run) open(true);
    const double key = bench::Median(keys);

    bool ok = shown > 0 && shown < 10000 && session.tree.Nodes().size() == 10100;
    ok &= bench::Report("All Texts 10,000 entries, open+filter / model", c, 3);
    std::printf("%-46s %11.1f ms  (limit 200 ms) %s\n", "All Texts window opened and filtered", c.subject * 1e3,
                c.subject < 0.2 ? "ok" : "OVER");
    std::printf("%-46s %11.1f ms  (limit 50 ms) %s\n", "each key typed into its filter", key * 1e3,
                key < 0.05 ? "ok" : "OVER");
    ok &= c.subject < 0.2 && key < 0.05;
    std::filesystem::remove_all(folder);
    return ok ? 0 : 1;
}
