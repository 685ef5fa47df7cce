// SPDX-License-Identifier: MIT
#include "tools/shader.hpp"

#include "tools/shader/describe.hpp"
#include "tools/shader/limits.hpp"

#include <fmt/format.h>

#include <cstdio>
#include <set>
#include <system_error>

namespace Shader {
namespace {

using namespace VornPlatform;

Macros MacrosOf(const std::vector<std::string>& defines) {
    Macros macros;
    for (const std::string& define : defines) {
        const std::size_t equals = define.find('=');
        macros.emplace_back(define.substr(0, equals),
                            equals == std::string::npos ? "1" : define.substr(equals + 1));
    }
    return macros;
}

/// Each line once: what two passes share is said once.
class Warnings {
public:
    void Add(const std::string& place, const std::string& text) {
        if (mSaid.insert(place + text).second)
            fmt::print(stderr, "{}: warning: {}\n", place, text);
    }

private:
    std::set<std::string> mSaid;
};

std::string PlaceOf(const SourcePlace& place) {
    return fmt::format("{}({})", place.file, place.line);
}

const ShaderCode* ShaderOf(const EffectCode& code, int shader, int parameter) {
    if (parameter >= 0)
        shader = code.parameters[static_cast<std::size_t>(parameter)].shader;
    return shader < 0 ? nullptr : code.shaders[static_cast<std::size_t>(shader)].code.get();
}

void WarnOfPass(const EffectCode& code, const EffectPass& pass, const SourcePass& source,
                Warnings& warnings) {
    const ShaderCode* vertex = ShaderOf(code, pass.vertexShader, pass.vertexShaderParameter);
    const ShaderCode* pixel = ShaderOf(code, pass.pixelShader, pass.pixelShaderParameter);
    for (const ShaderCode* shader : {vertex, pixel})
        if (shader)
            for (const std::string& limit : Limits(*shader, code.parameters))
                warnings.Add(PlaceOf(source.place), limit);
    if (vertex && pixel)
        for (const std::string& mismatch : Mismatches(*vertex, *pixel))
            warnings.Add(PlaceOf(source.place), mismatch);
    for (const SourceState& state : source.states)
        if (const std::string refusal = Refusal(state); !refusal.empty())
            warnings.Add(PlaceOf(state.place), refusal);
}

void Warn(const EffectCode& code, const EffectSource& source) {
    Warnings warnings;
    for (const SourceParameter& parameter : source.parameters)
        for (const SourceState& state : parameter.states)
            if (const std::string refusal = Refusal(state); !refusal.empty())
                warnings.Add(PlaceOf(state.place), refusal);
    for (std::size_t i = 0; i < code.techniques.size() && i < source.techniques.size(); ++i) {
        const auto& passes = code.techniques[i].passes;
        const auto& sources = source.techniques[i].passes;
        for (std::size_t j = 0; j < passes.size() && j < sources.size(); ++j)
            WarnOfPass(code, passes[j], sources[j], warnings);
    }
}

void RunEffect(const Options& options, const Macros& macros) {
    const auto code = CompileEffect(options.file, macros, FileIncludes());
    // Once more for the names and lines, which the result has not.
    const EffectSource source =
        ReadEffectSource(options.file, code->files.at(0).second, macros, FileIncludes());
    fmt::print(stderr, "{}", code->warnings);
    Warn(*code, source);
    fmt::print("{}", Describe(*code, source));
}

void RunShader(const Options& options, const Macros& macros) {
    const auto shader =
        CompileShader(options.file, macros, FileIncludes(), options.entry, options.profile);
    fmt::print(stderr, "{}", shader->warnings);
    Warnings warnings;
    for (const std::string& limit : Limits(*shader->code, shader->constants))
        warnings.Add(options.file, limit);
    fmt::print("{}", Describe(*shader));
}

} // namespace

int Run(const Options& options) {
    try {
        const Macros macros = MacrosOf(options.defines);
        if (options.entry.empty())
            RunEffect(options, macros);
        else
            RunShader(options, macros);
        return 0;
    } catch (const EffectError& error) {
        const std::string text = error.what();
        fmt::print(stderr, "{}{}", text, text.empty() || text.back() != '\n' ? "\n" : "");
    } catch (const std::system_error& error) {
        fmt::print(stderr, "vorn: cannot read {}: {}\n", options.file, error.code().message());
    }
    return 1;
}

} // namespace Shader
