#include "edit/write_plan.h"
#include "core/hex_text.h"

#include "core/file_io.h"
#include "history/history.h"

#include <quillon/errors.h>
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

// A journal: a line per item, the bytes of the offset file and of each ROM
// write as they are after their line, and last a line with the CRC-32 of all
// before it.
std::string Serialize(const WritePlan& plan) {
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

// Reads a journal of any form back; nothing when it is damaged in any way.
std::optional<WritePlan> Parse(const std::string& text, const std::filesystem::path& rom) {
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

std::optional<std::string> ReadIfExists(const std::filesystem::path& path) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) return std::nullopt;
    return io::ReadAll(path);
}

// The plan's own consistency: ranges inside the file, past the header, the
// same length before and after, and no two overlapping.
void CheckShape(const WritePlan& plan) {
    std::vector<const RomWrite*> sorted;
    for (const auto& w : plan.romWrites) {
        if (w.before.size() != w.after.size())
            throw PlanRefused("Internal error: a write would change the length of the bytes at offset " +
                              PlainHex(w.offset) + ".");
        if (w.after.empty()) continue;
        if (w.offset < kFirstWritableOffset)
            throw PlanRefused("Offset " + PlainHex(w.offset) +
                              " lies inside the cartridge header (below C0), which Quillon never writes.");
        if (w.offset + w.after.size() > plan.romSize)
            throw PlanRefused("The bytes at offset " + PlainHex(w.offset) + " would reach past the end of the ROM (" +
                              std::to_string(plan.romSize) + " bytes); Quillon never changes the ROM's length.");
        sorted.push_back(&w);
    }
    std::sort(sorted.begin(), sorted.end(), [](auto* a, auto* b) { return a->offset < b->offset; });
    for (std::size_t i = 1; i < sorted.size(); ++i)
        if (sorted[i - 1]->offset + sorted[i - 1]->after.size() > sorted[i]->offset)
            throw PlanRefused("Internal error: two writes of one save overlap at offset " +
                              PlainHex(sorted[i]->offset) + ".");
}

constexpr std::string_view kChangedOutside = "The ROM was changed outside Quillon since the text was loaded";

// The files as the plan expects them, or ChangedOnDisk naming the first difference.
void CheckUnchanged(const WritePlan& plan) {
    io::InputFile rom(plan.rom);
    if (rom.Size() != plan.romSize)
        throw ChangedOnDisk(std::string(kChangedOutside) + ": its size is now " + std::to_string(rom.Size()) +
                            " bytes instead of " + std::to_string(plan.romSize) + ".");
    for (const auto& w : plan.romWrites) {
        std::string now(w.before.size(), '\0');
        now.resize(rom.Read(w.offset, now.data(), now.size()));
        if (now != w.before)
            throw ChangedOnDisk(std::string(kChangedOutside) + ": the bytes at offset " + PlainHex(w.offset) +
                                " differ from the ones it read.");
    }
    if (plan.offsetFile && ReadIfExists(*plan.offsetFile) != plan.offsetBefore)
        throw ChangedOnDisk("The offset file '" + plan.offsetFile->filename().string() +
                            "' was changed outside Quillon since it was read.");
}

void CheckWritable(const WritePlan& plan) {
    auto refuse = [](const std::filesystem::path& p, std::string_view what) {
        throw PlanRefused("'" + p.string() + "' " + std::string(what) + ". Nothing was written.");
    };
    std::error_code ec;
    if (!plan.romWrites.empty()) {
        if (!std::filesystem::is_regular_file(plan.rom, ec)) refuse(plan.rom, "is not a file that can be written");
        if (io::IsWriteProtected(plan.rom)) refuse(plan.rom, "is write-protected");
    }
    if (!io::FolderWritable(plan.rom.parent_path()))
        refuse(plan.rom.parent_path(), "is not a folder Quillon can write its save journal into");
    if (plan.offsetFile) {
        if (std::filesystem::is_directory(*plan.offsetFile, ec)) refuse(*plan.offsetFile, "is a folder");
        if (io::IsWriteProtected(*plan.offsetFile)) refuse(*plan.offsetFile, "is write-protected");
        if (!io::FolderWritable(plan.offsetFile->parent_path()))
            refuse(plan.offsetFile->parent_path(), "is not a folder Quillon can write the offset file into");
    }
}

std::vector<BytesAt> Patches(const WritePlan& plan, bool after) {
    std::vector<BytesAt> patches;
    for (const auto& w : plan.romWrites) patches.push_back({w.offset, after ? w.after : w.before});
    return patches;
}

// Puts the plan's old state back where the new one (or part of it) landed.
void PutBack(const WritePlan& plan) {
    std::vector<BytesAt> patches = Patches(plan, false);
    std::reverse(patches.begin(), patches.end());
    if (!patches.empty()) io::WritePatches(plan.rom, patches);
    if (plan.offsetFile && ReadIfExists(*plan.offsetFile) != plan.offsetBefore) {
        if (plan.offsetBefore)
            io::ReplaceFile(*plan.offsetFile, *plan.offsetBefore);
        else
            io::RemoveFile(*plan.offsetFile);
    }
}

}  // namespace

std::filesystem::path JournalPath(const std::filesystem::path& rom) {
    std::filesystem::path journal = rom;
    journal += ".save-journal";
    return journal;
}

