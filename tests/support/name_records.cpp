#include "support/name_records.h"

namespace quillon::test {

std::string MadeUpName(std::uint32_t i, std::uint32_t letters) {
    static constexpr char kConsonants[] = "BDGKLMNPRSTVZ", kVowels[] = "AEIOU";
    std::string name;
    // The first two syllables spell the number; more follow up to a length of its own.
    const std::uint32_t want = 4 + i % (letters - 3);
    for (std::uint32_t n = i, k = 0; name.size() < want; ++k, n /= 65) {
        name += kConsonants[n % 13];
        if (name.size() < want) name += kVowels[(n / 13) % 5];
        if (k == 1) n = i * 31 + 7;
    }
    for (char& c : name) c = static_cast<char>(0xBB + (c - 'A'));  // A..Z in the game's table
    return name;
}

std::string NameRecords(const NameSpec& spec) {
    std::string out;
    for (std::uint32_t i = 0; i < spec.count; ++i) {
        std::string record = MadeUpName(i, spec.length - 1) + '\xFF';
        record.resize(spec.length, spec.padding);
        record.resize(spec.stride, '\0');
        out += record;
    }
    return out;
}

}  // namespace quillon::test
