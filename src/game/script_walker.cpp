#include "game/script_walker.h"

#include "core/zeroed_array.h"
#include "game/words.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

namespace quillon::game {
namespace {

constexpr std::uint8_t kEnd = 0x02, kLoadword = 0x0F, kHideMoneyBox = 0x94;
constexpr int kMostCommands = 256;

[[nodiscard]] bool EndsPath(Flow flow) {
    return flow == Flow::End || flow == Flow::Return || flow == Flow::Goto || flow == Flow::GotoStd ||
           flow == Flow::RelativeGoto;
}

[[nodiscard]] bool IsNop(const Instruction& instruction) { return instruction.command->name.starts_with("nop"); }

// setvaddress makes later 'v' addresses relative to (its operand - its own
// address). Scripts meant to be copied elsewhere are laid out in the image
// with the operand naming the command itself: there the relative addresses
// are plain cartridge addresses. nullopt: no setvaddress.
[[nodiscard]] std::optional<bool> SetsOwnBase(const Instruction& instruction) {
    if (instruction.count != 1 || instruction.arguments[0].letter != 'a') return std::nullopt;
    return instruction.arguments[0].value == PointerTo(instruction.offset);
}

// The offset right after the terminator of the list a pointer of `role`
// aims at, looking at most `within` bytes: 0xFF ends a text, 0xFE a
// movement list, a 0 halfword a mart list.
[[nodiscard]] std::optional<std::uint32_t> ListEnd(std::string_view image, Role role, std::uint32_t target,
                                                   std::uint32_t within) {
    const std::uint32_t stop = static_cast<std::uint32_t>(std::min<std::size_t>(image.size(), std::size_t{target} + within));
    const std::uint32_t step = role == Role::Mart ? 2 : 1;
    for (std::uint32_t at = target; at + step <= stop; at += step) {
        switch (role) {
            case Role::Text: case Role::BrailleText: if (Byte(image, at) == 0xFF) return at + 1; break;
            case Role::Movement: if (Byte(image, at) == 0xFE) return at + 1; break;
            case Role::Mart: if (Half(image, at) == 0) return at + 2; break;
            default: return std::nullopt;
        }
    }
    return std::nullopt;
}

// loadword puts a word into a bank of the script; bank 0 is the text that
// `message 0` shows, which is how the standard message scripts show theirs.
// The word is a text when a standard script or a message of bank 0 follows
// before the path ends; the standard index is kept for the caller.
[[nodiscard]] std::pair<Role, std::uint8_t> LoadwordRole(std::string_view image, Family family, const Instruction& load) {
    if (load.arguments[0].value != 0) return {Role::Data, 0xFF};
    std::uint32_t at = load.End();
    for (int n = 0; n < 8; ++n) {
        const auto next = DecodeCommand(image, family, at);
        if (!next) break;
        const Flow flow = next->command->flow;
        if (flow == Flow::CallStd || flow == Flow::GotoStd)
            return {Role::Text, static_cast<std::uint8_t>(next->arguments[0].value)};
        if (flow == Flow::CallStdIf || flow == Flow::GotoStdIf)
            return {Role::Text, static_cast<std::uint8_t>(next->arguments[1].value)};
        if (flow != Flow::TrainerBattle)
            for (std::uint8_t i = 0; i < next->count; ++i)
                if (next->arguments[i].operand.pointer == Pointer::Nullable && next->arguments[i].value == 0)
                    return {Role::Text, 0xFF};
        if (EndsPath(flow) || (next->command->code == kLoadword && next->arguments[0].value == 0)) break;
        at = next->End();
    }
    return {Role::Data, 0xFF};
}

// The pointer an argument holds, with its role, when it aims into the
// cartridge. `based`: the path set its relative base to itself.
struct Aim {
    std::uint32_t target = 0;
    Role role = Role::Data;
    std::uint8_t standard = 0xFF;
};
[[nodiscard]] std::optional<Aim> AimOf(std::string_view image, Family family, const Instruction& instruction,
                                      const Argument& argument, bool based) {
    const Pointer pointer = argument.operand.pointer;
    if (pointer == Pointer::None || (pointer == Pointer::Relative && !based)) return std::nullopt;
    const auto target = Target(argument.value, image.size());
    if (!target) return std::nullopt;
    if (argument.letter != 'L') return Aim{*target, argument.operand.role};
    const auto [role, standard] = LoadwordRole(image, family, instruction);
    return Aim{*target, role, standard};
}

// Byte states. A path is read ahead into a buffer and only committed when it
// ends cleanly; the starts of a path that fails are marked doomed, since any
// later path that reaches one reads the same bytes to the same failure.
enum : std::uint8_t { kFree, kStart, kInside, kDoomed };

class Walker {
public:
    Walker(std::string_view image, Family family) : image_(image), family_(family), state_(image.size()) {}  // all kFree

