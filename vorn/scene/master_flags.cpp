// SPDX-License-Identifier: MIT
#include "vorn/scene/master_flags.hpp"

#include <algorithm>
#include <stdexcept>

namespace Vorn {

MasterFlags& MasterFlags::operator=(const MasterFlags& flags) {
    if (this != &flags) {
        mFlags.clear();
        mAll = false;
    }
    return *this;
}

void MasterFlags::ReadVector3(Vector3& field, const Json::Value& value, bool master) {
    static constexpr JsonKeys<3> axes{"X", "Y", "Z"};
    const auto [x, y, z] = JsonMembers(value, axes);
    Vector3 read;
    read.x = JsonFloat(x, axes[0], field.x);
    read.y = JsonFloat(y, axes[1], field.y);
    read.z = JsonFloat(z, axes[2], field.z);
    Read(field, read, master);
}

void MasterFlags::ReadColor(Vorn3DColorSigned& field, const Json::Value& value, bool master) {
    Vorn3DColorSigned read;
    read.a = JsonInt(value, "A", field.a);
    read.r = JsonInt(value, "R", field.r);
    read.g = JsonInt(value, "G", field.g);
    read.b = JsonInt(value, "B", field.b);
    Read(field, read, master);
}

bool MasterFlags::IsMaster(const void* field) const {
    for (const Flag& flag : mFlags)
        if (flag.field == field)
            return flag.master;
    if (!mAll)
        throw std::out_of_range("invalid map<K, T> key");
    return true;
}

void MasterFlags::MarkAll() {
    for (Flag& flag : mFlags)
        flag.master = true;
    mAll = true;
}

Json::Value MasterFlags::ToJson(const Vector3& field) {
    Json::Value value(Json::objectValue);
    value["X"] = JsonReal(field.x);
    value["Y"] = JsonReal(field.y);
    value["Z"] = JsonReal(field.z);
    return value;
}

Json::Value MasterFlags::ToJson(const Vorn3DColorSigned& field) {
    Json::Value value(Json::objectValue);
    value["A"] = field.a;
    value["R"] = field.r;
    value["G"] = field.g;
    value["B"] = field.b;
    return value;
}

void MasterFlags::mark(const void* field, bool master) {
    const auto known = std::find_if(mFlags.begin(), mFlags.end(),
                                    [field](const Flag& flag) { return flag.field == field; });
    if (known != mFlags.end()) {
        known->master = master;
        return;
    }
    // An entity marks seven parameters: one block holds them.
    if (mFlags.empty())
        mFlags.reserve(8);
    mFlags.push_back({field, master});
}

} // namespace Vorn
