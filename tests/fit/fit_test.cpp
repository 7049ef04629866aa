// The fit check: finding the font, measuring lines, paging, drawing a box and
// the whole-game check, on images built here with a font of the test's own.
#include "demo/demo_font.h"
#include "fit/check_all.h"
#include "fit/font.h"
#include "fit/measure.h"
#include "fit/render.h"
#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

using namespace quillon;
using namespace quillon::fit;
using namespace quillon::test;

namespace {

constexpr std::uint32_t kGlyphs = 0x1FF300;  // where FireRed 1.0 keeps them
constexpr std::uint32_t kWidths = 0x207300;

// The test's font: widths of FontWidth(); every glyph a random 16x16 picture
// of the values 0..3.
using Pixels = std::array<std::array<int, 16>, 16>;

const std::vector<Pixels> kPictures = [] {
    std::mt19937 rng(15);
    std::vector<Pixels> p(256);
    for (auto& glyph : p)
        for (auto& row : glyph)
            for (int& v : row) v = static_cast<int>(rng() % 4);
    return p;
}();

// An image holding the pictures in the game's format: tiles TL, TR, BL, BR of 16 bytes;
// a tile row is two bytes, the second with the left four pixels, the first
// with the right four; the highest bits of a byte are the leftmost pixel.
RomBuilder FontRom(std::string_view code = "BPRE", char version = 0, std::uint32_t glyphPointer = 0x66EC,
                   std::uint32_t widthPointer = 0x66F4) {
    std::string sheet;
    for (const Pixels& px : kPictures)
        for (int tile = 0; tile < 4; ++tile)
            for (int row = 0; row < 8; ++row)
                for (int x0 : {4, 0}) {  // first byte: right four pixels; second: left four
                    int b = 0;
                    for (int k = 0; k < 4; ++k) b = b * 4 + px[tile / 2 * 8 + row][tile % 2 * 8 + x0 + k];
                    sheet.push_back(static_cast<char>(b));
                }
    return RomBuilder(3u << 20, '\xFF').Title("FITTEST").Code(code).Maker("01").Font(sheet, version, glyphPointer,
                                                                                    widthPointer);
}

Font TestFont() {
    static const FontResult r = LocateFont(FontRom().bytes());
    EXPECT_TRUE(r.font) << r.why;
    return *r.font;
}

}  // namespace

// --- finding the font ------------------------------------------------------

TEST(FitFont, FoundThroughThePointersOfKnownGamesOnly) {
    struct Case {
        const char* name;
        RomBuilder rom;
        std::string why;  // empty: found
    };
    const Case cases[] = {
        {"FireRed 1.0", FontRom("BPRE", 0, 0x66EC, 0x66F4), ""},
        {"LeafGreen 1.0", FontRom("BPGE", 0, 0x66EC, 0x66F4), ""},
        {"FireRed 1.1", FontRom("BPRE", 1, 0x6700, 0x6708), ""},
        {"LeafGreen 1.1", FontRom("BPGE", 1, 0x6700, 0x6708), ""},
        {"Emerald", FontRom("BPEE", 0, 0x67D0, 0x67D8), ""},
        {"demo", FontRom("QDME", 0, 0x66EC, 0x66F4), ""},
        {"unknown game", FontRom("AXVE"),
         "no fit check: the font of game AXVE version 0 is not known; name the offsets of its glyph pictures and "
         "glyph widths to check it."},
        {"unknown version", FontRom("BPEE", 1), "the font of game BPEE version 1 is not known"},
        {"glyphs past the end", FontRom().Pointer(0x66EC, 0x2FFFF0),
         "no fit check: the glyph pictures at 0x2FFFF0 reach past the end of the image."},
        {"widths pointer outside", FontRom().PutHex(0x66F4, "00000000"),
         "no fit check: the pointer to the glyph widths at 0x66F4 (0x0) does not point into the image."},
        {"no header", RomBuilder(0x40, '\0'), "too short to hold a cartridge header"},
    };
    for (const Case& c : cases) {
        const FontResult r = LocateFont(c.rom.bytes());
        if (!c.why.empty()) {
            EXPECT_FALSE(r.font) << c.name;
            EXPECT_NE(r.why.find(c.why), std::string::npos) << c.name << ": " << r.why;
            continue;
        }
        ASSERT_TRUE(r.font) << c.name << ": " << r.why;
        EXPECT_EQ(r.font->place, (FontPlace{kGlyphs, kWidths})) << c.name;
        EXPECT_EQ(r.font->Width(0xBB), FontWidth(0xBB)) << c.name;
        EXPECT_EQ(r.font->widest, 7) << c.name;
    }
}

