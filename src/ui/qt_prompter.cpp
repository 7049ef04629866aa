#include "ui/qt_prompter.h"

#include "ui/text_bridge.h"

#include "ui/add_offset_dialog.h"
#include "ui/dialog_folder.h"
#include "ui/report_dialog.h"

#include "offsets/offset_text.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStringList>

namespace quillon::ui {
namespace {



// Message texts join lines with CR LF; Qt wants LF.
QString Lines(std::string_view text) { return Q(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")); }

QMessageBox::Icon ToQt(Icon icon) {
    switch (icon) {
        case Icon::Critical: return QMessageBox::Critical;
        case Icon::Warning: return QMessageBox::Warning;
        case Icon::Question: return QMessageBox::Question;
        case Icon::Information: break;
    }
    return QMessageBox::Information;
}

std::filesystem::path ToPath(const QString& file) { return std::filesystem::path(file.toStdU16String()); }

}  // namespace

QString ToQtFilter(std::string_view filter) {
    const QStringList parts = Q(filter).split(QChar('|'));
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString desc = parts[i];
        QString patterns = parts[i + 1];
        patterns.replace(QChar(';'), QChar(' '));
        // Descriptions that already list their patterns keep them as they are.
        if (desc.contains(QChar('(')))
            entries << desc.left(desc.indexOf(QChar('('))).trimmed() + QStringLiteral(" (") + patterns + QChar(')');
        else
            entries << desc + QStringLiteral(" (") + patterns + QChar(')');
    }
    return entries.join(QStringLiteral(";;"));
}

// A box belongs to the window that is in front: the modal window that asked,
// else the main window. Boxes shown before the main window appears are
// centred on the screen.
QWidget* QtPrompter::Owner() const {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    return parent_ && parent_->isVisible() ? parent_ : nullptr;
}

void QtPrompter::Message(Icon icon, std::string_view text, std::string_view title) {
    QMessageBox box(ToQt(icon), Q(title), Lines(text), QMessageBox::Ok, Owner());
    box.exec();
}

bool QtPrompter::AskYesNo(std::string_view text, std::string_view title) {
    QMessageBox box(QMessageBox::Question, Q(title), Lines(text), QMessageBox::Yes | QMessageBox::No, Owner());
    return box.exec() == QMessageBox::Yes;
}

Choice QtPrompter::AskChoice(std::string_view text, std::string_view first, std::string_view second,
                             std::string_view title) {
    QMessageBox box(QMessageBox::Question, Q(title), Lines(text), QMessageBox::NoButton, Owner());
    box.setObjectName(QStringLiteral("ChoiceBox"));
    QAbstractButton* a = box.addButton(Q(first), QMessageBox::AcceptRole);
    QAbstractButton* b = box.addButton(Q(second), QMessageBox::DestructiveRole);
    QAbstractButton* cancel = box.addButton(QMessageBox::Cancel);
    a->setObjectName(QStringLiteral("ChoiceFirst"));
    b->setObjectName(QStringLiteral("ChoiceSecond"));
    cancel->setObjectName(QStringLiteral("ChoiceCancel"));
    box.setDefaultButton(static_cast<QPushButton*>(a));
    box.setEscapeButton(cancel);
    box.exec();
    if (box.clickedButton() == a) return Choice::First;
    if (box.clickedButton() == b) return Choice::Second;
    return Choice::Cancel;
}

bool QtPrompter::ShowReport(std::string_view text, std::string_view title, bool askToGo) {
    ReportDialog dialog(Q(text), Q(title), askToGo, Owner());
    return dialog.exec() == QDialog::Accepted || !askToGo;
}

bool QtPrompter::ShowReportWithOption(std::string_view text, std::string_view title, std::string_view option,
                                      bool& checked, const std::function<std::string(bool)>& redo) {
    ReportDialog dialog(Q(text), Q(title), true, Owner());
    dialog.AddOption(Q(option), checked, [&](bool on) {
        checked = on;
        return Q(redo(on));
    });
    return dialog.exec() == QDialog::Accepted;
}

std::optional<std::string> QtPrompter::Input(std::string_view title, std::string_view prompt,
                                             std::string_view defaultValue) {
    QInputDialog box(Owner() ? Owner() : parent_);
    box.setWindowTitle(Q(title));
    box.setLabelText(Lines(prompt));
    box.setTextValue(Q(defaultValue));
    if (prompt.find("(Dec)") != std::string_view::npos) {
        // A decimal offset box shows what it reads the answer as.
        const QString label = Lines(prompt);
        auto echo = [&box, label](const QString& text) {
            const std::string seen = DecimalBoxEcho(U(text));
            box.setLabelText(seen.empty() ? label : label + QStringLiteral("  ") + Q(seen));
        };
        QObject::connect(&box, &QInputDialog::textValueChanged, &box, echo);
        echo(box.textValue());
    }
    if (box.exec() != QDialog::Accepted) return std::nullopt;
    return U(box.textValue());
}

std::optional<std::filesystem::path> QtPrompter::OpenFile(std::string_view title, std::string_view filter) {
    QString file = QFileDialog::getOpenFileName(parent_, Q(title), DialogFolder(), ToQtFilter(filter));
    RememberDialogFile(file);
    if (file.isEmpty()) return std::nullopt;
    return ToPath(file);
}

std::optional<std::filesystem::path> QtPrompter::SaveFile(std::string_view title, std::string_view filter) {
    QString file = QFileDialog::getSaveFileName(parent_, Q(title), DialogFolder(), ToQtFilter(filter));
    RememberDialogFile(file);
    if (file.isEmpty()) return std::nullopt;
    return ToPath(file);
}

void QtPrompter::ShowAddOffset(AddOffsetFields& form) {
    AddOffsetDialog dialog(form, Owner() ? Owner() : parent_);
    dialog.exec();
}

}  // namespace quillon::ui
