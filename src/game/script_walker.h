#pragma once
// Walks event scripts from their entry points through every goto, call,
// conditional jump and trainer battle continuation, and records the pointer
// operands it meets. A path that reads as no script (an unknown code, a
// required pointer that aims outside the cartridge, bytes that overlap a
// command walked before, the image's end) is dropped whole, so a wrong parse
// leaves no references behind.
#include "game/family.h"
#include "game/script_language.h"
#include "game/span.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace quillon::game {

struct ScriptEntry {
    std::uint32_t offset = 0;
    std::int32_t owner = -1;  // an index the caller gives (a map); -1: none
};

struct ScriptPointer {
    std::uint32_t place = 0;   // offset of the operand
    std::uint32_t target = 0;  // offset it points at
    Role role = Role::Data;
    std::uint8_t command = 0;  // code of the command that holds it
    std::int32_t owner = -1;   // owner of the first entry that reached it
    std::uint8_t standard = 0xFF;  // loadword texts: the callstd index that shows them; 0xFF none
    friend bool operator==(const ScriptPointer&, const ScriptPointer&) = default;
};

struct ScriptWalk {
    std::vector<ScriptPointer> pointers;  // every cartridge pointer operand met, by place, one per place
    std::vector<Span> scripts;            // the bytes of every command walked, merged, in order
};

// Scripts that nothing walked points at: unused ones, ones only native code
// starts, ones laid out to be copied to RAM. Probe: look where they lie,
// right after each walked script, after the terminator of each text,
// movement or mart list a walked script points at, and at each setvaddress
// that names itself; walk what passes ParsesAsScript, owned as what it
// follows (-1 for the last kind).
enum class Unreferenced : std::uint8_t { Skip, Probe };

// Entries are walked in order, each with all it leads to before the next, so
// an entry listed earlier owns what several reach. Each byte is walked once.
// 'v' commands' relative addresses count as pointers only after a
// setvaddress that names itself, as scripts built to be copied to RAM are
// laid out in the image; elsewhere they are opaque.
[[nodiscard]] ScriptWalk WalkScripts(std::string_view image, Family family, const std::vector<ScriptEntry>& entries,
                                     Unreferenced unreferenced = Unreferenced::Skip);

// A cheap probe for scripts that no map leads to (a table's pointers): the
// bytes at `offset` read as known commands with valid operands that end
// cleanly (end, return, goto...) within 256 commands, with no no-op but the
// two zero bytes assemblers put after hidemoneybox; they hold at least one
// pointer to text, script, movement or mart, and each such target looks the
// part (a script's own straight line ends cleanly, a text or a list meets
// its terminator). A script with no such pointer leads to no reference, so
// nothing is lost by refusing it.
[[nodiscard]] bool ParsesAsScript(std::string_view image, Family family, std::uint32_t offset);

}  // namespace quillon::game
