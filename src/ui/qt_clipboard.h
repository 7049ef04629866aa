#pragma once
// The system clipboard through Qt.
#include "app/clipboard.h"

namespace quillon::ui {

class QtClipboard : public Clipboard {
public:
    std::string GetText() override;
    void SetText(std::string_view text) override;
};

}  // namespace quillon::ui
