// SPDX-License-Identifier: MIT
//
// Whole frames of effects and shaders, from the clear until the picture is finished, through the
// device and written in plain OpenGL.
//   Quads     10,000 squares, each by itself with all the calls of a sprite: states, format,
//             buffers, three matrices and a texture of an effect, its pass, the draw
//   Lit       2,000 draws of a mesh of 500 triangles with 32 parameters of an effect each
//   Skinned   2,000 draws of a mesh of 500 triangles with 60 bones in registers each
// The opponents are in plain_frames.hpp. For either the allocator keeps the memory that the
// software renderer frees and takes again with each draw: else most of a frame is page faults, or
// none of it, by chance.
#include "bench/plain_frames.hpp"
#include "platform/control/vorn_platform.hpp"

#include <d3d9.h>
#include <d3dx9.h>

#include <benchmark/benchmark.h>

#include <malloc.h>

namespace {

using Bench::Require;

constexpr char EffectText[] = R"(
float4x4 worldMatrix, viewMatrix, projectionMatrix;
texture ModelTexture;
float PF, PB, R, G, B, A;
sampler Picture = sampler_state { Texture = <ModelTexture>; MinFilter = Linear; MagFilter = Linear;
                                  MipFilter = Linear; AddressU = Clamp; AddressV = Clamp; };
struct Corner { float4 position : POSITION; float4 colour : COLOR0; float2 uv : TEXCOORD0; };
struct Pixel { float4 position : POSITION; float4 colour : COLOR0; float2 uv : TEXCOORD0; };
Pixel Place(Corner corner) {
    Pixel pixel;
    float4 seen = mul(mul(float4(corner.position.xyz, 1), worldMatrix), viewMatrix);
    pixel.position = mul(seen, projectionMatrix);
    pixel.colour = corner.colour;
    pixel.uv = corner.uv;
    return pixel;
}
float4 Plain(Pixel pixel) : COLOR0 { return tex2D(Picture, pixel.uv) * pixel.colour; }
technique TransformTech {
    pass P0 { VertexShader = compile vs_3_0 Place(); PixelShader = compile ps_3_0 Plain(); }
}

struct Light { float3 pos; float4 ambient, diffuse, specular; float radius; };
struct Surface { float4 ambient, diffuse, emissive, specular; float shininess; };
float4x4 worldInverseTransposeMatrix;
Light lights;
Surface material;
float4 globalAmbient;
float3 cameraPos;
float modR, modG, modB, modA, addR, addG, addB, addA, time;
struct LitVertex { float4 position : POSITION; float3 normal : NORMAL; float2 uv : TEXCOORD0; };
struct LitPixel { float4 position : POSITION; float2 uv : TEXCOORD0; float3 world : TEXCOORD1;
                  float3 normal : TEXCOORD2; };
LitPixel PlaceLit(LitVertex vertex) {
    LitPixel pixel;
    float4 world = mul(float4(vertex.position.xyz, 1), worldMatrix);
    pixel.position = mul(mul(world, viewMatrix), projectionMatrix);
    pixel.world = world.xyz;
    pixel.normal = mul(vertex.normal, (float3x3)worldMatrix);
    pixel.uv = vertex.uv;
    return pixel;
}
float4 Phong(LitPixel pixel) : COLOR0 {
    float3 toLight = lights.pos - pixel.world;
    float away = length(toLight) / lights.radius;
    float strength = 1 / (1 + away * away);
    float3 normal = normalize(pixel.normal), light = normalize(toLight);
    float facing = saturate(dot(normal, light));
    float3 mirrored = 2 * facing * normal - light;
    float shine = saturate(dot(mirrored, normalize(cameraPos - pixel.world)));
    float3 lit = material.emissive.rgb + material.ambient.rgb * globalAmbient.rgb
        + material.ambient.rgb * lights.ambient.rgb * strength
        + material.diffuse.rgb * lights.diffuse.rgb * (facing * strength);
    float4 texel = tex2D(Picture, pixel.uv);
    float3 colour = texel.rgb * lit + material.specular.rgb * lights.specular.rgb
        * (pow(max(shine, 0.0001), material.shininess) * strength);
    return float4(colour, texel.a) * float4(modR, modG, modB, modA) / 255
        + float4(addR, addG, addB, addA) / 255;
}
technique PhongLighting {
    pass P0 { VertexShader = compile vs_3_0 PlaceLit(); PixelShader = compile ps_3_0 Phong(); }
}
)";

