#include "discover/reference_list.h"

#include "core/file_io.h"
#include "discover/references.h"

#include <quillon/codec.h>

#include <charconv>
#include <cstdio>
#include <optional>

namespace quillon::discover {
namespace {

std::optional<std::uint32_t> Offset(const std::string& hex) {
    if (hex.empty() || hex.size() > 6 || !IsHex(hex)) return std::nullopt;
    std::uint32_t value = 0;
    std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
    return value;
}

}  // namespace

std::vector<ReferenceRow> ReferenceRows(const std::filesystem::path& rom, const std::string& offset) {
    std::vector<ReferenceRow> rows;
    const auto target = Offset(offset);
    if (!target) return rows;
    constexpr std::size_t kAround = 6;
    for (const Reference& r : FindReferencesInFile(rom, *target)) {
        const std::uint64_t from = r.place >= kAround ? r.place - kAround : 0;
        const std::string window = io::ReadAt(rom, from, static_cast<std::size_t>(r.place - from) + 4 + kAround);
        char hex[16];
        std::snprintf(hex, sizeof hex, "%06X", r.place);
        rows.push_back({hex, std::string(KindName(r.kind)), std::string(r.rule),
                        BytesAround(window, static_cast<std::uint32_t>(r.place - from), kAround, kAround)});
    }
    return rows;
}

std::string PointersCaption(const std::filesystem::path& rom, const std::string& offset) {
    const auto target = Offset(offset);
    if (!target || rom.empty()) return {};
    return "Pointers: " + std::to_string(FindReferencesInFile(rom, *target).size());
}

}  // namespace quillon::discover
