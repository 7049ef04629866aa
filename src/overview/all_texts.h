#pragma once
// "All Texts...": every entry of the open game's offset file as one row with
// what a translator looks for at a glance: the text's first line, its length
// and the room behind it, the places that hold its pointer by kind, and
// whether its lines fit the message box. Built once per load of the offset
// file; filtering and sorting afterwards touch only the rows.
#include "app/tree_model.h"
#include "fit/boxes.h"
#include "fit/measure.h"
#include "game/place_kind.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {
class Session;
}
namespace quillon::game {
class GameModel;
}

namespace quillon::overview {

// What the fit check says of a text, in the order a sort puts them.
enum class Finding : std::uint8_t {
    None,   // every line fits, or there is no font to measure with
    Names,  // a line is over the box only while its names count at their longest
    Over    // a line is over the box even without its names
};
std::string_view FindingName(Finding finding);  // "", "names", "over"

inline constexpr std::size_t kPlaceKinds = 5;  // game::PlaceKind values

struct Row {
    std::size_t node = 0;        // the entry's node in the tree
    std::string section, name;   // UTF-8 (the file's Latin-1 read as such)
    std::string offset;          // as the offset file writes it
    std::uint32_t at = 0;        // that offset as a number; 0 when it is none
    std::string firstLine;       // UTF-8; empty when the text can't be read
    std::string problem;         // why the text can't be read; empty when it can
    std::uint32_t bytes = 0;     // the text's length, without its end byte
    std::uint32_t room = 0;      // bytes it may grow in place
    std::array<std::uint16_t, kPlaceKinds> places{};  // places holding its pointer, by kind
    Finding finding = Finding::None;

    // Places of the kinds that a move rewrites (script, table, pool).
    int References() const;
    // "2 script, 1 table", or "none".
    std::string PlacesCaption() const;
};

enum class Column { File, Section, Name, Offset, FirstLine, Bytes, Room, References, Fit, Draft };

enum class FindingFilter { Any, Over, Names, Either };

struct Query {
    std::string words;    // UTF-8; each word must occur in the section, name, offset or text
    std::string section;  // UTF-8; empty: every section
    FindingFilter finding = FindingFilter::Any;
};

// What a build reads. Without a game model the places are not counted;
// without a font no text has a finding.
struct Sources {
    std::string_view image;
    const TreeModel* tree = nullptr;
    const game::GameModel* game = nullptr;
    const fit::Font* font = nullptr;
    fit::MeasureOptions measure;  // the sample name; the box when `boxes` is none
    char freeByte = '\xFF';
    const fit::TextBoxes* boxes = nullptr;  // the box of each text
};

class AllTexts {
public:
    static AllTexts Build(const Sources& sources);

    const std::vector<Row>& Rows() const { return rows_; }
    // The sections in file order, each once (UTF-8).
    const std::vector<std::string>& Sections() const { return sections_; }

    // The rows that `query` keeps, in file order. Letters match without
    // regard to case (A-Z and the accented Latin-1 ones); an offset may be
    // typed with its "0x".
    std::vector<std::uint32_t> Filter(const Query& query) const;
    // Sorts row indices by a column (File: file order); rows that tie keep
    // file order. `drafts` marks the rows with a draft (for Column::Draft).
    void Sort(std::vector<std::uint32_t>& rows, Column column, bool descending,
              const std::vector<bool>& drafts = {}) const;

private:
    std::vector<Row> rows_;
    std::vector<std::string> sections_;
    std::string haystack_;             // per row: folded section, name, offset and text
    std::vector<std::uint32_t> hay_;   // where each row's part begins; one more at the end
};

// The rows of the session's tree over its ROM as the file is now, with the
// game model of the ROM (cached per file), its font and the user's fit
// settings. Throws FileError when the ROM can't be read.
AllTexts BuildFor(const Session& session);

// Lower case for A-Z and the Latin-1 capitals (UTF-8), for matching.
std::string Folded(std::string_view utf8);

}  // namespace quillon::overview
