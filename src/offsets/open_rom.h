#pragma once

namespace quillon {

class Session;

// "&Open ROM": asks for a ROM image, identifies the game, finds or creates its
// offset file and shows its tree. A save that was cut off is undone first.
void OpenRom(Session& session);

// The states of the main window with a ROM open, and with none.
void EnterRomOpenState(Session& session);
void EnterNoRomState(Session& session);

}  // namespace quillon
