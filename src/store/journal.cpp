#include "store/journal.h"

#include "core/file_io.h"

#include <quillon/rom.h>

#include <algorithm>
#include <cstdio>
#include <sstream>

#include <zlib.h>

namespace quillon {
namespace {

constexpr std::string_view kMagic = "QUILLON WRITE JOURNAL 4";
// Journals of the earlier forms, with bytes as hex digits, are still read
// back: checked by CRC-32, or by FNV-1a before that.
constexpr std::string_view kMagicHex = "QUILLON WRITE JOURNAL 3";
constexpr std::string_view kMagicFnv = "QUILLON WRITE JOURNAL 2";

// Appends a byte string as one journal field: hex digits, "-" when empty.
void AppendField(std::string& out, std::string_view bytes) {
    static constexpr std::string_view kDigits = "0123456789ABCDEF";
    if (bytes.empty()) {
        out += '-';
        return;
    }
    const std::size_t at = out.size();
    out.resize(at + bytes.size() * 2);
    char* w = out.data() + at;
    for (const char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        *w++ = kDigits[b >> 4];
        *w++ = kDigits[b & 0x0F];
    }
}
std::string Unfield(const std::string& field) { return field == "-" ? std::string() : HexToBytes(field); }

// CRC-32 over the journal's lines, so a damaged journal is never replayed.
std::string Checksum(std::string_view text) {
    uLong crc = crc32(0L, Z_NULL, 0);
    for (std::string_view rest = text; !rest.empty();) {
        const auto n = static_cast<uInt>(std::min<std::size_t>(rest.size(), 1u << 30));
        crc = crc32(crc, reinterpret_cast<const Bytef*>(rest.data()), n);
        rest.remove_prefix(n);
    }
    char buf[16];
    std::snprintf(buf, sizeof buf, "%08lx", static_cast<unsigned long>(crc));
    return buf;
}

std::string FnvChecksum(std::string_view text) {
    std::uint64_t h = 1469598103934665603ull;
    for (char c : text) {
        h ^= static_cast<unsigned char>(c);
        h *= 1099511628211ull;
    }
    char buf[24];
    std::snprintf(buf, sizeof buf, "%016llx", static_cast<unsigned long long>(h));
    return buf;
}

}  // namespace

std::filesystem::path JournalPath(const std::filesystem::path& rom) {
    std::filesystem::path journal = rom;
    journal += ".save-journal";
    return journal;
}

// A journal: a line per item, the bytes of the offset file and of each ROM
// write as they are after their line, and last a line with the CRC-32 of all
// before it.
std::string JournalText(const WritePlan& plan) {
    std::size_t size = 256 + plan.command.size() * 2 + plan.subject.size() * 2;
    if (plan.offsetFile)
        size += 2 * plan.offsetFile->native().size() + (plan.offsetBefore ? plan.offsetBefore->size() : 0) +
                plan.offsetAfter.size();
    for (const auto& w : plan.romWrites) size += 48 + 2 * w.before.size();
    std::string out;
    out.reserve(size);
    out.append(kMagic).append("\ncommand ");
    AppendField(out, plan.command);
    out += "\nsubject ";
    AppendField(out, plan.subject);
    out.append("\nsize ").append(std::to_string(plan.romSize)).append("\n");
    if (plan.offsetFile) {
        out += "ini ";
        AppendField(out, plan.offsetFile->string());
        const std::string_view before = plan.offsetBefore ? std::string_view(*plan.offsetBefore) : std::string_view();
        out.append(plan.offsetBefore ? " 1 " : " 0 ").append(std::to_string(before.size())).append(" ");
        out.append(std::to_string(plan.offsetAfter.size())).append("\n");
        out.append(before).append(plan.offsetAfter).append("\n");
    }
    for (const auto& w : plan.romWrites) {
        out.append("rom ").append(std::to_string(w.offset)).append(" ").append(std::to_string(w.before.size()));
        out.append("\n").append(w.before).append(w.after).append("\n");
    }
    const std::string checksum = Checksum(out);
    out.append("end ").append(checksum).append("\n");
    return out;
}

std::optional<WritePlan> ParseJournal(const std::string& text, const std::filesystem::path& rom) {
    const bool binary = text.rfind(kMagic, 0) == 0, fnv = text.rfind(kMagicFnv, 0) == 0;
    if (!binary && !fnv && text.rfind(kMagicHex, 0) != 0) return std::nullopt;
    // The last line is "end" and the checksum: at a fixed place when the
    // bytes are kept as they are (they may hold any text), else the last "end ".
    constexpr std::size_t kEndLine = 13;  // "end ", eight hex digits, a line break
    const std::size_t endAt = binary ? (text.size() >= kEndLine ? text.size() - kEndLine : 0) : text.rfind("end ");
    if (endAt == 0 || endAt == std::string::npos || text[endAt - 1] != '\n') return std::nullopt;
    const std::string_view body = std::string_view(text).substr(0, endAt);
    if (text.substr(endAt) != "end " + (fnv ? FnvChecksum(body) : Checksum(body)) + "\n") return std::nullopt;

    std::size_t at = body.find('\n') + 1;  // behind the form's line
    auto bytes = [&](std::size_t n) -> std::optional<std::string> {
        if (body.size() - at < n) return std::nullopt;
        at += n;
        return std::string(body.substr(at - n, n));
    };
    WritePlan plan;
    plan.rom = rom;
    try {
        while (at < body.size()) {
            const std::size_t lineEnd = body.find('\n', at);
            if (lineEnd == std::string_view::npos) return std::nullopt;
            std::istringstream fields{std::string(body.substr(at, lineEnd - at))};
            at = lineEnd + 1;
            // A byte string: hex digits on the line, or its length on the line
            // and the bytes behind it.
            auto field = [&]() -> std::optional<std::string> {
                if (!binary) {
                    std::string hex;
                    fields >> hex;
                    return Unfield(hex);
                }
                std::size_t length = 0;
                fields >> length;
                return fields.fail() ? std::nullopt : bytes(length);
            };
            auto endOfBytes = [&] { return !binary || (at < body.size() && body[at++] == '\n'); };
            std::string kind;
            fields >> kind;
            if (kind == "command" || kind == "subject") {
                std::string hex;
                fields >> hex;
                (kind == "command" ? plan.command : plan.subject) = Unfield(hex);
            } else if (kind == "size") {
                fields >> plan.romSize;
            } else if (kind == "ini") {
                std::string path, existed;
                fields >> path >> existed;
                std::optional<std::string> before = field(), after = field();
                if (!before || !after || !endOfBytes()) return std::nullopt;
                plan.offsetFile = std::filesystem::path(Unfield(path));
                if (existed == "1") plan.offsetBefore = std::move(*before);
                plan.offsetAfter = std::move(*after);
            } else if (kind == "rom") {
                RomWrite w;
                fields >> w.offset;
                std::optional<std::string> before = field(), after;
                if (binary && before) after = bytes(before->size());
                if (!binary) after = field();
                if (!before || !after || before->size() != after->size() || !endOfBytes()) return std::nullopt;
                w.before = std::move(*before);
                w.after = std::move(*after);
                plan.romWrites.push_back(std::move(w));
            } else {
                return std::nullopt;
            }
            if (fields.fail()) return std::nullopt;
        }
    } catch (const std::exception&) {
        return std::nullopt;
    }
    return plan;
}

std::optional<WritePlan> ReadJournal(const std::filesystem::path& journal, const std::filesystem::path& rom) {
    return ParseJournal(io::ReadAll(journal), rom);
}

}  // namespace quillon
