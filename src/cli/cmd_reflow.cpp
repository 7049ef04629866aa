// reflow ROM [--ini FILE] [--section S] [--dry-run]: every text broken into
// lines and boxes that fit its box, written like an import.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "fit/fit_settings.h"
#include "translate/reflow_all.h"

#include <quillon/header.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterReflow(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::filesystem::path rom, ini;
        std::string section;
        bool dryRun = false;
        repoint::RewritePolicy rewrite;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand(
        "reflow", "Break every text that does not fit its box into lines and boxes that fit, with the game's font");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("--ini", args->ini, "The offset file (default: ini/GAMECODE.ini beside quillon-cli)");
    sub->add_option("--section", args->section, "Only this section of the offset file");
    sub->add_flag("--dry-run", args->dryRun, "Show the plan and write nothing");
    AddRewriteOptions(*sub, args->rewrite);
    sub->callback([args, &ctx] {
        RequireRom(args->rom);
        ReflowRequest request{args->rom, OffsetFileFor(ctx, args->rom, args->ini), {}, FreeSpaceOffset(ctx),
                              fit::ReadFitSettings(ctx.programFolder / "ini" / "settings.ini", GetRomCode(args->rom)),
                              args->rewrite.code, args->rewrite.unknown};
        if (!args->section.empty()) request.section = args->section;
        TerminalProgress progress(ctx.terminal);
        ImportPlan plan;
        try {
            plan = PlanReflow(request, progress);
        } catch (const std::invalid_argument& e) {
            throw CommandFailed(e.what());
        }
        ShowOrWrite(plan, args->dryRun, "reflow");
    });
}

}  // namespace quillon::cli
