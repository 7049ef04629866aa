#include "game/code_map.h"

#include "core/zeroed_array.h"
#include "game/words.h"

#include <algorithm>
#include <bit>
#include <optional>

namespace quillon::game {
namespace {

// What the tracer has made of each half-word of the image. A trace marks
// what it reaches as trial; a trace that is kept makes its marks final.
enum Mark : std::uint8_t { kFree = 0, kInstruction = 1, kCallTail = 2, kPool = 3, kTrial = 4 };

// The farthest a function reaches from its start, and the largest gap
// between two functions that is searched for more code.
constexpr std::uint32_t kMaxFunction = 0x10000;
constexpr std::uint32_t kMaxGap = 0x1000;
// The most bytes a function seen first may leave unread inside itself.
constexpr std::uint32_t kMaxUnread = 32;
// The most filler that two spans of code are joined across.
constexpr std::uint32_t kMaxFiller = 0x40;

[[nodiscard]] std::int32_t SignExtend(std::uint32_t value, int bits) {
    const std::uint32_t sign = 1u << (bits - 1);
    return static_cast<std::int32_t>((value & ((sign << 1) - 1)) ^ sign) - static_cast<std::int32_t>(sign);
}

// Whether a half-word is a Thumb instruction of the ARMv4T processor. Out of
// the set: what it leaves undefined and what later processors added (BLX,
// BKPT, CBZ, ...). A lone second half of a bl is out as well.
[[nodiscard]] bool IsThumb(std::uint16_t h) {
    switch (h >> 8) {
        case 0x47: return (h & 0x87) == 0;  // bx Rm: no link bit, low bits zero
        case 0xB1: case 0xB2: case 0xB3: case 0xB6: case 0xB7: case 0xB8:
        case 0xB9: case 0xBA: case 0xBB: case 0xBE: case 0xBF: case 0xDE: return false;
        default: return h < 0xE800 || (h >= 0xF000 && h < 0xF800);
    }
}

// Whether a word is an ARM instruction of the ARMv4T processor. The console
// has no coprocessor, so coprocessor instructions are out with the
// undefined ones and those of later processors.
[[nodiscard]] bool IsArm(std::uint32_t w) {
    if (w >> 28 == 0xF) return false;
    switch ((w >> 25) & 7) {
        case 0:
            if ((w & 0x0FFFFFF0) == 0x012FFF10) return true;  // bx
            if ((w & 0x90) == 0x90) {
                if ((w & 0x60) != 0) return (w & 0x00100040) != 0x00000040;  // ldrh, strh, ldrsb, ldrsh
                return (w & 0x0FC000F0) == 0x00000090 || (w & 0x0F8000F0) == 0x00800090 ||
                       (w & 0x0FB00FF0) == 0x01000090;  // mul, mla, long multiplies, swp
            }
            if ((w & 0x01900000) == 0x01000000)  // tst..cmn without S: the status moves
                return (w & 0x0FBF0FFF) == 0x010F0000 || (w & 0x0FB0FFF0) == 0x0120F000;
            return true;
        case 1:
            if ((w & 0x01900000) == 0x01000000) return (w & 0x0FB0F000) == 0x0320F000;  // msr #imm
            return true;
        case 3: return (w & 0x10) == 0;  // ldr, str with a register offset
        case 6: return false;
        case 7: return (w & 0x01000000) != 0;  // swi
        default: return true;
    }
}

// Whether a word reads as an address of the console (work RAM, I/O,
// palette, video RAM, sprite table, cartridge), as most pool words do.
[[nodiscard]] bool LooksLikeAddress(std::uint32_t word) { return word >> 24 >= 0x02 && word >> 24 <= 0x09; }

// The length of the LZ77 stream at `at` (header 0x10 and a 3-byte size,
// then groups of a flag byte and eight literals or back references) when it
// decodes without a reference before its start. What the games compress
// (tiles, maps, palettes) comes in whole words, 32 bytes at least.
[[nodiscard]] std::optional<std::uint32_t> Lz77Length(std::string_view image, std::uint32_t at) {
    constexpr std::uint32_t kMinSize = 32, kMaxSize = 0x40000;
    const auto size = static_cast<std::uint32_t>(image.size());
    if (at + 4 > size || Byte(image, at) != 0x10) return std::nullopt;
    const std::uint32_t out = Word(image, at) >> 8;
    if (out < kMinSize || out > kMaxSize || out % 4 != 0) return std::nullopt;
    std::uint32_t p = at + 4, made = 0;
    while (made < out) {
        if (p >= size) return std::nullopt;
        const std::uint8_t flags = Byte(image, p++);
        for (int bit = 7; bit >= 0 && made < out; --bit) {
            if ((flags >> bit & 1) == 0) {
                if (p >= size) return std::nullopt;
                ++p;
                ++made;
                continue;
            }
            if (p + 2 > size) return std::nullopt;
            const std::uint32_t back = ((Byte(image, p) & 0xFu) << 8 | Byte(image, p + 1)) + 1;
            if (back > made) return std::nullopt;
            made += (Byte(image, p) >> 4) + 3u;
            p += 2;
        }
    }
    return p - at;
}

// The length of the sound sample at `at`: a 16-byte header (type 0 for
// 8-bit samples or 1 for 4-bit differences in blocks of 64, loop flag
// 0x4000 or 0, rate times 1024, loop start, sample count), then the samples.
[[nodiscard]] std::optional<std::uint32_t> SampleLength(std::string_view image, std::uint32_t at) {
    const auto size = static_cast<std::uint32_t>(image.size());
    if (at + 16 > size) return std::nullopt;
    const std::uint16_t type = Half(image, at), loops = Half(image, at + 2);
    const std::uint32_t rate = Word(image, at + 4), loop = Word(image, at + 8), count = Word(image, at + 12);
    if (type > 1 || (loops != 0 && loops != 0x4000) || (loops == 0 && loop != 0) || loop > count) return std::nullopt;
    if (rate < 1000 * 1024 || rate > 64000 * 1024 || count < 16 || count > size) return std::nullopt;
    const std::uint32_t bytes = type == 0 ? count + 1 : count / 64 * 33 + (count % 64 ? 1 + (count % 64) / 2 : 0);
    if (bytes > size - at - 16) return std::nullopt;
    return 16 + bytes;
}

// The bytes of the song whose header is at `at`: the header (track count,
// a zero, priority, reverb, voice group, then one pointer per track) comes
// after its tracks, which are command streams in file order that each end
// with FINE (0xB1).
[[nodiscard]] std::optional<Span> SongAt(std::string_view image, std::uint32_t at) {
    constexpr std::uint32_t kMaxTracks = 16, kMaxSong = 0x10000, kFine = 0xB1;
    const std::uint32_t tracks = at + 8 <= image.size() ? Byte(image, at) : 0;
    if (tracks == 0 || tracks > kMaxTracks || Byte(image, at + 1) != 0 || !PointerAt(image, at + 4) ||
        at + 8 + 4 * tracks > image.size())
        return std::nullopt;
    std::uint32_t first = at, end = at;  // the song's first byte; where the track read last ends
    for (std::uint32_t k = tracks; k-- > 0;) {
        const std::optional<std::uint32_t> track = PointerAt(image, at + 8 + 4 * k);
        if (!track || *track >= end || end - *track < 4 || at - *track > kMaxSong || Byte(image, *track) < 0x80) return std::nullopt;
        if (image.substr(end - 4, 4).find(static_cast<char>(kFine)) == std::string_view::npos) return std::nullopt;
        first = end = *track;
    }
    return Span{first, at + 8 + 4 * tracks - first};
}

// Whether a program for another console sits at `at`: an ARM branch and the
// same logo that the image's own header carries.
[[nodiscard]] bool IsEmbeddedProgram(std::string_view image, std::uint32_t at) {
    constexpr std::uint32_t kLogo = 4, kLogoEnd = 0xA0;
    return at + kHeaderSize <= image.size() && Byte(image, at + 3) == 0xEA && at >= kHeaderSize &&
           image.substr(at + kLogo, kLogoEnd - kLogo) == image.substr(kLogo, kLogoEnd - kLogo);
}

// The first offset from `at` on, before `to`, that is neither a zero
// half-word (padding) nor an aligned word that reads as an address (most
// likely a pool word); `to` when there is none.
[[nodiscard]] std::uint32_t PastFiller(std::string_view image, std::uint32_t at, std::uint32_t to) {
    while (at < to && at + 4 <= image.size()) {
        if (Half(image, at) == 0) at += 2;
        else if (at % 4 == 0 && LooksLikeAddress(Word(image, at))) at += 4;
        else return at;
    }
    return std::min(at, to);
}

struct Trace {
    bool clean = false;       // no path faulted
    bool returns = false;     // some path returns
    std::uint32_t calls = 0;  // Thumb calls to functions that save lr
    std::uint32_t end = 0;    // one past the last instruction or pool word
};

// Where a path of the trace goes on, and how many cases the last `cmp Rn,
// #n` on the way allows a switch (0: unknown).
struct Path {
    std::uint32_t at;
    std::uint32_t cases;
};

// Follows the control flow of functions, Thumb or ARM: branches, calls,
// returns, switches, and the literal pools that `ldr Rd, [pc, #n]` loads. A
// path faults when it meets an undefined instruction, a half of a call, a
// pool word, or leaves the image; a function is kept only when none does.
// Callees are kept as offsets, ARM ones with the low bit set.
class Tracer {
public:
    explicit Tracer(std::string_view image)
        : image_(image), size_(static_cast<std::uint32_t>(image.size())), marks_(image.size() / 2 + 1) {}  // all kFree

