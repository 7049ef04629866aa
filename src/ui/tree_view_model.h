#pragma once
// The session's offset-file tree as a Qt item model, for TreeView1. The rows
// are read from the plain model on demand; only the row structure (which
// nodes show, in what order) is kept here, so a rebuild of 40,000 entries
// costs a few index arrays instead of one widget item per entry.
#include <QAbstractItemModel>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quillon {
class TreeModel;
}

namespace quillon::ui {

class TreeViewModel : public QAbstractItemModel {
public:
    explicit TreeViewModel(const TreeModel& tree, QObject* parent = nullptr);

    // Takes the plain model's nodes anew; views see a reset.
    void Reload();
    // Shows only the texts whose section, key or offset contains `text`
    // (ignoring the case of ASCII letters) and the sections that hold them;
    // an empty text shows everything.
    void SetFilter(const QString& text);
    bool Filtering() const { return !filter_.empty(); }
    // Entries with a draft show in italics; `marked` holds node indices.
    void SetDrafts(const std::vector<std::size_t>& marked);

    // The node behind an index, and the index of a node (invalid when the
    // filter hides it).
    std::optional<std::size_t> NodeOf(const QModelIndex& index) const;
    QModelIndex IndexOf(std::size_t node) const;
    // Number of nodes that have a parent: the texts of the offset file.
    std::size_t TextCount() const { return textCount_; }

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

private:
    static constexpr std::size_t kTop = static_cast<std::size_t>(-1);
    void Layout();
    bool Shows(std::size_t node) const;
    const std::vector<std::size_t>& RowsUnder(std::size_t node) const;

    const TreeModel& tree_;
    std::string filter_;       // lower case, UTF-8
    std::string filterBytes_;  // the same as a Latin-1 name of the file holds it
    std::vector<std::size_t> up_;                      // a node's parent as shown, or kTop
    std::vector<std::size_t> top_;                     // the rows at the top, by node
    std::vector<std::vector<std::size_t>> children_;   // the rows under each node
    std::vector<int> row_;                             // a node's row, or -1 when hidden
    std::vector<bool> draft_;
    std::size_t textCount_ = 0;
};

}  // namespace quillon::ui
