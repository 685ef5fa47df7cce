// SPDX-License-Identifier: MIT
#include "tests/math/exact.hpp"
#include "tests/support/engine_device.hpp"

#include <memory>

namespace {

using Exact::Random;
using Exact::Vec;
using testing::ElementsAre;
using Tests::Content;
using Tests::Raw;
using Tests::RawArray;
using Vorn::HeightMap;
using Vorn::Mesh;

/// A picture of these blue values, other channels and padding filled with what must not be read.
std::string Bitmap(int width, int height, const std::vector<int>& blue) {
    std::string file = "BM" + Raw(1, 2, 3, 4, width, height, 5, 6, 7, 8, 9, 10, 11);
    for (int r = 0; r < height; ++r) {
        for (int c = 0; c < width; ++c)
            file +=
                {static_cast<char>(blue[static_cast<std::size_t>(r * width + c)]), '\x11', '\x22'};
        file.append(static_cast<std::size_t>(width % 4), '\x33');
    }
    return file;
}
std::vector<int> RandomHeights(Random& random, int count) {
    std::vector<int> heights;
    for (int i = 0; i < count; ++i)
        heights.push_back(random.Int(0, 255));
    return heights;
}

class HeightMaps : public Tests::RecorderTest {
protected:
    HeightMaps() {
        Open();
        extra.insert("hills");
        testing::internal::CaptureStdout();
        mesh = meshes.CreateMesh("hills");
        testing::internal::GetCapturedStdout();
        map.SetMesh(mesh);
    }
    bool Init(const std::string& bytes) { return map.Init(folder.File("map.bmp", bytes).c_str()); }