std::vector<RomWrite> RangesFor(const std::filesystem::path& rom, const std::vector<BytesAt>& blocks) {
    struct Span {
        std::uint64_t begin, end;
    };
    std::vector<Span> spans;
    for (const auto& b : blocks)
        if (!b.bytes.empty()) spans.push_back({b.offset, b.offset + b.bytes.size()});
    std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.begin < b.begin; });
    std::vector<Span> merged;
    for (const Span& s : spans) {
        if (!merged.empty() && s.begin <= merged.back().end)
            merged.back().end = std::max(merged.back().end, s.end);
        else
            merged.push_back(s);
    }
    std::vector<RomWrite> ranges;
    io::InputFile in(rom);
    for (const Span& s : merged) {
        if (s.end > in.Size())
            throw PlanRefused("The bytes at offset " + PlainHex(s.begin) + " would reach past the end of the ROM (" +
                              std::to_string(in.Size()) + " bytes); Quillon never changes the ROM's length.");
        RomWrite w;
        w.offset = s.begin;
        w.before.assign(static_cast<std::size_t>(s.end - s.begin), '\0');
        in.Read(s.begin, w.before.data(), w.before.size());
        w.after = w.before;
        ranges.push_back(std::move(w));
    }
    for (const auto& b : blocks) {
        if (b.bytes.empty()) continue;
        auto w = std::upper_bound(ranges.begin(), ranges.end(), b.offset,
                                  [](std::uint64_t at, const RomWrite& r) { return at < r.offset; });
        --w;  // the range that starts at or before the block holds all of it
        b.bytes.copy(w->after.data() + (b.offset - w->offset), b.bytes.size());
    }
    return ranges;
}

CommitResult CommitPlan(const WritePlan& plan) {
    const auto journal = JournalPath(plan.rom);
    std::error_code ec;
    if (std::filesystem::exists(std::filesystem::symlink_status(journal, ec)))
        throw PlanRefused("A journal of an earlier save that did not finish is waiting at '" + journal.string() +
                          "'. Open the ROM again to restore that save first. Nothing was written.");
    CheckShape(plan);
    CheckWritable(plan);
    CheckUnchanged(plan);
    if (!io::CreateExclusive(journal, Serialize(plan)))
        throw PlanRefused("Another save of this ROM is in progress (its journal is '" + journal.string() +
                          "'). Nothing was written.");

    CommitResult result;
    try {
        std::vector<BytesAt> patches = Patches(plan, true);
        if (!patches.empty()) io::WritePatches(plan.rom, patches);
        if (plan.offsetFile) io::ReplaceFile(*plan.offsetFile, plan.offsetAfter);
    } catch (const FileError& e) {
        result.error = e.what();
        try {
            PutBack(plan);
            io::RemoveFile(journal);
            result.outcome = CommitOutcome::RolledBack;
        } catch (const FileError&) {
            result.outcome = CommitOutcome::JournalKept;
        }
        return result;
    }
    try {
        KeepJournal(plan, journal);  // the history keeps it as an entry, or it is removed
    } catch (const FileError& e) {
        // Every write landed but the journal stays; like a cut-off save, it
        // puts the old state back before the next write or when the ROM is opened.
        return {CommitOutcome::JournalKept, e.what()};
    }
    return result;
}

std::optional<WritePlan> ReadJournal(const std::filesystem::path& journal, const std::filesystem::path& rom) {
    return Parse(io::ReadAll(journal), rom);
}

Recovery RecoverPending(const std::filesystem::path& rom) {
    const auto journal = JournalPath(rom);
    std::error_code ec;
    if (!std::filesystem::exists(std::filesystem::symlink_status(journal, ec))) return {};
    Recovery refused{RecoveryOutcome::Refused, {}};
    std::string text;
    try {
        text = io::ReadAll(journal);
    } catch (const FileError& e) {
        refused.reason = std::string("The journal cannot be read: ") + e.what();
        return refused;
    }
    std::optional<WritePlan> plan = Parse(text, rom);
    if (!plan) {
        refused.reason = "The journal '" + journal.string() + "' is damaged or incomplete, so it cannot be replayed.";
        return refused;
    }
    const std::uint64_t size = io::FileSize(rom);
    if (size != plan->romSize) {
        refused.reason = "The ROM's size is now " + std::to_string(size) + " bytes, but the journal was made when it had " +
                         std::to_string(plan->romSize) + " bytes.";
        return refused;
    }
    // Only the ranges that hold the new bytes are written back.
    WritePlan back = *plan;
    back.romWrites.clear();
    std::vector<std::string> differing;
    {
        io::InputFile in(rom);
        for (const auto& w : plan->romWrites) {
            std::string now(w.before.size(), '\0');
            now.resize(in.Read(w.offset, now.data(), now.size()));
            if (now == w.before) continue;
            if (now == w.after)
                back.romWrites.push_back(w);
            else
                differing.push_back(PlainHex(w.offset));
        }
    }
    if (!differing.empty()) {
        std::string list;
        for (const auto& d : differing) list += (list.empty() ? "" : ", ") + d;
        refused.reason = "The ROM holds neither the old nor the new bytes of that save at offset " + list + ".";
        return refused;
    }
    const auto offsetsNow = plan->offsetFile ? ReadIfExists(*plan->offsetFile) : std::nullopt;
    if (plan->offsetFile && offsetsNow != plan->offsetBefore && offsetsNow != plan->offsetAfter) {
        refused.reason = "The offset file '" + plan->offsetFile->string() +
                         "' was changed since that save and matches neither its old nor its new contents.";
        return refused;
    }
    if (back.romWrites.empty() && offsetsNow == plan->offsetBefore) {
        io::RemoveFile(journal);
        return {RecoveryOutcome::Discarded, {}};
    }
    PutBack(back);
    io::RemoveFile(journal);
    return {RecoveryOutcome::Restored, {}};
}

}  // namespace quillon
