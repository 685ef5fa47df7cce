// SPDX-License-Identifier: MIT
//
// Models that other programs wrote: imported by the real command, loaded and played by the engine,
// and compared with the keys as Assimp reads them, evaluated here in double precision.
#include "tests/math/exact.hpp"
#include "tests/tools/import_fixture.hpp"

#include "vorn/vorn.hpp"

#include <assimp/Importer.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>

#include <gmock/gmock.h>

#include <map>
#include <memory>

namespace Tests {
namespace {

using Exact::Vec;
using testing::HasSubstr;
using testing::Not;

/// A linear map by its columns, and where it takes the origin.
struct Map {
    Vec x = Exact::X, y = Exact::Y, z = Exact::Z, at;
};
Vec Turn(const Map& m, const Vec& v) {
    return v.x * m.x + v.y * m.y + v.z * m.z;
}
Vec operator*(const Map& m, const Vec& point) {
    return m.at + Turn(m, point);
}
Map operator*(const Map& a, const Map& b) {
    return {Turn(a, b.x), Turn(a, b.y), Turn(a, b.z), a * b.at};
}
double Wide(float f) {
    return static_cast<double>(f);
}
Vec Of(const aiVector3D& v) {
    return {Wide(v.x), Wide(v.y), Wide(v.z)};
}
Vec Of(const aiQuaternion& q) {
    return Exact::Unit({Wide(q.x), Wide(q.y), Wide(q.z), Wide(q.w)});
}
Map Of(const aiMatrix4x4& m) {
    return {{Wide(m.a1), Wide(m.b1), Wide(m.c1)},
            {Wide(m.a2), Wide(m.b2), Wide(m.c2)},
            {Wide(m.a3), Wide(m.b3), Wide(m.c3)},
            {Wide(m.a4), Wide(m.b4), Wide(m.c4)}};
}

Vec Between(const Vec& a, const Vec& b, double t) {
    return a + t * (b - a);
}
Vec TurnBetween(const Vec& a, Vec b, double t) {
    if (Exact::Dot(a, b) < 0)
        b = -1 * b;
    const double arc = std::acos(std::min(1.0, Exact::Dot(a, b)));
    if (arc < 1e-6)
        return Exact::Unit(Between(a, b, t));
    return (std::sin((1 - t) * arc) / std::sin(arc)) * a + (std::sin(t * arc) / std::sin(arc)) * b;
}
template <class Key, class Mix>
Vec ValueAt(const Key* keys, unsigned int count, double tick, Mix mix) {
    unsigned int next = 0;
    while (next < count && keys[next].mTime <= tick)
        ++next;
    if (next == 0 || next == count)
        return Of(keys[next == 0 ? 0 : count - 1].mValue);
    const Key &a = keys[next - 1], &b = keys[next];
    return mix(Of(a.mValue), Of(b.mValue), (tick - a.mTime) / (b.mTime - a.mTime));
}

/// What Assimp reads, moved by its first animation.
class Source {
public:
    explicit Source(const std::string& path)
        : mScene(mImporter.ReadFile(path, aiProcess_Triangulate | aiProcess_SortByPType)) {
        if (!mScene || !mScene->mNumAnimations)
            throw std::runtime_error(path + ": " + mImporter.GetErrorString());
        for (unsigned int c = 0; c < animation().mNumChannels; ++c)
            mChannels[animation().mChannels[c]->mNodeName.C_Str()] = animation().mChannels[c];
        float centimetres = 1;
        double wide = 1;
        const aiMetadata* const data = mScene->mMetaData;
        aiString format;
        data->Get("SourceAsset_Format", format);
        if (std::string(format.C_Str()).starts_with("Autodesk FBX")) {
            if (data->Get("UnitScaleFactor", centimetres))
                wide = Wide(centimetres);
            else
                data->Get("UnitScaleFactor", wide);
            mUnit = wide / 100;
            // As all of these have it; nothing here turns other axes.
            int up = 0, front = 0, across = 0;
            data->Get("UpAxis", up);
            data->Get("FrontAxis", front);
            data->Get("CoordAxis", across);
            EXPECT_EQ(std::vector({across, up, front}), std::vector({0, 1, 2}));
        }
    }

    double Duration() const { return animation().mDuration / animation().mTicksPerSecond; }

    /// Of all nodes, in the file's coordinates.
    void Pose(double time) { pose(*mScene->mRootNode, {}, time * animation().mTicksPerSecond); }
    const Map& World(const std::string& node) const { return mWorlds.at(node); }

