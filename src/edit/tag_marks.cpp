#include "edit/tag_marks.h"

#include "app/session.h"
#include "core/codec/tables.h"

#include <quillon/codec.h>

#include <unordered_set>

namespace quillon {
namespace {

// Every bracketed text that encodes as a tag: single-byte entries of the
// European table and the named tags read back before encoding.
const std::unordered_set<std::string_view>& KnownTags() {
    static const std::unordered_set<std::string_view> tags = [] {
        std::unordered_set<std::string_view> t;
        for (std::string_view entry : codec::EuropeanTable())
            if (entry.size() > 2 && entry.front() == '[' && entry.back() == ']') t.insert(entry);
        for (const auto& rule : codec::EncodeRewrites())
            if (rule.from.size() > 2 && rule.from.front() == '[' && rule.from.back() == ']') t.insert(rule.from);
        return t;
    }();
    return tags;
}

bool IsHexTag(std::string_view s) { return s.size() == 6 && s.substr(0, 3) == "[&H" && IsHex(s.substr(3, 2)) && s[5] == ']'; }

// The code point at `i` and its length in bytes (1 for a broken sequence).
std::pair<char32_t, std::size_t> CodePointAt(std::string_view s, std::size_t i) {
    const auto lead = static_cast<unsigned char>(s[i]);
    const std::size_t n = lead < 0x80 ? 1 : lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
    if (n == 0 || i + n > s.size()) return {0x110000, 1};
    char32_t c = n == 1 ? lead : n == 2 ? lead & 0x1Fu : n == 3 ? lead & 0x0Fu : lead & 0x07u;
    for (std::size_t k = 1; k < n; ++k) c = c << 6 | (static_cast<unsigned char>(s[i + k]) & 0x3Fu);
    return {c, n};
}

}  // namespace

std::vector<TextMark> MarkText(std::string_view text) {
    std::vector<TextMark> marks;
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == '[') {
            const std::size_t close = text.find_first_of("]\r\n[", i + 1);
            if (close != std::string_view::npos && text[close] == ']') {
                const std::string_view candidate = text.substr(i, close + 1 - i);
                const bool tag = KnownTags().contains(candidate) || IsHexTag(candidate);
                marks.push_back({tag ? TextMark::Tag : TextMark::NotATag, i, candidate.size()});
                i = close + 1;
                continue;
            }
        }
        if (text[i] == '\\' && i + 1 < text.size()) {  // the escapes \c, \v, \x, \n, ...
            i += 2;
            continue;
        }
        const auto [c, n] = CodePointAt(text, i);
        if (c != '\r' && c != '\n' && c != ' ' && codec::EncodeChar(c) == 0x00) marks.push_back({TextMark::NoByte, i, n});
        i += n;
    }
    return marks;
}

std::string MarkExplanation(std::string_view text, const TextMark& mark) {
    const std::string what(text.substr(mark.start, mark.length));
    switch (mark.kind) {
        case TextMark::Tag: return what + " is a tag.";
        case TextMark::NotATag: return what + " is not a tag: it is saved as its characters.";
        case TextMark::NoByte: break;
    }
    return (what == "\t" ? std::string("A tab") : "\"" + what + "\"") + " has no byte: it is saved as 0x00.";
}

bool ConfirmUnencodable(Session& session) {
    const std::string& text = session.controls.text1.Text();
    std::string named;
    for (const TextMark& m : MarkText(text)) {
        if (m.kind == TextMark::Tag) continue;
        const std::string what = text.substr(m.start, m.length);
        named += (named.empty() ? "" : ", ") + (what == "\t" ? std::string("a tab") : "\"" + what + "\"");
    }
    if (named.empty()) return true;
    return session.prompter.AskYesNo("This text holds " + named +
                                     ", which the game does not know as tags or characters.\r\n\r\n"
                                     "Save it anyway?");
}

}  // namespace quillon
