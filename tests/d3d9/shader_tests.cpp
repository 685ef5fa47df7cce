// SPDX-License-Identifier: MIT
//
// Shaders: what is refused, what they read, and how two stages fit together.
#include "tests/support/shaders.hpp"

namespace Tests {

class ShaderRuleTest : public ShaderTest, public testing::WithParamInterface<bool> {
protected:
    ShaderRuleTest() : ShaderTest(GetParam()) {}
};

TEST_P(ShaderRuleTest, CodeThatIsNotOursOrOfTheOtherStageIsRefusedAndLeavesNothing) {
    const ShaderCode sound = WithBlock(PassThrough(), "vec4 v;", 16, {{7, 0, 4}});
    std::vector<std::pair<std::string, ShaderCode>> wrong(8, {"", sound});
    wrong[0].first = "no body", wrong[0].second.body.clear();
    wrong[1].first = "version", wrong[1].second.version = 0xffff0300;
    wrong[2].first = "ragged block", wrong[2].second.blockSize = 20;
    wrong[3].first = "block without a name", wrong[3].second.blockName.clear();
    wrong[4].first = "register", wrong[4].second.registers[0].registerIndex = 1100;
    wrong[5].first = "behind the block", wrong[5].second.registers[0].offset = 4;
    wrong[6].first = "sampler", wrong[6].second.samplers = {{"s", 16}};
    wrong[7].first = "usage", wrong[7].second.inputs = {{"at", "vec3", 14, 0}};
    const std::vector<DWORD> vertex = Pack(sound), pixel = Pack(Plain("vec4(1)"));
    const DWORD foreign[] = {0xfffe0300, 0x0200001f, 0x80000000, 0x900f0000, 0x0000ffff};
    Held<IDirect3DVertexShader9> v;
    Held<IDirect3DPixelShader9> p;
    EXPECT_EQ(D3DERR_INVALIDCALL, device->CreateVertexShader(nullptr, v.Out()));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->CreateVertexShader(vertex.data(), nullptr));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->CreateVertexShader(foreign, v.Out()));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->CreateVertexShader(pixel.data(), v.Out()));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->CreatePixelShader(vertex.data(), p.Out()));
    EXPECT_EQ(D3DERR_INVALIDCALL, Host().MakePixelShader(nullptr, p.Out()));
    for (const auto& [why, code] : wrong) {
        EXPECT_EQ(D3DERR_INVALIDCALL, device->CreateVertexShader(Pack(code).data(), v.Out()))
            << why;
        EXPECT_EQ(D3DERR_INVALIDCALL,
                  Host().MakeVertexShader(std::make_shared<const ShaderCode>(code), v.Out()))
            << why;
    }
    EXPECT_EQ(v.Get(), nullptr);
    EXPECT_EQ(VornPlatform::CountLiveObjects().vertexShaders, 0);
    EXPECT_EQ(D3D_OK, device->CreateVertexShader(vertex.data(), v.Out()));
    EXPECT_EQ(D3D_OK, device->CreatePixelShader(pixel.data(), p.Out()));
    EXPECT_EQ(VornPlatform::CountLiveObjects().vertexShaders, 1);
    EXPECT_EQ(VornPlatform::CountLiveObjects().pixelShaders, 1);
}

TEST(ShaderCodeTest, PackedCodeComesBackWholeAndAnyBrokenWordIsNoticed) {
    ShaderCode code = WithBlock(Plain("vec4(g.m[0])"), "mat4 m;", 64,
                                {{0, 0, 4}, {9, 16, 3, RegisterCopy::Int}, {1, 32, 1}});
    code.structs = "struct S { float f; };";
    code.inputs = {{"a", "ivec4", D3DDECLUSAGE_BLENDINDICES, 0}, {"b", "bool", 5, 15}};
    code.samplers = {{"first", 0, SamplerKind::Flat}, {"last", 15, SamplerKind::Volume}};
    const std::vector<DWORD> words = Pack(code);
    const auto read = VornPlatform::Unpack(words.data());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(*read, code);
    EXPECT_EQ(VornPlatform::Unpack(std::vector<DWORD>(words).data()), read);
    for (std::size_t i = 0; i < words.size(); ++i)
        for (const DWORD flip : {1u, 0x80000000u, 0xffffffffu}) {
            std::vector<DWORD> broken = words;
            broken[i] ^= flip;
            EXPECT_EQ(VornPlatform::Unpack(broken.data()), nullptr) << i;
        }
}

