#pragma once
// The history and patch commands of the Tools menu, talking to the user
// through the session's prompter. After an undo or redo the tree and the
// text are loaded again from the files.
#include <cstdint>

namespace quillon {

class Session;

void UndoLastSaveCommand(Session& session);   // "Undo Last Save"
void RedoSaveCommand(Session& session);       // "Redo"
// Goes back to the state before history entry `number`; true when it did.
bool GoBackCommand(Session& session, std::uint64_t number);
void CreatePatchCommand(Session& session);    // "Create Patch..."
void ApplyPatchCommand(Session& session);     // "Apply Patch..."

}  // namespace quillon
