// SPDX-License-Identifier: MIT
//
// Where shaders meet the device: semantics between vertices, stages and pixels, states of passes,
// the fixed function beside shaders, and shaders without an effect.
#include "tests/d3dx9/effect_picture.hpp"

#include <random>

namespace Tests {
namespace {

class EffectStageTest : public EffectPictureTest {
protected:
    /// A technique of one pass with the two entries.
    static std::string Pass(const std::string& vertex, const std::string& pixel,
                            const std::string& states = {}) {
        return "\ntechnique T { pass P { VertexShader = " + vertex + "; PixelShader = " + pixel +
               "; " + states + " } }\n";
    }
    void RenderText(const std::string& text) { Render(Compile(text)); }
    DWORD State(D3DRENDERSTATETYPE state) {
        DWORD value = 0;
        EXPECT_EQ(D3D_OK, device->GetRenderState(state, &value));
        return value;
    }
};
const std::string compiled = "compile vs_3_0 V()", compiledPixels = "compile ps_3_0 P()";

TEST_F(EffectStageTest, StagesMeetBySemanticWhateverTheirOrderAndWidth) {
    RenderText(R"(
struct Out { float4 second : TEXCOORD1; float4 c : COLOR0; float4 pos : POSITION; float4 first : texcoord; float third : TexCoord2; };
Out V(float2 t : TEXCOORD0, float4 p : Position0) {
    Out o; o.pos = p; o.first = float4(t, 0.9, 0.8); o.second = float4(0.25, 0.5, t); o.c = t.x * 4; o.third = t.y; return o;
}
struct In { float third : TEXCOORD2; float2 first : TEXCOORD0; };
float4 P(In i, float4 c : COLOR, float missing : TEXCOORD7, float3 second : TEXCOORD1) : Color0 {
    return float4(i.first, second.z * 0.5 + missing, i.third * 0.5 + c.x * 0.1);
})" + Pass(compiled, compiledPixels));
    ExpectPicture([](double u, double v) { return Color{u, v, u / 2, v / 2 + u * .4}; });
}

TEST_F(EffectStageTest, OutParametersTakeThePlaceOfAResult) {
    RenderText(R"(
struct Base { float4 p : POSITION; };
struct Whole { Base base; struct { float2 t : TEXCOORD0; } more; };
void V(in Whole i, inout float4 c : COLOR0, out Whole o) { o = i; c.g *= i.more.t.x; }
void P(Whole i, float4 c : COLOR0, out float4 result : COLOR0, out half4 other : COLOR1) {
    result = float4(c.rg, i.more.t.y, 1); other = 0.5;
})" + Pass(compiled, compiledPixels));
    ExpectPicture([](double u, double v) { return Color{1, u, v, 1}; });
}

TEST_F(EffectStageTest, ArgumentsOfCompileAreConstantsOfTheShader) {
    const Held<ID3DXEffect> effect = Compile(R"(
float Amount = 0.25; static const float Fixed = 0.5; float4 Tint = { 0.1, 0.2, 0.3, 1 };
float4 Main(float4 p : POSITION, inout float2 t : TEXCOORD0, uniform float scale) : POSITION { t *= scale; return p; }
float4 P(float2 t : TEXCOORD0, uniform bool turned, uniform int count, uniform float4 tint, uniform float k = 0.0) : COLOR {
    float4 c = 0; for (int i = 0; i < count; i++) c += tint * k;
    return c + (turned ? float4(t.yx, 0, 0) : float4(t, 0, 0)) * 0.5;
}
PixelShader kept = compile ps_2_0 P(false, 1, Tint, Amount * 2);
technique First { pass P { VertexShader = compile vs_2_0 Main(1); PixelShader = compile ps_2_0 P(true, 2, Tint, Fixed); } }
technique Second { pass P { VertexShader = compile vs_2_0 Main(0.5); PixelShader = compile ps_2_a P(false, 1, float4(1, 1, 0.5, 1), Amount); } }
technique Third { pass P { VertexShader = compile vs_1_1 Main(1); PixelShader = (kept); } })");
    Render(effect, "First");
    ExpectPicture([](double u, double v) { return Color{v / 2 + .1, u / 2 + .2, .3, 1}; });
    effect->SetFloat("Amount", 0.5f);
    Render(effect, "Second");
    ExpectPicture([](double u, double v) { return Color{u / 4 + .5, v / 4 + .5, .25, .5}; });
    const D3DXVECTOR4 tint(0.2f, 0.1f, 1, 1);
    EXPECT_EQ(D3D_OK, effect->SetVector("Tint", &tint));
    Render(effect, "Third");
    ExpectPicture([](double u, double v) { return Color{u / 2 + .2, v / 2 + .1, 1, 1}; });
}

TEST_F(EffectStageTest, VerticesAreReadByUsage) {
    struct Vertex {
        BYTE bones[4];
        D3DCOLOR color;
        float weight;
        float tangent[4], binormal[3];
        float place[2];
        D3DCOLOR second;
    };
    const std::vector<D3DVERTEXELEMENT9> elements = {
        {0, 0, D3DDECLTYPE_UBYTE4, 0, D3DDECLUSAGE_BLENDINDICES, 0},
        {0, 4, D3DDECLTYPE_D3DCOLOR, 0, D3DDECLUSAGE_COLOR, 0},
        {0, 8, D3DDECLTYPE_FLOAT1, 0, D3DDECLUSAGE_BLENDWEIGHT, 0},
        {0, 12, D3DDECLTYPE_FLOAT4, 0, D3DDECLUSAGE_TANGENT, 0},
        {0, 28, D3DDECLTYPE_FLOAT3, 0, D3DDECLUSAGE_BINORMAL, 0},
        {0, 40, D3DDECLTYPE_FLOAT2, 0, D3DDECLUSAGE_POSITION, 0},
        {0, 48, D3DDECLTYPE_D3DCOLOR, 0, D3DDECLUSAGE_COLOR, 1},
        D3DDECL_END()};
    std::vector<Vertex> quad;
    for (const Corner& c : Whole())
        quad.push_back({{2, 7, 0, 255},
                        0x80ff4000,
                        .5f,
                        {.1f, .2f, 0, .3f},
                        {0, .4f, 0},
                        {c.x, c.y},
                        0x00003366});
    // What an element leaves out is 0, and 1 the fourth; so is one that is not there.
    for (const char* type : {"int4", "float4", "half4"}) {
        SCOPED_TRACE(type);
        Clear(0);
        const Held<ID3DXEffect> effect = Compile(std::string(R"(
float Table[256]; float4x4 Bones[8];
struct In { float4 p : POSITION; float4 tint : COLOR1; float4 w : BLENDWEIGHT; float4 none : TEXCOORD6; )") +
                                                 type + R"( b : BLENDINDICES;
    float4 c : COLOR0; float3 bi : BINORMAL; float4 ta : TANGENT0; };
void V(In i, out float4 p : POSITION, out float4 c : COLOR0, out float4 more : TEXCOORD0) {
    p = mul(i.p, Bones[i.b.x]) * i.w.x + mul(i.p, Bones[i.b[1]]) * (1 - i.w.x); c = i.c;
    more = float4(i.tint.b, i.b.w / 255.0 - Table[i.b.w], i.w.y + i.w.w * 0.25 + i.bi.y, i.ta.w + dot(i.none, float4(1, 1, 1, 0.25)));
}
float4 P(float4 c : COLOR0, float4 more : TEXCOORD0) : COLOR { return c * 0.5 + more * 0.5; })" +
                                                 Pass(compiled, compiledPixels));
        D3DXMATRIX m;
        for (const char* bone : {"Bones[2]", "Bones[7]"})
            EXPECT_EQ(D3D_OK, effect->SetMatrix(bone, D3DXMatrixIdentity(&m)));
        EXPECT_EQ(D3D_OK, effect->SetFloat("Table[255]", 0.25f));
        Render(effect, nullptr, [&] { DrawWith(elements, D3DPT_TRIANGLESTRIP, quad); });
        ExpectColor({.5 + .2, .125 + .375, .325, 128 / 510. + .275});
    }
}

TEST_F(EffectStageTest, PixelsKnowTheirPlaceAndTheirFace) {
    const Held<ID3DXEffect> effect = Compile(R"(
float4 V(float4 p : POSITION) : POSITION { return p; }
float4 P(float2 at : VPOS, float face : VFACE) : COLOR { return float4(at / 16, face > 0 ? 1 : 0, face * 0.5 + 0.5); })" +
                                             Pass(compiled, compiledPixels));
    Render(effect);
    ExpectPicture([](double u, double v) { return Color{u - .5 / 16, v - .5 / 16, 1, 1}; });
    std::vector<Corner> turned = Whole();
    std::swap(turned[1], turned[2]);
    Render(effect, nullptr, [&] { Draw(D3DPT_TRIANGLESTRIP, turned, imageFvf); });
    ExpectPicture([](double u, double v) { return Color{u - .5 / 16, v - .5 / 16, 0, 0}; });
}

