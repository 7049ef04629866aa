#include "ui/main_window.h"

#include "app/session.h"
#include "discover/reference_list.h"
#include "edit/text_view.h"
#include "ui/menu_builder.h"
#include "ui/text_bridge.h"
#include "ui/xp_button.h"

#include <quillon/errors.h>

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRadioButton>
#include <QTextCursor>
#include <QTreeView>

// The window mirrors the session: after every change its controls are
// written from the session's state, and the editor's text goes back to it.
namespace quillon::ui {

void MainWindow::Refresh() {
    if (syncing_) return;
    syncing_ = true;
    const MainControls& c = session_.controls;

    const std::string& text = c.text1.Text();
    if (FromWidgetText(text1_->toPlainText()) != text) text1_->setPlainText(ToWidgetText(text));
    const int start = WidgetPosition(text, c.text1.SelectionStart());
    const int end = WidgetPosition(text, c.text1.SelectionStart() + c.text1.SelectionLength());
    QTextCursor cursor = text1_->textCursor();
    if (cursor.selectionStart() != start || cursor.selectionEnd() != end) {
        cursor.setPosition(start);
        cursor.setPosition(end, QTextCursor::KeepAnchor);
        text1_->setTextCursor(cursor);
    }
    text1_->setEnabled(c.text1.enabled);
    text1_->setReadOnly(c.text1.readOnly);

    check1_->setChecked(c.specialDialog);
    check1_->setEnabled(c.specialDialogEnabled);
    (c.japaneseTable ? japanese_ : european_)->setChecked(true);
    european_->setEnabled(c.tableEnabled);
    japanese_->setEnabled(c.tableEnabled);
    save_->setEnabled(c.saveEnabled);
    const std::string& whyNot = !session_.readOnlyReason.empty() ? session_.readOnlyReason : c.saveRefusal;
    save_->setToolTip(Q(whyNot));
    if (textNote_->isVisibleTo(this) != !c.roundTripNote.empty()) {
        textNote_->setVisible(!c.roundTripNote.empty());
        PlaceControls();
    }
    textNote_->setToolTip(Q(c.roundTripNote));
    buttons_[2]->setEnabled(c.searchEnabled);
    tree_->setEnabled(c.treeEnabled);
    treeFilter_->setEnabled(c.treeEnabled);
    if (QAction* script = FindAction(toolsMenu_, QStringLiteral("mnuTextScript")))
        script->setEnabled(c.textScriptEnabled);
    if (QAction* find = FindAction(toolsMenu_, QStringLiteral("mnuFindTexts"))) find->setEnabled(c.textScriptEnabled);
    for (const char* name : {"mnuExportAll", "mnuImportTranslation", "mnuAllTexts"})
        if (QAction* a = FindAction(toolsMenu_, QString::fromLatin1(name))) a->setEnabled(c.textScriptEnabled);
    label3_->setText(Q(c.offsetCaption));
    // One pass over the ROM per text shown, not per change of the editor.
    if (const std::string of = session_.romPath.string() + '\n' + c.offsetCaption; of != pointersOf_) {
        pointersOf_ = of;
        try {
            pointers_->setText(Q(discover::PointersCaption(session_.romPath, c.offsetCaption)));
        } catch (const FileError&) {
            pointers_->clear();
        }
    }
    label4_->setText(Q(c.gameCode));
    repoint_->setText(Q(c.repointCaption));
    draftBar_->setText(QStringLiteral("Unsaved changes from %1 - <a href=\"restore\">Restore</a> / "
                                      "<a href=\"discard\">Discard</a>")
                           .arg(Q(c.draftTime).toHtmlEscaped()));
    if (c.draftTime.empty() != draftBar_->isHidden()) {
        draftBar_->setVisible(!c.draftTime.empty());
        PlaceControls();
    }
    RefreshTree();
    syncing_ = false;
}

void MainWindow::PushTextToSession() {
    TextBox& box = session_.controls.text1;
    box.SetText(FromWidgetText(text1_->toPlainText()));
    PushSelectionToSession();
    UpdateRepointCounter(session_);
    session_.Changed();
}

void MainWindow::PushSelectionToSession() {
    TextBox& box = session_.controls.text1;
    QTextCursor c = text1_->textCursor();
    std::size_t start = BytePosition(box.Text(), c.selectionStart());
    std::size_t end = BytePosition(box.Text(), c.selectionEnd());
    box.Select(start, end - start);
}

}  // namespace quillon::ui
