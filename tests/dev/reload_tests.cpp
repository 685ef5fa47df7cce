// SPDX-License-Identifier: MIT
#include "dev/dev_mode.hpp"
#include "dev/resource_reload.hpp"
#include "dev/scene_reload.hpp"
#include "dev/trigger_reload.hpp"
#include "tests/resource/model_file.hpp"
#include "tests/support/physics_names.hpp"
#include "tests/support/picture.hpp"

#include <chrono>
#include <thread>

namespace {

using namespace Vorn;
using Tests::Channels;
using Tests::Pixels;

/// A quad over the middle of the window, lit by nothing but its own light.
class ReloadTest : public Tests::PictureTest {
protected:
    ReloadTest() {
        [[maybe_unused]] static const bool once = (Tests::EnterPhysicsNames(), true);
        File("data/img/skin.tga", Tests::Tga(0xFFFF0000));
        File("data/mesh/quad", Quad(0.5f));
        File("data/mat/skin.json",
             R"({"Texture": "skin.tga", "Emissive": [1, 1, 1, 1], "Ambient": [1, 1, 1, 1]})");
        File("data/pack",
             R"({"Mesh": ["quad"], "Texture": ["skin.tga"], "Material": ["skin.json"]})");
        File("data/thing.ent", Thing);
        File("data/big.var", R"({"Type": "thing", "Variant": "big", "Scale": {"X": 2}})");
        File("data/a.scene", Start());
        EntityFactory::Instance()->Register("thing", &pool);
        EntityFactory::Instance()->LoadEntities("data");
        Open(Tests::SmallWidth, Tests::SmallHeight);
        Tests::Printed([&] { scene.DeserializePath("data/a.scene"), Run(scene); });
        for (const char* path : {"data/thing.ent", "data/big.var"})
            files.Learn(path);
    }
    ~ReloadTest() override {
        Dev::Stop();
        static Scene nothing;
        Run(nothing);
    }

    static void Run(Scene& next) {
        SceneManager::Instance()->SetScene(&next);
        SceneManager::Instance()->Update(0);
    }
    void File(const std::string& name, const std::string& bytes) { folder.File(name, bytes); }
    static std::string Quad(float half) {
        ResourceTests::Model model;
        for (const float x : {-half, half})
            for (const float y : {-half, half})
                model.vertices.push_back({{x, y, 0.5f, 0, 0, -1, 0.5f, 0.5f}, {}});
        model.indices = {0, 1, 2, 2, 1, 3};
        return model.File();
    }
    /// The picture of the game; `shown` is the one with what is over it.
    Pixels Frame() {
        graphic.SetView(Matrix4::Identity);
        graphic.SetProjection(Matrix4::Identity);
        graphic.SetBackBufferColor(0xFF000000);
        graphic.BeginScene();
        GraphicsSystem::Instance()->Update(0);
        graphic.EndScene();
        Pixels game = Picture();
        graphic.Present();
        shown = Picture();
        return game;
    }
    std::uint32_t Middle() { return Frame()[Tests::SmallWidth * 150 + 200]; }
    /// Frames of the mode until it is so, for two seconds at least.
    template <typename Condition>
    static bool Follows(Condition condition, int frames = 200) {
        for (int i = 0; i < frames; ++i) {
            Dev::Update();
            if (condition())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }
    bool HasMessage() {
        Frame(); // in which a window that comes up is measured
        Frame();
        const std::uint32_t corner = shown[Tests::SmallWidth * (Tests::SmallHeight - 12) + 12];
        return Channels(corner)[0] > 40 && Channels(corner)[1] < 20;
    }
    template <typename Action>
    static std::string Fault(Action action) {
        try {
            action();
        } catch (const std::exception& error) {
            return error.what();
        }
        return "";
    }

    static constexpr const char* Thing =
        R"({"Type": "thing", "Pool": 4, "Scale": {"X": 1, "Y": 1, "Z": 1}, "Orientation": {"Z": 1},
            "PhysicsCmpt": {"Type": "Box", "Category": "A", "Mass": 2},
            "GraphicsCmpt": {"Mesh": "quad", "Material": "skin.json"}})";
    static std::string Start(const std::string& more = "", const std::string& wide = "4") {
        return R"({"ResourcePack": "data/pack", "Entities": [
            {"Type": "thing", "Name": "plain"},
            {"Type": "thing", "Name": "wide", "Scale": {"X": )" +
               wide + R"(}},
            {"Type": "thing", "Variant": "big", "Position": {"X": 30}})" +
               more + "]}";
    }

