// SPDX-License-Identifier: MIT
#include "tests/tools/import_fixture.hpp"
#include "tests/tools/strip.hpp"

#include <gmock/gmock.h>

namespace Tests {
namespace {

using testing::HasSubstr;
using testing::Not;

class SkinningImport : public ImportFixture {
protected:
    /// The offsets of bones that all stand at the origin.
    static std::vector<float> Unbound(std::size_t bones) {
        std::vector<float> numbers(16 * bones);
        for (std::size_t i = 0; i < numbers.size(); ++i)
            numbers[i] = i % 16 % 5 == 0 ? 1.0f : 0.0f;
        return numbers;
    }

    /// Rising times from 0 to the end, two keys at the least, none nearer than the least distance.
    static void CheckTracks(const ReadModel& model, float spacing) {
        for (const ReadBone& bone : model.bones) {
            ASSERT_GE(bone.keys.size(), 2u) << bone.name;
            EXPECT_EQ(bone.keys.front().time, 0) << bone.name;
            EXPECT_EQ(bone.keys.back().time, model.duration) << bone.name;
            for (std::size_t k = 1; k < bone.keys.size(); ++k)
                EXPECT_GT(bone.keys[k].time - bone.keys[k - 1].time, spacing * 0.999f) << bone.name;
        }
    }

