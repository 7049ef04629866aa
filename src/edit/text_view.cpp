#include "edit/text_view.h"

#include "app/session.h"
#include "offsets/add_offset_form.h"
#include "offsets/offset_file.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <charconv>
#include <exception>

namespace quillon {
namespace {

std::int32_t EncodedLength(const Session& session) {
    return static_cast<std::int32_t>(
        (EncodeText(session.controls.text1.Text(), session.controls.specialDialog).size() + 1) / 2);
}

// A decimal whole number from 0 to 0xFFFFFFFF, blanks around it allowed.
std::optional<std::uint32_t> ParseDecimal(std::string_view text) {
    auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) return std::nullopt;
    text = text.substr(first, text.find_last_not_of(' ') - first + 1);
    std::uint32_t value = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

}  // namespace

void ShowNoText(Session& session) {
    auto& c = session.controls;
    c.text1.SetText({});
    c.offsetCaption.clear();
    session.oldTextLength = 0;
    c.saveEnabled = false;
    c.tableEnabled = false;
    c.specialDialogEnabled = false;
    UpdateRepointCounter(session);
}

void LoadTextAt(Session& session, std::string_view offsetHex) {
    auto& c = session.controls;
    std::string bytes = ReadBytesUntil(session.romPath, offsetHex, kMaxTextBytes, "FF");
    c.tableEnabled = true;
    c.specialDialogEnabled = true;
    c.text1.SetText(DecodeText(bytes, c.japaneseTable));
    c.text1.readOnly = c.japaneseTable;
    c.saveEnabled = !c.japaneseTable;
    session.oldTextLength = EncodedLength(session);
    UpdateRepointCounter(session);
}

void Text_Load(Session& session) {
    auto& c = session.controls;
    c.specialDialog = false;
    const TreeNode* node = session.tree.SelectedNode();
    if (!node || node->key.empty()) return;
    session.oldTextLength = 0;
    if (IsSectionNodeKey(node->key)) {
        ShowNoText(session);
        return;
    }
    try {
        session.ini.SetPath(session.OffsetFile());
        session.ini.SetSection(session.tree.SelectedParentText());
        session.ini.SetKey(KeyNameOf(node->key));
        c.offsetCaption = session.ini.Value();
        LoadTextAt(session, c.offsetCaption);
    } catch (const std::exception&) {
        // A bad offset or an unreadable ROM leaves the editor as far as it got.
    }
}

bool UpdateRepointCounter(Session& session, std::int16_t& keyCode, bool shiftDown) {
    std::int32_t length = EncodedLength(session);
    if (length > session.oldTextLength)
        session.controls.repointCaption = std::to_string(length) + " Characters to repoint.";
    else
        session.controls.repointCaption =
            std::to_string(session.oldTextLength - length) + " Characters left until repoint.";
    if (keyCode == 45 && shiftDown) keyCode = 0;
    return keyCode == 93;
}

void UpdateRepointCounter(Session& session) {
    std::int16_t none = 0;
    UpdateRepointCounter(session, none, false);
}

void SelectNode(Session& session, std::size_t index) {
    if (index >= session.tree.Nodes().size()) return;
    session.tree.Select(index);
    Text_Load(session);
    session.Changed();
}

void ChooseTable(Session& session, bool japanese) {
    session.controls.japaneseTable = japanese;
    if (session.RomOpen()) Text_Load(session);
    session.Changed();
}

void ViewOffset(Session& session) {
    auto answer = session.prompter.Input("Text Offset", "Enter Text Offset to view (Dec):", "0");
    auto& c = session.controls;
    c.specialDialog = false;
    session.oldTextLength = 0;
    std::string typed = answer.value_or("");
    if (typed.empty() || typed == "0") {
        ShowNoText(session);
        session.Changed();
        return;
    }
    auto offset = ParseDecimal(typed);
    if (!offset) {
        session.Changed();
        return;  // not a number: ends without a message
    }
    AddOffsetForm form(session, typed);
    session.prompter.ShowAddOffset(form);
    c.offsetCaption = PadHex(*offset);
    try {
        LoadTextAt(session, c.offsetCaption);
    } catch (const std::exception&) {
    }
    session.Changed();
}

}  // namespace quillon
