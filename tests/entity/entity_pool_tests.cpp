// SPDX-License-Identifier: MIT
#include "layer_twin.hpp"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace EntityTests;
using Vorn::Entity;
using Pool = Vorn::EntityPool<Entity>;

const std::string Sheep =
    R"({"Type": "sheep", "Pool": 3, "Name": "dolly", "Position": {"X": 1}, "Orientation": {"Z": 1},
        "Scale": {"Y": 2}, "GraphicsCmpt": {}})";
const std::string Ram =
    R"({"Type": "sheep", "Variant": "ram", "Scale": {"X": 3}, "Orientation": {"X": 1, "Angle": 2},
        "PhysicsCmpt": {}})";

/// What a fetched entity must look like, whatever became of it before.
void ExpectFresh(Entity* entity, const Twin& twin) {
    ASSERT_NE(entity, nullptr);
    ExpectSame(*entity, twin);
    EXPECT_EQ(AxesOf(entity->RotationOffset()), Axes{});
    EXPECT_EQ(entity->Parent(), nullptr);
    EXPECT_EQ(entity->Scene(), nullptr);
    EXPECT_TRUE(entity->IsAlive());
    Json::Value onlyType;
    onlyType["Type"] = twin.type.value;
    EXPECT_EQ(Write(*entity, false), onlyType);
}

Twin Layers(std::initializer_list<std::string> texts) {
    Twin twin;
    for (const std::string& text : texts)
        twin.Read(Parse(text), true);
    return twin;
}

TEST(EntityPool, HandsOutMasterAndVariants) {
    Pool pool;
    pool.LoadMaster(Sheep, 3);
    EXPECT_EQ(pool.Size(), 3u);
    EXPECT_EQ(pool.Idle(), 3u);
    const Entity* const ram = pool.LoadVariant(Ram);
    ASSERT_NE(ram, nullptr);
    EXPECT_EQ(ram->Variant(), "ram");
    EXPECT_EQ(pool.Idle(), 3u); // a template is no entity of the pool

    Twin ramTwin = Layers({Sheep});
    ramTwin.Read(Parse(Ram), false);
    Entity* const first = pool.Fetch("master");
    Entity* const second = pool.Fetch("ram");
    ExpectFresh(first, Layers({Sheep}));
    ExpectFresh(second, ramTwin);
    EXPECT_NE(first, second);
    EXPECT_NE(second, ram);
    EXPECT_EQ(pool.Idle(), 1u);

    // Differences are those from the variant, not from the master.
    second->Deserialize(R"({"Scale": {"X": 1}, "Position": {"X": 1}})", false);
    EXPECT_EQ(Write(*second, false),
              Parse(R"({"Type": "sheep", "Scale": {"X": 1.0, "Y": 2.0, "Z": 1.0}})"));

    first->Update(0);
    EXPECT_EQ(first->Position().x, 1.0f);
}

TEST(EntityPool, UnknownTemplatesAreNull) {
    Pool pool;
    EXPECT_EQ(pool.Fetch("master"), nullptr);
    EXPECT_EQ(pool.Fetch(""), nullptr);
    EXPECT_EQ(pool.Size(), 0u);
    EXPECT_NE(pool.LoadVariant(Ram), nullptr);
    EXPECT_EQ(pool.Fetch("master"), nullptr); // a variant alone makes no master
    Twin twin;
    twin.Read(Parse(Ram), false);
    ExpectFresh(pool.Fetch("ram"), twin);
    pool.LoadMaster(Sheep, 0);
    EXPECT_EQ(pool.Fetch("ewe"), nullptr);
    EXPECT_EQ(pool.Fetch("Ram"), nullptr);
    ExpectFresh(pool.Fetch("master"), Layers({Sheep}));
}

