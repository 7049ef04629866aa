// search ROM TEXT: every offset where the text's bytes are stored.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "core/file_io.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {
namespace {

// One line of the text stored at `offset`, for the match list.
std::string Preview(const std::filesystem::path& rom, std::int32_t offset) {
    const std::string text = ForTerminal(DecodeText(ReadBytesUntil(rom, PadHex(offset), 80, "FF"), false));
    return text.substr(0, text.find('\n'));
}

}  // namespace

void RegisterSearch(CLI::App& app, CliContext&) {
    struct Args {
        std::filesystem::path rom;
        std::string text;
        bool specialDialog = false;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("search", "List the offsets (hex) where a text is stored");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("TEXT", args->text, "The text, as the editor writes it (tags in brackets)")->required();
    sub->add_flag("--special-dialog", args->specialDialog, "Encode line breaks as in special dialogs");
    sub->callback([args] {
        RequireRom(args->rom);
        const std::string pattern = HexToBytes(EncodeText(args->text, args->specialDialog));
        if (pattern.empty()) throw CommandFailed("The search text is empty.");
        std::size_t matches = 0;
        std::int32_t start = 1;
        for (;;) {
            const std::int32_t hit = FindBytes(args->rom, pattern, start);
            if (hit <= 0) break;
            ++matches;
            std::printf("%06X  %s\n", static_cast<unsigned>(hit), Preview(args->rom, hit).c_str());
            start = hit + 2;  // 1-based: one byte behind the match
        }
        if (matches == 0) throw CommandFailed("The text was not found.");
    });
}

}  // namespace quillon::cli
