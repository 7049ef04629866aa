#include "game/script_walker.h"

#include "game/words.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace quillon::game {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Pieces = std::vector<std::pair<std::uint32_t, Bytes>>;
constexpr Family RS = Family::RubySapphire, FR = Family::FireRedLeafGreen, EM = Family::Emerald;
constexpr auto T = Role::Text, S = Role::Script, D = Role::Data;

// The four bytes of a pointer to `offset`, then `tail`.
Bytes P(std::uint32_t offset, Bytes tail = {}) {
    const std::uint32_t word = PointerTo(offset);
    for (int shift = 24; shift >= 0; shift -= 8) tail.insert(tail.begin(), std::uint8_t(word >> shift));
    return tail;
}
Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}
// 0xFF everywhere else: no command in any family, and the end of a text.
std::string Image(const Pieces& pieces) {
    std::string image(0x800, '\xFF');
    for (const auto& [at, bytes] : pieces) std::copy(bytes.begin(), bytes.end(), image.begin() + at);
    return image;
}

struct WalkCase {
    const char* name;
    Family family;
    Pieces pieces;
    std::vector<ScriptPointer> expected;
    std::vector<ScriptEntry> entries{{0x100, 0}};
};

TEST(ScriptWalker, RecordsThePointersOfEachPath) {
    const WalkCase cases[] = {
        {"msgbox keeps its callstd", FR, {{0x100, Cat({{0x0F, 0}, P(0x300, {0x09, 4, 0x02})})}}, {{0x102, 0x300, T, 0x0F, 0, 4}}},
        {"message 0 shows bank 0", RS, {{0x100, Cat({{0x0F, 0}, P(0x300, {0x67, 0, 0, 0, 0, 0x02})})}}, {{0x102, 0x300, T, 0x0F, 0}}},
        {"so does callstd_if", EM, {{0x100, Cat({{0x0F, 0}, P(0x300, {0x0B, 1, 5, 0x02})})}}, {{0x102, 0x300, T, 0x0F, 0, 5}}},
        {"bank 1 is data", EM, {{0x100, Cat({{0x0F, 1}, P(0x300, {0x09, 4, 0x02})})}}, {{0x102, 0x300, D, 0x0F, 0}}},
        {"goto_if, call and a goto back",
         FR,
         {{0x100, Cat({{0x06, 1}, P(0x120, {0x04}), P(0x130, {0x05}), P(0x100)})},
          {0x120, Cat({{0x67}, P(0x300, {0x02})})},
          {0x130, Cat({{0x67}, P(0x310, {0x03})})}},
         {{0x102, 0x120, S, 0x06, 0}, {0x107, 0x130, S, 0x04, 0}, {0x10C, 0x100, S, 0x05, 0},
          {0x121, 0x300, T, 0x67, 0}, {0x131, 0x310, T, 0x67, 0}}},
        {"an unknown byte drops its path and the path's branches",
         FR,
         {{0x100, Cat({{0x06, 1}, P(0x120, {0x67}), P(0x300, {0xFF})})},
          {0x120, Cat({{0x67}, P(0x310, {0x02})})},
          {0x140, Cat({{0x67}, P(0x320, {0x02})})}},
         {{0x141, 0x320, T, 0x67, 5}},
         {{0x100, 0}, {0x140, 5}}},
        {"a text outside the cartridge drops the path", EM, {{0x100, {0x67, 0xFF, 0xFF, 0xFF, 0x07, 0x02}}}, {}},
        {"braille, mart and movement",
         FR,
         {{0x100, Cat({{0x78}, P(0x320, {0x86}), P(0x340, {0x4F, 1, 0}), P(0x350, {0x02})})}},
         {{0x101, 0x320, Role::BrailleText, 0x78, 0}, {0x106, 0x340, Role::Mart, 0x86, 0},
          {0x10D, 0x350, Role::Movement, 0x4F, 0}}},
        {"a mart list is halfword-aligned", FR, {{0x100, Cat({{0x86}, P(0x341, {0x02})})}}, {}},
        {"FireRed's braillemessage may show bank 0", FR, {{0x100, Cat({{0x78, 0, 0, 0, 0, 0x67}, P(0x300, {0x02})})}}, {{0x106, 0x300, T, 0x67, 0}}},
        {"Ruby's braillemessage needs its text", RS, {{0x100, Cat({{0x78, 0, 0, 0, 0, 0x67}, P(0x300, {0x02})})}}, {}},
        {"pokenavcall is Emerald's", EM, {{0x100, Cat({{0xDF}, P(0x300, {0x02})})}}, {{0x101, 0x300, T, 0xDF, 0}}},
        {"and unknown to FireRed", FR, {{0x100, Cat({{0xDF}, P(0x300, {0x02})})}}, {}},
        {"the first entry owns what both reach",
         RS,
         {{0x100, Cat({{0x05}, P(0x120)})}, {0x120, Cat({{0x67}, P(0x300, {0x02})})}},
         {{0x101, 0x120, S, 0x05, 7}, {0x121, 0x300, T, 0x67, 7}},
         {{0x100, 7}, {0x120, 3}}},
        {"falling into a walked script",
         FR,
         {{0x100, Cat({{0x67}, P(0x300)})}, {0x105, Cat({{0x67}, P(0x310, {0x02})})}},
         {{0x101, 0x300, T, 0x67, 2}, {0x106, 0x310, T, 0x67, 1}},
         {{0x105, 1}, {0x100, 2}}},
        {"a command over walked bytes drops its path",
         FR,
         {{0x0F8, Cat({{0x67}, P(0x330, {0x4F, 1, 0})})}, {0x100, {0x68, 0x02, 0x00, 0x08, 0x02}}},
         {},
         {{0x100, 0}, {0x0F8, 0}}},
        {"v addresses are pointers after a setvaddress naming itself", FR, {{0x100, Cat({{0xB8}, P(0x100, {0xBD}), P(0x300, {0x02})})}}, {{0x106, 0x300, T, 0xBD, 0}}},
        {"and opaque after any other", EM, {{0x100, Cat({{0xB8}, P(0x180, {0xBD}), P(0x300, {0x02})})}}, {}},
    };
    for (const WalkCase& c : cases) {
        const std::string image = Image(c.pieces);
        EXPECT_EQ(WalkScripts(image, c.family, c.entries).pointers, c.expected) << c.name;
    }
}

