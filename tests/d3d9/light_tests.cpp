// SPDX-License-Identifier: MIT
//
// Light and transforms of vertices.
#include "tests/support/device.hpp"

#include <cmath>

namespace Tests {

struct LitCorner {
    float x, y, z, nx, ny, nz;
    D3DCOLOR color;
};
constexpr DWORD litFvf = 0x52;

class LightTest : public DeviceTest {
protected:
    static constexpr double depth = 0.5; // of the quad
    void SetUp() override {
        DeviceTest::SetUp();
        Set(D3DRS_CULLMODE, D3DCULL_NONE);
    }
    /// A square around the axis of Z whose corners lie alike to what stands on that axis, so that
    /// one colour fills it. In the space of the start: X and Y from -1 to 1.
    std::uint32_t Square(D3DCOLOR color, float size = 0.5f, float nz = -1, float length = 1) {
        Clear(0xff123456);
        std::vector<LitCorner> corners;
        for (const auto& [x, y] :
             {std::pair(-size, size), {size, size}, {-size, -size}, {size, -size}})
            corners.push_back({x, y, depth, 0, 0, nz * length, color});
        Draw(D3DPT_TRIANGLESTRIP, corners, litFvf);
        const Picture screen = Screen();
        EXPECT_LE(Distance(screen.At(24, 24), screen.At(40, 40)), 1);
        return screen.At(32, 32);
    }
    static D3DLIGHT9 Point(float z, float range, float a0, float a1 = 0, float a2 = 0) {
        D3DLIGHT9 light = {};
        light.Type = D3DLIGHT_POINT;
        light.Diffuse = {1, 0.5f, 0.25f, 1};
        light.Position = {0, 0, z};
        light.Range = range;
        light.Attenuation0 = a0, light.Attenuation1 = a1, light.Attenuation2 = a2;
        return light;
    }
    /// By the published formula, for the corners of Square.
    static std::uint32_t Lit(const D3DLIGHT9& light, D3DCOLOR color, double size, double nz = -1) {
        const double z = static_cast<double>(light.Position.z) - depth;
        const double d = std::sqrt(2 * size * size + z * z);
        const double facing = std::max(0., nz * z / d);
        const double fade = static_cast<double>(light.Attenuation0) +
                            static_cast<double>(light.Attenuation1) * d +
                            static_cast<double>(light.Attenuation2) * d * d;
        const double weight = d > static_cast<double>(light.Range) ? 0 : facing / fade;
        const auto c = Channels(color);
        const auto part = [weight](float light_, int channel) {
            return static_cast<int>(
                std::min(255., weight * static_cast<double>(light_) * channel + 0.5));
        };
        return Packed(part(light.Diffuse.r, c[0]), part(light.Diffuse.g, c[1]),
                      part(light.Diffuse.b, c[2]));
    }
};

TEST_F(LightTest, LightingIsOnAndWithoutALightAllIsBlackButAlphaTheVertexs) {
    const Held<IDirect3DTexture9> target = Target();
    device->SetRenderTarget(0, Level(target));
    Clear(white);
    Draw<LitCorner>(D3DPT_TRIANGLESTRIP,
                    {{-1, 1, 0, 0, 0, -1, 0x80ffffff},
                     {1, 1, 0, 0, 0, -1, 0x80ffffff},
                     {-1, -1, 0, 0, 0, -1, 0x80ffffff},
                     {1, -1, 0, 0, 0, -1, 0x80ffffff}},
                    litFvf);
    EXPECT_EQ(Read(target).At(32, 32), 0x80000000u);
    device->SetRenderTarget(0, BackBuffer());
    Set(D3DRS_LIGHTING, FALSE);
    EXPECT_EQ(Square(0xff4080c0), 0xff4080c0) << "off: the vertex colour, whatever the normal";
}

TEST_F(LightTest, AFormatWithoutNormalsIsBlackUnderALight) {
    device->LightEnable(0, TRUE);
    Draw(D3DPT_TRIANGLESTRIP, Corners({-1, 1, 1, -1}, white), flatFvf);
    EXPECT_EQ(Screen().At(32, 32), black);
}

TEST_F(LightTest, ALightThatWasNeverSetIsWhiteAndShinesAlongZ) {
    EXPECT_EQ(D3D_OK, device->LightEnable(3, TRUE));
    EXPECT_EQ(Square(0xff4080c0), 0xff4080c0);
    EXPECT_EQ(Square(0xff4080c0, 0.5f, 1), black) << "seen from behind";
    EXPECT_EQ(D3D_OK, device->LightEnable(3, FALSE));
    EXPECT_EQ(Square(0xff4080c0), black);
}

TEST_F(LightTest, APointLightFollowsItsFormulaAndEndsAtItsRange) {
    // A float's rounding and that of the colour: 1.
    const float corner = std::sqrt(0.5f * 0.5f * 2 + 2 * 2); // distance of a corner from z = -1.5
    const D3DLIGHT9 lights[] = {Point(-1.5f, 100, 0.1f),
                                Point(-1.5f, 100, 1),
                                Point(-0.25f, 100, 2),
                                Point(-1.5f, 100, 0, 1),
                                Point(-1.5f, 100, 0.5f, 0.25f, 0.125f),
                                Point(-1.5f, corner * 1.001f, 1),
                                Point(-1.5f, corner * 0.999f, 1),
                                Point(2, 100, 1)};
    for (const D3DLIGHT9& light : lights) {
        ASSERT_EQ(D3D_OK, device->SetLight(1, &light));
        ASSERT_EQ(D3D_OK, device->LightEnable(1, TRUE));
        for (const D3DCOLOR color : {0xffffffffu, 0xff206080u}) {
            const std::uint32_t expected = Lit(light, color, 0.5), got = Square(color);
            EXPECT_LE(Distance(got, expected), 1)
                << std::hex << got << " for " << expected << std::dec << ", z " << light.Position.z
                << " range " << light.Range << " a0 " << light.Attenuation0;
        }
    }
}

TEST_F(LightTest, NormalsAreNotNormalisedAfterAScalingWorld) {
    device->LightEnable(0, TRUE); // straight on, full
    EXPECT_LE(Distance(Square(0xff808080, 0.5f, -1, 0.5f), 0xff404040), 1) << "short normal";
    D3DXMATRIX world;
    D3DXMatrixIdentity(&world);
    world._11 = world._22 = world._33 = 2, world._43 = -0.5f;
    device->SetTransform(D3DTS_WORLD, &world);
    // Normals go by the inverse transpose: twice as large a world halves them.
    EXPECT_LE(Distance(Square(0xff808080, 0.25f), 0xff404040), 1);
}

TEST_F(LightTest, LightsStandInTheWorldWhateverTheView) {
    const D3DLIGHT9 light = Point(-1.5f, 100, 1);
    device->SetLight(0, &light), device->LightEnable(0, TRUE);
    D3DXMATRIX view, projection;
    D3DXMatrixTranslation(&view, 0.25f, -0.5f, 3);
    D3DXMatrixTranslation(&projection, -0.25f, 0.5f, -3);
    device->SetTransform(D3DTS_VIEW, &view), device->SetTransform(D3DTS_PROJECTION, &projection);
    EXPECT_LE(Distance(Square(white), Lit(light, white, 0.5)), 1);
}

TEST_F(LightTest, LightsAddUpAndSaturate) {
    D3DLIGHT9 light = {};
    light.Type = D3DLIGHT_DIRECTIONAL;
    light.Direction = {0, 0, 7}; // its length is of no effect
    for (DWORD i = 0; i < 8; ++i) {
        light.Diffuse = {i == 0 ? 0.25f : 0, 0.125f, 0.25f, 0};
        ASSERT_EQ(D3D_OK, device->SetLight(i, &light));
        ASSERT_EQ(D3D_OK, device->LightEnable(i, TRUE));
        const int n = static_cast<int>(i) + 1;
        EXPECT_LE(
            Distance(Square(0xffc8c8c8), Packed(50, std::min(200, 25 * n), std::min(255, 50 * n))),
            1)
            << n;
    }
}

TEST_F(LightTest, TransformsComeBackBitForBit) {
    Dice dice(16);
    for (const DWORD which : {2u, 3u, 16u, 256u}) {
        const auto state = static_cast<D3DTRANSFORMSTATETYPE>(which);
        D3DXMATRIX identity, m;
        EXPECT_EQ(D3D_OK, device->GetTransform(state, &m));
        D3DXMatrixIdentity(&identity);
        EXPECT_EQ(0, std::memcmp(&m, &identity, sizeof m)) << which;
        std::uint32_t in[16], out[16];
        for (std::uint32_t& bits : in) // NaNs, infinities and negative zeros too
            bits = dice(4) ? dice.Bits() : 0x7f800000u ^ dice.Bits() << 22;
        std::memcpy(&m, in, sizeof m);
        EXPECT_EQ(D3D_OK, device->SetTransform(state, &m));
        std::memset(&m, 0, sizeof m);
        EXPECT_EQ(D3D_OK, device->GetTransform(state, &m));
        std::memcpy(out, &m, sizeof m);
        EXPECT_EQ(0, std::memcmp(in, out, sizeof in)) << which;
    }
}

// A lit, textured mesh in perspective against the same, pixel by pixel in doubles.

struct MeshVertex {
    float x, y, z, nx, ny, nz;
    D3DCOLOR color;
    float u, v;
    float unused[5]; // weights and bones of a real mesh
};
static_assert(sizeof(MeshVertex) == 56);

class MeshTest : public DeviceTest {
protected:
    struct Row {
        double c[4];
        Row Times(const D3DMATRIX& m) const {
            Row result = {};
            for (std::size_t j = 0; j < 4; ++j)
                for (std::size_t i = 0; i < 4; ++i)
                    result.c[j] += c[i] * static_cast<double>(m.m[i][j]);
            return result;
        }
    };
    struct Seen {
        double x, y, z, w; // pixels, depth
        double value[5];   // r, g, b, u, v
    };
    /// What covers pixel x, y of a triangle: depth and values, or how unsure that is.
    static int Sample(const Seen& a, const Seen& b, const Seen& c, double x, double y,
                      double* out) {
        const auto side = [](const Seen& p, const Seen& q, double px, double py) {
            return (q.x - p.x) * (py - p.y) - (q.y - p.y) * (px - p.x);
        };
        const double area = side(a, b, c.x, c.y);
        if (area <= 0)
            return 0; // counter-clockwise: culled
        const double weights[] = {side(b, c, x, y) / area, side(c, a, x, y) / area,
                                  side(a, b, x, y) / area};
        const double edges[] = {std::hypot(c.x - b.x, c.y - b.y), std::hypot(a.x - c.x, a.y - c.y),
                                std::hypot(b.x - a.x, b.y - a.y)};
        double inside = 1e9; // distance from the nearest edge
        for (std::size_t i = 0; i < 3; ++i)
            inside = std::min(inside, weights[i] * area / edges[i]);
        if (inside < -1. / 8)
            return 0;
        const Seen* const corners[] = {&a, &b, &c};
        double w = 0;
        std::fill_n(out, 6, 0.);
        for (std::size_t i = 0; i < 3; ++i) {
            w += weights[i] / corners[i]->w;
            out[5] += weights[i] * corners[i]->z;
        }
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t k = 0; k < 5; ++k)
                out[k] += weights[i] / corners[i]->w * corners[i]->value[k] / w;
        return inside < 1. / 8 ? 1 : 2;
    }
};

