#pragma once
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace quillon::test {

// A fresh folder under the system's temporary folder, removed with its contents.
class TempDir {
public:
    TempDir();
    ~TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(std::string_view name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

// Whole file as bytes; empty when it does not exist.
std::string ReadFile(const std::filesystem::path& path);
void WriteFile(const std::filesystem::path& path, std::string_view bytes);
// Changes a file as another program would: bytes over `offset`, or more at the end.
void PatchFile(const std::filesystem::path& path, std::uint64_t offset, std::string_view bytes);
void AppendFile(const std::filesystem::path& path, std::string_view bytes);
// Clears every write bit, so the program treats the file as write-protected.
void MakeReadOnly(const std::filesystem::path& path);

}  // namespace quillon::test