    [[nodiscard]] std::uint8_t MarkAt(std::uint32_t at) const { return marks_[at / 2]; }
    // `bytes` from `at` lie inside the image; a branch computed past either
    // end wraps around and must not pass for an offset inside.
    [[nodiscard]] bool Inside(std::uint32_t at, std::uint32_t bytes) const { return at <= size_ && size_ - at >= bytes; }

    // A strict trace faults on a push {.., lr} anywhere but at its start (a
    // pool word that reads as one must not pass for the start of the
    // function that follows it), and when it leaves more than a few bytes
    // unread between its start and end: bytes before code that only look
    // like a function reach the code with a jump over what they are not.
    [[nodiscard]] Trace Run(std::uint32_t start, bool arm, bool strict = false) {
        Trace t;
        strict_ = strict;
        soft_.clear();
        work_.assign(1, Path{start, 0});
        while (!work_.empty()) {
            const Path path = work_.back();
            work_.pop_back();
            if (!(arm ? WalkArm(start, path.at, t) : WalkThumb(start, path, t))) {
                Drop();
                return t;
            }
        }
        // What follows a call that may not come back (a swi, or a bl to code
        // that does not save lr: a far jump within the function, say) is
        // code only if it traces cleanly; if not, the function stands without it,
        // and without the maybes it met (a loop would meet them again and again).
        for (std::size_t i = 0; i < soft_.size(); ++i) {
            const std::size_t marked = trial_.size(), calls = trialCalls_.size(), maybes = soft_.size();
            const Trace before = t;
            work_.assign(1, soft_[i]);
            while (!work_.empty()) {
                const Path path = work_.back();
                work_.pop_back();
                if (WalkThumb(start, path, t)) continue;
                for (std::size_t k = marked; k < trial_.size(); ++k) marks_[trial_[k]] = kFree;
                trial_.resize(marked);
                trialCalls_.resize(calls);
                soft_.resize(maybes);
                work_.clear();
                t = before;
            }
        }
        t.end = start;
        for (std::uint32_t i : trial_) t.end = std::max(t.end, i * 2 + 2);
        t.clean = !strict || Compact(start, t.end);
        if (!t.clean) Drop();
        return t;
    }

