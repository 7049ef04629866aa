#include "translate/reflow_all.h"

#include "translate/po_export.h"

#include <atomic>
#include <chrono>

namespace quillon {
namespace {

// A file in the temporary folder, removed when it goes.
struct TemporaryFile {
    TemporaryFile() {
        static std::atomic<unsigned> count{0};
        const auto stamp = std::chrono::steady_clock::now().time_since_epoch().count();
        path = std::filesystem::temp_directory_path() /
               ("quillon-reflow-" + std::to_string(stamp) + "-" + std::to_string(count++) + ".po");
    }
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    std::filesystem::path path;
};

}  // namespace

ImportPlan PlanReflow(const ReflowRequest& request, Progress& progress) {
    // The texts as their own translation, reflowed on the way in.
    const TemporaryFile po;
    ExportPo({request.rom, request.offsetFile, po.path, request.section, true, request.fit}, progress);
    ImportRequest import{request.rom, request.offsetFile, po.path, request.freeSpaceOffset, request.fit};
    import.reflow = true;
    import.rewriteCode = request.rewriteCode;
    import.rewriteUnknown = request.rewriteUnknown;
    ImportPlan plan = PlanImport(import, progress);
    plan.writes.command = "Reflow Texts";
    plan.writes.subject = request.section.value_or("every section");
    return plan;
}

}  // namespace quillon
