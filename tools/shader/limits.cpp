// SPDX-License-Identifier: MIT
#include "tools/shader/limits.hpp"

#include "platform/d3d9/limits.hpp"
#include "platform/d3dx9/effect/places.hpp"
#include "platform/d3dx9/effect/state_table.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <string_view>

namespace Shader {
namespace {

using namespace VornPlatform;

struct Profile {
    unsigned int major, minor;
    bool isPixel;

    bool Has(unsigned int least) const { return major >= least; }
};

Profile Of(const ShaderCode& code) {
    return {code.version >> 8 & 0xff, code.version & 0xff, code.stage == ShaderStage::Pixel};
}

unsigned int MostRegisters(const Profile& profile) {
    if (profile.isPixel)
        return profile.Has(3) ? 224 : profile.Has(2) ? 32 : 8;
    return profile.Has(2) ? 256 : 96;
}

unsigned int MostSamplers(const Profile& profile) {
    if (!profile.isPixel)
        return profile.Has(3) ? 4 : 0;
    return profile.Has(2) ? 16 : profile.minor >= 4 ? 6 : 4;
}

bool IsOfName(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

/// As a whole word.
bool Mentions(std::string_view text, std::string_view word) {
    for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || !IsOfName(text[at - 1])) && (end == text.size() || !IsOfName(text[end])))
            return true;
    }
    return false;
}

/// Of an effect's constants, which all stand in its block, those that the text reads.
unsigned int RegistersOf(const ShaderCode& code, const std::vector<ShaderConstant>& constants) {
    unsigned int sum = 0;
    for (const ShaderConstant& constant : constants) {
        if (constant.valueClass == ValueClass::Object)
            continue;
        if (constant.registerCount > 0)
            sum = std::max(sum, constant.registerIndex + constant.registerCount);
        else if (Mentions(code.body, code.blockName + "." + constant.name))
            sum += ElementRegisters(constant) * std::max(constant.elements, 1u);
    }
    return sum;
}

// What the GLSL calls something that a profile may lack.
struct Feature {
    const char* word;
    const char* name;
    unsigned int least; // the first profile of pixel shaders that has it
};
constexpr std::array<Feature, 6> Features = {{{"gl_FragCoord", "VPOS", 3},
                                              {"gl_FrontFacing", "VFACE", 3},
                                              {"textureLod", "tex2Dlod", 3},
                                              {"textureGrad", "tex2Dgrad", 3},
                                              {"dFdx", "ddx", 3},
                                              {"dFdy", "ddy", 3}}};

// Render states that the device follows; it takes the others and does nothing.
constexpr std::array RenderStates = {
    D3DRS_ZENABLE,  D3DRS_FILLMODE,         D3DRS_ZWRITEENABLE, D3DRS_ALPHATESTENABLE,
    D3DRS_SRCBLEND, D3DRS_DESTBLEND,        D3DRS_CULLMODE,     D3DRS_ZFUNC,
    D3DRS_ALPHAREF, D3DRS_ALPHAFUNC,        D3DRS_LIGHTING,     D3DRS_ALPHABLENDENABLE,
    D3DRS_AMBIENT,  D3DRS_COLORWRITEENABLE, D3DRS_BLENDOP,      D3DRS_BLENDFACTOR};
constexpr std::array StageStates = {D3DTSS_COLOROP,
                                    D3DTSS_COLORARG1,
                                    D3DTSS_COLORARG2,
                                    D3DTSS_ALPHAOP,
                                    D3DTSS_ALPHAARG1,
                                    D3DTSS_ALPHAARG2,
                                    D3DTSS_TEXTURETRANSFORMFLAGS};
constexpr std::array SamplerStates = {D3DSAMP_ADDRESSU,  D3DSAMP_ADDRESSV,  D3DSAMP_BORDERCOLOR,
                                      D3DSAMP_MAGFILTER, D3DSAMP_MINFILTER, D3DSAMP_MIPFILTER};

