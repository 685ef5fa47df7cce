// SPDX-License-Identifier: MIT
//
// What allocates nothing. The program replaces the global operator new, the library's too, and
// counts. The forms for arrays go through these two.
#include "tests/support/physics_names.hpp"
#include "worlds/meadow/meadow.hpp"
#include "vorn/vorn.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <new>
#include <string>
#include <vector>

namespace {

std::size_t allocations = 0;

} // namespace

void* operator new(std::size_t size, std::align_val_t alignment) {
    ++allocations;
    const auto step = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(step, (size + step) / step * step))
        return memory;
    throw std::bad_alloc();
}
void* operator new(std::size_t size) {
    return operator new (size, std::align_val_t{alignof(std::max_align_t)});
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

namespace {

template <typename Act>
std::size_t Allocations(Act&& act) {
    const std::size_t before = allocations;
    act();
    return allocations - before;
}

TEST(Allocation, NoneInTheUpdateOfManyEntities) {
    const Worlds::Meadow meadow;
    Vorn::Scene scene;
    scene.Deserialize(Worlds::Meadow::SceneText(10'000));
    // The counter sees the library, or nothing below could fail.
    EXPECT_GT(Allocations([&] { scene.Init(); }), 10'000u);
    const auto frame = [&] { scene.Update(1.0f / 60.0f); };
    for (int i = 0; i < 400; ++i)
        frame();
    // The birds that a hundred nests let out reuse what the first ones needed, but for their
    // entries in the scene's list and names.
    for (int i = 0; i < 60; ++i)
        EXPECT_LE(Allocations(frame), 2u * 100u);
    EXPECT_GT(scene.EntityList().size(), 10'000u);
    scene.Deinit();

    Vorn::EntityPool<Vorn::Entity> pool;
    pool.LoadMaster(R"({"Type": "stone"})", 1'000);
    Vorn::Scene still;
    for (int i = 0; i < 1'000; ++i)
        still.AddEntity(pool.Fetch("master"), true);
    EXPECT_EQ(Allocations([&] { still.Update(1.0f / 60.0f); }), 0u);
}

TEST(Allocation, NoneInAWarmFetchAndReturn) {
    Tests::EnterPhysicsNames();
    // Names beyond what a string holds in itself; components that one template has and another
    // lacks.
    const std::string names[] = {"master", std::string(40, 'o'), std::string(40, 't')};
    Vorn::EntityPool<Worlds::Walker> pool;
    pool.LoadMaster(
        R"({"Type": ")" + names[1] + R"(", "Name": ")" + names[2] + R"(", "PhysicsCmpt": {}})", 8);
    for (const std::string& variant : {names[1], names[2]})
        pool.LoadVariant(R"({"Variant": ")" + variant + R"(", "EmitterCmpt": {}})");
    std::vector<Vorn::Entity*> out(60);
    const auto round = [&] {
        for (std::size_t i = 0; i < out.size(); ++i)
            out[i] = pool.Fetch(names[i % 3]);
        for (Vorn::Entity* entity : out)
            pool.Return(entity);
    };
    round();
    EXPECT_EQ(Allocations(round), 0u);
}

// Nobody can ask a system yet what it holds, but an entry in its list takes memory.
TEST(Allocation, OfAnEntryInTheSystemForAComponentThatComesLateOnlyWhereAPoolHandsOut) {
    Vorn::EntityPool<Vorn::Entity> pool;
    pool.LoadMaster("{}", 2);
    pool.LoadVariant(R"({"Variant": "v", "EmitterCmpt": {}})");
    Json::Value emitter;
    emitter["EmitterCmpt"]["Any"] = 1;
    Vorn::EmitterCmpt own;
    while (Allocations([&] { Vorn::EmitterSystem::Instance()->Register(&own); }) == 0) {
        // Takes the entries that earlier components left.
    }
    Vorn::Entity plain;
    Vorn::Entity* const pooled = pool.Fetch("master");
    plain.RegisterCmpts();
    const std::size_t cost = Allocations([&] { plain.DeserializeValue(emitter, false); });
    EXPECT_EQ(Allocations([&] { plain.RegisterCmpts(); }), 1u);
    EXPECT_EQ(Allocations([&] { pooled->DeserializeValue(emitter, false); }), cost + 1);

    // A fetch registers once, also what was out before.
    const auto fetch = [&] { pool.Fetch("v"); };
    const std::size_t fresh = Allocations(fetch);
    pool.LoadMaster("{}", 3);
    Vorn::Entity* const again = pool.Fetch("master");
    pool.Return(again);
    EXPECT_EQ(Allocations(fetch), fresh);
}

} // namespace
