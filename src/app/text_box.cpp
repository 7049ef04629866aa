#include "app/text_box.h"

#include <algorithm>

namespace quillon {

void TextBox::SetText(std::string text) {
    text_ = std::move(text);
    selStart_ = selLength_ = 0;
}

std::size_t TextBox::Boundary(std::size_t pos) const {
    pos = std::min(pos, text_.size());
    // Step back over UTF-8 continuation bytes.
    while (pos > 0 && pos < text_.size() && (static_cast<unsigned char>(text_[pos]) & 0xC0) == 0x80) --pos;
    return pos;
}

void TextBox::Select(std::size_t start, std::size_t length) {
    selStart_ = Boundary(start);
    std::size_t end = Boundary(start > text_.size() || length > text_.size() - std::min(start, text_.size())
                                   ? text_.size()
                                   : start + length);
    selLength_ = std::max(end, selStart_) - selStart_;
}

std::string TextBox::SelectedText() const { return text_.substr(selStart_, selLength_); }

void TextBox::ReplaceSelection(std::string_view insert) {
    text_.replace(selStart_, selLength_, insert);
    selStart_ += insert.size();
    selLength_ = 0;
}

void TextBox::Append(std::string_view tail) { text_.append(tail); }

}  // namespace quillon
