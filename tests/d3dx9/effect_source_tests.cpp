// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/effect_source.hpp"
#include "platform/d3dx9/effect/lexer.hpp"
#include "platform/d3dx9/effect/preprocessor.hpp"
#include "platform/d3dx9/effect/state_table.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <sstream>

using namespace VornPlatform;
using testing::ElementsAre;
using testing::HasSubstr;

namespace Tests {

static EffectSource SourceOf(const std::string& text,
                             const std::map<std::string, std::string>& files = {},
                             const Macros& macros = {}) {
    return ReadEffectSource("main.fx", text, macros,
                            [&files](const std::string& name, const std::string&,
                                     std::string& found) -> std::optional<std::string> {
                                found = name;
                                const auto file = files.find(name);
                                return file == files.end() ? std::nullopt
                                                           : std::optional(file->second);
                            });
}

static std::string ErrorOf(const std::string& text,
                           const std::map<std::string, std::string>& files = {}) {
    try {
        SourceOf(text, files);
    } catch (const EffectError& error) {
        return error.what();
    }
    return "no error";
}

static const SourceParameter& Parameter(const EffectSource& source, const std::string& name) {
    for (const SourceParameter& parameter : source.parameters)
        if (parameter.name == name)
            return parameter;
    throw std::out_of_range(name);
}

// An expression as text: "3", "(a.b + 2)", "a.0" of a component, "{1 2}".
static std::string Text(const Expression& e) {
    const auto part = [&e](std::size_t at) { return Text(e.operands.at(at)); };
    switch (e.kind) {
    case Expression::Kind::Number: {
        std::ostringstream number;
        number << e.number;
        return number.str();
    }
    case Expression::Kind::Parameter:
        return e.name;
    case Expression::Kind::Unary:
        return "(" + e.op + part(0) + ")";
    case Expression::Kind::Binary:
        return "(" + part(0) + " " + e.op + " " + part(1) + ")";
    case Expression::Kind::Choice:
        return "(" + part(0) + " ? " + part(1) + " : " + part(2) + ")";
    case Expression::Kind::Component:
        return part(0) + "." + std::to_string(static_cast<int>(e.number));
    case Expression::Kind::Element:
        return part(0) + "[" + part(1) + "]";
    case Expression::Kind::List:
        break;
    }
    std::string list;
    for (const Expression& operand : e.operands)
        list += (list.empty() ? "" : " ") + Text(operand);
    return "{" + list + "}";
}

static std::string Text(const SourceState& state) {
    std::string text = state.name + (state.index ? "[" + Text(*state.index) + "]" : "") + "=";
    if (const auto* value = std::get_if<Expression>(&state.value))
        return text + Text(*value);
    if (const auto* object = std::get_if<ObjectReference>(&state.value))
        return text + "<" + object->name + ">";
    if (const auto* call = std::get_if<CompileCall>(&state.value)) {
        text += call->profile + " " + call->entry;
        for (const std::string& argument : call->arguments)
            text += " |" + argument;
        return text;
    }
    return text + "null";
}

static std::vector<std::string> Texts(const std::vector<SourceState>& states) {
    std::vector<std::string> texts;
    for (const SourceState& state : states)
        texts.push_back(Text(state));
    return texts;
}

static std::string WithoutBlanks(std::string text) {
    std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
    return text;
}

TEST(EffectSource, StartValuesAreTheNumbersThatHlslMakesOfThem) {
    struct Case {
        const char* declaration;
        std::vector<double> numbers;
    };
    const Case cases[] = {
        {"float x = 1/2;", {0}},
        {"float x = 1/2.0;", {0.5}},
        {"float x = (float)1/2;", {0.5}},
        {"float x = -7 % 4;", {-3}},
        {"float x = 2 + 3 * 4 - 6 / 4;", {13}},
        {"float x = 1 << 4 | 0x0F & ~3;", {28}},
        {"float x = 0x1F + 010;", {39}},
        {"float3 x = { .5f, 1e2, 2.5h };", {0.5, 100, 2.5}},
        {"float x = (2 > 1 ? 3 : 4) + !0;", {4}},
        {"int2 x = { 2.7, -2.7 };", {2, -2}},
        {"bool2 x = { TRUE, 0.5 };", {1, 1}},
        {"float2 x = float4(1, 2, 3, 4);", {1, 2}},
        {"float2 x = float4(1, 2, 3, 4).wy;", {4, 2}},
        {"float4 x = { float2(1, 2), (float2)3 };", {1, 2, 3, 3}},
        {"float2x2 x = { { 1, 2 }, { 3, 4 } };", {1, 2, 3, 4}},
        {"float4x3 x[1] = { 1,2,3, 4,5,6, 7,8,9, 10,11,12, };",
         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}},
        {"float3 x = normalize(float3(0, 3, 4));", {0, 0.6, 0.8}},
        {"static const int n = 7 / 2; float x = n / 2;", {1}},
        {"static const float w[3] = { 1, 2, 3 }; float x = w[1] * 2;", {4}},
        {"struct S { int i; float2 f[2]; bool b; }; S x = { 1.5, { 2.5, 3, 4, 5 }, 6 };",
         {1, 2.5, 3, 4, 5, 1}},
        {"typedef int3 Cell; Cell x = { 1.5, 2, 3 };", {1, 2, 3}},
        {"float y = 1, x : FOO < float z = 9; > = 2;", {2}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.declaration);
        const EffectSource source = SourceOf(c.declaration);
        const auto& initial = Parameter(source, "x").initial;
        ASSERT_TRUE(initial);
        ASSERT_EQ(initial->numbers.size(), c.numbers.size());
        for (std::size_t at = 0; at < c.numbers.size(); ++at)
            EXPECT_NEAR(initial->numbers[at], c.numbers[at], 1e-12) << at;
    }
    const EffectSource source = SourceOf("float4 a = 1; float4 b = { 1, 1, 1, 1 }; float c[] = "
                                         "{ 1, 2, 3 }; string s = \"a\\\\b\" \"\\\"c\";");
    EXPECT_TRUE(Parameter(source, "a").initial->fills);
    EXPECT_FALSE(Parameter(source, "b").initial->fills);
    EXPECT_THAT(Parameter(source, "c").dimensions, ElementsAre(3u));
    EXPECT_THAT(source.text, HasSubstr("c[3]"));
    EXPECT_EQ(Parameter(source, "s").initial->text, "a\\b\"c");
}