TEST_P(ShaderRuleTest, WhatIsBoundIsGivenOutAndKeptAndResetTakesItAway) {
    Held<IDirect3DVertexShader9> vertex = MakeVertex(PassThrough()), v;
    Held<IDirect3DPixelShader9> pixel = MakePixel(Plain("vec4(0, 1, 0, 1)")), p;
    EXPECT_EQ(D3D_OK, device->GetVertexShader(v.Out()));
    EXPECT_EQ(v.Get(), nullptr);
    device->SetVertexShader(vertex), device->SetPixelShader(pixel);
    EXPECT_EQ(D3D_OK, device->GetVertexShader(v.Out()));
    EXPECT_EQ(D3D_OK, device->GetPixelShader(p.Out()));
    EXPECT_EQ(v.Get(), vertex.Get());
    EXPECT_EQ(p.Get(), pixel.Get());
    EXPECT_EQ(CountOf(vertex.Get()), 2u);
    v.Free(), p.Free(), vertex.Free();
    Cover();
    if (!GetParam()) {
        EXPECT_EQ(Pixel(), green) << "bound, though its host has let go of it";
    }
    const float four[4] = {1, 2, 3, 4};
    float back[4] = {};
    EXPECT_EQ(D3D_OK, device->SetPixelShaderConstantF(1099, four, 1));
    D3DPRESENT_PARAMETERS pp = Parameters();
    EXPECT_EQ(D3D_OK, device->Reset(&pp)) << "shaders are not in the way";
    EXPECT_EQ(D3D_OK, device->GetPixelShader(p.Out()));
    EXPECT_EQ(p.Get(), nullptr);
    EXPECT_EQ(D3D_OK, device->GetPixelShaderConstantF(1099, back, 1));
    EXPECT_EQ(back[3], 0);
}

TEST_P(ShaderRuleTest, RegistersHaveBoundsAndAreOfEachStageForItself) {
    const float two[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    float back[8] = {};
    for (const UINT first : {1099u, 1100u, 0xffffffffu}) {
        EXPECT_EQ(D3DERR_INVALIDCALL, device->SetVertexShaderConstantF(first, two, 2)) << first;
        EXPECT_EQ(D3DERR_INVALIDCALL, device->GetVertexShaderConstantF(first, back, 2)) << first;
    }
    EXPECT_EQ(D3DERR_INVALIDCALL, device->SetVertexShaderConstantF(0, nullptr, 1));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->GetVertexShaderConstantF(0, nullptr, 1));
    EXPECT_EQ(D3D_OK, device->SetVertexShaderConstantF(1100, two, 0));
    EXPECT_EQ(D3D_OK, device->SetVertexShaderConstantF(1098, two, 2));
    EXPECT_EQ(D3D_OK, device->GetPixelShaderConstantF(1098, back, 2));
    EXPECT_EQ(back[4], 0);
    EXPECT_EQ(D3D_OK, device->GetVertexShaderConstantF(1097, back, 2));
    EXPECT_EQ(back[3], 0);
    EXPECT_EQ(back[7], 4);
}

TEST_P(ShaderRuleTest, FormatsAreToldAndWithAVertexShaderNeedNoPosition) {
    const D3DVERTEXELEMENT9 elements[] = {
        {0, 0, D3DDECLTYPE_FLOAT3, D3DDECLMETHOD_DEFAULT, D3DDECLUSAGE_TEXCOORD, 0}, D3DDECL_END()};
    Held<IDirect3DVertexDeclaration9> declaration, bound;
    ASSERT_EQ(D3D_OK, device->CreateVertexDeclaration(elements, declaration.Out()));
    DWORD fvf = 1;
    device->SetFVF(imageFvf);
    EXPECT_EQ(D3D_OK, device->GetFVF(&fvf));
    EXPECT_EQ(fvf, imageFvf);
    device->SetVertexDeclaration(declaration);
    EXPECT_EQ(D3D_OK, device->GetFVF(&fvf));
    EXPECT_EQ(fvf, 0u);
    EXPECT_EQ(D3D_OK, device->GetVertexDeclaration(bound.Out()));
    EXPECT_EQ(bound.Get(), declaration.Get());

    const float triangle[] = {-1, 3, 0.5f, 3, -1, 0.5f, -1, -1, 0.5f};
    device->BeginScene();
    EXPECT_EQ(D3DERR_INVALIDCALL, device->DrawPrimitiveUP(D3DPT_TRIANGLELIST, 1, triangle, 12));
    Use(VertexCode("vec3 at; vec4 to; void shader_main() { to = vec4(at, 1.0); }", {},
                   {{"at", "vec3", D3DDECLUSAGE_TEXCOORD, 0}}),
        Plain("vec4(0, 1, 0, 1)"));
    EXPECT_EQ(D3D_OK, device->DrawPrimitiveUP(D3DPT_TRIANGLELIST, 1, triangle, 12));
    device->EndScene();
    if (!GetParam()) {
        EXPECT_EQ(Screen().Count(green), Side * Side);
    }
}

