// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/fixed_function.hpp"
#include "platform/d3d9/gl/lights.hpp"

namespace VornPlatform {

namespace {

// Of the vertex, in the space of the view. Normals go by the inverse transpose and are not made of
// length 1: a world twice as large is half as bright. A light ends sharply at its range. The
// material is white, and has no ambient colour.
constexpr const char* LightSource = R"(
layout(location = 1) uniform mat4 vp_worldView;
layout(location = 4) uniform int vp_lightCount;
layout(location = 5) uniform vec4 vp_lights[LIGHT_VECTORS];
layout(location = 1) in vec3 normal;

vec3 Light(int first, vec3 position, vec3 n) {
    vec4 place = vp_lights[first], aim = vp_lights[first + 1], shine = vp_lights[first + 2];
    if (place.w == 3.0)
        return shine.rgb * max(dot(n, -aim.xyz), 0.0);
    vec3 way = place.xyz - position;
    float distance = length(way);
    if (distance > aim.w)
        return vec3(0.0);
    vec3 toLight = distance > 0.0 ? way / distance : vec3(0.0);
    vec3 a = vp_lights[first + 3].xyz;
    float strength = 1.0 / max(a.x + distance * (a.y + distance * a.z), 1e-10);
    if (place.w == 2.0) {
        vec2 cone = vp_lights[first + 4].xy;
        float inside = (dot(-aim.xyz, toLight) - cone.x) * cone.y;
        strength *= inside <= 0.0 ? 0.0 : inside >= 1.0 ? 1.0 : pow(inside, shine.w);
    }
    return shine.rgb * (max(dot(n, toLight), 0.0) * strength);
}

vec3 Lit() {
    vec3 viewed = (vp_worldView * vec4(position.xyz, 1.0)).xyz;
    vec3 x = vp_worldView[0].xyz, y = vp_worldView[1].xyz, z = vp_worldView[2].xyz;
    vec3 n = normal.x * cross(y, z) + normal.y * cross(z, x) + normal.z * cross(x, y);
    float volume = dot(x, cross(y, z));
    n = volume != 0.0 ? n / volume : vec3(0.0);
    vec3 sum = vec3(0.0);
    for (int i = 0; i < vp_lightCount; ++i)
        sum += Light(i * LIGHT_SIZE, viewed, n);
    return sum;
}
)";

const char* ArgumentName(unsigned int argument) {
    return argument == D3DTA_TEXTURE ? "texel" : "diffuse";
}

std::string Combine(unsigned int op, unsigned int arg1, unsigned int arg2, const char* part) {
    const std::string a = std::string(ArgumentName(arg1)) + part;
    const std::string b = std::string(ArgumentName(arg2)) + part;
    switch (op) {
    case D3DTOP_SELECTARG2:
        return b;
    case D3DTOP_MODULATE:
        return a + " * " + b;
    case D3DTOP_MODULATE2X:
        return "min(" + a + " * " + b + " * 2.0, 1.0)";
    case D3DTOP_MODULATE4X:
        return "min(" + a + " * " + b + " * 4.0, 1.0)";
    case D3DTOP_ADD:
        return "min(" + a + " + " + b + ", 1.0)";
    default:
        return a;
    }
}

// What lets a pixel live.
const char* ComparisonOf(unsigned int function) {
    constexpr const char* table[] = {"true",
                                     "false",
                                     "vp_alpha < vp_reference",
                                     "vp_alpha == vp_reference",
                                     "vp_alpha <= vp_reference",
                                     "vp_alpha > vp_reference",
                                     "vp_alpha != vp_reference",
                                     "vp_alpha >= vp_reference"};
    return function < std::size(table) ? table[function] : "true";
}

struct Stage {
    std::uint8_t op, arg1, arg2;
};

constexpr Stage Diffuse = {D3DTOP_SELECTARG1, D3DTA_DIFFUSE, 0};

std::uint8_t Argument(DWORD argument) {
    return argument == D3DTA_TEXTURE ? D3DTA_TEXTURE : D3DTA_DIFFUSE; // CURRENT is the vertex's
}

Stage Reduce(DWORD op, DWORD arg1, DWORD arg2, bool textured) {
    if (op < D3DTOP_SELECTARG1 || op > D3DTOP_ADD)
        return Diffuse;
    Stage stage = {static_cast<std::uint8_t>(op), Argument(arg1), Argument(arg2)};
    if (op == D3DTOP_SELECTARG2)
        stage = {D3DTOP_SELECTARG1, stage.arg2, 0};
    else if (op == D3DTOP_SELECTARG1)
        stage.arg2 = 0;
    const bool sampled = stage.arg1 == D3DTA_TEXTURE || stage.arg2 == D3DTA_TEXTURE;
    return sampled && !textured ? Diffuse : stage;
}

void VertexKey(const State& state, const FormatTraits& format, FixedFunctionKey& key) {
    key.hasColor = format.hasColor;
    if (state.lighting)
        key.lighting = format.hasNormal && AnyLightOn(state) ? Lighting::Lit : Lighting::Black;
    // A shader behind it may read coordinates; the stage reads them with its texture.
    if (key.textured || state.pixelShader.code) {
        key.hasCoordinates = format.hasCoordinates;
        key.transformed = key.hasCoordinates && state.stage.transformFlags != D3DTTFF_DISABLE;
    }
}

void PixelKey(const State& state, FixedFunctionKey& key) {
    const TextureStage& s = state.stage;
    const bool bound = state.textures[0] != nullptr;
    Stage color = Diffuse, alpha = Diffuse;
    if (s.colorOp != D3DTOP_DISABLE) {
        color = Reduce(s.colorOp, s.colorArg1, s.colorArg2, bound);
        alpha = Reduce(s.alphaOp, s.alphaArg1, s.alphaArg2, bound);
    }
    key.colorOp = color.op, key.colorArg1 = color.arg1, key.colorArg2 = color.arg2;
    key.alphaOp = alpha.op, key.alphaArg1 = alpha.arg1, key.alphaArg2 = alpha.arg2;
    for (const Stage& stage : {color, alpha})
        key.textured |= stage.arg1 == D3DTA_TEXTURE || stage.arg2 == D3DTA_TEXTURE;
}

} // namespace

