// SPDX-License-Identifier: MIT
#include "tests/resource/model_file.hpp"

#include <functional>
#include <stdexcept>
#include <utility>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing::ThrowsMessage;
using Tests::Printed;
using Tests::Texts;
using Vorn::RscPack;

const std::string UnknownKey = "invalid map<K, T> key";

/// Files of three meshes, two textures and two materials, each of which names its texture.
class Packs : public Tests::RecorderTest {
protected:
    Packs() {
        Open();
        ResourceTests::Random random(51);
        for (const char* name : {"m1", "m2", "m3"})
            folder.File(std::string("data/mesh/") + name,
                        ResourceTests::RandomModel(random, 0).File());
        for (const char* name : {"t1", "t2"})
            folder.File(std::string("data/img/") + name, Tests::Tga(0xFF102030));
        folder.File("data/mat/a1", R"({"Texture": "t1"})");
        folder.File("data/mat/a2", R"({"Texture": "t2"})");
    }
    RscPack* Pack(const std::string& text, const std::string& name = "test.pack") {
        folder.File(name, text);
        return packs.LoadRscPack(name);
    }
    /// What the stores hold of the fixture's names.
    std::string Held() {
        std::string held;
        for (const char* name : {"m1", "m2", "m3"})
            Note(held, name, [&] { meshes.Get(name); });
        for (const char* name : {"t1", "t2"})
            Note(held, name, [&] { textures.Get(name); });
        for (const char* name : {"a1", "a2"})
            Note(held, name, [&] { materials.Get(name); });
        return held;
    }

private:
    static void Note(std::string& held, const char* name, const std::function<void()>& get) {
        try {
            get();
            held += name + std::string(" ");
        } catch (const std::out_of_range& error) {
            EXPECT_EQ(error.what(), UnknownKey);
        }
    }
};

const std::string Everything =
    R"({"Material": ["a2", "a1"], "Texture": ["t1", "t2"], "Mesh": ["m2", "m1"], "Audio": []})";

TEST_F(Packs, ListsStandInTheirFilesOrderAndNothingIsLoadedYet) {
    RscPack* const pack = Pack(Everything);
    EXPECT_THAT(pack->mMeshes, ElementsAre("m2", "m1"));
    EXPECT_THAT(pack->mTextures, ElementsAre("t1", "t2"));
    EXPECT_THAT(pack->mMaterials, ElementsAre("a2", "a1"));
    EXPECT_THAT(pack->mAudio, IsEmpty());
    EXPECT_EQ(Held(), "");
    // The file is read once, under each spelling of its path.
    folder.File("test.pack", "{}");
    EXPECT_EQ(packs.LoadRscPack("test.pack"), pack);
    EXPECT_EQ(packs.Get("test.pack"), pack);
    EXPECT_EQ(pack->mMeshes.size(), 2u);
    EXPECT_NE(packs.LoadRscPack("./test.pack"), pack);
}

TEST_F(Packs, EachStepLoadsOneItemMeshesFirstMaterialsLast) {
    RscPack* const pack = Pack(Everything);
    const Texts steps = {"m2 ",          "m1 m2 ",          "m1 m2 t1 ",
                         "m1 m2 t1 t2 ", "m1 m2 t1 t2 a2 ", "m1 m2 t1 t2 a1 a2 "};
    const std::string printed = Printed([&] {
        pack->InitLoad();
        EXPECT_EQ(Held(), steps[0]);
        EXPECT_EQ(pack->mTotal, 6u);
        for (unsigned int i = 1; i < steps.size(); ++i) {
            float progress = -1;
            EXPECT_EQ(pack->mLoaded, i);
            EXPECT_FALSE(pack->Load(i % 2 ? &progress : nullptr));
            EXPECT_EQ(Held(), steps[i]);
            EXPECT_EQ(progress, i % 2 ? static_cast<float>(i + 1) / 6.0f : -1);
        }
        for (int again = 0; again < 2; ++again) {
            float progress = -1;
            EXPECT_TRUE(pack->Load(&progress));
            EXPECT_TRUE(pack->Load(nullptr));
            EXPECT_EQ(progress, -1);
            EXPECT_EQ(pack->mLoaded, 6u);
        }
    });
    EXPECT_EQ(printed, "Loaded m2\nLoaded m1\n");
}

TEST_F(Packs, ProgressIsTheFractionDone) {
    RscPack* const pack = Pack(R"({"Texture": ["t1", "t2", "t1"]})"); // twice counts twice
    const int before = VornPlatform::CountLiveObjects().textures;
    float f = 0;
    pack->InitLoad();
    EXPECT_FALSE(pack->Load(&f));
    EXPECT_EQ(f, 2.0f / 3.0f);
    EXPECT_FALSE(pack->Load(&f));
    EXPECT_EQ(f, 1.0f);
    EXPECT_TRUE(pack->Load(&f));
    EXPECT_EQ(f, 1.0f);
    EXPECT_EQ(VornPlatform::CountLiveObjects().textures, before + 2);
}

