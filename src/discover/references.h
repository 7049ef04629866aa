#pragma once
// Every place in a ROM image that holds the pointer to one offset, each with
// the kind of place it most likely is. A repoint rewrites real references and
// leaves the rest: bytes of program code that only happen to look like the
// pointer.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::discover {

// The pointer's last byte: 0x08000000 + offset for offsets below 16 MiB.
inline constexpr unsigned char kPointerBank = 0x08;
inline constexpr std::uint32_t kPointerReach = 1u << 24;

enum class PlaceKind {
    ScriptOperand,  // the operand of an event-script command that takes a text
    AlignedData,    // 4-byte aligned: a table slot or a literal pool
    Suspect         // neither: most likely two instructions of program code
};

struct Reference {
    std::uint32_t place = 0;  // file offset of the pointer's first byte
    PlaceKind kind = PlaceKind::Suspect;
    std::string_view rule;    // the rule that gave the kind, for the user
};

// The rules, in the order they are tried on the bytes before `place`:
// 1. script operand: the bytes before it are a script command that takes a
//    text pointer: 0F bank(0-3) (load a pointer, every message box), 67
//    (message), 78 (braille message), 85 buffer(0-2) (copy a string), 9B
//    (message that scrolls by itself), BD (message at a relative address);
// 2. aligned data: place % 4 == 0;
// 3. suspect: everything else.
Reference ClassifyPlace(std::string_view image, std::uint32_t place);
// The same for a pointer at `index` of `bytes`, a piece of the image that
// starts at file offset place - index.
Reference ClassifyAt(std::string_view bytes, std::size_t index, std::uint32_t place);

// "Script operand", "Aligned data", "Suspect".
std::string_view KindName(PlaceKind kind);

// The four pointer bytes of `offset`.
std::string PointerBytes(std::uint32_t offset);

// Every occurrence of the pointer to `offset` in an image in memory, in file order.
std::vector<Reference> FindReferences(std::string_view image, std::uint32_t offset);

// The same over a file, read in blocks in one pass. Throws FileError.
std::vector<Reference> FindReferencesInFile(const std::filesystem::path& rom, std::uint32_t offset);

// Up to `before` bytes before `place` and `after` bytes from it on, as hex
// text with the pointer's bytes set apart: "6A 5A [2C 01 3A 08] 09 04".
std::string BytesAround(std::string_view image, std::uint32_t place, std::size_t before = 6,
                        std::size_t after = 6);

}  // namespace quillon::discover
