// SPDX-License-Identifier: MIT
//
// Effects and constant tables as a host meets them, on a device that draws nothing.
#include "tests/support/device.hpp"
#include "tests/support/temp_folder.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <map>

namespace {

using namespace Tests;

constexpr const char* Declarations = R"(
struct Light { float3 pos; float radius; bool on; };
float4x4 world;
float4x4 bones[3];
row_major float4x4 rows;
float3x3 small;
float4x3 affine;
Light lamp = { 1, 2, 3, 4, true };
Light lights[2];
float number = 2.5;
int whole = 7;
bool flag;
float2 center;
float3 place;
float4 color : TINT = { 0.25, 0.5, 0.75, 1 };
float weights[4] = { 1, 2, 3, 4 };
int reference = 10;
texture picture, mask;
string label = "hello";
sampler pictureSampler = sampler_state { Texture = <picture>; MinFilter = Linear; AddressU = Clamp; };
)";

constexpr const char* Techniques = R"(
float4 Vertex(float4 position : POSITION) : POSITION { return mul(position, world); }
float4 Pixel(float2 uv : TEXCOORD0) : COLOR { return tex2D(pictureSampler, uv) * color; }
technique First {
    pass A {
        AlphaRef = <reference * 2>;
        CullMode = None;
        VertexShader = compile vs_3_0 Vertex();
        PixelShader = compile ps_3_0 Pixel();
    }
    pass B { ZEnable = FALSE; Texture[1] = <mask>; PixelShader = NULL; }
}
technique Second { pass { VertexShader = compile vs_2_0 Vertex(); } }
technique Empty { }
)";

class EffectTest : public DeviceTest {
protected:
    EffectTest() : DeviceTest(true) {}

    Held<ID3DXEffect> Make(const std::string& text) {
        Held<ID3DXEffect> effect;
        Held<ID3DXBuffer> errors;
        EXPECT_EQ(D3D_OK,
                  D3DXCreateEffect(device, text.data(), static_cast<UINT>(text.size()), nullptr,
                                   nullptr, 0, nullptr, effect.Out(), errors.Out()))
            << (errors ? static_cast<const char*>(errors->GetBufferPointer()) : "");
        return effect;
    }
    Held<ID3DXEffect> Make() { return Make(std::string(Declarations) + Techniques); }

    DWORD Render(D3DRENDERSTATETYPE state) {
        DWORD value = 0;
        EXPECT_EQ(D3D_OK, device->GetRenderState(state, &value));
        return value;
    }
    DWORD SamplerOf(DWORD index, D3DSAMPLERSTATETYPE state) {
        DWORD value = 0;
        EXPECT_EQ(D3D_OK, device->GetSamplerState(index, state, &value));
        return value;
    }
    IDirect3DBaseTexture9* Bound(DWORD index) {
        Held<IDirect3DBaseTexture9> texture;
        EXPECT_EQ(D3D_OK, device->GetTexture(index, texture.Out()));
        return texture;
    }
    std::pair<bool, bool> HasShaders() {
        Held<IDirect3DVertexShader9> vertex;
        Held<IDirect3DPixelShader9> pixel;
        EXPECT_EQ(D3D_OK, device->GetVertexShader(vertex.Out()));
        EXPECT_EQ(D3D_OK, device->GetPixelShader(pixel.Out()));
        return {vertex.Get() != nullptr, pixel.Get() != nullptr};
    }
};

D3DXMATRIX Counting(float first = 1) {
    D3DXMATRIX matrix;
    for (int i = 0; i < 16; ++i)
        matrix.m[i / 4][i % 4] = first + static_cast<float>(i);
    return matrix;
}

std::vector<float> Floats(ID3DXEffect* effect, const char* name, std::size_t count) {
    std::vector<float> values(count, -1);
    EXPECT_EQ(D3D_OK, effect->GetValue(name, values.data(), static_cast<UINT>(count * 4))) << name;
    return values;
}
using Row = std::vector<float>;

