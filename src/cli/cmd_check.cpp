// check ROM [--ini FILE]: every entry of the offset file with a line wider
// than the message box, measured with the game's own font.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "fit/check_all.h"
#include "fit/fit_settings.h"

#include <quillon/header.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterCheck(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::filesystem::path rom;
        std::filesystem::path ini;
        std::string name;
        std::string glyphs, widths;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("check", "List the texts with a line wider than the message box");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("--ini", args->ini, "The offset file (default: ini/ + the game code + .ini)");
    sub->add_option("--name", args->name, "A sample player name for [PLAYER] (default: settings.ini, else the longest)");
    auto* glyphs = sub->add_option("--glyphs", args->glyphs, "Offset of the glyph pictures (hex), for a game not known");
    sub->add_option("--widths", args->widths, "Offset of the glyph widths (hex)")->needs(glyphs);
    glyphs->needs(sub->get_option("--widths"));
    sub->callback([args, &ctx] {
        RequireRom(args->rom);
        const std::filesystem::path offsets = OffsetFileFor(ctx, args->rom, args->ini);
        fit::FitSettings settings = fit::ReadFitSettings(ctx.programFolder / "ini" / "settings.ini", GetRomCode(args->rom));
        if (!args->name.empty()) settings.sampleName = args->name;
        if (!args->glyphs.empty()) settings.named = fit::FontPlace{ParseOffset(args->glyphs), ParseOffset(args->widths)};
        const fit::CheckReport report = fit::CheckRom(args->rom, offsets, settings.named, settings.Options());
        if (!report.checked) throw CommandFailed(report.why);
        for (const fit::CheckRow& row : report.rows)
            std::printf("%s/%s  %s  line %d  %s  %s\n", row.section.c_str(), row.key.c_str(), row.offset.c_str(),
                        row.line + 1, fit::WidthCaption(row.width).c_str(), ForTerminal(row.lineText).c_str());
        for (const std::string& skipped : report.skipped) std::fprintf(stderr, "skipped %s\n", skipped.c_str());
        std::printf("%zu of %zu texts have a line over the message box.\n", report.rows.size(), report.entries);
    });
}

}  // namespace quillon::cli
