#pragma once
// The texts of an offset file's entries in an image held in memory: where
// each stands, how long it is, how far it may grow in place, the pointers to
// it, and what a translated text turns into.
#include "app/progress.h"
#include "translate/offset_entries.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

struct EntryText {
    const OffsetEntry* entry = nullptr;
    std::string context;          // "Section/Key" in UTF-8
    std::uint32_t offset = 0;
    std::string problem;          // why the text cannot be used; empty when it can
    std::string_view bytes;       // the text without its 0xFF terminator, in the image
    std::size_t room = 0;         // bytes it may grow in place
};

// Reads every entry's text; the texts' bytes stay in `image`. Room counts the free-space bytes behind the
// terminator, less one that stays free, and ends before the next entry's text.
std::vector<EntryText> LoadEntryTexts(std::string_view image, const std::vector<OffsetEntry>& entries,
                                      char freeByte, Progress& progress);

// Editor text (CR LF line breaks) and PO text (LF line breaks).
std::string ToPoText(std::string_view editorText);
std::string FromPoText(std::string_view poText);

// The bytes of a new text (without terminator), or the reason it cannot be
// written: a tag not in the vocabulary, a character the encoding turns into
// 0x00, or bytes that would not read back as the text.
struct Encoded {
    std::string bytes;
    std::string refusal;
};
Encoded EncodeForImport(std::string_view editorText, bool specialDialog);

// Free space for moved texts: the runs of the free-space byte between `begin`
// and `end` (0-based), found in one pass, less the ranges a plan takes. Each
// text is placed in the first run that has a free byte before it, room for it
// and its terminator, and a free byte behind it that stays free.
class FreeSpace {
public:
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
    };
    FreeSpace(std::string_view image, char freeByte, std::uint64_t begin, std::uint64_t end, Progress& progress);
    // Leaves out bytes that are not free after all; call once, before Allocate.
    void Exclude(std::vector<Range> taken);
    // The offset for `length` bytes (terminator included), or nothing.
    std::optional<std::uint32_t> Allocate(std::size_t length);
    // Free bytes not handed out.
    std::uint64_t Left() const { return left_; }

private:
    void Update(std::size_t run);
    std::vector<Range> runs_;
    std::vector<std::uint64_t> longest_;  // segment tree of run lengths
    std::size_t leaves_ = 1;
    std::uint64_t left_ = 0;
};

}  // namespace quillon
