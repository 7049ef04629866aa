#include "fit/boxes.h"

#include "fit/window_box.h"
#include "game/maps.h"
#include "game/name_tables.h"
#include "game/words.h"

#include <algorithm>
#include <array>

namespace quillon::fit {
namespace {

using game::Family;
using game::TextContext;

struct Fact {
    Family family;
    TextContext context;
    std::string_view table;  // empty: any text of the context
    Box box;
};

constexpr Box Make(TextContext context, std::string_view name, int width, int lines, int cursor = 0, int space = 0,
                   bool battle = false) {
    return Box{context, name, width, lines, cursor, space, battle, true, FontRole::Normal, {}};
}

// A name drawn in `font`, with `after` drawn right behind it.
constexpr Box In(FontRole font, Box box, std::string_view after = {}) {
    box.font = font, box.after = after;
    return box;
}

// The windows, as the decompilations' window templates and text printers
// set them up. A window of n tiles is 8n pixels; text printed from x
// pixels into it keeps the rest.
constexpr std::array kFacts = {
    // FireRed and LeafGreen.
    // new_menu_helpers.c: the standard text box is 26 tiles wide; text.c: the
    // down arrow behind a line that waits is 10 pixels wide.
    Fact{Family::FireRedLeafGreen, TextContext::MessageBox, {}, Make(TextContext::MessageBox, "message box", 208, 2, 10)},
    Fact{Family::FireRedLeafGreen, TextContext::Sign, {}, Make(TextContext::Sign, "message box", 208, 2, 10)},
    // battle_bg.c: the battle message window is 28 tiles; battle_message.c prints from x 2.
    Fact{Family::FireRedLeafGreen, TextContext::MessageBox, "Battle messages",
         Make(TextContext::MessageBox, "battle message box", 222, 2, 10, 0, true)},
    // help_system_util.c: questions and answers are drawn 26 tiles wide by
    // the help system's own printer, whose space is 4 pixels.
    Fact{Family::FireRedLeafGreen, TextContext::HelpWindow, {}, Make(TextContext::HelpWindow, "help window", 208, 0, 0, 4)},
    // bag.c: the description window is 25 tiles wide, 3 lines high.
    Fact{Family::FireRedLeafGreen, TextContext::Description, "Item descriptions",
         Make(TextContext::Description, "item description", 200, 3)},
    // pokemon_summary_screen.c: a move's description in a window of 15
    // tiles from x 7; an ability's in one of 29 tiles from x 2, one line.
    Fact{Family::FireRedLeafGreen, TextContext::Description, "Move descriptions",
         Make(TextContext::Description, "move description", 113, 4)},
    Fact{Family::FireRedLeafGreen, TextContext::Description, "Ability descriptions",
         Make(TextContext::Description, "ability description", 230, 1)},
    // Emerald.
    // menu.c: the standard text box is 27 tiles wide; text.c: the down arrow is 8 pixels wide.
    Fact{Family::Emerald, TextContext::MessageBox, {}, Make(TextContext::MessageBox, "message box", 216, 2, 8)},
    Fact{Family::Emerald, TextContext::Sign, {}, Make(TextContext::Sign, "message box", 216, 2, 8)},
    // battle_bg.c: the battle message window is 26 tiles; battle_message.c prints from x 0.
    Fact{Family::Emerald, TextContext::MessageBox, "Battle messages",
         Make(TextContext::MessageBox, "battle message box", 208, 2, 8, 0, true)},
    // item_menu.c: the description window is 14 tiles wide, printed from x 3, 3 lines.
    Fact{Family::Emerald, TextContext::Description, "Item descriptions",
         Make(TextContext::Description, "item description", 109, 3)},
    // pokemon_summary_screen.c: the move description window is 20 tiles, printed from x 6, 2 lines.
    Fact{Family::Emerald, TextContext::Description, "Move descriptions",
         Make(TextContext::Description, "move description", 154, 2)},
    // battle_interface.c: a battler's name is drawn in the small font from x 0
    // of an 8-tile window, its gender sign right behind it, and 7 of the
    // window's tiles are copied onto the health box; battle_bg.c,
    // battle_message.c: each move of the battle menu in an 8-tile window,
    // small font, from x 0.
    Fact{Family::FireRedLeafGreen, TextContext::Name, "Species names",
         In(FontRole::Small, Make(TextContext::Name, "species name on the health box", 56, 1), "\xB5")},
    Fact{Family::FireRedLeafGreen, TextContext::Name, "Move names",
         In(FontRole::Small, Make(TextContext::Name, "move name in the battle menu", 64, 1))},
    // battle_interface.c: as in FireRed, the name in FONT_SMALL from x 0,
    // the gender sign behind it, 7 tiles shown on the health box; battle_bg.c,
    // battle_message.c: each move of the battle menu in an 8-tile window,
    // FONT_NARROW, from x 0.
    Fact{Family::Emerald, TextContext::Name, "Species names",
         In(FontRole::Small, Make(TextContext::Name, "species name on the health box", 56, 1), "\xB5")},
    Fact{Family::Emerald, TextContext::Name, "Move names",
         In(FontRole::Narrow, Make(TextContext::Name, "move name in the battle menu", 64, 1))},
    // Ruby and Sapphire.
    // text_window.c: the dialogue frame holds 26 tiles; menu.c prints from its first.
    Fact{Family::RubySapphire, TextContext::MessageBox, {}, Make(TextContext::MessageBox, "message box", 208, 2)},
    Fact{Family::RubySapphire, TextContext::Sign, {}, Make(TextContext::Sign, "message box", 208, 2)},
    // item_menu.c, menu.c: the description is printed 104 pixels wide (each
    // line cleared to there), 3 lines.
    Fact{Family::RubySapphire, TextContext::Description, "Item descriptions",
         Make(TextContext::Description, "item description", 104, 3)},
    // move_tutor_menu.c: a move's description 144 pixels wide from x 88, 2 lines.
    Fact{Family::RubySapphire, TextContext::Description, "Move descriptions",
         Make(TextContext::Description, "move description", 144, 2)},
    // battle_interface.c: the name and its gender sign are drawn by the
    // battle font (window font 4, whose widths go by tile, text.c) into 7
    // tiles of the health box; battle_controller_player.c: each move in the
    // battle text window's font 3 (the message font), from tile 1 or 11 of
    // a menu that ends at tile 21: 10 tiles.
    Fact{Family::RubySapphire, TextContext::Name, "Species names",
         In(FontRole::BattleTiles, Make(TextContext::Name, "species name on the health box", 56, 1), "\xB5")},
    Fact{Family::RubySapphire, TextContext::Name, "Move names",
         Make(TextContext::Name, "move name in the battle menu", 80, 1)},
};

// Every family: the Pokédex centres its entries on the 240-pixel screen;
// menus size their window to their widest item, within the screen and a
// frame tile on each side; a text whose window is not known fits at most
// the screen.
constexpr Box kPokedex = Make(TextContext::Description, "Pok\xC3\xA9" "dex entry", 240, 0);
constexpr Box kMenu = Make(TextContext::Menu, "menu", 224, 0);
constexpr Box kScreen = Make(TextContext::Other, "screen", 240, 0);
constexpr std::string_view kPokedexTable = "Pok\xC3\xA9" "dex entries";

constexpr std::uint32_t kMinHelpTable = 4;  // texts in each table of a pair

}  // namespace

Box BoxOf(std::optional<Family> family, TextContext context, std::string_view table) {
    const Family f = family.value_or(Family::FireRedLeafGreen);
    if (context == TextContext::Braille) {
        Box box = kScreen;
        box.context = context, box.name = "braille", box.check = false;
        return box;
    }
    if (!table.empty())
        for (const Fact& fact : kFacts)
            if (fact.family == f && fact.context == context && fact.table == table) return fact.box;
    for (const Fact& fact : kFacts)
        if (fact.family == f && fact.context == context && fact.table.empty()) return fact.box;
    if (table == kPokedexTable) return kPokedex;
    if (context == TextContext::Menu) return kMenu;
    return kScreen;
}

Box MessageBox(std::optional<Family> family) { return BoxOf(family, TextContext::MessageBox); }

TextBoxes TextBoxes::Read(std::string_view image, const game::GameModel& model, bool names, const Font* font) {
    TextBoxes boxes;
    boxes.family_ = model.family();
    if (names && boxes.family_)
        for (const game::NameTable& t : game::FindNameTables(image, model)) {
            const Box box = BoxOf(boxes.family_, TextContext::Name, t.kind);
            if (box.context == TextContext::Name) boxes.names_.push_back({t.first, t.stride, t.count, t.length, box});
        }
    for (const game::TextUse& use : model.Uses()) {
        std::optional<Box> window;
        if (font && boxes.family_ && use.context == TextContext::Other) window = WindowBox(image, model, use.offset, *font);
        boxes.uses_.emplace_back(use.offset, window ? *window : BoxOf(boxes.family_, use.context, use.table));
    }

    // Runs of aligned slots that each lead to a text, led by an empty word.
    struct Run {
        std::uint32_t start;  // the empty word
        std::uint32_t count;
    };
    std::vector<Run> runs;
    const std::vector<std::uint32_t> slots = game::PointerSlots(image, 1);
    for (std::size_t i = 0; i < slots.size();) {
        std::size_t j = i;
        while (j < slots.size() && slots[j] == slots[i] + 4 * (j - i) &&
               model.UseOf(game::Word(image, slots[j]) - game::kRomBase))
            ++j;
        if (j - i >= kMinHelpTable && slots[i] >= 4 && game::Word(image, slots[i] - 4) == 0)
            runs.push_back({slots[i] - 4, static_cast<std::uint32_t>(j - i)});
        i = std::max(j, i + 1);
    }
    for (std::size_t r = 0; r + 1 < runs.size(); ++r) {
        const Run& a = runs[r];
        const Run& b = runs[r + 1];
        if (b.start != a.start + 4 + 4 * a.count || b.count != a.count) continue;
        for (std::uint32_t k = 0; k < 2 * a.count + 1; ++k) {
            const std::uint32_t at = a.start + 4 + 4 * k;
            if (k == a.count) continue;  // the second table's empty word
            boxes.help_.push_back(game::Word(image, at) - game::kRomBase);
        }
    }
    std::sort(boxes.help_.begin(), boxes.help_.end());
    return boxes;
}

Box TextBoxes::At(std::uint32_t offset) const {
    auto table = std::upper_bound(names_.begin(), names_.end(), offset,
                                  [](std::uint32_t o, const NameFields& t) { return o < t.first; });
    if (table != names_.begin()) {
        const NameFields& t = *std::prev(table);
        const std::uint32_t into = offset - t.first;
        if (into / t.stride < t.count && into % t.stride == 0) return t.box;  // a name starts its field
    }
    auto it = std::lower_bound(uses_.begin(), uses_.end(), offset,
                               [](const std::pair<std::uint32_t, Box>& u, std::uint32_t o) { return u.first < o; });
    const bool known = it != uses_.end() && it->first == offset;
    if (known && it->second.context != TextContext::Other) return it->second;
    // In an image of no family the model knows, every other text is taken for a message.
    if (!family_) return MessageBox(family_);
    if (std::binary_search(help_.begin(), help_.end(), offset)) return BoxOf(family_, TextContext::HelpWindow);
    return known ? it->second : BoxOf(family_, TextContext::Other);
}

}  // namespace quillon::fit
