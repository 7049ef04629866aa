#include "history/history_commands.h"

#include "app/session.h"
#include "edit/commit.h"
#include "history/history.h"
#include "history/patch.h"
#include "offsets/offset_file.h"

#include <quillon/errors.h>

namespace quillon {
namespace {

constexpr std::string_view kRomFilter = "GBA ROM images (*.gba)|*.gba|All files (*.*)|*.*";
constexpr std::string_view kPatchFilter = "Patches (*.bps;*.ips)|*.bps;*.ips|All files (*.*)|*.*";

bool NeedRom(Session& session) {
    if (session.RomOpen()) return true;
    session.prompter.Message(Icon::Information, "Open a ROM first.");
    return false;
}

// Runs an undo or redo step; on success the tree and the text are loaded again.
template <class Step>
bool Run(Session& session, std::string_view title, Step step) {
    if (!session.readOnlyReason.empty()) {
        session.prompter.Message(Icon::Critical, session.readOnlyReason, title);
        return false;
    }
    if (!RecoverJournal(session)) return false;
    try {
        step();
    } catch (const PlanRefused& e) {
        session.prompter.Message(Icon::Warning, e.what(), title);
        return false;
    } catch (const FileError& e) {
        session.prompter.Message(Icon::Critical, e.what(), title);
        return false;
    }
    Tree_Load(session);
    session.Changed();
    return true;
}

std::string Describe(const HistoryEntry& e) {
    return e.command + (e.subject.empty() ? "" : " (" + e.subject + ")");
}

}  // namespace

void UndoLastSaveCommand(Session& session) {
    if (!NeedRom(session)) return;
    HistoryEntry undone;
    if (Run(session, "Undo Last Save", [&] { undone = UndoLastSave(session.romPath); }))
        session.prompter.Message(Icon::Information, "Undone: " + Describe(undone), "Undo Last Save");
}

void RedoSaveCommand(Session& session) {
    if (!NeedRom(session)) return;
    HistoryEntry redone;
    if (Run(session, "Redo", [&] { redone = RedoSave(session.romPath); }))
        session.prompter.Message(Icon::Information, "Redone: " + Describe(redone), "Redo");
}

bool GoBackCommand(Session& session, std::uint64_t number) {
    if (!NeedRom(session)) return false;
    return Run(session, "History", [&] { GoBackTo(session.romPath, number); });
}

void CreatePatchCommand(Session& session) {
    if (!NeedRom(session)) return;
    auto original = session.prompter.OpenFile("Choose the clean original ROM", kRomFilter);
    if (!original) return;
    auto out = session.prompter.SaveFile("Save the BPS patch as", "BPS patches (*.bps)|*.bps");
    if (!out) return;
    try {
        CreatePatchFile(*original, session.romPath, *out);
        session.prompter.Message(Icon::Information, "The patch was written to " + out->filename().string() + ".",
                                 "Create Patch");
    } catch (const std::exception& e) {
        session.prompter.Message(Icon::Critical, e.what(), "Create Patch");
    }
}

void ApplyPatchCommand(Session& session) {
    auto patch = session.prompter.OpenFile("Choose the patch", kPatchFilter);
    if (!patch) return;
    auto rom = session.prompter.OpenFile("Choose the ROM to apply it to", kRomFilter);
    if (!rom) return;
    auto out = session.prompter.SaveFile("Save the patched ROM as", kRomFilter);
    if (!out) return;
    try {
        ApplyPatchFile(*rom, *patch, *out);
        session.prompter.Message(Icon::Information, "The patched ROM was written to " + out->filename().string() + ".",
                                 "Apply Patch");
    } catch (const std::exception& e) {
        session.prompter.Message(Icon::Critical, e.what(), "Apply Patch");
    }
}

}  // namespace quillon
    if (!out->has_extension()) *out += ".bps";  // so that Apply Patch lists it
    if (!out->has_extension()) *out += ".gba";  // so that Open ROM lists it
