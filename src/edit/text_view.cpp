#include "edit/text_view.h"

#include "app/session.h"
#include "edit/add_offset_form.h"
#include "edit/drafts.h"
#include "edit/name_edit.h"
#include "offsets/offset_file.h"
#include "offsets/offset_text.h"

#include <quillon/codec.h>
#include <quillon/errors.h>
#include <quillon/rom.h>

#include "core/codec/text_bytes.h"
#include "core/file_io.h"
#include "store/write_plan.h"

#include <cstdio>
#include <exception>

namespace quillon {
namespace {

std::int32_t EncodedLength(const Session& session) {
    return static_cast<std::int32_t>(
        (EncodeText(session.controls.text1.Text(), session.controls.specialDialog).size() + 1) / 2);
}

std::string HexOf(std::string_view bytes) {
    std::string out;
    for (char b : bytes) out += (out.empty() ? "" : " ") + ByteHex(b);
    return out;
}

// Why a text at `offsetHex` can't be saved, or nothing. The text is still
// shown, but a save there would write into the header or past the end.
std::string SaveRefusal(std::string_view offsetHex, std::uint64_t romSize) {
    if (offsetHex.empty()) return "This entry has no offset in the offset file, so its text can't be saved.";
    const auto offset = static_cast<std::uint64_t>(static_cast<std::uint32_t>(HexToLong(offsetHex)));
    if (offset < kFirstWritableOffset)
        return "The offset " + std::string(offsetHex) +
               " lies inside the cartridge header (below C0), so its text can't be saved.";
    if (offset >= romSize)
        return "The offset " + std::string(offsetHex) + " lies at or past the end of the ROM (" +
               std::to_string(romSize) + " bytes), so there is no text there to save.";
    return {};
}

// Where the loaded bytes differ from the bytes saving the shown text would
// write, in words; empty when they come back unchanged.
std::string RoundTripNote(std::string_view loaded, std::string_view saved) {
    if (loaded == saved) return {};
    std::size_t at = 0;
    while (at < loaded.size() && at < saved.size() && loaded[at] == saved[at]) ++at;
    auto piece = [at](std::string_view bytes) {
        std::string_view p = bytes.substr(std::min(at, bytes.size()), 4);
        return p.empty() ? std::string("nothing") : HexOf(p);
    };
    std::string note = "This text holds bytes the editor can't write back unchanged: from byte " +
                       std::to_string(at + 1) + " on, the ROM holds " + piece(loaded) + ", but saving writes " +
                       piece(saved) + ".";
    if (loaded.size() != saved.size())
        note += " Saving makes the text " + std::to_string(loaded.size()) + " bytes long instead of " +
                std::to_string(saved.size()) + ".";
    return note;
}

}  // namespace

void ShowNoText(Session& session) {
    auto& c = session.controls;
    c.text1.SetText({});
    session.shownEntry.clear();
    c.draftTime.clear();
    c.offsetCaption.clear();
    session.oldTextLength = 0;
    c.saveEnabled = false;
    c.saveRefusal.clear();
    c.roundTripNote.clear();
    session.loaded = {};
    c.tableEnabled = false;
    c.specialDialogEnabled = false;
    UpdateRepointCounter(session);
}

namespace {

void LoadText(Session& session, std::string_view offsetHex) {
    auto& c = session.controls;
    c.saveRefusal.clear();
    c.roundTripNote.clear();
    session.loaded = {};
    std::string bytes = ReadBytesUntil(session.romPath, offsetHex, kMaxTextBytes, "FF");
    c.tableEnabled = true;
    c.specialDialogEnabled = true;
    c.text1.SetText(DecodeText(bytes, c.japaneseTable));
    c.text1.readOnly = c.japaneseTable;
    session.oldTextLength = EncodedLength(session);
    const std::uint64_t size = io::FileSize(session.romPath);
    c.saveRefusal = SaveRefusal(offsetHex, size);
    if (c.saveRefusal.empty()) {
        const auto offset = static_cast<std::uint64_t>(HexToLong(offsetHex));
        session.loaded = {offset, io::ReadAt(session.romPath, offset, bytes.size() + 1), size};
        // Only the first kMaxTextBytes of a longer text were read: saving
        // them would cut the text there.
        if (bytes.size() == static_cast<std::size_t>(kMaxTextBytes) && session.loaded.bytes.back() != '\xFF') {
            c.saveRefusal = "The text at offset " + std::string(offsetHex) + " has no end within " +
                            std::to_string(kMaxTextBytes) +
                            " bytes, the longest text Quillon edits, so it can't be saved.";
            session.loaded = {};
        }
    }
    if (c.saveRefusal.empty()) {
        NoteFixedLength(session);
        if (!c.japaneseTable) c.roundTripNote = RoundTripNote(bytes, HexToBytes(EncodeText(c.text1.Text(), false)));
    }
    c.saveEnabled = !c.japaneseTable && c.saveRefusal.empty() && session.readOnlyReason.empty();
    UpdateRepointCounter(session);
}

}  // namespace

void LoadTextAt(Session& session, std::string_view offsetHex) {
    try {
        LoadText(session, offsetHex);
    } catch (const std::exception& e) {
        // Nothing was loaded to compare a save with: saving is refused with the cause.
        auto& c = session.controls;
        const std::string offset(offsetHex);
        c.saveRefusal = dynamic_cast<const TypeMismatch*>(&e)
                            ? "The offset '" + offset + "' is not a hexadecimal number, so its text can't be saved."
                            : "The text at offset " + offset + " can't be read, so it can't be saved: " + e.what();
        c.saveEnabled = false;
        session.loaded = {};
        throw;
    }
}

void Tree_Load(Session& session) {
    if (LoadTree(session)) Text_Load(session);
    session.Changed();
}

void Tree_Load(Session& session, std::string_view section, std::string_view key) {
    if (LoadTree(session, section, key)) Text_Load(session);
    session.Changed();
}

void Text_Load(Session& session) {
    KeepDraft(session);  // the text shown now, if it was edited and not saved
    session.shownEntry.clear();
    session.controls.draftTime.clear();
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
        session.shownEntry = DraftKey(session.tree.SelectedParentText(), KeyNameOf(node->key));
        OfferDraft(session);
    } catch (const std::exception&) {
        // A bad offset or an unreadable ROM leaves the editor as far as it got.
    }
}