TEST_F(EffectTest, ConvertsByTheTypeOfTheParameter) {
    const Held<ID3DXEffect> effect = Make();
    const float infinity = std::numeric_limits<float>::infinity();
    INT whole = 0;
    BOOL flag = 0;
    float number = 0;
    for (const auto& [given, expected] :
         std::map<float, INT>{{-2.9f, -2}, {2.9f, 2}, {3e9f, INT32_MIN}, {infinity, INT32_MIN}}) {
        EXPECT_EQ(D3D_OK, effect->SetFloat("whole", given));
        EXPECT_EQ(D3D_OK, effect->GetInt("whole", &whole));
        EXPECT_EQ(whole, expected) << given;
    }
    effect->SetFloat("whole", std::nanf(""));
    effect->GetInt("whole", &whole);
    EXPECT_EQ(whole, INT32_MIN);
    effect->SetBool("number", 5);
    effect->GetFloat("number", &number);
    EXPECT_EQ(number, 1);
    effect->SetInt("flag", 5);
    effect->GetInt("flag", &whole);
    EXPECT_EQ(whole, 1);
    effect->SetFloat("flag", 0.25f);
    effect->GetBool("flag", &flag);
    EXPECT_EQ(flag, TRUE);
    for (const float odd : {infinity, std::nanf("")}) {
        effect->SetFloat("number", odd);
        effect->GetFloat("number", &number);
        EXPECT_EQ(std::memcmp(&odd, &number, 4), 0);
    }
    EXPECT_EQ(D3D_OK, effect->SetInt("color", static_cast<INT>(0x80ff0033)));
    EXPECT_EQ(Floats(effect, "color", 4), Row({1, 0, 0.2f, 128 / 255.0f}));
    effect->GetInt("color", &whole);
    EXPECT_EQ(static_cast<DWORD>(whole), 0x80ff0033u);
}

TEST_F(EffectTest, RefusesWhatIsOfAnotherKindAndLeavesAllAsItWas) {
    const Held<ID3DXEffect> effect = Make();
    const D3DXMATRIX matrix = Counting();
    const float values[16] = {};
    float number;
    D3DXVECTOR4 vector;
    D3DXMATRIX out;
    ID3DXEffect& e = *effect.Get();
    for (const char* name : {"color", "weights", "picture", "lamp", "lamp.", "none", "Number",
                             "weights[4]", "weights[-1]", ""})
        EXPECT_EQ(D3DERR_INVALIDCALL, e.SetFloat(name, 1)) << name;
    for (const char* name : {"color", "bones", "none"})
        EXPECT_EQ(D3DERR_INVALIDCALL, e.SetMatrix(name, &matrix)) << name;
    const HRESULT results[] = {
        e.SetFloat(nullptr, 1),          e.SetMatrix("world", nullptr),
        e.SetTexture("number", nullptr), e.SetBool("color", 1),
        e.SetValue("color", values, 15), e.SetValue("color", nullptr, 16),
        e.SetValue("label", values, 64), e.SetFloatArray("lamp", values, 5),
        e.SetVector("world", &vector),   e.SetFloatArray("color", nullptr, 4),
        e.GetFloat("color", &number),    e.GetVector("world", &vector),
        e.GetMatrix("color", &out),      e.GetFloat("number", nullptr),
        e.SetTechnique(nullptr),         e.SetTechnique("none")};
    for (const HRESULT result : results)
        EXPECT_EQ(result, D3DERR_INVALIDCALL);
    EXPECT_EQ(Floats(effect, "color", 4), Row({0.25f, 0.5f, 0.75f, 1}));
    EXPECT_EQ(Floats(effect, "weights", 4), Row({1, 2, 3, 4}));
}

TEST_F(EffectTest, FindsMembersAndElementsByNameAndByHandle) {
    const Held<ID3DXEffect> effect = Make(), other = Make();
    const float place[] = {7, 8, 9};
    EXPECT_EQ(D3D_OK, effect->SetValue("lights[1].pos", place, 12));
    EXPECT_EQ(Floats(effect, "lights", 10), Row({0, 0, 0, 0, 0, 7, 8, 9, 0, 0}));
    const D3DXHANDLE light = effect->GetParameterByName("lights", "[1]");
    EXPECT_EQ(effect->GetParameterByName(light, "pos"), effect->GetParameter(light, 0));
    EXPECT_EQ(Floats(effect, effect->GetParameterByName(light, "pos"), 3), Row({7, 8, 9}));
    EXPECT_EQ(effect->GetParameterBySemantic(nullptr, "tint"),
              effect->GetParameterByName(nullptr, "color"));
    EXPECT_EQ(effect->GetParameter(nullptr, 1000), nullptr);
    // A handle is of one effect.
    EXPECT_EQ(D3DERR_INVALIDCALL,
              other->SetFloat(effect->GetParameterByName(nullptr, "number"), 1));
    // The same address with another text.
    char name[16] = "weights[1]";
    effect->SetFloat(name, 20);
    effect->SetFloat(name, 20);
    std::strcpy(name, "weights[3]");
    effect->SetFloat(name, 40);
    std::strcpy(name, "weights[9]");
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->SetFloat(name, 90));
    EXPECT_EQ(Floats(effect, "weights", 4), Row({1, 20, 3, 40}));
}

