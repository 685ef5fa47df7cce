// SPDX-License-Identifier: MIT
//
// One object of a game: a transform, an identity and up to three components.
//
//   class Sheep : public Vorn::Entity {
//       void Update(float dt) override {
//           LocalPosition(LocalPosition() + mVelocity * dt);
//           Entity::Update(dt);
//       }
//   };
//   static Vorn::EntityPool<Sheep> pool;
//   Vorn::EntityFactory::Instance()->Register("sheep", &pool);
//
// Data is layered: a type's template (the master) is read from an entity file, a variant file and
// an object of a scene file override it parameter by parameter. The last argument of all reading
// and writing, `master`, says which of the two is meant; MasterFlags tells the rules.
// docs/entity_file.md describes the object.
//
// An entity owns its components; pools own entities, scenes only hold them. Pointers to an entity
// that went back to its pool stay valid, but the pool may hand the entity out again as another.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/matrix4.hpp"
#include "vorn/math/vector3.hpp"
#include "vorn/physics/fwd.hpp"
#include "vorn/render/fwd.hpp"
#include "vorn/scene/fwd.hpp"
#include "vorn/scene/master_flags.hpp"

#include <json/value.h>

#include <cstdint>
#include <list>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace Vorn {

class VORN_API Entity {
public:
    Entity();
    /// Takes over scene, scale and components (new ones, with the source's data) and nothing else;
    /// all else starts empty, the variant too. `Conform` supplies the rest.
    Entity(const Entity& entity);
    /// Takes over every field but the flags, which mean nothing in a copy. The components are
    /// shared: the source goes on owning them, and this entity may not use them once the source is
    /// gone.
    Entity& operator=(const Entity& entity);
    virtual ~Entity();

    /// Reads an entity object. A master defines which components exist: one that it leaves out is
    /// deleted. Without `master` a component can be added, never taken away. Raises DataError for a
    /// value of the wrong type; what was read before it stays changed.
    virtual void DeserializeValue(const Json::Value& root, bool master);
    /// Writes an entity object: all of it with `master`, the differences from the template without.
    /// "Variant" and "Angle" are not written; a component that writes nothing stands as null.
    /// Raises std::out_of_range without `master` for a parameter that no file named, see
    /// MasterFlags.
    virtual void SerializeValue(Json::Value& out, bool master) const;
    /// Enters each component, a shared one too, in the list of its system, in the order graphics,
    /// physics, emitter.
    virtual void RegisterCmpts();
    virtual void UnregisterCmpts();
    /// When the entity enters a scene, and again when it leaves it (Scene::deinitEntity). Does
    /// nothing here.
    virtual void Init();
    /// Once a frame: brings the position after that of the parent. `dt` (unit: seconds) is for
    /// derived classes.
    virtual void Update(float dt);
    /// When the scene ends: the parent becomes null.
    virtual void Deinit();
    /// Makes this entity like `source`, for reuse from a pool: type, variant, transform and
    /// components. Name, local position, parent, scene, life and flags stay; TakeOver brings those
    /// too.
    virtual void Conform(const Entity* source);

    void Deserialize(const std::string& text, bool master);
    void Serialize(std::string& out, bool master) const;

    /// Whether each component that the entity gets from now on, of a scene object for instance, is
    /// registered at once, straight with its system and not through RegisterCmpts. A pool that
    /// registers what it hands out switches it on.
    void RegisterNewCmpts(bool enabled) { mRegistersNew = enabled; }

    /// What a pool hands out: `Conform` with components of its own, then the template's name, its
    /// position as local position too, no parent, no scene, and every parameter of entity and
    /// components marked as the template's.
    void TakeOver(const Entity& source);

    /// Physics and ray casts pass over an entity that is not alive; the pool sets life. A scene
    /// updates it all the same.
    bool IsAlive() const { return mAlive; }
    void Alive(bool alive) { mAlive = alive; }

    /// The scene that holds the entity, null while none does.
    Vorn::Scene* Scene() const { return mScene; }
    std::string Type() const { return mType; }
    std::string Variant() const { return mVariant; }
    std::string Name() const { return mName; }