    /// In metres, left-handed.
    Vec Ours(const Vec& v) const { return mUnit * Vec{v.x, v.y, -v.z}; }

    struct Vertex {
        const aiMesh* mesh;
        unsigned int index;
        std::vector<std::pair<const aiBone*, double>> weights; // the four largest, of sum 1
    };
    std::vector<Vertex> Vertices() const {
        std::vector<Vertex> all;
        for (unsigned int m = 0; m < mScene->mNumMeshes; ++m) {
            const aiMesh& mesh = *mScene->mMeshes[m];
            const std::size_t first = all.size();
            for (unsigned int v = 0; v < mesh.mNumVertices; ++v)
                all.push_back({&mesh, v, {}});
            for (unsigned int b = 0; b < mesh.mNumBones; ++b)
                for (unsigned int w = 0; w < mesh.mBones[b]->mNumWeights; ++w) {
                    const aiVertexWeight& weight = mesh.mBones[b]->mWeights[w];
                    all[first + weight.mVertexId].weights.emplace_back(mesh.mBones[b],
                                                                       Wide(weight.mWeight));
                }
        }
        for (Vertex& vertex : all) {
            std::stable_sort(vertex.weights.begin(), vertex.weights.end(),
                             [](const auto& a, const auto& b) { return a.second > b.second; });
            vertex.weights.resize(std::min<std::size_t>(vertex.weights.size(), 4));
            double sum = 0;
            for (const auto& weight : vertex.weights)
                sum += weight.second;
            for (auto& weight : vertex.weights)
                weight.second /= sum;
        }
        return all;
    }
    /// Where the pose of a time takes them, ours.
    std::vector<Vec> Places(const std::vector<Vertex>& vertices, double time) {
        Pose(time);
        std::vector<Vec> places;
        for (const Vertex& vertex : vertices)
            places.push_back(place(vertex));
        return places;
    }

private:
    Vec place(const Vertex& vertex) const {
        Vec sum;
        for (const auto& weight : vertex.weights)
            sum = sum + weight.second *
                            (World(weight.first->mName.C_Str()) * Of(weight.first->mOffsetMatrix) *
                             Of(vertex.mesh->mVertices[vertex.index]));
        return Ours(sum);
    }
    const aiAnimation& animation() const { return *mScene->mAnimations[0]; }

    void pose(const aiNode& node, const Map& parent, double tick) {
        Map local = Of(node.mTransformation);
        const auto found = mChannels.find(node.mName.C_Str());
        if (found != mChannels.end()) {
            const aiNodeAnim& c = *found->second;
            const Vec turn = ValueAt(c.mRotationKeys, c.mNumRotationKeys, tick, TurnBetween);
            const Vec size = ValueAt(c.mScalingKeys, c.mNumScalingKeys, tick, Between);
            const auto turned = [&](const Vec& axis) {
                Vec back{-turn.x, -turn.y, -turn.z, turn.w};
                return Exact::Hamilton(Exact::Hamilton(turn, axis), back);
            };
            local = {size.x * turned(Exact::X), size.y * turned(Exact::Y),
                     size.z * turned(Exact::Z),
                     ValueAt(c.mPositionKeys, c.mNumPositionKeys, tick, Between)};
        }
        const Map world = parent * local;
        mWorlds[node.mName.C_Str()] = world;
        for (unsigned int i = 0; i < node.mNumChildren; ++i)
            pose(*node.mChildren[i], world, tick);
    }

    Assimp::Importer mImporter;
    const aiScene* mScene;
    double mUnit = 1;
    std::map<std::string, const aiNodeAnim*> mChannels;
    std::map<std::string, Map> mWorlds;
};

Vec Place(const Vorn::Vertex_UTx& vertex, const Vorn::Mesh& mesh) {
    Vec sum;
    for (int i = 0; i < 4; ++i)
        sum = sum + Wide(vertex.weights[i]) *
                        Exact::Apply(mesh.mBones[vertex.bones[i]].mFinal,
                                     Vec{Wide(vertex.x), Wide(vertex.y), Wide(vertex.z), 1});
    sum.w = 0;
    return sum;
}

/// How far a bone is from its node, in parts of the model's size: the origin, and the axes at the
/// model's rim. What the node has of a scale has no place in the bone.
double Off(const Vorn::Matrix4& bone, const Source& source, const std::string& node, double size) {
    const Map& world = source.World(node);
    const auto axis = [&](const Vec& v) {
        const Vec unit = Exact::Unit(v);
        return Vec{unit.x, unit.y, -unit.z};
    };
    return std::max({Exact::Length(Exact::Of(bone.Col4ToVec3()) - source.Ours(world.at)) / size,
                     Exact::Length(Exact::Of(bone.Col1ToVec3()) - axis(world.x)),
                     Exact::Length(Exact::Of(bone.Col2ToVec3()) - axis(world.y)),
                     Exact::Length(Exact::Of(bone.Col3ToVec3()) + axis(world.z))});
}

struct Foreign {
    const char* path;
    /// What the command has to tell, and what not.
    const char* report;
    const char* noReport;
};

class ForeignModels : public ImportFixture, public testing::WithParamInterface<Foreign> {
protected:
    ~ForeignModels() override { std::filesystem::current_path(mBefore); }

