// SPDX-License-Identifier: MIT
//
// What stands in the back buffer after the device layer has drawn, pixel by pixel.
#include "tests/support/engine_device.hpp"

#include <cstdlib>
#include <functional>
#include <limits>

namespace {

using Tests::Ground;
using Tests::Pixels;
using Vorn::COLORS;
using Vorn::Matrix4;
using Vorn::Vector3;

constexpr std::uint32_t White = 0xFFFFFFFF;
constexpr int Width = 800, Height = 600;

/// The edges of what differs from the ground.
struct Box {
    int left = std::numeric_limits<int>::max(), top = left, right = -1, bottom = -1, count = 0;
};

class Drawing : public Tests::PictureTest {
protected:
    Pixels Draw(const std::function<void()>& action) {
        graphic.SetBackBufferColor(Ground);
        graphic.BeginScene();
        action();
        graphic.EndScene();
        return Picture();
    }
    static Box Changed(const Pixels& pixels) {
        Box box;
        for (int i = 0; i < static_cast<int>(pixels.size()); ++i) {
            if (pixels[static_cast<std::size_t>(i)] == Ground)
                continue;
            const int x = i % Width, y = i / Width;
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x),
                   std::max(box.bottom, y), box.count + 1};
        }
        return box;
    }
    static std::uint32_t At(const Pixels& pixels, int x, int y) {
        return pixels.at(static_cast<std::size_t>(y * Width + x));
    }
    /// Where a pixel's centre lies for a device without view and projection.
    static Vector3 OnScreen(int x, int y) {
        return {static_cast<float>(x) / 400 - 1, 1 - static_cast<float>(y) / 300, 0.5f};
    }
    /// A flat map of 3 by 3 points whose edges lie at a quarter of the screen, seen from above.
    void DrawMap(Vorn::HeightMap& map) {
        graphic.SetWorldTransform(Matrix4::Identity);
        graphic.SetProjection(Matrix4::Identity);
        graphic.SetView(Matrix4(4, 0, 0, 0, 0, 0, 4, 0, 0, 0, 0, 0.5f, 0, 0, 0, 1));
        map.Draw();
        graphic.SetView(Matrix4::Identity);
        graphic.SetWireFrame(false);
    }
    /// A picture of two by two texels over the middle of the screen.
    void DrawTexturedMesh() {
        const Vorn::Mesh& mesh = *meshes.Get("quad");
        graphic.SetMesh(mesh.mVertexBuffer, 56);
        graphic.SetIndices(mesh.mIndexBuffer);
        graphic.SetFVF(0x152);
        graphic.SetTexture(*textures.Get("four")->mTexture);
        graphic.Draw(mesh.mVertexCount, mesh.mIndexCount / 3);
        graphic.SetTexture(nullptr);
    }
    void LoadTexturedMesh() {
        extra.insert("quad");
        folder.File("data/img/four", Tests::Tga(2, 2, Four));
        textures.Load("four");
        testing::internal::CaptureStdout();
        Vorn::Mesh& mesh = *meshes.CreateMesh("quad");
        testing::internal::GetCapturedStdout();
        mesh.mVertexCount = 4, mesh.mIndexCount = 6;
        mesh.mVertices = new Vorn::Vertex_UTx[4]{{-0.5f, 0.5f, 0.5f, 0, 0, 0, 0, 0},
                                                 {0.5f, 0.5f, 0.5f, 0, 0, 0, 1, 0},
                                                 {0.5f, -0.5f, 0.5f, 0, 0, 0, 1, 1},
                                                 {-0.5f, -0.5f, 0.5f, 0, 0, 0, 0, 1}};
        mesh.mIndices = new unsigned int[6]{0, 1, 2, 2, 3, 0};
        meshes.Reload();
    }
    const Pixels Four = {0xFFFF0000, 0xFF00FF00, 0xFF0000FF, 0xFFFFFF00};
};

void ExpectClose(std::uint32_t actual, std::uint32_t expected, int tolerance) {
    for (const int shift : {16, 8, 0})
        EXPECT_NEAR(static_cast<int>(actual >> shift & 255),
                    static_cast<int>(expected >> shift & 255), tolerance)
            << std::hex << actual << ' ' << expected;
}

TEST_F(Drawing, ClearsTheColumnOfFourToThreeAlone) {
    Open(1280, 720);
    graphic.SetBackBufferColor(0xFF00000000112233ul);
    const Pixels wide = Picture();
    ASSERT_EQ(wide.size(), 1280u * 720u);
    for (std::size_t i = 0; i < wide.size(); ++i)
        ASSERT_EQ(wide[i] == 0xFF112233, i % 1280 >= 160 && i % 1280 < 1120) << i;
    Close();
    Open();
    graphic.SetBackBufferColor(Ground);
    EXPECT_EQ(Picture(), Pixels(std::size_t{Width} * Height, Ground));
}

TEST_F(Drawing, ALineInSpaceColoursItsPixelsButTheLast) {
    Open();
    const Pixels pixels = Draw([&] {
        graphic.Draw3DLine(OnScreen(100, 50), OnScreen(200, 50), COLORS{0xFFC50BDFu});
        graphic.SetWorldTransform(Matrix4::Translation(1, 1, 0)); // it takes none of
        graphic.Draw3DLine(OnScreen(30, 300), OnScreen(30, 320), COLORS{White});
    });
    Pixels expected(pixels.size(), Ground);
    for (std::size_t x = 100; x < 200; ++x)
        expected[50 * Width + x] = 0xFFC50BDF;
    for (std::size_t y = 300; y < 320; ++y)
        expected[y * Width + 30] = White;
    EXPECT_TRUE(pixels == expected) << Changed(pixels).count;
}

