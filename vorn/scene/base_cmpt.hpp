// SPDX-License-Identifier: MIT
//
// What the three kinds of component have in common. An entity creates and deletes its components;
// they keep a pointer to it for as long as they live.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/scene/fwd.hpp"
#include "vorn/scene/master_flags.hpp"

#include <json/value.h>

#include <type_traits>
#include <utility>

namespace Vorn {

class VORN_API BaseCmpt {
public:
    BaseCmpt() = default;
    explicit BaseCmpt(Entity* parent) : mParent(parent) {}
    /// The copy has the same parent, and no flags.
    BaseCmpt(const BaseCmpt&) = default;
    /// Parent and flags stay as they are.
    BaseCmpt& operator=(const BaseCmpt&) { return *this; }
    virtual ~BaseCmpt() = default;

    /// Reads the component's object by the read rule of MasterFlags; raises DataError for a value
    /// of the wrong type.
    virtual void DeserializeValue(const Json::Value& value, bool master) = 0;
    /// Writes it by the write rule; leaves `out` null if it has nothing to write.
    virtual void SerializeValue(Json::Value& out, bool master) const = 0;
    virtual void Init() = 0;
    virtual void Deinit() = 0;
    /// Takes over the parameters of a component of the same kind, for reuse from a pool.
    virtual void Conform(const BaseCmpt& source) = 0;

    /// The entity that owns the component; null with the default constructor.
    Entity* Parent() const { return mParent; }

protected:
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
    void dsParamColor(Vorn3DColorSigned& field, const Json::Value& value, bool master) {
        mMasterFlags.ReadColor(field, value, master);
    }
    void seParamColor(Json::Value& out, const char* key, const Vorn3DColorSigned& field,
                      bool master) const {
        mMasterFlags.Write(out, key, field, master);
    }

    MasterFlags mMasterFlags;

private:
    friend class Entity; // marks the flags of a component that takes over a template
    Entity* mParent = nullptr;
};

} // namespace Vorn