TEST(EffectSource, StatesHaveTheNumbersOfDirect3D) {
    const EffectSource source = SourceOf(R"(
        float a; int i; float4 v; float4x4 m; texture t; struct L { float r; }; L l[2];
        sampler s[2] = { sampler_state { Texture = <t>; }, sampler_state { Texture = (t); } };
        static const int K = 3; float Point;
        void F() {}
        PixelShader ps[2] = { compile ps_2_0 P(), compile ps_2_0 Q() };
        VertexShader vs = compile vs_2_0 F();
        TECHNIQUE { Pass { cullmode = ccw; SrcBlend = ONE; ZFunc = LessEqual; ZEnable = true;
            ColorWriteEnable = RED | Green | 8; ColorOp[1] = MODULATE2X; ColorArg1[K - 2] =
            TEXTURE | COMPLEMENT; VertexBlend = 2Weights; AlphaRef = 2 * K + 1; FogStart = <a / 2>;
            PointSize = Point; FillMode = Point; FillMode = <Point>; FogEnd = v.wx; Ambient =
            float4(v.xyz, 1); DepthBias = i > 1 ? -a : 1; BlendFactor = m._m10 + m[i].y;
            LightRange[2] = l[1].r; MipFilter[3] = NONE; WorldTransform[0] = (m); Texture[2] = t;
            Sampler[1] = <s[1]>; PixelShader = (ps[1]); VertexShader = <vs>; } }
        technique T { pass P { PixelShader = NULL; VertexShader = COMPILE vs_3_0 F(float2(1, K),
            true); Texture[0] = NULL; MaterialDiffuse = { 1, 0, a, 1 }; } })");
    ASSERT_EQ(source.techniques.size(), 2u);
    EXPECT_THAT(Texts(source.techniques[0].passes.at(0).states),
                ElementsAre("cullmode=3", "SrcBlend=2", "ZFunc=4", "ZEnable=1",
                            "ColorWriteEnable=11", "ColorOp[1]=5", "ColorArg1[1]=18",
                            "VertexBlend=2", "AlphaRef=7", "FogStart=(a / 2)", "PointSize=Point",
                            "FillMode=1", "FillMode=Point", "FogEnd={v.3 v.0}",
                            "Ambient={{v.0 v.1 v.2} 1}", "DepthBias=((i > 1) ? (-a) : 1)",
                            "BlendFactor=(m.4 + m[i].1)", "LightRange[2]=l[1].r", "MipFilter[3]=0",
                            "WorldTransform[0]=m", "Texture[2]=<t>", "Sampler[1]=<s[1]>",
                            "PixelShader=ps_2_0 Q", "VertexShader=<vs>"));
    EXPECT_THAT(Texts(source.techniques[1].passes.at(0).states),
                ElementsAre("PixelShader=null", "VertexShader=vs_3_0 F |float2(1, K) |true",
                            "Texture[0]=null", "MaterialDiffuse={1 0 a 1}"));
    EXPECT_THAT(Texts(Parameter(source, "s").states),
                ElementsAre("Texture[0]=<t>", "Texture[1]=<t>"));

    struct Case {
        const char* state;
        DWORD number;
        const char* value;
        DWORD meaning;
    };
    for (const Case& c : {Case{"AlphaFunc", 25, "GREATEREQUAL", 7},
                          {"StencilZFail", 54, "DECRSAT", 5},
                          {"DestBlendAlpha", 208, "InvDestColor", 10},
                          {"BlendOp", 171, "RevSubtract", 3},
                          {"FogVertexMode", 140, "LINEAR", 3},
                          {"AddressW", 3, "MirrorOnce", 5},
                          {"MinFilter", 6, "Anisotropic", 3},
                          {"AlphaOp", 4, "BLENDTEXTUREALPHA", 13},
                          {"TexCoordIndex", 11, "CAMERASPACEPOSITION", 0x20000},
                          {"LightType", 0, "Directional", 3}}) {
        SCOPED_TRACE(c.state);
        const StateInfo* info = FindState(LowerCase(c.state));
        ASSERT_TRUE(info);
        EXPECT_EQ(info->number, c.number);
        EXPECT_EQ(FindStateValue(info->values, c.value), c.meaning);
    }
}

