// DecodeText and EncodeText on a 10,000-byte text, the most the main window
// reads, against a plain copy of the same input.
#include <quillon/codec.h>

#include "ratio.h"
#include "sample_text.h"

#include <cstdio>
#include <string>

namespace {


std::string HexToBytes(const std::string& hex) {
    auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'A' + 10; };
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2) {
        bytes += static_cast<char>(digit(hex[i]) * 16 + digit(hex[i + 1]));
    }
    return bytes;
}

// Exactly `size` ROM bytes of repeated paragraphs.
std::string TextBytes(std::size_t size) {
    const std::string paragraph = HexToBytes(quillon::EncodeText(quillon::bench::kParagraph, false));
    std::string bytes;
    while (bytes.size() < size) {
        bytes += paragraph;
    }
    bytes.resize(size);
    return bytes;
}

}  // namespace

int main() {
    using namespace quillon;
    constexpr double kMaxSecondsPerCall = 1e-3;
    constexpr double kRatioLimit = 1000.0;
    constexpr int kRuns = 31;
    constexpr int kInner = 20;

    const std::string bytes = TextBytes(10000);
    const std::string text = DecodeText(bytes, false);
    std::printf("input: %zu ROM bytes, %zu bytes of editor text\n", bytes.size(), text.size());

    std::size_t sink = 0;
    bool ok = true;
    auto check = [&](const char* name, const bench::Comparison& c) {
        ok &= bench::Report(name, c, kRatioLimit);
        if (c.subject >= kMaxSecondsPerCall) {
            std::printf("%s takes 1 ms or more per call\n", name);
            ok = false;
        }
    };

    check("DecodeText 10000 bytes, European",
          bench::Compare([&] { sink += DecodeText(bytes, false).size(); },
                         [&] { sink += std::string(bytes).size(); }, kRuns, kInner));
    check("DecodeText 10000 bytes, Japanese",
          bench::Compare([&] { sink += DecodeText(bytes, true).size(); },
                         [&] { sink += std::string(bytes).size(); }, kRuns, kInner));
    check("EncodeText of those 10000 bytes' text",
          bench::Compare([&] { sink += EncodeText(text, false).size(); },
                         [&] { sink += std::string(text).size(); }, kRuns, kInner));
    check("EncodeText, Special Dialog",
          bench::Compare([&] { sink += EncodeText(text, true).size(); },
                         [&] { sink += std::string(text).size(); }, kRuns, kInner));

    // The round trip of the whole text must give back its bytes.
    ok &= HexToBytes(EncodeText(text, false)) == bytes;
    std::printf("checksum %zu\n", sink);
    return ok ? 0 : 1;
}