TEST_F(EffectTest, MatricesAreRowByRowForTheHostWhateverTheirLayout) {
    const Held<ID3DXEffect> effect = Make();
    const D3DXMATRIX matrix = Counting();
    for (const char* name : {"world", "rows", "bones[2]"}) {
        EXPECT_EQ(D3D_OK, effect->SetMatrix(name, &matrix)) << name;
        EXPECT_EQ(Floats(effect, name, 16), Row(&matrix._11, &matrix._11 + 16)) << name;
        EXPECT_EQ(D3D_OK, effect->SetMatrixTranspose(name, &matrix));
        D3DXMATRIX back;
        EXPECT_EQ(D3D_OK, effect->GetMatrix(name, &back));
        EXPECT_EQ(back._12, matrix._21) << name;
    }
    effect->SetMatrix("small", &matrix);
    EXPECT_EQ(Floats(effect, "small", 9), Row({1, 2, 3, 5, 6, 7, 9, 10, 11}));
    effect->SetMatrix("affine", &matrix);
    EXPECT_EQ(Floats(effect, "affine", 12), Row({1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15}));
    const D3DXMATRIX many[5] = {Counting(100), Counting(200), Counting(300), {}, {}};
    EXPECT_EQ(D3D_OK, effect->SetMatrixArray("bones", many, 5));
    EXPECT_EQ(Floats(effect, "bones", 48)[47], 315);
    EXPECT_EQ(Floats(effect, "rows", 16)[1], matrix._21) << "what follows stays";
}

TEST_F(EffectTest, ArraysAreCutAndFillInOrder) {
    const Held<ID3DXEffect> effect = Make();
    const float values[20] = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19};
    effect->SetFloatArray("weights", values, 2);
    EXPECT_EQ(Floats(effect, "weights", 4), Row({10, 11, 3, 4}));
    effect->SetFloatArray("weights", values, 20);
    EXPECT_EQ(Floats(effect, "weights", 4), Row({10, 11, 12, 13}));
    effect->SetFloatArray("small", values, 4);
    EXPECT_EQ(Floats(effect, "small", 9), Row({10, 11, 12, 13, 0, 0, 0, 0, 0}));
    const D3DXVECTOR4 vector(1, 2, 3, 4);
    effect->SetVector("place", &vector);
    EXPECT_EQ(Floats(effect, "place", 3), Row({1, 2, 3}));
}

TEST_F(EffectTest, HoldsItsTexturesUntilTheyAreReplaced) {
    Held<IDirect3DTexture9> a = Texture(4, 4), b = Texture(4, 4);
    Held<ID3DXEffect> effect = Make();
    effect->SetTexture("picture", a);
    effect->SetTexture("picture", a);
    EXPECT_EQ(CountOf(a), 2u);
    Held<IDirect3DBaseTexture9> got;
    EXPECT_EQ(D3D_OK, effect->GetTexture("picture", got.Out()));
    EXPECT_EQ(CountOf(a), 3u);
    got.Free();
    effect->SetTexture("picture", b);
    EXPECT_EQ(CountOf(a), 1u);
    effect.Free();
    EXPECT_EQ(CountOf(b), 1u);

    effect = Make();
    Held<IDirect3DTexture9> target = Target();
    effect->SetTexture("picture", target);
    effect->SetTexture("mask", a);
    effect->OnLostDevice();
    EXPECT_EQ(CountOf(target), 1u);
    EXPECT_EQ(CountOf(a), 2u);
}

