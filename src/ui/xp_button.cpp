#include "ui/xp_button.h"

#include "ui/xp_button_rules.h"
#include "ui/xp_button_style.h"

#include <QBitmap>
#include <QCursor>
#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace quillon::ui {

XPButton::XPButton(const QString& name, QWidget* parent) : XPButton(name, name, parent) {}

XPButton::XPButton(const QString& name, const QString& caption, QWidget* parent) : QAbstractButton(parent) {
    setObjectName(name);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);  // hover starts on a move without a button
    props_ = NewXPButtonProperties(caption);
    hoverTimer_.setInterval(3);
    connect(&hoverTimer_, &QTimer::timeout, this, &XPButton::OnHoverTick);
    // QAbstractButton::click() emits clicked() on its own; Click follows it
    // there too. This is the first slot of clicked(), so it runs first.
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (raisingClick_) {
            raisingClick_ = false;
            return;
        }
        AfterClicked();
        emit Click();
    });
    Apply();
    if (props_.colorScheme != 2) props_.foreColor = ToBgr(colors_.fore);
}

void XPButton::Apply() {
    setEnabled(props_.enabled);
    QAbstractButton::setFont(props_.font);
    QAbstractButton::setText(props_.caption);
    ComputeAccessKey();
    if (props_.mousePointer == 0)
        unsetCursor();
    else
        setCursor(CursorForPointer(props_.mousePointer, props_.mouseIcon));
    ComputeColors();
    UpdateOutline();
    if (props_.buttonType == 11) CaptureBackground();
    updateGeometry();
    Redraw();
}

void XPButton::Changed(const char* key) {
    Redraw();
    emit PropertyChanged(QString::fromLatin1(key));
}

void XPButton::Redraw() {
    if (shown_) update();
}

void XPButton::ComputeColors() {
    if (props_.colorScheme == 2) {
        colors_ = {ToQColor(props_.backColor), ToQColor(props_.backOver), ToQColor(props_.foreColor),
                   ToQColor(props_.foreOver)};
        return;
    }
    // The container's ground, the system's button text, and its link colour
    // for the hover caption. The palette is the one inherited from the container.
    const QPalette& pal = palette();
    const QColor ground = pal.color(QPalette::Active, QPalette::Base);
    colors_ = {ground, ground, pal.color(QPalette::Active, QPalette::ButtonText),
               pal.color(QPalette::Active, QPalette::Link)};
}

void XPButton::ComputeAccessKey() {
    keyedCaption_ = text();
    const int at = AccessKeyPosition(keyedCaption_);
    accessKey_ = at < 0 ? QChar() : keyedCaption_[at].toLower();
    // The one shortcut of the button is Alt with the access key; its event
    // is handled in event() so that exactly one Click follows.
    setShortcut(at < 0 ? QKeySequence()
                       : QKeySequence(QKeyCombination(Qt::AltModifier,
                                                      static_cast<Qt::Key>(keyedCaption_[at].toUpper().unicode()))));
}

void XPButton::UpdateOutline() {
    const int style = props_.buttonType;
    if (style == 3 || style == 4 || style == 13)
        setMask(XPButtonOutline(style, size()));
    else
        clearMask();
}

void XPButton::CaptureBackground() {
    QWidget* container = parentWidget();
    if (!container || width() <= 0 || height() <= 0) {
        background_ = QPixmap();
        return;
    }
    // The container and the siblings under the control, without the control.
    capturing_ = true;
    background_ = container->grab(geometry());
    capturing_ = false;
}

// Properties.

void XPButton::SetButtonType(int style) {
    if (style < 1 || style > 13) return;
    props_.buttonType = style;
    UpdateOutline();
    if (style == 11) CaptureBackground();
    updateGeometry();
    Changed("BTYPE");
}

void XPButton::SetCaption(const QString& caption) {
    props_.caption = caption;
    QAbstractButton::setText(caption);
    ComputeAccessKey();
    updateGeometry();
    Changed("TX");
}

void XPButton::SetEnabled(bool enabled) {
    props_.enabled = enabled;
    setEnabled(enabled);
    Changed("ENAB");
}

