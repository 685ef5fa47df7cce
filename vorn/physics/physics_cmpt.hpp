// SPDX-License-Identifier: MIT
//
// Gives an entity a body: mass and motion for PhysicsSystem, a volume that follows the entity's
// transform, a category, a mask, and the functor that hears of collisions.
//
//   "PhysicsCmpt": {"Type": "Sphere", "Category": "Bird", "Mask": "ALL - Wall", "Mass": 2}
//
//   sheep->Physics()->LinearVelocity(Vorn::Vector3(0, 0, 0.1f));
//   sheep->Physics()->RegisterCollisionResponse(&bounce);
//
// The mask says what a body does not collide with. docs/physics_info.md tells the names.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/math/volumes.hpp"
#include "vorn/physics/category.hpp"
#include "vorn/physics/collision.hpp"
#include "vorn/physics/fwd.hpp"
#include "vorn/scene/base_cmpt.hpp"
#include "vorn/scene/cmpt_list.hpp"

#include <json/value.h>

#include <bitset>
#include <string>

namespace Vorn {

/// The indices in the volume table that PhysicsSystem tests; bodies of any other do not collide.
enum VolumeIndex : unsigned int { BoxVolume = 1, SphereVolume = 2 };

class VORN_API PhysicsCmpt : public BaseCmpt {
public:
    /// The tables of PhysicsSystem.
    static const CategoryTable* const mCatMap;
    static const VolumeTable* const mVolMap;

    using BaseCmpt::BaseCmpt;
    /// Takes over every field, the functor too; parent and flags as BaseCmpt says.
    PhysicsCmpt(const PhysicsCmpt&) = default;
    PhysicsCmpt& operator=(const PhysicsCmpt& source);
    ~PhysicsCmpt() override;

    /// "Category", "Mask" and "Type" that are missing read as the name "NONE". Raises
    /// std::out_of_range for a name that its table lacks; what was read before it stays changed.
    void DeserializeValue(const Json::Value& value, bool master) override;
    void SerializeValue(Json::Value& out, bool master) const override;
    void Init() override {}
    void Deinit() override {}
    /// Takes over mass, volume type, drag, category, mask, scale factor and the dynamic check.
    /// Functor, motion and flags stay.
    void Conform(const BaseCmpt& source) override;
    /// Does nothing.
    void KillComponent() {}

    /// Replaces the functor; not owned.
    void RegisterCollisionResponse(FunctorBase1* response) { mResponse = response; }
    void UnregisterCollisionCallback() { mResponse = nullptr; }
    /// Calls the functor, if there is one.
    void HandleCollision(CollisionData* data);

    /// (unit: distance / physics step)
    const Vector3& LinearVelocity() const { return mLinearVelocity; }
    void LinearVelocity(const Vector3& velocity);
    /// Derived from the linear one at each step; nothing turns the entity by it.
    const Vector3& AngularVelocity() const { return mAngularVelocity; }
    void AngularVelocity(const Vector3& velocity) { mAngularVelocity = velocity; }
    /// Acts at the next step, and fades from there in FinalForce.
    const Vector3& Force() const { return mForce; }
    void Force(const Vector3& force) { mForce = force; }
    const Vector3& FinalForce() const { return mFinalForce; }
    void FinalForce(const Vector3& force) { mFinalForce = force; }
    const Vector3& LinearAcceleration() const { return mLinearAcceleration; }
    void LinearAcceleration(const Vector3& acceleration) { mLinearAcceleration = acceleration; }
    /// Never 0: forces are divided by it.
    float Mass() const { return mMass; }
    void Mass(float mass) { mMass = mass; }
    /// Whether each step takes two hundredths off the velocity.
    bool Drag() const { return mDrag; }
    void Drag(bool drag) { mDrag = drag; }
    /// Size of the volume relative to the entity's scale.
    const Vector3& ScaleFactor() const { return mScaleFactor; }
    void ScaleFactor(const Vector3& factor);
    /// Whether pairs with this body get the swept test, which covers the next step, in place of the
    /// one at rest.
    bool UseDynamicCollisionCheck() const { return mDynamicCheck; }
    void UseDynamicCollisionCheck(bool dynamic);
    /// All five motion vectors become zero.
    void ClearProperties();

    /// Those of the entity; zero, false and nothing without one.
    Vector3 Scale() const;
    Vector3 Position() const;
    void Position(const Vector3& position);
    bool IsAlive() const;

    /// What this body is. Setters by name raise as DeserializeValue does.
    const std::bitset<64>& Category() const { return mCategory; }
    void Category(const std::string& name);
    void ClearCategory();
    /// What this body does not collide with, where it stands before the other in the list.
    const std::bitset<64>& Mask() const { return mMask; }
    void Mask(const std::string& expression);
    void ClearMask();
    unsigned int VolumeType() const { return mVolumeType; }
    void VolumeType(const std::string& name);
    void ClearVolumeType();

    /// Volumes of the entity as it stands now; of size 0 at the origin without one. The size is the
    /// entity's scale times the scale factor, per axis.
    /// Not turned.
    AABB BoundingAABB() const;
    /// Turned to the entity's orientation, which must not be zero: it has no axis then.
    OBB BoundingOBB() const;
    /// The sphere about the box.
    Sphere BoundingSphere() const;

    /// Hands the edges of the volume of a living body to GraphicsSystem::AddLine: a box, or three
    /// circles for a sphere.
    void DrawDebug() const;

private:
    friend class CmptList<PhysicsCmpt>;
    friend class PairWalk;
    friend class PhysicsSystem;
    friend class Registration<PhysicsCmpt>;

    void touched() const;
    Vector3 size() const;
    void copyTraits(const PhysicsCmpt& source);

    FunctorBase1* mResponse = nullptr;
    float mMass = 1.0f;
    unsigned int mVolumeType = 0;
    bool mDrag = true;
    bool mDynamicCheck = false;
    std::bitset<64> mCategory;
    std::bitset<64> mMask;
    Vector3 mScaleFactor{1.0f, 1.0f, 1.0f};
    Vector3 mLinearVelocity;
    Vector3 mAngularVelocity;
    Vector3 mFinalForce;
    Vector3 mForce;
    Vector3 mLinearAcceleration;
    Registration<PhysicsCmpt> mRegistration;
};

} // namespace Vorn
