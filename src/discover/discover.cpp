#include "discover/discover.h"

#include "app/progress.h"
#include "game/text_shape.h"

#include <quillon/codec.h>

#include <algorithm>

namespace quillon::discover {
namespace {

using game::ByteKind;
using game::PlaceKind;
using game::TextShape;

// UTF-8 to the offset file's Latin-1; other characters become '?'.
std::string Latin1(std::string_view utf8) {
    std::string out;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if ((c == 0xC2 || c == 0xC3) && i + 1 < utf8.size()) {
            out += static_cast<char>((c & 0x1F) << 6 | (static_cast<unsigned char>(utf8[++i]) & 0x3F));
        } else if (c >= 0xC0) {
            while (i + 1 < utf8.size() && (static_cast<unsigned char>(utf8[i + 1]) & 0xC0) == 0x80) ++i;
            out += '?';
        }
    }
    return out;
}

// "PALLET TOWN" -> "Pallet Town", as a section name reads best; Latin-1.
std::string TitleCase(std::string latin) {
    bool start = true;
    for (char& ch : latin) {
        auto c = static_cast<unsigned char>(ch);
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= 0xC0 && c != 0xD7 && c != 0xF7);
        if (letter && !start) {
            if ((c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7)) c = static_cast<unsigned char>(c + 32);
        } else if (letter && start && ((c >= 'a' && c <= 'z') || (c >= 0xE0 && c <= 0xFE && c != 0xF7))) {
            c = static_cast<unsigned char>(c - 32);
        }
        ch = static_cast<char>(c);
        start = !letter && c != '\'';
    }
    return latin;
}

// The evidence of the references to a text, weighed against how it reads.
// Nothing when it is not taken.
std::optional<int> Confidence(std::string_view image, const game::TextUse& use, const std::vector<game::Place>& refs) {
    const auto shape = game::MeasureText(image, use.offset);
    if (!shape || shape->length == 0) return std::nullopt;
    std::size_t script = 0, table = 0, pool = 0;
    for (const game::Place& p : refs) {
        script += p.kind == PlaceKind::Script;
        table += p.kind == PlaceKind::Table;
        pool += p.kind == PlaceKind::Pool;
    }
    // A script shows it as text: its bytes need only decode.
    if (script > 0) return std::clamp(80 + game::TextScore(*shape) / 5, 0, 100);
    const Boundary boundary = BoundaryBefore(image, use.offset);
    // Right after another text's end a label will do: "B3F", "[PLAYER]".
    const bool label = boundary == Boundary::Terminator && game::LooksLikeLabel(*shape);
    // A table of a known kind holds texts: names and labels will do.
    if (!use.table.empty() && table > 0 && (game::LooksLikeText(*shape) || game::LooksLikeLabel(*shape)))
        return std::clamp(70 + game::TextScore(*shape) / 4, 0, 100);
    if (table + pool == 0 || !(game::LooksLikeText(*shape) || label)) return std::nullopt;
    // A lone word: the text must start where a text can start.
    switch (boundary) {
        case Boundary::InsideText: return std::nullopt;  // the middle of a longer run
        case Boundary::Blank:
            if (shape->first == ByteKind::Lower || shape->first == ByteKind::Space) return std::nullopt;
            break;
        case Boundary::NotText:
        case Boundary::Terminator: break;
    }
    const int evidence = table + pool >= 2 ? 90 : 70;
    const int edge = boundary == Boundary::Terminator ? 10 : boundary == Boundary::InsideText ? -20 : 0;
    return std::clamp((game::TextScore(*shape) + evidence) / 2 + edge, 0, 100);
}

}  // namespace

Boundary BoundaryBefore(std::string_view image, std::uint32_t offset) {
    if (offset == 0) return Boundary::NotText;
    const auto b = static_cast<unsigned char>(image[offset - 1]);
    if (b == 0xFF) return Boundary::Terminator;
    if (b == 0x00) return Boundary::Blank;
    return game::ByteKinds()[b] == ByteKind::None ? Boundary::NotText : Boundary::InsideText;
}

std::string Preview(std::string_view bytes, std::size_t maxChars) {
    // Each byte decodes to at most a few characters, so a prefix suffices.
    std::string text = DecodeText(bytes.substr(0, maxChars * 2), false);
    std::string line;
    std::size_t chars = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool continuation = (static_cast<unsigned char>(c) & 0xC0) == 0x80;
        if (chars >= maxChars && !continuation) break;
        if (c == '\r' || c == '\n') {
            if (!line.empty() && line.back() != ' ') line += ' ', ++chars;
            continue;
        }
        line += c;
        if (!continuation) ++chars;
    }
    while (!line.empty() && line.back() == ' ') line.pop_back();
    return line;
}

std::string SectionFor(const game::GameModel& model, const game::TextUse& use) {
    if (use.map >= 0 && static_cast<std::size_t>(use.map) < model.Maps().size()) {
        const game::MapName& map = model.Maps()[static_cast<std::size_t>(use.map)];
        std::string name = map.name.empty() ? "Map " + std::to_string(map.group) + "." + std::to_string(map.number)
                                            : TitleCase(Latin1(map.name));
        return use.trainer ? name + " - Trainer battles" : name;
    }
    if (!use.table.empty()) return Latin1(use.table);
    if (use.context == game::TextContext::MessageBox || use.context == game::TextContext::Sign)
        return use.trainer ? "Trainer battles" : "Common scripts";
    return {};
}

std::vector<FoundText> DiscoverTexts(const game::GameModel& model, std::string_view image) {
    std::vector<FoundText> found;
    for (const game::TextUse& use : model.Uses()) {
        // Braille cells are no European text; they are never taken as one.
        if (use.context == game::TextContext::Braille) continue;
        std::vector<game::Place> refs = model.ReferencesTo(use.offset);
        const auto confidence = Confidence(image, use, refs);
        if (!confidence || *confidence < kMinConfidence) continue;
        FoundText text;
        text.offset = use.offset;
        text.length = game::MeasureText(image, use.offset)->length;
        text.preview = Preview(image.substr(use.offset, text.length));
        text.pointers = std::move(refs);
        text.confidence = *confidence;
        text.section = SectionFor(model, use);
        text.context = use.context;
        found.push_back(std::move(text));
    }
    return found;
}

std::vector<FoundText> DiscoverTexts(std::string_view image, Progress* progress) {
    NoProgress unwatched;
    ProgressStage stage(progress ? *progress : unwatched, "Looking for texts", 2);
    stage.Step(0);
    const game::GameModel model = game::GameModel::Read(image);
    stage.Step(1);
    auto found = DiscoverTexts(model, image);
    stage.Step(2);
    return found;
}

}  // namespace quillon::discover
