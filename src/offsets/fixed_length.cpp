#include "offsets/fixed_length.h"

#include "core/hex_text.h"
#include "game/name_tables.h"

#include <charconv>

namespace quillon {
namespace {

constexpr std::string_view kLabel = "fixed length:";
constexpr std::string_view kPadded = "padded with ";
constexpr std::string_view kRecords = "records of ";

std::string Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return out;
}

// The number at the start of `s` in `base`, blanks before it passed over.
template <class T>
std::optional<T> NumberAt(std::string_view s, int base) {
    s = ini::TrimBlanks(s);
    T value{};
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value, base);
    if (ec != std::errc() || end == s.data()) return std::nullopt;
    return value;
}

}  // namespace

std::string FixedLengthLine(const FixedLength& fixed) {
    std::string line = "; Fixed length: " + std::to_string(fixed.bytes) + " bytes, padded with " +
                       PlainHex(fixed.padding, 2);
    if (fixed.stride > fixed.bytes) line += ", records of " + std::to_string(fixed.stride) + " bytes";
    return line;
}

std::optional<FixedLength> ParseFixedLengthLine(std::string_view line) {
    line = ini::TrimBlanks(line);
    if (line.empty() || line.front() != ';') return std::nullopt;
    const std::string text = Lower(ini::TrimBlanks(line.substr(1)));
    if (!text.starts_with(kLabel)) return std::nullopt;
    const auto bytes = NumberAt<std::uint32_t>(std::string_view(text).substr(kLabel.size()), 10);
    if (!bytes || *bytes < 2 || *bytes > game::kMaxNameField) return std::nullopt;
    FixedLength fixed{*bytes, 0, 0};
    if (const auto at = text.find(kPadded); at != std::string::npos) {
        const auto pad = NumberAt<unsigned>(std::string_view(text).substr(at + kPadded.size(), 2), 16);
        if (!pad) return std::nullopt;
        fixed.padding = static_cast<std::uint8_t>(*pad);
    }
    if (const auto at = text.find(kRecords); at != std::string::npos)
        fixed.stride = NumberAt<std::uint32_t>(std::string_view(text).substr(at + kRecords.size()), 10).value_or(0);
    return fixed;
}

std::optional<FixedLength> SectionFixedLength(const ini::IniDocument& doc, const ini::IniDocument::Section& section) {
    const std::string_view body = std::string_view(doc.Text()).substr(section.body, section.end - section.body);
    for (std::size_t from = 0; from < body.size();) {
        const std::size_t lf = std::min(body.find('\n', from), body.size());
        if (auto fixed = ParseFixedLengthLine(body.substr(from, lf - from))) return fixed;
        from = lf + 1;
    }
    return std::nullopt;
}

std::optional<FixedLength> FixedLengthAt(std::string_view fileText, std::uint32_t offset) {
    const ini::IniDocument doc{std::string(fileText)};
    for (const auto& section : doc.Sections()) {
        const auto fixed = SectionFixedLength(doc, section);
        if (!fixed) continue;
        for (const auto& key : doc.Keys(section)) {
            const std::string_view value = ini::TrimBlanks(key.value);
            std::uint32_t listed = 0;
            auto [end, ec] = std::from_chars(value.data(), value.data() + value.size(), listed, 16);
            if (ec == std::errc() && end == value.data() + value.size() && listed == offset) return fixed;
        }
    }
    return std::nullopt;
}

NameWrite WriteName(std::string_view field, std::string_view name, const FixedLength& fixed) {
    if (name.size() > fixed.Letters())
        return {{}, "Fixed length: " + std::to_string(fixed.Letters()) + " letters, and the name has " +
                        std::to_string(name.size()) + "; a name stays in its record and is never moved"};
    if (field.size() != fixed.bytes || !game::NameFieldAt(field, 0, fixed.bytes))
        return {{}, "its " + std::to_string(fixed.bytes) +
                        " bytes are no name of fixed length (no end mark, or other bytes behind it), so they are left alone"};
    std::string bytes(name);
    bytes += '\xFF';
    bytes.append(fixed.bytes - bytes.size(), static_cast<char>(fixed.padding));
    return {std::move(bytes), {}};
}

}  // namespace quillon
