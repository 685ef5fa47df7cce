// @NAME@: a ball on a board that posts stand on. README.md tells what is where.
#include "vorn/vorn.hpp"

#include <algorithm>
#include <cstdlib>
#include <string>

namespace {

using namespace Vorn;

/// The player's: arrow keys push it, and it bounces off what it meets.
class Ball : public Entity, private FunctorBase1 {
public:
    void Init() override { Physics()->RegisterCollisionResponse(this); }
    void Update(float dt) override {
        const auto held = [](unsigned int key) {
            return InputManager::Instance()->IsKeyPressed(CONTROL_KEYBOARD, key);
        };
        const auto axis = [&held](unsigned int more, unsigned int less) {
            return static_cast<float>(held(more)) - static_cast<float>(held(less));
        };
        Physics()->Force({axis(VK_RIGHT, VK_LEFT), 0.0f, axis(VK_UP, VK_DOWN)});
        stayOnBoard();
        Entity::Update(dt);
    }

private:
    // The engine says who was met; what comes of it is the game's. This turns the ball back from
    // the middle of the other.
    void operator()(CollisionData* hit) override {
        Vector3 away = Position() - hit->other->Position();
        away.y = 0.0f;
        away.Normalize();
        const Vector3 velocity = Physics()->LinearVelocity();
        const float towards = velocity.DotProduct(away);
        if (towards < 0.0f)
            Physics()->LinearVelocity(velocity - away * (2.0f * towards));
    }
    void stayOnBoard() {
        constexpr float edge = 5.5f; // half the board, less the ball's own half (unit: metres)
        const Vector3 place = Position();
        const Vector3 inside(std::clamp(place.x, -edge, edge), place.y,
                             std::clamp(place.z, -edge, edge));
        Vector3 velocity = Physics()->LinearVelocity();
        if ((place.x - inside.x) * velocity.x > 0.0f)
            velocity.x = -velocity.x;
        if ((place.z - inside.z) * velocity.z > 0.0f)
            velocity.z = -velocity.z;
        Position(inside);
        Physics()->LinearVelocity(velocity);
    }
};

class Game {
public:
    Game() {
        Engine::Instance()->Init("@NAME@", 800, 600, false);
        PhysicsSystem::Instance()->LoadPhysicsInfo("data/physics.json");
        auto& factory = *EntityFactory::Instance();
        factory.Register("thing", &mThings);
        factory.Register("post", &mPosts);
        factory.Register("ball", &mBalls);
        factory.LoadEntities("data/entity");
        mBoard.DeserializePath("data/board.scene");
        SceneManager::Instance()->SetScene(&mBoard);
        TriggerManager::Instance()->Push(Trigger::Trigger::LoadScript("post.json"));

        mGraphic.SetPointLightPosition({-4.0f, 9.0f, -5.0f});
        mGraphic.SetPointLightSettings({1.0f, 0.95f, 0.85f}, {1.0f, 1.0f, 0.9f},
                                       {0.1f, 0.1f, 0.2f});
        mCamera.Projection(Matrix4::Projection(mGraphic.DefaultFOV(), 4.0f / 3.0f, 0.5f, 100.0f));
        mCamera.SetRotationDeg(90.0f, 50.0f, 15.0f);
    }
    Game(const Game&) = delete;
    Game& operator=(const Game&) = delete;
    ~Game() {
        SceneManager::Instance()->UnloadCurrentScene();
        RscPackManager::Instance()->Free();
        Engine::Instance()->Free();
    }

    void Update(float dt) {
        InputManager::Instance()->Update();
        TriggerManager::Instance()->Update(static_cast<double>(dt));
        SceneManager::Instance()->Update(dt);
        PhysicsSystem::Instance()->Update(dt);
    }
    void Draw(float dt) {
        mCamera.Update(dt);
        mGraphic.CameraPos(mCamera.Position());
        mGraphic.SetBackBufferColor(D3DCOLOR_XRGB(32, 40, 56));
        mGraphic.BeginScene();
        GraphicsSystem::Instance()->Update(dt);
        mGraphic.RenderText(16, 12, D3DCOLOR_XRGB(230, 236, 245),
                            "Arrows push the ball, N sets a post, Escape ends the game");
        mGraphic.EndScene();
    }

private:
    Graphic& mGraphic = *Graphic::Instance();
    EntityPool<Entity> mThings, mPosts;
    EntityPool<Ball> mBalls;
    Scene mBoard;
    Camera mCamera;
};

/// False when the game is to end.
bool FetchMessages() {
    for (MSG message; PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE);) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return !Engine::Instance()->IsShutdown();
}

void Play() {
    Game game;
    auto& engine = *Engine::Instance();
    auto& clock = *DeltaClock::Instance();
    while (FetchMessages() &&
           !InputManager::Instance()->IsKeyTriggered(CONTROL_KEYBOARD, VK_ESCAPE)) {
        if (!engine.CheckContext())
            engine.Reset();
        clock.Update();
        const auto dt = static_cast<float>(clock.GetDeltaTime());
        game.Update(dt);
        game.Draw(dt);
        Graphic::Instance()->Present();
        Sleep(2);
    }
}

/// Plays so many frames of a 60th of a second and saves what is seen then: for tests, and for the
/// game's page.
int TakePicture(const char* file, int frames) {
    Game game;
    for (int i = 0; i < frames && FetchMessages(); ++i)
        game.Update(1.0f / 60.0f);
    game.Draw(0.0f);
    IDirect3DSurface9* screen = nullptr;
    Graphic::GetDevice()->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &screen);
    const HRESULT result = D3DXSaveSurfaceToFileA(file, D3DXIFF_PNG, screen, nullptr, nullptr);
    screen->Release();
    return FAILED(result) ? 1 : 0;
}

} // namespace

// @NAME@                          plays
// @NAME@ --picture FILE [FRAMES]  saves a picture and ends
int main(int argc, char** argv) {
    // What players read where an exception ends the game. Your address belongs into it.
    Vorn::ShowCrashPage({.game = "@NAME@", .contact = "", .recording = ""});
    if (argc >= 3 && std::string(argv[1]) == "--picture")
        return TakePicture(argv[2], argc > 3 ? std::atoi(argv[3]) : 60);
    Play();
    return 0;
}
