#pragma once
// The dialog-script window as state and commands: writes a 13-byte script
// that shows a text into free ROM space, pointing either at a text already in
// the ROM ("From Offset") or at a new text written right behind it ("From
// Text"), and reports the script's offset for the map editor.
#include "app/text_box.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

class Session;

inline constexpr std::string_view kAddScriptCaption = "Add Dialog-Script";
inline constexpr std::int32_t kScriptBytes = 13;

// The script as hex text around the 8-digit `pointerHex`.
std::string ScriptHex(std::string_view pointerHex);

class AddScriptForm {
public:
    explicit AddScriptForm(Session& session);

    // Option1: index 0 "From Offset" enables Frame2 and txtOffset, index 1
    // "From Text" enables Frame3 and txtText; the other pair is disabled.
    void ChooseOption(int index);
    int option = 0;
    bool frame2Enabled = true;
    bool txtOffsetEnabled = true;
    bool frame3Enabled = false;
    std::string txtOffset;  // hex offset of an existing text
    TextBox txtText;        // a new text, editor text
    bool check1 = false;    // "Add offset to INI file?"

    // "Add Script". An empty input box does nothing. Bad input, a missing
    // FreeSpaceOffset setting and a free run whose pointer target would lie
    // outside the offsets a pointer reaches (kLowestPointable..kHighestPointable) are refused before
    // anything is written; so is no free space at all. On success the script
    // is written, its offset reported, optionally handed to the add-offset
    // window (the new text's offset for From Text, the script's own for From
    // Offset), and the window closes.
    void AddScript();
    bool Closed() const { return closed_; }

private:
    Session& session_;
    bool closed_ = false;
};

}  // namespace quillon