    Vorn::Mesh& Load(const std::string& name) {
        std::filesystem::current_path(mFolder.Path() / "game");
        Vorn::MeshManager::Instance()->Load(name);
        return *Vorn::MeshManager::Instance()->Get(name);
    }

private:
    std::filesystem::path mBefore = std::filesystem::current_path();
};

TEST_P(ForeignModels, MoveInTheEngineAsTheirKeysSay) {
    const std::string path = std::string(VORN_FOREIGN_MODELS "/") + GetParam().path;
    if (!std::filesystem::exists(VORN_FOREIGN_MODELS))
        GTEST_SKIP() << "no models in " VORN_FOREIGN_MODELS;
    const Outcome outcome = Import("--name model '" + path + "'");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.out, HasSubstr(GetParam().report));
    EXPECT_THAT(outcome.out, Not(HasSubstr(GetParam().noReport)));
    EXPECT_THAT(outcome.out, Not(HasSubstr("the scale of bone"))); // none of theirs changes
    Vorn::Mesh& mesh = Load("model.mesh");
    Source source(path);
    ASSERT_GT(mesh.mBoneCount, 0u);
    EXPECT_NEAR(Wide(mesh.mDuration), source.Duration(), 1e-5);

    const std::vector<Source::Vertex> vertices = source.Vertices();
    std::vector<Vec> places = source.Places(vertices, 0);
    double size = 0;
    for (const Vec& place : places)
        size = std::max(size, Exact::Length(place - places[0]));

    // Which of the source's vertices stand where one of ours does at the start; one of them has to
    // go the same way.
    Vorn::UpdateSkeleton(0, mesh);
    struct Pair {
        std::size_t origin;
        double worst;
    };
    std::map<std::uint32_t, std::vector<Pair>> pairs;
    for (std::uint32_t v = 0; v < mesh.mVertexCount; v += 1 + mesh.mVertexCount / 500) {
        const Vec place = Place(mesh.mVertices[v], mesh);
        for (std::size_t i = 0; i < vertices.size(); ++i)
            if (Exact::Length(place - places[i]) < 1e-4 * size)
                pairs[v].push_back({i, 0});
        EXPECT_FALSE(pairs[v].empty()) << "vertex " << v << " stands where the source has none";
    }

    double worstBone = 0;
    for (; mesh.mTime < mesh.mDuration - 0.02f; Vorn::UpdateSkeleton(1 / 61.0f, mesh)) {
        places = source.Places(vertices, Wide(mesh.mTime));
        for (const Vorn::Bone& bone : mesh.mBones)
            worstBone = std::max(worstBone, Off(bone.mWorld, source, bone.mName, size));
        for (auto& [v, origins] : pairs)
            for (Pair& pair : origins)
                pair.worst = std::max(pair.worst, Exact::Length(Place(mesh.mVertices[v], mesh) -
                                                                places[pair.origin]));
    }
    EXPECT_LT(worstBone, 1e-4);
    for (const auto& [v, origins] : pairs) {
        double best = 1e9;
        for (const Pair& pair : origins)
            best = std::min(best, pair.worst);
        EXPECT_LT(best, 1e-4 * size) << "vertex " << v;
    }
    Vorn::MeshManager::Instance()->Unload("model.mesh");
}

INSTANTIATE_TEST_SUITE_P(, ForeignModels,
                         testing::Values(Foreign{"FBX/animation_with_skeleton.fbx",
                                                 "2883 vertices had more than four weights",
                                                 "as close as --rate lets them"},
                                         Foreign{"FBX/huesitos.fbx", "all lengths times 0.01",
                                                 "comes out other than in the source"},
                                         Foreign{"glTF2/simple_skin/simple_skin.gltf",
                                                 "has no normals",
                                                 "comes out other than in the source"}));

} // namespace
} // namespace Tests
