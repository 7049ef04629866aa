#include "ui/progress_dialog.h"

#include <QCoreApplication>
#include <QProgressDialog>

namespace quillon::ui {

ProgressDialog::ProgressDialog(QWidget* parent, QString label) : parent_(parent), label_(std::move(label)) {}

ProgressDialog::~ProgressDialog() = default;

bool ProgressDialog::Step(std::uint64_t done, std::uint64_t total) {
    if (!dialog_) {
        dialog_ = std::make_unique<QProgressDialog>(label_, QStringLiteral("Cancel"), 0, 1000, parent_);
        dialog_->setObjectName(QStringLiteral("frmProgress"));
        dialog_->setWindowTitle(QStringLiteral("Quillon"));
        dialog_->setWindowModality(Qt::WindowModal);
        dialog_->setMinimumDuration(0);
        dialog_->setAutoReset(false);
        dialog_->setAutoClose(false);
    }
    dialog_->setValue(total ? static_cast<int>(done * 1000 / total) : 1000);
    QCoreApplication::processEvents();
    const bool go = !dialog_->wasCanceled();
    if (!go || done >= total) dialog_.reset();
    return go;
}

}  // namespace quillon::ui