    void Run(std::uint32_t offset, std::int32_t owner) {
        pending_.push_back({offset, false});
        while (!pending_.empty()) {
            const auto [start, based] = pending_.back();
            pending_.pop_back();
            Path(start, based, owner);
        }
    }

    // Scripts that nothing walked points at lie where scripts are laid out:
    // right after a walked script, or after the text, movement or mart list
    // a walked script points at; and scripts laid out to be copied to RAM
    // open with a setvaddress naming themselves. Each must pass the probe;
    // it is owned as what it follows. The start of a list that a walked
    // script points at is no script, though its bytes may read as one.
    void RunUnreferenced() {
        for (std::size_t found = image_.find('\xB8'); found != std::string_view::npos; found = image_.find('\xB8', found + 1)) {
            const auto at = static_cast<std::uint32_t>(found);
            if (found + 5 <= image_.size() && Word(image_, at + 1) == PointerTo(at)) ends_.push_back({at, -1, false});
        }
        std::unordered_set<std::uint32_t> lists;  // starts of the lists walked scripts point at
        std::size_t seen = 0;                     // pointers looked at so far
        while (true) {
            for (; seen < pointers_.size(); ++seen) {
                const ScriptPointer& pointer = pointers_[seen];
                if (pointer.role == Role::Script || pointer.role == Role::Data || !lists.insert(pointer.target).second)
                    continue;
                if (const auto after = ListEnd(image_, pointer.role, pointer.target, 4096))
                    ends_.push_back({*after, pointer.owner, false});
            }
            if (ends_.empty()) break;
            const auto [at, owner, afterJump] = ends_.back();
            ends_.pop_back();
            if (at >= image_.size() || state_[at] != kFree || lists.contains(at)) continue;
            if (ParsesAsScript(image_, family_, at))
                Run(at, owner);
            else if (afterJump && Byte(image_, at) == kEnd)
                ends_.push_back({at + 1, owner, false});  // the dead `end` often written after a goto
        }
    }

    [[nodiscard]] ScriptWalk Finish() && {
        ScriptWalk walk;
        std::stable_sort(pointers_.begin(), pointers_.end(),
                         [](const ScriptPointer& a, const ScriptPointer& b) { return a.place < b.place; });
        walk.pointers = std::move(pointers_);
        std::sort(spans_.begin(), spans_.end(), [](const Span& a, const Span& b) { return a.offset < b.offset; });
        for (const Span& span : spans_) {
            if (!walk.scripts.empty() && walk.scripts.back().End() >= span.offset)
                walk.scripts.back().size = std::max(walk.scripts.back().End(), span.End()) - walk.scripts.back().offset;
            else
                walk.scripts.push_back(span);
        }
        return walk;
    }

private:
    struct Step {
        Instruction instruction;
        bool based = false;  // 'v' addresses are cartridge addresses
    };
    struct End {
        std::uint32_t at = 0;
        std::int32_t owner = -1;
        bool afterJump = false;  // follows a path that ended in a goto
    };

    void Path(std::uint32_t at, bool based, std::int32_t owner) {
        path_.clear();
        bool clean = false;
        while (at < image_.size()) {
            if (state_[at] == kStart) { clean = true; break; }  // joins a walked path
            if (state_[at] != kFree) break;
            const auto instruction = DecodeCommand(image_, family_, at);
            if (!instruction) break;
            bool overlaps = false;
            for (std::uint32_t b = at + 1; b < instruction->End() && !overlaps; ++b)
                overlaps = state_[b] == kStart || state_[b] == kInside;
            if (overlaps) break;
            if (const auto own = SetsOwnBase(*instruction)) based = *own;
            path_.push_back({*instruction, based});
            if (EndsPath(instruction->command->flow)) { clean = true; break; }
            at = instruction->End();
        }
        if (!clean) {
            for (const Step& step : path_) state_[step.instruction.offset] = kDoomed;
            if (at < image_.size() && state_[at] == kFree) state_[at] = kDoomed;
            return;
        }
        for (const Step& step : path_) Commit(step, owner);
        if (path_.empty()) return;
        const Flow last = path_.back().instruction.command->flow;
        ends_.push_back({path_.back().instruction.End(), owner, last == Flow::Goto || last == Flow::GotoStd});
    }

