// SPDX-License-Identifier: MIT
//
// How shaders and effects come in: what each of their files raises, what a failure leaves behind,
// and what a reset compiles again.
#include "tests/render/shader_files.hpp"

#include <functional>
#include <stdexcept>
#include <typeinfo>

namespace {

using RenderTests::KnownShaders;
using RenderTests::ShaderFiles;
using RenderTests::WriteShaders;
using testing::StartsWith;
using Tests::Texts;
using VornPlatform::CountLiveObjects;
using VornPlatform::CountShaders;

const std::string Broken = "float4 Vertex(float4 p : POSITION) : POSITION {\n    return wrong; }\n"
                           "technique T { pass P { VertexShader = compile vs_3_0 Vertex(); } }\n";

/// What `action` raises: "exception" for a plain one, else its text; empty for nothing.
std::string Raised(const std::function<void()>& action) {
    try {
        action();
    } catch (const std::runtime_error& error) {
        return error.what();
    } catch (const std::exception& error) {
        EXPECT_TRUE(typeid(error) == typeid(std::exception)) << typeid(error).name();
        return "exception";
    }
    return {};
}
std::string TextOf(ID3DXBuffer* buffer) {
    if (!buffer)
        return {};
    const std::string text = static_cast<const char*>(buffer->GetBufferPointer());
    buffer->Release();
    return text;
}
/// What the compiler says of a file in the place of an effect, or of a shader.
std::string EffectMessage(const std::string& path) {
    ID3DXEffect* effect = nullptr;
    ID3DXBuffer* errors = nullptr;
    EXPECT_TRUE(FAILED(D3DXCreateEffectFromFileA(Vorn::Graphic::GetDevice(), path.c_str(), nullptr,
                                                 nullptr, 0x900, nullptr, &effect, &errors)));
    EXPECT_EQ(effect, nullptr);
    return TextOf(errors);
}
std::string ShaderMessage(const char* path, const char* entry, const char* profile) {
    ID3DXBuffer *code = nullptr, *errors = nullptr;
    EXPECT_TRUE(FAILED(D3DXCompileShaderFromFileA(path, nullptr, nullptr, entry, profile, 0, &code,
                                                  &errors, nullptr)));
    EXPECT_EQ(code, nullptr);
    return TextOf(errors);
}

class ShaderLoading : public Tests::RecorderTest {
protected:
    ShaderLoading() { WriteShaders(KnownShaders()); }