TEST(EffectSource, SamplersAndTexturesOfEverySpellingStandInTheTablesOnly) {
    const EffectSource source = SourceOf(R"(
        texture a; Texture b < string n = "x.png"; >; texture2D c, d; TEXTURECUBE e;
        sampler s0; sampler2D s1 : register(s3); SAMPLER s2 = Sampler_State { };
        samplerCUBE s3 : register(ps, s5) = sampler_state { texture = <e>; AddressU[0] = CLAMP; };
        uniform sampler s4 = sampler_state { Texture = (a); MinFilter = LINEAR;
                                             MipMapLodBias = -0.5; };
        string text = "t"; VertexShader v = NULL;)");
    EXPECT_EQ(WithoutBlanks(source.text), "");
    EXPECT_EQ(source.parameters.size(), 12u);
    EXPECT_EQ(Parameter(source, "b").annotations.at(0).initial->text, "x.png");
    EXPECT_EQ(Parameter(source, "e").type, "texturecube");
    EXPECT_EQ(Parameter(source, "s1").registerKind, 's');
    EXPECT_EQ(Parameter(source, "s1").registerIndex, 3u);
    EXPECT_EQ(Parameter(source, "s3").registerIndex, 5u);
    EXPECT_THAT(Texts(Parameter(source, "s3").states), ElementsAre("texture=<e>", "AddressU=3"));
    EXPECT_THAT(Texts(Parameter(source, "s4").states),
                ElementsAre("Texture=<a>", "MinFilter=2", "MipMapLodBias=-0.5"));
}

TEST(EffectSource, TheTextIsHlslWithoutWhatBelongsToEffects) {
    const EffectSource source =
        SourceOf("shared uniform const float4x4 w : WORLD < int a = 1; > = 1, "
                 "v : register(c7);\n"
                 "static const float k = 1;\n"
                 "const int n = 2; row_major float2x2 r[n];\n"
                 "#pragma pack_matrix(row_major)\n"
                 "struct { float4x4 m; float f; } s; matrix<float,2,3> q;\n"
                 "float4 F(float4 p : POSITION) : COLOR { return p; };\n");
    EXPECT_EQ(WithoutBlanks(source.text),
              "float4x4w,v;staticconstfloatk=1;intn;row_majorfloat2x2r[2];"
              "structanonymous_struct_1{row_majorfloat4x4m;floatf;}s;row_majormatrix<float,2,3>q;"
              "float4F(float4p:POSITION):COLOR{returnp;}");
    EXPECT_EQ(Parameter(source, "w").semantic, "WORLD");
    EXPECT_EQ(Parameter(source, "v").registerIndex, 7u);
    EXPECT_TRUE(Parameter(source, "r").isRowMajor);
    EXPECT_EQ(Parameter(source, "q").type, "float2x3");
    EXPECT_TRUE(source.structs.at(0).members.at(0).isRowMajor);
}

