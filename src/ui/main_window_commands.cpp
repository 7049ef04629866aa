#include "ui/main_window.h"

#include "app/clipboard.h"
#include "app/session.h"
#include "discover/find_texts.h"
#include "edit/add_offset_form.h"
#include "edit/drafts.h"
#include "edit/open_rom.h"
#include "edit/save_text.h"
#include "edit/tag_commands.h"
#include "edit/tag_marks.h"
#include "edit/text_menus.h"
#include "edit/text_view.h"
#include "fit/fit_settings.h"
#include "tools/export_text.h"
#include "translate/translate_commands.h"
#include "ui/about_dialog.h"
#include "ui/all_texts_window.h"
#include "ui/add_script_dialog.h"
#include "ui/button_pictures.h"
#include "ui/explanation_dialogs.h"
#include "ui/history_dialog.h"
#include "ui/menu_builder.h"
#include "ui/progress_dialog.h"
#include "ui/references_dialog.h"
#include "ui/search_dialog.h"
#include "ui/tag_highlighter.h"
#include "ui/text_bridge.h"
#include "ui/update_dialog.h"
#include "ui/xp_button.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QToolTip>

// The commands: the buttons, the menus and the editor's keys, each handed to
// the logic below the window.
namespace quillon::ui {

void MainWindow::BuildButtons() {
    const qreal dpr = devicePixelRatioF();
    save_ = new XPButton(QStringLiteral("Command2"), QStringLiteral("S&ave Text"), this);
    save_->SetPictureNormal(ButtonPicture(QStringLiteral("save"), 16, dpr));
    connect(save_, &XPButton::clicked, this, [this] {
        if (ConfirmUnencodable(session_)) SaveText(session_, fit::ConfirmFitBeforeSave);
    });

    const char* names[5] = {"XPButton1", "XPButton2", "XPButton3", "XPButton6", "XPButton4"};
    const char* captions[5] = {"&Open ROM", "&Exit", "&Search", "&Tools", "&About"};
    const char* pictures[5] = {"open", "exit", "search", "tools", "about"};
    for (int i = 0; i < 5; ++i) {
        buttons_[i] = new XPButton(QString::fromUtf8(names[i]), QString::fromUtf8(captions[i]), this);
        buttons_[i]->SetPictureNormal(ButtonPicture(QString::fromUtf8(pictures[i]), 24, dpr));
    }
    connect(buttons_[0], &XPButton::clicked, this, [this] { OpenRomAs({}); });
    connect(buttons_[1], &XPButton::clicked, this, [this] { ExitProgram(); });
    connect(buttons_[2], &XPButton::clicked, this, [this] {
        SearchDialog dialog(session_, clipboard_, this);
        dialog.exec();
        session_.Changed();
    });
    connect(buttons_[3], &XPButton::clicked, this, [this] { ShowToolsMenu(); });
    connect(buttons_[4], &XPButton::clicked, this, [this] {
        AboutDialog about(this);
        about.exec();
    });

    // Keys for the commands a new user looks for first; each acts as its
    // button does, and not while the button is disabled.
    const std::pair<QKeySequence, QAbstractButton*> keys[] = {
        {QKeySequence(Qt::CTRL | Qt::Key_O), buttons_[0]},
        {QKeySequence(Qt::CTRL | Qt::Key_S), save_},
        {QKeySequence(Qt::CTRL | Qt::Key_F), buttons_[2]},
    };
    for (auto [key, button] : keys) {
        auto* shortcut = new QShortcut(key, this);
        connect(shortcut, &QShortcut::activated, button, &QAbstractButton::click);
    }
    auto* help = new QShortcut(QKeySequence(Qt::Key_F1), this);  // as the "?" icon
    connect(help, &QShortcut::activated, this, [this] {
        MenuExplanationDialog dialog(session_.prompter, this);
        dialog.exec();
    });
}

void MainWindow::OpenRomFile(const std::filesystem::path& rom) { OpenRomAs(rom); }

void MainWindow::OpenRomAs(const std::optional<std::filesystem::path>& rom) {
    LeaveRom(session_);
    treeFilter_->clear();  // what narrowed one game's tree means nothing in the next
    if (rom)
        quillon::OpenRomFile(session_, *rom, OfferFindTexts);
    else
        OpenRom(session_, OfferFindTexts);
    LoadDrafts(session_);
    session_.Changed();
    AnnounceDrafts(session_);
}

void MainWindow::BuildOffsetButton() {
    offset_ = new QPushButton(QStringLiteral("O&ffset"), this);
    offset_->setObjectName(QStringLiteral("Command5"));
    connect(offset_, &QPushButton::clicked, this, [this] { ViewOffset(session_); });
}

void MainWindow::BuildMenus() {
    textMenu_ = BuildMenu(this, quillon::TextMenu(), [this](const MenuItem& item) { RunTextMenu(Q(item.name)); });
    toolsMenu_ = BuildMenu(this, quillon::ToolsMenu(), [this](const MenuItem& item) {
        if (item.action == MenuAction::Update) {
            UpdateDialog update(session_.prompter, session_.programFolder, QUILLON_UPDATE_BASE_URL, this);
            update.exec();
            return;
        }
        if (RunHistoryItem(item.action, session_, this)) return;
        if (item.action == MenuAction::AllTexts) {
            ShowAllTexts();
            return;
        }
        if (item.action == MenuAction::FindTexts) {
            FindTextsInRom(session_, *progress_);
            return;
        }
        if (item.action == MenuAction::ExportAll) ExportAllTexts(session_, *progress_);
        if (item.action == MenuAction::ImportTranslation) ImportTranslation(session_, *progress_);
        if (item.action != MenuAction::TextScript) return;
        AddScriptDialog dialog(session_, this);
        dialog.exec();
        session_.Changed();
    });
    AddHistoryShortcuts(this, toolsMenu_);
    if (QAction* all = FindAction(toolsMenu_, QStringLiteral("mnuAllTexts"))) {
        all->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_T));
        all->setShortcutContext(Qt::WindowShortcut);
        addAction(all);
    }
    treeMenu_ = BuildMenu(this, quillon::TreeViewMenu(), [this](const MenuItem& item) {
        if (item.action == MenuAction::AddOffset)
            quillon::ShowAddOffset(session_);
        else if (item.action == MenuAction::Delete)
            DeleteOffset(session_);
    });
}

