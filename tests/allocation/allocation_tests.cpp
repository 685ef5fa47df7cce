// SPDX-License-Identifier: MIT
//
// What allocates nothing. The program replaces the global operator new, the library's too, and
// counts.
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

void* CountedAllocation(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}

void* CountedAllocation(std::size_t size, std::align_val_t alignment) {
    ++allocations;
    const auto step = static_cast<std::size_t>(alignment);
    if (void* memory = std::aligned_alloc(step, (size + step - 1) / step * step))
        return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size) {
    return CountedAllocation(size);
}
void* operator new[](std::size_t size) {
    return CountedAllocation(size);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return CountedAllocation(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return CountedAllocation(size, alignment);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

namespace {

// The counter sees the library's allocations too, or nothing below could fail.
TEST(Allocation, OfTheLibraryIsCounted) {
    const std::size_t before = allocations;
    Vorn::Scene scene;
    scene.Deserialize(R"({"ResourcePack": "a name that is too long for the string itself"})");
    EXPECT_GT(allocations, before);
}

TEST(Allocation, NoneInTheUpdateOfManyEntities) {
    const Worlds::Meadow meadow;
    Vorn::Scene scene;
    scene.Deserialize(Worlds::Meadow::SceneText(10'000));
    scene.Init();
    // The nests let birds out for a while: those that come and go reuse what the first ones needed,
    // but for their entries in the scene's list and names, which are two blocks for each that
    // comes.
    for (int frame = 0; frame < 400; ++frame)
        scene.Update(1.0f / 60.0f);

    std::size_t worst = 0;
    for (int frame = 0; frame < 60; ++frame) {
        const std::size_t before = allocations;
        const std::size_t entities = scene.EntityList().size();
        scene.Update(1.0f / 60.0f);
        worst = std::max(worst, allocations - before);
        ASSERT_GT(entities, 10'000u);
    }
    EXPECT_LE(worst, 2u * 100u); // a hundred nests
    scene.Deinit();

    // Without nests there is nothing at all.
    Vorn::EntityPool<Vorn::Entity> pool;
    pool.LoadMaster(R"({"Type": "stone"})", 1'000);
    Vorn::Scene still;
    for (int i = 0; i < 1'000; ++i)
        still.AddEntity(pool.Fetch("master"), true);
    const std::size_t before = allocations;
    for (int frame = 0; frame < 100; ++frame)
        still.Update(1.0f / 60.0f);
    EXPECT_EQ(allocations, before);
}

TEST(Allocation, NoneInAWarmFetchAndReturn) {
    // Names beyond what a string holds in itself; components that one template has and another
    // lacks.
    const std::string type(40, 't');
    Vorn::EntityPool<Worlds::Walker> pool;
    pool.LoadMaster(R"({"Type": ")" + type +
                        R"(", "Name": "the plain one of that long name", "PhysicsCmpt": {}})",
                    8);
    for (const char* variant : {"one", "two"})
        pool.LoadVariant(R"({"Variant": ")" + std::string(40, *variant) +
                         R"(", "GraphicsCmpt": {}, "EmitterCmpt": {}})");
    const std::string names[] = {"master", std::string(40, 'o'), std::string(40, 't')};

    std::vector<Vorn::Entity*> out;
    out.reserve(60);
    const auto round = [&] {
        for (int i = 0; i < 60; ++i)
            out.push_back(pool.Fetch(names[i % 3]));
        for (Vorn::Entity* entity : out)
            pool.Return(entity);
        out.clear();
    };
    round();
    const std::size_t before = allocations;
    for (int i = 0; i < 10; ++i)
        round();
    EXPECT_EQ(allocations, before);
}

} // namespace
