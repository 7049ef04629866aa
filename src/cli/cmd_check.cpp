// check ROM [--ini FILE] [--format plain|tsv|json]: every entry of the offset file
// with a line wider than its box, measured with the game's own font.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
#include "fit/check_all.h"
#include "fit/fit_settings.h"

#include <quillon/header.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {
namespace {

void PrintRow(const fit::CheckRow& row) {
    const fit::Finding& f = row.First();
    std::printf("%s/%s  %s  line %d  %s  %s\n", row.section.c_str(), row.key.c_str(), row.offset.c_str(), f.line + 1,
                fit::WidthCaption(f.width, row.box.width).c_str(), ForTerminal(f.lineText).c_str());
}

void PrintJson(const fit::CheckReport& report) {
    JsonWriter json;
    json.Object().Number("entries", static_cast<std::int64_t>(report.entries));
    json.Number("over", static_cast<std::int64_t>(report.over)).Number("names", static_cast<std::int64_t>(report.names));
    json.Array("fonts");
    for (const fit::FoundFont& font : report.fonts) json.String({}, fit::DescribePlace(font.place));
    json.End().Array("skipped");
    for (const std::string& skipped : report.skipped) json.String({}, skipped);
    json.End().Array("rows");
    for (const fit::CheckRow& row : report.rows) {
        json.Object().String("section", row.section).String("key", row.key).String("offset", row.offset);
        json.Number("limit", row.box.width).Bool("over", row.over).Array("findings");
        for (const fit::Finding& f : row.findings)
            json.Object().Number("line", f.line + 1).Number("width", f.width).String("kind", f.names ? "names" : "over")
                .String("text", f.lineText).End();
        json.End().End();
    }
    std::printf("%s", json.End().End().Text().c_str());
}

}  // namespace

void RegisterCheck(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::filesystem::path rom;
        std::filesystem::path ini;
        std::string name;
        std::string glyphs, widths;
        std::string format = "plain";
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("check", "List the texts with a line wider than their box");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("--ini", args->ini, "The offset file (default: ini/ + the game code + .ini)");
    sub->add_option("--name", args->name, "A sample player name for [PLAYER] (default: settings.ini, else a usual name)");
    auto* glyphs = sub->add_option("--glyphs", args->glyphs, "Offset of the glyph pictures (hex), for a font no search finds");
    sub->add_option("--widths", args->widths, "Offset of the glyph widths (hex)")->needs(glyphs);
    glyphs->needs(sub->get_option("--widths"));
    auto* format = sub->add_option(
        "--format", args->format,
        "plain: one line per text, for people; tsv: one line per line that does not fit: entry, offset, "
        "line number, width, limit, kind (over, or names: over only with names and buffers at their longest); "
        "json: one JSON document");
    format->check(CLI::IsMember({"plain", "tsv", "json"}));
    sub->add_flag_callback("--json", [args] { args->format = "json"; }, "The same as --format json")->excludes(format);
    sub->callback([args, &ctx] {
        RequireRom(args->rom);
        const std::filesystem::path offsets = OffsetFileFor(ctx, args->rom, args->ini);
        fit::FitSettings settings = fit::ReadFitSettings(ctx.programFolder / "ini" / "settings.ini", GetRomCode(args->rom));
        if (!args->name.empty()) settings.sampleName = args->name;
        if (!args->glyphs.empty()) settings.named = fit::FontPlace{ParseOffset(args->glyphs), ParseOffset(args->widths)};
        const fit::CheckReport report = fit::CheckRom(args->rom, offsets, settings.named, settings.PlayerName());
        if (!report.checked) throw CommandFailed(report.why);
        if (args->format == "json") return PrintJson(report);
        for (const std::string& skipped : report.skipped) std::fprintf(stderr, "skipped %s\n", skipped.c_str());
        for (const fit::FoundFont& font : report.fonts)
            std::fprintf(stderr, "font: %s\n", fit::DescribePlace(font.place).c_str());
        if (args->format == "tsv") {
            for (const fit::CheckRow& row : report.rows)
                for (const fit::Finding& f : row.findings)
                    std::printf("%s/%s\t%s\t%d\t%d\t%d\t%s\n", row.section.c_str(), row.key.c_str(), row.offset.c_str(),
                                f.line + 1, f.width, row.box.width, f.names ? "names" : "over");
            return;
        }
        for (const fit::CheckRow& row : report.rows)
            if (row.over) PrintRow(row);
        if (report.names > 0) {
            std::printf("Over only with names and buffers at their longest:\n");
            for (const fit::CheckRow& row : report.rows)
                if (!row.over) PrintRow(row);
        }
        std::printf("%zu of %zu texts have a line over the message box.\n", report.over, report.entries);
        if (report.names > 0) std::printf("%zu more texts are over only with names and buffers at their longest.\n", report.names);
    });
}

}  // namespace quillon::cli
