// SPDX-License-Identifier: MIT
//
// 100,000 entities: what a frame's update costs beside a bare walk and beside hand-written
// assignments, and what loading a scene file costs beside the parse of its text alone.
#include "worlds/meadow/meadow.hpp"
#include "vorn/vorn.hpp"

#include <benchmark/benchmark.h>

// The superseded reader is the one that the engine parses with: see vorn/core/json.cpp.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
#include <json/reader.h>

#include <cstddef>
#include <filesystem>
#include <list>
#include <memory>
#include <vector>

namespace {

constexpr unsigned int Count = 100'000;
constexpr float Step = 1.0f / 60.0f;

/// A scene of plain entities, every fifth with the one before it as its parent.
class Crowd {
public:
    Crowd() {
        Vorn::EntityFactory::Instance()->Register("plain", &mPool);
        mPool.LoadMaster(R"({"Type": "plain", "Position": {"X": 1, "Y": 2, "Z": 3}})", Count);
        for (unsigned int i = 0; i < Count; ++i) {
            Vorn::Entity* entity = mScene.CreateEntity("plain", "master", true);
            if (i % 5 == 4)
                entity->Parent(mScene.EntityList().front());
        }
    }
    ~Crowd() {
        mScene.Deinit();
        Vorn::EntityFactory::Instance()->Register("plain", nullptr);
    }

    Vorn::Scene& Scene() { return mScene; }

private:
    Vorn::EntityPool<Vorn::Entity> mPool;
    Vorn::Scene mScene;
};

/// As far apart as the entities of a pool, with the same fields in the same places.
struct alignas(64) ByHand {
    void* identity = nullptr;
    ByHand* parent = nullptr;
    Vorn::Vector3 position;
    Vorn::Vector3 localPosition{1, 2, 3};
    char rest[sizeof(Vorn::Entity) - 2 * sizeof(void*) - 2 * sizeof(Vorn::Vector3)];
};

void UpdateBareWalk(benchmark::State& state) {
    Crowd crowd;
    for (auto _ : state)
        for (Vorn::Entity* entity : crowd.Scene().EntityList())
            entity->Init(); // virtual, and empty
    state.SetItemsProcessed(state.iterations() * Count);
}

void UpdateByHand(benchmark::State& state) {
    std::vector<ByHand> entities(Count);
    std::list<ByHand*> list;
    for (unsigned int i = 0; i < Count; ++i) {
        list.push_back(&entities[i]);
        if (i % 5 == 4)
            entities[i].parent = &entities[0];
    }
    for (auto _ : state)
        for (ByHand* entity : list) {
            entity->position = entity->parent ? entity->parent->position + entity->localPosition
                                              : entity->localPosition;
            benchmark::ClobberMemory();
        }
    state.SetItemsProcessed(state.iterations() * Count);
}

void UpdateScene(benchmark::State& state) {
    Crowd crowd;
    for (auto _ : state)
        crowd.Scene().Update(Step);
    state.SetItemsProcessed(state.iterations() * Count);
}

/// The text of a scene file, and the file itself.
struct SceneFile {
    std::string text = Worlds::Meadow::SceneText(Count);
    std::string path = (std::filesystem::temp_directory_path() / "vorn_scene_bench.scene").string();

    SceneFile() { Vorn::SaveToFile(path, text.data(), static_cast<unsigned int>(text.size())); }
    ~SceneFile() { std::filesystem::remove(path); }
};

// Freeing a large tree leaves work behind that the allocator does at the next large request: it is
// not part of what comes next.
void Settle() {
    benchmark::DoNotOptimize(std::make_unique_for_overwrite<char[]>(std::size_t{1} << 20).get());
}

void LoadParseAlone(benchmark::State& state) {
    const SceneFile file;
    for (auto _ : state) {
        Json::Value root;
        Json::Reader reader;
        reader.parse(file.text.data(), file.text.data() + file.text.size(), root);
        benchmark::DoNotOptimize(root);
        state.PauseTiming();
        root = Json::Value();
        Settle();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.text.size()));
}

template <typename SceneClass>
void LoadScene(benchmark::State& state) {
    const SceneFile file;
    Worlds::Meadow meadow;
    for (auto _ : state) {
        SceneClass scene;
        scene.DeserializePath(file.path);
        scene.Init();
        state.PauseTiming();
        scene.Deinit();
        scene.Deserialize("");
        Settle();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.text.size()));
}

class DerivedScene : public Vorn::Scene {};

void FetchAndReturn(benchmark::State& state) {
    Worlds::Meadow meadow;
    auto& factory = *Vorn::EntityFactory::Instance();
    for (auto _ : state)
        factory.ReturnEntity(factory.FetchEntity("bird"));
}

void DestroyFromCrowd(benchmark::State& state) {
    Crowd crowd;
    Vorn::Scene& scene = crowd.Scene();
    for (auto _ : state) {
        scene.DestroyEntity(*std::next(scene.EntityList().begin(), 10), true);
        scene.CreateEntity("plain", "master", true);
    }
}

BENCHMARK(UpdateBareWalk);
BENCHMARK(UpdateByHand);
BENCHMARK(UpdateScene);
BENCHMARK(LoadParseAlone)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(LoadScene, Vorn::Scene)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(LoadScene, DerivedScene)->Unit(benchmark::kMillisecond);
BENCHMARK(FetchAndReturn);
BENCHMARK(DestroyFromCrowd);

} // namespace