TEST_P(ShaderRuleTest, LightsTellWhetherTheyAreOnOnceTheyWereSet) {
    BOOL on = 7;
    EXPECT_EQ(D3DERR_INVALIDCALL, device->GetLightEnable(0, &on));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->GetLightEnable(8, &on));
    device->LightEnable(3, TRUE);
    EXPECT_EQ(D3DERR_INVALIDCALL, device->GetLightEnable(3, nullptr));
    EXPECT_EQ(D3D_OK, device->GetLightEnable(3, &on));
    EXPECT_EQ(on, TRUE);
    device->LightEnable(3, FALSE);
    EXPECT_EQ(D3D_OK, device->GetLightEnable(3, &on));
    EXPECT_EQ(on, FALSE);
}

TEST_P(ShaderRuleTest, CallsAreTold) {
    const std::vector<DWORD> words = Pack(PassThrough());
    const float values[] = {0, 1, 0.5f, -1};
    Held<IDirect3DVertexShader9> shader;
    const VornPlatform::CallLog log;
    device->CreateVertexShader(words.data(), shader.Out());
    device->SetVertexShader(shader);
    device->SetVertexShaderConstantF(3, values, 1);
    device->SetPixelShaderConstantF(1100, values, 1); // which reads nothing
    EXPECT_EQ(log.Calls(), (std::vector<std::string>{
                               "CreateVertexShader(memory)",
                               "SetVertexShader(" + VornPlatform::ObjectName(shader.Get()) + ")",
                               "SetVertexShaderConstantF(3, [[0, 1, 0.5, -1]], 1)",
                               "SetPixelShaderConstantF(1100, [], 1)"}));
}

INSTANTIATE_TEST_SUITE_P(Backends, ShaderRuleTest, testing::Bool(), BackendName);

// --- constants

TEST_F(ShaderTest, RegistersGoWhereTheShaderWantsThemAndOutliveIt) {
    const ShaderCode adds =
        WithBlock(Plain("g.a + vec4(float(g.n), g.flags.x ? 0.25 : 0.0, g.flags.y ? 0.5 : 0.0, 0)"),
                  "vec4 a; int n; bvec2 flags;", 48,
                  {{4, 0, 4}, {0, 16, 1, RegisterCopy::Int}, {2, 24, 2, RegisterCopy::Bool}});
    Use(PassThrough(), adds);
    const float numbers[] = {1.9f, 0, 0, 0, 9, 9, 9, 9, 0, -3, 1, 1};
    const float tint[] = {-1, 0.25f, 0.25f, 1};
    device->SetPixelShaderConstantF(0, numbers, 3);
    device->SetPixelShaderConstantF(4, tint, 1);
    Cover();
    EXPECT_LE(Distance(Pixel(), Packed(0, 64, 191)), 1) << Hex(Pixel());

    const ShaderCode other =
        WithBlock(Plain("vec4(g.m[1].xyz, 1)"), "vec4 m[2];", 32, {{3, 0, 4}, {4, 16, 4}});
    device->SetPixelShader(MakePixel(other));
    Cover();
    EXPECT_LE(Distance(Pixel(), Packed(0, 64, 64)), 1) << "register 4 as it was";
    const float hell[] = {std::numeric_limits<float>::quiet_NaN(), 1e30f, -1e30f, 1};
    device->SetPixelShaderConstantF(0, hell, 1);
    device->SetPixelShader(MakePixel(WithBlock(Plain("vec4(g.n.x == 0, g.n.y == 2147483647, "
                                                     "g.n.z == -2147483647 - 1, 1)"),
                                               "ivec3 n;", 16, {{0, 0, 3, RegisterCopy::Int}})));
    Cover();
    EXPECT_EQ(Pixel(), white);
}

