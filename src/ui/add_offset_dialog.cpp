#include "ui/add_offset_dialog.h"

#include "ui/text_bridge.h"
#include "ui/tool_window.h"
#include "ui/xp_button.h"

#include "app/add_offset_fields.h"
#include "offsets/offset_text.h"

#include <QComboBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace quillon::ui {
AddOffsetDialog::AddOffsetDialog(AddOffsetFields& form, QWidget* parent)
    : QDialog(parent, kToolWindowFlags), form_(form) {
    setObjectName(QStringLiteral("frmAddOffset"));
    setWindowTitle(QStringLiteral("Add Offset to INI"));
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    auto* sectionFrame = new QGroupBox(QStringLiteral("Section Name (Enter or Choose)"), this);
    auto* sectionLayout = new QVBoxLayout(sectionFrame);
    section_ = new QLineEdit(sectionFrame);
    section_->setObjectName(QStringLiteral("Text1"));
    sections_ = new QComboBox(sectionFrame);
    sections_->setObjectName(QStringLiteral("Combo1"));
    sectionLayout->addWidget(section_);
    sectionLayout->addWidget(sections_);
    layout->addWidget(sectionFrame);

    auto* nameFrame = new QGroupBox(QStringLiteral("Text Name (Enter)"), this);
    auto* nameLayout = new QVBoxLayout(nameFrame);
    name_ = new QLineEdit(nameFrame);
    name_->setObjectName(QStringLiteral("Text2"));
    nameLayout->addWidget(name_);
    layout->addWidget(nameFrame);

    auto* offsetFrame = new QGroupBox(QStringLiteral("Text Offset (Enter)"), this);
    auto* offsetColumn = new QVBoxLayout(offsetFrame);
    auto* offsetLayout = new QHBoxLayout;
    offset_ = new QLineEdit(offsetFrame);
    offset_->setObjectName(QStringLiteral("Text3"));
    offsetLayout->addWidget(offset_);
    offsetLayout->addWidget(new QLabel(QStringLiteral("(Decimal)"), offsetFrame));
    offsetColumn->addLayout(offsetLayout);
    // What the box was read as: the same offset in the other base.
    auto* echo = new QLabel(offsetFrame);
    echo->setObjectName(QStringLiteral("lblOffsetEcho"));
    offsetColumn->addWidget(echo);
    connect(offset_, &QLineEdit::textChanged, echo,
            [echo](const QString& text) { echo->setText(Q(DecimalBoxEcho(U(text)))); });
    layout->addWidget(offsetFrame);

    add_ = new XPButton(QStringLiteral("Command1"), QStringLiteral("&Add to INI"), this);
    cancel_ = new XPButton(QStringLiteral("Command2"), QStringLiteral("&Cancel"), this);
    layout->addWidget(add_);
    layout->addWidget(cancel_);

    // The combo starts on no entry so that the first choice is a real one.
    for (const std::string& s : form_.Sections()) sections_->addItem(Q(s));
    sections_->setCurrentIndex(-1);
    Push();

    connect(sections_, &QComboBox::activated, this, [this](int index) {
        if (index < 0) return;
        Pull();
        form_.ChooseSection(static_cast<std::size_t>(index));
        Push();
    });
    connect(add_, &XPButton::clicked, this, [this] {
        Pull();
        if (form_.Add()) accept();
    });
    connect(cancel_, &XPButton::clicked, this, &QDialog::reject);

    FixClientSize(this, 2760, 4140);
}

void AddOffsetDialog::keyPressEvent(QKeyEvent* event) {
    // Enter adds, as "&Add to INI" does.
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        add_->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

void AddOffsetDialog::Pull() {
    // A name shown as it came keeps its bytes; a typed one goes into the file
    // as the file holds names.
    auto bytes = [](const std::string& kept, const QString& shown) {
        return Q(kept) == shown ? kept : NameBytesOf(shown);
    };
    form_.sectionName = bytes(form_.sectionName, section_->text());
    form_.textName = bytes(form_.textName, name_->text());
    if (form_.offsetEnabled) form_.offsetDecimal = U(offset_->text());
}

void AddOffsetDialog::Push() {
    section_->setText(Q(form_.sectionName));
    name_->setText(Q(form_.textName));
    offset_->setText(Q(form_.offsetDecimal));
    offset_->setEnabled(form_.offsetEnabled);
    cancel_->setEnabled(form_.cancelEnabled);
}

}  // namespace quillon::ui
