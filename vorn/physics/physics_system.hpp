// SPDX-License-Identifier: MIT
//
// Moves the bodies in fixed steps and tells their functors who met whom. There is no gravity, no
// response and no correction of positions: what a collision does is the game's.
//
//   auto* physics = Vorn::PhysicsSystem::Instance();
//   physics->LoadPhysicsInfo("data/physics.json");   // before any entity with a body is read
//   physics->Init();
//   physics->Update(dt);                             // once a frame
//
// A frame runs at most one step, and a step always counts as 1/60 second: below 60 frames a second
// the world runs slower, not in more steps.
//
// In a step each pair of living bodies is tested once, in the order of registration: the earlier
// body's mask against the later one's category, then by their volumes.
//
//   earlier  later    at rest        with the dynamic check on either
//   box      box      OBBToOBB       none
//   box      sphere   none           DynamicSphereToOBB
//   sphere   box      none           DynamicSphereToOBB
//   sphere   sphere   SphereSphere   DynamicSphereToSphere
//
// On a hit the earlier body's functor is called, then the later one's.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/physics/category.hpp"
#include "vorn/physics/fwd.hpp"
#include "vorn/scene/cmpt_list.hpp"
#include "vorn/scene/system.hpp"

#include <memory>
#include <string>

namespace Vorn {

class VORN_API PhysicsSystem : public System<PhysicsSystem, PhysicsCmpt> {
public:
    PhysicsSystem();
    ~PhysicsSystem() override;

    /// Reads the file of category and volume names. Raises what MemoryFromFile raises, DataError
    /// for names that are no texts, and std::length_error with the file's name for more than 32
    /// categories. A file that raises enters nothing.
    void LoadPhysicsInfo(const std::string& path);
    /// Enters a name with the low 32 bits of `bits`. A name that is there keeps its first value.
    void AddCategory(const std::string& name, int bits);
    void AddVolume(const std::string& name, unsigned int type);
    const CategoryTable* CategoryMap() const { return &mCategories; }
    const VolumeTable* VolumeMap() const { return &mVolumes; }

    /// Also starts the step's timer anew.
    void Init() override;
    void Update(float dt) override;
    void Deinit() override;
    void Register(PhysicsCmpt* cmpt) override;
    /// Clears the component's motion, also where it is not in the list, and erases every entry of
    /// it.
    void Unregister(PhysicsCmpt* cmpt) override;

    /// Whether Update draws the volumes of living bodies, in frames without a step too.
    bool Debug() const { return mDebug; }
    void Debug(const bool& debug) { mDebug = debug; }

private:
    void ComputeFinalForce(PhysicsCmpt* cmpt);
    void ComputeLinearAcceleration(PhysicsCmpt* cmpt);
    void ComputeLinearVelocity(PhysicsCmpt* cmpt);
    void ComputeAngularVelocity(PhysicsCmpt* cmpt);
    void ClearApplied(PhysicsCmpt* cmpt);
    void UpdatePosition(PhysicsCmpt* cmpt);
    void CheckCollision();

    CmptList<PhysicsCmpt> mCmpts;
    CategoryTable mCategories;
    VolumeTable mVolumes;
    bool mDebug = false;
    float mStep;
    float mStepTimer;
    std::unique_ptr<PairWalk> mWalk; // kept for its storage; null while it runs
};

template <>
VORN_API PhysicsSystem Singleton<PhysicsSystem>::mSingleton;

} // namespace Vorn
