#include "ui/report_dialog.h"

#include "ui/dialog_folder.h"

#include "ui/xp_button.h"

#include <QCheckBox>
#include <QClipboard>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace quillon::ui {

ReportDialog::ReportDialog(const QString& text, const QString& title, bool askToGo, QWidget* parent)
    : QDialog(parent) {
    setObjectName(QStringLiteral("frmReport"));
    setWindowTitle(title);
    setModal(true);
    text_ = new QPlainTextEdit(this);
    text_->setObjectName(QStringLiteral("txtReport"));
    text_->setReadOnly(true);
    text_->setLineWrapMode(QPlainTextEdit::NoWrap);
    text_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text_->setPlainText(QString(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));

    auto* copy = new XPButton(QStringLiteral("cmdCopy"), QStringLiteral("&Copy"), this);
    auto* save = new XPButton(QStringLiteral("cmdSaveReport"), QStringLiteral("&Save As..."), this);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(copy);
    buttons->addWidget(save);
    buttons->addStretch();
    if (askToGo) {
        auto* ok = new XPButton(QStringLiteral("cmdOK"), QStringLiteral("&OK"), this);
        auto* cancel = new XPButton(QStringLiteral("cmdCancel"), QStringLiteral("C&ancel"), this);
        buttons->addWidget(ok);
        buttons->addWidget(cancel);
        connect(ok, &XPButton::clicked, this, &QDialog::accept);
        connect(cancel, &XPButton::clicked, this, &QDialog::reject);
    } else {
        auto* close = new XPButton(QStringLiteral("cmdClose"), QStringLiteral("C&lose"), this);
        buttons->addWidget(close);
        connect(close, &XPButton::clicked, this, &QDialog::accept);
    }
    connect(copy, &XPButton::clicked, this, [this] { QGuiApplication::clipboard()->setText(text_->toPlainText()); });
    connect(save, &XPButton::clicked, this, [this] { Save(); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text_);
    layout->addLayout(buttons);
    resize(600, 420);
}

void ReportDialog::AddOption(const QString& label, bool checked, std::function<QString(bool)> redo) {
    option_ = new QCheckBox(label, this);
    option_->setObjectName(QStringLiteral("chkOption"));
    option_->setChecked(checked);
    static_cast<QVBoxLayout*>(layout())->insertWidget(1, option_);
    connect(option_, &QCheckBox::toggled, this, [this, redo = std::move(redo)](bool on) {
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        text_->setPlainText(redo(on).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
        QGuiApplication::restoreOverrideCursor();
    });
}

void ReportDialog::Save() {
    QString file = QFileDialog::getSaveFileName(this, QStringLiteral("Save Report"), DialogFolder(),
                                                QStringLiteral("Text files (*.txt);;All files (*)"));
    RememberDialogFile(file);
    if (file.isEmpty()) return;
    if (QFileInfo(file).suffix().isEmpty()) file += QStringLiteral(".txt");
    QFile out(file);
    if (!out.open(QIODevice::WriteOnly | QIODevice::Truncate) || out.write(text_->toPlainText().toUtf8()) < 0 ||
        !out.flush())
        QMessageBox::critical(this, windowTitle(),
                              QStringLiteral("The report could not be saved:\n%1").arg(out.errorString()));
}

}  // namespace quillon::ui
