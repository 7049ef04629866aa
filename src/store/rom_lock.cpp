#include "store/rom_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <fstream>
#include <thread>

namespace quillon {

std::filesystem::path LockInfoPath(const std::filesystem::path& rom) {
    return std::filesystem::path(rom).concat(".lock");
}

RomLock::RomLock(RomLock&& other) noexcept : fd_(other.fd_) { other.fd_ = -1; }

RomLock::~RomLock() {
    if (fd_ < 0) return;
    flock(fd_, LOCK_UN);
    close(fd_);
}

std::optional<RomLock> RomLock::Take(const std::filesystem::path& rom, std::string& holder,
                                     std::chrono::milliseconds wait) {
    // The lock is taken on the ROM itself, so no file of ours can stand in
    // its way; a note beside it names the holder for the other's message.
    const int fd = open(rom.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return RomLock(-1);  // the writer reports the missing file
    const auto until = std::chrono::steady_clock::now() + wait;
    while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if (std::chrono::steady_clock::now() >= until) {
            std::ifstream note(LockInfoPath(rom));
            std::getline(note, holder);
            if (holder.empty()) holder = "another program";
            close(fd);
            return std::nullopt;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    std::ofstream(LockInfoPath(rom), std::ios::trunc) << "Quillon, process " << getpid() << "\n";
    return RomLock(fd);
}

}  // namespace quillon
