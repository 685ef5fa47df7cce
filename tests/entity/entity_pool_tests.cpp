// SPDX-License-Identifier: MIT
#include "flock.hpp"
#include "tests/support/rounds.hpp"

#include <set>

namespace {

using namespace EntityTests;
using Flock = Vorn::EntityPool<Sheep>;

/// What a fetched entity must look like, whatever became of it before.
void ExpectFresh(Entity* entity, const Twin& twin) {
    ASSERT_NE(entity, nullptr);
    ExpectSame(*entity, twin.Fetched());
    EXPECT_EQ(entity->RotationOffset(), Vector3());
    EXPECT_EQ(entity->Parent(), nullptr);
    EXPECT_EQ(entity->Scene(), nullptr);
    EXPECT_TRUE(entity->IsAlive());
    EXPECT_EQ(dynamic_cast<Sheep*>(entity)->registered, 1);
}

// Template, variant and scene object: what is written as differences gives the object back, but for
// the names of a body, which are "NONE" where its object has other keys only.
void ExpectGoesRound(Entity& first, Entity& second, Json::Value object, const Twin& twin) {
    if (!twin.cmpts[1]) // differs from nothing
        object.removeMember("PhysicsCmpt");
    Twin changed = twin.Fetched();
    first.DeserializeValue(object, false);
    changed.DeserializeValue(object, false);
    ExpectSame(first, changed);
    std::string text;
    first.Serialize(text, false);
    second.Deserialize(text, false);
    const Json::Value differences = Parse(text);
    Twin again = twin.Fetched();
    again.DeserializeValue(differences, false);
    ExpectSame(second, again);
    Json::Value expected = Write(first, true);
    if (!differences["PhysicsCmpt"].isNull())
        for (const char* key : {"Category", "Mask", "Type"})
            if (!differences["PhysicsCmpt"].isMember(key))
                expected["PhysicsCmpt"][key] = *key == 'T' ? Json::Value(0u) : "NONE";
    EXPECT_EQ(Write(second, true), expected);
}

TEST(EntityPool, RandomUseAgreesWithTheTwin) {
    Entity shared;
    shared.Deserialize(Whole, true);
    Vorn::TextureManager::Instance()->Load(""); // of emitters that have no data
    for (unsigned int seed = 0; seed < Tests::Rounds(60) && !HasFailure(); ++seed) {
        Random random(seed);
        Vorn::Scene scene;
        Flock pool;
        std::map<std::string, Twin> templates;
        std::vector<Entity*> out;
        for (int step = 0; step < 300 && !HasFailure(); ++step) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(step));
            const std::string name = random.OneIn(2) ? "master" : random.OneIn(2) ? "v" : "w";
            const std::size_t action = random.Below(12);
            if (!out.empty())
                std::swap(out[random.Below(out.size())], out.back());
            if (action == 0 && name == "master") {
                const Json::Value root = random.Master();
                pool.LoadMaster(root.toStyledString(), static_cast<unsigned>(random.Below(20)));
                templates[name] = Twin();
                templates[name].DeserializeValue(root, true);
            } else if (action == 0) { // without a master it stands alone
                Twin twin = templates.contains("master") ? templates["master"] : Twin();
                Json::Value root = random.Over(twin);
                root["Variant"] = name;
                EXPECT_EQ(pool.LoadVariant(root.toStyledString())->Variant(), name);
                twin.DeserializeValue(root, false);
                templates[name] = twin;
            } else if (action < 5 && !out.empty()) {
                Entity* const entity = out.back();
                out.pop_back();
                if (entity->Scene() == &scene)
                    scene.RemoveEntity(entity, true);
                pool.Return(entity);
                pool.Return(entity); // passed over
                EXPECT_FALSE(entity->IsAlive());
                EXPECT_EQ(dynamic_cast<Sheep*>(entity)->registered, 0);
            } else if (action < 7 && !out.empty()) { // whatever a game does to it
                Entity& entity = *out.back();
                if (random.OneIn(4)) {
                    entity = shared;
                    EXPECT_EQ(Write(entity, false), "raises"); // its flags are gone
                }
                entity.DeserializeValue(random.Master(), random.OneIn(4));
                entity.RotationOffset(1, 2, 3);
                entity.Parent(out.front());
                entity.LocalPosition(Vector3(1, 2, 3));
                if (!entity.Scene())
                    scene.AddEntity(&entity, true);
            } else if (!templates.contains(name)) {
                EXPECT_EQ(pool.Fetch(name), nullptr);
            } else {
                for (int i = 0; i < 2; ++i) {
                    out.push_back(pool.Fetch(name));
                    EXPECT_EQ(std::count(out.begin(), out.end(), out.back()), 1);
                    ExpectFresh(out.back(), templates[name]);
                }
                ExpectGoesRound(*out.back(), **(out.end() - 2), random.Over(templates[name]),
                                templates[name]);
            }
            EXPECT_EQ(pool.Size() - pool.Idle(), out.size());
            Vorn::GraphicsSystem::Instance()->Init(); // meets nothing that is gone
            Vorn::PhysicsSystem::Instance()->Init();
            Vorn::EmitterSystem::Instance()->Init();
        }
    }
    EXPECT_EQ(Owners(shared)[2], &shared);
}

