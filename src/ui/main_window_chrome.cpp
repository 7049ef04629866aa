#include "ui/main_window.h"

#include "app/session.h"
#include "edit/drafts.h"
#include "ui/explanation_dialogs.h"
#include "ui/xp_button.h"

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeView>
#include <QWindow>

#include <cmath>
#include <cstdlib>
#if QUILLON_HAVE_XCB
#include <QGuiApplication>
#include <xcb/xcb.h>
#endif

// The window's frame: its fixed size and rounded shape, the places of its
// controls, the background that drags it, the hotspots and leaving.
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

void MainWindow::BuildChrome() {
    const QFont small = font();
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

bool MainWindow::HotspotEvent(QObject* watched, QEvent* event) {
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
    return false;
}

void MainWindow::ExitProgram() {
    // Every window closes without a question; an unsaved edit is kept as a draft.
    LeaveRom(session_);
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w != this) w->close();
    close();
}

}  // namespace quillon::ui
