#include "discover/discover.h"

#include "app/progress.h"
#include "discover/text_shape.h"

#include <quillon/codec.h>

#include <algorithm>
#include <cstring>
#include <optional>

namespace quillon::discover {
namespace {

// Two bits per offset of the image: checked as text already, and found text.
class TargetMemo {
public:
    explicit TargetMemo(std::size_t size) : checked_((size + 63) / 64), text_((size + 63) / 64) {}
    bool Checked(std::uint32_t t) const { return checked_[t >> 6] >> (t & 63) & 1; }
    bool Text(std::uint32_t t) const { return text_[t >> 6] >> (t & 63) & 1; }
    void Set(std::uint32_t t, bool text) {
        checked_[t >> 6] |= std::uint64_t{1} << (t & 63);
        if (text) text_[t >> 6] |= std::uint64_t{1} << (t & 63);
    }

private:
    std::vector<std::uint64_t> checked_, text_;
};

// Texts lie past the cartridge header.
constexpr std::uint32_t kFirstTextOffset = 0xC0;

std::uint32_t TargetAt(const unsigned char* p) {
    return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16;
}

// The evidence of the places that point at a text, and of the bytes before
// it, weighed against how textual it reads. Nothing when it is not taken.
std::optional<int> Confidence(const TextShape& shape, Boundary boundary, const std::vector<Reference>& refs) {
    std::size_t script = 0, aligned = 0;
    for (const Reference& r : refs) {
        script += r.kind == PlaceKind::ScriptOperand;
        aligned += r.kind == PlaceKind::AlignedData;
    }
    const std::size_t real = script + aligned;
    // A run's middle needs a script operand or two references; after 0x00 (a
    // space or padding) the text must begin as a sentence does; a text that
    // only suspect places point at must begin right after a terminator.
    switch (boundary) {
        case Boundary::InsideText:
            if (script == 0 && real < 2) return std::nullopt;
            break;
        case Boundary::Blank:
            if (real == 0 || shape.first == ByteKind::Lower || shape.first == ByteKind::Space) return std::nullopt;
            break;
        case Boundary::NotText:
            if (real == 0) return std::nullopt;
            break;
        case Boundary::Terminator: break;
    }
    const int evidence = script > 0 ? 100 : aligned >= 2 ? 90 : aligned == 1 ? 70 : 40;
    const int edge = boundary == Boundary::Terminator ? 10 : boundary == Boundary::InsideText ? -20 : 0;
    return std::clamp((TextScore(shape) + evidence) / 2 + edge, 0, 100);
}

}  // namespace

Boundary BoundaryBefore(std::string_view image, std::uint32_t offset) {
    if (offset == 0) return Boundary::NotText;
    const auto b = static_cast<unsigned char>(image[offset - 1]);
    if (b == 0xFF) return Boundary::Terminator;
    if (b == 0x00) return Boundary::Blank;
    return ByteKinds()[b] == ByteKind::None ? Boundary::NotText : Boundary::InsideText;
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

std::vector<FoundText> DiscoverTexts(std::string_view image, Progress* progress) {
    NoProgress unwatched;
    ProgressStage stage(progress ? *progress : unwatched, "Looking for texts", image.size());
    const std::size_t reach = std::min<std::size_t>(image.size(), kPointerReach);
    const auto* bytes = reinterpret_cast<const unsigned char*>(image.data());
    TargetMemo memo(reach);
    // (target << 32 | place) of every pointer aimed at text.
    std::vector<std::uint64_t> hits;
    constexpr std::size_t kStep = 1 << 20;  // progress is reported per MiB
    if (image.size() >= 4) {
        const std::size_t last = image.size() - 4;  // last place a pointer can start
        for (std::size_t from = 0; from <= last; from += kStep) {
            stage.Step(from);
            const std::size_t to = std::min(last, from + kStep - 1);
            // The bank byte of a pointer starting at `place` lies at place + 3.
            const unsigned char* p = bytes + from + 3;
            const unsigned char* end = bytes + to + 4;
            while ((p = static_cast<const unsigned char*>(std::memchr(p, kPointerBank, end - p))) != nullptr) {
                const auto place = static_cast<std::uint32_t>(p - bytes - 3);
                const std::uint32_t target = TargetAt(p - 3);
                ++p;
                if (target >= reach || target < kFirstTextOffset) continue;
                if (!memo.Checked(target)) {
                    auto shape = MeasureText(image, target);
                    memo.Set(target, shape && LooksLikeText(*shape));
                }
                if (memo.Text(target)) hits.push_back(std::uint64_t{target} << 32 | place);
            }
        }
    }
    stage.Step(image.size());

    std::sort(hits.begin(), hits.end());
    std::vector<FoundText> found;
    for (std::size_t i = 0; i < hits.size();) {
        const auto target = static_cast<std::uint32_t>(hits[i] >> 32);
        FoundText text;
        text.offset = target;
        for (; i < hits.size() && hits[i] >> 32 == target; ++i)
            text.pointers.push_back(ClassifyPlace(image, static_cast<std::uint32_t>(hits[i])));
        const TextShape shape = *MeasureText(image, target);
        const auto confidence = Confidence(shape, BoundaryBefore(image, target), text.pointers);
        if (!confidence || *confidence < kMinConfidence) continue;
        text.length = shape.length;
        text.confidence = *confidence;
        text.preview = Preview(image.substr(target, shape.length));
        found.push_back(std::move(text));
    }
    return found;
}

}  // namespace quillon::discover