    /// Plays the model as a game does and compares each frame with the strip's formulas.
    static void CheckMotion(const ReadModel& model, const Strip& strip) {
        Player player(model);
        for (int frame = 0; frame < 89; ++frame, player.Step(1 / 60.0f)) {
            // A step takes the time between two keys, and the cursor may be a frame late.
            const float time = player.Time();
            if (strip.curve == "STEP" && time > 0.7f && time < 0.8f)
                continue;
            for (const ReadVertex& vertex : model.vertices) {
                const int number = Strip::Number(vertex);
                const Vorn::Vector3 off = player.Place(vertex) - strip.At(number, time);
                ASSERT_LT(off.Length(), 4e-3f) << "vertex " << number << " at " << time;
            }
        }
    }
};

TEST_F(SkinningImport, MovesEveryVertexAsTheSourceDoes) {
    const struct {
        const char* name;
        Strip strip;
    } cases[] = {
        {"scaled_root", {}},
        {"scaled_bone", {.hipScale = 3}},
        {"mirrored_root", {.rootScale = {2, 2, -2}}},
        {"node_between", {.helper = true}},
        {"steps", {.curve = "STEP"}},
        {"cubic", {.curve = "CUBICSPLINE"}},
        {"rigid_on_node", {.rigid = true}},
        {"rigid_mirrored", {.rootScale = {-1, 1, 1}, .hipScale = 0.5f, .rigid = true}},
    };
    for (const auto& [name, strip] : cases) {
        SCOPED_TRACE(name);
        mFolder.File(std::string(name) + ".gltf", strip.Text());
        const Outcome outcome = Import(std::string(name) + ".gltf");
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_THAT(outcome.out, Not(HasSubstr("comes out other")));
        const ReadModel model = Model(name);
        EXPECT_TRUE(model.skinned);
        EXPECT_EQ(model.vertices.size(), 6u);
        EXPECT_EQ(model.indices.size(), 12u);
        EXPECT_FLOAT_EQ(model.duration, 1.5f);
        EXPECT_TRUE(FacesItsNormals(model));
        CheckTracks(model, 1 / 30.0f);
        CheckMotion(model, strip);
    }
}

TEST_F(SkinningImport, StandsAtRestAsTheSourceStands) {
    // What draws a skinned mesh unposed shows it upright and in its size.
    const Strip strip;
    mFolder.File("strip.gltf", strip.Text());
    ASSERT_EQ(Import("strip.gltf").status, 0);
    for (const ReadVertex& vertex : Model("strip").vertices) {
        EXPECT_LT((vertex.position - strip.At(Strip::Number(vertex), 0)).Length(), 1e-5f);
        EXPECT_FLOAT_EQ(vertex.v, 0.25f) << "glTF has its origin at the top too";
    }
}

TEST_F(SkinningImport, TellsOfScalesThatItLoses) {
    Strip strip;
    strip.rootScale = {2, 1, 1};
    mFolder.File("skewed.gltf", strip.Text());
    const Outcome outcome = Import("skewed.gltf");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.out, HasSubstr("the scale of bone \"knee\" changes"));
    EXPECT_THAT(outcome.out, HasSubstr("comes out other than in the source"));
}

TEST_F(SkinningImport, TakesTheAnimationThatIsAskedFor) {
    mFolder.File("strip.gltf", Strip().Text());
    const struct {
        const char* arguments;
        float duration;
        std::size_t hipKeys;
    } cases[] = {
        {"", 1.5f, 3},
        {"--animation nod", 1.0f, 3},
        {"--animation 1", 1.0f, 3},
        {"--animation none", 1.0f, 2},
        {"--from 0.75 --to 1.25", 0.5f, 2},
    };
    for (const auto& [arguments, duration, hipKeys] : cases) {
        SCOPED_TRACE(arguments);
        const Outcome outcome = Import(std::string("--force strip.gltf ") + arguments);
        ASSERT_EQ(outcome.status, 0) << outcome.error;
        const ReadModel model = Model("strip");
        EXPECT_FLOAT_EQ(model.duration, duration);
        EXPECT_EQ(model.bones.at(0).name, "hip");
        EXPECT_EQ(model.bones.at(1).parent, 0);
        EXPECT_EQ(model.bones.at(0).keys.size(), hipKeys);
        CheckTracks(model, 1 / 30.0f);
    }
    EXPECT_THAT(Import("--force strip.gltf").out, HasSubstr("animation \"nod\": a model file"));

    const Outcome unknown = Import("--force strip.gltf --animation fly");
    EXPECT_EQ(unknown.status, 1);
    EXPECT_THAT(unknown.error, HasSubstr("0: \"walk\"\n  1: \"nod\""));
}

TEST_F(SkinningImport, KeepsKeysAsFarApartAsTheEngineCanFollow) {
    // A motion that is never straight, with 240 keys a second.
    std::vector<float> times, places;
    for (int i = 0; i <= 240; ++i) {
        times.push_back(static_cast<float>(i) / 240);
        places.insert(places.end(), {std::sin(times.back() * 20), 0, 0});
    }
    GltfMaker scene;
    Json::Value primitive;
    primitive["attributes"]["POSITION"] = scene.Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
    scene.root["meshes"][0]["primitives"].append(primitive);
    scene.root["nodes"][0]["name"] = "thing";
    scene.root["nodes"][0]["mesh"] = 0;
    scene.root["scenes"][0]["nodes"].append(0);
    const int input = scene.Floats(times, "SCALAR");
    scene.Track(0, 0, "translation", input, scene.Floats(places, "VEC3"));
    mFolder.File("dense.gltf", scene.Text());

    for (const int rate : {30, 10}) {
        ASSERT_EQ(Import("--force dense.gltf --rate " + std::to_string(rate)).status, 0);
        const ReadModel model = Model("dense");
        CheckTracks(model, 1.0f / static_cast<float>(rate));
        EXPECT_GT(model.bones.at(0).keys.size(), static_cast<std::size_t>(rate) / 2);
    }
}

TEST_F(SkinningImport, KeepsTheFourLargestWeightsAndSaysSo) {
    // One vertex that six bones hold, by 0.3, 0.25, 0.2, 0.1, 0.1 and 0.05.
    GltfMaker gltf;
    Json::Value primitive;
    primitive["attributes"]["POSITION"] = gltf.Floats({0, 0, 0, 1, 0, 0, 0, 1, 0}, "VEC3");
    primitive["attributes"]["JOINTS_0"] = gltf.Shorts({0, 1, 2, 3, 0, 0, 0, 0, 0, 0, 0, 0}, "VEC4");
    primitive["attributes"]["WEIGHTS_0"] =
        gltf.Floats({0.1f, 0.05f, 0.25f, 0.1f, 1, 0, 0, 0, 1, 0, 0, 0}, "VEC4");
    primitive["attributes"]["JOINTS_1"] = gltf.Shorts({4, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "VEC4");
    primitive["attributes"]["WEIGHTS_1"] =
        gltf.Floats({0.3f, 0.2f, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, "VEC4");
    gltf.root["meshes"][0]["primitives"].append(primitive);
    gltf.root["skins"][0]["inverseBindMatrices"] = gltf.Floats(Unbound(6), "MAT4");
    for (int b = 0; b < 6; ++b) {
        gltf.root["nodes"][b]["name"] = "bone" + std::to_string(b);
        gltf.root["skins"][0]["joints"].append(b);
        gltf.root["scenes"][0]["nodes"].append(b);
    }
    gltf.root["nodes"][6]["mesh"] = 0;
    gltf.root["nodes"][6]["skin"] = 0;
    gltf.root["scenes"][0]["nodes"].append(6);
    mFolder.File("many.gltf", gltf.Text());

    const Outcome outcome = Import("many.gltf");
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_THAT(outcome.out, HasSubstr("1 vertices had more than four weights"));
    EXPECT_THAT(outcome.out, HasSubstr("the largest loss is 15.0 %"));
    const ReadModel model = Model("many");
    bool found = false;
    for (const ReadVertex& vertex : model.vertices) {
        float sum = 0;
        for (const float weight : vertex.weights)
            sum += weight;
        EXPECT_NEAR(sum, 1, 1e-5);
        if (vertex.weights[1] == 0)
            continue;
        found = true;
        EXPECT_NEAR(vertex.weights[0], 0.3 / 0.85, 1e-5);
        EXPECT_EQ(model.bones.at(vertex.bones[0]).name, "bone4");
        EXPECT_EQ(model.bones.at(vertex.bones[1]).name, "bone2");
        EXPECT_EQ(model.bones.at(vertex.bones[2]).name, "bone5");
    }
    EXPECT_TRUE(found);
}

TEST_F(SkinningImport, RefusesMoreBonesThanAVertexCanName) {
    GltfMaker gltf;
    std::vector<float> positions, weights;
    std::vector<std::uint16_t> joints;
    for (std::uint16_t b = 0; b < 300; ++b) {
        const auto x = static_cast<float>(b);
        positions.insert(positions.end(), {x, 0, 0, x + 1, 0, 0, x, 1, 0});
        for (int corner = 0; corner < 3; ++corner) {
            joints.insert(joints.end(), {b, 0, 0, 0});
            weights.insert(weights.end(), {1, 0, 0, 0});
        }
        gltf.root["nodes"][b]["name"] = "bone" + std::to_string(b);
        gltf.root["skins"][0]["joints"].append(b);
        gltf.root["scenes"][0]["nodes"].append(b);
    }
    Json::Value primitive;
    primitive["attributes"]["POSITION"] = gltf.Floats(positions, "VEC3");
    primitive["attributes"]["JOINTS_0"] = gltf.Shorts(joints, "VEC4");
    primitive["attributes"]["WEIGHTS_0"] = gltf.Floats(weights, "VEC4");
    gltf.root["meshes"][0]["primitives"].append(primitive);
    gltf.root["skins"][0]["inverseBindMatrices"] = gltf.Floats(Unbound(300), "MAT4");
    gltf.root["nodes"][300]["mesh"] = 0;
    gltf.root["nodes"][300]["skin"] = 0;
    gltf.root["scenes"][0]["nodes"].append(300);
    mFolder.File("centipede.gltf", gltf.Text());
    const Outcome outcome = Import("centipede.gltf");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.error, HasSubstr("moved by 300 bones, and a model file holds 256"));
    EXPECT_TRUE(Results().empty());
}

} // namespace
} // namespace Tests
