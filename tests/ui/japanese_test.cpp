// The Japanese character list: kana per byte and clicks on the grid's cells.
#include "ui/japanese_dialog.h"
#include "ui/xp_button.h"

#include <QTest>

#include <gtest/gtest.h>

#include <vector>

using quillon::ui::JapaneseDialog;
using quillon::ui::KanaOf;

TEST(JapaneseList, KanaFollowTheTableOrder) {
    EXPECT_EQ(KanaOf(0x00), "");
    EXPECT_EQ(KanaOf(0x01), "あ");
    EXPECT_EQ(KanaOf(0x06), "か");
    EXPECT_EQ(KanaOf(0x2E), "ん");
    EXPECT_EQ(KanaOf(0x50), "っ");
    EXPECT_EQ(KanaOf(0x51), "ア");
    EXPECT_EQ(KanaOf(0x8D), "ジ");  // the table writes it ZI
    EXPECT_EQ(KanaOf(0xA0), "ッ");
    EXPECT_EQ(KanaOf(0xA1), "");    // digits are shown by their romanisation
}

TEST(JapaneseList, ACellClickHandsOverItsByteAndTheWindowStaysOpen) {
    std::vector<int> clicked;
    JapaneseDialog list([&](int byte) { clicked.push_back(byte); });
    list.show();
    QWidget* grid = list.findChild<QWidget*>("Image2");
    ASSERT_NE(grid, nullptr);
    const double w = grid->width() / 16.0, h = grid->height() / 11.0;
    auto cellCentre = [&](int row, int col) { return QPoint(int((col + 0.5) * w), int((row + 0.5) * h)); };
    QTest::mouseClick(grid, Qt::LeftButton, {}, cellCentre(0, 6));
    QTest::mouseClick(grid, Qt::LeftButton, {}, cellCentre(10, 15));
    QTest::mouseClick(grid, Qt::RightButton, {}, cellCentre(3, 3));
    EXPECT_EQ(clicked, (std::vector<int>{0x06, 0xAF}));
    EXPECT_TRUE(list.isVisible());
    QTest::mouseClick(list.findChild<quillon::ui::XPButton*>("Command1"), Qt::LeftButton);
    EXPECT_FALSE(list.isVisible());
}