TEST_F(EffectStageTest, PixelsMayWriteTheirDepth) {
    const std::string text = R"(
float Depth = 0.25;
float4 V(float4 p : POSITION, inout float2 t : TEXCOORD0) : POSITION { return p; }
struct Out { float depth : DEPTH; float4 color : COLOR; };
Out P(float2 t : TEXCOORD0) { Out o; o.color = 1; o.depth = t.x < 0.5 ? Depth : 0.75; return o; }
float4 Plain(float2 t : TEXCOORD0, out float d : depth0) : COLOR { d = 0.5; return float4(1, 0, 0, 1); })";
    const Held<ID3DXEffect> effect =
        Compile(text + Pass(compiled, compiledPixels) +
                "technique Over { pass P { VertexShader = compile vs_3_0 V(); PixelShader = "
                "compile ps_3_0 Plain(); } }");
    Render(effect, "T");
    Render(effect, "Over");
    ExpectPicture([](double u, double) { return u < .5 ? Color{1, 1, 1, 1} : Color{1, 0, 0, 1}; });
}

TEST_F(EffectStageTest, PointsHaveTheSizeOfTheirVertices) {
    const Held<ID3DXEffect> effect = Compile(R"(
struct Out { float4 p : POSITION; float4 c : COLOR; float size : PSIZE; };
Out V(float4 p : POSITION, float2 t : TEXCOORD0, float4 c : COLOR) { Out o = { p, c, t.x }; return o; }
float4 P(float4 c : COLOR) : COLOR { return c; })" +
                                             Pass(compiled, compiledPixels));
    // Between two pixels each: at 3.5 of size 4, and at 11.5 of size 2.
    Render(effect, nullptr, [this] {
        Draw(D3DPT_POINTLIST,
             std::vector<Corner>{{-1 + 7 / 16.f, 1 - 7 / 16.f, .5f, red, 4, 0},
                                 {-1 + 23 / 16.f, 1 - 7 / 16.f, .5f, green, 2, 0}},
             imageFvf);
    });
    Picture expected(Size, Size, 0);
    expected.Fill(2, 2, 6, 6, red);
    expected.Fill(11, 3, 13, 5, green);
    EXPECT_TRUE(Same(Shot(), expected));
}

