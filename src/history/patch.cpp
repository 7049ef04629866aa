#include "history/patch.h"

#include "core/file_io.h"

#include <quillon/errors.h>

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <initializer_list>
#include <cstring>
#include <vector>

namespace quillon {

std::uint32_t Crc32(std::string_view bytes) {
    return static_cast<std::uint32_t>(
        crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

namespace {

// ---------------------------------------------------------------- BPS writing

enum BpsAction : std::uint64_t { kSourceRead = 0, kTargetRead = 1, kSourceCopy = 2, kTargetCopy = 3 };

constexpr std::size_t kMinSourceRead = 4;  // shorter equal runs cost more as actions than as literals
constexpr std::size_t kMinRepeat = 8;      // a byte repeated this often becomes a target copy
constexpr std::size_t kBlock = 32;         // source blocks indexed for moved data

std::uint64_t Load64(const char* p) {
    std::uint64_t v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// Number of equal bytes of `a` and `b` from their starts.
std::size_t EqualRun(const char* a, const char* b, std::size_t limit) {
    std::size_t n = 0;
    for (; n + 8 <= limit; n += 8) {
        std::uint64_t diff = Load64(a + n) ^ Load64(b + n);
        if (diff != 0) {
            if constexpr (std::endian::native == std::endian::little)
                return n + static_cast<std::size_t>(std::countr_zero(diff)) / 8;
            break;
        }
    }
    while (n < limit && a[n] == b[n]) ++n;
    return n;
}

std::uint64_t BlockHash(const char* p) {
    std::uint64_t h = Load64(p) * 0x9E3779B97F4A7C15ull;
    h ^= Load64(p + 8) * 0xC2B2AE3D27D4EB4Full;
    h ^= Load64(p + 16) * 0x165667B19E3779F9ull;
    h ^= Load64(p + 24) * 0xD6E8FEB86659FD93ull;
    return h ^ (h >> 31);
}

class BpsWriter {
public:
    BpsWriter(std::string_view source, std::string_view target) : src_(source), dst_(target) {}

    std::string Encode(std::string_view metadata) {
        out_ = "BPS1";
        Number(src_.size());
        Number(dst_.size());
        Number(metadata.size());
        out_.append(metadata);
        const std::size_t n = dst_.size(), m = src_.size();
        std::size_t i = 0;
        while (i < n) {
            if (i < m) {
                std::size_t run = EqualRun(src_.data() + i, dst_.data() + i, std::min(m, n) - i);
                if (run >= kMinSourceRead || (run > 0 && i + run == n)) {
                    FlushLiteral(i);
                    Action(kSourceRead, run);
                    i += run;
                    continue;
                }
            }
            std::size_t repeat = 1;
            while (i + repeat < n && dst_[i + repeat] == dst_[i]) ++repeat;
            if (repeat >= kMinRepeat) {
                if (litLen_ == 0) litStart_ = i;
                ++litLen_;
                FlushLiteral(i + 1);
                Action(kTargetCopy, repeat - 1);
                Signed(static_cast<std::int64_t>(i) - targetRel_);
                targetRel_ = static_cast<std::int64_t>(i + repeat - 1);
                i += repeat;
                continue;
            }
            if (std::size_t len = 0, from = 0; FindMoved(i, from, len)) {
                while (litLen_ > 0 && from > 0 && src_[from - 1] == dst_[i - 1]) {
                    --from, --i, --litLen_, ++len;
                }
                FlushLiteral(i);
                Action(kSourceCopy, len);
                Signed(static_cast<std::int64_t>(from) - sourceRel_);
                sourceRel_ = static_cast<std::int64_t>(from + len);
                i += len;
                continue;
            }
            if (litLen_ == 0) litStart_ = i;
            ++litLen_;
            ++i;
        }
        FlushLiteral(n);
        Footer(Crc32(src_));
        Footer(Crc32(dst_));
        Footer(Crc32(out_));
        return std::move(out_);
    }

private:
    void Number(std::uint64_t v) {
        for (;;) {
            const auto x = static_cast<char>(v & 0x7F);
            v >>= 7;
            if (v == 0) {
                out_.push_back(static_cast<char>(0x80 | x));
                return;
            }
            out_.push_back(x);
            --v;
        }
    }
    void Signed(std::int64_t delta) {
        const std::uint64_t magnitude = delta < 0 ? static_cast<std::uint64_t>(-delta) : static_cast<std::uint64_t>(delta);
        Number(magnitude << 1 | (delta < 0 ? 1 : 0));
    }
    void Action(BpsAction kind, std::uint64_t length) { Number((length - 1) << 2 | kind); }
    void Footer(std::uint32_t v) {
        for (int k = 0; k < 4; ++k) out_.push_back(static_cast<char>(v >> (8 * k)));
    }
    // Writes the pending literal bytes, which end where output position `end` is.
    void FlushLiteral(std::size_t end) {
        if (litLen_ == 0) return;
        Action(kTargetRead, litLen_);
        out_.append(dst_.substr(end - litLen_, litLen_));
        litLen_ = 0;
    }

    // A source block (anywhere) equal to the target at `i`, extended forward.
    bool FindMoved(std::size_t i, std::size_t& from, std::size_t& len) {
        if (dst_.size() - i < kBlock || src_.size() < kBlock || src_.size() > UINT32_MAX) return false;
        if (index_.empty()) BuildIndex();
        const std::uint32_t slot = index_[BlockHash(dst_.data() + i) & mask_];
        if (slot == 0) return false;
        from = slot - 1;
        if (std::memcmp(src_.data() + from, dst_.data() + i, kBlock) != 0) return false;
        len = kBlock + EqualRun(src_.data() + from + kBlock, dst_.data() + i + kBlock,
                                std::min(src_.size() - from, dst_.size() - i) - kBlock);
        return true;
    }
    // Hashes of the source's aligned blocks, built on the first need; the
    // first block of equal contents keeps the slot.
    void BuildIndex() {
        const std::size_t blocks = src_.size() / kBlock;
        const std::size_t slots = std::bit_ceil(blocks * 2);
        index_.assign(slots, 0);
        mask_ = slots - 1;
        for (std::size_t b = 0; b < blocks; ++b) {
            std::uint32_t& slot = index_[BlockHash(src_.data() + b * kBlock) & mask_];
            if (slot == 0) slot = static_cast<std::uint32_t>(b * kBlock + 1);
        }
    }

    std::string_view src_, dst_;
    std::string out_;
    std::size_t litStart_ = 0, litLen_ = 0;
    std::int64_t sourceRel_ = 0, targetRel_ = 0;
    std::vector<std::uint32_t> index_;  // source offset + 1 per hash slot; 0 is empty
    std::size_t mask_ = 0;
};

// ---------------------------------------------------------------- BPS reading

// A result is a cartridge image: at most 32 MiB, checked before anything is allocated.
constexpr std::uint64_t kLargestTarget = 32ull << 20;

std::uint32_t LoadLe32(std::string_view s, std::size_t at) {
    std::uint32_t v = 0;
    for (int k = 3; k >= 0; --k) v = v << 8 | static_cast<unsigned char>(s[at + k]);
    return v;
}

[[noreturn]] void Damaged(const std::string& what) {
    throw PatchError("The patch is damaged: " + what + ".");
}

class BpsReader {
public:
    BpsReader(std::string_view body) : body_(body) {}
    bool AtEnd() const { return pos_ >= body_.size(); }
    std::uint64_t Number() {
        std::uint64_t data = 0, shift = 1;
        for (;;) {
            if (pos_ >= body_.size()) Damaged("a number runs past the end");
            const auto x = static_cast<unsigned char>(body_[pos_++]);
            data += (x & 0x7F) * shift;
            if (x & 0x80) return data;
            if (shift > (1ull << 49)) Damaged("a number is too large");
            shift <<= 7;
            data += shift;
        }
    }
    std::string_view Take(std::uint64_t n) {
        if (n > body_.size() - pos_) Damaged("data runs past the end");
        auto s = body_.substr(pos_, n);
        pos_ += n;
        return s;
    }

private:
    std::string_view body_;
    std::size_t pos_ = 0;
};

std::int64_t SignedDelta(std::uint64_t v) {
    const auto magnitude = static_cast<std::int64_t>(v >> 1);
    return (v & 1) ? -magnitude : magnitude;
}

}  // namespace

std::string CreateBps(std::string_view source, std::string_view target, std::string_view metadata) {
    return BpsWriter(source, target).Encode(metadata);
}

std::string ApplyBps(std::string_view source, std::string_view patch) {
    if (patch.size() < 4 + 3 + 12 || patch.substr(0, 4) != "BPS1") throw PatchError("This is not a BPS patch.");
    const std::size_t footer = patch.size() - 12;
    if (Crc32(patch.substr(0, patch.size() - 4)) != LoadLe32(patch, patch.size() - 4))
        Damaged("its checksum does not match its contents");
    BpsReader in(patch.substr(4, footer - 4));
    const std::uint64_t sourceSize = in.Number(), targetSize = in.Number();
    in.Take(in.Number());  // metadata
    if (sourceSize != source.size())
        throw PatchError("The patch was made for an image of " + std::to_string(sourceSize) +
                         " bytes; this one has " + std::to_string(source.size()) + " bytes.");
    if (Crc32(source) != LoadLe32(patch, footer))
        throw PatchError("The patch was made for another image: the checksum of the image does not match.");
    if (targetSize > kLargestTarget) Damaged("the result would be larger than 32 MiB, more than a cartridge holds");

    std::string out(targetSize, '\0');
    std::uint64_t pos = 0;
    std::int64_t sourceRel = 0, targetRel = 0;
    while (!in.AtEnd()) {
        const std::uint64_t data = in.Number();
        const std::uint64_t len = (data >> 2) + 1;
        if (len > targetSize - pos) Damaged("an action writes past the end of the result");
        switch (data & 3) {
        case kSourceRead:
            if (pos + len > source.size()) Damaged("an action reads past the end of the image");
            std::memcpy(out.data() + pos, source.data() + pos, len);
            break;
        case kTargetRead: {
            auto bytes = in.Take(len);
            std::memcpy(out.data() + pos, bytes.data(), len);
            break;
        }
        case kSourceCopy:
            sourceRel += SignedDelta(in.Number());
            if (sourceRel < 0 || static_cast<std::uint64_t>(sourceRel) > source.size() ||
                len > source.size() - static_cast<std::uint64_t>(sourceRel))
                Damaged("a copy reads outside the image");
            std::memcpy(out.data() + pos, source.data() + sourceRel, len);
            sourceRel += static_cast<std::int64_t>(len);
            break;
        case kTargetCopy:
            targetRel += SignedDelta(in.Number());
            if (targetRel < 0 || static_cast<std::uint64_t>(targetRel) >= pos)
                Damaged("a copy reads result bytes not yet written");
            // Byte by byte: the ranges may overlap, which repeats a pattern.
            for (std::uint64_t k = 0; k < len; ++k) out[pos + k] = out[static_cast<std::size_t>(targetRel++)];
            break;
        }
        pos += len;
    }
    if (pos != targetSize) Damaged("the result is shorter than announced");
    if (Crc32(out) != LoadLe32(patch, footer + 4)) Damaged("the result's checksum does not match");
    return out;
}

std::string ApplyIps(std::string_view source, std::string_view patch) {
    if (patch.substr(0, 5) != "PATCH") throw PatchError("This is not an IPS patch.");
    auto be = [&](std::size_t at, int bytes) {
        std::uint32_t v = 0;
        for (int k = 0; k < bytes; ++k) v = v << 8 | static_cast<unsigned char>(patch[at + k]);
        return v;
    };
    std::string out(source);
    std::size_t pos = 5;
    for (;;) {
        if (patch.size() - pos < 3) Damaged("it ends without its EOF marker");
        if (patch.substr(pos, 3) == "EOF") {
            pos += 3;
            if (patch.size() - pos == 3) out.resize(be(pos, 3));  // the optional truncation length
            return out;
        }
        const std::uint32_t offset = be(pos, 3);
        if (patch.size() - pos < 5) Damaged("a record is cut off");
        std::uint32_t size = be(pos + 3, 2);
        pos += 5;
        std::string_view bytes;
        char fill = 0;
        if (size == 0) {  // run-length record: a count and one byte
            if (patch.size() - pos < 3) Damaged("a record is cut off");
            size = be(pos, 2);
            fill = patch[pos + 2];
            pos += 3;
        } else {
            if (patch.size() - pos < size) Damaged("a record is cut off");
            bytes = patch.substr(pos, size);
            pos += size;
        }
        if (out.size() < offset + size) out.resize(offset + size, '\0');
        if (bytes.empty())
            std::fill_n(out.begin() + offset, size, fill);
        else
            std::copy(bytes.begin(), bytes.end(), out.begin() + offset);
    }
}

PatchFormat DetectPatchFormat(std::string_view patch) {
    if (patch.substr(0, 4) == "BPS1") return PatchFormat::Bps;
    if (patch.substr(0, 5) == "PATCH") return PatchFormat::Ips;
    throw PatchError("This file is neither a BPS nor an IPS patch.");
}

std::string ApplyPatch(std::string_view source, std::string_view patch) {
    return DetectPatchFormat(patch) == PatchFormat::Bps ? ApplyBps(source, patch) : ApplyIps(source, patch);
}

namespace {

// A result written over one of its inputs would lose it.
void RefuseOverwritingAnInput(const std::filesystem::path& out, std::initializer_list<std::filesystem::path> inputs) {
    std::error_code ec;
    for (const auto& in : inputs)
        if (std::filesystem::equivalent(out, in, ec))
            throw FileError("'" + out.string() + "' is also an input of this command; choose another file to write.");
}

// A file read whole, refused before anything is allocated for it when it is
// larger than `cap`.
std::string ReadAtMost(const std::filesystem::path& path, std::uint64_t cap, std::string_view what) {
    if (io::FileSize(path) > cap)
        throw PatchError("'" + path.filename().string() + "' is larger than " + std::to_string(cap >> 20) + " MiB, " +
                         std::string(what) + "; it was not read.");
    return io::ReadAll(path);
}
constexpr std::string_view kNoImage = "more than a cartridge holds", kNoPatch = "more than any patch for a cartridge";

}  // namespace

void CreatePatchFile(const std::filesystem::path& original, const std::filesystem::path& modified,
                     const std::filesystem::path& out) {
    RefuseOverwritingAnInput(out, {original, modified});
    const std::string source = ReadAtMost(original, kLargestTarget, kNoImage);
    const std::string target = ReadAtMost(modified, kLargestTarget, kNoImage);
    io::ReplaceFile(out, CreateBps(source, target));
}

PatchFormat ApplyPatchFile(const std::filesystem::path& rom, const std::filesystem::path& patch,
                           const std::filesystem::path& out) {
    RefuseOverwritingAnInput(out, {rom, patch});
    const std::string source = ReadAtMost(rom, kLargestTarget, kNoImage);
    const std::string bytes = ReadAtMost(patch, 2 * kLargestTarget, kNoPatch);
    const PatchFormat format = DetectPatchFormat(bytes);
    io::ReplaceFile(out, ApplyPatch(source, bytes));
    return format;
}

}  // namespace quillon
