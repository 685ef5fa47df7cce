// SPDX-License-Identifier: MIT
//
// What each operation of the device layer tells the device: its calls, their order and arguments.
#include "tests/math/exact.hpp"
#include "tests/support/engine_device.hpp"

#include <cmath>
#include <functional>

namespace {

using Exact::Random;
using Exact::Vec;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;
using Tests::operator+;
using Tests::Text;
using Tests::Texts;
using Vorn::COLORS;
using Vorn::Graphic;
using Vorn::Matrix4;
using Vorn::Vector3;
using VornPlatform::ObjectName;

static_assert(sizeof(Vorn::VERTEX_2D) == 24 && offsetof(Vorn::VERTEX_2D, color) == 12 &&
              offsetof(Vorn::VERTEX_2D, u) == 16 && offsetof(Vorn::VERTEX_2D, v) == 20);
static_assert(sizeof(Vorn::VERTEX_LINE) == 16 && offsetof(Vorn::VERTEX_LINE, z) == 8);
static_assert(sizeof(COLORS) == 4);

class GraphicCalls : public Tests::RecorderTest {
protected:
    /// What the calls of `action` are; those that make D3DX objects are no calls of an object.
    Texts Calls(const std::function<void()>& action) {
        VornPlatform::CallLog log;
        action();
        Texts calls = Tests::Take(log);
        std::erase_if(calls, [](const std::string& call) { return call.starts_with("D3DX"); });
        return calls;
    }
};

std::string Elements(const Matrix4& m) {
    return Text({m.m, m.m + 16});
}

/// What Init and Reset have in common, up to the quad.
Texts Preparation(const std::string& viewport) {
    return {"SetViewport " + viewport, "SetRenderState 137 0", "SetRenderState 22 1",
            "SetSamplerState 0 5 2", "SetGLLines 1"};
}
const Texts Quad = {"CreateVertexBuffer 96 0 322 1", "Lock 0 96 0", "Unlock",
                    "CreateIndexBuffer 24 8 102 0",  "Lock 0 24 0", "Unlock"};
const std::string Light = "SetLight 1 1 1 1 1 0 0 0 0 0 0 0 0 0 ";
const std::string LightEnd = " 0 0 0 200 0 0.1 0 0 0 0";
/// `calls` begins with `expected`, arguments beyond the named ones aside; it may go on.
void ExpectBegins(const Texts& calls, const Texts& expected) {
    ASSERT_GE(calls.size(), expected.size()) << testing::PrintToString(calls);
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_THAT(calls[i], StartsWith(expected[i])) << i;
}

TEST_F(GraphicCalls, InitBringsUpDeviceFontLineLightAndQuad) {
    struct Row {
        bool fullscreen;
        std::string parameters;
    };
    for (const auto& [fullscreen, parameters] :
         {Row{false, "1280 720 0 0 0 0 1 window 1 1 80 0 0 2147483648"},
          Row{true, "1280 720 22 1 0 0 1 window 0 1 80 0 0 2147483648"}}) {
        const bool full = fullscreen;
        const Texts calls = Calls([&] { Open(1280, 720, full); });
        ExpectBegins(calls, Texts{"CreateDevice 0 1 window 64 " + parameters} +
                                Preparation("160 0 960 720 0 1") +
                                Texts{Light + "0 200 0" + LightEnd, "LightEnable 1 1"} + Quad);
        EXPECT_EQ(VornPlatform::CountLiveObjects().fonts, 1);
        EXPECT_EQ(VornPlatform::CountLiveObjects().lines, 1);
        EXPECT_EQ(Graphic::mWnd, Vorn::Engine::mWnd);
        EXPECT_EQ(graphic.DefaultFOV(), 0.7853982f);
        EXPECT_EQ(graphic.DefaultAspect(), 1280.0f / 720);
        EXPECT_EQ(graphic.DefaultNear(), 1);
        EXPECT_EQ(graphic.DefaultFar(), 10000);
        EXPECT_EQ(graphic.BackBufferWidth(), 1280u);
        EXPECT_EQ(graphic.BackBufferHeight(), 720u);
        EXPECT_TRUE(graphic.CheckContext() && !graphic.IsDeviceLost());
        Close();
    }
}

TEST_F(GraphicCalls, ResetMakesAllButTheLightAnew) {
    Open(1280, 720);
    graphic.SetWireFrame(true);
    graphic.SetFog(3, 4);
    graphic.CameraPos(Vector3(1, 2, 3));
    const VornPlatform::LiveObjects before = VornPlatform::CountLiveObjects();
    for (int i = 0; i < 3; ++i) {
        ExpectBegins(Calls([&] { graphic.Reset(); }),
                     Texts{"Reset 1280 720"} + Preparation("160 0 960 720 0 1") + Quad);
        EXPECT_EQ(VornPlatform::CountLiveObjects(), before);
        EXPECT_EQ(graphic.DefaultFar(), 200000);
    }
    EXPECT_EQ(graphic.DefaultNear(), 1);
    EXPECT_EQ(graphic.BackFog(), 4);
    EXPECT_EQ(graphic.CameraPos().z, 3);
    EXPECT_THAT(Calls([&] { graphic.toggleWireFrame(); }), ElementsAre("SetRenderState 8 3"));

    ExpectBegins(Calls([&] { graphic.SetFullscreen(true); }),
                 {"Reset 1280 720 22 1 0 0 1 window 0"});
    Graphic::m3DppWindow.BackBufferWidth = 600; // as a host that changes its size
    ExpectBegins(Calls([&] { graphic.SetFullscreen(false); }),
                 {"Reset 600 720 0 0 0 0 1 window 1", "SetViewport 0 135 600 450 0 1"});
    EXPECT_EQ(graphic.DefaultAspect(), 1280.0f / 720);
    EXPECT_EQ(graphic.BackBufferWidth(), 600u);
}

TEST_F(GraphicCalls, EachOperationTellsTheDeviceItsCalls) {
    Open();
    IDirect3DDevice9& device = *Graphic::GetDevice();
    IDirect3DVertexBuffer9* vertices = nullptr;
    IDirect3DIndexBuffer9* indices = nullptr;
    IDirect3DTexture9* texture = nullptr;
    device.CreateVertexBuffer(24, 0, 0x142, D3DPOOL_MANAGED, &vertices, nullptr);
    device.CreateIndexBuffer(24, 0, D3DFMT_INDEX32, D3DPOOL_MANAGED, &indices, nullptr);
    D3DXCreateTexture(&device, 1, 1, 1, 0, D3DFMT_A8R8G8B8, D3DPOOL_MANAGED, &texture);
    ASSERT_TRUE(vertices && indices && texture);
    const std::string t = ObjectName(texture), none;
    IDirect3DTexture9* const null = nullptr;

    const Matrix4 m = Random(61).Matrix(3);
    const std::string same = Elements(m), turned = Elements(m.Transposed());
    const std::string identity = Elements(Matrix4::Identity);
    constexpr COLORS debug{0xFFC50BDFu}; // 4291103711
    std::vector<Vorn::Point2> points(10);
    std::string nine;
    for (int i = 0; i < 10; ++i) {
        points[static_cast<std::size_t>(i)] = {static_cast<float>(i), 2.5f};
        if (i < 9)
            nine += std::to_string(i) + " 2.5 ";
    }
    const unsigned long wide = 0xAB12345678ul; // 305419896 in its low 32 bits

    const std::vector<std::pair<std::function<void()>, Texts>> rows = {
        {[&] { graphic.BeginScene(); }, {"BeginScene"}},
        {[&] { graphic.EndScene(); }, {"EndScene"}},
        {[&] { graphic.Present(); }, {"Present null null null null"}},
        {[&] { graphic.SetBackBufferColor(wide); }, {"Clear 0 null 3 305419896 1 0"}},
        {[&] { graphic.BackBufferColor(wide); }, {}},
        {[&] { graphic.SetFVF(0x300000152ul); }, {"SetFVF 338"}},
        {[&] { graphic.SetTexture(texture); }, {"SetTexture 0 " + t}},
        {[&] { graphic.SetTexture(null); }, {"SetTexture 0 null"}},
        {[&] { graphic.SetTwoDTexture(texture); }, {"SetFVF 322", "SetTexture 0 " + t}},
        {[&] { graphic.SetMesh(vertices, 24); },
         {"SetStreamSource 0 " + ObjectName(vertices) + " 0 24"}},
        {[&] { graphic.SetIndices(indices); }, {"SetIndices " + ObjectName(indices)}},
        {[&] { graphic.Draw(4, 2); }, {"DrawIndexedPrimitive 4 0 0 4 0 2"}},
        {[&] { graphic.SetWorldTransform(m); }, {"SetTransform 256 " + same}},
        {[&] { graphic.SetView(m); }, {"SetTransform 2 " + turned}},
        {[&] { graphic.SetProjection(m); }, {"SetTransform 3 " + turned}},
        {[&] { graphic.SetTextureMatrix(m); }, {"SetTransform 16 " + turned}},
        {[&] { graphic.SetWireFrame(true); }, {"SetRenderState 8 2"}},
        {[&] { graphic.toggleWireFrame(); }, {"SetRenderState 8 3"}},
        {[&] { graphic.toggleWireFrame(); }, {"SetRenderState 8 2"}},
        {[&] { graphic.SetWireFrame(false); }, {"SetRenderState 8 3"}},
        {[&] { graphic.SetPointLight(true); }, {"SetRenderState 137 1"}},
        {[&] { graphic.togglePointLight(); }, {"SetRenderState 137 0"}},
        {[&] { graphic.togglePointLight(); }, {"SetRenderState 137 1"}},
        {[&] { graphic.SetPointLight(false); }, {"SetRenderState 137 0"}},
        {[&] { graphic.CreatePointLight(Vector3(1, -2, 3)); },
         {Light + "1 -2 3" + LightEnd, "LightEnable 1 1"}},
        {[&] { graphic.SetPointLightSettings(Vector3(), Vector3(), Vector3()); }, {}},
        {[&] { graphic.SetPointLightPosition(Vector3(1, 2, 3)); }, {}},
        {[&] { graphic.SetFog(1, 2); }, {}},
        {[&] { graphic.CameraPos(Vector3(1, 2, 3)); }, {}},
        {[&] { graphic.RenderAnTweakBar(); }, {}},
        {[&] { graphic.SetTransparent(); },
         {"SetRenderState 27 1", "SetRenderState 22 1", "SetRenderState 25 7",
          "SetRenderState 24 8", "SetRenderState 15 1"}},
        {[&] { graphic.Draw3DLine(Vector3(1, 2, 3), Vector3(-4, 5.5f, 6), debug); },
         {"SetTexture 0 null", "SetTransform 256 " + identity, "SetVertexDeclaration null",
          "SetVertexShader null", "SetPixelShader null", "SetFVF 66",
          "DrawPrimitiveUP 2 1 1 2 3 4291103711 -4 5.5 6 4291103711 16"}},
        {[&] { graphic.Draw2DLine(points.data(), 10, debug, 1.5f); },
         {"SetAntialias 1", "SetWidth 1.5", "SetGLLines 0", "Draw " + nine + "9 4291103711"}},
        {[&] { graphic.RenderText(30, -7, 0x80FF0001u, "frame"); },
         {"DrawTextA null \"frame\" -1 30 -7 1 -6 256 2164195329"}},
    };
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_THAT(Calls(rows[i].first), ElementsAreArray(rows[i].second)) << "row " << i;
    EXPECT_EQ(graphic.BackBufferColor(), 0x12345678u);
    for (const std::string& call : Calls([&] { graphic.Draw2DLine(nullptr, 0, debug, 1); }))
        EXPECT_THAT(call, testing::Not(StartsWith("Draw")));

    graphic.SetTexture(null);
    vertices->Release(), indices->Release(), texture->Release();
}

TEST_F(GraphicCalls, EachTargetHasASceneOfItsOwnWithTheViewportThatStands) {
    Open(1280, 720);
    const std::vector<std::pair<IDirect3DTexture9*, std::function<void()>>> targets = {
        {graphic.GeTRTexture(), [&] { graphic.RTBegin(), graphic.RTEnd(); }},
        {graphic.GeTRBeamTexture(), [&] { graphic.RTBeamBegin(), graphic.RTBeamEnd(); }},
        {graphic.GeTRParticlesTexture(),
         [&] { graphic.RTParticlesBegin(), graphic.RTParticlesEnd(); }}};
    std::set<IDirect3DTexture9*> different;
    for (const auto& [texture, scene] : targets) {
        IDirect3DSurface9* surface = nullptr;
        ASSERT_TRUE(texture);
        ASSERT_EQ(texture->GetSurfaceLevel(0, &surface), 0);
        EXPECT_THAT(Calls(scene),
                    ElementsAre("GetViewport",
                                "BeginScene " + ObjectName(surface) + " 160 0 960 720 0 1",
                                "EndScene 1"));
        surface->Release();
        different.insert(texture);
    }
    EXPECT_EQ(different.size(), 3u);
}

TEST_F(GraphicCalls, AllThreeMatricesAreTheTransposedWorldTransform) {
    Open();
    Random random(62);
    const Matrix4 world = random.Matrix(2);
    graphic.SetWorldTransform(world);
    graphic.SetView(random.Matrix(2));
    graphic.SetProjection(random.Matrix(2));
    for (const Matrix4& m :
         {graphic.GetWorldMatrix(), graphic.GetViewMatrix(), graphic.GetProjMatrix()})
        EXPECT_EQ(Tests::Raw(m), Tests::Raw(world.Transposed()));
}

TEST_F(GraphicCalls, UnprojectFindsThePointOfTheNearPlane) {
    Open(1280, 720);
    Random random(63);
    for (int i = 0; i < 200; ++i) {
        const Vec eye = random.Vector(20), ahead = random.Axis();
        const Vec right = Exact::Unit(Exact::Cross(Exact::Y, ahead));
        const Vec up = Exact::Cross(ahead, right);
        const double fov = random(0.4f, 1.8f), aspect = random(0.5f, 2), nearZ = random(0.5f, 3);
        const double x = random(-2, 2), y = random(-2, 2); // on the screen, of 1 each way
        const double tangent = std::tan(fov / 2) * nearZ;
        const Vec expected =
            eye + nearZ * ahead + (x * tangent * aspect) * right + (y * tangent) * up;
        const Vorn::Point2 screen(Exact::Single(160 + (x + 1) / 2 * 960),
                                  Exact::Single((1 - y) / 2 * 720));
        const Vorn::Point2 found = graphic.Unproject(
            screen,
            Matrix4::Projection(Exact::Single(fov), Exact::Single(aspect), Exact::Single(nearZ),
                                nearZ > 1 ? 100.0f : 50.0f),
            Matrix4::LookAt(Exact::To(eye), Exact::To(eye + ahead), Vector3(0, 1, 0)));
        Exact::ExpectNear(found.x, expected.x, 2e-3);
        Exact::ExpectNear(found.y, expected.y, 2e-3);
    }
}

TEST_F(GraphicCalls, TheViewportIsACentredColumnOfTheAspect) {
    Random random(64);
    for (int i = 0; i < 2000; ++i) {
        const auto width = static_cast<unsigned int>(random.Int(1, i % 2 ? 40 : 4000));
        const auto height = static_cast<unsigned int>(random.Int(1, i % 2 ? 40 : 3000));
        const double aspect = i % 3 ? 4.0 / 3.0 : random(0.3f, 3);
        const auto column = static_cast<unsigned int>(height * aspect);
        const auto rows = static_cast<unsigned int>(width / aspect);
        D3DVIEWPORT9 vp = {};
        EXPECT_THAT(Calls([&] { graphic.SetViewportAspect(&vp, width, height, aspect); }),
                    IsEmpty());
        const auto expected = column <= width
                                  ? std::vector<DWORD>{(width - column) >> 1, 0, column, height}
                                  : std::vector<DWORD>{0, (height - rows) >> 1, width, rows};
        EXPECT_EQ((std::vector<DWORD>{vp.X, vp.Y, vp.Width, vp.Height}), expected)
            << width << 'x' << height << ' ' << aspect;
        EXPECT_TRUE(vp.MinZ == 0 && vp.MaxZ == 1);
    }
    for (const double aspect : {0.0, -1.0, 1e300, 1e-300, std::nan(""), HUGE_VAL})
        for (const auto& [width, height] : {std::pair(800u, 600u),
                                            {0u, 0u},
                                            {0u, 600u},
                                            {800u, 0u},
                                            {0xFFFFFFFFu, 0xFFFFFFFFu}}) {
            D3DVIEWPORT9 vp = {};
            graphic.SetViewportAspect(&vp, width, height, aspect);
            EXPECT_LE(std::uint64_t{vp.X} + vp.Width, width) << aspect;
            EXPECT_LE(std::uint64_t{vp.Y} + vp.Height, height) << aspect;
        }
    // The device's own is 4 to 3.
    const unsigned int sizes[][6] = {{1366, 768, 171, 0, 1024, 768},
                                     {800, 600, 0, 0, 800, 600},
                                     {1000, 1000, 0, 125, 1000, 750}};
    for (const auto& s : sizes) {
        Open(s[0], s[1]);
        const D3DVIEWPORT9& vp = Graphic::mViewport;
        EXPECT_EQ((std::vector<DWORD>{vp.X, vp.Y, vp.Width, vp.Height}),
                  std::vector<DWORD>(s + 2, s + 6));
        Close();
    }
}

TEST_F(GraphicCalls, BuffersTakeTheirContentOrAreRefused) {
    Open();
    const std::vector<Vorn::Vertex_UTx> vertices = {
        {1, 2, 3, 4, 5, 6, 7, 8}, {}, {9, 9, 9, 9, 9, 9, 9, 9}};
    const std::vector<Vorn::VERTEX_2D> flat = {{1, 2, 3, 0xFF00FF00u, 5, 6}, {7, 8, 9, 1, 2, 3}};
    const std::vector<unsigned int> indices = {2, 1, 0};
    IDirect3DVertexBuffer9 *vb = nullptr, *vb2 = nullptr;
    IDirect3DIndexBuffer9* ib = nullptr;
    EXPECT_THAT(
        Calls([&] { EXPECT_TRUE(graphic.CreateVertexBuffer(168, vb, vertices.data())); })[0],
        StartsWith("CreateVertexBuffer 168 8 82 0"));
    EXPECT_THAT(Calls([&] { EXPECT_TRUE(graphic.Create2DVertexBuffer(48, vb2, flat.data())); })[0],
                StartsWith("CreateVertexBuffer 48 0 322 1"));
    EXPECT_THAT(Calls([&] { EXPECT_TRUE(graphic.CreateIndexBuffer(12, ib, indices.data())); })[0],
                StartsWith("CreateIndexBuffer 12 8 102 0"));
    EXPECT_TRUE(Tests::Content(vb, 168) == Tests::RawArray(vertices.data(), 3));
    EXPECT_TRUE(Tests::Content(vb2, 48) == Tests::RawArray(flat.data(), 2));
    EXPECT_EQ(Tests::Content(ib, 12), Tests::RawArray(indices.data(), 3));

    IDirect3DVertexBuffer9 *const held = vb, *const held2 = vb2;
    IDirect3DIndexBuffer9* const heldIndices = ib;
    EXPECT_FALSE(graphic.CreateVertexBuffer(0, vb, vertices.data()));
    EXPECT_FALSE(graphic.Create2DVertexBuffer(0, vb2, flat.data()));
    EXPECT_FALSE(graphic.CreateIndexBuffer(0, ib, indices.data()));
    EXPECT_TRUE(vb == held && vb2 == held2 && ib == heldIndices);
    vb->Release(), vb2->Release(), ib->Release();
}

TEST_F(GraphicCalls, TextWithoutADeviceIsPassedOver) {
    graphic.RenderText(1, 2, 0xFFFFFFFFu, "nobody sees it");
    Open();
    Close();
    EXPECT_THAT(Calls([&] { graphic.RenderText(1, 2, 0xFFFFFFFFu, "after the end"); }), IsEmpty());
}

} // namespace
