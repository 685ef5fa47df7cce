// SPDX-License-Identifier: MIT
#include "vorn/physics/ray_cast.hpp"

#include "vorn/math/intersection.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/scene/entity.hpp"

namespace Vorn {

namespace {

/// Counts hits and knows the nearest one so far.
class Nearest {
public:
    explicit Nearest(float minimum) : mMinimum(minimum) {}

    bool Hits(const Ray& ray, const Sphere& sphere) {
        if (!RayToSphere(ray, sphere, &mDistance) || !(mDistance > mMinimum))
            return false;
        mAny = true;
        return true;
    }
    /// Whether the last hit is nearer than all before it.
    bool IsNearest() {
        if (!(mDistance < mBest))
            return false;
        mBest = mDistance;
        return true;
    }
    bool Any() const { return mAny; }

private:
    float mMinimum;
    float mDistance = 0.0f;
    float mBest = 1e9f;
    bool mAny = false;
};

// Calls `onHit` with each entity that the caster's sphere meets, and whether it is the nearest so
// far.
template <typename OnHit>
bool Cast(const Entity* caster, const Vector3& direction, const std::list<Entity*>& entities,
          float minimum, OnHit onHit) {
    const PhysicsCmpt* body = caster ? caster->Physics() : nullptr;
    if (!body)
        return false;
    const Ray ray(caster->Position(), direction);
    const float casterRadius = body->BoundingSphere().radius;
    const std::bitset<64> mask = body->Mask();
    Nearest nearest(minimum);
    for (Entity* entity : entities) {
        const PhysicsCmpt* other = entity->Physics();
        if (!entity->IsAlive() || !other || (mask & other->Category()).any())
            continue;
        Sphere sphere = other->BoundingSphere();
        sphere.radius += casterRadius;
        if (nearest.Hits(ray, sphere))
            onHit(entity, nearest.IsNearest());
    }
    return nearest.Any();
}

} // namespace

bool RayCastFromObject(const Entity* caster, const Vector3& direction,
                       const std::list<Entity*>& entities, Entity*& hit, float minimum) {
    return Cast(caster, direction, entities, minimum, [&hit](Entity* entity, bool nearest) {
        if (nearest)
            hit = entity;
    });
}

bool RayCastFromObject(const Entity* caster, const Vector3& direction,
                       const std::list<Entity*>& entities, std::list<Entity*>& hits,
                       float minimum) {
    return Cast(caster, direction, entities, minimum, [&hits](Entity* entity, bool nearest) {
        if (nearest)
            hits.push_front(entity);
        else
            hits.push_back(entity);
    });
}

bool RayCastFromPoint(const Ray& ray, const std::list<Entity*>& entities, Entity*& hit,
                      float minimum, bool usePhysics) {
    Nearest nearest(minimum);
    for (Entity* entity : entities) {
        if (!entity->IsAlive() || (usePhysics && !entity->Physics()))
            continue;
        const Sphere sphere = usePhysics ? entity->Physics()->BoundingSphere()
                                         : Sphere(entity->Position(), entity->Scale().Length() / 2);
        if (nearest.Hits(ray, sphere) && nearest.IsNearest())
            hit = entity;
    }
    return nearest.Any();
}

} // namespace Vorn
