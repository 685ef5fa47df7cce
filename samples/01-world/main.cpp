// SPDX-License-Identifier: MIT
//
// A world that runs from data files: see README.md beside this file.
#include "worlds/meadow/meadow.hpp"
#include "vorn/vorn.hpp"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>

namespace {

constexpr float Step = 1.0f / 60.0f;
constexpr int FramesPerSecond = 60;

/// Counts who comes and goes at the end of the frames. Both ways lead over AddEntity and
/// DestroyEntity.
class CountingScene : public Vorn::Scene {
public:
    int created = 0;
    int destroyed = 0;

    void AddEntity(Vorn::Entity* entity, bool immediate) override {
        Scene::AddEntity(entity, immediate);
        created += immediate;
    }
    void DestroyEntity(Vorn::Entity* entity, bool immediate) override {
        Scene::DestroyEntity(entity, immediate);
        destroyed += immediate;
    }
};

void Run(Vorn::SceneManager& manager, CountingScene& scene, int seconds) {
    Vorn::PhysicsSystem& physics = *Vorn::PhysicsSystem::Instance();
    physics.Init();
    for (int second = 1; second <= seconds; ++second) {
        scene.created = scene.destroyed = 0;
        const std::size_t meetings = Worlds::Walker::Meetings();
        const std::size_t startled = Worlds::Walker::Startled();
        for (int frame = 0; frame < FramesPerSecond; ++frame) {
            manager.Update(Step);
            physics.Update(Step);
        }
        std::printf("second %2d: %3zu entities, %2d created, %2d destroyed, %3zu collisions, "
                    "%zu birds startled, state %016llx\n",
                    second, scene.EntityList().size(), scene.created, scene.destroyed,
                    Worlds::Walker::Meetings() - meetings, Worlds::Walker::Startled() - startled,
                    static_cast<unsigned long long>(Worlds::StateHash(scene)));
    }
}

int RunSample(const std::string& savePath) {
    // The pools come first, then the files that fill them, then a scene.
    Worlds::Meadow meadow;
    CountingScene scene;
    scene.DeserializePath("worlds/meadow/meadow.scene");

    Vorn::SceneManager& manager = *Vorn::SceneManager::Instance();
    manager.SetScene(&scene);
    Run(manager, scene, 8);

    // The running state becomes a scene file like the one it came from.
    scene.SerializeEntities();
    scene.SerializePath(savePath);
    std::printf("wrote %s\n", savePath.c_str());

    CountingScene loaded;
    loaded.DeserializePath(savePath);
    loaded.Init();
    const bool same = Worlds::StateHash(loaded) == Worlds::StateHash(scene);
    std::printf("read back: %zu entities, %s state\n", loaded.EntityList().size(),
                same ? "the same" : "ANOTHER");
    loaded.Deinit();

    // From here the two go the same way.
    std::printf("the world goes on:\n");
    Run(manager, scene, 2);
    std::printf("the world that was read back goes on:\n");
    manager.SetScene(&loaded);
    Run(manager, loaded, 2);

    manager.UnloadCurrentScene();
    std::printf("%zu entities are out of their pools\n", meadow.Out());
    return same && meadow.Out() == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        const auto standard = std::filesystem::temp_directory_path() / "vorn-01-world.scene";
        return RunSample(argc > 1 ? argv[1] : standard.string());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "01-world: %s\n", error.what());
        return 1;
    }
}