bool UpdateRepointCounter(Session& session, std::int16_t& keyCode, bool shiftDown) {
    std::int32_t length = EncodedLength(session);
    if (session.loaded.fixedLength > 0)
        session.controls.repointCaption = NameCounterCaption(session.loaded.fixedLength - 1, length);
    else if (length > session.oldTextLength)
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
    KeepDraft(session);
    session.controls.japaneseTable = japanese;
    if (session.RomOpen()) Text_Load(session);
    session.Changed();
}

void ViewOffset(Session& session) {
    auto answer = session.prompter.Input("Text Offset", "Enter Text Offset to view (Dec):", "0");
    KeepDraft(session);
    session.shownEntry.clear();
    session.controls.draftTime.clear();
    auto& c = session.controls;
    c.specialDialog = false;
    session.oldTextLength = 0;
    std::string typed = answer.value_or("");
    if (typed.empty() || typed == "0") {
        ShowNoText(session);
        session.Changed();
        return;
    }
    OfferHexReading(session.prompter, session.romPath, typed);
    auto offset = ParseDecimalOrHexOffset(typed);
    if (!offset) {
        session.prompter.Message(Icon::Warning, "'" + typed + "' is not an offset.\r\n"
                                 "Write it in decimal (100085) or in hexadecimal with 0x (0x186F5).");
        session.Changed();
        return;
    }
    AddOffsetForm form(session, typed, false);
    session.prompter.ShowAddOffset(form);
    c.offsetCaption = PadHex(*offset);
    try {
        LoadTextAt(session, c.offsetCaption);
    } catch (const std::exception&) {
    }
    session.Changed();
}

}  // namespace quillon
