// The fit check: fonts found by their structure in images of each family and
// glyph format, the boxes of the families' windows, measuring with names and
// buffers, reflow, drawing and the whole-game check. Fonts and texts are of
// the tests' own making (seeded).
#include "fit/boxes.h"
#include "fit/check_all.h"
#include "fit/font.h"
#include "fit/measure.h"
#include "fit/reflow.h"
#include "fit/render.h"
#include "core/hex_text.h"
#include "game/game_model.h"
#include "game/words.h"
#include "support/name_records.h"
#include "support/rom_builder.h"
#include "support/temp_dir.h"
#include "support/workspace.h"

#include <quillon/codec.h>

#include <gtest/gtest.h>

#include <random>

using namespace quillon;
using namespace quillon::fit;
using namespace quillon::test;
using game::Family;
using game::TextContext;

namespace {

// A font of random glyphs: each a random picture of letter and shadow pixels
// reaching one pixel short of its width (the gap before the next glyph), in
// rows 2 to 12; the space blank. Letters are 3 to `widest` pixels wide.
struct MadeFont {
    std::string widths;  // 512
    std::string glyphs;  // 256 glyphs in `format`
};

MadeFont MakeFont(unsigned seed, GlyphFormat format, int widest) {
    std::mt19937 rng(seed);
    MadeFont f{std::string(512, '\0'), std::string(256 * GlyphBytes(format), '\0')};
    for (int b = 0; b < 512; ++b) f.widths[b] = static_cast<char>(3 + rng() % (widest - 2));
    for (int b = 1; b < 256; ++b) {
        const int w = static_cast<std::uint8_t>(f.widths[b]);
        for (int y = 2; y <= 12; ++y)
            for (int x = 0; x < w - 1; ++x) {
                const int v = x == w - 2 && y == 7 ? 1 : static_cast<int>(rng() % 3);  // 0 none, 1 letter, 2 shadow
                if (!v) continue;
                char* g = f.glyphs.data() + b * GlyphBytes(format);
                if (format == GlyphFormat::Narrow4bpp) {
                    g[y / 8 * 32 + y % 8 * 4 + x / 2] |= static_cast<char>((v == 1 ? 15 : 14) << (x % 2 * 4));
                } else {
                    const int tile = format == GlyphFormat::Wide2bpp ? y / 8 * 2 + x / 8 : y / 8;
                    g[tile * 16 + y % 8 * 2 + (x % 8 < 4)] |= static_cast<char>(v << (6 - 2 * (x % 4)));
                }
            }
    }
    return f;
}

// A font placed in an image: its two parts, and a literal pool with a
// pointer to each at `pool`.
RomBuilder& Plant(RomBuilder& rom, const MadeFont& f, std::uint32_t glyphs, std::uint32_t widths, std::uint32_t pool) {
    return rom.Put(glyphs, f.glyphs).Put(widths, f.widths).Pointer(pool, glyphs).Pointer(pool + 8, widths);
}

// A table of glyph-width functions at `table`: for each font number, a
// record of the number and a Thumb function at `code` + 64 n whose literal
// pool, 16 bytes in, points at that number's widths (0: at none).
RomBuilder& WidthFunctions(RomBuilder& rom, std::uint32_t table, std::uint32_t code, const std::vector<std::uint32_t>& widths) {
    for (std::uint32_t n = 0; n < widths.size(); ++n) {
        rom.Put(table + 8 * n, std::string{static_cast<char>(n), 0, 0, 0}).Pointer(table + 8 * n + 4, code + 64 * n + 1);
        if (widths[n]) rom.Pointer(code + 64 * n + 16, widths[n]);
    }
    return rom;
}

// A plain font for measuring and reflowing: every glyph 6 pixels, the space 3.
Font Even() {
    Font f;
    f.widths.fill(6);
    f.widths[0] = 3;
    f.glyphs.assign(256 * 64, 0);
    return f;
}

Box Narrow(int width, int cursor = 0) {
    Box b;
    b.width = width;
    b.cursor = cursor;
    return b;
}

}  // namespace

// --- finding the fonts -----------------------------------------------------

