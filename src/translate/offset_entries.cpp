#include "translate/offset_entries.h"

#include "core/ini_document.h"

#include <algorithm>
#include <cctype>
#include <unordered_set>

namespace quillon {
std::vector<OffsetEntry> ReadOffsetEntries(std::string_view fileText) {
    ini::IniDocument doc{std::string(fileText)};
    std::vector<OffsetEntry> entries;
    entries.reserve(static_cast<std::size_t>(std::count(fileText.begin(), fileText.end(), '\n')) + 1);  // a line each at most
    std::unordered_set<std::string> sectionsSeen;
    std::unordered_set<std::string> keysSeen;
    for (const auto& section : doc.Sections()) {
        if (section.name.empty() || !sectionsSeen.insert(ini::FoldedName(section.name)).second) continue;
        keysSeen.clear();
        const std::optional<FixedLength> fixed = SectionFixedLength(doc, section);
        for (const auto& line : doc.Keys(section)) {
            if (!keysSeen.insert(ini::FoldedName(line.name)).second) continue;
            entries.push_back({std::string(section.name), std::string(line.name), std::string(line.value),
                               static_cast<std::size_t>(line.value.data() - doc.Text().data()), fixed});
        }
    }
    return entries;
}

std::string Latin1ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size());
    for (char ch : bytes) {
        const auto c = static_cast<unsigned char>(ch);
        if (c < 0x80) {
            out += ch;
        } else {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

std::string EntryContext(const OffsetEntry& entry) {
    return Latin1ToUtf8(entry.section) + "/" + Latin1ToUtf8(entry.key);
}

std::string WithValues(std::string_view fileText, std::vector<std::pair<const OffsetEntry*, std::string>> changes) {
    std::sort(changes.begin(), changes.end(),
              [](const auto& a, const auto& b) { return a.first->valueBegin < b.first->valueBegin; });
    std::string out;
    out.reserve(fileText.size() + changes.size() * 8);
    std::size_t at = 0;
    for (const auto& [entry, value] : changes) {
        if (entry->valueBegin < at) continue;  // the same entry listed twice
        out.append(fileText.substr(at, entry->valueBegin - at));
        out += value;
        at = entry->valueBegin + entry->value.size();
    }
    out.append(fileText.substr(at));
    return out;
}

}  // namespace quillon
