#pragma once
// The one check of the bytes on disk: whether the places a plan writes hold
// what the plan expects there now (its before state) or already what it puts
// there (its after state). The writer refuses on it; recovery, undo and redo
// decide with it what is left to write.
#include "store/write_plan.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

// What one place holds now.
struct Holds {
    bool before = false;  // the plan's old bytes
    bool after = false;   // the plan's new bytes
};

struct OnDisk {
    std::uint64_t romSize = 0;     // the ROM's length now
    bool sameSize = false;         // equal to the plan's; no range is read when not
    std::vector<Holds> romWrites;  // one per range of the plan
    Holds offsetFile{true, true};  // a plan that leaves the offset file alone holds both

    [[nodiscard]] bool HoldsBefore() const;
};

// Reads every place of `plan`. Throws FileError when the ROM or the offset
// file cannot be read.
[[nodiscard]] OnDisk ReadOnDisk(const WritePlan& plan);

// The offset file as it stands, nothing when it does not exist.
[[nodiscard]] std::optional<std::string> ReadIfExists(const std::filesystem::path& path);

// Why the files no longer hold the plan's before state, naming the first
// difference ("The ROM was changed outside Quillon since the text was
// loaded: ..."); nothing when they hold it.
[[nodiscard]] std::optional<std::string> ChangedSinceRead(const WritePlan& plan);

}  // namespace quillon
