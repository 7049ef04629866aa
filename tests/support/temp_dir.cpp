#include "support/temp_dir.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <random>

namespace quillon::test {

TempDir::TempDir() {
    static std::atomic<unsigned> counter{0};
    std::random_device rd;
    auto base = std::filesystem::temp_directory_path();
    for (;;) {
        path_ = base / ("quillon-test-" + std::to_string(rd()) + "-" + std::to_string(counter++));
        if (std::filesystem::create_directory(path_)) break;
    }
}

TempDir::~TempDir() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void PatchFile(const std::filesystem::path& path, std::uint64_t offset, std::string_view bytes) {
    std::string all = ReadFile(path);
    all.replace(offset, bytes.size(), bytes);
    WriteFile(path, all);
}

void AppendFile(const std::filesystem::path& path, std::string_view bytes) {
    WriteFile(path, ReadFile(path) + std::string(bytes));
}

void MakeReadOnly(const std::filesystem::path& path) {
    using std::filesystem::perms;
    std::filesystem::permissions(path, perms::owner_write | perms::group_write | perms::others_write,
                                 std::filesystem::perm_options::remove);
}

}  // namespace quillon::test
