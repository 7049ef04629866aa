#pragma once
// Crash safety for saves that write several places. Before the first write,
// everything the save will overwrite (ROM bytes, the offset file) is recorded
// in a journal beside the ROM and flushed; the journal is removed after the
// last write. A journal found later means a save was cut off: the recorded
// state is put back.
#include "core/file_io.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

// The writes of one save, in the order they are made: `romFirst`, then the
// new offset file (if any), then `romLast`.
struct SavePlan {
    std::filesystem::path rom;
    std::vector<io::Patch> romFirst;
    std::optional<std::filesystem::path> offsetFile;
    std::string offsetFileText;  // the offset file's new contents
    std::vector<io::Patch> romLast;
};

std::filesystem::path JournalPath(const std::filesystem::path& rom);

// How a failed save left the files.
enum class SaveOutcome { Saved, RolledBack, JournalKept };

// Writes the plan under a journal. On a failure part-way it puts the old state
// back at once; when even that fails the journal stays for the next opening.
// Throws FileError only when the journal itself cannot be written (nothing has
// been changed then). `error` receives the reason of a failed write.
SaveOutcome WriteJournaled(const SavePlan& plan, std::string& error);

// When a journal for `rom` exists, restores what it recorded and removes it.
// True when something was restored. Throws FileError when that fails.
bool RecoverInterruptedSave(const std::filesystem::path& rom);

}  // namespace quillon
