// SPDX-License-Identifier: MIT
//
// Effect files as their authors write them: start values, members, annotations, techniques, and
// whole files of tests/d3dx9/effects, drawn and compared with their formulas.
#include "tests/d3dx9/effect_picture.hpp"
#include "tests/support/temp_folder.hpp"

#include <map>

namespace Tests {
namespace {

class EffectFileTest : public EffectPictureTest {
protected:
    /// `t` of the whole target: two triangles of it, at depth `z`, with what a mesh has.
    struct MeshVertex {
        float place[3], normal[3];
        D3DCOLOR color;
        float t[2], tangent[3], binormal[3], weights[4];
        BYTE bones[4];
    };
    void Mesh(float z = 0.5f, float size = 1, std::array<float, 3> normal = {0, 0, -1}) {
        std::vector<MeshVertex> quad;
        for (const Corner& c : Whole(0xff804020, z))
            quad.push_back({{c.x * size, c.y * size, c.z},
                            {normal[0], normal[1], normal[2]},
                            c.color,
                            {c.u, c.v},
                            {1, 0, 0},
                            {0, -1, 0},
                            {.5f, .25f, .25f, 0},
                            {0, 1, 2, 3}});
        const auto element = [](std::size_t offset, BYTE type, BYTE usage) {
            return D3DVERTEXELEMENT9{0, static_cast<WORD>(offset), type, 0, usage, 0};
        };
        DrawWith(
            {element(offsetof(MeshVertex, bones), D3DDECLTYPE_UBYTE4, D3DDECLUSAGE_BLENDINDICES),
             element(offsetof(MeshVertex, weights), D3DDECLTYPE_FLOAT4, D3DDECLUSAGE_BLENDWEIGHT),
             element(offsetof(MeshVertex, tangent), D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_TANGENT),
             element(offsetof(MeshVertex, binormal), D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_BINORMAL),
             element(0, D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_POSITION),
             element(12, D3DDECLTYPE_FLOAT3, D3DDECLUSAGE_NORMAL),
             element(24, D3DDECLTYPE_D3DCOLOR, D3DDECLUSAGE_COLOR),
             element(28, D3DDECLTYPE_FLOAT2, D3DDECLUSAGE_TEXCOORD), D3DDECL_END()},
            D3DPT_TRIANGLESTRIP, quad);
    }
    /// (u, v) as red and green, with alpha.
    Held<IDirect3DTexture9> Ramp(int alpha) {
        Picture ramp(Size, Size, 0);
        for (int i = 0; i < Size * Size; ++i)
            ramp.At(i % Size, i / Size) = Packed(i % Size * 17, i / Size * 17, 0, alpha);
        return Texture(ramp);
    }
    static void SetVector(ID3DXEffect* effect, const char* name, D3DXVECTOR4 v) {
        EXPECT_EQ(D3D_OK, effect->SetVector(name, &v)) << name;
    }
    static void SetTranslation(ID3DXEffect* effect, const char* name, float x, float y, float z) {
        D3DXMATRIX m;
        EXPECT_EQ(D3D_OK, effect->SetMatrix(name, D3DXMatrixTranslation(&m, x, y, z))) << name;
    }
    Held<ID3DXEffect> LoadOurs(const std::string& name) {
        return Load("tests/d3dx9/effects/" + name);
    }
};

TEST_F(EffectFileTest, ParametersStartAsTheFileSays) {
    const Held<ID3DXEffect> effect = Compile(Shaded(R"(
struct Lamp { float3 pos; float range; int kind; float4 colors[2]; };
float one = 0.25; float3 three = { 0.1, 0.2, 0.3 }; half4 four = half4(0.1, 0.2, 0.3, 0.4); float4 filled = 0.5f;
int whole = 3; bool yes = true; bool no = FALSE; float list[3] = { 0.1, 0.2, 0.4 }; float2 pairs[2] = { { 1, 2 }, { 3, 4 } };
float4x4 turn = { 0, 1, 0, 0,  1, 0, 0, 0,  0, 0, 1, 0,  0, 0, 0, 0.5 }; float2x3 low = float2x3(1, 2, 3, 4, 5, 6);
Lamp lamps[2] = { { { 1, 2, 3 }, 4, 5, { 0.1, 0.2, 0.3, 0.4 }, { 0.5, 0.6, 0.7, 0.8 } }, { { 6, 7, 8 }, 9, 10, { 1, 1, 1, 1 }, { 0, 0, 0, 0.25 } } };
float unset; const float constant = 1.0 / 8; int2 both = { 7, -8 }; float3x3 zero;
uniform extern float outer : POWER < string UIWidget = "slider"; float UIMin = 0; > = 0.75;
static const float hidden = 9;)",
                                                    R"(
if (t.y < 0.25) return float4(one, three.z, four.w, filled.w) + unset + zero[1][1];
if (t.y < 0.5) return float4(whole * 0.1, yes * 0.5 + no, list[2], pairs[1].x * 0.1) + constant;
if (t.y < 0.75) return float4(mul(float4(t, 0, 1), turn).xyw, low[1].x * low._13 * 0.01 - both.y * 0.05);
return float4(lamps[1].pos.z * 0.1, lamps[0].kind * 0.1, lamps[0].colors[1].y, lamps[1].colors[1].a + outer * 0.5);)"));
    const auto expected = [](double u, double v) {
        return v < .25   ? Color{.25, .3, .4, .5}
               : v < .5  ? Color{.425, .625, .525, .425}
               : v < .75 ? Color{v, u, .5, .52}
                         : Color{.8, .5, .6, .625};
    };
    Render(effect);
    ExpectPicture(expected);
    // What is not there changes nothing, and all of it by its members.
    const D3DXMATRIX m = {};
    for (const char* name : {"hidden", "lamps.pos", "lamps[2].pos", "lamps[0].po", "list[3]", "One",
                             "three.x.", "", "list[", "list[-1]", "turn.x"}) {
        EXPECT_EQ(D3DERR_INVALIDCALL, effect->SetFloat(name, 1)) << name;
        EXPECT_EQ(D3DERR_INVALIDCALL, effect->SetMatrix(name, &m)) << name;
    }
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->SetTexture("one", nullptr));
    Render(effect);
    ExpectPicture(expected);
    const float place[] = {0, 0, 2};
    const BOOL off = FALSE;
    const INT pair[] = {0, -4};
    EXPECT_EQ(D3D_OK, effect->SetValue("lamps[1].pos", place, sizeof place));
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->SetFloat("lamps[0].colors[1]", 0.25f));
    SetVector(effect, "lamps[0].colors[1]", {0, .25f, 0, 0});
    EXPECT_EQ(D3D_OK, effect->SetInt("lamps[0].kind", 2));
    EXPECT_EQ(D3D_OK, effect->SetValue("yes", &off, sizeof off));
    EXPECT_EQ(D3D_OK, effect->SetFloat("list[2]", 0.75f));
    EXPECT_EQ(D3D_OK, effect->SetIntArray("both", pair, 2));
    EXPECT_EQ(D3D_OK, effect->SetInt("whole", 1));
    SetTranslation(effect, "turn", 0.125f, 0, 0);
    const D3DXHANDLE outer = effect->GetParameterBySemantic(nullptr, "Power");
    ASSERT_NE(outer, nullptr);
    EXPECT_EQ(D3D_OK, effect->SetFloat(outer, 1));
    Render(effect);
    ExpectPicture([](double u, double v) {
        return v < .25   ? Color{.25, .3, .4, .5}
               : v < .5  ? Color{.225, .125, .875, .425}
               : v < .75 ? Color{u + .125, v, 1, .32}
                         : Color{.2, .2, .25, .75};
    });
}

