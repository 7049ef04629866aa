// The figures of the README's Safety section, measured: a save with a repoint
// and its recovery cut off after every write, each write of the save failed
// once (EIO, ENOSPC), and two processes saving to one ROM at once. Prints the
// counts; exits with 1 when a cut or a fault leaves a state other than before
// or after the save, or a save is lost. Run by hand, not by ctest:
//   build/tests/safety_figures [saves per process]
#include "core/file_io.h"
#include "edit/save_text.h"
#include "fit/fit_settings.h"
#include "store/journal.h"
#include "store/recovery.h"
#include "store/writer.h"
#include "support/workspace.h"

#include <quillon/errors.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>

using namespace quillon;
using namespace quillon::test;

namespace {

using State = std::pair<std::string, std::string>;  // the ROM and its offset file

// "Hello" at 0x100000 with three pointers, grown to a text that must move.
struct Stage {
    Workspace w;
    Stage() { w.OpenAt(HelloRom(), "[Town]\r\nMom=100000\r\n", "Town", "Mom"); }
    void Save() {
        w.session.controls.text1.SetText("Hello there, a text that has to move!");
        w.user.answers.clear();
        w.user.Yes();
        SaveText(w.session, fit::ConfirmFitBeforeSave);
        w.user.Take();
    }
    State Now() const { return {w.RomBytes(), ReadFile(w.OffsetFile())}; }
    void Reopen() const { (void)RecoverPending(w.Rom(), w.OffsetFile()); }  // as the next opening does
    std::optional<std::string> Journal() const {
        return FileExists(JournalPath(w.Rom())) ? std::optional(ReadFile(JournalPath(w.Rom()))) : std::nullopt;
    }
};

int CountWrites(const std::function<void()>& run) {
    int writes = 0;
    io::ScopedWriteHook count([&](const std::filesystem::path&) { return ++writes, true; });
    run();
    return writes;
}

struct Tally {
    int tried = 0, bad = 0;
};

void Check(const Stage& s, const State& before, const State& after, Tally& t) {
    ++t.tried;
    const State now = s.Now();
    if (now != before && now != after) ++t.bad;
}

// Two processes append `saves` lines each to the offset file and write a byte
// each to the ROM, each save up to 3 ms after the last, trying again when the
// other changed the file first or held the lock; returns the saves not found
// in the files at the end.
int Race(int saves, int& written, int& changed, int& busy) {
    TempDir dir;
    const auto rom = dir / "game.gba", ini = dir / "QLNE.ini";
    WriteFile(rom, std::string(0x4000, '\x01'));
    WriteFile(ini, "[Race]\r\n");
    int start[2];  // both begin when the parent closes it
    if (pipe(start) != 0) return 2 * saves;
    pid_t children[2];
    for (int c = 0; c < 2; ++c) {
        if ((children[c] = fork()) != 0) continue;
        char none;
        close(start[1]);
        (void)!read(start[0], &none, 1);
        int mine = 0, other = 0, held = 0;
        std::srand(static_cast<unsigned>(getpid()));
        for (int i = 0; i < saves; ++i) {
            usleep(static_cast<useconds_t>(std::rand() % 3000));  // saves come at any moment, not back to back
            for (;;) {
                const std::string now = ReadFile(ini);
                const std::uint64_t at = 0x1000 + 0x1000 * c + i;
                WritePlan plan{"Save Text", "", rom, 0x4000, {{at, "\x01", "\x02"}}, ini, now,
                               now + char('A' + c) + std::to_string(i) + "=1\r\n"};
                try {
                    mine += CommitPlan(plan).outcome == CommitOutcome::Written;
                    break;
                } catch (const ChangedOnDisk&) {  // the other saved since the file was read: read again
                    ++other;
                } catch (const PlanRefused&) {  // the other held the lock past the wait
                    ++held;
                }
            }
        }
        WriteFile(dir / ("counts" + std::to_string(c)),
                  std::to_string(mine) + " " + std::to_string(other) + " " + std::to_string(held));
        _exit(0);
    }
    close(start[0]);
    close(start[1]);
    for (pid_t child : children) waitpid(child, nullptr, 0);
    const std::string image = ReadFile(rom), lines = ReadFile(ini);
    int lost = 0;
    for (int c = 0; c < 2; ++c) {
        int mine = 0, other = 0, held = 0;
        std::sscanf(ReadFile(dir / ("counts" + std::to_string(c))).c_str(), "%d %d %d", &mine, &other, &held);
        written += mine;
        changed += other;
        busy += held;
        for (int i = 0; i < saves; ++i) {
            const std::string line = std::string("\n") + char('A' + c) + std::to_string(i) + "=1\r";
            lost += lines.find(line) == std::string::npos || image[0x1000 + 0x1000 * c + i] != '\x02';
        }
    }
    lost += 2 * saves - written;  // a save that never got through
    return lost;
}

}  // namespace

int main(int argc, char** argv) {
    const int saves = argc > 1 ? std::atoi(argv[1]) : 100;
    Stage reference;
    const State before = reference.Now();
    const int saveWrites = CountWrites([&] { reference.Save(); });
    const State after = reference.Now();
    if (after == before) return std::puts("the reference save wrote nothing"), 1;

    Tally cuts, recoveryCuts;
    for (int k = 0; k < saveWrites; ++k) {
        Stage s;
        {
            io::ScopedWriteHook cut(io::StopAfterWrites(k));
            s.Save();
        }
        const State left = s.Now();
        const std::optional<std::string> journal = s.Journal();
        s.Reopen();
        Check(s, before, after, cuts);
        if (!journal) continue;
        // The recovery of that cut cut off in turn after each of its writes.
        auto restore = [&] {
            WriteFile(s.w.Rom(), left.first);
            WriteFile(s.w.OffsetFile(), left.second);
            WriteFile(JournalPath(s.w.Rom()), *journal);
        };
        restore();
        const int recoveryWrites = CountWrites([&] { s.Reopen(); });
        for (int j = 0; j < recoveryWrites; ++j) {
            restore();
            try {
                io::ScopedWriteHook cut(io::StopAfterWrites(j));
                s.Reopen();
            } catch (const FileError&) {
            }
            s.Reopen();
            Check(s, before, after, recoveryCuts);
        }
    }

    Tally faults;
    for (const int error : {EIO, ENOSPC})
        for (int k = 0; k < saveWrites; ++k) {
            Stage s;
            {
                io::ScopedWriteHook fail([n = 0, k](const std::filesystem::path&) mutable { return n++ != k; }, error);
                s.Save();
            }
            s.Reopen();
            Check(s, before, after, faults);
        }

    int written = 0, changed = 0, busy = 0;
    const int lost = Race(saves, written, changed, busy);

    std::printf("cuts tried: %d (a save with a repoint: %d, its recovery: %d); states other than before/after: %d\n",
                cuts.tried + recoveryCuts.tried, cuts.tried, recoveryCuts.tried, cuts.bad + recoveryCuts.bad);
    std::printf("injected faults: %d (EIO and ENOSPC at each of %d writes); mixed states after reopen: %d\n",
                faults.tried, saveWrites, faults.bad);
    std::printf("two writers: 2 x %d saves, %d written; refused and tried again: %d after the other's save, %d while "
                "it held the lock; lost saves: %d\n",
                saves, written, changed, busy, lost);
    return cuts.bad + recoveryCuts.bad + faults.bad + lost == 0 ? 0 : 1;
}
