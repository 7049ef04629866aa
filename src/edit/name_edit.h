#pragma once
// Names of fixed length in the editor. The text shown is a name when its
// offset is an entry of a section of names in the offset file: the counter
// then counts the letters left in its field, and saving writes the field
// only, the name, its end mark and the game's padding. A longer name is
// refused; a name is never moved.
#include "store/write_plan.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

class Session;

// Sets the loaded text's fixed length from the offset file.
void NoteFixedLength(Session& session);

// The counter for a name `length` bytes long: "3 letters left in this name
// (at most 10)." or "2 letters too many: this name holds at most 10."
std::string NameCounterCaption(std::uint32_t letters, std::int32_t length);

// The field of the shown name with the edited name in it; nothing, after
// telling the user why, when the name is longer than its field allows or
// the field no longer holds a name.
std::optional<std::vector<BytesAt>> NameBlocks(Session& session);

}  // namespace quillon
