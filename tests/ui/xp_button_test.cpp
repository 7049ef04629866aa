// XPButton driven with real mouse and key events on the offscreen platform:
// access keys, outline, property store, clicks, keyboard, hover and drawing.
#include "ui/xp_button.h"
#include "ui/xp_button_gallery.h"
#include "ui/xp_button_rules.h"

#include <QApplication>
#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>
#include <utility>

using namespace quillon::ui;

// Readable QStrings in failure messages.
static void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }

namespace {

QImage Look(QWidget* w) { return w->grab().toImage(); }

TEST(XPButtonAccessKey, FollowsTheAmpersandRuleAndIsDrawnUnderlined) {
    // Caption, access key, caption drawn (nullptr: not checked) and its underlined character.
    const std::tuple<const char*, QChar, const char*, int> cases[] = {
        {"S&ave Text", u'a', "Save Text", 1},
        {"Tom && Jerry", {}, "Tom & Jerry", -1},
        {"Salt && &Cod", u'c', "Salt & Cod", 7},
        {"a&&b&&c&d", {}, nullptr, -1},  // after a doubled pair only the next "&" counts
        {"Save&", {}, nullptr, -1},
        {"&&&x", u'x', "&x", 1},
    };
    for (auto [caption, key, drawn, underline] : cases) {
        EXPECT_EQ(AccessKey(caption), key) << caption;
        if (!drawn) continue;
        const DrawnCaption d = CaptionForDrawing(caption);
        EXPECT_EQ(d.text, drawn) << caption;
        EXPECT_EQ(d.underline, underline) << caption;
    }
}

TEST(XPButtonOutline, Styles3And4CutThreePixelsAtEachCornerOfTheButton) {
    const int w = 10, h = 6;
    for (int style : {3, 4}) {
        QRegion expected(0, 0, w, h);
        for (QPoint p : {QPoint(0, 0), {1, 0}, {0, 1}, {w - 1, 0}, {w - 2, 0}, {w - 1, 1}, {0, h - 1}, {1, h - 1},
                         {0, h - 2}, {w - 1, h - 1}, {w - 2, h - 1}, {w - 1, h - 2}})
            expected -= QRegion(p.x(), p.y(), 1, 1);
        EXPECT_EQ(XPButtonOutline(style, QSize(w, h)), expected) << style;
    }
    EXPECT_FALSE(XPButtonOutline(13, QSize(40, 20)).contains(QPoint(1, 1)));
    EXPECT_EQ(XPButtonOutline(1, QSize(w, h)), QRegion(0, 0, w, h));
    // The button takes its outline as its shape, after every resize.
    XPButton b("XPButton1");
    b.resize(30, 12);
    b.show();
    b.resize(w, h);
    EXPECT_EQ(b.mask(), XPButtonOutline(3, QSize(w, h)));
}

TEST(XPButtonProperties, WrittenInOrderReadBackAndDefaultedWhenMissing) {
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
    EXPECT_EQ(b.AccessKey(), QChar('o'));
    EXPECT_FALSE(b.isEnabled());
    EXPECT_EQ(b.DrawnBack(false), QColor(0x30, 0x20, 0x10));  // stored as BGR
    EXPECT_EQ(b.DrawnBack(true), QColor(0x60, 0x50, 0x40));
    PropertyBag again;
    b.WriteProperties(again);
    EXPECT_EQ(again.Items(), bag.Items());

    // Missing keys take their read defaults.
    PropertyBag sparse;
    sparse.Write("BCOL", std::to_string(0x123456));
    sparse.Write("FCOL", std::to_string(0x00FF00));
    sparse.Write("HAND", "True");  // never read back
    sparse.Write("PICPOS", "not a number");
    XPButton c("XPButton2");
    c.ReadProperties(sparse);
    // Without BCOLO and FCOLO the hover colours are the normal ones.
    EXPECT_EQ(c.BackOver(), 0x123456u);
    EXPECT_EQ(c.ForeOver(), 0x00FF00u);
    EXPECT_EQ(c.ButtonType(), 2);  // not the new-instance style 3
    EXPECT_EQ(c.Caption(), "");
    EXPECT_EQ(c.PicturePosition(), 0);
    PropertyBag written;
    c.WriteProperties(written);
    EXPECT_EQ(written.Read("HAND"), "False");
}

// Three buttons in a shown, active window, the first one's events recorded as
// text in the order they are raised: hover, mouse, keyboard, focus, check-box
// behaviour and disabling, in turn.
TEST(XPButtonEvents, AStoryOfMouseAndKeys) {
    QWidget window;
    window.resize(400, 120);
    XPButton* buttons[3] = {};
    const char* captions[] = {"S&ave 0", "&Exit", "&Cod"};
    for (int i = 0; i < 3; ++i) {
        buttons[i] = new XPButton(QStringLiteral("XPButton%1").arg(i + 1), captions[i], &window);
        buttons[i]->setGeometry(10 + i * 120, 20, 110, 30);
    }
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    XPButton* b = buttons[0];
    QStringList seen;  // each event as its name followed by its arguments
    const char* names[] = {"Click", "clicked", "MouseDown", "MouseUp", "KeyDown", "KeyUp", "KeyPress", "MouseOver",
                           "MOUSEOUT"};
    auto record = [&](auto... events) {
        const char** name = names;
        (QObject::connect(b, events, [&seen, n = *name++](const auto&... args) {
            QStringList parts{QString::fromUtf8(n)};
            ((parts << QString::number(args)), ...);
            seen << parts.join(' ');
        }), ...);
    };
    record(&XPButton::Click, &XPButton::clicked, &XPButton::MouseDown, &XPButton::MouseUp, &XPButton::KeyDown,
           &XPButton::KeyUp, &XPButton::KeyPress, &XPButton::MouseOver, &XPButton::MOUSEOUT);
    auto Clicks = [&] { return static_cast<int>(seen.count("Click")); };
    auto Take = [&] { return std::exchange(seen, {}); };

    // Hover starts once and ends with MOUSEOUT.
    QTest::mouseMove(b, QPoint(20, 10));
    QTest::mouseMove(b, QPoint(30, 12));
    EXPECT_TRUE(b->CurrentDrawingState().hover);
    QTest::mouseMove(&window, QPoint(390, 110));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !seen.isEmpty() && seen.last() == "MOUSEOUT"; }, 1000));
    EXPECT_FALSE(b->CurrentDrawingState().hover);
    EXPECT_EQ(Take(), (QStringList{"MouseOver", "MOUSEOUT"}));

    // Only left clicks click, and their events come in order.
    QTest::mouseClick(b, Qt::LeftButton, Qt::ShiftModifier, QPoint(5, 6));
    EXPECT_EQ(Take(), (QStringList{"MouseDown 1 1 5 6", "MouseUp 1 1 5 6", "Click", "clicked 0"}));
    // A double click is a new press, reported at the origin.
    QTest::mouseDClick(b, Qt::LeftButton, {}, QPoint(7, 8));
    EXPECT_TRUE(b->CurrentDrawingState().pressed);
    QTest::mouseRelease(b, Qt::LeftButton, {}, QPoint(7, 8));
    EXPECT_EQ(Take(), (QStringList{"MouseDown 1 0 0 0", "MouseUp 1 0 7 8", "Click", "clicked 0"}));
    // Released away from the control: no click.
    QTest::mousePress(b, Qt::LeftButton, {}, QPoint(5, 6));
    QTest::mouseRelease(b, Qt::LeftButton, {}, QPoint(200, 6));
    EXPECT_EQ(Clicks(), 0);
    // The right button neither draws pressed nor clicks.
    Take();
    const QImage normal = Look(b);
    QTest::mousePress(b, Qt::RightButton, {}, QPoint(5, 6));
    EXPECT_EQ(Look(b), normal);
    QTest::mouseRelease(b, Qt::RightButton, {}, QPoint(5, 6));
    EXPECT_EQ(Take(), (QStringList{"MouseDown 2 0 5 6", "MouseUp 2 0 5 6"}));
    QTest::mousePress(b, Qt::LeftButton, {}, QPoint(5, 6));
    EXPECT_NE(Look(b), normal);
    QTest::mouseRelease(b, Qt::LeftButton, {}, QPoint(5, 6));
    Take();

    // Space and the access key click.
    b->setFocus();
    QTest::keyPress(b, Qt::Key_Space);
    EXPECT_TRUE(b->CurrentDrawingState().pressed);
    EXPECT_EQ(Clicks(), 0);
    QTest::keyRelease(b, Qt::Key_Space);
    EXPECT_FALSE(b->CurrentDrawingState().pressed);
    EXPECT_EQ(Take(), (QStringList{"KeyDown 32 0", "KeyPress 32", "KeyUp 32 0", "Click", "clicked 0"}));
    QTest::keyClick(&window, Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(Take(), (QStringList{"Click", "clicked 0"}));
    // A KeyDown handler that clears the key code cancels the click.
    const auto clear = QObject::connect(b, &XPButton::KeyDown, [](short& code, short&) { code = 0; });
    QTest::keyClick(b, Qt::Key_Space);
    EXPECT_EQ(Clicks(), 0);
    QObject::disconnect(clear);

    // The arrow keys move the focus without clicking.
    buttons[1]->setFocus();
    const std::pair<Qt::Key, int> moves[] = {{Qt::Key_Right, 2}, {Qt::Key_Left, 1}, {Qt::Key_Up, 0}, {Qt::Key_Down, 1}};
    for (auto [key, focused] : moves) {
        QTest::keyClick(QApplication::focusWidget(), key);
        EXPECT_TRUE(buttons[focused]->hasFocus()) << key;
    }
    EXPECT_EQ(Clicks(), 0);

    // As a check box, the value toggles once per click.
    b->SetCheckBoxBehaviour(true);
    QTest::mouseClick(b, Qt::LeftButton);
    EXPECT_TRUE(b->Value());
    EXPECT_EQ(Take().last(), "clicked 1");
    QTest::mouseClick(b, Qt::LeftButton);
    EXPECT_FALSE(b->Value());
    b->setFocus();
    QTest::keyClick(b, Qt::Key_Space);
    EXPECT_TRUE(b->Value());
    QTest::keyClick(&window, Qt::Key_A, Qt::AltModifier);
    EXPECT_FALSE(b->Value());

    // Disabled, nothing clicks.
    Take();
    b->SetEnabled(false);
    QTest::mouseClick(b, Qt::LeftButton);
    QTest::keyClick(b, Qt::Key_Space);
    QTest::keyClick(&window, Qt::Key_A, Qt::AltModifier);
    b->click();
    EXPECT_EQ(Take(), QStringList());
}

// Every state cell of the gallery looks different from its normal cell.
TEST(XPButtonGallery, ShowsEveryStyleInEveryState) {
    std::unique_ptr<QWidget> gallery(MakeXPButtonGallery(nullptr));
    ASSERT_EQ(gallery->findChildren<XPButton*>().size(), 13 * 6);
    for (int style = 1; style <= 13; ++style) {
        auto cell = [&](int state) {
            return gallery->findChild<XPButton*>(QStringLiteral("XPButton%1_%2").arg(style).arg(state));
        };
        EXPECT_EQ(cell(0)->ButtonType(), style);
        const QImage normal = Look(cell(0));
        for (int state = 1; state < 6; ++state)
            EXPECT_NE(Look(cell(state)), normal) << "style " << style << " state " << state;
    }
}

}  // namespace
