// Feeds arbitrary bytes to the INI reader as a file: lists every section and
// its keys, reads every value, then adds a key and deletes it again and checks
// that the rest of the file came through unchanged.
#include <quillon/inifile.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "scratch_folder.h"

namespace {

void Check(bool ok, const char* what) {
    if (!ok) {
        std::fprintf(stderr, "check failed: %s\n", what);
        std::abort();
    }
}

std::string ReadBack(const std::filesystem::path& path) {
    std::string bytes;
    if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
        char buf[4096];
        std::size_t got;
        while ((got = std::fread(buf, 1, sizeof buf, f)) > 0) bytes.append(buf, got);
        std::fclose(f);
    }
    return bytes;
}

bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto fold = [](char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c + 32) : c; };
        if (fold(a[i]) != fold(b[i])) return false;
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static ScratchFolder folder("ini");
    const std::filesystem::path file = folder.path / "f.ini";
    const std::string original(reinterpret_cast<const char*>(data), size);
    {
        std::FILE* f = std::fopen(file.c_str(), "wb");
        if (!f) return 0;
        std::fwrite(original.data(), 1, original.size(), f);
        std::fclose(f);
    }

    quillon::cInifile ini;
    ini.SetPath(file);
    Check(ini.Sections().size() <= 8190, "section list within its buffer");
    std::vector<std::string> sections, keys;
    std::int32_t count = -1;
    ini.EnumerateAllSections(sections, count);
    Check(count == static_cast<std::int32_t>(sections.size()), "section count");
    for (const auto& section : sections) {
        Check(!section.empty(), "no empty section name");
        ini.SetSection(section);
        Check(ini.INISection().size() <= 8190, "key list within its buffer");
        ini.EnumerateCurrentSection(keys, count);
        Check(count == static_cast<std::int32_t>(keys.size()), "key count");
        for (const auto& key : keys) {
            ini.SetKey(key);
            Check(ini.Value().size() <= 254, "value within its buffer");
        }
    }
    ini.CLngDefault(original.substr(0, 32), 7);

    // The round trip needs complete lists to pick a key that is not there.
    if (size > 4000) return 0;
    ini.SetSection("fuzz");
    std::vector<std::string> before;
    ini.EnumerateCurrentSection(before, count);
    std::string key;
    for (int i = 0; key.empty() && i < 100; ++i) {
        std::string candidate = "k" + std::to_string(i);
        bool taken = false;
        for (const auto& k : before) taken = taken || SameName(k, candidate);
        if (!taken) key = candidate;
    }
    if (key.empty()) return 0;

    ini.SetKey(key);
    ini.SetValue("v");
    Check(ini.Success(), "value written");
    Check(ini.Value() == "v", "value read back");
    ini.DeleteKey();
    Check(ini.Success(), "key deleted");
    std::vector<std::string> after;
    ini.EnumerateCurrentSection(after, count);
    Check(after == before, "key list as before");

    // Only a line end after an unfinished last line, and a new empty section
    // when there was none of that name, may remain.
    const bool unfinished = !original.empty() && original.back() != '\n' && original != "\xEF\xBB\xBF";
    const std::string now = ReadBack(file);
    bool expected = now == original || now == original + "[fuzz]\r\n";
    if (unfinished) expected = expected || now == original + "\r\n" || now == original + "\r\n[fuzz]\r\n";
    Check(expected, "other lines unchanged");
    if (original.find('\0') == std::string::npos) {
        // Without 0x00 bytes the section list tells whether the section was there.
        bool existed = false;
        for (const auto& s : sections) existed = existed || SameName(s, "fuzz");
        Check(existed == (now.size() - original.size() <= 2), "section added only when missing");
    }
    return 0;
}
