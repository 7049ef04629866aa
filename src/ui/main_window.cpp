#include "ui/main_window.h"

#include "app/clipboard.h"
#include "app/session.h"
#include "discover/find_texts.h"
#include "discover/reference_list.h"
#include "edit/add_offset_form.h"
#include "edit/drafts.h"
#include "edit/open_rom.h"
#include "edit/save_text.h"
#include "edit/tag_commands.h"
#include "edit/tag_marks.h"
#include "edit/text_menus.h"
#include "edit/text_view.h"
#include "fit/fit_settings.h"
#include "tools/export_text.h"
#include "translate/translate_commands.h"
#include "ui/about_dialog.h"
#include "ui/add_script_dialog.h"
#include "ui/button_pictures.h"
#include "ui/explanation_dialogs.h"
#include "ui/fit_monitor.h"
#include "ui/history_dialog.h"
#include "ui/menu_builder.h"
#include "ui/progress_dialog.h"
#include "ui/references_dialog.h"
#include "ui/search_dialog.h"
#include "ui/tag_highlighter.h"
#include "ui/text_bridge.h"
#include "ui/tree_view_model.h"
#include "ui/update_dialog.h"
#include "ui/xp_button.h"

#include <quillon/errors.h>

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QContextMenuEvent>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLinearGradient>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTextBlock>
#include <QToolTip>
#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QTreeView>
#include <QWindow>

#include <cmath>
#include <cstdlib>
#if QUILLON_HAVE_XCB
#include <QGuiApplication>
#include <xcb/xcb.h>
#endif
#include <functional>