TEST(EntityPool, GrowsWithoutMovingWhatIsOut) {
    Pool pool;
    pool.LoadMaster(Sheep, 4);
    pool.LoadVariant(Ram);
    std::set<Entity*> out;
    for (int i = 0; i < 1000; ++i) {
        Entity* const entity = pool.Fetch(i % 3 == 0 ? "ram" : "master");
        ASSERT_NE(entity, nullptr);
        ASSERT_TRUE(out.insert(entity).second) << "handed out twice";
        entity->RotationOffset(static_cast<float>(out.size()), 0, 0);
        ASSERT_EQ(pool.Size() - pool.Idle(), out.size());
        if (i < 4) {
            EXPECT_EQ(pool.Size(), 4u); // what was asked for is there from the start
        }
    }
    float sum = 0;
    for (Entity* entity : out) {
        sum += entity->RotationOffset().x;
        pool.Return(entity);
    }
    EXPECT_EQ(sum, 500500.0f);
    EXPECT_EQ(pool.Idle(), pool.Size());

    const std::size_t size = pool.Size();
    pool.LoadMaster(Sheep, 10); // never shrinks
    EXPECT_EQ(pool.Size(), size);
    for (int i = 0; i < 1000; ++i)
        ASSERT_NE(pool.Fetch(i % 3 == 0 ? "ram" : "master"), nullptr);
    EXPECT_EQ(pool.Size(), size); // the same demand once more
    EXPECT_EQ(pool.Size() - pool.Idle(), 1000u);
}

TEST(EntityPool, MakesAsManyAheadAsIsSound) {
    Pool pool;
    pool.LoadMaster(R"({"Type": "dust"})", 0xFFFFFFFFu);
    EXPECT_EQ(pool.Size(), Pool::MaxPreallocated);
    EXPECT_NE(pool.Fetch("master"), nullptr);

    Pool again; // a file that is loaded once more asks for a number, not for so many on top
    again.LoadMaster(Sheep, 3);
    again.LoadMaster(Sheep, 5);
    EXPECT_EQ(again.Size(), 5u);
    EXPECT_EQ(again.Idle(), 5u);
}

TEST(EntityPool, NothingOfAnEarlierLifeIsSeen) {
    Pool pool;
    Vorn::Scene scene;
    Entity parent;
    pool.LoadMaster(Sheep, 1);
    const Twin twin = Layers({Sheep});
    Entity* const entity = pool.Fetch("master");
    entity->Deserialize(R"({"Type": "other", "Variant": "other", "Name": "x", "Position": {"Y": 5},
        "Orientation": {"Y": 3, "Angle": 1}, "Scale": {"Z": 9},
        "PhysicsCmpt": {}, "EmitterCmpt": {}})",
                        false);
    scene.AddEntity(entity, true);
    entity->Parent(&parent);
    entity->LocalPosition(Vorn::Vector3(7, 8, 9));
    entity->RotationOffset(1, 1, 1);
    ASSERT_TRUE(entity->Physics() && entity->Emitter() && entity->Scene());
    pool.Return(entity);
    EXPECT_FALSE(entity->IsAlive());
    EXPECT_EQ(pool.Idle(), 1u);

    Entity* const again = pool.Fetch("master");
    EXPECT_EQ(again, entity);
    ExpectFresh(again, twin);
    scene.RemoveEntity(again, true);
    EXPECT_TRUE(scene.EntityList().empty());

    // A component that is deleted while the entity is out comes back with the next fetch.
    again->Deserialize("{}", true);
    again->Deinit();
    again->Alive(false);
    pool.Return(again);
    ExpectFresh(pool.Fetch("master"), twin);
}

TEST(EntityPool, ADoubleReturnIsPassedOver) {
    Pool pool;
    pool.LoadMaster(Sheep, 3);
    Entity* const first = pool.Fetch("master");
    Entity* const second = pool.Fetch("master");
    pool.Return(first);
    pool.Return(first);
    EXPECT_EQ(pool.Idle(), 2u);
    std::set<Entity*> out = {second};
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(out.insert(pool.Fetch("master")).second);
    for (Entity* entity : out)
        EXPECT_TRUE(entity->IsAlive());
}

