// SPDX-License-Identifier: MIT
//
// When emitters emit, and how particles are born, move and die.
#include "tests/render/emitters.hpp"

#include <cmath>
#include <cstdlib>

namespace {

using RenderTests::EmitterCmpt;
using RenderTests::Emitters;
using RenderTests::Pair;
using RenderTests::Parsed;
using RenderTests::Particle;
using RenderTests::Plain;
using testing::HasSubstr;
using testing::ThrowsMessage;
using Vorn::Entity;
using Vorn::Vector3;

TEST_F(Emitters, TheTimerMustGoBelowZeroAndALongFrameEmitsOnce) {
    struct Row {
        double interval;
        std::vector<float> steps;
        const char* emitted;
    };
    for (const auto& [interval, steps, emitted] :
         {Row{0.5, {0.5f, 0, 0.25f, 0.25f, 0.25f, 0.0625f}, "001001"},
          {0.1, {0.1f, 0, 1e-9f, 0.1f, 1e-9f}, "00101"},
          {1, {10, 0.5f, 0.5f, 0.1f, 0.9f, 0.2f}, "100101"},
          {0, {0, 0.1f, 0.1f, 0}, "0110"},
          {-1, {0, 0, 0.5f}, "111"},
          {1, {0.75f, -0.5f, 0.5f, 0.5f}, "0001"}})
        EXPECT_EQ(Emitted(*Make("'Size': 9, " + Pair("SpawnRate", interval)), steps), emitted)
            << interval;
}

TEST_F(Emitters, TheIntervalIsRolledOnceForEachInit) {
    const auto emitter = Make("'Size': 9, " + Pair("SpawnRate", 2, 1));
    const EmitterCmpt source(*emitter);
    const std::vector<float> steps(64 * 6, 1 / 64.0f); // so that all differences are exact
    for (unsigned int seed = 1; seed < 20; ++seed)
        for (const bool anew : {false, true}) {
            std::srand(seed);
            if (anew)
                emitter->Conform(source); // rolls too
            emitter->Init();
            std::srand(seed);
            for (int i = 0; i < anew; ++i)
                Vorn::Random(2, 1);
            const float interval = Vorn::Random(2, 1);
            const auto each = static_cast<std::size_t>(std::floor(interval * 64)) + 1;
            std::string expected;
            for (std::size_t i = 1; i <= steps.size(); ++i)
                expected += i % each ? '0' : '1';
            EXPECT_EQ(Emitted(*emitter, steps), expected) << seed;
        }
}

TEST_F(Emitters, AnEmissionTakesWhatIsFree) {
    struct Row {
        const char* values;
        const char* emitted;
    };
    for (const auto& [values, emitted] : {Row{"'Size': 3, 'Particles_Per_Emit': 5", "300"},
                                          {"'Size': 7, 'Particles_Per_Emit': 3", "331"},
                                          {"'Size': 3, 'Particles_Per_Emit': 0", "000"},
                                          {"'Size': 3, 'Particles_Per_Emit': -4", "000"}})
        EXPECT_EQ(Emitted(*Make(values), {1, 1, 1}), emitted) << values;
    // However many are asked for, a frame does not take longer.
    EXPECT_EQ(Emitted(*Make("'Particles_Per_Emit': 2147483647"), std::vector<float>(200, 1)),
              '3' + std::string(199, '0'));
}

TEST_F(Emitters, EmitOnceEndsWithTheFirstEmissionWhateverItGives) {
    const auto once = Make("'EmitOnce': true, " + Pair("SpawnRate", 1));
    EXPECT_EQ(Emitted(*once, {0.5f, 1, 9, 9}), "0100");
    once->Update(5);
    EXPECT_EQ(once->mParticles[2].life, 3);
    once->Update(4);
    EXPECT_EQ(Living(*once), "---");
    EXPECT_EQ(Emitted(*once, {9}), "0");
    once->Init();
    EXPECT_EQ(Emitted(*once, {9, 9}), "10");

    for (const bool ends : {true, false}) {
        const std::string flag = std::string("'EmitOnce': ") + (ends ? "true" : "false");
        const auto nothing = Make("'Particles_Per_Emit': 0, " + flag);
        nothing->Emit(1);
        Set(*nothing, "'Particles_Per_Emit': 2");
        EXPECT_EQ(Emitted(*nothing, {1}), ends ? "0" : "2");

        const auto full = Make("'Particles_Per_Emit': 3");
        full->Emit(1);
        Set(*full, flag);
        full->Emit(1);
        full->Update(9);
        EXPECT_EQ(Emitted(*full, {1}), ends ? "0" : "3");
    }
}

TEST_F(Emitters, TheLifeOfAnEmitterRunsDownForBubblesOnly) {
    const auto make = [this](const std::string& texture, const std::string& more = "") {
        return Make("'Size': 9, 'TexturePath': '" + texture + "'" + more);
    };
    struct Row {
        const char* texture;
        float life;
        const char* emitted; // in quarters of a second
    };
    for (const auto& [texture, life, emitted] : {Row{"Bubble.dds", 1, "11100000"},
                                                 {"Bubble.dds", 1.01f, "11110000"},
                                                 {"spark", 1, "11111111"},
                                                 {"bubble.dds", 0.1f, "11111111"},
                                                 {"Bubble.dds2", 1e-30f, "11111111"},
                                                 {"spark", 0, "00000000"},
                                                 {"spark", -1, "00000000"},
                                                 {"spark", std::nanf(""), "00000000"}}) {
        const auto emitter = make(texture);
        emitter->SetEmitterLifeSpan(life);
        EXPECT_EQ(Emitted(*emitter, std::vector<float>(8, 0.25f)), emitted) << texture << life;
    }
    // Without the call it is 1; the data leave it alone.
    const auto bubbles = make("Bubble.dds");
    EmitterCmpt source(*bubbles);
    source.SetEmitterLifeSpan(50);
    EXPECT_EQ(Emitted(*bubbles, {0.5f}), "1");
    bubbles->Conform(source);
    bubbles->Init();
    EXPECT_EQ(Emitted(*bubbles, {0.25f, 0.25f, 0.25f}), "100");
    // At its end the timer stands still; and the life does after the emission that was the only.
    const auto waiting = Make(Pair("SpawnRate", 1));
    waiting->SetEmitterLifeSpan(0);
    waiting->Emit(0.75f);
    waiting->SetEmitterLifeSpan(1);
    EXPECT_EQ(Emitted(*waiting, {0.75f, 0.5f}), "01");
    const auto ended = make("Bubble.dds", ", 'EmitOnce': true");
    EXPECT_EQ(Emitted(*ended, {0.5f, 5}), "10");
    ended->Init();
    EXPECT_EQ(Emitted(*ended, {0.25f}), "1");
}

TEST_F(Emitters, TheParticleThatWasFreedLastComesFirst) {
    const auto emitter = Make("'Size': 4");
    std::string order;
    const auto emit = [&](int life) {
        Set(*emitter, Pair("ParticleLife", life));
        const std::string before = Living(*emitter);
        emitter->Emit(1);
        const std::string after = Living(*emitter);
        for (std::size_t i = 0; i < after.size(); ++i)
            order += before[i] == after[i] ? "" : std::to_string(i);
    };
    for (const int life : {9, 3, 9, 3})
        emit(life);
    EXPECT_EQ(order, "3210");
    emitter->Update(4); // 2 and 0, the lower index first
    EXPECT_EQ(Living(*emitter), "-+-+");
    emit(9);
    emit(2);
    EXPECT_EQ(order, "321020");
    emitter->Update(3);
    emit(9);
    EXPECT_EQ(order, "3210200");
    EXPECT_EQ(Living(*emitter), "++++");
}

TEST_F(Emitters, GravityBuildsUpAndIsAddedToTheSpeedAlongTheDirection) {
    entity.Position(1, 2, 3);
    const auto emitter =
        Make("'Gravity': 4, " + Pair("Speed", 2, 4) + ", " + Pair("ParticleLife", 2));
    emitter->Emit(1);
    const Particle& p = emitter->mParticles[2];
    const Vector3 d = p.direction;
    EXPECT_TRUE(p.position == Vector3(1, 2, 3) && p.velocity == Vector3());
    Vector3 at = p.position;
    for (const auto& [speed, fall] : {std::pair(2.5f, -2.0f), {3.0f, -4.0f}, {3.5f, -6.0f}}) {
        entity.Position(9, 9, 9); // particles stay in the world
        emitter->Update(0.5f);
        EXPECT_TRUE(p.velocity == Vector3(0, fall, 0) && p.direction == d);
        at += (Vector3(0, fall, 0) + d * speed) * 0.5f;
        EXPECT_TRUE(p.position == at) << speed;
    }
    emitter->Update(0.75f); // a dead one has not moved
    EXPECT_TRUE(!p.alive && p.position == at);
    emitter->Emit(1);
    EXPECT_TRUE(p.position == Vector3(9, 9, 9) && p.velocity == Vector3() && p.life == 2);
}

TEST_F(Emitters, TheThreeShapesRollLifeDirectionAndRadiusInThisOrder) {
    struct Row {
        std::string type;
        Vector3 low, high;
    };
    const Vector3 place(10, -20, 30);
    entity.Position(place);
    constexpr std::size_t Count = 40000;
    for (const auto& [type, low, high] :
         {Row{"Sphere", Vector3(-1, -1, -1), Vector3(1, 1, 1)},
          {"Smoke", Vector3(-0.1f, 0, -0.1f), Vector3(0.1f, 1, 0.1f)},
          {"Bubble", Vector3(), Vector3(0, 1, 0)}}) {
        const auto emitter = Make("'Size': 40000, 'Particles_Per_Emit': 40000, 'SphereRadius': 5,"
                                  "'EmitterType': '" +
                                  type + "', " + Pair("ParticleLife", 3, 1));
        for (const bool second : {false, true}) { // over records that have been used
            if (second)
                emitter->Update(4);
            std::srand(3);
            emitter->Emit(1);
            std::srand(3);
            std::size_t resting = 0; // straight up by no height at all
            for (std::size_t i = Count; i-- > 0;) {
                const Particle& p = emitter->mParticles[i];
                const float life = Vorn::Random(3, 1);
                Vector3 direction;
                RandomVector(low, high, direction);
                direction.Normalize();
                const float radius = type == "Sphere" ? Vorn::Random(0, 5) : 0;
                ASSERT_TRUE(p.alive && p.life == life && p.lifeSpan == life) << type << i;
                ASSERT_TRUE(p.direction == direction) << type << i;
                ASSERT_TRUE(p.position == place + direction * radius) << type << i;
                resting += direction == Vector3();
            }
            EXPECT_EQ(resting > 0, type == "Bubble") << type;
        }
    }
}

TEST_F(Emitters, AnUnknownTypeKeepsThePlaceAndDirectionOfTheRecord) {
    entity.Position(5, 6, 7);
    for (const std::string type : {"sphere", "Smoke ", "", "Bubbles"}) {
        const std::string unknown = "'EmitterType': '" + type + "'";
        const auto fresh = Make(unknown);
        fresh->Emit(1);
        EXPECT_TRUE(fresh->mParticles[2].position == Vector3());
        const auto emitter = Make("'EmitterType': 'Sphere', 'SphereRadius': 2, 'Speed0': 3");
        emitter->Emit(1);
        emitter->Update(2);
        const Particle before = emitter->mParticles[2];
        emitter->Update(7);
        Set(*emitter, unknown);
        emitter->Emit(1);
        const Particle& after = emitter->mParticles[2];
        EXPECT_TRUE(after.position == before.position && after.direction == before.direction);
        EXPECT_TRUE(after.velocity == Vector3() && after.speed == 3 && after.life == 8);
    }
}

TEST_F(Emitters, InitAndConformLayThePoolOutAnew) {
    EmitterCmpt bare(&entity);
    for (int i = 0; i < 2; ++i) { // before its Init it emits nothing
        EXPECT_EQ(Emitted(bare, {1, 1}), "00");
        bare.Update(1);
        bare.Conform(*Make());
    }
    const auto emitter = Make();
    const EmitterCmpt source(*emitter);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(Emitted(*emitter, {1, 1, 1, 1}), "1110");
        emitter->Update(1);
        if (i)
            emitter->Conform(source);
        emitter->Init();
        EXPECT_EQ(Living(*emitter), "---");
        emitter->Emit(1);
        EXPECT_EQ(Living(*emitter), "--+"); // nothing twice, and the highest index first
        emitter->Emit(1);
        emitter->Deinit(); // leaves them
        EXPECT_EQ(Living(*emitter), "-++");
        emitter->Init();
    }
    emitter->Emit(1);
    emitter->Conform(*emitter); // of itself
    emitter->Init();
    EXPECT_EQ(Emitted(*emitter, {1, 1, 1, 1}), "1110");
    for (const auto& [size, emitted] : {std::pair("5", "111110"), {"2", "110000"}}) {
        Set(*emitter, std::string("'Size': ") + size); // by a layer that came later
        emitter->Init();
        EXPECT_EQ(Emitted(*emitter, {1, 1, 1, 1, 1, 1}), emitted);
    }
    // A texture that is not in the store: all stays.
    for (const char* name : {"'TexturePath': 'none'", "'TexturePath': ''"}) {
        Set(*emitter, name);
        EXPECT_THAT([&] { emitter->Init(); },
                    ThrowsMessage<std::out_of_range>(HasSubstr("invalid map<K, T> key")));
        EXPECT_EQ(Living(*emitter), "++");
        EXPECT_EQ(emitter->GetTexture(), textures.Get("spark"));
    }
}

