// XPButton driven with real mouse and key events on the offscreen platform:
// access keys, outline, property store, clicks, keyboard, hover and drawing.
#include "ui/xp_button.h"
#include "ui/xp_button_gallery.h"
#include "ui/xp_button_rules.h"

#include <QApplication>
#include <QCursor>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace quillon::ui;

// Readable QStrings in failure messages.
static void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }

namespace {

TEST(XPButtonAccessKey, FollowsTheAmpersandRule) {
    EXPECT_EQ(AccessKey("S&ave Text"), QChar('a'));
    EXPECT_EQ(AccessKey("&Exit"), QChar('e'));
    EXPECT_EQ(AccessKey("Tom && Jerry"), QChar());
    EXPECT_EQ(AccessKey("Salt && &Cod"), QChar('c'));
    // After a doubled pair only the next "&" counts: a second pair ends the search.
    EXPECT_EQ(AccessKey("a&&b&&c&d"), QChar());
    EXPECT_EQ(AccessKey("Save&"), QChar());
    EXPECT_EQ(AccessKey("&"), QChar());
    EXPECT_EQ(AccessKey("&&&x"), QChar('x'));
}

TEST(XPButtonAccessKey, CaptionIsDrawnWithoutMarksAndWithTheKeyUnderlined) {
    DrawnCaption c = CaptionForDrawing("S&ave Text");
    EXPECT_EQ(c.text, "Save Text");
    EXPECT_EQ(c.underline, 1);
    c = CaptionForDrawing("Salt && &Cod");
    EXPECT_EQ(c.text, "Salt & Cod");
    EXPECT_EQ(c.underline, 7);
    c = CaptionForDrawing("Tom && Jerry");
    EXPECT_EQ(c.text, "Tom & Jerry");
    EXPECT_EQ(c.underline, -1);
}

TEST(XPButtonOutline, Styles3And4CutThreePixelsAtEachCorner) {
    const int w = 10, h = 6;
    for (int style : {3, 4}) {
        const QRegion r = XPButtonOutline(style, QSize(w, h));
        const QPoint cut[] = {{0, 0}, {1, 0}, {0, 1}, {w - 1, 0}, {w - 2, 0}, {w - 1, 1},
                              {0, h - 1}, {1, h - 1}, {0, h - 2}, {w - 1, h - 1}, {w - 2, h - 1}, {w - 1, h - 2}};
        for (QPoint p : cut) EXPECT_FALSE(r.contains(p)) << style << " " << p.x() << "," << p.y();
        for (QPoint p : {QPoint(2, 0), QPoint(1, 1), QPoint(0, 2), QPoint(w - 3, 0), QPoint(w - 2, h - 2)})
            EXPECT_TRUE(r.contains(p)) << style << " " << p.x() << "," << p.y();
        int area = 0;
        for (const QRect& rect : r) area += rect.width() * rect.height();
        EXPECT_EQ(area, w * h - 12);
    }
    const QRegion oval = XPButtonOutline(13, QSize(40, 20));
    EXPECT_FALSE(oval.contains(QPoint(1, 1)));
    EXPECT_TRUE(oval.contains(QPoint(20, 10)));
    EXPECT_EQ(XPButtonOutline(1, QSize(w, h)), QRegion(0, 0, w, h));
}

TEST(XPButtonOutline, FollowsEveryResizeAndStyle) {
    QWidget window;
    auto& b = *new XPButton("XPButton1", &window);
    b.resize(30, 12);
    window.show();  // a hidden widget gets its resize event when shown
    EXPECT_FALSE(b.mask().contains(QPoint(29, 11)));
    EXPECT_TRUE(b.mask().contains(QPoint(27, 11)));
    b.resize(50, 20);
    EXPECT_FALSE(b.mask().contains(QPoint(49, 18)));
    EXPECT_TRUE(b.mask().contains(QPoint(49, 17)));
    b.SetButtonType(1);
    EXPECT_TRUE(b.mask().isEmpty());
    b.SetButtonType(13);
    EXPECT_FALSE(b.mask().contains(QPoint(0, 0)));
}

TEST(XPButtonProperties, NewInstanceValues) {
    XPButton b("XPButton7");
    EXPECT_EQ(b.ButtonType(), 3);
    EXPECT_EQ(b.Caption(), "XPButton7");
    EXPECT_EQ(b.text(), "XPButton7");
    EXPECT_EQ(b.font().family(), "Verdana");
    EXPECT_DOUBLE_EQ(b.FontSize(), 8.25);
    EXPECT_EQ(b.BackColor(), 0xFFFFFFu);
    EXPECT_EQ(b.BackOver(), 0xFFFFFFu);
    EXPECT_EQ(b.ForeOver(), 0xFF0000u);
    EXPECT_EQ(b.MaskColor(), 0xC0C0C0u);
    EXPECT_EQ(b.ColorScheme(), 1);
    EXPECT_TRUE(b.ShowFocusRect());
    EXPECT_TRUE(b.UseMaskColor());
    EXPECT_FALSE(b.CheckBoxBehaviour());
    EXPECT_FALSE(b.Value());
    EXPECT_EQ(XPButton::Version(), "2.0.6");
    EXPECT_EQ(ToQColor(0xFF0000), QColor(0, 0, 255));
    EXPECT_EQ(ToBgr(QColor(0x12, 0x34, 0x56)), 0x563412u);
}

TEST(XPButtonProperties, WrittenInOrderAndReadBack) {
    XPButton a("XPButton1", "&Open ROM", nullptr);
    a.SetButtonType(7);
    a.SetEnabled(false);
    a.SetFontBold(true);
    a.SetColorScheme(2);
    a.SetBackColor(0x102030);
    a.SetBackOver(0x405060);
    a.SetForeColor(0x0000FF);
    a.SetMousePointer(kPointerHand);
    QPixmap picture(8, 8);
    picture.fill(Qt::red);
    a.SetPictureNormal(picture);
    a.SetPicturePosition(2);
    a.SetSpecialEffect(3);
    a.SetCheckBoxBehaviour(true);
    a.SetValue(true);
    a.SetImageIndex(-4);
    PropertyBag bag;
    a.WriteProperties(bag);
    EXPECT_EQ(bag.Keys(), (std::vector<std::string>{"BTYPE", "TX", "ENAB", "FONT", "COLTYPE", "FOCUSR", "BCOL", "BCOLO",
                                                    "FCOL", "FCOLO", "MCOL", "MPTR", "MICON", "PICN", "PICH", "UMCOL",
                                                    "SOFT", "PICPOS", "NGREY", "FX", "HAND", "CHECK", "VALUE",
                                                    "ImageIndex"}));
    EXPECT_EQ(bag.Read("BCOL"), std::to_string(0x102030));
    EXPECT_EQ(bag.Read("HAND"), "True");

    XPButton b("Other");
    b.ReadProperties(bag);
    EXPECT_EQ(b.ButtonType(), 7);
    EXPECT_EQ(b.Caption(), "&Open ROM");
    EXPECT_EQ(b.AccessKey(), QChar('o'));
    EXPECT_FALSE(b.isEnabled());
    EXPECT_TRUE(b.FontBold());
    EXPECT_EQ(b.DrawnBack(false), QColor(0x30, 0x20, 0x10));
    EXPECT_EQ(b.DrawnBack(true), QColor(0x60, 0x50, 0x40));
    EXPECT_EQ(b.PictureNormal().toImage().pixelColor(3, 3), QColor(Qt::red));
    EXPECT_TRUE(b.Value());
    EXPECT_EQ(b.ImageIndex(), -4);
    PropertyBag again;
    b.WriteProperties(again);
    EXPECT_EQ(again.Items(), bag.Items());
}

TEST(XPButtonProperties, MissingKeysTakeTheirReadDefaults) {
    PropertyBag bag;
    bag.Write("BCOL", std::to_string(0x123456));
    bag.Write("FCOL", std::to_string(0x00FF00));
    bag.Write("HAND", "True");  // never read back
    bag.Write("MPTR", "0");
    bag.Write("PICPOS", "not a number");
    XPButton b("XPButton1");
    const QFont before = b.font();
    b.ReadProperties(bag);
    EXPECT_EQ(b.BackOver(), 0x123456u);
    EXPECT_EQ(b.ForeOver(), 0x00FF00u);
    EXPECT_EQ(b.ButtonType(), 2);
    EXPECT_EQ(b.Caption(), "");
    EXPECT_EQ(b.ColorScheme(), 1);
    EXPECT_EQ(b.MaskColor(), 0xC0C0C0u);
    EXPECT_EQ(b.PicturePosition(), 0);
    EXPECT_EQ(b.font(), before);
    PropertyBag written;
    b.WriteProperties(written);
    EXPECT_EQ(written.Read("HAND"), "False");
}

TEST(XPButtonProperties, SettersReportTheirKeyAndDesignTimeColoursSetTheHoverColour) {
    XPButton b("XPButton1");
    QStringList keys;
    QObject::connect(&b, &XPButton::PropertyChanged, [&](const QString& key) { keys << key; });
    b.SetBackColor(0x111111);
    EXPECT_EQ(b.BackOver(), 0xFFFFFFu);
    b.SetDesignMode(true);
    b.SetBackColor(0x222222);
    b.SetForeColor(0x333333);
    EXPECT_EQ(b.BackOver(), 0x222222u);
    EXPECT_EQ(b.ForeOver(), 0x333333u);
    b.SetCaption("x");
    EXPECT_EQ(keys, (QStringList{"BCOL", "BCOLO", "BCOL", "FCOLO", "FCOL", "TX"}));
}

// Records the button's events as text, in the order they are raised.
struct EventLog {
    explicit EventLog(XPButton* b) {
        auto mouse = [this](const char* name) {
            return [this, name](short& button, short& shift, float x, float y) {
                Add(QStringLiteral("%1 %2 %3 %4 %5").arg(name).arg(button).arg(shift).arg(x).arg(y));
            };
        };
        QObject::connect(b, &XPButton::Click, [this] { Add("Click"); });
        QObject::connect(b, &XPButton::clicked, [this](bool v) { Add(QStringLiteral("clicked %1").arg(v ? "true" : "false")); });
        QObject::connect(b, &XPButton::MouseDown, mouse("MouseDown"));
        QObject::connect(b, &XPButton::MouseUp, mouse("MouseUp"));
        QObject::connect(b, &XPButton::KeyDown, [this](short& k, short& s) { Add(QStringLiteral("KeyDown %1 %2").arg(k).arg(s)); });
        QObject::connect(b, &XPButton::KeyUp, [this](short& k, short& s) { Add(QStringLiteral("KeyUp %1 %2").arg(k).arg(s)); });
        QObject::connect(b, &XPButton::KeyPress, [this](short& k) { Add(QStringLiteral("KeyPress %1").arg(k)); });
        QObject::connect(b, &XPButton::MouseOver, [this] { Add("MouseOver"); });
        QObject::connect(b, &XPButton::MOUSEOUT, [this] { Add("MOUSEOUT"); });
    }
    void Add(const QString& s) { seen << s; }
    int Count(const QString& s) const { return static_cast<int>(seen.count(s)); }
    QStringList Take() { return std::exchange(seen, {}); }
    QStringList seen;
};

// Three buttons in a shown, active window.
class XPButtonEvents : public ::testing::Test {
protected:
    void SetUp() override {
        window.resize(400, 120);
        for (int i = 0; i < 3; ++i) {
            buttons[i] = new XPButton(QStringLiteral("XPButton%1").arg(i + 1), QStringLiteral("S&ave %1").arg(i), &window);
            buttons[i]->setGeometry(10 + i * 120, 20, 110, 30);
        }
        buttons[1]->SetCaption("&Exit");
        buttons[2]->SetCaption("&Cod");
        window.show();
        window.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
        log = std::make_unique<EventLog>(b());
    }
    XPButton* b() { return buttons[0]; }
    QImage Look(XPButton* button) { return button->grab().toImage(); }