// --- measuring -------------------------------------------------------------

TEST(FitMeasure, WidthsAreTheSumOfTheGlyphsCodesTakeNoRoomAndNamesTheirLongest) {
    const Font font = TestFont();
    struct Case {
        std::string text;  // editor text, or bytes when `bytes`
        bool bytes;
        int width;
        std::optional<std::string> name = {};
    };
    const Case cases[] = {
        // "Hello" = C2 D9 E0 E0 E3: 3+194%5=7, 3+217%5=5, 7, 7, 3+227%5=5.
        {"Hello", false, 7 + 5 + 7 + 7 + 5},
        {"[RED]Hi[BLACK]", false, 11},  // FC 01 xx: nothing
        // FC 04 has three parameters, FC 09 none: only "A" (BB: 5) counts.
        {"\\c[&H04][&H01][&H02][&H03]\\c[&H09]A", false, 5},
        {Bytes("FC0CFA"), true, 3},  // FC 0C draws the next byte as a glyph: 0xFA is 3 + 250%5
        // [PLAYER] and [RIVAL] at 7 times the widest glyph (7).
        {"Hi[PLAYER]", false, 11 + 49},
        // A sample name: "ASH" = BB 5 + CD 3 + C2 7; [RIVAL] keeps its longest.
        {"[PLAYER]", false, 15, "ASH"},
        {"[RIVAL]", false, 49, "ASH"},
        {Bytes("BBFFBBBB"), true, 5},  // the end byte stops the text
    };
    for (const Case& c : cases) {
        const MeasureOptions o{c.name ? SampleName(*c.name) : std::nullopt};
        const Measure m = c.bytes ? MeasureBytes(c.text, font, o) : MeasureText(c.text, false, font, o);
        ASSERT_EQ(m.lines.size(), 1u) << c.text;
        EXPECT_EQ(m.lines[0].width, c.width) << c.text;
        EXPECT_FALSE(m.lines[0].over) << c.text;
    }
}

