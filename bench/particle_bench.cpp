// SPDX-License-Identifier: MIT
//
// Update   an emitter with 1,000,000 particles, all alive or every other one at random. Beside it
//          the plain loop, and std::memcpy of the records to other memory.
// Frame    10,000 particles, moved and drawn over a clear picture until it is finished: through
//          EmitterSystem and Graphics2DSystem, and by a plain loop and one instanced draw of OpenGL
//          by hand. At the start both must have drawn the same picture.
// The allocator keeps what is freed, as in effect_bench.cpp.
#include "bench/plain_frames.hpp"
#include "platform/control/vorn_platform.hpp"
#include "tests/support/plain_particles.hpp"

#include "vorn/vorn.hpp"

#include <benchmark/benchmark.h>

#include <malloc.h>
#include <sys/mman.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Bench::Require;
using Vorn::Particle;

constexpr float Dt = 1.0f / 60;
constexpr char PictureName[] = "particle_bench.png"; // no such file: an empty slot

IDirect3DTexture9*& Slot() {
    auto& store = *Vorn::TextureManager::Instance();
    store.Load(PictureName);
    return *store.Get(PictureName)->mTexture;
}

Json::Value Vector(double x, double y, double z) {
    Json::Value v;
    v["X"] = x, v["Y"] = y, v["Z"] = z;
    return v;
}

/// No edge of a square meets the centre of a pixel, where the two ways of drawing may decide
/// differently.
float BetweenPixels(float place) {
    constexpr float pixels = Bench::Side / 2;
    const float whole = std::floor(place * pixels);
    return (whole + 0.1f + 0.8f * (place * pixels - whole)) / pixels;
}

/// Emits its whole pool at once; nobody dies. `pixels` is the size of a particle on the screen.
void Fill(Vorn::EmitterCmpt& emitter, int count, double pixels) {
    Json::Value value;
    value["TexturePath"] = PictureName;
    value["Size"] = value["Particles_Per_Emit"] = count;
    value["EmitOnce"] = true;
    value["EmitterType"] = "Sphere";
    value["SphereRadius"] = 0.9;
    value["ParticleLife0"] = value["ParticleLife1"] = 1e6;
    value["Scale0"] = value["Scale1"] =
        Vector(pixels * 2 / Bench::Side, pixels * 2 / Bench::Side, 0);
    value["Speed0"] = 1e-5, value["Speed1"] = 0;
    value["Color0"]["R"] = value["Color1"]["G"] = value["Color0"]["A"] = 255;
    std::srand(3);
    Slot();
    emitter.DeserializeValue(value, false);
    emitter.Init();
    emitter.Emit(Dt);
    for (Particle& particle : emitter.mParticles)
        particle.position = {BetweenPixels(particle.position.x), BetweenPixels(particle.position.y),
                             0.5f};
}

/// As Fill has it, for the plain loop.
Vorn::ParticleCourse CourseOf(float pixels) {
    const float size = pixels * 2 / Bench::Side;
    return {{size, size, 0}, {size, size, 0}, 1e-5f, 0, {255, 255, 0, 0}, {0, 0, 255, 0}, 0};
}

// --- update

constexpr int CrowdCount = 1'000'000;

/// The emitter, and as much memory beside it.
struct Crowd {
    explicit Crowd(bool half) : copy(nullptr, std::free) {
        Fill(emitter, CrowdCount, 1);
        std::mt19937 random(5);
        for (Particle& particle : emitter.mParticles)
            particle.alive = !half || (random() & 1) != 0;
        constexpr std::size_t hugePage = std::size_t{2} << 20;
        const std::size_t size = (Bytes() + hugePage - 1) / hugePage * hugePage;
        copy.reset(static_cast<Particle*>(std::aligned_alloc(hugePage, size)));
        Require(copy != nullptr, "no memory");
        madvise(copy.get(), size, MADV_HUGEPAGE);
        Copy();
    }
    std::size_t Bytes() const { return emitter.mParticles.size() * sizeof(Particle); }
    void Copy() {
        std::memcpy(static_cast<void*>(copy.get()), emitter.mParticles.data(), Bytes());
        benchmark::ClobberMemory();
    }

    Vorn::EmitterCmpt emitter;
    std::unique_ptr<Particle, decltype(&std::free)> copy;
    std::vector<std::size_t> freed;
};

Crowd& CrowdOf(bool half) {
    static Crowd all(false), some(true);
    return half ? some : all;
}

void Update(benchmark::State& state, bool half) {
    Crowd& crowd = CrowdOf(half);
    for (auto _ : state)
        crowd.emitter.Update(Dt);
}
void UpdatePlainly(benchmark::State& state, bool half) {
    Crowd& crowd = CrowdOf(half);
    for (auto _ : state)
        Tests::PlainMoveParticles(crowd.emitter.mParticles, CourseOf(1), Dt, crowd.freed);
}
void Copy(benchmark::State& state, bool half) {
    Crowd& crowd = CrowdOf(half);
    for (auto _ : state)
        crowd.Copy();
}

// --- whole frames

