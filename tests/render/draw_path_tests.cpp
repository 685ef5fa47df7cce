// SPDX-License-Identifier: MIT
//
// What each draw path tells the device and its effect: every call, in order, with its values.
#include "tests/render/shader_files.hpp"

#include "tests/math/exact.hpp"

namespace {

using RenderTests::Calls;
using RenderTests::Elements;
using RenderTests::KnownShaders;
using RenderTests::Only;
using RenderTests::WriteShaders;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;
using Tests::Texts;
using Vorn::Matrix4;
using Vorn::Vector3;
using VornPlatform::CountLiveObjects;
using VornPlatform::ObjectName;

/// Whole numbers, so that products are exact in any order.
Matrix4 Whole(unsigned int seed) {
    Exact::Random random(seed);
    Matrix4 m;
    for (float& element : m.m)
        element = static_cast<float>(random.Int(-5, 5));
    return m;
}

class DrawPath : public Tests::RecorderTest {
protected:
    DrawPath() {
        WriteShaders(KnownShaders(true));
        folder.File("data/img/t", Tests::Tga(0xFF123456));
        mesh.mVertexCount = 24, mesh.mIndexCount = 36;
    }
    ~DrawPath() override {
        graphic.SetPointLightSettings(Vector3(), Vector3(), Vector3());
        graphic.SetPointLightPosition(Vector3());
        graphic.CameraPos(Vector3());
    }
    void Start() {
        Open();
        textures.Load("t");
        Begin();
        material.FromText(R"({"Ambient": [0.125, 0.25, 0.5, 1], "Diffuse": [1, 2, 3, 4],
            "Emissive": [5, 6, 7, 8], "Specular": [9, 10, 11, 12], "Shininess": 13.5,
            "Texture": "t"})");
    }
    /// What the device has after a start and a reset.
    void Begin() {
        texture = *textures.Get("t")->mTexture;
        const D3DXMATRIX view = Whole(71), projection = Whole(72);
        Vorn::Graphic::GetDevice()->SetTransform(D3DTS_VIEW, &view);
        Vorn::Graphic::GetDevice()->SetTransform(D3DTS_PROJECTION, &projection);
    }
    void Reset(const RenderTests::ShaderFiles& files) {
        WriteShaders(files);
        engine.Reset();
        Begin();
    }
    /// Calls set off by semicolons, and short words for what often comes together.
    Texts Spelt(const std::string& text) const {
        Texts calls;
        std::istringstream in(text);
        for (std::string call; std::getline(in >> std::ws, call, ';');) {
            std::istringstream words(call);
            std::string word, name;
            words >> word >> name;
            if (word == "transparent")
                for (const char* state : {"27 1", "22 1", "25 7", "24 8", "15 1"})
                    calls.push_back(std::string("SetRenderState ") + state);
            else if (word == "technique")
                calls.insert(calls.end(), {"GetTechniqueByName " + name, "SetTechnique " + name});
            else if (word == "matrices")
                calls.insert(calls.end(), {"SetMatrix worldMatrix " + Elements(world),
                                           "SetMatrix viewMatrix " + Elements(Whole(71)),
                                           "SetMatrix projectionMatrix " + Elements(Whole(72))});
            else if (word == "passes") {
                calls.push_back("Begin 0");
                for (int i = 0; i < std::stoi(name); ++i)
                    calls.insert(calls.end(),
                                 {"BeginPass " + std::to_string(i),
                                  call.ends_with("quad") ? "DrawIndexedPrimitive 4 0 0 4 0 2"
                                                         : "DrawIndexedPrimitive 4 0 0 24 0 12",
                                  "EndPass"});
                calls.push_back("End");
            } else
                calls.push_back(call);
        }
        return calls;
    }
    void Expect(const std::function<void()>& action, const std::string& text) const {
        EXPECT_THAT(Calls(action), ElementsAreArray(Spelt(text)));
    }
    std::string One(const char* call, const std::function<void()>& action) const {
        const Texts some = Only(Calls(action), call);
        EXPECT_EQ(some.size(), 1u) << call;
        return some.empty() ? "" : some[0];
    }
    /// That of meshes, so that each path has to set the same.
    std::string MeshFormat() {
        return "SetVertexDeclaration " + One("SetVertexDeclaration", shadow) + "; ";
    }