    QWidget window;
    XPButton* buttons[3] = {};
    std::unique_ptr<EventLog> log;
};

TEST_F(XPButtonEvents, ALeftClickRaisesItsEventsInOrder) {
    QTest::mouseClick(b(), Qt::LeftButton, Qt::ShiftModifier, QPoint(5, 6));
    EXPECT_EQ(log->Take(), (QStringList{"MouseDown 1 1 5 6", "MouseUp 1 1 5 6", "Click", "clicked false"}));
    // Released away from the control: no click.
    QTest::mousePress(b(), Qt::LeftButton, {}, QPoint(5, 6));
    QTest::mouseRelease(b(), Qt::LeftButton, {}, QPoint(200, 6));
    EXPECT_EQ(log->Count("Click"), 0);
}

TEST_F(XPButtonEvents, TheRightButtonNeitherDrawsPressedNorClicks) {
    const QImage normal = Look(b());
    QTest::mousePress(b(), Qt::RightButton, {}, QPoint(5, 6));
    EXPECT_EQ(Look(b()), normal);
    QTest::mouseRelease(b(), Qt::RightButton, {}, QPoint(5, 6));
    EXPECT_EQ(log->Take(), (QStringList{"MouseDown 2 0 5 6", "MouseUp 2 0 5 6"}));
    QTest::mousePress(b(), Qt::LeftButton, {}, QPoint(5, 6));
    EXPECT_NE(Look(b()), normal);
    QTest::mouseRelease(b(), Qt::LeftButton, {}, QPoint(5, 6));
    EXPECT_EQ(Look(b()), normal);
}

TEST_F(XPButtonEvents, ADoubleClickIsANewPressAtTheOrigin) {
    QTest::mouseClick(b(), Qt::LeftButton, {}, QPoint(7, 8));
    QTest::mouseDClick(b(), Qt::LeftButton, {}, QPoint(7, 8));
    EXPECT_TRUE(b()->CurrentDrawingState().pressed);
    QTest::mouseRelease(b(), Qt::LeftButton, {}, QPoint(7, 8));
    EXPECT_EQ(log->Take(), (QStringList{"MouseDown 1 0 7 8", "MouseUp 1 0 7 8", "Click", "clicked false",
                                        "MouseDown 1 0 0 0", "MouseUp 1 0 7 8", "Click", "clicked false"}));
}

TEST_F(XPButtonEvents, ADisabledButtonNeverClicks) {
    b()->setFocus();
    b()->SetEnabled(false);
    QTest::mouseClick(b(), Qt::LeftButton);
    QTest::keyClick(b(), Qt::Key_Space);
    QTest::keyClick(&window, Qt::Key_A, Qt::AltModifier);
    b()->click();
    EXPECT_EQ(log->Count("Click"), 0);
    EXPECT_EQ(log->Count("clicked false"), 0);
}

TEST_F(XPButtonEvents, SpaceDrawsPressedAndClicksOnRelease) {
    b()->setFocus();
    QTest::keyPress(b(), Qt::Key_Space);
    EXPECT_TRUE(b()->CurrentDrawingState().pressed);
    EXPECT_EQ(log->Count("Click"), 0);
    QTest::keyRelease(b(), Qt::Key_Space);
    EXPECT_FALSE(b()->CurrentDrawingState().pressed);
    EXPECT_EQ(log->Take(), (QStringList{"KeyDown 32 0", "KeyPress 32", "KeyUp 32 0", "Click", "clicked false"}));
    // A KeyDown handler that clears the key code cancels the click.
    QObject::connect(b(), &XPButton::KeyDown, [](short& code, short&) { code = 0; });
    QTest::keyClick(b(), Qt::Key_Space);
    EXPECT_EQ(log->Count("Click"), 0);
}

TEST_F(XPButtonEvents, AltWithTheAccessKeyClicksOnce) {
    QTest::keyClick(&window, Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(log->Take(), (QStringList{"Click", "clicked false"}));
    // QAbstractButton::click() raises Click as well, once.
    static_cast<QAbstractButton*>(b())->click();
    EXPECT_EQ(log->Take(), (QStringList{"Click", "clicked false"}));
}

TEST_F(XPButtonEvents, CheckBoxBehaviourTogglesValueOncePerClick) {
    b()->SetCheckBoxBehaviour(true);
    QTest::mouseClick(b(), Qt::LeftButton);
    EXPECT_TRUE(b()->Value());
    EXPECT_EQ(log->Take(), (QStringList{"MouseDown 1 0 54 14", "MouseUp 1 0 54 14", "Click", "clicked true"}));
    QTest::mouseClick(b(), Qt::LeftButton);
    EXPECT_FALSE(b()->Value());
    b()->setFocus();
    QTest::keyClick(b(), Qt::Key_Space);
    EXPECT_TRUE(b()->Value());
    QTest::keyClick(&window, Qt::Key_A, Qt::AltModifier);
    EXPECT_FALSE(b()->Value());
    // Checked, the button is drawn pressed.
    b()->SetValue(true);
    const QImage checked = Look(b());
    b()->SetValue(false);
    XPButton::DrawingState pressed = b()->CurrentDrawingState();
    pressed.pressed = true;
    b()->SetDrawingState(pressed);
    EXPECT_EQ(Look(b()), checked);
}

TEST_F(XPButtonEvents, ArrowKeysMoveTheFocusWithoutClicking) {
    buttons[1]->setFocus();
    ASSERT_TRUE(buttons[1]->hasFocus());
    auto key = [&](Qt::Key k) { QTest::keyClick(QApplication::focusWidget(), k); };
    key(Qt::Key_Right);
    EXPECT_TRUE(buttons[2]->hasFocus());
    key(Qt::Key_Left);
    key(Qt::Key_Up);
    EXPECT_TRUE(buttons[0]->hasFocus());
    key(Qt::Key_Down);
    EXPECT_TRUE(buttons[1]->hasFocus());
    EXPECT_EQ(log->Count("Click"), 0);
}

TEST_F(XPButtonEvents, HoverStartsOnceAndEndsWithMouseOut) {
    QTest::mouseMove(b(), QPoint(20, 10));
    QTest::mouseMove(b(), QPoint(30, 12));
    EXPECT_EQ(log->seen, QStringList{"MouseOver"});
    EXPECT_TRUE(b()->CurrentDrawingState().hover);
    QTest::mouseMove(&window, QPoint(390, 110));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !log->seen.isEmpty() && log->seen.last() == "MOUSEOUT"; }, 1000));
    EXPECT_FALSE(b()->CurrentDrawingState().hover);
    EXPECT_EQ(log->Take(), (QStringList{"MouseOver", "MOUSEOUT"}));
}

