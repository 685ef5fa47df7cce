// SPDX-License-Identifier: MIT
//
// The picture of each draw path against the formulas of its shader file, computed pixel by pixel in
// double precision: with files of this test's own, which show that values arrive, and with those
// that come with the engine, which show their looks. Rounding to 8 bits is an error of a half, what
// single precision does before it of less than another; blending rounds once more. A texel is exact
// where a pixel keeps away from its border.
#include "tests/render/shader_files.hpp"

#include "tests/math/exact.hpp"
#include "tests/support/picture.hpp"

#include <array>
#include <cmath>
#include <functional>
#include <optional>

namespace {

using Exact::Dot;
using Exact::Of;
using Exact::Unit;
using Exact::Vec;
using RenderTests::KnownShaders;
using RenderTests::WriteShaders;
using Tests::Ground;
using Tests::Hex;
using Tests::Pixels;
using Tests::SmallHeight;
using Tests::SmallWidth;
using Vorn::Matrix4;
using Vorn::Mesh;
using Vorn::Vector3;
using Vorn::Vertex_UTx;

/// Red, green, blue, alpha, from 0 to 1.
Vec Color(std::uint32_t argb) {
    const auto c = Tests::Channels(argb);
    return {c[0] / 255.0, c[1] / 255.0, c[2] / 255.0, c[3] / 255.0};
}
Vec Times(const Vec& a, const Vec& b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z, a.w * b.w};
}
double Limited(double c) {
    return std::min(std::max(c, 0.0), 1.0);
}
Vec Limited(const Vec& c) {
    return {Limited(c.x), Limited(c.y), Limited(c.z), Limited(c.w)};
}
/// How far a pixel is from a colour, in steps of 255.
double Away(std::uint32_t pixel, const Vec& color) {
    const Vec got = Color(pixel), wanted = Limited(color);
    return 255 * std::max({std::abs(got.x - wanted.x), std::abs(got.y - wanted.y),
                           std::abs(got.z - wanted.z)});
}

/// Where in a triangle of clip space a pixel lies: what its corners count, in perspective.
Vec Shares(const std::array<Vec, 3>& clip, int x, int y) {
    const double px = 2.0 * x / SmallWidth - 1, py = 1 - 2.0 * y / SmallHeight;
    std::array<Vec, 3> row; // of each corner how far it is from the ray through the pixel
    for (std::size_t i = 0; i < 3; ++i)
        row[i] = {clip[i].x - px * clip[i].w, clip[i].y - py * clip[i].w, 0};
    const Vec a{row[0].x, row[1].x, row[2].x}, b{row[0].y, row[1].y, row[2].y};
    const Vec shares = Exact::Cross(a, b);
    return (1 / (shares.x + shares.y + shares.z)) * shares;
}

