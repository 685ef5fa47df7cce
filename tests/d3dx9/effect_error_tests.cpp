// SPDX-License-Identifier: MIT
//
// Broken files: each fault names its file and line, and nothing is left behind.
#include "tests/d3dx9/effect_picture.hpp"
#include "tests/support/temp_folder.hpp"

#include <gmock/gmock.h>

#include <regex>

namespace Tests {
namespace {

using testing::HasSubstr;

/// Faults of the language itself; those of the file around it are in effect_source_tests. The text
/// stands in the second line, after a vertex shader V; a pixel shader P and a technique of
/// both follow where it has none of its own.
struct BrokenFile {
    const char* name;
    int line;         // of the first fault, negative in an included file
    const char* says; // some of it
    const char* text;
};
void PrintTo(const BrokenFile& b, std::ostream* out) {
    *out << b.name;
}

const BrokenFile broken[] = {
    {"Syntax", 3, "", "float4 P() : COLOR {\n float4 o = 1 +;\n return o; }"},
    {"UnknownIdentifier", 4, "missingThing", "float4 P() : COLOR {\n\n return missingThing * 2; }"},
    {"UnknownType", 3, "flaot4", "\nflaot4 P() : COLOR { return 1; }"},
    {"UnknownFunction", 3, "nothingLike", "float4 P() : COLOR {\n return nothingLike(1); }"},
    {"WrongArguments", 4, "mul", "float4 P() : COLOR {\n\n return mul(1, 2, 3); }"},
    // What the compiler below would fall over, or give to a driver that takes it for nothing.
    {"TypeForAValue", 3, "float3", "float4 P() : COLOR {\n return length(int2(float3, 4)); }"},
    {"StructuresHaveNoSum", 4, "structure",
     "struct S { float a; };\nfloat4 P() : COLOR { S s, u;\n return s + u; }"},
    {"SamplersHaveNoSum", 3, "sampler", "sampler s; float4 P() : COLOR {\n return s * 2; }"},
    {"SamplersHaveNoElements", 3, "sampler", "sampler s; float4 P() : COLOR {\n return s[0]; }"},
    {"NothingToReturn", 3, "no value", "void F() { }\nfloat4 P() : COLOR { return F(); }"},
    {"ArrayForAMatrix", 3, "array", "float4x4 m[2];\nfloat4 P() : COLOR { return mul(1, m); }"},
    {"CaseOutsideOfASwitch", 3, "case", "float4 P() : COLOR {\n case 1: return 1; }"},
    {"CaseThatVaries", 3, "constant",
     "float4 P(float t : FOG) : COLOR {\n switch (1) { case t: break; } return 1; }"},
    {"StepOfNoVariable", 3, "assigned", "float4 P(float t : FOG) : COLOR {\n return t++++; }"},
    {"CallOfANumber", 3, "';'", "float4 P() : COLOR {\n return 0.5(); }"},
    {"ResultIntoANumber", 3, "assigned", "float4 P() : COLOR {\n return modf(1.5, 1); }"},
    {"MatrixOfIntegers", 2, "floats", "int2x2 m; float4 P() : COLOR { return m[0].x; }"},
    {"DeterminantOfNoSquare", 3, "", "float2x3 m;\nfloat4 P() : COLOR { return determinant(m); }"},
    {"MissingSemantic", 3, "emantic", "\nfloat4 P(float4 c) : COLOR { return c; }"},
    {"MissingResultSemantic", 3, "emantic", "\nfloat4 P() { return 1; }"},
    {"Recursion", 2, "ecurs",
     "float F(float x) { return x > 1 ? F(x - 1) : x; }\nfloat4 P() : COLOR { return F(3); }"},
    {"MissingInclude", 3, "nowhere.fxh", "\n#include \"nowhere.fxh\""},
    {"InAnInclude", -3, "undeclaredThere",
     "#include \"bad.fxh\"\nfloat4 P() : COLOR { return Bad(); }"},
    {"IncludesGoRound", -2, "nclude", "#include \"round.fxh\"\n"},
    {"InAMacro", 5, "missingScale",
     "#define HALF(x) ((x) * missingScale)\nfloat4 P() : COLOR {\n return\n HALF(1); }"},
    {"AfterWhatIsTakenOff", 8, "undeclaredHere",
     "texture t < string Name =\n \"x\"; >;\nsampler s = sampler_state {\n Texture = <t>;\n\n};\n"
     "float4 P() : COLOR { return undeclaredHere; }"},
    // Of the effect around the shaders.
    {"UnknownEntry", 4, "Missing",
     "technique T { pass P {\n\n PixelShader = compile ps_2_0 Missing(); } }"},
    {"UnknownProfile", 3, "vs_9_9",
     "technique T { pass P {\n VertexShader = compile vs_9_9 V(); } }"},
    {"TooManyArguments", 3, "V",
     "technique T { pass P {\n VertexShader = compile vs_2_0 V(1, 2); } }"},
    {"NoValue", 2, "", "technique T { pass P { ZEnable = ; } }"},
    {"UnknownTexture", 3, "Nothing", "technique T { pass P {\n Texture[0] = <Nothing>; } }"},
};
const std::string vertexShader = "float4 V(float4 p : POSITION) : POSITION { return p; }\n",
                  pixelShader = "\nfloat4 P() : COLOR { return 1; }\n",
                  technique = "\ntechnique T { pass P { VertexShader = compile vs_2_0 V(); "
                              "PixelShader = compile ps_2_0 P(); } }\n";

class EffectErrorTest : public EffectPictureTest, public testing::WithParamInterface<BrokenFile> {
protected:
    std::string Refused(const std::string& text) {
        const std::string path = folder.File("broken.fx", text);
        Held<ID3DXBuffer> errors;
        auto* effect = reinterpret_cast<ID3DXEffect*>(1);
        EXPECT_LT(D3DXCreateEffectFromFileA(device, path.c_str(), nullptr, nullptr, 0, nullptr,
                                            &effect, errors.Out()),
                  0);
        EXPECT_EQ(effect, nullptr);
        const Held<ID3DXEffect> unexpected(effect);
        EXPECT_NE(errors.Get(), nullptr);
        if (errors) {
            const auto* said = static_cast<const char*>(errors->GetBufferPointer());
            EXPECT_EQ(said[errors->GetBufferSize() - 1], '\0');
        }
        return TextOf(errors);
    }
    void ExpectFault(const BrokenFile& b, const std::string& text) {
        folder.File("bad.fxh",
                    "float Good() { return 1; }\n\nfloat4 Bad() { return undeclaredThere; }\n");
        folder.File("round.fxh", "\n#include \"round.fxh\"\n");
        const std::string said = Refused(text);
        std::istringstream lines(said);
        std::string line;
        const std::regex form(R"(.+\((\d+)\): (error|warning): .+)");
        bool first = true;
        for (std::smatch parts; std::getline(lines, line);) {
            ASSERT_TRUE(std::regex_match(line, parts, form)) << said;
            if (parts[2] != "error" || !std::exchange(first, false))
                continue;
            EXPECT_EQ(std::stoi(parts[1]), std::abs(b.line)) << said;
            EXPECT_THAT(line, HasSubstr(b.line > 0 ? "broken.fx(" : ".fxh("));
            EXPECT_THAT(line, HasSubstr(b.says));
        }
        EXPECT_FALSE(first) << "no error: " << said;
    }
    TempFolder folder;
};
TEST_P(EffectErrorTest, NamesFileAndLine) {
    const std::string text = GetParam().text;
    const auto has = [&text](const char* what) { return text.find(what) != std::string::npos; };
    ExpectFault(GetParam(), vertexShader + text + (has(" P(") ? "" : pixelShader) +
                                (has("technique") ? "" : technique));
    // What is right after a wrong one compiles.
    Render(Compile(vertexShader + pixelShader + technique));
    ExpectColor({1, 1, 1, 1});
}
INSTANTIATE_TEST_SUITE_P(All, EffectErrorTest, testing::ValuesIn(broken),
                         [](const auto& c) { return std::string(c.param.name); });

TEST_F(EffectErrorTest, AFileThatIsNotThereGivesNoText) {
    Held<ID3DXEffect> effect;
    Held<ID3DXBuffer> code, errors;
    Held<ID3DXConstantTable> constants;
    for (const std::string& path : {folder / "missing.fx", folder.Folder("folder.fx")}) {
        EXPECT_LT(D3DXCreateEffectFromFileA(device, path.c_str(), nullptr, nullptr, 0x900, nullptr,
                                            effect.Out(), errors.Out()),
                  0);
        EXPECT_EQ(effect.Get(), nullptr);
        EXPECT_EQ(errors.Get(), nullptr);
        EXPECT_LT(D3DXCompileShaderFromFileA(path.c_str(), nullptr, nullptr, "V", "vs_3_0", 0,
                                             code.Out(), errors.Out(), constants.Out()),
                  0);
        EXPECT_EQ(code.Get(), nullptr);
        EXPECT_EQ(errors.Get(), nullptr);
        EXPECT_EQ(constants.Get(), nullptr);
    }
}

TEST_F(EffectErrorTest, AShaderNamesItsFaultToo) {
    const std::string path = folder.File(
        "skin.vsh", vertexShader + pixelShader +
                        "\nfloat4 Bad(float4 p : POSITION) : POSITION { return p * nowhere; }\n");
    const std::tuple<const char*, const char*, const char*> faults[] = {
        {"Bad", "vs_3_0", "skin.vsh(5): error: "},
        {"Missing", "vs_3_0", "Missing"},
        {"V", "vs_9_9", "vs_9_9"},
        {"V", "", "profile"},
        {"", "vs_3_0", "error"},
        {nullptr, "vs_3_0", "error"},
        {"V", nullptr, "error"}};
    Held<ID3DXBuffer> code, errors;
    Held<ID3DXConstantTable> constants;
    for (const auto& [entry, profile, says] : faults) {
        EXPECT_LT(D3DXCompileShaderFromFileA(path.c_str(), nullptr, nullptr, entry, profile, 0,
                                             code.Out(), errors.Out(), constants.Out()),
                  0);
        EXPECT_EQ(code.Get(), nullptr);
        EXPECT_EQ(constants.Get(), nullptr);
        EXPECT_THAT(TextOf(errors), HasSubstr(says));
    }
    // What the entry does not reach may be broken.
    EXPECT_EQ(D3D_OK, D3DXCompileShaderFromFileA(path.c_str(), nullptr, nullptr, "V", "vs_3_0", 0,
                                                 code.Out(), errors.Out(), nullptr));
}

} // namespace
} // namespace Tests
