#pragma once
// Showing one text of the ROM in the editor, and the counter of bytes left
// before the text no longer fits where it is.
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

class Session;

// Rebuilds the tree from the offset file (LoadTree, offsets/offset_file.h),
// then loads the text of the selected node; after a bad entry the tree stops
// there and the editor keeps its text.
void Tree_Load(Session& session);
// The same, selecting the entry `key` of `section` afterwards (a section node
// when `key` is empty) instead of the entry selected before.
void Tree_Load(Session& session, std::string_view section, std::string_view key);

// Loads the selected tree entry's text (nothing when no node is selected; a
// section node empties the editor). Errors end it silently.
void Text_Load(Session& session);

// Reads the text at `offsetHex` into the editor with the chosen table and
// measures it (the common end of loading by entry and by offset).
void LoadTextAt(Session& session, std::string_view offsetHex);

// Shows no text: the editor, the offset and the counter emptied, saving, the
// table choice and "Special Dialog*" disabled.
void ShowNoText(Session& session);

// Refreshes the repoint counter. Shift+Insert is cancelled by setting
// `keyCode` to 0; returns true when the key asks for the text menu (93).
bool UpdateRepointCounter(Session& session, std::int16_t& keyCode, bool shiftDown);
void UpdateRepointCounter(Session& session);

// A click (or right-click) on the tree node at `index`: selects it and loads it.
void SelectNode(Session& session, std::size_t index);

// "European Table" (false) or "Japanese Table" (true) chosen.
void ChooseTable(Session& session, bool japanese);

// The "O&ffset" button: asks for a decimal offset, offers to name it in the
// offset file and shows the text there.
void ViewOffset(Session& session);

}  // namespace quillon
