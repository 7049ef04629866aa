// The fit check: measuring a 10,000-byte text (the longest the editor reads)
// against a plain copy of it; checking every entry of an offset file of 5,000
// entries over a 16 MiB image, and finding its font, against reading the
// image; reflowing 5,000 texts against copying them.
#include "core/file_io.h"
#include "demo/demo_font.h"
#include "fit/check_all.h"
#include "fit/font.h"
#include "fit/measure.h"
#include "fit/reflow.h"

#include <quillon/codec.h>
#include <quillon/rom.h>

#include "ratio.h"
#include "sample_text.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t kImageSize = 16u << 20;
constexpr std::uint32_t kGlyphs = 0x2A0000;
constexpr std::uint32_t kWidths = 0x2A8000;
constexpr std::size_t kEntries = 5000;

void PutPointer(std::string& rom, std::size_t at, std::uint32_t target) {
    const std::uint32_t v = 0x08000000u + target;
    for (int i = 0; i < 4; ++i) rom[at + static_cast<std::size_t>(i)] = static_cast<char>(v >> (8 * i));
}

// An image of no known game: the demo font and its pool, 5,000 texts from 0x300000.
std::string Image(std::string& ini, std::vector<std::string>& texts) {
    std::string rom(kImageSize, '\xFF');
    rom.replace(0xAC, 4, "QBEE");
    const quillon::demo::DemoFont font = quillon::demo::MakeDemoFont();
    rom.replace(kGlyphs, font.glyphs.size(), font.glyphs);
    rom.replace(kWidths, font.widths.size(), font.widths);
    PutPointer(rom, 0x5000, kGlyphs);
    PutPointer(rom, 0x5008, kWidths);
    const std::string paragraph = quillon::HexToBytes(quillon::EncodeText(quillon::bench::kParagraph, false));
    std::size_t at = 0x300000;
    ini = "'bench\r\n";
    char line[64];
    for (std::size_t e = 0; e < kEntries; ++e) {
        if (e % 100 == 0) ini += "[Section" + std::to_string(e / 100) + "]\r\n";
        const std::string text = paragraph.substr(0, 40 + e % (paragraph.size() - 40));
        rom.replace(at, text.size(), text);
        rom[at + text.size()] = '\xFF';
        texts.push_back(text);
        std::snprintf(line, sizeof line, "Entry%zu=%zX\r\n", e, at);
        ini += line;
        at += text.size() + 1;
    }
    return rom;
}

}  // namespace

int main() {
    using namespace quillon;
    bool ok = true;
    std::size_t sink = 0;

    // Measuring one long text, as the editor does on every keystroke.
    std::string bytes;
    const std::string paragraph = HexToBytes(EncodeText(quillon::bench::kParagraph, false));
    while (bytes.size() < 10000) bytes += paragraph;
    bytes.resize(10000);
    const std::string text = DecodeText(bytes, false);
    std::string ini;
    std::vector<std::string> texts;
    const std::string image = Image(ini, texts);
    const fit::FontResult font = fit::LocateFont(image);
    if (!font.font) {
        std::printf("no font: %s\n", font.why.c_str());
        return 1;
    }
    std::printf("input: %zu ROM bytes, %zu bytes of editor text\n", bytes.size(), text.size());

    auto perCall = [&](const char* name, const bench::Comparison& c, double ratioLimit, double maxSeconds) {
        ok &= bench::Report(name, c, ratioLimit);
        if (c.subject >= maxSeconds) {
            std::printf("%s takes %.0f ms or more per call\n", name, maxSeconds * 1e3);
            ok = false;
        }
    };
    perCall("MeasureText 10000 bytes (encode included)",
            bench::Compare([&] { sink += fit::MeasureText(text, false, *font.font).lines.size(); },
                           [&] { sink += std::string(text).size(); }, 31, 20),
            1000.0, 1e-3);
    perCall("MeasureBytes 10000 bytes",
            bench::Compare([&] { sink += fit::MeasureBytes(bytes, *font.font).lines.size(); },
                           [&] { sink += std::string(bytes).size(); }, 31, 20),
            1000.0, 1e-3);

    // Reflowing 5,000 texts into a box narrow enough that most break anew.
    fit::Box narrow;
    narrow.width = 120;
    const fit::ReflowOptions reflow{fit::OptionsFor(narrow, std::nullopt), true, {}};
    perCall("Reflow 5000 texts",
            bench::Compare(
                [&] {
                    for (const std::string& t : texts) sink += fit::ReflowBytes(t, *font.font, reflow).size();
                },
                [&] {
                    for (const std::string& t : texts) sink += std::string(t).size();
                },
                11),
            1000.0, 0.2);

    // Finding the font in a 16 MiB image.
    perCall("LocateFont, 16 MiB image",
            bench::Compare([&] { sink += fit::LocateFont(image).found.size(); },
                           [&] { sink += std::string(image).size(); }, 11),
            20.0, 0.1);

    // The whole-game check from the files: image and offset file read once,
    // the game model, the font and the boxes found, every entry measured.
    const auto dir = std::filesystem::temp_directory_path() / ("quillon-bench-fit-" + std::to_string(getpid()));
    std::filesystem::create_directories(dir);
    io::ReplaceFile(dir / "rom.gba", image);
    io::ReplaceFile(dir / "QBEE.ini", ini);
    fit::CheckReport report;
    perCall("CheckRom 5000 entries, 16 MiB image",
            bench::Compare([&] { report = fit::CheckRom(dir / "rom.gba", dir / "QBEE.ini"); },
                           [&] { sink += io::ReadAll(dir / "rom.gba").size(); }, 11),
            50.0, 0.2);
    std::filesystem::remove_all(dir);
    std::printf("entries %zu, over the box %zu, over only with long names %zu\n", report.entries, report.over,
                report.names);
    ok &= report.entries == kEntries;
    std::printf("checksum %zu\n", sink);
    return ok ? 0 : 1;
}
