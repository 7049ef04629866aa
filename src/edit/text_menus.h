#pragma once
// The pop-up menus of the program as data: the two text menus (mnuBP for the
// main window's text box, mnuBP2 for the search window's), the Tools menu and
// the tree's menu. The windows build their pop-ups from these trees and hand
// the chosen item's name back to the commands (tag_commands.h).
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

enum class MenuAction {
    None,       // separators, submenus, the disabled "w00t! o.o"
    Copy,       // selection to the clipboard
    Paste,      // clipboard over the selection
    InsertTag,  // `tag` over the selection
    HexPrompt,  // ask for a hex byte and insert it as a hex tag
    Export,     // export the main window's text
    Update,     // open the live-update window
    TextScript, // open the dialog-script window
    AddOffset,  // open the add-offset window
    Delete,     // delete the selected tree entry
    UndoSave,   // undo the last save of the open ROM
    RedoSave,   // redo the last undone save
    History,    // open the history window
    CreatePatch,  // write a BPS patch from a clean original to the open ROM
    ApplyPatch,   // apply a BPS or IPS patch to a chosen ROM
    FindTexts,  // scan the ROM for its texts
    AllTexts,   // open the window of every entry of the offset file
    References, // list the places that point at the current text
    ExportAll,  // every text of the offset file to a PO file
    ImportTranslation,  // the texts of a translated PO file into the ROM
};

struct MenuItem {
    std::string name;     // empty for a separator
    std::string caption;  // "-" for a separator
    MenuAction action = MenuAction::None;
    std::string tag;      // the tag that InsertTag inserts
    bool enabled = true;  // the state the item starts with
    std::vector<MenuItem> children;  // a submenu when not empty

    bool IsSeparator() const { return caption == "-"; }
};

struct Menu {
    std::string name;
    std::string caption;  // not displayed in a pop-up
    std::vector<MenuItem> items;
};

const Menu& TextMenu();        // mnuBP, right-click in the main window's text box
const Menu& SearchTextMenu();  // mnuBP2, right-click in the search window's text box
const Menu& ToolsMenu();       // mnuTools; the items that need an open ROM start disabled
const Menu& TreeViewMenu();    // mnuTreeView

// The item of that name anywhere in the menu's tree, or null.
const MenuItem* FindMenuItem(const Menu& menu, std::string_view name);

}  // namespace quillon
