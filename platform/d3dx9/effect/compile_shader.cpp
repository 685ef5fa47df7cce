// SPDX-License-Identifier: MIT
//
// Shaders by themselves: constants are registers of the device.
#include "platform/d3dx9/effect/compile_effect.hpp"
#include "platform/d3dx9/effect/hlsl_rewrite.hpp"

#include <algorithm>
#include <set>

namespace VornPlatform {

namespace {

constexpr UINT RegisterLimit = 8192;

// Those that the file names first, the others where there is room, in the order of their
// declaration.
void AssignRegisters(std::vector<ShaderConstant>& constants,
                     const std::vector<const SourceParameter*>& sources, const CompileCall& call) {
    std::vector<bool> taken(RegisterLimit);
    const auto isFree = [&](UINT first, UINT count) {
        for (UINT i = 0; i < count; ++i)
            if (taken[first + i])
                return false;
        return true;
    };
    const auto take = [&](ShaderConstant& constant, UINT first) {
        constant.registerIndex = first;
        std::fill_n(taken.begin() + first, constant.registerCount, true);
    };
    const auto fail = [&](const ShaderConstant& constant) {
        throw EffectError(call.place, "'" + constant.name + "' does not fit into the registers");
    };
    std::vector<bool> isDone(constants.size());
    for (std::size_t i = 0; i < constants.size(); ++i) {
        constants[i].registerCount = RegisterCount(constants[i]);
        if (constants[i].registerCount > RegisterLimit)
            fail(constants[i]);
        if (sources[i]->registerKind != 'c')
            continue;
        if (sources[i]->registerIndex > RegisterLimit - constants[i].registerCount)
            fail(constants[i]);
        take(constants[i], sources[i]->registerIndex);
        isDone[i] = true;
    }
    for (std::size_t i = 0; i < constants.size(); ++i) {
        UINT first = 0;
        while (!isDone[i] && !isFree(first, constants[i].registerCount))
            if (++first > RegisterLimit - constants[i].registerCount)
                fail(constants[i]);
        if (!isDone[i])
            take(constants[i], first);
    }
}

UINT NumberCount(const ShaderConstant& constant) {
    UINT count = constant.rows * constant.columns;
    if (!constant.members.empty()) {
        count = 0;
        for (const ShaderConstant& member : constant.members)
            count += NumberCount(member);
    }
    return count * std::max(1u, constant.elements);
}

bool MixesOrders(const ShaderConstant& constant, bool& row, bool& column) {
    if (constant.valueClass == ValueClass::Matrix)
        (constant.rowMajor ? row : column) = true;
    for (const ShaderConstant& member : constant.members)
        if (MixesOrders(member, row, column))
            return true;
    return row && column;
}

} // namespace

CompiledShader CompileShaderSource(const EffectSource& source, const std::string& entry,
                                   const std::string& profile) {
    ShaderText text(source);
    RewriteHlsl(text, true);
    Reflection reflection = Reflect(source, text.types, true);
    CompiledShader shader;
    CompileCall call{profile, entry, {}, PlaceOf(source, 0)};
    call.place.line = 1;
    if (!source.files.empty())
        call.place.file = source.files[0].first;
    GlslShader glsl = CompileStage(text, call, reflection, shader.warnings);
    shader.warnings = source.warnings + shader.warnings;

    std::vector<const SourceParameter*> sources;
    std::size_t at = 0;
    std::vector<const SourceParameter*> parameters(reflection.parameters.size());
    for (const SourceParameter& parameter : source.parameters)
        if (!parameter.isStatic)
            parameters[at++] = &parameter;
    for (const GlslShader::Member& member : glsl.members) {
        const UINT index = reflection.blockMembers[member.index];
        ShaderConstant& constant = reflection.parameters[index];
        bool row = false, column = false;
        if (constant.valueClass == ValueClass::Struct && MixesOrders(constant, row, column))
            throw EffectError(parameters[index]->place,
                              "'" + constant.name + "' has matrices by rows and by columns");
        if (!member.isUsed)
            continue;
        if (const auto& initial = parameters[index]->initial) {
            constant.numbers = initial->numbers;
            if (initial->fills && !initial->numbers.empty())
                constant.numbers.assign(NumberCount(constant), initial->numbers[0]);
        }
        shader.constants.push_back(std::move(constant));
        sources.push_back(parameters[index]);
    }
    AssignRegisters(shader.constants, sources, call);
    for (const ShaderConstant& constant : shader.constants)
        AppendRegisters(constant, constant.registerIndex, glsl.code.registers);

    for (const UsedSampler& used : UseSamplers(text, call, glsl)) {
        ShaderConstant constant;
        constant.name = used.sampler->parameter->name;
        constant.valueClass = ValueClass::Object;
        constant.type = ValueType::Sampler;
        constant.registerIndex = used.index;
        constant.registerCount = 1;
        if (used.sampler->element == 0 || shader.constants.empty() ||
            shader.constants.back().name != constant.name)
            shader.constants.push_back(std::move(constant));
        else
            ++shader.constants.back().registerCount;
    }
    shader.code = std::make_shared<const ShaderCode>(std::move(glsl.code));
    return shader;
}

CompiledShader CompileShaderText(const std::string& path, std::string_view text,
                                 const Macros& macros, const IncludeReader& include,
                                 const std::string& entry, const std::string& profile) {
    return CompileShaderSource(ReadEffectSource(path, text, macros, include), entry, profile);
}

} // namespace VornPlatform
