#pragma once
// The history and patch commands of the Tools menu, talking to the user
// through the session's prompter. After an undo or redo the tree and the
// text are loaded again from the files.
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quillon {

class Session;
struct WritePlan;

// How many entries of the offset file `plan` changes: those whose text it
// writes and those it adds, removes or gives another offset. `offsetFile` is
// the offset file's text now, for a plan that leaves the file alone.
std::size_t EntriesChanged(const WritePlan& plan, std::string_view offsetFile);

void UndoLastSaveCommand(Session& session);   // "Undo Last Save"
void RedoSaveCommand(Session& session);       // "Redo"
// Goes back to the state before history entry `number`; true when it did.
bool GoBackCommand(Session& session, std::uint64_t number);
void CreatePatchCommand(Session& session);    // "Create Patch..."
void ApplyPatchCommand(Session& session);     // "Apply Patch..."

}  // namespace quillon
