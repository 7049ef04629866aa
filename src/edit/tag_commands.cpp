#include "edit/tag_commands.h"

#include "app/clipboard.h"
#include "app/prompter.h"
#include "app/text_box.h"
#include "edit/text_menus.h"

#include <quillon/rom.h>

#include <optional>
#include <string>

namespace quillon {

void InsertTag(TextBox& target, std::string_view tag) { target.ReplaceSelection(tag); }

void InsertHexCharacter(TextBox& target, Prompter& prompter) {
    std::optional<std::string> answer = prompter.Input(kHexPromptTitle, kHexPromptText, "");
    if (!answer || answer->empty()) {
        prompter.Message(Icon::Information, kHexPromptEmpty);
        return;
    }
    InsertTag(target, "[&H" + *answer + "]");
}

void CopySelection(const TextBox& target, Clipboard& clipboard) { clipboard.SetText(target.SelectedText()); }

void PasteClipboard(TextBox& target, Clipboard& clipboard) { target.ReplaceSelection(clipboard.GetText()); }

bool RunTextMenuItem(std::string_view name, TextBox& target, Prompter& prompter, Clipboard& clipboard,
                     const std::function<void()>& exportText) {
    const MenuItem* item = FindMenuItem(TextMenu(), name);
    if (!item) item = FindMenuItem(SearchTextMenu(), name);
    if (!item || !item->enabled) return false;
    switch (item->action) {
        case MenuAction::Copy: CopySelection(target, clipboard); return true;
        case MenuAction::Paste: PasteClipboard(target, clipboard); return true;
        case MenuAction::InsertTag: InsertTag(target, item->tag); return true;
        case MenuAction::HexPrompt: InsertHexCharacter(target, prompter); return true;
        case MenuAction::Export:
            if (exportText) exportText();
            return true;
        default: return false;
    }
}

void AddChar(TextBox& searchText, std::string_view numba) {
    searchText.Append("[&H" + std::string(numba) + "]");
}

void ClickJapaneseCell(TextBox& searchText, int index) {
    if (index < 0 || index >= kJapaneseListColumns * kJapaneseListRows) return;
    AddChar(searchText, PadHex(index));
}

}  // namespace quillon
