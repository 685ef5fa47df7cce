// SPDX-License-Identifier: MIT
//
// What effect_bench.cpp draws, and its opponents: the same pictures written in OpenGL by hand, with
// direct state access, uniform buffers that stay mapped, and no call that would change nothing.
#pragma once

#include "bench/plain_gl.hpp"

#include <d3dx9.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace Bench {

constexpr int Side = 512, PictureSide = 16;
constexpr int QuadCount = 10'000, MeshCount = 2'000;
constexpr UINT BoneCount = 60;

enum class Kind { Quads, Lit, Skinned };
struct Case {
    Kind kind;
    float size; // of quads (unit: pixels)
};
enum class Way { Instanced, OneByOne };

// --- what is drawn

struct FlatVertex {
    float x, y, z;
    D3DCOLOR color;
    float u, v;
};
struct SolidVertex {
    float x, y, z, nx, ny, nz, u, v, weights[4];
    std::uint8_t bones[4];
};
template <typename Vertex>
struct MeshOf {
    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> indices;
};

inline MeshOf<FlatVertex> Square() {
    constexpr D3DCOLOR white = 0xffffffff;
    return {{{-0.5f, -0.5f, 0, white, 0, 0},
             {0.5f, -0.5f, 0, white, 1, 0},
             {0.5f, 0.5f, 0, white, 1, 1},
             {-0.5f, 0.5f, 0, white, 0, 1}},
            {0, 1, 2, 2, 3, 0}};
}

/// 500 triangles.
inline MeshOf<SolidVertex> Patch() {
    constexpr std::uint32_t Columns = 25, Rows = 10;
    MeshOf<SolidVertex> mesh;
    for (std::uint32_t y = 0; y <= Rows; ++y)
        for (std::uint32_t x = 0; x <= Columns; ++x) {
            const float u = static_cast<float>(x) / Columns, v = static_cast<float>(y) / Rows;
            const auto bone = static_cast<std::uint8_t>((x + y * 3) % (BoneCount - 3));
            mesh.vertices.push_back(
                {u - 0.5f,
                 v - 0.5f,
                 0.5f,
                 u - 0.5f,
                 v - 0.5f,
                 -1,
                 u,
                 v,
                 {0.25f, 0.25f, 0.25f, 0.25f},
                 {bone, static_cast<std::uint8_t>(bone + 1), static_cast<std::uint8_t>(bone + 2),
                  static_cast<std::uint8_t>(bone + 3)}});
        }
    for (std::uint32_t y = 0; y < Rows; ++y)
        for (std::uint32_t x = 0; x < Columns; ++x) {
            const std::uint32_t at = y * (Columns + 1) + x, below = at + Columns + 1;
            mesh.indices.insert(mesh.indices.end(), {at, at + 1, below, below, at + 1, below + 1});
        }
    return mesh;
}

inline std::vector<std::uint32_t> Picture() {
    std::vector<std::uint32_t> pixels;
    for (std::uint32_t i = 0; i < PictureSide * PictureSide; ++i)
        pixels.push_back(0x60000000u | i << 16 | (255 - i) << 8 | 0x80);
    return pixels;
}

/// As a texture of the current context.
inline void BindPicture(GLint filter, GLint address) {
    GLuint texture = 0;
    glCreateTextures(GL_TEXTURE_2D, 1, &texture);
    glTextureStorage2D(texture, 1, GL_RGBA8, PictureSide, PictureSide);
    glTextureSubImage2D(texture, 0, 0, 0, PictureSide, PictureSide, GL_BGRA,
                        GL_UNSIGNED_INT_8_8_8_8_REV, Picture().data());
    glTextureParameteri(texture, GL_TEXTURE_MIN_FILTER, filter);
    glTextureParameteri(texture, GL_TEXTURE_MAG_FILTER, filter);
    glTextureParameteri(texture, GL_TEXTURE_WRAP_S, address);
    glTextureParameteri(texture, GL_TEXTURE_WRAP_T, address);
    glBindTextureUnit(0, texture);
}

