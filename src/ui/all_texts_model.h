#pragma once
// The rows of the All Texts window as a Qt table model over the plain model
// of every entry: which rows show (the filter) in what order (the sort), and
// which carry a draft. Nothing is copied per row; data() reads the plain rows.
#include "overview/all_texts.h"

#include <QAbstractTableModel>

#include <memory>
#include <vector>

namespace quillon::ui {

class AllTextsModel : public QAbstractTableModel {
public:
    enum Columns { kSection, kName, kOffset, kFirstLine, kBytes, kRoom, kReferences, kFit, kDraft, kColumns };

    explicit AllTextsModel(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

    // A new plain model: every row shows, in file order, until the next filter.
    void SetTexts(std::shared_ptr<const overview::AllTexts> texts);
    const overview::AllTexts* Texts() const { return texts_.get(); }
    // Shows the rows that `query` keeps, in the current sort order.
    void SetQuery(const overview::Query& query);
    // Rows with a draft, by row of the plain model.
    void SetDrafts(std::vector<bool> drafts);

    // The plain row shown at `row`, and the view row of a plain row (-1: hidden).
    const overview::Row* RowAt(int row) const;
    int ViewRowOf(std::uint32_t plainRow) const;
    int Shown() const { return static_cast<int>(shown_.size()); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    // Column -1 is the order of the offset file.
    void sort(int column, Qt::SortOrder order = Qt::AscendingOrder) override;

private:
    void Order();

    std::shared_ptr<const overview::AllTexts> texts_;
    std::vector<std::uint32_t> shown_;  // plain rows, in view order
    std::vector<bool> drafts_;
    int sortColumn_ = -1;
    bool descending_ = false;
};

}  // namespace quillon::ui
