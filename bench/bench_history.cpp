// Undoing a repoint of a text with 1,000 pointers in a 32 MiB image, against
// the repoint itself (the pointer scan and the write through the writer).
#include "edit/pointer_scan.h"
#include "store/replay.h"
#include "store/writer.h"

#include "ratio.h"

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

int main() {
    using namespace quillon;
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / "quillon-bench-history";
    fs::remove_all(folder);
    fs::create_directories(folder);
    const fs::path rom = folder / "game.gba";
    const std::size_t size = 32u << 20, text = 0x100000, moved = 0x1800000;
    std::string image(size, '\0');
    std::mt19937 rng(1);
    for (char& c : image) c = static_cast<char>(rng() % 200);
    const std::string oldPointer("\x00\x00\x10\x08", 4), newPointer("\x00\x00\x80\x09", 4);
    for (int k = 0; k < 1000; ++k) image.replace(0x200000 + 0x1000 * k, 4, oldPointer);
    image.replace(moved, 64, std::string(64, '\xFF'));
    std::ofstream(rom, std::ios::binary).write(image.data(), static_cast<std::streamsize>(image.size()));

    auto repoint = [&] {
        std::vector<BytesAt> blocks = ScanPointerRewrites(rom, oldPointer, newPointer);
        blocks.push_back({text, std::string(20, '\xFF')});
        blocks.push_back({moved, std::string(40, 'T')});
        WritePlan plan;
        plan.command = "Save Text";
        plan.rom = rom;
        plan.romSize = size;
        plan.romWrites = RangesFor(rom, blocks);
        (void)CommitPlan(plan);  // the image is compared at the end
    };
    std::size_t pointersBack = 0;
    std::vector<double> saves, undos;
    for (int run = 0; run < 7; ++run) {
        saves.push_back(bench::TimeOnce(repoint));
        undos.push_back(bench::TimeOnce([&] { (void)UndoLastSave(rom, folder / "BNCE.ini"); }));  // no offset file
    }
    const std::string& original = image;  // every undo must give the image back
    std::ifstream in(rom, std::ios::binary);
    std::string now((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    for (int k = 0; k < 1000; ++k) pointersBack += now.compare(0x200000 + 0x1000 * k, 4, oldPointer) == 0;
    const bench::Comparison c{bench::Median(undos), bench::Median(saves)};
    bool ok = bench::Report("undo of a repoint with 1,000 pointers", c, 2.0);
    ok &= pointersBack == 1000 && now == original;
    fs::remove_all(folder);
    return ok ? 0 : 1;
}
