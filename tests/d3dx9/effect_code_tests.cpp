// SPDX-License-Identifier: MIT
//
// What CompileEffectText and CompileShaderText make of a text: places, registers, start values,
// and which text is refused. What comes out on the screen is tested elsewhere.
#include "platform/d3d9/counters.hpp"
#include "platform/d3dx9/effect/effect_code.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>

using namespace VornPlatform;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

EffectCode Compile(const std::string& text) {
    return CompileEffectText("test.fx", text, {}, FileIncludes());
}

CompiledShader CompileRaw(const std::string& text, const std::string& profile = "ps_3_0") {
    return CompileShaderText("test.hlsl", text, {}, FileIncludes(), "Main", profile);
}

std::string ErrorOf(const std::string& text) {
    try {
        CompileRaw(text);
    } catch (const EffectError& error) {
        return error.what();
    }
    return "";
}

const ShaderConstant& Find(const std::vector<ShaderConstant>& constants, const std::string& name) {
    for (const ShaderConstant& constant : constants)
        if (constant.name == name)
            return constant;
    throw std::runtime_error(name + " is not there");
}

template <typename Number>
std::vector<Number> Read(const EffectCode& code, UINT offset, std::size_t count) {
    std::vector<Number> numbers(count);
    std::memcpy(numbers.data(), &code.start.at(offset), count * sizeof(Number));
    return numbers;
}

const std::string PixelTail = "float4 Main(float4 uv : TEXCOORD0) : COLOR { return %; } "
                              "technique T { pass P { PixelShader = compile ps_3_0 Main(); } }";

std::string Returning(const std::string& before, const std::string& value) {
    std::string text = before + PixelTail;
    return text.replace(text.find('%'), 1, value);
}

} // namespace

TEST(EffectCode, ParametersLieAsStd140HasItThoughNoShaderReadsThem) {
    const EffectCode code = Compile("float a; float2 b; float3 c; float d; float e[2]; bool f;"
                                    "struct S { float x; float3 y; float2 z; float w; };"
                                    "S s[2]; float4x3 m[2]; int i;");
    const auto at = [&](const char* name) { return Find(code.parameters, name).offset; };
    EXPECT_THAT((std::vector{at("a"), at("b"), at("c"), at("d"), at("e"), at("f"), at("s"), at("m"),
                             at("i")}),
                ElementsAre(0, 8, 16, 28, 32, 64, 80, 176, 272));
    const ShaderConstant& s = Find(code.parameters, "s");
    EXPECT_THAT((std::vector{s.members[0].offset, s.members[1].offset, s.members[2].offset,
                             s.members[3].offset, s.elementStride}),
                ElementsAre(80, 96, 112, 120, 48));
    EXPECT_EQ(Find(code.parameters, "m").elementStride, 48u);
    EXPECT_EQ(code.start.size(), 288u);
}

TEST(EffectCode, TheCompilerPutsMembersOfStructuresWhereTheyWereReflected) {
    // It packs y behind x when left alone, which is no layout of GLSL.
    const EffectCode code = Compile(Returning(
        "struct S { float x; float3 y; }; S s[2]; float4x4 last;", "s[1].y.xyzz + last[0]"));
    EXPECT_EQ(code.shaders.at(0).code->blockSize, code.start.size());
    EXPECT_TRUE(code.shaders.at(0).code->blocksInArray);
}

TEST(EffectCode, StartValuesOfMatricesLieColumnByColumn) {
    const EffectCode code = Compile("float2x3 m = {1, 2, 3, 4, 5, 6}; float3x3 ones = 1;"
                                    "struct S { float a; int b[2]; }; S s = {0.5, {7, -8}};"
                                    "bool3 flags = {true, false, 2}; int color = 0xff112233;");
    EXPECT_EQ(Read<float>(code, 0, 10), (std::vector<float>{1, 4, 0, 0, 2, 5, 0, 0, 3, 6}));
    EXPECT_EQ(Read<float>(code, 48, 7), (std::vector<float>{1, 1, 1, 0, 1, 1, 1}));
    const UINT s = Find(code.parameters, "s").offset;
    EXPECT_EQ(Read<float>(code, s, 1)[0], 0.5f);
    EXPECT_EQ(Read<int>(code, s + 16, 1)[0], 7);
    EXPECT_EQ(Read<int>(code, s + 32, 1)[0], -8);
    EXPECT_EQ(Read<int>(code, Find(code.parameters, "flags").offset, 3), (std::vector{1, 0, 1}));
    EXPECT_EQ(Read<std::uint32_t>(code, Find(code.parameters, "color").offset, 1)[0], 0xff112233u);
}