TEST_F(EffectFileTest, TextsAndAnnotationsAreRead) {
    const Held<ID3DXEffect> effect = Compile(R"(
string Description = "A " "file";
texture Skin : DiffuseMap < string ResourceName = "skin.png"; string UIName="Skin \"1\""; int Order = 3; float2 Size = { 0.5, 2 }; bool Shown = true; >;
float4x4 WVP : WORLDVIEWPROJECTION; float4 Tint : COLOR < string UIWidget = "Color"; > = { 1, 0.5, 0.25, 1 };
technique Main < string Script = "Pass=p0;"; float Cost = 1.5; > { pass p0 < int Number = 7; > { ZEnable = TRUE; } } )");
    const std::map<const char*, const char*> texts = {{"Description", "A file"},
                                                      {"Skin@ResourceName", "skin.png"},
                                                      {"Skin@UIName", "Skin \"1\""},
                                                      {"Tint@UIWidget", "Color"}};
    for (const auto& [name, text] : texts) {
        LPCSTR said = nullptr;
        const D3DXHANDLE handle = effect->GetParameterByName(nullptr, name);
        ASSERT_NE(handle, nullptr) << name;
        EXPECT_EQ(D3D_OK, effect->GetString(handle, &said)) << name;
        EXPECT_STREQ(said, text);
    }
    INT order = 0;
    EXPECT_EQ(D3D_OK, effect->GetInt(effect->GetParameterByName(nullptr, "Skin@Order"), &order));
    EXPECT_EQ(order, 3);
    D3DXVECTOR4 tint;
    EXPECT_EQ(D3D_OK, effect->GetVector("Tint", &tint));
    EXPECT_EQ(tint.y, 0.5f);
    EXPECT_EQ(effect->GetParameterBySemantic(nullptr, "worldviewprojection"),
              effect->GetParameterByName(nullptr, "WVP"));
    EXPECT_EQ(effect->GetParameterBySemantic(nullptr, "VIEW"), nullptr);
    EXPECT_EQ(effect->GetParameterByName(nullptr, "Skin@Nothing"), nullptr);
}

