// info ROM [--json]: the cartridge header's fields.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "cli/json_writer.h"
#include "core/file_io.h"

#include <quillon/header.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterInfo(CLI::App& app, CliContext&) {
    struct Args {
        std::filesystem::path rom;
        bool json = false;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("info", "Show the cartridge header: title, game code, language and maker");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_flag("--json", args->json, "One JSON document instead of lines");
    sub->callback([args] {
        const std::filesystem::path& rom = args->rom;
        RequireRom(rom);
        const std::string language = GetRomLanguage(rom);
        const std::string maker = GetMakerCode(rom);
        const auto size = static_cast<unsigned long long>(io::FileSize(rom));
        const std::string name = GetRomName(rom);
        const std::string title = name.substr(0, name.find('\0'));  // the header pads it with 0x00
        if (args->json) {
            JsonWriter json;
            json.Object().String("title", title).String("gameCode", GetRomCode(rom));
            json.String("language", language).String("languageName", LanguageName(language));
            json.String("maker", maker).String("makerName", MakerName(maker));
            std::printf("%s", json.Number("size", static_cast<std::int64_t>(size)).End().Text().c_str());
            return;
        }
        std::printf("Title:     %s\n", title.c_str());
        std::printf("Game code: %s\n", GetRomCode(rom).c_str());
        std::printf("Language:  %s (%s)\n", language.c_str(), LanguageName(language).c_str());
        std::printf("Maker:     %s (%s)\n", maker.c_str(), MakerName(maker).c_str());
        std::printf("Size:      %llu bytes\n", size);
    });
}

}  // namespace quillon::cli
