#pragma once
// The columns of the History window as text, shared by the window and the
// command line's `history`.
#include "store/history.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace quillon {

// Local time, "2024-06-10 14:03:20".
[[nodiscard]] std::string HistoryTime(std::int64_t when);
// "812 bytes" below 10 KiB, else whole KiB rounded up ("13 KiB").
[[nodiscard]] std::string HistorySize(std::uint64_t bytes);
// "applied" or "undone".
[[nodiscard]] std::string_view HistoryState(const HistoryEntry& entry);
// The line under the list: "3 entries, 2 KiB of 64 MiB".
[[nodiscard]] std::string HistoryUsage(const HistoryListing& listing);

}  // namespace quillon