TEST_F(EffectFileTest, MacrosMakeTechniquesAndHostsGiveMacros) {
    const D3DXMACRO macros[] = {{"LEVEL", "0.5"}, {"EMPTY", nullptr}, {nullptr, nullptr}};
    const Held<ID3DXEffect> effect = Compile(R"(
#define TECHNIQUE(name, vs, ps) technique name { pass p { VertexShader = compile vs_2_0 vs(); PixelShader = compile ps_2_0 ps; } }
float4 V(float4 p : POSITION EMPTY) : POSITION { return p; }
float4 P(uniform float4 c) : COLOR { return c * LEVEL; }
TECHNIQUE(Red, V, P(float4(1, 0, 0, 2)))
TECHNIQUE(Green, V, P(float4(0, 1, 0, 2)))
technique { pass { } })",
                                             macros);
    Render(effect);
    ExpectColor({.5, 0, 0, 1});
    Render(effect, "Green");
    ExpectColor({0, .5, 0, 1});
    EXPECT_EQ(effect->GetTechniqueByName("red"), nullptr);
    EXPECT_EQ(effect->GetTechniqueByName("Green"), effect->GetTechnique(1));
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->SetTechnique(nullptr));
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->SetTechnique("Blue"));
    Render(effect);
    ExpectColor({0, .5, 0, 1});
}

TEST_F(EffectFileTest, IncludesStandBesideTheirFile) {
    TempFolder folder;
    folder.Folder("common");
    folder.File("common/light.fxh", "#ifndef LIGHT\n#define LIGHT\n#include \"more.fxh\"\nfloat4 "
                                    "Lit() { return More(); }\n#endif\n");
    folder.File("common/more.fxh", "float4 More() { return float4(0.25, 0.5, 0.75, 1); }");
    const std::string main =
        Shaded("#include \"common/light.fxh\"\n#include <common/light.fxh>", "return Lit();");
    Render(Load(folder.File("main.fx", "\xEF\xBB\xBF" + main)));
    ExpectColor({.25, .5, .75, 1});
    std::string crlf = main;
    for (std::size_t at = 0; (at = crlf.find('\n', at)) != std::string::npos; at += 2)
        crlf.insert(at, "\r");
    Clear(0);
    Render(Load(folder.File("dos.fx", crlf)));
    ExpectColor({.25, .5, .75, 1});
}

// Files.

