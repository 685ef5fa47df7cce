// SPDX-License-Identifier: MIT
#include "vorn/physics/physics_system.hpp"

#include "vorn/core/fetch.hpp"
#include "vorn/physics/pair_walk.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/scene/entity.hpp"

#include <utility>

namespace Vorn {

namespace {

constexpr float StepLength = 0.016666668f; // (unit: seconds)
constexpr float Damping = 0.98f;

} // namespace

PhysicsSystem::PhysicsSystem() : mStep(StepLength), mStepTimer(StepLength) {}

PhysicsSystem::~PhysicsSystem() = default;

void PhysicsSystem::Init() {
    mStep = mStepTimer = StepLength;
    for (PhysicsCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Init();
}

void PhysicsSystem::Update(float dt) {
    mStepTimer -= dt;
    const bool step = mStepTimer < 0.0f;
    const auto update = [&](PhysicsCmpt* cmpt) {
        if (const Entity* entity = cmpt->Parent(); !entity || !entity->IsAlive())
            return;
        if (step) {
            ComputeFinalForce(cmpt);
            ComputeLinearAcceleration(cmpt);
            ComputeLinearVelocity(cmpt);
            ComputeAngularVelocity(cmpt);
            ClearApplied(cmpt);
            UpdatePosition(cmpt);
        }
        if (mDebug)
            cmpt->DrawDebug();
    };
    VisitFetching(
        mCmpts.Cmpts(),
        [](const PhysicsCmpt* cmpt) {
            Fetch(&cmpt->mMass);
            Fetch(&cmpt->mLinearVelocity);
            Fetch(&cmpt->mLinearAcceleration);
        },
        [](const PhysicsCmpt* cmpt) {
            if (const Entity* entity = cmpt->Parent()) {
                Fetch(&entity->Position());
                Fetch(&entity->Scale());
            }
        },
        update);
    if (!step)
        return;
    mStepTimer = mStep;
    CheckCollision();
}

void PhysicsSystem::Deinit() {
    for (PhysicsCmpt* cmpt : mCmpts.Cmpts())
        cmpt->Deinit();
}

void PhysicsSystem::Register(PhysicsCmpt* cmpt) {
    PairWalk::Leave(this, cmpt);
    mCmpts.Add(cmpt);
    PairWalk::Append(this, cmpt);
}

void PhysicsSystem::Unregister(PhysicsCmpt* cmpt) {
    if (!cmpt)
        return;
    cmpt->ClearProperties();
    mCmpts.RemoveAll(cmpt);
    PairWalk::Forget(cmpt);
}

void PhysicsSystem::ComputeFinalForce(PhysicsCmpt* cmpt) {
    cmpt->mFinalForce = (cmpt->mFinalForce + cmpt->mForce) * Damping;
}

void PhysicsSystem::ComputeLinearAcceleration(PhysicsCmpt* cmpt) {
    cmpt->mLinearAcceleration = (cmpt->mFinalForce / cmpt->mMass) * Damping;
}

void PhysicsSystem::ComputeLinearVelocity(PhysicsCmpt* cmpt) {
    cmpt->mLinearVelocity += (cmpt->mForce / cmpt->mMass + cmpt->mLinearAcceleration) * mStep;
    if (cmpt->mDrag)
        cmpt->mLinearVelocity *= Damping;
}

void PhysicsSystem::ComputeAngularVelocity(PhysicsCmpt* cmpt) {
    const float size = cmpt->Parent()->Scale().Length();
    cmpt->mAngularVelocity = size == 0.0f ? Vector3() : cmpt->mLinearVelocity / size;
}

void PhysicsSystem::ClearApplied(PhysicsCmpt* cmpt) {
    cmpt->mForce = Vector3();
}

void PhysicsSystem::UpdatePosition(PhysicsCmpt* cmpt) {
    cmpt->Parent()->Position(cmpt->Parent()->Position() + cmpt->mLinearVelocity);
}

void PhysicsSystem::CheckCollision() {
    // A functor that runs a step of its own finds no walk here and makes another.
    std::unique_ptr<PairWalk> walk = std::move(mWalk);
    if (!walk)
        walk = std::make_unique<PairWalk>(this);
    walk->Run(mCmpts.Cmpts());
    mWalk = std::move(walk);
}

} // namespace Vorn
