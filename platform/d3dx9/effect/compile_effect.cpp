// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/compile_effect.hpp"

#include "platform/d3dx9/effect/block_layout.hpp"
#include "platform/d3dx9/effect/hlsl_rewrite.hpp"
#include "platform/d3dx9/effect/large_stack.hpp"
#include "platform/d3dx9/effect/shader_compiler.hpp"
#include "platform/d3dx9/effect/state_table.hpp"

#include <algorithm>
#include <map>
#include <sstream>

namespace VornPlatform {

namespace {

// Vertex shaders read their textures from the device's last samplers, out of the way of the pixel
// shader's.
constexpr UINT FirstVertexSampler = 12, SamplerCount = 16;

std::string ElementName(const std::string& name, const std::vector<UINT>& dimensions,
                        UINT element) {
    return dimensions.empty() ? name : name + "[" + std::to_string(element) + "]";
}

// The device's index of each sampler that a shader reads: those that the file names, then the
// others in the order of their declaration.
std::vector<UINT> AssignSamplers(const std::vector<const HlslSampler*>& used,
                                 const CompileCall& call, ShaderStage stage) {
    std::vector<UINT> indices(used.size(), SamplerCount);
    std::vector<bool> taken(SamplerCount);
    const UINT first = stage == ShaderStage::Vertex ? FirstVertexSampler : 0;
    const auto take = [&](std::size_t at, UINT index) {
        if (index >= SamplerCount)
            throw EffectError(call.place, "'" + used[at]->parameter->name +
                                              "' is more than the samplers of a shader");
        indices[at] = index;
        taken[index] = true;
    };
    for (std::size_t i = 0; i < used.size(); ++i)
        if (used[i]->parameter->registerKind == 's')
            take(i, first + std::min(used[i]->parameter->registerIndex, SamplerCount) +
                        used[i]->element);
    for (std::size_t i = 0; i < used.size(); ++i)
        if (indices[i] == SamplerCount) {
            UINT free = first;
            while (free < SamplerCount && taken[free])
                ++free;
            take(i, free);
        }
    return indices;
}

class EffectWriter {
public:
    explicit EffectWriter(const EffectSource& source) : source_(source), text_(source) {
        RewriteHlsl(text_, false);
        reflection_ = Reflect(source, text_.types, false);
        code_.parameters = reflection_.parameters;
        code_.start = std::move(reflection_.start);
    }

    EffectCode write() {
        readSamplers();
        std::size_t at = 0;
        for (const SourceParameter& parameter : source_.parameters)
            if (!parameter.isStatic) {
                ShaderConstant& constant = code_.parameters[at++];
                if (parameter.initial && parameter.initial->compile)
                    constant.shader = shaderOf(*parameter.initial->compile);
            }
        for (const SourceTechnique& technique : source_.techniques)
            code_.techniques.push_back(readTechnique(technique));
        code_.warnings = source_.warnings + warnings_;
        code_.files = source_.files;
        return std::move(code_);
    }

private:
    int parameterOf(const std::string& name) const {
        for (std::size_t i = 0; i < code_.parameters.size(); ++i)
            if (code_.parameters[i].name == name)
                return static_cast<int>(i);
        return -1;
    }
    int samplerOf(const std::string& name) const {
        for (std::size_t i = 0; i < code_.samplers.size(); ++i)
            if (code_.samplers[i].name == name)
                return static_cast<int>(i);
        return -1;
    }

    void readSamplers() {
        for (const HlslSampler& sampler : text_.samplers) {
            const SourceParameter& parameter = *sampler.parameter;
            if (const int own = parameterOf(parameter.name); own >= 0 && sampler.element == 0)
                code_.parameters[static_cast<std::size_t>(own)].sampler =
                    static_cast<int>(code_.samplers.size());
            EffectSampler made;
            made.name = ElementName(parameter.name, parameter.dimensions, sampler.element);
            for (const SourceState& state : parameter.states)
                if (parameter.dimensions.empty() || !state.index ||
                    state.index->number == sampler.element)
                    addState(made.states, state, true);
            code_.samplers.push_back(std::move(made));
        }
    }

