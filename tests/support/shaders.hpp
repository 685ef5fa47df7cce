// SPDX-License-Identifier: MIT
//
// Shaders written by hand, as the compiler of effects writes them:
//
//   const ShaderCode code = VertexCode("vec3 at; vec4 to; void shader_main() { ... }");
//   Held<IDirect3DVertexShader9> shader = Make(VertexCode(...));
#pragma once

#include "platform/d3d9/effect_host.hpp"
#include "tests/support/device.hpp"

#include <memory>

namespace Tests {

using VornPlatform::RegisterCopy;
using VornPlatform::SamplerKind;
using VornPlatform::ShaderCode;
using VornPlatform::ShaderStage;
using VornPlatform::ShaderVariable;

inline const std::vector<ShaderVariable> positionIn = {{"at", "vec3", D3DDECLUSAGE_POSITION, 0}};

/// Of the third model. Reads "at" and writes "to", and what is told.
inline ShaderCode VertexCode(const std::string& body, std::vector<ShaderVariable> outputs = {},
                             std::vector<ShaderVariable> inputs = positionIn) {
    ShaderCode code;
    code.version = 0xfffe0300;
    code.body = body;
    code.inputs = std::move(inputs);
    code.outputs = std::move(outputs);
    code.outputs.push_back({"to", "vec4", D3DDECLUSAGE_POSITION, 0});
    return code;
}
/// Writes "color".
inline ShaderCode PixelCode(const std::string& body, std::vector<ShaderVariable> inputs = {}) {
    ShaderCode code;
    code.stage = ShaderStage::Pixel;
    code.version = 0xffff0300;
    code.body = "vec4 color;\n" + body;
    code.inputs = std::move(inputs);
    code.outputs = {{"color", "vec4", D3DDECLUSAGE_COLOR, 0}};
    return code;
}
/// `size` in bytes; the body reads g.member.
inline ShaderCode WithBlock(ShaderCode code, const std::string& members, UINT size,
                            std::vector<RegisterCopy> registers = {}) {
    code.members = members;
    code.blockName = "g";
    code.blockSize = size;
    code.blocksInArray = true;
    code.registers = std::move(registers);
    return code;
}
/// Vertices are in clip space already.
inline ShaderCode PassThrough() {
    return VertexCode("vec3 at; vec4 to; void shader_main() { to = vec4(at, 1.0); }");
}
inline ShaderCode Plain(const std::string& color) {
    return PixelCode("void shader_main() { color = " + color + "; }");
}

class ShaderTest : public DeviceTest {
protected:
    using DeviceTest::DeviceTest;

    Held<IDirect3DVertexShader9> MakeVertex(const ShaderCode& code) {
        Held<IDirect3DVertexShader9> shader;
        EXPECT_EQ(D3D_OK,
                  Host().MakeVertexShader(std::make_shared<const ShaderCode>(code), shader.Out()));
        return shader;
    }
    Held<IDirect3DPixelShader9> MakePixel(const ShaderCode& code) {
        Held<IDirect3DPixelShader9> shader;
        EXPECT_EQ(D3D_OK,
                  Host().MakePixelShader(std::make_shared<const ShaderCode>(code), shader.Out()));
        return shader;
    }
    VornPlatform::EffectHost& Host() { return dynamic_cast<VornPlatform::EffectHost&>(*device); }

    /// The device keeps them.
    void Use(const ShaderCode& vertex, const ShaderCode& pixel) {
        EXPECT_EQ(D3D_OK, device->SetVertexShader(MakeVertex(vertex)));
        EXPECT_EQ(D3D_OK, device->SetPixelShader(MakePixel(pixel)));
    }
    /// Over the whole target; for shaders that take clip space.
    void Cover(D3DCOLOR color = white, float z = 0.5f) {
        Draw(D3DPT_TRIANGLESTRIP, Corners({-1, 1, 1, -1}, color, z), imageFvf);
    }
    std::uint32_t Pixel(int x = 32, int y = 32) { return Screen().At(x, y); }
};

} // namespace Tests
