// Plans the import of any PO file into a generated game of twenty texts: the
// plan writes only inside the image and past its header, its writes do not
// overlap and each holds the bytes the image has there, and every moved text
// lands inside the image. A file it cannot use is refused with a message.
#include "app/progress.h"
#include "core/file_io.h"
#include "store/write_plan.h"
#include "support/translation_game.h"
#include "translate/po_import.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <stdexcept>
#include <string>

#include "scratch_folder.h"

namespace {

struct Game {
    ScratchFolder folder{"import"};
    quillon::test::GeneratedGame game = quillon::test::MakeGame(2u << 20, 20, 7);
    std::filesystem::path rom = folder.path / "rom.gba", offsets = folder.path / "QLNE.ini", po = folder.path / "texts.po";
    Game() {
        quillon::io::ReplaceFile(rom, game.image);
        quillon::io::ReplaceFile(offsets, game.offsetFile);
    }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Game g;
    std::ofstream(g.po, std::ios::binary | std::ios::trunc).write(reinterpret_cast<const char*>(data),
                                                                    static_cast<std::streamsize>(size));
    quillon::NoProgress none;
    quillon::ImportPlan plan;
    try {
        plan = quillon::PlanImport({g.rom, g.offsets, g.po, static_cast<std::int32_t>(g.game.freeFrom)}, none);
    } catch (const std::runtime_error& e) {  // PoError, or FileError
        if (std::string(e.what()).empty()) __builtin_trap();
        return 0;
    }
    const std::string& image = g.game.image;
    std::uint64_t end = 0;
    std::vector<quillon::RomWrite> writes = plan.writes.romWrites;
    std::sort(writes.begin(), writes.end(), [](const auto& a, const auto& b) { return a.offset < b.offset; });
    for (const quillon::RomWrite& w : writes) {
        if (w.offset < quillon::kFirstWritableOffset || w.offset < end || w.before.size() != w.after.size() ||
            w.offset + w.before.size() > image.size() || image.compare(w.offset, w.before.size(), w.before) != 0)
            __builtin_trap();
        end = w.offset + w.before.size();
    }
    for (const quillon::ImportChange& c : plan.changes)
        if (c.newOffset >= image.size()) __builtin_trap();
    return 0;
}
