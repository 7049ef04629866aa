#include "ui/progress_dialog.h"

#include "ui/text_bridge.h"

#include <QCoreApplication>
#include <QProgressDialog>

namespace quillon::ui {

ProgressDialog::ProgressDialog(QWidget* parent) : parent_(parent) {}

ProgressDialog::~ProgressDialog() = default;

void ProgressDialog::Begin(std::string_view what, std::uint64_t total) {
    total_ = total;
    dialog_ = std::make_unique<QProgressDialog>(Q(what) + QStringLiteral("..."), QStringLiteral("Cancel"), 0,
                                                total ? 1000 : 0, parent_);
    dialog_->setObjectName(QStringLiteral("frmProgress"));
    dialog_->setWindowTitle(QStringLiteral("Quillon"));
    dialog_->setWindowModality(Qt::WindowModal);
    dialog_->setMinimumDuration(0);
    dialog_->setAutoReset(false);
    dialog_->setAutoClose(false);
    dialog_->setValue(0);
}

bool ProgressDialog::Step(std::uint64_t done) {
    if (!dialog_) return true;
    if (total_) dialog_->setValue(static_cast<int>(std::min(done, total_) * 1000 / total_));
    QCoreApplication::processEvents();
    return !dialog_->wasCanceled();
}

void ProgressDialog::End() { dialog_.reset(); }

}  // namespace quillon::ui
