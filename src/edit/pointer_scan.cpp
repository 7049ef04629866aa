#include "edit/pointer_scan.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>

namespace quillon {

std::vector<BytesAt> ScanPointerRewrites(const std::filesystem::path& rom, std::string_view oldPointer,
                                           std::string_view newPointer) {
    constexpr std::size_t kBlock = 1 << 20;
    std::vector<BytesAt> rewrites;
    if (oldPointer.empty() || oldPointer.size() != newPointer.size()) return rewrites;
    io::InputFile in(rom);
    const std::size_t keep = oldPointer.size();  // carried into the next block
    std::vector<char> buffer(kBlock + keep);
    std::boyer_moore_horspool_searcher searcher(oldPointer.begin(), oldPointer.end());
    std::uint64_t bufferAt = 0;  // file offset of buffer[0]
    std::size_t held = 0;        // bytes in the buffer
    std::size_t cursor = 0;      // where the next search begins in the buffer
    for (;;) {
        std::size_t got = in.Read(bufferAt + held, buffer.data() + held, buffer.size() - held);
        held += got;
        for (;;) {
            auto begin = buffer.begin() + static_cast<std::ptrdiff_t>(cursor);
            auto [hit, hitEnd] = searcher(begin, buffer.begin() + static_cast<std::ptrdiff_t>(held));
            if (hit == hitEnd) break;
            auto index = static_cast<std::size_t>(hit - buffer.begin());
            if (bufferAt + index == 0) return rewrites;
            rewrites.push_back({bufferAt + index, std::string(newPointer)});
            // The buffer now shows the file as it will be after this write.
            std::copy(newPointer.begin(), newPointer.end(), hit);
            cursor = index > 0 ? index - 1 : 0;
        }
        if (got == 0 || bufferAt + held >= in.Size()) return rewrites;
        std::size_t carried = std::min(keep, held);
        std::size_t dropped = held - carried;
        std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(dropped),
                  buffer.begin() + static_cast<std::ptrdiff_t>(held), buffer.begin());
        cursor = std::max(cursor, dropped) - dropped;
        bufferAt += dropped;
        held = carried;
    }
}

std::vector<BytesAt> PointerRewritesAt(const std::filesystem::path& rom, const std::vector<std::uint32_t>& places,
                                       std::string_view oldPointer, std::string_view newPointer) {
    std::vector<BytesAt> rewrites;
    const std::size_t n = oldPointer.size();
    if (n == 0 || n != newPointer.size() || oldPointer == newPointer) return rewrites;
    io::InputFile in(rom);
    // The scan's view of the file: its bytes with the rewrites made so far
    // laid over them. A match in that view either held the old pointer
    // before (one of `places`) or overlaps a rewrite; so the places and the
    // offsets around each rewrite are all that need looking at.
    std::map<std::uint64_t, char> laid;
    std::set<std::uint64_t> candidates(places.begin(), places.end());
    std::string bytes(n, '\0');
    auto matches = [&](std::uint64_t at) {
        if (at + n > in.Size() || in.Read(at, bytes.data(), n) != n) return false;
        for (auto it = laid.lower_bound(at); it != laid.end() && it->first < at + n; ++it) bytes[it->first - at] = it->second;
        return bytes == oldPointer;
    };
    std::uint64_t cursor = 0;
    for (;;) {
        auto it = candidates.lower_bound(cursor);
        while (it != candidates.end() && !matches(*it)) it = candidates.erase(it);
        if (it == candidates.end()) return rewrites;
        const std::uint64_t hit = *it;
        if (hit == 0) return rewrites;  // as the scan, which reads a hit there as no match
        rewrites.push_back({hit, std::string(newPointer)});
        for (std::size_t k = 0; k < n; ++k) laid[hit + k] = newPointer[k];
        for (std::uint64_t at = hit >= n - 1 ? hit - (n - 1) : 0; at < hit + n; ++at) candidates.insert(at);
        cursor = hit > 0 ? hit - 1 : 0;
    }
}

}  // namespace quillon
