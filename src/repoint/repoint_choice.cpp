#include "repoint/repoint_choice.h"

#include "app/session.h"
#include "repoint/model_cache.h"
#include "repoint/place_counts.h"

namespace quillon {
namespace {

std::vector<game::Place> Classify(const Session& session, std::uint32_t oldOffset, const std::vector<BytesAt>& pointers) {
    const auto model = repoint::ModelOf(session.romPath);
    std::vector<game::Place> places;
    for (const BytesAt& p : pointers) places.push_back(model->Classify(static_cast<std::uint32_t>(p.offset), oldOffset));
    return places;
}

// Drops the pointers at places other than `kept`.
void KeepOnly(std::vector<BytesAt>& pointers, const std::vector<game::Place>& kept) {
    std::vector<BytesAt> out;
    for (const game::Place& p : kept)
        for (BytesAt& b : pointers)
            if (b.offset == p.place) out.push_back(std::move(b));
    pointers = std::move(out);
}

std::string NoReferences(const std::vector<game::Place>& places, std::size_t n) {
    return "This text's pointer is held by " + repoint::PlaceCounts(places) + ". " + std::to_string(n) + " of these " +
           std::to_string(places.size()) + " places " + (n == 1 ? "is no reference" : "are no references") +
           " to the text.";
}

}  // namespace

bool ChooseRewrites(Session& session, std::uint32_t oldOffset, std::vector<BytesAt>& pointers) {
    const std::vector<game::Place> places = Classify(session, oldOffset, pointers);
    const repoint::Rewrites references = repoint::SelectRewrites(places, {});
    const std::size_t n = places.size() - references.rewrite.size();
    if (n == 0) return true;
    const std::size_t m = pointers.size();
    const std::string text = NoReferences(places, n) + " Rewrite only the " + std::to_string(m - n) +
                             " references (recommended), or all " + std::to_string(m) + " as before?";
    switch (session.prompter.AskChoice(text, "Only references", "All")) {
        case Choice::First:
            KeepOnly(pointers, references.rewrite);
            return true;
        case Choice::Second: return true;
        case Choice::Cancel: break;
    }
    return false;
}

bool GivenRewrites(Session& session, std::uint32_t oldOffset, std::vector<BytesAt>& pointers,
                   repoint::RewritePolicy policy, bool leaveOthers) {
    const std::vector<game::Place> places = Classify(session, oldOffset, pointers);
    const repoint::Rewrites chosen = repoint::SelectRewrites(places, policy);
    if (!leaveOthers && (!chosen.code.empty() || !chosen.unknown.empty())) {
        std::string text = NoReferences(places, places.size() - chosen.references) + " Nothing was written.";
        if (!chosen.code.empty()) text += " --rewrite-code rewrites the places inside program code too;";
        if (!chosen.unknown.empty()) text += " --rewrite-unknown rewrites the places of unknown use too;";
        text += " --only-references leaves the places that are no references alone (recommended).";
        session.prompter.Message(Icon::Critical, text);
        return false;
    }
    KeepOnly(pointers, chosen.rewrite);
    return true;
}

}  // namespace quillon
