#include "store/history.h"

#include "core/file_io.h"
#include "store/journal.h"
#include "store/trust.h"

#include <quillon/errors.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <optional>

namespace quillon {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kApplied = ".journal", kUndone = ".undone";

std::optional<HistoryEntry> ParseName(const fs::path& file) {
    HistoryEntry e;
    const std::string ext = file.extension().string();
    if (ext != kApplied && ext != kUndone) return std::nullopt;
    e.undone = ext == kUndone;
    const std::string stem = file.stem().string();
    const auto dash = stem.find('-');
    if (dash != 8) return std::nullopt;
    const char* end = stem.data() + stem.size();
    auto [p1, e1] = std::from_chars(stem.data(), stem.data() + dash, e.number);
    auto [p2, e2] = std::from_chars(stem.data() + dash + 1, end, e.when);
    if (e1 != std::errc() || e2 != std::errc() || p1 != stem.data() + dash || p2 != end) return std::nullopt;
    e.file = file;
    return e;
}

fs::path LimitFile(const fs::path& rom) { return HistoryFolder(rom) / "limit"; }

// Drops the oldest entries until the rest fit the limit; the newest stays.
void Trim(std::vector<HistoryEntry> entries, std::uint64_t limit) {
    std::uint64_t used = 0;
    for (const auto& e : entries) used += e.bytes;
    for (std::size_t i = 0; used > limit && i + 1 < entries.size(); ++i) {
        io::RemoveFile(entries[i].file);
        used -= entries[i].bytes;
    }
}

}  // namespace

fs::path HistoryFolder(const fs::path& rom) {
    fs::path folder = rom;
    folder += ".history";
    return folder;
}

HistoryScan ScanHistory(const fs::path& rom) {
    HistoryScan scan;
    const fs::path folder = HistoryFolder(rom);
    std::error_code ec;
    const auto status = fs::status(folder, ec);
    if (!fs::exists(status)) {
        scan.problem = "No save of this ROM has been recorded yet.";
        return scan;
    }
    if (!fs::is_directory(status)) {
        scan.problem = "The history cannot be read: " + folder.filename().string() + " is not a folder.";
        return scan;
    }
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        if (auto e = ParseName(it->path())) {
            e->bytes = it->file_size(ec);
            if (ec) break;
            scan.entries.push_back(std::move(*e));
        }
    }
    if (ec) {
        scan.entries.clear();
        scan.problem = "The history cannot be read: " + ec.message() + ".";
        return scan;
    }
    std::sort(scan.entries.begin(), scan.entries.end(),
              [](const auto& a, const auto& b) { return a.number < b.number; });
    for (std::size_t i = 1; i < scan.entries.size(); ++i) {
        const auto &prev = scan.entries[i - 1], &cur = scan.entries[i];
        if (prev.number == cur.number || (prev.undone && !cur.undone)) {
            scan.entries.clear();
            scan.problem = "The history is damaged: its entries are out of order. Clear it to start a new one.";
            return scan;
        }
    }
    return scan;
}

fs::path EntryPath(const fs::path& folder, std::uint64_t number, std::int64_t when, bool undone) {
    char name[48];
    std::snprintf(name, sizeof name, "%08llu-%lld", static_cast<unsigned long long>(number),
                  static_cast<long long>(when));
    return folder / (std::string(name) + std::string(undone ? kUndone : kApplied));
}

WritePlan ReadEntry(const HistoryEntry& e, const fs::path& rom) {
    if (auto why = UntrustedEntry(rom, e.file))
        throw PlanRefused("History entry " + std::to_string(e.number) + " cannot be used: " + *why + ".");
    std::optional<WritePlan> plan;
    try {
        plan = ReadJournal(e.file, rom);
    } catch (const FileError& error) {
        throw PlanRefused("History entry " + std::to_string(e.number) + " cannot be read: " + error.what());
    }
    if (!plan) throw PlanRefused("History entry " + std::to_string(e.number) + " is damaged.");
    return std::move(*plan);
}

HistoryListing ListHistory(const fs::path& rom) {
    HistoryListing listing;
    listing.limit = HistoryLimit(rom);
    HistoryScan scan = ScanHistory(rom);
    listing.problem = scan.problem;
    for (auto it = scan.entries.rbegin(); it != scan.entries.rend(); ++it) {
        HistoryEntry e = *it;
        try {
            const WritePlan plan = ReadEntry(e, rom);
            e.command = plan.command;
            e.subject = plan.subject;
        } catch (const PlanRefused& error) {
            listing.entries.clear();
            listing.used = 0;
            listing.problem = std::string(error.what()) + " Clear the history to start a new one.";
            return listing;
        }
        listing.used += e.bytes;
        listing.entries.push_back(std::move(e));
    }
    return listing;
}

void KeepJournal(const WritePlan& plan, const fs::path& journal) {
    if (plan.kind == WriteKind::Change && !UntrustedHistoryFolder(plan.rom)) {
        try {
            const fs::path folder = HistoryFolder(plan.rom);
            fs::create_directories(folder);
            HistoryScan scan = ScanHistory(plan.rom);
            std::uint64_t next = 1;
            std::vector<HistoryEntry> kept;
            for (const auto& e : scan.entries) {
                next = std::max(next, e.number + 1);
                if (e.undone)
                    io::RemoveFile(e.file);  // a new save ends what could be redone
                else
                    kept.push_back(e);
            }
            const auto now = std::chrono::duration_cast<std::chrono::seconds>(
                                 std::chrono::system_clock::now().time_since_epoch()).count();
            HistoryEntry entry;
            entry.file = EntryPath(folder, next, now, false);
            fs::rename(journal, entry.file);
            entry.bytes = fs::file_size(entry.file);
            kept.push_back(entry);
            Trim(std::move(kept), HistoryLimit(plan.rom));
            return;
        } catch (const std::exception&) {
            // The save itself landed; a history that cannot take it stays as it was.
        }
    }
    io::RemoveFile(journal);
}

std::uint64_t HistoryLimit(const fs::path& rom) {
    std::error_code ec;
    if (!fs::is_regular_file(LimitFile(rom), ec)) return kDefaultHistoryLimit;
    try {
        const std::string text = io::ReadAll(LimitFile(rom));
        std::uint64_t limit = 0;
        auto [p, e] = std::from_chars(text.data(), text.data() + text.size(), limit);
        return e == std::errc() ? limit : kDefaultHistoryLimit;
    } catch (const FileError&) {
        return kDefaultHistoryLimit;
    }
}

void SetHistoryLimit(const fs::path& rom, std::uint64_t bytes) {
    std::error_code ec;
    fs::create_directories(HistoryFolder(rom), ec);
    if (ec) io::ThrowFileError(HistoryFolder(rom), "create", ec.value());
    io::ReplaceFile(LimitFile(rom), std::to_string(bytes));
    HistoryScan scan = ScanHistory(rom);
    if (scan.problem.empty()) Trim(std::move(scan.entries), bytes);
}

void ClearHistory(const fs::path& rom) {
    const fs::path folder = HistoryFolder(rom);
    std::error_code ec;
    if (!fs::is_directory(folder, ec)) {
        if (fs::exists(folder, ec)) io::RemoveFile(folder);
        return;
    }
    std::vector<fs::path> files;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec))
        if (it->path() != LimitFile(rom)) files.push_back(it->path());
    if (ec) io::ThrowFileError(folder, "read", ec.value());
    for (const auto& f : files) {
        fs::remove_all(f, ec);
        if (ec) io::ThrowFileError(f, "remove", ec.value());
    }
}

}  // namespace quillon
