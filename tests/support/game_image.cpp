#include "support/game_image.h"

#include "game/words.h"

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <string_view>
#include <tuple>
#include <unordered_map>

namespace quillon::test {
namespace {

using game::Family;
using game::PointerTo;
using std::uint32_t;

constexpr uint32_t kSize = 2u << 20, kFree = 0x1C0000;  // 0xFF from kFree to the end
constexpr uint32_t kCodeA = 0xC0, kCodeASize = 0x4000, kCodeBSize = 0x2000;

// What differs between the families: game code; trainerbattle types (0-8, FRLG adds 9 early rival, E 9-12
// pyramid, set A, set B, hill); size of struct PokedexEntry and its description pointers (RS two pages, FRLG
// a description and an unused one); first section of the map-name table (FRLG: MAPSEC_PALLET_TOWN);
// MOVEMENT_ACTION_WALK_NORMAL_DOWN (then up, left, right); entries of gScriptCmdTable.
struct Facts { const char* code; unsigned trainerTypes, dexSize, dexTexts, firstSection, walkDown, commands; };
constexpr Facts kFacts[] = {{"AXVE", 9, 36, 2, 0, 0x08, 0xC6}, {"BPRE", 10, 36, 2, 0x58, 0x10, 0xD5},
                            {"BPEE", 13, 32, 1, 0, 0x08, 0xE3}};
// The pointers after trainerbattle's type, trainer and local id, by type: T a text, S a script.
constexpr std::string_view kBattle[] = {"TT", "TTS", "TTS", "T", "TTT", "TT", "TTTS", "TTT", "TTTS", "TT", "TT", "TT",
                                        "TT"};
// Braille cells of A to Z.
constexpr unsigned char kBraille[] = {0x01, 0x05, 0x03, 0x0B, 0x09, 0x07, 0x0F, 0x0D, 0x06, 0x0E, 0x11, 0x15, 0x13,
                                      0x1B, 0x19, 0x17, 0x1F, 0x1D, 0x16, 0x1E, 0x31, 0x35, 0x2E, 0x33, 0x3B, 0x39};
// Script commands the three families share, and callstd's message boxes.
enum : unsigned {
    kEnd = 0x02, kReturn, kCall, kGoto, kGotoIf, kCallIf, kCallStd = 0x09, kLoadWord = 0x0F, kSetVar = 0x16,
    kCompare = 0x21, kSetFlag = 0x29, kCheckFlag = 0x2B, kApplyMovement = 0x4F, kWaitMovement = 0x51,
    kFacePlayer = 0x5A, kTrainerBattle = 0x5C, kWaitMessage = 0x66, kMessage, kCloseMessage, kLockAll, kLock,
    kReleaseAll, kRelease, kWaitButton, kMultichoice = 0x6F, kBrailleMessage = 0x78, kPokemart = 0x86,
    kNpc = 2, kSign, kDefault, kAutoclose = 6
};

// The game's encoding of the generator's ASCII: '\v' scrolls (0xFA), '\f' starts a paragraph (0xFB), '@' is
// the player's name.
std::string Encode(std::string_view ascii) {
    static constexpr std::string_view kFrom = " .!?,\n\v\f", kTo("\x00\xAD\xAB\xAC\xB8\xFE\xFA\xFB", 8);
    std::string out;
    for (const char c : ascii)
        c == '@' ? void(out += "\xFD\x01")
                 : void(out += c >= 'a' ? char(0xD5 + c - 'a') : c >= 'A' ? char(0xBB + c - 'A') : kTo[kFrom.find(c)]);
    return out;
}

struct Text { std::string bytes; const char* context; int map, label; };

class Builder {
public:
    Builder(Family family, uint32_t seed) : f_(family), x_(kFacts[static_cast<int>(family)]), rng_(seed) {}

