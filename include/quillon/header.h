#pragma once
// Fields of the cartridge header, each byte one character, nothing trimmed.
#include <filesystem>
#include <string>
#include <string_view>

namespace quillon {

std::string GetRomName(const std::filesystem::path& rom);      // 12 bytes at 0xA0
std::string GetRomCode(const std::filesystem::path& rom);      // 4 bytes at 0xAC
std::string GetRomLanguage(const std::filesystem::path& rom);  // 1 byte at 0xAF
std::string GetMakerCode(const std::filesystem::path& rom);    // 2 bytes at 0xB0
std::string LanguageName(std::string_view letter);
std::string MakerName(std::string_view code);

}  // namespace quillon