    UINT indexOf(const SourceState& state) const {
        if (!state.index)
            return 0;
        if (state.index->kind != Expression::Kind::Number || !(state.index->number >= 0) ||
            state.index->number > 255)
            throw EffectError(state.place,
                              "the index of '" + state.name + "' must be a constant number");
        return static_cast<UINT>(state.index->number);
    }

    int objectOf(const SourceState& state) const {
        const auto* reference = std::get_if<ObjectReference>(&state.value);
        if (!reference)
            return -1;
        const int parameter = parameterOf(reference->name);
        if (parameter < 0)
            throw EffectError(state.place, "'" + reference->name + "' is no object of this file");
        return parameter;
    }

    void addState(std::vector<EffectState>& states, const SourceState& state, bool inSampler) {
        const StateInfo* info = FindState(state.name);
        if (!info)
            throw EffectError(state.place, "there is no state '" + state.name + "'");
        EffectState made;
        made.number = info->number;
        made.index = inSampler ? 0 : indexOf(state);
        made.isFloat = info->isFloat;
        if (const auto* value = std::get_if<Expression>(&state.value))
            made.value = *value;
        switch (info->kind) {
        case StateKind::Render:
            made.kind = EffectState::Kind::Render;
            break;
        case StateKind::Stage:
            made.kind = EffectState::Kind::Stage;
            break;
        case StateKind::Sampler:
            made.kind = EffectState::Kind::Sampler;
            break;
        case StateKind::Texture:
            made.kind = EffectState::Kind::Texture;
            made.object = objectOf(state);
            break;
        case StateKind::SamplerObject:
            addSampler(states, state, made.index);
            return;
        case StateKind::Transform:
            made.kind = EffectState::Kind::Transform;
            made.number += made.index;
            break;
        case StateKind::LightEnable:
            made.kind = EffectState::Kind::LightEnable;
            break;
        default:
            made.kind = EffectState::Kind::Ignored;
            warnings_ += state.place.file + "(" + std::to_string(state.place.line) +
                         "): warning: '" + state.name + "' has no effect\n";
        }
        states.push_back(std::move(made));
    }

    // `Sampler[1] = <s>`: all that the sampler says, on that index.
    void addSampler(std::vector<EffectState>& states, const SourceState& state, UINT index) const {
        const auto* reference = std::get_if<ObjectReference>(&state.value);
        if (!reference)
            return;
        const int sampler = samplerOf(reference->name);
        if (sampler < 0)
            throw EffectError(state.place, "'" + reference->name + "' is no sampler of this file");
        for (EffectState made : code_.samplers[static_cast<std::size_t>(sampler)].states) {
            made.index = index;
            states.push_back(std::move(made));
        }
    }

    EffectTechnique readTechnique(const SourceTechnique& source) {
        EffectTechnique technique;
        technique.name = source.name;
        for (const SourceParameter& annotation : source.annotations)
            technique.annotations.push_back(ReflectAnnotation(annotation));
        for (const SourcePass& pass : source.passes) {
            EffectPass made;
            made.name = pass.name;
            for (const SourceParameter& annotation : pass.annotations)
                made.annotations.push_back(ReflectAnnotation(annotation));
            for (const SourceState& state : pass.states) {
                const StateInfo* info = FindState(state.name);
                if (info && info->kind == StateKind::VertexShader) {
                    readShader(state, made.vertexShader, made.vertexShaderParameter);
                    made.setsVertexShader = true;
                } else if (info && info->kind == StateKind::PixelShader) {
                    readShader(state, made.pixelShader, made.pixelShaderParameter);
                    made.setsPixelShader = true;
                } else
                    addState(made.states, state, false);
            }
            technique.passes.push_back(std::move(made));
        }
        return technique;
    }

    void readShader(const SourceState& state, int& shader, int& parameter) {
        shader = parameter = -1;
        if (const auto* call = std::get_if<CompileCall>(&state.value)) {
            const bool isVertex = EqualBlindToCase(state.name, "VertexShader");
            const std::optional<Profile> profile = ReadProfile(call->profile);
            if (profile && (profile->stage == ShaderStage::Vertex) != isVertex)
                throw EffectError(call->place,
                                  "'" + call->profile + "' is not for a " + state.name);
            shader = shaderOf(*call);
        } else
            parameter = objectOf(state);
    }