TEST_F(Drawing, ALineOnTheScreenLeavesOutItsLastPoint) {
    Open();
    const Vorn::Point2 points[] = {{10, 20}, {110, 20}, {110, 420}};
    const Box box = Changed(Draw([&] { graphic.Draw2DLine(points, 3, COLORS{White}, 1); }));
    EXPECT_NEAR(box.left, 10, 1);
    EXPECT_NEAR(box.right, 110, 1);
    EXPECT_NEAR(box.top, 20, 1);
    EXPECT_NEAR(box.bottom, 20, 1);
}

TEST_F(Drawing, TextStartsAtItsPlaceInItsColour) {
    Open();
    const std::vector<std::pair<int, int>> places = {{100, 50}, {400, 333}};
    Box first;
    for (const auto& [x, y] : places) {
        const int left = x, top = y;
        const Pixels pixels = Draw([&] { graphic.RenderText(left, top, 0xFFFF3040u, "Frame 17"); });
        const Box box = Changed(pixels);
        EXPECT_TRUE(box.left >= x - 1 && box.left < x + 6) << box.left;
        EXPECT_TRUE(box.top >= y && box.bottom < y + 24) << box.top << ' ' << box.bottom;
        EXPECT_TRUE(box.right - box.left > 40 && box.right - box.left < 150) << box.right;
        for (const std::uint32_t pixel : pixels)
            ASSERT_EQ(pixel & 0xFFFF, Ground & 0xFFFF); // green and blue are those of the ground
        EXPECT_TRUE(std::count(pixels.begin(), pixels.end(), 0xFFFF3040u) > 20);
        EXPECT_TRUE(first.count == 0 || first.count == box.count);
        first = box;
    }
    EXPECT_EQ(Changed(Draw([&] { graphic.RenderText(5, 5, White, ""); })).count, 0);
}

TEST_F(Drawing, AHeightMapStandsInItsWiresWhereItShould) {
    Open();
    extra.insert("hills");
    testing::internal::CaptureStdout();
    Vorn::Mesh* const mesh = meshes.CreateMesh("hills");
    testing::internal::GetCapturedStdout();
    std::string file = "BM" + Tests::Raw(0, 0, 0, 0, 3, 3) + std::string(28, '\0');
    for (int row = 0; row < 3; ++row)
        file += std::string(9, '\xC8') + std::string(3, '\0');
    Vorn::HeightMap map;
    map.SetMesh(mesh);
    ASSERT_TRUE(map.Init(folder.File("map.bmp", file).c_str()));
    const auto draw = [&] { return Draw([&] { DrawMap(map); }); };
    const Pixels pixels = draw();
    const Box box = Changed(pixels);
    EXPECT_NEAR(box.left, 200, 1);
    EXPECT_NEAR(box.right, 600, 1);
    EXPECT_NEAR(box.top, 150, 1);
    EXPECT_NEAR(box.bottom, 450, 1);
    EXPECT_LT(box.count, 6000); // edges and diagonals, nothing filled
    EXPECT_GT(box.count, 3 * 400 + 3 * 300 + 4 * 150);
    const auto near = [&](int x, int y) { // a white pixel right beside
        for (int i = -1; i <= 1; ++i)
            if (At(pixels, x + i, y) == White || At(pixels, x, y + i) == White)
                return true;
        return false;
    };
    EXPECT_TRUE(near(400, 200) && near(300, 300) && near(200, 400) && near(500, 450));
    // From a + 1 to a + W in each cell, whose rows run upwards, never the other diagonal.
    EXPECT_TRUE(near(250, 188) && near(550, 412));
    EXPECT_FALSE(near(350, 188) || near(250, 262));
    engine.Reset();
    EXPECT_TRUE(draw() == pixels);
}

TEST_F(Drawing, ATexturedMeshNeedsNoEffect) {
    Open();
    LoadTexturedMesh();
    const auto draw = [&] { return Draw([&] { DrawTexturedMesh(); }); };
    const Pixels pixels = draw();
    const Box box = Changed(pixels);
    EXPECT_NEAR(box.left, 200, 1);
    EXPECT_NEAR(box.right, 599, 1);
    EXPECT_NEAR(box.top, 150, 1);
    EXPECT_NEAR(box.bottom, 449, 1);
    for (int i = 0; i < 4; ++i)
        ExpectClose(At(pixels, 300 + 200 * (i % 2), 225 + 150 * (i / 2)),
                    Four[static_cast<std::size_t>(i)], 6);
    engine.Reset();
    EXPECT_TRUE(draw() == pixels);
}

TEST_F(Drawing, WireFrameAndTransparencyTakeEffect) {
    Open();
    LoadTexturedMesh();
    const int filled = Changed(Draw([&] { DrawTexturedMesh(); })).count;
    graphic.SetWireFrame(true);
    const int wires = Changed(Draw([&] { DrawTexturedMesh(); })).count;
    EXPECT_TRUE(wires > 1000 && wires < filled / 10) << wires << ' ' << filled;
    graphic.toggleWireFrame();
    EXPECT_EQ(Changed(Draw([&] { DrawTexturedMesh(); })).count, filled);
    // Less than 8 of 255 is not drawn.
    graphic.SetTransparent();
    for (const std::uint32_t alpha : {7u, 8u}) {
        folder.File("data/img/four", Tests::Tga(2, 2, Pixels(4, alpha << 24 | 0xFFFFFF)));
        textures.Release(), textures.Reload();
        EXPECT_EQ(Changed(Draw([&] { DrawTexturedMesh(); })).count, alpha < 8 ? 0 : filled);
    }
}

} // namespace