TEST(EffectCode, OneShaderIsCompiledOnceForAllPassesThatNameIt) {
    const auto before = shaderCount.compiled;
    const EffectCode code =
        Compile("float4 V(float4 p : POSITION, uniform float f) : POSITION { return p * f; }"
                "technique A { pass { VertexShader = compile vs_2_0 V(1); }"
                "              pass { VertexShader = compile vs_2_0 V(1); }"
                "              pass { VertexShader = compile vs_2_0 V(2); } }");
    EXPECT_EQ(shaderCount.compiled - before, 2);
    EXPECT_EQ(code.techniques[0].passes[0].vertexShader, code.techniques[0].passes[1].vertexShader);
    EXPECT_NE(code.techniques[0].passes[0].vertexShader, code.techniques[0].passes[2].vertexShader);
    EXPECT_EQ(code.techniques[0].passes[0].pixelShader, -1);
}

TEST(EffectCode, SamplersTakeTheIndexOfTheFileAndThenTheFirstFree) {
    const EffectCode code = Compile(
        Returning("texture t; sampler first; sampler unread; sampler named : register(s0);"
                  "sampler2D last[2] = { sampler_state { Texture = <t>; MinFilter = LINEAR; },"
                  "                      sampler_state { AddressU = CLAMP; } };",
                  "tex2D(first, uv.xy) + texCUBE(named, uv.xyz) + tex2D(last[1], uv.xy)"));
    const EffectShader& shader = code.shaders.at(0);
    std::vector<std::pair<UINT, std::string>> uses;
    for (const EffectShader::Use& use : shader.samplers)
        uses.emplace_back(use.index, code.samplers.at(static_cast<std::size_t>(use.sampler)).name);
    EXPECT_THAT(uses, testing::UnorderedElementsAre(std::pair(1u, "first"), std::pair(0u, "named"),
                                                    std::pair(2u, "last[1]")));
    for (const ShaderSampler& sampler : shader.code->samplers)
        EXPECT_EQ(sampler.kind, sampler.index == 0 ? SamplerKind::Cube : SamplerKind::Flat);
    ASSERT_EQ(code.samplers.at(3).states.size(), 2u);
    EXPECT_EQ(code.samplers[3].states[0].object, 0);
    EXPECT_EQ(code.samplers[4].states.at(0).value.number, 3);
}

TEST(RawShader, RegistersGoToThoseThatAskAndThenToTheFirstThatFit) {
    const CompiledShader shader = CompileRaw(
        "float unused; float4x3 m; float2 v[2] : register(c4); row_major float2x4 r;"
        "struct S { float a; float3x2 b; }; S s; bool flag = true; sampler t : register(s2);"
        "float4 Main(float4 uv : TEXCOORD0) : COLOR { float4 c = tex2D(t, uv.xy) + s.a + s.b[1][1];"
        " if (flag) c.xyz += mul(uv, m); return c + v[1].xyxy + mul(uv.xy, r); }");
    std::vector<std::pair<std::string, UINT>> first;
    for (const ShaderConstant& constant : shader.constants)
        first.emplace_back(constant.name, constant.registerIndex);
    EXPECT_THAT(first, ElementsAre(std::pair("m", 0u), std::pair("v", 4u), std::pair("r", 6u),
                                   std::pair("s", 8u), std::pair("flag", 3u), std::pair("t", 2u)));
    const auto copyOf = [&](UINT index) {
        for (const RegisterCopy& copy : shader.code->registers)
            if (copy.registerIndex == index)
                return copy;
        return RegisterCopy{index, ~0u, 0};
    };
    const UINT m = shader.constants[0].offset;
    EXPECT_EQ(copyOf(1), (RegisterCopy{1, m + 16, 4, RegisterCopy::Float}));
    EXPECT_EQ(copyOf(5), (RegisterCopy{5, shader.constants[1].offset + 16, 2}));
    EXPECT_EQ(copyOf(7), (RegisterCopy{7, shader.constants[2].offset + 16, 4}));
    EXPECT_EQ(copyOf(9).count, 3);
    EXPECT_EQ(copyOf(3).type, RegisterCopy::Bool);
    EXPECT_THAT(shader.constants[4].numbers, ElementsAre(1));
    EXPECT_FALSE(shader.code->blocksInArray);
}

