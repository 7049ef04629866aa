#pragma once
// Names of sections and keys as offset files hold them: Latin-1 bytes in the
// files made on Windows, UTF-8 in a few others. Windows show them, and
// filters match them, in UTF-8; a name typed in a window goes into the file
// in Latin-1 when every one of its characters has a Latin-1 byte.
#include <string>
#include <string_view>

namespace quillon {

// UTF-8 where the bytes are well-formed UTF-8; every other byte read as a
// Latin-1 character. Also right for messages that quote such a name.
std::string ReadableName(std::string_view bytes);

// Whether `bytes` is well-formed UTF-8 (plain ASCII is).
bool IsUtf8(std::string_view bytes);

// The file's bytes for a name typed in UTF-8: Latin-1 when every character
// has a Latin-1 byte, else the UTF-8 unchanged.
std::string NameBytes(std::string_view utf8);

}  // namespace quillon
