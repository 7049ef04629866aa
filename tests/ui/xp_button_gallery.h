#pragma once
// A sheet of XPButtons: the thirteen styles, one per row, in the normal,
// hover, pressed, focused, disabled and checked states.
class QWidget;

namespace quillon::ui {

QWidget* MakeXPButtonGallery(QWidget* parent = nullptr);

}  // namespace quillon::ui
