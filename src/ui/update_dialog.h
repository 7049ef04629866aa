#pragma once
// frmInternetUpdate, "Tarnwick-Soft | Live-Update": checks the update server
// for a newer version and downloads the update file. Bound to an UpdateForm;
// the window only mirrors it.
#include "update/update_form.h"
#include "update/version_compare.h"

#include <QDialog>

#include <filesystem>
#include <string>

class QLabel;
class QProgressBar;

namespace quillon {
class Prompter;
}

namespace quillon::ui {

class XPButton;

class UpdateDialog : public QDialog {
public:
    UpdateDialog(Prompter& prompter, const std::filesystem::path& programFolder, const std::string& baseUrl,
                 QWidget* parent = nullptr, const std::string& currentVersion = CurrentVersionText());

    UpdateForm& Form() { return form_; }

    // Closing the window in any way (Cancel, Esc, the close box) first puts
    // the buttons back to Ready and abandons a running check or transfer.
    void reject() override;

private:
    void Push();  // the form into the controls

    UpdateForm form_;
    QProgressBar* prog_;
    QLabel* label1_;
    QLabel* updateMsg_;
    XPButton* check_;
    XPButton* download_;
    XPButton* cancel_;
};

}  // namespace quillon::ui
