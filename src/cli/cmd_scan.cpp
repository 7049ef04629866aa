// scan ROM [--ini FILE] [--json]: the texts that discovery finds, printed, or added to
// an offset file with the same rules as "Find Texts in ROM..." in the windows.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
#include "core/file_io.h"
#include "core/hex_text.h"
#include "discover/discover.h"
#include "discover/offset_merge.h"
#include "store/writer.h"

#include <quillon/rom.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterScan(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::filesystem::path rom;
        std::filesystem::path ini;
        bool json = false;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("scan", "Find the texts of a ROM by itself; with --ini, add them to an offset file");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("--ini", args->ini, "The offset file to add the new texts to");
    sub->add_flag("--json", args->json, "One JSON document instead of lines");
    sub->callback([args, &ctx] {
        RequireRom(args->rom);
        const std::string image = io::ReadAll(args->rom);
        TerminalProgress progress(ctx.terminal);
        const auto found = discover::DiscoverTexts(image, &progress);
        if (args->ini.empty() && args->json) {
            JsonWriter json;
            json.Object().Array("texts");
            for (const auto& f : found) {
                json.Object().String("offset", PlainHex(f.offset)).Number("length", f.length);
                json.Number("confidence", f.confidence).String("preview", f.preview).Array("pointers");
                for (const game::Place& p : f.pointers)
                    json.Object().String("place", PlainHex(p.place)).String("kind", game::KindName(p.kind)).End();
                json.End().End();
            }
            std::printf("%s", json.End().End().Text().c_str());
            return;
        }
        if (args->ini.empty()) {
            for (const auto& f : found)
                std::printf("%06X  %3d%%  %zu pointer%s  %s\n", f.offset, f.confidence, f.pointers.size(),
                            f.pointers.size() == 1 ? " " : "s", f.preview.c_str());
            std::printf("%zu texts found.\n", found.size());
            return;
        }
        WritePlan plan;
        plan.command = "scan";
        plan.subject = args->ini.filename().string();
        plan.rom = args->rom;
        plan.romSize = io::FileSize(args->rom);
        plan.offsetFile = args->ini;
        if (FileExists(args->ini)) plan.offsetBefore = io::ReadAll(args->ini);
        const discover::Merge merge = discover::MergeFoundTexts(plan.offsetBefore.value_or(""), found);
        if (merge.added > 0) {
            plan.offsetAfter = merge.text;
            const CommitResult result = CommitPlan(plan);
            if (result.outcome != CommitOutcome::Written) throw CommandFailed("the offset file was not written: " + result.error);
        }
        if (args->json) {
            JsonWriter json;
            json.Object().Number("found", static_cast<std::int64_t>(found.size()));
            json.Number("listed", static_cast<std::int64_t>(merge.listed)).Number("added", static_cast<std::int64_t>(merge.added));
            json.Number("sections", static_cast<std::int64_t>(merge.sections)).String("offsetFile", args->ini.string());
            std::printf("%s", json.End().Text().c_str());
            return;
        }
        std::printf("%zu texts found, %zu listed already; %zu added in %zu sections to %s\n", found.size(),
                    merge.listed, merge.added, merge.sections, args->ini.string().c_str());
    });
}

}  // namespace quillon::cli
