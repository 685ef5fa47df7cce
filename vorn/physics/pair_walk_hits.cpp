// SPDX-License-Identifier: MIT
//
// The part of the pair walk that finds all hits at once, before the game's code runs.
#include "vorn/physics/pair_walk.hpp"

namespace Vorn {

void PairWalk::findHits() {
    mHits.Clear();
    fetchBoxes();
    const bool boxes = findHits(mBoxes, BoxStretch, &PairWalk::testBoxes);
    const bool spheres = findHits(mSpheres, SphereStretch, &PairWalk::testSpheres);
    if (!boxes && !spheres)
        return;
    mHits.Sort(mBodies.size());
    for (Body& row : mBodies)
        row.known = row.kind == Kind::Box ? boxes && row.upright : spheres;
}

// Bodies stand in the order of the list, and pairs come in that of space, so what the tests need of
// a body is laid out anew.
void PairWalk::fetchBoxes() {
    const std::size_t boxes = mBoxes.MayFindPairs() ? mBoxes.Ids().size() : 0;
    mSlimBoxes.resize(boxes);
    mBoxTraits.resize(mAnyMask ? boxes : 0);
    for (std::size_t index = 0; index < boxes; ++index) {
        const Id id = mBoxes.Ids()[index];
        const Body& box = body(id);
        const auto place = static_cast<std::size_t>(box.place);
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
        std::size_t pairs = 0;

        void operator()(const Placed& first, const Placed& second) {
            walk.mPairs.push_back({first, second});
            if (walk.mPairs.size() == Many)
                flush();
        }
        void flush() {
            pairs += walk.mPairs.size();
            (walk.*test)();
            walk.mPairs.clear();
        }
        bool GoesOn() const { return walk.mHits.Found() < mostHits && pairs < mostPairs; }
    };
    const std::size_t before = mHits.Found(), bodies = group.Ids().size();
    mPairs.clear();
    mPairs.reserve(Many);
    Collector collector{*this, test, before + HitsPerBody * bodies, PairsPerBody * bodies};
    const bool found = group.FindPairs(stretch, collector);
    if (found)
        collector.flush();
    else
        mHits.Shorten(before);
    return found;
}

// Each pair is written first and kept if it passes: nobody could predict a branch.
template <typename Passes>
void PairWalk::keepPairs(Passes&& passes) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < mPairs.size(); ++i) {
        const PlacedPair pair = mPairs[i];
        mPairs[kept] = pair;
        kept += passes(pair);
    }
    mPairs.resize(kept);
}

void PairWalk::testBoxes() {
    if (mAnyMask)
        keepPairs([this](const PlacedPair& pair) {
            return (mBoxTraits[static_cast<std::size_t>(pair.first.place)].mask &
                    mBoxTraits[static_cast<std::size_t>(pair.second.place)].category)
                .none();
        });
    // Boxes that are swept hit no box.
    if (!mDynamicBoxes.empty())
        keepPairs([this](const PlacedPair& pair) {
            return !body(pair.first.id).dynamic && !body(pair.second.id).dynamic;
        });
    mUnsure.resize(mPairs.size());
    const Judged judged = JudgePairs(mSlimBoxes.data(), mPairs, mUnsure.data());
    mPairs.resize(judged.hits);
    mUnsure.resize(judged.unsure);
    for (const PlacedPair& pair : mPairs)
        mHits.Add(pair.first.id, pair.second.id);
    for (const PlacedPair& pair : mUnsure)
        if (boxesHit(pair.first.id, pair.second.id))
            mHits.Add(pair.first.id, pair.second.id);
}

void PairWalk::testSpheres() {
    for (const PlacedPair& pair : mPairs)
        if (hits(pair.first.id, pair.second.id))
            mHits.Add(pair.first.id, pair.second.id);
}

} // namespace Vorn
