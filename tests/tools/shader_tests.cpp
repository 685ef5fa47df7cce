// SPDX-License-Identifier: MIT
#include "tests/tools/import_fixture.hpp"

#include <gmock/gmock.h>

namespace {

using namespace Tests;
using testing::AllOf;
using testing::HasSubstr;

class ShaderCommandTest : public ImportFixture {
protected:
    Outcome Shader(const std::string& text, const std::string& arguments = "") {
        mFolder.File("test.fx", text);
        return Run("shader test.fx " + arguments);
    }
};

constexpr const char* Effect = R"(float4x4 world : WORLD;
float4 color[2] = { 1, 2, 3, 4, 5, 6, 7, 8 };
texture picture < string name = "wood"; >;
sampler s = sampler_state { Texture = <picture>; MaxAnisotropy = 4; };
float4 V(float4 p : POSITION) : POSITION { return mul(p, world); }
float4 P(float2 uv : TEXCOORD3, float2 at : VPOS) : COLOR { return tex2D(s, uv) * color[1] * at.x; }
technique Show {
    pass First {
        FogEnable = TRUE;
        AlphaBlendEnable = TRUE;
        VertexShader = compile vs_3_0 V();
        PixelShader = compile PROFILE P();
    }
})";

TEST_F(ShaderCommandTest, TellsWhatAnEffectHoldsAndWhatDirect3DWouldRefuse) {
    const Outcome good = Shader(Effect, "-D PROFILE=ps_2_0");
    EXPECT_EQ(good.status, 0);
    EXPECT_THAT(good.out, AllOf(HasSubstr("float4x4 world : WORLD\n"),
                                HasSubstr("float4 color[2] = { 1, 2, 3, 4, 5, 6, 7, 8 }"),
                                HasSubstr("< string name = \"wood\" >"),
                                HasSubstr("technique Show"), HasSubstr("pass First"),
                                HasSubstr("compile vs_3_0 V()"), HasSubstr("sampler 0: s")));
    EXPECT_THAT(good.error,
                AllOf(HasSubstr("test.fx(4): warning: MaxAnisotropy has no effect here"),
                      HasSubstr("test.fx(9): warning: FogEnable has no effect here"),
                      HasSubstr("test.fx(8): warning: VPOS"), HasSubstr("reads TEXCOORD3")));
    EXPECT_THAT(good.error, testing::Not(HasSubstr("AlphaBlendEnable")));
    EXPECT_THAT(Shader(Effect, "-D PROFILE=ps_3_0").error, testing::Not(HasSubstr("VPOS;")));
}

TEST_F(ShaderCommandTest, TellsTheRegistersOfAShader) {
    const Outcome good = Shader("float4x4 bones[70]; float4 add;\n"
                                "float4 V(float4 p : POSITION, float i : BLENDINDICES) : POSITION "
                                "{ return mul(p, bones[(int)i]) + add; }",
                                "--entry V --profile vs_3_0");
    EXPECT_EQ(good.status, 0);
    EXPECT_THAT(good.out, AllOf(HasSubstr("float4x4 bones[70] c0-c279"),
                                HasSubstr("float4 add c280"), HasSubstr("BLENDINDICES0")));
    EXPECT_THAT(good.error, HasSubstr("281 registers of constants; Direct3D 9 has 256 in vs_3_0"));
}

TEST_F(ShaderCommandTest, FaultsEndWithAStatus) {
    const Outcome bad = Shader("float4 color;\nfloat4 V() : POSITION { return colour; }\n"
                               "technique T { pass { VertexShader = compile vs_2_0 V(); } }");
    EXPECT_EQ(bad.status, 1);
    EXPECT_EQ(bad.out, "");
    EXPECT_THAT(bad.error, AllOf(HasSubstr("test.fx(2): error: "), HasSubstr("colour")));
    EXPECT_EQ(Run("shader none.fx").status, 1);
    EXPECT_THAT(Run("shader none.fx").error, HasSubstr("none.fx"));
    EXPECT_EQ(Shader(Effect, "--entry V").status, 2) << "no profile";
    EXPECT_EQ(Shader(Effect, "--entry None --profile vs_3_0").status, 1);
}

} // namespace
