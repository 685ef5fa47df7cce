// SPDX-License-Identifier: MIT
//
// What the two passes over the components draw, in which order and with which states around it.
#include "tests/render/shader_files.hpp"

#include <memory>
#include <stdexcept>

namespace {

using RenderTests::Calls;
using RenderTests::KnownShaders;
using RenderTests::Only;
using RenderTests::WriteShaders;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::StartsWith;
using Tests::operator+;
using Tests::Texts;
using Vorn::COLORS;
using Vorn::Entity;
using Vorn::GraphicsCmpt;
using Vorn::Matrix4;
using Vorn::Mesh;
using Vorn::Vector3;
using VornPlatform::ObjectName;

const Texts Prologue = {"SetTextureStageState 0 24 2", "SetRenderState 27 0", "SetRenderState 7 1",
                        "SetRenderState 14 1", "SetRenderState 23 2"};
const Texts Format = {"SetFVF 82"};
const Texts Epilogue = {"SetRenderState 27 1", "SetRenderState 19 5", "SetRenderState 20 6",
                        "SetTextureStageState 0 5 0"};
/// A pass with its states around what it draws.
Texts Frame(const Texts& drawn = {}, const Texts& lines = {}) {
    return Prologue + lines + Format + drawn + Epilogue;
}

class Passes : public Tests::RecorderTest {
protected:
    Passes() {
        WriteShaders(KnownShaders());
        for (const char* name : {"box", "ball", "empty"})
            extra.insert(name);
        folder.File("data/img/t", Tests::Tga(0xFF123456));
        folder.File("data/img/u", Tests::Tga(0xFF654321));
        folder.File("data/mat/wool", R"({"Texture": "t", "ModulationColor": [128, 255, 64, 32],
            "AdditiveColor": [1, 2, 3, 4], "Ambient": [1, 2, 3, 4], "Shininess": 5})");
        folder.File("data/mat/straw", R"({"Texture": "u"})");
        Open();
        textures.Load("t"), textures.Load("u");
        materials.Load("wool"), materials.Load("straw");
        testing::internal::CaptureStdout();
        for (const char* name : {"box", "ball"}) {
            Mesh& mesh = *meshes.CreateMesh(name);
            mesh.mVertexCount = 3, mesh.mIndexCount = 6;
            mesh.mVertices = new Vorn::Vertex_UTx[3];
            mesh.mIndices = new unsigned int[6]{0, 1, 2, 2, 1, 0};
        }
        meshes.CreateMesh("empty"); // nothing on the device
        testing::internal::GetCapturedStdout();
        meshes.Reload();
        RenderTests::SetFrame(0.25);
    }
    ~Passes() override {
        system.ClearLine();
        for (const auto& entity : mEntities)
            system.Unregister(entity->Graphics());
    }
    /// An entity that lives and is drawn.
    GraphicsCmpt& Add(const char* mesh, const char* material, const Vector3& place = Vector3()) {
        Entity& entity = *mEntities.emplace_back(std::make_unique<Entity>());
        entity.Deserialize(R"({"GraphicsCmpt": {}, "Scale": {"X": 2, "Y": 3, "Z": 4}})", true);
        entity.Position(place);
        entity.Orientation(0, 0, 1);
        entity.Alive(true);
        Json::Value value;
        value["Mesh"] = mesh, value["Material"] = material;
        GraphicsCmpt& cmpt = *entity.Graphics();
        cmpt.DeserializeValue(value, true);
        cmpt.Init();
        system.Register(&cmpt);
        return cmpt;
    }
    Texts Update(float dt = 0) {
        return Calls([&] { system.Update(dt); });
    }
    Texts Beam(float dt = 0) {
        return Calls([&] { system.BeamEffects(dt); });
    }
    static Texts World(GraphicsCmpt& cmpt) {
        return {"SetTransform 256 " + RenderTests::Elements(cmpt.Parent()->GetWorld())};
    }
    static Texts Binding(GraphicsCmpt& cmpt) {
        Texts calls = World(cmpt);
        if (IDirect3DVertexBuffer9* vertices = cmpt.GetMesh()->mVertexBuffer)
            calls.push_back("SetStreamSource 0 " + ObjectName(vertices) + " 0 56");
        if (IDirect3DIndexBuffer9* indices = cmpt.GetMesh()->mIndexBuffer)
            calls.push_back("SetIndices " + ObjectName(indices));
        return calls;
    }
    IDirect3DTexture9* Image(GraphicsCmpt& cmpt) {
        const std::string material = cmpt.GetMaterial().Path();
        return material.empty() ? nullptr : *textures.Get(material == "wool" ? "t" : "u")->mTexture;
    }
    Texts Lit(GraphicsCmpt& cmpt) {
        const bool wool = cmpt.GetMaterial().Path() == "wool";
        return Binding(cmpt) + Calls([&] {
                   graphic.PhongLightingDraw(cmpt.GetMesh(), cmpt.Parent()->GetWorld(), Image(cmpt),
                                             &cmpt.GetMaterial(), wool ? 0x80FF4020u : 0xFFFFFFFFu,
                                             wool ? 0x01020304u : 0);
               });
    }
    Texts Unlit(GraphicsCmpt& cmpt) {
        return Binding(cmpt) + Calls([&] {
                   graphic.BasicShaderDraw(cmpt.GetMesh(), cmpt.Parent()->GetWorld(), Image(cmpt));
               });
    }
    Texts Skinned(GraphicsCmpt& cmpt, float dt) {
        return Binding(cmpt) + Calls([&] {
                   graphic.SetSkelMatrix(*cmpt.GetMesh(), cmpt.Parent()->GetWorld(), dt);
               });
    }

