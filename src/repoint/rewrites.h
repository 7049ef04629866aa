#pragma once
// Which places a move of a text rewrites, the same for every command that
// moves one (a save, a translation import): every reference of the game
// (script, table and pool places); bytes inside program code that only look
// like the pointer, and places of unknown use, only when the user says so.
#include "game/game_model.h"

#include <cstdint>
#include <vector>

namespace quillon::repoint {

struct RewritePolicy {
    bool code = false;     // rewrite places inside program code too
    bool unknown = false;  // rewrite places of unknown use too
};

struct Rewrites {
    std::vector<game::Place> rewrite;  // the places to rewrite, in file order
    std::vector<game::Place> code;     // places inside program code left alone
    std::vector<game::Place> unknown;  // places of unknown use left alone
    std::size_t references = 0;        // script, table and pool places among them
};

[[nodiscard]] Rewrites SelectRewrites(const std::vector<game::Place>& places, RewritePolicy policy);

}  // namespace quillon::repoint
