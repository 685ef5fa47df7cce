// SPDX-License-Identifier: MIT
//
// Ten thousand draws of a small mesh, through the device and written in plain OpenGL: direct state
// access, and no call that would change nothing. Both draw the same into targets of the same size.
//   Moving    the world matrix differs from draw to draw
//   Flipping  nothing differs but one render state
// The time is that of the thread that draws.
#include "bench/plain_gl.hpp"
#include "platform/control/vorn_platform.hpp"

#include <d3d9.h>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using Bench::Require;

constexpr int Draws = 10'000;
constexpr UINT Side = 256;
enum class Case { Moving, Flipping };

struct Vertex {
    float x, y, z;
    D3DCOLOR color;
};
constexpr DWORD VertexFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE;
// A tetrahedron of a few pixels.
constexpr Vertex Vertices[] = {{0, 0.02f, 0, 0xffff0000},
                               {0.02f, -0.02f, 0, 0xff00ff00},
                               {-0.02f, -0.02f, 0, 0xff0000ff},
                               {0, 0, 0.02f, 0xffffffff}};
constexpr std::uint32_t Indices[] = {0, 1, 2, 0, 3, 1, 1, 3, 2, 2, 3, 0};
constexpr UINT VertexCount = 4, TriangleCount = 4;

constexpr D3DMATRIX Projection = {{{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0.1f, 0, 0, 0, 0.5f, 1}}};

D3DMATRIX WorldOf(int draw) {
    D3DMATRIX world = {{{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}}};
    world._41 = static_cast<float>(draw % 100) / 50 - 1;
    world._42 = static_cast<float>(draw / 100) / 50 - 1;
    return world;
}

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcA(window, message, wParam, lParam);
}

class DeviceDraws {
public:
    DeviceDraws() {
        VornPlatform::ForceHeadless();
        WNDCLASSEXA description = {};
        description.lpfnWndProc = Procedure;
        description.lpszClassName = "draws";
        RegisterClassExA(&description);
        mWindow = CreateWindowExA(0, "draws", "draws", WS_OVERLAPPED, 0, 0, Side, Side, nullptr,
                                  nullptr, nullptr, nullptr);
        mDirect3D = Direct3DCreate9(D3D_SDK_VERSION);
        D3DPRESENT_PARAMETERS parameters = {};
        parameters.BackBufferWidth = parameters.BackBufferHeight = Side;
        parameters.Windowed = TRUE;
        parameters.SwapEffect = D3DSWAPEFFECT_DISCARD;
        parameters.EnableAutoDepthStencil = TRUE;
        parameters.AutoDepthStencilFormat = D3DFMT_D16;
        Require(mDirect3D && SUCCEEDED(mDirect3D->CreateDevice(0, D3DDEVTYPE_HAL, mWindow,
                                                               D3DCREATE_HARDWARE_VERTEXPROCESSING,
                                                               &parameters, &mDevice)),
                "no device");
        mDevice->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &mTarget);
        mDevice->CreateVertexBuffer(sizeof Vertices, D3DUSAGE_WRITEONLY, VertexFvf, D3DPOOL_DEFAULT,
                                    &mVertices, nullptr);
        Bench::Fill(*mVertices, Vertices, sizeof Vertices);
        mDevice->CreateIndexBuffer(sizeof Indices, D3DUSAGE_WRITEONLY, D3DFMT_INDEX32,
                                   D3DPOOL_DEFAULT, &mIndices, nullptr);
        Bench::Fill(*mIndices, Indices, sizeof Indices);
        mDevice->SetFVF(VertexFvf);
        mDevice->SetStreamSource(0, mVertices, 0, sizeof(Vertex));
        mDevice->SetIndices(mIndices);
        mDevice->SetTransform(D3DTS_PROJECTION, &Projection);
        mDevice->SetRenderState(D3DRS_LIGHTING, FALSE);
    }
    DeviceDraws(const DeviceDraws&) = delete;
    DeviceDraws& operator=(const DeviceDraws&) = delete;
    ~DeviceDraws() {
        mIndices->Release();
        mVertices->Release();
        mTarget->Release();
        mDevice->Release();
        mDirect3D->Release();
        DestroyWindow(mWindow);
    }

    void Clear() { mDevice->Clear(0, nullptr, 3, 0xff000000, 1, 0); }
    void Draw(Case which) {
        mDevice->BeginScene();
        for (int i = 0; i < Draws; ++i) {
            if (which == Case::Moving) {
                const D3DMATRIX world = WorldOf(i);
                mDevice->SetTransform(D3DTS_WORLD, &world);
            } else {
                mDevice->SetRenderState(D3DRS_ZWRITEENABLE, i % 2 == 0);
            }
            mDevice->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, VertexCount, 0, TriangleCount);
        }
        mDevice->EndScene();
    }
    std::vector<std::uint32_t> Read() { return VornPlatform::ReadPixels(mTarget); }

private:
    HWND mWindow = nullptr;
    IDirect3D9* mDirect3D = nullptr;
    IDirect3DDevice9* mDevice = nullptr;
    IDirect3DSurface9* mTarget = nullptr;
    IDirect3DVertexBuffer9* mVertices = nullptr;
    IDirect3DIndexBuffer9* mIndices = nullptr;
};

