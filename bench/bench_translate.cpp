// Export of 5,000 texts and import of 5,000 changed texts (500 of them moved
// to free space, journal included) on a 16 MiB image, each against one
// FindBytes pass over that image.
#include "app/progress.h"
#include "support/translation_game.h"
#include "translate/po_export.h"
#include "translate/po_file.h"
#include "translate/po_import.h"
#include "translate/rom_texts.h"

#include <quillon/core.h>

#include "core/file_io.h"
#include "ratio.h"
#include "silent_prompter.h"
#include "repoint/model_cache.h"

#include <cstdio>
#include <unistd.h>
#include <filesystem>

int main() {
    using namespace quillon;
    const auto folder = std::filesystem::temp_directory_path() / "quillon-bench-translate";
    std::filesystem::create_directories(folder);
    const auto rom = folder / "rom.gba", offsets = folder / "QLNE.ini", po = folder / "texts.po",
               exported = folder / "export.po";
    const test::GeneratedGame game = test::MakeGame(16u << 20, 5000, 11);
    bench::WriteSynced(rom, game.image);
    bench::WriteSynced(offsets, game.offsetFile);

    // Every text changed; one in ten longer than its room.
    PoCatalog catalog;
    catalog.header = {{"Content-Type", "text/plain; charset=UTF-8"}, {"X-Game-Code", "QLNE"}};
    for (std::size_t i = 0; i < game.texts.size(); ++i) {
        const test::GameText& t = game.texts[i];
        const std::size_t length = i % 10 == 0 ? t.length + t.room + 4 : 1 + (i * 31) % (t.length + t.room);
        catalog.messages.push_back({t.section + "/" + t.key, "-",
                                    ToPoText(test::TextOfLength(length, static_cast<std::uint32_t>(i + 1))), {}, false});
    }
    WritePo(po, catalog);

    NoProgress none;
    const std::string missing(20, '\xF0');
    std::int32_t notFound = -1;
    auto onePass = [&] {
        std::int32_t start = 1;
        notFound = FindBytes(rom, missing, start);
    };

    // Import: the files are put back (untimed) before each run. `kept`: the
    // game model of the file is kept first, as after the window showed a text.
    std::size_t moved = 0, changed = 0;
    bool written = true;
    auto importing = [&](bool kept) {
        std::vector<double> subject, baseline;
        for (int run = 0; run < 12; ++run) {
            bench::WriteSynced(rom, game.image);
            bench::WriteSynced(offsets, game.offsetFile);
            ::sync();  // the import's flushes wait for no one else's writes, such as an earlier bench's
            if (kept) (void)repoint::ModelOf(rom);
            onePass();
            baseline.push_back(bench::TimeOnce(onePass));
            subject.push_back(bench::TimeOnce([&] {
                const ImportPlan plan = PlanImport({rom, offsets, po, static_cast<std::int32_t>(game.freeFrom)}, none);
                written &= ApplyImport(plan).outcome == CommitOutcome::Written;
                moved = plan.Count(ImportKind::Moved);
                changed = plan.changes.size();
            }));
        }
        subject.erase(subject.begin());  // the first run warms the caches
        baseline.erase(baseline.begin());
        return bench::Comparison{bench::Median(subject), bench::Median(baseline)};
    };
    const bench::Comparison import = importing(false), withModel = importing(true);

    auto exportAll = [&] { ExportPo({rom, offsets, exported, {}, false}, none); };
    const auto exporting = bench::Compare(exportAll, onePass, 5);

    bool ok = written && moved == 500 && changed == 5000 && notFound == 0;
    if (!ok) std::printf("import changed %zu texts, moved %zu\n", changed, moved);
    ok &= bench::Report("Import 5000 texts, 500 moved, 16 MiB", import, 5.0);
    std::printf("%-46s %11.3f us  baseline %11.3f us  ratio %6.2f  (no limit: no model is read)\n",
                "  the same, the file's game model kept", withModel.subject * 1e6, withModel.baseline * 1e6,
                withModel.ratio());
    ok &= bench::Report("Export 5000 texts, 16 MiB", exporting, 50.0);
    std::filesystem::remove_all(folder);
    return ok ? 0 : 1;
}