TEST(FitFont, FoundByStructureInEveryFamilyAndFormatWhereverItLies) {
    struct Case {
        const char* name;
        std::string code;
        GlyphFormat format;
        std::uint32_t glyphs, widths, pool;
    };
    const Case cases[] = {
        {"FireRed-like, moved", "BPRE", GlyphFormat::Wide2bpp, 0x2A1000, 0x2A9000, 0x004100},
        {"Emerald-like", "BPEE", GlyphFormat::Wide2bpp, 0x1C0000, 0x1BFE00, 0x0081A0},
        {"Ruby-like, 4 bits a pixel", "AXVE", GlyphFormat::Narrow4bpp, 0x1E4000, 0x1E0000, 0x0012F0},
        {"a hack of no known game", "ZZZE", GlyphFormat::Narrow2bpp, 0x0F0000, 0x0F4000, 0x0033C0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const MadeFont normal = MakeFont(7, c.format, c.format == GlyphFormat::Wide2bpp ? 10 : 8);
        const MadeFont small = MakeFont(8, GlyphFormat::Narrow2bpp, 5);
        RomBuilder rom(3u << 20, '\x01');
        rom.Code(c.code);
        Plant(rom, normal, c.glyphs, c.widths, c.pool);
        Plant(rom, small, 0x240000, 0x250000, 0x5000);
        Plant(rom, normal, 0x2D0000, 0x2E0000, 0x6000);  // a copy counts once
        // Decoys: widths with no pictures to match, pictures with widths too narrow.
        rom.Put(0x280000, std::string(300, '\x09')).Pointer(0x7000, 0x280000);
        rom.Put(0x290000, normal.glyphs).Put(0x298000, std::string(512, '\x02')).Pointer(0x7100, 0x290000).Pointer(0x7108, 0x298000);
        const FontResult r = LocateFont(rom.bytes());
        ASSERT_TRUE(r.font) << r.why;
        EXPECT_EQ(r.font->place, (FontPlace{c.glyphs, c.widths, c.format}));
        EXPECT_EQ(r.font->Width(0xBB), static_cast<std::uint8_t>(normal.widths[0xBB]));
        EXPECT_EQ(r.font->SymbolWidth(0x05), static_cast<std::uint8_t>(normal.widths[0x105]));
        EXPECT_EQ(r.found.size(), 2u);
        EXPECT_TRUE(r.found[0].confirmed);
    }
}

// Emerald's fonts as its text engine numbers them (text.h: 0 small, 1
// normal, 2 to 5 short, 6 braille, 7 narrow, 8 small narrow), whatever
// their order in the image. A second table that numbers them otherwise
// leaves every role but the message font unknown.
TEST(FitFont, TheFontOfEachRoleByTheGamesTableOfWidthFunctions) {
    RomBuilder rom(3u << 20, '\x01');
    rom.Code("BPEE");
    Plant(rom, MakeFont(13, GlyphFormat::Wide2bpp, 7), 0x100000, 0x108000, 0x4000);  // narrow
    Plant(rom, MakeFont(11, GlyphFormat::Wide2bpp, 10), 0x110000, 0x118000, 0x4100);  // normal
    Plant(rom, MakeFont(12, GlyphFormat::Wide2bpp, 6), 0x120000, 0x128000, 0x4200);  // small
    Plant(rom, MakeFont(14, GlyphFormat::Wide2bpp, 10), 0x130000, 0x138000, 0x4300);  // short: as wide, other glyphs
    const std::uint32_t narrow = 0x108000, normal = 0x118000, small = 0x128000, shortFont = 0x138000;
    WidthFunctions(rom, 0x5000, 0x6000, {small, normal, shortFont, shortFont, shortFont, shortFont, 0, narrow, small});
    // Emerald's messages are in its normal font alone; FireRed, which picks a
    // font by speaker, takes every glyph at the widest of its fonts of that size.
    const FontResult emerald = LocateFont(rom.bytes()), fireRed = LocateFont(RomBuilder(rom).Code("BPRE").bytes());
    ASSERT_TRUE(emerald.font && fireRed.font && emerald.byNumber.size() > 1 && emerald.byNumber[1]);
    EXPECT_EQ(emerald.font->widths, emerald.byNumber[1]->widths);
    EXPECT_NE(fireRed.font->widths, emerald.byNumber[1]->widths);
    struct Case {
        FontRole role;
        Family family;
        std::optional<std::uint32_t> widths, ambiguous;
    };
    const Case cases[] = {
        {FontRole::Normal, Family::Emerald, normal, normal},
        {FontRole::Small, Family::Emerald, small, std::nullopt},
        {FontRole::Narrow, Family::Emerald, narrow, std::nullopt},
        {FontRole::Small, Family::FireRedLeafGreen, small, std::nullopt},
        {FontRole::Narrow, Family::FireRedLeafGreen, std::nullopt, std::nullopt},  // no narrow font
        {FontRole::Small, Family::RubySapphire, std::nullopt, std::nullopt},       // no such table
        {FontRole::BattleTiles, Family::RubySapphire, std::nullopt, std::nullopt},
    };
    const FontResult one = LocateFont(rom.bytes());
    const FontResult two = LocateFont(WidthFunctions(rom, 0x7000, 0x8000, {narrow, normal, normal, normal, normal, normal, 0, small}).bytes());
    auto widths = [](const Font* f) { return f ? std::optional(f->place.widths) : std::nullopt; };
    for (const Case& c : cases) {
        EXPECT_EQ(widths(one.Of(c.role, c.family)), c.widths) << static_cast<int>(c.role) << " " << static_cast<int>(c.family);
        EXPECT_EQ(widths(two.Of(c.role, c.family)), c.ambiguous) << static_cast<int>(c.role) << " " << static_cast<int>(c.family);
    }
}

TEST(FitFont, NamedOffsetsServeAFontNoSearchFinds) {
    const MadeFont f = MakeFont(9, GlyphFormat::Wide2bpp, 9);
    const std::string image = RomBuilder(2u << 20, '\x01').Code("BPRE").Put(0x100000, f.glyphs).Put(0x108000, f.widths).bytes();
    EXPECT_EQ(LocateFont(image).why, "no fit check: no font was found in the image; name the offsets of its glyph "
                                     "pictures and glyph widths to check it.");
    const FontResult named = LocateFont(image, FontPlace{0x100000, 0x108000});
    ASSERT_TRUE(named.font) << named.why;
    EXPECT_EQ(named.font->Width(0xD5), static_cast<std::uint8_t>(f.widths[0xD5]));
    EXPECT_EQ(LocateFont(image, FontPlace{0x1FFFF0, 0x108000}).why,
              "no fit check: the glyph pictures at 0x1FFFF0 reach past the end of the image.");
    EXPECT_EQ(LocateFont(RomBuilder(0x40).bytes()).why, "no fit check: the image is too short to hold a cartridge header.");
}

// --- the boxes -------------------------------------------------------------

// Written by hand from the decompilations' window templates and printers.
TEST(FitBoxes, TheWindowsOfTwoFamilies) {
    struct Case {
        std::optional<Family> family;
        TextContext context;
        std::string_view table;
        int width, lines, cursor, space;
        FontRole font = FontRole::Normal;
    };
    const Case cases[] = {
        {Family::FireRedLeafGreen, TextContext::MessageBox, {}, 208, 2, 10, 0},  // 26 tiles, arrow 10 px
        {Family::FireRedLeafGreen, TextContext::Sign, {}, 208, 2, 10, 0},
        {Family::FireRedLeafGreen, TextContext::HelpWindow, {}, 208, 0, 0, 4},   // the help printer's space
        {Family::FireRedLeafGreen, TextContext::MessageBox, "Battle messages", 222, 2, 10, 0},  // 28 tiles from x 2
        {Family::FireRedLeafGreen, TextContext::Description, "Item descriptions", 200, 3, 0, 0},
        {Family::FireRedLeafGreen, TextContext::Description, "Move descriptions", 113, 4, 0, 0},
        {Family::Emerald, TextContext::MessageBox, {}, 216, 2, 8, 0},             // 27 tiles, arrow 8 px
        {Family::Emerald, TextContext::MessageBox, "Battle messages", 208, 2, 8, 0},
        {Family::Emerald, TextContext::Description, "Item descriptions", 109, 3, 0, 0},  // 14 tiles from x 3
        {Family::Emerald, TextContext::Description, "Move descriptions", 154, 2, 0, 0},  // 20 tiles from x 6
        {Family::Emerald, TextContext::HelpWindow, {}, 240, 0, 0, 0},                   // no help system: the screen
        {Family::RubySapphire, TextContext::MessageBox, {}, 208, 2, 0, 0},
        {std::nullopt, TextContext::Menu, {}, 224, 0, 0, 0},
        {Family::Emerald, TextContext::Description, "Pok\xC3\xA9" "dex entries", 240, 0, 0, 0},
        {Family::FireRedLeafGreen, TextContext::Other, {}, 240, 0, 0, 0},
        {Family::RubySapphire, TextContext::Description, "Item descriptions", 104, 3, 0, 0},  // cleared to 104 px
        {Family::RubySapphire, TextContext::Description, "Move descriptions", 144, 2, 0, 0},  // 18 tiles from x 88
        // Names: health boxes show 7 tiles of their window; battle menus 8 tiles a move (Ruby's 10).
        {Family::FireRedLeafGreen, TextContext::Name, "Species names", 56, 1, 0, 0, FontRole::Small},
        {Family::FireRedLeafGreen, TextContext::Name, "Move names", 64, 1, 0, 0, FontRole::Small},
        {Family::Emerald, TextContext::Name, "Species names", 56, 1, 0, 0, FontRole::Small},
        {Family::Emerald, TextContext::Name, "Move names", 64, 1, 0, 0, FontRole::Narrow},
        {Family::RubySapphire, TextContext::Name, "Species names", 56, 1, 0, 0, FontRole::BattleTiles},
        {Family::RubySapphire, TextContext::Name, "Move names", 80, 1, 0, 0, FontRole::Normal},
    };
    for (const Case& c : cases) {
        const Box b = BoxOf(c.family, c.context, c.table);
        EXPECT_EQ(std::tuple(b.width, b.lines, b.cursor, b.space, b.font), std::tuple(c.width, c.lines, c.cursor, c.space, c.font))
            << game::ContextName(c.context) << " " << c.table;
    }
    EXPECT_FALSE(BoxOf(Family::Emerald, TextContext::Braille).check);
}

TEST(FitBoxes, HelpTextsByTheirPairedTables) {
    const char* words[] = {"Press the button to open the menu.", "Your bag holds the items you found.",
                           "Talk to people to learn about the town.", "Rest at the center to heal your team."};
    RomBuilder rom(3u << 20, '\xFF');
    rom.Code("BPRE");
    std::uint32_t at = 0x180000;
    std::vector<std::uint32_t> texts;
    for (int i = 0; i < 9; ++i) {  // the fifth stands between the tables' texts, pointed at by a lone word
        const std::string bytes = HexToBytes(EncodeText(words[i % 4], false)) + "\xFF";
        rom.Put(at, bytes);
        texts.push_back(at);
        at += static_cast<std::uint32_t>(bytes.size());
    }
    // Two tables of four, each led by an empty word: titles, then explanations.
    for (int k = 0; k < 8; ++k) rom.Pointer(0x190004 + 4 * (k + k / 4), texts[k < 4 ? k : k + 1]);
    rom.Put(0x190000, std::string(4, '\0')).Put(0x190014, std::string(4, '\0'));
    const std::string image = rom.Pointer(0x1A1000, texts[4]).bytes();
    const TextBoxes boxes = TextBoxes::Read(image, game::GameModel::Read(image));
    EXPECT_EQ(boxes.HelpTexts().size(), 8u);
    for (std::size_t i = 0; i < texts.size(); ++i)
        EXPECT_EQ(boxes.At(texts[i]).context, i == 4 ? TextContext::Other : TextContext::HelpWindow) << i;
}

// Species names are drawn on the health box in the small font, the gender
// sign behind them, in the 7 tiles the health box shows: 56 pixels. With
// 6-pixel letters and sign, eight fit and nine do not.
TEST(FitBoxes, NamesOfFixedLengthInTheWindowsThatShowThem) {
    RomBuilder rom(3u << 20, '\xFF');
    rom.Code("BPRE").Put(0x200000, test::NameRecords({11, 11, '\0', 412})).Pointer(0x144, 0x200000);
    const std::uint32_t eight = 0x200000 + 11 * 5, nine = 0x200000 + 11 * 6;
    rom.Put(eight, std::string(8, '\xC7') + "\xFF").Put(nine, std::string(9, '\xC7') + "\xFF");
    const std::string image = rom.bytes();
    const TextBoxes boxes = TextBoxes::Read(image, game::GameModel::Read(image), true);
    EXPECT_EQ(boxes.At(nine).name, "species name on the health box");
    EXPECT_NE(boxes.At(nine + 1).context, TextContext::Name);  // inside a field, not at its start
    EXPECT_NE(TextBoxes::Read(image, game::GameModel::Read(image)).At(nine).context, TextContext::Name);

    FontResult fonts;
    fonts.font = Even();
    const std::string offsets = "[Species names]\r\nEight=" + PlainHex(eight) + "\r\nNine=" + PlainHex(nine) + "\r\n";
    EXPECT_EQ(CheckTexts(image, offsets, fonts, boxes).entries, 0u);  // the small font not told apart: not measured
    fonts.byNumber = {Even()};
    const CheckReport r = CheckTexts(image, offsets, fonts, boxes);
    ASSERT_EQ(r.rows.size(), 1u);
    EXPECT_EQ(std::tuple(r.rows[0].key, r.rows[0].First().width), std::tuple(std::string("Nine"), 60));
}

// Program code that prints a text in a window it makes from templates: a
// function whose literal pool loads the templates and the text, and whose
// call passes the printer's x as a constant. Of its windows, the narrowest
// that holds the text tells its box; a window the text does not fit is not
// its own. Without templates, without the array's closing template, or with
// the text loaded also by code that makes no window, for a text of one line
// (a label, which may go in any of the windows), or in Ruby and Sapphire
// (which make no windows from templates), its box stays the one of a text
// of unknown use.
TEST(FitBoxes, WindowsThatProgramCodeMakesFromTemplates) {
    enum class Layout { Array, TableOfArrays, Unclosed, NoTemplates, AlsoElsewhere, OneLine, RubySapphire };
    const Font font = Even();
    for (const Layout layout : {Layout::Array, Layout::TableOfArrays, Layout::Unclosed, Layout::NoTemplates,
                                Layout::AlsoElsewhere, Layout::OneLine, Layout::RubySapphire}) {
        for (unsigned seed = 1; seed <= 3; ++seed) {
            std::mt19937 rng(seed * 7 + static_cast<unsigned>(layout));
            const int narrow = 18 + static_cast<int>(rng() % 4), wide = narrow + 3 + static_cast<int>(rng() % 4);
            const int x = 3 + static_cast<int>(rng() % 6);
            RomBuilder rom(1u << 20, '\xFF');
            rom.Code(layout == Layout::RubySapphire ? "AXVE" : "BPRE");
            auto window = [&](int tiles) {  // bg 0, left, top, width, height 4, palette 15, baseBlock
                const int block = 1 + static_cast<int>(rng() % 200);
                return std::string{'\0', static_cast<char>(rng() % 4), static_cast<char>(rng() % 12), static_cast<char>(tiles),
                                   '\4', '\x0F', static_cast<char>(block), static_cast<char>(block >> 8)};
            };
            const std::string closing("\xFF\0\0\0\0\0\0\0", 8);
            constexpr std::uint32_t kTemplates = 0x90000, kTable = 0x90100, kText = 0xA0000;
            // Five words of four letters a line: 132 pixels, which a window of 4 tiles does not hold.
            std::string text;
            for (int k = 0; k < (layout == Layout::OneLine ? 5 : 8); ++k)
                text += (k == 0 ? "" : k == 5 ? "\r\n" : " ") + std::string(4, static_cast<char>('a' + rng() % 26));
            const std::string original = HexToBytes(EncodeText(text, false));
            rom.Put(kText, original + "\xFF");
            std::uint32_t loaded = 0x02000000;  // a work-RAM address where no templates are loaded
            if (layout == Layout::Array || layout == Layout::Unclosed || layout == Layout::OneLine ||
                layout == Layout::RubySapphire) {
                rom.Put(kTemplates, window(wide) + window(4) + window(narrow) + (layout != Layout::Unclosed ? closing : ""));
                loaded = game::kRomBase + kTemplates;
            } else if (layout != Layout::NoTemplates) {
                rom.Put(kTemplates, window(wide) + closing + window(4) + window(narrow) + closing);
                rom.Pointer(kTable, kTemplates).Pointer(kTable + 4, kTemplates + 16);
                loaded = game::kRomBase + kTable;
            }
            // push {r4, lr}; ldr r0, =loaded; bl callee; ldr r0, =text; movs r1, #1; movs r2, #x;
            // movs r3, #0; bl callee; pop {r4, pc}; the pool; the callee: push {lr}; pop {pc}.
            auto function = [&](std::uint32_t at, std::uint32_t first) {
                auto bl = [&](std::uint32_t from) {  // to the callee
                    const std::uint32_t off = at + 32 - (from + 4);
                    return std::string{static_cast<char>(off >> 12), static_cast<char>(0xF0 | (off >> 20 & 7)),
                                       static_cast<char>(off >> 1), static_cast<char>(0xF8 | (off >> 9 & 7))};
                };
                rom.Put(at, Bytes("10B50548") + bl(at + 4) + Bytes("04480121") + std::string{static_cast<char>(x), '\x22'} +
                                Bytes("0023") + bl(at + 16) + Bytes("10BD0000"));
                rom.Put(at + 24, std::string{static_cast<char>(first), static_cast<char>(first >> 8),
                                             static_cast<char>(first >> 16), static_cast<char>(first >> 24)});
                rom.Pointer(at + 28, kText).Put(at + 32, Bytes("00B500BD"));
            };
            function(0x10000, loaded);
            if (layout == Layout::AlsoElsewhere) function(0x10100, 0x02000000);
            const std::string image = rom.bytes();
            const Box box = TextBoxes::Read(image, game::GameModel::Read(image), false, &font).At(kText);
            const bool known = layout == Layout::Array || layout == Layout::TableOfArrays;
            const std::string what = std::to_string(static_cast<int>(layout)) + " seed " + std::to_string(seed);
            EXPECT_EQ(box.width, known ? 8 * narrow - x : BoxOf(Family::FireRedLeafGreen, TextContext::Other).width) << what;
            EXPECT_EQ(box.context, TextContext::Other) << what;
            if (!known) continue;
            // Lines that need more room widen up to the window, not to the message box.
            const ReflowOptions o = ReflowFor(box, Family::FireRedLeafGreen, false, std::nullopt, &font, original);
            EXPECT_EQ(o.widen, 8 * narrow - x) << what;
        }
    }
}

// --- measuring -------------------------------------------------------------

TEST(FitMeasure, WidthsAsUsualAndAtTheLongestAndTheKindOfEachLine) {
    const Font font = Even();  // capitals 6 px: a usual name 30, the longest 42; a buffer 6 to 72
    struct Case {
        std::string text;
        Box box;
        int width, longest;
        bool over, names;
    };
    const Case cases[] = {
        {"Hello there", Narrow(100), 63, 63, false, false},
        {"[RED]Hi[BLACK]", Narrow(100), 12, 12, false, false},              // colours take no room
        {"Hi [PLAYER]", Narrow(40), 45, 57, true, false},                      // a usual name is already over
        {"Hi [PLAYER]", Narrow(50), 45, 57, false, true},                      // over only at its longest
        {"\\v[&H02]!", Narrow(50), 12, 78, false, true},                       // a buffer: a digit, or twelve capitals
        {"\\v[&H07]", Narrow(50), 54, 54, true, false},                        // the version: LEAFGREEN, whichever holds
        {"A[d][&H04]B[l][&H05]", Narrow(100), 42, 42, false, false},          // START button 24 px, symbol 6
        {"A\\c[&H13][&H50]B", Narrow(100), 86, 86, false, false},             // clear to x 80
        {"A B", [] { Box b = Narrow(100); b.space = 4; return b; }(), 16, 16, false, false},  // the help window's space
    };
    for (const Case& c : cases) {
        const Measure m = MeasureText(c.text, false, font, OptionsFor(c.box, Family::FireRedLeafGreen));
        ASSERT_EQ(m.lines.size(), 1u) << c.text;
        const Line& l = m.lines[0];
        EXPECT_EQ(std::tuple(l.width, l.longest, l.over, l.names), std::tuple(c.width, c.longest, c.over, c.names)) << c.text;
    }
    // A sample name counts as it stands; Ruby and Sapphire have no F7..F9 codes.
    EXPECT_EQ(MeasureText("[PLAYER]", false, font, OptionsFor(Narrow(100), {}, SampleName("ASH"))).lines[0].longest, 18);
    EXPECT_EQ(MeasureText("A[d][&H04]", false, font, OptionsFor(Narrow(100), Family::RubySapphire)).lines[0].width, 18);
    // Their version (SAPPHIRE) and rival (BRENDAN) are names the game holds.
    EXPECT_EQ(MeasureText("\\v[&H07][RIVAL]", false, font, OptionsFor(Narrow(100), Family::RubySapphire)).lines[0].longest, 90);
}

TEST(FitMeasure, PagingTwoLinesABoxScrollAndNewBox) {
    const Font font = Even();
    // a FE b FA c FB d: the second break scrolls, the empty line starts a box.
    const Measure m = MeasureText("a\r\nb\r\nc\r\n\r\nd", false, font);
    EXPECT_EQ(m.bytes, Bytes("D5FED6FAD7FBD8"));
    ASSERT_EQ(m.boxes.size(), 3u);
    EXPECT_EQ(m.boxes[1].lines, (std::vector<int>{1, 2}));  // b stays in view above c
    const std::tuple<int, int, int> places[] = {{0, 0, 0}, {0, 1, 1}, {1, 1, 2}, {2, 0, 4}};  // box, row, editor line
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(std::tuple(m.lines[i].box, m.lines[i].row, m.lines[i].editorLine), places[i]) << i;
    // Special Dialog: every break is FE, so a third line falls below the box.
    EXPECT_EQ(MeasureText("a\r\nb\r\nc", true, font).hiddenLines, 1);
    // A line break typed as a hex tag: the editor's line numbers are unknown.
    EXPECT_FALSE(MeasureText("a[&HFE]b", false, font).editorLinesExact);
}

// --- reflow ----------------------------------------------------------------

TEST(FitReflow, BreaksBetweenWordsKeepsForcedBreaksAndNeverSplitsATag) {
    const Font font = Even();  // 6 px a letter, 3 a space: ten letters fill 60 px
    struct Case {
        const char* name;
        std::string text, reflowed;
        Box box = Narrow(60);
    };
    const Case cases[] = {
        {"fits: unchanged", "aaaa bbbb\r\ncc", "aaaa bbbb\r\ncc"},
        {"one long line", "aaaa bbbb cccc", "aaaa bbbb\r\ncccc"},
        {"a short line keeps its break", "aa\r\nbbbb cccc dddd", "aa\r\nbbbb cccc\r\ndddd"},
        {"the rest joins the next line", "aaaa bbbb cccc\r\ndd", "aaaa bbbb\r\ncccc dd"},
        {"a new box stays", "aaaa bbbb cccc\r\n\r\ndd", "aaaa bbbb\r\ncccc\r\n\r\ndd"},
        {"a name as usual", "[PLAYER] aaaa bbbb", "[PLAYER] aaaa\r\nbbbb"},
        {"a buffer", "\\v[&H02] aaaa bbbb cccc", "\\v[&H02] aaaa bbbb\r\ncccc"},
        {"a word longer than a line", "aaaaaaaaaaaa", "aaaaaaaaaa\r\naa"},
        {"a code stays whole", "aaaaaaaaa[RED]aa", "aaaaaaaaa[RED]a\r\na"},
        {"room for the arrow", "aaaaaaaaa bbbbbbbbb", "aaaaaaaaa\r\nbbbbbbbb\r\nb", Narrow(60, 7)},
    };
    for (const Case& c : cases) {
        const ReflowOptions o{OptionsFor(c.box, Family::FireRedLeafGreen), true, {}};
        const std::string out = ReflowText(c.text, false, font, o).text;
        EXPECT_EQ(out, c.reflowed) << c.name;
        EXPECT_EQ(MeasureText(out, false, font, o.measure).overCount, 0) << c.name;
    }
    // The game's breaks: \n for the second line, \l for each that scrolls in; \n alone elsewhere.
    const std::string bytes = HexToBytes(EncodeText("aaaa bbbb cccc dddd eeee", false));
    EXPECT_EQ(ReflowBytes(bytes, font, {OptionsFor(Narrow(60), {}), true, {}}),
              HexToBytes(EncodeText("aaaa bbbb\r\ncccc dddd", false)) + "\xFA" + HexToBytes(EncodeText("eeee", false)));
    EXPECT_EQ(ReflowBytes(bytes, font, {OptionsFor(Narrow(60), {}), false, {}}).find('\xFA'), std::string::npos);
}

// A window the game does not name: the original's lines tell its width and
// how many lines it shows; lines widen to the message box's width rather
// than fall below it, and go on in a new box only where the original waited.
TEST(FitReflow, AWindowOfUnknownUseKeepsTheOriginalsLines) {
    const Font font = Even();  // 6 px a letter, 3 a space
    const Box screen = BoxOf(Family::FireRedLeafGreen, TextContext::Other);
    const std::string words = "aaaa bbbb cccc dddd eeee";
    std::string many, manyReflowed;  // 24 words: 7 to a line of a message box
    for (int k = 0; k < 24; ++k) {
        many += (k ? " " : "") + std::string("aaaa");
        manyReflowed += (k == 0 ? "" : k % 7 == 0 ? "\r\n" : " ") + std::string("aaaa");
    }
    struct Case {
        const char* name;
        std::string original, text, reflowed;
        bool scrolls;
        int hidden;
    };
    const Case cases[] = {
        {"no wait: wider lines", "aaaa bbbb cc\r\ncc", words, words, false, 0},
        {"no wait, too long even so: below", "aaaa bbbb cc\r\ncc", many, manyReflowed, false, 2},
        {"a wait in the original: a new box", "aaaa bbbb cc\r\ncc\r\n\r\ndd", words,
         "aaaa bbbb\r\ncccc dddd\r\n\r\neeee", false, 0},
        {"a scroll in the original: it scrolls", "aaaa bbbb cc\r\ncc\r\ndd", words, "aaaa bbbb\r\ncccc dddd\r\neeee",
         true, 0},
    };
    for (const Case& c : cases) {
        const std::string original = HexToBytes(EncodeText(c.original, false));
        const ReflowOptions o = ReflowFor(screen, Family::FireRedLeafGreen, false, std::nullopt, &font,
                                          std::string_view(original).substr(0, original.find('\xFF')));
        const std::string out = ReflowBytes(HexToBytes(EncodeText(c.text, false)), font, o);
        EXPECT_EQ(DecodeText(out, false), c.reflowed) << c.name;
        EXPECT_EQ(out.find('\xFA') != std::string::npos, c.scrolls) << c.name;
        EXPECT_EQ(MeasureBytes(out, font, o.measure).hiddenLines, c.hidden) << c.name;
        // In the editor: saving writes the same bytes (as Special Dialog where \n follows \n).
        const ReflowedText edited = ReflowText(c.text, false, font, o);
        EXPECT_EQ(HexToBytes(EncodeText(edited.text, edited.specialDialog)), out) << c.name;
        EXPECT_EQ(edited.specialDialog, c.hidden > 0) << c.name;
    }
}

// --- drawing ---------------------------------------------------------------

TEST(FitDraw, GlyphsAtTheirPlacesSampleWordsAndWhatReachesPast) {
    const FontResult r = LocateFont(RomBuilder(3u << 20, '\x01').Code("BPRE").Font().bytes());
    ASSERT_TRUE(r.font) << r.why;
    const Font& font = *r.font;
    const Colours c;
    // "Hi" and [PLAYER] as the sample "AS": each glyph's ink fills its width
    // but one column, rows 2 to 12, from the line's top (1 and 17).
    const MeasureOptions o = OptionsFor(Box{}, {}, SampleName("AS"));
    const Measure m = MeasureText("Hi\r\n[PLAYER]", false, font, o);
    for (int zoom : {1, 3}) {
        const Picture p = DrawBox(m, 0, font, {c, zoom, o});
        ASSERT_EQ(std::pair(p.width, p.height), std::pair(208 * zoom, 32 * zoom));
        auto at = [&](int x, int y) { return p.At(x * zoom, y * zoom); };
        const int h = FontWidth(0xC2), i = FontWidth(0xDD), a = FontWidth(0xBB);
        EXPECT_EQ(at(0, 3), c.letter);
        EXPECT_EQ(at(h - 2, 13), c.letter);
        EXPECT_EQ(at(h - 1, 3), c.background);  // the gap
        EXPECT_EQ(at(h, 3), c.letter);          // "i"
        EXPECT_EQ(at(h + i, 3), c.background);
        EXPECT_EQ(at(0, 2), c.background);
        EXPECT_EQ(at(0, 19), c.sample);  // the second line: the sample name
        EXPECT_EQ(at(a, 19), c.sample);
    }
    // A line over the box widens the picture; past the box, its own background.
    const Picture wide = DrawBox(MeasureBytes(std::string(31, '\x04'), font), 0, font);
    EXPECT_EQ(wide.width, 31 * 7);
    EXPECT_EQ(wide.At(31 * 7 - 1, 0), Colours{}.outside);
}

// --- the whole game --------------------------------------------------------

TEST(FitCheckAll, TheKindOfEachEntryAndTheOnesItCannotRead) {
    TempDir dir;
    // [PLAYER] as usual 25 px (five capitals of 5 px), at its longest 49: 4 x 25 + 15 fits, 4 x 49 + 15 is over.
    HelloRom("QLNE").Font().Put(0x100000, Bytes("FD01FD01FD01FD01BBBBBBFF")).Put(0x100100, std::string(31, '\xC7') + "\xFF")
        .Save(dir / "rom.gba");
    WriteFile(dir / "QLNE.ini", "[Names]\r\nLong=100000\r\nWide=100100\r\nBad=XYZ\r\nFar=7000000\r\n");
    const CheckReport r = CheckRom(dir / "rom.gba", dir / "QLNE.ini");
    EXPECT_EQ(std::tuple(r.entries, r.over, r.names), std::tuple(2u, 1u, 1u));
    EXPECT_EQ(r.skipped, (std::vector<std::string>{"Names/Bad: the offset 'XYZ' is not a hexadecimal number",
                                                    "Names/Far: the offset 7000000 lies past the end of the image"}));
    ASSERT_EQ(r.rows.size(), 2u);
    EXPECT_EQ(std::tuple(r.rows[0].First().width, r.rows[0].First().names, r.rows[0].First().lineText),
              std::tuple(211, true, std::string("[PLAYER][PLAYER][PLAYER][PLAYER]AAA")));
    EXPECT_EQ(std::tuple(r.rows[1].First().width, r.rows[1].over, r.rows[1].box.width), std::tuple(217, true, 208));
    EXPECT_EQ(CheckRom(dir / "rom.gba", dir / "QLNE.ini", std::nullopt, SampleName("ASH")).names, 0u);
}
