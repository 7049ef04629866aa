// Reads any text as an offset file the way the import and the export list its
// entries, then gives every entry a new value: the file comes back with those
// values and every other byte as it was, and reads as the same entries.
#include "translate/offset_entries.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace quillon;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::vector<OffsetEntry> entries = ReadOffsetEntries(text);
    std::vector<std::pair<const OffsetEntry*, std::string>> same, moved;
    for (const OffsetEntry& e : entries) {
        if (e.valueBegin + e.value.size() > text.size() || text.compare(e.valueBegin, e.value.size(), e.value) != 0)
            __builtin_trap();
        (void)EntryContext(e);
        same.emplace_back(&e, e.value);
        moved.emplace_back(&e, "ABCDEF");
    }
    if (WithValues(text, same) != text) __builtin_trap();
    const std::vector<OffsetEntry> again = ReadOffsetEntries(WithValues(text, moved));
    if (again.size() != entries.size()) __builtin_trap();
    for (std::size_t i = 0; i < again.size(); ++i)
        if (again[i].section != entries[i].section || again[i].key != entries[i].key || again[i].value != "ABCDEF")
            __builtin_trap();
    return 0;
}
