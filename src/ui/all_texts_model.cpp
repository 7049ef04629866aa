#include "ui/all_texts_model.h"

#include "ui/text_bridge.h"

#include <QColor>
#include <QFont>

namespace quillon::ui {
namespace {

overview::Column ColumnOf(int column) {
    switch (column) {
        case AllTextsModel::kSection: return overview::Column::Section;
        case AllTextsModel::kName: return overview::Column::Name;
        case AllTextsModel::kOffset: return overview::Column::Offset;
        case AllTextsModel::kFirstLine: return overview::Column::FirstLine;
        case AllTextsModel::kBytes: return overview::Column::Bytes;
        case AllTextsModel::kRoom: return overview::Column::Room;
        case AllTextsModel::kReferences: return overview::Column::References;
        case AllTextsModel::kFit: return overview::Column::Fit;
        case AllTextsModel::kDraft: return overview::Column::Draft;
        default: return overview::Column::File;
    }
}

QString FitTip(overview::Finding finding) {
    switch (finding) {
        case overview::Finding::Over: return QStringLiteral("A line is wider than the message box.");
        case overview::Finding::Names:
            return QStringLiteral("A line is wider than the message box only while its names count at their "
                                  "longest (7 letters).");
        case overview::Finding::None: break;
    }
    return {};
}

}  // namespace

void AllTextsModel::SetTexts(std::shared_ptr<const overview::AllTexts> texts) {
    beginResetModel();
    texts_ = std::move(texts);
    shown_.clear();
    if (texts_)
        for (std::uint32_t r = 0; r < texts_->Rows().size(); ++r) shown_.push_back(r);
    drafts_.assign(texts_ ? texts_->Rows().size() : 0, false);
    Order();
    endResetModel();
}

void AllTextsModel::SetQuery(const overview::Query& query) {
    if (!texts_) return;
    beginResetModel();
    shown_ = texts_->Filter(query);
    Order();
    endResetModel();
}

void AllTextsModel::SetDrafts(std::vector<bool> drafts) {
    drafts.resize(drafts_.size(), false);
    if (drafts == drafts_) return;
    drafts_ = std::move(drafts);
    if (sortColumn_ == kDraft) {
        sort(sortColumn_, descending_ ? Qt::DescendingOrder : Qt::AscendingOrder);
        return;
    }
    if (!shown_.empty()) emit dataChanged(index(0, 0), index(Shown() - 1, kColumns - 1));
}

void AllTextsModel::Order() {
    if (texts_ && sortColumn_ >= 0) texts_->Sort(shown_, ColumnOf(sortColumn_), descending_, drafts_);
}

const overview::Row* AllTextsModel::RowAt(int row) const {
    if (!texts_ || row < 0 || row >= Shown()) return nullptr;
    return &texts_->Rows()[shown_[static_cast<std::size_t>(row)]];
}

int AllTextsModel::ViewRowOf(std::uint32_t plainRow) const {
    for (std::size_t i = 0; i < shown_.size(); ++i)
        if (shown_[i] == plainRow) return static_cast<int>(i);
    return -1;
}

int AllTextsModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : Shown(); }

int AllTextsModel::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : kColumns; }

QVariant AllTextsModel::data(const QModelIndex& index, int role) const {
    const overview::Row* row = RowAt(index.row());
    if (!row) return {};
    const bool draft = drafts_[shown_[static_cast<std::size_t>(index.row())]];
    const bool readable = row->problem.empty();
    const int column = index.column();
    if (role == Qt::DisplayRole) {
        switch (column) {
            case kSection: return Q(row->section);
            case kName: return Q(row->name);
            case kOffset: return Q(row->offset);
            case kFirstLine: return readable ? Q(row->firstLine) : Q(row->problem);
            case kBytes: return readable ? QVariant(row->bytes) : QVariant();
            case kRoom: return readable ? QVariant(row->room) : QVariant();
            case kReferences: return readable ? QVariant(row->References()) : QVariant();
            case kFit: return Q(overview::FindingName(row->finding));
            case kDraft: return draft ? QStringLiteral("draft") : QString();
            default: return {};
        }
    }
    if (role == Qt::ToolTipRole) {
        if (column == kReferences && readable) return QStringLiteral("Places: ") + Q(row->PlacesCaption());
        if (column == kFit) return FitTip(row->finding);
        if (column == kDraft && draft) return QStringLiteral("An unsaved edit of this text is kept");
        if (column == kFirstLine && !readable) return Q(row->problem);
        return {};
    }
    if (role == Qt::TextAlignmentRole && (column == kBytes || column == kRoom || column == kReferences))
        return QVariant::fromValue(Qt::AlignRight | Qt::AlignVCenter);
    if (role == Qt::ForegroundRole) {
        if (!readable && column == kFirstLine) return QColor(128, 128, 128);
        if (column == kFit && row->finding == overview::Finding::Over) return QColor(176, 32, 32);
        if (column == kFit && row->finding == overview::Finding::Names) return QColor(160, 96, 0);
    }
    if (role == Qt::FontRole && draft) {
        QFont italic;
        italic.setItalic(true);
        return italic;
    }
    return {};
}

QVariant AllTextsModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal) return {};
    static const char* const names[kColumns] = {"Section", "Name", "Offset", "First line", "Bytes",
                                                "Room",    "Refs", "Fit",    "Draft"};
    static const char* const tips[kColumns] = {
        nullptr, nullptr, "Where the text starts (hexadecimal)", nullptr, "Length of the text in bytes",
        "Bytes it may grow before it must move",
        "Places that refer to it: script operands, table slots and literal pools (the tooltip of a row names all)",
        "over: a line is wider than the message box; names: only while names count at their longest",
        "An unsaved edit is kept"};
    if (section < 0 || section >= kColumns) return {};
    if (role == Qt::DisplayRole) return QString::fromLatin1(names[section]);
    if (role == Qt::ToolTipRole && tips[section]) return QString::fromLatin1(tips[section]);
    return {};
}

void AllTextsModel::sort(int column, Qt::SortOrder order) {
    emit layoutAboutToBeChanged();
    // The current row and the selection stay on their texts.
    const QModelIndexList before = persistentIndexList();
    std::vector<std::uint32_t> plain;
    for (const QModelIndex& i : before) plain.push_back(shown_[static_cast<std::size_t>(i.row())]);
    sortColumn_ = column;
    descending_ = order == Qt::DescendingOrder;
    if (texts_) {
        if (column < 0) std::sort(shown_.begin(), shown_.end());
        Order();
    }
    std::vector<int> viewRow(drafts_.size(), -1);
    for (std::size_t i = 0; i < shown_.size(); ++i) viewRow[shown_[i]] = static_cast<int>(i);
    QModelIndexList after;
    for (qsizetype i = 0; i < before.size(); ++i)
        after << index(viewRow[plain[static_cast<std::size_t>(i)]], before[i].column());
    changePersistentIndexList(before, after);
    emit layoutChanged();
}

}  // namespace quillon::ui