/// What the pixel shader gets.
struct Point {
    Vec place, normal; // of the model
    double u = 0, v = 0;
    double shade = 0; // of what a corner has beside
};
class ShaderPicture : public Tests::PictureTest {
protected:
    explicit ShaderPicture(bool shipped = false) {
        if (!shipped)
            WriteShaders(KnownShaders());
        for (const char* name : {"sheet", "image", "shades"})
            extra.insert(name);
    }
    ~ShaderPicture() override {
        graphic.SetPointLightSettings(Vector3(), Vector3(), Vector3());
        graphic.SetPointLightPosition(Vector3());
        graphic.CameraPos(Vector3());
    }
    void Start() {
        Open(SmallWidth, SmallHeight);
        folder.File("data/img/image", Tests::Tga(48, 40, image.pixels));
        folder.File("data/img/shades", Tests::Tga(4, 4, shades.pixels));
        textures.Load("image"), textures.Load("shades");
        testing::internal::CaptureStdout();
        mesh = meshes.CreateMesh("sheet");
        testing::internal::GetCapturedStdout();
        // A sheet with normals that lean outwards.
        mesh->mVertexCount = 4, mesh->mIndexCount = 6;
        mesh->mVertices = new Vertex_UTx[4];
        for (unsigned int i = 0; i < 4; ++i) {
            const float x = i % 2 ? 2.0f : -2.0f, y = i / 2 ? -1.5f : 1.5f;
            const Vector3 n = Exact::To(Unit(Of(Vector3(x / 3, y / 4, -1))));
            mesh->mVertices[i] =
                Vertex_UTx(x, y, 0, n.x, n.y, n.z, i % 2 ? 1.0f : 0.0f, i / 2 ? 1.0f : 0.0f);
        }
        mesh->mIndices = new unsigned int[6]{0, 1, 2, 2, 1, 3};
        meshes.Reload();
        eye = Vector3(1.5f, 1, -5);
        view = Matrix4::LookAt(eye, Vector3(0.25f, 0, 0), Vector3(0, 1, 0));
        projection = Matrix4::Projection(0.9f, 4.0f / 3, 1, 100);
        world = Matrix4::Translation(0.25f, -0.125f, 0.5f) *
                Matrix4::RotationAxisAngle(Vector3(0.2f, 1, 0.1f), 0.5f);
    }
    IDirect3DTexture9* Get(const char* name) { return *textures.Get(name)->mTexture; }
    Tests::Picture Draw(const std::function<void()>& action) {
        graphic.SetView(view);
        graphic.SetProjection(projection);
        graphic.SetMesh(mesh->mVertexBuffer, 56);
        graphic.SetIndices(mesh->mIndexBuffer);
        graphic.SetBackBufferColor(Ground);
        graphic.BeginScene();
        action();
        graphic.EndScene();
        Tests::Picture picture(SmallWidth, SmallHeight, 0);
        picture.pixels = PictureTest::Picture();
        EXPECT_EQ(picture.pixels.size(), std::size_t{SmallWidth} * SmallHeight);
        picture.pixels.resize(std::size_t{SmallWidth} * SmallHeight);
        return picture;
    }
    /// One texel to a pixel from (left, top) on, in pixels of the screen.
    void Flat() {
        view = Matrix4::Identity;
        projection = Matrix4::orthogonal(SmallWidth, SmallHeight, 0, 1);
    }
    static Matrix4 Place(int left, int top, int width, int height) {
        const auto f = [](double d) { return static_cast<float>(d); };
        return Matrix4::Translation(f(left - 0.5 + width / 2.0), f(top - 0.5 + height / 2.0), 0) *
               Matrix4::Scaling(f(width), f(height), 1);
    }
    using Shade = std::function<std::optional<Vec>(const Point&)>;
    /// Every fifth pixel, but for those within a hair of an edge, and those of which `shade` will
    /// not say. `places` are where the corners of the mesh stand in the world.
    void ExpectMesh(const Tests::Picture& picture, const std::vector<Vec>& places, double tolerance,
                    const Shade& shade) {
        std::array<int, 2> seen = {};
        for (int y = 0; y < SmallHeight; y += 3)
            for (int x = 0; x < SmallWidth; x += 5) {
                bool edge = false;
                std::optional<Vec> color = Color(Ground);
                bool inside = false;
                for (std::size_t t = 0; t < mesh->mIndexCount; t += 3) {
                    std::array<Vec, 3> clip;
                    for (std::size_t i = 0; i < 3; ++i)
                        clip[i] = Exact::Apply(
                            projection,
                            Exact::Apply(view, places[mesh->mIndices[t + i]] + Exact::W));
                    const Vec s = Shares(clip, x, y);
                    const double least = std::min({s.x, s.y, s.z});
                    edge = edge || std::abs(least) < 0.005;
                    if (least < 0)
                        continue;
                    inside = true;
                    color = shade(Between(t, s));
                }
                if (edge || !color)
                    continue;
                ++seen[inside];
                EXPECT_LE(Away(picture.At(x, y), *color), tolerance)
                    << x << ' ' << y << ' ' << Hex(picture.At(x, y));
            }
        EXPECT_GT(seen[0], 500);
        EXPECT_GT(seen[1], 500);
    }
    void ExpectExactImage() {
        Flat();
        Tests::Picture expected(SmallWidth, SmallHeight, Ground),
            white(SmallWidth, SmallHeight, Ground);
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < image.width; ++x)
                if (image.At(x, y) >> 24 >= 8) // else the alpha test takes it out
                    expected.At(100 + x, 50 + y) = image.At(x, y) | 0xFF000000;
        const Matrix4 place = Place(100, 50, 48, 40);
        EXPECT_TRUE(Tests::Same(Draw([&] { graphic.DrawTwoD(place, Get("image")); }), expected));
        // At alpha 1, of which 258 makes the whole, as often as one likes.
        EXPECT_TRUE(Tests::Same(Draw([&] {
                                    for (int i = 0; i < 3; ++i)
                                        graphic.DrawTwoDModulate(place, Get("image"), 1);
                                }),
                                expected));
        white.Fill(7, 9, 37, 29, 0xFFFFFFFF);
        EXPECT_TRUE(
            Tests::Same(Draw([&] { graphic.DrawTwoD(Place(7, 9, 30, 20), nullptr); }), white));
    }
    /// The root goes right by 1 in two seconds; its child, whose joint stands at (1, 0, 0) of the
    /// model, turns about Z by a right angle meanwhile.
    void AddBones() {
        mesh->mSkinned = true, mesh->mBoneCount = 2, mesh->mDuration = 4;
        mesh->mFinalTransforms = new D3DXMATRIX[2];
        mesh->mBones.resize(2);
        mesh->mRoots = {0};
        mesh->mBones[0].mChildren = {1};
        mesh->mBones[1].mParent = 0;
        mesh->mBones[1].mOffset = Matrix4::Translation(-1, 0, 0);
        const Vorn::Quaternion same(Vector3(0, 0, 1), 0), turned(Vector3(0, 0, 1), 1.5707964f);
        mesh->mBones[0].mKeys = {{0, Vector3(), same}, {2, Vector3(1, 0, 0), same}};
        mesh->mBones[1].mKeys = {{0, Vector3(1, 0, 0), same}, {2, Vector3(1, 0, 0), turned}};
        const float weights[] = {1, 0, 0.25f, 0.5f}; // of the root, the rest is its child's
        for (unsigned int i = 0; i < 4; ++i) {
            Vertex_UTx& vertex = mesh->mVertices[i];
            vertex.weights[0] = weights[i], vertex.weights[1] = 1 - weights[i];
            vertex.bones[0] = 0, vertex.bones[1] = 1;
        }
        meshes.Release(), meshes.Reload();
    }
    std::vector<Vec> Posed() const {
        const double part = static_cast<double>(mesh->mTime) / 2;
        std::vector<Vec> places;
        for (unsigned int i = 0; i < 4; ++i) {
            const Vertex_UTx& v = mesh->mVertices[i];
            const Vec at = Of(Vector3(v.x, v.y, v.z));
            const Vec child =
                Exact::X + Exact::Rotate(at - Exact::X, Exact::Z, part * Exact::Pi / 2);
            const auto weight = static_cast<double>(v.weights[0]);
            places.push_back(Exact::Apply(world, part * Exact::X + weight * at +
                                                     (1 - weight) * child + Exact::W));
            places.back().w = 0;
        }
        return places;
    }
    void Lamp() {
        graphic.SetPointLightPosition(lamp);
        graphic.SetPointLightSettings(Vector3(0.875f, 0.75f, 1), Vector3(1, 0.5f, 0.75f),
                                      Vector3(0.125f, 0.25f, 0.375f));
        graphic.CameraPos(eye);
    }
    /// How the lamp's light comes back from a point: its way, and two cosines.
    struct Reflection {
        double distance, facing, mirrored;
    };
    Reflection Reflect(const Point& p, const Vec& modelNormal) const {
        Vec place = Exact::Apply(world, p.place + Exact::W);
        place.w = 0;
        const Vec n = Unit(Exact::Apply(world, modelNormal)), towards = Of(lamp) - place;
        const Vec l = Unit(towards);
        return {Exact::Length(towards), Dot(n, l),
                Dot(2 * Dot(l, n) * n - l, Unit(Of(eye) - place))};
    }
    const Vector3 lamp{-1, 2, -3};

    std::vector<Vec> Places() const {
        std::vector<Vec> places;
        for (unsigned int i = 0; i < mesh->mVertexCount; ++i) {
            const Vertex_UTx& v = mesh->mVertices[i];
            places.push_back(Exact::Apply(world, Of(Vector3(v.x, v.y, v.z)) + Exact::W));
            places.back().w = 0;
        }
        return places;
    }
    /// A texel of `shades`, which stretches over the mesh; none near its border.
    std::optional<Vec> Texel(const Point& p) const {
        const double u = p.u * 4, v = p.v * 4;
        if (std::abs(u - std::round(u)) < 0.02 || std::abs(v - std::round(v)) < 0.02)
            return std::nullopt;
        return Color(shades.At(static_cast<int>(u), static_cast<int>(v)));
    }

    const Tests::Picture image = Tests::Noise(48, 40, 17, 0);
    const Tests::Picture shades = Tests::Noise(4, 4, 18);
    Mesh* mesh = nullptr;
    std::vector<double> beside; // for each corner
    Vector3 eye;
    Matrix4 view, projection, world;

