#include "ui/main_window.h"

#include "app/session.h"
#include "edit/drafts.h"
#include "edit/text_view.h"
#include "ui/dialog_folder.h"
#include "ui/fit_monitor.h"
#include "ui/progress_dialog.h"
#include "ui/tag_highlighter.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QRadioButton>

namespace quillon::ui {

MainWindow::MainWindow(Session& session, Clipboard& clipboard, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint), session_(session), clipboard_(clipboard) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Quillon"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    progress_ = std::make_unique<ProgressDialog>(this);
    session_.progress = progress_.get();
    // File dialogs open beside the ROM until one is used.
    ForgetDialogFolder();
    SetDialogRom([this] { return session_.romPath; });
    BuildControls();
    PlaceControls();
    SetSmoothCorners(ScreenComposites());
    session_.OnChanged([this] { Refresh(); });
    Refresh();
    new FitMonitor(session_, text1_, repoint_, textMenu_, toolsMenu_, this);  // line widths in the game's font
    // The editor's own filter goes first: a marked tag's explanation before the line width.
    text1_->viewport()->installEventFilter(this);
}

MainWindow::~MainWindow() {
    if (session_.progress == progress_.get()) session_.progress = nullptr;
    SetDialogRom({});
}

int MainWindow::T(int twips) const { return TwipsToPixels(twips, logicalDpiX()); }

void MainWindow::BuildControls() {
    // In the order in which the window creates its controls.
    QFont small = font();
    small.setPointSizeF(8.5);
    setFont(small);
    BuildEditor();
    BuildButtons();
    BuildTables();
    BuildTree();
    BuildOffsetButton();
    BuildInformation();
    BuildChrome();
    BuildMenus();
}

void MainWindow::BuildEditor() {
    text1_ = new QPlainTextEdit(this);
    text1_->setObjectName(QStringLiteral("Text1"));
    text1_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    // The right button opens mnuBP from the mouse-down handler; the box's own
    // context menu never opens.
    text1_->setContextMenuPolicy(Qt::PreventContextMenu);
    text1_->setTabChangesFocus(true);  // a tab has no byte
    new TagHighlighter(text1_);
    text1_->installEventFilter(this);
    text1_->viewport()->installEventFilter(this);
    connect(text1_, &QPlainTextEdit::textChanged, this, [this] {
        if (!syncing_) PushTextToSession();
    });
    connect(text1_, &QPlainTextEdit::cursorPositionChanged, this, [this] {
        if (!syncing_) PushSelectionToSession();
    });
    connect(text1_, &QPlainTextEdit::selectionChanged, this, [this] {
        if (!syncing_) PushSelectionToSession();
    });

    check1_ = new QCheckBox(QStringLiteral("Special Dialog*"), this);
    check1_->setObjectName(QStringLiteral("Check1"));
    check1_->setToolTip(QStringLiteral(
        "This is a certain type of Dialog where only a specific break command will be accepted. (For example the "
        "Prolouge in Fire-Red/Leaf-Green)"));
    connect(check1_, &QCheckBox::clicked, this, [this](bool on) {
        session_.controls.specialDialog = on;
        UpdateRepointCounter(session_);
        session_.Changed();
    });

}

void MainWindow::BuildTables() {
    european_ = new QRadioButton(QStringLiteral("European Table"), this);
    european_->setObjectName(QStringLiteral("Option1_0"));
    european_->setToolTip(QStringLiteral("Use the European Table file (Editing possible)"));
    japanese_ = new QRadioButton(QStringLiteral("Japanese Table"), this);
    japanese_->setObjectName(QStringLiteral("Option1_1"));
    japanese_->setToolTip(QStringLiteral("Use the Japanese Table file (Editing impossible)"));
    auto* group = new QButtonGroup(this);
    group->addButton(european_, 0);
    group->addButton(japanese_, 1);
    connect(european_, &QRadioButton::clicked, this, [this] { ChooseTable(session_, false); });
    connect(japanese_, &QRadioButton::clicked, this, [this] { ChooseTable(session_, true); });
}

void MainWindow::BuildInformation() {
    const QFont small = font();
    frame1_ = new QGroupBox(QStringLiteral("Information"), this);
    frame1_->setObjectName(QStringLiteral("Frame1"));
    label2_ = new QLabel(QStringLiteral("Loaded ROM:"), frame1_);
    label2_->setObjectName(QStringLiteral("Label2"));
    label4_ = new QLabel(frame1_);
    label4_->setObjectName(QStringLiteral("Label4"));
    label1_ = new QLabel(QStringLiteral("Text offset (Hex):"), frame1_);
    label1_->setObjectName(QStringLiteral("Label1"));
    label3_ = new QLabel(frame1_);
    label3_->setObjectName(QStringLiteral("Label3"));
    pointers_ = new QLabel(frame1_);
    pointers_->setObjectName(QStringLiteral("lblPointers"));
    pointers_->setToolTip(QStringLiteral("Places in the ROM that hold the pointer to this text"));
    QFont bold = small;
    bold.setBold(true);
    label4_->setFont(bold);
    label3_->setFont(bold);

    repoint_ = new QLabel(this);
    repoint_->setObjectName(QStringLiteral("lblRepoint"));
    textNote_ = new QLabel(QStringLiteral("\u26A0 Some bytes of this text can't be saved unchanged."), this);
    textNote_->setObjectName(QStringLiteral("lblTextNote"));
    textNote_->setStyleSheet(QStringLiteral("color: #7a4b00; background: #fff3c4; padding-left: 3px;"));
    textNote_->hide();

    // A frame drawn behind the editor; its caption stays hidden under it.
    textBorder_ = new QLabel(QStringLiteral("Textbox-Border"), this);
    textBorder_->setObjectName(QStringLiteral("lblTextborder"));
    textBorder_->setProperty("backdrop", true);
    textBorder_->setStyleSheet(QStringLiteral("color: transparent; background: white; border: 1px solid #7f9db9;"));
    textBorder_->lower();

    draftBar_ = new QLabel(this);
    draftBar_->setObjectName(QStringLiteral("lblDraft"));
    draftBar_->setStyleSheet(QStringLiteral("background: #fff4c2; color: #4a3a00; border: 1px solid #d9b84a; padding: 0 4px;"));
    draftBar_->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    draftBar_->hide();
    connect(draftBar_, &QLabel::linkActivated, this, [this](const QString& link) {
        if (link == QLatin1String("restore"))
            RestoreDraft(session_);
        else
            DiscardDraft(session_);
    });
    // The labels on the light editor panel are dark blue.
    repoint_->setStyleSheet(QStringLiteral("color: #1c3a66;"));
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (EditorEvent(watched, event) || TreeEvent(watched, event) || HotspotEvent(watched, event)) return true;
    return QWidget::eventFilter(watched, event);
}

}  // namespace quillon::ui
