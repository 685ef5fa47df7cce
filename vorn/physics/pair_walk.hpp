// SPDX-License-Identifier: MIT
//
// Below PhysicsSystem: the walk over all pairs of bodies in the order of the list, at a cost that
// follows the pairs that are close and not their square.
//
// What each body is, and bounds of it, are read once at the start; for each body in turn, two
// BodyGroups name the later bodies that it may meet, and these alone are tested, in the order of
// the list. A functor may change any body in the middle of it: whoever changes what the walk has
// read says so by Touch, and the body is read anew before the next pair. Life and functors are
// never remembered.
//
// Some tests reach beyond the bounds of a body, and have a road of their own: the swept test of a
// sphere and a box knows the box's planes only, which have no end, so each such pair is tested.
#pragma once

#include "vorn/math/box_shape.hpp"
#include "vorn/math/volumes.hpp"
#include "vorn/physics/body_group.hpp"
#include "vorn/physics/fwd.hpp"
#include "vorn/scene/fwd.hpp"

#include <bitset>
#include <list>
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
        PhysicsCmpt* cmpt = nullptr; // null once it is gone
        Entity* entity = nullptr;
        std::bitset<64> mask;
        std::bitset<64> category;
        Sphere sphere;
        Vector3 velocity;
        Vector3 size;
        Vector3 orientation;
        float angle = 0.0f;
        Kind kind = Kind::None;
        bool dynamic = false;
        bool touched = false; // to be read anew
        bool stray = false;   // in no group, or in one that it no longer belongs to: may meet all
        bool upright = false; // a box whose three axes are sure to be of length 1, at right angles
        bool shaped = false;  // its shape is known
        int index = -1;       // in its group
        Id next = -1;         // the next body of the same entity
    };

    /// A box as it is asked by those before it, and as it asks those after it.
    struct Shape {
        BoxCorners corners;
        BoxSides sides;
    };

    void forget(const PhysicsCmpt* cmpt);
    void gather(const std::list<PhysicsCmpt*>& cmpts);
    Id add(PhysicsCmpt* cmpt);
    void link(Id id);
    void read(Body& body) const;
    Bounds boundsOf(const Body& body) const;
    const Shape& shapeOf(Id id);
    BodyGroup& groupOf(const Body& body);

    void walkRow(Id i);
    void findCandidates(Id i, Id from);
    void addCandidates(const std::vector<Id>& ids, Id from);
    bool hits(Id i, Id j);
    bool boxesHit(Id i, Id j);
    bool facesHit(Id box, Id sphere);
    void report(Id i, Id j);
    std::size_t settle(Id i, Id j, std::size_t cursor);
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
    std::vector<Shape> mShapes; // of each body of mBoxes
    Shape mStrayShapes[2];
    int mLastStrayShape = 0;
    BodyGroup mBoxes, mSpheres;
    std::vector<Id> mDynamicBoxes, mDynamicSpheres;
    std::vector<Id> mStrays; // ascending
    std::vector<Id> mTouched;
    std::vector<Id> mCandidates; // of the row, ascending
    std::vector<Id> mMerged;
};

} // namespace Vorn