TEST_F(EffectStageTest, OtherSemanticsAreCarriedToo) {
    RenderText(R"(
void V(float4 p : POSITION, float2 t : TEXCOORD0, out float4 op : POSITION, out float fog : FOG,
       out float4 spec : COLOR1, out float3 n : NORMAL0, out float2 far : TEXCOORD9) {
    op = p; fog = t.x; spec = float4(0, t.y, 0, 2); n = float3(0, 0, 0.5); far = 0.75;
}
float4 P(float2 far : TEXCOORD9, float3 n : NORMAL, float fog : FOG, float4 spec : COLOR1) : COLOR {
    return float4(fog, spec.g, n.z, far.y * spec.a * 0.5);
})" + Pass(compiled, compiledPixels));
    ExpectPicture([](double u, double v) { return Color{u, v, .5, .75}; });
}

// Colors between the stages lie from 0 to 1, until the third version of shaders lets them be.
TEST_F(EffectStageTest, ColorsOfOldShadersAreCut) {
    const std::string text = R"(
void V(float4 p : POSITION, float2 t : TEXCOORD0, out float4 op : POSITION, out float4 c : COLOR0) { op = p; c = float4(3, -1, t) * 2 - 1; }
float4 P(float4 c : COLOR0) : COLOR { return c * 0.25 + 0.25; })";
    RenderText(text + Pass("compile vs_2_0 V()", "compile ps_2_0 P()"));
    ExpectPixel(15, 15, {.5, .25, .25 + 31 / 128., .25 + 31 / 128.}, .03);
    ExpectPixel(8, 8, {.5, .25, .25 + 17 / 128., .25 + 17 / 128.}, .03); // at their vertices
    RenderText(text + Pass(compiled, compiledPixels));
    ExpectPixel(0, 0, {1, 0, .25 - 30 / 128., .25 - 30 / 128.}, .03);
}