    GameImage Build() {
        out_.family = f_, items_ = 6 + R(5), lists_ = 3 + R(2);
        for (W(0xEA00002E); at_ < 0xA0;) B(rng_());  // b 0xC0, then the logo's place
        Bytes(std::string("QUILLONTEST\0", 12) + x_.code + "01\x96" + std::string(13, '\0'));
        unsigned sum = 0x19;  // the header's complement check
        for (uint32_t i = 0xA0; i < 0xBD; ++i) sum += static_cast<std::uint8_t>(img_[i]);
        img_[0xBD] = static_cast<char>(-sum);
        for (int i = 0; i < 5; ++i) sys_.push_back(Say("message", -1, 1 + R(2)));
        orphan_ = Say("orphan", -1, 1), at_ = kCodeA + kCodeASize;
        Sound(Picture(at_ + 0x20000) + 0x10000), Maps(), Tables(), Align();
        const uint32_t codeB = at_;
        for (at_ += kCodeBSize; at_ + 0x40000 < kFree;) {
            const uint32_t picture = 0x10000 + R(0x10000), sound = 0x4000 + R(0x8000);
            Sound(Picture(at_ + picture) + sound);
        }
        Picture(kFree), out_.freeSpace = kFree, img_[kFree - 1] = img_[kFree - 1] == '\xFF' ? '\0' : img_[kFree - 1];
        for (const auto& [place, label] : fixes_) at_ = place, W(PointerTo(labels_[label]));
        Code(kCodeA, kCodeA + kCodeASize), Code(codeB, codeB + kCodeBSize);
        for (const uint32_t place : funcRefs_) at_ = place, W(PointerTo(fns_[R(fns_.size())]) | 1);
        for (std::size_t k = calls_.size(); k > 1; --k) std::swap(calls_[k - 1], calls_[R(k)]);  // shuffled calls
        for (std::size_t k = 0; k < calls_.size(); ++k) at_ = calls_[k], Bl(fns_[k % fns_.size()]);  // none is dead code
        Scan(), out_.image = std::move(img_);
        return std::move(out_);
    }

private:
    unsigned R(std::size_t n) { return static_cast<unsigned>(rng_() % n); }
    void B(unsigned v) { img_[at_++] = static_cast<char>(v); }
    void H(unsigned v) { B(v), B(v >> 8); }
    void W(uint32_t v) { H(v & 0xFFFF), H(v >> 16); }
    void Bl(uint32_t to) { to -= at_ + 4, H(0xF000 | (to >> 12 & 0x7FF)), H(0xF800 | (to >> 1 & 0x7FF)); }
    void Bytes(const std::string& s) { img_.replace(at_, s.size(), s), at_ += static_cast<uint32_t>(s.size()); }
    void Align(bool pad = true) { while (pad && at_ % 4) B(0); }
    void Mark(uint32_t from, const char* kind) { regions_.push_back({from, at_, kind}); }
    int Label() { return labels_.push_back(0), static_cast<int>(labels_.size()) - 1; }
    int Here(int label) { return labels_[label] = at_, label; }
    // The pointer to a label, filled in once everything is placed; `kind` marks a pointer to a text.
    void Ref(int label, const char* kind = nullptr) {
        kind ? void(placed_[at_] = kind) : void(), fixes_.push_back({at_, label}), W(0);
    }
    int NewText(std::string s, const char* context, int map) {
        return texts_.push_back({std::move(s), context, map, Label()}), texts_.back().label;
    }
    int Say(const char* context, int map, unsigned n) { return NewText(Encode(Prose(n)) + '\xFF', context, map); }
    void FlushTexts() { while (flushed_ < texts_.size()) Here(texts_[flushed_].label), Bytes(texts_[flushed_++].bytes); }
    void Msgbox(int text, unsigned type) { B(kLoadWord), B(0), Ref(text, "script"), B(kCallStd), B(type); }
    uint32_t Pic() { return PointerTo(pics_[R(pics_.size())]); }
    // An encoded name, ended, then padded with zeros to a record's field.
    std::string Field(const std::string& s, std::size_t n) { return (Encode(s) + '\xFF').append(n, '\0').substr(0, n); }

