#pragma once
#include <filesystem>
#include <functional>

namespace quillon {

class Session;

// What opening a ROM does once it created a blank offset file for the game:
// the offer to look for the game's texts (OfferFindTexts, discover/find_texts.h).
using AfterNewOffsetFile = std::function<void(Session&)>;

// "&Open ROM": asks for a ROM image, identifies the game, finds or creates its
// offset file and shows its tree. A save that was cut off is undone first.
void OpenRom(Session& session, const AfterNewOffsetFile& afterNewOffsetFile);
// OpenRom with the ROM image already chosen (the program's command line):
// every question and check after the file dialog.
void OpenRomFile(Session& session, const std::filesystem::path& rom, const AfterNewOffsetFile& afterNewOffsetFile);

// The states of the main window with a ROM open, and with none.
void EnterRomOpenState(Session& session);
void EnterNoRomState(Session& session);

}  // namespace quillon
