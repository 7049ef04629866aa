#include "history/history_commands.h"

#include "app/commit.h"
#include "app/session.h"
#include "core/file_io.h"
#include "edit/text_view.h"
#include "history/patch.h"
#include "store/history.h"
#include "store/journal.h"
#include "store/replay.h"
#include "translate/offset_entries.h"

#include <quillon/errors.h>
#include <quillon/rom.h>

#include <algorithm>
#include <charconv>
#include <map>

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

// Before an undo or redo of a save that changed more than one text: asks,
// naming how many. True when the step may go on.
bool ConfirmStep(Session& session, bool undo) {
    const HistoryListing listing = ListHistory(session.romPath);  // newest first
    const HistoryEntry* next = nullptr;  // the newest applied entry, or the oldest undone one
    for (const HistoryEntry& e : listing.entries)
        if (e.undone != undo && (!next || !undo)) next = &e;
    if (!next) return true;
    std::optional<WritePlan> plan;
    std::string offsetFile;
    try {
        plan = ReadJournal(next->file, session.romPath);
        if (FileExists(session.OffsetFile())) offsetFile = io::ReadAll(session.OffsetFile());
    } catch (const FileError&) {
        return true;  // the step itself reports what it cannot read
    }
    if (!plan) return true;
    const std::size_t changed = EntriesChanged(*plan, offsetFile);
    if (changed <= 1) return true;
    const std::string what = "\"" + plan->command + (plan->subject.empty() ? "" : " (" + plan->subject + ")") + "\"";
    return session.prompter.AskYesNo(
        undo ? "This undoes " + what + ", which changed " + std::to_string(changed) +
                   " texts.\r\nDo you want to undo it?"
             : "This writes " + what + " again, which changes " + std::to_string(changed) +
                   " texts.\r\nDo you want to redo it?",
        undo ? "Undo Last Save" : "Redo");
}

}  // namespace

std::size_t EntriesChanged(const WritePlan& plan, std::string_view offsetFile) {
    const std::string before = plan.offsetBefore.value_or(std::string(offsetFile));
    const std::string after = plan.offsetBefore ? plan.offsetAfter : std::string(offsetFile);
    std::map<std::pair<std::string, std::string>, std::pair<std::string, std::string>> values;  // before, after
    for (const OffsetEntry& e : ReadOffsetEntries(before)) values[{e.section, e.key}].first = e.value;
    for (const OffsetEntry& e : ReadOffsetEntries(after)) values[{e.section, e.key}].second = e.value;
    std::vector<std::pair<std::uint64_t, std::uint64_t>> written;  // [begin, end), sorted
    for (const RomWrite& w : plan.romWrites) written.emplace_back(w.offset, w.offset + w.after.size());
    std::sort(written.begin(), written.end());
    auto inWrite = [&](const std::string& hex) {
        std::uint64_t at = 0;
        const auto [end, ec] = std::from_chars(hex.data(), hex.data() + hex.size(), at, 16);
        if (hex.empty() || ec != std::errc() || end != hex.data() + hex.size()) return false;
        auto it = std::upper_bound(written.begin(), written.end(), std::pair{at, UINT64_MAX});
        return it != written.begin() && at < std::prev(it)->second;
    };
    std::size_t changed = 0;
    for (const auto& [name, value] : values)
        if (value.first != value.second || inWrite(value.first) || inWrite(value.second)) ++changed;
    return changed;
}

void UndoLastSaveCommand(Session& session) {
    if (!NeedRom(session) || !ConfirmStep(session, true)) return;
    HistoryEntry undone;
    if (Run(session, "Undo Last Save", [&] { undone = UndoLastSave(session.romPath, session.OffsetFile()); }))
        session.prompter.Message(Icon::Information, "Undone: " + Describe(undone), "Undo Last Save");
}

void RedoSaveCommand(Session& session) {
    if (!NeedRom(session) || !ConfirmStep(session, false)) return;
    HistoryEntry redone;
    if (Run(session, "Redo", [&] { redone = RedoSave(session.romPath, session.OffsetFile()); }))
        session.prompter.Message(Icon::Information, "Redone: " + Describe(redone), "Redo");
}

bool GoBackCommand(Session& session, std::uint64_t number) {
    if (!NeedRom(session)) return false;
    return Run(session, "History", [&] { GoBackTo(session.romPath, session.OffsetFile(), number); });
}

void CreatePatchCommand(Session& session) {
    if (!NeedRom(session)) return;
    auto original = session.prompter.OpenFile("Choose the clean original ROM", kRomFilter);
    if (!original) return;
    auto out = session.prompter.SaveFile("Save the BPS patch as", "BPS patches (*.bps)|*.bps");
    if (!out) return;
    if (!out->has_extension()) *out += ".bps";  // so that Apply Patch lists it
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
    if (!out->has_extension()) *out += ".gba";  // so that Open ROM lists it
    try {
        ApplyPatchFile(*rom, *patch, *out);
        session.prompter.Message(Icon::Information, "The patched ROM was written to " + out->filename().string() + ".",
                                 "Apply Patch");
    } catch (const std::exception& e) {
        session.prompter.Message(Icon::Critical, e.what(), "Apply Patch");
    }
}

}  // namespace quillon