TEST_F(Emitters, ACopyHasAPoolOfItsOwnInTheSameState) {
    auto first = Make("'Size': 5");
    for (const int life : {9, 1, 3}) {
        Set(*first, Pair("ParticleLife", life));
        first->Emit(1);
    }
    first->Update(2);
    first->Update(2); // 3 was freed first, then 2
    ASSERT_EQ(Living(*first), "----+");
    EmitterCmpt copy(*first), assigned(&entity), large(*Make("'Size': 9"));
    large.Emit(1);
    assigned = *first, large = *first;
    EmitterCmpt& self = large;
    large = self;
    EXPECT_EQ(assigned.Parent(), &entity);
    for (EmitterCmpt* other : {&copy, &assigned, &large}) {
        EXPECT_EQ(Living(*other), "----+");
        other->Emit(1);
        EXPECT_EQ(Living(*other), "--+-+");
        EXPECT_EQ(Living(*first), "----+");
    }
    first->Update(9);
    first.reset();
    for (EmitterCmpt* other : {&copy, &assigned, &large}) {
        EXPECT_EQ(other->mParticles[4].life, 5);
        EXPECT_EQ(Emitted(*other, {1, 1, 1, 1}), "1110");
        other->Update(4);
        EXPECT_EQ(Living(*other), "----+");
    }
    // That of a copied entity emits where this stands, and that of none at the origin.
    entity.DeserializeValue(Parsed("'EmitterCmpt': {" + Plain + '}'), true);
    entity.Emitter()->Conform(*entity.Emitter());
    entity.Emitter()->Init();
    Entity moved(entity);
    moved.Position(7, 8, 9);
    EmitterCmpt orphan;
    orphan = *moved.Emitter();
    for (EmitterCmpt* other : {moved.Emitter(), &orphan}) {
        other->Emit(1);
        EXPECT_TRUE(other->mParticles[2].position ==
                    (other->Parent() ? Vector3(7, 8, 9) : Vector3()));
    }
    EXPECT_EQ(Living(*entity.Emitter()), "---");
}

TEST_F(Emitters, TheSystemStepsWhatIsRegisteredWhetherItsEntityLivesOrNot) {
    auto& system = *Vorn::EmitterSystem::Instance();
    entity.DeserializeValue(Parsed("'EmitterCmpt': {" + Plain + '}'), true);
    Entity user;
    user.Conform(&entity);
    EmitterCmpt& emitter = *user.Emitter();
    user.RegisterCmpts();
    system.Update(1);
    EXPECT_EQ(Living(emitter), "---");
    system.Init();
    for (const bool alive : {true, false}) {
        user.Alive(alive);
        system.Update(1);
    }
    EXPECT_EQ(Living(emitter), "-++"); // emits, then ages
    EXPECT_EQ(emitter.mParticles[2].life, 6);
    EXPECT_EQ(emitter.mParticles[1].life, 7);
    system.Register(&emitter);
    system.Update(1);
    EXPECT_EQ(emitter.mParticles[2].life, 4);
    EXPECT_EQ(emitter.mParticles[0].life, 6);
    for (int i = 0; i < 3; ++i) { // once for the entry that is left, then not at all
        system.Unregister(&emitter);
        system.Update(1);
        EXPECT_EQ(emitter.mParticles[2].life, 3);
    }
}

} // namespace
