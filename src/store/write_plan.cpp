#include "store/write_plan.h"

#include "core/file_io.h"
#include "core/hex_text.h"

#include <algorithm>

namespace quillon {

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

}  // namespace quillon
