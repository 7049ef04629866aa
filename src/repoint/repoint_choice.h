#pragma once
// Before a repoint writes anything: when some places of the old pointer are
// no references of the game (bytes inside program code, places of unknown
// use), the user chooses whether to rewrite only the references or every
// place as before. The question names the kinds of the places.
#include "core/bytes_at.h"
#include "repoint/rewrites.h"

#include <cstdint>
#include <vector>

namespace quillon {

class Session;

// `pointers` are the rewrites of the pointer to `oldOffset`; on "Only
// references" the places that are no references are dropped. False when the
// user cancels. When every place is a reference nothing is asked.
bool ChooseRewrites(Session& session, std::uint32_t oldOffset, std::vector<BytesAt>& pointers);

// The same choice made beforehand by a caller that can't be asked (the
// command line): the references and the places `policy` names are kept.
// The other places are dropped with `leaveOthers`; without it the move is
// refused: the prompter is told why, naming the places' kinds and the options
// that decide, and the answer is false.
[[nodiscard]] bool GivenRewrites(Session& session, std::uint32_t oldOffset, std::vector<BytesAt>& pointers,
                                 repoint::RewritePolicy policy, bool leaveOthers);

}  // namespace quillon