namespace quillon::ui {
namespace {


constexpr int kClientWidth = 10050;  // twips
constexpr int kClientHeight = 6885;
constexpr int kButtonLeft = 240;
constexpr int kButtonTop = 1560;  // the Tools button's top edge falls on 4440
constexpr int kButtonPitch = 960;
constexpr int kButtonWidth = 2055;
constexpr int kButtonHeight = 735;
constexpr QPoint kToolsMenuAt(1990, 4440);
// Above this many texts the sections of a new tree start collapsed.
constexpr std::size_t kExpandedTexts = 300;

// A label that draws one of the window's own glyphs.
QLabel* Hotspot(QWidget* parent, const QString& name, const QString& glyph) {
    auto* label = new QLabel(glyph, parent);
    label->setObjectName(name);
    label->setAlignment(Qt::AlignCenter);
    label->setCursor(Qt::PointingHandCursor);
    return label;
}

}  // namespace

int TwipsToPixels(int twips, double logicalDpi) {
    // 1440 twips per inch.
    return static_cast<int>(std::nearbyint(twips * logicalDpi / 1440.0));
}

MainWindow::MainWindow(Session& session, Clipboard& clipboard, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint), session_(session), clipboard_(clipboard) {
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Quillon"));
    setAttribute(Qt::WA_DeleteOnClose, false);
    progress_ = std::make_unique<ProgressDialog>(this);
    session_.progress = progress_.get();
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
}

int MainWindow::T(int twips) const { return TwipsToPixels(twips, logicalDpiX()); }

void MainWindow::BuildControls() {
    QFont small = font();
    small.setPointSizeF(8.5);
    setFont(small);

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

    const qreal dpr = devicePixelRatioF();
    save_ = new XPButton(QStringLiteral("Command2"), QStringLiteral("S&ave Text"), this);
    save_->SetPictureNormal(ButtonPicture(QStringLiteral("save"), 16, dpr));
    connect(save_, &XPButton::clicked, this, [this] {
        if (ConfirmUnencodable(session_)) SaveText(session_, fit::ConfirmFitBeforeSave);
    });

    const char* names[5] = {"XPButton1", "XPButton2", "XPButton3", "XPButton6", "XPButton4"};
    const char* captions[5] = {"&Open ROM", "&Exit", "&Search", "&Tools", "&About"};
    const char* pictures[5] = {"open", "exit", "search", "tools", "about"};
    for (int i = 0; i < 5; ++i) {
        buttons_[i] = new XPButton(QString::fromUtf8(names[i]), QString::fromUtf8(captions[i]), this);
        buttons_[i]->SetPictureNormal(ButtonPicture(QString::fromUtf8(pictures[i]), 24, dpr));
    }
    connect(buttons_[0], &XPButton::clicked, this, [this] {
        LeaveRom(session_);
        OpenRom(session_, OfferFindTexts);
        LoadDrafts(session_);
        session_.Changed();
    });
    connect(buttons_[1], &XPButton::clicked, this, [this] { ExitProgram(); });
    connect(buttons_[2], &XPButton::clicked, this, [this] {
        SearchDialog dialog(session_, clipboard_, this);
        dialog.exec();
        session_.Changed();
    });
    connect(buttons_[3], &XPButton::clicked, this, [this] { ShowToolsMenu(); });
    connect(buttons_[4], &XPButton::clicked, this, [this] {
        AboutDialog about(this);
        about.exec();
    });

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

    treeFilter_ = new QLineEdit(this);
    treeFilter_->setObjectName(QStringLiteral("txtTreeFilter"));
    treeFilter_->setPlaceholderText(QStringLiteral("Filter by section, name or offset"));
    treeFilter_->setClearButtonEnabled(true);
    treeFilter_->setFont(small);
    connect(treeFilter_, &QLineEdit::textChanged, this, [this](const QString& text) { FilterTree(text); });

    tree_ = new QTreeView(this);
    tree_->setObjectName(QStringLiteral("TreeView1"));
    tree_->setHeaderHidden(true);
    tree_->setIconSize(QSize(16, 16));
    tree_->setUniformRowHeights(true);
    tree_->setContextMenuPolicy(Qt::CustomContextMenu);
    treeModel_ = new TreeViewModel(session_.tree, tree_);
    tree_->setModel(treeModel_);
    connect(tree_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& index) {
        const auto node = treeModel_->NodeOf(index);
        if (syncing_ || !node) return;
        SelectNode(session_, *node);
    });
    // A click on the node that is already selected loads it again.
    tree_->viewport()->installEventFilter(this);
    connect(tree_, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        const auto node = treeModel_->NodeOf(index);
        if (syncing_ || !node || !pressedCurrent_) return;
        SelectNode(session_, *node);
    });
    connect(tree_, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) { ShowTreeMenu(pos); });

    offset_ = new QPushButton(QStringLiteral("O&ffset"), this);
    offset_->setObjectName(QStringLiteral("Command5"));
    connect(offset_, &QPushButton::clicked, this, [this] { ViewOffset(session_); });

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

    welcome_ = new QLabel(QStringLiteral("Welcome to Quillon"), this);
    welcome_->setObjectName(QStringLiteral("lblWelcome"));
    QFont big = small;
    big.setPointSizeF(15);
    big.setBold(true);
    welcome_->setFont(big);
    welcome_->setStyleSheet(QStringLiteral("color: #f4f8ff;"));

    minimize_ = Hotspot(this, QStringLiteral("Image1"), QStringLiteral("\u2012"));
    minimize_->setToolTip(QStringLiteral("Minimize"));
    close_ = Hotspot(this, QStringLiteral("Image4"), QStringLiteral("\u2715"));
    close_->setToolTip(QStringLiteral("Exit"));
    for (QLabel* l : {minimize_, close_}) {
        l->setStyleSheet(QStringLiteral("color: white; font-weight: bold;"));
        l->installEventFilter(this);
    }
    help_ = Hotspot(this, QStringLiteral("Image2"), QStringLiteral("?"));
    help_->setToolTip(QStringLiteral("Click for help on how to use the Menu."));
    help_->installEventFilter(this);
    help_->setStyleSheet(QStringLiteral(
        "color: white; background: #3b6fc4; border: 1px solid white; border-radius: 9px; font-weight: bold;"));

    // The labels on the light editor panel are dark blue.
    for (QWidget* w : {static_cast<QWidget*>(repoint_)})
        w->setStyleSheet(QStringLiteral("color: #1c3a66;"));

    textMenu_ = BuildMenu(this, quillon::TextMenu(), [this](const MenuItem& item) { RunTextMenu(Q(item.name)); });
    toolsMenu_ = BuildMenu(this, quillon::ToolsMenu(), [this](const MenuItem& item) {
        if (item.action == MenuAction::Update) {
            UpdateDialog update(session_.prompter, session_.programFolder, QUILLON_UPDATE_BASE_URL, this);
            update.exec();
            return;
        }
        if (RunHistoryItem(item.action, session_, this)) return;
        if (item.action == MenuAction::FindTexts) {
            FindTextsInRom(session_, *progress_);
            return;
        }
        if (item.action == MenuAction::ExportAll) ExportAllTexts(session_, *progress_);
        if (item.action == MenuAction::ImportTranslation) ImportTranslation(session_, *progress_);
        if (item.action != MenuAction::TextScript) return;
        AddScriptDialog dialog(session_, this);
        dialog.exec();
        session_.Changed();
    });
    AddHistoryShortcuts(this, toolsMenu_);
    treeMenu_ = BuildMenu(this, quillon::TreeViewMenu(), [this](const MenuItem& item) {
        if (item.action == MenuAction::AddOffset)
            quillon::ShowAddOffset(session_);
        else if (item.action == MenuAction::Delete)
            DeleteOffset(session_);
    });
}

