#include "ui/check_all_dialog.h"

#include "app/session.h"
#include "edit/text_view.h"
#include "fit/boxes.h"
#include "ui/text_bridge.h"
#include "ui/xp_button.h"

#include <QColor>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace quillon::ui {

CheckAllDialog::CheckAllDialog(Session& session, const fit::FitSettings& settings, QWidget* parent)
    : QDialog(parent), session_(session) {
    setObjectName(QStringLiteral("frmCheckAll"));
    setWindowTitle(QStringLiteral("Check All Texts"));
    resize(640, 380);

    summary_ = new QLabel(this);
    summary_->setObjectName(QStringLiteral("lblCheckSummary"));
    summary_->setWordWrap(true);
    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("lstCheckAll"));
    list_->setRootIsDecorated(false);
    list_->setHeaderLabels({QStringLiteral("Section"), QStringLiteral("Key"), QStringLiteral("Offset"),
                            QStringLiteral("Line"), QStringLiteral("Width"), QStringLiteral("Widest line"),
                            QStringLiteral("Box")});
    auto* close = new XPButton(QStringLiteral("cmdClose"), QStringLiteral("&Close"), this);
    close->setFixedSize(110, 28);
    connect(close, &XPButton::clicked, this, &QDialog::accept);
    connect(list_, &QTreeWidget::itemDoubleClicked, this,
            [this](QTreeWidgetItem* item) { Open(list_->indexOfTopLevelItem(item)); });

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(summary_);
    layout->addWidget(list_, 1);
    layout->addWidget(close, 0, Qt::AlignRight);

    if (!session.RomOpen()) {
        summary_->setText(QStringLiteral("Open a ROM first."));
        return;
    }
    try {
        report_ = fit::CheckRom(session.romPath, session.OffsetFile(), settings.named, settings.PlayerName());
    } catch (const std::exception& e) {
        report_.why = std::string("The check could not run: ") + e.what();
    }
    if (!report_.checked) {
        summary_->setText(Q(report_.why));
        return;
    }
    // The texts over their box first; then, in grey, those over it only
    // with names and buffers at their longest.
    std::stable_partition(report_.rows.begin(), report_.rows.end(), [](const fit::CheckRow& r) { return r.over; });
    for (const fit::CheckRow& row : report_.rows) {
        const fit::Finding& f = row.First();
        auto* item = new QTreeWidgetItem(list_);
        item->setText(0, Q(row.section));
        item->setText(1, Q(row.key));
        item->setText(2, Q(row.offset));
        item->setText(3, QString::number(f.line + 1));
        item->setText(4, Q(fit::WidthCaption(f.width, row.box.width) + (f.names ? " with long names" : "")));
        item->setText(5, Q(f.lineText));
        item->setText(6, Q(row.box.name));
        if (f.names)
            for (int c = 0; c < 7; ++c) item->setForeground(c, QColor(120, 120, 120));
    }
    for (int c = 0; c < 5; ++c) list_->resizeColumnToContents(c);
    QString text = QStringLiteral("%1 of %2 texts have a line over the message box (%3 px); double-click one to open it.")
                       .arg(report_.over)
                       .arg(report_.entries)
                       .arg(report_.messageBox);
    if (report_.names > 0)
        text += QStringLiteral(" %1 more are over only with names and buffers at their longest (listed in grey).")
                    .arg(report_.names);
    if (!report_.skipped.empty())
        text += QStringLiteral(" %1 entries could not be read.").arg(report_.skipped.size());
    summary_->setText(text);
}

void CheckAllDialog::Open(int row) {
    if (row < 0 || static_cast<std::size_t>(row) >= report_.rows.size()) return;
    const fit::CheckRow& r = report_.rows[static_cast<std::size_t>(row)];
    const auto& nodes = session_.tree.Nodes();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].text == r.key && nodes[i].parent && nodes[*nodes[i].parent].text == r.section) {
            SelectNode(session_, i);
            accept();
            return;
        }
    }
}

}  // namespace quillon::ui