TEST(RawShader, InputsAndOutputsAreKnownByTheirSemantics) {
    const CompiledShader shader =
        CompileRaw("struct O { float3 p : position; float4 c[2] : COLOR; float2x4 m : TEXCOORD6; };"
                   "void Main(int4 b : BLENDINDICES0, out O o, out float s : PSIZE) { o = (O)0;"
                   " o.c[1] = b; s = 1; }",
                   "vs_3_0");
    const auto namesOf = [](const std::vector<ShaderVariable>& variables) {
        std::vector<std::pair<int, int>> names;
        for (const ShaderVariable& variable : variables)
            names.emplace_back(variable.usage, variable.index);
        return names;
    };
    EXPECT_THAT(namesOf(shader.code->inputs), ElementsAre(std::pair(2, 0)));
    EXPECT_THAT(namesOf(shader.code->outputs),
                ElementsAre(std::pair(0, 0), std::pair(10, 0), std::pair(10, 1), std::pair(5, 6),
                            std::pair(5, 7), std::pair(4, 0)));
    EXPECT_EQ(shader.code->outputs[0].type, "vec4");
    EXPECT_EQ(shader.code->version, 0xfffe0300u);
}

TEST(RawShader, FaultsNameTheLineOfTheAuthor) {
    const struct {
        const char* text;
        const char* message;
    } cases[] = {
        {"float4 Main() : COLOR\n{\n  return missing;\n}", "test.hlsl(3): error: 'missing'"},
        {"float4 Main(sampler s : register(s0)) : COLOR { return noise(1); }", "'noise'"},
        {"float Twice(float x) { return Twice(x) * 2; }\nfloat4 Main() : COLOR "
         "{ return Twice(1); }",
         "test.hlsl(1): error: recursion: 'Twice'"},
        {"float4 Main(float4 p) : COLOR { return p; }", "'p' has no semantic"},
        {"float4 Main() : SHADE { return 1; }", "'SHADE' of 'Main'"},
        {"float Main() : DEPTH { return 1; }", "COLOR0"},
        {"sampler s; float4 Main() : COLOR { return tex2D(s, 0) + texCUBE(s, 0); }", "two kinds"},
        {"sampler s[2]; float4 Main(float i : COLOR) : COLOR { return tex2D(s[i], 0); }",
         "must be a number"},
        {"float4 Other() : COLOR { return 1; }", "no function 'Main'"},
        {"float4 big[5000]; float4 Main() : COLOR { return big[0]; }", "65536"},
    };
    for (const auto& [text, message] : cases)
        EXPECT_THAT(ErrorOf(text), HasSubstr(message)) << text;
}

TEST(RawShader, WhatACompilerWouldWalkWithoutEndIsRefused) {
    const auto repeat = [](int count, const std::string& text) {
        std::string all;
        for (int i = 0; i < count; ++i)
            all += text;
        return all;
    };
    const auto inMain = [](const std::string& statements) {
        return "float4 Main(float x : COLOR) : COLOR { " + statements + " return x; }";
    };
    // Each function calls the one before twice: 2^60 calls when they are written out.
    std::string doubling = "float f0(float x) { return x * 2; }";
    for (int i = 1; i <= 60; ++i) {
        const std::string before = "f" + std::to_string(i - 1) + "(x)";
        doubling +=
            "float f" + std::to_string(i) + "(float x) { return " + before + " + " + before + "; }";
    }
    EXPECT_THAT(ErrorOf(doubling + inMain("x = f60(x);")), HasSubstr("too long"));
    EXPECT_THAT(ErrorOf(inMain("float a[1000][1000][1000]; x = a[0][0][0];")),
                HasSubstr("65536 numbers"));
    EXPECT_THAT(ErrorOf(inMain(repeat(900, "for (; x < 3;) ") + "x++;")), HasSubstr("too deeply"));
    EXPECT_THAT(ErrorOf(inMain("x = " + repeat(20000, "abs(x), ") + "x;")),
                HasSubstr("too deeply"));
    EXPECT_THAT(ErrorOf(inMain(repeat(8000, "for (int i = 0; i < 3; ++i) x += i; "))),
                HasSubstr("too many loops"));
    // What is merely long compiles, whatever the stack of the host's thread.
    EXPECT_EQ(ErrorOf(inMain(repeat(1500, "for (int i = 0; i < 3; ++i) x += i; "))), "");
}

TEST(CompileEffect, CompilesAFileAgainOnlyWhenAByteOfItHasChanged) {
    const std::string path = std::filesystem::temp_directory_path() / "effect_code_tests.fx";
    std::ofstream(path) << Returning("float k;", "k");
    const auto first = CompileEffect(path, {}, FileIncludes());
    EXPECT_EQ(CompileEffect(path, {}, FileIncludes()), first);
    EXPECT_NE(CompileEffect(path, {{"M", "1"}}, FileIncludes()), first);
    std::ofstream(path) << Returning("float k;", "k + 1");
    EXPECT_NE(CompileEffect(path, {}, FileIncludes()), first);
    std::filesystem::remove(path);
    EXPECT_THROW(CompileEffect(path, {}, FileIncludes()), std::system_error);
}
