#include "ui/xp_button_gallery.h"

#include "ui/button_pictures.h"
#include "ui/xp_button.h"

#include <QLabel>
#include <QLinearGradient>
#include <QPalette>
#include <QWidget>

namespace quillon::ui {

QWidget* MakeXPButtonGallery(QWidget* parent) {
    // Sizes in pixels.
    constexpr int kMargin = 14, kLabelWidth = 112, kHeaderHeight = 26, kCellWidth = 124, kCellHeight = 34, kGap = 10;
    const char* styleNames[13] = {"Raised", "Framed", "System", "Gradient", "Toolbar", "Rounded", "Glass",
                                  "Flat accent", "Pill", "Link", "Transparent", "Metal", "Oval"};
    const char* stateNames[6] = {"Normal", "Hover", "Pressed", "Focused", "Disabled", "Checked"};
    auto* sheet = new QWidget(parent);
    sheet->setObjectName(QStringLiteral("XPButtonGallery"));
    sheet->setWindowTitle(QStringLiteral("XPButton styles"));
    const int left = kMargin + kLabelWidth;
    sheet->setFixedSize(left + 6 * (kCellWidth + kGap) - kGap + kMargin,
                        kMargin + kHeaderHeight + 13 * (kCellHeight + kGap) - kGap + kMargin);
    // A soft diagonal ground, so that style 11 shows the pixels it takes.
    QLinearGradient ground(0, 0, sheet->width(), sheet->height());
    ground.setStops({{0, QColor(244, 247, 251)}, {1, QColor(214, 224, 238)}});
    QPalette palette = sheet->palette();
    palette.setBrush(QPalette::Window, ground);
    sheet->setPalette(palette);
    sheet->setAutoFillBackground(true);
    QFont bold = sheet->font();
    bold.setBold(true);
    for (int s = 0; s < 6; ++s) {
        auto* label = new QLabel(QString::fromUtf8(stateNames[s]), sheet);
        label->setFont(bold);
        label->setAlignment(Qt::AlignCenter);
        label->setGeometry(left + s * (kCellWidth + kGap), kMargin, kCellWidth, kHeaderHeight - 8);
    }
    const QPixmap picture = ButtonPicture(QStringLiteral("save"), 16, sheet->devicePixelRatioF());
    for (int style = 1; style <= 13; ++style) {
        const int y = kMargin + kHeaderHeight + (style - 1) * (kCellHeight + kGap);
        auto* label = new QLabel(QStringLiteral("%1  %2").arg(style).arg(QString::fromUtf8(styleNames[style - 1])), sheet);
        label->setGeometry(kMargin, y, kLabelWidth - 8, kCellHeight);
        for (int s = 0; s < 6; ++s) {
            auto* b = new XPButton(QStringLiteral("XPButton%1_%2").arg(style).arg(s), QStringLiteral("S&ave Text"), sheet);
            b->setGeometry(left + s * (kCellWidth + kGap), y, kCellWidth, kCellHeight);
            b->SetPictureNormal(picture);
            b->SetButtonType(style);  // after the geometry, so style 11 takes the right pixels
            b->SetDrawingState({.hover = s == 1, .pressed = s == 2, .focused = s == 3});
            b->SetEnabled(s != 4);
            b->SetCheckBoxBehaviour(s == 5);
            b->SetValue(s == 5);
        }
    }
    return sheet;
}

}  // namespace quillon::ui