void MainWindow::ShowToolsMenu() { toolsMenu_->popup(mapToGlobal(ToolsMenuPoint())); }

AllTextsWindow* MainWindow::ShowAllTexts() {
    if (!allTexts_) allTexts_ = new AllTextsWindow(session_, this);
    allTexts_->show();
    allTexts_->raise();
    allTexts_->activateWindow();
    return allTexts_;
}

bool MainWindow::EditorEvent(QObject* watched, QEvent* event) {
    if (watched == text1_ && event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        std::int16_t code = 0;
        if (key->key() == Qt::Key_Insert) code = 45;
        if (key->key() == Qt::Key_Menu) code = 93;
        const std::int16_t pressed = code;
        bool openMenu = UpdateRepointCounter(session_, code, key->modifiers() & Qt::ShiftModifier);
        session_.Changed();
        if (openMenu) {
            ShowTextMenu(text1_->viewport()->mapToGlobal(text1_->cursorRect().bottomLeft()));
            return true;
        }
        if (pressed != 0 && code == 0) return true;  // cancelled (Shift+Insert)
        return false;
    }
    if (watched == text1_->viewport() &&
        (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick) &&
        static_cast<QMouseEvent*>(event)->button() == Qt::RightButton) {
        // Only mnuBP opens, and the press goes no further.
        text1_->setEnabled(false);
        text1_->setEnabled(true);
        text1_->setFocus(Qt::MouseFocusReason);
        ShowTextMenu(static_cast<QMouseEvent*>(event)->globalPosition().toPoint());
        return true;
    }
    if (watched == text1_->viewport() && event->type() == QEvent::ToolTip) {
        auto* help = static_cast<QHelpEvent*>(event);
        const QString tip = TagHighlighter::ExplainAt(*text1_, text1_->cursorForPosition(help->pos()).position());
        if (tip.isEmpty()) return false;
        QToolTip::showText(help->globalPos(), tip, text1_->viewport());
        return true;
    }
    return false;
}

void MainWindow::RunTextMenu(const QString& name) {
    PushSelectionToSession();
    if (name == QStringLiteral("mnuReferences")) {
        ReferencesDialog references(session_, clipboard_, this);
        references.exec();
        return;
    }
    RunTextMenuItem(name.toStdString(), session_.controls.text1, session_.prompter, clipboard_,
                    [this] { ExportText(session_); });
    UpdateRepointCounter(session_);
    session_.Changed();
}

void MainWindow::ShowTextMenu(const QPoint& globalPos) {
    PushSelectionToSession();
    textMenu_->popup(globalPos);
}

}  // namespace quillon::ui