TEST(EntityPool, ForeignEntitiesAreRefused) {
    Pool pool;
    Pool other;
    pool.LoadMaster(Sheep, 2);
    other.LoadMaster(Sheep, 2);
    Entity* const ram = pool.LoadVariant(Ram);
    Entity* const foreign = other.Fetch("master");
    Entity own;
    Vorn::EntityPool<Entity> empty;
    EXPECT_THROW(pool.Return(foreign), std::invalid_argument);
    EXPECT_THROW(pool.Return(&own), std::invalid_argument);
    EXPECT_THROW(pool.Return(ram), std::invalid_argument); // a template
    EXPECT_THROW(empty.Return(foreign), std::invalid_argument);
    EXPECT_EQ(pool.Idle(), 2u);
    EXPECT_TRUE(foreign->IsAlive());
    other.Return(foreign);
    EXPECT_EQ(other.Idle(), 2u);
}

TEST(EntityPool, ATextThatRaisesChangesNothing) {
    Pool pool;
    EXPECT_THROW(pool.LoadMaster(R"({"Type": "sheep", "Scale": {"X": "big"}})", 5),
                 std::runtime_error);
    EXPECT_EQ(pool.Size(), 0u);
    EXPECT_EQ(pool.Fetch("master"), nullptr);

    pool.LoadMaster(Sheep, 2);
    pool.LoadVariant(Ram);
    Twin ram = Layers({Sheep});
    ram.Read(Parse(Ram), false);
    EXPECT_THROW(pool.LoadMaster(R"({"Name": "new", "Position": 7})", 50), std::runtime_error);
    EXPECT_THROW(pool.LoadVariant(R"({"Variant": "ram", "Name": "new", "Scale": {"Z": []}})"),
                 std::runtime_error);
    EXPECT_THROW(pool.LoadVariant(R"({"Variant": "ewe", "Position": {"X": {}}})"),
                 std::runtime_error);
    EXPECT_THROW(pool.LoadVariant(R"({"Variant": ["ewe"]})"), std::runtime_error);
    // A variant must be told from the master.
    for (const char* nameless : {"{}", "", "nonsense", R"({"Variant": ""})", R"({"Variant": null})",
                                 R"({"Variant": "master", "Name": "new"})"})
        EXPECT_THROW(pool.LoadVariant(nameless), std::runtime_error) << nameless;

    EXPECT_EQ(pool.Size(), 2u);
    EXPECT_EQ(pool.Idle(), 2u);
    EXPECT_EQ(pool.Fetch("ewe"), nullptr);
    EXPECT_EQ(pool.Fetch(""), nullptr);
    ExpectFresh(pool.Fetch("master"), Layers({Sheep}));
    ExpectFresh(pool.Fetch("ram"), ram);
}

TEST(EntityPool, AMasterThatDoesNotParseIsTheEmptyOne) {
    Pool pool;
    pool.LoadMaster("{ nonsense", 1);
    ExpectFresh(pool.Fetch("master"), Layers({"{}"}));
}

TEST(EntityPool, LaterTemplatesReplaceEarlierOnes) {
    Pool pool;
    pool.LoadMaster(Sheep, 1);
    pool.LoadVariant(Ram);
    Entity* const oldMaster = pool.Fetch("master");
    Entity* const oldRam = pool.Fetch("ram");
    Twin twin = Layers({Sheep});
    Twin ram = twin;
    ram.Read(Parse(Ram), false);
    const std::string goat = R"({"Type": "goat", "Scale": {"X": 7}, "EmitterCmpt": {}})";
    pool.LoadMaster(goat, 0);
    ExpectSame(*oldMaster, twin); // out, and as it was
    ExpectFresh(pool.Fetch("master"), Layers({goat}));
    ExpectFresh(pool.Fetch("ram"), ram); // laid over the old master

    const Entity* const newRam = pool.LoadVariant(Ram);
    EXPECT_EQ(newRam->Type(), "sheep");
    Twin over = Layers({goat});
    over.Read(Parse(Ram), false);
    ExpectSame(*oldRam, ram);
    ExpectFresh(pool.Fetch("ram"), over);
    pool.Return(oldRam);
    pool.Return(oldMaster);
    for (int i = 0; i < 4; ++i) {
        ExpectFresh(pool.Fetch("ram"), over);
        ExpectFresh(pool.Fetch("master"), Layers({goat}));
    }
}

