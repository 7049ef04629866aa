#pragma once
// Breaking a text into lines and boxes that fit its box with the game's
// font, as the decompilations' script compilers do for their sources:
// breaks go between words, never inside a tag or a code; a line the author
// ended that fits keeps its break, a box (\p) always; a line too long is
// broken at its last word that fits and the rest joins the next line. The
// breaks follow the games' own texts: \n for a box's second line, \l for
// each line that scrolls in, \p for a new box.
#include "fit/measure.h"

#include <string>
#include <string_view>

namespace quillon::fit {

struct ReflowOptions {
    MeasureOptions measure;  // the box, the codes, the sample name
    // Lines after a box's second scroll in with \l (the message box); else
    // every line break is \n (the editor's Special Dialog, other windows).
    bool scroll = true;
    // The box a text that does not fit is broken for, when not its own (see
    // ReflowFor).
    std::optional<Box> wrap;
    // In a window of a fixed number of lines (the box's `lines`, without
    // scrolling), the lines past them go on in a new box (\p). Only where
    // the game waits for a button between boxes; elsewhere they stay, below
    // the window, for the report to name.
    bool newBoxes = false;
    // In such a window without new boxes: the width lines may widen to
    // (the message box's, or the box's when narrower) when at the wrap's
    // width they need more lines than it shows; 0: they never widen.
    int widen = 0;
};

// The options for a text of `box` in a game of `family`. A text whose
// window is not known is broken for the message box, which fits in any (or
// for its box, when program code's windows tell a narrower one); when
// its text as the game had it (`original`, game bytes) holds several lines,
// their widest tells the window's width, its breaks whether it scrolls, and
// a window that does not scroll shows no more lines than the original's
// fullest box.
ReflowOptions ReflowFor(const Box& box, std::optional<game::Family> family, bool specialDialog = false,
                        std::optional<std::string> playerName = std::nullopt, const Font* font = nullptr,
                        std::string_view original = {});

// Game bytes (up to 0xFF, not included) reflowed; the same bytes when every
// line already fits. A line that waits for a button keeps the box's room
// for the wait arrow.
std::string ReflowBytes(std::string_view bytes, const Font& font, const ReflowOptions& options);

// Editor text reflowed, through the bytes that saving writes. A window that
// shows its lines at once breaks each of them with \n, which the editor
// writes back as such only for a Special Dialog text: `specialDialog` says
// whether the text must be one for saving to write the reflowed bytes.
struct ReflowedText {
    std::string text;
    bool specialDialog = false;
};
[[nodiscard]] ReflowedText ReflowText(std::string_view text, bool specialDialog, const Font& font,
                                      const ReflowOptions& options);

}  // namespace quillon::fit
