// Scores discovery and the classing of pointer places on generated 16 MiB
// images whose texts and pointers are known, prints the figures and fails
// when one misses its goal. Usage: discover_figures [SEED...]
#include "discover/discover.h"
#include "support/text_rom.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using namespace quillon;

struct Tally {
    std::size_t referenced = 0, referencedFound = 0, reported = 0, reportedReal = 0;
    std::size_t realRefs = 0, realSuspect = 0, codeUnaligned = 0, codeSuspect = 0, codeAligned = 0;
    double seconds = 0;
    bool referencesAgree = true;
};

void Score(std::uint32_t seed, Tally& t) {
    const test::TextRom rom = test::GenerateTextRom(seed);
    std::set<std::uint32_t> starts, referenced;
    for (const auto& text : rom.texts) {
        starts.insert(text.offset);
        if (text.referenced) referenced.insert(text.offset);
    }
    const auto begin = std::chrono::steady_clock::now();
    const auto found = discover::DiscoverTexts(rom.image);
    t.seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    t.referenced += referenced.size();
    for (const auto& f : found) {
        ++t.reported;
        t.reportedReal += starts.count(f.offset);
        t.referencedFound += referenced.count(f.offset);
    }

    // The class of every planted pointer's place.
    std::map<std::uint32_t, std::map<std::uint32_t, discover::PlaceKind>> kinds;  // target -> place -> kind
    for (const auto& p : rom.pointers) {
        const discover::PlaceKind kind = discover::ClassifyPlace(rom.image, p.place).kind;
        kinds[p.target][p.place] = kind;
        const bool suspect = kind == discover::PlaceKind::Suspect;
        switch (p.kind) {
            case test::Planted::CodeUnaligned:
                ++t.codeUnaligned;
                t.codeSuspect += suspect;
                break;
            case test::Planted::CodeAligned: ++t.codeAligned; break;
            default:
                ++t.realRefs;
                t.realSuspect += suspect;
        }
    }
    // References of single offsets, as the windows ask for them, find the
    // same places with the same classes (a sample: each is a full pass).
    std::size_t n = 0;
    for (auto it = kinds.begin(); it != kinds.end() && n < 30; std::advance(it, std::min<std::size_t>(97, std::distance(it, kinds.end()))), ++n) {
        std::map<std::uint32_t, discover::PlaceKind> seen;
        for (const auto& r : discover::FindReferences(rom.image, it->first)) seen[r.place] = r.kind;
        for (const auto& [place, kind] : it->second)
            if (!seen.count(place) || seen[place] != kind) t.referencesAgree = false;
    }
}

double Percent(std::size_t part, std::size_t whole) { return whole ? 100.0 * part / whole : 0; }

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::uint32_t> seeds;
    for (int i = 1; i < argc; ++i) seeds.push_back(static_cast<std::uint32_t>(std::strtoul(argv[i], nullptr, 10)));
    if (seeds.empty()) seeds = {1, 2};
    Tally t;
    for (std::uint32_t seed : seeds) Score(seed, t);

    const double recall = Percent(t.referencedFound, t.referenced);
    const double precision = Percent(t.reportedReal, t.reported);
    const double suspect = Percent(t.codeSuspect, t.codeUnaligned);
    const double falseSuspect = Percent(t.realSuspect, t.realRefs);
    std::printf("Generated 16 MiB images: %zu (seeds", seeds.size());
    for (auto s : seeds) std::printf(" %u", s);
    std::printf(")\n");
    std::printf("Discovery recall     %6.2f %%  (%zu of %zu referenced texts found; goal >= 97 %%)\n", recall,
                t.referencedFound, t.referenced);
    std::printf("Discovery precision  %6.2f %%  (%zu of %zu reported are texts; goal >= 97 %%)\n", precision,
                t.reportedReal, t.reported);
    std::printf("Code places suspect  %6.2f %%  (%zu of %zu unaligned copies in code; goal >= 95 %%)\n", suspect,
                t.codeSuspect, t.codeUnaligned);
    std::printf("References suspect   %6.2f %%  (%zu of %zu table, script and pool pointers; goal <= 1 %%)\n",
                falseSuspect, t.realSuspect, t.realRefs);
    std::printf("Aligned copies in code, classed aligned data by rule: %zu\n", t.codeAligned);
    std::printf("Discovery time       %6.1f ms per image\n", 1000 * t.seconds / seeds.size());
    if (!t.referencesAgree) std::printf("References of single offsets disagree with the classes above\n");
    const bool ok = t.referencesAgree && recall >= 97 && precision >= 97 && suspect >= 95 && falseSuspect <= 1;
    std::printf("%s\n", ok ? "All goals met." : "GOAL MISSED");
    return ok ? 0 : 1;
}
