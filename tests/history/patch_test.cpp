// BPS patches made here must apply, here and in a decoder written only from
// the format's public description; damaged or foreign patches are refused;
// IPS patches built by hand apply as that format defines.
#include "history/patch.h"
#include "support/temp_dir.h"

#include <quillon/errors.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

using namespace quillon;
using namespace std::string_literals;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

namespace {

std::uint32_t BitCrc(std::string_view s) {
    std::uint32_t c = 0xFFFFFFFF;
    for (unsigned char b : s) {
        c ^= b;
        for (int k = 0; k < 8; ++k) c = (c >> 1) ^ (0xEDB88320 & (0 - (c & 1)));
    }
    return ~c;
}

std::string Le32(std::uint32_t v) {
    std::string s(4, '\0');
    for (int k = 0; k < 4; ++k) s[k] = static_cast<char>(v >> (8 * k));
    return s;
}

// An independent BPS decoder: returns the target, or fails the test.
std::string ReferenceDecode(std::string_view source, std::string_view patch) {
    EXPECT_EQ(patch.substr(0, 4), "BPS1");
    const std::size_t end = patch.size() - 12;
    std::size_t p = 4, out = 0, srcRel = 0, dstRel = 0;
    auto number = [&] {
        std::uint64_t data = 0, shift = 1;
        for (;; shift <<= 7, data += shift) {
            const auto x = static_cast<unsigned char>(patch.at(p++));
            data += (x & 0x7F) * shift;
            if (x & 0x80) return data;
        }
    };
    auto delta = [&] {
        const std::uint64_t v = number();
        return (v & 1) ? -static_cast<std::int64_t>(v >> 1) : static_cast<std::int64_t>(v >> 1);
    };
    EXPECT_EQ(number(), source.size());
    std::string target(number(), '\0');
    p += number();
    while (p < end) {
        const std::uint64_t data = number(), len = (data >> 2) + 1;
        const int action = data & 3;
        if (action == 2) srcRel += delta();
        if (action == 3) dstRel += delta();
        for (std::uint64_t k = 0; k < len; ++k, ++out)
            target.at(out) = action == 0 ? source.at(out) : action == 1 ? patch.at(p++)
                           : action == 2 ? source.at(srcRel++) : target.at(dstRel++);
    }
    EXPECT_EQ(out, target.size());
    EXPECT_EQ(patch.substr(end, 4), Le32(BitCrc(source)));
    EXPECT_EQ(patch.substr(end + 4, 4), Le32(BitCrc(target)));
    EXPECT_EQ(patch.substr(end + 8, 4), Le32(BitCrc(patch.substr(0, end + 8))));
    return target;
}

std::string Noise(std::size_t size, unsigned seed) {
    std::mt19937 rng(seed);
    std::string s(size, '\0');
    for (char& c : s) c = static_cast<char>(rng());
    return s;
}

struct Change {
    const char* name;
    std::function<std::string(std::string)> apply;
    std::size_t maxPatch;  // bytes a sensible encoder needs at most
};

const std::size_t kImage = 1u << 20;

const std::vector<Change> kChanges = {
    {"unchanged", [](std::string s) { return s; }, 40},
    {"hundred_texts", [](std::string s) {
         std::mt19937 rng(7);
         for (int k = 0; k < 100; ++k) s.replace(rng() % (s.size() - 64), 40, Noise(40, k));
         return s;
     }, 100 * 40 + 800},
    {"moved_block", [](std::string s) { return s.replace(0x80000, 0x8000, s.substr(0x1234, 0x8000)); }, 60},
    {"filled", [](std::string s) { return s.replace(0x40000, 0x10000, 0x10000, '\xFF'); }, 60},
    {"expanded", [](std::string s) { return s + std::string(kImage, '\xFF'); }, 60},
    {"cut_short", [](std::string s) { return s.substr(0, s.size() / 3); }, 40},
    {"all_new", [](std::string s) { return Noise(s.size() + 5, 99); }, kImage + 5 + 64},
    {"from_nothing", [](std::string) { return std::string("new"); }, 40},
};

class BpsRoundTrip : public ::testing::TestWithParam<Change> {};

TEST_P(BpsRoundTrip, AppliesHereAndInTheReferenceDecoderAndStaysSmall) {
    const std::string source = GetParam().name == std::string("from_nothing") ? "" : Noise(kImage, 1);
    const std::string target = GetParam().apply(source), patch = CreateBps(source, target, "note");
    EXPECT_LE(patch.size(), GetParam().maxPatch);
    EXPECT_EQ(ApplyBps(source, patch), target);
    EXPECT_EQ(ReferenceDecode(source, patch), target);
}

INSTANTIATE_TEST_SUITE_P(Images, BpsRoundTrip, ::testing::ValuesIn(kChanges),
                         [](const auto& info) { return std::string(info.param.name); });

// A patch from parts (sizes 256 and 4, no metadata, then actions), with its
// three checksums.
std::string Assemble(std::string_view body, std::string_view source, std::string_view target) {
    const std::string p = "BPS1" + std::string(body) + Le32(BitCrc(source)) + Le32(BitCrc(target));
    return p + Le32(BitCrc(p));
}

TEST(BpsApply, RefusesWhatItCannotApplyFaithfully) {
    const std::string source = Noise(256, 3), target = Noise(256, 4), good = CreateBps(source, target);
    std::string flipped = good;
    flipped[good.size() / 2] ^= 1;
    const std::string s4 = source.substr(0, 4);
    const struct { const char* name; std::string source, patch, message; } cases[] = {
        {"another_length", source + "x", good, "257"},
        {"damaged_patch", source, flipped, "checksum does not match its contents"},
        {"not_bps", source, "PATCHEOF", "not a BPS patch"},
        {"target_copy_before_output", source, Assemble("\x00\x81\x84\x80\x8F\x80"s, source, s4), "not yet written"},
        {"source_copy_outside", source, Assemble("\x00\x81\x84\x80\x8E\x58\x83"s, source, s4), "outside the image"},
        {"writes_past_result", source, Assemble("\x00\x81\x84\x80\x90"s, source, s4), "past the end of the result"},
        {"short_result", source, Assemble("\x00\x81\x84\x80\x80"s, source, s4), "shorter"},
        {"wrong_result", source, Assemble("\x00\x81\x84\x80\x8C"s, source, "abcd"), "result's checksum"},
        {"huge_result", source, Assemble("\x00\x81\x00\x7F\x7E\x7E\x82\x80"s, source, s4), "larger than 32 MiB"},
    };
    for (const auto& c : cases)
        EXPECT_THAT([&] { ApplyBps(c.source, c.patch); }, ThrowsMessage<PatchError>(HasSubstr(c.message))) << c.name;
}

TEST(IpsApply, RecordsRunsEofAndTruncation) {
    const struct { const char* name; std::string patch, result; /* empty: refused */ } cases[] = {
        {"plain", std::string("PATCH\x00\x00\x02\x00\x03" "abc" "EOF", 16), "01abc56789"},
        {"run", std::string("PATCH\x00\x00\x01\x00\x00\x00\x04Z" "EOF", 16), "0ZZZZ56789"},
        {"past_end", std::string("PATCH\x00\x00\x0C\x00\x02" "xy" "EOF", 15), std::string("0123456789\0\0xy", 14)},
        {"truncated", std::string("PATCH" "EOF\x00\x00\x04", 11), "0123"},
        {"no_eof", std::string("PATCH\x00\x00\x02\x00\x01" "a", 11), ""},
        {"cut_record", std::string("PATCH\x00\x00\x02\x00\x09" "ab", 12), ""},
        {"not_ips", "BPS1", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        if (c.result.empty()) { EXPECT_THROW(ApplyPatch("0123456789", c.patch), PatchError); }
        else { EXPECT_EQ(ApplyPatch("0123456789", c.patch), c.result); }
    }
}

// Files are refused before they are read: one larger than a cartridge, and a
// result that would replace one of the inputs.
TEST(PatchFiles, RefusesAnOversizedInputAndAnOutputThatIsAnInput) {
    test::TempDir dir;
    const auto rom = dir / "big.gba", patch = dir / "p.ips", out = dir / "out.gba";
    test::WriteFile(patch, "PATCHEOF");
    test::WriteFile(rom, "");
    std::filesystem::resize_file(rom, (32u << 20) + 1);  // sparse: takes no room
    EXPECT_THAT([&] { ApplyPatchFile(rom, patch, out); }, ThrowsMessage<PatchError>(HasSubstr("larger than 32 MiB")));
    std::filesystem::resize_file(rom, 16);
    EXPECT_THAT([&] { ApplyPatchFile(rom, patch, patch); }, ThrowsMessage<FileError>(HasSubstr("is also an input")));
    EXPECT_FALSE(std::filesystem::exists(out));
    EXPECT_EQ(test::ReadFile(patch), "PATCHEOF");
}

}  // namespace
