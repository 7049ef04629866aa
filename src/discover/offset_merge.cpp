#include "discover/offset_merge.h"
#include "core/hex_text.h"

#include "core/ini_document.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <set>

namespace quillon::discover {
namespace {

constexpr std::size_t kMaxKeyBytes = 30;

// Offsets that the file's entries hold already, in any section.
std::set<std::uint32_t> ListedOffsets(const ini::IniDocument& doc) {
    std::set<std::uint32_t> listed;
    for (const auto& section : doc.Sections()) {
        for (const auto& key : doc.Keys(section)) {
            std::string_view v = ini::TrimBlanks(key.value);
            if (v.size() >= 2 && v.front() == '"' && v.back() == '"') v = v.substr(1, v.size() - 2);
            std::uint32_t offset = 0;
            auto [end, ec] = std::from_chars(v.data(), v.data() + v.size(), offset, 16);
            if (ec == std::errc() && end == v.data() + v.size()) listed.insert(offset);
        }
    }
    return listed;
}

// Case-insensitive, as the file's names match.
struct NameLess {
    bool operator()(const std::string& a, const std::string& b) const {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
            auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
            return lower(x) < lower(y);
        });
    }
};
using NameSet = std::set<std::string, NameLess>;

std::string Unique(const std::string& name, NameSet& taken, const char* suffix) {
    std::string candidate = name;
    for (int n = 2; !taken.insert(candidate).second; ++n) {
        char buf[16];
        std::snprintf(buf, sizeof buf, suffix, n);
        candidate = name + buf;
    }
    return candidate;
}

}  // namespace

std::string KeyNameFor(std::string_view preview, std::uint32_t offset) {
    // UTF-8 to Latin-1 characters; anything else ends a word.
    std::string latin;
    for (std::size_t i = 0; i < preview.size(); ++i) {
        auto c = static_cast<unsigned char>(preview[i]);
        if ((c == 0xC2 || c == 0xC3) && i + 1 < preview.size()) {
            c = static_cast<unsigned char>((c & 0x1F) << 6 | (static_cast<unsigned char>(preview[++i]) & 0x3F));
        } else if (c >= 0x80) {
            while (i + 1 < preview.size() && (static_cast<unsigned char>(preview[i + 1]) & 0xC0) == 0x80) ++i;
            c = ' ';
        }
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= 0xC0 && c != 0xD7 && c != 0xF7);
        const bool digit = c >= '0' && c <= '9';
        const bool mark = c == '\'' || c == '-' || c == '.' || c == '!' || c == '?';
        const bool keep = letter || digit || (mark && !latin.empty() && latin.back() != ' ');
        if (keep) {
            latin += static_cast<char>(c);
        } else if (!latin.empty() && latin.back() != ' ' && (c == ' ' || c == ',' || c == '\t' || c == ']')) {
            latin += ' ';
        }
    }
    // Whole words up to the limit; a first word longer than that is cut.
    std::string name;
    for (std::size_t from = 0; from < latin.size();) {
        std::size_t to = std::min(latin.find(' ', from), latin.size());
        const std::size_t add = (name.empty() ? 0 : 1) + (to - from);
        if (name.size() + add > kMaxKeyBytes) {
            if (name.empty()) name = latin.substr(from, kMaxKeyBytes);
            break;
        }
        if (!name.empty()) name += ' ';
        name += latin.substr(from, to - from);
        from = to + 1;
    }
    for (std::size_t at; (at = name.find("Parent")) != std::string::npos;) name[at] = 'p';
    if (name.empty()) name = "Text " + PlainHex(offset, 6);
    return name;
}

Merge MergeFoundTexts(std::string_view offsetFile, const std::vector<FoundText>& found) {
    const ini::IniDocument doc{std::string(offsetFile)};
    const std::set<std::uint32_t> listed = ListedOffsets(doc);
    Merge merge;
    merge.text = std::string(offsetFile);

    std::vector<const FoundText*>& fresh = merge.fresh;
    std::set<std::uint32_t> seen;
    for (const FoundText& f : found) {
        if (listed.count(f.offset)) ++merge.listed;
        else if (seen.insert(f.offset).second) fresh.push_back(&f);
    }
    std::sort(fresh.begin(), fresh.end(), [](auto* a, auto* b) { return a->offset < b->offset; });

    NameSet sectionNames;
    for (const auto& s : doc.Sections()) sectionNames.insert(std::string(s.name));
    if (!fresh.empty() && !merge.text.empty() && merge.text.back() != '\n') merge.text += "\r\n";
    auto addSection = [&](const std::string& wanted, auto first, auto last) {
        merge.text += "[" + Unique(wanted, sectionNames, " (%d)") + "]\r\n";
        ++merge.sections;
        NameSet keys;
        for (auto it = first; it != last; ++it) {
            const std::string key = Unique(KeyNameFor((*it)->preview, (*it)->offset), keys, " %d");
            merge.text += key + "=" + PlainHex((*it)->offset) + "\r\n";
            ++merge.added;
        }
    };
    // Texts whose use the game tells go to the section of that use, by name.
    std::map<std::string, std::vector<const FoundText*>, NameLess> named;
    std::vector<const FoundText*> unnamed;
    for (const FoundText* f : fresh) (f->section.empty() ? unnamed : named[f->section]).push_back(f);
    for (const auto& [name, texts] : named)
        for (std::size_t i = 0; i < texts.size(); i += kMaxSectionEntries)
            addSection(name, texts.begin() + static_cast<std::ptrdiff_t>(i),
                       texts.begin() + static_cast<std::ptrdiff_t>(std::min(texts.size(), i + kMaxSectionEntries)));
    // The rest by where they lie.
    for (std::size_t i = 0; i < unnamed.size();) {
        // The texts of one 64 KiB area, cut into runs of at most kMaxSectionEntries.
        const std::uint32_t area = unnamed[i]->offset >> 16;
        std::size_t end = i;
        while (end < unnamed.size() && unnamed[end]->offset >> 16 == area) ++end;
        const bool split = end - i > kMaxSectionEntries;
        for (; i < end;) {
            const std::size_t runEnd = std::min(end, i + kMaxSectionEntries);
            const std::uint32_t first = split ? unnamed[i]->offset : area << 16;
            const std::uint32_t last = split ? unnamed[runEnd - 1]->offset : (area << 16) | 0xFFFF;
            addSection("Texts " + PlainHex(first, 6) + "-" + PlainHex(last, 6),
                       unnamed.begin() + static_cast<std::ptrdiff_t>(i), unnamed.begin() + static_cast<std::ptrdiff_t>(runEnd));
            i = runEnd;
        }
    }
    return merge;
}

}  // namespace quillon::discover
