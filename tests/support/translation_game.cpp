#include "support/translation_game.h"

#include "support/rom_builder.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <random>

namespace quillon::test {

std::string TextOfLength(std::size_t length, std::uint32_t seed) {
    static const char* const kPieces[] = {"a", "e", "o", "n", "s", "t", " ", "K", "R", "!", "\r\n", "[PLAYER]"};
    std::mt19937 rng(seed);
    std::string text;
    std::size_t bytes = 0;
    bool lineBreak = false;
    while (bytes < length) {
        std::size_t pick = rng() % 12;
        const std::size_t left = length - bytes;
        if ((pick == 11 && left < 2) || (pick == 10 && (lineBreak || text.empty() || left < 2))) pick = rng() % 6;
        text += kPieces[pick];
        bytes += pick == 11 ? 2 : 1;
        lineBreak = pick == 10;
    }
    if (lineBreak) text.replace(text.size() - 2, 2, "a");  // a text does not end in a line break
    return text;
}

GeneratedGame MakeGame(std::size_t size, std::size_t count, std::uint32_t seed) {
    GeneratedGame game;
    game.image.assign(size, '\x01');
    game.image.replace(0xA0, 12, std::string("QUILLONTEST\0", 12));
    game.image.replace(0xAC, 4, "QLNE");
    game.image.replace(0xB0, 2, "01");
    game.freeFrom = static_cast<std::uint32_t>(size - size / 4);
    game.image.replace(game.freeFrom, size - game.freeFrom, size - game.freeFrom, '\xFF');

    std::mt19937 rng(seed);
    const std::size_t firstTable = 0x1000, secondTable = 0x80000;
    std::uint32_t at = 0x100000;
    std::string section;
    for (std::size_t i = 0; i < count; ++i) {
        GameText t;
        t.section = "Section " + std::to_string(i / 100);
        t.key = "Text " + std::to_string(i);
        t.offset = at;
        t.text = TextOfLength(8 + rng() % 60, rng());
        const std::string bytes = HexToBytes(EncodeText(t.text, false));
        t.length = bytes.size();
        t.room = i % 10 == 3 ? 2 + rng() % 8 : 0;
        game.image.replace(at, bytes.size(), bytes);
        game.image[at + bytes.size()] = '\xFF';
        // The free bytes behind, then the one that stays free.
        game.image.replace(at + bytes.size() + 1, t.room ? t.room + 1 : 0, t.room ? t.room + 1 : 0, '\xFF');
        at += static_cast<std::uint32_t>(bytes.size() + 1 + (t.room ? t.room + 1 : 0) + 1);
        t.pointers.push_back(static_cast<std::uint32_t>(firstTable + 4 * i));
        if (i % 5 == 0) t.pointers.push_back(static_cast<std::uint32_t>(secondTable + 4 * (i / 5)));
        for (std::uint32_t p : t.pointers) game.image.replace(p, 4, PointerTo(t.offset));
        if (section != t.section) {
            section = t.section;
            game.offsetFile += "[" + section + "]\r\n";
        }
        game.offsetFile += t.key + "=" + PadHex(t.offset) + "\r\n";  // six digits
        game.texts.push_back(std::move(t));
    }
    return game;
}

}  // namespace quillon::test
