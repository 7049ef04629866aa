#pragma once
#include <stdexcept>
#include <string>

namespace quillon {

// Hex or number text that cannot be converted.
struct TypeMismatch : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// A file that cannot be opened, read or written. The message names the path
// and the system's reason.
struct FileError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

}  // namespace quillon
