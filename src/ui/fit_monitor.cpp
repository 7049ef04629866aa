#include "ui/fit_monitor.h"

#include "app/session.h"
#include "fit/reflow.h"
#include "fit/rom_fit.h"
#include "ui/check_all_dialog.h"
#include "ui/preview_dialog.h"
#include "ui/text_bridge.h"

#include <QAction>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextCursor>
#include <QToolTip>

#include <algorithm>

namespace quillon::ui {

FitMonitor::FitMonitor(Session& session, QPlainTextEdit* text1, QLabel* repoint, QMenu* textMenu, QMenu* toolsMenu,
                       QWidget* window)
    : QObject(window), session_(session), text1_(text1), viewport_(text1->viewport()), repoint_(repoint), window_(window) {
    setObjectName(QStringLiteral("fitMonitor"));
    label_ = new QLabel(window);
    label_->setObjectName(QStringLiteral("lblFit"));
    label_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    label_->setStyleSheet(QStringLiteral("color: #b02020; font-weight: bold;"));
    repoint_->installEventFilter(this);
    viewport_->installEventFilter(this);
    PlaceLabel();

    auto* preview = new QAction(QStringLiteral("Preview in Game Font..."), textMenu);
    preview->setObjectName(QStringLiteral("mnuPreview"));
    preview->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_G));
    preview->setShortcutContext(Qt::WindowShortcut);
    textMenu->addSeparator();
    textMenu->addAction(preview);
    window->addAction(preview);  // the shortcut works while the menu is closed
    connect(preview, &QAction::triggered, this, [this] { OpenPreview(); });

    auto* reflow = new QAction(QStringLiteral("Reflow Text"), textMenu);
    reflow->setObjectName(QStringLiteral("mnuReflow"));
    reflow->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    reflow->setShortcutContext(Qt::WindowShortcut);
    textMenu->addAction(reflow);
    window->addAction(reflow);
    connect(reflow, &QAction::triggered, this, [this] { Reflow(); });

    auto* checkAll = new QAction(QStringLiteral("Check All Texts..."), toolsMenu);
    checkAll->setObjectName(QStringLiteral("mnuCheckAll"));
    toolsMenu->addAction(checkAll);
    connect(checkAll, &QAction::triggered, this, [this] { OpenCheckAll(); });

    session_.OnChanged([this] { Update(); });
    Update();
}

void FitMonitor::ReloadFont() {
    fit::FontResult r = fit::SessionFont(session_, &settings_);
    font_ = std::move(r.font);
    why_ = Q(r.why);
    optionsKey_.clear();
    measured_ = false;
}

void FitMonitor::SetSampleName(const std::string& name) {
    try {
        fit::WriteSampleName(session_.SettingsFile(), name);
    } catch (const std::exception&) {
        // A read-only settings file keeps the name for this run only.
    }
    settings_.sampleName = name;
    optionsKey_.clear();
    measured_ = false;
    Update();
}

void FitMonitor::Update() {
    const std::string key = session_.romPath.string() + '\n' + session_.controls.gameCode;
    if (key != fontKey_) {
        fontKey_ = key;
        ReloadFont();
    }
    // The box follows the text shown.
    if (font_ && session_.controls.offsetCaption != optionsKey_) {
        optionsKey_ = session_.controls.offsetCaption;
        options_ = fit::SessionOptions(session_, settings_);
        measured_ = false;
    }
    const std::string& text = session_.controls.text1.Text();
    const bool special = session_.controls.specialDialog;
    if (!measured_ || text != measuredText_ || special != measuredSpecial_) {
        measuredText_ = text;
        measuredSpecial_ = special;
        measured_ = true;
        measure_ = font_ ? fit::MeasureText(text, special, *font_, options_) : fit::Measure{};
        Mark();
        emit Measured();
    }
}

