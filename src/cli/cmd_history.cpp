// history ROM [--json]: the saves of the ROM, newest first, as the History
// window lists them: number, time, command, entry, size and state.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
#include "history/history_columns.h"
#include "store/history.h"

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterHistory(CLI::App& app, CliContext&) {
    struct Args {
        std::filesystem::path rom;
        bool json = false;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("history", "List the saves of the ROM that can be undone or redone, newest first");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_flag("--json", args->json, "One JSON document instead of lines");
    sub->callback([args] {
        RequireRom(args->rom);
        const HistoryListing listing = ListHistory(args->rom);
        if (args->json) {
            JsonWriter json;
            json.Object().String("problem", listing.problem);
            json.Number("used", static_cast<std::int64_t>(listing.used));
            json.Number("limit", static_cast<std::int64_t>(listing.limit)).Array("entries");
            for (const HistoryEntry& e : listing.entries)
                json.Object()
                    .Number("number", static_cast<std::int64_t>(e.number))
                    .Number("when", e.when)
                    .String("time", HistoryTime(e.when))
                    .String("command", e.command)
                    .String("subject", e.subject)
                    .Number("bytes", static_cast<std::int64_t>(e.bytes))
                    .String("state", HistoryState(e))
                    .End();
            std::printf("%s", json.End().End().Text().c_str());
            return;
        }
        if (!listing.problem.empty()) std::printf("%s\n", listing.problem.c_str());
        for (const HistoryEntry& e : listing.entries)
            std::printf("%llu\t%s\t%s\t%s\t%s\t%.*s\n", static_cast<unsigned long long>(e.number),
                        HistoryTime(e.when).c_str(), e.command.c_str(), e.subject.c_str(), HistorySize(e.bytes).c_str(),
                        static_cast<int>(HistoryState(e).size()), HistoryState(e).data());
        std::printf("%s\n", HistoryUsage(listing).c_str());
    });
}

}  // namespace quillon::cli
