#include "edit/text_menus.h"

namespace quillon {
namespace {

MenuItem Item(std::string name, std::string caption, MenuAction action, std::string tag = {}) {
    return {std::move(name), std::move(caption), action, std::move(tag), true, {}};
}

MenuItem Tag(std::string name, std::string caption, std::string tag) {
    return Item(std::move(name), std::move(caption), MenuAction::InsertTag, std::move(tag));
}

MenuItem Separator() { return {"", "-", MenuAction::None, {}, true, {}}; }

MenuItem Submenu(std::string name, std::string caption, std::vector<MenuItem> children) {
    return {std::move(name), std::move(caption), MenuAction::None, {}, true, std::move(children)};
}

// The text menu's tree; the search window's copy appends "2" to every name
// and leaves out "Export Text" with the separator behind it.
Menu BuildTextMenu(bool search) {
    const std::string n = search ? "2" : "";
    std::vector<MenuItem> insert = {
        Tag("ins_player" + n, "Player name", "[PLAYER]"),
        Tag("ins_rival" + n, "Rival name", "[RIVAL]"),
        Tag("ins_tone" + n, "TEAM 1 name", "[TEAM1]"),
        Tag("ins_ttwo" + n, "TEAM 2 name", "[TEAM2]"),
        Tag("ins_pkblk" + n, "Word: POKéBLOCK", "[POKéBLOCK]"),
        Separator(),
        Submenu("ins_trans" + n, "Translating", {Tag("ins_small" + n, "Small Font (Japanese Games)", "[SMALL]")}),
        Submenu("ins_col" + n, "Colors (Fire-Red/Leaf-Green/Emerald only)",
                {Tag("ins_red" + n, "Red", "[RED]"), Tag("ins_blue" + n, "Blue", "[BLUE]"),
                 Tag("ins_black" + n, "Black", "[BLACK]")}),
        Separator(),
        Item("ins_hex" + n, "Hex character", MenuAction::HexPrompt),
    };
    Menu menu{search ? "mnuBP2" : "mnuBP", "TextMenu", {}};
    menu.items = {
        Item("mnu_copy" + n, "Copy", MenuAction::Copy),
        Item("mnu_paste" + n, "Paste", MenuAction::Paste),
        Separator(),
        Submenu("ins" + n, "Insert Special", std::move(insert)),
        Separator(),
    };
    if (!search) {
        menu.items.push_back(Item("mnuExport", "Export Text", MenuAction::Export));
        menu.items.push_back(Item("mnuReferences", "Show References...", MenuAction::References));
        menu.items.push_back(Separator());
    }
    MenuItem woot = Item("sucka" + n, "w00t! o.o", MenuAction::None);
    woot.enabled = false;
    menu.items.push_back(std::move(woot));
    return menu;
}

const MenuItem* FindIn(const std::vector<MenuItem>& items, std::string_view name) {
    for (const auto& item : items) {
        if (!item.name.empty() && item.name == name) return &item;
        if (const MenuItem* found = FindIn(item.children, name)) return found;
    }
    return nullptr;
}

}  // namespace

const Menu& TextMenu() {
    static const Menu menu = BuildTextMenu(false);
    return menu;
}

const Menu& SearchTextMenu() {
    static const Menu menu = BuildTextMenu(true);
    return menu;
}

const Menu& ToolsMenu() {
    static const Menu menu = [] {
        MenuItem script = Item("mnuTextScript", "Insert Dialog-Script", MenuAction::TextScript);
        script.enabled = false;  // opening a ROM enables it
        MenuItem find = Item("mnuFindTexts", "Find Texts in ROM...", MenuAction::FindTexts);
        find.enabled = false;  // opening a ROM enables it
        MenuItem all = Item("mnuAllTexts", "All Texts...", MenuAction::AllTexts);
        all.enabled = false;
        MenuItem exportAll = Item("mnuExportAll", "Export All Texts...", MenuAction::ExportAll);
        exportAll.enabled = false;
        MenuItem import = Item("mnuImportTranslation", "Import Translation...", MenuAction::ImportTranslation);
        import.enabled = false;
        return Menu{"mnuTools",
                    "Tools",
                    {Item("mnuUpdate", "Live-Update", MenuAction::Update), std::move(script), std::move(find), std::move(all),
                     std::move(exportAll), std::move(import),
                     Separator(), Item("mnuUndoSave", "Undo Last Save", MenuAction::UndoSave),
                     Item("mnuRedoSave", "Redo", MenuAction::RedoSave),
                     Item("mnuHistory", "History...", MenuAction::History), Separator(),
                     Item("mnuCreatePatch", "Create Patch...", MenuAction::CreatePatch),
                     Item("mnuApplyPatch", "Apply Patch...", MenuAction::ApplyPatch)}};
    }();
    return menu;
}

const Menu& TreeViewMenu() {
    static const Menu menu{"mnuTreeView",
                           "TreeView",
                           {Item("mnuAddOffset", "Add new offset", MenuAction::AddOffset), Separator(),
                            Item("mnuDelete", "Delete selected", MenuAction::Delete)}};
    return menu;
}

const MenuItem* FindMenuItem(const Menu& menu, std::string_view name) {
    if (name.empty()) return nullptr;
    return FindIn(menu.items, name);
}

}  // namespace quillon