TEST(ScriptWalker, MergesTheBytesOfWalkedCommands) {
    const std::string image = Image({{0x100, Cat({{0x04}, P(0x120, {0x02})})}, {0x120, Cat({{0x67}, P(0x300, {0x03})})}});
    const std::vector<Span> expected{{0x100, 6}, {0x120, 6}};
    EXPECT_EQ(WalkScripts(image, EM, {{0x100}}).scripts, expected);
}

TEST(ScriptWalker, ReadsEveryTrainerBattleTypeOfEachFamily) {
    // The pointers after type, trainer and local id, from the games' battle
    // setup tables: t a text, S the script the battle continues with.
    const char* layouts[] = {"tt", "ttS", "ttS", "t", "ttt", "tt", "tttS", "ttt", "tttS", "tt", "tt", "tt", "tt"};
    const std::pair<Family, int> undefined[] = {{RS, 9}, {FR, 10}, {EM, 13}};  // first type a family lacks
    for (const auto& [family, first] : undefined) {
        for (int type = 0; type <= first; ++type) {
            Bytes battle{0x5C, std::uint8_t(type), 1, 0, 0, 0};
            std::vector<ScriptPointer> expected;
            const std::string layout = type < first ? layouts[type] : "tt";
            for (std::size_t i = 0; i < layout.size(); ++i) {
                const std::uint32_t target = layout[i] == 'S' ? 0x200 : 0x300 + 0x10 * std::uint32_t(i);
                expected.push_back({0x106 + 4 * std::uint32_t(i), target, layout[i] == 'S' ? S : T, 0x5C, 0});
                battle = Cat({battle, P(target)});
            }
            battle.push_back(0x02);
            if (layout.back() == 'S') expected.push_back({0x201, 0x380, T, 0x67, 0});
            if (type == first) expected.clear();
            const std::string image = Image({{0x100, battle}, {0x200, Cat({{0x67}, P(0x380, {0x02})})}});
            EXPECT_EQ(WalkScripts(image, family, {{0x100, 0}}).pointers, expected) << int(family) << " type " << type;
        }
    }
}

