#pragma once
// Conversions between the logic's editor text (UTF-8, lines ending in CR LF,
// positions in bytes) and a Qt text widget's (UTF-16, lines ending in LF,
// positions in UTF-16 code units).
#include <QString>

#include <cstddef>
#include <string>
#include <string_view>

namespace quillon::ui {

// UTF-8 text of the logic as a QString, and back: every caption, name and
// message crosses here unchanged. Bytes that are not UTF-8 (a Latin-1 name of
// an offset file, also inside a message) read as Latin-1 characters.
QString Q(std::string_view utf8);
std::string U(const QString& text);
// A name typed in a window as an offset file holds it (Latin-1 when it can).
std::string NameBytesOf(const QString& name);

// The editor text as the widget shows it: CR LF pairs become LF.
QString ToWidgetText(std::string_view text);
// The widget's text as the editor holds it: every LF becomes CR LF.
std::string FromWidgetText(const QString& text);
// The widget position of the byte offset `bytes` into `text` (editor form).
int WidgetPosition(std::string_view text, std::size_t bytes);
// The byte offset into `text` (editor form) of the widget position `pos`.
std::size_t BytePosition(std::string_view text, int pos);

}  // namespace quillon::ui
