// SPDX-License-Identifier: MIT
#include "vorn/physics/physics_cmpt.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/json.hpp"
#include "vorn/physics/body_volume.hpp"
#include "vorn/physics/pair_walk.hpp"
#include "vorn/physics/physics_system.hpp"
#include "vorn/scene/entity.hpp"

namespace Vorn {

namespace {

// A saved body has the number of its volume, one that a person writes has the name.
unsigned int ReadVolumeType(const Json::Value& root) {
    const Json::Value& type = JsonMember(root, "Type");
    if (type.isNumeric())
        return JsonUInt(root, "Type", 0);
    return FindName(*PhysicsCmpt::mVolMap, JsonString(root, "Type", "NONE"));
}

Vector3 ReadScaleFactor(const Json::Value& object) {
    return ReadingIn([] { return "\"ScaleFactor\""; },
                     [&object] {
                         return Vector3(JsonFloat(object, "X", 1.0f), JsonFloat(object, "Y", 1.0f),
                                        JsonFloat(object, "Z", 1.0f));
                     });
}

} // namespace

// Out of line, so that the library holds the one type.
FunctorBase1::~FunctorBase1() = default;

PhysicsCmpt& PhysicsCmpt::operator=(const PhysicsCmpt& source) {
    BaseCmpt::operator=(source);
    copyTraits(source);
    mResponse = source.mResponse;
    mLinearVelocity = source.mLinearVelocity;
    mAngularVelocity = source.mAngularVelocity;
    mFinalForce = source.mFinalForce;
    mForce = source.mForce;
    mLinearAcceleration = source.mLinearAcceleration;
    touched();
    return *this;
}

PhysicsCmpt::~PhysicsCmpt() {
    PairWalk::Forget(this);
}

void PhysicsCmpt::DeserializeValue(const Json::Value& value, bool master) {
    touched();
    dsParam(mMass, JsonFloat(value, "Mass", mMass), master);
    dsParam(mDrag, JsonBool(value, "Drag", mDrag), master);
    dsParam(mDynamicCheck, JsonBool(value, "DynamicCheck", mDynamicCheck), master);
    dsParam(mCategory, FindName(*mCatMap, JsonString(value, "Category", "NONE")), master);
    dsParam(mMask, ParseCategories(*mCatMap, JsonString(value, "Mask", "NONE")), master);
    dsParam(mVolumeType, ReadVolumeType(value), master);
    const Json::Value& factor = JsonObject(value, "ScaleFactor");
    if (!factor.isNull())
        dsParam(mScaleFactor, ReadScaleFactor(factor), master);
}

void PhysicsCmpt::SerializeValue(Json::Value& out, bool master) const {
    seParam(out, "Mass", mMass, master);
    seParam(out, "Drag", mDrag, master);
    seParam(out, "DynamicCheck", mDynamicCheck, master);
    seParamVector3(out, "ScaleFactor", mScaleFactor, master);
    seParam(out, "Type", mVolumeType, master);
    if (master || !mMasterFlags.IsMaster(&mCategory))
        out["Category"] = WriteCategories(*mCatMap, mCategory);
    if (master || !mMasterFlags.IsMaster(&mMask))
        out["Mask"] = WriteCategories(*mCatMap, mMask);
}

void PhysicsCmpt::Conform(const BaseCmpt& source) {
    copyTraits(dynamic_cast<const PhysicsCmpt&>(source));
    touched();
}

void PhysicsCmpt::HandleCollision(CollisionData* data) {
    if (mResponse)
        (*mResponse)(data);
}

void PhysicsCmpt::LinearVelocity(const Vector3& velocity) {
    mLinearVelocity = velocity;
    touched();
}

void PhysicsCmpt::ScaleFactor(const Vector3& factor) {
    mScaleFactor = factor;
    touched();
}

void PhysicsCmpt::UseDynamicCollisionCheck(bool dynamic) {
    mDynamicCheck = dynamic;
    touched();
}

void PhysicsCmpt::ClearProperties() {
    mLinearVelocity = mAngularVelocity = mFinalForce = mForce = mLinearAcceleration = Vector3();
    touched();
}

Vector3 PhysicsCmpt::Scale() const {
    return Parent() ? Parent()->Scale() : Vector3();
}

Vector3 PhysicsCmpt::Position() const {
    return Parent() ? Parent()->Position() : Vector3();
}

void PhysicsCmpt::Position(const Vector3& position) {
    if (Parent())
        Parent()->Position(position);
}

bool PhysicsCmpt::IsAlive() const {
    return Parent() && Parent()->IsAlive();
}

void PhysicsCmpt::Category(const std::string& name) {
    mCategory = FindName(*mCatMap, name);
    touched();
}

void PhysicsCmpt::ClearCategory() {
    mCategory.reset();
    touched();
}

void PhysicsCmpt::Mask(const std::string& expression) {
    mMask = ParseCategories(*mCatMap, expression);
    touched();
}

void PhysicsCmpt::ClearMask() {
    mMask.reset();
    touched();
}

void PhysicsCmpt::VolumeType(const std::string& name) {
    mVolumeType = FindName(*mVolMap, name);
    touched();
}

void PhysicsCmpt::ClearVolumeType() {
    mVolumeType = 0;
    touched();
}

AABB PhysicsCmpt::BoundingAABB() const {
    return {Position(), size() / 2};
}

OBB PhysicsCmpt::BoundingOBB() const {
    if (!Parent())
        return {Matrix4::Identity, Vector3()};
    const BodyTurn turn = TurnOf(Parent()->Orientation(), Parent()->Angle());
    return {BodyTransform(Parent()->Position(), turn), size()};
}

Sphere PhysicsCmpt::BoundingSphere() const {
    return BodySphere(Position(), size());
}

void PhysicsCmpt::touched() const {
    PairWalk::Touch(Parent());
}

Vector3 PhysicsCmpt::size() const {
    return BodySize(Scale(), mScaleFactor);
}

void PhysicsCmpt::copyTraits(const PhysicsCmpt& source) {
    mMass = source.mMass;
    mVolumeType = source.mVolumeType;
    mDrag = source.mDrag;
    mCategory = source.mCategory;
    mMask = source.mMask;
    mScaleFactor = source.mScaleFactor;
    mDynamicCheck = source.mDynamicCheck;
}

} // namespace Vorn
