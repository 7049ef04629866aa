#include "core/codec/tables.h"

#include <algorithm>

namespace quillon::codec {
namespace {

// The cells below are written as the characters they stand for.
static_assert(std::string_view("À") == "\xC3\x80", "source must be compiled as UTF-8");

constexpr std::string_view kNo{};               // no entry: decoded as a hex tag
constexpr std::string_view kLB = "\r\n";        // line break
constexpr std::string_view kPB = "\r\n\r\n";    // empty line
constexpr std::string_view kFC = "\\c";         // prefix, then a parameter byte
constexpr std::string_view kFD = "\\v";         // prefix, then a parameter byte
constexpr std::string_view kFF = "\\x";         // end of text

constexpr Table kEuropean = {
    /* 0_ */ " ", "À", "Á", "Â", "Ç", "È", "É", "Ê", "Ë", "Ì", kNo, "Î", "Ï", "Ò", "Ó", "Ô",
    /* 1_ */ "Æ", "Ù", "Ú", "Û", "Ñ", "ß", "à", "á", kNo, "ç", "è", "é", "ê", "ë", "ì", kNo,
    /* 2_ */ "î", "ï", "ò", "ó", "ô", "æ", "ù", "ú", "û", "ñ", "º", "ª", "·", "&", "+", kNo,
    /* 3_ */ kNo, kNo, kNo, kNo, "[Lv]", "=", ";", kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo,
    /* 4_ */ kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo,
    /* 5_ */ kNo, "¿", "¡", "[PK]", "[MN]", "[PO]", "[Ke]", "[BL]", "[OC]", "[K]", "Í", "%", "(", ")", kNo, kNo,
    /* 6_ */ kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, "â", kNo, kNo, kNo, kNo, kNo, kNo, "í",
    /* 7_ */ kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, "[U]", "[D]", "[L]", "[R]", kNo, kNo, kNo,
    /* 8_ */ kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo,
    /* 9_ */ kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo, kNo,
    /* A_ */ kNo, "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "!", "?", ".", "-", "·",
    /* B_ */ "[...]", "\"", "\"", "'", "'", "[m]", "[f]", "$", ",", "[x]", "/", "A", "B", "C", "D", "E",
    /* C_ */ "F", "G", "H", "I", "J", "K", "L", "M", "N", "O", "P", "Q", "R", "S", "T", "U",
    /* D_ */ "V", "W", "X", "Y", "Z", "a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k",
    /* E_ */ "l", "m", "n", "o", "p", "q", "r", "s", "t", "u", "v", "w", "x", "y", "z", "[>]",
    /* F_ */ ":", "Ä", "Ö", "Ü", "ä", "ö", "ü", "[u]", "[d]", "[l]", kLB, kPB, kFC, kFD, kLB, kFF,
};

// Hiragana in lower case (0x01..0x50), Katakana in upper case (0x51..0xA0).
constexpr Table kJapanese = {
    /* 0_ */ " ", "a", "i", "u", "e", "o", "ka", "ki", "ku", "ke", "ko", "sa", "shi", "su", "se", "so",
    /* 1_ */ "ta", "chi", "tsu", "te", "to", "na", "ni", "nu", "ne", "no", "ha", "hi", "fu", "he", "ho", "ma",
    /* 2_ */ "mi", "mu", "me", "mo", "ya", "yu", "yo", "ra", "ri", "ru", "re", "ro", "wa", "wo", "n", "a",
    /* 3_ */ "i", "u", "e", "o", "ya", "yu", "yo", "ga", "gi", "gu", "ge", "go", "za", "ji", "zu", "ze",
    /* 4_ */ "zo", "da", "di", "du", "de", "do", "ba", "bi", "bu", "be", "bo", "pa", "pi", "pu", "pe", "po",
    /* 5_ */ "tsu", "A", "I", "U", "E", "O", "KA", "KI", "KU", "KE", "KO", "SA", "SHI", "SU", "SE", "SO",
    /* 6_ */ "TA", "CHI", "TSU", "TE", "TO", "NA", "NI", "NU", "NE", "NO", "HA", "HI", "FU", "HE", "HO", "MA",
    /* 7_ */ "MI", "MU", "ME", "MO", "YA", "YU", "YO", "RA", "RI", "RU", "RE", "RO", "WA", "WO", "N", "a",
    /* 8_ */ "i", "u", "e", "o", "YA", "YU", "YO", "GA", "GI", "GU", "GE", "GO", "ZA", "ZI", "ZU", "ZE",
    /* 9_ */ "ZO", "DA", "DI", "DU", "DE", "DO", "BA", "BI", "BU", "BE", "BO", "PA", "PI", "PU", "PE", "PO",
    /* A_ */ "TSU", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9", "!", "?", ".", "-", "·",
    /* B_ */ "···", "[", "]", "[", "]", "[m]", "[f]", "$", ".", "[x]", "/", "A", "B", "C", "D", "E",
    /* C_ */ "F", "G", "H", "I", "J", "K", "L", "M", "N", "O", "P", "Q", "R", "S", "T", "U",
    /* D_ */ "V", "W", "X", "Y", "Z", "a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k",
    /* E_ */ "l", "m", "n", "o", "p", "q", "r", "s", "t", "u", "v", "w", "x", "y", "z", "[>]",
    /* F_ */ ":", "Ä", "Ö", "Ü", "ä", "ö", "ü", "[u]", "[d]", "[l]", kLB, kPB, kFC, kFD, kLB, kFF,
};

constexpr bool FitsDecodeBuffer(const Table& table) {
    return std::ranges::all_of(table, [](std::string_view e) { return e.size() <= kMaxEntrySize; });
}
static_assert(FitsDecodeBuffer(kEuropean) && FitsDecodeBuffer(kJapanese));

// Characters whose byte is not simply the one cell that holds them.
struct Exception {
    char32_t c;
    std::uint8_t byte;
};
constexpr std::array<Exception, 4> kEncodeExceptions = {{
    {U'\u00B7', 0xAF},  // middle dot: 0x2C and 0xAF
    {U'"', 0xB1},       // straight double quote: 0xB1 and 0xB2, alternated by the encoder
    {U'\'', 0xB4},      // apostrophe: 0xB3 and 0xB4
    {U'\n', 0xFF},      // a line feed without its CR
}};

// Code point of an entry that is exactly one ASCII or Latin-1 character, else -1.
constexpr int SingleChar(std::string_view s) {
    if (s.size() == 1) {
        return static_cast<unsigned char>(s[0]);
    }
    if (s.size() == 2 && (s[0] == '\xC2' || s[0] == '\xC3')) {
        return (static_cast<unsigned char>(s[0]) & 0x1F) << 6 | (static_cast<unsigned char>(s[1]) & 0x3F);
    }
    return -1;
}

constexpr bool IsException(int c) {
    return std::ranges::any_of(kEncodeExceptions, [c](const Exception& e) { return static_cast<int>(e.c) == c; });
}

// Every character held by more than one cell is settled by an exception.
constexpr bool AmbiguitiesAreSettled() {
    std::array<int, 256> cells{};
    for (const std::string_view entry : kEuropean) {
        if (const int c = SingleChar(entry); c >= 0) {
            ++cells[c];
        }
    }
    for (int c = 0; c < 256; ++c) {
        if (cells[c] > 1 && !IsException(c)) {
            return false;
        }
    }
    return true;
}
static_assert(AmbiguitiesAreSettled());

constexpr std::array<std::uint8_t, 256> BuildReverse() {
    std::array<std::uint8_t, 256> reverse{};
    for (int b = 0; b < 256; ++b) {
        if (const int c = SingleChar(kEuropean[b]); c >= 0) {
            reverse[c] = static_cast<std::uint8_t>(b);
        }
    }
    for (const Exception& e : kEncodeExceptions) {
        reverse[e.c] = e.byte;
    }
    return reverse;
}

constexpr std::array<Rewrite, 14> kDecodeRewrites = {{
    {"\\v[&H01]", "[PLAYER]"},
    {"\\v[&H06]", "[RIVAL]"},
    {"[PO][Ke][BL][OC][K]", "[POKéBLOCK]"},
    {"\\v[&H07]", "[VERSION]"},
    {"\\v[&H08]", "[TEAM1]"},
    {"\\v[&H09]", "[TEAM2]"},
    {"\\v[&H0A]", "[LEADER1]"},
    {"\\v[&H0B]", "[LEADER2]"},
    {"\\v[&H0C]", "[LEGEND1]"},
    {"\\v[&H0D]", "[LEGEND2]"},
    {"\\c[&H06]Á", "[SMALL]"},
    {"\\c[&H01]É", "[RED]"},
    {"\\c[&H01]Ë", "[BLUE]"},
    {"\\c[&H01]Á", "[BLACK]"},
}};

constexpr std::array<Rewrite, 15> kEncodeRewrites = {{
    {"[PLAYER]", "\\v[&H01]"},
    {"[RIVAL]", "\\v[&H06]"},
    {"[POKéBLOCK]", "[PO][Ke][BL][OC][K]"},
    {"[VERSION]", "\\v[&H07]"},
    {"[TEAM1]", "\\v[&H08]"},
    {"[TEAM2]", "\\v[&H09]"},
    {"[LEADER1]", "\\v[&H0A]"},
    {"[LEADER2]", "\\v[&H0B]"},
    {"[LEGEND1]", "\\v[&H0C]"},
    {"[LEGEND2]", "\\v[&H0D]"},
    {"[SMALL]", "\\c[&H06]Á"},
    {"[RED]", "\\c[&H01]É"},
    {"[BLUE]", "\\c[&H01]Ë"},
    {"[...]", "[&HB0]"},
    {"[BLACK]", "\\c[&H01]Á"},
}};

// Inlined comparison: most candidate positions differ in the first two bytes.
bool StartsWith(std::string_view text, std::string_view prefix) {
    if (text.size() < prefix.size()) return false;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (text[i] != prefix[i]) return false;
    }
    return true;
}

const Rewrite* MatchAt(std::string_view text, std::span<const Rewrite> rules) {
    for (const Rewrite& rule : rules) {
        if (StartsWith(text, rule.from)) {
            return &rule;
        }
    }
    return nullptr;
}

struct Match {
    std::size_t position;
    const Rewrite* rule;  // nullptr: no match from here to the end
};

// The first characters of the left-hand texts, where a match can begin.
class Starts {
public:
    explicit Starts(std::span<const Rewrite> rules) {
        for (const Rewrite& rule : rules) {
            const auto c = static_cast<unsigned char>(rule.from.front());
            count_ += is_[c] ? 0 : 1;
            is_[c] = true;
            first_ = rule.from.front();
        }
    }

