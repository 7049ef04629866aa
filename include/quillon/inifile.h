#pragma once
// INI file access: one instance is pointed at a file, section and key, then
// reads or writes. Nothing is cached; every call goes to the file. Names and
// values are the file's bytes as they stand.
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

class cInifile {
public:
    void SetPath(std::filesystem::path);   const std::filesystem::path& Path() const;
    void SetSection(std::string);          const std::string& Section() const;
    void SetKey(std::string);              const std::string& Key() const;
    void SetDefault(std::string);          const std::string& Default() const;
    std::string Value() const;             void SetValue(std::string_view value);
    void DeleteKey();                      void DeleteSection();
    std::string INISection() const;        std::string Sections() const;
    void EnumerateCurrentSection(std::vector<std::string>& keys, std::int32_t& count) const;
    void EnumerateAllSections(std::vector<std::string>& sections, std::int32_t& count) const;
    std::int32_t CLngDefault(std::string_view s, std::int32_t fallback = 0) const;
    std::int32_t LastReturnCode() const;   bool Success() const;

private:
    std::filesystem::path path_;
    std::string section_;
    std::string key_;
    std::string default_;
    std::int32_t lastReturnCode_ = 0;
};

}  // namespace quillon
