// FindBytes over a 32 MiB image against reading the whole file and memmem.
#include <quillon/core.h>

#include "ratio.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace {

std::int32_t WholeFileMemmem(const std::filesystem::path& path, const std::string& pattern) {
    std::string data(std::filesystem::file_size(path), '\0');
    std::FILE* f = std::fopen(path.c_str(), "rb");
    data.resize(std::fread(data.data(), 1, data.size(), f));
    std::fclose(f);
    const void* hit = memmem(data.data(), data.size(), pattern.data(), pattern.size());
    return hit ? static_cast<std::int32_t>(static_cast<const char*>(hit) - data.data()) : 0;
}

}  // namespace

int main() {
    using namespace quillon;
    const auto path = std::filesystem::temp_directory_path() / "quillon-bench-rom.gba";
    const std::size_t size = 32u << 20;
    std::string image(size, '\0');
    std::mt19937 rng(1);
    for (char& c : image) c = static_cast<char>(rng() % 200);  // text-like bytes, never 0xF0+
    const std::string pattern = "\xF1\xF2\xF3\xF4\xF5\xF6\xF7\xF8\xF9\xFA\xFB\xFC\xFD\xFE\xF0\xF1\xF2\xF3\xF4\xF5";
    image.replace(size - 700, pattern.size(), pattern);
    {
        std::ofstream out(path, std::ios::binary);
        out.write(image.data(), static_cast<std::streamsize>(image.size()));
    }
    const std::string missing = "\xF0\xF0\xF0\xF0\xF0\xF0\xF0\xF0";

    bool ok = true;
    std::int32_t found = 0, expected = 0;
    auto near = bench::Compare(
        [&] { std::int32_t start = 1; found = FindBytes(path, pattern, start); },
        [&] { expected = WholeFileMemmem(path, pattern); }, 9);
    ok &= found == expected && found == static_cast<std::int32_t>(size - 700);
    ok &= bench::Report("FindBytes 32 MiB, match in last KiB", near, 1.5);
    auto none = bench::Compare(
        [&] { std::int32_t start = 1; found = FindBytes(path, missing, start); },
        [&] { expected = WholeFileMemmem(path, missing); }, 9);
    ok &= found == 0 && expected == 0;
    ok &= bench::Report("FindBytes 32 MiB, no match", none, 1.5);
    std::filesystem::remove(path);
    return ok ? 0 : 1;
}
