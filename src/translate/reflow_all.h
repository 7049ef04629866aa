#pragma once
// "Reflow": every text of an offset file (or of one section) broken into
// lines and boxes that fit its box, planned and written like an import of
// the texts themselves: in place when they keep their length, moved with
// every pointer rewritten when they grow past their room.
#include "app/progress.h"
#include "translate/po_import.h"

#include <filesystem>
#include <optional>
#include <string>

namespace quillon {

struct ReflowRequest {
    std::filesystem::path rom;
    std::filesystem::path offsetFile;
    std::optional<std::string> section;  // only this section (its name in UTF-8)
    std::int32_t freeSpaceOffset = 0;    // as in settings.ini: a file position counted from 1
    fit::FitSettings fit{};
    bool rewriteCode = false;
    bool rewriteUnknown = false;
};

// Texts that already fit stay as they are. Throws as PlanImport does, and
// std::invalid_argument for a section not in the offset file.
ImportPlan PlanReflow(const ReflowRequest& request, Progress& progress);

}  // namespace quillon