TEST(EntityPool, MakesAsManyAheadAsAskedAndGrows) {
    Vorn::EntityPool<Entity> dust;
    dust.LoadMaster("{}", 3);
    dust.LoadMaster("{}", 5); // not on top
    std::size_t size = 5;
    for (int round = 0; round < 2; ++round) {
        std::set<Entity*> out;
        while (out.size() < 1000) {
            EXPECT_TRUE(dust.Size() == size || (out.size() > 5 && round == 0));
            EXPECT_TRUE(out.insert(dust.Fetch("master")).second) << "handed out twice";
        }
        size = dust.Size();
        for (Entity* entity : out)
            dust.Return(entity);
        dust.LoadMaster("{}", 10); // never shrinks
        EXPECT_EQ(dust.Idle(), size);
    }
    dust.LoadMaster("{}", 0xFFFFFFFFu);
    EXPECT_EQ(dust.Size(), Vorn::EntityPool<Entity>::MaxPreallocated);
}

TEST(EntityPool, RefusesForeignEntitiesAndFaultyTextsWithoutAnyChange) {
    const Json::Value sheep = Parse(R"({"Type": "sheep", "Wool": 0.5, "GraphicsCmpt": {}})");
    Flock pool;
    EXPECT_THROW(pool.LoadMaster(R"({"Type": "sheep", "Wool": "much"})", 5), std::runtime_error);
    EXPECT_EQ(pool.Size(), 0u);
    EXPECT_EQ(pool.Fetch("master"), nullptr);
    pool.LoadMaster(sheep.toStyledString(), 2);
    Entity* const black = pool.LoadVariant(R"({"Variant": "black"})");
    EXPECT_THROW(pool.LoadMaster(R"({"Name": "new", "Position": 7})", 50), std::runtime_error);
    // A variant must be told from the master.
    for (const char* text : {R"({"Variant": "black", "Scale": {"Z": []}})", R"({"Variant": [""]})",
                             R"({"Variant": "ewe", "Wool": {}})", "{}", R"({"Variant": ""})",
                             "nonsense", R"({"Variant": "master", "Name": "new"})"})
        EXPECT_THROW(pool.LoadVariant(text), std::runtime_error) << text;

    Flock other;
    other.LoadMaster("{}", 1);
    Sheep own;
    for (Entity* foreign : std::initializer_list<Entity*>{other.Fetch("master"), &own, black})
        EXPECT_THROW(pool.Return(foreign), std::invalid_argument);

    for (const char* operation : {"RegisterCmpts", "Conform"}) {
        Sheep::refuses = operation;
        EXPECT_THROW(pool.Fetch("master"), std::runtime_error);
        EXPECT_THROW(pool.Fetch("black"), std::runtime_error);
    }
    EXPECT_EQ(pool.Size(), 2u);
    EXPECT_THROW(pool.LoadMaster(R"({"Type": "goat"})", 50), std::runtime_error);
    Sheep::refuses.clear();
    EXPECT_EQ(pool.Size(), pool.Idle());
    Twin twin;
    twin.DeserializeValue(sheep, true);
    ExpectFresh(pool.Fetch("master"), twin);
    twin.held["Variant"] = "black";
    ExpectFresh(pool.Fetch("black"), twin);
    EXPECT_EQ(pool.Fetch("ewe"), nullptr);
}

TEST(EntityPool, AComponentThatComesLaterIsWrittenAsDifferencesToo) {
    Tests::EnterPhysicsNames();
    Flock pool;
    pool.LoadMaster(R"({"Type": "sheep"})", 1);
    Entity* sheep = pool.Fetch("master");
    sheep->Deserialize(R"({"PhysicsCmpt": {"Mass": 2}})", false);
    Json::Value differences;
    sheep->SerializeValue(differences, false);
    EXPECT_EQ(differences["PhysicsCmpt"]["Mass"].asDouble(), 2.0);
    EXPECT_FALSE(differences["PhysicsCmpt"].isMember("Drag"));
    pool.Return(sheep);
}

} // namespace