// States.

TEST_F(EffectStageTest, AStateHoldsForItsPassAndIsPutBack) {
    const Held<ID3DXEffect> effect = Compile(R"(
float4 V(float4 p : POSITION) : POSITION { return p; }
float4 P(uniform float4 c) : COLOR { return c; }
TECHNIQUE Mixing < string Script = "x"; > {
    Pass Base < bool Shown = true; > { vertexshader = Compile VS_2_0 V(); PIXELSHADER = compile ps_2_0 P(float4(0.2, 0.4, 0.6, 1)); AlphaBlendEnable = FALSE; ZWriteEnable = false; CullMode = cw; }
    pass Add { VertexShader = compile vs_2_0 V(); PixelShader = compile ps_2_0 P(float4(0.5, 0.5, 0.5, 0.5));
        ALPHABLENDENABLE = True; SrcBlend = SrcAlpha; DestBlend = ONE; BlendOp = Add; CullMode = NONE; ZEnable = 0; AlphaRef = 0x08; ZFunc = LessEqual; ColorWriteEnable = RED | GREEN | ALPHA; FillMode = Solid; AlphaTestEnable = TRUE; AlphaFunc = GreaterEqual; }
})");
    Set(D3DRS_CULLMODE, D3DCULL_CCW);
    Set(D3DRS_DESTBLEND, D3DBLEND_DESTCOLOR);
    UINT passes = 0;
    ASSERT_EQ(D3D_OK, effect->Begin(&passes, 0));
    ASSERT_EQ(passes, 2u);
    ASSERT_EQ(D3D_OK, effect->BeginPass(0));
    EXPECT_EQ(State(D3DRS_CULLMODE), D3DCULL_CW + 0u);
    EXPECT_EQ(State(D3DRS_ZWRITEENABLE), 0u);
    std::vector<Corner> turned = Whole();
    std::swap(turned[1], turned[2]);
    Draw(D3DPT_TRIANGLESTRIP, turned, imageFvf);
    ExpectColor({.2, .4, .6, 1});
    effect->EndPass();
    ASSERT_EQ(D3D_OK, effect->BeginPass(1));
    const std::pair<D3DRENDERSTATETYPE, DWORD> states[] = {
        {D3DRS_ALPHABLENDENABLE, 1},
        {D3DRS_SRCBLEND, D3DBLEND_SRCALPHA},
        {D3DRS_DESTBLEND, D3DBLEND_ONE},
        {D3DRS_CULLMODE, D3DCULL_NONE},
        {D3DRS_ZENABLE, 0},
        {D3DRS_ALPHAREF, 8},
        {D3DRS_ZFUNC, D3DCMP_LESSEQUAL},
        {D3DRS_COLORWRITEENABLE, 11},
        {D3DRS_ALPHATESTENABLE, 1},
        {D3DRS_ALPHAFUNC, D3DCMP_GREATEREQUAL},
        {D3DRS_ZWRITEENABLE, 0}}; // that of the pass before stays until End
    for (const auto& [state, value] : states)
        EXPECT_EQ(State(state), value) << state;
    Cover();
    effect->EndPass();
    EXPECT_EQ(D3D_OK, effect->End());
    ExpectColor({.45, .65, .6, 1});
    EXPECT_EQ(State(D3DRS_CULLMODE), D3DCULL_CCW + 0u);
    EXPECT_EQ(State(D3DRS_DESTBLEND), D3DBLEND_DESTCOLOR + 0u);
    EXPECT_EQ(State(D3DRS_ZWRITEENABLE), 1u);
    EXPECT_EQ(State(D3DRS_COLORWRITEENABLE), 15u);
    Held<IDirect3DVertexShader9> bound;
    device->GetVertexShader(bound.Out());
    EXPECT_EQ(bound.Get(), nullptr);
}

