// export ROM --po OUT: every text of the offset file to a PO file.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "fit/fit_settings.h"
#include "translate/po_export.h"

#include <quillon/header.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterExport(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::filesystem::path rom, ini, po;
        std::string section;
        bool fill = false;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("export", "Write every text of the offset file to a PO file for translators");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("--po", args->po, "The PO file to write")->required();
    sub->add_option("--ini", args->ini, "The offset file (default: ini/GAMECODE.ini beside quillon-cli)");
    sub->add_option("--section", args->section, "Only this section of the offset file");
    sub->add_flag("--fill", args->fill, "Put the current text into msgstr too");
    sub->callback([args, &ctx] {
        RequireRom(args->rom);
        ExportRequest request{args->rom, OffsetFileFor(ctx, args->rom, args->ini), args->po, {}, args->fill};
        if (!args->section.empty()) request.section = args->section;
        request.fit = fit::ReadFitSettings(ctx.programFolder / "ini" / "settings.ini", GetRomCode(args->rom));
        TerminalProgress progress(ctx.terminal);
        ExportSummary summary;
        try {
            summary = ExportPo(request, progress);
        } catch (const std::invalid_argument& e) {
            throw CommandFailed(e.what());
        }
        for (const auto& s : summary.skipped)
            std::fprintf(stderr, "skipped %s: %s\n", s.context.c_str(), s.reason.c_str());
        std::fprintf(stderr, "%zu texts written to %s\n", summary.exported, args->po.string().c_str());
    });
}

}  // namespace quillon::cli
