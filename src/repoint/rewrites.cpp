#include "repoint/rewrites.h"

namespace quillon::repoint {

Rewrites SelectRewrites(const std::vector<game::Place>& places, RewritePolicy policy) {
    Rewrites r;
    for (const game::Place& p : places) {
        if (game::IsReference(p.kind)) {
            r.rewrite.push_back(p);
            ++r.references;
        } else if (p.kind == game::PlaceKind::Code) {
            (policy.code ? r.rewrite : r.code).push_back(p);
        } else {
            (policy.unknown ? r.rewrite : r.unknown).push_back(p);
        }
    }
    return r;
}

}  // namespace quillon::repoint
