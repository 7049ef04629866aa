#include "ui/japanese_dialog.h"

#include "ui/text_bridge.h"
#include "ui/xp_button.h"
#include "ui/tool_window.h"

#include "edit/tag_commands.h"

#include <quillon/codec.h>

#include <QFontDatabase>
#include <QMouseEvent>
#include <QPainter>
#include <QVBoxLayout>

namespace quillon::ui {
namespace {

// Hiragana for 0x01-0x50 and Katakana for 0x51-0xA0, in the table's order:
// vowels, the K S T N H M rows, ya yu yo, the R row, wa wo n, small vowels,
// small ya yu yo, the G Z D B and P rows, small tsu.
const QString kHiragana = QStringLiteral(
    "あいうえおかきくけこさしすせそたちつてとなにぬねのはひふへほまみむめもやゆよらりるれろわをん"
    "ぁぃぅぇぉゃゅょがぎぐげござじずぜぞだぢづでどばびぶべぼぱぴぷぺぽっ");
const QString kKatakana = QStringLiteral(
    "アイウエオカキクケコサシスセソタチツテトナニヌネノハヒフヘホマミムメモヤユヨラリルレロワヲン"
    "ァィゥェォャュョガギグゲゴザジズゼゾダヂヅデドバビブベボパピプペポッ");

// Whether a font on this system draws kana; without one only the romanisation shows.
bool HaveKanaFont() {
    static const bool have = !QFontDatabase::families(QFontDatabase::Japanese).isEmpty();
    return have;
}

class Grid : public QWidget {
public:
    Grid(std::function<void(int)> onCell, QWidget* parent) : QWidget(parent), onCell_(std::move(onCell)) {
        setObjectName(QStringLiteral("Image2"));
        setMinimumSize(kJapaneseListColumns * 40, kJapaneseListRows * 44);
        setCursor(Qt::PointingHandCursor);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter p(this);
        p.fillRect(rect(), QColor(0xFB, 0xF8, 0xF0));
        const qreal w = width() / qreal(kJapaneseListColumns), h = height() / qreal(kJapaneseListRows);
        QFont kanaFont = font();
        kanaFont.setPointSizeF(font().pointSizeF() * 1.5);
        QFont romanFont = font();
        romanFont.setPointSizeF(font().pointSizeF() * 0.8);
        for (int row = 0; row < kJapaneseListRows; ++row) {
            for (int col = 0; col < kJapaneseListColumns; ++col) {
                const int byte = JapaneseCellByte(row, col);
                QRectF cell(col * w, row * h, w, h);
                p.setPen(QColor(0xC8, 0xC0, 0xB0));
                p.drawRect(cell.adjusted(0, 0, -1, -1));
                const QString kana = HaveKanaFont() ? KanaOf(byte) : QString();
                const std::string roman = DecodeText(std::string(1, static_cast<char>(byte)), true);
                p.setPen(QColor(0x1C, 0x3A, 0x66));
                if (kana.isEmpty()) {
                    p.setFont(kanaFont);
                    p.drawText(cell, Qt::AlignCenter, Q(roman));
                    continue;
                }
                p.setFont(kanaFont);
                p.drawText(cell.adjusted(0, 2, 0, -h * 0.35), Qt::AlignCenter, kana);
                p.setFont(romanFont);
                p.setPen(QColor(0x70, 0x68, 0x60));
                p.drawText(cell.adjusted(0, h * 0.6, 0, -2), Qt::AlignCenter,
                           Q(roman));
            }
        }
    }

    void mousePressEvent(QMouseEvent* e) override {
        if (e->button() != Qt::LeftButton) return;
        const int col = static_cast<int>(e->position().x() * kJapaneseListColumns / width());
        const int row = static_cast<int>(e->position().y() * kJapaneseListRows / height());
        if (col >= 0 && col < kJapaneseListColumns && row >= 0 && row < kJapaneseListRows)
            onCell_(JapaneseCellByte(row, col));
    }

private:
    std::function<void(int)> onCell_;
};

}  // namespace

QString KanaOf(int byte) {
    if (byte >= 0x01 && byte <= 0x50) return kHiragana.mid(byte - 0x01, 1);
    if (byte >= 0x51 && byte <= 0xA0) return kKatakana.mid(byte - 0x51, 1);
    return {};
}

JapaneseDialog::JapaneseDialog(std::function<void(int)> onCell, QWidget* parent)
    : QDialog(parent, kToolWindowFlags) {
    setObjectName(QStringLiteral("frmJapanese"));
    setWindowTitle(Q(kJapaneseListCaption));
    setModal(true);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(new Grid(std::move(onCell), this));
    auto* close = new XPButton(QStringLiteral("Command1"), QStringLiteral("&Close"), this);
    layout->addWidget(close, 0, Qt::AlignRight);
    connect(close, &XPButton::clicked, this, &QDialog::accept);
    FixClientSize(this, 7500, 8370);
}

}  // namespace quillon::ui
