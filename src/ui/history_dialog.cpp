#include "ui/history_dialog.h"

#include "app/session.h"
#include "history/history_columns.h"
#include "history/history_commands.h"
#include "store/history.h"
#include "store/replay.h"
#include "ui/menu_builder.h"
#include "ui/text_bridge.h"
#include "ui/xp_button.h"

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QSpinBox>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quillon::ui {

namespace {

constexpr std::uint64_t kMiB = 1 << 20;

}  // namespace

HistoryDialog::HistoryDialog(Session& session, QWidget* parent)
    : QDialog(parent, Qt::Tool), session_(session) {
    setObjectName(QStringLiteral("frmHistory"));
    setWindowTitle(QStringLiteral("History"));
    setModal(true);
    resize(640, 380);

    auto* layout = new QVBoxLayout(this);
    problem_ = new QLabel(this);
    problem_->setObjectName(QStringLiteral("lblProblem"));
    problem_->setWordWrap(true);
    layout->addWidget(problem_);

    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("lstHistory"));
    list_->setRootIsDecorated(false);
    list_->setHeaderLabels({QStringLiteral("#"), QStringLiteral("When"), QStringLiteral("What"),
                            QStringLiteral("Entry"), QStringLiteral("Size"), QStringLiteral("State")});
    list_->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    layout->addWidget(list_, 1);

    auto* steps = new QHBoxLayout;
    goBack_ = new XPButton(QStringLiteral("cmdGoBack"), QStringLiteral("&Go Back Before This Save"), this);
    undo_ = new XPButton(QStringLiteral("cmdUndo"), QStringLiteral("&Undo Last Save"), this);
    redo_ = new XPButton(QStringLiteral("cmdRedo"), QStringLiteral("&Redo"), this);
    for (XPButton* b : {goBack_, undo_, redo_}) steps->addWidget(b);
    layout->addLayout(steps);

    auto* keep = new QHBoxLayout;
    usage_ = new QLabel(this);
    usage_->setObjectName(QStringLiteral("lblUsage"));
    keep->addWidget(usage_, 1);
    auto* limitLabel = new QLabel(QStringLiteral("Keep at most (MiB):"), this);
    keep->addWidget(limitLabel);
    limit_ = new QSpinBox(this);
    limit_->setObjectName(QStringLiteral("spnLimit"));
    limit_->setRange(1, 4096);
    keep->addWidget(limit_);
    auto* setLimit = new XPButton(QStringLiteral("cmdSetLimit"), QStringLiteral("&Set"), this);
    auto* clear = new XPButton(QStringLiteral("cmdClear"), QStringLiteral("C&lear History"), this);
    auto* close = new XPButton(QStringLiteral("cmdClose"), QStringLiteral("&Close"), this);
    for (XPButton* b : {setLimit, clear, close}) keep->addWidget(b);
    layout->addLayout(keep);

    connect(goBack_, &XPButton::clicked, this, [this] {
        if (auto* item = list_->currentItem()) GoBackCommand(session_, item->data(0, Qt::UserRole).toULongLong());
        Reload();
    });
    connect(undo_, &XPButton::clicked, this, [this] {
        UndoLastSaveCommand(session_);
        Reload();
    });
    connect(redo_, &XPButton::clicked, this, [this] {
        RedoSaveCommand(session_);
        Reload();
    });
    connect(setLimit, &XPButton::clicked, this, [this] {
        try {
            SetHistoryLimit(session_.romPath, static_cast<std::uint64_t>(limit_->value()) * kMiB);
        } catch (const std::exception& e) {
            session_.prompter.Message(Icon::Critical, e.what(), "History");
        }
        Reload();
    });
    connect(clear, &XPButton::clicked, this, [this] {
        if (!session_.prompter.AskYesNo("Remove every entry of this ROM's history?\r\nSaves can then no longer be undone.",
                                        "History"))
            return;
        try {
            ClearHistory(session_.romPath);
        } catch (const std::exception& e) {
            session_.prompter.Message(Icon::Critical, e.what(), "History");
        }
        Reload();
    });
    connect(close, &XPButton::clicked, this, &QDialog::accept);
    connect(list_, &QTreeWidget::currentItemChanged, this,
            [this](QTreeWidgetItem* item) { goBack_->setEnabled(item && !item->data(5, Qt::UserRole).toBool()); });
    Reload();
}

void HistoryDialog::Reload() {
    list_->clear();
    const HistoryListing listing = ListHistory(session_.romPath);
    problem_->setText(Q(listing.problem));
    problem_->setVisible(!listing.problem.empty());
    bool anyApplied = false, anyUndone = false;
    for (const HistoryEntry& e : listing.entries) {
        auto* item = new QTreeWidgetItem(list_);
        item->setText(0, QString::number(e.number));
        item->setText(1, Q(HistoryTime(e.when)));
        item->setText(2, Q(e.command));
        item->setText(3, Q(e.subject));
        item->setText(4, Q(HistorySize(e.bytes)));
        item->setText(5, Q(HistoryState(e)));
        item->setData(0, Qt::UserRole, QVariant::fromValue<qulonglong>(e.number));
        item->setData(5, Qt::UserRole, e.undone);
        (e.undone ? anyUndone : anyApplied) = true;
    }
    usage_->setText(Q(HistoryUsage(listing)));
    limit_->setValue(static_cast<int>(std::max<std::uint64_t>(1, listing.limit / kMiB)));
    undo_->setEnabled(anyApplied);
    redo_->setEnabled(anyUndone);
    goBack_->setEnabled(false);
}

bool RunHistoryItem(MenuAction action, Session& session, QWidget* parent) {
    switch (action) {
        case MenuAction::UndoSave: UndoLastSaveCommand(session); return true;
        case MenuAction::RedoSave: RedoSaveCommand(session); return true;
        case MenuAction::CreatePatch: CreatePatchCommand(session); return true;
        case MenuAction::ApplyPatch: ApplyPatchCommand(session); return true;
        case MenuAction::History: {
            if (!session.RomOpen()) {
                session.prompter.Message(Icon::Information, "Open a ROM first.");
                return true;
            }
            HistoryDialog dialog(session, parent);
            dialog.exec();
            return true;
        }
        default: return false;
    }
}

void AddHistoryShortcuts(QWidget* window, QMenu* tools) {
    const std::pair<const char*, QKeySequence> keys[] = {
        {"mnuUndoSave", QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Z)},
        {"mnuRedoSave", QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Y)},
    };
    for (const auto& [name, key] : keys) {
        if (QAction* action = FindAction(tools, QString::fromLatin1(name))) {
            action->setShortcut(key);
            action->setShortcutContext(Qt::WindowShortcut);
            window->addAction(action);
        }
    }
}

}  // namespace quillon::ui