    EntityPool<Entity> pool;
    Scene scene;
    Dev::EntityFiles files;
    Pixels shown;
};

TEST_F(ReloadTest, ChangedFilesShowWhileItRunsAndBrokenOnesSayWhy) {
    const Texture* texture = textures.Get("skin.tga");
    const std::uint32_t red = Middle();
    EXPECT_GT(Channels(red)[0], 2 * Channels(red)[1]);
    File("data/img/lost.tga", "no picture");
    textures.Load("lost.tga");
    textures.Load("none.tga");
    Dev::Start();
    EXPECT_THROW(Dev::Start(), std::logic_error);

    Dev::Update();
    EXPECT_NE(*textures.Get("none.tga")->mTexture, nullptr) << "the stand-in";
    EXPECT_TRUE(HasMessage());
    File("data/img/lost.tga", Tests::Tga(0xFF0000FF));
    File("data/img/none.tga", Tests::Tga(0xFF0000FF));
    EXPECT_TRUE(Follows([&] { return !HasMessage(); }));

    File("data/img/skin.tga", Tests::Tga(0xFF00FF00));
    EXPECT_TRUE(Follows([&] { return Channels(Middle())[0] == 0; }));
    const std::uint32_t green = Middle();
    const std::string shader = "data/shaders/vornlight.fx", compiles = TextFromFile(shader);
    File("data/img/skin.tga", "no picture");
    File(shader, compiles + "float4 broken(");
    EXPECT_TRUE(Follows([&] { return HasMessage(); }));
    EXPECT_EQ(Middle(), green) << "what ran goes on";
    EXPECT_EQ(textures.Get("skin.tga"), texture);
    File("data/img/skin.tga", Tests::Tga(0xFF00FF00));
    EXPECT_FALSE(Follows([&] { return !HasMessage(); }, 40)) << "the shader's stays";
    File(shader, compiles);
    EXPECT_TRUE(Follows([&] { return !HasMessage(); }));
    EXPECT_EQ(Middle(), green);
}

TEST_F(ReloadTest, AModelIsTakenWholeOrNotAtAll) {
    const Mesh* mesh = meshes.Get("quad");
    const std::string whole = Quad(0.1f);
    for (std::size_t size : {0u, 10u, 40u, 100u, static_cast<unsigned int>(whole.size()) - 1}) {
        File("data/mesh/quad", whole.substr(0, size));
        EXPECT_NE(Fault([] { Dev::ReloadMesh("quad"); }), "") << size;
    }
    std::string wild = whole;
    wild[24] = 9; // the first index
    File("data/mesh/quad", wild);
    EXPECT_THAT(Fault([] { Dev::ReloadMesh("quad"); }), testing::HasSubstr("beyond the vertices"));
    EXPECT_EQ(mesh->mVertices[0].x, -0.5f);

    const std::uint32_t red = Middle();
    File("data/mesh/quad", whole);
    EXPECT_TRUE(Dev::ReloadMesh("quad"));
    EXPECT_EQ(mesh->mVertices[0].x, -0.1f);
    EXPECT_NE(Middle(), red) << "the smaller one leaves the place free";
    EXPECT_FALSE(Dev::ReloadMesh("unknown"));
}

TEST_F(ReloadTest, AMaterialReachesTheCopiesOfEntitiesButForTheirOwnColours) {
    Material &plain = scene.GetEntity("plain")->Graphics()->GetMaterial(),
             &wide = scene.GetEntity("wide")->Graphics()->GetMaterial();
    wide.ModulationColor(0xFF102030ul);
    File("data/img/other.tga", Tests::Tga(0xFF0000FF));
    File("data/mat/skin.json", R"({"Texture": "other.tga", "Shininess": 7,
                                   "ModulationColor": [255, 1, 2, 3]})");
    EXPECT_TRUE(Dev::ReloadMaterial("skin.json"));
    for (Material* material : {&plain, &wide, materials.Get("skin.json")}) {
        EXPECT_EQ(material->Shininess(), 7.0f);
        EXPECT_EQ(material->Texture(), textures.Get("other.tga"));
        EXPECT_EQ(material->ModulationColor(), material == &wide ? 0xFF102030u : 0xFF010203u);
    }
    File("data/mat/skin.json", "{\"Texture\": \"other.tga\",\n \"Shininess\" 9}");
    EXPECT_THAT(Fault([] { Dev::ReloadMaterial("skin.json"); }), testing::HasSubstr("Line 2"));
    File("data/mat/skin.json", R"({"Texture": "nowhere.tga"})");
    EXPECT_THAT(Fault([] { Dev::ReloadMaterial("skin.json"); }), testing::HasSubstr("nowhere.tga"));
    EXPECT_EQ(plain.Shininess(), 7.0f);
}