void XPButton::SetFont(const QFont& f) {
    props_.font = f;
    QAbstractButton::setFont(f);
    updateGeometry();
    Changed("FONT");
}

void XPButton::SetFontBold(bool on) {
    EditFont([on](QFont& f) { f.setBold(on); });
}

void XPButton::SetFontItalic(bool on) {
    EditFont([on](QFont& f) { f.setItalic(on); });
}

void XPButton::SetFontUnderline(bool on) {
    EditFont([on](QFont& f) { f.setUnderline(on); });
}

void XPButton::SetFontSize(qreal points) {
    if (points > 0) EditFont([points](QFont& f) { f.setPointSizeF(points); });
}

void XPButton::SetFontName(const QString& family) {
    EditFont([&family](QFont& f) { f.setFamily(family); });
}

void XPButton::SetColorScheme(int scheme) {
    props_.colorScheme = scheme;
    ComputeColors();
    Changed("COLTYPE");
}

void XPButton::SetShowFocusRect(bool on) { Store(props_.showFocusRect, on, "FOCUSR"); }

void XPButton::SetColor(BgrColor& field, BgrColor color, const char* key, BgrColor* overField,
                        const char* overKey) {
    field = color;
    // While designing, the normal colour also becomes the hover colour.
    if (designMode_ && overField) {
        *overField = color;
        emit PropertyChanged(QString::fromLatin1(overKey));
    }
    ComputeColors();
    Changed(key);
}

void XPButton::SetBackColor(BgrColor color) { SetColor(props_.backColor, color, "BCOL", &props_.backOver, "BCOLO"); }
void XPButton::SetBackOver(BgrColor color) { SetColor(props_.backOver, color, "BCOLO"); }
void XPButton::SetForeColor(BgrColor color) { SetColor(props_.foreColor, color, "FCOL", &props_.foreOver, "FCOLO"); }
void XPButton::SetForeOver(BgrColor color) { SetColor(props_.foreOver, color, "FCOLO"); }
void XPButton::SetMaskColor(BgrColor color) { Store(props_.maskColor, color, "MCOL"); }
void XPButton::SetUseMaskColor(bool on) { Store(props_.useMaskColor, on, "UMCOL"); }

void XPButton::SetMousePointer(int pointer) {
    props_.mousePointer = pointer;
    if (pointer == 0)
        unsetCursor();
    else
        setCursor(CursorForPointer(pointer, props_.mouseIcon));
    Changed("MPTR");
}

void XPButton::SetMouseIcon(const QPixmap& icon) {
    props_.mouseIcon = icon;
    if (props_.mousePointer == kPointerCustom) setCursor(CursorForPointer(kPointerCustom, icon));
    Changed("MICON");
}

void XPButton::SetPictureNormal(const QPixmap& picture) {
    Store(props_.pictureNormal, picture, "PICN");
    updateGeometry();
}

void XPButton::SetPictureOver(const QPixmap& picture) { Store(props_.pictureOver, picture, "PICH"); }

void XPButton::SetPicturePosition(int position) {
    Store(props_.picturePosition, position, "PICPOS");
    updateGeometry();
}

void XPButton::SetUseGreyscale(bool on) { Store(props_.useGreyscale, on, "NGREY"); }
void XPButton::SetSoftBevel(bool on) { Store(props_.softBevel, on, "SOFT"); }
void XPButton::SetSpecialEffect(int effect) { Store(props_.specialEffect, effect, "FX"); }
void XPButton::SetCheckBoxBehaviour(bool on) { Store(props_.checkBoxBehaviour, on, "CHECK"); }
void XPButton::SetValue(bool on) { Store(props_.value, on, "VALUE"); }
void XPButton::SetImageIndex(std::int16_t index) { Store(props_.imageIndex, index, "ImageIndex"); }

void XPButton::WriteProperties(PropertyBag& bag) const {
    XPButtonProperties p = props_;
    p.caption = text();
    p.enabled = Enabled();
    p.font = font();
    WriteXPButtonProperties(p, bag);
}

void XPButton::ReadProperties(const PropertyBag& bag) {
    const QPalette& pal = palette();
    props_ = ReadXPButtonProperties(
        bag, {font(), ToBgr(pal.color(QPalette::Button)), ToBgr(pal.color(QPalette::ButtonText))});
    Apply();
}

