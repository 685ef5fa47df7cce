// SPDX-License-Identifier: MIT
#include "tests/resource/model_file.hpp"

#include <functional>
#include <limits>
#include <memory>

namespace {

using namespace ResourceTests;
using testing::ElementsAre;
using testing::IsEmpty;
using Tests::Content;
using Tests::Printed;
using Vorn::Mesh;
using VornPlatform::CountLiveObjects;
using VornPlatform::ObjectName;

constexpr std::uint32_t FourBillion = 0xFFFFFFFFu;

class Models : public Tests::RecorderTest {
protected:
    Models() { Open(); }
    ~Models() override { Drop(); }

    /// The mesh of a file of these bytes, until the next one.
    Mesh& Read(const std::string& bytes) {
        Drop();
        mMesh = std::make_unique<Mesh>();
        mLoader.Open(folder.File("model", bytes), *mMesh);
        return *mMesh;
    }
    void Drop() {
        if (mMesh)
            mLoader.Release(*mMesh);
        mMesh.reset();
    }

private:
    Vorn::ModelLoader mLoader;
    std::unique_ptr<Mesh> mMesh;
};

std::string VertexBytes(const Mesh& mesh) {
    return Content(mesh.mVertexBuffer, 56 * std::size_t{mesh.mVertexCount});
}
std::string IndexBytes(const Mesh& mesh) {
    return Content(mesh.mIndexBuffer, 4 * std::size_t{mesh.mIndexCount});
}
void ExpectUploaded(const Mesh& mesh) {
    EXPECT_TRUE(VertexBytes(mesh) == RawArray(mesh.mVertices, mesh.mVertexCount));
    EXPECT_TRUE(IndexBytes(mesh) == RawArray(mesh.mIndices, mesh.mIndexCount));
    EXPECT_EQ(mesh.mVertexBuffer != nullptr, mesh.mVertexCount > 0);
    EXPECT_EQ(mesh.mIndexBuffer != nullptr, mesh.mIndexCount > 0);
}

/// The first `count` vertices.
void ExpectVertices(const Mesh& mesh, const Model& model, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        const Vorn::Vertex_UTx& v = mesh.mVertices[i];
        const auto expected = ListOf(model.vertices[i].f);
        const auto actual = Floats(v.x, v.y, v.z, v.nx, v.ny, v.nz, v.u, v.v, v.weights);
        const std::ptrdiff_t fields = model.kind == 1 ? 12 : 8;
        EXPECT_TRUE(std::equal(actual.begin(), actual.begin() + fields, expected.begin())) << i;
        EXPECT_EQ(v.color, 0xFFFFFFFFu);
        EXPECT_TRUE(model.kind != 1 || Raw(v.bones) == Raw(model.vertices[i].bones)) << i;
    }
}
void ExpectBones(const Mesh& mesh, const Model& model, std::size_t count) {
    ASSERT_EQ(mesh.mBones.size(), count);
    EXPECT_EQ(mesh.mBoneCount, count);
    EXPECT_TRUE(mesh.mFinalTransforms || count == 0);
    std::vector<int> roots;
    std::vector<std::vector<int>> children(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Vorn::Bone& bone = mesh.mBones[i];
        EXPECT_EQ(bone.mName, model.bones[i].name.c_str());
        EXPECT_EQ(bone.mParent, model.bones[i].parent);
        EXPECT_EQ(FloatsOf(bone), ListOf(model.bones[i].f));
        EXPECT_EQ(bone.mCurrentKey, 1u);
        (bone.mParent < 0 ? roots : children[static_cast<std::size_t>(bone.mParent)])
            .push_back(static_cast<int>(i));
    }
    EXPECT_EQ(mesh.mRoots, roots);
    for (std::size_t i = 0; i < count; ++i)
        EXPECT_EQ(mesh.mBones[i].mChildren, children[i]);
}
void ExpectTracks(const Mesh& mesh, const Model& model) {
    for (std::size_t b = 0; b < mesh.mBones.size(); ++b) {
        const Vorn::Bone& bone = mesh.mBones[b];
        EXPECT_EQ(bone.mKeyCount, bone.mKeys.size());
        ASSERT_EQ(bone.mKeys.size(), model.tracks[b].size());
        for (std::size_t k = 0; k < bone.mKeys.size(); ++k)
            EXPECT_EQ(FloatsOf(bone.mKeys[k]), ListOf(model.tracks[b][k].f));
    }
}

