#include "store/leftovers.h"

#include "store/history.h"
#include "store/rom_lock.h"

#include <chrono>
#include <string>
#include <string_view>

namespace quillon {
namespace fs = std::filesystem;

namespace {

constexpr std::string_view kTmp = ".tmp-";
constexpr std::size_t kUnique = 6;  // the letters and digits the system fills in

// Whether `name` is `prefix` (or `prefix` and a further extension; any name
// when `anyPrefix`) followed by ".tmp-" and six letters or digits.
bool TemporaryName(std::string_view name, std::string_view prefix, bool anyPrefix) {
    if (name.size() < kTmp.size() + kUnique) return false;
    const std::size_t at = name.size() - kUnique - kTmp.size();
    if (name.substr(at, kTmp.size()) != kTmp) return false;
    for (const char c : name.substr(at + kTmp.size()))
        if (!((c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'))) return false;
    const std::string_view before = name.substr(0, at);
    if (anyPrefix) return !before.empty();
    return before.substr(0, prefix.size()) == prefix &&
           (before.size() == prefix.size() || before[prefix.size()] == '.');
}

std::size_t RemoveIn(const fs::path& folder, std::string_view prefix, bool anyPrefix) {
    std::size_t removed = 0;
    std::error_code ec;
    const auto old = fs::file_time_type::clock::now() - std::chrono::minutes(1);
    for (fs::directory_iterator it(folder.empty() ? fs::path(".") : folder, ec), end; !ec && it != end;
         it.increment(ec)) {
        std::error_code e;
        if (!it->is_regular_file(e) || it->is_symlink(e)) continue;
        if (!TemporaryName(it->path().filename().string(), prefix, anyPrefix)) continue;
        if (it->last_write_time(e) > old || e) continue;
        if (fs::remove(it->path(), e)) ++removed;
    }
    return removed;
}

}  // namespace

std::size_t RemoveStaleTemporaries(const fs::path& rom, const fs::path& offsetFile) {
    std::string holder;
    const auto lock = RomLock::Take(rom, holder, std::chrono::milliseconds(0));
    if (!lock) return 0;  // a save is running: its temporary files are live
    std::size_t removed = RemoveIn(rom.parent_path(), rom.filename().string(), false);
    if (!offsetFile.empty()) removed += RemoveIn(offsetFile.parent_path(), offsetFile.filename().string(), false);
    std::error_code ec;
    const fs::path history = HistoryFolder(rom);
    if (fs::is_directory(fs::symlink_status(history, ec))) removed += RemoveIn(history, {}, true);
    return removed;
}

}  // namespace quillon
