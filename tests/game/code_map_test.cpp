#include "game/code_map.h"
#include "game/words.h"
#include "support/game_image.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace quillon::game {
namespace {

// A text whose pointer 0x08012345 also reads as two Thumb instructions:
// 45 23 = mov r3, #0x45 and 01 08 = lsr r1, r0, #32.
constexpr std::uint32_t kText = 0x12345;
constexpr std::uint32_t kCode = 0x4000, kSize = 0x20000;

// Writes Thumb (and a little ARM) into an image of seeded random bytes.
struct Image {
    std::mt19937 random;
    std::string bytes;
    std::uint32_t at = 0;
    std::vector<std::pair<std::uint32_t, std::uint32_t>> calls;  // bl at, callee number
    std::vector<std::uint32_t> starts, pools;

    explicit Image(unsigned seed) : random(seed), bytes(kSize, 0) {
        for (char& c : bytes) c = static_cast<char>(random());
    }
    void H(std::uint32_t h) { Put(at, h, 2), at += 2; }
    void W(std::uint32_t w) { H(w & 0xFFFF), H(w >> 16); }
    void Put(std::uint32_t where, std::uint32_t value, int n) {
        for (int i = 0; i < n; ++i) bytes[where + i] = static_cast<char>(value >> (8 * i));
    }
    void Bl(std::uint32_t target) {
        const std::uint32_t off = target - (at + 4);
        H(0xF000 | (off >> 12 & 0x7FF)), H(0xF800 | (off >> 1 & 0x7FF));
    }
    // ldr Rd, [pc, #n] of a pool word still to come; Pool() places the words.
    void Ldr(std::vector<std::pair<std::uint32_t, std::uint32_t>>& loads, std::uint32_t word) {
        loads.push_back({at, word}), H(0x4800 | (random() % 8) << 8);
    }
    void Pool(const std::vector<std::pair<std::uint32_t, std::uint32_t>>& loads) {
        if (at % 4 != 0) H(0);
        for (const auto& [ldr, word] : loads)
            pools.push_back(at), bytes[ldr] = static_cast<char>((at - ((ldr + 4) & ~3u)) / 4), W(word);
    }
    // An agbcc-like function: push, a body of plain instructions, loads,
    // calls and early exits, then pop and bx, then the pool. A leaf saves
    // nothing, calls nothing and returns with bx lr.
    void Function(bool leaf, std::size_t functions) {
        starts.push_back(at);
        std::vector<std::pair<std::uint32_t, std::uint32_t>> loads;
        std::vector<std::uint32_t> exits;
        static constexpr std::pair<std::uint32_t, std::uint32_t> kPlain[] = {
            {0x2000, 0x7FF}, {0x3000, 0xFFF}, {0x1800, 0x3FF}, {0x4000, 0x3FF}, {0x6000, 0x1FFF}, {0x8000, 0xFFF}, {0x0400, 0x3FF}};
        if (!leaf) H(0xB5F0), calls.push_back({at, random() % functions}), Bl(at);
        for (int k = 6 + random() % 24; k > 0; --k) {
            switch (random() % 6) {
                case 0: Ldr(loads, random() % 2 ? PointerTo(kText) : 0x02000000 + random() % 0x40000); break;
                case 1: if (!leaf) calls.push_back({at, random() % functions}), Bl(at); break;
                case 2: exits.push_back(at), H(0xD000 | (random() % 14) << 8); break;
                default: auto [base, mask] = kPlain[random() % 7]; H(base | (random() & mask));
            }
        }
        for (std::uint32_t e : exits) bytes[e] = static_cast<char>((at - (e + 4)) / 2);
        if (leaf) H(0x4770);
        else H(0xBCF0), H(0xBC01), H(0x4700);  // pop {r4-r7}; pop {r0}; bx r0
        Pool(loads);
    }
};

// The ARM start-up code, texts and a callback, 24 functions of a seeded mix
// with four made to order among them, then a pointer table and script-like
// bytes, all among random bytes.
struct Layout {
    Image image;
    std::uint32_t lookalike = 0, farPool = 0, b5Pool = 0, table = 0, codeEnd = 0;
    std::vector<std::uint32_t> tableWords;

