#include "history/history_columns.h"

#include <ctime>

namespace quillon {

std::string HistoryTime(std::int64_t when) {
    const std::time_t t = static_cast<std::time_t>(when);
    std::tm local{};
    char text[32] = "";
    if (localtime_r(&t, &local)) std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
    return text;
}

std::string HistorySize(std::uint64_t bytes) {
    return bytes < 10 * 1024 ? std::to_string(bytes) + " bytes" : std::to_string((bytes + 1023) / 1024) + " KiB";
}

std::string_view HistoryState(const HistoryEntry& entry) { return entry.undone ? "undone" : "applied"; }

std::string HistoryUsage(const HistoryListing& listing) {
    return std::to_string(listing.entries.size()) + " entries, " + HistorySize(listing.used) + " of " +
           std::to_string(listing.limit >> 20) + " MiB";
}

}  // namespace quillon
