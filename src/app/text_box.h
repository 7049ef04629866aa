#pragma once
// An editable text with a selection, as a text box holds it. Text is UTF-8;
// positions are byte offsets that always fall on character boundaries.
#include <cstddef>
#include <string>
#include <string_view>

namespace quillon {

class TextBox {
public:
    const std::string& Text() const { return text_; }
    // Replaces the whole text; the caret goes to the start.
    void SetText(std::string text);

    std::size_t SelectionStart() const { return selStart_; }
    std::size_t SelectionLength() const { return selLength_; }
    // Clamps to the text and to character boundaries.
    void Select(std::size_t start, std::size_t length);
    std::string SelectedText() const;
    // Replaces the selection (or inserts at the caret) and puts the caret behind.
    void ReplaceSelection(std::string_view insert);
    // Appends at the very end without touching the selection.
    void Append(std::string_view tail);

    bool enabled = false;
    bool readOnly = false;

private:
    std::size_t Boundary(std::size_t pos) const;

    std::string text_;
    std::size_t selStart_ = 0;
    std::size_t selLength_ = 0;
};

}  // namespace quillon