TEST_F(EffectTest, PassesRunInsideOfBeginAndEndOnly) {
    const Held<ID3DXEffect> effect = Make();
    UINT passes = 0;
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->BeginPass(0));
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->End());
    EXPECT_EQ(D3D_OK, effect->Begin(&passes, 0));
    EXPECT_EQ(passes, 2u) << "of the first technique";
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->Begin(&passes, 0));
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->BeginPass(2));
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->EndPass());
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->CommitChanges());
    EXPECT_EQ(D3D_OK, effect->BeginPass(1));
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->BeginPass(0));
    EXPECT_EQ(D3D_OK, effect->SetTechnique("Second")) << "for the next Begin";
    EXPECT_EQ(D3D_OK, effect->End());
    EXPECT_EQ(D3D_OK, effect->Begin(&passes, 0));
    EXPECT_EQ(passes, 1u);
    EXPECT_EQ(D3D_OK, effect->End());
    EXPECT_EQ(D3D_OK, effect->SetTechnique(effect->GetTechniqueByName("Empty")));
    EXPECT_EQ(D3D_OK, effect->Begin(&passes, 0));
    EXPECT_EQ(passes, 0u);
    EXPECT_EQ(D3DERR_INVALIDCALL, effect->BeginPass(0));
    EXPECT_EQ(D3D_OK, effect->End());
    EXPECT_EQ(effect->GetTechniqueByName("first"), nullptr);
    D3DXHANDLE next = nullptr;
    EXPECT_EQ(D3D_OK, effect->FindNextValidTechnique("Second", &next));
    EXPECT_EQ(next, effect->GetTechniqueByName("Empty"));
    EXPECT_EQ(S_FALSE, effect->FindNextValidTechnique(next, &next));

    const Held<ID3DXEffect> bare = Make("float number;");
    EXPECT_EQ(D3DERR_INVALIDCALL, bare->Begin(&passes, 0));
}

TEST_F(EffectTest, APassSetsStatesShadersAndTexturesAndEndPutsThemBack) {
    Held<IDirect3DTexture9> before = Texture(4, 4), picture = Texture(4, 4), mask = Texture(4, 4);
    const Held<ID3DXEffect> effect = Make();
    device->SetTexture(0, before);
    Set(D3DRS_ALPHAREF, 3);
    effect->SetTexture("picture", picture);
    effect->SetTexture("mask", mask);
    effect->SetInt("reference", 30);
    UINT passes = 0;
    effect->Begin(&passes, 0);
    ASSERT_EQ(D3D_OK, effect->BeginPass(0));
    EXPECT_EQ(Render(D3DRS_ALPHAREF), 60u);
    EXPECT_EQ(Render(D3DRS_CULLMODE), D3DCULL_NONE + 0u);
    EXPECT_EQ(SamplerOf(0, D3DSAMP_MINFILTER), D3DTEXF_LINEAR + 0u);
    EXPECT_EQ(SamplerOf(0, D3DSAMP_ADDRESSU), D3DTADDRESS_CLAMP + 0u);
    EXPECT_EQ(Bound(0), picture.Get());
    EXPECT_EQ(HasShaders(), std::pair(true, true));
    // What is set now waits.
    effect->SetInt("reference", 40);
    effect->SetTexture("picture", nullptr);
    EXPECT_EQ(Render(D3DRS_ALPHAREF), 60u);
    EXPECT_EQ(Bound(0), picture.Get());
    Set(D3DRS_CULLMODE, D3DCULL_CW);
    EXPECT_EQ(D3D_OK, effect->CommitChanges());
    EXPECT_EQ(Render(D3DRS_ALPHAREF), 80u);
    EXPECT_EQ(Bound(0), nullptr);
    EXPECT_EQ(Render(D3DRS_CULLMODE), D3DCULL_CW + 0u) << "no parameter decides it";
    effect->EndPass();
    ASSERT_EQ(D3D_OK, effect->BeginPass(1));
    EXPECT_EQ(HasShaders(), std::pair(true, false)) << "the pass names one of them";
    EXPECT_EQ(Bound(1), mask.Get());
    effect->EndPass();
    EXPECT_EQ(D3D_OK, effect->End());
    EXPECT_EQ(Render(D3DRS_ALPHAREF), 3u);
    EXPECT_EQ(Render(D3DRS_CULLMODE), D3DCULL_CCW + 0u);
    EXPECT_EQ(Render(D3DRS_ZENABLE), 1u);
    EXPECT_EQ(SamplerOf(0, D3DSAMP_MINFILTER), D3DTEXF_POINT + 0u);
    EXPECT_EQ(Bound(0), before.Get());
    EXPECT_EQ(Bound(1), nullptr);
    EXPECT_EQ(HasShaders(), std::pair(false, false));
    EXPECT_EQ(CountOf(before), 1u);
    EXPECT_EQ(CountOf(picture), 1u);
}

