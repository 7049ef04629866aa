#pragma once
// Users of the speed checks, and their files. A user who is never asked anything: questions are
// answered No, and messages are only counted (one would mean a failure).
#include "app/prompter.h"

#include <fcntl.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace quillon::bench {

struct SilentPrompter : Prompter {
    int messages = 0;
    void Message(Icon, std::string_view, std::string_view) override { ++messages; }
    bool AskYesNo(std::string_view, std::string_view) override { return false; }
    std::optional<std::string> Input(std::string_view, std::string_view, std::string_view) override { return {}; }
    std::optional<std::filesystem::path> OpenFile(std::string_view, std::string_view) override { return {}; }
    std::optional<std::filesystem::path> SaveFile(std::string_view, std::string_view) override { return {}; }
    void ShowAddOffset(AddOffsetFields&) override {}
};

// A user who answers Yes and opens `rom` when asked for a file; messages
// are counted.
struct YesUser : SilentPrompter {
    std::filesystem::path rom;
    bool AskYesNo(std::string_view, std::string_view) override { return true; }
    std::optional<std::filesystem::path> OpenFile(std::string_view, std::string_view) override { return rom; }
};

// Writes a file and waits until it is on disk, so that a timed run does not
// pay for flushing what the untimed set-up wrote.
inline void WriteSynced(const std::filesystem::path& path, const std::string& bytes) {
    {
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    const int fd = ::open(path.c_str(), O_RDONLY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

}  // namespace quillon::bench