    /// Nothing that InitShaders makes is there.
    static void ExpectNoShaders(const std::string& why) {
        const VornPlatform::LiveObjects live = CountLiveObjects();
        EXPECT_EQ(live.effects + live.constantTables + live.dataBuffers, 0) << why;
        EXPECT_EQ(live.vertexShaders + live.pixelShaders + live.declarations, 0) << why;
        EXPECT_EQ(live.renderToSurfaces + live.textures, 0) << why;
    }
    /// What a first start and a reset of a device that works raise and print with `files` in place
    /// of good ones; after both, the good ones work again.
    void ExpectRaises(const ShaderFiles& files, const std::string& expected,
                      const std::string& printed = {}) {
        const std::string name = files.begin()->first + ' ' + expected;
        const auto check = [&](const std::function<void()>& action) {
            std::string raised;
            const std::string out = Tests::Printed([&] { raised = Raised(action); });
            EXPECT_EQ(raised, expected) << name;
            EXPECT_EQ(out.substr(0, printed.size()), printed) << name;
            EXPECT_LE(out.size(), printed.size() + 1) << name; // a line end perhaps
            ExpectNoShaders(name);
        };
        WriteShaders(files);
        check([&] { Open(); });
        graphic.DrawTwoD({}, nullptr); // harmless
        engine.Free();
        DestroyWindow(Vorn::Engine::mWnd);
        Tests::Pump();
        EXPECT_EQ(CountLiveObjects(), VornPlatform::LiveObjects()) << name;

        WriteShaders(KnownShaders());
        Open();
        const VornPlatform::LiveObjects full = CountLiveObjects();
        WriteShaders(files);
        check([&] { graphic.InitShaders(); });
        check([&] { engine.Reset(); });
        graphic.DrawTwoD({}, nullptr);
        WriteShaders(KnownShaders());
        engine.Reset();
        EXPECT_EQ(CountLiveObjects(), full) << name;
        Close();
    }
    void ExpectRaisesItsMessage(const std::string& effect, const std::string& text) {
        Open();
        WriteShaders({{effect, text}});
        const std::string message = EffectMessage("data/shaders/" + effect);
        Close();
        EXPECT_THAT(message, testing::HasSubstr("data/shaders/" + effect + '('));
        ExpectRaises({{effect, text}}, message);
    }
};

TEST_F(ShaderLoading, AMissingFileRaisesByItsNameTheFirstInOrderFirst) {
    const char* const effects[] = {"twodbasicshader", "basicshader", "vornlight",
                                   "distortionshader", "shadow"};
    const char* const messages[] = {"twodbasicshader", "BasicShader", "vornlight",
                                    "distortionshader", "ShadowShader"};
    for (std::size_t i = 0; i < 5; ++i) {
        ShaderFiles files;
        for (std::size_t j = i; j < 5; ++j) // the next ones are broken, which nobody sees
            files[std::string(effects[j]) + ".fx"] = j == i ? "" : Broken;
        ExpectRaises(files, std::string("Failed to load shader: ") + messages[i] + ".fx");
    }
    for (const char* raw : {"skel.vsh", "skel.psh"})
        ExpectRaises({{raw, ""}, {"twodbasicshader.fx", ""}}, "exception");
}

TEST_F(ShaderLoading, AnEffectThatDoesNotCompileRaisesTheCompilersText) {
    for (const char* effect : {"twodbasicshader.fx", "distortionshader.fx"})
        ExpectRaisesItsMessage(effect, Broken);
    ExpectRaisesItsMessage("vornlight.fx", std::string("\0\xff\x01{technique", 13));
    const std::string whole = KnownShaders()["shadow.fx"];
    ExpectRaisesItsMessage("shadow.fx", whole.substr(0, whole.find("PixelShader"))); // cut off
}

TEST_F(ShaderLoading, ARawShaderThatDoesNotCompilePrintsTheCompilersText) {
    const auto check = [&](const std::string& file, const char* entry, const char* profile,
                           const std::string& text) {
        WriteShaders({{file, text}});
        const std::string message = ShaderMessage(("data/shaders/" + file).c_str(), entry, profile);
        EXPECT_NE(message, "");
        ExpectRaises({{file, text}}, "exception", message);
    };
    check("skel.vsh", "VertexBlend", "vs_3_0", Broken);
    check("skel.psh", "ps_main", "ps_3_0", Broken);
    check("skel.psh", "ps_main", "ps_3_0", "float4 Main() : COLOR0 { return 1; }"); // no entry
}

TEST_F(ShaderLoading, LoadShaderAnswersWhetherThereIsAnEffect) {
    Open();
    const VornPlatform::LiveObjects before = CountLiveObjects();
    ID3DXEffect* effect = nullptr;
    EXPECT_FALSE(graphic.LoadShader("data/shaders/none.fx", effect));
    EXPECT_EQ(effect, nullptr);
    EXPECT_FALSE(graphic.LoadShader("data", effect)); // a folder
    WriteShaders({{"broken.fx", Broken}});
    EXPECT_THAT(Raised([&] { graphic.LoadShader("data/shaders/broken.fx", effect); }),
                StartsWith("data/shaders/broken.fx(2): error"));
    EXPECT_EQ(effect, nullptr);
    EXPECT_EQ(CountLiveObjects(), before);
    // A warning is none of anybody's business.
    WriteShaders({{"warns.fx", "float3 Cut(float4 v) { return v; }\n" + RenderTests::Head +
                                   "float4 Odd() : COLOR0 { return Cut(1).xyzz; }\n" +
                                   RenderTests::Technique("T", 1, "Odd")}});
    ASSERT_TRUE(graphic.LoadShader("data/shaders/warns.fx", effect));
    EXPECT_EQ(CountLiveObjects().dataBuffers, before.dataBuffers);
    effect->Release();
    EXPECT_EQ(CountLiveObjects(), before);
}

TEST_F(ShaderLoading, ObjectsAreMadeInOrderWithTheirElements) {
    VornPlatform::CallLog log;
    Open();
    for (int i = 0; i < 2; ++i) {
        Texts made;
        for (const std::string& call : Tests::Take(log))
            if (call.starts_with("CreateVertexDeclaration") || call.starts_with("CreateVertexS") ||
                call.starts_with("CreatePixelShader"))
                made.push_back(call);
        ASSERT_EQ(made.size(), 5u);
        EXPECT_THAT(made[0], StartsWith("CreateVertexDeclaration 0 0 2 0 0 0 0 12 4 0 10 0 "
                                        "0 16 2 0 5 0 0 28 1 0 5 1 0 36 3 0 1 0 0 52 5 0 2 0"));
        EXPECT_THAT(made[1], StartsWith("CreateVertexShader"));
        EXPECT_THAT(made[2], StartsWith("CreatePixelShader"));
        EXPECT_THAT(made[3], StartsWith("CreateVertexDeclaration 0 0 2 0 0 0 0 12 4 0 10 0 "
                                        "0 16 1 0 5 0"));
        EXPECT_THAT(made[4], StartsWith("CreateVertexDeclaration 0 0 2 0 0 0 0 12 2 0 3 0 "
                                        "0 24 4 0 10 0 0 28 1 0 5 0"));
        engine.Reset();
    }
}

TEST_F(ShaderLoading, ADriversInternalErrorIsPassedOver) {
    Open();
    WriteShaders({{"skel.psh", ""}, {"basicshader.fx", ""}, {"shadow.fx", Broken}});
    VornPlatform::FailResets(1, D3DERR_DRIVERINTERNALERROR);
    EXPECT_NO_THROW(engine.Reset());
    Vorn::Mesh mesh;
    graphic.DrawTwoD({}, nullptr);
    graphic.BasicShaderDraw(&mesh, {}, nullptr);
    graphic.SetSkelMatrix(mesh, {}, 0);
    graphic.ShadowMap(&mesh, {});
}

TEST_F(ShaderLoading, AResetCompilesWhatHasChangedAndNothingElse) {
    Open();
    const int start = CountShaders().compiled;
    for (int i = 0; i < 3; ++i)
        engine.Reset();
    EXPECT_EQ(CountShaders().compiled, start);
    // Of the same length, within the same moment.
    ShaderFiles files = KnownShaders();
    std::string& text = files["shadow.fx"];
    text.replace(text.find("0.2, 0.4"), 8, "0.3, 0.4");
    WriteShaders(files);
    engine.Reset();
    EXPECT_GT(CountShaders().compiled, start);
    EXPECT_LE(CountShaders().compiled, start + 2); // of the one file
    const int changed = CountShaders().compiled;
    engine.Reset();
    EXPECT_EQ(CountShaders().compiled, changed);
    // What a file includes counts as part of it.
    WriteShaders({{"tint.fxh", "#define Tint 0.5\n"},
                  {"shadow.fx", RenderTests::Head +
                                    "#include \"tint.fxh\"\n"
                                    "float4 Flat() : COLOR0 { return Tint; }\n" +
                                    RenderTests::Technique("TransformTech", 1, "Flat")}});
    engine.Reset();
    const int included = CountShaders().compiled;
    engine.Reset();
    EXPECT_EQ(CountShaders().compiled, included);
    WriteShaders({{"tint.fxh", "#define Tint 0.7\n"}});
    engine.Reset();
    EXPECT_GT(CountShaders().compiled, included);
}

} // namespace
