#include "ui/add_script_dialog.h"

#include "offsets/offset_text.h"
#include "ui/text_bridge.h"
#include "ui/xp_button.h"
#include "ui/tool_window.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace quillon::ui {

AddScriptDialog::AddScriptDialog(Session& session, QWidget* parent)
    : QDialog(parent, kToolWindowFlags), form_(session) {
    setObjectName(QStringLiteral("frmAddScript"));
    setWindowTitle(Q(kAddScriptCaption));
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    auto* kind = new QGroupBox(QStringLiteral("Add Text"), this);
    auto* kindLayout = new QHBoxLayout(kind);
    fromOffset_ = new QRadioButton(QStringLiteral("From Offset"), kind);
    fromOffset_->setObjectName(QStringLiteral("Option1_0"));
    fromText_ = new QRadioButton(QStringLiteral("From Text"), kind);
    fromText_->setObjectName(QStringLiteral("Option1_1"));
    kindLayout->addWidget(fromOffset_);
    kindLayout->addWidget(fromText_);
    layout->addWidget(kind);

    frame2_ = new QGroupBox(QStringLiteral("Text Offset (Hex)"), this);
    frame2_->setObjectName(QStringLiteral("Frame2"));
    auto* offsetLayout = new QVBoxLayout(frame2_);
    txtOffset_ = new QLineEdit(frame2_);
    txtOffset_->setObjectName(QStringLiteral("txtOffset"));
    offsetLayout->addWidget(txtOffset_);
    auto* echo = new QLabel(frame2_);
    echo->setObjectName(QStringLiteral("lblOffsetEcho"));
    offsetLayout->addWidget(echo);
    connect(txtOffset_, &QLineEdit::textChanged, echo,
            [echo](const QString& text) { echo->setText(Q(HexBoxEcho(U(text)))); });
    layout->addWidget(frame2_);

    frame3_ = new QGroupBox(QStringLiteral("Text"), this);
    frame3_->setObjectName(QStringLiteral("Frame3"));
    auto* textLayout = new QVBoxLayout(frame3_);
    txtText_ = new QPlainTextEdit(frame3_);
    txtText_->setObjectName(QStringLiteral("txtText"));
    textLayout->addWidget(txtText_);
    layout->addWidget(frame3_);

    check1_ = new QCheckBox(QStringLiteral("Add offset to INI file?"), this);
    check1_->setObjectName(QStringLiteral("Check1"));
    layout->addWidget(check1_);
    auto* add = new XPButton(QStringLiteral("Command1"), QStringLiteral("Add Script"), this);
    layout->addWidget(add);

    connect(fromOffset_, &QRadioButton::clicked, this, [this] {
        form_.ChooseOption(0);
        Push();
    });
    connect(fromText_, &QRadioButton::clicked, this, [this] {
        form_.ChooseOption(1);
        Push();
    });
    connect(add, &XPButton::clicked, this, [this] {
        form_.txtOffset = txtOffset_->text().toUtf8().toStdString();
        form_.txtText.SetText(FromWidgetText(txtText_->toPlainText()));
        form_.check1 = check1_->isChecked();
        form_.AddScript();
        if (form_.Closed()) accept();
    });
    FixClientSize(this, 4425, 3465);
    Push();
}

void AddScriptDialog::Push() {
    fromOffset_->setChecked(form_.option == 0);
    fromText_->setChecked(form_.option == 1);
    frame2_->setEnabled(form_.frame2Enabled);
    txtOffset_->setEnabled(form_.txtOffsetEnabled);
    frame3_->setEnabled(form_.frame3Enabled);
    txtText_->setEnabled(form_.txtText.enabled);
}

}  // namespace quillon::ui
