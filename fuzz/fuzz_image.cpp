// Reading an arbitrary image as the game reads itself: the game model, the
// texts found through it, the font search, the boxes of its texts (names and the windows of program
// texts included), the check of every text it uses and their reflow. A hacked
// or damaged ROM must give findings or nothing, never a read outside it.
// The first byte picks the family named in the header; the message font,
// when the search finds none, is one of 6-pixel letters, so that the boxes
// and the check always measure.
#include "fit/boxes.h"
#include "fit/check_all.h"
#include "fit/font.h"
#include "core/hex_text.h"
#include "discover/discover.h"
#include "fit/reflow.h"
#include "game/game_model.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t kHeader = 0xC0;
constexpr std::string_view kCodes[] = {"BPRE", "BPEE", "AXVE", "QZZZ"};

quillon::fit::Font EvenFont() {
    quillon::fit::Font font;
    font.widths.fill(6);
    font.glyphs.assign(quillon::fit::kGlyphCount * quillon::fit::GlyphBytes(font.place.format), 0);
    return font;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillon;
    if (size == 0) return 0;
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (bytes.size() < kHeader) bytes.resize(kHeader, '\xFF');
    bytes.replace(0xAC, 4, kCodes[data[0] % std::size(kCodes)]);
    // In a buffer of its own size: a read one past the end is caught too.
    const std::unique_ptr<char[]> exact(new char[bytes.size()]);
    std::memcpy(exact.get(), bytes.data(), bytes.size());
    const std::string_view image(exact.get(), bytes.size());

    const game::GameModel model = game::GameModel::Read(image);
    for (const discover::FoundText& found : discover::DiscoverTexts(model, image))
        if (found.offset >= image.size()) __builtin_trap();
    fit::FontResult fonts = fit::LocateFont(image, std::nullopt, model.Pointers());
    if (!fonts.font) fonts.font = EvenFont();
    const fit::TextBoxes boxes = fit::TextBoxes::Read(image, model, true, &*fonts.font);

    std::string offsets = "[Texts]\r\n";
    for (const game::TextUse& use : model.Uses()) {
        offsets += "T" + std::to_string(use.offset) + "=" + quillon::PlainHex(use.offset) + "\r\n";
        const fit::Box box = boxes.At(use.offset);
        const std::string_view text = image.substr(use.offset, 512);
        const fit::ReflowOptions options = fit::ReflowFor(box, boxes.family(), false, std::nullopt, &*fonts.font, text);
        if (fit::ReflowBytes(text, *fonts.font, options).find('\xFF') != std::string::npos) __builtin_trap();
    }
    const fit::CheckReport report = fit::CheckTexts(image, offsets, fonts, boxes);
    if (!report.checked || report.entries > model.Uses().size()) __builtin_trap();
    return 0;
}
