#include "support/text_rom.h"

#include "support/rom_builder.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <algorithm>
#include <array>
#include <functional>
#include <numeric>
#include <stdexcept>

namespace quillon::test {
namespace {

using Rng = std::mt19937;

std::uint32_t Below(Rng& rng, std::uint32_t n) { return static_cast<std::uint32_t>(rng() % n); }
bool Chance(Rng& rng, double p) { return std::uniform_real_distribution<double>(0, 1)(rng) < p; }

// The generator writes letters, digits, blanks and punctuation only.
std::string Encode(std::string_view ascii) { return HexToBytes(EncodeText(ascii, false)); }

std::string Word(Rng& rng) {
    static constexpr std::string_view kOnsets[] = {"b", "c", "d", "f", "g", "h", "k", "l", "m", "n", "p", "r",
                                                   "s", "t", "v", "w", "z", "br", "st", "tr", "sh", "ch", ""};
    static constexpr std::string_view kVowels[] = {"a", "e", "i", "o", "u", "ea", "ou", "ai", "y"};
    static constexpr std::string_view kCodas[] = {"", "", "", "n", "r", "s", "t", "l", "m", "ck", "nd"};
    std::string w;
    for (std::uint32_t i = 0, n = 1 + Below(rng, 3); i < n; ++i)
        w += std::string(kOnsets[Below(rng, std::size(kOnsets))]) + std::string(kVowels[Below(rng, std::size(kVowels))]) +
             std::string(kCodas[Below(rng, std::size(kCodas))]);
    return w;
}

std::string Capital(std::string w) {
    if (!w.empty() && w[0] >= 'a' && w[0] <= 'z') w[0] = static_cast<char>(w[0] - 'a' + 'A');
    return w;
}

// Dialogue: sentences broken into lines of about 30 characters.
std::string Dialogue(Rng& rng) {
    static constexpr char kLineBreaks[] = {'\xFE', '\xFE', '\xFA', '\xFB'};
    std::string out;
    std::size_t line = 0;
    auto put = [&](const std::string& bytes, std::size_t shown) {
        if (line > 0 && line + shown > 30) {
            out.back() = kLineBreaks[Below(rng, 4)];  // the blank before the word
            line = 0;
        }
        out += bytes;
        line += shown;
    };
    for (std::uint32_t s = 0, sentences = 1 + Below(rng, 3); s < sentences; ++s) {
        for (std::uint32_t w = 0, words = 2 + Below(rng, 9); w < words; ++w) {
            std::string bytes;
            std::size_t shown;
            if (Chance(rng, 0.06)) {
                bytes = Chance(rng, 0.7) ? std::string("\xFD\x01", 2) : std::string("\xFD\x06", 2);  // [PLAYER], [RIVAL]
                shown = 7;
            } else if (Chance(rng, 0.03)) {
                bytes = "\x53\x54";  // [PK][MN]
                shown = 7;
            } else {
                std::string word = Word(rng);
                if (w == 0) word = Capital(word);
                if (Chance(rng, 0.04)) word = std::to_string(Below(rng, 1000));
                bytes = Encode(word);
                shown = word.size();
                if (Chance(rng, 0.05)) bytes = "\xFC\x01" + std::string(1, static_cast<char>(1 + Below(rng, 8))) + bytes;
            }
            if (w + 1 == words) bytes += Encode(std::string(1, ".!?"[Below(rng, 3)]));
            else if (Chance(rng, 0.1)) bytes += Encode(",");
            bytes += '\x00';
            put(bytes, shown + 1);
        }
    }
    out.pop_back();  // the blank after the last word
    return out;
}

std::string Label(Rng& rng) {
    std::string out;
    const bool caps = Chance(rng, 0.3);
    for (std::uint32_t w = 0, words = 1 + Below(rng, 3); w < words; ++w) {
        std::string word = Capital(Word(rng));
        if (caps) std::transform(word.begin(), word.end(), word.begin(), [](char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; });
        if (word.size() < 2) word += caps ? "A" : "a";
        out += (w ? " " : "") + word;
    }
    if (Chance(rng, 0.2)) out += " " + std::to_string(1 + Below(rng, 120));
    return Encode(out);
}

// Thumb-like instructions: the high byte picks a family as compilers emit
// them, the low byte is random.
void Instruction(Rng& rng, std::string& out) {
    struct Family { unsigned char low, high; int weight; };
    static constexpr Family kFamilies[] = {
        {0x20, 0x27, 10}, {0x1C, 0x1F, 8}, {0x68, 0x6F, 8}, {0x60, 0x67, 6}, {0x48, 0x4F, 6}, {0x40, 0x47, 6},
        {0x80, 0x8F, 4},  {0x70, 0x7F, 4}, {0xB4, 0xB5, 2}, {0xBC, 0xBD, 2}, {0xD0, 0xDE, 6}, {0xE0, 0xE7, 3},
        {0x00, 0x0F, 6},  {0x18, 0x1B, 4}, {0x28, 0x2F, 5}, {0x30, 0x3F, 5}, {0x90, 0x9F, 4}, {0xA0, 0xAF, 2},
        {0xF0, 0xF7, 5}};
    static const int total = [] { int t = 0; for (const auto& f : kFamilies) t += f.weight; return t; }();
    int pick = static_cast<int>(Below(rng, static_cast<std::uint32_t>(total)));
    for (const Family& f : kFamilies) {
        if ((pick -= f.weight) >= 0) continue;
        out += static_cast<char>(rng() & 0xFF);
        out += static_cast<char>(f.low + Below(rng, f.high - f.low + 1u));
        if (f.low == 0xF0) {  // a long branch is a pair
            out += static_cast<char>(rng() & 0xFF);
            out += static_cast<char>(0xF8 + Below(rng, 8));
        }
        return;
    }
}

// One region of the image: its bytes, and the pointers to fill in once every
// region has its place (to a text, or to a random place of some decoy).
struct Fixup {
    std::size_t at;  // inside the region
    long text;       // index of the text, or -1 for a decoy
    Planted kind;
};
struct Region {
    enum Kind { Texts, Pointers, Code, Filler } kind;
    explicit Region(Kind k) : kind(k) {}
    std::string bytes;
    std::vector<Fixup> fixups;
    std::vector<std::pair<std::size_t, std::size_t>> texts;   // Texts: where each text begins, and its index
    std::vector<std::pair<std::size_t, std::size_t>> bodies;  // Code: instruction ranges
    std::size_t at = 0;
    void Slot(long text, Planted kind) {
        fixups.push_back({bytes.size(), text, kind});
        bytes += std::string(4, '\0');
    }
};

}  // namespace

std::string GenerateTextBytes(Rng& rng) { return Below(rng, 100) < 75 ? Dialogue(rng) : Label(rng); }

TextRom GenerateTextRom(std::uint32_t seed, std::size_t size) {
    Rng rng(seed);
    TextRom rom;
    const std::size_t textCount = size / 2800;
    std::vector<std::string> texts(textCount);
    std::vector<bool> referenced(textCount);
    for (std::size_t i = 0; i < textCount; ++i) {
        texts[i] = GenerateTextBytes(rng);
        referenced[i] = !Chance(rng, 0.08);
    }

    std::vector<Region> regions;
    // Text blocks of 30 to 300 texts, each text after the previous one's
    // terminator, the block padded to 4 bytes with 0x00 or 0xFF.
    for (std::size_t i = 0; i < textCount;) {
        Region r(Region::Texts);
        for (std::size_t n = 30 + Below(rng, 271); n > 0 && i < textCount; --n, ++i) {
            r.texts.push_back({r.bytes.size(), i});
            r.bytes += texts[i] + '\xFF';
        }
        const char pad = Chance(rng, 0.5) ? '\x00' : '\xFF';
        while (r.bytes.size() % 4) r.bytes += pad;
        regions.push_back(std::move(r));
    }

    // Each referenced text gets one or two references of these kinds.
    std::vector<long> tableRefs, scriptRefs, poolRefs;
    for (std::size_t i = 0; i < textCount; ++i) {
        if (!referenced[i]) continue;
        const int refs = Chance(rng, 0.15) ? 2 : 1;
        for (int k = 0; k < refs; ++k) {
            const std::uint32_t r = Below(rng, 100);
            (r < 45 ? tableRefs : r < 80 ? scriptRefs : poolRefs).push_back(static_cast<long>(i));
        }
    }
    std::shuffle(tableRefs.begin(), tableRefs.end(), rng);
    std::shuffle(scriptRefs.begin(), scriptRefs.end(), rng);
    std::shuffle(poolRefs.begin(), poolRefs.end(), rng);

    // Pointer tables; a tenth of them point at data that is no text.
    for (std::size_t i = 0; i < tableRefs.size();) {
        Region r(Region::Pointers);
        const bool decoy = Chance(rng, 0.1);
        for (std::size_t n = 10 + Below(rng, 190); n > 0 && (decoy || i < tableRefs.size()); --n)
            r.Slot(decoy ? -1 : tableRefs[i++], Planted::Table);
        regions.push_back(std::move(r));
    }

    // Event scripts: byte-packed commands, so their pointers fall anywhere.
    for (std::size_t i = 0; i < scriptRefs.size();) {
        Region r(Region::Pointers);
        for (std::size_t n = 5 + Below(rng, 36); n > 0 && i < scriptRefs.size(); --n) {
            std::string& s = r.bytes;
            if (Chance(rng, 0.5)) s += "\x6A";  // lock
            if (Chance(rng, 0.5)) s += "\x5A";  // face the player
            // Message (with a box kind after it), and commands that take a text.
            const std::uint32_t command = Below(rng, 100);
            if (command < 50) s += "\x0F" + std::string(1, static_cast<char>(Below(rng, 4)));
            else if (command >= 75 && command < 85) s += "\x85" + std::string(1, static_cast<char>(Below(rng, 3)));
            else s += command < 65 ? "\x67" : command < 75 ? "\x9B" : command < 90 ? "\x78" : "\xBD";
            r.Slot(scriptRefs[i++], Planted::Script);
            if (command < 50) s += "\x09" + std::string(1, static_cast<char>(2 + Below(rng, 5)));
            if (Chance(rng, 0.3)) s += "\x6C";  // release
            s += "\x02";                        // end
        }
        regions.push_back(std::move(r));
    }

    // Functions of Thumb-like code, each followed by its literal pool.
    const std::size_t functions = std::max<std::size_t>(poolRefs.size(), size / 4096);
    for (std::size_t f = 0, i = 0; f < functions;) {
        Region r(Region::Code);
        for (std::size_t n = 20 + Below(rng, 60); n > 0 && f < functions; --n, ++f) {
            const std::size_t begin = r.bytes.size();
            for (std::uint32_t k = 0, count = 16 + Below(rng, 300); k < count; ++k) Instruction(rng, r.bytes);
            r.bytes += Chance(rng, 0.5) ? std::string("\x70\x47", 2) : std::string("\x00\xBD", 2);
            if (r.bytes.size() % 4) r.bytes += std::string("\xC0\x46", 2);  // nop
            r.bodies.push_back({begin, r.bytes.size()});
            for (std::uint32_t k = 0, words = 1 + Below(rng, 6); k < words; ++k) {
                const std::uint32_t what = Below(rng, 100);
                if (what < 35 && i < poolRefs.size()) {
                    r.Slot(poolRefs[i++], Planted::Pool);
                } else if (what < 55) {
                    r.Slot(-1, Planted::Pool);
                } else {  // a constant or a work-memory address
                    const std::uint32_t v = Chance(rng, 0.5) ? Below(rng, 0x10000) : 0x02000000u + Below(rng, 0x40000);
                    for (int b = 0; b < 4; ++b) r.bytes += static_cast<char>(v >> (8 * b) & 0xFF);
                }
            }
            for (; f + 1 == functions && i < poolRefs.size(); ++i) r.Slot(poolRefs[i], Planted::Pool);
        }
        regions.push_back(std::move(r));
    }

    // Random filler (compressed graphics and the like) and runs of 0xFF fill
    // the rest; the last eighth of the image is free space.
    std::size_t used = 0xC0;
    for (const Region& r : regions) used += r.bytes.size() + 3;
    const std::size_t freeTail = size / 8;
    if (used + freeTail > size) throw std::length_error("the image is too small for its contents");
    for (std::size_t left = size - freeTail - used; left > 64;) {
        const bool ffRun = Chance(rng, 0.15);
        Region r(Region::Filler);
        const std::size_t n = std::min<std::size_t>(left, ffRun ? 16 + Below(rng, 4096) : 4096 + Below(rng, 200000)) & ~std::size_t{3};
        if (n == 0) break;
        r.bytes.resize(n);
        for (char& c : r.bytes) c = ffRun ? '\xFF' : static_cast<char>(rng() & 0xFF);
        left -= n;
        regions.push_back(std::move(r));
    }
    std::shuffle(regions.begin(), regions.end(), rng);

    // Lay out, then fill in the pointers.
    rom.image.assign(size, '\xFF');
    std::fill(rom.image.begin() + 0xA0, rom.image.begin() + 0xC0, '\0');
    rom.image.replace(0xA0, 12, "DISCOVERTEST");
    rom.image.replace(0xAC, 6, "QDSE01");
    std::size_t at = 0xC0;
    std::vector<std::uint32_t> textOffset(textCount);
    std::vector<std::pair<std::size_t, std::size_t>> decoyAreas;  // random data, code, 0xFF runs
    for (Region& r : regions) {
        at = (at + 3) & ~std::size_t{3};  // every region starts 4-byte aligned
        r.at = at;
        rom.image.replace(at, r.bytes.size(), r.bytes);
        for (const auto& [start, id] : r.texts) textOffset[id] = static_cast<std::uint32_t>(at + start);
        if (r.kind == Region::Filler || r.kind == Region::Code) decoyAreas.push_back({at, r.bytes.size()});
        at += r.bytes.size();
    }
    for (std::size_t i = 0; i < textCount; ++i)
        rom.texts.push_back({textOffset[i], static_cast<std::uint32_t>(texts[i].size()), referenced[i]});
    std::sort(rom.texts.begin(), rom.texts.end(), [](const auto& a, const auto& b) { return a.offset < b.offset; });

    std::vector<bool> taken(size);  // bytes of pointers planted so far
    for (const Region& r : regions) {
        for (const Fixup& f : r.fixups) {
            std::uint32_t target;
            if (f.text >= 0) {
                target = textOffset[static_cast<std::size_t>(f.text)];
                rom.pointers.push_back({static_cast<std::uint32_t>(r.at + f.at), target, f.kind});
            } else {
                const auto& [from, n] = decoyAreas[Below(rng, static_cast<std::uint32_t>(decoyAreas.size()))];
                target = static_cast<std::uint32_t>(from + Below(rng, static_cast<std::uint32_t>(n)));
            }
            PutPointer(rom.image, r.at + f.at, target);
            std::fill_n(taken.begin() + static_cast<std::ptrdiff_t>(r.at + f.at), 4, true);
        }
    }

    // Copies of text pointers inside instructions, as code holds them by chance.
    std::vector<std::pair<std::size_t, std::size_t>> bodies;
    for (const Region& r : regions)
        for (const auto& [b, e] : r.bodies) bodies.push_back({r.at + b, r.at + e});
    std::vector<std::uint32_t> referencedOffsets;
    for (const PlantedText& t : rom.texts)
        if (t.referenced) referencedOffsets.push_back(t.offset);
    for (std::size_t n = size / 6000; n > 0 && !bodies.empty() && !referencedOffsets.empty();) {
        const auto& [b, e] = bodies[Below(rng, static_cast<std::uint32_t>(bodies.size()))];
        if (e - b < 8) continue;
        const std::size_t place = b + Below(rng, static_cast<std::uint32_t>(e - b - 3));
        if (std::any_of(taken.begin() + static_cast<std::ptrdiff_t>(place) - 2,
                        taken.begin() + static_cast<std::ptrdiff_t>(place) + 6, [](bool x) { return x; }))
            continue;
        const std::uint32_t target = referencedOffsets[Below(rng, static_cast<std::uint32_t>(referencedOffsets.size()))];
        PutPointer(rom.image, place, target);
        std::fill_n(taken.begin() + static_cast<std::ptrdiff_t>(place), 4, true);
        rom.pointers.push_back({static_cast<std::uint32_t>(place), target,
                                place % 4 == 0 ? Planted::CodeAligned : Planted::CodeUnaligned});
        --n;
    }
    return rom;
}

}  // namespace quillon::test