std::uint64_t FixedFunctionKey::Packed() const {
    std::uint64_t packed = 0;
    for (const unsigned int field :
         {unsigned(hasColor), unsigned(hasCoordinates), unsigned(textured), unsigned(transformed),
          unsigned(lighting), unsigned(colorOp), unsigned(colorArg1), unsigned(colorArg2),
          unsigned(alphaOp), unsigned(alphaArg1), unsigned(alphaArg2), unsigned(alphaTest)})
        packed = packed << 4 | field;
    return packed;
}

FixedFunctionKey KeyOf(const State& state, const FormatTraits& format) {
    FixedFunctionKey key;
    if (!state.pixelShader.code)
        PixelKey(state, key);
    if (!state.vertexShader.code)
        VertexKey(state, format, key);
    if (state.alphaTest.enable && state.alphaTest.function != D3DCMP_ALWAYS)
        key.alphaTest = static_cast<std::uint8_t>(state.alphaTest.function & 15);
    return key;
}

std::string FixedVertexSource(const FixedFunctionKey& key, const std::vector<Varying>& varyings,
                              UINT blocks) {
    const bool lit = key.lighting == Lighting::Lit;
    std::string source = "#define LIGHT_SIZE " + std::to_string(LightVectors) +
                         "\n#define LIGHT_VECTORS " + std::to_string(LightVectors * MaxLights) +
                         R"(
layout(location = 2) uniform mat4 vp_textureMatrix;
layout(location = 0) in vec4 position;
layout(location = 2) in vec4 color;
layout(location = 4) in vec2 texcoord;
)";
    if (blocks)
        source += MergedRecordSource + ("layout(std140, binding = 0) uniform vp_B0 { mat4 vp_g[" +
                                        std::to_string(blocks) +
                                        "]; };\n#define vp_worldViewProjection vp_g[VP_RECORD]\n");
    else
        source += "layout(location = 0) uniform mat4 vp_worldViewProjection;\n";
    if (lit)
        source += LightSource;
    source += "void main() {\n    gl_Position = vp_worldViewProjection * position;\n";
    for (const Varying& varying : varyings) {
        const std::string name = varying.Name();
        if (varying == VertexColor) {
            source += "    " + name + " = " + (key.hasColor ? "color" : "vec4(1.0)") + ";\n";
            if (key.lighting == Lighting::Black)
                source += "    " + name + ".rgb = vec3(0.0);\n";
            else if (lit)
                source += "    " + name + ".rgb = clamp(" + name + ".rgb * Lit(), 0.0, 1.0);\n";
        } else {
            const char* coordinate = key.transformed
                                         ? "(vp_textureMatrix * vec4(texcoord, 1.0, 0.0)).xy"
                                     : key.hasCoordinates ? "texcoord"
                                                          : "vec2(0.0)";
            source += "    " + name + " = vec4(" + coordinate + ", 0.0, 1.0);\n";
        }
    }
    return source + PlacePosition + "}\n";
}

std::string FixedPixelSource(const FixedFunctionKey& key, const std::vector<Varying>& varyings) {
    const auto input = [&](const Varying& wanted, const char* otherwise) {
        for (const Varying& varying : varyings)
            if (varying == wanted)
                return varying.Name();
        return std::string(otherwise);
    };
    std::string source;
    if (key.textured)
        source += "uniform sampler2D vp_image;\n";
    source += "void main() {\n    vec4 diffuse = " + input(VertexColor, "vec4(1.0)") + ";\n";
    if (key.textured)
        source += "    vec4 texel = texture(vp_image, " + input(TextureCoordinates, "vec4(0.0)") +
                  ".xy);\n";
    source += "    vp_result.rgb = " + Combine(key.colorOp, key.colorArg1, key.colorArg2, ".rgb") +
              ";\n    vp_result.a = " + Combine(key.alphaOp, key.alphaArg1, key.alphaArg2, ".a") +
              ";\n";
    return source + AlphaTestSource(key) + "}\n";
}

std::string AlphaTestSource(const FixedFunctionKey& key) {
    if (key.alphaTest == 0)
        return {};
    return std::string("    int vp_alpha = int(clamp(vp_result.a, 0.0, 1.0) * 255.0 + 0.5);\n"
                       "    if (!(") +
           ComparisonOf(key.alphaTest) + "))\n        discard;\n";
}

} // namespace VornPlatform
