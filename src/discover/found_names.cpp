#include "discover/found_names.h"
#include "core/hex_text.h"

#include "game/name_tables.h"

#include <algorithm>

namespace quillon::discover {

std::string NameSection(const game::NameTable& table) {
    if (table.kind.empty()) return "Names " + PlainHex(table.first, 6);
    // The kinds are UTF-8; the offset file's names are Latin-1 ("Pokédex").
    std::string latin;
    for (std::size_t i = 0; i < table.kind.size(); ++i) {
        const auto c = static_cast<unsigned char>(table.kind[i]);
        if (c == 0xC3 && i + 1 < table.kind.size()) latin += static_cast<char>(0xC0 | (table.kind[++i] & 0x3F));
        else latin += static_cast<char>(c);
    }
    return latin;
}

void AddNames(const game::GameModel& model, std::string_view image, std::vector<FoundText>& found) {
    const std::vector<game::NameTable> tables = game::FindNameTables(image, model);
    if (tables.empty()) return;
    // The fields of every record, in offset order, to leave out the texts inside them.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> fields;
    std::vector<FoundText> names;
    for (const game::NameTable& t : tables) {
        const std::string section = NameSection(t);
        for (std::uint32_t i = 0; i < t.count; ++i) {
            const std::uint32_t at = t.Field(i);
            fields.emplace_back(at, at + t.length);
            const auto letters = game::NameFieldAt(image, at, t.length);
            if (!letters || *letters == 0) continue;
            FoundText name;
            name.offset = at;
            name.length = *letters;
            name.preview = Preview(image.substr(at, *letters));
            name.pointers = model.ReferencesTo(at);
            name.confidence = 100;
            name.section = section;
            name.context = game::TextContext::Name;
            name.fixedLength = t.length;
            name.padding = t.padding;
            name.recordStride = t.stride;
            names.push_back(std::move(name));
        }
    }
    std::sort(fields.begin(), fields.end());
    std::erase_if(found, [&](const FoundText& f) {
        auto it = std::upper_bound(fields.begin(), fields.end(), std::make_pair(f.offset, ~std::uint32_t{0}));
        return it != fields.begin() && f.offset < std::prev(it)->second;
    });
    found.insert(found.end(), std::make_move_iterator(names.begin()), std::make_move_iterator(names.end()));
    std::sort(found.begin(), found.end(), [](const FoundText& a, const FoundText& b) { return a.offset < b.offset; });
}

}  // namespace quillon::discover
