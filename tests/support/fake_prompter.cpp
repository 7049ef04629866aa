#include "support/fake_prompter.h"

#include <gtest/gtest.h>

#include <utility>

namespace quillon::test {

std::ostream& operator<<(std::ostream& os, const Shown& s) {
    static const char* kinds[] = {"Message", "Question", "Input", "OpenFile", "SaveFile", "AddOffset", "Choices", "Report"};
    static const char* icons[] = {"Critical", "Warning", "Question", "Information"};
    return os << kinds[s.kind] << "(" << icons[static_cast<int>(s.icon)] << ", \"" << s.text << "\", \""
              << s.title << "\")";
}

Shown Msg(Icon icon, std::string text, std::string title) {
    return {Shown::Message, std::move(text), std::move(title), icon};
}

Shown Ask(std::string text, std::string title) {
    return {Shown::Question, std::move(text), std::move(title), Icon::Question};
}

template <class T>
std::optional<T> FakePrompter::Next(const char* what) {
    if (answers.empty()) {
        ADD_FAILURE() << "unexpected " << what << ": no answer scripted";
        return std::nullopt;
    }
    Answer a = std::move(answers.front());
    answers.pop_front();
    if (std::holds_alternative<Cancel>(a)) return std::nullopt;
    if (auto* v = std::get_if<T>(&a)) return std::move(*v);
    ADD_FAILURE() << "scripted answer does not fit the " << what;
    return std::nullopt;
}

void FakePrompter::Message(Icon icon, std::string_view text, std::string_view title) {
    shown.push_back({Shown::Message, std::string(text), std::string(title), icon});
}

bool FakePrompter::AskYesNo(std::string_view text, std::string_view title) {
    shown.push_back({Shown::Question, std::string(text), std::string(title), Icon::Question});
    if (auto act = std::exchange(atNextQuestion, nullptr)) act();
    return Next<bool>("question").value_or(false);
}

Choice FakePrompter::AskChoice(std::string_view text, std::string_view first, std::string_view second,
                               std::string_view title) {
    shown.push_back({Shown::Choices, std::string(text),
                     std::string(first) + "|" + std::string(second) + "|" + std::string(title), Icon::Question});
    return Next<Choice>("choice").value_or(Choice::Cancel);
}

bool FakePrompter::ShowReport(std::string_view text, std::string_view title, bool askToGo) {
    shown.push_back({Shown::Report, std::string(text), std::string(title), askToGo ? Icon::Question : Icon::Information});
    return !askToGo || Next<bool>("report").value_or(false);
}

std::optional<std::string> FakePrompter::Input(std::string_view title, std::string_view prompt,
                                               std::string_view defaultValue) {
    shown.push_back({Shown::Input, std::string(prompt), std::string(title), Icon::Question});
    inputDefaults.emplace_back(defaultValue);
    return Next<std::string>("input prompt");
}

std::optional<std::filesystem::path> FakePrompter::OpenFile(std::string_view title, std::string_view filter) {
    shown.push_back({Shown::OpenFile, std::string(title), std::string(filter), Icon::Information});
    return Next<std::filesystem::path>("open dialog");
}

std::optional<std::filesystem::path> FakePrompter::SaveFile(std::string_view title, std::string_view filter) {
    shown.push_back({Shown::SaveFile, std::string(title), std::string(filter), Icon::Information});
    return Next<std::filesystem::path>("save dialog");
}

void FakePrompter::ShowAddOffset(AddOffsetFields& form) {
    shown.push_back({Shown::AddOffset, "Add Offset to INI", "", Icon::Information});
    if (auto action = Next<AddOffsetAction>("add-offset window")) (*action)(form);
}

std::vector<Shown> FakePrompter::Take() {
    std::vector<Shown> out;
    out.swap(shown);
    return out;
}

}  // namespace quillon::test
