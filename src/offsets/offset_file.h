#pragma once
// The per-game offset file: its comment head, the tree built from it and the
// node key scheme that other commands rely on.
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace quillon {

class Session;

// The 16-line comment head of a new offset file, without a final line end.
std::string OffsetFileHead(const std::filesystem::path& rom, std::string_view date);
// Today's date in a short numeric form, for the head.
std::string ShortDate();

// "Parent0001" for the first section.
std::string SectionNodeKey(std::size_t position);
// "P0001" + key name for a key of the first section.
std::string TextNodeKey(std::size_t position, std::string_view keyName);
// A key containing "Parent" (case-sensitive) marks a section node.
bool IsSectionNodeKey(std::string_view nodeKey);
// The key name of a text node: its node key without the first five characters.
std::string KeyNameOf(std::string_view nodeKey);

// Rebuilds the tree from the offset file (read once), keeping the entry that
// was selected selected. Stops with a message at the first bad entry and
// returns false. Tree_Load (edit/text_view.h) also shows the selected text.
bool LoadTree(Session& session);
// The same, selecting the entry `key` of `section` afterwards (a section node
// when `key` is empty) instead of the entry selected before.
bool LoadTree(Session& session, std::string_view section, std::string_view key);

}  // namespace quillon