TEST_F(ShaderTest, DrawsReadTheConstantsOfTheirTimeMoreThanTheMachineHoldsAtOnce) {
    // 16 KiB a draw, so that the buffer for them begins anew several times.
    const ShaderCode code =
        WithBlock(VertexCode("vec3 at; vec4 to; vec4 c; void shader_main() { c = g.list[1023];"
                             "to = vec4(g.list[0].xy + at.xy / 32.0, 0.5, 1.0); }",
                             {{"c", "vec4", D3DDECLUSAGE_COLOR, 0}}),
                  "vec4 list[1024];", 16384, [] {
                      std::vector<RegisterCopy> copies;
                      for (UINT i = 0; i < 1024; ++i)
                          copies.push_back({i, i * 16, 4});
                      return copies;
                  }());
    Use(code, PixelCode("vec4 c; void shader_main() { color = c; }",
                        {{"c", "vec4", D3DDECLUSAGE_COLOR, 0}}));
    Picture expected(Side, Side, black);
    device->BeginScene();
    for (int i = 0; i < 1024; ++i) {
        const int x = i % 32 * 2, y = i / 32 * 2;
        const float place[] = {static_cast<float>(x + 1) / 32 - 1,
                               1 - static_cast<float>(y + 1) / 32, 0, 0};
        const float tint[] = {static_cast<float>(i % 256) / 255, 0, 1, 1};
        device->SetVertexShaderConstantF(0, place, 1);
        device->SetVertexShaderConstantF(1023, tint, 1);
        Cover();
        expected.Fill(x, y, x + 2, y + 2, Packed(i % 256, 0, 255));
    }
    device->EndScene();
    EXPECT_TRUE(Same(Screen(), expected));
}

TEST_F(ShaderTest, BothStagesOfAnEffectReadItsBlockAndWhatIsMissingInItIsZero) {
    const std::string members = "vec4 first; vec4 second;";
    Use(WithBlock(VertexCode("vec3 at; vec4 to; vec4 c;"
                             "void shader_main() { to = vec4(at, 1.0); c = g.first; }",
                             {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 3}}),
                  members, 32),
        WithBlock(PixelCode("vec4 c; void shader_main() { color = c + g.second; }",
                            {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 3}}),
                  members, 32));
    const float block[] = {1, 0, 0, 1, 0, 0, 1, 0};
    Host().SetEffectConstants(block, sizeof block);
    Cover();
    EXPECT_EQ(Pixel(), 0xffff00ffu);
    Host().SetEffectConstants(block, 16);
    Cover();
    EXPECT_EQ(Pixel(), red);
    Host().SetEffectConstants(nullptr, 0);
    Cover();
    EXPECT_EQ(Pixel(), black);

    // A shader of another effect has a block of its own making.
    device->SetPixelShader(MakePixel(
        WithBlock(PixelCode("vec4 c; void shader_main() { color = c + vec4(0, g.other.z, 0, 0); }",
                            {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 3}}),
                  "vec4 none; vec4 other;", 32)));
    Host().SetEffectConstants(block, sizeof block);
    Cover();
    EXPECT_EQ(Pixel(), 0xffffff00u);
    // And one that a host made reads registers beside it.
    device->SetPixelShader(
        MakePixel(WithBlock(PixelCode("vec4 c; void shader_main() { color = c + g.a; }",
                                      {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 3}}),
                            "vec4 a;", 16, {{0, 0, 4}})));
    const float values[] = {0, 1, 0, 0};
    device->SetPixelShaderConstantF(0, values, 1);
    Cover();
    EXPECT_EQ(Pixel(), 0xffffff00u);
}

// --- stages

TEST_F(ShaderTest, StagesMatchByUsageAndWhatIsNotWrittenIsZero) {
    Use(VertexCode("vec3 at; vec4 to; vec2 a; float b; vec4 unread;"
                   "void shader_main() { to = vec4(at, 1); a = vec2(1, 0.5); b = 1; unread = to; }",
                   {{"unread", "vec4", D3DDECLUSAGE_TEXCOORD, 7},
                    {"a", "vec2", D3DDECLUSAGE_TEXCOORD, 4},
                    {"b", "float", D3DDECLUSAGE_COLOR, 1}}),
        PixelCode("vec4 x; vec3 y; float z; bvec2 w; ivec2 n; void shader_main() {"
                  "color = vec4(x.x, y.x, z, w.x && !w.y && n == ivec2(1, 0) ? 1.0 : 0.0); }",
                  {{"x", "vec4", D3DDECLUSAGE_COLOR, 1},
                   {"y", "vec3", D3DDECLUSAGE_TEXCOORD, 0},
                   {"z", "float", D3DDECLUSAGE_COLOR, 0},
                   {"w", "bvec2", D3DDECLUSAGE_COLOR, 1},
                   {"n", "ivec2", D3DDECLUSAGE_TEXCOORD, 4}}));
    Cover();
    EXPECT_EQ(Pixel(), red);
}

