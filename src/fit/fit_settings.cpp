#include "fit/fit_settings.h"
#include "core/hex_text.h"

#include "app/session.h"
#include "fit/rom_fit.h"

#include <quillon/errors.h>
#include <quillon/codec.h>
#include <quillon/inifile.h>
#include <quillon/rom.h>

#include <algorithm>
#include <cstdio>

namespace quillon::fit {
namespace {

constexpr std::string_view kSection = "Fit";

std::string Read(const std::filesystem::path& file, std::string_view key) {
    cInifile ini;
    ini.SetPath(file);
    ini.SetSection(std::string(kSection));
    ini.SetKey(std::string(key));
    return ini.Value();
}

void Write(const std::filesystem::path& file, std::string_view key, std::string_view value) {
    cInifile ini;
    ini.SetPath(file);
    ini.SetSection(std::string(kSection));
    ini.SetKey(std::string(key));
    if (value.empty())
        ini.DeleteKey();
    else
        ini.SetValue(value);
}

std::optional<std::uint32_t> HexOffset(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t')) text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) text.remove_prefix(2);
    if (!IsHex(text) || text.size() > 7) return std::nullopt;
    return static_cast<std::uint32_t>(HexToLong(text));
}

}  // namespace

FitSettings ReadFitSettings(const std::filesystem::path& settingsFile, std::string_view gameCode) {
    FitSettings s;
    if (!FileExists(settingsFile)) return s;
    try {
        s.sampleName = Read(settingsFile, "SampleName");
        auto glyphs = HexOffset(Read(settingsFile, std::string(gameCode) + "Glyphs"));
        auto widths = HexOffset(Read(settingsFile, std::string(gameCode) + "Widths"));
        if (glyphs && widths) s.named = FontPlace{*glyphs, *widths};
    } catch (const std::exception&) {
        // An unreadable settings file leaves the defaults.
    }
    return s;
}

void WriteSampleName(const std::filesystem::path& settingsFile, std::string_view name) {
    Write(settingsFile, "SampleName", name);
}

void WriteNamedFont(const std::filesystem::path& settingsFile, std::string_view gameCode,
                    std::optional<FontPlace> place) {
    Write(settingsFile, std::string(gameCode) + "Glyphs", place ? PlainHex(place->glyphs) : std::string());
    Write(settingsFile, std::string(gameCode) + "Widths", place ? PlainHex(place->widths) : std::string());
}

FontResult SessionFont(const Session& session, FitSettings* settingsOut) {
    FitSettings settings = ReadFitSettings(session.SettingsFile(), session.controls.gameCode);
    FontResult result;
    if (!session.RomOpen()) {
        result.why = "no fit check: no ROM is open.";
    } else {
        try {
            result = FitOf(session.romPath, settings.named)->font;
        } catch (const std::exception& e) {
            result.why = std::string("no fit check: ") + e.what();
        }
    }
    if (settingsOut) *settingsOut = std::move(settings);
    return result;
}

MeasureOptions SessionOptions(const Session& session, const FitSettings& settings) {
    MeasureOptions options;
    options.playerName = settings.PlayerName();
    if (!session.RomOpen()) return options;
    try {
        const auto fit = FitOf(session.romPath, settings.named);
        const std::string& offset = session.controls.offsetCaption;
        const Box box = IsHex(offset) && !offset.empty() && offset.size() <= 7
                            ? fit->boxes.At(static_cast<std::uint32_t>(HexToLong(offset)))
                            : MessageBox(fit->boxes.family());
        options = OptionsFor(box, fit->boxes.family(), settings.PlayerName());
    } catch (const std::exception&) {
        // An unreadable ROM: the message box.
    }
    return options;
}

bool ConfirmFitBeforeSave(Session& session) {
    FitSettings settings;
    const FontResult font = SessionFont(session, &settings);
    if (!font.font) return true;
    const MeasureOptions options = SessionOptions(session, settings);
    const Measure m = MeasureText(session.controls.text1.Text(), session.controls.specialDialog, *font.font, options);
    if (m.overCount == 0) return true;
    int widest = 0;
    for (const Line& l : m.lines)
        if (l.over) widest = std::max(widest, l.width);
    const std::string count = m.overCount == 1 ? "One line" : std::to_string(m.overCount) + " lines";
    return session.prompter.AskYesNo(count + " of this text " + (m.overCount == 1 ? "is" : "are") + " wider than the " +
                                         std::string(options.box.name) + " (widest: " + WidthCaption(widest, m.limit) +
                                         ").\r\nThe game will not show it as you see it here.\r\n\r\n"
                                         "Do you want to save it anyway?",
                                     kTooWideTitle);
}

}  // namespace quillon::fit
