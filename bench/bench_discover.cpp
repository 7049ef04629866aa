// The game model and discovery over a 16 MiB image (a generated game padded
// with picture-like random bytes, read from disk, then read as the game
// reads itself), the tables of names and the references of one text's
// offset from the built model, each against one FindBytes pass over the same
// image that finds nothing.
#include "app/session.h"
#include "core/file_io.h"
#include "discover/discover.h"
#include "discover/offset_merge.h"
#include "edit/text_view.h"
#include "game/name_tables.h"
#include "game/words.h"
#include "support/game_image.h"
#include "support/name_records.h"

#include <quillon/core.h>

#include "ratio.h"
#include "silent_prompter.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <random>

int main() {
    using namespace quillon;
    const auto folder = std::filesystem::temp_directory_path() / "quillon-bench-discover";
    std::filesystem::create_directories(folder);
    const auto path = folder / "rom.gba";
    const test::GameImage game = test::MakeGameImage(game::Family::FireRedLeafGreen, 7);
    std::string image = game.image;
    std::mt19937 random(7);
    while (image.size() < (16u << 20)) image += static_cast<char>(random());
    // Tables of names of several strides in the random bytes, about as many names as a game has.
    for (std::uint32_t i = 0; i < 8; ++i) {
        const std::string records = test::NameRecords({7 + 2 * i, 7 + 2 * i, '\0', 240 + 40 * i});
        image.replace(0x400000 + 0x10000 * i, records.size(), records);
    }
    io::ReplaceFile(path, image);

    // A 4-byte pattern that the image does not hold, as the baseline's.
    const std::uint32_t word = game::PointerTo(0xFFFFF0);
    const std::string missing{static_cast<char>(word), static_cast<char>(word >> 8), static_cast<char>(word >> 16),
                              static_cast<char>(word >> 24)};
    std::int32_t none = -1;
    auto onePass = [&] {
        std::int32_t start = 1;
        none = FindBytes(path, missing, start);
    };

    std::size_t texts = 0;
    auto discover = [&] {
        const std::string read = io::ReadAll(path);
        texts = discover::DiscoverTexts(read).size();
    };
    // The text with the most places holding its pointer.
    std::map<std::uint32_t, std::size_t> perText;
    for (const auto& p : game.pointers) ++perText[p.target];
    const auto busiest = std::max_element(perText.begin(), perText.end(),
                                          [](const auto& a, const auto& b) { return a.second < b.second; });
    const game::GameModel model = game::GameModel::Read(image);
    std::size_t places = 0;
    auto references = [&] { places = model.ReferencesTo(busiest->first).size(); };

    bool ok = true;
    auto c = bench::Compare(discover, onePass, 7);
    ok &= bench::Report("Game model and discovery, 16 MiB image", c, 10.0);
    std::size_t tables = 0;
    auto names = [&] { tables = game::FindNameTables(image, model).size(); };
    auto n = bench::Compare(names, onePass, 7);
    ok &= bench::Report("Tables of names, from the model", n, 1.0);
    auto r = bench::Compare(references, onePass, 7, 1000);
    ok &= bench::Report("References of one offset, from the model", r, 1.0);
    const bool fast = r.subject < 1e-3;
    std::printf("texts found %zu, places of one text's pointer %zu, %.3f ms each (limit 1 ms) %s\n", texts, places,
                r.subject * 1e3, fast ? "ok" : "OVER");
    ok &= fast;

    // The same over 32 MiB: the second half's pointers (bank 0x09) are read too.
    {
        std::string large = image;
        while (large.size() < (32u << 20)) large += static_cast<char>(random());
        const auto largePath = folder / "large.gba";
        io::ReplaceFile(largePath, large);
        auto largePass = [&] {
            std::int32_t start = 1;
            none = FindBytes(largePath, missing, start);
        };
        auto largeDiscover = [&] { texts = discover::DiscoverTexts(io::ReadAll(largePath)).size(); };
        ok &= bench::Report("Game model and discovery, 32 MiB image", bench::Compare(largeDiscover, largePass, 5), 10.0);
    }

    // The tree of the offset file that discovery writes for this image.
    const auto found = discover::DiscoverTexts(model, image);
    const discover::Merge merge = discover::MergeFoundTexts("", found);
    std::filesystem::create_directories(folder / "ini");
    bench::SilentPrompter user;
    Session session(folder, user);
    session.romPath = path;
    session.controls.gameCode = "QDSE";
    io::ReplaceFile(session.OffsetFile(), merge.text);
    std::vector<double> times;
    for (int i = 0; i < 7; ++i) times.push_back(bench::TimeOnce([&] { Tree_Load(session); }));
    const double tree = bench::Median(times);
    const bool treeOk = tree < 0.1 && user.messages == 0 && session.tree.Nodes().size() == merge.added + merge.sections;
    std::printf("%-46s %11.3f us  (%zu entries in %zu sections; limit 100 ms) %s\n", "Tree of the discovered offset file",
                tree * 1e6, merge.added, merge.sections, treeOk ? "ok" : "OVER");
    ok &= treeOk;
    if (none != 0 || texts == 0 || places == 0 || tables != 8) {
        std::printf("unexpected: the baseline found its pattern, or the subjects found nothing\n");
        ok = false;
    }
    std::filesystem::remove_all(folder);
    return ok ? 0 : 1;
}
