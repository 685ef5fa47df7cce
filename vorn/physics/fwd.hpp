// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class FunctorBase1;
class PairWalk;
class PhysicsCmpt;
class PhysicsSystem;
struct CollisionData;

} // namespace Vorn
