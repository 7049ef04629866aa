#include "discover/references.h"

#include "core/file_io.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>

namespace quillon::discover {
namespace {

// An event-script command whose operand is a text pointer: its command byte
// and, when it has one, the range of the byte between command and pointer.
struct ScriptCommand {
    unsigned char command;
    bool hasArgument;
    unsigned char maxArgument;
    std::string_view rule;
};

constexpr std::array<ScriptCommand, 6> kTextCommands = {{
    {0x0F, true, 3, "script operand: 0F bank (load a pointer)"},
    {0x67, false, 0, "script operand: 67 (message)"},
    {0x78, false, 0, "script operand: 78 (braille message)"},
    {0x85, true, 2, "script operand: 85 buffer (copy a string)"},
    {0x9B, false, 0, "script operand: 9B (message that scrolls by itself)"},
    {0xBD, false, 0, "script operand: BD (message at a relative address)"},
}};

constexpr std::string_view kAlignedRule = "aligned data: 4-byte aligned (table slot or literal pool)";
constexpr std::string_view kSuspectRule = "suspect: unaligned and after no text command (program code)";

unsigned char At(std::string_view image, std::size_t i) { return static_cast<unsigned char>(image[i]); }

}  // namespace

Reference ClassifyAt(std::string_view bytes, std::size_t index, std::uint32_t place) {
    for (const ScriptCommand& c : kTextCommands) {
        if (c.hasArgument) {
            if (index >= 2 && At(bytes, index - 2) == c.command && At(bytes, index - 1) <= c.maxArgument)
                return {place, PlaceKind::ScriptOperand, c.rule};
        } else if (index >= 1 && At(bytes, index - 1) == c.command) {
            return {place, PlaceKind::ScriptOperand, c.rule};
        }
    }
    if (place % 4 == 0) return {place, PlaceKind::AlignedData, kAlignedRule};
    return {place, PlaceKind::Suspect, kSuspectRule};
}

Reference ClassifyPlace(std::string_view image, std::uint32_t place) { return ClassifyAt(image, place, place); }

std::string_view KindName(PlaceKind kind) {
    switch (kind) {
        case PlaceKind::ScriptOperand: return "Script operand";
        case PlaceKind::AlignedData: return "Aligned data";
        case PlaceKind::Suspect: return "Suspect";
    }
    return "";
}

std::string PointerBytes(std::uint32_t offset) {
    return {static_cast<char>(offset & 0xFF), static_cast<char>((offset >> 8) & 0xFF),
            static_cast<char>((offset >> 16) & 0xFF), static_cast<char>(kPointerBank)};
}

std::vector<Reference> FindReferences(std::string_view image, std::uint32_t offset) {
    std::vector<Reference> found;
    if (offset >= kPointerReach) return found;
    const std::string pointer = PointerBytes(offset);
    std::boyer_moore_horspool_searcher searcher(pointer.begin(), pointer.end());
    for (auto from = image.begin();;) {
        auto [hit, end] = searcher(from, image.end());
        if (hit == end) break;
        found.push_back(ClassifyPlace(image, static_cast<std::uint32_t>(hit - image.begin())));
        from = hit + 1;
    }
    return found;
}

std::vector<Reference> FindReferencesInFile(const std::filesystem::path& rom, std::uint32_t offset) {
    std::vector<Reference> found;
    if (offset >= kPointerReach) return found;
    constexpr std::size_t kBlock = 1 << 20;
    // Bytes carried from one block into the next: the pointer's first three
    // and the two command bytes before it.
    constexpr std::size_t kCarry = 5;
    const std::string pointer = PointerBytes(offset);
    std::boyer_moore_horspool_searcher searcher(pointer.begin(), pointer.end());
    io::InputFile in(rom);
    std::string buffer(kBlock + kCarry, '\0');
    std::uint64_t bufferAt = 0;  // file offset of buffer[0]
    std::size_t held = 0;
    std::size_t searchFrom = 0;  // carried bytes were searched already, except the last three
    for (;;) {
        std::size_t got = in.Read(bufferAt + held, buffer.data() + held, buffer.size() - held);
        held += got;
        std::string_view view(buffer.data(), held);
        for (auto from = view.begin() + static_cast<std::ptrdiff_t>(searchFrom);;) {
            auto [hit, end] = searcher(from, view.end());
            if (hit == end) break;
            // The two command bytes before a hit are carried from the block
            // before, so every hit sees them as in the in-memory search.
            const auto index = static_cast<std::size_t>(hit - view.begin());
            found.push_back(ClassifyAt(view, index, static_cast<std::uint32_t>(bufferAt + index)));
            from = hit + 1;
        }
        if (got == 0 || bufferAt + held >= in.Size()) return found;
        const std::size_t keep = std::min(kCarry, held);
        std::copy(buffer.begin() + static_cast<std::ptrdiff_t>(held - keep),
                  buffer.begin() + static_cast<std::ptrdiff_t>(held), buffer.begin());
        bufferAt += held - keep;
        held = keep;
        searchFrom = keep >= pointer.size() - 1 ? keep - (pointer.size() - 1) : 0;
    }
}

std::string BytesAround(std::string_view image, std::uint32_t place, std::size_t before, std::size_t after) {
    std::string out;
    const std::size_t from = place >= before ? place - before : 0;
    const std::size_t to = std::min<std::size_t>(image.size(), std::size_t{place} + 4 + after);
    char hex[4];
    for (std::size_t i = from; i < to; ++i) {
        if (!out.empty()) out += ' ';
        if (i == place) out += '[';
        std::snprintf(hex, sizeof hex, "%02X", At(image, i));
        out += hex;
        if (i == std::size_t{place} + 3) out += ']';
    }
    return out;
}

}  // namespace quillon::discover
