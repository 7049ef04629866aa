#include "ui/check_all_dialog.h"

#include "app/session.h"
#include "edit/text_view.h"
#include "ui/text_bridge.h"
#include "ui/xp_button.h"

#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

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
                            QStringLiteral("Line"), QStringLiteral("Width"), QStringLiteral("Widest line")});
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
        report_ = fit::CheckRom(session.romPath, session.OffsetFile(), settings.named, settings.Options());
    } catch (const std::exception& e) {
        report_.why = std::string("The check could not run: ") + e.what();
    }
    if (!report_.checked) {
        summary_->setText(Q(report_.why));
        return;
    }
    for (const fit::CheckRow& row : report_.rows) {
        auto* item = new QTreeWidgetItem(list_);
        item->setText(0, Q(row.section));
        item->setText(1, Q(row.key));
        item->setText(2, Q(row.offset));
        item->setText(3, QString::number(row.line + 1));
        item->setText(4, Q(fit::WidthCaption(row.width)));
        item->setText(5, Q(row.lineText));
    }
    for (int c = 0; c < 5; ++c) list_->resizeColumnToContents(c);
    QString text = QStringLiteral("%1 of %2 texts have a line over the message box (208 px); double-click one to open it.")
                       .arg(report_.rows.size())
                       .arg(report_.entries);
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
