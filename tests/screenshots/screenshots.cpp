// quillon_screenshots FOLDER: drives the real windows over the demonstration
// ROM and saves a picture of the main window, its pop-up menus and every
// auxiliary window into FOLDER. Each picture is checked before it is kept:
// drawn (not blank), and with every control inside its window, no overlaps
// and no cut captions. Runs on any Qt platform (offscreen or an X server).
#include "edit/add_offset_form.h"
#include "history/history_commands.h"
#include "main_window_fixture.h"
#include "ui/about_dialog.h"
#include "ui/add_offset_dialog.h"
#include "ui/add_script_dialog.h"
#include "ui/all_texts_window.h"
#include "ui/explanation_dialogs.h"
#include "ui/history_dialog.h"
#include "ui/japanese_dialog.h"
#include "ui/preview_dialog.h"
#include "ui/report_dialog.h"
#include "translate/po_import.h"
#include "translate/translate_commands.h"
#include "ui/search_dialog.h"
#include "ui/update_dialog.h"
#include "ui/xp_button_gallery.h"
#include "update/update_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QGroupBox>
#include <QLabel>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QSet>
#include <QTextDocumentFragment>

#include <iostream>

using namespace quillon;
using namespace quillon::test;

namespace {

QString g_folder;
bool g_windowManager = false;  // an X server with a window manager runs the pictures

QString Name(const QWidget* w) {
    return w->objectName().isEmpty() ? QString::fromUtf8(w->metaObject()->className()) : w->objectName();
}

// Controls that the user sees as one thing; their inner widgets are Qt's.
bool IsControl(const QWidget* w) {
    return qobject_cast<const QLabel*>(w) || qobject_cast<const QAbstractButton*>(w) ||
           qobject_cast<const QGroupBox*>(w) || !w->objectName().isEmpty();
}

// The width a one-line caption needs, without the access-key marks.
int CaptionWidth(const QWidget* w, const QString& text) {
    QString shown = text;
    shown.replace(QStringLiteral("&&"), QStringLiteral("\x01")).remove(QLatin1Char('&')).replace(QChar(1), QLatin1Char('&'));
    return w->fontMetrics().horizontalAdvance(shown);
}

// A label's caption as shown: rich text without its markup.
QString PlainCaption(const QLabel& label) {
    if (label.textFormat() == Qt::PlainText || !Qt::mightBeRichText(label.text())) return label.text();
    return QTextDocumentFragment::fromHtml(label.text()).toPlainText();
}

// Checks a window's layout the way a reviewer looks at its picture: every
// visible control lies inside the window, no two sibling controls overlap,
// and every one-line caption fits its control; one line per problem found.
QStringList LayoutProblems(const QWidget& window, const QWidget* parent = nullptr) {
    QStringList problems;
    QList<const QWidget*> shown;
    for (const QObject* o : (parent ? parent : &window)->children()) {
        const auto* w = qobject_cast<const QWidget*>(o);
        // A backdrop is drawn behind the controls it frames.
        if (!w || w->isWindow() || w->isHidden() || !IsControl(w) || w->property("backdrop").toBool()) continue;
        shown << w;
        const QRect inWindow(w->mapTo(&window, QPoint(0, 0)), w->size());
        if (!window.rect().contains(inWindow))
            problems << Name(w) + QStringLiteral(" reaches outside the window");
        if (const auto* label = qobject_cast<const QLabel*>(w); label && !label->wordWrap() &&
            !label->text().contains(QLatin1Char('\n')) && label->pixmap().isNull() &&
            CaptionWidth(w, PlainCaption(*label)) > label->contentsRect().width())
            problems << Name(w) + QStringLiteral(" cuts its caption \"") + label->text() + QLatin1Char('"');
        if (const auto* button = qobject_cast<const QAbstractButton*>(w);
            button && CaptionWidth(w, button->text()) > button->width())
            problems << Name(w) + QStringLiteral(" cuts its caption \"") + button->text() + QLatin1Char('"');
        problems << LayoutProblems(window, w);
    }
    for (int i = 0; i < shown.size(); ++i)
        for (int j = i + 1; j < shown.size(); ++j)
            if (shown[i]->geometry().intersects(shown[j]->geometry()))
                problems << Name(shown[i]) + QStringLiteral(" overlaps ") + Name(shown[j]);
    return problems;
}

// Shows `w` and saves its picture as `name`, with the window's shape applied:
// outside a masked window's region the picture is transparent, as on screen.
// The window is hidden again afterwards.
void Keep(QWidget& w, const QString& name) {
    w.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w));
    QApplication::processEvents();
    EXPECT_EQ(LayoutProblems(w), QStringList()) << name.toStdString();
    const QPixmap shot = w.grab();
    QImage image(shot.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter p(&image);
    if (!w.mask().isEmpty()) p.setClipRegion(w.mask());
    p.drawPixmap(0, 0, shot);
    p.end();
    QSet<QRgb> colours;  // fewer than 12 in every other pixel: blank
    for (int y = 0; y < image.height(); y += 2)
        for (int x = 0; x < image.width(); x += 2) colours.insert(image.pixel(x, y));
    EXPECT_GE(colours.size(), 12) << name.toStdString() << " looks blank";
    EXPECT_TRUE(image.save(g_folder + QLatin1Char('/') + name, "PNG")) << name.toStdString();
    w.hide();
}

