#pragma once
// A scripted user: records every message, question, prompt and dialog exactly
// and answers them from a queue. A call that finds no fitting answer fails the
// test and is answered with No / Cancel.
#include "app/prompter.h"

#include <deque>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <variant>
#include <vector>

namespace quillon::test {

struct Shown {
    enum Kind { Message, Question, Input, OpenFile, SaveFile, AddOffset, Choices, Report } kind;
    std::string text;   // message text, input prompt, dialog title
    std::string title;  // box title, input title, dialog filter
    Icon icon = Icon::Information;
    bool operator==(const Shown&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Shown& s);

// Shorthands for expected entries.
Shown Msg(Icon icon, std::string text, std::string title = "Quillon");
Shown Ask(std::string text, std::string title = "Quillon");

class FakePrompter : public Prompter {
public:
    using AddOffsetAction = std::function<void(AddOffsetFields&)>;
    struct Cancel {};
    using Answer = std::variant<bool, std::string, std::filesystem::path, AddOffsetAction, Cancel, Choice>;

    FakePrompter& Then(Answer answer) {
        answers.push_back(std::move(answer));
        return *this;
    }
    FakePrompter& Yes() { return Then(true); }
    FakePrompter& No() { return Then(false); }
    FakePrompter& Cancelled() { return Then(Cancel{}); }

    void Message(Icon icon, std::string_view text, std::string_view title) override;
    bool AskYesNo(std::string_view text, std::string_view title) override;
    // Recorded with the choices' names as "first|second|title" in `title`.
    Choice AskChoice(std::string_view text, std::string_view first, std::string_view second,
                     std::string_view title) override;
    // Recorded with the Question icon when it asks OK/Cancel (a scripted bool answers).
    bool ShowReport(std::string_view text, std::string_view title, bool askToGo) override;
    std::optional<std::string> Input(std::string_view title, std::string_view prompt,
                                     std::string_view defaultValue) override;
    std::optional<std::filesystem::path> OpenFile(std::string_view title, std::string_view filter) override;
    std::optional<std::filesystem::path> SaveFile(std::string_view title, std::string_view filter) override;
    void ShowAddOffset(AddOffsetFields& form) override;

    // Everything shown so far, and clears the record.
    std::vector<Shown> Take();

    std::vector<Shown> shown;
    std::deque<Answer> answers;
    std::vector<std::string> inputDefaults;  // default texts of the input prompts
    // Runs once when the next question is shown, before it is answered (as
    // another program might act while the question is open).
    std::function<void()> atNextQuestion;

private:
    template <class T>
    std::optional<T> Next(const char* what);
};

}  // namespace quillon::test