    // Makes the marks of the trace final and its callees pending.
    void Keep() {
        for (std::uint32_t i : trial_) {
            marks_[i] &= ~kTrial;
            kept_.push_back(i);
        }
        trial_.clear();
        callees_.insert(callees_.end(), trialCalls_.begin(), trialCalls_.end());
        trialCalls_.clear();
    }
    void Drop() {
        for (std::uint32_t i : trial_) marks_[i] = kFree;
        trial_.clear();
        trialCalls_.clear();
    }
    // Undo takes back what was kept since the checkpoint.
    void Checkpoint() {
        kept_.clear();
        checkpointCallees_ = callees_.size();
    }
    void Undo() {
        for (std::uint32_t i : kept_) marks_[i] = kFree;
        kept_.clear();
        callees_.resize(std::min(callees_.size(), checkpointCallees_));
    }

    [[nodiscard]] bool NextCallee(std::uint32_t& callee) {
        if (callees_.empty()) return false;
        callee = callees_.back();
        callees_.pop_back();
        return true;
    }

private:
    // Marks `at` for the trace under way; false when something else is there.
    bool Claim(std::uint32_t at, Mark mark) {
        std::uint8_t& m = marks_[at / 2];
        if (m == kFree) {
            trial_.push_back(at / 2);
            m = kTrial | mark;
            return true;
        }
        return mark == kPool && (m & ~kTrial) == kPool;  // functions may share a pool word
    }

