#include "cli/json_writer.h"

#include <cstdio>

namespace quillon::cli {
namespace {

// The length of the well-formed UTF-8 sequence at `at`, 0 when there is none.
std::size_t Utf8Length(std::string_view s, std::size_t at) {
    const auto b = [&](std::size_t i) { return static_cast<unsigned char>(s[i]); };
    const unsigned lead = b(at);
    std::size_t n = 0;
    unsigned low = 0x80, high = 0xBF;  // the allowed range of the second byte
    if (lead >= 0xC2 && lead <= 0xDF) n = 2;
    else if (lead >= 0xE0 && lead <= 0xEF) n = 3, low = lead == 0xE0 ? 0xA0 : 0x80, high = lead == 0xED ? 0x9F : 0xBF;
    else if (lead >= 0xF0 && lead <= 0xF4) n = 4, low = lead == 0xF0 ? 0x90 : 0x80, high = lead == 0xF4 ? 0x8F : 0xBF;
    if (n == 0 || at + n > s.size() || b(at + 1) < low || b(at + 1) > high) return 0;
    for (std::size_t i = 2; i < n; ++i)
        if (b(at + i) < 0x80 || b(at + i) > 0xBF) return 0;
    return n;
}

}  // namespace

std::string JsonString(std::string_view text) {
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20) {
            switch (c) {
                case '\n': out += "\\n"; break;
                case '\r': out += "\\r"; break;
                case '\t': out += "\\t"; break;
                default: {
                    char escaped[8];
                    std::snprintf(escaped, sizeof escaped, "\\u%04X", c);
                    out += escaped;
                }
            }
        } else if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (const std::size_t n = Utf8Length(text, i)) {
            out.append(text, i, n);
            i += n - 1;
        } else {  // Latin-1
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out + "\"";
}

void JsonWriter::Begin(std::string_view key) {
    if (!open_.empty()) {
        if (!open_.back().empty) out_ += ',';
        open_.back().empty = false;
    }
    if (!key.empty()) out_ += JsonString(key) + ':';
}

JsonWriter& JsonWriter::Object(std::string_view key) {
    Begin(key);
    out_ += '{';
    open_.push_back({'}', true});
    return *this;
}

JsonWriter& JsonWriter::Array(std::string_view key) {
    Begin(key);
    out_ += '[';
    open_.push_back({']', true});
    return *this;
}

JsonWriter& JsonWriter::End() {
    out_ += open_.back().close;
    open_.pop_back();
    return *this;
}

JsonWriter& JsonWriter::String(std::string_view key, std::string_view value) {
    Begin(key);
    out_ += JsonString(value);
    return *this;
}

JsonWriter& JsonWriter::Number(std::string_view key, std::int64_t value) {
    Begin(key);
    out_ += std::to_string(value);
    return *this;
}

JsonWriter& JsonWriter::Bool(std::string_view key, bool value) {
    Begin(key);
    out_ += value ? "true" : "false";
    return *this;
}

}  // namespace quillon::cli