TEST_F(ReloadTest, AnEntityFileChangesWhatChangedInItAndNothingElse) {
    Entity &plain = *scene.GetEntity("plain"), &wide = *scene.GetEntity("wide"),
           &big = *scene.EntityList().back();
    plain.Parent(&wide);
    plain.LocalPosition(Vector3(1, 2, 3));
    plain.Physics()->Mass(5);
    plain.Graphics()->Distortion(true);

    std::string text = Thing;
    text.replace(text.find("\"X\": 1, \"Y\": 1"), 14, "\"X\": 3, \"Y\": 3");
    File("data/thing.ent", text);
    files.Reload("data/thing.ent");
    EXPECT_EQ(plain.Scale(), Vector3(3, 3, 1));
    EXPECT_EQ(wide.Scale(), Vector3(4, 1, 1)) << "its scene has the last word";
    EXPECT_EQ(big.Scale(), Vector3(2, 3, 1));
    EXPECT_EQ(plain.LocalPosition(), Vector3(1, 2, 3));
    EXPECT_EQ(plain.Physics()->Mass(), 5.0f);
    EXPECT_TRUE(plain.Graphics()->Distortion());

    text.replace(text.find("\"Mass\": 2"), 9, "\"Mass\": 8");
    File("data/thing.ent", text);
    files.Reload("data/thing.ent");
    EXPECT_EQ(plain.Physics()->Mass(), 8.0f);
    EXPECT_EQ(plain.Physics()->Category(), wide.Physics()->Category());
    EXPECT_TRUE(plain.Physics()->Category().any());

    File("data/big.var", R"({"Type": "thing", "Variant": "big", "Scale": {"Y": 9}})");
    files.Reload("data/big.var");
    EXPECT_EQ(big.Scale(), Vector3(3, 9, 1));
    EXPECT_EQ(plain.Scale(), Vector3(3, 3, 1));

    File("data/thing.ent", text.substr(0, 90));
    EXPECT_NE(Fault([&] { files.Reload("data/thing.ent"); }), "");
    EXPECT_EQ(EntityFactory::Instance()->FetchEntity("thing", "master")->Scale(), Vector3(3, 3, 1));
    plain.Parent(nullptr);

    // Nothing living has it; what is fetched later finds its model.
    const auto late = [&](const std::string& mesh) {
        File("data/late.var",
             R"({"Type": "thing", "Variant": "late", "GraphicsCmpt": {"Mesh": ")" + mesh + "\"}}");
        files.Reload("data/late.var");
    };
    File("data/mesh/other", Quad(0.2f));
    Tests::Printed([&] { late("other"); });
    EXPECT_THAT(Fault([&] { late("nowhere"); }), testing::HasSubstr("nowhere"));
    Entity& fetched = *EntityFactory::Instance()->FetchEntity("thing", "late");
    fetched.Graphics()->Init();
    EXPECT_EQ(fetched.Graphics()->GetMesh(), meshes.Get("other"));
}

TEST_F(ReloadTest, ASceneFileMovesMakesAndEndsItsEntities) {
    Entity &plain = *scene.GetEntity("plain"), &wide = *scene.GetEntity("wide");
    plain.Position(7, 7, 7);
    File("data/a.scene", Start(R"(, {"Type": "thing", "Name": "new", "Position": {"Y": 5}},
                                    {"Type": "thing", "Variant": "big"})",
                               "6"));
    Dev::ReloadScene(scene);
    EXPECT_EQ(scene.EntityList().size(), 5u);
    EXPECT_EQ(plain.Position(), Vector3(7, 7, 7)) << "the game has moved it, the file has not";
    EXPECT_EQ(wide.Scale(), Vector3(6, 1, 1));
    ASSERT_NE(scene.GetEntity("new"), nullptr);
    EXPECT_EQ(scene.GetEntity("new")->Position(), Vector3(0, 5, 0));
    EXPECT_NE(scene.GetEntity("new")->Graphics()->GetMesh(), nullptr);

    File("data/a.scene", Start().substr(0, 150));
    EXPECT_NE(Fault([&] { Dev::ReloadScene(scene); }), "");
    EXPECT_EQ(scene.EntityList().size(), 5u);

    // A name that goes to another kind is another entity.
    File("data/a.scene",
         R"({"ResourcePack": "data/pack", "Entities": [
             {"Type": "thing", "Variant": "big", "Name": "plain"},
             {"Type": "unheard of"}, {"Type": "thing", "Name": "wide", "Scale": {"X": 6}}]})");
    EXPECT_THAT(Fault([&] { Dev::ReloadScene(scene); }), testing::HasSubstr("unheard of"));
    EXPECT_EQ(scene.EntityList().size(), 2u);
    EXPECT_EQ(scene.GetEntity("wide"), &wide);
    ASSERT_NE(scene.GetEntity("plain"), nullptr);
    EXPECT_EQ(scene.GetEntity("plain")->Variant(), "big");
}

