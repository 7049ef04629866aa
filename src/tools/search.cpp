#include "tools/search.h"

#include "app/session.h"
#include "core/codec/text_bytes.h"
#include "core/file_io.h"
#include "core/ini_document.h"
#include "edit/add_offset_form.h"
#include "edit/tag_commands.h"
#include "edit/text_view.h"
#include "offsets/offset_file.h"

#include <quillon/codec.h>
#include <quillon/errors.h>
#include <quillon/rom.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <limits>
#include <optional>

namespace quillon {
namespace {

// How far back "Go to beginning of text*" looks for the previous terminator.
constexpr std::int16_t kBackwardReach = 500;

// A decimal whole number from 0 that fits a file position, or nothing.
std::optional<std::int32_t> Decimal(std::string_view s) {
    std::int32_t value = 0;
    auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value);
    if (s.empty() || ec != std::errc() || end != s.data() + s.size() || value < 0) return std::nullopt;
    return value;
}

std::string NotANumber(std::string_view what, std::string_view text) {
    return "Result: The " + std::string(what) + " '" + std::string(text) + "' is not a decimal number.";
}

// For each byte of the European table, the byte of the same letter in the
// other case; other bytes map to themselves.
const std::array<unsigned char, 256>& OtherCase() {
    static const std::array<unsigned char, 256> table = [] {
        std::array<unsigned char, 256> t{};
        for (int b = 0; b < 256; ++b) {
            t[b] = static_cast<unsigned char>(b);
            const std::string text = DecodeText(std::string(1, static_cast<char>(b)), false);
            if (text.size() != 1 || !std::isalpha(static_cast<unsigned char>(text[0]))) continue;
            const char flipped = std::isupper(static_cast<unsigned char>(text[0]))
                                     ? static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])))
                                     : static_cast<char>(std::toupper(static_cast<unsigned char>(text[0])));
            const std::string bytes = HexToBytes(EncodeText(std::string(1, flipped), false));
            if (bytes.size() == 1) t[b] = static_cast<unsigned char>(bytes[0]);
        }
        return t;
    }();
    return table;
}

// The first match from the 1-based position `start` with letters of either
// case, as FindBytes counts it: its 0-based offset, 0 for none.
std::int32_t FindIgnoringCase(const std::filesystem::path& rom, const std::string& pattern, std::int32_t start) {
    const std::string image = io::ReadAll(rom);
    const auto& other = OtherCase();
    auto same = [&](char a, char b) {
        return a == b || other[static_cast<unsigned char>(b)] == static_cast<unsigned char>(a);
    };
    if (start < 1 || static_cast<std::size_t>(start - 1) >= image.size()) return 0;
    auto at = std::search(image.begin() + (start - 1), image.end(), pattern.begin(), pattern.end(), same);
    return at == image.end() ? 0 : static_cast<std::int32_t>(at - image.begin());
}

std::string ReadFailed(const std::exception& e) {
    return std::string("Result: The ROM could not be read: ") + e.what();
}

}  // namespace

SearchForm::SearchForm(Session& session) : session_(session) { text1.enabled = true; }

void SearchForm::SearchText() { Find(1, "Result: Text found at Offset "); }

void SearchForm::ResumeSearch() {
    auto match = Decimal(text2);
    if (!match) {
        status = NotANumber("offset", text2);
        return;
    }
    auto length = Decimal(text4);
    if (!length) {
        status = NotANumber("text length", text4);
        return;
    }
    // 0-based: the last byte of the current text, yet never the match itself.
    std::int64_t from = std::int64_t{*match} + *length - 1;
    from = std::max(from, std::int64_t{*match} + 1);
    if (text2 == shownText2_) from = std::max(from, std::int64_t{shownMatch_} + 1);
    Find(from + 1, "Result: Found at Offset ");
}