    // A made-up word: lower case, capitalised (style 1) or upper case (style 2).
    std::string Word(int style) {
        static constexpr std::string_view kConsonants = "bcdfghklmnprstvwz", kVowels = "aeiou";
        std::string w;
        for (unsigned i = 0, n = 1 + R(3); i < n; ++i) {
            w += kConsonants[R(kConsonants.size())], w += kVowels[R(kVowels.size())];
            if (R(3) == 0) w += kConsonants[R(kConsonants.size())];
        }
        for (std::size_t i = 0; i < (style == 2 ? w.size() : std::size_t(style)); ++i) w[i] = char(w[i] - 'a' + 'A');
        return w;
    }
    std::string Upper(unsigned words) { std::string s = Word(2); while (--words) s += ' ' + Word(2); return s; }
    // Sentences in lines of up to 30 characters.
    std::string Prose(unsigned sentences) {
        std::string s;
        for (unsigned i = 0, breaks = 0, line = 0; i < sentences; ++i) {
            for (unsigned w = 0, n = 2 + R(6); w < n; ++w) {
                std::string word = R(12) == 0 ? "@" : Word(w == 0);
                if (w + 1 == n) word += ".!?"[R(3)];
                const auto shown = static_cast<unsigned>(word.size()) + (word[0] == '@' ? 6 : 0);
                if (!s.empty() && line + shown + 1 > 30) s += breaks++ % 2 ? "\v\f"[R(2)] : '\n', line = 0;
                else if (!s.empty()) s += ' ', ++line;
                s += word, line += shown;
            }
        }
        return s;
    }
    // Ruby/Sapphire and Emerald put the window's layout (brailleformat) before the cells.
    int Braille(int map) {
        std::string cells, text = Upper(1 + R(2)) + '\n';
        text += Upper(1 + R(2)) + '.';
        const unsigned left = R(8), top = R(6), right = left + 12 + R(10), bottom = top + 7 + R(6);
        if (f_ != Family::FireRedLeafGreen)
            cells = {char(left), char(top), char(right), char(bottom), char(left + 3), char(top + 3)};
        for (const char c : text)
            cells += c == ' ' ? '\0' : c == '.' ? '\x2C' : c == '\n' ? '\xFE' : char(kBraille[c - 'A']);
        return NewText(cells + '\xFF', "braille", map);
    }

    // Palettes, LZ77-compressed pictures, raw tiles and random bytes. The first compressed ones also hold the
    // orphan's lone pointer word and, unaligned, random bytes that equal a message's pointer.
    uint32_t Picture(uint32_t end) {
        for (Align(); at_ + 0x1000 < end; Align()) {
            const unsigned size = 0x20 * (8 + R(120)), kind = R(4), n = kind == 0 ? 32 : size * 3 / 5, start = at_;
            if (pics_.push_back(start), kind == 1) B(0x10), B(size), B(size >> 8), B(size >> 16);
            while (at_ < start + n) {
                if (kind == 1 && at_ == start + n / 2 && planted_ < 2) {
                    while (at_ % 4 != 2 * planted_) B(rng_());
                    planted_++ ? Ref(sys_[0], "unknown") : Ref(orphan_, "unknown");
                }
                B(kind == 0 ? R(0x100) >> (at_ % 2 ? 1 : 0) : kind == 2 && R(3) ? img_[at_ - 1] : rng_());
            }
        }
        while (at_ < end) B(rng_());
        return at_;
    }
    // Song tracks: waits, controls, notes and their keys and velocities, each track ended by FINE.
    void Sound(uint32_t end) {
        for (unsigned r = R(4); at_ + 1 < end; r = R(4))
            B(R(300) == 0 ? 0xB1 : r == 0 ? 0x80 + R(48) : r == 1 ? 0xBB + R(20) : r == 2 ? 0xCF + R(48) : R(0x80));
        B(0xB1);
    }

    void Maps() {
        const unsigned count = 7 + R(3), groups = 2 + R(2), sections = count - R(3), per = count / groups;
        std::vector<std::string> names;
        std::vector<std::pair<uint32_t, uint32_t>> made;  // header, layout
        for (unsigned s = 0; s < sections; ++s) names.push_back(Upper(1 + R(2)));
        for (unsigned m = 0; m < count; ++m)
            group_.push_back(std::min(m / per, groups - 1)), num_.push_back(m - per * group_[m]);
        Align(), tilesets_ = at_;
        for (unsigned k = 0; k < 2; ++k) {  // struct Tileset; FRLG swaps the callback and the metatile attributes
            B(1), B(k), H(0), W(Pic()), W(Pic()), W(Pic());
            f_ == Family::FireRedLeafGreen ? (W(0), W(Pic())) : (W(Pic()), W(0));
        }
        Mark(tilesets_, "table");
        for (unsigned m = 0; m < count; ++m) {
            const unsigned section = m < sections ? m : R(sections);
            out_.mapNames.push_back(names[section]), made.push_back(Map(m, section));
        }
        const uint32_t layouts = at_;  // gMapLayouts, the groups' lists of headers, gMapGroups
        for (const auto& map : made) W(PointerTo(map.second));
        for (const auto& map : made) W(PointerTo(map.first));
        tables_.push_back(layouts), tables_.push_back(at_);
        for (unsigned m = 0; m < count; ++m) num_[m] ? void() : W(PointerTo(layouts + 4 * (count + m)));
        Mark(layouts, "table");
        for (unsigned s = 0; s < sections; ++s) NewText(Encode(names[s]) + '\xFF', "map name", static_cast<int>(s));
        FlushTexts(), Align(), tables_.push_back(at_);
        for (unsigned s = 0; s < sections; ++s) {  // FRLG: pointers; RS, E: struct RegionMapLocation {x, y, w, h, name}
            if (f_ != Family::FireRedLeafGreen) B(R(28)), B(R(15)), B(1 + R(3)), B(1 + R(2));
            Ref(texts_[texts_.size() - sections + s].label, "table");
        }
        Mark(tables_.back(), "table");
    }

