// SPDX-License-Identifier: MIT
//
// Shader files of a test's own, whose looks are short formulas, beside the program in place of
// those that come with the engine.
//
//   WriteShaders(KnownShaders());                       // then Open()
//   WriteShaders({{"shadow.fx", "no effect"}});         // one replaced
#pragma once

#include "tests/support/engine_device.hpp"

#include <functional>
#include <map>
#include <string>

namespace RenderTests {

/// From file name to text.
using ShaderFiles = std::map<std::string, std::string>;

/// A technique whose passes draw alike.
inline std::string Technique(const std::string& name, int passes, const std::string& pixel) {
    std::string text = "technique " + name + " {\n";
    for (int i = 0; i < passes; ++i)
        text += "    pass P" + std::to_string(i) +
                " { VertexShader = compile vs_3_0 Vertex(); PixelShader = compile ps_3_0 " + pixel +
                "(); }\n";
    return text + "}\n";
}

/// What the four simple effects have in common.
inline const std::string Head = R"(
float4x4 worldMatrix, viewMatrix, projectionMatrix;
texture ModelTexture;
sampler image = sampler_state {
    Texture = <ModelTexture>; MinFilter = POINT; MagFilter = POINT; MipFilter = NONE;
    AddressU = CLAMP; AddressV = CLAMP;
};
struct Corner { float4 position : POSITION; float4 color : COLOR0; float2 uv : TEXCOORD0; };
Corner Vertex(float4 position : POSITION, float4 color : COLOR0, float2 uv : TEXCOORD0) {
    Corner corner;
    corner.position = mul(mul(mul(position, worldMatrix), viewMatrix), projectionMatrix);
    corner.color = color;
    corner.uv = uv;
    return corner;
}
float4 Plain(float4 color : COLOR0, float2 uv : TEXCOORD0) : COLOR0 {
    return tex2D(image, uv) * color;
}
)";

/// Light falls off by half at its radius; fog and time come out as a tint.
inline const std::string Light = R"(
struct PointLight { float3 pos; float4 ambient, diffuse, specular; float radius; };
struct Surface { float4 ambient, diffuse, emissive, specular; float shininess; };
PointLight lights;
Surface material;
float PF, PB, modR, modG, modB, modA, addR, addG, addB, addA, time;
float3 cameraPos;
float4 globalAmbient;
float4x4 worldMatrix, viewMatrix, projectionMatrix, worldInverseTransposeMatrix;
texture colorMapTexture;
sampler image = sampler_state {
    Texture = <colorMapTexture>; MinFilter = POINT; MagFilter = POINT; MipFilter = NONE;
};
struct Corner {
    float4 position : POSITION;
    float2 uv : TEXCOORD0;
    float3 place : TEXCOORD1;
    float3 normal : TEXCOORD2;
};
Corner Vertex(float4 position : POSITION, float3 normal : NORMAL, float2 uv : TEXCOORD0) {
    Corner corner;
    float4 place = mul(position, worldMatrix);
    corner.position = mul(mul(place, viewMatrix), projectionMatrix);
    corner.uv = uv;
    corner.place = place.xyz;
    corner.normal = mul(mul(normal, (float3x3)worldMatrix), (float3x3)worldInverseTransposeMatrix);
    return corner;
}
float4 Lit(float2 uv : TEXCOORD0, float3 place : TEXCOORD1, float3 normal : TEXCOORD2) : COLOR0 {
    float3 n = normalize(normal);
    float3 l = lights.pos - place;
    float fall = 1 / (1 + length(l) / lights.radius);
    l = normalize(l);
    float facing = max(dot(n, l), 0);
    float shine = pow(max(dot(reflect(-l, n), normalize(cameraPos - place)), 0.0001),
                      material.shininess);
    float4 color = material.emissive + material.ambient * (globalAmbient + lights.ambient) +
                   fall * (material.diffuse * lights.diffuse * facing +
                           material.specular * lights.specular * shine);
    color *= tex2D(image, uv);
    color = color * float4(modR, modG, modB, modA) / 255 + float4(addR, addG, addB, addA) / 255;
    return color + float4(PF, PB, time, 0);
}
)";

