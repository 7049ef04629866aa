#include "app/commit.h"

#include "app/session.h"

#include "core/file_io.h"
#include "store/journal.h"
#include "store/recovery.h"
#include "store/writer.h"

#include <quillon/errors.h>

namespace quillon {

bool RecoverJournal(Session& session) {
    Recovery r;
    try {
        r = RecoverPending(session.romPath, session.OffsetFile());
    } catch (const FileError& e) {
        r = {RecoveryOutcome::Refused, std::string("Putting the old bytes back failed: ") + e.what()};
    }
    switch (r.outcome) {
        case RecoveryOutcome::NoJournal:
        case RecoveryOutcome::Discarded:
            return true;
        case RecoveryOutcome::Restored:
            session.prompter.Message(Icon::Information, kSaveRestored);
            return true;
        case RecoveryOutcome::Refused:
            break;
    }
    session.readOnlyReason = "A save to this ROM was cut off, and its journal can't be replayed safely:\r\n" +
                             r.reason + "\r\n\r\nThe journal was kept at '" + JournalPath(session.romPath).string() +
                             "'. Quillon shows this ROM read-only. Check the ROM (or go back to your backup), then "
                             "move the journal away to edit the ROM again.";
    session.prompter.Message(Icon::Warning, session.readOnlyReason);
    return false;
}

WritePlan OffsetFilePlan(const Session& session, std::string command, std::string subject, std::string after) {
    WritePlan plan;
    plan.command = std::move(command);
    plan.subject = std::move(subject);
    plan.rom = session.romPath;
    plan.romSize = io::FileSize(session.romPath);
    plan.offsetFile = session.OffsetFile();
    std::error_code ec;
    if (std::filesystem::exists(*plan.offsetFile, ec) && !std::filesystem::is_directory(*plan.offsetFile, ec))
        plan.offsetBefore = io::ReadAll(*plan.offsetFile);
    plan.offsetAfter = std::move(after);
    return plan;
}

Committed Commit(Session& session, const WritePlan& plan, std::string_view failure) {
    const std::string head(failure);
    if (!session.readOnlyReason.empty()) {
        session.prompter.Message(Icon::Critical, head + "\r\n" + session.readOnlyReason);
        return Committed::NotWritten;
    }
    if (!RecoverJournal(session)) return Committed::NotWritten;
    CommitResult result;
    try {
        result = CommitPlan(plan);
    } catch (const ChangedOnDisk& e) {
        session.prompter.Message(Icon::Critical, head + "\r\n" + e.what() + "\r\nNothing was written.");
        return Committed::ChangedOutside;
    } catch (const PlanRefused& e) {
        session.prompter.Message(Icon::Critical, head + "\r\n" + e.what());
        return Committed::NotWritten;
    } catch (const FileError& e) {
        session.prompter.Message(Icon::Critical, head + "\r\n" + e.what() + "\r\nNothing was written.");
        return Committed::NotWritten;
    }
    switch (result.outcome) {
        case CommitOutcome::Written:
            return Committed::Written;
        case CommitOutcome::RolledBack:
            session.prompter.Message(Icon::Critical, head + "\r\n" + result.error +
                                                         "\r\n\r\nThe ROM and the offset file were left as they were.");
            return Committed::NotWritten;
        case CommitOutcome::JournalKept:
            session.prompter.Message(Icon::Critical,
                                     head + "\r\n" + result.error +
                                         "\r\n\r\nThe ROM and the offset file will be restored to their state "
                                         "before this save before anything else is written to it, or when it is opened again.");
            return Committed::NotWritten;
    }
    return Committed::NotWritten;
}

}  // namespace quillon