TEST_F(Models, AreReadFieldByFieldAndSurviveAReset) {
    Random random(53);
    for (int i = 0; i < 60; ++i) {
        const std::uint32_t kinds[] = {1, 0, 1, 2, FourBillion};
        const Model model = RandomModel(random, kinds[i % 5]);
        folder.File("data/mesh/m", model.File());
        for (int again = 0; again < 2; ++again)
            EXPECT_EQ(Printed([&] { meshes.Load("m"); }), again ? "" : "Loaded m\n");
        Mesh& mesh = *meshes.Get("m");
        EXPECT_EQ(mesh.mSkinned, model.kind == 1);
        ASSERT_EQ(mesh.mVertexCount, model.vertices.size());
        EXPECT_EQ(RawArray(mesh.mIndices, mesh.mIndexCount),
                  RawArray(model.indices.data(), model.indices.size()));
        ExpectVertices(mesh, model, mesh.mVertexCount);
        ExpectBones(mesh, model, model.bones.size());
        ExpectTracks(mesh, model);
        EXPECT_EQ(mesh.mDuration, model.duration);
        EXPECT_EQ(mesh.mTime, 0);
        ExpectUploaded(mesh);

        const std::string names =
            ObjectName(mesh.mVertexBuffer) + ' ' + ObjectName(mesh.mIndexBuffer);
        for (int twice = 0; twice < 2; ++twice)
            meshes.Release();
        EXPECT_EQ(CountLiveObjects().vertexBuffers, 1); // the quad's
        std::filesystem::remove("data/mesh/m");
        meshes.Reload();
        EXPECT_EQ(meshes.Get("m"), &mesh);
        EXPECT_NE(ObjectName(mesh.mVertexBuffer) + ' ' + ObjectName(mesh.mIndexBuffer), names);
        ExpectUploaded(mesh);
        ExpectVertices(mesh, model, mesh.mVertexCount);
        if (i % 2)
            meshes.Release();
        meshes.Unload("m");
        EXPECT_EQ(CountLiveObjects().vertexBuffers + CountLiveObjects().indexBuffers, 2);
    }
}

TEST_F(Models, BuffersHaveTheLengthOfTheirArraysInTheDefaultPool) {
    Model model;
    model.indices = {0, 1, 2};
    model.vertices.resize(3);
    const std::string bytes = model.File();
    VornPlatform::CallLog log;
    Read(bytes);
    const Tests::Texts calls = Tests::Take(log);
    ASSERT_EQ(calls.size(), 6u);
    EXPECT_THAT(calls[0], testing::StartsWith("CreateVertexBuffer 168 8 82 0"));
    EXPECT_THAT(calls[1], testing::StartsWith("Lock 0 168"));
    EXPECT_EQ(calls[2], "Unlock");
    EXPECT_THAT(calls[3], testing::StartsWith("CreateIndexBuffer 12 8 102 0"));
    EXPECT_THAT(calls[4], testing::StartsWith("Lock 0 12"));
}

TEST_F(Models, CutShortTheyHoldWhatIsThereAndZeros) {
    Random random(54);
    for (const std::uint32_t kind : {1u, 0u}) {
        Model model = RandomModel(random, kind);
        AddSkeleton(random, model, 3, 1, 3);
        const std::string file = model.File();
        // Where each bone ends.
        std::vector<std::size_t> boneEnds;
        std::size_t at = model.bonesAt;
        for (const Bone& bone : model.bones)
            boneEnds.push_back(at += 61 + bone.name.size());
        for (std::size_t n = 0; n < file.size(); ++n) {
            Mesh& mesh = Read(file.substr(0, n));
            const std::size_t whole = n < 24 ? 0 : (n - 24) / 4;
            ASSERT_EQ(mesh.mIndexCount, n < 24 ? 0 : model.indices.size()) << n;
            for (std::size_t i = 0; i < mesh.mIndexCount; ++i)
                ASSERT_TRUE(i == whole || // that one may be cut
                            mesh.mIndices[i] == (i < whole ? model.indices[i] : 0))
                    << n;
            const std::size_t size = kind == 1 ? 52 : 32;
            const std::size_t held = n < model.verticesAt ? 0 : (n - model.verticesAt) / size;
            ASSERT_EQ(mesh.mVertexCount, n < model.verticesAt ? 0 : model.vertices.size()) << n;
            ExpectVertices(mesh, model, std::min(held, model.vertices.size()));
            for (std::size_t i = held + 1; i < mesh.mVertexCount; ++i) {
                const Vorn::Vertex_UTx& v = mesh.mVertices[i];
                EXPECT_EQ(Floats(v.x, v.nz, v.u, v.v, v.weights), std::vector<float>(8)) << n;
            }
            ExpectUploaded(mesh);
            const auto bones = std::upper_bound(boneEnds.begin(), boneEnds.end(), n);
            ExpectBones(mesh, model, static_cast<std::size_t>(bones - boneEnds.begin()));
            for (std::size_t b = 0; b < mesh.mBones.size(); ++b) {
                const std::size_t track = model.counts[4 + b] + 4;
                const std::size_t keys = n < track ? 0 : (n - track) / 32;
                EXPECT_EQ(mesh.mBones[b].mKeys.size(), std::min(keys, model.tracks[b].size()));
                EXPECT_EQ(mesh.mBones[b].mKeyCount, mesh.mBones[b].mKeys.size());
            }
            EXPECT_EQ(mesh.mDuration, n < boneEnds.back() + 12 ? 0 : model.duration) << n;
            Vorn::UpdateSkeleton(0.3f, mesh);
        }
    }
}