void FitMonitor::Mark() {
    QList<QTextEdit::ExtraSelection> marks;
    for (const fit::Line& line : measure_.lines) {
        if ((!line.over && !line.names) || line.editorLine < 0) continue;
        const QTextBlock block = text1_->document()->findBlockByNumber(line.editorLine);
        if (!block.isValid()) continue;
        QTextEdit::ExtraSelection mark;
        mark.cursor = QTextCursor(block);
        mark.cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);  // every wrapped row of it
        mark.format.setBackground(line.over ? QColor(255, 214, 214) : QColor(255, 240, 200));
        mark.format.setProperty(QTextFormat::FullWidthSelection, true);
        mark.format.setToolTip(Q(Caption(line)));
        marks.push_back(mark);
    }
    text1_->setExtraSelections(marks);
    if (!session_.RomOpen()) {
        label_->setText(QString());
        label_->setToolTip(QString());
    } else if (!font_) {
        label_->setText(QStringLiteral("No width check"));
        label_->setToolTip(why_);
    } else if (measure_.overCount == 0 && measure_.namesCount == 0 && measure_.hiddenLines > 0) {
        label_->setText(Q(fit::BelowWindowSummary(measure_.hiddenLines)));
        label_->setToolTip(Q("The game shows " + std::to_string(options_.box.lines) + " lines at once in this " +
                             std::string(options_.box.name) + "; the lines after them are never seen"));
    } else if (measure_.overCount > 0 || measure_.namesCount == 0) {
        label_->setText(Q(fit::TooWideSummary(measure_.overCount)));
        label_->setToolTip(measure_.overCount ? Q("Widest line: " + fit::WidthCaption(measure_.WidestWidth(), measure_.limit) +
                                                  " (" + std::string(options_.box.name) + ")")
                                              : QString());
    } else {
        label_->setText(Q(fit::TooWideSummary(measure_.namesCount) + " with long names"));
        label_->setToolTip(QStringLiteral("Too wide only when a name or buffer is at its longest"));
    }
}

void FitMonitor::PlaceLabel() {
    // Right of "Special Dialog*", under the counter's right part.
    const QRect r = repoint_->geometry();
    const int width = r.width() * 2 / 5;
    label_->setGeometry(r.right() + 1 - width, r.bottom() + 1 + r.height() / 4, width, r.height() + 2);
}

bool FitMonitor::eventFilter(QObject* watched, QEvent* event) {
    if (watched == repoint_ && (event->type() == QEvent::Move || event->type() == QEvent::Resize)) PlaceLabel();
    if (watched == viewport_ && event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const int block = text1_->cursorForPosition(help->pos()).blockNumber();
        for (const fit::Line& line : measure_.lines) {
            if (line.editorLine == block && font_) {
                QToolTip::showText(help->globalPos(), Q(Caption(line)), text1_);
                return true;
            }
        }
        QToolTip::hideText();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void FitMonitor::OpenPreview() {
    if (!preview_) preview_ = new PreviewDialog(*this, window_);
    preview_->show();
    preview_->raise();
    preview_->activateWindow();
}

std::string FitMonitor::Caption(const fit::Line& line) const {
    std::string caption = fit::WidthCaption(line.width, measure_.limit);
    if (line.longest > line.width) caption += ", " + fit::WidthCaption(line.longest, measure_.limit) + " with long names";
    return caption;
}

void FitMonitor::Reflow() {
    if (!font_ || !session_.RomOpen()) return;
    const std::string& text = session_.controls.text1.Text();
    const bool special = session_.controls.specialDialog;
    const std::string& loaded = session_.loaded.bytes;
    const fit::ReflowedText reflowed = fit::ReflowText(
        text, special, *font_,
        fit::ReflowFor(options_.box, options_.family, special, options_.playerName, &*font_,
                       std::string_view(loaded).substr(0, std::min(loaded.find('\xFF'), loaded.size()))));
    if (reflowed.text == text) return;
    if (reflowed.specialDialog != special) {
        // Saving then writes each break as the reflow made it.
        session_.controls.specialDialog = reflowed.specialDialog;
        session_.Changed();
    }
    QTextCursor cursor(text1_->document());
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.insertText(Q(reflowed.text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    cursor.endEditBlock();
}

void FitMonitor::OpenCheckAll() {
    CheckAllDialog dialog(session_, settings_, window_);
    dialog.exec();
}

}  // namespace quillon::ui
