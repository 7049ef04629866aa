#include "ui/search_dialog.h"

#include "app/session.h"
#include "edit/tag_commands.h"
#include "edit/text_menus.h"
#include "ui/japanese_dialog.h"
#include "ui/menu_builder.h"
#include "ui/text_bridge.h"
#include "ui/xp_button.h"
#include "ui/tool_window.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QStatusBar>
#include <QTextCursor>
#include <QVBoxLayout>

namespace quillon::ui {
SearchDialog::SearchDialog(Session& session, Clipboard& clipboard, QWidget* parent)
    : QDialog(parent, kToolWindowFlags),
      session_(session),
      clipboard_(clipboard),
      form_(session) {
    setObjectName(QStringLiteral("frmSearch"));
    setWindowTitle(Q(kSearchCaption));
    setModal(true);

    auto* layout = new QVBoxLayout(this);
    auto* top = new QHBoxLayout;
    auto* find = new QGroupBox(QStringLiteral("Text to search for (Full text or Parts)"), this);
    auto* findLayout = new QVBoxLayout(find);
    text1_ = new QPlainTextEdit(find);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setContextMenuPolicy(Qt::CustomContextMenu);
    text1_->installEventFilter(this);
    findLayout->addWidget(text1_);
    top->addWidget(find, 3);

    auto* preview = new QGroupBox(QStringLiteral("Text preview"), this);
    auto* previewLayout = new QVBoxLayout(preview);
    text3_ = new QPlainTextEdit(preview);
    text3_->setObjectName(QStringLiteral("Text3"));
    text3_->setReadOnly(true);
    previewLayout->addWidget(text3_);
    top->addWidget(preview, 3);
    layout->addLayout(top);

    auto* row = new QGridLayout;
    text2_ = new QLineEdit(this);
    text2_->setObjectName(QStringLiteral("Text2"));
    text4_ = new QLineEdit(this);
    text4_->setObjectName(QStringLiteral("Text4"));
    row->addWidget(new QLabel(QStringLiteral("Offset (Dec):"), this), 0, 0);
    row->addWidget(text2_, 0, 1);
    row->addWidget(new QLabel(QStringLiteral("Length:"), this), 0, 2);
    row->addWidget(text4_, 0, 3);
    check1_ = new QCheckBox(QStringLiteral("Go to beginning of text*"), this);
    check1_->setObjectName(QStringLiteral("Check1"));
    check1_->setToolTip(QStringLiteral("Experimental"));
    row->addWidget(check1_, 1, 0, 1, 2);
    european_ = new QRadioButton(QStringLiteral("European Table"), this);
    european_->setObjectName(QStringLiteral("Option1_0"));
    european_->setToolTip(QStringLiteral("View Text using the European Table"));
    japanese_ = new QRadioButton(QStringLiteral("Japanese Table"), this);
    japanese_->setObjectName(QStringLiteral("Option1_1"));
    japanese_->setToolTip(QStringLiteral("View Text using the Japanese Table"));
    row->addWidget(european_, 1, 2);
    row->addWidget(japanese_, 1, 3);
    matchCase_ = new QCheckBox(QStringLiteral("Match case"), this);
    matchCase_->setObjectName(QStringLiteral("chkMatchCase"));
    row->addWidget(matchCase_, 2, 0, 1, 2);
    layout->addLayout(row);

    auto* buttons = new QHBoxLayout;
    search_ = new XPButton(QStringLiteral("Command1"), QStringLiteral("Search"), this);
    resume_ = new XPButton(QStringLiteral("Command2"), QStringLiteral("Resume"), this);
    writeToIni_ = new XPButton(QStringLiteral("Command3"), QStringLiteral("Write to INI"), this);
    japaneseList_ = new XPButton(QStringLiteral("Command4"), QStringLiteral("あ"), this);
    japaneseList_->setToolTip(QStringLiteral("Japanese characters"));
    jump_ = new XPButton(QStringLiteral("cmdJump"), QStringLiteral("Go to entry"), this);
    jump_->setToolTip(QStringLiteral("Show the entry of the offset file that holds this text"));
    for (XPButton* b : {search_, resume_, writeToIni_, jump_, japaneseList_}) buttons->addWidget(b);
    layout->addLayout(buttons);
    status_ = new QStatusBar(this);
    status_->setObjectName(QStringLiteral("StatusBar1"));
    status_->setSizeGripEnabled(false);
    layout->addWidget(status_);

    textMenu_ = BuildMenu(this, SearchTextMenu(), [this](const MenuItem& item) {
        Pull();
        RunTextMenuItem(item.name, form_.text1, session_.prompter, clipboard_);
        Push();
    });
    connect(text1_, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& pos) { ShowTextMenu(text1_->mapToGlobal(pos)); });
    connect(search_, &XPButton::clicked, this, [this] { Run(&SearchForm::SearchText); });
    connect(resume_, &XPButton::clicked, this, [this] { Run(&SearchForm::ResumeSearch); });
    connect(writeToIni_, &XPButton::clicked, this, [this] { Run(&SearchForm::WriteToIni); });
    connect(jump_, &XPButton::clicked, this, [this] {
        form_.JumpToEntry();
        accept();
    });
    connect(japaneseList_, &XPButton::clicked, this, [this] {
        Pull();
        JapaneseDialog list(
            [this](int byte) {
                form_.ClickJapaneseCell(byte);
                Push();
            },
            this);
        list.exec();
    });
    connect(european_, &QRadioButton::clicked, this, [this] {
        Pull();
        form_.ChooseTable(false);
        Push();
    });
    connect(japanese_, &QRadioButton::clicked, this, [this] {
        Pull();
        form_.ChooseTable(true);
        Push();
    });
    FixClientSize(this, 8355, 3015);
    Push();
}

