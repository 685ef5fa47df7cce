// SPDX-License-Identifier: MIT
//
// Which parameters of an object still hold the value of its template, and the two rules by which
// parameters are read and written in layers.
//
//   void Lamp::DeserializeValue(const Json::Value& root, bool master) {
//       mMasterFlags.Read(mPower, Vorn::JsonFloat(root, "Power", mPower), master);
//   }
//   void Lamp::SerializeValue(Json::Value& out, bool master) const {
//       mMasterFlags.Write(out, "Power", mPower, master);
//   }
//
// A parameter is known by the address of its field, so flags belong to one object and mean nothing
// in a copy: a copy of the flags is empty, and assigning them empties them.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/json.hpp"
#include "vorn/math/color.hpp"
#include "vorn/math/vector3.hpp"

#include <json/value.h>

#include <type_traits>
#include <utility>
#include <vector>

namespace Vorn {

class VORN_API MasterFlags {
public:
    MasterFlags() = default;
    MasterFlags(const MasterFlags&) {}
    MasterFlags& operator=(const MasterFlags& flags);

    /// The read rule. Reading the template's data (`master` true) marks the parameter as the
    /// template's. Reading what lies over it marks the parameter as overridden if the value
    /// differs, and else leaves the mark alone. The value is stored in any case.
    template <typename T>
    void Read(T& field, std::type_identity_t<T> value, bool master) {
        if (master)
            mark(&field, true);
        else if (Differ(value, field))
            mark(&field, false);
        field = std::move(value);
    }
    /// Of an object with "X", "Y" and "Z"; an axis that is missing keeps its value.
    void ReadVector3(Vector3& field, const Json::Value& value, bool master);
    /// Of an object with the whole numbers "A", "R", "G" and "B"; one that is missing keeps its
    /// value.
    void ReadColor(Vorn3DColorSigned& field, const Json::Value& value, bool master);

    /// The write rule. With `master` every parameter is written, without it only those that are
    /// overridden. Raises std::out_of_range, "invalid map<K, T> key", without `master` for a
    /// parameter that nothing marked.
    template <typename T>
    void Write(Json::Value& out, const char* key, const T& field, bool master) const {
        if (!master && IsMaster(&field))
            return;
        out[key] = ToJson(field);
    }

    /// Whether the parameter holds the template's value; raises as `Write` does.
    bool IsMaster(const void* field) const;

    /// Every parameter holds the template's value from now on, also those that nothing has marked
    /// yet.
    void MarkAll();
    /// Whether MarkAll has been called.
    bool MarksAll() const { return mAll; }

private:
    struct Flag {
        const void* field;
        bool master;
    };

    template <typename T>
    static bool Differ(const T& a, const T& b) {
        return !(a == b);
    }
    template <typename T>
    static Json::Value ToJson(const T& field) {
        return Json::Value(field);
    }
    static Json::Value ToJson(float field) { return JsonReal(field); }
    static Json::Value ToJson(double field) { return JsonReal(field); }
    static Json::Value ToJson(const Vector3& field);
    static Json::Value ToJson(const Vorn3DColorSigned& field);

    void mark(const void* field, bool master);

    // An object has a handful of parameters: a walk along them is faster than a tree, and takes one
    // block of memory.
    std::vector<Flag> mFlags;
    bool mAll = false; // what nothing marked is the template's
};

} // namespace Vorn
