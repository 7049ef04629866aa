#include "edit/pointer_scan.h"

#include <algorithm>
#include <functional>

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

}  // namespace quillon
