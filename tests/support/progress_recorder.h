#pragma once
// Long work's progress as a list of calls; asks to stop at a chosen step.
#include "app/progress.h"

#include <string>
#include <vector>

namespace quillon::test {

class ProgressRecorder final : public Progress {
public:
    void Begin(std::string_view what, std::uint64_t) override { stages.emplace_back(what); ++open; }
    bool Step(std::uint64_t) override { return ++steps != stopAtStep; }
    void End() override { --open; }

    std::vector<std::string> stages;
    int open = 0;         // stages begun and not ended
    int steps = 0;
    int stopAtStep = -1;  // the step that asks to stop; -1 for none
};

}  // namespace quillon::test
