// The game model read from generated images of each family, checked against
// what the generator placed: the kind of every place that holds a text's
// pointer, the maps and their names, and the texts discovery takes.
#include "discover/discover.h"
#include "game/game_model.h"
#include "support/game_image.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

namespace quillon::game {
namespace {

bool Rewritable(const std::string& kind) { return kind == "script" || kind == "table" || kind == "pool"; }

class GameModelTest : public testing::TestWithParam<Family> {};

TEST_P(GameModelTest, ReadsTheGameAsPlaced) {
    for (std::uint32_t seed : {1u, 2u}) {
        const test::GameImage g = test::MakeGameImage(GetParam(), seed);
        const GameModel model = GameModel::Read(g.image);
        ASSERT_EQ(model.family(), GetParam());

        // Every place, listed once with a kind that rewrites exactly the references.
        std::map<std::uint32_t, std::set<std::uint32_t>> placed;
        for (const test::PlacedPointer& p : g.pointers) {
            placed[p.target].insert(p.place);
            const Place got = model.Classify(p.place, p.target);
            EXPECT_EQ(IsReference(got.kind), Rewritable(p.kind))
                << std::hex << p.place << " " << p.kind << " classed " << KindName(got.kind) << " by " << got.rule;
            if (p.kind == "script") EXPECT_EQ(got.kind, PlaceKind::Script) << std::hex << p.place;
        }
        for (const auto& [target, places] : placed) {
            std::set<std::uint32_t> listed;
            for (const Place& r : model.ReferencesTo(target)) listed.insert(r.place);
            EXPECT_EQ(listed, places) << std::hex << target;
        }

        // Maps in group order, named as the game names them.
        ASSERT_EQ(model.Maps().size(), g.mapNames.size());
        for (std::size_t i = 0; i < g.mapNames.size(); ++i) EXPECT_EQ(model.Maps()[i].name, g.mapNames[i]) << i;

        // Discovery takes the texts the game shows, each under its map, and no
        // orphan. Names that only code leads to (the first item's) count too.
        std::map<std::uint32_t, const test::PlacedText*> texts;
        for (const test::PlacedText& t : g.texts) texts[t.offset] = &t;
        std::set<std::uint32_t> found;
        for (const discover::FoundText& f : discover::DiscoverTexts(model, g.image)) {
            found.insert(f.offset);
            const bool code = std::all_of(f.pointers.begin(), f.pointers.end(),
                                          [](const Place& p) { return p.kind == PlaceKind::Pool; });
            ASSERT_TRUE(texts.count(f.offset) || code) << "not a text: " << std::hex << f.offset;
            const std::string context = texts.count(f.offset) ? texts[f.offset]->context : "";
            if (context == "message" || context == "sign" || context == "trainer")  // shown by a map's scripts
                EXPECT_EQ(model.UseOf(f.offset)->map, texts[f.offset]->map) << std::hex << f.offset;
        }
        for (const test::PlacedText& t : g.texts) {
            const bool shown = t.context != "braille" && t.context != "orphan";
            EXPECT_EQ(found.count(t.offset) == 1, shown) << t.context << " at " << std::hex << t.offset;
        }
    }
}

// A read for the references alone, as a command that moves texts makes it,
// gives every place that holds a pointer the kind and rule of the whole read.
TEST_P(GameModelTest, AReadForReferencesClassifiesAsTheWholeRead) {
    for (std::uint32_t seed : {1u, 2u}) {
        const test::GameImage g = test::MakeGameImage(GetParam(), seed);
        const GameModel whole = GameModel::Read(g.image);
        const GameModel references = GameModel::Read(g.image, ModelParts::References);
        EXPECT_TRUE(references.Uses().empty());
        ASSERT_EQ(references.Pointers().Entries(), whole.Pointers().Entries());
        std::size_t differ = 0;
        for (std::uint64_t e : whole.Pointers().Entries()) {
            const auto place = static_cast<std::uint32_t>(e), target = static_cast<std::uint32_t>(e >> 32);
            const Place a = whole.Classify(place, target), b = references.Classify(place, target);
            differ += a.kind != b.kind || a.rule != b.rule;
        }
        EXPECT_EQ(differ, 0u) << "of " << whole.Pointers().size() << " places";
    }
}

INSTANTIATE_TEST_SUITE_P(Families, GameModelTest,
                         testing::Values(Family::RubySapphire, Family::FireRedLeafGreen, Family::Emerald));

}  // namespace
}  // namespace quillon::game
