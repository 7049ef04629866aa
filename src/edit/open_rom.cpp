#include "edit/open_rom.h"

#include "app/commit.h"
#include "app/session.h"
#include "core/file_io.h"
#include "store/leftovers.h"
#include "store/write_plan.h"
#include "edit/text_view.h"
#include "offsets/offset_file.h"

#include <quillon/errors.h>
#include <quillon/header.h>
#include <quillon/rom.h>

namespace quillon {
namespace {

void ClearEditor(Session& session) {
    session.controls.specialDialog = false;
    ShowNoText(session);
}

// A game code names a file in the ini folder, so it must be four bytes that
// make a plain file name.
bool UsableGameCode(const std::string& code) {
    if (code.size() != 4) return false;
    for (char ch : code) {
        auto b = static_cast<unsigned char>(ch);
        if (b < 0x20 || ch == '/' || ch == '\\' || ch == ':' || ch == '*' || ch == '?' || ch == '"' ||
            ch == '<' || ch == '>' || ch == '|' || ch == '.')
            return false;
    }
    return true;
}

}  // namespace

void EnterRomOpenState(Session& session) {
    auto& c = session.controls;
    ClearEditor(session);
    c.treeEnabled = true;
    c.text1.enabled = true;
    c.text1.readOnly = false;
    c.searchEnabled = true;
    c.textScriptEnabled = true;
    c.japaneseTable = GetRomLanguage(session.romPath) == "J";
}

void EnterNoRomState(Session& session) {
    auto& c = session.controls;
    session.tree.Clear();
    ClearEditor(session);
    c.treeEnabled = false;
    c.text1.enabled = false;
    c.searchEnabled = false;
    c.textScriptEnabled = false;
}

void OpenRom(Session& session, const AfterNewOffsetFile& afterNewOffsetFile) {
    session.controls.specialDialog = false;
    auto chosen = session.prompter.OpenFile(
        "Open a Pokémon ROM...", "GameBoy Advance ROMs (*.gba;*.agb;*.bin)|*.agb;*.gba;*.bin|All files (*.*)|*.*");
    if (!chosen || chosen->empty()) {
        // Cancelling keeps the ROM that is open, if any.
        if (!session.RomOpen()) EnterNoRomState(session);
        session.Changed();
        return;
    }
    OpenRomFile(session, *chosen, afterNewOffsetFile);
}

void OpenRomFile(Session& session, const std::filesystem::path& rom, const AfterNewOffsetFile& afterNewOffsetFile) {
    session.controls.specialDialog = false;
    session.romPath = rom;
    session.readOnlyReason.clear();
    try {
        if (io::FileSize(session.romPath) > kLargestImage) {
            session.prompter.Message(Icon::Warning, std::string(kTooLarge));
            EnterNoRomState(session);
            session.Changed();
            return;
        }
        const std::string code = GetRomCode(session.romPath);
        if (!UsableGameCode(code)) {
            session.prompter.Message(Icon::Warning,
                                     "This file has no game code in its header.\r\nThe ROM can't be edited.");
            EnterNoRomState(session);
            session.Changed();
            return;
        }
        session.controls.gameCode = code;
        session.controls.searchEnabled = true;
        // Once the game code names the ROM's offset file, the only one a
        // journal may restore; one that can't be replayed leaves the ROM read-only.
        RecoverJournal(session);
        (void)RemoveStaleTemporaries(session.romPath, session.OffsetFile());

        bool created = false;
        if (!FileExists(session.OffsetFile())) {
            if (!session.prompter.AskYesNo("INI file does not exist!\r\nDo you want to create one?")) {
                session.prompter.Message(Icon::Warning, "No INI file was created.\r\nThe ROM can't be edited.");
                EnterNoRomState(session);
                session.Changed();
                return;
            }
            if (Commit(session, OffsetFilePlan(session, "Create offset file", code, OffsetFileHead(session.romPath, ShortDate())),
                       "The offset file could not be created:") != Committed::Written) {
                EnterNoRomState(session);
                session.Changed();
                return;
            }
            session.prompter.Message(Icon::Information,
                                     "Blank INI file created!\r\n"
                                     "Use the search function to add offsets to your new file!");
            session.tree.Clear();
            created = true;
        } else {
            session.tree.Clear();
            Tree_Load(session);
        }
        EnterRomOpenState(session);
        if (created) afterNewOffsetFile(session);
    } catch (const FileError& e) {
        session.prompter.Message(Icon::Critical, std::string("The ROM could not be opened:\r\n") + e.what());
        EnterNoRomState(session);
    }
    session.Changed();
}

}  // namespace quillon
