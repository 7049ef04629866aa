#include "ui/all_texts_window.h"

#include "app/session.h"
#include "edit/drafts.h"
#include "edit/text_view.h"
#include "overview/all_texts.h"
#include "ui/all_texts_model.h"
#include "ui/text_bridge.h"
#include "ui/xp_button.h"

#include <QComboBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPointer>
#include <QScreen>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <filesystem>
#include <unordered_set>

namespace quillon::ui {
namespace {

// What the rows depend on: the tree, its file and the ROM's size and time.
std::string StateOf(const Session& session) {
    std::error_code ec;
    const auto size = std::filesystem::file_size(session.romPath, ec);
    const auto time = std::filesystem::last_write_time(session.romPath, ec).time_since_epoch().count();
    return session.romPath.string() + '\n' + session.OffsetFile().string() + '\n' +
           std::to_string(session.tree.Generation()) + '\n' + std::to_string(size) + '\n' + std::to_string(time);
}

QString Thousands(int n) { return QLocale(QLocale::English).toString(n); }

}  // namespace

AllTextsWindow::AllTextsWindow(Session& session, QWidget* mainWindow)
    : QWidget(mainWindow, Qt::Window), session_(session), main_(mainWindow) {
    setObjectName(QStringLiteral("frmAllTexts"));
    setWindowTitle(QStringLiteral("All Texts"));
    setAttribute(Qt::WA_DeleteOnClose, false);

    filter_ = new QLineEdit(this);
    filter_->setObjectName(QStringLiteral("txtAllFilter"));
    filter_->setPlaceholderText(QStringLiteral("Words of the texts, names or an offset"));
    filter_->setClearButtonEnabled(true);
    filter_->installEventFilter(this);
    section_ = new QComboBox(this);
    section_->setObjectName(QStringLiteral("cboAllSection"));
    section_->setToolTip(QStringLiteral("Only the texts of one section"));
    section_->setMinimumContentsLength(18);
    section_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    finding_ = new QComboBox(this);
    finding_->setObjectName(QStringLiteral("cboAllFit"));
    finding_->setToolTip(QStringLiteral("Only the texts with a line over the message box"));
    finding_->addItems({QStringLiteral("Any fit"), QStringLiteral("Over the box"),
                        QStringLiteral("Over with names at longest"), QStringLiteral("Over or names")});

    model_ = new AllTextsModel(this);
    list_ = new QTreeView(this);
    list_->setObjectName(QStringLiteral("lstAllTexts"));
    list_->setRootIsDecorated(false);
    list_->setUniformRowHeights(true);
    list_->setAlternatingRowColors(true);
    list_->setAllColumnsShowFocus(true);
    list_->setSelectionBehavior(QAbstractItemView::SelectRows);
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    list_->setModel(model_);
    list_->installEventFilter(this);
    QHeaderView* header = list_->header();
    header->setSortIndicator(-1, Qt::AscendingOrder);  // file order until a column is clicked
    list_->setSortingEnabled(true);
    header->setStretchLastSection(false);
    const int widths[AllTextsModel::kColumns] = {150, 130, 62, 300, 48, 48, 40, 58, 46};
    for (int c = 0; c < AllTextsModel::kColumns; ++c) header->resizeSection(c, widths[c]);
    header->setSectionResizeMode(AllTextsModel::kFirstLine, QHeaderView::Stretch);

    count_ = new QLabel(this);
    count_->setObjectName(QStringLiteral("lblAllCount"));
    show_ = new XPButton(QStringLiteral("cmdShow"), QStringLiteral("&Show in Main Window"), this);
    close_ = new XPButton(QStringLiteral("cmdClose"), QStringLiteral("&Close"), this);
    show_->setMinimumWidth(170);
    close_->setMinimumWidth(90);
    for (XPButton* b : {show_, close_}) b->setMinimumHeight(26);

    auto* top = new QHBoxLayout;
    top->addWidget(filter_, 1);
    top->addWidget(section_);
    top->addWidget(finding_);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(count_, 1);
    bottom->addWidget(show_);
    bottom->addWidget(close_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(list_, 1);
    layout->addLayout(bottom);
    resize(960, 540);

    connect(filter_, &QLineEdit::textChanged, this, [this] { ApplyFilter(); });
    connect(section_, &QComboBox::currentIndexChanged, this, [this] { ApplyFilter(); });
    connect(finding_, &QComboBox::currentIndexChanged, this, [this] { ApplyFilter(); });
    connect(list_, &QTreeView::doubleClicked, this, [this](const QModelIndex& i) { Open(i.row()); });
    connect(show_, &XPButton::clicked, this, [this] { Open(list_->currentIndex().row()); });
    connect(close_, &XPButton::clicked, this, &QWidget::close);
    QPointer<AllTextsWindow> self(this);
    session_.OnChanged([self] {
        if (self) self->Refresh();
    });
}

void AllTextsWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!placed_) PlaceBesideMainWindow();
    Refresh();
}

void AllTextsWindow::PlaceBesideMainWindow() {
    // Right of the main window; where the screen has no room there, left of
    // its editor (over its buttons and tree); else at the screen's right edge.
    placed_ = true;
    QScreen* screen = main_ ? main_->screen() : QGuiApplication::primaryScreen();
    if (!main_ || !screen) return;
    constexpr int kGap = 12, kNarrowest = 600;
    const QRect area = screen->availableGeometry();
    const QRect beside = main_->frameGeometry();
    const QWidget* editor = main_->findChild<QWidget*>(QStringLiteral("Text1"));
    const int editorLeft = editor ? editor->mapToGlobal(QPoint(0, 0)).x() : beside.left();
    const int right = area.right() - beside.right() - kGap, left = editorLeft - area.left() - kGap;
    const int height = std::min(this->height(), area.height() - 40);
    const int top = std::clamp(beside.top(), area.top(), std::max(area.top(), area.bottom() - height - 30));
    if (right >= kNarrowest) {
        setGeometry(beside.right() + kGap, top, std::min(width(), right), height);
    } else if (left >= kNarrowest) {
        const int w = std::min(width(), left);
        setGeometry(editorLeft - kGap - w, top, w, height);
    } else {
        setGeometry(std::max(area.left(), area.right() - width()), top, std::min(width(), area.width()), height);
    }
}

