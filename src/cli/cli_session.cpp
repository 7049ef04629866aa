#include "cli/cli_session.h"

#include "app/commit.h"
#include "cli/cli_support.h"
#include "edit/open_rom.h"

#include <quillon/header.h>
#include <quillon/rom.h>

#include <algorithm>
#include <cstdio>
#include <memory>

namespace quillon::cli {

void CliPrompter::Message(Icon icon, std::string_view text, std::string_view) {
    if (icon == Icon::Critical || icon == Icon::Warning) {
        if (reason_.empty()) reason_ = text;
        return;
    }
    std::printf("%s\n", ForTerminal(text).c_str());
}

bool CliPrompter::AskYesNo(std::string_view text, std::string_view) {
    if (yes_ || !reason_.empty()) return yes_;
    // The question without its last line ("Do you want to ...?") says why.
    std::string_view why = text.substr(0, std::min(text.rfind("\r\n"), text.size()));
    while (why.ends_with("\r\n")) why.remove_suffix(2);
    reason_ = why;
    asked_ = true;
    return false;
}

void CliPrompter::ThrowIfRefused(std::string_view yesHint) const {
    if (reason_.empty()) return;
    std::string line = reason_;
    if (asked_) line += (line.ends_with('.') ? " " : ". ") + std::string(yesHint);
    throw CommandFailed(line);
}

void OpenForCommand(Session& session, CliPrompter& user, const CliContext& ctx, const std::filesystem::path& rom,
                    const std::filesystem::path& ini) {
    RequireRom(rom);
    session.romPath = rom;
    session.offsetFileGiven = OffsetFileFor(ctx, rom, ini);
    session.controls.gameCode = GetRomCode(rom);
    if (!RecoverJournal(session)) user.ThrowIfRefused("");
    EnterRomOpenState(session);
}

void RegisterHistoryStep(CLI::App& app, CliContext& ctx, const HistoryStep& step) {
    struct Args {
        std::filesystem::path rom, ini;
        bool yes = false;
    };
    auto args = std::make_shared<Args>();
    auto* sub = app.add_subcommand(step.name, step.description);
    sub->add_option("ROM", args->rom, "The ROM image")->required();
    sub->add_option("--ini", args->ini, "The offset file (default: ini/GAMECODE.ini beside quillon-cli)");
    sub->add_flag("--yes", args->yes, step.yesHelp);
    sub->callback([args, step, &ctx] {
        CliPrompter user(args->yes);
        Session session(ctx.programFolder, user);
        OpenForCommand(session, user, ctx, args->rom, args->ini);
        step.command(session);
        user.ThrowIfRefused(step.yesHint);
    });
}

}  // namespace quillon::cli
