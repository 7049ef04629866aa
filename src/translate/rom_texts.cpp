#include "translate/rom_texts.h"
#include "core/hex_text.h"

#include "core/codec/tables.h"
#include "core/codec/text_bytes.h"
#include "store/write_plan.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <unordered_set>

namespace quillon {
namespace {

// Tags the encoder knows. Each is "[", a name without brackets, and "]", so
// the one that can start at a "[" ends at the next "]".
const std::unordered_set<std::string_view>& Vocabulary() {
    static const std::unordered_set<std::string_view> tags = [] {
        std::unordered_set<std::string_view> v = {"[.]", "[\"]", "[']"};
        for (std::string_view entry : codec::EuropeanTable())
            if (entry.size() > 2 && entry.front() == '[' && entry.back() == ']') v.insert(entry);
        for (const auto& rule : codec::EncodeRewrites()) v.insert(rule.from);
        return v;
    }();
    return tags;
}

bool IsHexDigit(char c) { return std::isxdigit(static_cast<unsigned char>(c)) != 0; }

// Length of the known tag at text[i], or 0.
std::size_t KnownTagAt(std::string_view text, std::size_t i) {
    const std::string_view rest = text.substr(i);
    if (rest.size() >= 6 && rest.starts_with("[&H") && IsHexDigit(rest[3]) && IsHexDigit(rest[4]) && rest[5] == ']')
        return 6;
    const std::size_t close = rest.find(']');
    if (close == std::string_view::npos) return 0;
    return Vocabulary().contains(rest.substr(0, close + 1)) ? close + 1 : 0;
}

// The code point at text[i] and its length; 0x110000 for a byte that does
// not begin a well-formed sequence.
std::pair<char32_t, std::size_t> CodePointAt(std::string_view s, std::size_t i) {
    const auto lead = static_cast<unsigned char>(s[i]);
    if (lead < 0x80) return {lead, 1};
    const std::size_t length = (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3 : (lead & 0xF8) == 0xF0 ? 4 : 0;
    if (length == 0 || s.size() - i < length) return {0x110000, 1};
    char32_t value = lead & (0x7F >> length);
    for (std::size_t k = 1; k < length; ++k) {
        const auto next = static_cast<unsigned char>(s[i + k]);
        if ((next & 0xC0) != 0x80) return {0x110000, 1};
        value = value << 6 | (next & 0x3Fu);
    }
    return {value, length};
}

std::string CharName(char32_t c, std::string_view utf8) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "U+%04X", static_cast<unsigned>(c));
    return "'" + std::string(utf8) + "' (" + buf + ")";
}

// Why the text holds something the encoding cannot write, or "".
std::string Unwritable(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const char c = text[i];
        if (c == '[') {
            if (const std::size_t tag = KnownTagAt(text, i)) {
                i += tag;
                continue;
            }
            const std::size_t close = text.find_first_of("[]\r", i + 1);
            if (close != std::string_view::npos && text[close] == ']' && close - i <= 16)
                return "the tag " + std::string(text.substr(i, close - i + 1)) + " is not known";
        }
        if (c == '\\' && i + 1 < text.size() && (text[i + 1] == 'c' || text[i + 1] == 'v')) {
            i += 2;
            continue;
        }
        if (c == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            i += 2;
            continue;
        }
        if (c == '\0') return "it holds a zero byte (\\0), which would end the text there";
        const auto [cp, length] = CodePointAt(text, i);
        if (cp > 0x10FFFF) return "it holds a byte that is not UTF-8";
        if (cp != U' ' && codec::EncodeChar(cp) == 0x00)
            return "the character " + CharName(cp, text.substr(i, length)) +
                   " is not in the game's table and would become a space (0x00)";
        i += length;
    }
    return {};
}

// The first position from `from` on (before `end`) whose byte is not `b`;
// eight bytes at a time, since free space runs for megabytes.
std::uint64_t RunEnd(const char* data, std::uint64_t from, std::uint64_t end, char b) {
    std::uint64_t all;
    std::memset(&all, b, sizeof all);
    for (std::uint64_t word; from + sizeof word <= end; from += sizeof word) {
        std::memcpy(&word, data + from, sizeof word);
        if (word != all) break;
    }
    while (from < end && data[from] == b) ++from;
    return from;
}

}  // namespace

std::vector<EntryText> LoadEntryTexts(std::string_view image, const std::vector<OffsetEntry>& entries,
                                      char freeByte, Progress& progress) {
    ProgressStage stage(progress, "Reading the texts", entries.size());
    std::vector<EntryText> texts(entries.size());
    std::vector<std::uint32_t> starts;
    starts.reserve(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        EntryText& t = texts[i];
        const OffsetEntry& e = entries[i];
        t.entry = &e;
        t.context = EntryContext(e);
        std::uint64_t offset = 0;
        auto [end, ec] = std::from_chars(e.value.data(), e.value.data() + e.value.size(), offset, 16);
        if (e.value.empty() || e.value.size() > 8 || ec != std::errc() || end != e.value.data() + e.value.size()) {
            t.problem = "its offset '" + Latin1ToUtf8(e.value) + "' is not a hexadecimal number";
        } else if (offset < kFirstWritableOffset) {
            t.problem = "its offset " + PlainHex(offset) + " lies in the cartridge header";
        } else if (offset >= image.size()) {
            t.problem = "its offset " + PlainHex(offset) + " lies past the end of the ROM";
        } else {
            t.offset = static_cast<std::uint32_t>(offset);
            starts.push_back(t.offset);
        }
    }
    std::sort(starts.begin(), starts.end());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (i % 1024 == 0) stage.Step(i);
        EntryText& t = texts[i];
        if (!t.problem.empty()) continue;
        const std::size_t reach = std::min<std::size_t>(image.size() - t.offset, kMaxTextBytes + 1);
        const void* end = std::memchr(image.data() + t.offset, 0xFF, reach);
        if (!end) {
            t.problem = "no end of text (FF) follows within " + std::to_string(kMaxTextBytes) + " bytes";
            continue;
        }
        const std::size_t length = static_cast<const char*>(end) - (image.data() + t.offset);
        t.bytes = image.substr(t.offset, length);
        const auto next = std::upper_bound(starts.begin(), starts.end(), t.offset);
        const std::size_t limit = next == starts.end() ? image.size() : *next;
        std::size_t free = 0;
        for (std::size_t at = t.offset + length + 1; at < limit && image[at] == freeByte && free <= kMaxTextBytes;
             ++at)
            ++free;
        t.room = free > 0 ? free - 1 : 0;
    }
    return texts;
}

