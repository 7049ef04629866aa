#include "ui/main_window.h"

#include "app/session.h"
#include "edit/text_view.h"
#include "ui/tree_view_model.h"

#include <QItemSelectionModel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QTreeView>

#include <functional>

// The tree panel: the offset file's entries, their filter box, the drafts in
// italics and the tree's menu.
namespace quillon::ui {
namespace {

// Above this many texts the sections of a new tree start collapsed.
constexpr std::size_t kExpandedTexts = 300;

}  // namespace

void MainWindow::BuildTree() {
    const QFont small = font();
    treeFilter_ = new QLineEdit(this);
    treeFilter_->setObjectName(QStringLiteral("txtTreeFilter"));
    treeFilter_->setPlaceholderText(QStringLiteral("Filter by section, name or offset"));
    treeFilter_->setClearButtonEnabled(true);
    treeFilter_->setFont(small);
    connect(treeFilter_, &QLineEdit::textChanged, this, [this](const QString& text) { FilterTree(text); });

    tree_ = new QTreeView(this);
    tree_->setObjectName(QStringLiteral("TreeView1"));
    tree_->setHeaderHidden(true);
    tree_->setIconSize(QSize(16, 16));
    tree_->setUniformRowHeights(true);
    tree_->setContextMenuPolicy(Qt::CustomContextMenu);
    treeModel_ = new TreeViewModel(session_.tree, tree_);
    tree_->setModel(treeModel_);
    connect(tree_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this](const QModelIndex& index) {
        const auto node = treeModel_->NodeOf(index);
        if (syncing_ || !node) return;
        SelectNode(session_, *node);
    });
    // A click on the node that is already selected loads it again.
    tree_->viewport()->installEventFilter(this);
    connect(tree_, &QTreeView::clicked, this, [this](const QModelIndex& index) {
        const auto node = treeModel_->NodeOf(index);
        if (syncing_ || !node || !pressedCurrent_) return;
        SelectNode(session_, *node);
    });
    connect(tree_, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) { ShowTreeMenu(pos); });
}

bool MainWindow::TreeEvent(QObject* watched, QEvent* event) {
    if (watched == tree_->viewport() && event->type() == QEvent::MouseButtonPress) {
        const QModelIndex hit = tree_->indexAt(static_cast<QMouseEvent*>(event)->position().toPoint());
        pressedCurrent_ = hit.isValid() && hit == tree_->currentIndex();
    }
    return false;
}

void MainWindow::ShowTreeMenu(const QPoint& pos) {
    // A right-click selects and loads the node before the menu opens; on
    // empty space it does nothing.
    const auto node = treeModel_->NodeOf(tree_->indexAt(pos));
    if (!node) return;
    SelectNode(session_, *node);
    treeMenu_->popup(tree_->viewport()->mapToGlobal(pos));
}

void MainWindow::RefreshTree() {
    const TreeModel& tree = session_.tree;
    bool rebuilt = false;
    if (tree.Generation() != treeGeneration_) {
        treeGeneration_ = tree.Generation();
        // A new reading of the same file keeps the view as it is.
        std::size_t signature = std::hash<std::size_t>{}(tree.Nodes().size());
        for (std::size_t i = 0; i < tree.Nodes().size(); ++i) {
            const TreeNode& n = tree.Nodes()[i];
            signature = (signature * 1000003u) ^ std::hash<std::string_view>{}(n.key) ^
                        (std::hash<std::string_view>{}(n.text) * 31u) ^ (std::hash<std::string_view>{}(n.image) * 7u) ^
                        (std::hash<std::string_view>{}(tree.OffsetOf(i)) * 131u);
        }
        rebuilt = signature != treeSignature_;
        treeSignature_ = signature;
    }
    if (rebuilt) {
        // Sections the user opened in a large tree stay open when the same file is read again.
        const std::string file = session_.OffsetFile().string();
        const bool keep = file == treeFile_ && treeModel_->TextCount() > kExpandedTexts;
        const QStringList expanded = keep ? ExpandedSections() : QStringList();
        treeFile_ = file;
        treeModel_->Reload();
        ExpandSections(expanded);
    }
    const QModelIndex selected = tree.Selected() ? treeModel_->IndexOf(*tree.Selected()) : QModelIndex();
    if (tree_->currentIndex() != selected) {
        tree_->selectionModel()->setCurrentIndex(selected, QItemSelectionModel::ClearAndSelect);
        ShowSelectedNode();
    }
    MarkDrafts();
}

void MainWindow::FilterTree(const QString& text) {
    if (!treeModel_->Filtering()) expandedBeforeFilter_ = ExpandedSections();
    const bool wasSyncing = syncing_;
    syncing_ = true;  // the rows change under the selection; the session's choice stays
    treeModel_->SetFilter(text);
    ExpandSections(expandedBeforeFilter_);
    const QModelIndex selected =
        session_.tree.Selected() ? treeModel_->IndexOf(*session_.tree.Selected()) : QModelIndex();
    tree_->selectionModel()->setCurrentIndex(selected, QItemSelectionModel::ClearAndSelect);
    ShowSelectedNode();
    syncing_ = wasSyncing;
}

QStringList MainWindow::ExpandedSections() const {
    QStringList names;
    for (int row = 0, rows = treeModel_->rowCount(); row < rows; ++row) {
        const QModelIndex section = treeModel_->index(row, 0);
        if (tree_->isExpanded(section)) names << section.data().toString();
    }
    return names;
}

void MainWindow::ExpandSections(const QStringList& names) {
    // A filtered tree and a small one show all their texts; a large one
    // opens with its sections collapsed and keeps those the user opened.
    if (treeModel_->Filtering() || treeModel_->TextCount() <= kExpandedTexts) {
        tree_->expandAll();
        return;
    }
    if (names.isEmpty()) return;
    for (int row = 0, rows = treeModel_->rowCount(); row < rows; ++row) {
        const QModelIndex section = treeModel_->index(row, 0);
        if (names.contains(section.data().toString())) tree_->expand(section);
    }
}

void MainWindow::ShowSelectedNode() {
    const QModelIndex current = tree_->currentIndex();
    if (!current.isValid()) return;
    if (current.parent().isValid()) tree_->expand(current.parent());
    tree_->scrollTo(current);
}

void MainWindow::MarkDrafts() {
    // Entries with a draft show in italics.
    std::string marks = std::to_string(session_.tree.Generation());
    for (const auto& [entry, draft] : session_.drafts) marks.append(1, '\0').append(entry);
    if (marks == markedDrafts_) return;
    markedDrafts_ = marks;
    std::vector<std::size_t> marked;
    const auto& nodes = session_.tree.Nodes();
    for (const auto& [entry, draft] : session_.drafts) {
        const auto cut = entry.find('\n');
        const std::string_view section = std::string_view(entry).substr(0, cut);
        const std::string_view key = cut == std::string::npos ? std::string_view() : std::string_view(entry).substr(cut + 1);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const auto& up = nodes[i].parent;
            if (up && *up < nodes.size() && nodes[i].text == key && nodes[*up].text == section) marked.push_back(i);
        }
    }
    treeModel_->SetDrafts(marked);
}

}  // namespace quillon::ui
