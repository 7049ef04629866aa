#include "ui/tree_view_model.h"

#include "app/tree_model.h"
#include "offsets/offset_names.h"
#include "ui/text_bridge.h"
#include "ui/tree_icons.h"

#include <QFont>

#include <string_view>

namespace quillon::ui {
namespace {

char LowerAscii(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Whether `text` contains `lowerPart`, ignoring the case of ASCII letters.
bool Contains(std::string_view text, std::string_view lowerPart) {
    if (lowerPart.size() > text.size()) return false;
    for (std::size_t at = 0; at + lowerPart.size() <= text.size(); ++at) {
        std::size_t i = 0;
        while (i < lowerPart.size() && LowerAscii(text[at + i]) == lowerPart[i]) ++i;
        if (i == lowerPart.size()) return true;
    }
    return false;
}

}  // namespace

TreeViewModel::TreeViewModel(const TreeModel& tree, QObject* parent) : QAbstractItemModel(parent), tree_(tree) {}

void TreeViewModel::Reload() {
    beginResetModel();
    Layout();
    draft_.assign(tree_.Nodes().size(), false);
    endResetModel();
}

void TreeViewModel::SetFilter(const QString& text) {
    std::string lower = U(text.trimmed());
    for (char& c : lower) c = LowerAscii(c);
    if (lower == filter_) return;
    beginResetModel();
    filterBytes_ = NameBytes(lower);
    filter_ = std::move(lower);
    Layout();
    endResetModel();
}

void TreeViewModel::Layout() {
    const auto& nodes = tree_.Nodes();
    const std::size_t n = nodes.size();
    up_.assign(n, kTop);
    row_.assign(n, -1);
    top_.clear();
    children_.clear();
    children_.resize(n);
    textCount_ = 0;
    for (std::size_t i = 0; i < n; ++i) {
        if (nodes[i].parent && *nodes[i].parent < i) up_[i] = *nodes[i].parent;
        if (nodes[i].parent) ++textCount_;
    }

    // A node shows when it or a node above it matches, or a node below it shows.
    std::vector<bool> shown(n, true);
    if (!filter_.empty()) {
        // An offset may be typed with its "0x".
        std::string_view digits = filter_;
        if (digits.size() > 2 && digits.substr(0, 2) == "0x") digits.remove_prefix(2);
        for (std::size_t i = 0; i < n; ++i) {
            const TreeNode& node = nodes[i];
            const std::string_view offset = tree_.OffsetOf(i);
            shown[i] = Contains(node.text, filter_) || Contains(node.text, filterBytes_) ||
                       (!offset.empty() && Contains(offset, digits)) ||
                       (up_[i] != kTop && shown[up_[i]]);
        }
        for (std::size_t i = n; i-- > 0;)
            if (shown[i] && up_[i] != kTop) shown[up_[i]] = true;
    }
    for (std::size_t i = 0; i < n; ++i) {
        if (!shown[i]) continue;
        auto& rows = up_[i] == kTop ? top_ : children_[up_[i]];
        row_[i] = static_cast<int>(rows.size());
        rows.push_back(i);
    }
}

void TreeViewModel::SetDrafts(const std::vector<std::size_t>& marked) {
    std::vector<bool> next(draft_.size(), false);
    for (std::size_t node : marked)
        if (node < next.size()) next[node] = true;
    next.swap(draft_);
    for (std::size_t i = 0; i < draft_.size(); ++i) {
        if (draft_[i] == next[i]) continue;
        const QModelIndex at = IndexOf(i);
        if (at.isValid()) emit dataChanged(at, at, {Qt::FontRole, Qt::ToolTipRole});
    }
}

std::optional<std::size_t> TreeViewModel::NodeOf(const QModelIndex& index) const {
    if (!index.isValid() || index.model() != this) return std::nullopt;
    return static_cast<std::size_t>(index.internalId());
}

QModelIndex TreeViewModel::IndexOf(std::size_t node) const {
    if (node >= row_.size() || row_[node] < 0) return {};
    return createIndex(row_[node], 0, static_cast<quintptr>(node));
}

const std::vector<std::size_t>& TreeViewModel::RowsUnder(std::size_t node) const {
    return node == kTop ? top_ : children_[node];
}

QModelIndex TreeViewModel::index(int row, int column, const QModelIndex& parent) const {
    if (column != 0 || row < 0) return {};
    const auto& rows = RowsUnder(parent.isValid() ? static_cast<std::size_t>(parent.internalId()) : kTop);
    if (static_cast<std::size_t>(row) >= rows.size()) return {};
    return createIndex(row, 0, static_cast<quintptr>(rows[static_cast<std::size_t>(row)]));
}

QModelIndex TreeViewModel::parent(const QModelIndex& child) const {
    if (!child.isValid()) return {};
    const std::size_t up = up_[static_cast<std::size_t>(child.internalId())];
    return up == kTop ? QModelIndex() : IndexOf(up);
}

int TreeViewModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0) return 0;
    return static_cast<int>(RowsUnder(parent.isValid() ? static_cast<std::size_t>(parent.internalId()) : kTop).size());
}

int TreeViewModel::columnCount(const QModelIndex&) const { return 1; }

QVariant TreeViewModel::data(const QModelIndex& index, int role) const {
    const auto node = NodeOf(index);
    if (!node || *node >= tree_.Nodes().size()) return {};
    const TreeNode& n = tree_.Nodes()[*node];
    const bool draft = *node < draft_.size() && draft_[*node];
    switch (role) {
        case Qt::DisplayRole: return Q(n.text);
        case Qt::DecorationRole: return TreeIcon(Q(n.image));
        case Qt::FontRole: {
            if (!draft) return {};
            QFont italic;
            italic.setItalic(true);
            return italic;
        }
        case Qt::ToolTipRole: return draft ? QStringLiteral("Unsaved changes") : QVariant();
        default: return {};
    }
}

}  // namespace quillon::ui
