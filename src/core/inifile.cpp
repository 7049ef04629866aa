// INI file access with the results of the platform's profile functions: values
// come back cut to a 255-character buffer, name lists to an 8192-character one,
// and a write either happens completely or leaves the file as it was.
#include <quillon/errors.h>
#include <quillon/inifile.h>

#include "core/file_io.h"
#include "core/ini_document.h"

#include <cerrno>
#include <cstdint>
#include <limits>
#include <optional>
#include <system_error>

namespace quillon {
namespace {

using ini::IniDocument;

// A value read fills at most 254 characters of its buffer of 255.
constexpr std::size_t kValueChars = 254;
// A name list fills at most 8190 characters of its buffer of 8192: the last two
// hold the list's closing zeros, so a name whose own zero would land there is
// cut and loses that zero.
constexpr std::size_t kListChars = 8190;

// Names reach the platform as zero-terminated strings and end at the first 0x00.
std::string_view CName(std::string_view s) { return s.substr(0, s.find('\0')); }

// The whole file: its length first, then one block read; a file that grew in
// between is read again. Only regular files are read (a folder or a pipe is
// no INI file).
std::string ReadWhole(const std::filesystem::path& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) io::ThrowFileError(path, "read", EINVAL);
    std::uint64_t size = io::FileSize(path);
    std::string bytes = io::ReadAt(path, 0, static_cast<std::size_t>(size) + 1);
    if (bytes.size() > size) return io::ReadAll(path);
    return bytes;
}

// The whole file, or nothing when it is missing or unreadable: reads never fail.
std::string ReadOrEmpty(const std::filesystem::path& path) {
    if (path.empty()) return {};
    try {
        return ReadWhole(path);
    } catch (const FileError&) {
        return {};
    }
}

// Each name followed by 0x00, cut to what the list buffer takes.
template <class Items, class NameOf>
std::string NameList(const Items& items, NameOf nameOf) {
    std::string list;
    for (const auto& item : items) {
        std::string_view name = nameOf(item);
        list.append(name);
        list.push_back('\0');
        if (list.size() >= kListChars) break;
    }
    if (list.size() > kListChars) list.resize(kListChars);
    return list;
}

// Splits a name list at its 0x00 characters; a piece without a closing 0x00 is
// not taken.
std::vector<std::string> SplitList(std::string_view list, bool keepEmpty) {
    std::vector<std::string> names;
    for (std::size_t pos = 0, zero; (zero = list.find('\0', pos)) != std::string_view::npos; pos = zero + 1)
        if (keepEmpty || zero > pos) names.emplace_back(list.substr(pos, zero - pos));
    return names;
}

// Runs one change of a file: `edit` returns the file's new text, or nothing
// when the file stays as it is. Returns the platform's result: 0 when the file
// cannot be written (a missing folder, a folder in the file's place, a
// write-protected or unreadable file, a failed write), else 1. The new text
// replaces the file through a temporary file, so the file is never half written.
template <class Edit>
std::int32_t Change(const std::filesystem::path& path, Edit edit) {
    if (path.empty()) return 0;
    std::error_code ec;
    auto status = std::filesystem::status(path, ec);
    if (std::filesystem::is_directory(status) || io::IsWriteProtected(path)) return 0;
    std::string old;
    if (std::filesystem::exists(status)) {
        try {
            old = ReadWhole(path);
        } catch (const FileError&) {
            return 0;
        }
    } else {
        if (ec && status.type() != std::filesystem::file_type::not_found) return 0;
        auto folder = path.parent_path();
        if (!folder.empty() && !std::filesystem::is_directory(folder, ec)) return 0;
    }
    IniDocument document(std::move(old));
    std::optional<std::string> text = edit(document);
    if (!text) return 1;
    try {
        io::ReplaceFile(path, *text);
    } catch (const FileError&) {
        return 0;
    } catch (const std::filesystem::filesystem_error&) {
        return 0;
    }
    return 1;
}

}  // namespace

