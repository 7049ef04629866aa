#pragma once
// A program folder with its ini folder and settings, a ROM image, and a
// session on them driven by a scripted user: the stage for user stories.
#include "app/session.h"
#include "support/fake_prompter.h"
#include "support/rom_builder.h"
#include "support/temp_dir.h"

#include <string>
#include <string_view>

namespace quillon::test {

class Workspace {
public:
    // Settings with WarningShown=True and the given FreeSpaceOffset line
    // (empty: no such key).
    explicit Workspace(std::string_view freeSpaceLine = "FreeSpaceOffset=2097152");

    std::filesystem::path Rom() const { return dir / "game.gba"; }
    std::filesystem::path OffsetFile(std::string_view code = "QLNE") const {
        return dir / "ini" / (std::string(code) + ".ini");
    }
    void WriteOffsetFile(std::string_view text, std::string_view code = "QLNE") const;
    // Opens the ROM through the open dialog, answering `answers` afterwards.
    void Open();
    // Selects the text node of `key` in `section`; fails the test when absent.
    void Select(std::string_view section, std::string_view key);
    // Saves `rom`, writes the offset file, opens the ROM, selects `key` of
    // `section` and forgets what was shown on the way.
    void OpenAt(const RomBuilder& rom, std::string_view offsetFile, std::string_view section, std::string_view key);
    std::string RomBytes() const { return ReadFile(Rom()); }

    TempDir dir;
    FakePrompter user;
    Session session;
};

// A 3 MiB image with the code QLNE: texts at 0x100000.., free space (0xFF)
// from 0x200000, the rest filled with 0x01.
RomBuilder StoryRom(std::string_view code = "QLNE");
// StoryRom with "Hello" at 0x100000 and its pointer at 0x50000 (a table slot),
// 0x60001 (after a message command) and 0x70003 (after a script command).
RomBuilder HelloRom(std::string_view code = "QLNE");

}  // namespace quillon::test