    int shaderOf(const CompileCall& call) {
        std::string key = LowerCase(call.profile) + " " + call.entry;
        for (const std::string& argument : call.arguments)
            key += "\n" + argument;
        const auto [known, isNew] = made_.emplace(key, static_cast<int>(code_.shaders.size()));
        if (isNew)
            code_.shaders.push_back(compile(call));
        return known->second;
    }

    EffectShader compile(const CompileCall& call) {
        GlslShader glsl = CompileStage(text_, call, reflection_, warnings_);
        EffectShader shader;
        shader.place = call.place;
        for (const UsedSampler& used : UseSamplers(text_, call, glsl))
            shader.samplers.push_back(
                {used.index, samplerOf(ElementName(used.sampler->parameter->name,
                                                   used.sampler->parameter->dimensions,
                                                   used.sampler->element))});
        shader.code = std::make_shared<const ShaderCode>(std::move(glsl.code));
        return shader;
    }

    const EffectSource& source_;
    ShaderText text_;
    EffectCode code_;
    Reflection reflection_;
    std::string warnings_;
    std::map<std::string, int> made_;
};

bool HasRows(const ShaderConstant& constant) {
    return constant.rowMajor ||
           std::any_of(constant.members.begin(), constant.members.end(), HasRows);
}

// The members are in the order of the reflection, one a line. GLSL takes rows, which are its
// columns, for granted; where others stand beside them they say so.
void NameOrders(ShaderCode& code, const Reflection& reflection) {
    code.blocksInArray = true;
    std::istringstream lines(code.members);
    std::string members, line;
    for (const UINT parameter : reflection.blockMembers) {
        if (!std::getline(lines, line))
            break;
        if (HasRows(reflection.parameters[parameter])) {
            line.insert(line.find_first_not_of(' '), "layout(column_major) ");
            code.blocksInArray = false;
        }
        members += line + "\n";
    }
    code.members = members;
}

} // namespace

GlslShader CompileStage(const ShaderText& text, const CompileCall& call,
                        const Reflection& reflection, std::string& warnings) {
    GlslShader glsl;
    CallOnLargeStack([&] {
        const EntryText entry = WriteEntry(text, call);
        std::vector<std::uint32_t> spirv = CompileToSpirv(entry, text.source, call.place, warnings);
        LayOutBlock(spirv, reflection);
        glsl = WriteGlsl(std::move(spirv), entry, call.place);
    });
    for (const GlslShader::Member& member : glsl.members)
        if (member.index >= reflection.blockMembers.size() ||
            member.offset != reflection.parameters[reflection.blockMembers[member.index]].offset)
            throw EffectError(call.place, "the parameters lie differently than expected");
    NameOrders(glsl.code, reflection);
    return glsl;
}

std::vector<UsedSampler> UseSamplers(const ShaderText& text, const CompileCall& call,
                                     GlslShader& glsl) {
    std::vector<const HlslSampler*> used;
    std::vector<ShaderSampler> samplers;
    for (const HlslSampler& sampler : text.samplers)
        for (std::size_t i = 0; i < glsl.samplers.size(); ++i)
            if (glsl.samplers[i] == sampler.name) {
                used.push_back(&sampler);
                samplers.push_back(glsl.code.samplers[i]);
            }
    const std::vector<UINT> indices = AssignSamplers(used, call, glsl.code.stage);
    std::vector<UsedSampler> uses;
    for (std::size_t i = 0; i < used.size(); ++i) {
        samplers[i].index = indices[i];
        uses.push_back({indices[i], used[i]});
    }
    glsl.code.samplers = samplers;
    return uses;
}

EffectCode CompileEffectSource(const EffectSource& source) {
    return EffectWriter(source).write();
}

EffectCode CompileEffectText(const std::string& path, std::string_view text, const Macros& macros,
                             const IncludeReader& include) {
    return CompileEffectSource(ReadEffectSource(path, text, macros, include));
}

} // namespace VornPlatform
