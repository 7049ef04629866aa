#include "support/workspace.h"

#include "edit/text_view.h"
#include "offsets/open_rom.h"

#include <gtest/gtest.h>

namespace quillon::test {

Workspace::Workspace(std::string_view freeSpaceLine) : session(dir.path(), user) {
    std::filesystem::create_directory(dir / "ini");
    std::string settings = "[Settings]\r\nWarningShown=True\r\n";
    if (!freeSpaceLine.empty()) settings += std::string(freeSpaceLine) + "\r\n";
    WriteFile(dir / "ini" / "settings.ini", settings);
}

void Workspace::WriteOffsetFile(std::string_view text, std::string_view code) const {
    WriteFile(OffsetFile(code), text);
}

void Workspace::Open() {
    user.answers.push_front(Rom());
    OpenRom(session);
}

void Workspace::Select(std::string_view section, std::string_view key) {
    const auto& nodes = session.tree.Nodes();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].text == key && nodes[i].parent && nodes[*nodes[i].parent].text == section) {
            SelectNode(session, i);
            return;
        }
    }
    ADD_FAILURE() << "no node " << section << "/" << key;
}

RomBuilder StoryRom(std::string_view code) {
    RomBuilder rom(3u << 20, '\x01');
    rom.Title("QUILLONTEST").Code(code).Maker("01");
    rom.Fill(0x200000, 0x100000, '\xFF');
    return rom;
}

}  // namespace quillon::test
