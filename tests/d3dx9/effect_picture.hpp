// SPDX-License-Identifier: MIT
//
// Effects drawn into a small target and compared with what the same formulas give in double.
//
//   const Held<ID3DXEffect> effect = Compile(Shaded("", "return float4(t, 0, 1);"));
//   Render(effect);
//   ExpectPicture([](double u, double v) { return Color{u, v, 0, 1}; });
#pragma once

#include "tests/support/device.hpp"

#include <array>
#include <cmath>
#include <functional>
#include <sstream>

namespace Tests {

/// Red, green, blue, alpha. What lies outside 0 to 1 counts as the nearer of the two.
using Color = std::array<double, 4>;

class EffectPictureTest : public DeviceTest {
protected:
    static constexpr int Size = 16;
    /// A value may fall to either side of a step of 8 bits.
    static constexpr double Step = 1.01 / 255;

    void SetUp() override {
        DeviceTest::SetUp();
        target = Target(Size, Size);
        ASSERT_EQ(D3D_OK, device->SetRenderTarget(0, Level(target)));
        Set(D3DRS_LIGHTING, FALSE);
        Set(D3DRS_CULLMODE, D3DCULL_NONE);
        Clear(0);
    }

    static std::string TextOf(ID3DXBuffer* buffer) {
        return buffer ? static_cast<const char*>(buffer->GetBufferPointer()) : "";
    }
    /// Raises with the compiler's text: a test cannot go on without its effect.
    Held<ID3DXEffect> Compile(const std::string& text, const D3DXMACRO* macros = nullptr) {
        Held<ID3DXEffect> effect;
        Held<ID3DXBuffer> errors;
        const HRESULT result =
            D3DXCreateEffect(device, text.data(), static_cast<UINT>(text.size()), macros, nullptr,
                             0, nullptr, effect.Out(), errors.Out());
        if (result != D3D_OK || !effect)
            throw std::runtime_error("no effect: " + TextOf(errors) + "\n" + text);
        return effect;
    }
    Held<ID3DXEffect> Load(const std::string& path) {
        Held<ID3DXEffect> effect;
        Held<ID3DXBuffer> errors;
        if (D3DXCreateEffectFromFileA(device, path.c_str(), nullptr, nullptr, 0, nullptr,
                                      effect.Out(), errors.Out()) != D3D_OK)
            throw std::runtime_error("no effect: " + TextOf(errors));
        return effect;
    }
    /// A whole effect around `body`, which is that of a function of the coordinates `t`; they go
    /// from 0 to 1 over the target and are those of pixel centres. The function is called by the
    /// pixel stage, or by the vertex stage for what Points draws.
    static std::string Shaded(const std::string& globals, const std::string& body,
                              bool inVertices = false) {
        return globals + "\nfloat4 Value(float2 t) {\n" + body + "\n}\n" +
               (inVertices ? R"(
void VertexMain(float4 p : POSITION, float2 t : TEXCOORD0, out float4 position : POSITION,
                out float4 value : TEXCOORD0) {
    position = p;
    value = Value(t);
}
float4 PixelMain(float4 value : TEXCOORD0) : COLOR { return value; })"
                           : R"(
void VertexMain(float4 p : POSITION, float2 t : TEXCOORD0, out float4 position : POSITION,
                out float2 coords : TEXCOORD0) {
    position = p;
    coords = t;
}
float4 PixelMain(float2 t : TEXCOORD0) : COLOR { return Value(t); })") +
               "\ntechnique Shaded { pass P0 { VertexShader = compile vs_3_0 VertexMain(); "
               "PixelShader = compile ps_3_0 PixelMain(); } }\n";
    }