    const D3DXMATRIX world = Whole(70);
    Vorn::Mesh mesh;
    Vorn::Material material;
    IDirect3DTexture9* texture = nullptr;
    unsigned int modulation = 0x80FF4020u, additive = 0;
    const std::function<void()> quad = [this] { graphic.DrawTwoD(world, texture); };
    const std::function<void()> faded = [this] { graphic.DrawTwoDModulate(world, texture, 0.5f); };
    const std::function<void()> unlit = [this] { graphic.BasicShaderDraw(&mesh, world, texture); };
    const std::function<void()> lit = [this] {
        graphic.PhongLightingDraw(&mesh, world, texture, &material, modulation, additive);
    };
    const std::function<void()> shadow = [this] { graphic.ShadowMap(&mesh, world); };
    const std::function<void()> skinned = [this] { graphic.SetSkelMatrix(mesh, world, 1); };
};

TEST_F(DrawPath, AQuadIsTransparentAndTakesFormatTechniqueAndValuesInOrder) {
    Start();
    const std::string decl = "SetVertexDeclaration " + One("SetVertexDeclaration", quad) + "; ";
    const std::string stream = One("SetStreamSource", quad), indices = One("SetIndices", quad);
    EXPECT_THAT(decl, StartsWith("SetVertexDeclaration VertexDeclaration "));
    EXPECT_NE(decl, MeshFormat());
    EXPECT_TRUE(stream.starts_with("0 VertexBuffer ") && stream.ends_with(" 0 24")) << stream;
    EXPECT_THAT(indices, StartsWith("IndexBuffer "));
    const std::string buffers = "SetStreamSource " + stream + "; SetIndices " + indices + "; ";
    const std::string image = "SetTexture ModelTexture " + ObjectName(texture) + "; ";
    Expect(quad, "transparent; technique TransformTech; SetFVF 322; " + decl + buffers +
                     "matrices; " + image + "passes 2 quad");
    graphic.SetFog(3.5f, -4);
    Expect(faded, "transparent; SetFVF 322; " + buffers +
                      "matrices; SetFloat PF 3.5; SetFloat PB -4; SetFloat R 258; SetFloat G 258; "
                      "SetFloat B 258; SetFloat A 0.5; " +
                      image + "technique pixelmodulate; " + decl + "passes 3 quad");
}

TEST_F(DrawPath, AnUnlitMeshAndAShadowTakeTheirValuesInOrder) {
    Start();
    Expect(unlit, "SetTexture ModelTexture " + ObjectName(texture) +
                      "; matrices; technique TransformTech; " + MeshFormat() +
                      "transparent; passes 4 mesh");
    Expect(shadow, "technique TransformTech; " + MeshFormat() + "matrices; passes 6 mesh");
    // Whole triangles only, of any number.
    for (const auto& [count, triangles] :
         {std::pair(38u, "12"), {2u, "0"}, {0u, "0"}, {0xFFFFFFFFu, "1431655765"}}) {
        mesh.mIndexCount = count;
        EXPECT_EQ(Only(Calls(shadow), "DrawIndexedPrimitive")[0],
                  std::string("4 0 0 24 0 ") + triangles);
    }
}

