#include "discover/find_texts.h"

#include "app/commit.h"
#include "app/progress.h"
#include "app/session.h"
#include "core/file_io.h"
#include "discover/offset_merge.h"
#include "edit/text_view.h"

#include <quillon/errors.h>
#include <quillon/rom.h>

#include <cstdio>

namespace quillon {
namespace {

constexpr std::size_t kSampleSize = 5;

std::string Summary(const std::vector<discover::FoundText>& found, const discover::Merge& merge) {
    std::string text = "Found " + std::to_string(found.size()) + " texts in the ROM.\r\n" +
                       std::to_string(merge.listed) + " of them are in the offset file already.";
    if (merge.added == 0) return text;
    const auto& fresh = merge.fresh;
    text += "\r\n\r\nA few of the new ones:";
    const std::size_t step = std::max<std::size_t>(1, fresh.size() / kSampleSize);
    for (std::size_t i = 0; i < fresh.size() && i / step < kSampleSize; i += step) {
        char offset[16];
        std::snprintf(offset, sizeof offset, "%06X", fresh[i]->offset);
        text += "\r\n" + std::string(offset) + "  " + fresh[i]->preview;
    }
    return text + "\r\n\r\nAdd the " + std::to_string(merge.added) + " new texts to the offset file?";
}

}  // namespace

bool FindTextsInRom(Session& session, Progress& progress) {
    if (!session.RomOpen() || session.controls.gameCode.empty()) return false;
    std::vector<discover::FoundText> found;
    std::string before;
    try {
        const std::string image = io::ReadAll(session.romPath);
        found = discover::DiscoverTexts(image, &progress);
        if (FileExists(session.OffsetFile())) before = io::ReadAll(session.OffsetFile());
    } catch (const Cancelled&) {
        return false;
    } catch (const FileError& e) {
        session.prompter.Message(Icon::Critical, std::string("The ROM could not be read:\r\n") + e.what());
        return false;
    }
    const discover::Merge merge = discover::MergeFoundTexts(before, found);
    if (merge.added == 0) {
        session.prompter.Message(Icon::Information, Summary(found, merge), kFindTextsTitle);
        return false;
    }
    if (!session.prompter.AskYesNo(Summary(found, merge), kFindTextsTitle)) return false;
    // The offset file may have been edited while the question was open: the
    // texts are merged into it as it is now, and the writer refuses, under
    // the ROM's lock, a file that changes again before the write.
    WritePlan plan = OffsetFilePlan(session, std::string(kFindTextsTitle), session.controls.gameCode, {});
    plan.offsetAfter = discover::MergeFoundTexts(plan.offsetBefore.value_or(""), found).text;
    if (plan.offsetAfter == plan.offsetBefore.value_or("")) return false;  // listed by now
    if (Commit(session, plan, "The found texts could not be added to the offset file:") != Committed::Written)
        return false;
    Tree_Load(session);
    session.Changed();
    return true;
}

void OfferFindTexts(Session& session) {
    if (!session.prompter.AskYesNo(kOfferFindTexts)) return;
    NoProgress quiet;
    FindTextsInRom(session, session.progress ? *session.progress : quiet);
}

}  // namespace quillon
