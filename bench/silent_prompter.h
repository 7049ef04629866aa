#pragma once
// A user who is never asked anything in a speed check: questions are
// answered No, and messages are only counted (one would mean a failure).
#include "app/prompter.h"

namespace quillon::bench {

struct SilentPrompter : Prompter {
    int messages = 0;
    void Message(Icon, std::string_view, std::string_view) override { ++messages; }
    bool AskYesNo(std::string_view, std::string_view) override { return false; }
    std::optional<std::string> Input(std::string_view, std::string_view, std::string_view) override { return {}; }
    std::optional<std::filesystem::path> OpenFile(std::string_view, std::string_view) override { return {}; }
    std::optional<std::filesystem::path> SaveFile(std::string_view, std::string_view) override { return {}; }
    void ShowAddOffset(AddOffsetFields&) override {}
};

}  // namespace quillon::bench
