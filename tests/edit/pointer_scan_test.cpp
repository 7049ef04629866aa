// The rewrites of a repoint found from the places the pointer index names
// are the ones the pass over the whole file finds, also where rewriting one
// place makes or breaks the pointer across its neighbours.
#include "edit/pointer_scan.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <random>

namespace quillon::test {
namespace {

TEST(PointerRewrites, FromTheIndexedPlacesAsFromAPassOverTheFile) {
    TempDir dir;
    const auto rom = dir.path() / "rom.gba";
    struct Case {
        std::string oldPointer, newPointer;
    };
    // Files of few byte values, so that matches overlap and rewrites make new ones.
    const Case cases[] = {
        {std::string("\x05\x01\x02\x08", 4), std::string("\x01\x02\x08\x08", 4)},  // a rewrite can make a match before it
        {std::string("\x08\x05\x05\x08", 4), std::string("\x05\x08\x05\x08", 4)},  // matches overlap by one byte
        {std::string("\x05\x08\x05\x08", 4), std::string("\x08\x05\x08\x08", 4)},  // by two: a rewrite breaks the next one
    };
    for (const Case& c : cases) {
        std::size_t rewrites = 0;
        for (std::uint32_t seed = 1; seed <= 20; ++seed) {
            std::mt19937 rng(seed);
            std::string bytes(4096, '\0');
            for (char& b : bytes) b = "\x01\x02\x05\x08"[rng() % 4];
            if (seed == 1) bytes.replace(0, 4, c.oldPointer);  // a match at offset 0 ends the scan
            WriteFile(rom, bytes);
            std::vector<std::uint32_t> places;
            for (auto at = bytes.find(c.oldPointer); at != std::string::npos; at = bytes.find(c.oldPointer, at + 1))
                places.push_back(static_cast<std::uint32_t>(at));
            std::vector<std::uint64_t> scanned, looked;
            for (const BytesAt& b : ScanPointerRewrites(rom, c.oldPointer, c.newPointer)) scanned.push_back(b.offset);
            for (const BytesAt& b : PointerRewritesAt(rom, places, c.oldPointer, c.newPointer)) {
                looked.push_back(b.offset);
                EXPECT_EQ(b.bytes, c.newPointer);
            }
            EXPECT_EQ(looked, scanned) << "seed " << seed;
            if (seed == 1) {
                EXPECT_TRUE(scanned.empty());
            }
            rewrites += scanned.size();
        }
        EXPECT_GT(rewrites, 100u);  // the files hold the pointer often enough to test anything
    }
}

}  // namespace
}  // namespace quillon::test
