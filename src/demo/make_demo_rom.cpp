// Writes the demonstration ROM image quillon-demo.gba and its offset file
// ini/QDME.ini into the folder given as the only argument. The texts tell a
// short story of a seaside town; they exist only to be edited.
#include "core/hex_text.h"
#include "demo/demo_font.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {

constexpr std::size_t kRomSize = 16u * 1024 * 1024;
constexpr std::size_t kPointerTable = 0x0F0000;
constexpr std::size_t kSecondPointers = 0x0F8000;
constexpr std::size_t kFirstText = 0x100000;
constexpr std::size_t kFreeSpace = 0xE00000;
// The font of our own making, and a literal pool of two pointers to it, which
// the fit check's search finds as it finds a game's.
constexpr std::size_t kGlyphSheet = 0x0D0000;
constexpr std::size_t kGlyphWidths = 0x0D8000;
constexpr std::size_t kGlyphPointer = 0x66EC;
constexpr std::size_t kWidthPointer = 0x66F4;

struct Entry {
    const char* section;
    const char* name;
    const char* text;
};

// Lines end in CR LF; an empty line starts a new text box.
const std::vector<Entry> kEntries = {
    {"Harbour", "Ferryman", "Ahoy, [PLAYER]!\r\nThe morning ferry is late again.\r\n\r\nThe fog rolled in before dawn."},
    {"Harbour", "Fisher", "I caught a [BLUE]silver eel[BLACK] today!\r\nWell, almost caught it."},
    {"Harbour", "Gull", "Kree! Kree!"},
    {"Harbour", "Harbourmaster", "No boat leaves without my stamp.\r\nCome back when the tide turns."},
    {"Harbour", "Sign", "[RED]Saltmere Harbour[BLACK]\r\nMind the wet planks."},
    {"Harbour", "Sailor", "[RIVAL] ran past here a minute ago.\r\nSomething about a lost map?"},
    {"Harbour", "Crate", "The crate smells of oranges."},
    {"Harbour", "Net mender", "Every knot holds a story.\r\n\r\nThis one holds three fish."},
    {"Lighthouse", "Keeper", "Welcome up, [PLAYER].\r\nThe lamp has not been lit for a week.\r\n\r\nCould you find me some oil?"},
    {"Lighthouse", "Stairs", "One hundred and twelve steps.\r\nYou counted every one."},
    {"Lighthouse", "Logbook", "Day 9: Fog.\r\nDay 10: More fog.\r\nDay 11: A [BLUE]blue light[BLACK] on the water."},
    {"Lighthouse", "Lamp", "The great lamp is cold and dusty."},
    {"Lighthouse", "Lit", "The lamp flares [RED]bright red[BLACK], then settles to gold.\r\n\r\nFar away, a ship horn answers."},
    {"Lighthouse", "Window", "You can see the whole bay from here."},
    {"Lighthouse", "Cat", "The keeper's cat ignores you completely."},
    {"Market", "Baker", "Fresh rolls! Still warm!\r\nTwo for you, [PLAYER], one for [RIVAL]."},
    {"Market", "Fruit seller", "Oranges from the south boat.\r\nThe [BLUE]blue[BLACK] ones are not oranges."},
    {"Market", "Fishmonger", "Today's catch: mackerel, crab\r\nand one very confused boot."},
    {"Market", "Child", "Have you seen my kite?\r\nIt is [RED]red[BLACK] with a long tail!"},
    {"Market", "Kite", "A red kite is stuck on the awning."},
    {"Market", "Child thanks", "My kite! Thank you!\r\n\r\nHere, take this shell.\r\nIt sings when you hold it close."},
    {"Market", "Guard", "Keep your purse close.\r\nThe gulls are bolder than the thieves."},
    {"Market", "Notice", "[RED]Lantern Festival[BLACK]\r\nTonight at the pier!"},
    {"Town", "Mother", "[PLAYER], dear!\r\nDon't forget your scarf.\r\n\r\nThe wind off the sea bites."},
    {"Town", "Rival", "Hey, [PLAYER]!\r\nBet I reach the lighthouse first!"},
    {"Town", "Rival again", "Huff... huff...\r\nFine, you win this time."},
    {"Town", "Old man", "When I was young, the sea was [BLUE]bluer[BLACK].\r\nOr maybe my eyes were."},
    {"Town", "Mailbox", "A letter addressed to [PLAYER].\r\nIt smells faintly of salt."},
    {"Town", "Letter", "Meet me at the lighthouse at dusk.\r\n\r\n - [RIVAL]"},
    {"Town", "Ending", "The lanterns drift out over the bay.\r\n\r\n[PLAYER] and [RIVAL] watch\r\nuntil the last one fades."},
};

