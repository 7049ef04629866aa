#pragma once
// A folder for a fuzz target's files, one for the whole run, removed when the
// process ends.
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include <unistd.h>

struct ScratchFolder {
    std::filesystem::path path;
    explicit ScratchFolder(std::string_view target) {
        path = std::filesystem::temp_directory_path() /
               ("quillon-fuzz-" + std::string(target) + "-" + std::to_string(::getpid()));
        std::filesystem::create_directories(path);
    }
    ~ScratchFolder() {
        std::error_code ec;
        std::filesystem::remove_all(path, ec);
    }
};
