#include "discover/repoint_choice.h"

#include "app/session.h"
#include "core/file_io.h"
#include "discover/references.h"

#include <algorithm>

namespace quillon {

bool ChooseRewrites(Session& session, std::vector<BytesAt>& pointers) {
    std::vector<bool> suspect;
    for (const BytesAt& p : pointers) {
        // The two bytes before the place decide whether a script command takes it.
        const std::uint64_t from = p.offset >= 2 ? p.offset - 2 : 0;
        const std::string bytes = io::ReadAt(session.romPath, from, static_cast<std::size_t>(p.offset - from) + 4);
        const auto place = static_cast<std::uint32_t>(p.offset);
        suspect.push_back(discover::ClassifyAt(bytes, p.offset - from, place).kind == discover::PlaceKind::Suspect);
    }
    const auto n = static_cast<std::size_t>(std::count(suspect.begin(), suspect.end(), true));
    if (n == 0) return true;
    const std::size_t m = pointers.size();
    const std::string text = std::to_string(n) + " of the " + std::to_string(m) +
                             " places that hold this text's pointer look like program code, not references to the "
                             "text. Rewrite only the " + std::to_string(m - n) + " references (recommended), or all " +
                             std::to_string(m) + " as before?";
    switch (session.prompter.AskChoice(text, "Only references", "All")) {
        case Choice::First: {
            std::vector<BytesAt> kept;
            for (std::size_t i = 0; i < m; ++i)
                if (!suspect[i]) kept.push_back(std::move(pointers[i]));
            pointers = std::move(kept);
            return true;
        }
        case Choice::Second: return true;
        case Choice::Cancel: break;
    }
    return false;
}

}  // namespace quillon
