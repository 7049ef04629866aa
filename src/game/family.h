#pragma once
// The three families of Gen-3 games. They share one event-script language
// and one map structure, with differences in the commands each added and in
// the layout of some records.
#include <optional>
#include <string_view>

namespace quillon::game {

enum class Family {
    RubySapphire,      // AXV*, AXP*
    FireRedLeafGreen,  // BPR*, BPG*
    Emerald            // BPE*
};

// The family that a cartridge's game code names, when it names one.
[[nodiscard]] inline std::optional<Family> FamilyOfCode(std::string_view gameCode) {
    const std::string_view stem = gameCode.substr(0, 3);
    if (stem == "AXV" || stem == "AXP") return Family::RubySapphire;
    if (stem == "BPR" || stem == "BPG") return Family::FireRedLeafGreen;
    if (stem == "BPE") return Family::Emerald;
    return std::nullopt;
}

}  // namespace quillon::game