TEST_F(MeshTest, ATexturedLitMeshInPerspectiveIsThePictureOfAPlainRasteriser) {
    constexpr int side = 128, grid = 7;
    Open(Parameters(side, side));
    std::vector<MeshVertex> mesh;
    std::vector<DWORD> indices;
    for (int j = 0; j <= grid; ++j)
        for (int i = 0; i <= grid; ++i) {
            const double x = -1 + 2. * i / grid, z = -1 + 2. * j / grid;
            const double y = 0.2 * std::sin(3 * x) * std::cos(2 * z);
            const double dx = 0.6 * std::cos(3 * x) * std::cos(2 * z);
            const double dz = -0.4 * std::sin(3 * x) * std::sin(2 * z);
            const double n = std::sqrt(dx * dx + 1 + dz * dz);
            const auto f = [](double value) { return static_cast<float>(value); };
            mesh.push_back({f(x),
                            f(y),
                            f(z),
                            f(-dx / n),
                            f(1 / n),
                            f(-dz / n),
                            Packed(255 - 20 * i, 255, 100 + 20 * j),
                            f(0.1 + 0.8 * i / grid),
                            f(0.9 - 0.8 * j / grid),
                            {NAN, 1e9f, -1, 0, NAN}});
        }
    for (DWORD j = 0; j < grid; ++j)
        for (DWORD i = 0; i < grid; ++i) {
            const DWORD a = j * (grid + 1) + i, b = a + 1, c = a + grid + 1, d = c + 1;
            indices.insert(indices.end(), {a, c, b, b, c, d});
        }
    Picture ramp(16, 16, 0); // smooth, so that filtering hardly matters
    for (int y = 0; y < 16; ++y)
        for (int x = 0; x < 16; ++x)
            ramp.At(x, y) = Packed(255 - 8 * x, 120 + 8 * y, 135 + 4 * x + 4 * y);

    const D3DXVECTOR3 eye(0.5f, 1.8f, -2.5f), at(0, 0, 0), up(0, 1, 0), axis(0, 1, 0);
    D3DXQUATERNION turn;
    D3DXMATRIX world, view, projection;
    D3DXMatrixRotationQuaternion(&world, D3DXQuaternionRotationAxis(&turn, &axis, 0.6f));
    world._42 = 0.1f;
    D3DXMatrixLookAtLH(&view, &eye, &at, &up);
    D3DXMatrixPerspectiveFovLH(&projection, 0.9f, 1, 1, 10);
    device->SetTransform(D3DTS_WORLD, &world);
    device->SetTransform(D3DTS_VIEW, &view);
    device->SetTransform(D3DTS_PROJECTION, &projection);
    D3DLIGHT9 light = {};
    light.Type = D3DLIGHT_POINT;
    light.Diffuse = {1, 0.9f, 0.8f, 1};
    light.Position = {-1, 2, -1};
    light.Range = 50, light.Attenuation0 = 0.4f, light.Attenuation1 = 0.25f;
    device->SetLight(1, &light), device->LightEnable(1, TRUE);

    const Held<IDirect3DTexture9> texture = Texture(ramp);
    const auto vertexBuffer = Vertices(mesh, 0x152, D3DPOOL_DEFAULT);
    const auto indexBuffer = Indices(indices, D3DPOOL_DEFAULT);
    device->SetTexture(0, texture);
    Sampler(D3DSAMP_MAGFILTER, D3DTEXF_LINEAR), Sampler(D3DSAMP_MINFILTER, D3DTEXF_LINEAR);
    device->SetFVF(0x152);
    device->SetStreamSource(0, vertexBuffer, 0, 56);
    device->SetIndices(indexBuffer);
    device->BeginScene();
    EXPECT_EQ(D3D_OK,
              device->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, static_cast<UINT>(mesh.size()),
                                           0, static_cast<UINT>(indices.size() / 3)));
    device->EndScene();
    const Picture got = Screen();

    std::vector<Seen> seen;
    for (const MeshVertex& v : mesh) {
        const auto d = [](float value) { return static_cast<double>(value); };
        const Row position = Row{{d(v.x), d(v.y), d(v.z), 1}}.Times(world);
        const Row normal = Row{{d(v.nx), d(v.ny), d(v.nz), 0}}.Times(world);
        const Row clip = position.Times(view).Times(projection);
        const double to[] = {d(light.Position.x) - position.c[0],
                             d(light.Position.y) - position.c[1],
                             d(light.Position.z) - position.c[2]};
        const double far = std::sqrt(to[0] * to[0] + to[1] * to[1] + to[2] * to[2]);
        const double facing =
            (normal.c[0] * to[0] + normal.c[1] * to[1] + normal.c[2] * to[2]) / far;
        const double weight = std::max(0., facing) / (0.4 + 0.25 * far);
        const auto c = Channels(v.color);
        const double w = clip.c[3];
        seen.push_back({(clip.c[0] / w + 1) * side / 2,
                        (1 - clip.c[1] / w) * side / 2,
                        clip.c[2] / w,
                        w,
                        {std::min(255., weight * c[0] * d(light.Diffuse.r)),
                         std::min(255., weight * c[1] * d(light.Diffuse.g)),
                         std::min(255., weight * c[2] * d(light.Diffuse.b)), d(v.u), d(v.v)}});
    }
    int sure = 0;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            double best[6] = {0, 0, 0, 0, 0, 1};
            bool unsure = false, covered = false;
            for (std::size_t i = 0; i < indices.size(); i += 3) {
                double values[6];
                const int how = Sample(seen[indices[i]], seen[indices[i + 1]], seen[indices[i + 2]],
                                       x, y, values);
                unsure |= how == 1;
                if (how == 2 && values[5] < best[5])
                    std::copy_n(values, 6, best), covered = true;
            }
            if (unsure)
                continue; // an edge passes within an eighth of a pixel
            std::uint32_t expected = black;
            if (covered) {
                const double s = best[3] * 16 - 0.5, t = best[4] * 16 - 0.5;
                const double texel[] = {255 - 8 * s, 120 + 8 * t, 135 + 4 * s + 4 * t};
                int c[3];
                for (std::size_t i = 0; i < 3; ++i)
                    c[i] = static_cast<int>(best[i] * texel[i] / 255 + 0.5);
                expected = Packed(c[0], c[1], c[2]);
                ++sure;
            }
            // Sub-pixels of 1/256 of the corners, 8 bits of the filter's weights, one rounding.
            ASSERT_LE(Distance(got.At(x, y), expected), 3)
                << x << ", " << y << std::hex << ": " << got.At(x, y) << " for " << expected;
        }
    EXPECT_GT(sure, side * side / 8) << "too little was compared";
}

} // namespace Tests