TEST_F(EffectStageTest, AStateMayBeAnExpressionOfParameters) {
    const Held<ID3DXEffect> effect = Compile(R"(
int Culling = 3; bool Blend = true; float Cut = 0.5; int Refs[2] = { 1, 2 };
technique T { pass P { CullMode = <Culling>; AlphaBlendEnable = (Blend); AlphaRef = (int)(Cut * 16) + Refs[1];
    SrcBlend = Blend ? 2 : 1; DestBlend = (2 + 3) * 2 - 4; AlphaTestEnable = (Cut > 0.25 && !Blend); } })");
    for (const bool second : {false, true}) {
        if (second) {
            effect->SetInt("Culling", 2), effect->SetBool("Blend", FALSE);
            effect->SetFloat("Cut", 0.75f);
        }
        Render(effect, nullptr, [&] {
            EXPECT_EQ(State(D3DRS_CULLMODE), second ? 2u : 3u);
            EXPECT_EQ(State(D3DRS_ALPHABLENDENABLE), second ? 0u : 1u);
            EXPECT_EQ(State(D3DRS_ALPHAREF), second ? 14u : 10u);
            EXPECT_EQ(State(D3DRS_SRCBLEND), second ? 1u : 2u);
            EXPECT_EQ(State(D3DRS_DESTBLEND), 6u);
            EXPECT_EQ(State(D3DRS_ALPHATESTENABLE), second ? 1u : 0u);
        });
    }
}

