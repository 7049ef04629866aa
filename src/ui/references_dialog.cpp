#include "ui/references_dialog.h"

#include "ui/text_bridge.h"
#include "ui/xp_button.h"

#include "app/clipboard.h"
#include "app/session.h"
#include "discover/reference_list.h"

#include <quillon/errors.h>

#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace quillon::ui {

ReferencesDialog::ReferencesDialog(const Session& session, Clipboard& clipboard, QWidget* parent)
    : QDialog(parent, Qt::Tool) {
    setObjectName(QStringLiteral("frmReferences"));
    setWindowTitle(QStringLiteral("References"));
    setModal(true);
    auto* layout = new QVBoxLayout(this);
    label_ = new QLabel(this);
    label_->setObjectName(QStringLiteral("lblReferences"));
    label_->setWordWrap(true);
    list_ = new QTreeWidget(this);
    list_->setObjectName(QStringLiteral("lstReferences"));
    list_->setRootIsDecorated(false);
    list_->setHeaderLabels({QStringLiteral("Offset"), QStringLiteral("Class"), QStringLiteral("Bytes around")});
    list_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    close_ = new XPButton(QStringLiteral("cmdClose"), QStringLiteral("&Close"), this);
    layout->addWidget(label_);
    layout->addWidget(list_);
    layout->addWidget(close_, 0, Qt::AlignRight);
    connect(close_, &XPButton::clicked, this, &QDialog::accept);

    const std::string& offset = session.controls.offsetCaption;
    std::vector<discover::ReferenceRow> rows;
    QString error;
    try {
        rows = discover::ReferenceRows(session.romPath, offset);
    } catch (const FileError& e) {
        error = Q(e.what());
    }
    for (const auto& row : rows) {
        auto* item = new QTreeWidgetItem(list_, {Q(row.offset), Q(row.kind), Q(row.bytes)});
        for (int column = 0; column < 3; ++column) item->setToolTip(column, Q(row.rule));
    }
    list_->header()->resizeSections(QHeaderView::ResizeToContents);
    const QString places = rows.size() == 1 ? QStringLiteral("1 place holds")
                                            : QStringLiteral("%1 places hold").arg(rows.size());
    label_->setText(!error.isEmpty() ? error
                                     : places + QStringLiteral(" the pointer to offset %1. Double-click a row to "
                                                               "copy its offset.")
                                                    .arg(Q(offset)));
    connect(list_, &QTreeWidget::itemDoubleClicked, this,
            [&clipboard](QTreeWidgetItem* item, int) { clipboard.SetText(U(item->text(0))); });
    resize(560, 320);
}

}  // namespace quillon::ui