void XPButton::Refresh() {
    shown_ = true;
    lastDrawing_ = QPixmap();
    if (props_.buttonType == 11) CaptureBackground();
    ComputeColors();
    UpdateOutline();
    update();
}

void XPButton::DisableRefresh() {
    if (!shown_) return;
    // Keep the current look to show until redrawing is allowed again.
    lastDrawing_ = grab();
    shown_ = false;
}

void XPButton::SetDrawingState(DrawingState state) {
    hover_ = state.hover;
    pressed_ = state.pressed;
    focused_ = state.focused;
    Redraw();
}

QPixmap XPButton::Picture(bool hover) const {
    QPixmap pm = hover && !props_.pictureOver.isNull() ? props_.pictureOver : props_.pictureNormal;
    if (pm.isNull() || !props_.useMaskColor) return pm;
    const QBitmap keep = pm.createMaskFromColor(ToQColor(props_.maskColor), Qt::MaskInColor);
    pm.setMask(keep);
    return pm;
}

QSize XPButton::sizeHint() const {
    XPButtonFace f;
    f.style = props_.buttonType;
    f.caption = text();
    f.font = font();
    f.picture = props_.pictureNormal;
    f.picturePosition = props_.picturePosition;
    const QSize content = XPButtonContentSize(f);
    const int inset = props_.buttonType >= 7 ? 3 : 4;
    return QSize(std::max(75, content.width() + 2 * inset + 16), std::max(23, content.height() + 2 * inset + 6));
}

QSize XPButton::minimumSizeHint() const {
    const int inset = props_.buttonType >= 7 ? 3 : 4;
    return QSize(2 * inset + 16, QFontMetrics(font()).height() + 2 * inset + 2);
}

// Drawing.

void XPButton::paintEvent(QPaintEvent*) {
    if (capturing_) return;  // the container is being captured without the control
    QPainter p(this);
    if (!shown_ && !lastDrawing_.isNull()) {
        p.drawPixmap(0, 0, lastDrawing_);
        return;
    }
    if (text() != keyedCaption_) ComputeAccessKey();  // the caption was set through QAbstractButton
    const bool hover = hover_ && isEnabled();
    XPButtonFace f;
    f.style = props_.buttonType;
    f.bounds = rect();
    f.content = XPButtonContentRect(f.style, rect());
    f.caption = text();
    f.font = font();
    f.back = DrawnBack(hover);
    f.fore = DrawnFore(hover);
    f.accent = colors_.foreOver;
    f.picture = Picture(hover);
    f.background = background_;
    f.picturePosition = props_.picturePosition;
    f.specialEffect = props_.specialEffect;
    f.softBevel = props_.softBevel;
    f.greyscale = props_.useGreyscale;
    f.enabled = isEnabled();
    f.hover = hover;
    f.pressed = pressed_ || (props_.checkBoxBehaviour && props_.value);
    f.focused = focused_;
    f.showFocusRect = props_.showFocusRect;
    PaintXPButton(p, f);
}

void XPButton::resizeEvent(QResizeEvent* e) {
    QAbstractButton::resizeEvent(e);
    UpdateOutline();
    Redraw();
}

void XPButton::showEvent(QShowEvent* e) {
    QAbstractButton::showEvent(e);
    shown_ = true;
    lastDrawing_ = QPixmap();
    if (props_.buttonType == 11) CaptureBackground();
}

void XPButton::hideEvent(QHideEvent* e) {
    QAbstractButton::hideEvent(e);
    shown_ = false;
    EndHover();
}

void XPButton::changeEvent(QEvent* e) {
    QAbstractButton::changeEvent(e);
    switch (e->type()) {
        case QEvent::EnabledChange:
            if (!isEnabled()) {
                pressed_ = false;
                EndHover();
            }
            Redraw();
            break;
        case QEvent::PaletteChange:
            // The container's colours changed: derive ours again.
            if (props_.colorScheme != 2) ComputeColors();
            Redraw();
            break;
        case QEvent::FontChange: updateGeometry(); break;
        default: break;
    }
}

}  // namespace quillon::ui