template <typename List>
bool Holds(const List& list, DWORD number) {
    return std::any_of(list.begin(), list.end(), [&](auto entry) { return entry == number; });
}

bool IsFollowed(const StateInfo& info) {
    switch (info.kind) {
    case StateKind::Render:
        return Holds(RenderStates, info.number);
    case StateKind::Stage:
        return Holds(StageStates, info.number);
    case StateKind::Sampler:
        return Holds(SamplerStates, info.number);
    case StateKind::Light:
    case StateKind::Material:
    case StateKind::ShaderConstant:
    case StateKind::Other:
        return false;
    default:
        return true;
    }
}

} // namespace

std::string ProfileOf(const ShaderCode& code) {
    const Profile profile = Of(code);
    return fmt::format("{}_{}_{}", profile.isPixel ? "ps" : "vs", profile.major, profile.minor);
}

std::string SemanticOf(const ShaderVariable& variable) {
    constexpr std::array Names = {
        "POSITION", "BLENDWEIGHT", "BLENDINDICES", "NORMAL", "PSIZE", "TEXCOORD", "TANGENT",
        "BINORMAL", "TESSFACTOR",  "POSITIONT",    "COLOR",  "FOG",   "DEPTH",    "SAMPLE"};
    const char* name = variable.usage < Names.size() ? Names[variable.usage] : "?";
    return fmt::format("{}{}", name, variable.index);
}

std::vector<std::string> Limits(const ShaderCode& code,
                                const std::vector<ShaderConstant>& constants) {
    const Profile profile = Of(code);
    const std::string name = ProfileOf(code);
    std::vector<std::string> found;
    const unsigned int registers = RegistersOf(code, constants);
    if (registers > MostRegisters(profile))
        found.push_back(fmt::format("{} registers of constants; Direct3D 9 has {} in {}", registers,
                                    MostRegisters(profile), name));
    if (code.samplers.size() > MostSamplers(profile))
        found.push_back(fmt::format("{} samplers; Direct3D 9 has {} in {}", code.samplers.size(),
                                    MostSamplers(profile), name));
    for (const ShaderSampler& sampler : code.samplers) {
        if (sampler.index >= MaxTextures)
            found.push_back(
                fmt::format("sampler s{}; the device has {}", sampler.index, MaxTextures));
        if (sampler.kind != SamplerKind::Flat)
            found.push_back(fmt::format("sampler s{} is of a cube or a volume, and there are no "
                                        "such textures: it reads black",
                                        sampler.index));
    }
    for (const Feature& feature : Features)
        if (profile.isPixel && !profile.Has(feature.least) && Mentions(code.body, feature.word))
            found.push_back(fmt::format("{}; Direct3D 9 has it from ps_{}_0 on, not in {}",
                                        feature.name, feature.least, name));
    for (const ShaderVariable& input : code.inputs)
        if (profile.isPixel && !profile.Has(3) && input.usage != D3DDECLUSAGE_COLOR &&
            (input.usage != D3DDECLUSAGE_TEXCOORD || input.index > 7))
            found.push_back(fmt::format("reads {}; in {} Direct3D 9 has COLOR0, COLOR1 and "
                                        "TEXCOORD0 to TEXCOORD7",
                                        SemanticOf(input), name));
    return found;
}

std::vector<std::string> Mismatches(const ShaderCode& vertex, const ShaderCode& pixel) {
    std::vector<std::string> found;
    for (const ShaderVariable& input : pixel.inputs) {
        const auto isSame = [&](const ShaderVariable& output) {
            return output.usage == input.usage && output.index == input.index;
        };
        if (std::none_of(vertex.outputs.begin(), vertex.outputs.end(), isSame))
            found.push_back(fmt::format("the pixel shader reads {}, which the vertex shader does "
                                        "not write: it is 0 here",
                                        SemanticOf(input)));
    }
    return found;
}

std::string Refusal(const SourceState& state) {
    const StateInfo* info = FindState(state.name);
    if (!info || IsFollowed(*info))
        return {};
    return fmt::format("{} has no effect here", info->name);
}

} // namespace Shader