TEST_F(ReloadTest, ATriggerHasTheScriptsNewEventAndCommands) {
    const auto script = [](const std::string& event, const std::string& place) {
        return R"({"Event": [")" + event +
               R"("], "Action": ["CREATE_ENTITY spawn thing POSITION )" + place + R"("]})";
    };
    TriggerManager& manager = *TriggerManager::Instance();
    const auto born = [&] { return scene.EntityList().back()->Position(); };
    const auto frame = [&](double dt) {
        manager.Update(dt);
        scene.Update(0);
    };
    folder.Folder("data/trigger");
    File("data/trigger/spawn.json", script("TIME_ELAPSED 1e9", "1 2 3"));
    Trigger::Trigger* trigger = manager.Push(Trigger::Trigger::LoadScript("spawn.json"));
    Dev::Start();
    File("data/trigger/spawn.json", script("TIME_INTERVAL 1", "4 5 6"));
    EXPECT_TRUE(Follows([&] { return trigger->mEvent.mType == "TIME_INTERVAL"; }));
    frame(0.5), frame(0.8), frame(0.8);
    EXPECT_EQ(born(), Vector3(4, 5, 6));

    for (const std::string& broken :
         {script("TIME_ELAPST 1", "7 8 9"), script("TIME_INTERVAL 2", "7 8 9").substr(0, 40)}) {
        File("data/trigger/spawn.json", broken);
        EXPECT_NE(Fault([] { Dev::ReloadTrigger("spawn.json"); }), "") << broken;
    }
    trigger->mDone = true;
    File("data/trigger/spawn.json", script("TIME_INTERVAL 1", "7 8 9"));
    EXPECT_TRUE(Dev::ReloadTrigger("spawn.json"));
    frame(1), frame(2);
    EXPECT_EQ(born(), Vector3(4, 5, 6)) << "it is done";
    EXPECT_FALSE(Dev::ReloadTrigger("post.json"));
}

TEST_F(ReloadTest, AGameFollowsFilesOfItsOwn) {
    std::string text;
    const auto follow = [&] {
        Dev::Follow("data/names.txt", [&] {
            if (TextFromFile("data/names.txt").empty())
                throw std::runtime_error("no names");
            text = TextFromFile("data/names.txt");
        });
    };
    EXPECT_THROW(follow(), std::logic_error);
    Dev::Start();
    follow();
    File("data/names.txt", "Ada");
    EXPECT_TRUE(Follows([&] { return text == "Ada"; }));
    File("data/names.txt", "");
    EXPECT_TRUE(Follows([&] { return HasMessage(); }));
    EXPECT_EQ(text, "Ada");
    Dev::Follow("data/names.txt", nullptr);
    File("data/names.txt", "Bea");
    EXPECT_FALSE(Follows([&] { return text != "Ada"; }, 40));
}

TEST_F(ReloadTest, ThePanelHoldsStepsAndLetsGoOfTime) {
    Dev::Start({.folders = {}, .panelOpen = true});
    DeltaClock& clock = *DeltaClock::Instance();
    const auto frame = [&] {
        Tests::Pump();
        Frame();
        Dev::Update();
        clock.Update();
    };
    const auto click = [&](int x, int y) {
        VornPlatform::SendMouseMove(x, y);
        frame();
        VornPlatform::SendMouseButton(1, true);
        frame();
        VornPlatform::SendMouseButton(1, false);
        frame();
        frame();
    };
    frame(), frame();
    click(50, 40); // pause
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    frame();
    EXPECT_EQ(clock.GetDeltaTime(), 0.0);
    VornPlatform::SendKey(VK_F1, true);
    VornPlatform::SendKey(VK_F1, false);
    frame();
    EXPECT_EQ(shown, Frame()) << "closed";
    EXPECT_EQ(clock.GetDeltaTime(), 0.0) << "a closed panel holds time all the same";
    Dev::Stop();
    clock.Update();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    clock.Update();
    EXPECT_GT(clock.GetDeltaTime(), 0.01);
    EXPECT_LT(clock.GetDeltaTime(), 1.9);
}

} // namespace
