// Feeds arbitrary bytes to the save journal's reader as a journal left
// behind: in any of its forms, damaged or not, it reads a plan whose writes
// keep their length, or refuses; it never reads past the bytes it was given.
#include "store/journal.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "scratch_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static ScratchFolder folder("journal");
    const std::filesystem::path rom = folder.path / "rom.gba", journal = quillon::JournalPath(rom);
    {
        std::FILE* f = std::fopen(journal.c_str(), "wb");
        if (!f) return 0;
        std::fwrite(data, 1, size, f);
        std::fclose(f);
    }
    if (const auto plan = quillon::ReadJournal(journal, rom)) {
        for (const auto& w : plan->romWrites)
            if (w.before.size() != w.after.size()) std::abort();
    }
    return 0;
}