TEST(FitMeasure, LinesOverTheBoxAndPagingTwoLinesABoxScrollAndNewBox) {
    const Font font = TestFont();
    // 0x04 is 7 px wide, 0x00 (space) 3: 29 x 7 + 5 x 3 = 218; 29 x 7 + 1 x 5 = 208.
    const std::string x29(29, '\x04');
    const Measure o = MeasureBytes(x29 + "\xBB\xFE" + x29 + std::string(5, '\x00'), font);
    ASSERT_EQ(o.lines.size(), 2u);
    EXPECT_EQ(std::pair(o.lines[0].width, o.lines[0].over), std::pair(208, false));
    EXPECT_EQ(std::pair(o.lines[1].width, o.lines[1].over), std::pair(218, true));
    EXPECT_EQ(std::pair(o.overCount, o.widestLine), std::pair(1, 1));

    // a FE b FA c FB d: the second break scrolls, the empty line starts a box.
    const Measure m = MeasureText("a\r\nb\r\nc\r\n\r\nd", false, font);
    EXPECT_EQ(m.bytes, Bytes("D5FED6FAD7FBD8"));
    ASSERT_EQ(m.lines.size(), 4u);
    ASSERT_EQ(m.boxes.size(), 3u);
    EXPECT_EQ(m.boxes[0].lines, (std::vector<int>{0, 1}));
    EXPECT_EQ(m.boxes[1].lines, (std::vector<int>{1, 2}));  // b stays in view above c
    EXPECT_EQ(m.boxes[2].lines, (std::vector<int>{3}));
    const std::tuple<int, int, int> places[] = {{0, 0, 0}, {0, 1, 1}, {1, 1, 2}, {2, 0, 4}};  // box, row, editor line
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(std::tuple(m.lines[i].box, m.lines[i].row, m.lines[i].editorLine), places[i]) << i;
    EXPECT_TRUE(m.editorLinesExact);
    EXPECT_EQ(m.hiddenLines, 0);

    // Special Dialog: every break is FE, so a third line falls below the box.
    const Measure s = MeasureText("a\r\nb\r\nc", true, font);
    ASSERT_EQ(s.boxes.size(), 1u);
    EXPECT_EQ(s.boxes[0].lines.size(), 3u);
    EXPECT_EQ(s.lines[2].row, 2);
    EXPECT_EQ(s.hiddenLines, 1);

    // A scroll from the top line of a box pushes that line out.
    const Measure t = MeasureBytes(Bytes("D5FBD6FAD7"), font);
    EXPECT_EQ(t.boxes.back().lines, (std::vector<int>{2}));

    // A line break typed as a hex tag: the editor's line numbers are unknown.
    const Measure h = MeasureText("a[&HFE]b", false, font);
    EXPECT_EQ(h.lines.size(), 2u);
    EXPECT_FALSE(h.editorLinesExact);
    EXPECT_EQ(h.lines[1].editorLine, -1);
}

// --- drawing ---------------------------------------------------------------

// The reference: each glyph's known picture copied at its place, its width
// wide and 14 rows high, rows at 1 and 17; values 1 letter, 2 shadow, 0 and 3
// background (outside past 208 px); then each pixel blown up to zoom x zoom.
std::vector<std::uint32_t> Reference(const std::vector<std::vector<int>>& rowsOfBytes, int zoom, const Colours& c,
                                     int width = 208) {
    std::vector<std::uint32_t> logical(width * 32, c.background);
    for (int y = 0; y < 32; ++y) std::fill_n(logical.begin() + y * width + 208, width - 208, c.outside);
    for (int r = 0; r < static_cast<int>(rowsOfBytes.size()); ++r)
        for (int x = 0; int b : rowsOfBytes[r]) {
            for (int gy = 0; gy < 14; ++gy)
                for (int gx = 0; gx < FontWidth(b) && x + gx < width; ++gx) {
                    const int v = kPictures[b][gy][gx];
                    if (v == 1 || v == 2) logical[(1 + 16 * r + gy) * width + x + gx] = v == 1 ? c.letter : c.shadow;
                }
            x += FontWidth(b);
        }
    std::vector<std::uint32_t> out(width * zoom * 32 * zoom);
    for (int y = 0; y < 32 * zoom; ++y)
        for (int x = 0; x < width * zoom; ++x) out[y * width * zoom + x] = logical[(y / zoom) * width + x / zoom];
    return out;
}

