#include "update/version_compare.h"

#include <algorithm>

namespace quillon {

std::string CurrentVersionText() {
    return std::to_string(QUILLON_VERSION_MAJOR) + "." + std::to_string(QUILLON_VERSION_MINOR) + "." +
           std::to_string(QUILLON_VERSION_REVISION);
}

bool IsNewerVersion(std::string_view remote, std::string_view current) {
    // Compared as unsigned bytes, so characters above 0x7F sort after ASCII.
    return std::lexicographical_compare(current.begin(), current.end(), remote.begin(), remote.end(),
                                        [](char a, char b) {
                                            return static_cast<unsigned char>(a) < static_cast<unsigned char>(b);
                                        });
}

}  // namespace quillon