/// With `passes`, each technique has a number of them that is its own: 2 and 3 in the file of 2D,
/// 4 unlit, 5 lit, 6 for the shadow.
inline ShaderFiles KnownShaders(bool passes = false) {
    const auto count = [passes](int number) { return passes ? number : 1; };
    return {{"skel.vsh", R"(
float4x4 WorldViewProj;
float4x4 FinalTransforms[8];
struct Corner { float4 position : POSITION; float2 uv : TEXCOORD0; };
Corner VertexBlend(float4 position : POSITION, float2 uv : TEXCOORD1,
                   float4 weights : BLENDWEIGHT, float4 bones : BLENDINDICES) {
    float4 moved = weights.x * mul(position, FinalTransforms[(int)bones.x]) +
                   weights.y * mul(position, FinalTransforms[(int)bones.y]) +
                   weights.z * mul(position, FinalTransforms[(int)bones.z]) +
                   weights.w * mul(position, FinalTransforms[(int)bones.w]);
    Corner corner;
    corner.position = mul(float4(moved.xyz, 1), WorldViewProj);
    corner.uv = uv;
    return corner;
}
)"},
            {"skel.psh", R"(
sampler2D image : register(s0);
float4 ps_main(float2 uv : TEXCOORD0) : COLOR0 {
    return tex2D(image, uv);
}
)"},
            {"twodbasicshader.fx",
             Head +
                 "float PF, PB, R, G, B, A;\n"
                 "float4 Modulated(float4 color : COLOR0, float2 uv : TEXCOORD0) : COLOR0 {\n"
                 "    float4 texel = tex2D(image, uv) * color;\n"
                 "    texel.rgb *= float3(R, G, B) / 258;\n"
                 "    return float4(texel.rgb + float3(PF, PB, 0), texel.a * A);\n"
                 "}\n" +
                 Technique("TransformTech", count(2), "Plain") +
                 Technique("pixelmodulate", count(3), "Modulated")},
            {"basicshader.fx", Head + Technique("TransformTech", count(4), "Plain")},
            {"vornlight.fx", Light + Technique("PhongLighting", count(5), "Lit")},
            {"distortionshader.fx", Head + Technique("TransformTech", 1, "Plain")},
            {"shadow.fx", Head + "float4 Flat() : COLOR0 { return float4(0.2, 0.4, 0.6, 1); }\n" +
                              Technique("TransformTech", count(6), "Flat")}};
}

/// Into data/shaders of the working directory, which a test has to itself. An empty text takes the
/// file away.
inline void WriteShaders(const ShaderFiles& files) {
    const std::filesystem::path folder = "data/shaders";
    if (std::filesystem::is_symlink(folder))
        std::filesystem::remove(folder); // never write to where it leads
    std::filesystem::create_directories(folder);
    for (const auto& [name, text] : files) {
        std::filesystem::remove(folder / name);
        if (!text.empty())
            std::ofstream(folder / name, std::ios::binary) << text;
    }
}

/// Lets the frame clock measure `seconds` for its last frame.
inline void SetFrame(double seconds) {
    std::int64_t counts = 100 * VornPlatform::ClockFrequency;
    for (const double time : {0.0, seconds}) {
        counts += static_cast<std::int64_t>(time * 1e9);
        VornPlatform::HoldClock(counts);
        Vorn::DeltaClock::Instance()->Update();
    }
    VornPlatform::ReleaseClock();
}

/// What the calls of `action` are, without quotation marks. Where in it the device is asked for its
/// transforms, nobody can tell.
inline Tests::Texts Calls(const std::function<void()>& action) {
    VornPlatform::CallLog log;
    action();
    Tests::Texts calls;
    for (std::string& call : Tests::Take(log)) {
        std::erase(call, '"');
        if (!call.starts_with("D3DX") && !call.starts_with("GetTransform"))
            calls.push_back(std::move(call));
    }
    return calls;
}
/// What follows `name` in the calls that begin with it.
inline Tests::Texts Only(const Tests::Texts& calls, const std::string& name) {
    Tests::Texts some;
    for (const std::string& call : calls)
        if (call.starts_with(name + ' '))
            some.push_back(call.substr(name.size() + 1));
    return some;
}
inline std::string Elements(const D3DXMATRIX& m) {
    return Tests::Text({&m.m[0][0], &m.m[0][0] + 16});
}

} // namespace RenderTests
