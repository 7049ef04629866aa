#pragma once
// Where the game shows a text, which decides the box it must fit.
#include <cstdint>
#include <string_view>

namespace quillon::game {

enum class TextContext : std::uint8_t {
    MessageBox,   // message commands, standard message scripts, trainer battles
    Sign,         // the sign variant of the message box
    Braille,      // braille cells: its own encoding, never European text
    HelpWindow,   // the full-width help window
    Description,  // item, move, ability and Pokédex descriptions
    Menu,         // multichoice menus and lists
    Name,         // names of fixed length
    Other         // reached from code or a table whose use is not known
};

[[nodiscard]] constexpr std::string_view ContextName(TextContext context) {
    switch (context) {
        case TextContext::MessageBox: return "message box";
        case TextContext::Sign: return "sign";
        case TextContext::Braille: return "braille";
        case TextContext::HelpWindow: return "help window";
        case TextContext::Description: return "description";
        case TextContext::Menu: return "menu";
        case TextContext::Name: return "name";
        case TextContext::Other: return "other";
    }
    return "other";
}

}  // namespace quillon::game
