#pragma once
// The stored settings of the owner-drawn button, and how they are written to
// and read from the key-value store of the window that holds the control.
#include <QColor>
#include <QCursor>
#include <QFont>
#include <QPixmap>
#include <QString>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon::ui {

// A colour as 0x00BBGGRR: red in the low byte, blue in the third.
using BgrColor = std::uint32_t;
QColor ToQColor(BgrColor bgr);
BgrColor ToBgr(const QColor& color);

// Named string values in the order they were written; writing a key again
// replaces its value in place.
class PropertyBag {
public:
    void Write(std::string_view key, std::string value);
    std::optional<std::string> Read(std::string_view key) const;
    void Remove(std::string_view key);
    const std::vector<std::pair<std::string, std::string>>& Items() const { return items_; }
    std::vector<std::string> Keys() const;

private:
    std::vector<std::pair<std::string, std::string>> items_;
};

struct XPButtonProperties {
    int buttonType = 3;             // BTYPE, drawing style 1 to 13
    QString caption;                // TX, "&" marks the access key
    bool enabled = true;            // ENAB
    QFont font;                     // FONT
    int colorScheme = 1;            // COLTYPE, 2 = the colours below as set
    bool showFocusRect = true;      // FOCUSR
    BgrColor backColor = 0xFFFFFF;  // BCOL
    BgrColor backOver = 0xFFFFFF;   // BCOLO
    BgrColor foreColor = 0x000000;  // FCOL
    BgrColor foreOver = 0xFF0000;   // FCOLO
    BgrColor maskColor = 0xC0C0C0;  // MCOL
    int mousePointer = 0;           // MPTR
    QPixmap mouseIcon;              // MICON
    QPixmap pictureNormal;          // PICN
    QPixmap pictureOver;            // PICH
    bool useMaskColor = true;       // UMCOL
    bool softBevel = false;         // SOFT
    int picturePosition = 0;        // PICPOS
    bool useGreyscale = false;      // NGREY
    int specialEffect = 0;          // FX
    bool checkBoxBehaviour = false;  // CHECK
    bool value = false;             // VALUE
    std::int16_t imageIndex = 0;    // ImageIndex
};

// The pointer over the button for a MousePointer value: 0 the default
// arrow, 1 arrow, 2 cross, 3 I-beam, 5 and 15 move, 6 to 9 the four size
// arrows (NE-SW, N-S, NW-SE, W-E), 10 up arrow, 11 wait, 12 forbidden,
// 13 busy, 14 what's-this, 16 pointing hand, 99 the MouseIcon picture.
inline constexpr int kPointerHand = 16;
inline constexpr int kPointerCustom = 99;
QCursor CursorForPointer(int mousePointer, const QPixmap& mouseIcon);

// A freshly placed button called `name`: style 3, Verdana 8.25 pt, white
// backgrounds and a blue hover caption.
XPButtonProperties NewXPButtonProperties(const QString& name);

// Writes every property under its key in the fixed order, HAND included.
void WriteXPButtonProperties(const XPButtonProperties& p, PropertyBag& bag);

// What a missing key reads as where that depends on the control and the
// system: its current font and the system's button colours.
struct XPButtonReadDefaults {
    QFont font;
    BgrColor buttonFace = 0xC8D0D4;
    BgrColor buttonText = 0x000000;
};
// Reads each key, taking its read default when it is missing or cannot be
// parsed. HAND is ignored; a missing BCOLO or FCOLO follows BCOL or FCOL.
XPButtonProperties ReadXPButtonProperties(const PropertyBag& bag, const XPButtonReadDefaults& defaults);

}  // namespace quillon::ui