TEST_F(ShaderTest, TheFixedVertexStageGivesAPixelShaderItsColorAndCoordinates) {
    Flat();
    device->SetPixelShader(MakePixel(PixelCode(
        "vec4 c; vec4 t; void shader_main() { color = vec4(c.x, t.x, t.y, t.w - t.z); }",
        {{"c", "vec4", D3DDECLUSAGE_COLOR, 0}, {"t", "vec4", D3DDECLUSAGE_TEXCOORD, 0}})));
    Image(0, 0, Side, Side, 0xff800000, {0, 0, 1, 1});
    EXPECT_LE(Distance(Pixel(48, 16), Packed(128, 193, 66)), 1) << Hex(Pixel(48, 16));
    D3DXMATRIX shift;
    D3DXMatrixIdentity(&shift)->_31 = 0.25f;
    device->SetTransform(D3DTS_TEXTURE0, &shift);
    Stage(D3DTSS_TEXTURETRANSFORMFLAGS, D3DTTFF_COUNT2);
    Image(0, 0, Side, Side, 0xff800000, {0, 0, 0.5f, 1});
    EXPECT_LE(Distance(Pixel(48, 16), Packed(128, 160, 66)), 1) << Hex(Pixel(48, 16));
    Set(D3DRS_LIGHTING, TRUE);
    Image(0, 0, Side, Side, 0xff800000);
    EXPECT_EQ(Channels(Pixel())[0], 0) << "lit by nothing";
}

TEST_F(ShaderTest, TheFixedPixelStageTakesAVertexShadersColorAndCoordinatesAsFarAsTheyGo) {
    Picture picture(2, 1, red);
    picture.At(1, 0) = green;
    const Held<IDirect3DTexture9> texture = Texture(picture);
    const std::string body = "vec3 at; vec4 to; vec4 c; vec2 t; void shader_main() {"
                             "to = vec4(at, 1.0); c = vec4(2, 0.5, -1, 1); t = vec2(0.75, 0); }";
    const ShaderVariable color = {"c", "vec4", D3DDECLUSAGE_COLOR, 0};
    const ShaderVariable coordinates = {"t", "vec2", D3DDECLUSAGE_TEXCOORD, 0};
    struct Case {
        std::vector<ShaderVariable> outputs;
        bool textured;
        std::uint32_t expected;
    };
    Set(D3DRS_LIGHTING, TRUE); // of no say
    for (const Case& c : {Case{{}, false, white}, Case{{color}, false, 0xffff8000},
                          Case{{color, coordinates}, true, 0xff008000},
                          Case{{color}, true, 0xffff0000}, Case{{coordinates}, true, green}}) {
        device->SetVertexShader(MakeVertex(VertexCode(body, c.outputs)));
        device->SetTexture(0, c.textured ? texture.Get() : nullptr);
        Cover(0xff0000ff);
        EXPECT_LE(Distance(Pixel(), c.expected), 1) << Hex(Pixel()) << " for " << Hex(c.expected);
    }
}

// --- pixels

TEST_F(ShaderTest, ColorsHaveBoundsBetweenTheStagesBelowTheThirdModel) {
    for (const DWORD version : {0xfffe0101u, 0xfffe0200u, 0xfffe0300u}) {
        ShaderCode vertex = VertexCode(
            "vec3 at; vec4 to; vec4 c; vec4 t;"
            "void shader_main() { to = vec4(at, 1.0); c = vec4(4); t = vec4(2); }",
            {{"c", "vec4", D3DDECLUSAGE_COLOR, 0}, {"t", "vec4", D3DDECLUSAGE_TEXCOORD, 0}});
        vertex.version = version;
        Use(vertex,
            PixelCode(
                "vec4 c; vec4 t; void shader_main() { color = vec4(c.x / 4.0, t.x / 2.0, 0, 1); }",
                {{"c", "vec4", D3DDECLUSAGE_COLOR, 0}, {"t", "vec4", D3DDECLUSAGE_TEXCOORD, 0}}));
        Cover();
        EXPECT_LE(Distance(Pixel(), Packed(version == 0xfffe0300 ? 255 : 64, 255, 0)), 1);
    }
}

