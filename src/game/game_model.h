#pragma once
// A game image read once, as the game itself reads it: its family, program
// code, maps and their scripts, the tables that hold texts, and from these
// the kind of every place that holds a pointer and the use of every text a
// reference leads to. Built in a handful of passes over the image; every
// question after that is a look-up.
#include "game/code_map.h"
#include "game/family.h"
#include "game/place_kind.h"
#include "game/pointer_index.h"
#include "game/span.h"
#include "game/text_context.h"
#include "game/text_tables.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon::game {

// How one text is used, from the first reference that names a use.
struct TextUse {
    std::uint32_t offset = 0;
    TextContext context = TextContext::Other;
    bool trainer = false;        // shown by a trainer battle
    std::int32_t map = -1;       // index into Maps() of the map whose scripts show it
    std::string_view table;      // the kind of table that holds it ("Item descriptions"), or empty
};

struct MapName {
    std::uint8_t group = 0, number = 0;
    std::string name;            // decoded, UTF-8; empty when the game has none for it
};

// What a read builds. References: only what ReferencesTo and Classify need,
// for a command that moves texts; Uses() and Maps() stay empty, and every
// place is classified as a whole read classifies it.
enum class ModelParts : std::uint8_t { All, References };

class GameModel {
public:
    // Reads `image`; `gameCode` from its header names the family, and when
    // it names none, the family whose structures the image holds is taken.
    [[nodiscard]] static GameModel Read(std::string_view image, ModelParts parts = ModelParts::All);
    // The same with the pointer index of `image` built beforehand.
    [[nodiscard]] static GameModel Read(std::string_view image, ModelParts parts, PointerIndex index);

    [[nodiscard]] std::optional<Family> family() const { return family_; }
    [[nodiscard]] std::size_t imageSize() const { return size_; }

    // Every place that holds the pointer to `target`, at any alignment, in
    // file order, each with its kind.
    [[nodiscard]] std::vector<Place> ReferencesTo(std::uint32_t target) const;
    // The kind of a place that holds a pointer to `target`.
    [[nodiscard]] Place Classify(std::uint32_t place, std::uint32_t target) const;

    // Offsets that a script operand of a text role, a table slot or a pool
    // word points at, each once, in offset order: the candidates for texts.
    [[nodiscard]] const std::vector<TextUse>& Uses() const { return uses_; }
    [[nodiscard]] const TextUse* UseOf(std::uint32_t offset) const;

    [[nodiscard]] const std::vector<MapName>& Maps() const { return maps_; }
    [[nodiscard]] const CodeMap& Code() const { return code_; }
    [[nodiscard]] const PointerIndex& Pointers() const { return index_; }
    // The tables in data whose records hold pointers to texts, in place order.
    [[nodiscard]] const std::vector<TextTable>& TextTables() const { return textTables_; }

private:
    struct Operand {
        std::uint32_t place;
        std::string_view rule;
    };
    std::optional<Family> family_;
    std::size_t size_ = 0;
    PointerIndex index_;
    CodeMap code_;
    std::vector<bool> alignedPointers_;    // per aligned word: it holds a pointer into the image
    std::vector<Operand> operands_;        // script operands, by place
    std::vector<Span> scripts_;            // bytes of walked scripts, merged, in order
    std::vector<Operand> tableSlots_;      // slots of recognised tables, by place
    std::vector<TextTable> textTables_;
    std::vector<TextUse> uses_;
    std::vector<MapName> maps_;
};

}  // namespace quillon::game
