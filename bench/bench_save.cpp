// Save Text with a repoint in a 32 MiB image (free-space search, the places
// of the old pointer and their kinds, journal, write and reload of the
// text), against one FindBytes pass over that image. The text is shown first
// as the window shows it, which reads the ROM's fit facts and game model; a
// second line times the save with that read inside it, as a save right after
// another save pays it.
#include "app/session.h"
#include "edit/open_rom.h"
#include "edit/save_text.h"
#include "edit/text_view.h"
#include "fit/fit_settings.h"
#include "support/translation_game.h"

#include <quillon/core.h>

#include "ratio.h"
#include "silent_prompter.h"

#include <cstdio>
#include <filesystem>

using namespace quillon;

int main() {
    const auto folder = std::filesystem::temp_directory_path() / "quillon-bench-save";
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder / "ini");
    const test::GeneratedGame game = test::MakeGame(32u << 20, 5000, 7);
    bench::WriteSynced(folder / "ini" / "settings.ini",
          "[Settings]\r\nWarningShown=True\r\nFreeSpaceOffset=" + std::to_string(game.freeFrom) + "\r\n");
    const auto rom = folder / "rom.gba", offsets = folder / "ini" / "QLNE.ini";
    bench::WriteSynced(rom, game.image);
    bench::WriteSynced(offsets, game.offsetFile);

    bench::YesUser user;
    user.rom = rom;
    Session session(folder, user);
    OpenRom(session, [](Session&) {});

    // Text 5 has two pointers and no room behind it; it grows by ten bytes.
    const test::GameText& text = game.texts[5];
    const std::string longer = test::TextOfLength(text.length + 10, 99);
    std::size_t node = 0;
    for (std::size_t i = 0; i < session.tree.Nodes().size(); ++i)
        if (session.tree.Nodes()[i].text == text.key) node = i;

    const std::string missing(20, '\xF0');
    std::int32_t notFound = -1;
    auto onePass = [&] {
        std::int32_t start = 1;
        notFound = FindBytes(rom, missing, start);
    };
    bool ok = node != 0;
    // Each save starts from the image and offset file as made; `shown` reads
    // the fit facts as the window does when it shows the text.
    auto run = [&](bool shown, std::vector<double>& saves, std::vector<double>& passes) {
        bench::WriteSynced(rom, game.image);
        bench::WriteSynced(offsets, game.offsetFile);
        ::sync();
        Tree_Load(session);
        SelectNode(session, node);
        if (shown) (void)fit::SessionFont(session);
        session.controls.text1.SetText(longer);
        user.messages = 0;
        onePass();
        passes.push_back(bench::TimeOnce(onePass));
        saves.push_back(bench::TimeOnce([&] { SaveText(session, fit::ConfirmFitBeforeSave); }));
        ok &= user.messages == 1 && HexToLong(session.controls.offsetCaption) >= static_cast<std::int32_t>(game.freeFrom);
    };
    std::vector<double> saves, passes, coldSaves, coldPasses;
    for (int i = 0; i < 9; ++i) {
        run(true, saves, passes);
        run(false, coldSaves, coldPasses);
    }
    const std::string after = [&] {
        std::ifstream in(rom, std::ios::binary);
        return std::string((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    }();
    const std::string moved = after.substr(text.pointers[0], 4);
    ok &= moved == after.substr(text.pointers[1], 4) && moved != game.image.substr(text.pointers[0], 4);
    ok &= notFound == 0;
    if (!ok) std::printf("the save did not move the text as expected\n");
    ok &= bench::Report("Save Text with a repoint, 32 MiB", {bench::Median(saves), bench::Median(passes)}, 3.0);
    const bench::Comparison cold{bench::Median(coldSaves), bench::Median(coldPasses)};
    std::printf("%-46s %11.3f us  baseline %11.3f us  ratio %6.2f  (no limit: the model is read inside)\n",
                "  the same, fit facts not read before", cold.subject * 1e6, cold.baseline * 1e6, cold.ratio());
    std::filesystem::remove_all(folder);
    return ok ? 0 : 1;
}
