#pragma once
// The fit check in the main window: measures the editor text with the game's
// font against the box of its context after every change, tints the lines
// over it (with their width as a tooltip) and, lighter, the lines over it
// only with names at their longest, shows a short summary beside the repoint
// counter, and adds "Preview in Game Font..." and "Reflow Text" to the text
// menu and "Check All Texts..." to the Tools menu.
#include "fit/fit_settings.h"
#include "fit/measure.h"

#include <QObject>
#include <QString>

#include <optional>
#include <string>

class QLabel;
class QMenu;
class QPlainTextEdit;
class QWidget;

namespace quillon {
class Session;
}

namespace quillon::ui {

class PreviewDialog;

class FitMonitor : public QObject {
    Q_OBJECT

public:
    FitMonitor(Session& session, QPlainTextEdit* text1, QLabel* repoint, QMenu* textMenu, QMenu* toolsMenu,
               QWidget* window);

    Session& session() const { return session_; }
    // The font of the open ROM; nothing with the reason in Why().
    const fit::Font* Font() const { return font_ ? &*font_ : nullptr; }
    const QString& Why() const { return why_; }
    // The last measure of the editor text (empty without a font).
    const fit::Measure& Current() const { return measure_; }
    // How the editor text is measured: its box, the sample name.
    const fit::MeasureOptions& Options() const { return options_; }
    const fit::FitSettings& Settings() const { return settings_; }
    // A new sample player name (editor text), kept in settings.ini.
    void SetSampleName(const std::string& name);

    void OpenPreview();
    void OpenCheckAll();
    // Breaks the editor text into lines and boxes that fit its box; one
    // step of the editor's undo.
    void Reflow();
    PreviewDialog* Preview() const { return preview_; }

signals:
    void Measured();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Update();
    void ReloadFont();
    void PlaceLabel();
    void Mark();
    // "214 / 208 px", and the width with long names when it differs.
    std::string Caption(const fit::Line& line) const;

    Session& session_;
    QPlainTextEdit* text1_;
    // The editor's viewport, compared by address only: the window deletes the
    // editor before lblRepoint, whose destruction still passes this filter.
    QObject* viewport_;
    QLabel* repoint_;
    QLabel* label_;
    QWidget* window_;
    std::string fontKey_;
    std::string optionsKey_;
    fit::MeasureOptions options_;
    std::optional<fit::Font> font_;
    QString why_;
    fit::FitSettings settings_;
    fit::Measure measure_;
    std::string measuredText_;
    bool measuredSpecial_ = false;
    bool measured_ = false;
    PreviewDialog* preview_ = nullptr;  // made on first use, owned by the window
};

}  // namespace quillon::ui