    // Claims the instruction at `at` of `bytes` bytes. Returns 1 when the
    // path is new there, 0 when it joins code traced already, -1 on a fault.
    int Enter(std::uint32_t start, std::uint32_t at, std::uint32_t bytes) {
        if (at >= start + kMaxFunction || !Inside(at, bytes)) return -1;
        const std::uint8_t m = marks_[at / 2];
        if ((m & ~kTrial) == kInstruction) return 0;
        if (m != kFree) return -1;
        for (std::uint32_t i = 0; i < bytes; i += 2) {
            if (!Claim(at + i, kInstruction)) return -1;
        }
        return 1;
    }

    [[nodiscard]] bool Compact(std::uint32_t start, std::uint32_t end) const {
        std::uint32_t unread = 0;
        for (std::uint32_t at = start; at < end && unread <= kMaxUnread; at += 2) unread = marks_[at / 2] == kFree ? unread + 2 : 0;
        return unread <= kMaxUnread;
    }

    bool PoolWord(std::uint32_t at) { return Inside(at, 4) && Claim(at, kPool) && Claim(at + 2, kPool); }

    // One Thumb path from `at` until it returns, meets code traced already,
    // or faults (false).
    bool WalkThumb(std::uint32_t start, Path path, Trace& t) {
        std::uint32_t at = path.at;
        std::uint32_t loaded = 0;                 // the last word this path loaded from its pool
        std::uint32_t loadAt = 0, loadReg = 16;  // where and into which register
        for (;;) {
            if (at < start) {  // a jump back out of the function: a tail call
                trialCalls_.push_back(at);
                return true;
            }
            const std::uint16_t h = Inside(at, 2) ? Half(image_, at) : 0xDE00;
            if (!IsThumb(h)) return false;
            const int entered = Enter(start, at, 2);
            if (entered <= 0) return entered == 0;
            const unsigned op = h >> 8;
            if (op == 0xB5 && strict_ && at != start) return false;
            if (op >= 0xF0) {  // bl: two halves
                if (!Inside(at, 4) || Half(image_, at + 2) < 0xF800 || !Claim(at + 2, kCallTail)) return false;
                const std::uint32_t target = at + 4 + static_cast<std::uint32_t>(SignExtend(h, 11) * 4096) +
                                             (Half(image_, at + 2) & 0x7FFu) * 2;
                if (target < kHeaderSize || !Inside(target, 2)) return false;
                trialCalls_.push_back(target);
                at += 4;
                // A large function also jumps within itself with bl, and a
                // pool may follow such a jump: unless the target saves lr,
                // the way on is only a maybe.
                if (Byte(image_, target + 1) != 0xB5) {
                    soft_.push_back({at, 0});
                    return true;
                }
                ++t.calls;
                continue;
            }
            if (op == 0xDF) {  // swi: some (reset) do not come back
                soft_.push_back({at + 2, 0});
                return true;
            }
            if (op >= 0xD0 && op <= 0xDD) {  // b<cond>
                work_.push_back({at + 4 + static_cast<std::uint32_t>(SignExtend(h, 8) * 2), path.cases});
            } else if (op >= 0xE0) {  // b
                at = at + 4 + static_cast<std::uint32_t>(SignExtend(h, 11) * 2);
                continue;
            } else if (op == 0xBD) {  // pop {.., pc}
                t.returns = true;
                return true;
            } else if (op == 0x47) {  // bx Rm: a return, or a call to what was just loaded
                t.returns = true;
                const std::uint32_t reg = (h >> 3) & 15;
                if (reg == 15) trialCalls_.push_back(((at + 4) & ~3u) | 1);  // bx pc: ARM follows
                if (reg == loadReg && loadAt + 2 == at) {
                    if (const std::optional<std::uint32_t> target = Target(loaded, size_))
                        if (*target % 2 == 1 || *target % 4 == 0) trialCalls_.push_back(*target ^ 1);
                }
                return true;
            } else if (op == 0x46 && (h & 0x87) == 0x87) {  // mov pc, Rm: a switch
                t.returns = true;
                return JumpTable(start, at, loaded, path.cases);
            } else if (op >= 0x48 && op < 0x50) {  // ldr Rd, [pc, #n]
                const std::uint32_t pool = ((at + 4) & ~3u) + (h & 0xFFu) * 4;
                if (!PoolWord(pool)) return false;
                loaded = Word(image_, pool);
                loadAt = at;
                loadReg = op & 7;
            } else if (op >= 0x28 && op < 0x30) {  // cmp Rn, #n: how many cases a switch that follows has
                path.cases = (h & 0xFFu) + 1;
            } else if (op >= 0xA0 && op < 0xA8) {  // add Rd, pc, #n
                loaded = PointerTo(((at + 4) & ~3u) + (h & 0xFFu) * 4);
                loadAt = at;
                loadReg = op & 7;
            }
            at += 2;
        }
    }

