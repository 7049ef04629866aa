// refs ROM [OFFSET...] [--ini FILE] [--json]: every place that holds the pointer to a
// text, with its kind and the rule that gave it, one tab-separated line each:
// text offset, place, kind, rule.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
#include "core/file_io.h"
#include "core/hex_text.h"
#include "game/game_model.h"

#include <quillon/core.h>

#include <charconv>
#include <cstdio>
#include <memory>
#include <set>
#include <string_view>

namespace quillon::cli {

void RegisterRefs(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::filesystem::path rom;
        std::vector<std::string> offsets;
        std::filesystem::path ini;
        bool json = false;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("refs", "List every place that holds the pointer to a text, with its kind");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("OFFSET", args->offsets, "Offsets of texts, in hex digits");
    auto* ini = sub->add_option("--ini", args->ini, "List the references of every entry of this offset file");
    sub->add_flag("--json", args->json, "One JSON document instead of lines");
    sub->callback([args, ini, &ctx] {
        RequireRom(args->rom);
        std::set<std::uint32_t> targets;
        for (const std::string& o : args->offsets) targets.insert(ParseOffset(o));
        if (ini->count() > 0 || args->offsets.empty()) {
            const std::filesystem::path file = OffsetFileFor(ctx, args->rom, args->ini);
            if (!FileExists(file)) throw CommandFailed("The offset file " + file.string() + " does not exist.");
            // Every entry's line, in every section, repeated names included.
            const std::string text = io::ReadAll(file);
            for (std::size_t at = 0; at < text.size();) {
                const std::size_t end = std::min(text.find('\n', at), text.size());
                std::string_view line(text.data() + at, end - at);
                at = end + 1;
                const std::size_t eq = line.find('=');
                if (line.empty() || line[0] == '[' || line[0] == ';' || eq == std::string_view::npos) continue;
                std::string_view value = line.substr(eq + 1);
                while (!value.empty() && (value.back() == '\r' || value.back() == ' ' || value.back() == '\t'))
                    value.remove_suffix(1);
                while (!value.empty() && (value.front() == ' ' || value.front() == '\t')) value.remove_prefix(1);
                std::uint32_t offset = 0;
                auto [stop, ec] = std::from_chars(value.data(), value.data() + value.size(), offset, 16);
                if (ec == std::errc() && stop == value.data() + value.size() && !value.empty()) targets.insert(offset);
            }
        }
        const std::string image = io::ReadAll(args->rom);
        const game::GameModel model = game::GameModel::Read(image);
        JsonWriter json;
        json.Object().Array("references");
        for (std::uint32_t target : targets) {
            for (const game::Place& p : model.ReferencesTo(target))
                if (args->json)
                    json.Object().String("text", PlainHex(target)).String("place", PlainHex(p.place))
                        .String("kind", game::KindName(p.kind)).String("rule", p.rule).End();
                else
                    std::printf("%s\t%s\t%s\t%.*s\n", PlainHex(target).c_str(), PlainHex(p.place).c_str(),
                            std::string(game::KindName(p.kind)).c_str(), static_cast<int>(p.rule.size()), p.rule.data());
        }
        if (args->json) std::printf("%s", json.End().End().Text().c_str());
    });
}

}  // namespace quillon::cli