    std::size_t Next(std::string_view text, std::size_t from) const {
        if (count_ == 1) {
            return std::min(text.find(first_, from), text.size());  // memchr
        }
        while (from < text.size() && !is_[static_cast<unsigned char>(text[from])]) {
            ++from;
        }
        return from;
    }

private:
    std::array<bool, 256> is_{};
    int count_ = 0;
    char first_ = 0;
};

Match FindMatch(std::string_view text, std::size_t from, const Starts& starts, std::span<const Rewrite> rules) {
    for (std::size_t i = starts.Next(text, from); i < text.size(); i = starts.Next(text, i + 1)) {
        if (const Rewrite* rule = MatchAt(text.substr(i), rules)) {
            return {i, rule};
        }
    }
    return {text.size(), nullptr};
}

}  // namespace

const Table& EuropeanTable() { return kEuropean; }
const Table& JapaneseTable() { return kJapanese; }

constexpr std::array<std::uint8_t, 256> kLatin1Bytes = BuildReverse();

std::span<const Rewrite> DecodeRewrites() { return kDecodeRewrites; }
std::span<const Rewrite> EncodeRewrites() { return kEncodeRewrites; }

std::string RewriteAll(std::string text, std::span<const Rewrite> rules) {
    const Starts starts(rules);
    Match m = FindMatch(text, 0, starts, rules);
    if (!m.rule) {
        return text;
    }
    std::string out;
    out.reserve(text.size() + text.size() / 8 + 16);
    std::size_t copied = 0;
    for (; m.rule; m = FindMatch(text, copied, starts, rules)) {
        out.append(text, copied, m.position - copied);
        out.append(m.rule->to);
        copied = m.position + m.rule->from.size();
    }
    out.append(text, copied);
    return out;
}

}  // namespace quillon::codec