TEST_F(ShaderTest, AlphaTestHoldsForShadersToo) {
    Use(PassThrough(), WithBlock(Plain("vec4(1, 0, 0, g.alpha)"), "float alpha;", 16, {{0, 0, 1}}));
    Set(D3DRS_ALPHATESTENABLE, TRUE);
    Set(D3DRS_ALPHAREF, 100);
    for (DWORD function = D3DCMP_NEVER; function <= D3DCMP_ALWAYS; ++function)
        for (const int alpha : {99, 100, 101, 300}) {
            Set(D3DRS_ALPHAFUNC, function);
            Clear(black);
            const float value[] = {static_cast<float>(alpha) / 255, 0, 0, 0};
            device->SetPixelShaderConstantF(0, value, 1);
            Cover();
            const bool results[] = {
                false,        false,        alpha<100, alpha == 100, alpha <= 100, alpha> 100,
                alpha != 100, alpha >= 100, true};
            EXPECT_EQ(Channels(Pixel())[0], results[function] ? 255 : 0)
                << function << " " << alpha;
        }
}

TEST_F(ShaderTest, EachOfTheSixteenSamplersHasItsTextureAndItsStates) {
    ShaderCode pixel = PixelCode("");
    std::string sum;
    std::vector<Held<IDirect3DTexture9>> textures;
    for (UINT i = 0; i < 16; ++i) {
        pixel.samplers.push_back({"s" + std::to_string(i), i});
        pixel.body += "uniform sampler2D s" + std::to_string(i) + ";\n";
        // The left half of each row of pixels shows its texel 0, the right one what the address
        // mode makes of 1.25.
        sum += "if (int(gl_FragCoord.y) == " + std::to_string(i) + ") color = texture(s" +
               std::to_string(i) + ", vec2(gl_FragCoord.x < 32.0 ? 0.25 : 1.25, 0.5));\n";
        Picture picture(2, 1, Packed(static_cast<int>(i) * 16, 0, 255));
        picture.At(1, 0) = Packed(static_cast<int>(i) * 16, 255, 0);
        textures.push_back(Texture(picture));
        EXPECT_EQ(D3D_OK, device->SetTexture(i, textures.back()));
        device->SetSamplerState(i, D3DSAMP_ADDRESSU, i % 2 ? D3DTADDRESS_CLAMP : D3DTADDRESS_WRAP);
    }
    pixel.body += "void shader_main() { color = vec4(0);\n" + sum + "}";
    Use(PassThrough(), pixel);
    Cover();
    const Picture screen = Screen();
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(screen.At(5, i), Packed(i * 16, 0, 255)) << i;
        EXPECT_EQ(screen.At(60, i), i % 2 ? Packed(i * 16, 255, 0) : Packed(i * 16, 0, 255)) << i;
    }
    EXPECT_EQ(screen.At(5, 16), black);
}

TEST_F(ShaderTest, SamplersWithoutATextureOrOfOtherKindsAreOpaqueBlack) {
    const Held<IDirect3DTexture9> texture = Texture(Picture(1, 1, white));
    for (const UINT unit : {0u, 1u, 2u})
        device->SetTexture(unit, texture);
    ShaderCode pixel = PixelCode("uniform sampler2D flat_; uniform samplerCUBE cube;");
    pixel.body = "vec4 color; uniform sampler2D x; uniform samplerCube y; uniform sampler3D z;"
                 "uniform sampler2D w; void shader_main() { vec4 one = texture(x, vec2(0));"
                 "color = vec4(one.x, texture(y, vec3(1)).x + texture(z, vec3(0)).x,"
                 "texture(w, vec2(0)).x, texture(y, vec3(1)).w * texture(z, vec3(0)).w *"
                 "texture(w, vec2(0)).w); }";
    pixel.samplers = {
        {"x", 0}, {"y", 1, SamplerKind::Cube}, {"z", 2, SamplerKind::Volume}, {"w", 9}};
    Use(PassThrough(), pixel);
    Cover();
    EXPECT_EQ(Pixel(), red);
    device->SetTexture(0, nullptr);
    Cover();
    EXPECT_EQ(Pixel(), black);
    // The names of the other stage's samplers are of no concern.
    ShaderCode vertex =
        VertexCode("vec3 at; vec4 to; vec4 c; uniform sampler2D w;"
                   "void shader_main() { to = vec4(at, 1); c = textureLod(w, vec2(0), 0.0); }",
                   {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 0}});
    vertex.samplers = {{"w", 1}};
    ShaderCode reader = PixelCode("vec4 c; uniform sampler2D w; void shader_main() {"
                                  "color = vec4(c.x, texture(w, vec2(0)).x, 0, 1); }",
                                  {{"c", "vec4", D3DDECLUSAGE_TEXCOORD, 0}});
    reader.samplers = {{"w", 9}};
    Use(vertex, reader);
    Cover();
    EXPECT_EQ(Pixel(), red);
}

