// read ROM OFFSET: the text stored at an offset, as the editor shows it.
#include "cli/cli_support.h"
#include "cli/commands.h"
#include "core/file_io.h"
#include "core/codec/text_bytes.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <cstdio>
#include <memory>

namespace quillon::cli {

void RegisterRead(CLI::App& app, CliContext&) {
    struct Args {
        std::filesystem::path rom;
        std::string offset;
        bool japanese = false;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand("read", "Show the text stored at an offset");
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("OFFSET", args->offset, "Where the text starts, in hex digits")->required();
    sub->add_flag("--japanese", args->japanese, "Decode with the Japanese table");
    sub->callback([args] {
        RequireRom(args->rom);
        const std::uint32_t offset = ParseOffset(args->offset);
        if (offset >= io::FileSize(args->rom))
            throw CommandFailed("The offset " + args->offset + " lies past the end of the ROM.");
        const std::string bytes = ReadBytesUntil(args->rom, PadHex(offset), kMaxTextBytes, "FF");
        std::printf("%s\n", ForTerminal(DecodeText(bytes, args->japanese)).c_str());
    });
}

}  // namespace quillon::cli
