#pragma once
// The one interface through which long work reports how far it got and
// learns that the user wants it stopped. The windows show a progress bar, the
// command-line program a line on a terminal, tests record the calls.
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace quillon {

class Progress {
public:
    virtual ~Progress() = default;

    // A stage of the work begins: `what` names it for the user, `total` is
    // its number of steps (0 when not known).
    virtual void Begin(std::string_view what, std::uint64_t total) = 0;
    // `done` of the stage's steps are done. False asks the work to stop; it
    // then throws Cancelled before it has written anything.
    virtual bool Step(std::uint64_t done) = 0;
    // The stage ended (also after a stop or a failure).
    virtual void End() = 0;
};

// For callers without a display: never asks to stop.
class NoProgress final : public Progress {
public:
    void Begin(std::string_view, std::uint64_t) override {}
    bool Step(std::uint64_t) override { return true; }
    void End() override {}
};

// The user stopped the work; nothing was written.
struct Cancelled : std::runtime_error {
    Cancelled() : std::runtime_error("Stopped by the user. Nothing was written.") {}
};

// Begins a stage and ends it when the scope is left, however it is left.
class ProgressStage {
public:
    ProgressStage(Progress& progress, std::string_view what, std::uint64_t total) : progress_(progress) {
        progress_.Begin(what, total);
    }
    ~ProgressStage() { progress_.End(); }
    ProgressStage(const ProgressStage&) = delete;
    ProgressStage& operator=(const ProgressStage&) = delete;

    // Reports `done`; throws Cancelled when asked to stop.
    void Step(std::uint64_t done) {
        if (!progress_.Step(done)) throw Cancelled();
    }

private:
    Progress& progress_;
};

}  // namespace quillon