TEST_F(ShaderTest, PixelsKnowTheirPlaceWithRowZeroAtTheTopInAnyTargetAndViewport) {
    const Held<IDirect3DTexture9> target = Target(32, 16);
    const Held<IDirect3DSurface9> surface = Level(target);
    Use(PassThrough(),
        Plain("vec4((gl_FragCoord.xy - 0.5) / 255.0, gl_FrontFacing ? 1.0 : 0.0, 1.0)"));
    Set(D3DRS_CULLMODE, D3DCULL_NONE);
    for (const bool toTexture : {false, true}) {
        if (toTexture)
            device->SetRenderTarget(0, surface), device->SetDepthStencilSurface(nullptr);
        const D3DVIEWPORT9 viewport = {4, 3, 20, 10, 0, 1};
        device->SetViewport(&viewport);
        Cover();
        const Picture picture = toTexture ? Read(surface) : Screen();
        for (const auto& [x, y] : {std::pair(4, 3), std::pair(23, 3), std::pair(7, 12)})
            EXPECT_EQ(picture.At(x, y), Packed(x, y, 255)) << x << " " << y << " " << toTexture;
        EXPECT_NE(picture.At(4, 2), Packed(4, 2, 255));
    }
    Draw(D3DPT_TRIANGLELIST,
         std::vector<Corner>{{-1, 1, 0, 0, 0, 0}, {-1, -3, 0, 0, 0, 0}, {3, 1, 0, 0, 0, 0}},
         imageFvf);
    EXPECT_EQ(Read(surface).At(7, 12), Packed(7, 12, 0)) << "seen from behind";
}

// --- programs

TEST_F(ShaderTest, WhatTheDriverDoesNotCompileIsNoShaderAndWhatItDoesNotLinkDrawsNothing) {
    Held<IDirect3DPixelShader9> none;
    const std::vector<DWORD> words = VornPlatform::Pack(Plain("no_such_name"));
    EXPECT_EQ(D3DERR_INVALIDCALL, device->CreatePixelShader(words.data(), none.Out()));
    EXPECT_EQ(none.Get(), nullptr);
    Use(PassThrough(), WithBlock(Plain("g.list[50000]"), "vec4 list[60000];", 960000));
    Cover();
    Use(PassThrough(), Plain("vec4(0, 1, 0, 1)"));
    Cover();
    EXPECT_EQ(Pixel(), green);
}

TEST_F(ShaderTest, EqualShadersAreLinkedOnceAlsoAcrossAReset) {
    const ShaderCode vertex = PassThrough(), pixel = Plain("vec4(0, 0.2, 0, 1)");
    const int before = VornPlatform::CountShaders().linked;
    for (int round = 0; round < 3; ++round) {
        Use(vertex, pixel);
        Cover();
        device->SetVertexShader(nullptr), device->SetPixelShader(nullptr);
        Use(vertex, pixel);
        Cover();
        EXPECT_EQ(Pixel(), 0xff003300u);
        EXPECT_EQ(VornPlatform::CountShaders().linked, before + 1) << round;
        D3DPRESENT_PARAMETERS pp = Parameters();
        ASSERT_EQ(D3D_OK, device->Reset(&pp));
        Clear(black);
    }
    for (int i = 0; i < 1100; ++i) { // more than are kept
        Use(vertex, Plain("vec4(0, " + std::to_string(i) + ", 0, 1)"));
        if (i % 100 == 0) {
            Cover();
            EXPECT_EQ(Pixel(), i ? green : black);
        }
    }
}

} // namespace Tests