TEST(EffectSource, MacrosAreThoseOfC) {
    const PreprocessedText text = Preprocess(
        "main.fx",
        "#define CAT(a, b) a##b\n#define CAT2(a, b) CAT(a, b)\n#define STR(x) #x\n#define N 3\n"
        "#define F(x) x F\n#define SELF SELF + 1\n#define EMPTY\n#define TWO(x, y) x - y\n"
        "#if defined(N) && N / 2 == 1 && !defined NONE && (EXTRA > 4 || 1 / 0)\n"
        "CAT(b, N) CAT2(b, N) STR( x  \"y\" ) F(1)(2) SELF CAT(, c)EMPTY -EMPTY-1\n"
        "TWO(f(1,2), (3, 4)) F D3DX_VERSION __LINE__ __FILE__\n"
        "#undef N\nN\n"
        "#elif 1 / 0\n' \"\n#endif\n",
        {{"EXTRA", "5"}}, nullptr);
    std::string words;
    for (const Token& token : Lex(text.text))
        words += std::string(token.text) + " ";
    EXPECT_EQ(words, "bN b3 \"x \\\"y\\\"\" 1 F ( 2 ) SELF + 1 c - - 1 f ( 1 , 2 ) - ( 3 , 4 ) F "
                     "0x0902 11 \"main.fx\" N  ");
}

TEST(EffectSource, EveryLineOfTheTextKnowsWhereItComesFrom) {
    const std::string text = "float a; /* two\nlines */ float b;\n"
                             "#define M(x) float x; \\\n float more_##x;\n"
                             "#include \"inc.fxh\"\n"
                             "M(c) float d;\n"
                             "technique T { pass P { CullMode\n= NONE; } }\n"
                             "M(\ne\n) float f;\n"
                             "#line 100 \"made.fx\"\n"
                             "float g;\n";
    const EffectSource source = SourceOf(text, {{"inc.fxh", "\n// one\nfloat i = 2; M(j)\n"}});
    const auto where = [&source](const std::string& name) {
        const SourcePlace& place = Parameter(source, name).place;
        return place.file + ":" + std::to_string(place.line);
    };
    for (const auto& [name, place] : std::map<std::string, std::string>{{"a", "main.fx:1"},
                                                                        {"b", "main.fx:2"},
                                                                        {"i", "inc.fxh:3"},
                                                                        {"more_j", "inc.fxh:3"},
                                                                        {"more_c", "main.fx:6"},
                                                                        {"d", "main.fx:6"},
                                                                        {"e", "main.fx:9"},
                                                                        {"f", "main.fx:11"},
                                                                        {"g", "made.fx:100"}}) {
        EXPECT_EQ(where(name), place) << name;
        // And its line of the text says the same.
        const std::size_t at = source.text.find("float " + name);
        const auto line = std::count(source.text.begin(),
                                     source.text.begin() + static_cast<std::ptrdiff_t>(at), '\n');
        const SourcePlace& found = source.lines.at(static_cast<std::size_t>(line));
        EXPECT_EQ(found.file + ":" + std::to_string(found.line), place) << name;
    }
    EXPECT_EQ(source.lines.size(), 1u + static_cast<std::size_t>(std::count(
                                            source.text.begin(), source.text.end(), '\n')));
    EXPECT_EQ(source.techniques.at(0).passes.at(0).states.at(0).place.line, 7);
    ASSERT_EQ(source.files.size(), 2u);
    EXPECT_EQ(source.files[0], (std::pair<std::string, std::string>("main.fx", text)));
}

