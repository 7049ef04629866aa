// The conversions at the boundary between the logic and the Qt widgets:
// texts and positions, file-dialog filters, tree icons, the add-offset window.
#include "app/session.h"
#include "offsets/add_offset_form.h"
#include "support/fake_prompter.h"
#include "support/temp_dir.h"
#include "ui/add_offset_dialog.h"
#include "ui/qt_prompter.h"
#include "ui/text_bridge.h"
#include "ui/tree_icons.h"
#include "ui/xp_button.h"

#include <QComboBox>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

using namespace quillon;
using namespace quillon::test;

namespace {

TEST(TextBridge, LineEndsBecomeLineFeedsAndBack) {
    EXPECT_EQ(ui::ToWidgetText("a\r\nb\r\n\r\nc"), QStringLiteral("a\nb\n\nc"));
    EXPECT_EQ(ui::FromWidgetText(QStringLiteral("a\nb\n\nc")), "a\r\nb\r\n\r\nc");
    EXPECT_EQ(ui::FromWidgetText(QStringLiteral("a\r\nb")), "a\r\nb");  // not doubled
    EXPECT_EQ(ui::FromWidgetText(QString(QChar(0x2029))), "\r\n");
    EXPECT_EQ(ui::FromWidgetText(ui::ToWidgetText("Pokémon ♪ 𝄞")), "Pokémon ♪ 𝄞");
}

TEST(TextBridge, PositionsCountCharactersNotBytes) {
    const std::string text = "é♪𝄞x";  // 2 + 3 + 4 + 1 bytes; 1 + 1 + 2 + 1 UTF-16 units
    EXPECT_EQ(ui::WidgetPosition(text, 0), 0);
    EXPECT_EQ(ui::WidgetPosition(text, 2), 1);
    EXPECT_EQ(ui::WidgetPosition(text, 5), 2);
    EXPECT_EQ(ui::WidgetPosition(text, 9), 4);
    EXPECT_EQ(ui::WidgetPosition(text, 10), 5);
    EXPECT_EQ(ui::WidgetPosition(text, 99), 5);
    // Inside a character: before it.
    EXPECT_EQ(ui::WidgetPosition(text, 1), 0);
    EXPECT_EQ(ui::WidgetPosition(text, 7), 2);

    EXPECT_EQ(ui::BytePosition(text, 0), 0u);
    EXPECT_EQ(ui::BytePosition(text, 1), 2u);
    EXPECT_EQ(ui::BytePosition(text, 2), 5u);
    EXPECT_EQ(ui::BytePosition(text, 3), 5u);  // between the two halves of 𝄞
    EXPECT_EQ(ui::BytePosition(text, 4), 9u);
    EXPECT_EQ(ui::BytePosition(text, 5), 10u);
    EXPECT_EQ(ui::BytePosition(text, 50), 10u);
}

TEST(TextBridge, ACarriageReturnTakesNoPlaceInTheWidget) {
    const std::string text = "ab\r\n\r\ncd";
    EXPECT_EQ(ui::WidgetPosition(text, 2), 2);  // before the first CR
    EXPECT_EQ(ui::WidgetPosition(text, 4), 3);  // after the first pair
    EXPECT_EQ(ui::WidgetPosition(text, 6), 4);
    EXPECT_EQ(ui::WidgetPosition(text, 8), 6);
    EXPECT_EQ(ui::BytePosition(text, 2), 2u);
    EXPECT_EQ(ui::BytePosition(text, 3), 4u);
    EXPECT_EQ(ui::BytePosition(text, 4), 6u);
    EXPECT_EQ(ui::BytePosition(text, 6), 8u);
    // Each position survives the round trip.
    for (int pos = 0; pos <= 6; ++pos) EXPECT_EQ(ui::WidgetPosition(text, ui::BytePosition(text, pos)), pos) << pos;
}

TEST(QtFilter, PairsBecomeQtFilterEntries) {
    EXPECT_EQ(ui::ToQtFilter("GameBoy Advance ROMs (*.gba;*.agb;*.bin)|*.agb;*.gba;*.bin|All files (*.*)|*.*"),
              QStringLiteral("GameBoy Advance ROMs (*.agb *.gba *.bin);;All files (*.*)"));
    EXPECT_EQ(ui::ToQtFilter("Text files|*.txt"), QStringLiteral("Text files (*.txt)"));
    // A description without its patterns is dropped rather than misread.
    EXPECT_EQ(ui::ToQtFilter("Text files|*.txt|Lonely"), QStringLiteral("Text files (*.txt)"));
    EXPECT_EQ(ui::ToQtFilter(""), QString());
}

TEST(TreeIcons, EveryKeyHasItsOwnPicture) {
    const QStringList& keys = ui::TreeIconKeys();
    ASSERT_EQ(keys.size(), 10);
    QList<QImage> images;
    for (const QString& key : keys) {
        QIcon icon = ui::TreeIcon(key);
        ASSERT_FALSE(icon.isNull()) << key.toStdString();
        QImage image = icon.pixmap(16, 16).toImage();
        for (const QImage& other : images) EXPECT_NE(image, other) << key.toStdString();
        images << image;
    }
    EXPECT_TRUE(ui::TreeIcon(QStringLiteral("nobody")).isNull());
}

class AddOffsetWindow : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(dir / "ini");
        session.controls.gameCode = "QDME";
        WriteFile(dir / "ini" / "QDME.ini", "[Harbour]\r\nGull=100000\r\n[Market]\r\nBaker=100010\r\n");
        session.romPath = dir / "game.gba";
        WriteFile(session.romPath, std::string(2 * 1024 * 1024, '\xFF'));
    }
    template <class W>
    W* Find(QWidget& w, const char* name) {
        W* found = w.findChild<W*>(QString::fromUtf8(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    TempDir dir;
    FakePrompter user;
    Session session{dir.path(), user};
};

TEST_F(AddOffsetWindow, ChoosingASectionAndAddingWritesTheEntry) {
    AddOffsetForm form(session);
    ui::AddOffsetDialog dialog(form);
    EXPECT_EQ(dialog.windowTitle(), "Add Offset to INI");
    auto* combo = Find<QComboBox>(dialog, "Combo1");
    ASSERT_EQ(combo->count(), 2);
    EXPECT_EQ(combo->itemText(1), "Market");
    combo->setCurrentIndex(1);
    emit combo->activated(1);
    EXPECT_EQ(Find<QLineEdit>(dialog, "Text1")->text(), "Market");
    Find<QLineEdit>(dialog, "Text2")->setText(QStringLiteral("Guard"));
    Find<QLineEdit>(dialog, "Text3")->setText(QStringLiteral("1000000"));
    QTest::mouseClick(Find<ui::XPButton>(dialog, "Command1"), Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_TRUE(form.Added());
    EXPECT_NE(ReadFile(dir / "ini" / "QDME.ini").find("Guard=F4240"), std::string::npos);
}

TEST_F(AddOffsetWindow, EmptyBoxesKeepTheWindowOpen) {
    AddOffsetForm form(session);
    ui::AddOffsetDialog dialog(form);
    dialog.show();
    Find<QLineEdit>(dialog, "Text1")->setText(QStringLiteral("Harbour"));
    QTest::mouseClick(Find<ui::XPButton>(dialog, "Command1"), Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_FALSE(form.Added());
    dialog.hide();
}

TEST_F(AddOffsetWindow, AnOffsetPastTheRomIsRefusedAndTheWindowStays) {
    AddOffsetForm form(session);
    ui::AddOffsetDialog dialog(form);
    dialog.show();
    Find<QLineEdit>(dialog, "Text1")->setText(QStringLiteral("Harbour"));
    Find<QLineEdit>(dialog, "Text2")->setText(QStringLiteral("Far"));
    Find<QLineEdit>(dialog, "Text3")->setText(QStringLiteral("2097152"));
    QTest::mouseClick(Find<ui::XPButton>(dialog, "Command1"), Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible());
    auto shown = user.Take();
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0].icon, Icon::Warning);
    EXPECT_EQ(ReadFile(dir / "ini" / "QDME.ini").find("Far="), std::string::npos);
    dialog.hide();
}

TEST_F(AddOffsetWindow, APresetOffsetIsFixedAndCannotBeCancelled) {
    AddOffsetForm form(session, std::string("4096"));
    ui::AddOffsetDialog dialog(form);
    EXPECT_EQ(Find<QLineEdit>(dialog, "Text3")->text(), "4096");
    EXPECT_FALSE(Find<QLineEdit>(dialog, "Text3")->isEnabled());
    EXPECT_FALSE(Find<ui::XPButton>(dialog, "Command2")->isEnabled());
}

}  // namespace
