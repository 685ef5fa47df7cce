// SPDX-License-Identifier: MIT
//
// Ray casts over 10,000 entities beside reading the position and scale of each once.
#include "worlds/bodies/bodies.hpp"

#include <benchmark/benchmark.h>

#include <list>

namespace {

constexpr std::size_t Count = 10'000;

struct Range {
    Worlds::Bodies bodies{Count, Worlds::Bodies::Shape::Mixed, 0.1};
    std::list<Vorn::Entity*> entities;

    Range() {
        for (const Vorn::PhysicsCmpt* body : bodies.List())
            entities.push_back(body->Parent());
    }
};

void ReadPositionAndScale(benchmark::State& state) {
    Range range;
    for (auto _ : state) {
        Vorn::Vector3 sum;
        for (const Vorn::Entity* entity : range.entities)
            sum += entity->Position() + entity->Scale();
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Count));
}

void FromPoint(benchmark::State& state, bool usePhysics) {
    Range range;
    const Vorn::Ray ray(Vorn::Vector3(-5, 10, 10), Vorn::Vector3(1, 0, 0));
    for (auto _ : state) {
        Vorn::Entity* hit = nullptr;
        benchmark::DoNotOptimize(
            Vorn::RayCastFromPoint(ray, range.entities, hit, 0.0f, usePhysics));
        benchmark::DoNotOptimize(hit);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Count));
}

void FromObject(benchmark::State& state) {
    Range range;
    for (auto _ : state) {
        Vorn::Entity* hit = nullptr;
        benchmark::DoNotOptimize(Vorn::RayCastFromObject(
            range.entities.front(), Vorn::Vector3(0, 0, 1), range.entities, hit, 0.0f));
        benchmark::DoNotOptimize(hit);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(Count));
}

BENCHMARK(ReadPositionAndScale)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FromPoint, scale, false)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(FromPoint, physics, true)->Unit(benchmark::kMicrosecond);
BENCHMARK(FromObject)->Unit(benchmark::kMicrosecond);

} // namespace