    // A map's scripts, texts, layout, events and header; gives the header's and the layout's offsets.
    std::pair<uint32_t, uint32_t> Map(unsigned m, unsigned section) {
        const int map = int(m), branch = Label(), sub = Label(), tail = Label(), list = Label(), yes = Label();
        const unsigned width = 10 + R(12), height = 8 + R(10), var = 0x4050 + m, count = unsigned(group_.size());
        std::vector<std::pair<int, bool>> objects;  // script, whether a trainer's
        std::vector<int> signs;
        const auto script = [&](bool trainer = false) { objects.push_back({Here(Label()), trainer}); };
        const auto say = [&](const char* context, unsigned sentences = 1) { return Say(context, map, sentences); };
        const uint32_t start = at_;
        script(), Msgbox(say("message", 2), kNpc), B(kEnd), script(), B(kLock), B(kFacePlayer);
        if (f_ == Family::FireRedLeafGreen) B(0xC7), B(R(2));  // textcolor
        B(kMessage), Ref(say("message", 2), "script"), B(kWaitMessage), B(kWaitButton), B(kRelease), B(kEnd);
        script(), B(kCheckFlag), H(0x20 + R(0x200)), B(kGotoIf), B(1), Ref(branch), B(kCall), Ref(sub), B(kGoto);
        Ref(tail), Here(branch), Msgbox(say("message"), kDefault), B(kEnd);
        Here(sub), Msgbox(say("message"), kDefault), B(kReturn);
        Here(tail), B(kCompare), H(var), H(R(4)), B(kCallIf), B(R(6)), Ref(sub), B(kEnd);
        for (unsigned type = m; type < x_.trainerTypes; type += count) {
            const int next = Label();
            script(true), B(kTrainerBattle), B(type), H(1 + R(700)), H(0);
            for (const char c : kBattle[type]) c == 'T' ? Ref(say("trainer"), "script") : Ref(next);
            Msgbox(say("trainer"), kAutoclose), B(kEnd);
            if (kBattle[type].back() == 'S') Here(next), Msgbox(say("trainer"), kDefault), B(kRelease), B(kEnd);
        }
        if (m % 3 != 0) {  // a shop, or a question
            script(), B(kLock), B(kFacePlayer), B(kMessage), Ref(say("message"), "script"), B(kWaitMessage);
            if (m % 3 == 1) B(kPokemart), Ref(list);
            else B(kMultichoice), B(20), B(6), B(R(lists_)), B(0), B(kCompare), H(0x800D), H(0), B(kGotoIf), B(1);
            if (m % 3 == 2) Ref(yes), Msgbox(say("message"), kDefault), B(kRelease), B(kEnd), Here(yes);
            Msgbox(say("message"), kDefault), B(kRelease), B(kEnd), Align(), Here(list);
            for (unsigned i = 0, n = m % 3 == 1 ? 3 + R(4) : 0; i < n; ++i) H(i + 1 < n ? 1 + R(items_ - 1) : 0);
        }
        signs.push_back(Here(Label())), Msgbox(say("sign"), kSign), B(kEnd);
        if (m % 3 == 0) {  // braille; RS closes its box with erasebox, E with closebraillemessage
            signs.push_back(Here(Label())), B(kLockAll), B(kBrailleMessage), Ref(Braille(map), "script");
            B(kWaitButton);
            if (f_ == Family::RubySapphire) B(0x73), B(0), B(0), B(29), B(19);
            if (f_ == Family::Emerald) B(0xDA);
            B(kReleaseAll), B(kEnd);
        }
        const int walk = Here(Label()), moves = Label();
        B(kLockAll), B(kApplyMovement), H(1), Ref(moves), B(kWaitMovement), H(0), Msgbox(say("message"), kDefault);
        if (f_ == Family::Emerald) B(0xDF), Ref(say("message", 2), "script"), B(kWaitMessage), B(kCloseMessage);
        B(kSetVar), H(var), H(1), B(kReleaseAll), B(kEnd), Here(moves);  // 0xDF: pokenavcall
        for (unsigned i = 0, n = 1 + R(6); i < n; ++i) B(x_.walkDown + R(4));
        // Map scripts ON_TRANSITION, ON_FRAME_TABLE and ON_WARP_INTO_MAP_TABLE; a table holds {var, value,
        // script} rows ended by a zero half-word.
        const int frame = Label(), frameScript = Label(), transition = Label(), scripts = Label(), warp = Label();
        B(0xFE), Here(frameScript), B(kLockAll), Msgbox(say("message"), kDefault), B(kSetVar), H(var + 1), H(1);
        B(kReleaseAll), B(kEnd), Here(transition), B(kSetFlag), H(0x20 + R(0x200)), B(kEnd);
        Here(scripts), B(3), Ref(transition), B(2), Ref(frame), B(4), Ref(warp), B(0);
        Here(frame), H(var + 1), H(0), Ref(frameScript), H(0), Here(warp), H(var), H(1), Ref(transition), H(0);
        Mark(start, "script"), FlushTexts(), Align();
        const uint32_t data = at_, blocks = at_ + 8;
        for (unsigned tile = R(0x200); at_ < blocks + 2 * width * height; tile = R(0x200))  // border, then blocks
            H(0x3000 | (R(4) ? 0 : 0xC00) | tile);                                            // elevation, collision
        const uint32_t layout = (Align(), at_);  // struct MapLayout; FRLG adds the border's width and height
        W(width), W(height), W(PointerTo(data)), W(PointerTo(blocks)), W(PointerTo(tilesets_));
        W(PointerTo(tilesets_ + 24));
        if (f_ == Family::FireRedLeafGreen) B(2), B(2), H(0);
        const uint32_t objectEvents = at_, warps = at_ + 24 * uint32_t(objects.size()), warpCount = 1 + R(2);
        for (const auto& [script, trainer] : objects) {  // struct ObjectEventTemplate
            B(1 + (at_ - objectEvents) / 24), B(R(0x40)), B(0), B(0), H(1 + R(width - 2)), H(1 + R(height - 2)), B(3);
            B(R(0x20)), B(0x11), B(0), H(trainer), H(trainer ? 1 + R(5) : 0), Ref(script), H(0), H(0);
        }
        for (unsigned i = 0, to = 0; i < warpCount; ++i) {
            to = (m + 1 + R(count - 1)) % count, H(R(width)), H(R(height)), B(0), B(R(2)), B(num_[to]), B(group_[to]);
        }
        const uint32_t coords = at_, bgs = at_ + 16, events = bgs + 12 * uint32_t(signs.size());
        H(R(width)), H(R(height)), B(3), B(0), H(var), H(0), H(0), Ref(walk);
        for (const int sign : signs) H(R(width)), H(R(height)), B(0), B(0), H(0), Ref(sign);
        B(unsigned(objects.size())), B(warpCount), B(1), B(unsigned(signs.size())), W(PointerTo(objectEvents));
        W(PointerTo(warps)), W(PointerTo(coords)), W(PointerTo(bgs));
        uint32_t connections = 0;  // struct MapConnection, then struct MapConnections {count, connections}
        if (m > 0 && R(2)) B(1 + R(4)), B(0), H(0), W(R(20)), B(group_[m - 1]), B(num_[m - 1]), H(0), connections = at_;
        if (connections) W(1), W(PointerTo(connections - 12));
        const uint32_t header = at_;  // struct MapHeader
        W(PointerTo(layout)), W(PointerTo(events)), W(PointerTo(labels_[scripts]));
        W(connections ? PointerTo(connections) : 0), H(0x15E + R(0x50)), H(m + 1), B(x_.firstSection + section), B(0);
        B(R(4)), B(R(2) ? 1 + R(4) : 8);
        if (f_ == Family::RubySapphire) H(0), B(1);               // show the name
        if (f_ == Family::Emerald) H(0), B(0x0F);                 // cycling, escaping, running, show the name
        if (f_ == Family::FireRedLeafGreen) B(1), B(0x07), B(0);  // cycling; escaping, running, show the name; floor
        B(0), Mark(data, "table");                                // battle scene
        return {header, layout};
    }

