#pragma once
// The commands of the text menus and of the Japanese character list: tags,
// hex tags and clipboard text put into a text box.
#include <functional>
#include <string_view>

namespace quillon {

class Clipboard;
class Prompter;
class TextBox;

inline constexpr std::string_view kHexPromptTitle = "Insert HEX character";
inline constexpr std::string_view kHexPromptText = "Insert the character:\r\n\r\n(Example: A1)";
inline constexpr std::string_view kHexPromptEmpty =
    "Why does it have to end like this?\r\n\r\nDon't you love me anymore? :(";

// Replaces the selection (or inserts at the caret) with `tag`; the caret
// ends behind it. Nothing is checked or encoded.
void InsertTag(TextBox& target, std::string_view tag);
// Asks for a hex byte and inserts "[&H" + answer + "]", the answer as typed.
// An empty answer or Cancel inserts nothing and says so.
void InsertHexCharacter(TextBox& target, Prompter& prompter);
// The selected text (possibly empty) to the clipboard.
void CopySelection(const TextBox& target, Clipboard& clipboard);
// The clipboard's text over the selection.
void PasteClipboard(TextBox& target, Clipboard& clipboard);

// Runs the item `name` of either text menu on `target`: the main window's
// text box for mnuBP, the search window's for mnuBP2, whichever has the
// focus. "Export Text" calls `exportText`. False for names that carry no
// command (separators, submenus, "w00t! o.o", unknown names).
bool RunTextMenuItem(std::string_view name, TextBox& target, Prompter& prompter, Clipboard& clipboard,
                     const std::function<void()>& exportText = {});

// The Japanese character list: a grid whose cell (row, column) stands for the
// byte 16 * row + column, 0x00 to 0xAF.
inline constexpr std::string_view kJapaneseListCaption =
    "Japanese Character list (Click on a character to insert it into the Textbox)";
inline constexpr int kJapaneseListColumns = 16;
inline constexpr int kJapaneseListRows = 11;
constexpr int JapaneseCellByte(int row, int column) { return kJapaneseListColumns * row + column; }

// Appends "[&H" + numba + "]" to the end of the search text, leaving the
// caret and selection where they are.
void AddChar(TextBox& searchText, std::string_view numba);
// A click on the cell for byte `index`; indexes outside the grid do nothing.
void ClickJapaneseCell(TextBox& searchText, int index);

}  // namespace quillon