void cInifile::SetPath(std::filesystem::path path) { path_ = std::move(path); }
const std::filesystem::path& cInifile::Path() const { return path_; }
void cInifile::SetSection(std::string section) { section_ = std::move(section); }
const std::string& cInifile::Section() const { return section_; }
void cInifile::SetKey(std::string key) { key_ = std::move(key); }
const std::string& cInifile::Key() const { return key_; }
void cInifile::SetDefault(std::string value) { default_ = std::move(value); }
const std::string& cInifile::Default() const { return default_; }
std::int32_t cInifile::LastReturnCode() const { return lastReturnCode_; }
bool cInifile::Success() const { return lastReturnCode_ != 0; }

std::string cInifile::Value() const {
    IniDocument document(ReadOrEmpty(path_));
    std::string_view value;
    bool found = false;
    if (const auto* section = document.FindSection(CName(section_))) {
        auto keys = document.Keys(*section);
        if (const auto* key = IniDocument::FindKey(keys, CName(key_))) {
            value = key->value;
            found = true;
            // One pair of matching quotes around a value is dropped.
            if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
                value = value.substr(1, value.size() - 2);
        }
    }
    if (!found) {
        // The default loses its trailing blanks, as the platform has it.
        value = CName(default_);
        while (!value.empty() && value.back() == ' ') value.remove_suffix(1);
    }
    return std::string(value.substr(0, kValueChars));
}

void cInifile::SetValue(std::string_view value) {
    std::string clean;
    clean.reserve(value.size());
    for (char c : value)
        if (c != '\0') clean.push_back(c);
    lastReturnCode_ = Change(path_, [&](const IniDocument& d) { return d.WithValue(CName(section_), CName(key_), clean); });
}

void cInifile::DeleteKey() {
    lastReturnCode_ = Change(path_, [&](const IniDocument& d) { return d.WithoutKey(CName(section_), CName(key_)); });
}

void cInifile::DeleteSection() {
    lastReturnCode_ = Change(path_, [&](const IniDocument& d) { return d.WithoutSection(CName(section_)); });
}

std::string cInifile::INISection() const {
    IniDocument document(ReadOrEmpty(path_));
    const auto* section = document.FindSection(CName(section_));
    if (!section) return {};
    return NameList(document.Keys(*section), [](const IniDocument::KeyLine& k) { return k.name; });
}

std::string cInifile::Sections() const {
    IniDocument document(ReadOrEmpty(path_));
    return NameList(document.Sections(), [](const IniDocument::Section& s) { return s.name; });
}

void cInifile::EnumerateCurrentSection(std::vector<std::string>& keys, std::int32_t& count) const {
    keys = SplitList(INISection(), true);
    count = static_cast<std::int32_t>(keys.size());
}

void cInifile::EnumerateAllSections(std::vector<std::string>& sections, std::int32_t& count) const {
    sections = SplitList(Sections(), false);
    count = static_cast<std::int32_t>(sections.size());
}

// Decimal digits with an optional sign; blanks (space, tab) around the number
// are accepted, as the platform's conversion accepts them. Anything else, an
// empty text, or a number outside 32 bits gives the fallback.
std::int32_t cInifile::CLngDefault(std::string_view s, std::int32_t fallback) const {
    auto blank = [](char c) { return c == ' ' || c == '\t'; };
    while (!s.empty() && blank(s.front())) s.remove_prefix(1);
    while (!s.empty() && blank(s.back())) s.remove_suffix(1);
    bool negative = false;
    if (!s.empty() && (s.front() == '+' || s.front() == '-')) {
        negative = s.front() == '-';
        s.remove_prefix(1);
    }
    if (s.empty()) return fallback;
    const std::int64_t limit = negative ? -static_cast<std::int64_t>(std::numeric_limits<std::int32_t>::min())
                                        : std::numeric_limits<std::int32_t>::max();
    std::int64_t n = 0;
    for (char c : s) {
        if (c < '0' || c > '9') return fallback;
        n = n * 10 + (c - '0');
        if (n > limit) return fallback;
    }
    return static_cast<std::int32_t>(negative ? -n : n);
}

}  // namespace quillon
