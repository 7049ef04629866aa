#include "overview/all_texts.h"

#include "app/session.h"
#include "core/file_io.h"
#include "repoint/model_cache.h"
#include "edit/free_space.h"
#include "fit/boxes.h"
#include "fit/fit_settings.h"
#include "game/game_model.h"
#include "game/pointer_index.h"
#include "offsets/offset_names.h"
#include "translate/rom_texts.h"

#include <quillon/codec.h>

#include <algorithm>
#include <charconv>
#include <unordered_map>

namespace quillon::overview {
namespace {

constexpr std::string_view kKindNames[kPlaceKinds] = {"script", "table", "pool", "code", "unknown"};

// Over its box whatever names and buffers hold, over only with them at
// their longest, or neither.
Finding FindingOf(std::string_view bytes, const fit::Font& font, const fit::MeasureOptions& options) {
    const fit::Measure m = fit::MeasureBytes(bytes, font, options);
    return m.overCount > 0 ? Finding::Over : m.namesCount > 0 ? Finding::Names : Finding::None;
}

// "0x" in front of a typed word is the offset's, not the text's.
std::string_view WithoutHexPrefix(std::string_view word) {
    return word.size() > 2 && word[0] == '0' && word[1] == 'x' ? word.substr(2) : word;
}

int CompareFolded(std::string_view a, std::string_view b) {
    const std::size_t n = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < n; ++i) {
        auto x = static_cast<unsigned char>(a[i]), y = static_cast<unsigned char>(b[i]);
        if (x >= 'A' && x <= 'Z') x = static_cast<unsigned char>(x + 32);
        if (y >= 'A' && y <= 'Z') y = static_cast<unsigned char>(y + 32);
        if (x != y) return x < y ? -1 : 1;
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

}  // namespace

std::string_view FindingName(Finding finding) {
    switch (finding) {
        case Finding::Over: return "over";
        case Finding::Names: return "names";
        case Finding::None: break;
    }
    return "";
}

int Row::References() const {
    return places[static_cast<std::size_t>(game::PlaceKind::Script)] +
           places[static_cast<std::size_t>(game::PlaceKind::Table)] +
           places[static_cast<std::size_t>(game::PlaceKind::Pool)];
}

std::string Row::PlacesCaption() const {
    std::string out;
    for (std::size_t k = 0; k < kPlaceKinds; ++k)
        if (places[k]) out += (out.empty() ? "" : ", ") + std::to_string(places[k]) + " " + std::string(kKindNames[k]);
    return out.empty() ? "none" : out;
}

std::string Folded(std::string_view utf8) {
    std::string out(utf8);
    for (std::size_t i = 0; i < out.size(); ++i) {
        auto& c = reinterpret_cast<unsigned char&>(out[i]);
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<unsigned char>(c + 32);
        } else if (c == 0xC3 && i + 1 < out.size()) {
            // U+00C0-U+00DE are the capitals of U+00E0-U+00FE, except U+00D7 (x).
            auto& next = reinterpret_cast<unsigned char&>(out[++i]);
            if (next >= 0x80 && next <= 0x9E && next != 0x97) next = static_cast<unsigned char>(next + 32);
        }
    }
    return out;
}

AllTexts AllTexts::Build(const Sources& s) {
    AllTexts all;
    const TreeModel& tree = *s.tree;
    const auto& nodes = tree.Nodes();
    std::vector<OffsetEntry> entries;
    entries.reserve(nodes.size());
    std::unordered_map<std::size_t, std::size_t> sectionIndex;  // section node -> index in sections_
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (!nodes[i].parent) continue;
        const std::size_t up = *nodes[i].parent;
        if (sectionIndex.emplace(up, all.sections_.size()).second)
            all.sections_.push_back(ReadableName(nodes[up].text));
        entries.push_back({nodes[up].text, nodes[i].text, std::string(tree.OffsetOf(i)), 0, std::nullopt});
        Row row;
        row.node = i;
        row.section = all.sections_[sectionIndex[up]];
        row.name = ReadableName(nodes[i].text);
        row.offset = std::string(tree.OffsetOf(i));
        all.rows_.push_back(std::move(row));
    }
    NoProgress quiet;
    const std::vector<EntryText> texts = LoadEntryTexts(s.image, entries, s.freeByte, quiet);

