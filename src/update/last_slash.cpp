#include "update/last_slash.h"

#include <algorithm>

namespace quillon {

std::string GetLastSlash(std::string_view text) {
    const std::size_t slash = text.rfind('/');
    if (slash == std::string_view::npos) return std::string(text);
    return std::string(text.substr(slash + 1));
}

bool IsSafeUpdateFileName(std::string_view name) {
    if (name.empty() || name == "." || name == "..") return false;
    return std::none_of(name.begin(), name.end(), [](char c) {
        const auto u = static_cast<unsigned char>(c);
        return c == '/' || c == '\\' || u < 0x20 || u == 0x7F;
    });
}

}  // namespace quillon
