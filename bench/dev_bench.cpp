// SPDX-License-Identifier: MIT
//
// Without, Off, On   a small frame (messages, a scene of 100 entities, a clear, 10 lines, Present)
//                    as a host without the development mode runs it, with the mode's Update called
//                    while it is off, and with the mode on and its panel closed.
// UpdateOff          that call by itself. Present and each event test a pointer besides.
#include "dev/dev_mode.hpp"
#include "platform/control/vorn_platform.hpp"

#include "vorn/vorn.hpp"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace Vorn;

/// A host with its scene, for the whole program.
class Host {
public:
    Host() {
        VornPlatform::ForceHeadless();
        Engine::Instance()->Init("dev_bench", 320, 240, false);
        mPool.LoadMaster(R"({"Type": "thing", "Pool": 100})", 100);
        EntityFactory::Instance()->Register("thing", &mPool);
        Json::Value entities(Json::arrayValue), scene;
        for (int i = 0; i < 100; ++i)
            entities.append(Json::Value(Json::objectValue))["Type"] = "thing";
        scene["Entities"] = entities;
        mScene.DeserializeValue(scene);
        SceneManager::Instance()->SetScene(&mScene);
    }
    void Frame() {
        for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);)
            DispatchMessageA(&message);
        SceneManager::Instance()->Update(0.01f);
        Graphic& graphic = *Graphic::Instance();
        graphic.SetBackBufferColor(0xff000000);
        graphic.BeginScene();
        for (int i = 0; i < 10; ++i)
            graphic.Draw3DLine(Vector3(-1, 0, 0), Vector3(1, 0, 0), COLORS{0xffffffffu});
        graphic.EndScene();
        graphic.Present();
    }

private:
    EntityPool<Entity> mPool;
    Scene mScene;
};

Host& TheHost() {
    static auto* const host = new Host; // outlives the library's own end
    return *host;
}

void Without(benchmark::State& state) {
    TheHost().Frame(); // the first one makes the host
    for (auto _ : state)
        TheHost().Frame();
}

void Off(benchmark::State& state) {
    TheHost().Frame();
    for (auto _ : state) {
        TheHost().Frame();
        Dev::Update();
    }
}

void On(benchmark::State& state) {
    TheHost().Frame();
    Dev::Start();
    for (auto _ : state) {
        TheHost().Frame();
        Dev::Update();
    }
    Dev::Stop();
}

void UpdateOff(benchmark::State& state) {
    for (auto _ : state)
        Dev::Update();
}

BENCHMARK(Without)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(Off)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(On)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(UpdateOff);

} // namespace