private:
    Point Between(std::size_t first, const Vec& shares) const {
        Point p;
        const double share[] = {shares.x, shares.y, shares.z};
        for (std::size_t i = 0; i < 3; ++i) {
            const Vertex_UTx& v = mesh->mVertices[mesh->mIndices[first + i]];
            p.place = p.place + share[i] * Of(Vector3(v.x, v.y, v.z));
            p.normal = p.normal + share[i] * Of(Vector3(v.nx, v.ny, v.nz));
            p.u += share[i] * static_cast<double>(v.u);
            p.v += share[i] * static_cast<double>(v.v);
            if (!beside.empty())
                p.shade += share[i] * beside[mesh->mIndices[first + i]];
        }
        return p;
    }
};

TEST_F(ShaderPicture, AnImageOfOneTexelToAPixelIsExact) {
    Start();
    ExpectExactImage();
}

TEST_F(ShaderPicture, AModulatedImageMixesByItsAlpha) {
    Start();
    Flat();
    graphic.SetFog(0.25f, -0.125f); // red and blue-green of the file's formula
    IDirect3DDevice9& device = *Vorn::Graphic::GetDevice();
    device.SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    device.SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    const Tests::Picture picture =
        Draw([&] { graphic.DrawTwoDModulate(Place(30, 20, 48, 40), Get("image"), 0.625f); });
    int drawn = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const Vec texel = Color(image.At(x, y));
            const double alpha = texel.w * 0.625;
            if (std::abs(alpha * 255 - 7.5) < 0.6)
                continue; // on the verge of the alpha test
            const Vec tinted = Limited(texel + Vec{0.25, -0.125, 0});
            const Vec color =
                alpha * 255 < 7.5 ? Color(Ground) : alpha * tinted + (1 - alpha) * Color(Ground);
            EXPECT_LE(Away(picture.At(30 + x, 20 + y), color), 2) << x << ' ' << y;
            ++drawn;
        }
    EXPECT_GT(drawn, 1800);
    EXPECT_GE(picture.Count(Ground), SmallWidth * SmallHeight - 48 * 40);
}

