#include "history/history.h"
#include "core/hex_text.h"

#include "core/file_io.h"

#include <quillon/errors.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <optional>

namespace quillon {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kApplied = ".journal", kUndone = ".undone";

// Set while an undo or redo is being written: its journal is no new entry.
thread_local bool replaying = false;

struct Replaying {
    Replaying() { replaying = true; }
    ~Replaying() { replaying = false; }
};

// Entries as their file names tell them: "00000012-1718000000.journal".
struct Scan {
    std::vector<HistoryEntry> entries;  // oldest first
    std::string problem;
};

std::optional<HistoryEntry> ParseName(const fs::path& file) {
    const std::string name = file.filename().string();
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

Scan ScanFolder(const fs::path& rom) {
    Scan scan;
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

// The plan that puts back the state before `saved`.
WritePlan Reversed(const WritePlan& saved, const fs::path& rom, std::string command) {
    WritePlan plan;
    plan.command = std::move(command);
    plan.subject = saved.command + (saved.subject.empty() ? "" : ": " + saved.subject);
    plan.rom = rom;
    plan.romSize = saved.romSize;
    for (auto it = saved.romWrites.rbegin(); it != saved.romWrites.rend(); ++it)
        plan.romWrites.push_back({it->offset, it->after, it->before});
    if (saved.offsetFile) {
        plan.offsetFile = saved.offsetFile;
        plan.offsetBefore = saved.offsetAfter;
        plan.offsetAfter = saved.offsetBefore.value_or("");
    }
    return plan;
}

WritePlan Forward(const WritePlan& saved, const fs::path& rom, std::string command) {
    WritePlan plan = saved;
    plan.subject = saved.command + (saved.subject.empty() ? "" : ": " + saved.subject);
    plan.command = std::move(command);
    plan.rom = rom;
    return plan;
}

WritePlan ReadEntry(const HistoryEntry& e, const fs::path& rom) {
    std::optional<WritePlan> plan;
    try {
        plan = ReadJournal(e.file, rom);
    } catch (const FileError& error) {
        throw PlanRefused("History entry " + std::to_string(e.number) + " cannot be read: " + error.what());
    }
    if (!plan) throw PlanRefused("History entry " + std::to_string(e.number) + " is damaged.");
    return std::move(*plan);
}

enum class Found { Before, After };

// Whether the files hold the plan's before state or already its after state;
// throws ChangedOnDisk naming every place that holds neither.
Found Check(const WritePlan& plan, std::string_view what) {
    std::vector<std::string> differ;
    bool allAfter = true;
    io::InputFile rom(plan.rom);
    if (rom.Size() != plan.romSize)
        throw ChangedOnDisk("The ROM's length changed since this save (" + std::to_string(plan.romSize) + " bytes, now " +
                            std::to_string(rom.Size()) + "), so it cannot be " + std::string(what) +
                            ". Nothing was changed.");
    auto check = [&](std::string_view now, std::string_view before, std::string_view after, std::string place) {
        allAfter = allAfter && now == after;
        if (now != before) differ.push_back(std::move(place));
    };
    std::string now;
    for (const RomWrite& w : plan.romWrites) {
        now.resize(w.before.size());
        now.resize(rom.Read(w.offset, now.data(), now.size()));
        check(now, w.before, w.after, PrefixedHex(w.offset) + "-" + PrefixedHex(w.offset + w.before.size() - 1));
    }
    if (plan.offsetFile) {
        std::string text;
        if (fs::exists(*plan.offsetFile)) text = io::ReadAll(*plan.offsetFile);
        check(text, plan.offsetBefore.value_or(""), plan.offsetAfter,
              "the offset file " + plan.offsetFile->filename().string());
    }
    if (differ.empty()) return Found::Before;
    if (allAfter) return Found::After;
    std::string list;
    for (const auto& d : differ) list += (list.empty() ? "" : ", ") + d;
    throw ChangedOnDisk("The ROM was changed since this save, so it cannot be " + std::string(what) +
                        ". These places hold other bytes now: " + list + ". Nothing was changed.");
}

// Writes `plan` through the writer, then renames the entry to `to`. When the
// files already hold the plan's result (a cut after the writes, before the
// rename), only the rename is left to do.
void Replay(WritePlan plan, const HistoryEntry& entry, const fs::path& to, std::string_view what) {
    // A save that created the offset file is undone by emptying it; its redo
    // then starts from that empty file.
    if (plan.offsetFile && !plan.offsetBefore && fs::exists(*plan.offsetFile) && io::ReadAll(*plan.offsetFile).empty())
        plan.offsetBefore = "";
    if (Check(plan, what) == Found::Before) {
        Replaying guard;
        const CommitResult result = CommitPlan(plan);
        if (result.outcome == CommitOutcome::RolledBack)
            throw PlanRefused("The ROM could not be written (" + result.error + "). Nothing was changed.");
        if (result.outcome == CommitOutcome::JournalKept)
            throw PlanRefused("The ROM could not be written (" + result.error +
                              "). The previous state will be put back when the ROM is opened again.");
    }
    std::error_code ec;
    fs::rename(entry.file, to, ec);
    if (ec) io::ThrowFileError(entry.file, "rename", ec.value());
}

Scan UsableScan(const fs::path& rom) {
    Scan scan = ScanFolder(rom);
    if (!scan.problem.empty() && fs::exists(HistoryFolder(rom))) throw PlanRefused(scan.problem);
    return scan;
}

}  // namespace

fs::path HistoryFolder(const fs::path& rom) {
    fs::path folder = rom;
    folder += ".history";
    return folder;
}

HistoryListing ListHistory(const fs::path& rom) {
    HistoryListing listing;
    listing.limit = HistoryLimit(rom);
    Scan scan = ScanFolder(rom);
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
    if (!replaying) {
        try {
            const fs::path folder = HistoryFolder(plan.rom);
            fs::create_directories(folder);
            Scan scan = ScanFolder(plan.rom);
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

namespace {

// Undoes the newest applied entry, or redoes the oldest undone one.
HistoryEntry Step(const fs::path& rom, bool undo) {
    Scan scan = UsableScan(rom);
    auto applied = [](const HistoryEntry& e) { return !e.undone; };
    auto undone = [](const HistoryEntry& e) { return e.undone; };
    auto newestApplied = std::find_if(scan.entries.rbegin(), scan.entries.rend(), applied);
    auto oldestUndone = std::find_if(scan.entries.begin(), scan.entries.end(), undone);
    if (undo ? newestApplied == scan.entries.rend() : oldestUndone == scan.entries.end())
        throw PlanRefused(undo ? "There is no save to undo." : "There is no undone save to redo.");
    HistoryEntry entry = undo ? *newestApplied : *oldestUndone;
    const WritePlan saved = ReadEntry(entry, rom);
    Replay(undo ? Reversed(saved, rom, "Undo Last Save") : Forward(saved, rom, "Redo"), entry,
           EntryPath(HistoryFolder(rom), entry.number, entry.when, undo), undo ? "undone" : "redone");
    entry.command = saved.command;
    entry.subject = saved.subject;
    entry.undone = undo;
    return entry;
}

}  // namespace

HistoryEntry UndoLastSave(const fs::path& rom) { return Step(rom, true); }

HistoryEntry RedoSave(const fs::path& rom) { return Step(rom, false); }

void GoBackTo(const fs::path& rom, std::uint64_t number) {
    for (;;) {
        Scan scan = UsableScan(rom);
        auto it = std::find_if(scan.entries.rbegin(), scan.entries.rend(), [](const auto& e) { return !e.undone; });
        if (it == scan.entries.rend() || it->number < number) return;
        UndoLastSave(rom);
    }
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
    Scan scan = ScanFolder(rom);
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
