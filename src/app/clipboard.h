#pragma once
// The system clipboard's plain text, as the text menus use it. The windows
// implement it with the platform's clipboard; tests with a plain string.
#include <string>
#include <string_view>

namespace quillon {

class Clipboard {
public:
    virtual ~Clipboard() = default;
    // The clipboard's plain text (UTF-8); empty when it holds none.
    virtual std::string GetText() = 0;
    virtual void SetText(std::string_view text) = 0;
};

}  // namespace quillon