TEST_F(Packs, WithoutItemsItIsDoneAtOnce) {
    for (const char* text : {"{}", R"({"Mesh": []})", "", "]", "no pack", "[1]", "7"}) {
        RscPack* const pack = Pack(text);
        pack->InitLoad();
        float f = 0.25f;
        EXPECT_TRUE(pack->Load(&f)) << text;
        EXPECT_EQ(f, 0.25f);
        EXPECT_EQ(pack->mLoaded + pack->mTotal, 0u);
        EXPECT_EQ(packs.LoadRscPack("test.pack"), pack);
        packs.UnloadRscPack("test.pack");
    }
}

TEST_F(Packs, AfterUnloadItLoadsAgainAndAReloadIsForTheWholePack) {
    RscPack* const pack = Pack(Everything);
    const auto load = [&] {
        pack->InitLoad();
        while (!pack->Load(nullptr))
            continue;
    };
    Printed(load);
    Vorn::Mesh* const mesh = meshes.Get("m1");
    EXPECT_EQ(Printed(load), ""); // all is there
    EXPECT_EQ(meshes.Get("m1"), mesh);
    EXPECT_EQ(Printed([&] { pack->Unload(); }), "Removed data/img/t1\nRemoved data/img/t2\n");
    EXPECT_EQ(Held(), "");
    EXPECT_EQ(pack->mMeshes.size(), 2u);
    EXPECT_EQ(VornPlatform::CountLiveObjects().vertexBuffers, 1); // the quad's
    Printed(load);
    EXPECT_EQ(Held(), "m1 m2 t1 t2 a1 a2 ");
    // What the load has not reached is unloaded as well.
    Printed([&] { pack->InitLoad(), packs.UnloadRscPack("test.pack"); });
    EXPECT_EQ(Held(), "");
}

TEST_F(Packs, ReleaseAndReloadGoThroughTheStores) {
    RscPack* const pack = Pack(R"({"Mesh": ["m1"], "Texture": ["t1"]})");
    pack->InitLoad(), pack->Load(nullptr);
    const VornPlatform::LiveObjects all = VornPlatform::CountLiveObjects();
    packs.Release();
    EXPECT_EQ(VornPlatform::CountLiveObjects().vertexBuffers, all.vertexBuffers - 1);
    EXPECT_EQ(VornPlatform::CountLiveObjects().textures, all.textures - 1);
    packs.Reload();
    EXPECT_EQ(VornPlatform::CountLiveObjects(), all);
}

TEST_F(Packs, WhatTwoPacksListTheFirstToGoTakesAway) {
    Pack(R"({"Mesh": ["m1", "m2"]})", "one.pack")->InitLoad();
    Pack(R"({"Mesh": ["m1"], "Texture": ["t1"]})", "two.pack")->InitLoad();
    packs.Get("two.pack")->Load(nullptr);
    EXPECT_EQ(Held(), "m1 t1 ");
    packs.UnloadRscPack("unknown");
    packs.UnloadRscPack("one.pack");
    EXPECT_EQ(Held(), "t1 ");
    packs.UnloadRscPack("two.pack");
    packs.UnloadRscPack("two.pack");
    EXPECT_EQ(Held(), "");
    Pack(R"({"Mesh": ["m1"]})", "three.pack")->InitLoad();
    packs.Free();
    EXPECT_EQ(Held(), "");
    Pack(R"({"Mesh": ["m3"]})", "one.pack")->InitLoad(); // of use still, and read anew
    EXPECT_EQ(Held(), "m3 ");
}

TEST_F(Packs, AnUnknownNameGivesAnEmptyPackThatStays) {
    folder.File("late.pack", Everything);
    RscPack* const pack = packs.Get("late.pack");
    EXPECT_THAT(pack->mMeshes, IsEmpty());
    EXPECT_EQ(packs.LoadRscPack("late.pack"), pack);
    EXPECT_THAT(pack->mMeshes, IsEmpty());
    EXPECT_TRUE(pack->Load(nullptr)); // without InitLoad too
}

TEST_F(Packs, AFileThatCannotBeReadIsNotRegistered) {
    folder.Folder("folder.pack");
    for (const std::string name : {"missing.pack", "folder.pack"})
        EXPECT_THAT([&] { packs.LoadRscPack(name); },
                    ThrowsMessage<std::runtime_error>(StartsWith("cannot open file: " + name)));
    EXPECT_EQ(Pack(Everything, "missing.pack")->mMeshes.size(), 2u);
}

