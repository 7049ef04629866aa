// Scores discovery and the classing of pointer places on generated 16 MiB
// images whose texts and pointers are known, prints the figures and fails
// when one misses its goal (bench_discover times it). Usage: discover_figures [SEED...]
#include "discover/discover.h"
#include "support/text_rom.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <vector>

using namespace quillon;
using discover::PlaceKind;

int main(int argc, char** argv) {
    std::vector<std::uint32_t> seeds;
    for (int i = 1; i < argc; ++i) seeds.push_back(static_cast<std::uint32_t>(std::strtoul(argv[i], nullptr, 10)));
    if (seeds.empty()) seeds = {1, 2};
    std::size_t referenced = 0, found = 0, reported = 0, real = 0, refs = 0, refsSuspect = 0, code = 0,
                codeSuspect = 0, codeAligned = 0;
    bool agree = true;
    for (std::uint32_t seed : seeds) {
        const test::TextRom rom = test::GenerateTextRom(seed);
        std::set<std::uint32_t> starts, wanted;
        for (const auto& t : rom.texts) {
            starts.insert(t.offset);
            if (t.referenced) wanted.insert(t.offset);
        }
        const auto texts = discover::DiscoverTexts(rom.image);
        referenced += wanted.size();
        reported += texts.size();
        for (const auto& f : texts) {
            real += starts.count(f.offset);
            found += wanted.count(f.offset);
        }
        // The class of every planted pointer's place.
        std::map<std::uint32_t, std::map<std::uint32_t, PlaceKind>> kinds;  // target -> place -> kind
        for (const auto& p : rom.pointers) {
            const PlaceKind kind = kinds[p.target][p.place] = discover::ClassifyPlace(rom.image, p.place).kind;
            const bool suspect = kind == PlaceKind::Suspect;
            if (p.kind == test::Planted::CodeAligned) ++codeAligned;
            else if (p.kind == test::Planted::CodeUnaligned) ++code, codeSuspect += suspect;
            else ++refs, refsSuspect += suspect;
        }
        // References of single offsets, as the windows ask for them, find the
        // same places with the same classes (every 97th target: each is a full pass).
        std::size_t n = 0;
        for (auto it = kinds.begin(); it != kinds.end() && n < 30 * 97; ++it, ++n) {
            if (n % 97) continue;
            std::map<std::uint32_t, PlaceKind> seen;
            for (const auto& r : discover::FindReferences(rom.image, it->first)) seen[r.place] = r.kind;
            for (const auto& [place, kind] : it->second) agree = agree && seen.count(place) && seen[place] == kind;
        }
    }
    auto percent = [](std::size_t part, std::size_t whole) { return whole ? 100.0 * part / whole : 0; };
    const double recall = percent(found, referenced), precision = percent(real, reported);
    const double suspect = percent(codeSuspect, code), falseSuspect = percent(refsSuspect, refs);
    std::printf("Generated 16 MiB images: %zu\n", seeds.size());
    std::printf("Discovery recall     %6.2f %%  (%zu of %zu referenced texts found; goal >= 97 %%)\n", recall, found,
                referenced);
    std::printf("Discovery precision  %6.2f %%  (%zu of %zu reported are texts; goal >= 97 %%)\n", precision, real,
                reported);
    std::printf("Code places suspect  %6.2f %%  (%zu of %zu unaligned copies in code; goal >= 95 %%)\n", suspect,
                codeSuspect, code);
    std::printf("References suspect   %6.2f %%  (%zu of %zu table, script and pool pointers; goal <= 1 %%)\n",
                falseSuspect, refsSuspect, refs);
    std::printf("Aligned copies in code, classed aligned data by rule: %zu\n", codeAligned);
    if (!agree) std::printf("References of single offsets disagree with the classes above\n");
    const bool ok = agree && recall >= 97 && precision >= 97 && suspect >= 95 && falseSuspect <= 1;
    std::printf("%s\n", ok ? "All goals met." : "GOAL MISSED");
    return ok ? 0 : 1;
}
