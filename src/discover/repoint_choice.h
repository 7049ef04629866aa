#pragma once
// Before a repoint writes anything: when some places of the old pointer look
// like program code rather than references, the user chooses whether to
// rewrite only the references or every place as before.
#include "core/bytes_at.h"

#include <vector>

namespace quillon {

class Session;

// `pointers` are the rewrites of the old pointer; on "Only references" the
// suspect ones are dropped. False when the user cancels. With no suspect
// place nothing is asked.
bool ChooseRewrites(Session& session, std::vector<BytesAt>& pointers);

}  // namespace quillon