TEST(FitDraw, BoxMatchesTheReferencePixelByPixel) {
    const Font font = TestFont();
    // The format pinned by hand: glyph 0, tile top-right, row 0 holds its left pixels in byte 17.
    const auto& p = kPictures[0][0];
    EXPECT_EQ(static_cast<std::uint8_t>(font.glyphs[17]), p[8] << 6 | p[9] << 4 | p[10] << 2 | p[11]);
    const Colours colours{0x112233, 0x445566, 0x778899};
    // "Hi" then "yo" with [PLAYER] as "AS": box 0 holds both lines; box 1 holds
    // "yo" and "Ok" after the scroll.
    const Measure m = MeasureText("Hi\r\nyo[PLAYER]\r\nOk", false, font, {SampleName("AS")});
    for (int zoom : {1, 2, 3}) {
        DrawOptions o{colours, zoom, SampleName("AS")};
        const Picture p0 = DrawBox(m, 0, font, o);
        ASSERT_EQ(p0.width, 208 * zoom);
        ASSERT_EQ(p0.height, 32 * zoom);
        // Compared whole, so a failure does not print thousands of pixels.
        EXPECT_TRUE(p0.pixels == Reference({{0xC2, 0xDD}, {0xED, 0xE3, 0xBB, 0xCD}}, zoom, colours)) << zoom;
        const Picture p1 = DrawBox(m, 1, font, o);
        EXPECT_TRUE(p1.pixels == Reference({{0xED, 0xE3, 0xBB, 0xCD}, {0xC9, 0xDF}}, zoom, colours)) << zoom;
    }
    // A line over the box (31 x 7 = 217 px) widens the picture.
    const Picture wide = DrawBox(MeasureBytes(std::string(31, '\x04'), font), 0, font, {colours, 1, std::nullopt});
    ASSERT_EQ(wide.width, 217);
    EXPECT_TRUE(wide.pixels == Reference({std::vector<int>(31, 0x04)}, 1, colours, 217));
}

TEST(FitDraw, DemoFontPacksAsTheGameReadsIt) {
    const demo::DemoFont d = demo::MakeDemoFont();
    RomBuilder rom(1u << 20, '\0');
    rom.Code("QDME").Put(0xD0000, d.glyphs).Put(0xD8000, d.widths).Pointer(0x66EC, 0xD0000).Pointer(0x66F4, 0xD8000);
    const FontResult r = LocateFont(rom.bytes());
    ASSERT_TRUE(r.font) << r.why;
    int ink = 0;
    const auto a = demo::DemoGlyphPixels(demo::kDemoGlyphs[0].rows, ink);  // A
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            ASSERT_EQ(r.font->Pixel(0xBB, x, y), a[y][x]);
    EXPECT_EQ(r.font->Width(0xBB), 7);  // 5 ink, shadow, gap
    EXPECT_EQ(r.font->Pixel(0xBB, 0, 2), 0);  // ".###." starts blank
    EXPECT_EQ(r.font->Pixel(0xBB, 1, 2), 1);
    EXPECT_EQ(r.font->Pixel(0xBB, 4, 2), 2);  // shadow right of the ink
}

// --- the whole game --------------------------------------------------------

// The rows and counts of the whole-game check are checked through the command
// line's "check"; here the entries it cannot read, and the sample name.
TEST(FitCheckAll, ListsTheWideEntriesAndTheOnesItCannotRead) {
    TempDir dir;
    FontRom().Put(0x100000, Bytes("FD01FD01FD01FD01BBBBBBFF")).Save(dir / "rom.gba");  // 4 x 49 + 3 x 5 = 211 px
    WriteFile(dir / "BPRE.ini", "[Names]\r\nLong=100000\r\nBad=XYZ\r\nFar=7000000\r\n");
    const CheckReport r = CheckRom(dir / "rom.gba", dir / "BPRE.ini");
    EXPECT_EQ(r.entries, 1u);
    EXPECT_EQ(r.skipped, (std::vector<std::string>{"Names/Bad: the offset 'XYZ' is not a hexadecimal number",
                                                    "Names/Far: the offset 7000000 lies past the end of the image"}));
    ASSERT_EQ(r.rows.size(), 1u);
    EXPECT_EQ(r.rows[0].lineText, "[PLAYER][PLAYER][PLAYER][PLAYER]AAA");
    EXPECT_TRUE(CheckRom(dir / "rom.gba", dir / "BPRE.ini", std::nullopt, {SampleName("ASH")}).rows.empty());
}