TEST_F(DrawPath, ALitMeshTakesLightMaterialAndColoursAndSetsNoState) {
    Start();
    const std::string head = "technique PhongLighting; " + MeshFormat();
    const std::string end = "; matrices; SetValue globalAmbient 0.9 0.9 0.9 0 16; "
                            "SetMatrix worldInverseTransposeMatrix " +
                            Elements(Matrix4::Identity) + "; passes 5 mesh";
    const std::string surface =
        "SetFloat lights.radius 100; SetTexture colorMapTexture " + ObjectName(texture) +
        "; SetValue material.ambient 0.125 0.25 0.5 1 16; SetValue material.diffuse 1 2 3 4 16; "
        "SetValue material.emissive 5 6 7 8 16; SetValue material.specular 9 10 11 12 16; "
        "SetFloat material.shininess 13.5; SetValue cameraPos ";
    RenderTests::SetFrame(0);
    Expect(lit, // with a light that nobody has set
           head +
               "SetFloat PF 0; SetFloat PB 0; SetFloat modR 255; SetFloat modG 64; "
               "SetFloat modB 32; SetFloat modA 128; SetFloat addR 0; SetFloat addG 0; "
               "SetFloat addB 0; SetFloat addA 0; SetFloat time 0; "
               "SetValue lights.pos 0 0 0 12; SetValue lights.ambient 0 0 0 1 16; "
               "SetValue lights.diffuse 0 0 0 1 16; SetValue lights.specular 0 0 0 1 16; " +
               surface + "0 0 0 12" + end);
    graphic.SetFog(-3, 40.5f);
    graphic.SetPointLightPosition(Vector3(1, -2, 3));
    graphic.SetPointLightSettings(Vector3(4, 5, 6), Vector3(7, 8, 9), Vector3(0.5f, 0.25f, -1));
    graphic.CameraPos(Vector3(-7, 8, 9.5f));
    graphic.CreatePointLight(Vector3(99, 98, 97)); // that of the fixed function, with its radius
    RenderTests::SetFrame(0.25);
    modulation = 0xFFFEFDFCu, additive = 0x01020304u;
    Expect(lit, head +
                    "SetFloat PF -3; SetFloat PB 40.5; SetFloat modR 254; SetFloat modG 253; "
                    "SetFloat modB 252; SetFloat modA 255; SetFloat addR 2; SetFloat addG 3; "
                    "SetFloat addB 4; SetFloat addA 1; SetFloat time 0.25; "
                    "SetValue lights.pos 1 -2 3 12; SetValue lights.ambient 0.5 0.25 -1 1 16; "
                    "SetValue lights.diffuse 4 5 6 1 16; SetValue lights.specular 7 8 9 1 16; " +
                    surface + "-7 8 9.5 12" + end);
}

TEST_F(DrawPath, ASkinnedMeshIsPosedThenDrawnOnceWithTheRawShaders) {
    Start();
    const std::string device = ObjectName(Vorn::Graphic::GetDevice());
    const std::string none = One("SetMatrixArray", skinned); // without bones an array of none
    EXPECT_TRUE(none.starts_with(device + " FinalTransforms") && none.ends_with(" 0")) << none;
    mesh.mBoneCount = 2, mesh.mDuration = 8;
    mesh.mFinalTransforms = new D3DXMATRIX[2];
    mesh.mBones.resize(2);
    mesh.mRoots = {0};
    mesh.mBones[0].mChildren = {1};
    mesh.mBones[1].mParent = 0;
    mesh.mBones[1].mOffset = Matrix4::Translation(1, 2, 3);
    const Vorn::Quaternion same(Vector3(0, 0, 1), 0);
    mesh.mBones[0].mKeys = {{0, Vector3(), same}, {4, Vector3(16, 0, 0), same}};
    mesh.mBones[1].mKeys = {{0, Vector3(), same}, {4, Vector3(0, 8, 0), same}};
    const Matrix4 product = Whole(72) * Whole(71) * Whole(70);
    const std::string decl = One("SetVertexDeclaration", skinned);
    EXPECT_NE("SetVertexDeclaration " + decl + "; ", MeshFormat());
    mesh.mTime = 0;
    for (int i = 1; i <= 3; ++i) { // a second each: 4 to the right, 2 up for the child
        const auto f = static_cast<float>(i);
        const Texts calls = Calls(skinned);
        ASSERT_EQ(calls.size(), 8u);
        EXPECT_THAT(calls[5], StartsWith("SetVertexShader VertexShader "));
        EXPECT_THAT(calls[6], StartsWith("SetPixelShader PixelShader "));
        EXPECT_THAT(calls,
                    ElementsAreArray(
                        Spelt("GetConstantByName null WorldViewProj; SetMatrix " + device +
                              " WorldViewProj " + Elements(product) +
                              "; GetConstantByName null FinalTransforms; SetMatrixArray " + device +
                              " FinalTransforms " + Elements(Matrix4::Translation(4 * f, 0, 0)) +
                              ' ' + Elements(Matrix4::Translation(4 * f + 1, 2 * f + 2, 3)) +
                              " 2; SetVertexDeclaration " + decl + "; " + calls[5] + "; " +
                              calls[6] + "; DrawIndexedPrimitive 4 0 0 24 0 12")))
            << i;
    }
    // A shader without the constants is drawn with all the same, and the pose goes on.
    Reset({{"skel.vsh", "float4 VertexBlend(float4 p : POSITION) : POSITION { return p; }"}});
    const Texts calls = Calls(skinned);
    ASSERT_EQ(calls.size(), 6u) << testing::PrintToString(calls);
    EXPECT_EQ(calls[0] + calls[1] + calls[5],
              "GetConstantByName null WorldViewProjGetConstantByName null FinalTransforms"
              "DrawIndexedPrimitive 4 0 0 24 0 12");
    EXPECT_EQ(mesh.mTime, 4);
}