TEST(ScriptWalker, ProbeWalksUnreferencedScriptsWhereTheyLie) {
    const std::string image = Image({
        {0x100, Cat({{0x67}, P(0x300, {0x02})})},
        {0x106, Cat({{0x0F, 0}, P(0x310, {0x09, 2, 0x02})})},    // right after the walked script
        {0x300, {0xBB, 0xFF}},                                   // a text, then a script
        {0x302, Cat({{0x67}, P(0x320, {0x02})})},
        {0x400, Cat({{0xB8}, P(0x400, {0xBD}), P(0x330, {0x02})})},  // laid out to be copied to RAM
        {0x180, Cat({{0x67}, P(0x186, {0x02})})},
        {0x186, Cat({{0x67}, P(0x340, {0x02})})},                 // a text that reads as a script
        {0x1C0, Cat({{0x05}, P(0x180, {0x02, 0x67}), P(0x350, {0x02})})},  // after a goto's dead end
    });
    const std::vector<ScriptPointer> expected{{0x101, 0x300, T, 0x67, 4}, {0x108, 0x310, T, 0x0F, 4, 2},
                                              {0x181, 0x186, T, 0x67, 4}, {0x1C1, 0x180, S, 0x05, 4},
                                              {0x1C7, 0x350, T, 0x67, 4}, {0x303, 0x320, T, 0x67, 4},
                                              {0x406, 0x330, T, 0xBD, -1}};
    const std::vector<ScriptEntry> entries{{0x100, 4}, {0x180, 4}, {0x1C0, 4}};
    EXPECT_EQ(WalkScripts(image, FR, entries).pointers.size(), 3u);
    EXPECT_EQ(WalkScripts(image, FR, entries, Unreferenced::Probe).pointers, expected);
}

TEST(ScriptWalker, ProbeRefusesWhatNoScriptHolds) {
    const Bytes msgbox = Cat({{0x0F, 0}, P(0x300, {0x09, 4, 0x02})});
    const std::pair<Bytes, bool> cases[] = {
        {msgbox, true},
        {{0x02}, false},                                         // nothing that leads anywhere
        {Cat({{0x68, 0x68, 0x68, 0x68, 0x67}, P(0x300, {0xFF})}), false},  // no clean end
        {Cat({{0x06, 6}, P(0x120, {0x02})}), false},             // condition beyond the six
        {Cat({{0x0F, 0}, P(0x300, {0x09, 10, 0x02})}), false},   // FireRed has ten standard scripts
        {Cat({{0x16, 0x34, 0x12, 1, 0}, msgbox}), false},        // setvar on no variable
        {Cat({{0x10, 4, 1}, msgbox}), false},                    // a fifth bank
        {Cat({{0x85, 3}, P(0x300, {0x02})}), false},             // a fourth string buffer
        {Cat({{0x00, 0x00}, msgbox}), false},                    // zeros
        {Cat({{0x94, 0x00, 0x00}, msgbox}), true},               // hidemoneybox's two dummy bytes
        {Cat({{0x05}, P(0x500)}), false},                        // goto into no script
        {Cat({{0x05}, P(0x140)}), false},                        // into commands that never end
        {Cat({{0x23}, P(0x200), msgbox}), false},                // native code lies at odd addresses
        {Cat({{0x05}, P(0x120)}), true},
        {Cat({{0x4F, 1, 0}, P(0x600, {0x02})}), false},          // movement with no step_end
        {Cat({{0x4F, 1, 0}, P(0x610, {0x02})}), true},
    };
    for (const auto& [bytes, passes] : cases) {
        const std::string image = Image({{0x100, bytes}, {0x120, msgbox}, {0x140, Bytes(5, 0x68)}, {0x610, {0x12, 0xFE}}});
        EXPECT_EQ(ParsesAsScript(image, FR, 0x100), passes) << testing::PrintToString(bytes);
    }
}

TEST(ScriptLanguage, EachFamilyHasItsOwnTable) {
    const std::pair<Family, int> counts[] = {{RS, 0xC6}, {FR, 0xD5}, {EM, 0xE3}};
    for (const auto& [family, count] : counts) {
        int known = 0;
        for (int code = 0; code < 256; ++code) known += FindCommand(family, std::uint8_t(code)) != nullptr;
        EXPECT_EQ(known, count) << int(family);
        EXPECT_NE(FindCommand(family, std::uint8_t(count - 1)), nullptr) << int(family);
    }
    EXPECT_EQ(CommandName(FR, 0xC8), "loadhelp");
    EXPECT_EQ(CommandName(EM, 0xC8), "nop1");
    EXPECT_EQ(CommandName(RS, 0xC8), "");
}

}  // namespace
}  // namespace quillon::game
