#pragma once
// The state that the main window owns and every command reads and writes:
// the open ROM, the offset-file tree, the text being edited and the states of
// the main window's controls, which the window only mirrors.
#include "app/prompter.h"
#include "app/text_box.h"
#include "app/tree_model.h"

#include <quillon/inifile.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace quillon {

class Progress;

// Captions and states of the main window's controls.
struct MainControls {
    TextBox text1;                   // the editor text
    bool specialDialog = false;      // Check1 "Special Dialog*"
    bool specialDialogEnabled = false;
    bool japaneseTable = false;      // Option1: index 1 chosen
    bool tableEnabled = false;       // both Option1 buttons
    bool saveEnabled = false;        // Command2 "S&ave Text"
    bool searchEnabled = false;      // XPButton3 "&Search"
    bool treeEnabled = false;        // TreeView1
    bool textScriptEnabled = false;  // mnuTextScript "Insert Dialog-Script"
    std::string offsetCaption;       // Label3: current offset in hex digits
    std::string gameCode;            // Label4: game code of the open ROM
    std::string repointCaption = "0 Characters left until repoint.";  // lblRepoint
    // Why the shown text can't be saved (Command2's tooltip); empty when it can.
    std::string saveRefusal;
    // Where the shown text's bytes differ from what saving would write back;
    // empty when they come back byte for byte.
    std::string roundTripNote;
    std::string draftTime;           // the restore bar's time; empty: no bar
};

// An edited text that was left unsaved, and when.
struct Draft {
    std::string text;
    std::string time;
};

// The bytes of the shown text as they were read, so a save can tell whether
// another program changed them since.
struct LoadedText {
    std::uint64_t offset = 0;
    std::string bytes;  // the text and the byte behind it (its terminator)
    std::uint64_t romSize = 0;
    // A name of fixed length (its entry stands in a section of names): the
    // bytes of its field, end mark included, and the padding behind the end
    // mark. 0 for a text.
    std::uint32_t fixedLength = 0;
    std::uint8_t padding = 0;
};

class Session {
public:
    Session(std::filesystem::path programFolder, Prompter& prompter);

    std::filesystem::path IniFolder() const { return programFolder / "ini"; }
    std::filesystem::path SettingsFile() const { return IniFolder() / "settings.ini"; }
    // The open game's offset file: ini/ + game code + .ini, unless one was given.
    std::filesystem::path OffsetFile() const {
        return offsetFileGiven.empty() ? IniFolder() / (controls.gameCode + ".ini") : offsetFileGiven;
    }
    bool RomOpen() const { return !romPath.empty(); }

    // Windows that mirror the state register here; commands call Changed()
    // when they are done.
    void OnChanged(std::function<void()> listener) { listeners_.push_back(std::move(listener)); }
    void Changed() const;

    const std::filesystem::path programFolder;
    Prompter& prompter;
    std::filesystem::path romPath;  // the open dialog's file name
    // An offset file named by the caller (the command line's --ini) instead of
    // the game's own in ini/.
    std::filesystem::path offsetFileGiven;
    std::int32_t oldTextLength = 0;
    LoadedText loaded;
    // Set when the ROM may not be written (a journal that could not be
    // replayed waits beside it); says why.
    std::string readOnlyReason;
    TreeModel tree;
    cInifile ini;  // the main window's INI access, pointed anew at each use
    MainControls controls;
    // Shows long work and lets the user cancel it; none: the work runs to its end.
    Progress* progress = nullptr;
    // Drafts of the open ROM by DraftKey, and the entry the editor shows.
    std::map<std::string, Draft> drafts;
    std::string shownEntry;

private:
    std::vector<std::function<void()>> listeners_;
};

}  // namespace quillon