    explicit Layout(unsigned seed) : image(seed) {
        Image& m = image;
        m.Put(0, 0xEA00002E, 4);  // b 0xC0: the ARM start-up code
        m.at = 0xC0, m.W(0xE92D4010), m.W(0xE59F0004), m.W(0xE3A04001), m.W(0xE8BD8010), m.W(0x03007FF0);
        m.at = kCode - 12, m.W(0xBDBB00FF), m.W(0xBDBB00FF);  // texts " AC"; an odd pointer leads to the first
        m.H(0x2001), m.H(0x4770);  // a callback that only a pointer leads to
        constexpr std::size_t kFunctions = 24;
        for (std::size_t i = 0; i < kFunctions; ++i) {
            m.Function(i % 5 == 3 && i + 1 < kFunctions, kFunctions);
            if (i == 4) {  // the lookalike, half-way into a word, in a function that calls out
                m.starts.push_back(m.at), m.H(0xB500), m.Bl(kCode);
                if (m.at % 4 == 0) m.H(0x1C00);
                lookalike = m.at, m.H(kText & 0xFFFF), m.H(0x0800 | kText >> 16), m.H(0xBD00);
            } else if (i == 9) {  // a far jump (bl) over a pool word that decodes as instructions
                m.starts.push_back(m.at), m.H(0xB510);
                const std::uint32_t ldr = m.at;
                m.H(0x4800), m.Bl(kCode);
                const std::uint32_t jump = m.at;
                if ((m.at += 4) % 4 != 0) m.H(0);
                farPool = m.at, m.W(PointerTo(kText));
                const std::uint32_t target = m.at;
                m.H(0x2000), m.H(0xBC10), m.H(0xBC02), m.H(0x4708);
                m.Put(ldr, (farPool - ((ldr + 4) & ~3u)) / 4, 1), m.at = jump, m.Bl(target), m.at = target + 8;
            } else if (i == 14) {  // a leaf whose pool word reads as push {.., lr}, right before a function
                if (m.at % 4 != 0) m.H(0);
                m.H(0x4800), m.H(0x4770), b5Pool = m.at, m.W(0x0801B5F1);
            } else if (i == 19) {  // a switch of three cases through a table after its pool
                m.starts.push_back(m.at), m.H(0xB500), m.Bl(kCode), m.H(0x2802);
                const std::uint32_t bhi = m.at;
                m.H(0xD800), m.H(0x0080);
                const std::uint32_t ldr = m.at;
                m.H(0x4900), m.H(0x1840), m.H(0x6800), m.H(0x4687);
                if (m.at % 4 != 0) m.H(0);
                m.Put(ldr, (m.at - ((ldr + 4) & ~3u)) / 4, 1), m.W(PointerTo(m.at + 4)), table = m.at, m.at += 12;
                std::vector<std::uint32_t> jumps;
                for (std::uint32_t k = 0; k < 3; ++k)
                    m.Put(table + 4 * k, PointerTo(m.at), 4), m.H(0x2001 + k), jumps.push_back(m.at), m.H(0xE000);
                m.Put(bhi, (m.at - (bhi + 4)) / 2, 1), m.H(0x2000);  // default
                for (std::uint32_t j : jumps) m.Put(j, (m.at - (j + 4)) / 2, 1);
                m.H(0xBC02), m.H(0x4708);
            }
        }
        codeEnd = m.at;
        for (const auto& [bl, callee] : m.calls) m.at = bl, m.Bl(m.starts[callee]);
        // After the code: a table of text pointers, then script-like bytes
        // with text pointers as unaligned operands.
        m.at = codeEnd, m.W(PointerTo(kCode - 4) + 1), m.W(PointerTo(kCode - 11));
        while (m.at < codeEnd + 64) tableWords.push_back(m.at), m.W(PointerTo(kText + m.at % 7));
        for (int k = 0; k < 64; ++k) m.H(0x000F | (k % 3) << 8), m.W(PointerTo(kText)), m.H(0x0209);
        m.Put(kText, 0xFFD9E0C2, 4);
    }
};

TEST(FindCode, MarksTheFunctionsTheirPoolsAndLookalikesAndNothingElse) {
    for (unsigned seed : {1u, 2u, 3u}) {
        const Layout l(seed);
        const CodeMap map = FindCode(l.image.bytes);
        EXPECT_EQ(map.Code(), (std::vector<Span>{{0xC0, 0x14}, {kCode - 4, l.codeEnd - kCode + 4}})) << seed;
        EXPECT_TRUE(map.IsPoolWord(0xD0)) << "ARM pool";
        EXPECT_TRUE(map.IsLookalike(l.lookalike)) << seed;
        for (std::uint32_t pool : l.image.pools) EXPECT_TRUE(map.IsPoolWord(pool) && !map.IsLookalike(pool)) << seed;
        for (std::uint32_t pool : {l.farPool, l.b5Pool, l.table, l.table + 8})
            EXPECT_TRUE(map.IsPoolWord(pool) && !map.IsLookalike(pool)) << seed << " " << pool;
        for (std::uint32_t word : l.tableWords) EXPECT_FALSE(map.IsCode(word) || map.IsLookalike(word + 1)) << seed;
    }
}

// Past a far jump (a bl to code that does not save lr) lies a loop with a
// far jump of its own and a way that faults: the trace ends without the loop.
TEST(FindCode, DropsTheWayOnAfterAFarJumpWhenItFaults) {
    Image m(5);
    const std::uint32_t leaf = kCode + 0x200, far = leaf + 2, loop = kCode + 14;
    m.at = leaf, m.H(0xB500), m.H(0xBD00);
    m.at = kCode, m.H(0xB500), m.Bl(leaf), m.H(0xD000), m.H(0xBD00), m.Bl(far);  // beq over pop {pc} to bl far
    m.H(0xD002), m.Bl(far), m.H(0xE7FB), m.H(0xDE00);  // loop: beq fault; bl far; b loop; fault: undefined
    const CodeMap map = FindCode(m.bytes);
    EXPECT_TRUE(map.IsCode(loop - 4) && !map.IsCode(loop)) << "the far jump is code, the way on is not";
}

// Each family's generated images: their code regions are the code, with
// their pool words and the pointers that instructions only look like.
TEST(FindCode, FindsTheCodeOfGeneratedImages) {
    for (const Family family : {Family::RubySapphire, Family::FireRedLeafGreen, Family::Emerald}) {
        for (std::uint32_t seed = 1; seed <= 10; ++seed) {
            const test::GameImage g = test::MakeGameImage(family, seed);
            const CodeMap map = FindCode(g.image);
            std::vector<Span> code;
            for (const auto& [start, end] : g.code) code.push_back({start, end - start});
            EXPECT_EQ(map.Code(), code) << static_cast<int>(family) << " " << seed;
            for (const test::PlacedPointer& p : g.pointers) {
                EXPECT_TRUE(p.kind != "pool" || map.IsPoolWord(p.place)) << seed << std::hex << " " << p.place;
                EXPECT_TRUE(p.kind != "code" || map.IsLookalike(p.place)) << seed << std::hex << " " << p.place;
            }
        }
    }
}

TEST(FindCode, MarksBinaryDataThatAPointerLeadsTo) {
    Image m(7);
    std::string& b = m.bytes;
    // 64 bytes: a flag byte and 8 literals, then a flag byte and 7 copies of 8 bytes from 8 back.
    const std::string stream = std::string("\x10\x40\x00\x00\x00\x01\x02\x03\x04\x05\x06\x07\x08\xFF", 14) +
                               std::string("\x50\x07\x50\x07\x50\x07\x50\x07\x50\x07\x50\x07\x50\x07", 14);
    b.replace(0x8000, stream.size(), stream);
    b.replace(0x9000, stream.size(), stream);  // the same bytes that no pointer leads to
    // A looped sample of 100 bytes at 13379 Hz.
    m.Put(0xA000, 0x40000000, 4), m.Put(0xA004, 13379 * 1024, 4), m.Put(0xA008, 10, 4), m.Put(0xA00C, 100, 4);
    m.Put(0x7000, PointerTo(0x8000), 4), m.Put(0x7004, PointerTo(0xA000), 4);
    const CodeMap map = FindCode(b);
    struct Case { std::uint32_t at; bool binary; } cases[] = {
        {0x8000, true}, {0x8000 + 27, true}, {0x8000 + 28, false}, {0x9001, false},
        {0xA000, true}, {0xA000 + 16 + 100, true}, {0xA000 + 16 + 101, false}};
    for (const Case& c : cases) EXPECT_EQ(map.IsBinaryData(c.at), c.binary) << std::hex << c.at;
    EXPECT_TRUE(map.IsLookalike(0x8001));
}

}  // namespace
}  // namespace quillon::game
