// SPDX-License-Identifier: MIT
//
// What a ray meets among a list of entities, by their bounding spheres, whatever the volume of
// their bodies: for lines of sight, shots and picking.
//
//   Vorn::Entity* seen = nullptr;
//   if (Vorn::RayCastFromObject(wolf, ahead, scene->EntityList(), seen, 0.0f))
//       chase(seen);
//
// Directions have length 1. Entities that are not alive are passed over. `minimum` is the near end
// of the ray: a hit counts only beyond it, so 0 refuses spheres that hold the origin with their
// centre behind it. Each returns whether there was a hit; an out-parameter that has none stays as
// it was. Of entities at the same distance the first in the list wins.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/volumes.hpp"
#include "vorn/scene/fwd.hpp"

#include <list>

namespace Vorn {

/// From the caster's position, with its own sphere swept along the ray. The caster must have a body
/// (null, or an entity without one, sees nothing); entities without one are passed over, and those
/// whose category is in its mask. The caster is not: keep it out of the list or in the mask. A hit
/// beyond 1e9 counts and sets no `hit`.
VORN_API bool RayCastFromObject(const Entity* caster, const Vector3& direction,
                                const std::list<Entity*>& entities, Entity*& hit, float minimum);
/// All that are hit go into `hits`, which is not cleared: the nearest to its front, the others in
/// no useful order.
VORN_API bool RayCastFromObject(const Entity* caster, const Vector3& direction,
                                const std::list<Entity*>& entities, std::list<Entity*>& hits,
                                float minimum);
/// With `usePhysics`, against the spheres of the entities that have a body; without, against
/// spheres of half the length of their scale, of every entity. No mask is looked at.
VORN_API bool RayCastFromPoint(const Ray& ray, const std::list<Entity*>& entities, Entity*& hit,
                               float minimum, bool usePhysics);

} // namespace Vorn