void SearchForm::Find(std::int64_t start, std::string_view foundText) {
    try {
        std::string pattern = HexToBytes(EncodeText(text1.Text(), session_.controls.specialDialog));
        if (pattern.size() > kMaxPatternBytes) {
            status = "Result: The search text is too long (more than " + std::to_string(kMaxPatternBytes) +
                     " bytes).";
            return;
        }
        // An empty pattern would "match" wherever the search starts.
        if (pattern.empty() || start > std::numeric_limits<std::int32_t>::max()) return NotFound();
        auto from = static_cast<std::int32_t>(start);
        std::int32_t match =
            matchCase ? FindBytes(session_.romPath, pattern, from) : FindIgnoringCase(session_.romPath, pattern, from);
        if (match <= 0) return NotFound();
        ShowMatch(match, foundText);
    } catch (const FileError& e) {
        status = ReadFailed(e);
    } catch (const TypeMismatch& e) {
        status = ReadFailed(e);
    }
}

void SearchForm::ShowMatch(std::int32_t match, std::string_view foundText) {
    const auto& rom = session_.romPath;
    std::int32_t shown = match;
    if (check1) {
        std::string begin = FindByteBackward(rom, PadHex(match), kBackwardReach, "FF");
        if (begin != "0") shown = *Decimal(begin);
    }
    std::string bytes = ReadBytesUntil(rom, PadHex(shown), kMaxPreviewBytes, "FF");
    text3 = DecodeText(bytes, japaneseTable);
    text2 = std::to_string(shown);
    text4 = std::to_string(bytes.size());
    status = std::string(foundText) + text2 + " (Decimal)!";
    command2Enabled = true;
    command3Visible = true;
    shownText2_ = text2;
    shownMatch_ = match;
    FindEntry(match);
    if (!foundKey.empty()) status += " in " + foundSection + " / " + foundKey;
}

void SearchForm::FindEntry(std::int32_t match) {
    foundSection.clear();
    foundKey.clear();
    // The entry with the nearest offset at or before the match, when its
    // text (up to its terminator) reaches the match.
    try {
        const ini::IniDocument doc(io::ReadAll(session_.OffsetFile()));
        std::int64_t best = -1;
        for (const auto& section : doc.Sections()) {
            if (section.name.empty()) continue;
            for (const auto& key : doc.Keys(section)) {
                std::uint32_t value = 0;
                auto [end, ec] = std::from_chars(key.value.data(), key.value.data() + key.value.size(), value, 16);
                if (ec != std::errc() || end != key.value.data() + key.value.size() || value > std::uint32_t(match) ||
                    std::int64_t{value} <= best)
                    continue;
                best = value;
                foundSection = section.name;
                foundKey = key.name;
            }
        }
        if (best < 0) return;
        const std::string text = ReadBytesUntil(session_.romPath, PadHex(best), kMaxTextBytes, "FF");
        if (best + static_cast<std::int64_t>(text.size()) >= match) return;
    } catch (const std::exception&) {
    }
    foundSection.clear();
    foundKey.clear();
}

void SearchForm::JumpToEntry() {
    const auto& nodes = session_.tree.Nodes();
    for (std::size_t i = 0; i < nodes.size(); ++i)
        if (nodes[i].parent && nodes[i].text == foundKey && nodes[*nodes[i].parent].text == foundSection)
            return SelectNode(session_, i);
}

void SearchForm::NotFound() {
    status = "Result: Text could not be found!";
    command2Enabled = false;
    command3Visible = false;
    foundSection.clear();
    foundKey.clear();
    text2.clear();
    text3.clear();
    shownText2_.clear();
}

void SearchForm::ChooseTable(bool japanese) {
    japaneseTable = japanese;
    if (text2.empty()) return;
    command1Enabled = command2Enabled = command4Enabled = !japanese;
    auto offset = Decimal(text2);
    if (!offset) {
        status = NotANumber("offset", text2);
        return;
    }
    try {
        text3 = DecodeText(ReadBytesUntil(session_.romPath, PadHex(*offset), kMaxPreviewBytes, "FF"), japanese);
    } catch (const FileError& e) {
        status = ReadFailed(e);
    }
}

void SearchForm::WriteToIni() {
    if (text2.empty()) return;
    AddOffsetForm form(session_, text2);
    session_.prompter.ShowAddOffset(form);
}

void SearchForm::AddChar(std::string_view numba) { quillon::AddChar(text1, numba); }

void SearchForm::ClickJapaneseCell(int index) { quillon::ClickJapaneseCell(text1, index); }

}  // namespace quillon