constexpr char SkinText[] = R"(
float4x4 WorldViewProj;
float4x4 FinalTransforms[60];
struct Vertex { float4 position : POSITION; float3 normal : NORMAL; float2 uv : TEXCOORD0;
                float4 weights : BLENDWEIGHT; float4 bones : BLENDINDICES; };
struct Pixel { float4 position : POSITION; float2 uv : TEXCOORD0; float shade : TEXCOORD1; };
Pixel VertexBlend(Vertex vertex) {
    float3 blended = 0, turned = 0;
    for (int i = 0; i < 4; ++i) {
        float4x4 bone = FinalTransforms[(int)vertex.bones[i]];
        blended += mul(float4(vertex.position.xyz, 1), bone).xyz * vertex.weights[i];
        turned += mul(vertex.normal, (float3x3)bone) * vertex.weights[i];
    }
    Pixel pixel;
    pixel.position = mul(float4(blended, 1), WorldViewProj);
    pixel.uv = vertex.uv;
    pixel.shade = saturate(0.65 + 0.35 * normalize(turned).y);
    return pixel;
}
sampler2D Picture : register(s0);
float4 ps_main(Pixel pixel) : COLOR0 {
    float4 texel = tex2D(Picture, pixel.uv);
    return float4(texel.rgb * pixel.shade, texel.a);
}
)";

template <typename T>
class Held {
public:
    Held() = default;
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;
    ~Held() {
        if (mObject)
            mObject->Release();
    }
    T** Out() { return &mObject; }
    T* operator->() const { return mObject; }
    operator T*() const { return mObject; }

private:
    T* mObject = nullptr;
};

class DeviceFrames {
public:
    explicit DeviceFrames(Bench::Case which) : mCase(which) {
        open();
        makeBuffers();
        makeEffect();
        mDevice->CreateTexture(1, 1, 1, D3DUSAGE_RENDERTARGET, D3DFMT_A8R8G8B8, D3DPOOL_DEFAULT,
                               mSmall.Out(), nullptr);
        mSmall->GetSurfaceLevel(0, mSmallSurface.Out());
    }
    DeviceFrames(const DeviceFrames&) = delete;
    DeviceFrames& operator=(const DeviceFrames&) = delete;

    void Frame() {
        mDevice->Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, 0xff000000, 1, 0);
        mDevice->BeginScene();
        switch (mCase.kind) {
        case Bench::Kind::Quads:
            for (int i = 0; i < Bench::QuadCount; ++i)
                drawQuad(Bench::QuadWorld(i, mCase.size));
            break;
        case Bench::Kind::Lit:
            for (int i = 0; i < Bench::MeshCount; ++i)
                drawLit(Bench::MeshWorld(i));
            break;
        case Bench::Kind::Skinned:
            for (int i = 0; i < Bench::MeshCount; ++i)
                drawSkinned(i);
            break;
        }
        mDevice->EndScene();
        // Nothing waits any more once a picture is read, though of another target.
        VornPlatform::ReadPixels(mSmallSurface);
        glFinish();
    }
    std::vector<std::uint32_t> Read() { return VornPlatform::ReadPixels(mTarget); }

