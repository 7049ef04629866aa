// A BPS patch of a 32 MiB image with 100 edited texts, against one CRC-32
// pass over the image; the patch must also take under a second and stay small.
#include "history/patch.h"

#include "ratio.h"

#include <cstdio>
#include <random>
#include <string>

int main() {
    using namespace quillon;
    const std::size_t size = 32u << 20;
    std::string original(size, '\0');
    std::mt19937 rng(1);
    for (char& c : original) c = static_cast<char>(rng() % 200);
    std::string modified = original;
    for (int k = 0; k < 100; ++k) {
        const std::size_t at = 0x200 + rng() % (size - 0x400);
        for (std::size_t i = 0; i < 40; ++i) modified[at + i] = static_cast<char>(rng());
    }

    std::string patch;
    std::uint32_t crc = 0;
    auto c = bench::Compare([&] { patch = CreateBps(original, modified); }, [&] { crc = Crc32(original); }, 5);
    bool ok = bench::Report("BPS of 32 MiB, 100 edited texts", c, 8.0);
    ok &= c.subject < 1.0 && patch.size() < 100 * 40 + 1024 && crc != 0;
    std::printf("%-46s %11.3f s   patch %zu bytes %s\n", "  (goal: under 1 s, a few KiB)", c.subject, patch.size(),
                ok ? "ok" : "OVER");
    ok &= ApplyBps(original, patch) == modified;
    return ok ? 0 : 1;
}