TEST(EffectSource, FaultsNameTheirFileAndLine) {
    struct Case {
        const char* text;
        const char* message;
    };
    const Case cases[] = {
        {"\n#include \"none.fxh\"", "main.fx(2): error: there is no file none.fxh"},
        {"#include \"self\"", "self(1): error: includes stand in each other"},
        {"#include \"bad\"", "bad(2): error: there is no state Foo"},
        {"\n#if 1\n#if 0\n#endif\n", "main.fx(2): error: this #if has no #endif"},
        {"#else", "main.fx(1): error: #else without #if"},
        {"#if 1 / 0\n#endif", "main.fx(1): error: in the condition: division by 0"},
        {"\n#error no  way", "main.fx(2): error: #error no  way"},
        {"#define M(x) x\nM(\n1", "main.fx(2): error: the arguments of the macro M have no end"},
        {"#define S float x = q;\n\nS", "main.fx(3): error: there is no parameter q"},
        {"float a;\n/* b", "main.fx(2): error: this comment has no end"},
        {"\nstring s = \"abc;", "main.fx(2): error: this text has no closing \""},
        {"float a; @", "main.fx(1): error: nothing begins with the character 0x40 (@)"},
        {"technique T {\npass {\n", "main.fx(2): error: this '{' is never closed"},
        {"float f() { (\n}", "main.fx(2): error: expected ')' for the '(' of line 1, found '}'"},
        {"float a = 1\nfloat b;", "main.fx(2): error: expected ';' behind the declaration, found"},
        {"technique T { pass P { CullMode = CWW; } }", "expected NONE, CW, CCW"},
        {"sampler s = sampler_state { ZEnable = 1; };", "ZEnable is no state of a sampler"},
        {"technique T { pass P {\nVertexShader = asm { vs_1_1 }; } }", "main.fx(2): error: shade"},
        {"float a; float b = a;", "a start value has to be constant"},
        {"float2 a = { 1, 2, 3 };", "expected 2 numbers for a, found 3"},
        {"float a[0];", "the size of a has to be from 1"},
        {"float a;\nint a;", "main.fx(2): error: a is there already, see line 1"},
        {"float a; technique T { pass { Texture[0] = <a>; } }", "a is a float"},
        {"int i; VertexShader v[2] = { compile vs_2_0 A(), compile vs_2_0 B() }; technique T { "
         "pass "
         "{ VertexShader = v[i]; } }",
         "the index of v has to be constant"},
        {"technique T { pass { Foo = 1; ZFunc = X; } }\nfloat a = ;",
         "there is no state Foo\nmain"},
        {"technique T { pass { Foo = 1; ZFunc = X; } }\nfloat a = ;", "\nmain.fx(2): error: expec"},
    };
    for (const Case& c : cases) {
        const std::string error = ErrorOf(c.text, {{"self", "#include \"self\"\n"},
                                                   {"bad", "technique T { pass P {\nFoo=1; } }"}});
        EXPECT_THAT(error, HasSubstr(c.message)) << c.text;
    }
    EXPECT_THAT(
        SourceOf("float a;\ntechnique10 A { pass { x(1); } }\nfloat b[2] = { 1 };").warnings,
        "main.fx(2): warning: technique10 is of a later Direct3D: it is passed over\n"
        "main.fx(3): warning: expected 2 numbers for b, found 1: the others are 0\n");
}

TEST(EffectSource, WhatHasNoBoundsIsAnError) {
    const auto repeat = [](const std::string& what, int times) {
        std::string all;
        for (int time = 0; time < times; ++time)
            all += what;
        return all;
    };
    std::string bomb;
    for (int n = 0; n < 60; ++n)
        bomb += "#define M" + std::to_string(n) + " M" + std::to_string(n + 1) + " M" +
                std::to_string(n + 1) + "\n";
    const std::string state = "float4 p; technique T { pass { FogStart = ";
    for (const std::string& text :
         {bomb + "M0", repeat("(", 100'000), state + repeat("< ", 100'000) + "; } }",
          "float a = " + repeat("- ", 100'000) + "1;",
          "float a = " + repeat("1?2:", 100'000) + "3;", state + repeat("p +", 100'000) + "p; } }",
          state + "p" + repeat(".xyzw", 30) + ".x.x; } }",
          state + repeat("(float4)p.x +", 10) + repeat("(int)", 30) + "p; } }",
          "#if " + repeat("(", 100'000),
          "#define F(x) x x\n" + repeat("F(", 150) + repeat(")", 150) + "#define G(x) x##x\n" +
              "float " + repeat("G(", 150) + "a" + repeat(")", 150) + "@;",
          std::string("struct A { float m[1000000]; }; struct B { A a[1000000]; }; B b[1000000];")})
        EXPECT_THAT(ErrorOf(text), HasSubstr("error: ")) << text.substr(0, 60);
    // While this is many, and no more.
    EXPECT_EQ(ErrorOf(repeat("float a;", 1) + state + repeat("(", 150) + "p" + repeat(")", 150) +
                      "; } }"),
              "no error");
}

} // namespace Tests
