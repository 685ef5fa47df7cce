// SPDX-License-Identifier: MIT
//
// How a game hears of a collision.
//
//   class Bounce : public Vorn::FunctorBase1 {
//       void operator()(Vorn::CollisionData* data) override { mHits.push_back(data->other); }
//   };
//   ball->Physics()->RegisterCollisionResponse(&bounce);
//
// A functor runs inside PhysicsSystem::Update, once for each hit of a step. It may move, turn,
// scale, kill or remask any body, set velocities and exchange functors: the pairs that follow are
// tested with what it left. It must not register or unregister components nor destroy entities on
// the spot: it asks the scene to do so at the end of the frame (`immediate` false).
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/physics/fwd.hpp"

namespace Vorn {

/// Good during the call only.
struct CollisionData {
    /// The component that the receiver collided with.
    PhysicsCmpt* other;
};

/// The host derives from it and owns the object, which outlives its registration.
class VORN_API FunctorBase1 {
public:
    virtual void operator()(CollisionData* data) = 0;
    virtual ~FunctorBase1();

protected:
    FunctorBase1() = default;
    FunctorBase1(const FunctorBase1&) = default;
    FunctorBase1& operator=(const FunctorBase1&) = default;
};

} // namespace Vorn
