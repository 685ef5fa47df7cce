// SPDX-License-Identifier: MIT
//
// What the fragments of the documents stand in: a host with a window, whose names they use without
// saying where they come from. The files of all pages are there.
#pragma once

#include "tests/docs/page_folder.hpp"

namespace Docs {

class Fragment : public InFolder {
protected:
    Fragment() {
        WriteFiles("");
        Open();
        for (const char* image : {"vorn_font.png", "reef_weed.png", "night_dial.png"})
            Vorn::TextureManager::Instance()->Load(image);
        Vorn::PhysicsSystem::Instance()->LoadPhysicsInfo("data/physics.json");
        balls.LoadMaster(R"({"Type": "ball", "PhysicsCmpt": {}})", 1);
        ball = balls.Fetch("master");
        camera.Position(Vorn::Vector3(0, 0, -5));
        font.loadCharData("data/font/vorn.fnt");
        weed = skin = Vorn::TextureManager::Instance()->Get("reef_weed.png");
        font.mTexture = Vorn::TextureManager::Instance()->Get("vorn_font.png");
        heart.mTexture = Vorn::TextureManager::Instance()->Get("night_dial.png");
    }
    ~Fragment() override {
        font.Release();
        balls.Return(ball);
    }

    void TurnLeft() {}
    void ShowProgress(float) {}

    Vorn::Graphic* graphic = Vorn::Graphic::Instance();
    float dt = 1.0f / 60.0f;
    Vorn::Matrix4 view = Vorn::Matrix4::Identity;
    Vorn::Vector3 a, b = Vorn::Vector3(1, 1, 1), blast;
    bool shaken = true, wanted = false, running = false;
    Vorn::Camera camera;
    Vorn::bmFont font;
    Vorn::Texture *weed = nullptr, *skin = nullptr;
    Vorn::Vorn2DObj heart;
    const char* text = "Score 120";
    Vorn::Scene scene;
    Vorn::EntityPool<Vorn::Entity> balls;
    Vorn::Entity* ball = nullptr;
};

} // namespace Docs

// An example may give a name to what its reader is to go on with, and one that the host has too.
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-variable"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#pragma GCC diagnostic ignored "-Wdouble-promotion"
