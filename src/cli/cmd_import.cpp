// import ROM --po IN [--dry-run] [--reflow] [--rewrite-code] [--rewrite-unknown]:
// the translated texts of a PO file into the ROM.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "fit/fit_settings.h"
#include "translate/po_import.h"

#include <quillon/header.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterImport(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::filesystem::path rom, ini, po;
        bool dryRun = false, reflow = false;
        repoint::RewritePolicy rewrite;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand(
        "import", "Write the translated texts of a PO file into the ROM, moving texts that outgrow their place");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("--po", args->po, "The translated PO file")->required();
    sub->add_option("--ini", args->ini, "The offset file (default: ini/GAMECODE.ini beside quillon-cli)");
    sub->add_flag("--dry-run", args->dryRun, "Show the plan and write nothing");
    sub->add_flag("--reflow", args->reflow,
                  "Break each translated text into lines and boxes that fit its box, with the game's font");
    AddRewriteOptions(*sub, args->rewrite);
    sub->callback([args, &ctx] {
        RequireRom(args->rom);
        ImportRequest request{args->rom, OffsetFileFor(ctx, args->rom, args->ini), args->po, FreeSpaceOffset(ctx),
                              fit::ReadFitSettings(ctx.programFolder / "ini" / "settings.ini", GetRomCode(args->rom))};
        request.reflow = args->reflow;
        request.rewriteCode = args->rewrite.code;
        request.rewriteUnknown = args->rewrite.unknown;
        TerminalProgress progress(ctx.terminal);
        const ImportPlan plan = PlanImport(request, progress);
        ShowOrWrite(plan, args->dryRun, "import");
    });
}

}  // namespace quillon::cli