    void Commit(const Step& step, std::int32_t owner) {
        const Instruction& instruction = step.instruction;
        state_[instruction.offset] = kStart;
        std::fill(state_.data() + instruction.offset + 1, state_.data() + instruction.End(), kInside);
        spans_.push_back({instruction.offset, instruction.size});
        for (std::uint8_t i = 0; i < instruction.count; ++i) {
            const Argument& argument = instruction.arguments[i];
            const auto aim = AimOf(image_, family_, instruction, argument, step.based);
            if (!aim) continue;
            pointers_.push_back({argument.at, aim->target, aim->role, instruction.command->code, owner, aim->standard});
            if (aim->role == Role::Script) pending_.push_back({aim->target, step.based});
        }
    }

    std::string_view image_;
    Family family_;
    ZeroedBytes state_;
    std::vector<std::pair<std::uint32_t, bool>> pending_;  // script starts, with their base
    std::vector<End> ends_;                                // where unreferenced scripts may start
    std::vector<Step> path_;
    std::vector<ScriptPointer> pointers_;
    std::vector<Span> spans_;
};

// Whether the straight line of commands from `at` ends cleanly within
// kMostCommands. No-ops are refused but for the two zero bytes assemblers put
// after a hidemoneybox whose handler reads none, which the game runs as nops:
// zero padding and other data read as runs of them.
[[nodiscard]] bool EndsCleanly(std::string_view image, Family family, std::uint32_t at) {
    int nopsAllowed = 0;
    for (int n = 0; n < kMostCommands; ++n) {
        const auto instruction = DecodeCommand(image, family, at);
        if (!instruction) return false;
        if (IsNop(*instruction)) {
            if (instruction->command->code != 0x00 || nopsAllowed-- == 0) return false;
        } else {
            nopsAllowed = instruction->command->code == kHideMoneyBox && instruction->size == 1 ? 2 : 0;
        }
        if (EndsPath(instruction->command->flow)) return true;
        at = instruction->End();
    }
    return false;
}

// Whether what a probed operand points at looks like what its role says: a
// script whose straight line ends cleanly, a text that ends, a non-empty
// movement list of action ids (below 0xAA in every family) that ends, a
// non-empty mart list that ends.
[[nodiscard]] bool Plausible(std::string_view image, Family family, Role role, std::uint32_t target) {
    switch (role) {
        case Role::Script: return EndsCleanly(image, family, target);
        case Role::Text: case Role::BrailleText: return ListEnd(image, role, target, 1024).has_value();
        case Role::Movement: {
            const auto end = ListEnd(image, role, target, 256);
            if (!end || *end == target + 1) return false;
            for (std::uint32_t at = target; at + 1 < *end; ++at)
                if (Byte(image, at) >= 0xAA) return false;
            return true;
        }
        case Role::Mart: {
            const auto end = ListEnd(image, role, target, 512);
            return end && *end > target + 2;
        }
        case Role::Data: return true;
    }
    return false;
}

}  // namespace

ScriptWalk WalkScripts(std::string_view image, Family family, const std::vector<ScriptEntry>& entries,
                       Unreferenced unreferenced) {
    Walker walker(image, family);
    for (const ScriptEntry& entry : entries) walker.Run(entry.offset, entry.owner);
    if (unreferenced == Unreferenced::Probe) walker.RunUnreferenced();
    return std::move(walker).Finish();
}

bool ParsesAsScript(std::string_view image, Family family, std::uint32_t offset) {
    if (!EndsCleanly(image, family, offset)) return false;
    bool evidence = false;  // a plausible pointer to text, script, movement or mart
    bool based = false;
    for (int n = 0; n < kMostCommands; ++n) {
        const auto instruction = DecodeCommand(image, family, offset);
        if (!instruction) return false;
        if (const auto own = SetsOwnBase(*instruction)) based = *own;
        for (std::uint8_t i = 0; i < instruction->count; ++i) {
            const auto aim = AimOf(image, family, *instruction, instruction->arguments[i], based);
            if (!aim || aim->role == Role::Data) continue;
            if (!Plausible(image, family, aim->role, aim->target)) return false;
            evidence = true;
        }
        if (EndsPath(instruction->command->flow)) return evidence;
        offset = instruction->End();
    }
    return false;
}

}  // namespace quillon::game
