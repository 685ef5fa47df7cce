// SPDX-License-Identifier: MIT
//
// How the data of an emitter come together out of their layers, and what they may not be.
#include "tests/render/emitters.hpp"

#include <cstdlib>
#include <limits>

namespace {

using RenderTests::EmitterCmpt;
using RenderTests::Parsed;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;
using testing::ThrowsMessage;
using Vorn::Entity;
using Vorn::Particle;
using Vorn::Vector3;

constexpr int Most = std::numeric_limits<int>::max(), Least = std::numeric_limits<int>::min();

/// Every key has something to show.
const Json::Value Rich = Parsed(R"("TexturePath": "spark", "Size": 5, "SpawnRate0": 0.375,
    "SpawnRate1": 0.375, "Offset": {"X": 1, "Y": 2, "Z": 3}, "EmitterType": "Sphere",
    "SphereRadius": 2, "Particles_Per_Emit": 2, "Gravity": 1.5, "EmitOnce": false, "ScaleI": "a",
    "Scale0": {"X": 1, "Y": 2, "Z": 3}, "Scale1": {"X": 4, "Y": 5, "Z": 6}, "SpeedI": "b",
    "Speed0": 7, "Speed1": 8, "ColorI": "c", "Color0": {"A": 10, "R": 20, "G": 30, "B": 40},
    "Color1": {"A": 50, "R": 60, "G": 70, "B": 80}, "ParticleLife0": 1.25, "ParticleLife1": 1.25)");
/// Another value for each, with some axes left out.
const Json::Value Others = Parsed(R"("TexturePath": "Bubble.dds", "Size": 8, "SpawnRate0": 1.5,
    "SpawnRate1": 1.5, "Offset": {"Y": 9}, "EmitterType": "Smoke", "SphereRadius": 3,
    "Particles_Per_Emit": 1, "Gravity": -2.5, "EmitOnce": true, "ScaleI": "d",
    "Scale0": {"Y": 9.5}, "Scale1": {"Z": 9.5}, "SpeedI": "d", "Speed0": 9, "Speed1": 9,
    "ColorI": "d", "Color0": {"R": 99}, "Color1": {"B": 99, "A": 98}, "ParticleLife0": 2.5,
    "ParticleLife1": 2.5)");
/// Those that change nothing.
const std::set<std::string> Unused = {"Offset", "ScaleI", "SpeedI", "ColorI"};

Json::Value::Members AxesOf(const Json::Value& value) {
    return value.isObject() ? value.getMemberNames() : Json::Value::Members();
}

class EmitterData : public RenderTests::Emitters {
protected:
    /// All that can be seen of an emitter after `Init`, for three seconds.
    std::string Show(EmitterCmpt& emitter) {
        std::string text = emitter.GetTexture() == textures.Get("spark") ? "spark " : "other ";
        text += std::to_string(emitter.GetParticleLifeSpan()) + '\n';
        for (int i = 0; i < 12; ++i) {
            emitter.Emit(0.25f);
            emitter.Update(0.25f);
            for (const Particle& p : emitter.mParticles) {
                const Vector3 &at = p.position, &to = p.direction, &v = p.velocity, &s = p.scale;
                if (p.alive)
                    text += Tests::Text({at.x, at.y, at.z, to.x, to.y, to.z, v.x, v.y, v.z, s.x,
                                         s.y, s.z, p.speed, p.life, p.lifeSpan}) +
                            ' ' + std::to_string(static_cast<unsigned long>(p.color));
                text += '\n';
            }
        }
        return text;
    }
    /// `first` is read, taken over by a component, and `second` read by that.
    std::string Straight(const Json::Value& first, const Json::Value& second) {
        EmitterCmpt source;
        source.DeserializeValue(first, true);
        EmitterCmpt emitter(&entity);
        emitter.Conform(source);
        emitter.DeserializeValue(second, false);
        std::srand(1);
        emitter.Init();
        return Show(emitter);
    }
    /// By files of entity and variant, and by an object of a scene.
    std::string Staged(const Json::Value& master, const Json::Value& variant,
                       const Json::Value& object) {
        const auto whole = [](const std::string& members, const Json::Value& emitter) {
            Json::Value value = Parsed(members);
            value["EmitterCmpt"] = emitter;
            return value;
        };
        folder.Folder("data/ent");
        folder.File("data/ent/fire.ent",
                    whole("'Type': 'fire', 'Pool': 2", master).toStyledString());
        folder.File("data/ent/blue.var",
                    whole("'Type': 'fire', 'Variant': 'blue'", variant).toStyledString());
        Vorn::EntityPool<Entity> pool;
        Vorn::EntityFactory::Instance()->Register("fire", &pool);
        Vorn::EntityFactory::Instance()->LoadEntities("data/ent");
        Json::Value root;
        root["Entities"][0] = whole("'Type': 'fire', 'Variant': 'blue', 'Name': 'it'", object);
        Vorn::Scene scene;
        scene.Deserialize(root.toStyledString());
        scene.Load();
        scene.Init();
        std::srand(1);
        Vorn::EmitterSystem::Instance()->Init();
        const std::string shown = Show(*scene.GetEntity("it")->Emitter());
        scene.Deinit();
        return shown;
    }
};

TEST_F(EmitterData, EachKeyCountsInEveryLayerThatNamesIt) {
    const Json::Value none(Json::objectValue);
    const std::string plain = Straight(Rich, none);
    EXPECT_EQ(Staged(Rich, none, none), plain);
    for (const std::string& key : Rich.getMemberNames()) {
        SCOPED_TRACE(key);
        Json::Value whole = Rich, over = none;
        over[key] = Others[key];
        for (const std::string& axis : AxesOf(Others[key]))
            whole[key][axis] = Others[key][axis];
        if (!whole[key].isObject())
            whole[key] = Others[key];
        const std::string expected = Straight(whole, none);
        EXPECT_EQ(expected == plain, Unused.contains(key));
        EXPECT_EQ(Straight(Rich, over), expected);
        EXPECT_EQ(Staged(whole, none, none), expected);
        EXPECT_EQ(Staged(Rich, over, none), expected);
        EXPECT_EQ(Staged(Rich, none, over), expected);
    }
}

TEST_F(EmitterData, AValueOfTheWrongTypeRaisesWithItsKey) {
    const auto raises = [](const std::string& key, const std::string& members) {
        EXPECT_THAT(([&] { EmitterCmpt().DeserializeValue(Parsed(members), true); }),
                    ThrowsMessage<std::runtime_error>(
                        AllOf(StartsWith("Type is not convertible to "), HasSubstr(key))))
            << members;
    };
    for (const std::string& key : Rich.getMemberNames()) {
        const std::string name = "'" + key + "': ";
        raises(key, name + "[1]");
        if (!Rich[key].isString())
            raises(key, name + "'text'");
        for (const std::string& axis : AxesOf(Rich[key]))
            raises(axis, name + "{'" + axis + "': 'text'}");
    }
    raises("Size", "'Size': 1e10");
}

TEST_F(EmitterData, APoolOfImpossibleSizeRaisesAndNothingBreaks) {
    const auto tooLong = ThrowsMessage<std::length_error>("vector<T> too long");
    for (const int size : {-1, Least, 16'777'217, Most}) {
        SCOPED_TRACE(size);
        const auto emitter = Make();
        emitter->Emit(1);
        EmitterCmpt source(*emitter);
        Set(source, "'Size': " + std::to_string(size));
        const auto conform = [&] { emitter->Conform(source); };
        const auto init = [&] { emitter->Init(); };
        EXPECT_THAT(conform, tooLong);
        emitter->Emit(1);
        emitter->Update(1);
        Set(*emitter, "'Size': " + std::to_string(size)); // by a layer that came later
        EXPECT_THAT(init, tooLong);
        emitter->Emit(1);
        emitter->Update(1);
        Set(source, "'Size': 4");
        conform();
        init();
        EXPECT_EQ(Emitted(*emitter, {1, 1, 1, 1, 1}), "11110");
    }
    EXPECT_EQ(Emitted(*Make("'Size': 0"), {1, 1}), "00");
}

} // namespace
