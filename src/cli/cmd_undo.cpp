// undo ROM [--ini FILE] [--yes]: the window's Undo Last Save, with the same
// checks of the bytes on disk and the same journal.
#include "cli/cli_session.h"
#include "history/history_commands.h"

namespace quillon::cli {

void RegisterUndo(CLI::App& app, CliContext& ctx) {
    RegisterHistoryStep(app, ctx,
                        {"undo", "Undo the last save of the ROM, as the window's Undo Last Save does",
                         "Undo a save that changed more than one text (the window asks first)",
                         "--yes undoes it all the same.", UndoLastSaveCommand});
}

}  // namespace quillon::cli