TEST_F(ShaderPicture, AnUnlitMeshShowsItsTextureInPerspective) {
    Start();
    const auto draw = [&] {
        return Draw([&] { graphic.BasicShaderDraw(mesh, world, Get("shades")); });
    };
    const Tests::Picture picture = draw();
    ExpectMesh(picture, Places(), 0.01, [&](const Point& p) { return Texel(p); });
    ExpectMesh(Draw([&] { graphic.BasicShaderDraw(mesh, world, nullptr); }), Places(), 0.01,
               [](const Point&) {
                   return Vec{1, 1, 1, 1};
               });
    // A new device draws the same, and what was compiled and linked is there still.
    const VornPlatform::ShaderCounters counters = VornPlatform::CountShaders();
    engine.Reset();
    EXPECT_TRUE(Tests::Same(draw(), picture));
    EXPECT_EQ(VornPlatform::CountShaders(), counters);
}

TEST_F(ShaderPicture, ASkinnedMeshIsPosedByItsBones) {
    Start();
    AddBones();
    // A raw shader reads by the device's states.
    Vorn::Graphic::GetDevice()->SetSamplerState(0, D3DSAMP_MAGFILTER, D3DTEXF_POINT);
    for (const float dt : {0.5f, 0.75f}) {
        const Tests::Picture picture = Draw([&] {
            graphic.SetTexture(Get("shades")); // which the path takes as it stands
            graphic.SetSkelMatrix(*mesh, world, dt);
        });
        ExpectMesh(picture, Posed(), 0.01, [&](const Point& p) { return Texel(p); });
    }
    EXPECT_EQ(mesh->mTime, 1.25f);
}

/// The files of the repository.
class ShippedPicture : public ShaderPicture {
protected:
    ShippedPicture() : ShaderPicture(true) {}

