// SPDX-License-Identifier: MIT
//
// The part of the pair walk that finds all hits at once, before the game's code runs.
#include "vorn/math/intersection.hpp"
#include "vorn/physics/pair_walk.hpp"

namespace Vorn {

namespace {

// Whether the sphere reaches into the box along each of its axes, or nearly.
bool Reaches(const BoxSides& box, const Bounds& sphere) {
    const Vector3& c = sphere.center;
    const Float4 along =
        AllFour(c.x) * box.axes.x + AllFour(c.y) * box.axes.y + AllFour(c.z) * box.axes.z;
    const Float4 reach = AllFour(sphere.reach);
    return LaneBits((along - reach <= box.reach.high) & (along + reach >= box.reach.low)) == 0xF;
}

} // namespace

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
// a body is laid out anew. Shapes cost more than that, and are made where they are needed; where
// most of them are, they are made here, with one body after the other in reach.
void PairWalk::fetchBoxes() {
    const bool most = mPairsTested > 2 * mShapes.size();
    mPairsTested = 0;
    mAnyMask = false;
    mBoxTraits.resize(mShapes.size());
    if (mShapes.empty())
        return;
    for (Id id = 0; id < count(); ++id) {
        Body& box = body(id);
        if (box.kind != Kind::Box)
            continue;
        box.place = mBoxes.PlaceOf(box.index);
        mAnyMask = mAnyMask || box.mask.any();
        mBoxTraits[static_cast<std::size_t>(box.place)] = {box.mask, box.category};
        if (most)
            shapeAt({id, box.place});
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
    mPairsTested += mPairs.size();
    if (mAnyMask)
        keepPairs([this](const PlacedPair& pair) {
            return (mBoxTraits[static_cast<std::size_t>(pair.first.place)].mask &
                    mBoxTraits[static_cast<std::size_t>(pair.second.place)].category)
                .none();
        });
    keepPairs([this](const PlacedPair& pair) {
        return Reaches(shapeAt(pair.first).sides, mBoxes.BoundsAt(pair.second.place));
    });
    // Boxes that are swept hit no box.
    if (!mDynamicBoxes.empty())
        keepPairs([this](const PlacedPair& pair) {
            return !body(pair.first.id).dynamic && !body(pair.second.id).dynamic;
        });
    for (const PlacedPair& pair : mPairs) {
        const BoxSides& sides = shapeAt(pair.first).sides;
        if (Overlap(sides.reach, Project(shapeAt(pair.second).corners, sides.axes)))
            mHits.Add(pair.first.id, pair.second.id);
    }
}

void PairWalk::testSpheres() {
    for (const PlacedPair& pair : mPairs)
        if (hits(pair.first.id, pair.second.id))
            mHits.Add(pair.first.id, pair.second.id);
}

} // namespace Vorn
