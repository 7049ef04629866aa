#pragma once
// What the user sets for the fit check, kept in settings.ini, section "Fit":
//   SampleName=ASH          a sample player name for [PLAYER] (empty: a usual name, and at its longest)
//   <code>Glyphs=1FF300     the font of a game whose font no search finds, as
//   <code>Widths=207300     hex file offsets (for example BPRFGlyphs=...)
#include "fit/font.h"
#include "fit/measure.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {
class Session;
}

namespace quillon::fit {

struct FitSettings {
    std::string sampleName;           // editor text
    std::optional<FontPlace> named;   // the user's font offsets for this game

    std::optional<std::string> PlayerName() const { return SampleName(sampleName); }
};

FitSettings ReadFitSettings(const std::filesystem::path& settingsFile, std::string_view gameCode);
void WriteSampleName(const std::filesystem::path& settingsFile, std::string_view name);
// Writes (or, with nothing, removes) the user's font offsets for the game.
void WriteNamedFont(const std::filesystem::path& settingsFile, std::string_view gameCode,
                    std::optional<FontPlace> place);

// The font of the session's open ROM with the user's settings; `why` says why
// there is none.
FontResult SessionFont(const Session& session, FitSettings* settingsOut = nullptr);

// How the text the session shows is measured: the box of its context in
// the open ROM, the game's codes and the sample name.
MeasureOptions SessionOptions(const Session& session, const FitSettings& settings);

// Before a text is saved: when a line of the editor text is wider than its
// box whatever names and buffers hold, asks one Yes/No question. True when
// the save may go on (all lines fit, there is no font to check with, or the
// user says Yes).
bool ConfirmFitBeforeSave(Session& session);

inline constexpr std::string_view kTooWideTitle = "Line too wide";

}  // namespace quillon::fit
