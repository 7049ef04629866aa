#pragma once
// Long work shown as a progress bar with Cancel, opened at the first step
// and closed at the last.
#include "app/progress.h"

#include <QString>

#include <memory>

class QProgressDialog;
class QWidget;

namespace quillon::ui {

class ProgressDialog : public Progress {
public:
    ProgressDialog(QWidget* parent, QString label);
    ~ProgressDialog() override;

    bool Step(std::uint64_t done, std::uint64_t total) override;
    // The open dialog, for tests; null between pieces of work.
    QProgressDialog* Dialog() const { return dialog_.get(); }

private:
    QWidget* parent_;
    QString label_;
    std::unique_ptr<QProgressDialog> dialog_;
};

}  // namespace quillon::ui