TEST_F(Models, CountsOfFourBillionGiveWhatTheFileHolds) {
    Random random(55);
    Model model = RandomModel(random, 1);
    AddSkeleton(random, model, 3, 2, 3);
    const std::string file = model.File();
    for (std::size_t i = 0; i < model.counts.size(); ++i) {
        const std::size_t at = model.counts[i];
        const std::string patched = std::string(file).replace(at, 4, Raw(FourBillion));
        Mesh& mesh = Read(patched);
        const std::size_t rest = file.size() - at - 4;
        EXPECT_EQ(mesh.mIndexCount, i == 0 ? rest / 4 : model.indices.size());
        EXPECT_TRUE(i == 0 || mesh.mVertexCount == (i == 1 ? rest / 52 : model.vertices.size()));
        if (i > 2)
            ExpectBones(mesh, model, model.bones.size());
        EXPECT_EQ(mesh.mBoneCount, mesh.mBones.size());
        EXPECT_TRUE(i < 4 || mesh.mBones[i - 4].mKeys.size() == rest / 32);
        if (i == 3)
            ExpectTracks(mesh, model);
        ExpectUploaded(mesh);
        Vorn::UpdateSkeleton(0.5f, mesh);
    }
}

TEST_F(Models, ACountThatFitsMemoryStandsAndTheRestIsZero) {
    Model model;
    const std::string file = model.File();
    const Mesh* mesh = &Read(std::string(file).replace(20, 4, Raw(std::uint32_t{1'000'000})));
    ASSERT_EQ(mesh->mIndexCount, 1'000'000u);
    EXPECT_EQ(mesh->mIndices[999'999], 0u);
    mesh = &Read(std::string(file).replace(24, 4, Raw(std::uint32_t{100'000})));
    ASSERT_EQ(mesh->mVertexCount, 100'000u);
    EXPECT_EQ(mesh->mVertices[99'999].x, 0);
    EXPECT_EQ(VertexBytes(*mesh).size(), 5'600'000u);
}

TEST_F(Models, AParentThatIsNoEarlierBoneMakesARoot) {
    Random random(56);
    Model model;
    AddSkeleton(random, model, 8, 2, 2);
    const std::int32_t least = std::numeric_limits<std::int32_t>::min();
    const std::int32_t parents[] = {0, 6, 1, 3, least, 2, -2, 1'000'000}; // 1 and 2 are good
    for (std::size_t i = 0; i < 8; ++i)
        model.bones[i].parent = parents[i];
    Mesh& mesh = Read(model.File());
    EXPECT_THAT(mesh.mRoots, ElementsAre(0, 1, 3, 4, 6, 7));
    EXPECT_THAT(mesh.mBones[1].mChildren, ElementsAre(2));
    EXPECT_THAT(mesh.mBones[2].mChildren, ElementsAre(5));
    for (const std::size_t childless : {0u, 3u, 4u, 5u, 6u, 7u})
        EXPECT_THAT(mesh.mBones[childless].mChildren, IsEmpty());
    for (const int root : mesh.mRoots)
        EXPECT_EQ(mesh.mBones[static_cast<std::size_t>(root)].mParent, -1);
    Vorn::UpdateSkeleton(0.1f, mesh);
    EXPECT_NE(Raw(mesh.mBones[5].mWorld), Raw(Vorn::Matrix4::Identity));
}

TEST_F(Models, NamesEndAtTheirNulOrTheirLimit) {
    const std::string z(1, '\0');
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"hip" + z, "hip"},
        {"hip" + z + "rest" + z, "hip"},
        {z, ""},
        {"", ""},
        {"nonul", "nonul"},
        {std::string(107, 'a') + z, std::string(107, 'a')},
        {std::string(254, 'b') + z, std::string(107, 'b')},
        {std::string(255, 'c'), std::string(107, 'c')}};
    Random random(57);
    for (const auto& [bytes, name] : rows) {
        Model model;
        AddSkeleton(random, model, 2, 2, 3);
        model.bones[0].name = bytes;
        const Mesh& mesh = Read(model.File());
        ASSERT_EQ(mesh.mBones.size(), 2u);
        EXPECT_EQ(mesh.mBones[0].mName, name) << bytes.size();
        EXPECT_EQ(mesh.mBones[1].mName, "bone1") << bytes.size();
        EXPECT_EQ(FloatsOf(mesh.mBones[0]), ListOf(model.bones[0].f));
        ExpectTracks(mesh, model);
    }
}

TEST_F(Models, TracksBeyondTheBonesAreReadOverAndMissingOnesLeaveNoKeys) {
    Random random(58);
    Model model;
    AddSkeleton(random, model, 4, 2, 3);
    const auto bones = model.bones;
    model.bones.resize(2);
    ExpectTracks(Read(model.File()), model);
    EXPECT_EQ(Read(model.File()).mDuration, model.duration);
    model.bones = bones;
    model.tracks.resize(3);
    Mesh& mesh = Read(model.File());
    EXPECT_EQ(mesh.mBones[2].mKeyCount, model.tracks[2].size());
    EXPECT_EQ(mesh.mBones[3].mKeyCount, 0u);
    EXPECT_THAT(mesh.mBones[3].mKeys, IsEmpty());
    model.bones.clear();
    EXPECT_THAT(Read(model.File()).mBones, IsEmpty());
    Vorn::UpdateSkeleton(1, Read(model.File()));
}

TEST_F(Models, OfAFileThatIsMissingAreEmptyAndTheNextOneIsRead) {
    Random random(60);
    const Model model = RandomModel(random, 1);
    folder.File("data/mesh/good", model.File());
    folder.File("data/mesh/empty");
    folder.Folder("data/mesh/folder");
    for (const std::string name : {"none", "folder", "empty"}) {
        EXPECT_EQ(Printed([&] { meshes.Load(name); }), "Loaded " + name + "\n");
        const Mesh& mesh = *meshes.Get(name);
        EXPECT_EQ(mesh.mIndexCount + mesh.mVertexCount + mesh.mBoneCount, 0u);
        EXPECT_TRUE(!mesh.mVertexBuffer && !mesh.mIndexBuffer);
    }
    meshes.Load("good");
    ExpectVertices(*meshes.Get("good"), model, model.vertices.size());
    meshes.Release(), meshes.Reload(), meshes.Unload("none"), meshes.Unload("unknown");
    ExpectUploaded(*meshes.Get("good"));
    EXPECT_THROW(meshes.Get("none"), std::out_of_range);
}

TEST_F(Models, CreateMeshGivesAFreeNameToFill) {
    extra.insert("made");
    Mesh* mesh = nullptr;
    EXPECT_EQ(Printed([&] { mesh = meshes.CreateMesh("made"); }), "Loaded made\n");
    ASSERT_EQ(mesh, meshes.Get("made"));
    EXPECT_EQ(Printed([&] { EXPECT_EQ(meshes.CreateMesh("made"), nullptr); }), "");
    EXPECT_EQ(Printed([&] { meshes.Load("made"); }), "");
    meshes.Release(); // before it is filled
    meshes.Reload();
    EXPECT_TRUE(!mesh->mVertexBuffer && !mesh->mIndexBuffer);
    mesh->mVertices = new Vorn::Vertex_UTx[2];
    mesh->mVertices[1].nx = 5;
    mesh->mVertexCount = 2;
    mesh->mIndices = new unsigned int[3]{0, 1, 0};
    mesh->mIndexCount = 3;
    meshes.Release(), meshes.Reload();
    ExpectUploaded(*mesh);
}

TEST_F(Models, ACopyOwnsItsArraysAndStartsItsClockAnew) {
    Random random(61);
    Model model = RandomModel(random, 1);
    Mesh& mesh = Read(model.File());
    mesh.mTime = 0.5f;
    const Mesh copy(mesh);
    EXPECT_NE(copy.mVertices, mesh.mVertices);
    EXPECT_NE(copy.mIndices, mesh.mIndices);
    ExpectVertices(copy, model, model.vertices.size());
    EXPECT_EQ(copy.mVertexBuffer, mesh.mVertexBuffer);
    EXPECT_EQ(copy.mBones.size(), model.bones.size());
    EXPECT_EQ(copy.mRoots, mesh.mRoots);
    EXPECT_EQ(copy.mDuration, model.duration);
    EXPECT_EQ(copy.mTime, 0);
    EXPECT_EQ(copy.mFinalTransforms, nullptr);
    EXPECT_TRUE(copy.mSkinned);
}

TEST_F(Models, WithoutADeviceAreKeptForTheReload) {
    Random random(62);
    const Model model = RandomModel(random, 0);
    Close();
    folder.File("data/mesh/m", model.File());
    meshes.Load("m");
    ExpectVertices(*meshes.Get("m"), model, model.vertices.size());
    Open();
    meshes.Reload();
    ExpectUploaded(*meshes.Get("m"));
}

} // namespace