    Vorn::GraphicsSystem& system = *Vorn::GraphicsSystem::Instance();

private:
    std::vector<std::unique_ptr<Entity>> mEntities;
};

TEST_F(Passes, AnEmptySystemSetsItsStatesAndDrawsItsLines) {
    EXPECT_THAT(Update(), ElementsAreArray(Frame()));
    EXPECT_THAT(Beam(), ElementsAreArray(Frame()));
    const Vector3 a(1, 2, 3), b(4, 5, 6);
    const auto line = [&](const Vector3& from, const Vector3& to, std::uint32_t color) {
        return Calls([&] { graphic.Draw3DLine(from, to, COLORS{color}); });
    };
    system.AddLine(a, b, COLORS{0xFFC50BDFu});
    system.AddLine(b, a, COLORS{7});
    const Texts drawn = Frame({}, line(a, b, 0xFFC50BDFu) + line(b, a, 7));
    EXPECT_THAT(Beam(), ElementsAreArray(drawn));
    ASSERT_EQ(system.LineContainer().size(), 2u);
    EXPECT_TRUE(system.LineContainer()[1].start == b && system.LineContainer()[1].color == 7u);
    EXPECT_THAT(Update(), ElementsAreArray(drawn));
    EXPECT_THAT(system.LineContainer(), IsEmpty());
    EXPECT_THAT(Update(), ElementsAreArray(Frame()));
    system.AddLine(a, b, COLORS{1});
    system.ClearLine();
    EXPECT_THAT(Beam(), ElementsAreArray(Frame()));
}

TEST_F(Passes, LitMeshesAreDrawnInTheOrderOfRegistration) {
    GraphicsCmpt& far = Add("box", "wool", Vector3(0, 0, 900));
    GraphicsCmpt& near = Add("ball", "straw", Vector3(1, 2, 3));
    GraphicsCmpt& bare = Add("empty", "wool"); // no buffer: what is bound stays
    const Texts expected = Frame(Lit(far) + Lit(near) + Lit(bare));
    EXPECT_THAT(Update(), ElementsAreArray(expected));
    for (int i = 0; i < 2; ++i) {
        i ? system.UnregisterAlpha(&near) : system.RegisterAlpha(&near);
        system.UnregisterAlpha(&far);
        EXPECT_THAT(Update(), ElementsAreArray(expected));
    }
    system.Register(&far);
    EXPECT_EQ(Only(Update(), "DrawIndexedPrimitive").size(), 4u);
    system.Unregister(&far); // the first of its entries
    EXPECT_THAT(Update(), ElementsAreArray(Frame(Lit(near) + Lit(bare) + Lit(far))));
    // After a reset with the buffers and textures that are there then.
    const std::string before = ObjectName(near.GetMesh()->mVertexBuffer);
    engine.Reset();
    EXPECT_NE(ObjectName(near.GetMesh()->mVertexBuffer), before);
    EXPECT_THAT(Update(), ElementsAreArray(Frame(Lit(near) + Lit(bare) + Lit(far))));
}