TEST(EntityPool, RandomUseAgreesWithTheTwin) {
    for (unsigned int seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        RandomObjects random(seed);
        Pool pool;
        Vorn::Scene scene;
        std::map<std::string, Twin> templates;
        std::vector<Entity*> out;
        const auto put = [&](std::size_t i) {
            Entity* const entity = out[i];
            out.erase(out.begin() + static_cast<std::ptrdiff_t>(i));
            if (entity->Scene())
                scene.RemoveEntity(entity, true);
            pool.Return(entity);
            EXPECT_FALSE(entity->IsAlive());
            Vorn::GraphicsSystem::Instance()->Init(); // meets nothing that is gone
            Vorn::PhysicsSystem::Instance()->Init();
            Vorn::EmitterSystem::Instance()->Init();
            if (random.OneIn(5))
                pool.Return(entity);
        };
        for (int step = 0; step < 300; ++step) {
            SCOPED_TRACE(step);
            const std::string name = "v" + std::to_string(random.Below(3));
            switch (random.Below(12)) {
            case 0: {
                const Json::Value root = random.OneIn(2) ? random.Master() : random.Over(Twin());
                pool.LoadMaster(root.toStyledString(), random.Below(20));
                templates["master"] = Twin();
                templates["master"].Read(root, true);
                break;
            }
            case 1: {
                Twin twin;
                if (templates.count("master"))
                    twin = templates["master"];
                Json::Value root = random.Over(twin);
                root["Variant"] = name;
                const Entity* const variant = pool.LoadVariant(root.toStyledString());
                twin.Read(root, false);
                templates[name] = twin;
                EXPECT_EQ(variant->Variant(), name);
                break;
            }
            case 2:
            case 3:
                if (!out.empty())
                    put(random.Below(static_cast<unsigned int>(out.size())));
                break;
            case 4:
            case 5:
                if (!out.empty()) {
                    Entity& entity = *out[random.Below(static_cast<unsigned int>(out.size()))];
                    entity.DeserializeValue(random.Over(Twin()), random.OneIn(4));
                    entity.RotationOffset(1, 2, 3);
                    entity.Parent(out.front());
                    entity.LocalPosition(Vorn::Vector3(1, 2, 3));
                    if (!entity.Scene())
                        scene.AddEntity(&entity, true);
                }
                break;
            default: {
                const std::string wanted = random.OneIn(2) ? "master" : name;
                Entity* const entity = pool.Fetch(wanted);
                if (!templates.count(wanted)) {
                    EXPECT_EQ(entity, nullptr);
                    break;
                }
                EXPECT_EQ(std::count(out.begin(), out.end(), entity), 0);
                Twin twin = templates[wanted];
                twin.MarkAll();
                ExpectFresh(entity, twin);
                out.push_back(entity);
                const Json::Value root = random.Over(twin);
                entity->DeserializeValue(root, false);
                twin.Read(root, false);
                ExpectSame(*entity, twin);
                ExpectWrites(*entity, twin);
            }
            }
            ASSERT_EQ(pool.Size() - pool.Idle(), out.size());
            if (HasFailure())
                return;
        }
        while (!out.empty())
            put(0);
    }
}

TEST(EntityPool, ComponentsSharedByAnAssignmentAreNotHandedOutAgain) {
    for (const bool sourceGone : {false, true}) {
        SCOPED_TRACE(sourceGone);
        Pool pool;
        pool.LoadMaster(Sheep, 1);
        auto source = std::make_unique<Entity>();
        source->Deserialize(Ram, true);
        source->Deserialize(Sheep, false);
        const auto* const graphics = source->Graphics();
        Entity* const entity = pool.Fetch("master");
        *entity = *source;
        ASSERT_EQ(entity->Graphics(), graphics);
        pool.Return(entity);
        if (sourceGone)
            source.reset();
        ExpectFresh(pool.Fetch("master"), Layers({Sheep}));
        if (source) {
            EXPECT_EQ(source->Graphics(), graphics);
            EXPECT_EQ(graphics->Parent(), source.get());
            EXPECT_TRUE(source->Physics());
        }
    }
}

} // namespace
