#pragma once
// Colours the tags of an editor text and underlines in red what is no tag
// or has no byte; the marks come from the logic, line by line.
#include <QSyntaxHighlighter>

class QPlainTextEdit;

namespace quillon::ui {

class TagHighlighter : public QSyntaxHighlighter {
public:
    explicit TagHighlighter(QPlainTextEdit* editor);

    // The explanation of the mark under widget position `pos`, or nothing.
    static QString ExplainAt(const QPlainTextEdit& editor, int pos);

protected:
    void highlightBlock(const QString& text) override;
};

}  // namespace quillon::ui
