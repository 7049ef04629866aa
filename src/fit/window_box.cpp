#include "fit/window_box.h"

#include "fit/measure.h"
#include "game/window_templates.h"

#include <algorithm>

namespace quillon::fit {

std::optional<Box> WindowBox(std::string_view image, const game::GameModel& model, std::uint32_t text,
                             const Font& font) {
    // text.h of Ruby and Sapphire: a window there is set up from one
    // configuration per background and a text placed by its tiles; no templates.
    if (model.family() == game::Family::RubySapphire) return std::nullopt;
    const std::optional<game::PrintWindows> windows = game::WindowsOf(image, model, text);
    if (!windows) return std::nullopt;
    Box box = BoxOf(model.family(), game::TextContext::Other);
    const std::string_view bytes = image.substr(text);
    const Measure m = MeasureBytes(bytes.substr(0, bytes.find('\xFF')), font, OptionsFor(box, model.family()));
    // A text of one line is a label or a menu item, which the same function
    // may print in any of its windows, the smallest too: only a text of
    // several lines is the one its window is made for.
    if (m.lines.size() < 2) return std::nullopt;
    const int widest = m.WidestWidth();
    // text.c: the printer cuts a glyph at the window's width less the x it started at.
    int room = 0;
    for (const game::WindowTemplate& w : windows->windows) {
        const int width = 8 * w.width;
        if (width < widest) continue;  // the game's text does not fit: not its window
        const int inside = width - std::min(windows->x, width - widest);
        room = room == 0 ? inside : std::min(room, inside);
    }
    if (room == 0) return std::nullopt;
    box.name = "program window", box.width = room;
    return box;
}

}  // namespace quillon::fit