    all.hay_.reserve(all.rows_.size() + 1);
    for (std::size_t r = 0; r < all.rows_.size(); ++r) {
        Row& row = all.rows_[r];
        const EntryText& t = texts[r];
        std::string text;
        if (!t.problem.empty()) {
            row.problem = t.problem;
            std::uint32_t at = 0;  // an offset past the end still names a place
            const auto [end, ec] = std::from_chars(row.offset.data(), row.offset.data() + row.offset.size(), at, 16);
            if (ec == std::errc() && end == row.offset.data() + row.offset.size()) row.at = at;
        } else {
            row.at = t.offset;
            row.bytes = static_cast<std::uint32_t>(t.bytes.size());
            row.room = static_cast<std::uint32_t>(t.room);
            text = DecodeText(t.bytes, false);
            row.firstLine = text.substr(0, text.find("\r\n"));
            if (s.game)
                for (const game::Place& p : s.game->ReferencesTo(t.offset)) {
                    auto& n = row.places[static_cast<std::size_t>(p.kind)];
                    if (n < UINT16_MAX) ++n;
                }
            if (s.font) {
                fit::MeasureOptions options = s.measure;
                if (s.boxes) options = fit::OptionsFor(s.boxes->At(t.offset), s.boxes->family(), s.measure.playerName);
                row.finding = FindingOf(t.bytes, *s.font, options);
            }
        }
        std::replace(text.begin(), text.end(), '\r', ' ');
        std::replace(text.begin(), text.end(), '\n', ' ');
        all.hay_.push_back(static_cast<std::uint32_t>(all.haystack_.size()));
        all.haystack_ += Folded(row.section + '\n' + row.name + '\n' + row.offset + '\n' + text);
        all.haystack_ += '\0';
    }
    all.hay_.push_back(static_cast<std::uint32_t>(all.haystack_.size()));
    return all;
}

std::vector<std::uint32_t> AllTexts::Filter(const Query& query) const {
    std::vector<std::string> words;
    const std::string folded = Folded(query.words);
    for (std::size_t at = 0; at < folded.size();) {
        const std::size_t end = std::min(folded.find(' ', at), folded.size());
        if (end > at) words.emplace_back(WithoutHexPrefix(std::string_view(folded).substr(at, end - at)));
        at = end + 1;
    }
    const bool anySection = query.section.empty();
    std::vector<std::uint32_t> kept;
    kept.reserve(rows_.size());
    for (std::uint32_t r = 0; r < rows_.size(); ++r) {
        const Row& row = rows_[r];
        if (!anySection && row.section != query.section) continue;
        const Finding f = row.finding;
        if ((query.finding == FindingFilter::Over && f != Finding::Over) ||
            (query.finding == FindingFilter::Names && f != Finding::Names) ||
            (query.finding == FindingFilter::Either && f == Finding::None))
            continue;
        const std::string_view hay = std::string_view(haystack_).substr(hay_[r], hay_[r + 1] - hay_[r]);
        if (std::all_of(words.begin(), words.end(), [&](const std::string& w) { return hay.find(w) != hay.npos; }))
            kept.push_back(r);
    }
    return kept;
}

void AllTexts::Sort(std::vector<std::uint32_t>& rows, Column column, bool descending,
                    const std::vector<bool>& drafts) const {
    auto draft = [&](std::uint32_t r) { return r < drafts.size() && drafts[r]; };
    // Negative: a before b.
    auto compare = [&](std::uint32_t a, std::uint32_t b) -> int {
        const Row &x = rows_[a], &y = rows_[b];
        auto three = [](auto u, auto v) { return u < v ? -1 : v < u ? 1 : 0; };
        switch (column) {
            case Column::File: return 0;
            case Column::Section: return CompareFolded(x.section, y.section);
            case Column::Name: return CompareFolded(x.name, y.name);
            case Column::Offset: return three(x.at, y.at);
            case Column::FirstLine: return CompareFolded(x.firstLine, y.firstLine);
            case Column::Bytes: return three(x.bytes, y.bytes);
            case Column::Room: return three(x.room, y.room);
            case Column::References: return three(x.References(), y.References());
            case Column::Fit: return three(x.finding, y.finding);
            case Column::Draft: return three(draft(a), draft(b));
        }
        return 0;
    };
    std::stable_sort(rows.begin(), rows.end(), [&](std::uint32_t a, std::uint32_t b) {
        const int c = compare(a, b);
        if (c != 0) return descending ? c > 0 : c < 0;
        return a < b;
    });
}

AllTexts BuildFor(const Session& session) {
    const io::FileCopy rom(session.romPath);
    std::shared_ptr<const game::GameModel> game;
    try {
        game = repoint::ModelOf(session.romPath);
    } catch (const std::exception&) {
        // Without a model the places go uncounted; the rest still shows.
    }
    const fit::FitSettings settings = fit::ReadFitSettings(session.SettingsFile(), session.controls.gameCode);
    const fit::FontResult font =
        game ? fit::LocateFont(rom.View(), settings.named, game->Pointers()) : fit::LocateFont(rom.View(), settings.named);
    const fit::TextBoxes boxes = game ? fit::TextBoxes::Read(rom.View(), *game, false, font.font ? &*font.font : nullptr)
                                    : fit::TextBoxes();
    fit::MeasureOptions measure;
    measure.playerName = settings.PlayerName();
    Sources sources{rom.View(), &session.tree, game.get(), font.font ? &*font.font : nullptr, measure,
                    FreeRun(session.controls.gameCode, 1)[0]};
    sources.boxes = &boxes;
    return AllTexts::Build(sources);
}

}  // namespace quillon::overview
