#include "ui/xp_button_properties.h"

#include <QBuffer>
#include <QByteArray>

#include <algorithm>
#include <charconv>

namespace quillon::ui {
namespace {

std::string Bool(bool b) { return b ? "True" : "False"; }
std::string Number(long long n) { return std::to_string(n); }
std::string Utf8(const QString& s) { return s.toUtf8().toStdString(); }

// A picture as base64 PNG; empty for none.
std::string Picture(const QPixmap& pm) {
    if (pm.isNull()) return {};
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    pm.save(&buffer, "PNG");
    return png.toBase64().toStdString();
}

std::optional<long long> ParseNumber(const std::string& s) {
    long long n = 0;
    const char* end = s.data() + s.size();
    auto [ptr, ec] = std::from_chars(s.data(), end, n);
    if (ec != std::errc() || ptr != end) return std::nullopt;
    return n;
}

// Reads one key with its read default.
class Reader {
public:
    explicit Reader(const PropertyBag& bag) : bag_(bag) {}

    bool Has(std::string_view key) const { return bag_.Read(key).has_value(); }
    QString Text(std::string_view key, const QString& fallback) const {
        auto v = bag_.Read(key);
        return v ? QString::fromStdString(*v) : fallback;
    }
    long long Whole(std::string_view key, long long fallback, long long lo, long long hi) const {
        auto v = bag_.Read(key);
        auto n = v ? ParseNumber(*v) : std::nullopt;
        return n && *n >= lo && *n <= hi ? *n : fallback;
    }
    bool Flag(std::string_view key, bool fallback) const {
        auto v = bag_.Read(key);
        if (!v) return fallback;
        if (*v == "True" || *v == "1" || *v == "-1") return true;
        if (*v == "False" || *v == "0") return false;
        return fallback;
    }
    BgrColor Color(std::string_view key, BgrColor fallback) const {
        return static_cast<BgrColor>(Whole(key, fallback, 0, 0xFFFFFF));
    }
    QPixmap Image(std::string_view key) const {
        QPixmap pm;
        if (auto v = bag_.Read(key); v && !v->empty())
            pm.loadFromData(QByteArray::fromBase64(QByteArray::fromStdString(*v)), "PNG");
        return pm;
    }

private:
    const PropertyBag& bag_;
};

}  // namespace

QColor ToQColor(BgrColor bgr) { return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF); }

BgrColor ToBgr(const QColor& color) {
    return static_cast<BgrColor>(color.red()) | static_cast<BgrColor>(color.green()) << 8 |
           static_cast<BgrColor>(color.blue()) << 16;
}

QCursor CursorForPointer(int mousePointer, const QPixmap& mouseIcon) {
    switch (mousePointer) {
        case 2: return Qt::CrossCursor;
        case 3: return Qt::IBeamCursor;
        case 5:
        case 15: return Qt::SizeAllCursor;
        case 6: return Qt::SizeBDiagCursor;
        case 7: return Qt::SizeVerCursor;
        case 8: return Qt::SizeFDiagCursor;
        case 9: return Qt::SizeHorCursor;
        case 10: return Qt::UpArrowCursor;
        case 11: return Qt::WaitCursor;
        case 12: return Qt::ForbiddenCursor;
        case 13: return Qt::BusyCursor;
        case 14: return Qt::WhatsThisCursor;
        case kPointerHand: return Qt::PointingHandCursor;
        case kPointerCustom:
            if (!mouseIcon.isNull()) return QCursor(mouseIcon);
            break;
        default: break;
    }
    return Qt::ArrowCursor;
}

void PropertyBag::Write(std::string_view key, std::string value) {
    auto it = std::find_if(items_.begin(), items_.end(), [&](const auto& kv) { return kv.first == key; });
    if (it != items_.end())
        it->second = std::move(value);
    else
        items_.emplace_back(std::string(key), std::move(value));
}

std::optional<std::string> PropertyBag::Read(std::string_view key) const {
    for (const auto& [k, v] : items_)
        if (k == key) return v;
    return std::nullopt;
}

void PropertyBag::Remove(std::string_view key) {
    std::erase_if(items_, [&](const auto& kv) { return kv.first == key; });
}