    // A switch jumps through a table of case addresses that lies after the
    // `mov pc, Rm` (past the pool, when the path loaded the table's address
    // last), and ends where the first case after it begins.
    bool JumpTable(std::uint32_t start, std::uint32_t at, std::uint32_t loaded, std::uint32_t cases) {
        std::uint32_t slot = (at + 5) & ~3u;
        const std::optional<std::uint32_t> table = Target(loaded, size_);
        if (table && *table % 4 == 0 && *table > at && *table - at < 1024) slot = *table;
        const std::uint32_t reach = std::min(size_, start + kMaxFunction);
        const std::uint32_t last = cases != 0 ? slot + cases * 4 : reach;
        for (std::uint32_t firstCase = reach; slot < std::min(firstCase, last) && Inside(slot, 4); slot += 4) {
            const std::optional<std::uint32_t> target = PointerAt(image_, slot);
            if (!target || *target % 2 != 0 || *target < start || *target >= reach || *target - slot < 4) break;
            if (!PoolWord(slot)) return false;
            work_.push_back({*target, 0});
            if (*target > slot) firstCase = std::min(firstCase, *target);
        }
        return true;
    }

    // One ARM path, as WalkThumb.
    bool WalkArm(std::uint32_t start, std::uint32_t at, Trace& t) {
        for (;;) {
            if (at < start) {
                trialCalls_.push_back(at | 1);
                return true;
            }
            const std::uint32_t w = Inside(at, 4) ? Word(image_, at) : 0xF0000000;
            if (at % 4 != 0 || !IsArm(w)) return false;
            const int entered = Enter(start, at, 4);
            if (entered <= 0) return entered == 0;
            const bool always = w >> 28 == 0xE;
            if ((w & 0x0E000000) == 0x0A000000) {  // b, bl
                const std::uint32_t target = at + 8 + static_cast<std::uint32_t>(SignExtend(w, 24) * 4);
                if (target < kHeaderSize || target >= size_) return false;
                if (w & 0x01000000) {
                    trialCalls_.push_back(target | 1);
                } else if (always) {
                    at = target;
                    continue;
                } else {
                    work_.push_back({target, 0});
                }
            } else if ((w & 0x0FFFFFF0) == 0x012FFF10 ||      // bx
                       (w & 0x0E108000) == 0x08108000 ||      // ldm with pc
                       (w & 0x0C50F000) == 0x0410F000 ||      // ldr pc
                       (w & 0x0C00F000) == 0x0000F000) {      // data processing into pc
                t.returns = true;
                if (always) return true;
            } else if ((w & 0x0F7F0000) == 0x051F0000) {  // ldr Rd, [pc, #n]
                const std::uint32_t offset = w & 0xFFF;
                const std::uint32_t pool = (w & 0x00800000) ? at + 8 + offset : at + 8 - offset;
                if (pool % 4 == 0 && !PoolWord(pool)) return false;
            }
            at += 4;
        }
    }