TEST_F(EffectFileTest, ParallaxMovesTheColorsByTheHeights) {
    const Held<ID3DXEffect> effect = LoadOurs("parallax.fx");
    const Held<IDirect3DTexture9> ramp = Ramp(204), flat = Texture(Picture(4, 4, 0x808080ff));
    effect->SetTexture("DiffuseMap", ramp), effect->SetTexture("NormalMap", flat);
    SetTranslation(effect, "World", 0, 0, 0), SetTranslation(effect, "WorldViewProj", 0, 0, 0);
    SetVector(effect, "EyePosition", {2, 0, -1.5f, 1});
    SetVector(effect, "LightDirection", {0, 0, 1, 0});
    Render(effect, nullptr, [this] { Mesh(); });
    // The eye is at (2 - x, -y, 2) in the tangents' axes; 0x80 / 255 is the height and near 0 the
    // normal's slope.
    const auto at = [](double u, double v) {
        const double x = 3 + 1. / 16 - u * 2, y = 1 + 1. / 16 - v * 2;
        const double k = (128 / 255. * .3 - .1) / std::sqrt(x * x + y * y + 4);
        const auto level = [](double s) { return (s * Size - .5) / (Size - 1); };
        return Color{level(u + x * k), level(v + y * k), 0, 204 / 255.};
    };
    for (const auto& [x, y] : {std::pair{2, 2}, {8, 5}, {5, 11}})
        ExpectPixel(x, y, at((x + .5) / Size, (y + .5) / Size), 3 / 255.);
}

TEST_F(EffectFileTest, WaterScrollsTwoNormalMaps) {
    const Held<ID3DXEffect> effect = LoadOurs("water.fx");
    Picture waves(2, 1, 0xff8080ff);
    waves.At(1, 0) = 0xffff8080; // to the right
    const Held<IDirect3DTexture9> map = Texture(waves);
    effect->SetTexture("WaveMap", map);
    EXPECT_EQ(D3D_OK, effect->SetFloat("Time", 2.5f));
    Render(effect, nullptr, [this] { Mesh(); });
    // By then one layer has gone a half to the left and the other a quarter to the right.
    ExpectPicture(
        [](double u, double) {
            double x = 0, z = 0;
            for (const double s : {u + .5, u * 2 - .25}) {
                const bool right = s - std::floor(s) >= .5;
                x += right ? 1 : 1 / 255., z += right ? 1 / 255. : 1;
            }
            const double up = z / std::sqrt(x * x + z * z + 4 / 255. / 255.);
            const double fresnel = .02 + .98 * std::pow(1 - up, 5);
            return Color{.5 * fresnel, .1 + .5 * fresnel, .3 + .5 * fresnel, .5 + fresnel / 2};
        },
        2.01 / 255);
}

TEST_F(EffectFileTest, ToonDrawsItsOutlineInASecondPass) {
    const Held<ID3DXEffect> effect = LoadOurs("toon.fx");
    SetTranslation(effect, "WorldViewProjection", 0, 0, 0);
    for (const auto& [slope, band] : {std::pair{.0f, 1.}, {.8f, .6}, {.98f, .3}}) {
        Clear(0);
        Render(effect, nullptr, [this, slope = slope] {
            Mesh(0.5f, 0.5f, {slope, 0, -std::sqrt(1 - slope * slope)});
        });
        ExpectPixel(8, 8, {band * .8, band * .4, band * .2, 1});
        ExpectPixel(2, 8, {0, 0, 0, 1}); // the outline
        ExpectPixel(1, 8, {0, 0, 0, 0});
    }
}

