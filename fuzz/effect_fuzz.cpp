// SPDX-License-Identifier: MIT
//
// Any text as an effect file: it compiles, or raises EffectError.
#include "fuzz/fuzz.hpp"
#include "platform/d3dx9/effect/effect_code.hpp"

using namespace VornPlatform;

FUZZ_TARGET(data, size) {
    const IncludeReader nothing = [](const std::string&, const std::string&, std::string&) {
        return std::optional<std::string>();
    };
    try {
        const EffectCode code =
            CompileEffectText("fuzz.fx", std::string_view(data, size), {}, nothing);
        for (const ShaderConstant& parameter : code.parameters)
            Fuzz::Require(parameter.offset <= code.start.size(), "a parameter behind the block");
        for (const EffectShader& shader : code.shaders)
            Fuzz::Require(shader.code->blockSize == 0 ||
                              shader.code->blockSize == code.start.size(),
                          "a shader with a block of its own");
    } catch (const EffectError&) {
    }
}
