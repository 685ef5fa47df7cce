// SPDX-License-Identifier: MIT
#include "vorn/scene/entity.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/json.hpp"
#include "vorn/physics/pair_walk.hpp"
#include "vorn/physics/physics_cmpt.hpp"
#include "vorn/physics/physics_system.hpp"
#include "vorn/render/emitter_cmpt.hpp"
#include "vorn/render/emitter_system.hpp"
#include "vorn/render/graphics_cmpt.hpp"
#include "vorn/render/graphics_system.hpp"

#include <cassert>

namespace Vorn {

namespace {

GraphicsSystem& SystemOf(const GraphicsCmpt&) {
    return *GraphicsSystem::Instance();
}

PhysicsSystem& SystemOf(const PhysicsCmpt&) {
    return *PhysicsSystem::Instance();
}

EmitterSystem& SystemOf(const EmitterCmpt&) {
    return *EmitterSystem::Instance();
}

std::string Quoted(std::string_view key) {
    return '"' + std::string(key) + '"';
}

} // namespace

template <typename C>
C& Entity::CmptSlot<C>::Ensure(Entity* parent) {
    if (!cmpt) {
        cmpt = new C(parent);
        owned = true;
        if (parent->mMasterFlags.MarksAll())
            MarkAll();
        if (parent->mRegistersNew)
            Register();
    }
    return *cmpt;
}

template <typename C>
void Entity::CmptSlot<C>::Register() {
    if (cmpt)
        SystemOf(*cmpt).Register(cmpt);
}

template <typename C>
void Entity::CmptSlot<C>::Unregister() {
    if (cmpt)
        SystemOf(*cmpt).Unregister(cmpt);
}

template <typename C>
void Entity::CmptSlot<C>::Clear() {
    if (owned)
        delete cmpt;
    cmpt = nullptr;
    owned = false;
}

template <typename C>
void Entity::CmptSlot<C>::Share(const CmptSlot& source) {
    if (source.cmpt == cmpt)
        return;
    Clear();
    cmpt = source.cmpt;
}

template <typename C>
void Entity::CmptSlot<C>::DropShared() {
    if (!owned)
        cmpt = nullptr;
}

template <typename C>
void Entity::CmptSlot<C>::CopyFrom(const CmptSlot& source, Entity* parent) {
    if (source.cmpt)
        Ensure(parent) = *source.cmpt;
}

template <typename C>
void Entity::CmptSlot<C>::ConformTo(const CmptSlot& source, Entity* parent) {
    if (source.cmpt)
        Ensure(parent).Conform(*source.cmpt);
    else
        Clear();
}

template <typename C>
void Entity::CmptSlot<C>::Deserialize(const Json::Value* member, std::string_view key,
                                      Entity* parent, bool master) {
    const Json::Value& value = JsonObject(member, key);
    if (!value.isNull())
        ReadingIn([key] { return Quoted(key); },
                  [&] { Ensure(parent).DeserializeValue(value, master); });
    else if (master)
        Clear();
}

template <typename C>
void Entity::CmptSlot<C>::Serialize(Json::Value& out, const char* key, bool master) const {
    Json::Value value;
    if (cmpt)
        cmpt->SerializeValue(value, master);
    out[key] = std::move(value);
}

template <typename C>
void Entity::CmptSlot<C>::MarkAll() {
    if (cmpt)
        cmpt->mMasterFlags.MarkAll();
}

Entity::Entity() = default;

Entity::Entity(const Entity& entity) : mScale(entity.mScale), mScene(entity.mScene), mVariant() {
    mGraphics.CopyFrom(entity.mGraphics, this);
    mPhysics.CopyFrom(entity.mPhysics, this);
    mEmitter.CopyFrom(entity.mEmitter, this);
}

Entity& Entity::operator=(const Entity& entity) {
    if (this == &entity)
        return *this;
    mAlive = entity.mAlive;
    mMasterFlags = entity.mMasterFlags;
    mScene = entity.mScene;
    mType = entity.mType;
    mVariant = entity.mVariant;
    mName = entity.mName;
    mPosition = entity.mPosition;
    mOrientation = entity.mOrientation;
    mAngle = entity.mAngle;
    mScale = entity.mScale;
    mGraphics.Share(entity.mGraphics);
    mPhysics.Share(entity.mPhysics);
    mEmitter.Share(entity.mEmitter);
    mParent = entity.mParent;
    mLocalPosition = entity.mLocalPosition;
    mRotationOffset = entity.mRotationOffset;
    PairWalk::Touch(this);
    return *this;
}

Entity::~Entity() {
    mGraphics.Clear();
    mPhysics.Clear();
    mEmitter.Clear();
}

void Entity::DeserializeValue(const Json::Value& root, bool master) {
    static constexpr JsonKeys<9> keys{"Type",         "Variant",     "Name",
                                      "Position",     "Orientation", "Scale",
                                      "GraphicsCmpt", "PhysicsCmpt", "EmitterCmpt"};
    const auto members = JsonMembers(root, keys);
    PairWalk::Touch(this);
    dsParam(mType, JsonString(members[0], keys[0], mType), master);
    dsParam(mVariant, JsonString(members[1], keys[1], mVariant), master);
    dsParam(mName, JsonString(members[2], keys[2], mName), master);

    const auto readVector3 = [&](std::size_t key, Vector3& field) {
        const Json::Value& value = JsonObject(members[key], keys[key]);
        if (value.isNull())
            return;
        ReadingIn([&] { return Quoted(keys[key]); },
                  [&] {
                      dsParamVector3(field, value, master);
                      // A new direction starts without the spin of the old one.
                      if (&field == &mOrientation)
                          dsParam(mAngle, JsonFloat(value, "Angle", 0.0f), master);
                  });
    };
    readVector3(3, mPosition);
    mLocalPosition = mPosition;
    readVector3(4, mOrientation);
    readVector3(5, mScale);

    mGraphics.Deserialize(members[6], keys[6], this, master);
    mPhysics.Deserialize(members[7], keys[7], this, master);
    mEmitter.Deserialize(members[8], keys[8], this, master);
}

void Entity::SerializeValue(Json::Value& out, bool master) const {
    out["Type"] = mType;
    seParam(out, "Name", mName, master);
    seParamVector3(out, "Position", mPosition, master);
    seParamVector3(out, "Orientation", mOrientation, master);
    seParamVector3(out, "Scale", mScale, master);
    mGraphics.Serialize(out, "GraphicsCmpt", master);
    mPhysics.Serialize(out, "PhysicsCmpt", master);
    mEmitter.Serialize(out, "EmitterCmpt", master);
}

void Entity::RegisterCmpts() {
    mGraphics.Register();
    mPhysics.Register();
    mEmitter.Register();
}

void Entity::UnregisterCmpts() {
    mGraphics.Unregister();
    mPhysics.Unregister();
    mEmitter.Unregister();
}

void Entity::Init() {}

void Entity::Update(float) {
    updatePosition();
}

void Entity::Deinit() {
    mParent = nullptr;
}

void Entity::Conform(const Entity* source) {
    assert(source && "an entity conforms to another entity");
    if (source == this)
        return;
    PairWalk::Touch(this);
    mType = source->mType;
    mVariant = source->mVariant;
    mPosition = source->mPosition;
    mOrientation = source->mOrientation;
    mAngle = source->mAngle;
    mRotationOffset = source->mRotationOffset;
    mScale = source->mScale;
    mGraphics.ConformTo(source->mGraphics, this);
    mPhysics.ConformTo(source->mPhysics, this);
    mEmitter.ConformTo(source->mEmitter, this);
}

void Entity::Deserialize(const std::string& text, bool master) {
    DeserializeValue(ParseJson(text), master);
}

void Entity::Serialize(std::string& out, bool master) const {
    Json::Value value;
    SerializeValue(value, master);
    out = WriteJson(value);
}

void Entity::TakeOver(const Entity& source) {
    mGraphics.DropShared();
    mPhysics.DropShared();
    mEmitter.DropShared();
    Conform(&source);
    mName = source.mName;
    mLocalPosition = mPosition;
    mParent = nullptr;
    mScene = nullptr;
    mMasterFlags.MarkAll();
    mGraphics.MarkAll();
    mPhysics.MarkAll();
    mEmitter.MarkAll();
}

void Entity::Position(const Vector3& position) {
    mPosition = position;
    PairWalk::Touch(this);
    updateLocalPosition();
}

void Entity::LocalPosition(const Vector3& position) {
    mLocalPosition = position;
    updatePosition();
}

void Entity::Orientation(const Vector3& orientation) {
    mOrientation = orientation;
    PairWalk::Touch(this);
}

void Entity::Scale(float x, float y, float z) {
    mScale = Vector3(x, y, z);
    PairWalk::Touch(this);
}

void Entity::Angle(float angle) {
    mAngle = angle;
    PairWalk::Touch(this);
}

Matrix4 Entity::GetWorld() const {
    Matrix4 rotation = Matrix4::RotationAxisAngle(mOrientation, mAngle);
    rotation *= Matrix4::RotationAxisAlignZ(mOrientation).Transposed();
    Matrix4 world = Matrix4::Translation(mPosition);
    world *= rotation;
    world *= Matrix4::Scaling(mScale);
    return world;
}

void Entity::updatePosition() {
    mPosition = mParent ? mParent->mPosition + mLocalPosition : mLocalPosition;
    PairWalk::Touch(this);
}

void Entity::updateLocalPosition() {
    mLocalPosition = mParent ? mPosition - mParent->mPosition : mPosition;
}

} // namespace Vorn
