// SPDX-License-Identifier: MIT
//
// The part of the pair walk that finds all hits at once, before the game's code runs.
#include "vorn/physics/pair_walk.hpp"

#include <algorithm>
#include <utility>

namespace Vorn {

namespace {

// Each pair is written first and kept if it passes: nobody could predict a branch.
template <typename Passes>
std::span<PlacedPair> Keep(std::span<PlacedPair> pairs, const Passes& passes) {
    std::size_t kept = 0;
    for (const PlacedPair pair : pairs) {
        pairs[kept] = pair;
        kept += passes(pair);
    }
    return pairs.first(kept);
}

} // namespace

void PairWalk::findHits() {
    mHits.Clear();
    const bool boxes = findHits(mBoxes, BoxStretch, &PairWalk::testBoxes);
    const bool spheres = findHits(mSpheres, SphereStretch, &PairWalk::testSpheres);
    if (!boxes && !spheres)
        return;
    mHits.Sort(mBodies.size());
    for (Body& row : mBodies) {
        const bool box = row.kind == Kind::Box;
        row.known = box ? boxes && row.upright : spheres;
        row.settled =
            row.known && !row.dynamic && (box ? mDynamicSpheres.empty() : mDynamicBoxes.empty());
    }
}

// Bodies stand in the order of the list, and pairs come in that of space, so what the tests need of
// a body is laid out anew.
void PairWalk::placeBoxes() {
    const std::size_t boxes = mBoxes.Ids().size();
    const bool slim = mBoxes.MayFindPairs();
    mSlimBoxes.resize(slim ? boxes : 0);
    mBoxTraits.resize(slim && mAnyMask ? boxes : 0);
    for (std::size_t index = 0; index < boxes; ++index) {
        const Id id = mBoxes.Ids()[index];
        Body& box = body(id);
        box.place = mBoxes.PlaceOf(static_cast<int>(index));
        const auto place = static_cast<std::size_t>(box.place);
        if (!slim)
            continue;
        const float doubt = box.upright ? DoubtOf(box.sphere.center, box.size) : AllDoubt;
        mSlimBoxes[place] = SlimBoxOf(box.sphere.center, turnOf(id), box.size, doubt);
        if (mAnyMask)
            mBoxTraits[place] = {box.mask, box.category};
    }
}

// False where the hits are not found at once, but row by row: a heap has more of them than anybody
// wants to keep.
template <typename Test>
bool PairWalk::findHits(BodyGroup& group, const Stretch& stretch, Test test) {
    // Each stage of the tests runs over so many pairs before the next one does.
    constexpr std::size_t Many = 1024;
    constexpr std::size_t HitsPerBody = 32, PairsPerBody = 64;
    struct Collector {
        PairWalk& walk;
        Test test;
        std::size_t mostHits, mostPairs;
        std::size_t pairs = 0, used = 0;

        PlacedPair* Room(std::size_t count) {
            if (walk.mPairs.size() < used + count)
                walk.mPairs.resize(2 * (used + count));
            return walk.mPairs.data() + used;
        }
        void Took(const PlacedPair* end) {
            used = static_cast<std::size_t>(end - walk.mPairs.data());
            if (used >= Many)
                flush();
        }
        void flush() {
            pairs += used;
            (walk.*test)({walk.mPairs.data(), std::exchange(used, 0)});
        }
        bool GoesOn() const { return walk.mHits.Found() < mostHits && pairs < mostPairs; }
    };
    const std::size_t before = mHits.Found(), bodies = group.Ids().size();
    Collector collector{*this, test, before + HitsPerBody * bodies, PairsPerBody * bodies};
    const bool found = group.FindPairs(stretch, collector);
    if (found)
        collector.flush();
    else
        mHits.Shorten(before);
    return found;
}

void PairWalk::testBoxes(std::span<PlacedPair> pairs) {
    if (mAnyMask)
        pairs = Keep(pairs, [this](const PlacedPair& pair) {
            return (mBoxTraits[static_cast<std::size_t>(pair.first.place)].mask &
                    mBoxTraits[static_cast<std::size_t>(pair.second.place)].category)
                .none();
        });
    // Boxes that are swept hit no box.
    if (!mDynamicBoxes.empty())
        pairs = Keep(pairs, [this](const PlacedPair& pair) {
            return !body(pair.first.id).dynamic && !body(pair.second.id).dynamic;
        });
    mUnsure.resize(std::max(mUnsure.size(), pairs.size()));
    const Judged judged = JudgePairs(mSlimBoxes.data(), pairs, mUnsure.data());
    for (const PlacedPair& pair : pairs.first(judged.hits))
        mHits.Add(pair.first.id, pair.second.id);
    for (const PlacedPair& pair : std::span(mUnsure).first(judged.unsure))
        if (boxesHit(pair.first.id, pair.second.id))
            mHits.Add(pair.first.id, pair.second.id);
}

void PairWalk::testSpheres(std::span<PlacedPair> pairs) {
    for (const PlacedPair& pair : pairs)
        if (hits(pair.first.id, pair.second.id))
            mHits.Add(pair.first.id, pair.second.id);
}

} // namespace Vorn