constexpr const char* VertexSource = R"(#version 450 core
layout(location = 0) uniform mat4 worldViewProjection;
layout(location = 1) uniform vec2 halfPixel;
layout(location = 0) in vec4 position;
layout(location = 1) in vec4 color;
layout(location = 0) out vec4 colorOut;
void main() {
    gl_Position = worldViewProjection * position;
    gl_Position.xy += halfPixel * gl_Position.w;
    colorOut = color;
}
)";
constexpr const char* PixelSource = R"(#version 450 core
layout(location = 0) in vec4 color;
layout(location = 0) out vec4 result;
void main() {
    result = color;
}
)";

class PlainDraws {
public:
    PlainDraws() {
        makeMesh();
        makeProgram();
        glEnable(GL_CULL_FACE);
        glFrontFace(GL_CW);
    }
    PlainDraws(const PlainDraws&) = delete;
    PlainDraws& operator=(const PlainDraws&) = delete;
    void Clear() {
        glDepthMask(GL_TRUE);
        mDepthWrite = true;
        constexpr float black[] = {0, 0, 0, 1}, far = 1;
        glClearNamedFramebufferfv(mContext.Framebuffer(), GL_COLOR, 0, black);
        glClearNamedFramebufferfv(mContext.Framebuffer(), GL_DEPTH, 0, &far);
    }
    void Draw(Case which) {
        for (int i = 0; i < Draws; ++i) {
            if (which == Case::Moving) {
                const D3DMATRIX product = multiply(WorldOf(i), Projection);
                glUniformMatrix4fv(0, 1, GL_FALSE, &product.m[0][0]);
            } else if (mDepthWrite != (i % 2 == 0)) {
                mDepthWrite = !mDepthWrite;
                glDepthMask(mDepthWrite);
            }
            glDrawElements(GL_TRIANGLES, TriangleCount * 3, GL_UNSIGNED_INT, nullptr);
        }
    }
    std::vector<std::uint32_t> Read() {
        std::vector<std::uint32_t> pixels(std::size_t(Side) * Side);
        // OpenGL's first row is the lowest.
        for (GLint y = 0; y < GLint(Side); ++y)
            glReadPixels(0, GLint(Side) - 1 - y, Side, 1, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                         &pixels[std::size_t(y) * Side]);
        return pixels;
    }

private:
    static D3DMATRIX multiply(const D3DMATRIX& a, const D3DMATRIX& b) {
        D3DMATRIX product;
        for (int i = 0; i < 4; ++i)
            for (int j = 0; j < 4; ++j)
                product.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] +
                                  a.m[i][2] * b.m[2][j] + a.m[i][3] * b.m[3][j];
        return product;
    }

    static void makeMesh() {
        GLuint buffers[2] = {}, vertices = 0;
        glCreateBuffers(2, buffers);
        glNamedBufferStorage(buffers[0], sizeof Vertices, Vertices, 0);
        glNamedBufferStorage(buffers[1], sizeof Indices, Indices, 0);
        glCreateVertexArrays(1, &vertices);
        for (const GLuint attribute : {0u, 1u}) {
            glEnableVertexArrayAttrib(vertices, attribute);
            glVertexArrayAttribBinding(vertices, attribute, 0);
        }
        glVertexArrayAttribFormat(vertices, 0, 3, GL_FLOAT, GL_FALSE, 0);
        glVertexArrayAttribFormat(vertices, 1, GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE, 12);
        glVertexArrayVertexBuffer(vertices, 0, buffers[0], 0, sizeof(Vertex));
        glVertexArrayElementBuffer(vertices, buffers[1]);
        glBindVertexArray(vertices);
    }
    static void makeProgram() {
        Bench::UseProgram(VertexSource, PixelSource);
        constexpr float half = 1.0f / Side;
        glUniform2f(1, half, -half);
        glUniformMatrix4fv(0, 1, GL_FALSE, &Projection.m[0][0]);
    }

    Bench::PlainContext mContext{Side};
    bool mDepthWrite = true;
};

template <typename Draws>
void Run(benchmark::State& state, Case which) {
    Draws draws;
    for (auto _ : state) {
        state.PauseTiming();
        draws.Clear();
        state.ResumeTiming();
        draws.Draw(which);
        state.PauseTiming();
        const auto pixels = draws.Read(); // waits for what is still being drawn
        state.ResumeTiming();
    }
    std::size_t drawn = 0;
    for (const std::uint32_t pixel : draws.Read())
        drawn += (pixel & 0xffffff) != 0;
    state.counters["pixels"] = static_cast<double>(drawn); // the same in both
}

void Device(benchmark::State& state, Case which) {
    Run<DeviceDraws>(state, which);
}
void PlainOpenGl(benchmark::State& state, Case which) {
    Run<PlainDraws>(state, which);
}

BENCHMARK_CAPTURE(Device, Moving, Case::Moving)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PlainOpenGl, Moving, Case::Moving)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Device, Flipping, Case::Flipping)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PlainOpenGl, Flipping, Case::Flipping)->Unit(benchmark::kMillisecond);

} // namespace
