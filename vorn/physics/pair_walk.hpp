// SPDX-License-Identifier: MIT
//
// Below PhysicsSystem: the walk over all pairs of bodies in the order of the list, at a cost that
// follows the pairs that are close and not their square.
//
// What each body is, and bounds of it, are read once at the start, and two BodyGroups name all
// pairs that may meet. These are tested at once, neighbour by neighbour, and the hits put in the
// order of the list; where a heap makes too many of them, each body asks for its own when its turn
// comes. A functor may change any body in the middle of it: whoever changes what the walk has read
// says so by Touch, the body is read anew before the next pair, and what was known of it is tested
// again. Life and functors are never remembered.
//
// Some tests reach beyond the bounds of a body, and have a road of their own: the swept test of a
// sphere and a box knows the box's planes only, which have no end, so each such pair is tested.
#pragma once

#include "vorn/math/box_shape.hpp"
#include "vorn/math/volumes.hpp"
#include "vorn/physics/body_group.hpp"
#include "vorn/physics/body_volume.hpp"
#include "vorn/physics/fwd.hpp"
#include "vorn/physics/pair_hits.hpp"
#include "vorn/physics/pair_lanes.hpp"
#include "vorn/physics/slim_box.hpp"
#include "vorn/scene/fwd.hpp"

#include <bitset>
#include <cstddef>
#include <list>
#include <span>
#include <utility>
#include <vector>

namespace Vorn {

class PairWalk {
public:
    explicit PairWalk(const PhysicsSystem* system) : mSystem(system) {}

    void Run(const std::list<PhysicsCmpt*>& cmpts);

    /// What a walk has read of the entity, or of its component, has changed or is about to.
    static void Touch(const Entity* entity) {
        if (sRunning && entity)
            sRunning->touch(entity);
    }
    /// The component leaves its list, or dies.
    static void Forget(const PhysicsCmpt* cmpt);
    /// The component is about to enter the system's list, and leaves that of any other.
    static void Leave(const PhysicsSystem* system, const PhysicsCmpt* cmpt);
    /// The component has entered the system's list.
    static void Append(const PhysicsSystem* system, PhysicsCmpt* cmpt);

private:
    using Id = BodyGroup::Id;
    enum class Kind : unsigned char { None, Box, Sphere };

    struct Body {
        PhysicsCmpt* cmpt; // null once it is gone
        Entity* entity;
        Kind kind = Kind::None;
        bool dynamic = false;
        bool touched = false; // to be read anew
        bool stray = false;   // in no group, or in one that it no longer belongs to: may meet all
        bool upright = false; // a box whose three axes are sure to be of length 1, at right angles
        bool known = false;   // its hits with later bodies are, but for those that have moved
        bool settled = false; // and it meets nobody else, as long as nobody moves
        std::bitset<64> mask;
        std::bitset<64> category;
        Sphere sphere;
        Vector3 velocity;
        Vector3 size;
        int index = -1; // in its group
        int place = 0;  // in its group's order of space
        Id next = -1;   // the next body of the same entity

        Body(PhysicsCmpt* c, Entity* e) : cmpt(c), entity(e) {}
    };

    /// Kept from step to step: turning costs more than all else that is read of a body.
    struct Turn {
        Vector3 orientation;
        float angle = 0.0f;
        bool straight = false; // see IsStraight
        bool known = false;
        BodyTurn turn{};

        Turn() = default;
        Turn(const Vector3& o, float a, bool s) : orientation(o), angle(a), straight(s) {}
    };

    /// A box as it is asked by those before it, and as it asks those after it.
    struct Shape {
        BoxCorners corners;
        BoxSides sides;
    };

    struct Traits {
        std::bitset<64> mask, category;
    };

    void forget(const PhysicsCmpt* cmpt);
    void gather(const std::list<PhysicsCmpt*>& cmpts);
    void link(Id id);
    void read(Body& body, Turn& turn);
    void keepCategory(const std::bitset<64>& category);
    void group(Id id);
    Bounds boundsOf(const Body& body) const;
    const Shape& shapeOf(Id id);
    Turn& turn(Id id) { return mTurns[static_cast<std::size_t>(id)]; }
    const BodyTurn& turnOf(Id id);
    BodyGroup& groupOf(const Body& body) { return body.kind == Kind::Box ? mBoxes : mSpheres; }

    void findHits();
    void placeBoxes();
    template <typename Test>
    bool findHits(BodyGroup& group, const Stretch& stretch, Test test);
    void testBoxes(std::span<PlacedPair> pairs);
    void testSpheres(std::span<PlacedPair> pairs);

    bool refusesAll(const Body& a) const;
    bool isSettled(const Body& a) { return a.settled && mStrays.empty() && groupOf(a).AllStand(); }
    void walkRow(Id i);
    bool walkHits(Id i, Id& from, bool& knownAlive);
    void fetchAhead(std::size_t hit) const;
    void findCandidates(Id i, Id from);
    void addCandidates(const std::vector<Id>& ids, Id from);
    bool hits(Id i, Id j);
    bool boxesHit(Id i, Id j);
    bool facesHit(Id box, Id sphere);
    void report(Id i, Id j);
    std::size_t settle(Id i, Id j, std::size_t cursor);
    void settleAll();
    bool refresh(Id id);

    void touch(const Entity* entity);
    void touchAll();
    void markTouched(Id id);
    Body& body(Id id) { return mBodies[static_cast<std::size_t>(id)]; }
    Id count() const { return static_cast<Id>(mBodies.size()); }

    static PairWalk* sRunning; // the innermost: a functor may run a step of its own

    const PhysicsSystem* mSystem;
    PairWalk* mOuter = nullptr;
    std::vector<Body> mBodies;
    std::vector<Turn> mTurns;   // by the id of the body
    std::vector<Shape> mShapes; // by the place of the box
    std::vector<unsigned char> mShapesKnown;
    std::vector<SlimBox> mSlimBoxes; // by the place of the box, as mBoxTraits; for findHits only
    std::vector<Traits> mBoxTraits;
    bool mAnyMask = false; // of a box
    Shape mStrayShapes[2];
    int mLastStrayShape = 0;
    BodyGroup mBoxes, mSpheres;
    static constexpr std::size_t MostCategories = 16;
    std::vector<std::bitset<64>> mCategories; // all that occur, or as many as are kept
    std::vector<Id> mDynamicBoxes, mDynamicSpheres;
    std::vector<Id> mStrays; // ascending
    std::vector<Id> mTouched;
    std::vector<PlacedPair> mPairs; // to be tested
    std::vector<PlacedPair> mUnsure;
    PairHits mHits;
    bool mAnyMoved = false;      // since the hits were found; new bodies count as well
    std::vector<Id> mCandidates; // of the row, ascending
    std::vector<Id> mMerged;
};

} // namespace Vorn