TEST_F(Packs, ListsThatAreNoneAreEmptyAndElementsAreReadAsTexts) {
    const std::string rest = R"(, "Texture": ["t1"]})";
    for (const char* mesh : {"null", "true", "7", "1.5", R"("m1")", R"({"0": "m1"})", "{}"}) {
        RscPack* const pack = Pack(std::string(R"({"Mesh": )") + mesh + rest);
        EXPECT_THAT(pack->mMeshes, IsEmpty()) << mesh;
        EXPECT_THAT(pack->mTextures, ElementsAre("t1"));
        packs.UnloadRscPack("test.pack");
    }
    EXPECT_THAT(Pack(R"({"Mesh": ["m1", 7, true, null]})")->mMeshes,
                ElementsAre("m1", "7", "true", ""));
    packs.UnloadRscPack("test.pack");
    for (const char* key : {"Mesh", "Texture", "Material", "Audio"})
        for (const char* element : {"[]", "[1]", "{}", R"({"a": 1})"}) {
            const std::string text = "{\"" + std::string(key) + "\": [\"\", " + element + "]}";
            EXPECT_THAT([&] { Pack(text); },
                        ThrowsMessage<std::runtime_error>(testing::AllOf(
                            StartsWith("Type is not convertible to string"), HasSubstr(key))))
                << text;
            packs.UnloadRscPack("test.pack");
        }
    // What comes before a fault of the text holds.
    EXPECT_THAT(Pack(R"({"Mesh": ["m1", "m2"], "Texture": [)")->mMeshes, ElementsAre("m1", "m2"));
}

TEST_F(Packs, AMissingMeshOrTextureIsAnEntryWithoutDeviceObjects) {
    RscPack* const pack = Pack(R"({"Mesh": ["none"], "Texture": ["none.tga", "t1"]})");
    const VornPlatform::LiveObjects before = VornPlatform::CountLiveObjects();
    EXPECT_EQ(Printed([&] {
                  pack->InitLoad();
                  EXPECT_FALSE(pack->Load(nullptr));
              }),
              "Loaded none\n");
    const Vorn::Mesh& mesh = *meshes.Get("none");
    EXPECT_EQ(mesh.mIndexCount + mesh.mVertexCount, 0u);
    EXPECT_TRUE(!mesh.mVertexBuffer && !mesh.mIndexBuffer);
    EXPECT_EQ(*textures.Get("none.tga")->mTexture, nullptr);
    for (int i = 0; i < 2; ++i)
        packs.Release();
    packs.Reload();
    EXPECT_EQ(VornPlatform::CountLiveObjects(), before);
    Printed([&] { pack->Unload(); });
    EXPECT_EQ(VornPlatform::CountLiveObjects(), before);
}

TEST_F(Packs, AnItemThatRaisesIsBehindTheCursorAndNotCounted) {
    folder.File("data/mat/none", R"({"Texture": "t9"})");
    RscPack* const pack = Pack(R"({"Texture": ["t1"], "Material": ["none", "none2", "a1"]})");
    extra.insert("none2");
    pack->InitLoad();
    EXPECT_THAT([&] { pack->Load(nullptr); },
                ThrowsMessage<std::out_of_range>(UnknownKey)); // the texture that it names
    EXPECT_THAT([&] { pack->Load(nullptr); },
                ThrowsMessage<std::runtime_error>(StartsWith("cannot open file: data/mat/none2")));
    EXPECT_EQ(pack->mLoaded, 1u);
    float f = 0;
    EXPECT_FALSE(pack->Load(&f));
    EXPECT_EQ(f, 0.5f);
    EXPECT_TRUE(pack->Load(&f));
    EXPECT_EQ(Held(), "t1 a1 ");

    RscPack* const first = Pack(R"({"Material": ["none2", "a1"]})", "first.pack");
    EXPECT_THROW(first->InitLoad(), std::runtime_error);
    EXPECT_EQ(first->mLoaded, 0u);
    EXPECT_FALSE(first->Load(nullptr));
}

TEST_F(Packs, ASceneLoadsItsWholePack) {
    folder.File("test.pack", Everything);
    Vorn::Scene scene;
    scene.ResourcePack("test.pack");
    Printed([&] { scene.Load(); });
    EXPECT_EQ(Held(), "m1 m2 t1 t2 a1 a2 ");
    EXPECT_EQ(packs.Get("test.pack")->mLoaded, 6u);
    scene.Unload();
    EXPECT_EQ(Held(), "m1 m2 t1 t2 a1 a2 ");
    // An empty name loads nothing.
    packs.Free();
    scene.ResourcePack("");
    scene.Load();
    EXPECT_EQ(Held(), "");
    scene.ResourcePack("missing.pack");
    EXPECT_THROW(scene.Load(), std::runtime_error);
}

TEST_F(Packs, AreFreedBeforeTheDeviceAndAfterIt) {
    for (const bool before : {true, false}) {
        RscPack* const pack = Pack(R"({"Mesh": ["m1"], "Texture": ["t1"]})");
        pack->InitLoad(), pack->Load(nullptr);
        if (before)
            packs.Free();
        engine.Free();
        packs.Free();
        EXPECT_EQ(VornPlatform::CountLiveObjects(), VornPlatform::LiveObjects());
        if (before)
            engine.mGraphics->Init(Vorn::Engine::mWnd, 320, 240, false);
    }
    engine.mGraphics->Init(Vorn::Engine::mWnd, 320, 240, false); // for the fixture to free
}

} // namespace