TEST_F(Passes, OnlyWhatLivesHasAParentAndBelongsToThePassIsDrawn) {
    GraphicsCmpt& lit = Add("box", "wool");
    GraphicsCmpt& beam = Add("ball", "straw");
    GraphicsCmpt& dead = Add("box", "wool");
    GraphicsCmpt& deadBeam = Add("box", "wool");
    GraphicsCmpt& shapeless = Add("", "wool", Vector3(5, 6, 7));
    GraphicsCmpt orphan;
    orphan.SetMesh(meshes.Get("box"));
    system.Register(&orphan);
    beam.Distortion(true), deadBeam.Distortion(true);
    dead.Parent()->Alive(false), deadBeam.Parent()->Alive(false);
    EXPECT_THAT(Update(), ElementsAreArray(Frame(Lit(lit) + World(shapeless))));
    shapeless.Distortion(true), orphan.Distortion(true);
    EXPECT_THAT(Beam(), ElementsAreArray(Frame(Unlit(beam) + World(shapeless))));
    system.Unregister(&orphan);
}

TEST_F(Passes, AMeshWithoutATextureIsDrawnWhite) {
    GraphicsCmpt& plain = Add("box", "");
    EXPECT_THAT(Update(), ElementsAreArray(Frame(Lit(plain))));
    folder.File("data/img/t", "no image");
    Add("box", "wool");
    textures.Release(), textures.Reload(); // an empty slot
    const Texts names = Only(Update(), "SetTexture colorMapTexture");
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0], names[1]);
    EXPECT_THAT(names[0], StartsWith("Texture "));
}

TEST_F(Passes, ASkinnedMeshMovesByTheFrameClockInTheSecondPassOnly) {
    GraphicsCmpt& first = Add("box", "wool");
    GraphicsCmpt& second = Add("box", "straw", Vector3(1, 0, 0));
    Mesh& mesh = *meshes.Get("box");
    mesh.mSkinned = true;
    mesh.mDuration = 16;
    first.GetMaterial().mAdditiveRamp.mRate = Vorn3DColorSigned(0, 8, 8, 8);
    first.GetMaterial().AdditiveColor();
    Update(0.5f);
    EXPECT_EQ(mesh.mTime, 0);
    first.Distortion(true), second.Distortion(true);
    const unsigned int color = first.GetMaterial().AdditiveColor();
    const Texts calls = Beam(0.5f);
    EXPECT_EQ(mesh.mTime, 0.5f); // twice a quarter: the clock is the mesh's
    EXPECT_EQ(first.GetMaterial().AdditiveColor(), color);
    mesh.mTime = 0;
    EXPECT_THAT(calls, ElementsAreArray(Frame(Skinned(first, 0.25f) + Skinned(second, 0.25f))));
}

TEST_F(Passes, RampsMoveTheColoursBeforeTheDraw) {
    GraphicsCmpt& cmpt = Add("box", "straw");
    Vorn::Material& material = cmpt.GetMaterial();
    Vorn::Material& stored = *materials.Get("straw");
    const auto drawn = [&](float dt) { // additive a, r, g, b, then modulation
        const Texts calls = Update(dt);
        std::string colors;
        for (const char* name : {"addA", "addR", "addG", "addB", "modA", "modR", "modG", "modB"})
            colors += Only(calls, std::string("SetFloat ") + name).at(0) + ' ';
        return colors;
    };
    material.mAdditiveRamp.mRate = Vorn3DColorSigned(0, 100, 3, 5);
    material.mAdditiveRamp.mEnd = Vorn3DColorSigned(0, 200, 200, 0);
    material.mModulationRamp.mRate = Vorn3DColorSigned(-2, 0, 0, -100);
    // An assigned ramp drives the colours of where it came from, until its own are asked for.
    EXPECT_EQ(drawn(0.5f), "0 0 0 0 255 255 255 255 ");
    EXPECT_EQ(stored.AdditiveColor(), 0x00320102u);
    EXPECT_EQ(stored.ModulationColor(), 0xFEFFFFCDu);
    EXPECT_EQ(drawn(0.5f), "0 50 1 2 254 255 255 205 ");
    EXPECT_EQ(stored.AdditiveColor(), 0x00320102u);
    for (int i = 0; i < 5; ++i) // less than a whole step each
        EXPECT_EQ(drawn(0.004f), "0 50 1 2 254 255 255 205 ");
    cmpt.Distortion(true);
    Beam(1);
    Update(1);
    EXPECT_EQ(material.AdditiveColor(), 0x00960407u);
    EXPECT_EQ(material.ModulationColor(), 0xFCFFFF69u);
    cmpt.Distortion(false);
    Beam(1);
    cmpt.Parent()->Alive(false);
    Update(1);
    cmpt.Parent()->Alive(true);
    cmpt.SetMesh(nullptr);
    Update(1);
    cmpt.SetMesh(meshes.Get("box"));
    material.mModulationRamp.mRate = {};
    EXPECT_EQ(drawn(2.5f), // from a sum of 161 past the 400 of its end
              "0 200 200 0 252 255 255 105 ");
}

