// SPDX-License-Identifier: MIT
//
// Reads a model file by its layout and plays it as a frame loop does. Written from the layout
// alone: it shares nothing with the writer.
#pragma once

#include "vorn/math/matrix4.hpp"
#include "vorn/math/quaternion.hpp"
#include "vorn/math/vector3.hpp"

#include <d3dx9.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace Tests {

struct ReadVertex {
    Vorn::Vector3 position;
    Vorn::Vector3 normal;
    float u = 0, v = 0;
    float weights[4] = {};
    std::uint8_t bones[4] = {};
};

struct ReadKey {
    float time = 0;
    Vorn::Vector3 position;
    Vorn::Quaternion rotation;
};

struct ReadBone {
    std::string name;
    std::int32_t parent = -1;
    Vorn::Matrix4 offset;
    std::vector<ReadKey> keys;
};

struct ReadModel {
    bool skinned = false;
    std::vector<std::uint32_t> indices;
    std::vector<ReadVertex> vertices;
    std::vector<ReadBone> bones;
    float duration = 0;
};

class ModelReader {
public:
    explicit ModelReader(std::string bytes) : mBytes(std::move(bytes)) {}

    ReadModel Read() {
        ReadModel model;
        skip(16);
        model.skinned = take<std::uint32_t>() == 1;
        model.indices.resize(take<std::uint32_t>());
        for (std::uint32_t& index : model.indices)
            index = take<std::uint32_t>();
        model.vertices.resize(take<std::uint32_t>());
        for (ReadVertex& vertex : model.vertices) {
            vertex.position = vector();
            vertex.normal = vector();
            vertex.u = take<float>();
            vertex.v = take<float>();
            for (float& weight : vertex.weights)
                weight = model.skinned ? take<float>() : 0.0f;
            for (std::uint8_t& bone : vertex.bones)
                bone = model.skinned ? take<std::uint8_t>() : std::uint8_t{0};
        }
        skip(8);
        model.bones.resize(take<std::uint32_t>());
        for (ReadBone& bone : model.bones) {
            std::string name(take<std::uint8_t>(), ' ');
            for (char& c : name)
                c = take<char>();
            bone.name = name.c_str();
            bone.parent = take<std::int32_t>();
            skip(28);
            const Vorn::Vector3 translation = vector();
            bone.offset = Vorn::Matrix4::Translation(translation) * rotation().QuatToMatrix();
        }
        skip(8);
        model.duration = take<float>();
        if (take<std::uint32_t>() != model.bones.size())
            throw std::runtime_error("one track to a bone");
        for (ReadBone& bone : model.bones) {
            bone.keys.resize(take<std::uint32_t>());
            for (ReadKey& key : bone.keys) {
                key.time = take<float>();
                key.position = vector();
                key.rotation = rotation();
            }
        }
        if (mAt != mBytes.size())
            throw std::runtime_error("bytes behind the end");
        return model;
    }

private:
    void skip(std::size_t size) {
        if (mBytes.size() - mAt < size)
            throw std::runtime_error("the file ends early");
        mAt += size;
    }
    template <class T>
    T take() {
        skip(sizeof(T));
        T value;
        std::memcpy(&value, mBytes.data() + mAt - sizeof(T), sizeof(T));
        return value;
    }
    Vorn::Vector3 vector() {
        const float x = take<float>(), y = take<float>(), z = take<float>();
        return {x, y, z};
    }
    Vorn::Quaternion rotation() {
        Vorn::Quaternion q;
        q.x = take<float>();
        q.y = take<float>();
        q.z = take<float>();
        q.w = take<float>();
        return q;
    }

    std::string mBytes;
    std::size_t mAt = 0;
};

/// The animation clock of a mesh: one key a frame at the most.
class Player {
public:
    explicit Player(const ReadModel& model)
        : mModel(model), mCursors(model.bones.size(), 1), mFinal(model.bones.size()) {
        Step(0);
    }

    void Step(float dt) {
        mTime += dt;
        const bool wrapped = mTime >= mModel.duration;
        if (wrapped)
            mTime = 0;
        std::vector<Vorn::Matrix4> worlds;
        for (std::size_t b = 0; b < mModel.bones.size(); ++b) {
            const ReadBone& bone = mModel.bones[b];
            std::size_t& cursor = mCursors[b];
            if (wrapped)
                cursor = 1;
            if (cursor + 1 < bone.keys.size() && bone.keys[cursor].time < mTime)
                ++cursor;
            const Vorn::Matrix4 local = between(bone.keys.at(cursor - 1), bone.keys.at(cursor));
            worlds.push_back(
                bone.parent < 0 ? local : worlds.at(static_cast<std::size_t>(bone.parent)) * local);
            mFinal[b] = worlds.back() * bone.offset;
        }
    }

    float Time() const { return mTime; }

    Vorn::Vector3 Place(const ReadVertex& vertex) const {
        if (!mModel.skinned)
            return vertex.position;
        Vorn::Vector3 sum;
        for (std::size_t i = 0; i < 4; ++i)
            sum += (mFinal.at(vertex.bones[i]) * vertex.position) * vertex.weights[i];
        return sum;
    }

private:
    Vorn::Matrix4 between(const ReadKey& a, const ReadKey& b) const {
        const float part = (mTime - a.time) / (b.time - a.time);
        const D3DXQUATERNION from(a.rotation.x, a.rotation.y, a.rotation.z, a.rotation.w);
        const D3DXQUATERNION to(b.rotation.x, b.rotation.y, b.rotation.z, b.rotation.w);
        D3DXQUATERNION q;
        D3DXQuaternionSlerp(&q, &from, &to, part);
        const float wxyz[] = {q.w, q.x, q.y, q.z};
        return Vorn::Matrix4::Translation(a.position + (b.position - a.position) * part) *
               Vorn::Quaternion(wxyz).QuatToMatrix();
    }

    const ReadModel& mModel;
    float mTime = 0;
    std::vector<std::size_t> mCursors;
    std::vector<Vorn::Matrix4> mFinal;
};

} // namespace Tests
