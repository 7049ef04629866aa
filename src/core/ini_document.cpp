#include "core/ini_document.h"

#include <cstring>

namespace quillon::ini {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

char FoldAscii(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

// Position of the first `c` in [from, to), or `to`.
std::size_t FindIn(const std::string& text, char c, std::size_t from, std::size_t to) {
    if (from >= to) return to;
    const void* hit = std::memchr(text.data() + from, c, to - from);
    return hit ? static_cast<std::size_t>(static_cast<const char*>(hit) - text.data()) : to;
}

// The line a change writes, with the file's usual line end.
std::string MakeLine(std::string_view key, std::string_view value) {
    std::string line;
    line.reserve(key.size() + value.size() + 3);
    line.append(key).append("=").append(value).append("\r\n");
    return line;
}

// text[0, at) + insert + text[at, end): when the line before `at` has no line
// end (the last line of the file), it receives one first.
std::string InsertAt(const std::string& text, std::size_t at, std::string_view insert) {
    std::string out;
    out.reserve(text.size() + insert.size() + 2);
    out.append(text, 0, at);
    if (!out.empty() && out.back() != '\n' && out != kByteOrderMark) out += "\r\n";
    out.append(insert);
    out.append(text, at, std::string::npos);
    return out;
}

}  // namespace

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

std::string_view TrimBlanks(std::string_view s) {
    std::size_t b = 0, e = s.size();
    while (b < e && IsBlank(s[b])) ++b;
    while (e > b && IsBlank(s[e - 1])) --e;
    return s.substr(b, e - b);
}

bool NamesEqual(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (FoldAscii(a[i]) != FoldAscii(b[i])) return false;
    return true;
}

std::string FoldedName(std::string_view name) {
    std::string out(name);
    for (char& c : out) c = FoldAscii(c);
    return out;
}

IniDocument::IniDocument(std::string text) : text_(std::move(text)) {
    const std::size_t n = text_.size();
    const char* d = text_.data();
    const std::size_t start = std::string_view(text_).starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0;
    // Every line is looked at once at most: after a '[' the search goes on at
    // the next line.
    std::size_t pos = start;
    while (pos < n) {
        std::size_t bracket = FindIn(text_, '[', pos, n);
        if (bracket == n) break;
        std::size_t lineEnd = FindIn(text_, '\n', bracket, n);
        std::size_t next = lineEnd < n ? lineEnd + 1 : n;
        std::size_t lineStart = bracket;
        while (lineStart > start && IsBlank(d[lineStart - 1])) --lineStart;
        if (lineStart == start || d[lineStart - 1] == '\n') {
            std::size_t close = lineEnd;
            while (close > bracket + 1 && d[close - 1] != ']') --close;
            if (close > bracket + 1) {
                std::string_view name(d + bracket + 1, close - 1 - (bracket + 1));
                if (!sections_.empty()) sections_.back().end = lineStart;
                sections_.push_back({TrimBlanks(name), lineStart, next, n});
            }
        }
        pos = next;
    }
}

const IniDocument::Section* IniDocument::FindSection(std::string_view name) const {
    name = TrimBlanks(name);
    for (const Section& s : sections_)
        if (NamesEqual(s.name, name)) return &s;
    return nullptr;
}

std::vector<IniDocument::KeyLine> IniDocument::Keys(const Section& section) const {
    std::vector<KeyLine> keys;
    std::size_t begin = section.body;
    while (begin < section.end) {
        std::size_t lineEnd = FindIn(text_, '\n', begin, section.end);
        std::size_t next = lineEnd < section.end ? lineEnd + 1 : section.end;
        std::string_view line = TrimBlanks(std::string_view(text_).substr(begin, lineEnd - begin));
        if (!line.empty() && line.front() != ';') {
            std::size_t eq = line.find('=');
            if (eq != std::string_view::npos)
                keys.push_back({TrimBlanks(line.substr(0, eq)), TrimBlanks(line.substr(eq + 1)), begin, next});
        }
        begin = next;
    }
    return keys;
}

const IniDocument::KeyLine* IniDocument::FindKey(const std::vector<KeyLine>& keys, std::string_view name) {
    name = TrimBlanks(name);
    for (const KeyLine& k : keys)
        if (NamesEqual(k.name, name)) return &k;
    return nullptr;
}

std::optional<std::string> IniDocument::WithValue(std::string_view section, std::string_view key,
                                                  std::string_view value) const {
    key = TrimBlanks(key);
    const Section* s = FindSection(section);
    if (!s) {
        std::string added = "[";
        added.append(TrimBlanks(section)).append("]\r\n").append(MakeLine(key, value));
        return InsertAt(text_, text_.size(), added);
    }
    std::vector<KeyLine> keys = Keys(*s);
    if (const KeyLine* k = FindKey(keys, key)) {
        if (k->value == value) return std::nullopt;
        // The rewritten line keeps the name as the file spells it.
        std::string out;
        out.reserve(text_.size() + value.size() + 2);
        out.append(text_, 0, k->begin).append(MakeLine(k->name, value)).append(text_, k->end, std::string::npos);
        return out;
    }
    return InsertAt(text_, keys.empty() ? s->body : keys.back().end, MakeLine(key, value));
}

std::optional<std::string> IniDocument::WithoutKey(std::string_view section, std::string_view key) const {
    const Section* s = FindSection(section);
    if (!s) return std::nullopt;
    std::vector<KeyLine> keys = Keys(*s);
    const KeyLine* k = FindKey(keys, key);
    if (!k) return std::nullopt;
    std::string out;
    out.reserve(text_.size());
    out.append(text_, 0, k->begin).append(text_, k->end, std::string::npos);
    return out;
}

std::optional<std::string> IniDocument::WithoutSection(std::string_view section) const {
    section = TrimBlanks(section);
    std::string out;
    std::size_t kept = 0;
    bool changed = false;
    for (const Section& s : sections_) {
        if (!NamesEqual(s.name, section)) continue;
        if (!changed) out.reserve(text_.size());
        out.append(text_, kept, s.begin - kept);
        kept = s.end;
        changed = true;
    }
    if (!changed) return std::nullopt;
    out.append(text_, kept, std::string::npos);
    return out;
}

}  // namespace quillon::ini
