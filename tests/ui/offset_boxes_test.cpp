// Offset boxes that cannot be misread: 0x reads as hexadecimal in the
// decimal boxes, every box shows beside it what it read, and what is no
// number is refused with a message.
#include "main_window_fixture.h"
#include "offsets/add_offset_form.h"
#include "ui/add_offset_dialog.h"
#include "ui/add_script_dialog.h"
#include "ui/qt_prompter.h"

#include <QInputDialog>
#include <QLineEdit>

using namespace quillon;
using namespace quillon::test;

namespace {

TEST_F(MainWindowTest, OffsetBoxesEchoWhatTheyReadAndTakeHexWrittenWith0x) {
    StartAndOpen();
    AddOffsetForm form(*session);
    ui::AddOffsetDialog addOffset(form);
    ui::AddScriptDialog script(*session);
    const struct {
        QWidget* window;
        const char* box;
        const char* typed;
        const char* echo;
    } cases[] = {
        {&addOffset, "Text3", "100085", "= 0x186F5"},
        {&addOffset, "Text3", "0x186f5", "= 100085"},
        {&addOffset, "Text3", "186F5", "not a number"},
        {&script, "txtOffset", "123456", "= 1193046"},
        {&script, "txtOffset", "12G", "not a hex number"},
    };
    for (const auto& c : cases) {
        Child<QLineEdit>(*c.window, c.box)->setText(QString::fromUtf8(c.typed));
        EXPECT_EQ(Caption(*c.window, "lblOffsetEcho"), QString::fromUtf8(c.echo)) << c.typed;
    }

    // "O&ffset" with 0x: the text at 0x100000, named in the offset file.
    user.Then(std::string("0x100000")).Then(FakePrompter::AddOffsetAction([](AddOffsetForm& f) {
        ui::AddOffsetDialog dialog(f);
        EXPECT_EQ(Caption(dialog, "lblOffsetEcho"), "= 1048576");
        f.sectionName = "Harbour";
        f.textName = "Again";
        EXPECT_TRUE(f.Add());
    }));
    Click("Command5");
    EXPECT_EQ(Caption(*window, "Label3"), "100000");
    EXPECT_TRUE(Text1().startsWith("Ahoy, [PLAYER]!"));
    EXPECT_NE(ReadFile(dir / "ini" / "QDME.ini").find("Again=100000"), std::string::npos);

    user.Take();
    user.Then(std::string("0x"));
    Click("Command5");
    const auto shown = user.Take();
    ASSERT_EQ(shown.size(), 2u);
    EXPECT_EQ(shown[1].kind, Shown::Message);  // refused, not silently dropped
}

TEST(OffsetPrompt, TheDecimalInputBoxShowsWhatItReads) {
    ui::QtPrompter qt;
    QString label;
    OnModals({[&](QWidget* w) {
        auto* box = static_cast<QInputDialog*>(w);
        box->setTextValue(QStringLiteral("0x186F5"));
        label = box->labelText();
        box->accept();
    }});
    EXPECT_EQ(qt.Input("Text Offset", "Enter Text Offset to view (Dec):", "0"), "0x186F5");
    EXPECT_TRUE(label.endsWith(QStringLiteral("= 100085"))) << label.toStdString();
}

}  // namespace