TEST_F(EffectStageTest, PassesWithoutShadersAreTheFixedFunctions) {
    const Held<ID3DXEffect> effect = Compile(R"(
texture Image; float4x4 World; float4x4 Other = { 1,0,0,0, 0,1,0,0, 0,0,1,0, 0,0,0,1 };
technique Plain { pass P { WorldTransform[0] = <World>; ViewTransform = <Other>; Lighting = FALSE; Texture[0] = <Image>;
    ColorOp[0] = Modulate; ColorArg1[0] = TEXTURE; ColorArg2[0] = Diffuse; AlphaOp[0] = SelectArg1; AlphaArg1[0] = DIFFUSE; MinFilter[0] = Point; MagFilter[0] = POINT; AddressU[0] = CLAMP; } }
technique Vertices { pass P { VertexShader = NULL; PixelShader = null; Texture[0] = NULL; } }
float4 P(float2 t : TEXCOORD0, float4 c : COLOR0) : COLOR { return float4(t, c.b, 1); }
technique PixelsOnly { pass P { VertexShader = NULL; PixelShader = compile ps_2_0 P(); } }
void V(float4 p : POSITION, float2 t : TEXCOORD0, out float4 o : POSITION, out float4 c : COLOR0, out float2 u : TEXCOORD0) { o = p; c = float4(1, 0.5, 0.25, 0.5); u = t; }
technique VerticesOnly { pass P { VertexShader = compile vs_2_0 V(); PixelShader = NULL; Texture[0] = <Image>; } })");
    const Held<IDirect3DTexture9> image = Texture(Picture(2, 2, 0x80804020));
    EXPECT_EQ(D3D_OK, effect->SetTexture("Image", image));
    D3DXMATRIX world;
    D3DXMatrixTranslation(&world, 1, 0, 0);
    EXPECT_EQ(D3D_OK, effect->SetMatrix("World", &world));
    const auto draw = [this] { Cover(0xc0ff8040); };
    Render(effect, "Plain", draw);
    ExpectPicture([](double u, double) {
        return u < .5 ? Color{} : Color{128 / 255., 32 / 255., 8 / 255., 192 / 255.};
    });
    D3DXMATRIX after;
    device->GetTransform(D3DTS_WORLD, &after);
    EXPECT_EQ(after._41, 0) << "End puts transforms back";
    Render(effect, "Vertices", draw);
    ExpectColor({1, 128 / 255., 64 / 255., 192 / 255.});
    Render(effect, "PixelsOnly", draw);
    ExpectPicture([](double u, double v) { return Color{u, v, 64 / 255., 1}; });
    Render(effect, "VerticesOnly", draw);
    ExpectColor({128 / 255., 32 / 255., 8 / 255., 128 / 255.});
}

TEST_F(EffectStageTest, SamplersOfAPassReachTheRegistersOfTheShader) {
    const Held<ID3DXEffect> effect = Compile(R"(
texture A; texture B;
sampler first; sampler second : register(s2);
sampler Prepared = sampler_state { Texture = <A>; AddressU = Clamp; };
float4 V(float4 p : POSITION) : POSITION { return p; }
float4 P() : COLOR { return tex2D(first, 1.5) * 0.25 + tex2D(second, 0.5) * 0.5; }
technique T { pass P { VertexShader = compile vs_2_0 V(); PixelShader = compile ps_2_0 P();
    Sampler[0] = (Prepared); Texture[2] = <B>; AddressU[2] = Mirror; MagFilter[2] = Linear; } })");
    const Held<IDirect3DTexture9> a = Texture(Picture(1, 1, red)), b = Texture(Picture(1, 1, blue));
    effect->SetTexture("A", a), effect->SetTexture("B", b);
    device->SetTexture(0, b);
    Render(effect, nullptr, [&] {
        Held<IDirect3DBaseTexture9> bound;
        device->GetTexture(2, bound.Out());
        EXPECT_EQ(bound.Get(), b.Get());
        DWORD mode = 0;
        device->GetSamplerState(0, D3DSAMP_ADDRESSU, &mode);
        EXPECT_EQ(mode, D3DTADDRESS_CLAMP + 0u);
        Cover();
    });
    ExpectColor({.25, 0, .5, .75});
    Held<IDirect3DBaseTexture9> bound;
    device->GetTexture(0, bound.Out());
    EXPECT_EQ(bound.Get(), b.Get()) << "End puts textures back";
    DWORD mode = 0;
    device->GetSamplerState(2, D3DSAMP_ADDRESSU, &mode);
    EXPECT_EQ(mode, D3DTADDRESS_WRAP + 0u);
}