TEST_F(EffectFileTest, SkinFollowsItsFourBones) {
    const Held<ID3DXEffect> effect = LoadOurs("skin.fx");
    std::vector<D3DXMATRIX> bones(4);
    for (D3DXMATRIX& bone : bones)
        D3DXMatrixIdentity(&bone);
    bones[0]._41 = 1, bones[1]._41 = 2, bones[2]._41 = 4, bones[3]._41 = 100;
    // 0.5 * 1 + 0.25 * 2 + 0.25 * 4 = 2, taken back by the view.
    EXPECT_EQ(D3D_OK, effect->SetMatrixArray("mBones", bones.data(), 4));
    SetTranslation(effect, "mViewProj", -2, 0, 0);
    Render(effect, nullptr, [this] { Mesh(); });
    ExpectColor({128 / 255., 64 / 255., 32 / 255., 1});
    Clear(0);
    EXPECT_EQ(D3D_OK, effect->SetMatrix("mBones[0]", &bones[3]));
    Render(effect, "Rigid", [this] { Mesh(); });
    ExpectColor({0, 0, 0, 0}); // far away
    EXPECT_EQ(D3D_OK, effect->SetMatrix("mBones[0]", &bones[1]));
    Render(effect, "Rigid", [this] { Mesh(); });
    ExpectColor({128 / 255., 64 / 255., 32 / 255., 1});
}

TEST_F(EffectFileTest, ParticlesAreAddedAsPoints) {
    const Held<ID3DXEffect> effect = LoadOurs("particles.fx");
    Clear(0xff202020);
    EXPECT_EQ(D3D_OK, effect->SetFloat("ElapsedTime", 0.5f));
    Render(effect, nullptr, [this] {
        Draw(D3DPT_POINTLIST,
             std::vector<Corner>{{-9 / 16.f, 1 / 16.f, .5f, 0xff804020, 1, 0},
                                 {9 / 16.f, 1 / 16.f, .5f, 0xff804020, .25f, 0}},
             imageFvf);
    });
    // The first is half its age old and has 4 pixels left of 8; the other is gone.
    const double there = 0x20 / 255., k = .5;
    ExpectPixel(2, 5, {there + k * 128 / 255, there + k * 64 / 255, there + k * 32 / 255, 1}, .02);
    ExpectPixel(1, 5, {there, there, there, 1});
    ExpectPixel(12, 7, {there, there, there, 1});
}

TEST_F(EffectFileTest, AScriptedFileOfAToolIsDrawn) {
    const Held<ID3DXEffect> effect = LoadOurs("scripted.fx");
    D3DXMATRIX m;
    D3DXMatrixIdentity(&m);
    for (const char* semantic :
         {"World", "WorldViewProjection", "WorldInverseTranspose", "ViewInverse"})
        EXPECT_EQ(D3D_OK, effect->SetMatrix(effect->GetParameterBySemantic(nullptr, semantic), &m))
            << semantic;
    LPCSTR script = nullptr;
    EXPECT_EQ(D3D_OK, effect->GetString("Script@Script", &script));
    EXPECT_STREQ(script, "Technique=Technique?Main:Flat;");
    Render(effect, nullptr, [this] { Mesh(); });
    // The lamp stands far in front of the middle: the light is straight on.
    ExpectPixel(8, 8, {.07 + .9 * .6, .07 + .5 * .6, .07 + .2 * .6, 1}, .02);
    Render(effect, "Flat", [this] { Mesh(); });
    ExpectColor({.6, .6, .6, 1});
}

TEST_F(EffectFileTest, FixedFunctionFileSetsManyStates) {
    const Held<ID3DXEffect> effect = LoadOurs("fixed.fx");
    const Held<IDirect3DTexture9> image = Texture(Picture(2, 2, 0xff808080));
    effect->SetTexture("Image", image);
    Clear(0xff0000ff);
    Render(effect, nullptr, [this] { Cover(0x80ff8000); });
    // Twice the product, mixed with what was there by the vertices' alpha.
    const double a = 128 / 255.;
    ExpectColor({a, 2 * a * a * a, 1 - a, a * a + 1 - a}, 2.01 / 255);
    Render(effect, "Wire", [this] { Cover(); });
    DWORD mode = 0;
    device->GetRenderState(D3DRS_FILLMODE, &mode);
    EXPECT_EQ(mode, D3DFILL_SOLID + 0u);
    ExpectPixel(5, 4, {a, 2 * a * a * a, 1 - a, a * a + 1 - a}, 2.01 / 255);
    ExpectPixel(11, 4, {1, 1, 1, 1}); // between two corners
}

} // namespace
} // namespace Tests