constexpr int FrameCount = 10'000;
using Pixels = std::vector<std::uint32_t>;

class EngineFrames {
public:
    explicit EngineFrames(float pixels) {
        VornPlatform::ForceHeadless();
        Vorn::Engine::Instance()->Init("particle_bench", Bench::Side, Bench::Side, false);
        IDirect3DDevice9& device = *Vorn::Graphic::GetDevice();
        setUp(device);
        fillSlot(device);
        Fill(mEmitter, FrameCount, static_cast<double>(pixels));
        Vorn::EmitterSystem::Instance()->Register(&mEmitter);
        Vorn::Graphics2DSystem::Instance()->EmitterList(&mList);
    }
    EngineFrames(const EngineFrames&) = delete;
    EngineFrames& operator=(const EngineFrames&) = delete;
    ~EngineFrames() {
        Vorn::Graphics2DSystem::Instance()->EmitterList(nullptr);
        IDirect3DTexture9*& picture = Slot();
        for (IUnknown* object :
             std::initializer_list<IUnknown*>{mSmall, mSmallTexture, mTarget, picture})
            object->Release();
        picture = nullptr;
        Vorn::Engine::Instance()->Free();
        DestroyWindow(Vorn::Engine::mWnd);
    }

    void Frame() {
        Vorn::EmitterSystem::Instance()->Update(Dt);
        Vorn::Graphic& graphic = *Vorn::Graphic::Instance();
        graphic.SetBackBufferColor(0xff000000);
        graphic.BeginScene();
        Vorn::Graphics2DSystem::Instance()->RenderParticle();
        graphic.EndScene();
        // Nothing waits any more once a picture is read, though of another target.
        VornPlatform::ReadPixels(mSmall);
        glFinish();
    }
    Pixels Read() { return VornPlatform::ReadPixels(mTarget); }

private:
    void setUp(IDirect3DDevice9& device) {
        const D3DVIEWPORT9 whole = {0, 0, Bench::Side, Bench::Side, 0, 1};
        device.SetViewport(&whole);
        const D3DXMATRIX identity = Vorn::Matrix4::Identity;
        device.SetTransform(D3DTS_VIEW, &identity);
        device.SetTransform(D3DTS_PROJECTION, &identity);
        device.SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
        device.SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
        device.GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &mTarget);
        device.CreateTexture(1, 1, 1, D3DUSAGE_RENDERTARGET, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT,
                             &mSmallTexture, nullptr);
        Require(mSmallTexture && SUCCEEDED(mSmallTexture->GetSurfaceLevel(0, &mSmall)),
                "no target");
    }
    static void fillSlot(IDirect3DDevice9& device) {
        IDirect3DTexture9*& texture = Slot();
        device.CreateTexture(Bench::PictureSide, Bench::PictureSide, 1, 0, D3DFMT_A8R8G8B8,
                             D3DPOOL_MANAGED, &texture, nullptr);
        D3DLOCKED_RECT locked = {};
        Require(texture && SUCCEEDED(texture->LockRect(0, &locked, nullptr, 0)), "no texture");
        std::memcpy(locked.pBits, Bench::Picture().data(), Bench::Picture().size() * 4);
        texture->UnlockRect(0);
    }

    IDirect3DSurface9 *mTarget = nullptr, *mSmall = nullptr;
    IDirect3DTexture9* mSmallTexture = nullptr;
    Vorn::EmitterCmpt mEmitter;
    std::list<Vorn::EmitterCmpt*> mList = {&mEmitter};
};

constexpr const char* ParticleVertexSource = R"(
layout(location = 0) uniform mat4 viewProjection;
layout(location = 0) in vec3 position;
layout(location = 1) in vec4 color;
layout(location = 2) in vec2 uv;
layout(location = 3) in vec3 place;
layout(location = 4) in vec3 size;
out vec4 tint;
out vec2 coordinate;
void main() {
    gl_Position = viewProjection * vec4(position * size + place, 1.0);
    gl_Position.xy += HALF_PIXEL * gl_Position.w;
    tint = color;
    coordinate = uv;
}
)";

class FramesByHand {
public:
    explicit FramesByHand(float pixels) : mCourse(CourseOf(pixels)) {
        // They start where the engine's do.
        Vorn::EmitterCmpt emitter;
        Fill(emitter, FrameCount, static_cast<double>(pixels));
        mParticles = emitter.mParticles;

        Bench::BindPicture(GL_LINEAR, GL_CLAMP_TO_EDGE);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        glDepthMask(GL_FALSE);
        const std::string head = Bench::ShaderHead();
        Bench::UseProgram(head + ParticleVertexSource, head + Bench::QuadPixelSource);
        const D3DXMATRIX viewProjection = Bench::Placed(1, 0, 0);
        glUniformMatrix4fv(0, 1, GL_FALSE, &viewProjection.m[0][0]);
        makeBuffers();
    }
    FramesByHand(const FramesByHand&) = delete;
    FramesByHand& operator=(const FramesByHand&) = delete;

