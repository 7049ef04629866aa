#include "store/write_plan.h"

#include "core/file_io.h"
#include "core/hex_text.h"

#include <algorithm>

namespace quillon {
namespace {

// The one merger of blocks into ranges; `read(offset, out, count)` fills
// `out` with the ROM's bytes at `offset`, `size` is the ROM's length.
template <class Read>
std::vector<RomWrite> Merge(const std::vector<BytesAt>& blocks, std::uint64_t size, std::uint64_t joinGap, Read read) {
    struct Span {
        std::uint64_t begin, end;
    };
    std::vector<Span> spans;
    spans.reserve(blocks.size());
    for (const auto& b : blocks)
        if (!b.bytes.empty()) spans.push_back({b.offset, b.offset + b.bytes.size()});
    std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.begin < b.begin; });
    std::vector<Span> merged;
    for (const Span& s : spans) {
        if (!merged.empty() && s.begin <= merged.back().end + joinGap)
            merged.back().end = std::max(merged.back().end, s.end);
        else
            merged.push_back(s);
    }
    std::vector<RomWrite> ranges;
    ranges.reserve(merged.size());
    for (const Span& s : merged) {
        if (s.end > size)
            throw PlanRefused("The bytes at offset " + PlainHex(s.begin) + " would reach past the end of the ROM (" +
                              std::to_string(size) + " bytes); Quillon never changes the ROM's length.");
        RomWrite& w = ranges.emplace_back();
        w.offset = s.begin;
        w.before.resize(static_cast<std::size_t>(s.end - s.begin));
        read(s.begin, w.before.data(), w.before.size());
        w.after = w.before;
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

}  // namespace

std::vector<RomWrite> RangesFor(const std::filesystem::path& rom, const std::vector<BytesAt>& blocks) {
    io::InputFile in(rom);
    return Merge(blocks, in.Size(), 0,
                 [&](std::uint64_t at, char* out, std::size_t count) { in.Read(at, out, count); });
}

std::vector<RomWrite> RangesFor(std::string_view image, const std::vector<BytesAt>& blocks, std::uint64_t joinGap) {
    return Merge(blocks, image.size(), joinGap,
                 [&](std::uint64_t at, char* out, std::size_t count) { image.copy(out, count, at); });
}

}  // namespace quillon
