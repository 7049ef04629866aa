#include "translate/translate_commands.h"

#include "app/commit.h"
#include "app/progress.h"
#include "app/session.h"
#include "edit/free_space.h"
#include "edit/text_view.h"
#include "fit/fit_settings.h"
#include "translate/po_export.h"
#include "translate/po_import.h"

#include <quillon/rom.h>

namespace quillon {
namespace {

// The open game and its offset file, or false after saying what is missing.
bool ReadyFor(Session& session, std::string_view title) {
    if (!session.RomOpen() || session.controls.gameCode.empty()) return false;
    if (FileExists(session.OffsetFile())) return true;
    session.prompter.Message(Icon::Critical,
                             "There is no offset file for this game yet (" + session.controls.gameCode +
                                 ".ini).\r\nAdd texts to it first, or let Quillon find them: Tools, Find Texts in ROM.",
                             title);
    return false;
}

std::string FileName(const std::filesystem::path& path) {
    const std::u8string name = path.filename().u8string();
    return {name.begin(), name.end()};
}

}  // namespace

bool ExportAllTexts(Session& session, Progress& progress) {
    if (!ReadyFor(session, kExportAllTitle)) return false;
    auto po = session.prompter.SaveFile(kExportAllTitle, kPoFilter);
    if (!po) return false;
    if (!po->has_extension()) *po += ".po";  // a bare name gets the export's own extension
    ExportRequest request{session.romPath, session.OffsetFile(), *po, {}, false,
                          fit::ReadFitSettings(session.SettingsFile(), session.controls.gameCode)};
    ExportSummary summary;
    try {
        summary = ExportPo(request, progress);
    } catch (const Cancelled&) {
        return false;
    } catch (const std::exception& e) {
        session.prompter.Message(Icon::Critical, std::string("The texts could not be exported:\r\n") + e.what(),
                                 kExportAllTitle);
        return false;
    }
    std::string report = std::to_string(summary.exported) + " texts written to " + FileName(*po) + ".";
    if (summary.skipped.empty()) {
        session.prompter.Message(Icon::Information, report, kExportAllTitle);
        return true;
    }
    report += "\nSkipped (" + std::to_string(summary.skipped.size()) + "):\n";
    for (const EntryProblem& s : summary.skipped) report += "  " + s.context + ": " + s.reason + "\n";
    session.prompter.ShowReport(report, kExportAllTitle, false);
    return true;
}

bool ImportTranslation(Session& session, Progress& progress) {
    if (!ReadyFor(session, kImportTitle)) return false;
    if (!session.readOnlyReason.empty()) {
        session.prompter.Message(Icon::Critical, session.readOnlyReason, kImportTitle);
        return false;
    }
    const auto freeSpace = ReadFreeSpaceOffset(session);
    if (!freeSpace) {
        session.prompter.Message(Icon::Critical, kBadFreeSpaceOffset, kImportTitle);
        return false;
    }
    const auto po = session.prompter.OpenFile(kImportTitle, kPoFilter);
    if (!po) return false;

    ImportRequest request{session.romPath, session.OffsetFile(), *po, *freeSpace,
                          fit::ReadFitSettings(session.SettingsFile(), session.controls.gameCode)};
    ImportPlan plan;
    std::string failed;  // why the last plan could not be made
    auto planImport = [&](bool reflow) {
        request.reflow = reflow;
        try {
            plan = PlanImport(request, progress);
            failed.clear();
        } catch (const Cancelled&) {
            failed = "cancelled";
        } catch (const std::exception& e) {
            failed = e.what();
        }
    };
    planImport(false);
    if (failed == "cancelled") return false;
    if (!failed.empty()) {
        session.prompter.Message(Icon::Critical,
                                 "The translation could not be imported:\r\n" + failed + "\r\nNothing was written.",
                                 kImportTitle);
        return false;
    }
    if (plan.WritesNothing()) {
        session.prompter.ShowReport(DescribeOutcome(plan, {}), kImportTitle, false);
        return false;
    }
    // The plan with its texts reflowed to their boxes, or as translated.
    bool reflow = false;
    const bool go = session.prompter.ShowReportWithOption(
        DescribePlan(plan) + "\nWrite these changes to the ROM?", kImportTitle, kReflowOption, reflow, [&](bool on) {
            planImport(on);
            return failed.empty() ? DescribePlan(plan) + "\nWrite these changes to the ROM?"
                                  : "The translation could not be imported:\n" + failed;
        });
    if (!go || !failed.empty() || plan.WritesNothing()) return false;
    if (Commit(session, plan.writes, "The translation could not be imported:") != Committed::Written) return false;
    Tree_Load(session);  // moved texts have new offsets; the text shown is read again
    session.prompter.ShowReport(DescribeOutcome(plan, {}), kImportTitle, false);
    return true;
}

}  // namespace quillon