    std::string_view image_;
    std::uint32_t size_;
    ZeroedBytes marks_;
    std::vector<Path> work_, soft_;
    std::vector<std::uint32_t> trial_, trialCalls_, callees_, kept_;
    std::size_t checkpointCallees_ = 0;
    bool strict_ = false;
};

bool InSpans(const std::vector<Span>& spans, std::uint32_t offset) {
    auto it = std::upper_bound(spans.begin(), spans.end(), offset,
                               [](std::uint32_t o, const Span& s) { return o < s.offset; });
    return it != spans.begin() && std::prev(it)->Contains(offset);
}

// Sorts spans and joins those that overlap or touch.
std::vector<Span> Joined(std::vector<Span> spans) {
    std::sort(spans.begin(), spans.end(), [](const Span& a, const Span& b) { return a.offset < b.offset; });
    std::vector<Span> joined;
    for (const Span& s : spans) {
        if (!joined.empty() && s.offset <= joined.back().End())
            joined.back().size = std::max(joined.back().End(), s.End()) - joined.back().offset;
        else
            joined.push_back(s);
    }
    return joined;
}

// Finds the code in stages that share one tracer: sure functions first,
// then what they call, then what lies between them.
class CodeFinder {
public:
    CodeFinder(std::string_view image, const PointerIndex& pointers)
        : image_(image), size_(static_cast<std::uint32_t>(image.size())), pointers_(pointers), tracer_(image),
          led_(size_ / 256 + 1, 0) {}

    [[nodiscard]] std::vector<Span> Functions() {
        TraceEntry();
        TraceSeeds();
        TraceCallees();
        ReadPointers();
        for (std::size_t before = 0; before != kept_;) {
            before = kept_;
            functions_ = Joined(std::move(functions_));
            FillGaps();
            TraceCallees();
        }
        return Joined(std::move(functions_));
    }

    [[nodiscard]] const Tracer& Marks() const { return tracer_; }

    // The aligned offsets that aligned pointers lead to, in file order.
    [[nodiscard]] std::vector<std::uint32_t> Targets() const {
        std::vector<std::uint32_t> targets;
        for (std::size_t i = 0; i < led_.size(); ++i) {
            for (std::uint64_t bits = led_[i]; bits != 0; bits &= bits - 1)
                targets.push_back(static_cast<std::uint32_t>((i * 64 + static_cast<std::size_t>(std::countr_zero(bits))) * 4));
        }
        return targets;
    }

private:
    void Keep(std::uint32_t start, const Trace& t) {
        tracer_.Keep();
        functions_.push_back({start, t.end - start});
        ++kept_;
    }

    // The cartridge starts with an ARM branch to the start-up code.
    void TraceEntry() {
        const std::uint32_t entry = Word(image_, 0);
        const std::uint32_t start = 8 + (entry & 0xFFFFFF) * 4;
        if (entry >> 24 != 0xEA || start >= size_) return;
        if (const Trace t = tracer_.Run(start, true); t.clean) Keep(start, t);
    }

