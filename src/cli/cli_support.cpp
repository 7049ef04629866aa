#include "cli/cli_support.h"

#include "app/session.h"
#include "core/file_io.h"
#include "edit/free_space.h"
#include "store/write_plan.h"
#include "translate/po_import.h"
#include "translate/rom_texts.h"

#include <quillon/header.h>
#include <quillon/rom.h>

#include <charconv>
#include <cstdio>
#include <limits>

namespace quillon::cli {
namespace {

// The command-line program asks nothing: questions are answered No.
class SilentPrompter final : public Prompter {
public:
    void Message(Icon, std::string_view text, std::string_view) override {
        std::fprintf(stderr, "%s\n", ForTerminal(text).c_str());
    }
    bool AskYesNo(std::string_view, std::string_view) override { return false; }
    std::optional<std::string> Input(std::string_view, std::string_view, std::string_view) override { return {}; }
    std::optional<std::filesystem::path> OpenFile(std::string_view, std::string_view) override { return {}; }
    std::optional<std::filesystem::path> SaveFile(std::string_view, std::string_view) override { return {}; }
    void ShowAddOffset(AddOffsetFields&) override {}
};

}  // namespace

void AddRewriteOptions(CLI::App& sub, repoint::RewritePolicy& policy) {
    sub.add_flag("--rewrite-code", policy.code,
                 "Also rewrite places inside program code that hold a moved text's pointer (named in the report)");
    sub.add_flag("--rewrite-unknown", policy.unknown,
                 "Also rewrite places of unknown use that hold a moved text's pointer; without it such a text is refused");
}

std::filesystem::path ExecutableFolder(const char* argv0) {
    std::error_code ec;
    auto self = std::filesystem::read_symlink("/proc/self/exe", ec);
    if (ec || self.empty()) self = std::filesystem::absolute(argv0, ec);
    return self.parent_path();
}

void RequireRom(const std::filesystem::path& rom) {
    std::error_code ec;
    if (std::filesystem::is_directory(rom, ec))
        throw CommandFailed("'" + rom.string() + "' is a folder, not a ROM image.");
    if (!std::filesystem::is_regular_file(rom, ec))
        throw CommandFailed("'" + rom.string() + "' is not a file.");
    if (io::FileSize(rom) < kFirstWritableOffset)
        throw CommandFailed("'" + rom.string() + "' is too short to hold a cartridge header.");
    if (io::FileSize(rom) > kLargestImage)
        throw CommandFailed("'" + rom.string() + "' is larger than 32 MiB, more than a Game Boy Advance cartridge holds.");
}

std::filesystem::path OffsetFileFor(const CliContext& ctx, const std::filesystem::path& rom,
                                    const std::filesystem::path& given) {
    if (!given.empty()) return given;
    return ctx.programFolder / "ini" / (GetRomCode(rom) + ".ini");
}

std::int32_t FreeSpaceOffset(const CliContext& ctx) {
    if (ctx.freeSpaceOffset) {
        if (*ctx.freeSpaceOffset < 0 || *ctx.freeSpaceOffset > std::numeric_limits<std::int32_t>::max())
            throw CommandFailed("--free-space-offset must be a whole number from 0 to 2147483647.");
        return static_cast<std::int32_t>(*ctx.freeSpaceOffset);
    }
    SilentPrompter prompter;
    Session session(ctx.programFolder, prompter);
    if (!FileExists(session.SettingsFile()))
        throw CommandFailed("Settings file 'settings.ini' could not be found in '" + session.IniFolder().string() +
                            "'; give --free-space-offset instead.");
    auto offset = ReadFreeSpaceOffset(session);
    if (!offset)
        throw CommandFailed("The setting 'FreeSpaceOffset' in 'settings.ini' is missing or not a number; "
                            "give --free-space-offset instead.");
    return *offset;
}

std::uint32_t ParseOffset(std::string_view text) {
    std::string_view digits = text;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) digits.remove_prefix(2);
    std::uint32_t value = 0;
    auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
    if (digits.empty() || ec != std::errc() || end != digits.data() + digits.size())
        throw CommandFailed("The offset '" + std::string(text) + "' is not a hexadecimal number.");
    return value;
}

void TerminalProgress::Begin(std::string_view what, std::uint64_t total) {
    what_ = what;
    total_ = total;
    shownPercent_ = -1;
    Step(0);
}

bool TerminalProgress::Step(std::uint64_t done) {
    if (!terminal_) return true;
    const int percent = total_ ? static_cast<int>(done * 100 / total_) : 0;
    if (percent == shownPercent_) return true;
    shownPercent_ = percent;
    if (total_)
        std::fprintf(stderr, "\r%s... %3d%%", what_.c_str(), percent);
    else
        std::fprintf(stderr, "\r%s...", what_.c_str());
    std::fflush(stderr);
    return true;
}

void TerminalProgress::End() {
    if (!terminal_) return;
    std::fprintf(stderr, "\r%*s\r", static_cast<int>(what_.size() + 9), "");
    std::fflush(stderr);
}

std::string ForTerminal(std::string_view text) { return ToPoText(text); }  // LF line ends, as in PO files

void ShowOrWrite(const ImportPlan& plan, bool dryRun, std::string_view what) {
    if (dryRun) {
        std::printf("%sNothing was written (--dry-run).\n", DescribePlan(plan).c_str());
        return;
    }
    const CommitResult result = ApplyImport(plan);
    std::printf("%s", DescribeOutcome(plan, result).c_str());
    if (result.outcome != CommitOutcome::Written)
        throw CommandFailed("The " + std::string(what) + " was not written: " + result.error);
}

}  // namespace quillon::cli
