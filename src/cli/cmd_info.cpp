// info ROM: the cartridge header's fields.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "core/file_io.h"

#include <quillon/header.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterInfo(CLI::App& app, CliContext&) {
    auto rom = std::make_shared<std::filesystem::path>();
    auto* sub = app.add_subcommand("info", "Show the cartridge header: title, game code, language and maker");
    sub->add_option("ROM", *rom, "The ROM image")->required();
    sub->callback([rom] {
        RequireRom(*rom);
        const std::string language = GetRomLanguage(*rom);
        const std::string maker = GetMakerCode(*rom);
        std::printf("Title:     %s\n", GetRomName(*rom).c_str());
        std::printf("Game code: %s\n", GetRomCode(*rom).c_str());
        std::printf("Language:  %s (%s)\n", language.c_str(), LanguageName(language).c_str());
        std::printf("Maker:     %s (%s)\n", maker.c_str(), MakerName(maker).c_str());
        std::printf("Size:      %llu bytes\n", static_cast<unsigned long long>(io::FileSize(*rom)));
    });
}

}  // namespace quillon::cli