    void Tables() {
        std::vector<int> descriptions, dex, options, moves;
        const unsigned species = 4 + R(4);
        for (unsigned i = 0; i < items_; ++i) descriptions.push_back(Say("item description", -1, 1));
        for (unsigned i = 0; i < species * x_.dexTexts; ++i) dex.push_back(Say("pokedex", -1, 2 + R(2)));
        for (int i = 0; i < 6; ++i) options.push_back(NewText(Encode(Upper(1)) + '\xFF', "multichoice", -1));
        for (unsigned i = 0, n = 8 + R(8); i < n; ++i) moves.push_back(Say("move description", -1, 1));
        FlushTexts(), Align();
        const uint32_t start = at_;
        tables_.push_back(at_);  // struct Item, 44 bytes; field and battle use functions
        for (unsigned i = 0; i < items_; ++i) {
            Bytes(Field(i ? Upper(1) : "????????", 14)), H(i), H(10 * R(500)), B(0), B(0);
            Ref(descriptions[i], "table"), B(0), B(0), B(1 + R(5)), B(R(3)), funcRefs_.push_back(at_), W(0), B(R(3));
            B(0), H(0), R(2) ? funcRefs_.push_back(at_) : void(), W(0), W(0);
        }
        tables_.push_back(at_);  // struct PokedexEntry
        for (unsigned i = 0; i < species; ++i) {
            Bytes(Field(Upper(1), 12)), H(1 + R(30)), H(1 + R(2000));
            for (unsigned k = 0; k < x_.dexTexts; ++k) Ref(dex[i * x_.dexTexts + k], "table");
            for (H(0), H(256 + R(200)), H(R(20)), H(256), H(R(8)); (at_ - tables_.back()) % x_.dexSize;) B(0);
        }
        std::vector<std::pair<uint32_t, unsigned>> lists;  // arrays of struct MenuAction {text, func}
        for (unsigned l = 0; l < lists_; ++l) {
            lists.push_back({at_, 2 + R(3)});
            for (unsigned k = 0; k < lists.back().second; ++k) Ref(options[(2 * l + k) % 6], "table"), W(0);
        }
        tables_.push_back(at_);  // struct MultichoiceListStruct {list, count}
        for (const auto& [list, count] : lists) W(PointerTo(list)), B(count), B(0), H(0);
        tables_.push_back(at_);  // move descriptions, then gScriptCmdTable
        for (const int text : moves) Ref(text, "table");
        for (unsigned i = 0; i < x_.commands; ++i) funcRefs_.push_back(at_), W(0);
        Mark(start, "table");
    }