TEST_F(DrawPath, NoTextureIsAWhiteOneThatAResetDoesNotMultiply) {
    Start();
    const VornPlatform::LiveObjects first = CountLiveObjects();
    for (int i = 0; i < 3; ++i) {
        texture = nullptr;
        std::set<std::string> names;
        for (int j = 0; j < 2; ++j) {
            for (const auto& path : {quad, faded, unlit})
                names.insert(One("SetTexture ModelTexture", path));
            names.insert(One("SetTexture colorMapTexture", lit));
        }
        EXPECT_EQ(names.size(), 1u);
        EXPECT_THAT(*names.begin(), StartsWith("Texture "));
        EXPECT_EQ(CountLiveObjects(), first);
        engine.Reset();
    }
}

TEST_F(DrawPath, WithoutItsTechniqueAQuadAndAnUnlitMeshTakeWhatIsThereAndOthersDrawNothing) {
    const std::string head = RenderTests::Head;
    const auto other = [&](int passes) {
        return head + RenderTests::Technique("Other", passes, "Plain");
    };
    Start();
    Reset({{"twodbasicshader.fx", other(2)},
           {"basicshader.fx", other(3)},
           {"vornlight.fx", other(4)},
           {"shadow.fx", other(5)}});
    EXPECT_EQ(Only(Calls(quad), "DrawIndexedPrimitive").size(), 2u);
    EXPECT_EQ(Only(Calls(faded), "DrawIndexedPrimitive").size(), 2u);
    EXPECT_EQ(Only(Calls(unlit), "DrawIndexedPrimitive").size(), 3u);
    Expect(lit, "GetTechniqueByName PhongLighting; SetTechnique null");
    Expect(shadow, "GetTechniqueByName TransformTech; SetTechnique null");
    // No pass, no draw; and without any technique nothing begins.
    Reset(
        {{"basicshader.fx", head + "technique TransformTech {}\n"}, {"twodbasicshader.fx", head}});
    const Texts calls = Calls(unlit);
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ(calls[calls.size() - 2] + ' ' + calls.back(), "Begin 0 End");
    EXPECT_EQ(Calls(quad).back(), "Begin 0");
}

TEST_F(DrawPath, MissingParametersAreHarmless) {
    Start();
    const std::vector<std::function<void()>> paths = {quad, faded, unlit, lit, shadow, skinned};
    std::vector<std::size_t> counts;
    for (const auto& path : paths)
        counts.push_back(Calls(path).size());
    const std::string bare = "float4 Vertex(float4 p : POSITION) : POSITION { return p; }\n"
                             "float4 Plain() : COLOR0 { return 1; }\n";
    const auto technique = [](const char* name, int passes) {
        return RenderTests::Technique(name, passes, "Plain");
    };
    Reset({{"twodbasicshader.fx",
            bare + technique("TransformTech", 2) + technique("pixelmodulate", 3)},
           {"basicshader.fx", bare + technique("TransformTech", 4)},
           {"vornlight.fx", bare + technique("PhongLighting", 5)},
           {"shadow.fx", bare + technique("TransformTech", 6)}});
    for (std::size_t i = 0; i < paths.size(); ++i)
        EXPECT_EQ(Calls(paths[i]).size(), counts[i]) << i;
}

TEST_F(DrawPath, WithoutADeviceNothingIsDrawn) {
    for (int i = 0; i < 2; ++i) {
        for (const auto& path : {quad, faded, unlit, lit, shadow, skinned})
            EXPECT_THAT(Calls(path), IsEmpty());
        Start();
        Close();
        texture = nullptr;
    }
}

} // namespace
