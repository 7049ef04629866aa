#pragma once
// The box each text must fit: where the game shows it (its context in the
// game model) decides the window, and the window's width is a fact of each
// game family, read in the decompilations' window templates. Texts of the
// help system, which the model does not tell apart, are found here by the
// tables that lead to them.
#include "fit/font.h"
#include "game/family.h"
#include "game/game_model.h"
#include "game/text_context.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::fit {

struct Font;

struct Box {
    game::TextContext context = game::TextContext::MessageBox;
    std::string_view name = "message box";  // for messages: "message box", "help window", ...
    int width = 208;      // pixels a line may take
    int lines = 2;        // lines in view at once; 0 when the window shows them all
    int cursor = 0;       // pixels the wait arrow takes behind a line that waits for a button
    int space = 0;        // pixels of a space when the window draws its own; 0: the font's
    bool battle = false;  // its placeholders (FD xx) name battlers, moves and items
    bool check = true;    // false: not European text (braille), nothing to measure
    FontRole font = FontRole::Normal;  // the font the window draws in
    // Game bytes the game draws on the same line right behind the text (the
    // gender sign behind a name), counted in its width.
    std::string_view after;
};

// The box of a context in a family; `table` is the kind of table that holds
// the text ("Item descriptions"), when the model knows it.
[[nodiscard]] Box BoxOf(std::optional<game::Family> family, game::TextContext context, std::string_view table = {});

// The message box of a family (the box of texts whose use is not known
// when they are reflowed).
[[nodiscard]] Box MessageBox(std::optional<game::Family> family);

// The box of every text of one image.
class TextBoxes {
public:
    TextBoxes() = default;
    // The model's uses (in an image of no known family, texts of no known
    // use are taken for messages), and the help system's texts: tables of
    // them come in pairs of equal length, one right after the other, each led
    // by an empty slot (titles, then their explanations).
    // With `names`, the tables of names of fixed length too: a name in a
    // record of a kind the game shows in a window of known width. With
    // `font`, texts of no known use that program code prints in windows
    // it makes from templates get the box of those windows (WindowBox).
    [[nodiscard]] static TextBoxes Read(std::string_view image, const game::GameModel& model, bool names = false,
                                        const Font* font = nullptr);

    [[nodiscard]] Box At(std::uint32_t offset) const;
    [[nodiscard]] std::optional<game::Family> family() const { return family_; }
    // The help system's texts found, in offset order.
    [[nodiscard]] const std::vector<std::uint32_t>& HelpTexts() const { return help_; }

private:
    std::optional<game::Family> family_;
    std::vector<std::pair<std::uint32_t, Box>> uses_;  // by offset
    std::vector<std::uint32_t> help_;
    struct NameFields {
        std::uint32_t first, stride, count, length;
        Box box;
    };
    std::vector<NameFields> names_;  // by first field
};

}  // namespace quillon::fit
