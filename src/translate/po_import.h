#pragma once
// "Import Translation": the texts of a translated PO file written into the
// ROM. Planning reads everything and writes nothing; the plan is shown to the
// user, then written as one journaled write plan, all of it or none.
#include "app/progress.h"
#include "fit/fit_settings.h"
#include "store/writer.h"
#include "translate/po_export.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace quillon {

struct ImportRequest {
    std::filesystem::path rom;
    std::filesystem::path offsetFile;
    std::filesystem::path po;
    std::int32_t freeSpaceOffset = 0;  // as in settings.ini: a file position counted from 1
    fit::FitSettings fit{};            // the font of a game no search finds, the sample name
    // Each translated text is broken into lines and boxes that fit its box
    // before it is written.
    bool reflow = false;
    // A moved text's pointer is rewritten in script, table and pool places;
    // places inside program code only with rewriteCode, and a text whose
    // pointer stands in places of unknown use is refused without rewriteUnknown.
    bool rewriteCode = false;
    bool rewriteUnknown = false;
};

enum class ImportKind {
    InPlace,  // as long as before
    Shorter,  // the rest of the old text padded with 0xFF
    Grown,    // into free bytes behind it
    Moved     // to free space, every pointer rewritten
};

struct ImportChange {
    std::string context;
    ImportKind kind = ImportKind::InPlace;
    std::uint32_t offset = 0;
    std::uint32_t newOffset = 0;  // where it stands afterwards
    std::size_t oldLength = 0;
    std::size_t newLength = 0;
    std::size_t pointers = 0;     // rewritten pointers of a moved text
    int widest = 0;               // pixels of the new text's widest line over its box (0 without a font)
    int limit = 0;                // its box's width in pixels
    int linesOver = 0;            // its lines over its box
    int linesBelow = 0;           // its lines below the last its window shows
    std::size_t codeLeft = 0;     // places inside program code that hold its pointer, left alone
    std::vector<std::uint32_t> codeRewritten;  // such places rewritten all the same (rewriteCode)
    bool name = false;            // a name of fixed length, written in its field only
};

struct ImportPlan {
    std::vector<ImportChange> changes;
    std::vector<EntryProblem> refusals;
    std::size_t unchanged = 0;     // msgstr equal to the text in the ROM
    std::size_t untranslated = 0;  // empty msgstr
    std::size_t fuzzy = 0;
    std::uint64_t freeUsed = 0;    // bytes of free space the moved texts take
    std::uint64_t freeLeft = 0;
    std::size_t unknownLeft = 0;   // places of unknown use that hold a refused text's pointer
    std::string noFitCheck;        // why line widths were not measured; empty when they were
    WritePlan writes;

    std::size_t Count(ImportKind kind) const;
    bool WritesNothing() const { return writes.romWrites.empty() && !writes.offsetFile; }
};

// Throws FileError for unreadable files and PoError for a PO file that cannot
// be read or was exported from another game.
ImportPlan PlanImport(const ImportRequest& request, Progress& progress);

// The plan in words: counts per kind, free space used and left, refusals,
// and the changed texts with a line over their box.
std::string DescribePlan(const ImportPlan& plan);

// Writes the plan through CommitPlan (nothing when it writes nothing).
// Throws PlanRefused when the files changed since planning.
CommitResult ApplyImport(const ImportPlan& plan);

// The closing report: the plan's lines and what became of the write.
std::string DescribeOutcome(const ImportPlan& plan, const CommitResult& result);

}  // namespace quillon