TEST_F(EffectTest, FlagsTellWhatIsNotPutBack) {
    const struct {
        DWORD flags;
        bool states, samplers, shaders;
    } cases[] = {{D3DXFX_DONOTSAVESTATE, false, false, false},
                 {D3DXFX_DONOTSAVESAMPLERSTATE, true, false, true},
                 {D3DXFX_DONOTSAVESHADERSTATE, true, true, false}};
    const Held<ID3DXEffect> effect = Make();
    for (const auto& c : cases) {
        Set(D3DRS_ALPHAREF, 3);
        Sampler(D3DSAMP_MINFILTER, D3DTEXF_POINT);
        device->SetVertexShader(nullptr), device->SetPixelShader(nullptr);
        UINT passes = 0;
        effect->Begin(&passes, c.flags);
        effect->BeginPass(0);
        effect->EndPass();
        effect->End();
        EXPECT_EQ(Render(D3DRS_ALPHAREF) == 3, c.states) << c.flags;
        EXPECT_EQ(SamplerOf(0, D3DSAMP_MINFILTER) == D3DTEXF_POINT, c.samplers) << c.flags;
        EXPECT_EQ(!HasShaders().first, c.shaders) << c.flags;
    }
    device->SetVertexShader(nullptr), device->SetPixelShader(nullptr);
}

TEST_F(EffectTest, LivesThroughLossAndLongerThanItsHostsDevice) {
    Held<ID3DXEffect> effect = Make();
    UINT passes = 0;
    effect->Begin(&passes, 0);
    effect->BeginPass(0);
    VornPlatform::LoseDevice();
    VornPlatform::RestoreDevice();
    D3DPRESENT_PARAMETERS pp = Parameters();
    EXPECT_EQ(D3D_OK, device->Reset(&pp)) << "effects are not in its way";
    EXPECT_EQ(D3D_OK, effect->End());
    effect->Begin(&passes, 0);
    EXPECT_EQ(D3D_OK, effect->BeginPass(0));
    EXPECT_GT(std::exchange(device, nullptr)->Release(), 0u);
    effect.Free(); // in the middle; the device goes with it
    EXPECT_EQ(VornPlatform::CountLiveObjects().devices, 0);
    Open(Parameters());
}

TEST_F(EffectTest, FailuresLeaveNothing) {
    const TempFolder folder;
    const std::string path = folder.File("bad.fx", std::string(Declarations) + Techniques +
                                                       "technique T { pass { CullMode = ; } }");
    const VornPlatform::LiveObjects before = VornPlatform::CountLiveObjects();
    ID3DXEffect* effect = nullptr;
    const auto create = [](IDirect3DDevice9* on, const char* file, ID3DXEffect** out) {
        return D3DXCreateEffectFromFileA(on, file, nullptr, nullptr, 0, nullptr, out, nullptr);
    };
    EXPECT_LT(create(device, path.c_str(), &effect), 0);
    EXPECT_EQ(effect, nullptr);
    EXPECT_EQ(D3DERR_INVALIDCALL, create(nullptr, path.c_str(), &effect));
    EXPECT_EQ(D3DERR_INVALIDCALL, create(device, nullptr, &effect));
    EXPECT_EQ(D3DERR_INVALIDCALL, create(device, path.c_str(), nullptr));
    EXPECT_EQ(VornPlatform::CountLiveObjects(), before);
}

// Files by name, and how often each was opened and closed.
struct HostFiles final : ID3DXInclude {
    HRESULT Open(D3DXINCLUDE_TYPE, LPCSTR name, LPCVOID parent, LPCVOID* data,
                 UINT* bytes) override {
        const auto file = files.find(name);
        if (file == files.end())
            return E_FAIL;
        parents.push_back(parent);
        ++open;
        *data = file->second.data();
        *bytes = static_cast<UINT>(file->second.size());
        return D3D_OK;
    }
    HRESULT Close(LPCVOID) override { return --open, D3D_OK; }

    std::map<std::string, std::string> files;
    std::vector<LPCVOID> parents;
    int open = 0;
};

TEST_F(EffectTest, AHostsOwnIncludesAreOpenedAndClosed) {
    HostFiles host;
    host.files["a.h"] = "#include \"b.h\"\n";
    host.files["b.h"] = "float number = NUMBER;\n";
    const D3DXMACRO macros[] = {{"NUMBER", "4.5"}, {nullptr, nullptr}};
    const auto create = [&](const std::string& text, ID3DXEffect** effect, ID3DXBuffer** errors) {
        return D3DXCreateEffect(device, text.data(), static_cast<UINT>(text.size()), macros, &host,
                                0, nullptr, effect, errors);
    };
    Held<ID3DXEffect> effect;
    ASSERT_EQ(D3D_OK, create("#include \"a.h\"\n", effect.Out(), nullptr));
    EXPECT_EQ(Floats(effect, "number", 1), Row({4.5f}));
    EXPECT_EQ(host.parents, (std::vector<LPCVOID>{nullptr, host.files["a.h"].data()}));
    EXPECT_EQ(host.open, 0);
    Held<ID3DXBuffer> errors;
    EXPECT_LT(create("#include \"a.h\"\n#include \"c.h\"\n", effect.Out(), errors.Out()), 0);
    ASSERT_NE(errors.Get(), nullptr);
    EXPECT_THAT(static_cast<const char*>(errors->GetBufferPointer()), testing::HasSubstr("c.h"));
    EXPECT_EQ(host.open, 0);
}