std::vector<std::string> PropertyBag::Keys() const {
    std::vector<std::string> keys;
    for (const auto& kv : items_) keys.push_back(kv.first);
    return keys;
}

XPButtonProperties NewXPButtonProperties(const QString& name) {
    XPButtonProperties p;
    p.caption = name;
    p.font = QFont(QStringLiteral("Verdana"));
    p.font.setPointSizeF(8.25);
    return p;
}

void WriteXPButtonProperties(const XPButtonProperties& p, PropertyBag& bag) {
    bag.Write("BTYPE", Number(p.buttonType));
    bag.Write("TX", Utf8(p.caption));
    bag.Write("ENAB", Bool(p.enabled));
    bag.Write("FONT", Utf8(p.font.toString()));
    bag.Write("COLTYPE", Number(p.colorScheme));
    bag.Write("FOCUSR", Bool(p.showFocusRect));
    bag.Write("BCOL", Number(p.backColor));
    bag.Write("BCOLO", Number(p.backOver));
    bag.Write("FCOL", Number(p.foreColor));
    bag.Write("FCOLO", Number(p.foreOver));
    bag.Write("MCOL", Number(p.maskColor));
    bag.Write("MPTR", Number(p.mousePointer));
    bag.Write("MICON", Picture(p.mouseIcon));
    bag.Write("PICN", Picture(p.pictureNormal));
    bag.Write("PICH", Picture(p.pictureOver));
    bag.Write("UMCOL", Bool(p.useMaskColor));
    bag.Write("SOFT", Bool(p.softBevel));
    bag.Write("PICPOS", Number(p.picturePosition));
    bag.Write("NGREY", Bool(p.useGreyscale));
    bag.Write("FX", Number(p.specialEffect));
    // Whether the pointer over the button is the hand; kept for other
    // readers of the store, never read back.
    bag.Write("HAND", Bool(p.mousePointer == kPointerHand));
    bag.Write("CHECK", Bool(p.checkBoxBehaviour));
    bag.Write("VALUE", Bool(p.value));
    bag.Write("ImageIndex", Number(p.imageIndex));
}

XPButtonProperties ReadXPButtonProperties(const PropertyBag& bag, const XPButtonReadDefaults& defaults) {
    const Reader r(bag);
    XPButtonProperties p;
    p.buttonType = static_cast<int>(r.Whole("BTYPE", 2, 1, 13));
    p.caption = r.Text("TX", QString());
    p.enabled = r.Flag("ENAB", true);
    p.font = defaults.font;
    if (r.Has("FONT")) {
        QFont stored;
        if (stored.fromString(r.Text("FONT", QString()))) p.font = stored;
    }
    p.colorScheme = static_cast<int>(r.Whole("COLTYPE", 1, -32768, 32767));
    p.showFocusRect = r.Flag("FOCUSR", true);
    p.backColor = r.Color("BCOL", defaults.buttonFace);
    p.backOver = r.Color("BCOLO", p.backColor);
    p.foreColor = r.Color("FCOL", defaults.buttonText);
    p.foreOver = r.Color("FCOLO", p.foreColor);
    p.maskColor = r.Color("MCOL", 0xC0C0C0);
    p.useMaskColor = r.Flag("UMCOL", true);
    p.mousePointer = static_cast<int>(r.Whole("MPTR", 0, 0, 99));
    p.mouseIcon = r.Image("MICON");
    p.pictureNormal = r.Image("PICN");
    p.pictureOver = r.Image("PICH");
    p.picturePosition = static_cast<int>(r.Whole("PICPOS", 0, 0, 3));
    p.useGreyscale = r.Flag("NGREY", false);
    p.softBevel = r.Flag("SOFT", false);
    p.specialEffect = static_cast<int>(r.Whole("FX", 0, 0, 4));
    p.checkBoxBehaviour = r.Flag("CHECK", false);
    p.value = r.Flag("VALUE", false);
    p.imageIndex = static_cast<std::int16_t>(r.Whole("ImageIndex", 0, -32768, 32767));
    return p;
}

}  // namespace quillon::ui
