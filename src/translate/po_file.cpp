#include "translate/po_file.h"

#include "core/file_io.h"

#include <gettext-po.h>

#include <quillon/errors.h>

#include <algorithm>
#include <cctype>
#include <csetjmp>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <memory_resource>
#include <string_view>
#include <unordered_set>

#include <sys/mman.h>
#include <unistd.h>

namespace quillon {
namespace {

// libgettextpo reports through callbacks; the first complaint is kept, and a
// fatal one (after which the callback must not return) jumps back to the call.
struct Complaints {
    std::string first;
    std::jmp_buf fatal;
    std::string readName;  // the name the library was given, when not the user's file
    std::string userName;  // the file's name to show instead
    long lineOffset = 0;   // the part's first line in the user's file, less one, less its header's lines
};
thread_local Complaints* tComplaints = nullptr;

void Note(int severity, const char* filename, std::size_t lineno, const char* text) {
    if (severity == PO_SEVERITY_WARNING || !tComplaints) return;
    if (tComplaints->first.empty()) {
        std::string where = filename ? filename : "";
        if (!tComplaints->readName.empty() && where == tComplaints->readName) where = tComplaints->userName;
        if (filename && lineno != static_cast<std::size_t>(-1))
            where += ":" + std::to_string(static_cast<long>(lineno) + tComplaints->lineOffset);
        tComplaints->first = (where.empty() ? "" : where + ": ") + (text ? text : "error");
    }
}

void OnError(int severity, po_message_t, const char* filename, std::size_t lineno, std::size_t, int,
             const char* text) {
    Note(severity, filename, lineno, text);
    if (severity == PO_SEVERITY_FATAL_ERROR) std::longjmp(tComplaints->fatal, 1);
}

void OnError2(int severity, po_message_t, const char* filename1, std::size_t lineno1, std::size_t, int,
              const char* text1, po_message_t, const char*, std::size_t, std::size_t, int, const char*) {
    Note(severity, filename1, lineno1, text1);
    if (severity == PO_SEVERITY_FATAL_ERROR) std::longjmp(tComplaints->fatal, 1);
}

const po_xerror_handler kHandler = {OnError, OnError2};

// The library calls with no C++ object alive in between, so the jump back
// from a fatal complaint skips no destructor.
po_file_t GuardedRead(const char* path) {
    if (setjmp(tComplaints->fatal)) return nullptr;
    return po_file_read(path, &kHandler);
}

bool GuardedWrite(po_file_t file, const char* path) {
    if (setjmp(tComplaints->fatal)) return false;
    return po_file_write(file, path, &kHandler) != nullptr;
}

class ComplaintScope {
public:
    ComplaintScope() { tComplaints = &complaints; }
    ~ComplaintScope() { tComplaints = nullptr; }
    Complaints complaints;
};

struct FileFree {
    void operator()(po_file_t f) const { po_file_free(f); }
};
using PoFilePtr = std::unique_ptr<std::remove_pointer_t<po_file_t>, FileFree>;

std::string HeaderText(const PoCatalog& catalog) {
    std::string text;
    for (const auto& [name, value] : catalog.header) text += name + ": " + value + "\n";
    return text;
}

std::string Lower(std::string_view s) {
    std::string out(s);
    std::transform(out.begin(), out.end(), out.begin(), [](unsigned char c) { return std::tolower(c); });
    return out;
}

const std::vector<std::string_view> kReadableCharsets = {"utf-8", "charset", "ascii", "us-ascii"};

// The charset the header declares, as written, and where it stands in the
// file; the name is empty when the header declares none on one line.
struct DeclaredCharset {
    std::size_t at = 0;
    std::string name;
};

DeclaredCharset FindCharset(std::string_view text) {
    // The header is the first entry: it ends where the second entry starts.
    const std::size_t first = text.find("msgid ");
    const std::size_t second = first == std::string_view::npos ? first : text.find("\nmsgid ", first);
    const std::size_t context = text.find("\nmsgctxt ");
    const std::string_view header = text.substr(0, std::min({second, context, text.size()}));
    const std::size_t key = header.find("charset=");
    if (key == std::string_view::npos) return {};
    const std::size_t at = key + 8;
    const std::size_t end = std::min(header.find_first_of("\\\" \n;", at), header.size());
    return {at, std::string(header.substr(at, end - at))};
}

void CheckCharset(const std::string& declared) {
    const std::string name = Lower(declared);
    if (std::find(kReadableCharsets.begin(), kReadableCharsets.end(), name) == kReadableCharsets.end())
        throw PoError("The PO file is written in " + name + "; save it as UTF-8.");
}

// A file that lives in memory only, for the library, which reads and
// writes files by name: nothing is left beside the user's files, and no file
// of theirs can be in the way.
class MemoryFile {
public:
    MemoryFile() : fd_(::memfd_create("po", MFD_CLOEXEC)) {}
    ~MemoryFile() {
        if (fd_ >= 0) ::close(fd_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    bool Usable() const { return fd_ >= 0; }
    std::string Name() const { return "/proc/self/fd/" + std::to_string(fd_); }

    bool Write(std::string_view text) {
        for (std::string_view rest = text; !rest.empty();) {
            const ::ssize_t n = ::pwrite(fd_, rest.data(), rest.size(), static_cast<::off_t>(text.size() - rest.size()));
            if (n <= 0) return false;
            rest.remove_prefix(static_cast<std::size_t>(n));
        }
        return true;
    }
    std::string Contents() const {
        std::string out;
        char buf[1 << 16];
        for (::ssize_t n; (n = ::pread(fd_, buf, sizeof buf, static_cast<::off_t>(out.size()))) > 0;)
            out.append(buf, static_cast<std::size_t>(n));
        return out;
    }

private:
    int fd_ = -1;
};

bool StartsWith(std::string_view text, std::size_t at, std::string_view prefix) {
    return text.substr(at, prefix.size()) == prefix;
}

// The start of the line before the one that starts at `line` (> 0).
std::size_t PreviousLine(std::string_view text, std::size_t line) {
    return line < 2 ? 0 : text.rfind('\n', line - 2) + 1;  // npos + 1 is 0
}

// Where a new entry starts after a blank line that ends one: the keyword
// before the blank line (behind the strings that continue it) is a msgstr,
// which is always an entry's last, and the line after it a comment, a msgctxt
// or a msgid. The two sides then read alike alone. `npos` when there is none
// from `from` on.
std::size_t NextEntryStart(std::string_view text, std::size_t from) {
    for (std::size_t blank = text.find("\n\n", from); blank != std::string_view::npos;
         blank = text.find("\n\n", blank + 1)) {
        std::size_t keyword = PreviousLine(text, blank + 1);
        while (keyword > 0 && StartsWith(text, keyword, "\"")) keyword = PreviousLine(text, keyword);
        const std::size_t next = blank + 2;
        if (StartsWith(text, keyword, "msgstr") &&
            (StartsWith(text, next, "#") || StartsWith(text, next, "msgctxt ") || StartsWith(text, next, "msgid ")))
            return next;
    }
    return std::string_view::npos;
}

// A piece of the file for the library, which reads it as a file of its own.
// Parts after the first begin with the file's header entry, so that each is
// read as the whole would be.
struct Part {
    std::string text;
    long lineOffset = 0;  // add to the library's line numbers to get the file's
};

// The file in parts at entry boundaries, about `kPartBytes` each, so that a
// caller can work on the first messages while the library reads the rest.
// A file with a "domain" line, one without such boundaries and a small one
// stay whole.
std::vector<Part> SplitAtEntries(std::string text) {
    constexpr std::size_t kPartBytes = 48 * 1024;
    const std::size_t count = std::min<std::size_t>(8, text.size() / kPartBytes);
    const std::size_t headerEnd = NextEntryStart(text, 0);
    const bool hasHeader = headerEnd != std::string::npos && text.find("msgctxt") >= headerEnd &&
                           (StartsWith(text, 0, "msgid \"\"") || text.find("\nmsgid \"\"") < headerEnd);
    if (count < 2 || !hasHeader || StartsWith(text, 0, "domain") || text.find("\ndomain") != std::string::npos)
        return {{std::move(text), 0}};
    const std::string_view all = text;
    const std::string_view header = all.substr(0, headerEnd);
    const long headerLines = static_cast<long>(std::count(header.begin(), header.end(), '\n'));
    std::vector<Part> parts;
    std::size_t begin = 0;
    long linesBefore = 0;
    for (std::size_t k = 1; k <= count; ++k) {
        const std::size_t end = k == count ? all.size() : NextEntryStart(all, std::max(begin, k * all.size() / count));
        if (end == std::string_view::npos && k < count) continue;  // the rest stays in the last part
        const std::string_view piece = all.substr(begin, end - begin);
        parts.push_back(begin == 0 ? Part{std::string(piece), 0}
                                   : Part{std::string(header).append(piece), linesBefore - headerLines});
        linesBefore += static_cast<long>(std::count(piece.begin(), piece.end(), '\n'));
        begin = end;
        if (end == all.size()) break;
    }
    return parts;
}

// The library ends a string at an escape that stands for a zero byte ("\0",
// "\x00"), which would silently cut a translation. Such escapes in the lines
// of strings become kNulMark, two bytes no UTF-8 text holds, and the marks
// are turned back into zero bytes once read, so the import refuses the text
// by name. True when there was one.
constexpr std::string_view kNulMark = "\\377\\376", kNulBytes = "\xFF\xFE";

bool MarkNulEscapes(std::string& text) {
    if (text.find("\\0") == std::string::npos && text.find("\\x") == std::string::npos) return false;
    bool marked = false;
    for (std::size_t line = 0; line < text.size();) {
        std::size_t end = text.find('\n', line);
        if (end == std::string::npos) end = text.size();
        std::size_t at = text.find_first_not_of(" \t", line);
        if (at < end && (text[at] == '"' || text[at] == 'm')) {
            for (at = text.find('\\', at); at < end; at = text.find('\\', at)) {
                std::size_t next = at + 1;
                unsigned value = 1;
                if (next < end && text[next] >= '0' && text[next] <= '7') {
                    value = 0;
                    for (int n = 0; n < 3 && next < end && text[next] >= '0' && text[next] <= '7'; ++n)
                        value = value * 8 + static_cast<unsigned>(text[next++] - '0');
                } else if (next + 1 < end && text[next] == 'x' &&
                           std::isxdigit(static_cast<unsigned char>(text[next + 1]))) {
                    value = 0;
                    for (++next; next < end && std::isxdigit(static_cast<unsigned char>(text[next])); ++next) {
                        const char d = text[next];
                        value = (value * 16 + static_cast<unsigned>(d <= '9' ? d - '0' : (d | 0x20) - 'a' + 10)) & 0xFF;
                    }
                } else {
                    next = std::min(next + 1, end);  // "\\", "\"" and the other escapes
                }
                if ((value & 0xFF) != 0) {
                    at = next;
                    continue;
                }
                text.replace(at, next - at, kNulMark);
                end += kNulMark.size() - (next - at);
                at += kNulMark.size();
                marked = true;
            }
        }
        line = end + 1;
    }
    return marked;
}

void UnmarkNuls(std::string& str) {
    for (std::size_t at = str.find(kNulBytes); at != std::string::npos; at = str.find(kNulBytes, at + 1))
        str.replace(at, kNulBytes.size(), 1, '\0');
}

// The header's fields in order. libgettextpo converts a file declared as
// UTF-8 (or ASCII) through iconv one character at a time, which makes reading
// about three times slower; it reads a file declared with the template
// placeholder "CHARSET" byte for byte. A UTF-8 file is therefore handed to it
// with that declaration from a copy in memory, and `declared` puts the file's
// own name back; texts are checked as UTF-8 where they are used.
std::vector<std::pair<std::string, std::string>> HeaderFields(const char* header, const std::string& declared) {
    std::vector<std::pair<std::string, std::string>> fields;
    for (std::string_view text = header ? header : ""; !text.empty();) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        const std::size_t colon = line.find(':');
        if (colon != std::string_view::npos) {
            std::string_view value = line.substr(colon + 1);
            while (!value.empty() && value.front() == ' ') value.remove_prefix(1);
            fields.emplace_back(std::string(line.substr(0, colon)), std::string(value));
        }
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    for (auto& [name, value] : fields) {
        if (name != "Content-Type") continue;
        const std::size_t charset = Lower(value).find("charset=");
        if (charset == std::string::npos) continue;
        if (!declared.empty()) value.replace(charset + 8, std::string::npos, declared);
        CheckCharset(value.substr(charset + 8));
    }
    return fields;
}

}  // namespace

void WritePo(const std::filesystem::path& path, const PoCatalog& catalog) {
    PoFilePtr file(po_file_create());
    po_message_iterator_t it = po_message_iterator(file.get(), nullptr);
    po_message_t header = po_message_create();
    po_message_set_msgid(header, "");
    po_message_set_msgstr(header, HeaderText(catalog).c_str());
    po_message_insert(it, header);
    for (const PoMessage& m : catalog.messages) {
        po_message_t message = po_message_create();
        po_message_set_msgctxt(message, m.context.c_str());
        po_message_set_msgid(message, m.id.c_str());
        po_message_set_msgstr(message, m.str.c_str());
        if (!m.comments.empty()) po_message_set_extracted_comments(message, m.comments.c_str());
        po_message_set_fuzzy(message, m.fuzzy ? 1 : 0);
        po_message_insert(it, message);
    }
    po_message_iterator_free(it);

    // The library writes into memory (or, without that, a scratch file beside
    // the PO file); the PO file itself is replaced whole.
    MemoryFile memory;
    const std::string scratch = memory.Usable() ? memory.Name() : path.string() + ".part";
    if (!memory.Usable() && std::filesystem::exists(std::filesystem::symlink_status(scratch)))
        throw PoError("The PO file could not be written: '" + scratch + "' is in the way.");
    ComplaintScope scope;
    scope.complaints.readName = scratch;
    scope.complaints.userName = path.string();
    const bool written = GuardedWrite(file.get(), scratch.c_str());
    std::string contents;
    if (written && scope.complaints.first.empty()) contents = memory.Usable() ? memory.Contents() : io::ReadAll(scratch);
    if (!memory.Usable()) io::RemoveFile(scratch);
    if (!written || !scope.complaints.first.empty())
        throw PoError("The PO file could not be written: " +
                      (scope.complaints.first.empty() ? path.string() : scope.complaints.first));
    io::ReplaceFile(path, contents);
}

PoCatalog ReadPo(const std::filesystem::path& path) {
    PoCatalog read;
    ReadPo(path, [&read](PoCatalog part) {
        if (read.header.empty()) read.header = std::move(part.header);
        std::move(part.messages.begin(), part.messages.end(), std::back_inserter(read.messages));
    });
    return read;
}

void ReadPo(const std::filesystem::path& path, const std::function<void(PoCatalog)>& take) {
    std::error_code ec;
    if (std::filesystem::is_directory(path, ec))
        throw PoError("'" + path.string() + "' is a folder, not a PO file.");
    if (!std::filesystem::is_regular_file(path, ec)) throw PoError("The PO file '" + path.string() + "' does not exist.");
    std::string text = io::ReadAll(path);
    const DeclaredCharset charset = FindCharset(text);
    if (!charset.name.empty()) CheckCharset(charset.name);
    std::string declared;
    std::vector<Part> parts;
    bool nuls = false;
    if (MemoryFile probe; probe.Usable()) {
        // The declaration first, where it was found; marking escapes moves the text after them.
        if (!charset.name.empty() && Lower(charset.name) != "charset") {
            text.replace(charset.at, charset.name.size(), "CHARSET");
            declared = charset.name;
        }
        nuls = MarkNulEscapes(text);
        parts = SplitAtEntries(std::move(text));
    }

    // Each part's messages are handed over once read; a message read twice
    // across parts is refused as the library refuses it within one.
    // Their names ("context \4 id") are kept in one arena rather than a string each.
    std::pmr::monotonic_buffer_resource arena;
    std::pmr::unordered_set<std::pmr::string> names(&arena);
    auto isNew = [&](const char* context, const char* id) {
        std::pmr::string key(&arena);
        key.append(context ? context : "\x01").append(1, '\x04').append(id);
        return names.insert(std::move(key)).second;
    };
    for (std::size_t p = 0; p < std::max<std::size_t>(parts.size(), 1); ++p) {
        MemoryFile memory;
        ComplaintScope scope;
        scope.complaints.userName = path.string();
        if (!parts.empty()) {
            if (!memory.Write(parts[p].text)) throw PoError("The PO file could not be read: " + path.string());
            scope.complaints.readName = memory.Name();
            scope.complaints.lineOffset = parts[p].lineOffset;
        }
        PoFilePtr file(GuardedRead(parts.empty() ? path.string().c_str() : scope.complaints.readName.c_str()));
        if (!file || !scope.complaints.first.empty())
            throw PoError("The PO file could not be read: " +
                          (scope.complaints.first.empty() ? path.string() : scope.complaints.first));

        PoCatalog catalog;
        if (!parts.empty()) {
            // About a message per "msgstr" line; reserved once, not grown message by message.
            const std::string_view text = parts[p].text;
            std::size_t lines = 0;
            for (std::size_t at = text.find("\nmsgstr"); at != std::string_view::npos; at = text.find("\nmsgstr", at + 1))
                ++lines;
            catalog.messages.reserve(lines);
        }
        if (p == 0) {
            // The library hands out a copy of the header, which the caller frees.
            const std::unique_ptr<const char, void (*)(const char*)> header(
                po_file_domain_header(file.get(), nullptr), [](const char* h) { std::free(const_cast<char*>(h)); });
            catalog.header = HeaderFields(header.get(), declared);
        }
        for (const char* const* domain = po_file_domains(file.get()); *domain; ++domain) {
            po_message_iterator_t it = po_message_iterator(file.get(), *domain);
            while (po_message_t m = po_next_message(it)) {
                const char* context = po_message_msgctxt(m);
                const char* id = po_message_msgid(m);
                if (po_message_is_obsolete(m) || (!context && id[0] == '\0')) continue;
                if (parts.size() > 1 && !isNew(context, id)) {
                    po_message_iterator_free(it);
                    throw PoError("The PO file could not be read: " + path.string() +
                                  ": duplicate message definition of \"" + (context ? context : "") + "\" \"" + id + "\"");
                }
                // The library joins a message's comments into a new string,
                // which the caller frees; without comments it hands out "".
                const char* comments = po_message_extracted_comments(m);
                catalog.messages.push_back({context ? context : "", id, po_message_msgstr(m),
                                            comments ? comments : "", po_message_is_fuzzy(m) != 0});
                if (comments && *comments) std::free(const_cast<char*>(comments));
                if (nuls) UnmarkNuls(catalog.messages.back().str);
            }
            po_message_iterator_free(it);
        }
        take(std::move(catalog));
    }
}

std::string HeaderField(const PoCatalog& catalog, std::string_view name) {
    for (const auto& [field, value] : catalog.header)
        if (field == name) return value;
    return {};
}

}  // namespace quillon
