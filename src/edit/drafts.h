#pragma once
// Nothing typed is lost: an edited text that the user leaves unsaved (by
// loading another entry, opening another ROM or exiting) is kept as a draft
// of its entry, in memory and, on leaving the ROM, in a small file beside it.
// Loading the entry again offers the draft back.
#include <filesystem>
#include <string>

namespace quillon {

class Session;

// The file beside `rom` that holds its drafts.
std::filesystem::path DraftFile(const std::filesystem::path& rom);

// The entry key of a draft: section and key name.
std::string DraftKey(std::string_view section, std::string_view key);

// Keeps the editor text as a draft of the entry shown when it differs from
// the text stored there now. Called before the editor is loaded anew.
void KeepDraft(Session& session);
// After an entry is loaded: offers its draft (the restore bar) if it has one.
void OfferDraft(Session& session);
// The restore bar's commands.
void RestoreDraft(Session& session);
void DiscardDraft(Session& session);

// Before another ROM is opened or the program ends: keeps the editor's
// draft, stores the drafts beside the ROM and forgets them.
void LeaveRom(Session& session);

// Writes the open ROM's drafts beside it (removes the file when there are
// none), and reads them back when a ROM is opened. File errors are ignored:
// drafts are a convenience, never a reason to stop.
void StoreDrafts(const Session& session);
void LoadDrafts(Session& session);
// Once, after a ROM is opened with drafts kept from an earlier session: one
// message that names their entries ("3 unsaved edits kept from last time: ...").
void AnnounceDrafts(Session& session);

}  // namespace quillon
