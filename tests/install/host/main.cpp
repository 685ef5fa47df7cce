// SPDX-License-Identifier: MIT
//
// What a user of the installed package writes: the smallest host with an entity class, a pool, a
// singleton and a component system of its own.
#include "vorn/vorn.hpp"

#include <d3dx9.h>

#include <cstdio>

namespace {

class Lamp : public Vorn::Entity {
    void Update(float dt) override {
        Entity::Update(dt);
        LocalPosition(LocalPosition() + Vorn::Vector3(0, dt, 0));
    }
};

class Score : public Vorn::Singleton<Score> {
public:
    int points = 0;
};

} // namespace

int main() {
    Vorn::EntityPool<Lamp> pool;
    pool.LoadMaster(R"({"Type": "lamp", "GraphicsCmpt": {}})", 1);
    Vorn::EntityFactory::Instance()->Register("lamp", &pool);

    Vorn::Scene scene;
    scene.Deserialize(R"({"Entities": [{"Type": "lamp", "Name": "one"}]})");
    Vorn::SceneManager::Instance()->SetScene(&scene);
    Vorn::SceneManager::Instance()->Update(0.5f);
    Vorn::SceneManager::Instance()->Update(0.5f);

    // What an exported class raises is caught by its type across the border of the library.
    try {
        scene.CreateEntity("nothing", "master", true);
    } catch (const std::out_of_range&) {
        ++Score::Instance()->points;
    }
    try {
        scene.Deserialize(R"({"ResourcePack": {}})");
    } catch (const Vorn::DataError&) {
        ++Score::Instance()->points;
    }

    D3DXMATRIX world = scene.GetEntity("one")->GetWorld();
    D3DXMatrixTranspose(&world, &world);
    const bool moved = scene.GetEntity("one")->Position() == Vorn::Vector3(0, 1, 0);
    Vorn::SceneManager::Instance()->UnloadCurrentScene();
    std::printf("moved %d, points %d, idle %zu\n", moved, Score::Instance()->points, pool.Idle());
    return moved && Score::Instance()->points == 2 && pool.Idle() == 1 ? 0 : 1;
}
