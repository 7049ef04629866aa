#pragma once
// Runs the built quillon-cli from a program folder of its own (a copy of the
// executable with ini/settings.ini) and captures what it printed.
#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <string>
#include <vector>

namespace quillon::test {

struct CliRun {
    int status = -1;
    std::string out;
    std::string err;
};

class CliProgram {
public:
    CliProgram();
    CliRun Run(const std::vector<std::string>& args) const;
    std::filesystem::path Rom() const { return dir / "game.gba"; }
    std::filesystem::path OffsetFile(std::string_view code = "QLNE") const {
        return dir / "ini" / (std::string(code) + ".ini");
    }

    TempDir dir;
};

// Lines of a text (LF separated, the last without an end counted).
std::size_t LineCount(std::string_view text);

}  // namespace quillon::test
