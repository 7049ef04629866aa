#pragma once
// frmJapanese: the Japanese table's characters 0x00 to 0xAF as a 16 x 11 grid;
// a click on a cell hands its byte to `onCell` (the search window appends its
// hex tag). The window stays open for several clicks.
#include <QDialog>

#include <functional>

namespace quillon::ui {

// The kana of a byte of the Japanese table (empty for bytes without one).
QString KanaOf(int byte);

class JapaneseDialog : public QDialog {
public:
    JapaneseDialog(std::function<void(int)> onCell, QWidget* parent = nullptr);
};

}  // namespace quillon::ui