TEST_F(EffectStageTest, AShaderPlacesVerticesAsTheFixedFunctionDoes) {
    const Held<ID3DXEffect> effect = Compile(R"(
float4x4 worldMatrix, viewMatrix, projectionMatrix;
void V(float4 p : POSITION, inout float4 c : COLOR0, out float4 o : POSITION) { o = mul(mul(mul(p, worldMatrix), viewMatrix), projectionMatrix); }
float4 P(float4 c : COLOR0) : COLOR { return c; })" +
                                             Pass(compiled, compiledPixels));
    std::mt19937 random(7);
    std::uniform_real_distribution<float> part(-1, 1);
    const auto any = [&] { return part(random); };
    for (int round = 0; round < 20; ++round) {
        D3DXQUATERNION turn;
        D3DXQuaternionRotationYawPitchRoll(&turn, any() * 3, any() * 3, any() * 3);
        D3DXMATRIX world, view, projection;
        D3DXMatrixRotationQuaternion(&world, &turn);
        world._41 = any(), world._42 = any();
        const D3DXVECTOR3 eye(any(), any(), -3), at(0, 0, 0), up(0, 1, 0);
        D3DXMatrixLookAtLH(&view, &eye, &at, &up);
        D3DXMatrixPerspectiveFovLH(&projection, 1, 1.25f, 0.5f, 10);
        std::vector<Corner> mesh;
        for (int i = 0; i < 30; ++i)
            mesh.push_back({any() * 2, any() * 2, any() * 2,
                            static_cast<D3DCOLOR>(random()) | 0xff000000, 0, 0});
        const auto draw = [&] { Draw(D3DPT_TRIANGLELIST, mesh, imageFvf); };
        device->SetTransform(D3DTS_WORLD, &world), device->SetTransform(D3DTS_VIEW, &view);
        device->SetTransform(D3DTS_PROJECTION, &projection);
        Clear(black);
        draw();
        const Picture fixed = Shot();
        D3DXMATRIX identity;
        for (const auto state : {D3DTS_WORLD, D3DTS_VIEW, D3DTS_PROJECTION})
            device->SetTransform(state, D3DXMatrixIdentity(&identity));
        effect->SetMatrix("worldMatrix", &world), effect->SetMatrix("viewMatrix", &view);
        effect->SetMatrix("projectionMatrix", &projection);
        Clear(black);
        Render(effect, nullptr, draw);
        ASSERT_TRUE(Same(Shot(), fixed, 1)) << round;
    }
}

// Shaders by themselves.

class ShaderTest : public EffectPictureTest {
protected:
    struct Shader {
        Held<IDirect3DVertexShader9> vertex;
        Held<IDirect3DPixelShader9> pixel;
        Held<ID3DXConstantTable> constants;
    };
    Shader Make(const std::string& text, const char* entry, const char* profile) {
        Shader shader;
        Held<ID3DXBuffer> code, errors;
        if (D3DXCompileShader(text.data(), static_cast<UINT>(text.size()), nullptr, nullptr, entry,
                              profile, 0, code.Out(), errors.Out(),
                              shader.constants.Out()) != D3D_OK)
            throw std::runtime_error("no shader: " + TextOf(errors));
        const auto* words = static_cast<const DWORD*>(code->GetBufferPointer());
        const HRESULT made = profile[0] == 'v'
                                 ? device->CreateVertexShader(words, shader.vertex.Out())
                                 : device->CreatePixelShader(words, shader.pixel.Out());
        EXPECT_EQ(made, D3D_OK);
        return shader;
    }
    std::array<float, 4> VertexRegister(UINT index) {
        std::array<float, 4> values = {};
        EXPECT_EQ(D3D_OK, device->GetVertexShaderConstantF(index, values.data(), 1));
        return values;
    }
};
using Four = std::array<float, 4>;