// The texts that a second pointer also refers to.
const std::vector<std::size_t> kSecondPointerTexts = {0, 8, 15, 23};

void PutPointer(std::string& rom, std::size_t at, std::size_t target) {
    const std::uint32_t value = 0x08000000u + static_cast<std::uint32_t>(target);
    for (int i = 0; i < 4; ++i) rom[at + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: make_demo_rom OUTPUT-FOLDER\n";
        return 2;
    }
    const std::filesystem::path out(argv[1]);
    std::filesystem::create_directories(out / "ini");

    std::string rom(kRomSize, '\0');
    const std::string title = "QUILLONDEMO";
    rom.replace(0xA0, title.size(), title);
    rom.replace(0xAC, 4, "QDME");
    rom.replace(0xB0, 2, "01");
    rom[0xB2] = static_cast<char>(0x96);
    // Header checksum over 0xA0..0xBC.
    std::uint8_t sum = 0;
    for (std::size_t i = 0xA0; i <= 0xBC; ++i) sum = static_cast<std::uint8_t>(sum - static_cast<std::uint8_t>(rom[i]));
    rom[0xBD] = static_cast<char>(static_cast<std::uint8_t>(sum - 0x19));

    const quillon::demo::DemoFont font = quillon::demo::MakeDemoFont();
    rom.replace(kGlyphSheet, font.glyphs.size(), font.glyphs);
    rom.replace(kGlyphWidths, font.widths.size(), font.widths);
    PutPointer(rom, kGlyphPointer, kGlyphSheet);
    PutPointer(rom, kWidthPointer, kGlyphWidths);

    std::vector<std::size_t> offsets;
    std::size_t at = kFirstText;
    for (const Entry& e : kEntries) {
        std::string bytes = quillon::HexToBytes(quillon::EncodeText(e.text, false));
        offsets.push_back(at);
        rom.replace(at, bytes.size(), bytes);
        at += bytes.size();
        rom[at++] = static_cast<char>(0xFF);
    }
    for (std::size_t i = 0; i < offsets.size(); ++i) PutPointer(rom, kPointerTable + 4 * i, offsets[i]);
    for (std::size_t i = 0; i < kSecondPointerTexts.size(); ++i)
        PutPointer(rom, kSecondPointers + 4 * i, offsets[kSecondPointerTexts[i]]);
    std::fill(rom.begin() + kFreeSpace, rom.end(), static_cast<char>(0xFF));

    std::ofstream romFile(out / "quillon-demo.gba", std::ios::binary | std::ios::trunc);
    romFile.write(rom.data(), static_cast<std::streamsize>(rom.size()));

    std::string ini = "'Offsets of the Quillon demonstration ROM\r\n";
    std::string section;
    for (std::size_t i = 0; i < kEntries.size(); ++i) {
        if (section != kEntries[i].section) {
            section = kEntries[i].section;
            ini += "[" + section + "]\r\n";
        }
        ini += std::string(kEntries[i].name) + "=" + quillon::PlainHex(offsets[i]) + "\r\n";
    }
    std::ofstream iniFile(out / "ini" / "QDME.ini", std::ios::binary | std::ios::trunc);
    iniFile << ini;
    if (!romFile || !iniFile) {
        std::cerr << "make_demo_rom: could not write into " << out.string() << "\n";
        return 1;
    }
    return 0;
}