void MainWindow::PlaceControls() {
    setFixedSize(T(kClientWidth), T(kClientHeight));
    auto place = [this](QWidget* w, int x, int y, int width, int height) { w->setGeometry(T(x), T(y), T(width), T(height)); };
    place(welcome_, 360, 300, 6000, 520);
    place(minimize_, 9060, 120, 360, 300);
    place(close_, 9480, 120, 360, 300);
    for (int i = 0; i < 5; ++i)
        place(buttons_[i], kButtonLeft, kButtonTop + i * kButtonPitch, kButtonWidth, kButtonHeight);
    place(help_, kButtonLeft + 60, 6330, 285, 285);
    place(treeFilter_, 2520, 1080, 2895, 330);
    place(tree_, 2520, 1470, 2895, 5100);
    // A note on bytes the editor can't reproduce takes the editor's last line.
    // The restore bar of a draft takes the editor's first line.
    const int bar = draftBar_->isVisibleTo(this) ? 360 : 0;
    place(text1_, 5580, 1080 + bar, 4200, (textNote_->isVisibleTo(this) ? 2430 : 2700) - bar);
    place(textNote_, 5580, 3510, 4200, 270);
    place(textBorder_, 5580, 1080, 4200, 2700);
    textBorder_->setGeometry(textBorder_->geometry().adjusted(-2, -2, 2, 2));
    place(draftBar_, 5580, 1080, 4200, 330);
    place(repoint_, 5580, 3840, 4200, 270);
    place(check1_, 5580, 4170, 2400, 300);
    place(european_, 5580, 4500, 2040, 300);
    place(japanese_, 7680, 4500, 2100, 300);
    place(save_, 5580, 4920, 2040, 420);
    place(offset_, 7740, 4920, 2040, 420);
    place(frame1_, 5580, 5460, 4200, 1110);
    place(label2_, 150, 300, 1900, 270);
    place(label4_, 2100, 300, 1950, 270);
    place(label1_, 150, 660, 1900, 270);
    place(label3_, 2100, 660, 900, 270);
    place(pointers_, 3000, 660, 1100, 270);
    DoTransparency();
}

QPainterPath MainWindow::Outline() const {
    // A rounded rectangle from (5, 5) to the far edges with 25-pixel corners.
    const qreal k = logicalDpiX() / 96.0;
    const qreal inset = 5 * k, corner = 25 * k / 2;
    QPainterPath path;
    path.addRoundedRect(QRectF(inset, inset, width() - inset, height() - inset), corner, corner);
    return path;
}

