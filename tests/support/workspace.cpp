#include "support/workspace.h"

#include "discover/find_texts.h"
#include "edit/open_rom.h"
#include "edit/text_view.h"

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
    OpenRom(session, OfferFindTexts);
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

void Workspace::OpenAt(const RomBuilder& rom, std::string_view offsetFile, std::string_view section,
                       std::string_view key) {
    rom.Save(Rom());
    WriteOffsetFile(offsetFile, rom.bytes().substr(0xAC, 4));
    Open();
    Select(section, key);
    user.Take();
}

RomBuilder StoryRom(std::string_view code) {
    RomBuilder rom(3u << 20, '\x01');
    rom.Title("QUILLONTEST").Code(code).Maker("01");
    rom.Fill(0x200000, 0x100000, '\xFF');
    return rom;
}

RomBuilder HelloRom(std::string_view code) {
    RomBuilder rom = StoryRom(code);
    rom.Put(0x100000, Bytes("C2D9E0E0E3FF")).Pointer(0x50000, 0x100000);
    // Two scripts that show it, a table slot pointing at each: a message, and
    // a loadword for the standard message box.
    rom.PutHex(0x60000, "67").Pointer(0x60001, 0x100000).PutHex(0x60005, "02").Pointer(0x50010, 0x60000);
    rom.PutHex(0x70001, "0F00").Pointer(0x70003, 0x100000).PutHex(0x70007, "090402").Pointer(0x50014, 0x70001);
    return rom;
}

}  // namespace quillon::test
