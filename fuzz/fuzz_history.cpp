// Feeds arbitrary bytes to undo and redo as a history entry: the first line
// is the entry's file name, the rest its contents. Whatever the entry says,
// the ROM keeps its length and its header, and no file appears outside the
// ROM's own (the ROM, its offset file, its history folder, its lock note).
#include "core/file_io.h"
#include "store/history.h"
#include "store/replay.h"
#include "store/write_plan.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>

#include "scratch_folder.h"

namespace fs = std::filesystem;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static ScratchFolder folder("history");
    // Relative names, so that entries in the seed corpus name this offset file.
    static const bool inFolder = (fs::current_path(folder.path), true);
    (void)inFolder;
    const fs::path rom = "rom.gba", ini = "QLNE.ini";
    std::string image(0x1000, '\x01');
    for (std::size_t i = 0; i < quillon::kFirstWritableOffset; ++i) image[i] = static_cast<char>(i);
    std::error_code ec;
    fs::remove_all(quillon::HistoryFolder(rom), ec);
    fs::create_directory(quillon::HistoryFolder(rom));
    quillon::io::ReplaceFile(rom, image);
    quillon::io::ReplaceFile(ini, "[A]\r\nB=100\r\n");

    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::size_t lineEnd = input.find('\n');
    if (lineEnd == std::string::npos || lineEnd == 0 || lineEnd > 40) return 0;
    const std::string name = input.substr(0, lineEnd);
    if (name.find_first_of(std::string("/\0", 2)) != std::string::npos || name == "." || name == "..") return 0;
    quillon::io::ReplaceFile(quillon::HistoryFolder(rom) / name, input.substr(lineEnd + 1));

    for (const bool undo : {true, false}) {
        try {
            (void)(undo ? quillon::UndoLastSave(rom, ini) : quillon::RedoSave(rom, ini));
        } catch (const std::exception&) {
        }
    }
    (void)quillon::ListHistory(rom);

    const std::string now = quillon::io::ReadAll(rom);
    if (now.size() != image.size() || now.compare(0, quillon::kFirstWritableOffset, image, 0,
                                                  quillon::kFirstWritableOffset) != 0)
        std::abort();
    static const std::set<std::string> ours = {"rom.gba", "QLNE.ini", "rom.gba.history", "rom.gba.lock"};
    for (const auto& e : fs::directory_iterator("."))
        if (!ours.count(e.path().filename().string())) std::abort();
    return 0;
}