    // Thumb functions, word-aligned: push, ALU and load/store instructions, bl pairs, and pc-relative loads
    // from the literal pool that follows the pop.
    void Code(uint32_t start, uint32_t end) {
        for (at_ = start; at_ + 0x200 < end;) Function();
        out_.code.push_back({start, at_}), Mark(start, "code");
        while (at_ < end) B(0);
    }
    void Function() {
        std::vector<std::tuple<uint32_t, uint32_t, bool>> loads;  // place, word, whether a text's pointer
        bool lookalike = R(6) == 0;
        Align(), fns_.push_back(at_), H(0xB5F0);  // push {r4-r7, lr}
        for (unsigned i = 0, n = 6 + R(36), r = R(8); i < n; ++i, r = R(8)) {
            if (r == 0) {
                const auto [word, text] = PoolWord();
                loads.push_back({at_, word, text}), H(0x4800 | R(8) << 8);  // ldr rd, [pc, #imm]
            } else if (r == 1) {
                calls_.push_back(at_), W(0);  // bl, once every function is placed
            } else if (const uint32_t word = PointerTo(labels_[AnyText()]), mid = word >> 8 & 0xFF;
                       r == 2 && lookalike && mid < 0xA0 && (mid < 0x44 || mid >= 0x50)) {
                // lo mid hi 08 at a half-word boundary: (mid lo) decodes as a shift, an immediate, ALU or load/store
                // instruction but ldr rd, [pc, #n] (which loads a pool word), (08 hi) as lsrs rd, rs, #32.
                if (at_ % 4 == 0) H(Alu());
                placed_[at_] = "code", H(word & 0xFFFF), H(word >> 16), lookalike = false;
            } else {
                H(Alu());
            }
        }
        for (H(0xBDF0), Align(!loads.empty()); const auto& [place, word, text] : loads) {  // pop {r4-r7, pc}, the pool
            img_[place] = static_cast<char>((at_ - ((place + 4) & ~3u)) / 4);
            text ? void(placed_[at_] = "pool") : void(), W(word);
        }
    }
    unsigned Alu() {  // movs/adds/cmp rd, #imm; lsls rd, rs, #imm; ands..mvns; str/ldr rd, [rs, #imm]; adds rd, rs, rm
        const unsigned d = R(8), s = R(8) << 3, k = R(256);
        return std::array{0x2000 | d << 8 | k, 0x3000 | d << 8 | k, 0x2800 | d << 8 | k, (1 + k % 31) << 6 | s | d,
                          0x4000 | k % 16 << 6 | s | d, 0x6000 | k % 32 << 6 | s | d, 0x6800 | k % 32 << 6 | s | d,
                          0x1800 | k % 8 << 6 | s | d}[R(8)];
    }
    int AnyText() { int l = orphan_; while (l == orphan_) l = texts_[R(texts_.size())].label; return l; }
    // Pointers to texts (each system message at least once), tables, RAM and I/O registers.
    std::pair<uint32_t, bool> PoolWord() {
        if (R(8) == 0) {
            const int text = nextSys_ < sys_.size() ? sys_[nextSys_++] : R(4) ? sys_[R(sys_.size())] : AnyText();
            return {PointerTo(labels_[text]), true};
        }
        const unsigned r = R(7), ram = 0x02000000 + R(0x10000) * 4;
        return {r < 2 ? PointerTo(tables_[R(tables_.size())]) : r < 5 ? ram : 0x04000000 + R(256), false};
    }

