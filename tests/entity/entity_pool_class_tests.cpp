// SPDX-License-Identifier: MIT
//
// Pools of classes that a host derives from Entity.
#include "layer_twin.hpp"

#include <gtest/gtest.h>

namespace {

using namespace EntityTests;
using Vorn::Entity;

/// Parameters of its own, and a component in the graphics system that counts its turns.
class Sheep : public Entity {
public:
    struct Probe final : Vorn::GraphicsCmpt {
        void Init() override { ++inits; }
        int inits = 0;
    };

    static inline bool refuseRegistration = false;
    static inline bool refuseConform = false;
    static inline int living = 0;

    Sheep() { ++living; }
    ~Sheep() override { --living; }

    Probe probe;
    float wool = 1.0f;
    std::string owner = "nobody";
    Vorn::Vector3 pasture;

    /// How often the system walks it in one pass.
    int Turns() {
        probe.inits = 0;
        Vorn::GraphicsSystem::Instance()->Init();
        return probe.inits;
    }

private: // a pool must come by these through the base class
    void DeserializeValue(const Json::Value& root, bool master) override {
        Entity::DeserializeValue(root, master);
        dsParam(wool, Vorn::JsonFloat(root, "Wool", wool), master);
        dsParam(owner, Vorn::JsonString(root, "Owner", owner), master);
        if (root.isMember("Pasture"))
            dsParamVector3(pasture, root["Pasture"], master);
    }
    void SerializeValue(Json::Value& out, bool master) const override {
        Entity::SerializeValue(out, master);
        seParam(out, "Wool", wool, master);
        seParam(out, "Owner", owner, master);
        seParamVector3(out, "Pasture", pasture, master);
    }
    void RegisterCmpts() override {
        Entity::RegisterCmpts();
        Vorn::GraphicsSystem::Instance()->Register(&probe);
        if (refuseRegistration)
            throw std::runtime_error("no room");
    }
    void UnregisterCmpts() override {
        Entity::UnregisterCmpts();
        Vorn::GraphicsSystem::Instance()->Unregister(&probe);
    }
    void Conform(const Entity* source) override {
        Entity::Conform(source);
        if (refuseConform)
            throw std::runtime_error("no likeness");
        const auto& sheep = dynamic_cast<const Sheep&>(*source);
        wool = sheep.wool;
        owner = sheep.owner;
        pasture = sheep.pasture;
    }
};

using Flock = Vorn::EntityPool<Sheep>;

const std::string Master = R"({"Type": "sheep", "Wool": 0.1, "Owner": "Ann"})"; // no vector at all
const std::string Black = R"({"Variant": "black", "Wool": 3})";

Sheep* Fetch(Flock& flock, const std::string& variant) {
    Entity* const entity = flock.Fetch(variant);
    return dynamic_cast<Sheep*>(entity);
}

TEST(EntityPoolClass, DifferencesOfItsOwnParametersGoRound) {
    Flock flock;
    flock.LoadMaster(Master, 2);
    flock.LoadVariant(Black);
    RandomObjects random(77);
    for (int i = 0; i < 300; ++i) {
        SCOPED_TRACE(i);
        const std::string variant = random.OneIn(2) ? "black" : "master";
        Sheep* const sheep = Fetch(flock, variant);
        ASSERT_NE(sheep, nullptr);
        Twin twin;
        twin.Read(Parse(R"({"Type": "sheep"})"), true);
        twin.MarkAll();
        const float wool = variant == "black" ? 3.0f : 0.1f;
        ASSERT_EQ(sheep->wool, wool);
        ASSERT_EQ(sheep->owner, "Ann");
        ASSERT_EQ(AxesOf(sheep->pasture), Axes{});

        Json::Value root = random.Over(twin);
        if (random.OneIn(2))
            root["Wool"] = random.Number(wool);
        if (random.OneIn(2))
            root["Owner"] = random.OneIn(2) ? "Ann" : "Bob";
        if (random.OneIn(2))
            root["Pasture"]["Y"] = random.Number(0.0f);
        Entity& entity = *sheep;
        entity.DeserializeValue(root, false);
        twin.Read(root, false);
        Json::Value expected = *twin.Write(false);
        if (sheep->wool != wool)
            expected["Wool"] = static_cast<double>(sheep->wool);
        if (sheep->owner != "Ann")
            expected["Owner"] = sheep->owner;
        if (!(AxesOf(sheep->pasture) == Axes{}))
            expected["Pasture"] = ToJson(AxesOf(sheep->pasture));
        EXPECT_EQ(Write(entity, false), expected);

        Entity& second = *flock.Fetch(variant);
        std::string text;
        entity.Serialize(text, false);
        second.Deserialize(text, false);
        EXPECT_EQ(Write(second, true), Write(entity, true));
        EXPECT_EQ(Write(second, false), expected);
        flock.Return(&entity);
        flock.Return(&second);
        if (HasFailure())
            return;
    }
}

TEST(EntityPoolClass, ComponentsTakeTheirTurnWhileTheEntityIsOut) {
    Flock flock;
    flock.LoadMaster(Master, 1);
    Sheep* const sheep = Fetch(flock, "master");
    EXPECT_EQ(sheep->Turns(), 1);
    flock.Return(sheep);
    EXPECT_EQ(sheep->Turns(), 0);
    flock.Return(sheep);
    EXPECT_EQ(sheep->Turns(), 0);
    ASSERT_EQ(Fetch(flock, "master"), sheep);
    EXPECT_EQ(sheep->Turns(), 1);
    Sheep* const other = Fetch(flock, "master");
    EXPECT_EQ(other->Turns(), 1);
    EXPECT_EQ(sheep->Turns(), 1);
    flock.Return(sheep);
    EXPECT_EQ(other->Turns(), 1);
}

TEST(EntityPoolClass, IdleEntitiesAndTemplatesTakeNoTurn) {
    Flock flock;
    flock.LoadMaster(Master, 8);
    auto* const black = dynamic_cast<Sheep*>(flock.LoadVariant(Black));
    ASSERT_NE(black, nullptr);
    EXPECT_EQ(black->Turns(), 0);
    EXPECT_FALSE(black->IsAlive());
    std::vector<Sheep*> sheep;
    for (int i = 0; i < 8; ++i)
        sheep.push_back(Fetch(flock, "master"));
    for (Sheep* each : sheep)
        flock.Return(each);
    for (Sheep* each : sheep)
        EXPECT_EQ(each->Turns(), 0);
}

TEST(EntityPoolClass, ARefusedFetchLosesNothing) {
    Flock flock;
    flock.LoadMaster(Master, 2);
    flock.LoadVariant(Black);
    Sheep::refuseRegistration = true;
    EXPECT_THROW(flock.Fetch("master"), std::runtime_error);
    EXPECT_THROW(flock.Fetch("black"), std::runtime_error);
    Sheep::refuseRegistration = false;
    Sheep::refuseConform = true;
    EXPECT_THROW(flock.Fetch("master"), std::runtime_error);
    EXPECT_THROW(flock.Fetch("black"), std::runtime_error);
    EXPECT_THROW(flock.LoadVariant(Black), std::runtime_error);
    Sheep::refuseConform = false;
    EXPECT_EQ(flock.Size(), 2u);
    EXPECT_EQ(flock.Idle(), 2u);
    for (const char* variant : {"black", "master", "black", "master"}) {
        Sheep* const sheep = Fetch(flock, variant);
        EXPECT_TRUE(sheep->IsAlive());
        EXPECT_EQ(sheep->Turns(), 1);
        EXPECT_EQ(sheep->Variant(), variant);
    }
}

TEST(EntityPoolClass, ThePoolFreesAllThatItMade) {
    const int before = Sheep::living;
    {
        Flock flock;
        flock.LoadMaster(
            R"({"Type": "sheep", "GraphicsCmpt": {}, "PhysicsCmpt": {}, "EmitterCmpt": {}})", 5);
        flock.LoadVariant(Black);
        flock.LoadVariant(Black);
        for (int i = 0; i < 40; ++i)
            flock.Fetch(i % 2 == 0 ? "master" : "black"); // out when the pool dies
        flock.Return(flock.Fetch("master"));
    }
    EXPECT_EQ(Sheep::living, before);
    // The systems hold nothing of them any more.
    Vorn::GraphicsSystem::Instance()->Init();
    Vorn::PhysicsSystem::Instance()->Init();
    Vorn::EmitterSystem::Instance()->Init();
}

TEST(EntityPoolClass, AClassThatRaisesWhileATextIsReadLeavesThePoolAsItWas) {
    Flock flock;
    const int before = Sheep::living;
    EXPECT_THROW(flock.LoadMaster(R"({"Wool": "much"})", 5), std::runtime_error);
    EXPECT_EQ(Sheep::living, before);
    flock.LoadMaster(Master, 0);
    flock.LoadVariant(Black);
    EXPECT_THROW(flock.LoadVariant(R"({"Variant": "black", "Pasture": {"X": "far"}})"),
                 std::runtime_error);
    EXPECT_EQ(Fetch(flock, "black")->wool, 3.0f);
    EXPECT_EQ(AxesOf(Fetch(flock, "black")->pasture), Axes{});
}

TEST(EntityPoolClass, FetchAndReturnGoThroughTheFactory) {
    Flock flock;
    auto* const factory = Vorn::EntityFactory::Instance();
    factory->Register("entity_pool_class.sheep", &flock);
    flock.LoadMaster(R"({"Type": "entity_pool_class.sheep"})", 1);
    Entity* const entity = factory->FetchEntity("entity_pool_class.sheep", "master");
    EXPECT_EQ(flock.Idle(), 0u);
    factory->ReturnEntity(entity);
    EXPECT_EQ(flock.Idle(), 1u);
    EXPECT_THROW(factory->FetchEntity("entity_pool_class.sheep", "none"), std::runtime_error);
    EXPECT_EQ(flock.Idle(), 1u);
    // The factory offers no way out: let it not point at a pool that is gone.
    static Flock empty;
    factory->Register("entity_pool_class.sheep", &empty);
}

TEST(EntityPoolClass, AClassWhoseConformRaisesLosesNoEntities) {
    Flock flock;
    flock.LoadMaster(Master, 0);
    Sheep::refuseConform = true;
    EXPECT_THROW(flock.Fetch("master"), std::runtime_error);
    EXPECT_EQ(flock.Size(), flock.Idle());
    EXPECT_THROW(flock.Fetch("master"), std::runtime_error);
    EXPECT_EQ(flock.Size(), flock.Idle());
    EXPECT_THROW(flock.LoadMaster(R"({"Type": "goat"})", 50), std::runtime_error);
    EXPECT_EQ(flock.Size(), flock.Idle());
    Sheep::refuseConform = false;
    EXPECT_EQ(flock.Fetch("master")->Type(), "sheep");
    EXPECT_EQ(flock.Size(), flock.Idle() + 1);
}

} // namespace
