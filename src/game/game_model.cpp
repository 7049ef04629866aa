#include "game/game_model.h"

#include "game/map_names.h"
#include "game/maps.h"
#include "game/script_walker.h"
#include "game/text_shape.h"
#include "game/text_tables.h"
#include "game/words.h"

#include <quillon/codec.h>

#include <algorithm>
#include <unordered_map>

namespace quillon::game {
namespace {

constexpr std::uint32_t kGameCodeAt = 0xAC;
// The standard message script that shows its text as a sign.
constexpr std::uint8_t kStandardSign = 3;

std::optional<Family> FamilyOf(std::string_view image) {
    if (image.size() < kGameCodeAt + 4) return std::nullopt;
    return FamilyOfCode(image.substr(kGameCodeAt, 4));
}

template <class T>
const T* FindAt(const std::vector<T>& sorted, std::uint32_t place) {
    auto it = std::lower_bound(sorted.begin(), sorted.end(), place, [](const T& o, std::uint32_t p) { return o.place < p; });
    return it != sorted.end() && it->place == place ? &*it : nullptr;
}

bool InSpans(const std::vector<Span>& spans, std::uint32_t at) {
    auto it = std::upper_bound(spans.begin(), spans.end(), at, [](std::uint32_t a, const Span& s) { return a < s.offset; });
    return it != spans.begin() && std::prev(it)->Contains(at);
}

std::string_view CommandRule(Family family, std::uint8_t command) {
    const std::string_view name = CommandName(family, command);
    return name.empty() ? std::string_view("script operand") : name;
}

}  // namespace

GameModel GameModel::Read(std::string_view image, ModelParts parts) { return Read(image, parts, PointerIndex(image)); }

GameModel GameModel::Read(std::string_view image, ModelParts parts, PointerIndex index) {
    const bool all = parts == ModelParts::All;
    GameModel m;
    m.size_ = image.size();
    // The header names the family; else the family whose map records the
    // image holds.
    m.family_ = FamilyOf(image);
    const MapSet maps = m.family_ ? FindMaps(image, *m.family_) : FindMaps(image);
    if (!m.family_) m.family_ = maps.family;
    const Family family = m.family_.value_or(Family::FireRedLeafGreen);
    m.index_ = std::move(index);
    m.alignedPointers_.assign(image.size() / 4 + 1, false);
    for (std::uint64_t e : m.index_.Entries())
        if (static_cast<std::uint32_t>(e) % 4 == 0) m.alignedPointers_[static_cast<std::uint32_t>(e) / 4] = true;
    m.code_ = FindCode(image, m.index_);

    // Maps, their names and their scripts; then every script that a pointer
    // outside program code's instructions leads to and that reads cleanly.
    const MapNameTable names = FindMapNameTable(image, family, maps);
    if (all) {
        for (const Map& map : maps.maps) {
            MapName name{map.group, map.number, {}};
            if (auto it = names.names.find(map.section); it != names.names.end())
                name.name = DecodeText(image.substr(it->second, 32).substr(0, image.substr(it->second, 32).find('\xFF')), false);
            m.maps_.push_back(std::move(name));
        }
    }
    std::vector<ScriptEntry> entries;
    for (std::size_t i = 0; i < maps.maps.size(); ++i) {
        const auto owner = static_cast<std::int32_t>(i);
        for (const MapEntry& e : maps.maps[i].entries) entries.push_back({e.script, owner});
        // A map's own scripts often follow its map-script list, whose
        // five-byte rows end with a zero byte.
        if (const auto list = PointerAt(image, maps.maps[i].header + 8)) {
            std::uint32_t at = *list;
            while (at < image.size() && image[at] != 0) at += 5;
            if (at + 1 < image.size() && ParsesAsScript(image, family, at + 1)) entries.push_back({at + 1, owner});
        }
    }
    std::uint32_t lastTarget = 0xFFFFFFFF;
    for (std::uint64_t e : m.index_.Entries()) {
        const auto target = static_cast<std::uint32_t>(e >> 32), place = static_cast<std::uint32_t>(e);
        if (target == lastTarget) continue;
        if (m.code_.IsLookalike(place)) continue;
        if (m.code_.IsCode(target)) continue;
        lastTarget = target;
        if (ParsesAsScript(image, family, target)) entries.push_back({target, -1});
    }
    const ScriptWalk walk = WalkScripts(image, family, entries, Unreferenced::Probe);
    m.scripts_ = walk.scripts;
    for (const ScriptPointer& p : walk.pointers) m.operands_.push_back({p.place, CommandRule(family, p.command)});

    // Slots of the map structures and of the map names are table places.
    for (std::uint32_t place : maps.tablePlaces) m.tableSlots_.push_back({place, "map header"});
    for (std::uint32_t place : names.places) m.tableSlots_.push_back({place, "map names"});

    // Uses of texts: script operands first, as they say the most.
    std::unordered_map<std::uint32_t, std::size_t> useAt;
    auto use = [&](std::uint32_t offset) -> TextUse& {
        auto [it, fresh] = useAt.try_emplace(offset, m.uses_.size());
        if (fresh) {
            TextUse added;
            added.offset = offset;
            m.uses_.push_back(added);
        }
        return m.uses_[it->second];
    };
    std::unordered_map<std::uint32_t, bool> text;
    auto isText = [&](std::uint32_t at) {
        auto [it, fresh] = text.try_emplace(at, false);
        if (fresh) {
            const auto shape = MeasureText(image, at);
            it->second = shape && (LooksLikeText(*shape) || (Byte(image, at - 1) == 0xFF && LooksLikeLabel(*shape)));
        }
        return it->second;
    };
    if (all) {
        for (const ScriptPointer& p : walk.pointers) {
            if (p.role != Role::Text && p.role != Role::BrailleText) continue;
            TextUse& u = use(p.target);
            if (u.map < 0) u.map = p.owner;
            if (p.role == Role::BrailleText) u.context = TextContext::Braille;
            else if (p.command == 0x5C) u.trainer = true, u.context = TextContext::MessageBox;
            else if (p.standard == kStandardSign) u.context = TextContext::Sign;
            else u.context = TextContext::MessageBox;
        }
        // The game's own names of its places.
        for (const auto& [section, offset] : names.names) {
            TextUse& u = use(offset);
            if (u.table.empty() && u.map < 0) u.table = "Place names", u.context = TextContext::Name;
        }
    }
    // Aligned words in data that lead to texts, grouped into tables.
    std::vector<std::uint32_t> slots;
    for (std::uint64_t e : m.index_.Entries()) {
        const auto target = static_cast<std::uint32_t>(e >> 32), place = static_cast<std::uint32_t>(e);
        if (place % 4 || m.code_.IsCode(place) || m.code_.IsBinaryData(place) || InSpans(m.scripts_, place)) continue;
        if (!m.code_.IsCode(target) && isText(target)) slots.push_back(place);
    }
    std::sort(slots.begin(), slots.end());
    m.textTables_ = FindTextTables(image, slots, [&](std::uint32_t at) { return Word(image, at) - kRomBase; });
    for (const TextTable& t : m.textTables_) {
        for (std::uint32_t i = 0; i < t.count; ++i) {
            const std::uint32_t place = t.first + t.stride * i;
            m.tableSlots_.push_back({place, t.kind.empty() ? std::string_view("text table") : t.kind});
            if (!all) continue;
            TextUse& u = use(Word(image, place) - kRomBase);
            if (u.table.empty() && u.map < 0 && !u.trainer) u.table = t.kind, u.context = t.context;
        }
    }
    if (all) {
        // Lone words: aligned in data or a pool word of code.
        for (std::uint64_t e : m.index_.Entries()) {
            const auto target = static_cast<std::uint32_t>(e >> 32), place = static_cast<std::uint32_t>(e);
            if (place % 4 || m.code_.IsCode(target) || m.code_.IsBinaryData(place) || InSpans(m.scripts_, place)) continue;
            if (isText(target)) use(target);
        }
    }
    std::sort(m.uses_.begin(), m.uses_.end(), [](const TextUse& a, const TextUse& b) { return a.offset < b.offset; });
    std::sort(m.tableSlots_.begin(), m.tableSlots_.end(), [](const Operand& a, const Operand& b) { return a.place < b.place; });
    return m;
}

Place GameModel::Classify(std::uint32_t place, std::uint32_t target) const {
    if (const Operand* o = FindAt(operands_, place)) return {place, target, PlaceKind::Script, o->rule};
    if (const Operand* o = FindAt(tableSlots_, place)) return {place, target, PlaceKind::Table, o->rule};
    if (code_.IsBinaryData(place)) return {place, target, PlaceKind::Unknown, "inside picture or sound data"};
    if (code_.IsCode(place)) {
        if (code_.IsLookalike(place)) return {place, target, PlaceKind::Code, "inside program code"};
        return {place, target, PlaceKind::Pool, "literal pool of program code"};
    }
    if (InSpans(scripts_, place)) return {place, target, PlaceKind::Unknown, "inside a script, not a pointer operand"};
    // An aligned word in data is a table's slot or a record's field when
    // another pointer stands near it (a table may hold empty slots between);
    // a lone one may be any four bytes.
    if (place % 4 == 0) {
        constexpr std::size_t kNear = 6;  // words on either side
        const std::size_t word = place / 4;
        bool neighbour = false;
        for (std::size_t w = word > kNear ? word - kNear : 0; w <= word + kNear && w < alignedPointers_.size(); ++w)
            neighbour = neighbour || (w != word && alignedPointers_[w]);
        if (neighbour) return {place, target, PlaceKind::Table, "aligned word in data"};
        return {place, target, PlaceKind::Unknown, "lone aligned word in data"};
    }
    return {place, target, PlaceKind::Unknown, "unaligned word in data"};
}

std::vector<Place> GameModel::ReferencesTo(std::uint32_t target) const {
    std::vector<Place> places;
    for (std::uint32_t place : index_.PlacesOf(target)) places.push_back(Classify(place, target));
    std::sort(places.begin(), places.end(), [](const Place& a, const Place& b) { return a.place < b.place; });
    return places;
}

const TextUse* GameModel::UseOf(std::uint32_t offset) const {
    auto it = std::lower_bound(uses_.begin(), uses_.end(), offset, [](const TextUse& u, std::uint32_t o) { return u.offset < o; });
    return it != uses_.end() && it->offset == offset ? &*it : nullptr;
}

}  // namespace quillon::game