TEST(XPButtonDrawing, SystemStyleColoursForEachState) {
    XPButton b("XPButton1", "HHHH", nullptr);
    b.resize(90, 26);
    auto count = [&](auto pred) {
        const QImage img = b.grab().toImage();
        int n = 0;
        for (int y = 0; y < img.height(); ++y)
            for (int x = 0; x < img.width(); ++x) n += pred(img.pixelColor(x, y)) ? 1 : 0;
        return n;
    };
    auto dark = [](const QColor& c) { return c.red() < 60 && c.green() < 60 && c.blue() < 60; };
    auto blue = [](const QColor& c) { return c.blue() > 200 && c.red() < 90 && c.green() < 90; };
    EXPECT_EQ(b.grab().toImage().pixelColor(45, 4), QColor(Qt::white));
    EXPECT_GT(count(dark), 10);  // a black caption
    EXPECT_EQ(count(blue), 0);
    b.SetDrawingState({.hover = true});
    EXPECT_GT(count(blue), 10);  // a blue caption on hover
    b.SetDrawingState({});
    b.SetEnabled(false);
    EXPECT_EQ(count(dark), 0);  // greyed
}

TEST(XPButtonDrawing, DisableRefreshKeepsTheLastDrawingUntilRefresh) {
    XPButton b("XPButton1", "One", nullptr);
    b.resize(90, 26);
    const QImage one = b.grab().toImage();
    b.DisableRefresh();
    b.SetCaption("Two");
    EXPECT_EQ(b.grab().toImage(), one);
    b.Refresh();
    EXPECT_NE(b.grab().toImage(), one);
}