inline D3DXMATRIX Placed(float scale, float x, float y) {
    D3DXMATRIX world;
    D3DXMatrixIdentity(&world);
    world._11 = world._22 = scale;
    world._41 = x;
    world._42 = y;
    return world;
}
inline D3DXMATRIX QuadWorld(int i, float pixels) {
    return Placed(pixels * 2 / Side, static_cast<float>(i % 100) / 50 - 0.99f,
                  static_cast<float>(i / 100) / 50 - 0.99f);
}
inline D3DXMATRIX MeshWorld(int i) {
    return Placed(0.05f, static_cast<float>(i % 50) / 25 - 0.98f,
                  static_cast<float>(i / 50) / 20 - 0.975f);
}
/// A few poses, over and over.
inline const std::vector<D3DXMATRIX>& Bones(int draw) {
    static const auto poses = [] {
        std::vector<std::vector<D3DXMATRIX>> made(8);
        for (std::size_t pose = 0; pose < made.size(); ++pose)
            for (UINT bone = 0; bone < BoneCount; ++bone)
                made[pose].push_back(
                    Placed(1, static_cast<float>(pose) / 20, static_cast<float>(bone) / 400));
        return made;
    }();
    return poses[static_cast<std::size_t>(draw) % poses.size()];
}

struct Lighting {
    float position[4], ambient[4], diffuse[4], specular[4], surface[4], none[4], camera[4];
    float radius, shininess;
};
constexpr Lighting lighting = {{0, 0, -2, 0},
                               {0.3f, 0.3f, 0.3f, 1},
                               {0.7f, 0.7f, 0.7f, 1},
                               {0.5f, 0.5f, 0.5f, 1},
                               {0.8f, 0.8f, 0.8f, 1},
                               {0, 0, 0, 0},
                               {0, 0, -3, 0},
                               100,
                               8};

// --- by hand

inline std::string ShaderHead() {
    const std::string pixel = "1.0 / " + std::to_string(Side) + ".0";
    return "#version 450 core\n#define HALF_PIXEL vec2(" + pixel + ", -" + pixel + ")\n";
}
constexpr const char* QuadVertexSource = R"(
layout(location = 0) uniform mat4 viewProjection;
WORLD
layout(location = 0) in vec4 position;
layout(location = 1) in vec4 color;
layout(location = 2) in vec2 uv;
out vec4 tint;
out vec2 coordinate;
void main() {
    gl_Position = viewProjection * (world * position);
    gl_Position.xy += HALF_PIXEL * gl_Position.w;
    tint = color;
    coordinate = uv;
}
)";
constexpr const char* QuadPixelSource = R"(
layout(binding = 0) uniform sampler2D picture;
in vec4 tint;
in vec2 coordinate;
layout(location = 0) out vec4 result;
void main() {
    result = texture(picture, coordinate) * tint;
    if (result.a < 7.5 / 255.0)
        discard;
}
)";
constexpr const char* LitBlock = R"(
layout(std140, binding = 0) uniform Draw {
    mat4 world, viewProjection;
    vec4 lightPosition, lightAmbient, lightDiffuse, lightSpecular;
    vec4 ambient, diffuse, emissive, specular, globalAmbient, camera, modulate, add;
    float radius, shininess;
};
)";
constexpr const char* LitVertexSource = R"(
layout(location = 0) in vec4 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec2 uv;
out vec2 coordinate;
out vec3 place, turned;
void main() {
    vec4 at = world * position;
    gl_Position = viewProjection * at;
    gl_Position.xy += HALF_PIXEL * gl_Position.w;
    place = at.xyz;
    turned = mat3(world) * normal;
    coordinate = uv;
}
)";
constexpr const char* LitPixelSource = R"(
layout(binding = 0) uniform sampler2D picture;
in vec2 coordinate;
in vec3 place, turned;
layout(location = 0) out vec4 result;
void main() {
    vec3 toLight = lightPosition.xyz - place;
    float away = length(toLight) / radius;
    float strength = 1.0 / (1.0 + away * away);
    vec3 n = normalize(turned), l = normalize(toLight);
    float facing = clamp(dot(n, l), 0.0, 1.0);
    vec3 mirrored = 2.0 * facing * n - l;
    float shine = clamp(dot(mirrored, normalize(camera.xyz - place)), 0.0, 1.0);
    vec3 lit = emissive.rgb + ambient.rgb * globalAmbient.rgb
        + ambient.rgb * lightAmbient.rgb * strength
        + diffuse.rgb * lightDiffuse.rgb * (facing * strength);
    vec4 texel = texture(picture, coordinate);
    vec3 color = texel.rgb * lit + specular.rgb * lightSpecular.rgb
        * (pow(max(shine, 0.0001), shininess) * strength);
    result = vec4(color, texel.a) * modulate / 255.0 + add / 255.0;
}
)";
constexpr const char* SkinVertexSource = R"(
layout(std140, binding = 0) uniform Draw { mat4 worldViewProjection; mat4 bones[60]; };
layout(location = 0) in vec4 position;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec2 uv;
layout(location = 3) in vec4 weights;
layout(location = 4) in vec4 boneNumbers;
out vec2 coordinate;
out float shade;
void main() {
    vec3 blended = vec3(0.0), turned = vec3(0.0);
    for (int i = 0; i < 4; ++i) {
        mat4 bone = bones[int(boneNumbers[i])];
        blended += (bone * vec4(position.xyz, 1.0)).xyz * weights[i];
        turned += (mat3(bone) * normal) * weights[i];
    }
    gl_Position = worldViewProjection * vec4(blended, 1.0);
    gl_Position.xy += HALF_PIXEL * gl_Position.w;
    coordinate = uv;
    shade = clamp(0.65 + 0.35 * normalize(turned).y, 0.0, 1.0);
}
)";
constexpr const char* SkinPixelSource = R"(
layout(binding = 0) uniform sampler2D picture;
in vec2 coordinate;
in float shade;
layout(location = 0) out vec4 result;
void main() {
    vec4 texel = texture(picture, coordinate);
    result = vec4(texel.rgb * shade, texel.a);
}
)";

