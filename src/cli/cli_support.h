#pragma once
// Pieces the sub-commands share: checking a ROM argument, the offset file and
// settings of the program folder, and the progress line on a terminal.
#include "app/progress.h"
#include "cli/commands.h"
#include "repoint/rewrites.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace quillon {
struct ImportPlan;
}

namespace quillon::cli {

// --rewrite-code and --rewrite-unknown: the places besides the references
// that a move of a text rewrites.
void AddRewriteOptions(CLI::App& sub, repoint::RewritePolicy& policy);

// The folder of the running executable.
std::filesystem::path ExecutableFolder(const char* argv0);

// Throws CommandFailed unless `rom` is a readable file that holds a cartridge header.
void RequireRom(const std::filesystem::path& rom);

// The offset file: `given` when not empty, else ini/ + the ROM's game code + .ini.
std::filesystem::path OffsetFileFor(const CliContext& ctx, const std::filesystem::path& rom,
                                    const std::filesystem::path& given);

// --free-space-offset when given, else FreeSpaceOffset of ini/settings.ini;
// throws CommandFailed when neither holds a whole number from 0 up.
std::int32_t FreeSpaceOffset(const CliContext& ctx);

// An offset argument: hex digits, with or without a leading "0x".
std::uint32_t ParseOffset(std::string_view text);

// A line on standard error, rewritten in place, when it is a terminal;
// silent otherwise. Never asks to stop (Ctrl+C ends the program before the
// write starts, and the journal covers the write itself).
class TerminalProgress final : public Progress {
public:
    explicit TerminalProgress(bool terminal) : terminal_(terminal) {}
    void Begin(std::string_view what, std::uint64_t total) override;
    bool Step(std::uint64_t done) override;
    void End() override;

private:
    bool terminal_;
    std::string what_;
    std::uint64_t total_ = 0;
    int shownPercent_ = -1;
};

// Prints an import-like plan and, unless `dryRun`, writes it and reports the
// outcome; throws CommandFailed ("The <what> was not written: ...") when it
// did not land.
void ShowOrWrite(const ImportPlan& plan, bool dryRun, std::string_view what);

// Editor text for a terminal: CR LF line ends become LF.
std::string ForTerminal(std::string_view text);

}  // namespace quillon::cli
