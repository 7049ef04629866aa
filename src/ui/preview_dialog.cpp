#include "ui/preview_dialog.h"

#include "fit/render.h"
#include "ui/fit_monitor.h"
#include "ui/text_bridge.h"
#include "ui/xp_button.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>

#include <algorithm>

namespace quillon::ui {

PreviewDialog::PreviewDialog(FitMonitor& monitor, QWidget* parent) : QDialog(parent), monitor_(monitor) {
    setObjectName(QStringLiteral("frmPreview"));
    setWindowTitle(QStringLiteral("Preview in Game Font"));
    setModal(false);

    picture_ = new QLabel(this);
    picture_->setObjectName(QStringLiteral("picPreview"));
    picture_->setAlignment(Qt::AlignCenter);
    picture_->setStyleSheet(QStringLiteral("background: #506070; border: 3px solid #506070; border-radius: 4px;"));
    picture_->setMinimumSize(3 * fit::kBoxWidth + 12, 3 * fit::kBoxHeight + 12);
    caption_ = new QLabel(this);
    caption_->setObjectName(QStringLiteral("lblBox"));
    caption_->setWordWrap(true);

    previous_ = new XPButton(QStringLiteral("cmdPrevious"), QStringLiteral("&Previous"), this);
    next_ = new XPButton(QStringLiteral("cmdNext"), QStringLiteral("&Next"), this);
    for (XPButton* b : {previous_, next_}) b->setFixedSize(100, 28);
    connect(previous_, &XPButton::clicked, this, [this] { Step(-1); });
    connect(next_, &XPButton::clicked, this, [this] { Step(1); });

    auto* zoomLabel = new QLabel(QStringLiteral("Zoom:"), this);
    zoomLabel->setObjectName(QStringLiteral("lblZoom"));
    zoom_ = new QComboBox(this);
    zoom_->setObjectName(QStringLiteral("cboZoom"));
    zoom_->addItems({QStringLiteral("1x"), QStringLiteral("2x"), QStringLiteral("3x")});
    zoom_->setCurrentIndex(1);
    connect(zoom_, &QComboBox::currentIndexChanged, this, [this] { Refresh(); });

    auto* nameLabel = new QLabel(QStringLiteral("Sample name for [PLAYER]:"), this);
    nameLabel->setObjectName(QStringLiteral("lblSampleName"));
    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("txtSampleName"));
    name_->setMaxLength(7);
    name_->setPlaceholderText(QStringLiteral("a usual name"));
    name_->setText(Q(monitor_.Settings().sampleName));
    connect(name_, &QLineEdit::textEdited, this, [this](const QString& text) { monitor_.SetSampleName(U(text)); });

    auto* controls = new QHBoxLayout;
    controls->addWidget(previous_);
    controls->addWidget(next_);
    controls->addSpacing(12);
    controls->addWidget(zoomLabel);
    controls->addWidget(zoom_);
    controls->addSpacing(12);
    controls->addWidget(nameLabel);
    controls->addWidget(name_, 1);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(picture_, 1);
    layout->addWidget(caption_);
    layout->addLayout(controls);

    connect(&monitor_, &FitMonitor::Measured, this, [this] { Refresh(); });
    Refresh();
}

int PreviewDialog::BoxCount() const {
    return monitor_.Font() ? static_cast<int>(monitor_.Current().boxes.size()) : 0;
}

void PreviewDialog::Step(int delta) {
    box_ = std::clamp(box_ + delta, 0, std::max(0, BoxCount() - 1));
    Refresh();
}

void PreviewDialog::Refresh() {
    const fit::Font* font = monitor_.Font();
    if (!font) {
        image_ = QImage();
        picture_->setPixmap(QPixmap());
        caption_->setText(monitor_.Why());
        previous_->setEnabled(false);
        next_->setEnabled(false);
        return;
    }
    const fit::Measure& m = monitor_.Current();
    box_ = std::clamp(box_, 0, std::max(0, BoxCount() - 1));
    fit::DrawOptions options;
    options.zoom = zoom_->currentIndex() + 1;
    options.measure = monitor_.Options();
    const fit::Picture p = fit::DrawBox(m, box_, *font, options);
    image_ = QImage(p.width, p.height, QImage::Format_RGB32);
    for (int y = 0; y < p.height; ++y) {
        auto* line = reinterpret_cast<QRgb*>(image_.scanLine(y));
        for (int x = 0; x < p.width; ++x) line[x] = 0xFF000000u | p.At(x, y);
    }
    picture_->setPixmap(QPixmap::fromImage(image_));

    QString text = QStringLiteral("Box %1 of %2").arg(box_ + 1).arg(BoxCount());
    if (!m.boxes.empty()) {
        int widest = 0;
        for (int index : m.boxes[static_cast<std::size_t>(box_)].lines)
            widest = std::max(widest, m.lines[static_cast<std::size_t>(index)].width);
        text += QStringLiteral(" \u00B7 widest line ") + Q(fit::WidthCaption(widest, m.limit)) + QStringLiteral(" (") +
                Q(monitor_.Options().box.name) + QStringLiteral(")");
        if (m.boxes[static_cast<std::size_t>(box_)].lines.size() > static_cast<std::size_t>(fit::kLinesPerBox))
            text += QStringLiteral(" \u00B7 a line falls below the box");
    }
    caption_->setText(text);
    previous_->setEnabled(box_ > 0);
    next_->setEnabled(box_ + 1 < BoxCount());
}

}  // namespace quillon::ui