void MainWindow::DoTransparency() {
    // Where the screen composites windows the corners are painted smooth on
    // a translucent window; elsewhere the window region cuts them.
    if (smoothCorners_)
        clearMask();
    else
        setMask(QRegion(Outline().toFillPolygon().toPolygon()));
}

void MainWindow::SetSmoothCorners(bool smooth) {
    smoothCorners_ = smooth;
    setAttribute(Qt::WA_TranslucentBackground, smooth);
    DoTransparency();
    update();
}

bool ScreenComposites() {
    const QString platform = QGuiApplication::platformName();
    if (platform == QLatin1String("wayland") || platform == QLatin1String("windows") ||
        platform == QLatin1String("cocoa"))
        return true;
#if QUILLON_HAVE_XCB
    if (platform == QLatin1String("xcb")) {
        // A compositing manager owns the selection _NET_WM_CM_S<screen>.
        auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
        xcb_connection_t* c = x11 ? x11->connection() : nullptr;
        if (!c) return false;
        const char name[] = "_NET_WM_CM_S0";
        xcb_intern_atom_reply_t* atom =
            xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, sizeof name - 1, name), nullptr);
        if (!atom) return false;
        xcb_get_selection_owner_reply_t* owner =
            xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, atom->atom), nullptr);
        const bool composited = owner && owner->owner != XCB_NONE;
        std::free(owner);
        std::free(atom);
        return composited;
    }
#endif
    return false;
}

QPoint MainWindow::ToolsMenuPoint() const { return QPoint(T(kToolsMenuAt.x()), T(kToolsMenuAt.y())); }

void MainWindow::ShowToolsMenu() { toolsMenu_->popup(mapToGlobal(ToolsMenuPoint())); }

void MainWindow::paintEvent(QPaintEvent*) {
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    if (smoothCorners_) p.setClipPath(Outline());  // antialiased edges over the translucent window
    QLinearGradient sea(0, 0, 0, height());
    sea.setColorAt(0, QColor(28, 64, 120));
    sea.setColorAt(0.55, QColor(44, 104, 168));
    sea.setColorAt(1, QColor(22, 52, 96));
    p.fillRect(rect(), sea);
    // A light band behind the heading and a panel behind the editor.
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(255, 255, 255, 28));
    p.drawRect(QRectF(0, T(960) - 6, width(), 2));
    p.setBrush(QColor(232, 240, 251));
    p.drawRoundedRect(QRectF(T(5460), T(990), T(4440), T(5700)), 8, 8);
    // The outline follows the window's rounded shape.
    const qreal k = logicalDpiX() / 96.0;
    p.setBrush(Qt::NoBrush);
    p.setPen(QPen(QColor(200, 220, 255), 2));
    p.drawRoundedRect(QRectF(5 * k + 1, 5 * k + 1, width() - 5 * k - 2, height() - 5 * k - 2), 12.5 * k, 12.5 * k);
}

bool MainWindow::OnBackground(QPoint pos) const {
    QWidget* hit = childAt(pos);
    return !hit || hit == welcome_ || hit == frame1_ || hit->parentWidget() == frame1_ || hit == repoint_ ||
           hit == textBorder_;
}

void MainWindow::mousePressEvent(QMouseEvent* event) {
    // A press on the background, with any button, drags the window once the
    // pointer moves with the button held: a click alone (a touchpad sends
    // press and release at once) never hands the window to the window manager.
    dragArmed_ = OnBackground(event->position().toPoint());
    dragFrom_ = event->globalPosition().toPoint();
    event->accept();
}

void MainWindow::mouseMoveEvent(QMouseEvent* event) {
    if (!dragArmed_ || event->buttons() == Qt::NoButton) {
        dragArmed_ = false;
        return;
    }
    if ((event->globalPosition().toPoint() - dragFrom_).manhattanLength() < QApplication::startDragDistance()) return;
    dragArmed_ = false;
    if (systemMove)
        systemMove();
    else if (QWindow* w = windowHandle())
        w->startSystemMove();
}