class PlainFrames {
public:
    PlainFrames(Case which, Way way) : mCase(which), mWay(way) {
        makePicture();
        makeProgram();
        if (mCase.kind == Kind::Quads)
            makeMesh(Square());
        else
            makeMesh(Patch());
        makeStream();
    }
    PlainFrames(const PlainFrames&) = delete;
    PlainFrames& operator=(const PlainFrames&) = delete;

    void Frame() {
        constexpr float black[] = {0, 0, 0, 1}, far = 1;
        glClearNamedFramebufferfv(mContext.Framebuffer(), GL_COLOR, 0, black);
        glClearNamedFramebufferfv(mContext.Framebuffer(), GL_DEPTH, 0, &far);
        if (mCase.kind == Kind::Quads)
            drawQuads();
        else
            drawMeshes();
        glFinish();
    }
    std::vector<std::uint32_t> Read() {
        std::vector<std::uint32_t> pixels(std::size_t(Side) * Side);
        glReadPixels(0, 0, Side, Side, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, pixels.data());
        return pixels;
    }

private:
    struct LitDraw {
        D3DXMATRIX world, viewProjection;
        float vectors[12][4];
        float radius, shininess, rest[2];
    };
    struct SkinDraw {
        D3DXMATRIX worldViewProjection, bones[BoneCount];
    };
    // What one draw of the ring takes, and how many there are in it.
    static constexpr std::size_t DrawBytes = 4096, RingBytes = DrawBytes * MeshCount;
    static_assert(sizeof(LitDraw) <= DrawBytes && sizeof(SkinDraw) <= DrawBytes);

    void makePicture() {
        if (mCase.kind == Kind::Quads) {
            glEnable(GL_BLEND);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        }
        const bool skinned = mCase.kind == Kind::Skinned;
        BindPicture(skinned ? GL_NEAREST : GL_LINEAR, skinned ? GL_REPEAT : GL_CLAMP_TO_EDGE);
    }

    template <typename Vertex>
    void makeMesh(const MeshOf<Vertex>& mesh) {
        GLuint buffers[2] = {};
        glCreateBuffers(2, buffers);
        glNamedBufferStorage(buffers[0],
                             static_cast<GLsizeiptr>(mesh.vertices.size() * sizeof(Vertex)),
                             mesh.vertices.data(), 0);
        glNamedBufferStorage(buffers[1], static_cast<GLsizeiptr>(mesh.indices.size() * 4),
                             mesh.indices.data(), 0);
        glCreateVertexArrays(1, &mArray);
        Attribute(mArray, 0, 3, GL_FLOAT, 0);
        if (mCase.kind == Kind::Quads) {
            Attribute(mArray, 1, GL_BGRA, GL_UNSIGNED_BYTE, 12);
            Attribute(mArray, 2, 2, GL_FLOAT, 16);
        } else {
            Attribute(mArray, 1, 3, GL_FLOAT, 12);
            Attribute(mArray, 2, 2, GL_FLOAT, 24);
        }
        if (mCase.kind == Kind::Skinned) {
            Attribute(mArray, 3, 4, GL_FLOAT, 32);
            Attribute(mArray, 4, 4, GL_UNSIGNED_BYTE, 48);
        }
        glVertexArrayVertexBuffer(mArray, 0, buffers[0], 0, sizeof(Vertex));
        glVertexArrayElementBuffer(mArray, buffers[1]);
        glBindVertexArray(mArray);
        mIndexCount = static_cast<GLsizei>(mesh.indices.size());
    }

