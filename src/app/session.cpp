#include "app/session.h"

namespace quillon {

Session::Session(std::filesystem::path folder, Prompter& p) : programFolder(std::move(folder)), prompter(p) {}

void Session::Changed() const {
    for (const auto& listener : listeners_) listener();
}

}  // namespace quillon
