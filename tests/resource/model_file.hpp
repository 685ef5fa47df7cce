// SPDX-License-Identifier: MIT
//
// Model files as a tool writes them, and random ones.
#pragma once

#include "tests/math/exact.hpp"
#include "tests/support/engine_device.hpp"

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace ResourceTests {

using Exact::Random;
using Tests::Raw;
using Tests::RawArray;

/// Time, position, rotation x, y, z, w.
struct Key {
    float f[8];
};
struct Bone {
    std::string name; // as it stands in the file, with its NUL
    std::int32_t parent;
    float f[14]; // bind translation and rotation, offset translation and rotation
};
struct Vertex {
    float f[12]; // position, normal, u and v, weights
    std::uint8_t bones[4];
};

struct Model {
    std::uint32_t kind = 0;
    std::vector<std::uint32_t> indices;
    std::vector<Vertex> vertices;
    std::vector<Bone> bones;
    float duration = 0;
    std::vector<std::vector<Key>> tracks;

    /// Where the counts stand in the file that was written last, and where its vertices begin.
    mutable std::vector<std::size_t> counts;
    mutable std::size_t verticesAt = 0, bonesAt = 0;

    std::string File() const {
        std::string file = "4words are read over";
        file.resize(16);
        const auto count = [&](std::size_t n) {
            counts.push_back(file.size());
            file += Raw(static_cast<std::uint32_t>(n));
        };
        counts.clear();
        file += Raw(kind);
        count(indices.size());
        file += RawArray(indices.data(), indices.size());
        count(vertices.size());
        verticesAt = file.size();
        for (const Vertex& vertex : vertices)
            file +=
                RawArray(vertex.f, kind == 1 ? 12 : 8) + RawArray(vertex.bones, kind == 1 ? 4 : 0);
        file += "skeleton";
        count(bones.size());
        bonesAt = file.size();
        for (const Bone& bone : bones)
            file += Raw(static_cast<std::uint8_t>(bone.name.size())) + bone.name +
                    Raw(bone.parent) + RawArray(bone.f, 14);
        file += "movement" + Raw(duration);
        count(tracks.size());
        for (const auto& track : tracks) {
            count(track.size());
            file += RawArray(track.data(), track.size());
        }
        return file;
    }
};

inline void Rotation(Random& random, float* xyzw) {
    const Exact::Vec q = Exact::Turn(random.Axis(), random(-3, 3));
    const double elements[] = {q.x, q.y, q.z, q.w};
    for (int i = 0; i < 4; ++i)
        xyzw[i] = Exact::Single(elements[i]);
}
template <typename Array>
void Fill(Random& random, Array& floats) {
    for (float& f : floats)
        f = random.Float(-2, 2);
}

/// Bones with parents before children and rigid transforms; times of keys that rise.
inline void AddSkeleton(Random& random, Model& model, int bones, int fewestKeys, int mostKeys) {
    model.duration = random.Float(1, 4);
    for (int b = 0; b < bones; ++b) {
        Bone& bone = model.bones.emplace_back();
        bone.name = "bone" + std::to_string(b) + '\0';
        bone.parent = random.Int(-1, b - 1);
        Fill(random, bone.f);
        Rotation(random, bone.f + 3);
        Rotation(random, bone.f + 10);
        float time = random.Float(-0.2f, 0.3f);
        auto& track = model.tracks.emplace_back();
        for (int k = random.Int(fewestKeys, mostKeys); k > 0; --k) {
            Key& key = track.emplace_back();
            Fill(random, key.f);
            key.f[0] = time;
            Rotation(random, key.f + 4);
            time += random.Float(0.2f, 0.8f);
        }
    }
}
inline Model RandomModel(Random& random, std::uint32_t kind) {
    Model model;
    model.kind = kind;
    const int vertices = random.Int(1, 9);
    for (int i = 0; i < vertices; ++i) {
        Vertex& vertex = model.vertices.emplace_back();
        Fill(random, vertex.f);
        for (std::uint8_t& bone : vertex.bones)
            bone = static_cast<std::uint8_t>(random.Int(0, 255));
    }
    for (int i = 3 * random.Int(1, 5); i > 0; --i)
        model.indices.push_back(static_cast<std::uint32_t>(random.Int(0, vertices - 1)));
    AddSkeleton(random, model, kind == 1 ? random.Int(1, 6) : 0, 0, 4);
    return model;
}

/// The elements of a vector, a quaternion, an array or a number.
template <typename V>
void Append(std::vector<float>& floats, const V& v) {
    const auto append = [&floats](const auto&... each) { (floats.push_back(each), ...); };
    if constexpr (requires { v.w; })
        append(v.x, v.y, v.z, v.w);
    else if constexpr (requires { v.z; })
        append(v.x, v.y, v.z);
    else if constexpr (requires { v[0]; })
        std::for_each(std::begin(v), std::end(v), append);
    else
        append(v);
}
template <typename... V>
std::vector<float> Floats(const V&... values) {
    std::vector<float> floats;
    (Append(floats, values), ...);
    return floats;
}
template <std::size_t N>
std::vector<float> ListOf(const float (&floats)[N]) {
    return {floats, floats + N};
}

inline std::vector<float> FloatsOf(const Vorn::Bone& bone) {
    return Floats(bone.mBindTranslation, bone.mBindRotation, bone.mOffsetTranslation,
                  bone.mOffsetRotation);
}
inline std::vector<float> FloatsOf(const Vorn::BoneKey& key) {
    return Floats(key.mTime, key.mPosition, key.mRotation);
}

} // namespace ResourceTests
