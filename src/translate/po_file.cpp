#include "translate/po_file.h"

#include "core/file_io.h"

#include <gettext-po.h>

#include <quillon/errors.h>

#include <algorithm>
#include <cctype>
#include <csetjmp>
#include <memory>

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
};
thread_local Complaints* tComplaints = nullptr;

void Note(int severity, const char* filename, std::size_t lineno, const char* text) {
    if (severity == PO_SEVERITY_WARNING || !tComplaints) return;
    if (tComplaints->first.empty()) {
        std::string where = filename ? filename : "";
        if (!tComplaints->readName.empty() && where == tComplaints->readName) where = tComplaints->userName;
        if (filename && lineno != static_cast<std::size_t>(-1)) where += ":" + std::to_string(lineno);
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

// libgettextpo converts a file declared as UTF-8 (or ASCII) to UTF-8 through
// iconv one character at a time, which makes reading about three times
// slower. It reads a file whose charset is the template placeholder "CHARSET"
// byte for byte, so a UTF-8 file is handed to it with that declaration from a
// copy in memory; its texts are checked as UTF-8 where they are used.
class ByteForByteCopy {
public:
    explicit ByteForByteCopy(const std::filesystem::path& path) {
        std::string text = io::ReadAll(path);
        const DeclaredCharset charset = FindCharset(text);
        if (charset.name.empty()) return;
        CheckCharset(charset.name);
        if (Lower(charset.name) == "charset" || !memory_.Usable()) return;
        text.replace(charset.at, charset.name.size(), "CHARSET");
        if (!memory_.Write(text)) return;
        name_ = memory_.Name();
        declared_ = charset.name;
    }

    // The name to hand to the library, or empty to read the file itself.
    const std::string& Name() const { return name_; }
    // The charset the file declared.
    const std::string& Declared() const { return declared_; }

private:
    MemoryFile memory_;
    std::string name_;
    std::string declared_;
};

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
    ReadPo(path, [&read](PoCatalog catalog) { read = std::move(catalog); });
    return read;
}

void ReadPo(const std::filesystem::path& path, const std::function<void(PoCatalog)>& take) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) throw PoError("The PO file '" + path.string() + "' does not exist.");
    const ByteForByteCopy copy(path);
    ComplaintScope scope;
    scope.complaints.readName = copy.Name();
    scope.complaints.userName = path.string();
    PoFilePtr file(GuardedRead(copy.Name().empty() ? path.string().c_str() : copy.Name().c_str()));
    if (!file || !scope.complaints.first.empty())
        throw PoError("The PO file could not be read: " +
                      (scope.complaints.first.empty() ? path.string() : scope.complaints.first));

    PoCatalog catalog;
    if (const char* header = po_file_domain_header(file.get(), nullptr)) {
        std::string_view text(header);
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            const std::string_view line = text.substr(0, end);
            const std::size_t colon = line.find(':');
            if (colon != std::string_view::npos) {
                std::string_view value = line.substr(colon + 1);
                while (!value.empty() && value.front() == ' ') value.remove_prefix(1);
                catalog.header.emplace_back(std::string(line.substr(0, colon)), std::string(value));
            }
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }
    for (auto& [name, value] : catalog.header) {
        if (name != "Content-Type") continue;
        const std::size_t charset = Lower(value).find("charset=");
        if (charset == std::string::npos) continue;
        if (!copy.Declared().empty()) value.replace(charset + 8, std::string::npos, copy.Declared());
        CheckCharset(value.substr(charset + 8));
    }

    catalog.messages.reserve(4096);
    for (const char* const* domain = po_file_domains(file.get()); *domain; ++domain) {
        po_message_iterator_t it = po_message_iterator(file.get(), *domain);
        while (po_message_t m = po_next_message(it)) {
            const char* context = po_message_msgctxt(m);
            const char* id = po_message_msgid(m);
            if (po_message_is_obsolete(m) || (!context && id[0] == '\0')) continue;
            const char* comments = po_message_extracted_comments(m);
            catalog.messages.push_back({context ? context : "", id, po_message_msgstr(m),
                                        comments ? comments : "", po_message_is_fuzzy(m) != 0});
        }
        po_message_iterator_free(it);
    }
    take(std::move(catalog));
}

std::string HeaderField(const PoCatalog& catalog, std::string_view name) {
    for (const auto& [field, value] : catalog.header)
        if (field == name) return value;
    return {};
}

}  // namespace quillon
