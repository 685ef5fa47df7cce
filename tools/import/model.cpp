// SPDX-License-Identifier: MIT
#include "tools/import/model.hpp"

#include <algorithm>
#include <bit>

namespace Import {
namespace {

class Bytes {
public:
    void Word(std::uint32_t word) {
        for (unsigned int shift = 0; shift < 32; shift += 8)
            mBytes.push_back(static_cast<char>(word >> shift & 0xFF));
    }
    void Byte(std::size_t byte) { mBytes.push_back(static_cast<char>(byte & 0xFF)); }
    void Text(const std::string& text) { mBytes += text; }
    void Float(float number) { Word(std::bit_cast<std::uint32_t>(number)); }
    template <std::size_t N>
    void Floats(const std::array<float, N>& numbers) {
        for (const float number : numbers)
            Float(number);
    }
    void Transform(const Rigid& rigid) {
        for (const double number :
             {rigid.position.x, rigid.position.y, rigid.position.z, rigid.rotation.x,
              rigid.rotation.y, rigid.rotation.z, rigid.rotation.w})
            Float(static_cast<float>(number));
    }
    std::string Take() { return std::move(mBytes); }

private:
    std::string mBytes;
};

std::uint32_t count(std::size_t size) {
    return static_cast<std::uint32_t>(size);
}

// Readers pass over these two words before each chunk; they help whoever looks at a file.
void chunk(Bytes& bytes, const char (&tag)[5]) {
    bytes.Text({tag, 4});
    bytes.Word(1);
}

Quat quaternion(const std::array<float, 4>& q) {
    return {static_cast<double>(q[0]), static_cast<double>(q[1]), static_cast<double>(q[2]),
            static_cast<double>(q[3])};
}

Vec3 vector(const std::array<float, 3>& v) {
    return {static_cast<double>(v[0]), static_cast<double>(v[1]), static_cast<double>(v[2])};
}

Rigid localAt(const std::vector<ModelKey>& keys, double time) {
    auto next = std::find_if(keys.begin() + 1, keys.end(), [&](const ModelKey& key) {
        return static_cast<double>(key.time) >= time;
    });
    next = std::min(next, keys.end() - 1);
    const ModelKey& a = *(next - 1);
    const double from = static_cast<double>(a.time);
    const double part = (time - from) / (static_cast<double>(next->time) - from);
    return {Lerp(vector(a.position), vector(next->position), part),
            Slerp(quaternion(a.rotation), quaternion(next->rotation), part)};
}

} // namespace

std::string EncodeModel(const Model& model) {
    Bytes bytes;
    chunk(bytes, "VORN");
    chunk(bytes, "MESH");
    const bool skinned = !model.bones.empty();
    bytes.Word(skinned ? 1 : 0);
    bytes.Word(count(model.indices.size()));
    for (const std::uint32_t index : model.indices)
        bytes.Word(index);
    bytes.Word(count(model.vertices.size()));
    for (const ModelVertex& vertex : model.vertices) {
        bytes.Floats(vertex.position);
        bytes.Floats(vertex.normal);
        bytes.Floats(vertex.uv);
        if (!skinned)
            continue;
        bytes.Floats(vertex.weights);
        for (const std::uint8_t bone : vertex.bones)
            bytes.Byte(bone);
    }

    chunk(bytes, "SKEL");
    bytes.Word(count(model.bones.size()));
    for (const ModelBone& bone : model.bones) {
        const std::string name = bone.name.substr(0, MaxBoneName);
        bytes.Byte(name.size() + 1);
        bytes.Text(name);
        bytes.Byte(0);
        bytes.Word(static_cast<std::uint32_t>(bone.parent));
        bytes.Transform(bone.bind);
        bytes.Transform(bone.offset);
    }

    chunk(bytes, "ANIM");
    bytes.Float(model.duration);
    bytes.Word(count(model.bones.size()));
    for (const ModelBone& bone : model.bones) {
        bytes.Word(count(bone.keys.size()));
        for (const ModelKey& key : bone.keys) {
            bytes.Float(key.time);
            bytes.Floats(key.position);
            bytes.Floats(key.rotation);
        }
    }
    return bytes.Take();
}

std::vector<Rigid> SkinningAt(const Model& model, double time) {
    std::vector<Rigid> worlds;
    std::vector<Rigid> skinning;
    for (const ModelBone& bone : model.bones) {
        Rigid world = localAt(bone.keys, time);
        if (bone.parent >= 0)
            world = worlds[static_cast<std::size_t>(bone.parent)] * world;
        worlds.push_back(world);
        skinning.push_back(world * bone.offset);
    }
    return skinning;
}

Vec3 SkinVertex(const Model& model, const std::vector<Rigid>& skinning, const ModelVertex& vertex) {
    const Vec3 position = vector(vertex.position);
    if (model.bones.empty())
        return position;
    Vec3 sum;
    for (std::size_t i = 0; i < vertex.bones.size(); ++i)
        sum = sum + skinning[vertex.bones[i]] * position * static_cast<double>(vertex.weights[i]);
    return sum;
}

} // namespace Import
