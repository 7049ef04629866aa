#pragma once
// The event-script language of the three families: every command of each
// family's command table, the operands it reads after its code byte, what
// its pointer operands aim at, and how control leaves it. Layouts follow how
// the game's command handlers read the script, not how an assembler might
// lay the bytes out: a handler that reads nothing takes one byte, whatever
// its macro emits.
#include "game/family.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace quillon::game {

// What a pointer operand aims at.
enum class Role : std::uint8_t {
    Text,         // a string of the game's charset, 0xFF-terminated
    Script,       // more script
    Movement,     // a movement list for an object
    Mart,         // a 0-terminated list of halfword item (or decoration) ids
    BrailleText,  // a braille string; in Ruby/Sapphire and Emerald it begins with a 6-byte window layout
    Data,         // anything else: RAM addresses, native code, values whose use is unknown
};

// How strictly a 4-byte operand must be a cartridge pointer.
enum class Pointer : std::uint8_t {
    None,      // a plain value
    Required,  // a cartridge pointer; anything else means the bytes are no script
    Nullable,  // a cartridge pointer, or 0 for none (message 0 shows the text loaded into bank 0)
    Loose,     // aims at RAM or into the cartridge
    Code,      // a native Thumb routine: an odd cartridge address
    Relative,  // a 'v' command's address, relative to the base setvaddress sets at run time
};

struct Operand {
    std::uint8_t size = 1;  // 1, 2 or 4 bytes
    Role role = Role::Data;
    Pointer pointer = Pointer::None;
};

// How control leaves a command.
enum class Flow : std::uint8_t {
    Continue,      // on to the next command
    End,           // the script stops or jumps to an address saved at run time
    Return,        // back to the caller; ends a called script
    Goto,          // jumps to its script pointer
    Call,          // runs its script pointer, then continues
    GotoIf,        // condition byte, script pointer; continues when the condition fails
    CallIf,        // condition byte, script pointer; continues
    GotoStd,       // jumps to the standard script of an index
    CallStd,       // runs the standard script of an index, then continues
    GotoStdIf,     // condition byte, standard index; continues
    CallStdIf,     // condition byte, standard index; continues
    RelativeGoto,  // vgoto: jumps to an address relative to a base set at run time
    TrainerBattle, // the operands after its type byte depend on the type; continues after them
};

// Operand layouts are strings of one letter per operand:
//   '1' '2' '4'  a byte, halfword or word value
//   'c'  a condition byte (0-5: <, =, >, <=, >=, !=)    'i'  a standard-script index
//   'k'  a script bank (0-3)                            's'  a string buffer (0-2: STR_VAR_1-3)
//   'V'  a variable the handler reads or writes by address   'F'  a flag
//   'S'  script       'M'  movement       'K'  mart (halfword-aligned)
//   't'  text or 0    'x'  text in RAM or the cartridge (bufferstring)
//   'B'  braille text                     'b'  braille text or 0
//   'D'  data in RAM or the cartridge     'C'  native code
//   'a'  setvaddress's base               'j' 'r'  script, text relative to that base
//   'L'  loadword's word: a text when its bank is 0 and a message shows it
struct Command {
    std::uint8_t code = 0;
    std::uint8_t families = 0;  // bit 1 << Family
    std::string_view name;
    Flow flow = Flow::Continue;
    std::string_view layout;  // trainerbattle: its fixed head; see TrainerBattleTail
};

[[nodiscard]] Operand OperandOf(char letter);

// The command a code byte names in a family; nullptr when the family's table
// has no such entry (the game stops a script there).
[[nodiscard]] const Command* FindCommand(Family family, std::uint8_t code);
[[nodiscard]] std::string_view CommandName(Family family, std::uint8_t code);  // empty when unknown

// The layout of the pointers after trainerbattle's type, trainer and local
// id; nullopt for a type the family does not define.
[[nodiscard]] std::optional<std::string_view> TrainerBattleTail(Family family, std::uint8_t type);

// How many standard scripts (callstd indices) a family has.
[[nodiscard]] std::uint8_t StandardScriptCount(Family family);

struct Argument {
    std::uint32_t at = 0;  // offset of the operand's first byte
    char letter = '1';     // its layout letter
    Operand operand;
    std::uint32_t value = 0;
};

// One command read from the image.
struct Instruction {
    const Command* command = nullptr;
    std::uint32_t offset = 0;
    std::uint32_t size = 0;  // code byte included
    std::uint8_t count = 0;  // arguments used
    std::array<Argument, 8> arguments{};

    [[nodiscard]] std::uint32_t End() const { return offset + size; }
};

// The command at `at`, when the bytes there can be one of a real script: a
// known code, all operands inside the image; conditions, standard indices,
// banks, string buffers, variables and flags in range; a trainer battle type
// the family defines (the game reads others as single battles, no script
// has one); every Required, Nullable and Code pointer valid, mart lists
// halfword-aligned, every Loose pointer aimed at RAM or the cartridge.
// nullopt otherwise.
[[nodiscard]] std::optional<Instruction> DecodeCommand(std::string_view image, Family family, std::uint32_t at);

}  // namespace quillon::game