    // A Thumb function that saves lr, returns and calls another that saves
    // lr is code beyond doubt. The scan looks for the push byte.
    void TraceSeeds() {
        for (std::size_t found = image_.find('\xB5', kHeaderSize + 1); found != std::string_view::npos;
             found = image_.find('\xB5', found + 1)) {
            const auto at = static_cast<std::uint32_t>(found - 1);
            if (at % 2 != 0 || tracer_.MarkAt(at) != kFree) continue;
            const Trace t = tracer_.Run(at, false, true);
            if (t.clean && t.returns && t.calls > 0) Keep(at, t);
            else tracer_.Drop();
        }
    }

    // What traced code calls is code when it traces cleanly.
    void TraceCallees() {
        for (std::uint32_t callee; tracer_.NextCallee(callee);) {
            const std::uint32_t at = callee & ~1u;
            if (tracer_.MarkAt(at) != kFree) continue;
            if (const Trace t = tracer_.Run(at, (callee & 1) != 0); t.clean) Keep(at, t);
        }
    }

    // The aligned pointers of the index tell where pointers lead: to code
    // (an odd address: Thumb) or to data (one bit per aligned word, for later).
    void ReadPointers() {
        for (const std::uint64_t e : pointers_.Entries()) {
            const auto at = static_cast<std::uint32_t>(e), target = static_cast<std::uint32_t>(e >> 32);
            if (at % 4 != 0) continue;
            if (target % 2 != 0) callbacks_.push_back(target - 1);
            else if (target % 4 == 0) led_[target / 256] |= std::uint64_t{1} << (target / 4 % 64);
        }
        std::sort(callbacks_.begin(), callbacks_.end());
        callbacks_.erase(std::unique(callbacks_.begin(), callbacks_.end()), callbacks_.end());
    }

    // What lies between two functions is code too when it traces as a row of
    // functions without a fault. So is a function that a pointer leads to (a
    // callback, say) right before or after code, across filler only, when it
    // traces strictly and returns: odd pointers also lead to texts, and data
    // near code can trace as a row of functions.
    void FillGaps() {
        const std::size_t known = functions_.size();  // in file order; Keep adds more after them
        for (std::size_t i = 0; i + 1 < known; ++i) {
            if (functions_[i + 1].offset - functions_[i].End() <= kMaxGap)
                Fill(functions_[i].End(), functions_[i + 1].offset);
        }
        for (const std::uint32_t at : callbacks_) {
            if (tracer_.MarkAt(at) != kFree) continue;
            const auto last = functions_.begin() + static_cast<std::ptrdiff_t>(known);
            const auto next = std::upper_bound(functions_.begin(), last, at,
                                               [](std::uint32_t o, const Span& f) { return o < f.offset; });
            // Where the code before it ends and where the code after it starts: it must touch one.
            const std::uint32_t from = next != functions_.begin() ? std::prev(next)->End() : at + 1;
            const std::uint32_t to = next != last ? next->offset : 0;
            const bool after = from <= at && at - from <= kMaxGap && PastFiller(image_, from, at) == at;
            if (!after && (to == 0 || to - at > kMaxGap)) continue;
            const Trace t = tracer_.Run(at, false, true);
            if (t.clean && t.returns && (after || (t.end <= to && PastFiller(image_, t.end, to) == to))) Keep(at, t);
            else tracer_.Drop();
        }
    }

    void Fill(std::uint32_t from, std::uint32_t to) {
        tracer_.Checkpoint();
        const std::size_t before = functions_.size();
        for (std::uint32_t at = PastFiller(image_, from, to); at < to; at = PastFiller(image_, at, to)) {
            if (tracer_.MarkAt(at) != kFree) {
                at += 2;
                continue;
            }
            Trace t = tracer_.Run(at, false);
            if (!t.clean && at % 4 == 0) t = tracer_.Run(at, true);
            if (!t.clean) {
                tracer_.Drop();
                tracer_.Undo();
                kept_ -= functions_.size() - before;
                functions_.resize(before);
                return;
            }
            Keep(at, t);
            at = t.end;
        }
    }

