// Encoding arbitrary text, valid UTF-8 or not, with both line-break modes.
#include <quillon/codec.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

bool IsUpperHexOfBytes(std::string_view hex) {
    if (hex.size() % 2 != 0) return false;
    for (const char c : hex) {
        if (!((c >= '0' && c <= '9') || (c >= 'A' && c <= 'F'))) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const bool specialDialog : {false, true}) {
        const std::string hex = quillon::EncodeText(text, specialDialog);
        if (!IsUpperHexOfBytes(hex) || text.empty() != hex.empty()) __builtin_trap();
        if (!hex.empty() && !quillon::IsHex(hex)) __builtin_trap();
    }
    return 0;
}
