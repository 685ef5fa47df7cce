// SPDX-License-Identifier: MIT
//
// A strip of three rungs on two bones, as a source writes it and as plain formulas say that it
// moves. The hip goes from place to place, the knee bends and straightens; their keys stand at
// different times. The texture coordinates number the vertices.
#pragma once

#include "tests/tools/gltf_maker.hpp"
#include "tests/tools/model_reader.hpp"

#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

namespace Tests {

struct Strip {
    std::string curve = "LINEAR";
    /// Of the node above all, which also turns by 90 degrees about Y.
    std::vector<double> rootScale{2, 2, 2};
    float hipScale = 1;
    /// A node between hip and knee that is no bone, scaled by half.
    bool helper = false;
    /// No skin: the mesh hangs on the knee.
    bool rigid = false;

    static constexpr float quarter = 1.57079633f;

    std::string Text() const {
        GltfMaker gltf;
        std::vector<float> positions, normals, uvs, weights;
        std::vector<std::uint16_t> joints;
        for (int i = 0; i < 6; ++i) {
            const Vorn::Vector3 p = Place(i);
            positions.insert(positions.end(), {p.x, p.y, p.z});
            normals.insert(normals.end(), {0, 0, 1});
            uvs.insert(uvs.end(), {static_cast<float>(i) / 8, 0.25f});
            joints.insert(joints.end(), {0, 1, 0, 0});
            weights.insert(weights.end(), {1 - p.y / 2, p.y / 2, 0, 0});
        }
        Json::Value primitive;
        primitive["attributes"]["POSITION"] = gltf.Floats(positions, "VEC3");
        primitive["attributes"]["NORMAL"] = gltf.Floats(normals, "VEC3");
        primitive["attributes"]["TEXCOORD_0"] = gltf.Floats(uvs, "VEC2");
        primitive["indices"] = gltf.Shorts({0, 1, 2, 1, 3, 2, 2, 3, 4, 3, 5, 4}, "SCALAR");
        if (!rigid) {
            primitive["attributes"]["JOINTS_0"] = gltf.Shorts(joints, "VEC4");
            primitive["attributes"]["WEIGHTS_0"] = gltf.Floats(weights, "VEC4");
        }
        gltf.root["meshes"][0]["primitives"].append(primitive);
        nodes(gltf);
        animations(gltf);
        return gltf.Text();
    }

    /// Where vertex `i` of the mesh stands, in the source's coordinates.
    static Vorn::Vector3 Place(int i) {
        return {i % 2 == 0 ? -0.5f : 0.5f, static_cast<float>(i / 2), 0};
    }

    /// Where it is at a time, in the engine's coordinates.
    Vorn::Vector3 At(int i, float time) const {
        const Vorn::Vector3 rest = Place(i);
        const float angle = quarter * (time < 0.5f ? time : time < 1.0f ? 1 - time : 0.0f);
        const float c = std::cos(angle), s = std::sin(angle);
        // The skinned mesh stands on the hip at rest; the rigid one is all the knee's.
        const Vorn::Vector3 arm = rigid ? rest : rest - Vorn::Vector3(0, 1, 0);
        const Vorn::Vector3 bent(c * arm.x - s * arm.y, s * arm.x + c * arm.y + 1, arm.z);
        const float knee = rigid ? 1 : rest.y / 2;
        const Vorn::Vector3 local = (rest * (1 - knee) + bent * knee) * hipScale + hip(time);
        const float scale[] = {static_cast<float>(rootScale[0]), static_cast<float>(rootScale[1]),
                               static_cast<float>(rootScale[2])};
        const Vorn::Vector3 scaled(local.x * scale[0], local.y * scale[1], local.z * scale[2]);
        // 90 degrees about Y carry Z to X; then the other hand.
        return {scaled.z, scaled.y, scaled.x};
    }

    static int Number(const ReadVertex& vertex) { return static_cast<int>(vertex.u * 8 + 0.5f); }

private:
    Vorn::Vector3 hip(float time) const {
        const Vorn::Vector3 keys[] = {{0, 0, 0}, {0.5f, 0, 0}, {0, 0, 0.5f}};
        const int key = time < 0.75f ? 0 : 1;
        const float part = key == 0 ? time / 0.75f : (time - 0.75f) / 0.75f;
        if (curve == "STEP")
            return keys[key];
        // A cubic curve with tangents of zero starts and ends slowly.
        const float eased = curve == "LINEAR" ? part : part * part * (3 - 2 * part);
        return keys[key] + (keys[key + 1] - keys[key]) * eased;
    }

    void nodes(GltfMaker& gltf) const {
        Json::Value& nodes = gltf.root["nodes"];
        nodes[0]["name"] = "root";
        nodes[0]["scale"] = Array(rootScale);
        nodes[0]["rotation"] = Array({0, std::sqrt(0.5), 0, std::sqrt(0.5)});
        nodes[0]["children"] = Array({1});
        nodes[1]["name"] = "hip";
        const auto size = static_cast<double>(hipScale);
        nodes[1]["scale"] = Array({size, size, size});
        nodes[2]["name"] = "knee";
        nodes[3]["name"] = "body";
        nodes[3]["mesh"] = 0;
        gltf.root["scenes"][0]["nodes"] = Array({0});
        for (Json::Value* list : {&nodes[0]["children"], &gltf.root["scenes"][0]["nodes"]})
            for (Json::Value& number : *list)
                number = number.asInt();
        if (helper) {
            nodes[1]["children"].append(4);
            nodes[4]["name"] = "between";
            nodes[4]["translation"] = Array({0, 1, 0});
            nodes[4]["scale"] = Array({0.5, 0.5, 0.5});
            nodes[4]["children"].append(2);
        } else {
            nodes[1]["children"].append(2);
            nodes[2]["translation"] = Array({0, 1, 0});
        }
        if (rigid) {
            nodes[2]["children"].append(3);
            return;
        }
        gltf.root["scenes"][0]["nodes"].append(3);
        nodes[3]["skin"] = 0;
        const float up = helper ? 2 : 1;
        Json::Value& skin = gltf.root["skins"][0];
        skin["joints"].append(1);
        skin["joints"].append(2);
        skin["inverseBindMatrices"] =
            gltf.Floats({1,  0, 0, 0, 0, 1,  0, 0, 0, 0, 1,  0, 0, 0,   0, 1, //
                         up, 0, 0, 0, 0, up, 0, 0, 0, 0, up, 0, 0, -up, 0, 1},
                        "MAT4");
    }

    void animations(GltfMaker& gltf) const {
        gltf.root["animations"][0]["name"] = "walk";
        gltf.root["animations"][1]["name"] = "nod";
        const float s = std::sin(quarter / 4), c = std::cos(quarter / 4);
        const int bend = gltf.Floats({0, 0.5f, 1}, "SCALAR");
        const int angles = gltf.Floats({0, 0, 0, 1, 0, 0, s, c, 0, 0, 0, 1}, "VEC4");
        const int moves = gltf.Floats({0, 0.75f, 1.5f}, "SCALAR");
        std::vector<float> places{0, 0, 0, 0.5f, 0, 0, 0, 0, 0.5f};
        if (curve == "CUBICSPLINE") {
            places.assign(27, 0);
            places[12] = 0.5f;
            places[23] = 0.5f;
        }
        gltf.Track(0, 2, "rotation", bend, angles);
        gltf.Track(0, 1, "translation", moves, gltf.Floats(places, "VEC3"), curve.c_str());
        gltf.Track(1, 1, "rotation", bend, angles);
    }
};

} // namespace Tests
