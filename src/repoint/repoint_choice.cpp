#include "repoint/repoint_choice.h"

#include "app/session.h"
#include "repoint/model_cache.h"
#include "repoint/place_counts.h"
#include "repoint/rewrites.h"


namespace quillon {

bool ChooseRewrites(Session& session, std::uint32_t oldOffset, std::vector<BytesAt>& pointers) {
    const auto model = repoint::ModelOf(session.romPath);
    std::vector<game::Place> places;
    for (const BytesAt& p : pointers) places.push_back(model->Classify(static_cast<std::uint32_t>(p.offset), oldOffset));
    const repoint::Rewrites references = repoint::SelectRewrites(places, {});
    const std::size_t n = places.size() - references.rewrite.size();
    if (n == 0) return true;
    const std::size_t m = pointers.size();
    const std::string text = "This text's pointer is held by " + repoint::PlaceCounts(places) + ". " +
                             std::to_string(n) + " of these " + std::to_string(m) + " places " +
                             (n == 1 ? "is no reference" : "are no references") + " to the text. Rewrite only the " +
                             std::to_string(m - n) + " references (recommended), or all " + std::to_string(m) +
                             " as before?";
    switch (session.prompter.AskChoice(text, "Only references", "All")) {
        case Choice::First: {
            std::vector<BytesAt> kept;
            for (const game::Place& p : references.rewrite)
                for (BytesAt& b : pointers)
                    if (b.offset == p.place) kept.push_back(std::move(b));
            pointers = std::move(kept);
            return true;
        }
        case Choice::Second: return true;
        case Choice::Cancel: break;
    }
    return false;
}

}  // namespace quillon
