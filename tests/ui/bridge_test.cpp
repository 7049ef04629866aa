// The conversions at the boundary between the logic and the Qt widgets:
// texts and positions, and file-dialog filters.
#include "ui/main_window.h"
#include "ui/qt_prompter.h"
#include "ui/text_bridge.h"

#include <gtest/gtest.h>

#include <tuple>

using namespace quillon;

namespace {

TEST(TextBridge, LineEndsBecomeLineFeedsAndBack) {
    EXPECT_EQ(ui::ToWidgetText("a\r\nb\r\n\r\nc"), QStringLiteral("a\nb\n\nc"));
    EXPECT_EQ(ui::FromWidgetText(QStringLiteral("a\nb\n\nc")), "a\r\nb\r\n\r\nc");
    EXPECT_EQ(ui::FromWidgetText(QStringLiteral("a\r\nb")), "a\r\nb");  // not doubled
    EXPECT_EQ(ui::FromWidgetText(QString(QChar(0x2029))), "\r\n");
    EXPECT_EQ(ui::FromWidgetText(ui::ToWidgetText("Pokémon ♪ 𝄞")), "Pokémon ♪ 𝄞");
}

TEST(TextBridge, PositionsCountUtf16UnitsAndSkipCarriageReturns) {
    const std::string u = "é♪𝄞x";             // 2 + 3 + 4 + 1 bytes; 1 + 1 + 2 + 1 UTF-16 units
    const std::string lines = "ab\r\n\r\ncd";  // a carriage return takes no place in the widget
    using Case = std::tuple<std::string, std::size_t, int>;  // text, byte position, widget position
    // Byte to widget position; inside a character: before it.
    for (auto [text, byte, widget] : {Case{u, 0, 0}, {u, 1, 0}, {u, 2, 1}, {u, 5, 2}, {u, 7, 2}, {u, 9, 4}, {u, 10, 5},
                                       {u, 99, 5}, {lines, 2, 2}, {lines, 4, 3}, {lines, 6, 4}, {lines, 8, 6}})
        EXPECT_EQ(ui::WidgetPosition(text, byte), widget) << text << " byte " << byte;
    // Widget to byte position; between the two halves of 𝄞: before it.
    for (auto [text, byte, widget] : {Case{u, 0, 0}, {u, 2, 1}, {u, 5, 2}, {u, 5, 3}, {u, 9, 4}, {u, 10, 5},
                                       {u, 10, 50}, {lines, 2, 2}, {lines, 4, 3}, {lines, 6, 4}, {lines, 8, 6}})
        EXPECT_EQ(ui::BytePosition(text, widget), byte) << text << " position " << widget;
}

TEST(QtFilter, PairsBecomeQtFilterEntries) {
    EXPECT_EQ(ui::ToQtFilter("GameBoy Advance ROMs (*.gba;*.agb;*.bin)|*.agb;*.gba;*.bin|All files (*.*)|*.*"),
              QStringLiteral("GameBoy Advance ROMs (*.agb *.gba *.bin);;All files (*.*)"));
    // A description without its patterns is dropped rather than misread.
    EXPECT_EQ(ui::ToQtFilter("Text files|*.txt|Lonely"), QStringLiteral("Text files (*.txt)"));
    EXPECT_EQ(ui::ToQtFilter(""), QString());
}

TEST(TwipsToPixels, FifteenTwipsPerPixelAt96DpiRoundedHalfToEven) {
    EXPECT_EQ(ui::TwipsToPixels(10050, 96), 670);
    EXPECT_EQ(ui::TwipsToPixels(6885, 144), 688);  // 688.5
}

}  // namespace
