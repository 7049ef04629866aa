#pragma once
// frmMain: the borderless, rounded main window. It mirrors the session's
// control states after every change and hands each action to a command.
#include <QStringList>
#include <QWidget>

#include <filesystem>
#include <functional>
#include <optional>
#include <memory>
#include <string>

class QButtonGroup;
class QCheckBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPainterPath;
class QPlainTextEdit;
class QPushButton;
class QRadioButton;
class QTreeView;

namespace quillon {
class Clipboard;
class Session;
struct Menu;
}  // namespace quillon

namespace quillon::ui {

class AllTextsWindow;
class ProgressDialog;
class TreeViewModel;
class XPButton;

// Pixels for a length in twips at this window's logical DPI (15 twips per
// pixel at 96 dpi), rounded half to even.
int TwipsToPixels(int twips, double logicalDpi);

// Whether the screen composites windows, so that a translucent window shows
// what lies behind it.
bool ScreenComposites();

class MainWindow : public QWidget {
public:
    MainWindow(Session& session, Clipboard& clipboard, QWidget* parent = nullptr);
    ~MainWindow() override;

    // The menus built from the logic's menu data, for tests and key handling.
    QMenu* TextMenu() const { return textMenu_; }
    QMenu* ToolsMenu() const { return toolsMenu_; }
    QMenu* TreeMenu() const { return treeMenu_; }
    // Where the Tools menu opens, in client coordinates.
    QPoint ToolsMenuPoint() const;
    // Opens `rom` as "Open ROM" does once the file is chosen: its questions,
    // checks and drafts (a ROM named on the command line).
    void OpenRomFile(const std::filesystem::path& rom);
    // Opens the Tools menu (as XPButton6 does).
    void ShowToolsMenu();
    // "All Texts...": shows the window of every entry (made on first use).
    AllTextsWindow* ShowAllTexts();

    // Whether the rounded corners are drawn antialiased over a translucent
    // window (a screen that composites windows) instead of cut by a region.
    void SetSmoothCorners(bool smooth);

    // Hands the window to the window manager's move; tests replace it.
    std::function<void()> systemMove;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Construction, by part (main_window*.cpp, one file per concern).
    void BuildControls();
    void BuildEditor();
    void BuildButtons();
    void BuildTables();
    void BuildTree();
    void BuildOffsetButton();
    void BuildInformation();
    void BuildChrome();
    void BuildMenus();
    // The event filter's parts; each says whether it took the event.
    bool EditorEvent(QObject* watched, QEvent* event);
    bool TreeEvent(QObject* watched, QEvent* event);
    bool HotspotEvent(QObject* watched, QEvent* event);
    void PlaceControls();
    void DoTransparency();
    QPainterPath Outline() const;
    void Refresh();
    void RefreshTree();
    void FilterTree(const QString& text);
    QStringList ExpandedSections() const;
    void ExpandSections(const QStringList& names);
    void ShowSelectedNode();
    void MarkDrafts();
    void PushTextToSession();
    void PushSelectionToSession();
    void RunTextMenu(const QString& name);
    void ShowTextMenu(const QPoint& globalPos);
    void ShowTreeMenu(const QPoint& pos);
    void ExitProgram();
    // "Open ROM" with the file dialog, or with `rom` already chosen.
    void OpenRomAs(const std::optional<std::filesystem::path>& rom);
    int T(int twips) const;
    bool OnBackground(QPoint pos) const;

    Session& session_;
    Clipboard& clipboard_;
    bool syncing_ = false;  // the window is writing its controls from the session
    std::size_t treeGeneration_ = 0;  // of the session's tree when the view last took it
    std::size_t treeSignature_ = 0;   // its content then
    std::string treeFile_;            // the offset file it came from
    QStringList expandedBeforeFilter_;
    bool smoothCorners_ = false;
    bool dragArmed_ = false;  // a press on the background, not moved yet
    QPoint dragFrom_;
    bool pressedCurrent_ = false;  // the last tree press hit the selected node

    QPlainTextEdit* text1_ = nullptr;
    QCheckBox* check1_ = nullptr;
    QRadioButton* european_ = nullptr;
    QRadioButton* japanese_ = nullptr;
    XPButton* save_ = nullptr;
    QPushButton* offset_ = nullptr;
    QLabel* textBorder_ = nullptr;
    QLabel* draftBar_ = nullptr;  // "Unsaved changes from <time> - Restore / Discard"
    std::string markedDrafts_;  // the drafts and tree generation the marks were made for
    XPButton* buttons_[5] = {};  // XPButton1, 2, 3, 6, 4 from top to bottom
    QGroupBox* frame1_ = nullptr;
    QLabel* label2_ = nullptr;
    QLabel* label4_ = nullptr;
    QLabel* label1_ = nullptr;
    QLabel* label3_ = nullptr;
    QLabel* pointers_ = nullptr;  // lblPointers: "Pointers: 3" for the current text
    std::string pointersOf_;      // the ROM and offset that pointers_ counts for
    std::unique_ptr<ProgressDialog> progress_;
    QLabel* textNote_ = nullptr;  // lblTextNote: bytes the editor can't write back unchanged
    QLabel* repoint_ = nullptr;
    QLabel* welcome_ = nullptr;
    QLabel* minimize_ = nullptr;  // Image1
    QLabel* close_ = nullptr;     // Image4
    QLabel* help_ = nullptr;      // Image2
    QLineEdit* treeFilter_ = nullptr;  // txtTreeFilter
    QTreeView* tree_ = nullptr;
    TreeViewModel* treeModel_ = nullptr;
    QMenu* textMenu_ = nullptr;
    QMenu* toolsMenu_ = nullptr;
    QMenu* treeMenu_ = nullptr;
    AllTextsWindow* allTexts_ = nullptr;
};

}  // namespace quillon::ui