    void makeProgram() {
        const std::string head = ShaderHead();
        if (mCase.kind == Kind::Quads) {
            const char* word = mWay == Way::Instanced
                                   ? "layout(location = 4) in mat4 world;\n"
                                   : "layout(location = 1) uniform mat4 world;\n";
            std::string vertex = QuadVertexSource;
            vertex.replace(vertex.find("WORLD"), 5, word);
            UseProgram(head + vertex, head + QuadPixelSource);
            const D3DXMATRIX viewProjection = Placed(1, 0, 0);
            glUniformMatrix4fv(0, 1, GL_FALSE, &viewProjection.m[0][0]);
        } else if (mCase.kind == Kind::Lit) {
            UseProgram(head + LitBlock + LitVertexSource, head + LitBlock + LitPixelSource);
        } else {
            UseProgram(head + SkinVertexSource, head + SkinPixelSource);
        }
    }
    // A frame is finished before the next one is begun, so nothing has to wait here.
    void makeStream() {
        glCreateBuffers(1, &mStream);
        mMemory = MapStream(mStream, RingBytes);
        if (mWay != Way::Instanced)
            return;
        for (GLuint row = 0; row < 4; ++row)
            Attribute(mArray, 4 + row, 4, GL_FLOAT, row * 16, 1);
        glVertexArrayBindingDivisor(mArray, 1, 1);
        glVertexArrayVertexBuffer(mArray, 1, mStream, 0, sizeof(D3DXMATRIX));
    }

    void drawQuads() const {
        if (mWay == Way::OneByOne) {
            for (int i = 0; i < QuadCount; ++i) {
                const D3DXMATRIX world = QuadWorld(i, mCase.size);
                glUniformMatrix4fv(1, 1, GL_FALSE, &world.m[0][0]);
                glDrawElements(GL_TRIANGLES, mIndexCount, GL_UNSIGNED_INT, nullptr);
            }
            return;
        }
        for (int i = 0; i < QuadCount; ++i) {
            const D3DXMATRIX world = QuadWorld(i, mCase.size);
            std::memcpy(mMemory + static_cast<std::size_t>(i) * sizeof world, &world, sizeof world);
        }
        glDrawElementsInstanced(GL_TRIANGLES, mIndexCount, GL_UNSIGNED_INT, nullptr, QuadCount);
    }

    void drawMeshes() const {
        for (int i = 0; i < MeshCount; ++i) {
            const std::size_t offset = static_cast<std::size_t>(i) * DrawBytes;
            std::size_t size = sizeof(SkinDraw);
            if (mCase.kind == Kind::Lit) {
                const LitDraw draw = litDraw(i);
                size = sizeof draw;
                std::memcpy(mMemory + offset, &draw, size);
            } else {
                const D3DXMATRIX world = MeshWorld(i);
                const std::vector<D3DXMATRIX>& bones = Bones(i);
                std::memcpy(mMemory + offset, &world, sizeof world);
                std::memcpy(mMemory + offset + sizeof world, bones.data(),
                            bones.size() * sizeof world);
            }
            glBindBufferRange(GL_UNIFORM_BUFFER, 0, mStream, static_cast<GLintptr>(offset),
                              static_cast<GLsizeiptr>(size));
            glDrawElements(GL_TRIANGLES, mIndexCount, GL_UNSIGNED_INT, nullptr);
        }
    }
    static LitDraw litDraw(int i) {
        LitDraw draw = {};
        draw.world = MeshWorld(i);
        draw.viewProjection = Placed(1, 0, 0);
        constexpr float all[4] = {255, 255, 255, 255};
        const Lighting& l = lighting;
        const float* vectors[12] = {l.position, l.ambient, l.diffuse, l.specular,
                                    l.surface,  l.surface, l.none,    l.surface,
                                    l.ambient,  l.camera,  all,       l.none};
        for (std::size_t v = 0; v < 12; ++v)
            std::memcpy(draw.vectors[v], vectors[v], sizeof draw.vectors[v]);
        draw.radius = l.radius;
        draw.shininess = l.shininess;
        return draw;
    }

    Case mCase;
    Way mWay;
    PlainContext mContext{Side};
    GLuint mArray = 0, mStream = 0;
    std::byte* mMemory = nullptr;
    GLsizei mIndexCount = 0;
};

} // namespace Bench
