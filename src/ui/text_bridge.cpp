#include "ui/text_bridge.h"

#include "offsets/offset_names.h"

namespace quillon::ui {

QString Q(std::string_view utf8) {
    if (!IsUtf8(utf8)) return Q(ReadableName(utf8));
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

std::string NameBytesOf(const QString& name) { return NameBytes(U(name)); }

std::string U(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    return std::string(utf8.constData(), static_cast<std::size_t>(utf8.size()));
}
namespace {

// Length in bytes of the UTF-8 sequence that starts with `lead`.
std::size_t SequenceLength(unsigned char lead) {
    if (lead < 0x80) return 1;
    if ((lead & 0xE0) == 0xC0) return 2;
    if ((lead & 0xF0) == 0xE0) return 3;
    if ((lead & 0xF8) == 0xF0) return 4;
    return 1;  // a stray continuation byte counts alone
}

// Steps over one character of `text` at byte `i`: its size in bytes and in
// widget code units (a CR of a CR LF pair takes no place in the widget).
void Step(std::string_view text, std::size_t i, std::size_t& bytes, int& units) {
    auto lead = static_cast<unsigned char>(text[i]);
    if (lead == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
        bytes = 1;
        units = 0;
        return;
    }
    bytes = SequenceLength(lead);
    units = bytes == 4 ? 2 : 1;
}

}  // namespace

QString ToWidgetText(std::string_view text) {
    QString s = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return s;
}

std::string FromWidgetText(const QString& text) {
    QString s = text;
    s.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    s.replace(QChar(0x2029), QChar('\n'));  // paragraph separators of a selection
    s.replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    QByteArray utf8 = s.toUtf8();
    return std::string(utf8.constData(), static_cast<std::size_t>(utf8.size()));
}

int WidgetPosition(std::string_view text, std::size_t bytes) {
    int pos = 0;
    std::size_t i = 0;
    while (i < text.size() && i < bytes) {
        std::size_t n;
        int units;
        Step(text, i, n, units);
        if (i + n > bytes) break;  // inside a character: stop before it
        i += n;
        pos += units;
    }
    return pos;
}

std::size_t BytePosition(std::string_view text, int pos) {
    int at = 0;
    std::size_t i = 0;
    while (i < text.size()) {
        std::size_t n;
        int units;
        Step(text, i, n, units);
        // A CR belongs before the LF that the widget position points at.
        if (units == 0) {
            i += n;
            continue;
        }
        if (at + units > pos) break;
        at += units;
        i += n;
    }
    // A position between CR and LF means before the pair.
    if (i > 0 && i < text.size() && text[i - 1] == '\r' && text[i] == '\n') --i;
    return i;
}

}  // namespace quillon::ui