    Vec Fogged(const Vec& color, const Point& p, double front, double back) const {
        const Vec seen = Exact::Apply(view, Exact::Apply(world, p.place + Exact::W));
        const double fog = Limited((seen.z - front) / (back - front));
        return (1 - fog) * color + fog * Vec{0.5, 0.55, 0.6};
    }
};

TEST_F(ShippedPicture, AnImageOfOneTexelToAPixelIsExact) {
    Start();
    ExpectExactImage();
}

TEST_F(ShippedPicture, UnlitMeshesAreWhiteWithoutATextureAndShadowsHalfDark) {
    Start();
    ExpectMesh(Draw([&] { graphic.BasicShaderDraw(mesh, world, nullptr); }), Places(), 0.01,
               [](const Point&) {
                   return Vec{1, 1, 1};
               });
    ExpectMesh(Draw([&] { graphic.ShadowMap(mesh, world); }), Places(), 1,
               [](const Point&) { return 0.5 * Color(Ground); });
}

TEST_F(ShippedPicture, ALitMeshIsThatOfItsFormulaInFog) {
    Start();
    folder.File("data/img/tone", Tests::Tga(0xFFC08040));
    textures.Load("tone");
    IDirect3DTexture9* texture = Get("tone");
    Vorn::Material material;
    material.FromText(R"({"Ambient": [0.5, 0.25, 0.375, 0], "Diffuse": [0.75, 1, 0.5, 1],
        "Emissive": [0.03125, 0, 0.0625, 0], "Specular": [0.5, 0.25, 1, 0], "Shininess": 12,
        "Texture": "tone"})");
    Lamp();
    graphic.SetFog(4, 8);
    world = world * Matrix4::Scaling(1, 1.25f, 2); // which tilts normals
    const auto draw = [&] {
        return Draw([&] {
            graphic.PhongLightingDraw(mesh, world, texture, &material, 0xFF80C0FFu, 0x00100804u);
        });
    };
    const auto tinted = [](const Vec& color) {
        return Limited(Times(Limited(color), {128 / 255.0, 192 / 255.0, 1}) +
                       Vec{16 / 255.0, 8 / 255.0, 4 / 255.0});
    };
    ExpectMesh(draw(), Places(), 1, [&](const Point& p) {
        const Vec normal = Times(p.normal, {1, 1 / 1.25 / 1.25, 1 / 4.0}); // for the scale twice
        const Reflection r = Reflect(p, normal);
        const double strength = 1 / (1 + r.distance * r.distance / 1e4);
        const Vec ambient = 0.4 * Vec{0.9, 0.9, 0.9} + strength * Vec{0.125, 0.25, 0.375};
        const Vec matt =
            Vec{0.03125, 0, 0.0625} + Times({0.5, 0.25, 0.375}, ambient) +
            strength * std::max(r.facing, 0.0) * Times({0.75, 1, 0.5}, {0.875, 0.75, 1});
        const Vec shine = strength * (r.facing > 0 ? std::pow(std::max(r.mirrored, 0.0), 12) : 0) *
                          Times({0.5, 0.25, 1}, {1, 0.5, 0.75});
        return Fogged(tinted(Times(Color(0xFFC08040), matt) + shine), p, 4, 8);
    });
    material = Vorn::Material(); // no part in lighting
    texture = nullptr;           // and white
    ExpectMesh(draw(), Places(), 1, [&](const Point& p) {
        return Fogged(tinted({1, 1, 1}), p, 4, 8);
    });
}

TEST_F(ShippedPicture, ASkinnedMeshIsPosedAndShadedByItsNormals) {
    Start();
    AddBones();
    const Tests::Picture picture = Draw([&] { graphic.SetSkelMatrix(*mesh, world, 1.25f); });
    const std::vector<Vec> places = Posed();
    for (unsigned int i = 0; i < 4; ++i) {
        const Vertex_UTx& v = mesh->mVertices[i];
        const Vec n = Of(Vector3(v.nx, v.ny, v.nz));
        const auto weight = static_cast<double>(v.weights[0]);
        const Vec turned =
            weight * n + (1 - weight) * Exact::Rotate(n, Exact::Z, 1.25 * Exact::Pi / 4);
        beside.push_back(0.65 + 0.35 * Dot(Unit(turned), Unit({0.3, 1, -0.5})));
    }
    ExpectMesh(picture, places, 1, [&](const Point& p) { return p.shade * Vec{1, 1, 1}; });
}

} // namespace
