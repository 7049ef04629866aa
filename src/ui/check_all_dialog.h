#pragma once
// "Check All Texts...": every entry of the offset file with a line over the
// message box; a double-click opens the entry in the main window.
#include "fit/check_all.h"
#include "fit/fit_settings.h"

#include <QDialog>

class QLabel;
class QTreeWidget;

namespace quillon {
class Session;
}

namespace quillon::ui {

class CheckAllDialog : public QDialog {
public:
    CheckAllDialog(Session& session, const fit::FitSettings& settings, QWidget* parent = nullptr);
    const fit::CheckReport& Report() const { return report_; }

private:
    void Open(int row);

    Session& session_;
    fit::CheckReport report_;
    QTreeWidget* list_ = nullptr;
    QLabel* summary_ = nullptr;
};

}  // namespace quillon::ui
