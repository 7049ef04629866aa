#pragma once
// "Preview in Game Font": the current text drawn box by box with the game's
// glyphs, as the game shows it, following the editor while the user types.
#include <QDialog>
#include <QImage>

class QComboBox;
class QLabel;
class QLineEdit;

namespace quillon::ui {

class FitMonitor;
class XPButton;

class PreviewDialog : public QDialog {
public:
    PreviewDialog(FitMonitor& monitor, QWidget* parent = nullptr);

    int Box() const { return box_; }
    int BoxCount() const;
    // The picture shown now (null without a font).
    const QImage& Image() const { return image_; }
    void Refresh();

private:
    void Step(int delta);

    FitMonitor& monitor_;
    int box_ = 0;
    QImage image_;
    QLabel* picture_ = nullptr;
    QLabel* caption_ = nullptr;
    QComboBox* zoom_ = nullptr;
    QLineEdit* name_ = nullptr;
    XPButton* previous_ = nullptr;
    XPButton* next_ = nullptr;
};

}  // namespace quillon::ui