// --- shaders by themselves

class ConstantTableTest : public EffectTest {
protected:
    struct Shader {
        HRESULT result = E_FAIL;
        Held<ID3DXBuffer> code, errors;
        Held<ID3DXConstantTable> constants;
    };
    static Shader Compile(const std::string& text, const char* entry, const char* profile) {
        Shader s;
        s.result =
            D3DXCompileShader(text.data(), static_cast<UINT>(text.size()), nullptr, nullptr, entry,
                              profile, 0, s.code.Out(), s.errors.Out(), s.constants.Out());
        return s;
    }
    std::vector<float> Registers(UINT first, UINT count) {
        std::vector<float> values(count * 4);
        EXPECT_EQ(D3D_OK, device->GetVertexShaderConstantF(first, values.data(), count));
        return values;
    }
};

constexpr const char* Skinned = R"(
struct Fog { float4 tint; float2 range; };
float4x4 world : register(c0);
float4x3 bones[3] : register(c4);
Fog fog : register(c20);
float4 start : register(c30) = { 1, 2, 3, 4 };
float4 unused;
float4 main(float4 p : POSITION, float i : BLENDINDICES) : POSITION {
    return mul(float4(mul(p, bones[(int)i]), 1), world) + fog.tint * fog.range.y + start;
})";

TEST_F(ConstantTableTest, NamesWriteRegistersOfTheDevice) {
    const Shader s = Compile(Skinned, "main", "vs_3_0");
    ASSERT_EQ(s.result, D3D_OK) << static_cast<char*>(s.errors ? s.errors->GetBufferPointer() : 0);
    ID3DXConstantTable& table = *s.constants.Get();
    EXPECT_EQ(table.GetConstantByName(nullptr, "unused"), nullptr);
    EXPECT_EQ(table.GetConstantByName("fog", "range"),
              table.GetConstantByName(nullptr, "fog.range"));
    const D3DXMATRIX m[5] = {Counting(1), Counting(101), Counting(201), Counting(301), {}};
    EXPECT_EQ(D3D_OK, table.SetMatrix(device, "world", m));
    EXPECT_EQ(Registers(0, 1), Row({1, 5, 9, 13}));
    EXPECT_EQ(D3D_OK, table.SetMatrixArray(device, "bones", m + 1, 4));
    EXPECT_EQ(Registers(4, 2), Row({101, 105, 109, 113, 102, 106, 110, 114}));
    EXPECT_EQ(Registers(12, 2), Row({303, 307, 311, 315, 0, 0, 0, 0})) << "no more than it has";
    EXPECT_EQ(D3D_OK, table.SetMatrixArray(device, "bones", m, 1));
    EXPECT_EQ(D3D_OK, table.SetMatrixArray(device, "bones", nullptr, 0));
    EXPECT_EQ(D3D_OK, table.SetMatrix(device, "bones[2]", m));
    EXPECT_EQ(Registers(4, 1), Row({1, 5, 9, 13}));
    EXPECT_EQ(Registers(7, 1), Row({201, 205, 209, 213}));
    EXPECT_EQ(Registers(10, 1), Row({1, 5, 9, 13}));
    const float range[] = {5, 6};
    EXPECT_EQ(D3D_OK, table.SetFloatArray(device, "fog.range", range, 2));
    EXPECT_EQ(Registers(21, 1), Row({5, 6, 0, 0}));
    EXPECT_EQ(D3D_OK, table.SetDefaults(device));
    EXPECT_EQ(Registers(30, 1), Row({1, 2, 3, 4}));
    const HRESULT results[] = {
        table.SetMatrix(nullptr, "world", m), table.SetMatrix(device, "start", m),
        table.SetMatrix(device, "none", m),   table.SetMatrix(device, "world", nullptr),
        table.SetFloat(device, "fog", 1),     table.SetDefaults(nullptr)};
    for (const HRESULT result : results)
        EXPECT_EQ(result, D3DERR_INVALIDCALL);
}

} // namespace
