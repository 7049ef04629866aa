#pragma once
// The entries of an offset file as a list, in file order, and the file's text
// with some of their offsets replaced.
#include "offsets/fixed_length.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon {

// One "key=offset" line. Names and value are the file's bytes (Latin-1 in
// files made on Windows). As a lookup by name finds them: the keys of a
// section name come from its first section, and a repeated key counts once.
struct OffsetEntry {
    std::string section;
    std::string key;
    std::string value;            // without the blanks around it
    std::size_t valueBegin = 0;   // where the value stands in the file's text
    std::optional<FixedLength> fixed;  // a name of fixed length: its section says so
};

std::vector<OffsetEntry> ReadOffsetEntries(std::string_view fileText);

// "Section/Key" in UTF-8: the name of an entry in a PO file.
std::string EntryContext(const OffsetEntry& entry);

// Latin-1 bytes as UTF-8.
std::string Latin1ToUtf8(std::string_view bytes);

// `fileText` with the value of each listed entry replaced; every other byte
// stays. The entries must come from ReadOffsetEntries(fileText).
std::string WithValues(std::string_view fileText,
                       std::vector<std::pair<const OffsetEntry*, std::string>> changes);

}  // namespace quillon