    // Every place that holds a text's pointer, at any alignment.
    void Scan() {
        std::unordered_map<uint32_t, uint32_t> targets;
        for (const Text& t : texts_) targets[PointerTo(labels_[t.label])] = labels_[t.label];
        for (const Text& t : texts_) out_.texts.push_back({labels_[t.label], t.context, t.map});
        std::sort(out_.texts.begin(), out_.texts.end(), [](auto& a, auto& b) { return a.offset < b.offset; });
        for (uint32_t p = 0; p + 4 <= kSize; ++p) {
            const auto hit = img_[p + 3] == '\x08' ? targets.find(game::Word(img_, p)) : targets.end();
            if (hit == targets.end()) continue;
            const char* kind = "unknown";
            for (const auto& [from, to, region] : regions_) kind = p >= from && p < to ? region : kind;
            out_.pointers.push_back({p, hit->second, placed_.count(p) ? placed_[p] : kind});
        }
    }

    Family f_;
    const Facts& x_;
    std::mt19937 rng_;
    std::string img_ = std::string(kSize, '\xFF');
    uint32_t at_ = 0, tilesets_ = 0;
    unsigned items_ = 0, lists_ = 0, planted_ = 0;
    std::size_t flushed_ = 0, nextSys_ = 0;
    int orphan_ = -1;
    GameImage out_;
    std::vector<uint32_t> labels_, pics_, tables_, fns_, funcRefs_, calls_;
    std::vector<std::pair<uint32_t, int>> fixes_;
    std::map<uint32_t, const char*> placed_;
    std::vector<std::tuple<uint32_t, uint32_t, const char*>> regions_;
    std::vector<Text> texts_;
    std::vector<int> sys_;
    std::vector<unsigned> group_, num_;
};

}  // namespace

GameImage MakeGameImage(game::Family family, uint32_t seed) { return Builder(family, seed).Build(); }

}  // namespace quillon::test