class Screenshot : public MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        StartAndOpen();
        Select("Lighthouse", "Keeper");
        window->move(40, 40);
    }
};

TEST_F(Screenshot, MainWindowAndMenus) {
    // An edit left unsaved: back on its entry, the restore bar offers it.
    Find<QPlainTextEdit>("Text1")->moveCursor(QTextCursor::End);
    QTest::keyClicks(Find("Text1"), " Hurry!");
    Select("Lighthouse", "Lamp");
    Select("Lighthouse", "Keeper");
    // The tree narrowed by its filter; in the text a tag and a bracketed word that is none.
    QTest::keyClicks(Find("txtTreeFilter"), "er");
    Find<QPlainTextEdit>("Text1")->moveCursor(QTextCursor::End);
    QTest::keyClicks(Find("Text1"), " [PLAYR]?");
    Keep(*window, "main-window.png");
    window->TextMenu()->popup(Find("Text1")->mapToGlobal(QPoint(40, 40)));
    Keep(*window->TextMenu(), "text-menu.png");
    window->ShowToolsMenu();
    Keep(*window->ToolsMenu(), "tools-menu.png");
}

TEST_F(Screenshot, ToolWindowsTheButtonGalleryPreviewAndHistory) {
    ui::SearchDialog search(*session, clipboard, window.get());
    QTest::keyClicks(Child(search, "Text1"), "lamp");
    ClickChild(search, "Command1");
    AddOffsetForm form(*session);
    form.sectionName = "Lighthouse";
    form.textName = "Keeper, later";
    ui::AddOffsetDialog addOffset(form, window.get());
    ui::AddScriptDialog script(*session, window.get());
    QTest::keyClicks(Child(script, "txtOffset"), "123456");
    ui::JapaneseDialog list([](int) {}, window.get());
    ui::AboutDialog about(window.get());
    ui::MenuExplanationDialog menus(user, window.get());
    ui::ColorExplanationDialog colours(&menus);
    // Every button style in its normal, hover, pressed, focused, disabled and checked look.
    const std::unique_ptr<QWidget> gallery(ui::MakeXPButtonGallery(nullptr));
    const std::pair<QWidget*, const char*> shots[] = {
        {&search, "search-window.png"},     {&addOffset, "add-offset-window.png"}, {&script, "script-window.png"},
        {&list, "japanese-list.png"},       {&about, "about-window.png"},          {&menus, "menu-explanation.png"},
        {&colours, "colour-explanation.png"}, {gallery.get(), "xpbutton-gallery.png"}};
    for (auto [w, name] : shots) Keep(*w, name);
    // A line over the message box marked while typing, and the same text drawn
    // with the demo ROM's own font.
    Select("Lighthouse", "Lit");
    Keep(*window, "fit-main-window.png");
    Trigger(window->TextMenu(), "mnuPreview");
    Keep(*Child<ui::PreviewDialog>(*window, "frmPreview"), "preview-window.png");
    // Reflow Text breaks it to fit, and the preview follows.
    Trigger(window->TextMenu(), "mnuReflow");
    Keep(*window, "reflow-main-window.png");
    Keep(*Child<ui::PreviewDialog>(*window, "frmPreview"), "preview-reflowed.png");
    // The import window's plan with its reflow check box.
    ui::ReportDialog plan(QString::fromStdString(DescribePlan(ImportPlan{}) + "\nWrite these changes to the ROM?"),
                          QStringLiteral("Import Translation"), true, window.get());
    plan.AddOption(QString::fromUtf8(kReflowOption.data(), static_cast<int>(kReflowOption.size())), true,
                   [](bool) { return QString(); });
    Keep(plan, "import-window.png");
    // Three saves, the last one undone.
    Select("Lighthouse", "Keeper");
    for (const char* text : {"Hoy there.", "Ahoy there!", "Ahoy, friend!"}) {
        session->controls.text1.SetText(text);
        user.answers.assign(2, FakePrompter::Answer(true));
        Click("Command2");
    }
    UndoLastSaveCommand(*session);
    ui::HistoryDialog history(*session, window.get());
    Keep(history, "history-window.png");
}