private:
    void open() {
        VornPlatform::ForceHeadless();
        WNDCLASSEXA description = {};
        description.lpfnWndProc = DefWindowProcA;
        description.lpszClassName = "frames";
        RegisterClassExA(&description);
        mWindow = CreateWindowExA(0, "frames", "frames", WS_OVERLAPPED, 0, 0, Bench::Side,
                                  Bench::Side, nullptr, nullptr, nullptr, nullptr);
        Held<IDirect3D9> direct3D;
        *direct3D.Out() = Direct3DCreate9(D3D_SDK_VERSION);
        D3DPRESENT_PARAMETERS parameters = {};
        parameters.BackBufferWidth = parameters.BackBufferHeight = Bench::Side;
        parameters.Windowed = TRUE;
        parameters.SwapEffect = D3DSWAPEFFECT_DISCARD;
        parameters.EnableAutoDepthStencil = TRUE;
        parameters.AutoDepthStencilFormat = D3DFMT_D16;
        Require(SUCCEEDED(direct3D->CreateDevice(0, D3DDEVTYPE_HAL, mWindow,
                                                 D3DCREATE_HARDWARE_VERTEXPROCESSING, &parameters,
                                                 mDevice.Out())),
                "no device");
        mDevice->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, mTarget.Out());
        D3DXMATRIX identity;
        D3DXMatrixIdentity(&identity);
        mDevice->SetTransform(D3DTS_VIEW, &identity);
        mDevice->SetTransform(D3DTS_PROJECTION, &identity);
        if (mCase.kind != Bench::Kind::Quads)
            mDevice->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
        mDevice->SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
        mDevice->SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    }

    template <typename Vertex>
    void makeMesh(const Bench::MeshOf<Vertex>& mesh, const D3DVERTEXELEMENT9* elements) {
        const auto vertexBytes = static_cast<UINT>(mesh.vertices.size() * sizeof(Vertex));
        const auto indexBytes = static_cast<UINT>(mesh.indices.size() * 4);
        mDevice->CreateVertexBuffer(vertexBytes, 0, 0, D3DPOOL_MANAGED, mVertices.Out(), nullptr);
        mDevice->CreateIndexBuffer(indexBytes, D3DUSAGE_WRITEONLY, D3DFMT_INDEX32, D3DPOOL_DEFAULT,
                                   mIndices.Out(), nullptr);
        Bench::Fill(*static_cast<IDirect3DVertexBuffer9*>(mVertices), mesh.vertices.data(),
                    vertexBytes);
        Bench::Fill(*static_cast<IDirect3DIndexBuffer9*>(mIndices), mesh.indices.data(),
                    indexBytes);
        mDevice->CreateVertexDeclaration(elements, mDeclaration.Out());
        mDevice->SetVertexDeclaration(mDeclaration);
        mDevice->SetStreamSource(0, mVertices, 0, sizeof(Vertex));
        mDevice->SetIndices(mIndices);
        mVertexCount = static_cast<UINT>(mesh.vertices.size());
        mTriangles = static_cast<UINT>(mesh.indices.size() / 3);
    }
    void makeBuffers() {
        constexpr D3DVERTEXELEMENT9 flat[] = {
            {0, 0, D3DDECLTYPE_FLOAT3, 0, D3DDECLUSAGE_POSITION, 0},
            {0, 12, D3DDECLTYPE_D3DCOLOR, 0, D3DDECLUSAGE_COLOR, 0},
            {0, 16, D3DDECLTYPE_FLOAT2, 0, D3DDECLUSAGE_TEXCOORD, 0},
            D3DDECL_END()};
        constexpr D3DVERTEXELEMENT9 solid[] = {
            {0, 0, D3DDECLTYPE_FLOAT3, 0, D3DDECLUSAGE_POSITION, 0},
            {0, 12, D3DDECLTYPE_FLOAT3, 0, D3DDECLUSAGE_NORMAL, 0},
            {0, 24, D3DDECLTYPE_FLOAT2, 0, D3DDECLUSAGE_TEXCOORD, 0},
            {0, 32, D3DDECLTYPE_FLOAT4, 0, D3DDECLUSAGE_BLENDWEIGHT, 0},
            {0, 48, D3DDECLTYPE_UBYTE4, 0, D3DDECLUSAGE_BLENDINDICES, 0},
            D3DDECL_END()};
        if (mCase.kind == Bench::Kind::Quads)
            makeMesh(Bench::Square(), flat);
        else
            makeMesh(Bench::Patch(), solid);
        const std::vector<std::uint32_t> picture = Bench::Picture();
        mDevice->CreateTexture(Bench::PictureSide, Bench::PictureSide, 1, 0, D3DFMT_A8R8G8B8,
                               D3DPOOL_MANAGED, mTexture.Out(), nullptr);
        D3DLOCKED_RECT locked = {};
        mTexture->LockRect(0, &locked, nullptr, 0);
        std::memcpy(locked.pBits, picture.data(), picture.size() * 4);
        mTexture->UnlockRect(0);
    }

    void makeEffect() {
        Held<ID3DXBuffer> errors;
        Require(SUCCEEDED(D3DXCreateEffect(mDevice, EffectText, sizeof EffectText - 1, nullptr,
                                           nullptr, 0, nullptr, mEffect.Out(), errors.Out())),
                errors ? static_cast<const char*>(errors->GetBufferPointer()) : "no effect");
        if (mCase.kind != Bench::Kind::Skinned)
            return;
        const auto compile = [](const char* entry, const char* profile, ID3DXBuffer** code,
                                ID3DXConstantTable** constants) {
            Require(SUCCEEDED(D3DXCompileShader(SkinText, sizeof SkinText - 1, nullptr, nullptr,
                                                entry, profile, 0, code, nullptr, constants)),
                    entry);
        };
        Held<ID3DXBuffer> vertex, pixel;
        compile("VertexBlend", "vs_3_0", vertex.Out(), mConstants.Out());
        compile("ps_main", "ps_3_0", pixel.Out(), nullptr);
        mDevice->CreateVertexShader(static_cast<const DWORD*>(vertex->GetBufferPointer()),
                                    mVertexShader.Out());
        mDevice->CreatePixelShader(static_cast<const DWORD*>(pixel->GetBufferPointer()),
                                   mPixelShader.Out());
        mDevice->SetTexture(0, mTexture);
    }

    void drawPasses() {
        UINT passes = 0;
        if (FAILED(mEffect->Begin(&passes, 0)))
            return;
        for (UINT pass = 0; pass < passes; ++pass)
            if (SUCCEEDED(mEffect->BeginPass(pass))) {
                drawMesh();
                mEffect->EndPass();
            }
        mEffect->End();
    }
    void drawMesh() {
        mDevice->DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, mVertexCount, 0, mTriangles);
    }

    void drawQuad(const D3DXMATRIX& world) {
        mDevice->SetRenderState(D3DRS_ALPHABLENDENABLE, TRUE);
        mDevice->SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
        mDevice->SetRenderState(D3DRS_ALPHAFUNC, D3DCMP_GREATEREQUAL);
        mDevice->SetRenderState(D3DRS_ALPHAREF, 8);
        mDevice->SetRenderState(D3DRS_ALPHATESTENABLE, TRUE);
        mEffect->SetTechnique("TransformTech");
        mDevice->SetFVF(D3DFVF_XYZ | D3DFVF_DIFFUSE | D3DFVF_TEX1);
        mDevice->SetVertexDeclaration(mDeclaration);
        mDevice->SetStreamSource(0, mVertices, 0, sizeof(Bench::FlatVertex));
        mDevice->SetIndices(mIndices);
        D3DXMATRIX view, projection;
        mDevice->GetTransform(D3DTS_VIEW, &view);
        mDevice->GetTransform(D3DTS_PROJECTION, &projection);
        mEffect->SetMatrix("worldMatrix", &world);
        mEffect->SetMatrix("viewMatrix", &view);
        mEffect->SetMatrix("projectionMatrix", &projection);
        mEffect->SetTexture("ModelTexture", mTexture);
        drawPasses();
    }

    void drawLit(const D3DXMATRIX& world) {
        mEffect->SetTechnique("PhongLighting");
        mDevice->SetVertexDeclaration(mDeclaration);
        const Bench::Lighting& l = Bench::lighting;
        mEffect->SetFloat("PF", 0);
        mEffect->SetFloat("PB", 0);
        for (const char* name : {"modR", "modG", "modB", "modA"})
            mEffect->SetFloat(name, 255);
        for (const char* name : {"addR", "addG", "addB", "addA"})
            mEffect->SetFloat(name, 0);
        mEffect->SetFloat("time", 0.02f);
        mEffect->SetValue("lights.pos", l.position, 12);
        mEffect->SetValue("lights.ambient", l.ambient, 16);
        mEffect->SetValue("lights.diffuse", l.diffuse, 16);
        mEffect->SetValue("lights.specular", l.specular, 16);
        mEffect->SetFloat("lights.radius", l.radius);
        mEffect->SetTexture("ModelTexture", mTexture);
        mEffect->SetValue("material.ambient", l.surface, 16);
        mEffect->SetValue("material.diffuse", l.surface, 16);
        mEffect->SetValue("material.emissive", l.none, 16);
        mEffect->SetValue("material.specular", l.surface, 16);
        mEffect->SetFloat("material.shininess", l.shininess);
        mEffect->SetValue("cameraPos", l.camera, 12);
        D3DXMATRIX view, projection, identity;
        mDevice->GetTransform(D3DTS_VIEW, &view);
        mDevice->GetTransform(D3DTS_PROJECTION, &projection);
        mEffect->SetMatrix("worldMatrix", &world);
        mEffect->SetMatrix("viewMatrix", &view);
        mEffect->SetMatrix("projectionMatrix", &projection);
        mEffect->SetValue("globalAmbient", l.ambient, 16);
        mEffect->SetMatrix("worldInverseTransposeMatrix", D3DXMatrixIdentity(&identity));
        drawPasses();
    }

    void drawSkinned(int draw) {
        D3DXMATRIX world = Bench::MeshWorld(draw);
        const std::vector<D3DXMATRIX>& bones = Bench::Bones(draw);
        mDevice->SetVertexDeclaration(mDeclaration);
        mDevice->SetVertexShader(mVertexShader);
        mDevice->SetPixelShader(mPixelShader);
        mConstants->SetMatrix(mDevice, "WorldViewProj", &world);
        mConstants->SetMatrixArray(mDevice, "FinalTransforms", bones.data(),
                                   static_cast<UINT>(bones.size()));
        drawMesh();
        mDevice->SetVertexShader(nullptr);
        mDevice->SetPixelShader(nullptr);
    }

    Bench::Case mCase;
    HWND mWindow = nullptr;
    Held<IDirect3DDevice9> mDevice;
    Held<IDirect3DSurface9> mTarget;
    Held<IDirect3DVertexBuffer9> mVertices;
    Held<IDirect3DIndexBuffer9> mIndices;
    Held<IDirect3DVertexDeclaration9> mDeclaration;
    Held<IDirect3DTexture9> mTexture, mSmall;
    Held<IDirect3DSurface9> mSmallSurface;
    Held<ID3DXEffect> mEffect;
    Held<ID3DXConstantTable> mConstants;
    Held<IDirect3DVertexShader9> mVertexShader;
    Held<IDirect3DPixelShader9> mPixelShader;
    UINT mVertexCount = 0, mTriangles = 0;
};

