#pragma once
// Which HTTP redirects the live update follows.
#include <string_view>

namespace quillon {

// A redirect from `from` to `to` (absolute addresses) is followed when it
// leads to https, or when it stays on plain http at the same host and port.
// Anything else (another host over http, a step down from https to http,
// other schemes) is refused.
bool RedirectAllowed(std::string_view from, std::string_view to);

}  // namespace quillon