void SearchDialog::Pull() {
    form_.text1.SetText(FromWidgetText(text1_->toPlainText()));
    QTextCursor c = text1_->textCursor();
    std::size_t start = BytePosition(form_.text1.Text(), c.selectionStart());
    std::size_t end = BytePosition(form_.text1.Text(), c.selectionEnd());
    form_.text1.Select(start, end - start);
    form_.text2 = U(text2_->text());
    form_.text4 = U(text4_->text());
    form_.check1 = check1_->isChecked();
    form_.matchCase = matchCase_->isChecked();
}

void SearchDialog::Push() {
    const QString text = ToWidgetText(form_.text1.Text());
    if (text1_->toPlainText() != text) text1_->setPlainText(text);
    QTextCursor c = text1_->textCursor();
    c.setPosition(WidgetPosition(form_.text1.Text(), form_.text1.SelectionStart()));
    c.setPosition(WidgetPosition(form_.text1.Text(), form_.text1.SelectionStart() + form_.text1.SelectionLength()),
                  QTextCursor::KeepAnchor);
    text1_->setTextCursor(c);
    text2_->setText(Q(form_.text2));
    text4_->setText(Q(form_.text4));
    text3_->setPlainText(ToWidgetText(form_.text3));
    check1_->setChecked(form_.check1);
    european_->setChecked(!form_.japaneseTable);
    japanese_->setChecked(form_.japaneseTable);
    search_->setEnabled(form_.command1Enabled);
    resume_->setEnabled(form_.command2Enabled);
    japaneseList_->setEnabled(form_.command4Enabled);
    writeToIni_->setVisible(form_.command3Visible);
    matchCase_->setChecked(form_.matchCase);
    jump_->setVisible(!form_.foundKey.empty());
    status_->showMessage(Q(form_.status));
}

void SearchDialog::Run(void (SearchForm::*command)()) {
    Pull();
    (form_.*command)();
    Push();
}

void SearchDialog::ShowTextMenu(const QPoint& globalPos) { textMenu_->popup(globalPos); }

bool SearchDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == text1_ && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Insert && (key->modifiers() & Qt::ShiftModifier)) return true;
        if (key->key() == Qt::Key_Menu) {
            ShowTextMenu(text1_->mapToGlobal(text1_->cursorRect().bottomLeft()));
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace quillon::ui
