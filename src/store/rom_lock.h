#pragma once
// One writer at a time per ROM, across processes: an advisory lock of the
// operating system on the ROM file, held from the check of the bytes on disk
// until the journal is kept in the history. A second Quillon (window or
// command line) waits a little for it, then refuses and changes nothing; its
// recovery never takes a live save's journal for a cut-off one.
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace quillon {

class RomLock {
public:
    RomLock(RomLock&& other) noexcept;
    RomLock& operator=(RomLock&&) = delete;
    RomLock(const RomLock&) = delete;
    ~RomLock();

    // Takes the lock of `rom`, waiting up to `wait`; nothing when another
    // process (or another lock in this one) still holds it then, with
    // `holder` set to what the holder wrote about itself ("process 1234").
    [[nodiscard]] static std::optional<RomLock> Take(const std::filesystem::path& rom, std::string& holder,
                                                      std::chrono::milliseconds wait = std::chrono::milliseconds(3000));

private:
    explicit RomLock(int fd) : fd_(fd) {}
    int fd_ = -1;
};

// The file beside the ROM that names the process holding its lock.
[[nodiscard]] std::filesystem::path LockInfoPath(const std::filesystem::path& rom);

}  // namespace quillon