void MainWindow::mouseReleaseEvent(QMouseEvent* event) {
    dragArmed_ = false;
    event->accept();
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    DoTransparency();
}

bool MainWindow::event(QEvent* event) {
    // A move to a screen of another DPI resizes and reshapes the window.
    if (event->type() == QEvent::ScreenChangeInternal) {
        bool result = QWidget::event(event);
        PlaceControls();
        return result;
    }
    return QWidget::event(event);
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == text1_ && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        std::int16_t code = 0;
        if (key->key() == Qt::Key_Insert) code = 45;
        if (key->key() == Qt::Key_Menu) code = 93;
        const std::int16_t pressed = code;
        bool openMenu = UpdateRepointCounter(session_, code, key->modifiers() & Qt::ShiftModifier);
        session_.Changed();
        if (openMenu) {
            ShowTextMenu(text1_->viewport()->mapToGlobal(text1_->cursorRect().bottomLeft()));
            return true;
        }
        if (pressed != 0 && code == 0) return true;  // cancelled (Shift+Insert)
        return false;
    }
    if (watched == text1_->viewport() &&
        (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
        // Only mnuBP opens, and the press goes no further.
        text1_->setEnabled(false);
        text1_->setEnabled(true);
        text1_->setFocus(Qt::MouseFocusReason);
        ShowTextMenu(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
        return true;
    }
    if (watched == text1_->viewport() && event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QString tip = TagHighlighter::ExplainAt(*text1_, text1_->cursorForPosition(help->pos()).position());
        if (tip.isEmpty()) return false;
        QToolTip::showText(help->globalPos(), tip, text1_->viewport());
        return true;
    }
    if (watched == tree_->viewport() && event->type() == QEvent::MouseButtonPress) {
        const QModelIndex hit = tree_->indexAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        pressedCurrent_ = hit.isValid() && hit == tree_->currentIndex();
    }
    const bool hotspot = watched == close_ || watched == help_ || watched == minimize_;
    if (hotspot && (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick))
        return true;  // hotspots are not part of the dragging background
    if (hotspot && event->type() == QEvent::MouseButtonRelease) {
        // Hotspots act on a left click released over them.
        auto* mouse = static_cast<QMouseEvent*>(event);
        auto* spot = static_cast<QWidget*>(watched);
        if (mouse->button() != Qt::LeftButton || !spot->rect().contains(mouse->position().toPoint())) return true;
        if (watched == close_) {
            ExitProgram();
            return true;
        }
        if (watched == help_) {
            MenuExplanationDialog help(session_.prompter, this);
            help.exec();
            return true;
        }
        if (watched == minimize_) {
            showMinimized();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void MainWindow::ExitProgram() {
    // Every window closes without a question; an unsaved edit is kept as a draft.
    LeaveRom(session_);
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != this) w->close();
    close();
}

void MainWindow::PushTextToSession() {
    TextBox& box = session_.controls.text1;
    box.SetText(FromWidgetText(text1_->toPlainText()));
    PushSelectionToSession();
    UpdateRepointCounter(session_);
    session_.Changed();
}

void MainWindow::PushSelectionToSession() {
    TextBox& box = session_.controls.text1;
    QTextCursor c = text1_->textCursor();
    std::size_t start = BytePosition(box.Text(), c.selectionStart());
    std::size_t end = BytePosition(box.Text(), c.selectionEnd());
    box.Select(start, end - start);
}

void MainWindow::RunTextMenu(const QString& name) {
    PushSelectionToSession();
    if (name == QStringLiteral("mnuReferences")) {
        ReferencesDialog references(session_, clipboard_, this);
        references.exec();
        return;
    }
    RunTextMenuItem(name.toStdString(), session_.controls.text1, session_.prompter, clipboard_,
                    [this] { ExportText(session_); });
    UpdateRepointCounter(session_);
    session_.Changed();
}

void MainWindow::ShowTextMenu(const QPoint& globalPos) {
    PushSelectionToSession();
    textMenu_->popup(globalPos);
}

void MainWindow::ShowTreeMenu(const QPoint& pos) {
    // A right-click selects and loads the node before the menu opens; on
    // empty space it does nothing.
    const auto node = treeModel_->NodeOf(tree_->indexAt(pos));
    if (!node) return;
    SelectNode(session_, *node);
    treeMenu_->popup(tree_->viewport()->mapToGlobal(pos));
}

void MainWindow::Refresh() {
    if (syncing_) return;
    syncing_ = true;
    const MainControls& c = session_.controls;

    const std::string& text = c.text1.Text();
    if (FromWidgetText(text1_->toPlainText()) != text) text1_->setPlainText(ToWidgetText(text));
    const int start = WidgetPosition(text, c.text1.SelectionStart());
    const int end = WidgetPosition(text, c.text1.SelectionStart() + c.text1.SelectionLength());
    QTextCursor cursor = text1_->textCursor();
    if (cursor.selectionStart() != start || cursor.selectionEnd() != end) {
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        text1_->setTextCursor(cursor);
    }
    text1_->setEnabled(c.text1.enabled);
    text1_->setReadOnly(c.text1.readOnly);

    check1_->setChecked(c.specialDialog);
    check1_->setEnabled(c.specialDialogEnabled);
    (c.japaneseTable ? japanese_ : european_)->setChecked(true);
    european_->setEnabled(c.tableEnabled);
    japanese_->setEnabled(c.tableEnabled);
    save_->setEnabled(c.saveEnabled);
    const std::string& whyNot = !session_.readOnlyReason.empty() ? session_.readOnlyReason : c.saveRefusal;
    save_->setToolTip(Q(whyNot));
    if (textNote_->isVisibleTo(this) != !c.roundTripNote.empty()) {
        textNote_->setVisible(!c.roundTripNote.empty());
        PlaceControls();
    }
    textNote_->setToolTip(Q(c.roundTripNote));
    buttons_[2]->setEnabled(c.searchEnabled);
    tree_->setEnabled(c.treeEnabled);
    treeFilter_->setEnabled(c.treeEnabled);
    if (QAction* script = FindAction(toolsMenu_, QStringLiteral("mnuTextScript")))
        script->setEnabled(c.textScriptEnabled);
    if (QAction* find = FindAction(toolsMenu_, QStringLiteral("mnuFindTexts"))) find->setEnabled(c.textScriptEnabled);
    for (const char* name : {"mnuExportAll", "mnuImportTranslation"})
        if (QAction* a = FindAction(toolsMenu_, QString::fromLatin1(name))) a->setEnabled(c.textScriptEnabled);
    label3_->setText(Q(c.offsetCaption));
    // One pass over the ROM per text shown, not per change of the editor.
    if (const std::string of = session_.romPath.string() + '\n' + c.offsetCaption; of != pointersOf_) {
        pointersOf_ = of;
        try {
            pointers_->setText(Q(discover::PointersCaption(session_.romPath, c.offsetCaption)));
        } catch (const FileError&) {
            pointers_->clear();
        }
    }
    label4_->setText(Q(c.gameCode));
    repoint_->setText(Q(c.repointCaption));
    draftBar_->setText(QStringLiteral("Unsaved changes from %1 - <a href=\"restore\">Restore</a> / "
                                      "<a href=\"discard\">Discard</a>")
                           .arg(Q(c.draftTime).toHtmlEscaped()));
    if (c.draftTime.empty() != draftBar_->isHidden()) {
        draftBar_->setVisible(!c.draftTime.empty());
        PlaceControls();
    }
    RefreshTree();
    syncing_ = false;
}

void MainWindow::RefreshTree() {
    const TreeModel& tree = session_.tree;
    bool rebuilt = false;
    if (tree.Generation() != treeGeneration_) {
        treeGeneration_ = tree.Generation();
        // A new reading of the same file keeps the view as it is.
        std::size_t signature = std::hash<std::size_t>{}(tree.Nodes().size());
        for (std::size_t i = 0; i < tree.Nodes().size(); ++i) {
            const TreeNode& n = tree.Nodes()[i];
            signature = (signature * 1000003u) ^ std::hash<std::string_view>{}(n.key) ^
                        (std::hash<std::string_view>{}(n.text) * 31u) ^ (std::hash<std::string_view>{}(n.image) * 7u) ^
                        (std::hash<std::string_view>{}(tree.OffsetOf(i)) * 131u);
        }
        rebuilt = signature != treeSignature_;
        treeSignature_ = signature;
    }
    if (rebuilt) {
        // Sections the user opened in a large tree stay open when the same file is read again.
        const std::string file = session_.OffsetFile().string();
        const bool keep = file == treeFile_ && treeModel_->TextCount() > kExpandedTexts;
        const QStringList expanded = keep ? ExpandedSections() : QStringList();
        treeFile_ = file;
        treeModel_->Reload();
        ExpandSections(expanded);
    }
    const QModelIndex selected = tree.Selected() ? treeModel_->IndexOf(*tree.Selected()) : QModelIndex();
    if (tree_->currentIndex() != selected) {
        tree_->selectionModel()->setCurrentIndex(selected, QItemSelectionModel::ClearAndSelect);
        ShowSelectedNode();
    }
    MarkDrafts();
}

void MainWindow::FilterTree(const QString& text) {
    if (!treeModel_->Filtering()) expandedBeforeFilter_ = ExpandedSections();
    const bool wasSyncing = syncing_;
    syncing_ = true;  // the rows change under the selection; the session's choice stays
    treeModel_->SetFilter(text);
    ExpandSections(expandedBeforeFilter_);
    const QModelIndex selected =
        session_.tree.Selected() ? treeModel_->IndexOf(*session_.tree.Selected()) : QModelIndex();
    tree_->selectionModel()->setCurrentIndex(selected, QItemSelectionModel::ClearAndSelect);
    ShowSelectedNode();
    syncing_ = wasSyncing;
}

QStringList MainWindow::ExpandedSections() const {
    QStringList names;
    for (int row = 0, rows = treeModel_->rowCount(); row < rows; ++row) {
        const QModelIndex section = treeModel_->index(row, 0);
        if (tree_->isExpanded(section)) names << section.data().toString();
    }
    return names;
}

void MainWindow::ExpandSections(const QStringList& names) {
    // A filtered tree and a small one show all their texts; a large one
    // opens with its sections collapsed and keeps those the user opened.
    if (treeModel_->Filtering() || treeModel_->TextCount() <= kExpandedTexts) {
        tree_->expandAll();
        return;
    }
    if (names.isEmpty()) return;
    for (int row = 0, rows = treeModel_->rowCount(); row < rows; ++row) {
        const QModelIndex section = treeModel_->index(row, 0);
        if (names.contains(section.data().toString())) tree_->expand(section);
    }
}

void MainWindow::ShowSelectedNode() {
    const QModelIndex current = tree_->currentIndex();
    if (!current.isValid()) return;
    if (current.parent().isValid()) tree_->expand(current.parent());
    tree_->scrollTo(current);
}

void MainWindow::MarkDrafts() {
    // Entries with a draft show in italics.
    std::string marks = std::to_string(session_.tree.Generation());
    for (const auto& [entry, draft] : session_.drafts) marks.append(1, '\0').append(entry);
    if (marks == markedDrafts_) return;
    markedDrafts_ = marks;
    std::vector<std::size_t> marked;
    const auto& nodes = session_.tree.Nodes();
    for (const auto& [entry, draft] : session_.drafts) {
        const auto cut = entry.find('\n');
        const std::string_view section = std::string_view(entry).substr(0, cut);
        const std::string_view key = cut == std::string::npos ? std::string_view() : std::string_view(entry).substr(cut + 1);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const auto& up = nodes[i].parent;
            if (up && *up < nodes.size() && nodes[i].text == key && nodes[*up].text == section) marked.push_back(i);
        }
    }
    treeModel_->SetDrafts(marked);
}

}  // namespace quillon::ui