TEST_F(Passes, InitResolvesNamesAndClearsTheSecondPass) {
    GraphicsCmpt cmpt;
    cmpt.Distortion(true);
    cmpt.SetMesh(meshes.Get("ball"));
    cmpt.Init(); // no names: mesh and material stay
    EXPECT_EQ(cmpt.GetMesh(), meshes.Get("ball"));
    EXPECT_FALSE(cmpt.Distortion());

    const auto read = [&](const char* key, const Json::Value& entry) {
        Json::Value value;
        value[key] = entry;
        cmpt.DeserializeValue(value, false);
    };
    read("Mesh", "box"), read("Material", "wool");
    EXPECT_EQ(cmpt.GetMesh(), meshes.Get("ball")); // until the next Init
    cmpt.Init();
    EXPECT_EQ(cmpt.GetMesh(), meshes.Get("box"));
    EXPECT_EQ(cmpt.GetMaterial().Path(), "wool");
    EXPECT_EQ(cmpt.GetMaterial().Texture(), textures.Get("t"));
    EXPECT_EQ(cmpt.GetMaterial().Ambient().w, 4); // by assignment, the colours of light too
    EXPECT_EQ(cmpt.GetMaterial().Shininess(), 5);
    cmpt.GetMaterial().AdditiveColor(9ul);
    EXPECT_EQ(materials.Get("wool")->AdditiveColor(), 0x01020304u);
    Json::Value out;
    cmpt.SerializeValue(out, true), cmpt.SerializeValue(out, false);
    EXPECT_TRUE(out.isNull());

    const auto raised = [](const std::function<void()>& action) -> std::string {
        try {
            action();
        } catch (const std::out_of_range& error) {
            return error.what();
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "nothing";
    };
    cmpt.SetMeshPath("nowhere");
    EXPECT_EQ(raised([&] { cmpt.Init(); }), "invalid map<K, T> key");
    cmpt.SetMeshPath("box");
    read("Material", "nothing");
    EXPECT_EQ(raised([&] { cmpt.Init(); }), "invalid map<K, T> key");
    for (const char* key : {"Mesh", "Material"})
        EXPECT_THAT(raised([&] { read(key, Json::arrayValue); }),
                    StartsWith("Type is not convertible to string"));
}

TEST_F(Passes, ConformTakesTheNamesAndACopyTakesAll) {
    GraphicsCmpt& source = Add("box", "wool");
    source.Distortion(true);
    GraphicsCmpt other;
    other.SetMesh(meshes.Get("ball"));
    other.Conform(source);
    EXPECT_EQ(other.GetMesh(), meshes.Get("ball"));
    EXPECT_EQ(other.GetMaterial().Path(), "");
    EXPECT_FALSE(other.Distortion());
    other.Init();
    EXPECT_EQ(other.GetMesh(), meshes.Get("box"));
    EXPECT_EQ(other.GetMaterial().Path(), "wool");

    GraphicsCmpt assigned;
    assigned = source;
    const GraphicsCmpt copy(source);
    for (const GraphicsCmpt* cmpt : {&std::as_const(assigned), &copy}) {
        EXPECT_TRUE(cmpt->GetMesh() == meshes.Get("box") && cmpt->Distortion());
        EXPECT_EQ(const_cast<GraphicsCmpt*>(cmpt)->GetMaterial().Texture(), textures.Get("t"));
    }
    // The first by the material's assignment, the second by its constructor, which leaves light.
    EXPECT_EQ(assigned.GetMaterial().Ambient().x, 1);
    EXPECT_EQ(GraphicsCmpt(copy).GetMaterial().Ambient().x, 0);
}

TEST_F(Passes, TheSystemsInitReachesWhatIsRegistered) {
    GraphicsCmpt& cmpt = Add("box", "wool");
    cmpt.SetMeshPath("ball");
    cmpt.Distortion(true);
    system.Init();
    EXPECT_EQ(cmpt.GetMesh(), meshes.Get("ball"));
    EXPECT_FALSE(cmpt.Distortion());
    system.Deinit();
    EXPECT_EQ(cmpt.GetMesh(), meshes.Get("ball"));
}

} // namespace