    Mesh* mesh;
    HeightMap map;
};

void ExpectGrid(const Mesh& mesh, int width, int height, const std::vector<int>& values) {
    const auto at = [&](int c, int r) {
        return Vec{(c - width / 2) * 0.125,
                   values[static_cast<std::size_t>(r * width + c)] * 4.0 - 800,
                   (r - height / 2) * 0.125};
    };
    ASSERT_EQ(mesh.mVertexCount, static_cast<unsigned int>(width * height));
    std::vector<unsigned int> indices;
    for (int r = 0; r < height; ++r)
        for (int c = 0; c < width; ++c) {
            const int a = r * width + c;
            const Vorn::Vertex_UTx& v = mesh.mVertices[a];
            Exact::ExpectNear(Vorn::Vector3(v.x, v.y, v.z), at(c, r), 0);
            EXPECT_EQ(v.u, static_cast<float>(c) / static_cast<float>(width));
            EXPECT_EQ(v.v, static_cast<float>(r) / static_cast<float>(height));
            EXPECT_EQ(v.color, 0xFFFFFFFFu);
            Vec normal;
            if (c > 0 && r > 0 && c + 1 < width && r + 1 < height)
                normal = Exact::Unit(
                    Exact::Cross(at(c - 1, r) - at(c + 1, r), at(c, r + 1) - at(c, r - 1)));
            Exact::ExpectNear(Vorn::Vector3(v.nx, v.ny, v.nz), normal, 1e-5);
            if (c + 1 < width && r + 1 < height)
                for (const int i : {a, a + 1, a + width, a + 1, a + width + 1, a + width})
                    indices.push_back(static_cast<unsigned int>(i));
        }
    EXPECT_EQ(std::vector<unsigned int>(mesh.mIndices, mesh.mIndices + mesh.mIndexCount), indices);
    EXPECT_TRUE(Content(mesh.mVertexBuffer, 56 * std::size_t{mesh.mVertexCount}) ==
                RawArray(mesh.mVertices, mesh.mVertexCount));
    EXPECT_TRUE(Content(mesh.mIndexBuffer, 4 * indices.size()) ==
                RawArray(indices.data(), indices.size()));
}

TEST_F(HeightMaps, AreGridsOfTheirPixels) {
    Random random(68);
    for (int width = 1; width <= 9; ++width)
        for (int height = 1; height <= 9; ++height) {
            const auto values = RandomHeights(random, width * height);
            // Without a cell there is no index buffer to make.
            EXPECT_EQ(Init(Bitmap(width, height, values)), width > 1 && height > 1);
            ExpectGrid(*mesh, width, height, values);
            ASSERT_FALSE(HasFailure()) << width << 'x' << height;
            EXPECT_EQ(map.GetMesh(), mesh);
        }
    // What an earlier picture had made is gone; the quad stays.
    EXPECT_EQ(VornPlatform::CountLiveObjects().vertexBuffers, 2);
}

TEST_F(HeightMaps, FlatGroundPointsUpAndLevelIs200) {
    ASSERT_TRUE(Init(Bitmap(256, 3, std::vector<int>(768, 200))));
    const Vorn::Vertex_UTx& inner = mesh->mVertices[256 + 100];
    EXPECT_EQ(inner.y, 0);
    EXPECT_EQ(Vorn::Vector3(inner.nx, inner.ny, inner.nz),
              Vorn::Vector3(0, 1, 0)); // of which 0 is -0
    EXPECT_EQ(mesh->mVertices[0].x, -16);
    EXPECT_EQ(mesh->mVertices[255].x, 15.875f);
    ASSERT_TRUE(Init(Bitmap(2, 2, {0, 255, 0, 255})));
    EXPECT_EQ(mesh->mVertices[0].y, -800);
    EXPECT_EQ(mesh->mVertices[1].y, 220);
}

TEST_F(HeightMaps, WhatIsNoWholePictureGivesFalseAndChangesNothing) {
    const std::vector<int> values = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const std::string good = Bitmap(5, 2, values);
    ASSERT_TRUE(Init(good));
    const Vorn::Vertex_UTx* const vertices = mesh->mVertices;
    const std::string buffer = VornPlatform::ObjectName(mesh->mVertexBuffer);
    std::vector<std::string> broken;
    const int sizes[][2] = {{0, 2},
                            {5, 0},
                            {-5, 2},
                            {5, -2},
                            {-5, -2},
                            {0x7FFFFFFF, 2},
                            {5, 0x7FFFFFFF},
                            {0x7FFFFFFF, 0x7FFFFFFF},
                            {65536, 65536},
                            {0x40000000, 4},
                            {INT32_MIN, INT32_MIN},
                            {6, 2}};
    for (const auto& [width, height] : sizes)
        broken.push_back(std::string(good).replace(18, 8, Raw(width, height)));
    // The padding of the last row may be missing, and nothing else.
    for (std::size_t n = 0; n + 1 < good.size(); ++n)
        broken.push_back(good.substr(0, n));
    for (const std::string& bytes : broken)
        EXPECT_FALSE(Init(bytes)) << bytes.size();
    EXPECT_FALSE(map.Init("missing.bmp"));
    EXPECT_FALSE(map.Init("data"));
    EXPECT_FALSE(map.LoadHeightMap("missing.bmp"));
    EXPECT_EQ(mesh->mVertices, vertices);
    EXPECT_EQ(VornPlatform::ObjectName(mesh->mVertexBuffer), buffer);
    ExpectGrid(*mesh, 5, 2, values);
    VornPlatform::CallLog log;
    map.Draw();
    EXPECT_EQ(Tests::Take(log).back(), "DrawIndexedPrimitive 4 0 0 10 0 8");
    EXPECT_TRUE(Init(good.substr(0, good.size() - 1)));
    ExpectGrid(*mesh, 5, 2, values);
}

TEST_F(HeightMaps, DrawInWireFrameWithTheStateThatStands) {
    ASSERT_TRUE(Init(Bitmap(3, 4, std::vector<int>(12))));
    VornPlatform::CallLog log;
    map.Draw();
    EXPECT_THAT(
        Tests::Take(log),
        ElementsAre("SetStreamSource 0 " + VornPlatform::ObjectName(mesh->mVertexBuffer) + " 0 56",
                    "SetIndices " + VornPlatform::ObjectName(mesh->mIndexBuffer), "SetFVF 82",
                    "SetRenderState 8 2", "DrawIndexedPrimitive 4 0 0 12 0 12"));
}

TEST_F(HeightMaps, AreMadeAgainFromTheirMeshAfterAReset) {
    const std::vector<int> values = {9, 8, 7, 6};
    ASSERT_TRUE(Init(Bitmap(2, 2, values)));
    engine.Reset();
    ExpectGrid(*mesh, 2, 2, values);
}

TEST_F(HeightMaps, ShutDownTheyLeaveTheMeshToItsOwner) {
    ASSERT_TRUE(Init(Bitmap(2, 2, {1, 2, 3, 4})));
    for (int i = 0; i < 2; ++i) {
        map.Shutdown();
        EXPECT_EQ(map.GetMesh(), nullptr);
    }
    ExpectGrid(*mesh, 2, 2, {1, 2, 3, 4});
    VornPlatform::CallLog log;
    map.Draw();
    HeightMap().Draw();
    for (const std::string& call : Tests::Take(log))
        EXPECT_THAT(call, testing::Not(testing::StartsWith("Draw")));
    map.SetMesh(mesh);
    EXPECT_TRUE(Init(Bitmap(2, 2, {4, 3, 2, 1})));
    ExpectGrid(*mesh, 2, 2, {4, 3, 2, 1});
}

TEST_F(HeightMaps, CopiesOwnTheirHeights) {
    ASSERT_TRUE(Init(Bitmap(3, 2, {1, 2, 3, 4, 5, 6})));
    HeightMap copy;
    {
        const auto source = std::make_unique<HeightMap>();
        *source = map;
        copy = *source;
    }
    map.Shutdown();
    EXPECT_EQ(copy.GetMesh(), mesh);
    VornPlatform::CallLog log;
    copy.Draw();
    EXPECT_EQ(Tests::Take(log).back(), "DrawIndexedPrimitive 4 0 0 6 0 4");
    HeightMap& same = copy;
    copy = same;
    EXPECT_EQ(copy.GetMesh(), mesh);
}

} // namespace