    /// In the world. With a parent, setting it sets the local position to match.
    const Vector3& Position() const { return mPosition; }
    void Position(float x, float y, float z) { Position(Vector3(x, y, z)); }
    void Position(const Vector3& position);
    /// Relative to the parent's position, or the position itself without one.
    const Vector3& LocalPosition() const { return mLocalPosition; }
    void LocalPosition(const Vector3& position);
    /// The direction that the entity's Z axis is turned to; see GetWorld.
    const Vector3& Orientation() const { return mOrientation; }
    void Orientation(float x, float y, float z) { Orientation(Vector3(x, y, z)); }
    void Orientation(const Vector3& orientation);
    /// For whoever draws the entity; GetWorld does not use it.
    const Vector3& RotationOffset() const { return mRotationOffset; }
    void RotationOffset(float x, float y, float z) { RotationOffset(Vector3(x, y, z)); }
    void RotationOffset(const Vector3& offset) { mRotationOffset = offset; }
    const Vector3& Scale() const { return mScale; }
    void Scale(float x, float y, float z);
    /// Spin about the orientation (unit: radians).
    float Angle() const { return mAngle; }
    void Angle(float angle);

    /// The parent passes on its position, no rotation and no scale. Setting it recomputes nothing:
    /// at the next update the entity stands at the parent's position plus its own local one. Not
    /// owned; a parent that goes back to its pool must be taken off its children. A child that
    /// updates before its parent lags by a frame.
    Entity* Parent() const { return mParent; }
    void Parent(Entity* parent) { mParent = parent; }

    /// Null when there is none.
    GraphicsCmpt* Graphics() const { return mGraphics.cmpt; }
    PhysicsCmpt* Physics() const { return mPhysics.cmpt; }
    EmitterCmpt* Emitter() const { return mEmitter.cmpt; }

    /// Scale, then the turn of +Z onto the orientation with the spin about it, then the position.
    Matrix4 GetWorld() const;

protected:
    void updatePosition();
    void updateLocalPosition();

    template <typename T>
    void dsParam(T& field, std::type_identity_t<T> value, bool master) {
        mMasterFlags.Read(field, std::move(value), master);
    }
    template <typename T>
    void seParam(Json::Value& out, const char* key, const T& field, bool master) const {
        mMasterFlags.Write(out, key, field, master);
    }
    void dsParamVector3(Vector3& field, const Json::Value& value, bool master) {
        mMasterFlags.ReadVector3(field, value, master);
    }
    void seParamVector3(Json::Value& out, const char* key, const Vector3& field,
                        bool master) const {
        mMasterFlags.Write(out, key, field, master);
    }

    bool mAlive = false;

private:
    friend class Vorn::Scene; // keeps mScene and mPlace
    friend class PairWalk;    // keeps mBody

    /// Where the entity is listed, so that it leaves its scene without a search: the serial number
    /// of the one scene that lists it, a single time, and its entry there. Once it was listed a
    /// second time its place stays unknown. Bound to the object, like the flags.
    struct Place {
        static constexpr std::uint64_t Nowhere = 0;
        static constexpr std::uint64_t Unknown = ~Nowhere;
        std::uint64_t scene = Nowhere;
        std::list<Entity*>::iterator entry;
    };

    /// A component and whether this entity owns it: an assigned entity only shares its source's.
    template <typename C>
    struct CmptSlot {
        C* cmpt = nullptr;
        bool owned = false;

        CmptSlot() = default;
        CmptSlot(const CmptSlot&) = delete;
        CmptSlot& operator=(const CmptSlot&) = delete;
        ~CmptSlot() { Clear(); }

        C& Ensure(Entity* parent);
        void Clear();
        void Register();
        void Unregister();
        void Share(const CmptSlot& source);
        void DropShared();
        void CopyFrom(const CmptSlot& source, Entity* parent);
        void ConformTo(const CmptSlot& source, Entity* parent);
        void Deserialize(const Json::Value* member, std::string_view key, Entity* parent,
                         bool master);
        void Serialize(Json::Value& out, const char* key, bool master) const;
        void MarkAll();
    };

    // What an update touches stands together.
    Entity* mParent = nullptr;
    Vector3 mPosition;
    Vector3 mLocalPosition;

    Vector3 mOrientation;
    Vector3 mScale{1.0f, 1.0f, 1.0f};
    float mAngle = 0.0f;
    Vector3 mRotationOffset;

    Vorn::Scene* mScene = nullptr;
    Place mPlace;
    bool mRegistersNew = false;
    unsigned int mBody = 0; // where a walk over pairs keeps what it knows of the entity
    MasterFlags mMasterFlags;
    std::string mType;
    std::string mVariant = "master";
    std::string mName;

    CmptSlot<GraphicsCmpt> mGraphics;
    CmptSlot<PhysicsCmpt> mPhysics;
    CmptSlot<EmitterCmpt> mEmitter;
};

} // namespace Vorn
