// Identification of the game from the cartridge header.
#include <quillon/header.h>

#include "core/file_io.h"

#include <array>
#include <utility>

namespace quillon {
namespace {

// A header field byte for byte; a file that ends early gives the bytes it has.
std::string Field(const std::filesystem::path& rom, std::uint64_t offset, std::size_t length) {
    return io::ReadAt(rom, offset, length);
}

template <std::size_t N>
std::string Lookup(const std::array<std::pair<std::string_view, std::string_view>, N>& table,
                   std::string_view key) {
    for (const auto& [k, name] : table)
        if (k == key) return std::string(name);
    return "Unknown";
}

}  // namespace

std::string GetRomName(const std::filesystem::path& rom) { return Field(rom, 0xA0, 12); }
std::string GetRomCode(const std::filesystem::path& rom) { return Field(rom, 0xAC, 4); }
std::string GetRomLanguage(const std::filesystem::path& rom) { return Field(rom, 0xAF, 1); }
std::string GetMakerCode(const std::filesystem::path& rom) { return Field(rom, 0xB0, 2); }

std::string LanguageName(std::string_view letter) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kLanguages{{
        {"J", "Japanese"}, {"E", "English"}, {"D", "German"},
        {"F", "French"},   {"I", "Italian"}, {"S", "Spanish"},
    }};
    return Lookup(kLanguages, letter);
}

std::string MakerName(std::string_view code) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 7> kMakers{{
        {"70", "Infograms"}, {"01", "Nintendo"}, {"9B", "Tecmo"},  {"B2", "Bandai"},
        {"7D", "Universal I. S."}, {"A4", "Konami"}, {"08", "Capcom"},
    }};
    return Lookup(kMakers, code);
}

}  // namespace quillon
