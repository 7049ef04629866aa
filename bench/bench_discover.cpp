// Discovery over a generated 16 MiB image (read from disk, then scanned), and
// the references of one text's offset, each against one FindBytes pass over
// the same image that finds nothing.
#include "app/session.h"
#include "core/file_io.h"
#include "discover/discover.h"
#include "discover/offset_merge.h"
#include "edit/text_view.h"
#include "support/text_rom.h"

#include <quillon/core.h>

#include "ratio.h"
#include "silent_prompter.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <filesystem>

int main() {
    using namespace quillon;
    const auto folder = std::filesystem::temp_directory_path() / "quillon-bench-discover";
    std::filesystem::create_directories(folder);
    const auto path = folder / "rom.gba";
    const test::TextRom rom = test::GenerateTextRom(7);
    io::ReplaceFile(path, rom.image);

    // A 4-byte pattern that the image does not hold, as the baseline's.
    std::string missing = discover::PointerBytes(0xFFFFF0);
    std::int32_t none = -1;
    auto onePass = [&] {
        std::int32_t start = 1;
        none = FindBytes(path, missing, start);
    };

    std::size_t texts = 0;
    auto discover = [&] {
        const std::string image = io::ReadAll(path);
        texts = discover::DiscoverTexts(image).size();
    };
    // The text with the most planted pointers.
    std::map<std::uint32_t, std::size_t> perText;
    for (const auto& p : rom.pointers) ++perText[p.target];
    const auto busiest = std::max_element(perText.begin(), perText.end(),
                                          [](const auto& a, const auto& b) { return a.second < b.second; });
    std::size_t places = 0;
    auto references = [&] { places = discover::FindReferencesInFile(path, busiest->first).size(); };

    bool ok = true;
    auto c = bench::Compare(discover, onePass, 7);
    ok &= bench::Report("Discovery, 16 MiB image", c, 10.0);
    auto r = bench::Compare(references, onePass, 7);
    ok &= bench::Report("References of one offset, 16 MiB image", r, 2.0);
    std::printf("texts found %zu, places of one text's pointer %zu\n", texts, places);

    // The tree of the offset file that discovery writes for this image.
    const auto found = discover::DiscoverTexts(rom.image);
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
    if (none != 0 || texts == 0 || places == 0) {
        std::printf("unexpected: the baseline found its pattern, or the subjects found nothing\n");
        ok = false;
    }
    std::filesystem::remove_all(folder);
    return ok ? 0 : 1;
}
