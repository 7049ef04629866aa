#include "tools/export_text.h"

#include "app/session.h"
#include "core/file_io.h"

#include <quillon/errors.h>
#include <quillon/rom.h>

#include <cerrno>

namespace quillon {

std::string ToLatin1(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size();) {
        const auto lead = static_cast<unsigned char>(utf8[i]);
        if (lead < 0x80) {
            out += static_cast<char>(lead);
            ++i;
            continue;
        }
        std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : lead >= 0xC0 ? 2 : 0;
        char32_t value = length == 4 ? lead & 0x07u : length == 3 ? lead & 0x0Fu : lead & 0x1Fu;
        bool valid = length != 0 && lead < 0xF8 && i + length <= utf8.size();
        for (std::size_t k = 1; valid && k < length; ++k) {
            const auto next = static_cast<unsigned char>(utf8[i + k]);
            valid = (next & 0xC0) == 0x80;
            value = value << 6 | (next & 0x3Fu);
        }
        if (!valid) {
            out += '?';
            ++i;
            continue;
        }
        // U+0080..U+00FF always take two bytes; longer forms are above Latin-1 or overlong.
        out += length == 2 && value >= 0x80 && value <= 0xFF ? static_cast<char>(value) : '?';
        i += length;
    }
    return out;
}

void ExportText(Session& session) {
    auto chosen = session.prompter.SaveFile(kExportTitle, kExportFilter);
    if (!chosen || chosen->empty()) return;
    std::filesystem::path path = *chosen;
    if (!path.has_extension()) path += ".txt";  // a bare name gets the export's own extension
    const std::string bytes = ToLatin1(session.controls.text1.Text());
    try {
        std::error_code ec;
        if (std::filesystem::is_directory(path, ec)) io::ThrowFileError(path, "write", EISDIR);
        const auto folder = path.parent_path();
        if (!folder.empty() && !std::filesystem::is_directory(folder, ec)) io::ThrowFileError(path, "create", ENOENT);
        // The new file is written beside the old one and renamed over it, so
        // a failure keeps the old file.
        io::ReplaceFile(path, bytes);
    } catch (const FileError& e) {
        session.prompter.Message(Icon::Critical, e.what());
        return;
    }
    session.prompter.Message(Icon::Information, "Text exported successfully!", "Export done!");
}

}  // namespace quillon