TEST_F(Screenshot, AllTextsWindow) {
    // An edit left unsaved (a draft), and the texts that name the player.
    Find<QPlainTextEdit>("Text1")->moveCursor(QTextCursor::End);
    QTest::keyClicks(Find("Text1"), " Hurry!");
    Select("Harbour", "Gull");
    ui::AllTextsWindow* all = window->ShowAllTexts();
    QTest::keyClicks(Child(*all, "txtAllFilter"), "player");
    Keep(*all, "all-texts-window.png");
}

using UpdateScreenshot = UpdateFixture;

TEST_F(UpdateScreenshot, UpdateWindow) {
    ServeFiles("3.1.2", server.Url("/files/quillon-3.1.2.zip"));
    ui::UpdateDialog update(user, dir.path(), server.Url(), nullptr, "3.1.1");
    Keep(update, "update-window-ready.png");
    ClickChild(update, "cmdCheck");
    ASSERT_TRUE(WaitUntil([&] { return !Child(update, "cmdDownload")->isHidden(); }));
    Keep(update, "update-window.png");
}

// On a real X server with a window manager: the background drags the window
// only while a button is held; a click alone leaves it where it is.
TEST_F(Screenshot, TheBackgroundDragsOnlyWhileAButtonIsHeld) {
    if (!g_windowManager || QStandardPaths::findExecutable(QStringLiteral("xdotool")).isEmpty())
        GTEST_SKIP() << "needs an X server with a window manager and xdotool";
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    QTest::qWait(300);
    const QPoint at = window->mapToGlobal(QPoint(30, 90));
    // The pointer moved to `at` shifted by (dx, dy), then the further xdotool words.
    auto xdo = [&](int dx, int dy, QStringList more = {}) {
        const QStringList move{QStringLiteral("mousemove"), QString::number(at.x() + dx), QString::number(at.y() + dy)};
        QProcess::execute(QStringLiteral("xdotool"), move + more);
        QTest::qWait(400);
    };
    const QPoint before = window->pos();
    xdo(0, 0, {QStringLiteral("click"), QStringLiteral("1")});
    xdo(90, 60);
    xdo(0, 0);
    EXPECT_EQ(window->pos(), before) << "a click left the window following the pointer";
    xdo(0, 0, {QStringLiteral("mousedown"), QStringLiteral("1")});
    xdo(20, 15);
    xdo(90, 60, {QStringLiteral("mouseup"), QStringLiteral("1")});
    const QPoint dropped = window->pos();
    EXPECT_TRUE(dropped.x() > before.x() && dropped.y() > before.y()) << "the drag did not move the window";
    xdo(200, 150);
    EXPECT_EQ(window->pos(), dropped) << "the window followed the pointer after the release";
}

// The checker itself finds what it looks for, so a clean run means something.
TEST(LayoutCheck, FindsOverlapsCutCaptionsAndControlsOutside) {
    QWidget w;
    w.resize(200, 100);
    auto label = [&](const char* name, const char* text, QRect at) {
        auto* l = new QLabel(QString::fromUtf8(text), &w);
        l->setObjectName(QString::fromUtf8(name));
        l->setGeometry(at);
        return l;
    };
    label("a", "A", {10, 10, 40, 20});
    QLabel* b = label("b", "B", {30, 15, 40, 20});
    QLabel* cut = label("cut", "A caption far too long for its box", {10, 50, 30, 20});
    QLabel* out = label("out", "x", {190, 90, 30, 20});
    EXPECT_EQ(LayoutProblems(w), (QStringList{"cut cuts its caption \"A caption far too long for its box\"",
                                     "out reaches outside the window", "a overlaps b"}));
    qDeleteAll(QList<QLabel*>{b, cut, out});
    EXPECT_TRUE(LayoutProblems(w).isEmpty());
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    g_windowManager = argc == 3 && std::string(argv[2]) == "--window-manager";
    if (argc != 2 && !g_windowManager) {
        std::cerr << "usage: quillon_screenshots FOLDER [--window-manager]\n";
        return 2;
    }
    g_folder = QString::fromLocal8Bit(argv[1]);
    std::filesystem::create_directories(std::filesystem::path(argv[1]));
    return RUN_ALL_TESTS();
}
