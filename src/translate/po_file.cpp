#include "translate/po_file.h"

#include "core/file_io.h"

#include <gettext-po.h>

#include <quillon/errors.h>

#include <algorithm>
#include <cctype>
#include <csetjmp>
#include <memory>

namespace quillon {
namespace {

// libgettextpo reports through callbacks; the first complaint is kept, and a
// fatal one (after which the callback must not return) jumps back to the call.
struct Complaints {
    std::string first;
    std::jmp_buf fatal;
};
thread_local Complaints* tComplaints = nullptr;

void Note(int severity, const char* filename, std::size_t lineno, const char* text) {
    if (severity == PO_SEVERITY_WARNING || !tComplaints) return;
    if (tComplaints->first.empty()) {
        std::string where = filename ? filename : "";
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

    const std::filesystem::path temporary = path.string() + ".part";
    ComplaintScope scope;
    const bool written = GuardedWrite(file.get(), temporary.string().c_str());
    if (!written || !scope.complaints.first.empty()) {
        io::RemoveFile(temporary);
        throw PoError("The PO file could not be written: " +
                      (scope.complaints.first.empty() ? path.string() : scope.complaints.first));
    }
    std::string contents;
    try {
        contents = io::ReadAll(temporary);
        io::RemoveFile(temporary);
    } catch (...) {
        io::RemoveFile(temporary);
        throw;
    }
    io::ReplaceFile(path, contents);
}

PoCatalog ReadPo(const std::filesystem::path& path) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(path, ec)) throw PoError("The PO file '" + path.string() + "' does not exist.");
    ComplaintScope scope;
    PoFilePtr file(GuardedRead(path.string().c_str()));
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
    const std::string contentType = Lower(HeaderField(catalog, "Content-Type"));
    const std::size_t charset = contentType.find("charset=");
    if (charset != std::string::npos) {
        const std::string name = contentType.substr(charset + 8);
        if (name != "utf-8" && name != "charset" && name != "ascii" && name != "us-ascii")
            throw PoError("The PO file is written in " + name + "; save it as UTF-8.");
    }

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
    return catalog;
}

std::string HeaderField(const PoCatalog& catalog, std::string_view name) {
    for (const auto& [field, value] : catalog.header)
        if (field == name) return value;
    return {};
}

}  // namespace quillon
