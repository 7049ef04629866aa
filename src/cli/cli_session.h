#pragma once
// The window's commands run from the command line: a prompter that asks
// nobody, and a session on a ROM as the window has it after opening it.
#include "app/prompter.h"
#include "app/session.h"
#include "cli/commands.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace quillon::cli {

// Information is printed on standard output. The first Critical or Warning
// message is kept as the reason the command failed; every Yes/No question is
// answered `yes`, and a No keeps the question as the reason. Choices,
// prompts and file dialogs are cancelled.
class CliPrompter final : public Prompter {
public:
    explicit CliPrompter(bool yes) : yes_(yes) {}
    void Message(Icon icon, std::string_view text, std::string_view title) override;
    bool AskYesNo(std::string_view text, std::string_view title) override;
    std::optional<std::string> Input(std::string_view, std::string_view, std::string_view) override { return {}; }
    std::optional<std::filesystem::path> OpenFile(std::string_view, std::string_view) override { return {}; }
    std::optional<std::filesystem::path> SaveFile(std::string_view, std::string_view) override { return {}; }
    void ShowAddOffset(AddOffsetFields&) override {}

    // Throws CommandFailed with the kept reason; when a question was answered
    // No, `yesHint` (the option that answers Yes) follows it.
    void ThrowIfRefused(std::string_view yesHint) const;

private:
    bool yes_;
    std::string reason_;
    bool asked_ = false;
};

// Points `session` at `rom` as opening it in the window does: the game code,
// the offset file (`ini`, else ini/GAMECODE.ini), the table of the ROM's
// language, a cut-off save replayed first. Throws CommandFailed when `rom` is
// no ROM or must stay read-only.
void OpenForCommand(Session& session, CliPrompter& user, const CliContext& ctx, const std::filesystem::path& rom,
                    const std::filesystem::path& ini);

// What tells the undo and redo sub-commands apart.
struct HistoryStep {
    const char* name;         // "undo"
    const char* description;  // its line in --help
    const char* yesHelp;      // the help of --yes, which answers the window's question
    const char* yesHint;      // named after the question when --yes was not given
    void (*command)(Session&);
};

// Adds `step` with ROM, --ini and --yes: it runs the window's command on the
// ROM and fails with the reason when the command did nothing.
void RegisterHistoryStep(CLI::App& app, CliContext& ctx, const HistoryStep& step);

}  // namespace quillon::cli
