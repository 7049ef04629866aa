#include "support/text_rom.h"

#include "support/rom_builder.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <algorithm>
#include <cctype>
#include <random>
#include <stdexcept>
#include <tuple>

namespace quillon::test {
namespace {

using namespace std::string_literals;
using Rng = std::mt19937;

std::uint32_t Below(Rng& rng, std::size_t n) { return static_cast<std::uint32_t>(rng() % n); }
bool Chance(Rng& rng, double p) { return std::uniform_real_distribution<double>(0, 1)(rng) < p; }
std::string Byte(std::uint32_t b) { return std::string(1, static_cast<char>(b)); }

// The generator writes letters, digits, blanks and punctuation only.
std::string Encode(std::string_view ascii) { return HexToBytes(EncodeText(ascii, false)); }

std::string Word(Rng& rng, bool capital) {
    static constexpr std::string_view kOnsets[] = {"b", "c", "d", "f", "g", "h", "k", "l", "m", "n", "p", "r",
                                                   "s", "t", "v", "w", "z", "br", "st", "tr", "sh", "ch", ""};
    static constexpr std::string_view kVowels[] = {"a", "e", "i", "o", "u", "ea", "ou", "ai", "y"};
    static constexpr std::string_view kCodas[] = {"", "", "", "n", "r", "s", "t", "l", "m", "ck", "nd"};
    std::string w;
    for (std::uint32_t i = 0, n = 1 + Below(rng, 3); i < n; ++i) {
        w += kOnsets[Below(rng, std::size(kOnsets))];
        w += kVowels[Below(rng, std::size(kVowels))];
        w += kCodas[Below(rng, std::size(kCodas))];
    }
    if (capital) w[0] = static_cast<char>(std::toupper(w[0]));
    return w;
}

// Dialogue: sentences broken into lines of about 30 characters, with
// [PLAYER] or [RIVAL], [PK][MN], numbers and colour codes here and there.
std::string Dialogue(Rng& rng) {
    static constexpr char kLineBreaks[] = {'\xFE', '\xFE', '\xFA', '\xFB'};
    std::string out;
    std::size_t line = 0;
    for (std::uint32_t s = 0, sentences = 1 + Below(rng, 3); s < sentences; ++s) {
        for (std::uint32_t w = 0, words = 2 + Below(rng, 9); w < words; ++w) {
            std::string bytes;
            std::size_t shown = 7;  // a tag's width in characters
            if (Chance(rng, 0.06)) {
                bytes = Chance(rng, 0.7) ? "\xFD" + Byte(1) : "\xFD\x06";  // [PLAYER], [RIVAL]
            } else if (Chance(rng, 0.03)) {
                bytes = "\x53\x54";  // [PK][MN]
            } else {
                const std::string word = Chance(rng, 0.04) ? std::to_string(Below(rng, 1000)) : Word(rng, w == 0);
                bytes = (Chance(rng, 0.05) ? "\xFC\x01" + Byte(1 + Below(rng, 8)) : "") + Encode(word);
                shown = word.size();
            }
            if (w + 1 == words) bytes += Encode(std::string(1, ".!?"[Below(rng, 3)]));
            else if (Chance(rng, 0.1)) bytes += Encode(",");
            if (line > 0 && line + shown + 1 > 30) {
                out.back() = kLineBreaks[Below(rng, 4)];  // the blank before the word
                line = 0;
            }
            out += bytes + '\x00';
            line += shown + 1;
        }
    }
    out.pop_back();  // the blank after the last word
    return out;
}

// A menu label or a name: capitalised or upper-case words, sometimes a number.
std::string Label(Rng& rng) {
    const bool caps = Chance(rng, 0.3);
    std::string out;
    for (std::uint32_t w = 0, words = 1 + Below(rng, 3); w < words; ++w) {
        std::string word = Word(rng, true);
        if (word.size() < 2) word += 'a';
        if (caps) std::ranges::transform(word, word.begin(), [](unsigned char c) { return std::toupper(c); });
        out += (w ? " " : "") + word;
    }
    if (Chance(rng, 0.2)) out += " " + std::to_string(1 + Below(rng, 120));
    return Encode(out);
}

// Thumb-like instructions: the high byte picks a family (a range of values)
// as often as compilers emit it, the low byte is random.
void Instruction(Rng& rng, std::string& out) {
    static constexpr std::pair<unsigned, unsigned> kFamilies[] = {
        {0x20, 0x27}, {0x1C, 0x1F}, {0x68, 0x6F}, {0x60, 0x67}, {0x48, 0x4F}, {0x40, 0x47}, {0x80, 0x8F},
        {0x70, 0x7F}, {0xB4, 0xB5}, {0xBC, 0xBD}, {0xD0, 0xDE}, {0xE0, 0xE7}, {0x00, 0x0F}, {0x18, 0x1B},
        {0x28, 0x2F}, {0x30, 0x3F}, {0x90, 0x9F}, {0xA0, 0xAF}, {0xF0, 0xF7}};
    static std::discrete_distribution<std::size_t> pick({10, 8, 8, 6, 6, 6, 4, 4, 2, 2, 6, 3, 6, 4, 5, 5, 4, 2, 5});
    const auto [low, high] = kFamilies[pick(rng)];
    out += Byte(rng()) + Byte(low + Below(rng, high - low + 1));
    if (low == 0xF0) out += Byte(rng()) + Byte(0xF8 + Below(rng, 8));  // a long branch is a pair
}

// One region of the image: its bytes, the texts in it, its functions'
// instruction ranges, and the pointers to fill in once every region has its
// place (to a text, or to a random place in filler or code).
struct Region {
    bool decoyArea = false;  // random filler or code
    std::string bytes;
    std::vector<std::pair<std::size_t, std::size_t>> texts;   // where each text begins, and its index
    std::vector<std::pair<std::size_t, std::size_t>> bodies;  // instruction ranges
    std::vector<std::tuple<std::size_t, long, Planted>> slots;  // place, text (-1: a decoy), kind
    std::size_t at = 0;
    void Slot(long text, Planted kind) {
        slots.emplace_back(bytes.size(), text, kind);
        bytes.append(4, '\0');
    }
};

}  // namespace

TextRom GenerateTextRom(std::uint32_t seed, std::size_t size) {
    Rng rng(seed);
    const std::size_t textCount = size / 2800;
    std::vector<bool> referenced(textCount);
    std::vector<Region> regions;
    // Text blocks of 30 to 300 texts, each text after the previous one's
    // terminator, the block padded to 4 bytes with 0x00 or 0xFF.
    for (std::size_t i = 0; i < textCount;) {
        Region& r = regions.emplace_back();
        for (std::size_t n = 30 + Below(rng, 271); n > 0 && i < textCount; --n, ++i) {
            const std::string text = Below(rng, 100) < 75 ? Dialogue(rng) : Label(rng);
            referenced[i] = !Chance(rng, 0.08);
            r.texts.push_back({r.bytes.size(), i});
            r.bytes += text + '\xFF';
        }
        r.bytes.resize((r.bytes.size() + 3) & ~std::size_t{3}, Chance(rng, 0.5) ? '\x00' : '\xFF');
    }

    // Each referenced text gets one or two references of these kinds.
    std::vector<long> tableRefs, scriptRefs, poolRefs;
    for (std::size_t i = 0; i < textCount; ++i) {
        for (int k = referenced[i] ? 1 + Chance(rng, 0.15) : 0; k > 0; --k) {
            const std::uint32_t r = Below(rng, 100);
            (r < 45 ? tableRefs : r < 80 ? scriptRefs : poolRefs).push_back(static_cast<long>(i));
        }
    }
    for (auto* refs : {&tableRefs, &scriptRefs, &poolRefs}) std::shuffle(refs->begin(), refs->end(), rng);

    // Pointer tables; a tenth of them point at data that is no text.
    for (std::size_t i = 0; i < tableRefs.size();) {
        Region& r = regions.emplace_back();
        const bool decoy = Chance(rng, 0.1);
        for (std::size_t n = 10 + Below(rng, 190); n > 0 && (decoy || i < tableRefs.size()); --n)
            r.Slot(decoy ? -1 : tableRefs[i++], Planted::Table);
    }

    // Event scripts: byte-packed commands, so their pointers fall anywhere.
    for (std::size_t i = 0; i < scriptRefs.size();) {
        Region& r = regions.emplace_back();
        std::string& s = r.bytes;
        for (std::size_t n = 5 + Below(rng, 36); n > 0 && i < scriptRefs.size(); --n) {
            if (Chance(rng, 0.5)) s += "\x6A";  // lock
            if (Chance(rng, 0.5)) s += "\x5A";  // face the player
            // A message (with its box kind and a wait for a key after it), or
            // another command that takes a text.
            const std::uint32_t command = Below(rng, 100);
            if (command < 50) s += "\x0F" + Byte(Below(rng, 4));
            else if (command >= 75 && command < 85) s += "\x85" + Byte(Below(rng, 3));
            else s += command < 65 ? "\x67" : command < 75 ? "\x9B" : command < 90 ? "\x78" : "\xBD";
            r.Slot(scriptRefs[i++], Planted::Script);
            if (command < 50) s += "\x09" + Byte(2 + Below(rng, 5));
            if (Chance(rng, 0.3)) s += "\x6C";  // release
            s += "\x02";                        // end
        }
    }

    // Functions of Thumb-like code, each followed by its literal pool of
    // text pointers, decoy pointers, constants and work-memory addresses.
    const std::size_t functions = std::max<std::size_t>(poolRefs.size(), size / 4096);
    for (std::size_t f = 0, i = 0; f < functions;) {
        Region& r = regions.emplace_back();
        r.decoyArea = true;
        for (std::size_t n = 20 + Below(rng, 60); n > 0 && f < functions; --n, ++f) {
            const std::size_t begin = r.bytes.size();
            for (std::uint32_t k = 0, count = 16 + Below(rng, 300); k < count; ++k) Instruction(rng, r.bytes);
            r.bytes += Chance(rng, 0.5) ? "\x70\x47" : "\x00\xBD"s;
            if (r.bytes.size() % 4) r.bytes += "\xC0\x46";  // nop
            r.bodies.push_back({begin, r.bytes.size()});
            for (std::uint32_t k = 0, words = 1 + Below(rng, 6); k < words; ++k) {
                const std::uint32_t what = Below(rng, 100);
                if (what < 35 && i < poolRefs.size()) {
                    r.Slot(poolRefs[i++], Planted::Pool);
                } else if (what < 55) {
                    r.Slot(-1, Planted::Pool);
                } else {
                    const std::uint32_t v =
                        Chance(rng, 0.5) ? Below(rng, 0x10000) : 0x02000000u + Below(rng, 0x40000);
                    for (int b = 0; b < 4; ++b) r.bytes += Byte(v >> (8 * b) & 0xFF);
                }
            }
            for (; f + 1 == functions && i < poolRefs.size(); ++i) r.Slot(poolRefs[i], Planted::Pool);
        }
    }

    // Random filler (compressed graphics and the like) and runs of 0xFF fill
    // the rest; the last eighth of the image is free space.
    std::size_t used = 0xC0;
    for (const Region& r : regions) used += r.bytes.size() + 3;
    const std::size_t freeTail = size / 8;
    if (used + freeTail > size) throw std::length_error("the image is too small for its contents");
    for (std::size_t left = size - freeTail - used; left > 64;) {
        const bool ffRun = Chance(rng, 0.15);
        const std::size_t want = ffRun ? 16 + Below(rng, 4096) : 4096 + Below(rng, 200000);
        Region& r = regions.emplace_back();
        r.decoyArea = true;
        r.bytes.resize(std::min(left, want) & ~std::size_t{3}, '\xFF');  // at least 16 bytes
        if (!ffRun) std::ranges::generate(r.bytes, [&rng] { return static_cast<char>(rng() & 0xFF); });
        left -= r.bytes.size();
    }
    std::shuffle(regions.begin(), regions.end(), rng);

    // Lay out, every region 4-byte aligned, then fill in the pointers.
    RomBuilder image(size);
    image.Title("DISCOVERTEST").Code("QDSE").Maker("01");
    std::size_t at = 0xC0;
    std::vector<std::uint32_t> textOffset(textCount);
    std::vector<std::pair<std::size_t, std::size_t>> decoyAreas, bodies;
    for (Region& r : regions) {
        r.at = at = (at + 3) & ~std::size_t{3};
        image.Put(at, r.bytes);
        for (const auto& [start, id] : r.texts) textOffset[id] = static_cast<std::uint32_t>(at + start);
        if (r.decoyArea) decoyAreas.push_back({at, r.bytes.size()});
        for (const auto& [b, e] : r.bodies) bodies.push_back({at + b, at + e});
        at += r.bytes.size();
    }
    TextRom rom;
    std::vector<std::uint32_t> referencedOffsets;
    for (std::size_t i = 0; i < textCount; ++i) {
        rom.texts.push_back({textOffset[i], referenced[i]});
        if (referenced[i]) referencedOffsets.push_back(textOffset[i]);
    }
    std::ranges::sort(rom.texts, {}, &PlantedText::offset);

    std::vector<bool> taken(size);  // bytes of pointers planted so far
    auto plant = [&](std::size_t place, std::uint32_t target) {
        image.Pointer(place, target);
        std::fill_n(taken.begin() + static_cast<std::ptrdiff_t>(place), 4, true);
    };
    for (const Region& r : regions) {
        for (const auto& [place, text, kind] : r.slots) {
            if (text < 0) {
                const auto& [from, n] = decoyAreas[Below(rng, decoyAreas.size())];
                plant(r.at + place, static_cast<std::uint32_t>(from + Below(rng, n)));
                continue;
            }
            const std::uint32_t target = textOffset[static_cast<std::size_t>(text)];
            plant(r.at + place, target);
            rom.pointers.push_back({static_cast<std::uint32_t>(r.at + place), target, kind});
        }
    }
    // Copies of text pointers inside instructions, as code holds them by chance.
    for (std::size_t n = size / 6000; n > 0 && !bodies.empty() && !referencedOffsets.empty();) {
        const auto& [b, e] = bodies[Below(rng, bodies.size())];
        const std::size_t place = b + Below(rng, e - b - 3);
        if (std::any_of(taken.begin() + static_cast<std::ptrdiff_t>(place) - 2,
                        taken.begin() + static_cast<std::ptrdiff_t>(place) + 6, [](bool x) { return x; }))
            continue;
        const std::uint32_t target = referencedOffsets[Below(rng, referencedOffsets.size())];
        plant(place, target);
        rom.pointers.push_back({static_cast<std::uint32_t>(place), target,
                                place % 4 == 0 ? Planted::CodeAligned : Planted::CodeUnaligned});
        --n;
    }
    rom.image = image.bytes();
    return rom;
}

}  // namespace quillon::test
