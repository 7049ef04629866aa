#pragma once
// The user prompts of the logic shown as Qt dialogs over a parent window.
#include "app/prompter.h"

#include <QString>

class QWidget;

namespace quillon::ui {

// "desc|patterns|desc|patterns" as Qt's "desc (patterns);;desc (patterns)".
QString ToQtFilter(std::string_view filter);

class QtPrompter : public Prompter {
public:
    // Dialogs are owned by `parent`, which may change (the main window is
    // created after the prompter).
    void SetParent(QWidget* parent) { parent_ = parent; }

    void Message(Icon icon, std::string_view text, std::string_view title) override;
    bool AskYesNo(std::string_view text, std::string_view title) override;
    Choice AskChoice(std::string_view text, std::string_view first, std::string_view second,
                     std::string_view title) override;
    bool ShowReport(std::string_view text, std::string_view title, bool askToGo) override;
    bool ShowReportWithOption(std::string_view text, std::string_view title, std::string_view option, bool& checked,
                              const std::function<std::string(bool)>& redo) override;
    std::optional<std::string> Input(std::string_view title, std::string_view prompt,
                                     std::string_view defaultValue) override;
    std::optional<std::filesystem::path> OpenFile(std::string_view title, std::string_view filter) override;
    std::optional<std::filesystem::path> SaveFile(std::string_view title, std::string_view filter) override;
    void ShowAddOffset(AddOffsetFields& form) override;

private:
    QWidget* Owner() const;

    QWidget* parent_ = nullptr;
};

}  // namespace quillon::ui