    /// All passes of a technique, without a name of the first one.
    void Render(ID3DXEffect* effect, const char* technique, const std::function<void()>& draw) {
        if (technique) {
            ASSERT_EQ(D3D_OK, effect->SetTechnique(technique)) << technique;
        }
        UINT passes = 0;
        ASSERT_EQ(D3D_OK, effect->Begin(&passes, 0));
        EXPECT_GT(passes, 0u);
        for (UINT pass = 0; pass < passes; ++pass) {
            ASSERT_EQ(D3D_OK, effect->BeginPass(pass));
            draw();
            EXPECT_EQ(D3D_OK, effect->EndPass());
        }
        EXPECT_EQ(D3D_OK, effect->End());
    }
    void Render(ID3DXEffect* effect, const char* technique = nullptr) {
        Render(effect, technique, [this] { Cover(); });
    }
    /// Every pixel once. Clip space, and with the transforms of a new device the fixed function's.
    static std::vector<Corner> Whole(D3DCOLOR color = white, float z = 0.5f) {
        const float half = 1.0f / Size;
        return Corners({-1 - half, 1 + half, 1 - half, -1 + half}, color, z);
    }
    void Cover(D3DCOLOR color = white, float z = 0.5f) {
        Draw(D3DPT_TRIANGLESTRIP, Whole(color, z), imageFvf);
    }
    /// A point in each pixel.
    void Points() {
        std::vector<Corner> points;
        for (int i = 0; i < Size * Size; ++i) {
            const float x = static_cast<float>(i % Size), y = static_cast<float>(i / Size);
            points.push_back({x * 2 / Size - 1, 1 - y * 2 / Size, 0.5f, white, (x + 0.5f) / Size,
                              (y + 0.5f) / Size});
        }
        Draw(D3DPT_POINTLIST, points, imageFvf);
    }
    /// Vertices as a declaration has them, which stays set.
    template <typename Vertex>
    void DrawWith(const std::vector<D3DVERTEXELEMENT9>& elements, D3DPRIMITIVETYPE type,
                  const std::vector<Vertex>& vertices) {
        Held<IDirect3DVertexDeclaration9> declaration;
        ASSERT_EQ(D3D_OK, device->CreateVertexDeclaration(elements.data(), declaration.Out()));
        ASSERT_EQ(D3D_OK, device->SetVertexDeclaration(declaration));
        const auto n = static_cast<UINT>(vertices.size());
        const UINT counts[] = {0, n, n / 2, n - 1, n / 3, n - 2, n - 2};
        device->BeginScene();
        EXPECT_EQ(D3D_OK,
                  device->DrawPrimitiveUP(type, counts[type], vertices.data(), sizeof(Vertex)));
        device->EndScene();
    }

    Picture Shot() { return Read(target); }
    static Color ColorOf(std::uint32_t packed) {
        const std::array<int, 4> c = Channels(packed);
        return {c[0] / 255., c[1] / 255., c[2] / 255., c[3] / 255.};
    }
    static testing::AssertionResult Near(const Color& got, const Color& expected,
                                         double tolerance = Step) {
        double worst = 0;
        std::ostringstream text;
        text.precision(4);
        for (std::size_t i = 0; i < 4; ++i) {
            const double wanted = std::clamp(expected[i], 0., 1.);
            // A NaN is never near.
            const double distance = std::abs(got[i] - wanted);
            worst = distance <= tolerance ? worst : 1;
            text << (i ? ", " : "") << got[i] << " for " << wanted;
        }
        return worst > 0 ? testing::AssertionFailure() << text.str()
                         : testing::AssertionSuccess() << text.str();
    }
    void ExpectPixel(int x, int y, const Color& expected, double tolerance = Step) {
        EXPECT_TRUE(Near(ColorOf(Shot().At(x, y)), expected, tolerance)) << x << ", " << y;
    }
    /// The formula gets the coordinates of each pixel's centre.
    void ExpectPicture(const std::function<Color(double u, double v)>& expected,
                       double tolerance = Step) {
        const Picture shot = Shot();
        int wrong = 0;
        for (int y = 0; y < Size; ++y)
            for (int x = 0; x < Size; ++x) {
                const auto near = Near(ColorOf(shot.At(x, y)),
                                       expected((x + 0.5) / Size, (y + 0.5) / Size), tolerance);
                if (!near && wrong++ == 0)
                    ADD_FAILURE() << "first at (" << x << ", " << y << "): " << near.message();
            }
        if (wrong) {
            ADD_FAILURE() << wrong << " pixels differ";
        }
    }
    void ExpectColor(const Color& expected, double tolerance = Step) {
        ExpectPicture([&expected](double, double) { return expected; }, tolerance);
    }

    Held<IDirect3DTexture9> target;
};

} // namespace Tests
