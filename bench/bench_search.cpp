// The search window walking a 32 MiB image with 100 matches of a 20-byte
// pattern (the first search and 100 resumes, the last finding nothing),
// against one FindBytes pass over the whole image.
#include "app/session.h"
#include "tools/search.h"

#include <quillon/core.h>

#include "ratio.h"
#include "silent_prompter.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

int main() {
    using namespace quillon;
    const auto folder = std::filesystem::temp_directory_path() / "quillon-bench-search";
    std::filesystem::create_directories(folder);
    const auto path = folder / "rom.gba";
    const std::size_t size = 32u << 20;
    const int matches = 100;
    const std::string text = "Quillon bench marker";  // 20 bytes once encoded
    const std::string pattern = HexToBytes(EncodeText(text, false));

    std::string image(size, '\0');
    std::mt19937 rng(1);
    for (char& c : image) c = static_cast<char>(rng() % 200);  // text-like bytes, no terminators
    const std::size_t spacing = size / matches;
    for (int i = 0; i < matches; ++i) image.replace(spacing * i + spacing / 2, pattern.size() + 1, pattern + "\xFF");
    {
        std::ofstream out(path, std::ios::binary);
        out.write(image.data(), static_cast<std::streamsize>(image.size()));
    }

    bench::SilentPrompter prompter;
    Session session(folder, prompter);
    session.romPath = path;
    SearchForm form(session);
    form.text1.SetText(text);
    int found = 0;
    bool exhausted = false;
    auto walk = [&] {
        found = 0;
        form.SearchText();
        while (form.command2Enabled) {
            ++found;
            form.ResumeSearch();
        }
        exhausted = form.status == "Result: Text could not be found!";
    };
    const std::string missing(pattern.size(), '\xF0');
    std::int32_t none = -1;
    auto onePass = [&] {
        std::int32_t start = 1;
        none = FindBytes(path, missing, start);
    };

    auto c = bench::Compare(walk, onePass, 7);
    bool ok = found == matches && exhausted && none == 0;
    if (!ok) std::printf("walk found %d of %d matches\n", found, matches);
    ok &= bench::Report("Search + 100 resumes, 32 MiB, 100 matches", c, 3.0);
    std::filesystem::remove_all(folder);
    return ok ? 0 : 1;
}