    std::string_view image_;
    std::uint32_t size_;
    const PointerIndex& pointers_;
    Tracer tracer_;
    std::vector<Span> functions_;
    std::size_t kept_ = 0;
    std::vector<std::uint32_t> callbacks_;
    std::vector<std::uint64_t> led_;
};

// The binary data at the places that aligned pointers lead to: compressed
// data, sound samples, songs, programs for another console. `loaded` holds
// where pool words lead, in order.
[[nodiscard]] std::vector<Span> BinaryData(std::string_view image, const std::vector<std::uint32_t>& targets,
                                           const std::vector<std::uint32_t>& loaded, const CodeMap& map) {
    const auto size = static_cast<std::uint32_t>(image.size());
    std::vector<Span> binary;
    for (const std::uint32_t at : targets) {
        if (map.IsCode(at)) continue;
        if (std::optional<std::uint32_t> length = Lz77Length(image, at); length) {
            binary.push_back({at, *length});
        } else if ((length = SampleLength(image, at))) {
            binary.push_back({at, *length});
        } else if (const std::optional<Span> song = SongAt(image, at)) {
            binary.push_back(*song);
        } else if (IsEmbeddedProgram(image, at)) {
            // It runs up to the next place that code refers to, less the
            // fill, and fits the console's 256 KiB of work RAM.
            constexpr std::uint32_t kMaxProgram = 0x40000;
            const auto next = std::upper_bound(loaded.begin(), loaded.end(), at);
            std::uint32_t end = std::min({next == loaded.end() ? size : *next, at + kMaxProgram, size});
            while (end > at + kHeaderSize && (Byte(image, end - 1) == 0xFF || Byte(image, end - 1) == 0)) --end;
            binary.push_back({at, end - at});
        }
    }
    return Joined(std::move(binary));
}

}  // namespace

bool CodeMap::IsCode(std::uint32_t offset) const { return InSpans(code_, offset); }

bool CodeMap::IsPoolWord(std::uint32_t offset) const {
    return std::binary_search(pools_.begin(), pools_.end(), offset);
}

bool CodeMap::IsBinaryData(std::uint32_t offset) const { return InSpans(binary_, offset); }

bool CodeMap::IsLookalike(std::uint32_t place) const {
    if (IsBinaryData(place)) return true;
    if (!IsCode(place)) return false;
    if (place % 4 != 0) return true;
    const std::size_t half = place / 2;
    return half / 64 < instructions_.size() && (instructions_[half / 64] >> (half % 64) & 1) != 0;
}

CodeMap FindCode(std::string_view image) { return FindCode(image, PointerIndex(image)); }

CodeMap FindCode(std::string_view image, const PointerIndex& pointers) {
    CodeMap map;
    const auto size = static_cast<std::uint32_t>(image.size());
    if (size < kHeaderSize + 4) return map;
    CodeFinder finder(image, pointers);

    // The spans of code, joined across what pads functions apart and the
    // pool words that nothing traced loads.
    for (const Span& f : finder.Functions()) {
        if (!map.code_.empty() && f.offset - map.code_.back().End() <= kMaxFiller &&
            PastFiller(image, map.code_.back().End(), f.offset) >= f.offset) {
            map.code_.back().size = f.End() - map.code_.back().offset;
            continue;
        }
        map.code_.push_back(f);
    }

    map.instructions_.assign(size / 128 + 1, 0);
    std::vector<std::uint32_t> loaded;  // where the words of literal pools lead
    for (const Span& span : map.code_) {
        for (std::uint32_t at = span.offset; at < span.End(); at += 2) {
            const std::uint8_t m = finder.Marks().MarkAt(at);
            if (m == kInstruction || m == kCallTail) map.instructions_[at / 128] |= std::uint64_t{1} << (at / 2 % 64);
            if (m != kPool || at % 4 != 0) continue;
            map.pools_.push_back(at);
            if (const std::optional<std::uint32_t> target = PointerAt(image, at)) loaded.push_back(*target);
        }
    }
    std::sort(loaded.begin(), loaded.end());
    map.binary_ = BinaryData(image, finder.Targets(), loaded, map);
    return map;
}

}  // namespace quillon::game