template <typename Frames, typename... Arguments>
void Run(benchmark::State& state, Arguments... arguments) {
    Frames frames(arguments...);
    frames.Frame();
    for (auto _ : state)
        frames.Frame();
    std::size_t drawn = 0;
    std::uint32_t sum = 0;
    for (const std::uint32_t pixel : frames.Read()) {
        drawn += (pixel & 0xffffff) != 0;
        sum += pixel & 0xff;
    }
    state.counters["pixels"] = static_cast<double>(drawn); // the same in both
    state.counters["blue"] = sum;
}

using Bench::Case;
using Bench::Kind;
using Bench::Way;

void Device(benchmark::State& state, Case which) {
    Run<DeviceFrames>(state, which);
}
void Plain(benchmark::State& state, Case which, Way way) {
    Run<Bench::PlainFrames>(state, which, way);
}

#define FRAMES(function, name, ...)                                                                \
    BENCHMARK_CAPTURE(function, name, __VA_ARGS__)->Unit(benchmark::kMillisecond)->UseRealTime()

FRAMES(Device, Quads16, Case{Kind::Quads, 16});
FRAMES(Plain, Quads16Instanced, Case{Kind::Quads, 16}, Way::Instanced);
FRAMES(Plain, Quads16OneByOne, Case{Kind::Quads, 16}, Way::OneByOne);
FRAMES(Device, Quads1, Case{Kind::Quads, 1});
FRAMES(Plain, Quads1Instanced, Case{Kind::Quads, 1}, Way::Instanced);
FRAMES(Plain, Quads1OneByOne, Case{Kind::Quads, 1}, Way::OneByOne);
FRAMES(Device, Lit, Case{Kind::Lit, 0});
FRAMES(Plain, Lit, Case{Kind::Lit, 0}, Way::OneByOne);
FRAMES(Device, Skinned, Case{Kind::Skinned, 0});
FRAMES(Plain, Skinned, Case{Kind::Skinned, 0}, Way::OneByOne);

} // namespace

int main(int count, char** arguments) {
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
}
