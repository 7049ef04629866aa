#include "ui/tag_highlighter.h"

#include "edit/tag_marks.h"
#include "ui/text_bridge.h"

#include <QPlainTextEdit>
#include <QTextBlock>

namespace quillon::ui {
namespace {

// UTF-16 position of the byte offset `bytes` into the UTF-8 line `line`.
int Utf16(const std::string& line, std::size_t bytes) { return static_cast<int>(Q(line.substr(0, bytes)).size()); }

}  // namespace

TagHighlighter::TagHighlighter(QPlainTextEdit* editor) : QSyntaxHighlighter(editor->document()) {}

void TagHighlighter::highlightBlock(const QString& text) {
    const std::string line = U(text);
    QTextCharFormat tag;
    tag.setForeground(QColor(0x1a, 0x5f, 0xb4));
    tag.setFontWeight(QFont::DemiBold);
    QTextCharFormat wrong;
    wrong.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
    wrong.setUnderlineColor(Qt::red);
    for (const TextMark& m : MarkText(line)) {
        const int from = Utf16(line, m.start);
        setFormat(from, Utf16(line, m.start + m.length) - from, m.kind == TextMark::Tag ? tag : wrong);
    }
}

QString TagHighlighter::ExplainAt(const QPlainTextEdit& editor, int pos) {
    const QTextBlock block = editor.document()->findBlock(pos);
    const std::string line = U(block.text());
    const int inBlock = pos - block.position();
    for (const TextMark& m : MarkText(line)) {
        if (m.kind != TextMark::Tag && inBlock >= Utf16(line, m.start) && inBlock < Utf16(line, m.start + m.length))
            return Q(MarkExplanation(line, m));
    }
    return {};
}

}  // namespace quillon::ui