TEST_F(ShaderTest, ConstantsAreRegistersOfTheDevice) {
    const char* text = R"(
float4x4 bones[4]; float4x4 world : register(c7); float scale = 0.5; float4 tints[2];
struct Out { float4 p : POSITION; float4 c : COLOR0; };
Out VertexBlend(float4 p : POSITION, float2 t : TEXCOORD0) {
    Out o; o.p = mul(mul(p, world), bones[2]); o.c = tints[1] * scale; return o;
}
Out Other(float4 p : POSITION) { Out o; o.p = p; o.c = float4(0, 1, 0, 1); return o; }
float4 level : register(c3);
float4 ps_main(float4 c : COLOR0) : COLOR { return c + level; })";
    const Shader vertex = Make(text, "VertexBlend", "vs_3_0"),
                 other = Make(text, "Other", "vs_2_0"), pixel = Make(text, "ps_main", "ps_3_0");
    EXPECT_EQ(vertex.constants->GetConstantByName(nullptr, "level"), nullptr);
    EXPECT_EQ(other.constants->GetConstantByName(nullptr, "world"), nullptr);
    D3DXMATRIX m;
    D3DXMatrixTranslation(&m, 1, 0.5f, 0.25f);
    const D3DXHANDLE world = vertex.constants->GetConstantByName(nullptr, "world");
    ASSERT_NE(world, nullptr);
    EXPECT_EQ(D3D_OK, vertex.constants->SetMatrix(device, world, &m));
    EXPECT_EQ(VertexRegister(7), (Four{1, 0, 0, 1})) << "a column to a register";
    EXPECT_EQ(VertexRegister(9), (Four{0, 0, 1, 0.25f}));
    EXPECT_EQ(VertexRegister(10), (Four{0, 0, 0, 1}));
    // The move to the right and up is taken back by the bone.
    std::vector<D3DXMATRIX> bones(4);
    for (D3DXMATRIX& bone : bones)
        D3DXMatrixTranslation(&bone, -1, -0.5f, -0.25f);
    EXPECT_EQ(D3D_OK, vertex.constants->SetMatrixArray(device, "bones", bones.data(), 4));
    const D3DXVECTOR4 tints[2] = {{1, 1, 1, 1}, {1, 0.5f, 0, 1}};
    EXPECT_EQ(D3D_OK, vertex.constants->SetVectorArray(device, "tints", tints, 2));
    EXPECT_EQ(D3D_OK, vertex.constants->SetFloat(device, "scale", 0.5f));
    const float level[] = {0, 0, 0.5f, 0};
    EXPECT_EQ(D3D_OK, device->SetPixelShaderConstantF(3, level, 1));
    device->SetVertexShader(vertex.vertex), device->SetPixelShader(pixel.pixel);
    Cover();
    ExpectColor({.5, .25, .5, .5});
    device->SetVertexShader(other.vertex);
    Cover();
    ExpectColor({0, 1, .5, 1});
    device->SetVertexShader(vertex.vertex);
    Cover();
    ExpectColor({.5, .25, .5, .5});
}

TEST_F(ShaderTest, AnotherShaderOverwritesWhatLiesInItsRegisters) {
    const std::string text = R"(
float4x4 M; float4 tint;
void First(float4 p : POSITION, out float4 o : POSITION, out float4 c : COLOR0) { o = p; c = M[0]; }
void Second(float4 p : POSITION, out float4 o : POSITION, out float4 c : COLOR0) { o = p; c = tint; }
float4 ps_main(float4 c : COLOR0) : COLOR { return c; })";
    const Shader first = Make(text, "First", "vs_3_0"), second = Make(text, "Second", "vs_3_0"),
                 pixel = Make(text, "ps_main", "ps_3_0");
    const float row[16] = {0.25f, 0.5f, 0.75f, 1};
    const D3DXMATRIX m(row);
    EXPECT_EQ(D3D_OK, first.constants->SetMatrix(device, "M", &m));
    device->SetPixelShader(pixel.pixel);
    device->SetVertexShader(second.vertex);
    Cover();
    ExpectColor({.25, 0, 0, 0}); // the first column of M
    const D3DXVECTOR4 tint(1, 0, 1, 1);
    EXPECT_EQ(D3D_OK, second.constants->SetVector(device, "tint", &tint));
    device->SetVertexShader(first.vertex);
    Cover();
    ExpectColor({1, .5, .75, 1});
    EXPECT_EQ(D3DERR_INVALIDCALL,
              device->CreateVertexShader(nullptr, Held<IDirect3DVertexShader9>().Out()));
}

} // namespace
} // namespace Tests
