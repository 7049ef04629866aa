#pragma once
// The one interface through which commands talk to the user. The windows
// implement it with dialogs; tests implement it with a scripted fake.
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

class AddOffsetFields;

// Title of every message box that has none of its own.
inline constexpr std::string_view kProgramTitle = "Quillon";

enum class Icon { Critical, Warning, Question, Information };

// The answer to a question with two named choices and Cancel.
enum class Choice { First, Second, Cancel };

class Prompter {
public:
    virtual ~Prompter() = default;

    // A message box with an OK button. Lines are joined with CR LF.
    virtual void Message(Icon icon, std::string_view text, std::string_view title = kProgramTitle) = 0;
    // A question with Yes and No buttons; true only for Yes.
    virtual bool AskYesNo(std::string_view text, std::string_view title = kProgramTitle) = 0;
    // A question with the buttons `first`, `second` and Cancel. A prompter
    // that cannot offer choices cancels, which writes nothing.
    virtual Choice AskChoice(std::string_view text, std::string_view first, std::string_view second,
                             std::string_view title = kProgramTitle) {
        (void)text, (void)first, (void)second, (void)title;
        return Choice::Cancel;
    }
    // A long text (a plan, a report) that the user can read, copy and save as
    // a file. With `askToGo` it has OK and Cancel and the answer is true only
    // for OK; without, it has a Close button and the answer is true. A
    // prompter without such a box shows a message or asks Yes/No instead.
    virtual bool ShowReport(std::string_view text, std::string_view title, bool askToGo) {
        if (!askToGo) Message(Icon::Information, text, title);
        return !askToGo || AskYesNo(text, title);
    }
    // ShowReport with OK and Cancel and a check box `option` under the text:
    // each click on it sets `checked` and calls `redo`, whose answer replaces
    // the text. A prompter without such a box shows the report as it is.
    virtual bool ShowReportWithOption(std::string_view text, std::string_view title, std::string_view option,
                                      bool& checked, const std::function<std::string(bool)>& redo) {
        (void)option, (void)checked, (void)redo;
        return ShowReport(text, title, true);
    }
    // A line of input; nothing when the user cancels.
    virtual std::optional<std::string> Input(std::string_view title, std::string_view prompt,
                                             std::string_view defaultValue) = 0;
    // A file to open or to save; nothing when cancelled. The filter lists
    // description|patterns pairs separated by "|".
    virtual std::optional<std::filesystem::path> OpenFile(std::string_view title, std::string_view filter) = 0;
    virtual std::optional<std::filesystem::path> SaveFile(std::string_view title, std::string_view filter) = 0;
    // Shows the add-offset window modally over the current window until the
    // user adds the entry or cancels; the form holds its fields and commands.
    virtual void ShowAddOffset(AddOffsetFields& form) = 0;
};

}  // namespace quillon