std::string ToPoText(std::string_view editorText) {
    std::string out;
    out.reserve(editorText.size());
    for (std::size_t i = 0; i < editorText.size(); ++i)
        if (!(editorText[i] == '\r' && i + 1 < editorText.size() && editorText[i + 1] == '\n')) out += editorText[i];
    return out;
}

std::string FromPoText(std::string_view poText) {
    std::string out;
    out.reserve(poText.size() + poText.size() / 16);
    for (std::size_t from = 0; from < poText.size();) {
        const std::size_t lf = std::min(poText.find('\n', from), poText.size());
        out.append(poText, from, lf - from);
        if (lf == poText.size()) break;
        if (lf == 0 || poText[lf - 1] != '\r') out += '\r';
        out += '\n';
        from = lf + 1;
    }
    return out;
}

Encoded EncodeForImport(std::string_view editorText, bool specialDialog) {
    if (std::string why = Unwritable(editorText); !why.empty()) return {{}, why};
    std::string bytes = codec::EncodeBytes(editorText, specialDialog);
    if (bytes.size() > static_cast<std::size_t>(kMaxTextBytes))
        return {{}, "it is " + std::to_string(bytes.size()) + " bytes long; a text may be at most " +
                        std::to_string(kMaxTextBytes) + " bytes"};
    if (bytes.find('\xFF') != std::string::npos) return {{}, "it holds an end-of-text byte (FF) inside"};
    if (DecodeText(bytes, false) != editorText)
        return {{}, "its bytes would not read back as written (the game's table cannot reproduce it)"};
    return {std::move(bytes), {}};
}

FreeSpace::FreeSpace(std::string_view image, char freeByte, std::uint64_t begin, std::uint64_t end,
                     Progress& progress) {
    end = std::min<std::uint64_t>(end, image.size());
    ProgressStage stage(progress, "Looking for free space", end > begin ? end - begin : 0);
    const char* data = image.data();
    std::uint64_t at = begin;
    std::uint64_t nextStep = begin + (std::uint64_t{1} << 20);
    while (at < end) {
        const void* hit = std::memchr(data + at, static_cast<unsigned char>(freeByte), end - at);
        if (!hit) break;
        const std::uint64_t from = static_cast<const char*>(hit) - data;
        const std::uint64_t to = RunEnd(data, from, end, freeByte);
        if (to - from >= 3) runs_.push_back({from, to});
        at = to;
        if (at >= nextStep) {
            stage.Step(at - begin);
            nextStep = at + (std::uint64_t{1} << 20);
        }
    }
}

void FreeSpace::Exclude(std::vector<Range> taken) {
    std::sort(taken.begin(), taken.end(), [](const Range& a, const Range& b) { return a.begin < b.begin; });
    std::vector<Range> runs;
    std::size_t next = 0;  // first taken range that may still meet a run
    for (Range run : runs_) {
        while (next < taken.size() && taken[next].end <= run.begin) ++next;
        for (std::size_t k = next; k < taken.size() && taken[k].begin < run.end && run.begin < run.end; ++k) {
            if (taken[k].end <= run.begin) continue;
            if (taken[k].begin > run.begin && taken[k].begin - run.begin >= 3) runs.push_back({run.begin, taken[k].begin});
            run.begin = std::max(run.begin, taken[k].end);
        }
        if (run.begin < run.end && run.end - run.begin >= 3) runs.push_back(run);
    }
    runs_ = std::move(runs);
    while (leaves_ < runs_.size()) leaves_ *= 2;
    longest_.assign(2 * leaves_, 0);
    for (std::size_t r = 0; r < runs_.size(); ++r) {
        longest_[leaves_ + r] = runs_[r].end - runs_[r].begin;
        left_ += runs_[r].end - runs_[r].begin;
    }
    for (std::size_t n = leaves_ - 1; n >= 1; --n) longest_[n] = std::max(longest_[2 * n], longest_[2 * n + 1]);
}

void FreeSpace::Update(std::size_t run) {
    std::size_t n = leaves_ + run;
    longest_[n] = runs_[run].end - runs_[run].begin;
    for (n /= 2; n >= 1; n /= 2) longest_[n] = std::max(longest_[2 * n], longest_[2 * n + 1]);
}

std::optional<std::uint32_t> FreeSpace::Allocate(std::size_t length) {
    // A free byte before the text, the text with its terminator, a free byte behind.
    const std::uint64_t need = length + 2;
    if (runs_.empty() || longest_[1] < need) return std::nullopt;
    std::size_t n = 1;
    while (n < leaves_) n = longest_[2 * n] >= need ? 2 * n : 2 * n + 1;
    const std::size_t run = n - leaves_;
    const std::uint64_t offset = runs_[run].begin + 1;
    runs_[run].begin += length + 1;  // the byte behind becomes the next text's byte before
    left_ -= length + 1;
    Update(run);
    return static_cast<std::uint32_t>(offset);
}

}  // namespace quillon
