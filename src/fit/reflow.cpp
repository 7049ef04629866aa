#include "fit/reflow.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include <algorithm>
#include <vector>

namespace quillon::fit {
namespace {

// A word: the spaces before it in its line, then items up to the next space
// or break. `cuts` are the places between its items, where a word too long
// for any line may be cut.
struct Word {
    std::string spaces;
    int spaceWidth = 0;
    std::string bytes;
    int width = 0;
    std::vector<std::pair<std::size_t, int>> cuts;  // (bytes before, width before)
};
using Words = std::vector<Word>;
using Paragraph = std::vector<Words>;  // the author's lines

std::vector<Paragraph> Parse(std::string_view bytes, const Font& font, const MeasureOptions& options) {
    std::vector<Paragraph> paragraphs(1, Paragraph(1));
    std::string spaces;
    int spaceWidth = 0;
    const NameWidths names = NamesIn(font);
    for (std::size_t i = 0; i < bytes.size();) {
        const Item item = ItemAt(bytes, i, font, options, names);
        const auto byte = static_cast<std::uint8_t>(bytes[i]);
        if (item.kind == Item::Break) {
            if (byte == kNewBox)
                paragraphs.emplace_back(1);
            else
                paragraphs.back().emplace_back();
            spaces.clear(), spaceWidth = 0;
            ++i;
            continue;
        }
        if (item.kind == Item::Space) {
            spaces += bytes[i], spaceWidth += item.width;
            ++i;
            continue;
        }
        Words& line = paragraphs.back().back();
        if (line.empty() || !spaces.empty()) {
            line.push_back({spaces, spaceWidth, {}, 0, {}});
            spaces.clear(), spaceWidth = 0;
        }
        Word& word = line.back();
        if (!word.bytes.empty()) word.cuts.emplace_back(word.bytes.size(), word.width);
        word.bytes.append(bytes.substr(i, item.length));
        word.width += item.kind == Item::Position ? 0 : item.width;
        i += item.length;
    }
    return paragraphs;
}

int WidthOf(const Words& line) {
    int w = 0;
    for (std::size_t k = 0; k < line.size(); ++k) w += (k ? line[k].spaceWidth : 0) + line[k].width;
    return w;
}

// Breaks the author's lines of one paragraph: the first line may take
// `first` pixels, every other `rest`.
std::vector<Words> Wrap(const Paragraph& paragraph, int first, int rest, const Word& space) {
    std::vector<Words> lines;
    Words pending;
    auto limit = [&] { return lines.empty() ? first : rest; };
    for (std::size_t li = 0; li < paragraph.size(); ++li) {
        if (paragraph[li].empty() && li + 1 < paragraph.size()) {
            // An empty line the author left stays, after what came before it.
            if (!pending.empty()) lines.push_back(std::move(pending)), pending.clear();
            lines.emplace_back();
            continue;
        }
        const bool carried = !pending.empty();
        for (std::size_t k = 0; k < paragraph[li].size(); ++k) {
            Word w = paragraph[li][k];
            if (k == 0 && carried) w.spaces = space.spaces, w.spaceWidth = space.spaceWidth;  // the joined break
            pending.push_back(std::move(w));
        }
        if (WidthOf(pending) <= limit()) {
            if (li + 1 < paragraph.size()) lines.push_back(std::move(pending)), pending.clear();  // the author's break
            continue;
        }
        while (!pending.empty() && WidthOf(pending) > limit()) {
            std::size_t fit = 0;
            int w = 0;
            while (fit < pending.size() && w + (fit ? pending[fit].spaceWidth : 0) + pending[fit].width <= limit())
                w += (fit ? pending[fit].spaceWidth : 0) + pending[fit].width, ++fit;
            if (fit == 0) {
                // A word longer than a line: cut it after its last item that fits.
                Word& word = pending.front();
                std::size_t cut = word.cuts.empty() ? word.bytes.size() : word.cuts.front().first;
                int cutWidth = word.cuts.empty() ? word.width : word.cuts.front().second;
                for (const auto& [at, width] : word.cuts)
                    if (width <= limit()) cut = at, cutWidth = width;
                if (cut >= word.bytes.size()) {
                    fit = 1;  // one item wider than the line: it stands alone
                } else {
                    Word head{{}, 0, word.bytes.substr(0, cut), cutWidth, {}};
                    Word tail{{}, 0, word.bytes.substr(cut), word.width - cutWidth, {}};
                    for (const auto& [at, width] : word.cuts)
                        if (at > cut) tail.cuts.emplace_back(at - cut, width - cutWidth);
                    lines.push_back({std::move(head)});
                    pending.front() = std::move(tail);
                    continue;
                }
            }
            lines.emplace_back(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(fit));
            pending.erase(pending.begin(), pending.begin() + static_cast<std::ptrdiff_t>(fit));
            if (!pending.empty()) pending.front().spaces.clear(), pending.front().spaceWidth = 0;
        }
    }
    if (!pending.empty() || lines.empty()) lines.push_back(std::move(pending));
    return lines;
}

}  // namespace

ReflowOptions ReflowFor(const Box& box, std::optional<game::Family> family, bool specialDialog,
                        std::optional<std::string> playerName, const Font* font, std::string_view original) {
    ReflowOptions o;
    o.measure = OptionsFor(box, family, std::move(playerName));
    o.scroll = box.lines == 2 && !specialDialog;
    if (box.context != game::TextContext::Other) return o;
    // Broken for the message box, or for the program's window when that is known and narrower.
    o.wrap = MessageBox(family);
    o.wrap->width = std::min(o.wrap->width, box.width);
    o.scroll = !specialDialog;
    const Measure m = font ? MeasureBytes(original, *font, o.measure) : Measure{};
    if (m.lines.size() < 2) return o;
    if (m.WidestWidth() < box.width) {
        o.wrap->width = std::min(o.wrap->width, m.WidestWidth());
        o.measure.box.width = o.wrap->width;  // what does not fit it is broken anew
        o.scroll = original.find_first_of("\xFA\xFB") != std::string_view::npos;
    }
    if (original.find('\xFA') == std::string_view::npos) {
        // A window that shows its lines at once: as many as the original's fullest box.
        int rows = 0;
        for (const Line& l : m.lines) rows = std::max(rows, l.row + 1);
        o.wrap->lines = o.measure.box.lines = rows;
        o.scroll = false;
        o.newBoxes = original.find('\xFB') != std::string_view::npos;
        const int widest = std::min(MessageBox(family).width, box.width);
        if (!o.newBoxes && widest > o.wrap->width) o.widen = widest;
    }
    return o;
}

std::string ReflowBytes(std::string_view bytes, const Font& font, const ReflowOptions& options) {
    const std::string_view text = bytes.substr(0, std::min(bytes.find('\xFF'), bytes.size()));
    if (!options.measure.box.check) return std::string(text);
    const Measure m = MeasureBytes(text, font, options.measure);
    if (m.overCount == 0) return std::string(text);
    const Box& box = options.wrap ? *options.wrap : options.measure.box;

    const Word space{std::string(1, '\0'), ItemAt(std::string_view("\0", 1), 0, font, options.measure).width, {}, 0, {}};
    const int waiting = box.width - box.cursor;  // a line that waits leaves room for the arrow
    std::string out;
    const std::vector<Paragraph> paragraphs = Parse(text, font, options.measure);
    for (std::size_t p = 0; p < paragraphs.size(); ++p) {
        if (p) out += static_cast<char>(kNewBox);
        std::vector<Words> lines = Wrap(paragraphs[p], box.width, waiting, space);
        if (lines.size() == 1 && box.cursor > 0 && WidthOf(lines[0]) > waiting)
            lines = Wrap(paragraphs[p], waiting, waiting, space);  // its only line waits too
        const auto rows = static_cast<std::size_t>(box.lines);
        if (!options.scroll && rows > 0 && lines.size() > rows && options.widen > box.width) {
            // Too many lines for the window: wider lines, as wide as a message box, if they need fewer.
            std::vector<Words> wider = Wrap(paragraphs[p], options.widen, options.widen - box.cursor, space);
            if (wider.size() < lines.size()) lines = std::move(wider);
        }
        const bool boxes = options.newBoxes && !options.scroll && rows > 0;
        for (std::size_t l = 0; l < lines.size(); ++l) {
            if (l && boxes && l % rows == 0)
                out += static_cast<char>(kNewBox);
            else if (l)
                out += static_cast<char>(l >= 2 && options.scroll ? kScroll : kNextLine);
            for (std::size_t k = 0; k < lines[l].size(); ++k) out += (k ? lines[l][k].spaces : std::string()) + lines[l][k].bytes;
        }
    }
    return out;
}

ReflowedText ReflowText(std::string_view text, bool specialDialog, const Font& font, const ReflowOptions& options) {
    const std::string bytes = HexToBytes(EncodeText(text, specialDialog));
    const std::string reflowed = ReflowBytes(bytes, font, options);
    if (reflowed == bytes.substr(0, std::min(bytes.find('\xFF'), bytes.size()))) return {std::string(text), specialDialog};
    ReflowedText out{DecodeText(reflowed, false), specialDialog};
    if (!specialDialog && HexToBytes(EncodeText(out.text, false)) != reflowed &&
        HexToBytes(EncodeText(out.text, true)) == reflowed)
        out.specialDialog = true;
    return out;
}

}  // namespace quillon::fit
