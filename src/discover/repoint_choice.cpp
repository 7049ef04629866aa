#include "discover/repoint_choice.h"

#include "app/session.h"
#include "discover/model_cache.h"
#include "discover/place_counts.h"

#include <algorithm>

namespace quillon {

bool ChooseRewrites(Session& session, std::uint32_t oldOffset, std::vector<BytesAt>& pointers) {
    const auto model = discover::ModelOf(session.romPath);
    std::vector<game::Place> places;
    for (const BytesAt& p : pointers) places.push_back(model->Classify(static_cast<std::uint32_t>(p.offset), oldOffset));
    const auto n = static_cast<std::size_t>(
        std::count_if(places.begin(), places.end(), [](const game::Place& p) { return !game::IsReference(p.kind); }));
    if (n == 0) return true;
    const std::size_t m = pointers.size();
    const std::string text = "This text's pointer is held by " + discover::PlaceCounts(places) + ". " +
                             std::to_string(n) + " of these " + std::to_string(m) + " places " +
                             (n == 1 ? "is no reference" : "are no references") + " to the text. Rewrite only the " +
                             std::to_string(m - n) + " references (recommended), or all " + std::to_string(m) +
                             " as before?";
    switch (session.prompter.AskChoice(text, "Only references", "All")) {
        case Choice::First: {
            std::vector<BytesAt> kept;
            for (std::size_t i = 0; i < m; ++i)
                if (game::IsReference(places[i].kind)) kept.push_back(std::move(pointers[i]));
            pointers = std::move(kept);
            return true;
        }
        case Choice::Second: return true;
        case Choice::Cancel: break;
    }
    return false;
}

}  // namespace quillon