TEST(XPButtonDrawing, Style11TakesTheContainersPixels) {
    QWidget container;
    container.resize(200, 60);
    container.setAutoFillBackground(true);
    QPalette pal = container.palette();
    pal.setColor(QPalette::Window, QColor(200, 30, 30));
    container.setPalette(pal);
    auto* b = new XPButton("XPButton1", "Go", &container);
    b->setGeometry(10, 10, 100, 30);
    b->SetButtonType(11);
    EXPECT_EQ(b->grab().toImage().pixelColor(3, 3), QColor(200, 30, 30));
    // Taken again on Refresh.
    pal.setColor(QPalette::Window, QColor(30, 30, 200));
    container.setPalette(pal);
    b->Refresh();
    EXPECT_EQ(b->grab().toImage().pixelColor(3, 3), QColor(30, 30, 200));
}

// Every state cell of the gallery looks different from its normal cell.
TEST(XPButtonGallery, ShowsEveryStyleInEveryState) {
    std::unique_ptr<QWidget> gallery(MakeXPButtonGallery(nullptr));
    const auto buttons = gallery->findChildren<XPButton*>();
    ASSERT_EQ(buttons.size(), 13 * 6);
    for (int style = 1; style <= 13; ++style) {
        auto cell = [&](int state) {
            return gallery->findChild<XPButton*>(QStringLiteral("XPButton%1_%2").arg(style).arg(state));
        };
        EXPECT_EQ(cell(0)->ButtonType(), style);
        const QImage normal = cell(0)->grab().toImage();
        for (int state = 1; state < 6; ++state) {
            EXPECT_NE(cell(state)->grab().toImage(), normal) << "style " << style << " state " << state;
        }
    }
}

}  // namespace