void AllTextsWindow::Refresh() {
    if (!isVisible()) return;
    if (!session_.RomOpen()) {
        if (model_->Texts()) model_->SetTexts(nullptr);
        builtFor_.clear();
        count_->setText(QStringLiteral("Open a ROM first."));
        return;
    }
    if (StateOf(session_) != builtFor_) Rebuild();
    MarkDrafts();
}

void AllTextsWindow::Rebuild() {
    builtFor_ = StateOf(session_);
    std::shared_ptr<const overview::AllTexts> texts;
    try {
        texts = std::make_shared<const overview::AllTexts>(overview::BuildFor(session_));
    } catch (const std::exception& e) {
        model_->SetTexts(nullptr);
        count_->setText(QStringLiteral("The texts could not be read: ") + Q(e.what()));
        return;
    }
    // The row chosen before stays chosen; a filter typed for one game means
    // nothing in the next.
    const overview::Row* chosen = model_->RowAt(list_->currentIndex().row());
    std::pair<std::string, std::string> keep;
    if (chosen) keep = {chosen->section, chosen->name};
    const bool sameRom = romFor_ == session_.romPath.string();
    romFor_ = session_.romPath.string();
    const QString section = sameRom ? section_->currentText() : QString();
    const QSignalBlocker quietFilter(filter_), quietSection(section_), quietFinding(finding_);
    if (!sameRom) {
        filter_->clear();
        finding_->setCurrentIndex(0);
    }
    section_->clear();
    section_->addItem(QStringLiteral("All sections"));
    for (const std::string& s : texts->Sections()) section_->addItem(Q(s));
    section_->setCurrentIndex(std::max(0, section_->findText(section, Qt::MatchExactly)));
    draftsFor_.clear();
    const auto& rows = texts->Rows();
    const auto again = std::find_if(rows.begin(), rows.end(), [&](const overview::Row& r) {
        return sameRom && r.section == keep.first && r.name == keep.second;
    });
    const auto kept = static_cast<std::uint32_t>(again - rows.begin());
    model_->SetTexts(std::move(texts));
    ApplyFilter(kept);
}

void AllTextsWindow::ApplyFilter(std::optional<std::uint32_t> keep) {
    const overview::AllTexts* texts = model_->Texts();
    if (!texts) return;
    // The row chosen before stays chosen when the filter keeps it.
    const overview::Row* before = model_->RowAt(list_->currentIndex().row());
    const std::uint32_t kept =
        keep ? *keep : before ? static_cast<std::uint32_t>(before - texts->Rows().data()) : UINT32_MAX;
    overview::Query query;
    query.words = U(filter_->text());
    if (section_->currentIndex() > 0) query.section = U(section_->currentText());
    query.finding = static_cast<overview::FindingFilter>(std::max(0, finding_->currentIndex()));
    model_->SetQuery(query);
    const int row = kept == UINT32_MAX ? -1 : model_->ViewRowOf(kept);
    if (row >= 0) {
        list_->setCurrentIndex(model_->index(row, 0));
        list_->scrollTo(model_->index(row, 0));
    }
    const int total = static_cast<int>(texts->Rows().size());
    const QString shown = Thousands(model_->Shown());
    count_->setText(model_->Shown() == total ? QStringLiteral("%1 texts").arg(Thousands(total))
                                             : QStringLiteral("%1 of %2 texts").arg(shown, Thousands(total)));
}

void AllTextsWindow::MarkDrafts() {
    const overview::AllTexts* texts = model_->Texts();
    if (!texts) return;
    std::string marks;
    for (const auto& [entry, draft] : session_.drafts) marks.append(entry).append(1, '\0');
    if (marks == draftsFor_) return;
    draftsFor_ = marks;
    std::vector<bool> drafts(texts->Rows().size(), false);
    if (!session_.drafts.empty()) {
        const auto& nodes = session_.tree.Nodes();
        for (std::size_t r = 0; r < drafts.size(); ++r) {
            const std::size_t node = texts->Rows()[r].node;
            if (node < nodes.size() && nodes[node].parent)
                drafts[r] = session_.drafts.count(DraftKey(nodes[*nodes[node].parent].text, nodes[node].text)) > 0;
        }
    }
    model_->SetDrafts(std::move(drafts));
}

void AllTextsWindow::Open(int viewRow) {
    const overview::Row* row = model_->RowAt(viewRow);
    if (!row || row->node >= session_.tree.Nodes().size()) return;
    SelectNode(session_, row->node);
}

void AllTextsWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QWidget::keyPressEvent(event);
}

bool AllTextsWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent*>(event)->key();
    const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
    if (watched == list_ && enter) {
        Open(list_->currentIndex().row());
        return true;
    }
    if (watched == filter_ && (enter || key == Qt::Key_Down || key == Qt::Key_PageDown)) {
        // From the filter box: Enter shows the chosen (or first) text, Down goes to the list.
        if (model_->Shown() == 0) return true;
        if (!list_->currentIndex().isValid()) list_->setCurrentIndex(model_->index(0, 0));
        if (enter)
            Open(list_->currentIndex().row());
        else
            list_->setFocus(Qt::TabFocusReason);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace quillon::ui
