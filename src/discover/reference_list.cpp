#include "discover/reference_list.h"

#include "core/file_io.h"
#include "core/hex_text.h"
#include "repoint/model_cache.h"
#include "repoint/place_counts.h"

#include <quillon/codec.h>

#include <charconv>
#include <optional>

namespace quillon::discover {
namespace {

std::optional<std::uint32_t> Offset(const std::string& hex) {
    if (hex.empty() || hex.size() > 7 || !IsHex(hex)) return std::nullopt;
    std::uint32_t value = 0;
    std::from_chars(hex.data(), hex.data() + hex.size(), value, 16);
    return value;
}

}  // namespace

std::string BytesAround(std::string_view image, std::uint32_t place, std::size_t before, std::size_t after) {
    std::string out;
    const std::size_t from = place >= before ? place - before : 0;
    const std::size_t to = std::min<std::size_t>(image.size(), std::size_t{place} + 4 + after);
    for (std::size_t i = from; i < to; ++i) {
        if (!out.empty()) out += ' ';
        if (i == place) out += '[';
        out += PlainHex(static_cast<unsigned char>(image[i]), 2);
        if (i == std::size_t{place} + 3) out += ']';
    }
    return out;
}

std::vector<ReferenceRow> ReferenceRows(const std::filesystem::path& rom, const std::string& offset) {
    std::vector<ReferenceRow> rows;
    const auto target = Offset(offset);
    if (!target) return rows;
    constexpr std::size_t kAround = 6;
    for (const game::Place& r : repoint::ModelOf(rom)->ReferencesTo(*target)) {
        const std::uint64_t from = r.place >= kAround ? r.place - kAround : 0;
        const std::string window = io::ReadAt(rom, from, static_cast<std::size_t>(r.place - from) + 4 + kAround);
        rows.push_back({PlainHex(r.place, 6), std::string(game::KindName(r.kind)), std::string(r.rule),
                        BytesAround(window, static_cast<std::uint32_t>(r.place - from), kAround, kAround)});
    }
    return rows;
}

std::string PointersCaption(const std::filesystem::path& rom, const std::string& offset) {
    const auto target = Offset(offset);
    if (!target || rom.empty()) return {};
    std::size_t references = 0;
    for (const game::Place& r : repoint::ModelOf(rom)->ReferencesTo(*target)) references += game::IsReference(r.kind);
    return "Pointers: " + std::to_string(references);
}

}  // namespace quillon::discover
