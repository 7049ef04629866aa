#pragma once
// PO files (gettext's translation format) read and written through
// libgettextpo. All text is UTF-8.
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillon {

struct PoMessage {
    std::string context;   // msgctxt
    std::string id;        // msgid
    std::string str;       // msgstr
    std::string comments;  // extracted comments ("#."), lines separated by LF
    bool fuzzy = false;
};

struct PoCatalog {
    std::vector<std::pair<std::string, std::string>> header;  // field name and value, in order
    std::vector<PoMessage> messages;                          // without the header entry
};

// A PO file that cannot be read, with the library's first complaint.
struct PoError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// Writes the catalog through a temporary file in the same folder that then
// replaces `path`, so a failed export leaves an older file as it was.
// Throws FileError or PoError.
void WritePo(const std::filesystem::path& path, const PoCatalog& catalog);

// Reads every message of every domain, obsolete ones left out. Throws
// PoError for a missing or unreadable file, a syntax error or a character
// set other than UTF-8.
PoCatalog ReadPo(const std::filesystem::path& path);
// The same, part by part: a large file is read in parts at entry boundaries,
// and `take` gets each part's messages (the first part's with the header)
// before the library reads the next, so that a caller on another thread can
// work on them meanwhile. It may be called before a later part is refused.
void ReadPo(const std::filesystem::path& path, const std::function<void(PoCatalog)>& take);

// The value of a header field, or "" when absent.
std::string HeaderField(const PoCatalog& catalog, std::string_view name);

}  // namespace quillon
