#pragma once
// XPButton: the push button of every window. It draws itself in one of
// thirteen styles, tracks hover, press and focus, can act as a two-state
// button, and keeps its settings as named properties.
//
// clicked() is emitted exactly when Click is raised, right after it, so
// windows connect to &XPButton::clicked as to any button.
#include "ui/xp_button_properties.h"

#include <QAbstractButton>
#include <QPixmap>
#include <QTimer>

#include <cstdint>

namespace quillon::ui {

class XPButton : public QAbstractButton {
    Q_OBJECT

public:
    // A new button named `name` with that name as its caption, as when it is
    // first placed on a window.
    explicit XPButton(const QString& name, QWidget* parent = nullptr);
    // A new button with its own name and caption.
    XPButton(const QString& name, const QString& caption, QWidget* parent);

    static QString Version() { return QStringLiteral("2.0.6"); }
    // The native window the control draws into (Qt's child widgets share
    // their top-level window's); 0 before that window exists.
    WId hWnd() const { return effectiveWinId(); }

    // Properties. Each setter stores the value, redraws and raises
    // PropertyChanged with the property's key.
    int ButtonType() const { return props_.buttonType; }
    void SetButtonType(int style);  // 1 to 13; others are ignored
    QString Caption() const { return text(); }
    void SetCaption(const QString& caption);
    void setText(const QString& caption) { SetCaption(caption); }
    bool Enabled() const { return !testAttribute(Qt::WA_ForceDisabled); }
    void SetEnabled(bool enabled);
    QFont Font() const { return font(); }
    void SetFont(const QFont& font);
    bool FontBold() const { return font().bold(); }
    void SetFontBold(bool on);
    bool FontItalic() const { return font().italic(); }
    void SetFontItalic(bool on);
    bool FontUnderline() const { return font().underline(); }
    void SetFontUnderline(bool on);
    qreal FontSize() const { return font().pointSizeF(); }
    void SetFontSize(qreal points);
    QString FontName() const { return font().family(); }
    void SetFontName(const QString& family);
    int ColorScheme() const { return props_.colorScheme; }
    void SetColorScheme(int scheme);
    bool ShowFocusRect() const { return props_.showFocusRect; }
    void SetShowFocusRect(bool on);
    BgrColor BackColor() const { return props_.backColor; }
    void SetBackColor(BgrColor color);
    BgrColor BackOver() const { return props_.backOver; }
    void SetBackOver(BgrColor color);
    BgrColor ForeColor() const { return props_.foreColor; }
    void SetForeColor(BgrColor color);
    BgrColor ForeOver() const { return props_.foreOver; }
    void SetForeOver(BgrColor color);
    BgrColor MaskColor() const { return props_.maskColor; }
    void SetMaskColor(BgrColor color);
    bool UseMaskColor() const { return props_.useMaskColor; }
    void SetUseMaskColor(bool on);
    int MousePointer() const { return props_.mousePointer; }
    void SetMousePointer(int pointer);
    QPixmap MouseIcon() const { return props_.mouseIcon; }
    void SetMouseIcon(const QPixmap& icon);
    QPixmap PictureNormal() const { return props_.pictureNormal; }
    void SetPictureNormal(const QPixmap& picture);
    QPixmap PictureOver() const { return props_.pictureOver; }
    void SetPictureOver(const QPixmap& picture);
    int PicturePosition() const { return props_.picturePosition; }
    void SetPicturePosition(int position);
    bool UseGreyscale() const { return props_.useGreyscale; }
    void SetUseGreyscale(bool on);
    bool SoftBevel() const { return props_.softBevel; }
    void SetSoftBevel(bool on);
    int SpecialEffect() const { return props_.specialEffect; }
    void SetSpecialEffect(int effect);
    bool CheckBoxBehaviour() const { return props_.checkBoxBehaviour; }
    void SetCheckBoxBehaviour(bool on);
    bool Value() const { return props_.value; }
    void SetValue(bool on);
    std::int16_t ImageIndex() const { return props_.imageIndex; }
    void SetImageIndex(std::int16_t index);

