#include "layout_check.h"

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QTextDocumentFragment>
#include <QWidget>

namespace quillon::test {

namespace {

QString Name(const QWidget* w) {
    return w->objectName().isEmpty() ? QString::fromUtf8(w->metaObject()->className()) : w->objectName();
}

// Controls that the user sees as one thing; their inner widgets are Qt's.
bool IsControl(const QWidget* w) {
    return qobject_cast<const QLabel*>(w) || qobject_cast<const QAbstractButton*>(w) ||
           qobject_cast<const QGroupBox*>(w) || !w->objectName().isEmpty();
}

// The width a one-line caption needs, without the access-key marks.
int CaptionWidth(const QWidget* w, const QString& text) {
    QString shown = text;
    shown.replace(QStringLiteral("&&"), QStringLiteral("\x01")).remove(QLatin1Char('&')).replace(QChar(1), QLatin1Char('&'));
    return w->fontMetrics().horizontalAdvance(shown);
}

// A label's caption as shown: rich text without its markup.
QString PlainCaption(const QLabel& label) {
    if (label.textFormat() == Qt::PlainText || !Qt::mightBeRichText(label.text())) return label.text();
    return QTextDocumentFragment::fromHtml(label.text()).toPlainText();
}

void Check(const QWidget& window, const QWidget* parent, QStringList& problems) {
    QList<const QWidget*> shown;
    for (const QObject* o : parent->children()) {
        const auto* w = qobject_cast<const QWidget*>(o);
        // A backdrop is drawn behind the controls it frames.
        if (!w || w->isWindow() || w->isHidden() || !IsControl(w) || w->property("backdrop").toBool()) continue;
        shown << w;
        const QRect inWindow(w->mapTo(&window, QPoint(0, 0)), w->size());
        if (!window.rect().contains(inWindow))
            problems << Name(w) + QStringLiteral(" reaches outside the window");
        if (const auto* label = qobject_cast<const QLabel*>(w); label && !label->wordWrap() &&
            !label->text().contains(QLatin1Char('\n')) && label->pixmap().isNull() &&
            CaptionWidth(w, PlainCaption(*label)) > label->contentsRect().width())
            problems << Name(w) + QStringLiteral(" cuts its caption \"") + label->text() + QLatin1Char('"');
        if (const auto* button = qobject_cast<const QAbstractButton*>(w);
            button && CaptionWidth(w, button->text()) > button->width())
            problems << Name(w) + QStringLiteral(" cuts its caption \"") + button->text() + QLatin1Char('"');
        Check(window, w, problems);
    }
    for (int i = 0; i < shown.size(); ++i)
        for (int j = i + 1; j < shown.size(); ++j)
            if (shown[i]->geometry().intersects(shown[j]->geometry()))
                problems << Name(shown[i]) + QStringLiteral(" overlaps ") + Name(shown[j]);
}

}  // namespace

QStringList LayoutProblems(const QWidget& window) {
    QStringList problems;
    Check(window, &window, problems);
    return problems;
}

}  // namespace quillon::test
