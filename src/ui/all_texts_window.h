#pragma once
// frmAllTexts, "All Texts": every entry of the open game's offset file in a
// table that can be filtered by the words of the texts, by section and by
// what the fit check found, and sorted by any column. Double-click or Enter
// shows a text in the main window. A window of its own that may stay open
// beside the main window; its rows are built once per load of the offset
// file (or change of the ROM) and only filtered and sorted afterwards.
#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class QComboBox;
class QLabel;
class QLineEdit;
class QTreeView;

namespace quillon {
class Session;
}

namespace quillon::ui {

class AllTextsModel;
class XPButton;

class AllTextsWindow : public QWidget {
public:
    AllTextsWindow(Session& session, QWidget* mainWindow);

    AllTextsModel* Model() const { return model_; }
    // Builds the rows again when the tree or the ROM changed since the last
    // build, and marks the rows with a draft. Does nothing while hidden.
    void Refresh();
    // Shows the text of a row of the table in the main window.
    void Open(int viewRow);

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Rebuild();
    // Shows the rows the boxes keep; `keep` (a row of the plain model) or else
    // the row chosen now stays chosen when shown.
    void ApplyFilter(std::optional<std::uint32_t> keep = std::nullopt);
    void MarkDrafts();
    void PlaceBesideMainWindow();

    Session& session_;
    QWidget* main_;
    std::string builtFor_;   // the tree, offset file and ROM state the rows were built for
    std::string romFor_;     // the ROM the filter was typed for
    std::string draftsFor_;  // the drafts the marks were made for
    bool placed_ = false;
    QLineEdit* filter_ = nullptr;
    QComboBox* section_ = nullptr;
    QComboBox* finding_ = nullptr;
    QTreeView* list_ = nullptr;
    QLabel* count_ = nullptr;
    XPButton* show_ = nullptr;
    XPButton* close_ = nullptr;
    AllTextsModel* model_ = nullptr;
};

}  // namespace quillon::ui