    // While designing, setting BackColor or ForeColor also sets the hover colour.
    void SetDesignMode(bool on) { designMode_ = on; }

    // The access key (lower case) from the caption, or a null QChar.
    QChar AccessKey() const { return accessKey_; }
    // The colours drawn now: the properties with ColorScheme 2, otherwise
    // derived from the system and the container.
    QColor DrawnBack(bool hover) const { return hover ? colors_.backOver : colors_.back; }
    QColor DrawnFore(bool hover) const { return hover ? colors_.foreOver : colors_.fore; }

    // The properties to and from the window's store.
    void WriteProperties(PropertyBag& bag) const;
    void ReadProperties(const PropertyBag& bag);

    // Allows redrawing again, captures the container again for style 11,
    // recomputes colours and layout, and redraws.
    void Refresh();
    // Stops redrawing until the next Refresh; the last drawing stays.
    void DisableRefresh();

    // The runtime drawing flags. Setting them draws a state without the
    // pointer or keyboard, as a preview does; the next event takes over.
    struct DrawingState {
        bool hover = false;
        bool pressed = false;
        bool focused = false;
    };
    DrawingState CurrentDrawingState() const { return {hover_, pressed_, focused_}; }
    void SetDrawingState(DrawingState state);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void Click();
    void MouseDown(short& button, short& shift, float x, float y);
    void MouseMove(short& button, short& shift, float x, float y);
    void MouseUp(short& button, short& shift, float x, float y);
    void KeyPress(short& keyAscii);
    void KeyDown(short& keyCode, short& shift);
    void KeyUp(short& keyCode, short& shift);
    void MouseOver();
    void MOUSEOUT();
    // A property was set; `key` is its store key (BTYPE, TX, ...).
    void PropertyChanged(const QString& key);

protected:
    bool event(QEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void showEvent(QShowEvent* e) override;
    void hideEvent(QHideEvent* e) override;
    void changeEvent(QEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void leaveEvent(QEvent* e) override;
    void keyPressEvent(QKeyEvent* e) override;
    void keyReleaseEvent(QKeyEvent* e) override;
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;

private:
    struct Colors {
        QColor back, backOver, fore, foreOver;
    };

    void Apply();  // the properties onto the widget, then colours and caption
    void Changed(const char* key);
    // Stores a property's value, redraws and announces it under `key`.
    template <class T>
    void Store(T& field, const T& value, const char* key) {
        field = value;
        Changed(key);
    }
    // A colour property; with `overField`, the hover colour that follows it
    // while designing.
    void SetColor(BgrColor& field, BgrColor color, const char* key, BgrColor* overField = nullptr,
                  const char* overKey = nullptr);
    // Changes the caption font through `edit` and stores it.
    template <class Edit>
    void EditFont(Edit edit) {
        QFont f = font();
        edit(f);
        SetFont(f);
    }
    void Redraw();
    void ComputeColors();
    void ComputeAccessKey();
    void UpdateOutline();
    void CaptureBackground();
    void PressAt(short button, Qt::KeyboardModifiers modifiers, QPointF at);
    void ClickNow();      // the Click rule for mouse, Space and access key
    void AfterClicked();  // what a click does before Click is raised
    void OnHoverTick();
    void EndHover();
    bool PointerOver(const QPoint& global) const;
    bool Inside(const QPoint& local) const;
    QPixmap Picture(bool hover) const;

    XPButtonProperties props_;
    Colors colors_;
    QChar accessKey_;
    QString keyedCaption_;  // the caption the access key was computed from
    QPixmap background_;    // style 11
    QPixmap lastDrawing_;   // shown while redrawing is disabled
    QTimer hoverTimer_;
    short lastButton_ = 0;
    short lastKey_ = 0;
    bool hover_ = false;
    bool focused_ = false;
    bool pressed_ = false;
    bool shown_ = true;
    bool pressInside_ = false;
    bool capturing_ = false;
    bool designMode_ = false;
    bool raisingClick_ = false;
};

}  // namespace quillon::ui
