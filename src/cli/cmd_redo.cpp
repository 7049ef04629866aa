// redo ROM [--ini FILE] [--yes]: the window's Redo, with the same checks of
// the bytes on disk and the same journal.
#include "cli/cli_session.h"
#include "history/history_commands.h"

namespace quillon::cli {

void RegisterRedo(CLI::App& app, CliContext& ctx) {
    RegisterHistoryStep(app, ctx,
                        {"redo", "Write the last undone save again, as the window's Redo does",
                         "Redo a save that changes more than one text (the window asks first)",
                         "--yes redoes it all the same.", RedoSaveCommand});
}

}  // namespace quillon::cli
