#pragma once
// Failures of the live update that the window reports with a number and a
// description.
#include <cstdint>
#include <string>

namespace quillon {

struct UpdateError {
    std::int32_t number = 0;
    std::string description;
};

// Numbers of the failures the update raises itself (the platform's classic
// run-time error numbers); network failures carry their own (see network.h).
inline constexpr std::int32_t kOutOfMemoryError = 7;       // "Out of memory": a reply over its size cap
inline constexpr std::int32_t kBadFileNameError = 52;     // "Bad file name or number"
inline constexpr std::int32_t kPathFileAccessError = 75;  // "Path/File access error"

}  // namespace quillon
