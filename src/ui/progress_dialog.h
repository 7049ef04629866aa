#pragma once
// Long work shown as a progress bar with Cancel: opened when a stage
// begins, closed when it ends.
#include "app/progress.h"

#include <memory>

class QProgressDialog;
class QWidget;

namespace quillon::ui {

class ProgressDialog : public Progress {
public:
    explicit ProgressDialog(QWidget* parent);
    ~ProgressDialog() override;

    void Begin(std::string_view what, std::uint64_t total) override;
    bool Step(std::uint64_t done) override;
    void End() override;
    // The open dialog, for tests; null between pieces of work.
    QProgressDialog* Dialog() const { return dialog_.get(); }

private:
    QWidget* parent_;
    std::uint64_t total_ = 0;
    std::unique_ptr<QProgressDialog> dialog_;
};

}  // namespace quillon::ui