    void Frame() {
        Tests::PlainMoveParticles(mParticles, mCourse, Dt, mFreed);
        constexpr float black[] = {0, 0, 0, 1}, far = 1;
        glDepthMask(GL_TRUE);
        glClearNamedFramebufferfv(mContext.Framebuffer(), GL_COLOR, 0, black);
        glClearNamedFramebufferfv(mContext.Framebuffer(), GL_DEPTH, 0, &far);
        glDepthMask(GL_FALSE);
        GLsizei count = 0;
        for (const Particle& particle : mParticles)
            if (particle.alive)
                mInstances[count++] = {particle.position, particle.scale};
        glDrawElementsInstanced(GL_TRIANGLES, 6, GL_UNSIGNED_INT, nullptr, count);
        glFinish();
    }
    /// Rows from the top.
    Pixels Read() const {
        Pixels pixels(std::size_t(Bench::Side) * Bench::Side);
        for (int row = 0; row < Bench::Side; ++row)
            glReadPixels(0, Bench::Side - 1 - row, Bench::Side, 1, GL_BGRA,
                         GL_UNSIGNED_INT_8_8_8_8_REV,
                         pixels.data() + std::size_t(row) * Bench::Side);
        return pixels;
    }

private:
    struct Instance {
        Vorn::Vector3 position, scale;
    };

    void makeBuffers() {
        const auto square = Bench::Square();
        GLuint buffers[3] = {}, array = 0;
        glCreateBuffers(3, buffers);
        glNamedBufferStorage(buffers[0], 4 * sizeof(Bench::FlatVertex), square.vertices.data(), 0);
        glNamedBufferStorage(buffers[1], 6 * 4, square.indices.data(), 0);
        mInstances = reinterpret_cast<Instance*>(
            Bench::MapStream(buffers[2], FrameCount * sizeof(Instance)));
        glCreateVertexArrays(1, &array);
        Bench::Attribute(array, 0, 3, GL_FLOAT, 0);
        Bench::Attribute(array, 1, GL_BGRA, GL_UNSIGNED_BYTE, 12);
        Bench::Attribute(array, 2, 2, GL_FLOAT, 16);
        Bench::Attribute(array, 3, 3, GL_FLOAT, 0, 1);
        Bench::Attribute(array, 4, 3, GL_FLOAT, 12, 1);
        glVertexArrayBindingDivisor(array, 1, 1);
        glVertexArrayVertexBuffer(array, 0, buffers[0], 0, sizeof(Bench::FlatVertex));
        glVertexArrayVertexBuffer(array, 1, buffers[2], 0, sizeof(Instance));
        glVertexArrayElementBuffer(array, buffers[1]);
        glBindVertexArray(array);
    }

    Vorn::ParticleCourse mCourse;
    std::vector<Particle> mParticles;
    std::vector<std::size_t> mFreed;
    Bench::PlainContext mContext{Bench::Side};
    Instance* mInstances = nullptr;
};

template <typename Frames>
void Frame(benchmark::State& state, float pixels) {
    Frames frames(pixels);
    frames.Frame();
    for (auto _ : state)
        frames.Frame();
}

template <typename Frames>
Pixels PictureOf(float pixels) {
    Frames frames(pixels);
    for (int i = 0; i < 3; ++i)
        frames.Frame();
    return frames.Read();
}

/// The largest difference in a channel. Alpha is not looked at: the back buffer has none.
int Difference(const Pixels& a, const Pixels& b) {
    int largest = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        for (int shift = 0; shift < 24; shift += 8)
            largest = std::max(largest, std::abs(static_cast<int>(a[i] >> shift & 255) -
                                                 static_cast<int>(b[i] >> shift & 255)));
    return largest;
}

/// Both must have drawn, and the same but for rounding.
void RequireSamePicture(float pixels) {
    const Pixels engine = PictureOf<EngineFrames>(pixels), byHand = PictureOf<FramesByHand>(pixels);
    const auto drawn = std::count_if(engine.begin(), engine.end(),
                                     [](std::uint32_t pixel) { return (pixel & 0xffffff) != 0; });
    Require(drawn > FrameCount, "nothing drawn");
    Require(Difference(engine, byHand) <= 1, "not the same picture");
}

BENCHMARK_CAPTURE(Update, AllAlive, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(UpdatePlainly, AllAlive, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Copy, AllAlive, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Update, HalfAlive, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(UpdatePlainly, HalfAlive, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Copy, HalfAlive, true)->Unit(benchmark::kMillisecond);

void Engine(benchmark::State& state, float pixels) {
    Frame<EngineFrames>(state, pixels);
}
void ByHand(benchmark::State& state, float pixels) {
    Frame<FramesByHand>(state, pixels);
}
BENCHMARK_CAPTURE(Engine, Pixels16, 16.0f)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(ByHand, Pixels16, 16.0f)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(Engine, Pixels4, 4.0f)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(ByHand, Pixels4, 4.0f)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int count, char** arguments) {
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    try {
        for (const float pixels : {16.0f, 4.0f})
            RequireSamePicture(pixels);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return 1;
    }
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
