// SPDX-License-Identifier: MIT
#include "tools/shader/describe.hpp"

#include "tools/shader/limits.hpp"

#include "platform/d3dx9/effect/number_bits.hpp"
#include "platform/d3dx9/effect/places.hpp"

#include <fmt/format.h>

#include <algorithm>

namespace Shader {
namespace {

using namespace VornPlatform;

constexpr const char* Indent = "    ";
constexpr UINT MostNumbers = 16; // of a start value that is shown

std::string TypeOf(const ShaderConstant& c) {
    constexpr const char* Names[] = {"struct",  "bool",    "int",          "float",      "string",
                                     "texture", "sampler", "vertexshader", "pixelshader"};
    std::string type = Names[static_cast<std::size_t>(c.type)];
    if (c.valueClass == ValueClass::Vector)
        type += std::to_string(c.columns);
    else if (c.valueClass == ValueClass::Matrix)
        type = fmt::format("{}{}{}x{}", c.rowMajor ? "row_major " : "", type, c.rows, c.columns);
    return type;
}

/// Empty where all are 0.
std::string StartOf(const Places& places, int number, const std::vector<std::byte>& block) {
    std::string text;
    UINT count = 0;
    bool isZero = true;
    places.Visit(number, [&](const Place& leaf) {
        for (UINT i = 0; i < leaf.numbers; ++i) {
            const double value =
                NumberOf<double>(leaf.constant->type, LoadBits(&block[leaf.NumberOffset(i)]));
            isZero = isZero && value == 0;
            if (++count <= MostNumbers)
                text += fmt::format("{}{:g}", count > 1 ? ", " : "", value);
        }
    });
    if (isZero)
        return {};
    return " = { " + text + (count > MostNumbers ? ", ... }" : " }");
}

std::string NumbersOf(const ShaderConstant& c) {
    if (!c.text.empty() || c.type == ValueType::String)
        return " = \"" + c.text + "\"";
    std::string text;
    for (const double number : c.numbers)
        text += fmt::format("{}{:g}", text.empty() ? "" : ", ", number);
    return text.empty() ? text : " = { " + text + " }";
}

std::string Declaration(const ShaderConstant& c) {
    std::string text = TypeOf(c) + " " + c.name;
    if (c.elements > 0)
        text += fmt::format("[{}]", c.elements);
    if (!c.semantic.empty())
        text += " : " + c.semantic;
    return text;
}

void AppendMembers(std::string& text, const ShaderConstant& c, const std::string& indent) {
    for (const ShaderConstant& member : c.members) {
        text += indent + Declaration(member) + "\n";
        AppendMembers(text, member, indent + Indent);
    }
}

void AppendAnnotations(std::string& text, const std::vector<ShaderConstant>& annotations,
                       const std::string& indent) {
    for (const ShaderConstant& annotation : annotations)
        text += indent + "< " + Declaration(annotation) + NumbersOf(annotation) + " >\n";
}

std::string Parameters(const EffectCode& code) {
    const Places places(code.parameters);
    std::string text;
    for (std::size_t i = 0; i < code.parameters.size(); ++i) {
        const ShaderConstant& c = code.parameters[i];
        text += Indent + Declaration(c);
        text += c.valueClass == ValueClass::Object
                    ? NumbersOf(c)
                    : StartOf(places, static_cast<int>(i), code.start);
        text += "\n";
        AppendMembers(text, c, std::string(Indent) + Indent);
        AppendAnnotations(text, c.annotations, std::string(Indent) + Indent);
    }
    return text;
}

std::string TextOf(const Expression& e) {
    using Kind = Expression::Kind;
    const auto operand = [&](std::size_t i) {
        return i < e.operands.size() ? TextOf(e.operands[i]) : std::string("?");
    };
    switch (e.kind) {
    case Kind::Number:
        return fmt::format("{:g}", e.number);
    case Kind::Parameter:
        return e.name;
    case Kind::Unary:
        return e.op + operand(0);
    case Kind::Binary:
        return "(" + operand(0) + " " + e.op + " " + operand(1) + ")";
    case Kind::Choice:
        return "(" + operand(0) + " ? " + operand(1) + " : " + operand(2) + ")";
    case Kind::Component:
        return operand(0) + "." + std::string(1, "xyzw"[static_cast<int>(e.number) & 3]);
    case Kind::Element:
        return operand(0) + "[" + operand(1) + "]";
    case Kind::List: {
        std::string text;
        for (std::size_t i = 0; i < e.operands.size(); ++i)
            text += (i ? ", " : "") + operand(i);
        return "{ " + text + " }";
    }
    }
    return "?";
}

std::string TextOf(const StateValue& value) {
    if (const auto* expression = std::get_if<Expression>(&value))
        return TextOf(*expression);
    if (const auto* reference = std::get_if<ObjectReference>(&value))
        return "<" + reference->name + ">";
    if (const auto* call = std::get_if<CompileCall>(&value)) {
        std::string arguments;
        for (const std::string& argument : call->arguments)
            arguments += (arguments.empty() ? "" : ", ") + argument;
        return fmt::format("compile {} {}({})", call->profile, call->entry, arguments);
    }
    return "NULL";
}

std::string TextOf(const SourceState& state) {
    return state.name + (state.index ? "[" + TextOf(*state.index) + "]" : "") + " = " +
           TextOf(state.value);
}

void AppendPass(std::string& text, const EffectCode& code, const EffectPass& pass,
                const SourcePass* source) {
    text += fmt::format("{}pass {}\n", Indent, pass.name);
    const std::string indent = std::string(Indent) + Indent;
    AppendAnnotations(text, pass.annotations, indent);
    if (source)
        for (const SourceState& state : source->states)
            text += indent + TextOf(state) + "\n";
    for (const int shader : {pass.vertexShader, pass.pixelShader})
        if (shader >= 0)
            for (const EffectShader::Use& use :
                 code.shaders[static_cast<std::size_t>(shader)].samplers)
                if (use.sampler >= 0)
                    text += fmt::format("{}sampler {}: {}\n", indent, use.index,
                                        code.samplers[static_cast<std::size_t>(use.sampler)].name);
}

std::string Techniques(const EffectCode& code, const EffectSource& source) {
    std::string text;
    for (std::size_t i = 0; i < code.techniques.size(); ++i) {
        const EffectTechnique& technique = code.techniques[i];
        text += "technique " + technique.name + "\n";
        AppendAnnotations(text, technique.annotations, Indent);
        const SourceTechnique* from =
            i < source.techniques.size() ? &source.techniques[i] : nullptr;
        for (std::size_t j = 0; j < technique.passes.size(); ++j)
            AppendPass(text, code, technique.passes[j],
                       from && j < from->passes.size() ? &from->passes[j] : nullptr);
    }
    return text;
}

void AppendVariables(std::string& text, const char* title,
                     const std::vector<ShaderVariable>& variables) {
    text += variables.empty() ? "" : title + std::string("\n");
    for (const ShaderVariable& variable : variables)
        text += Indent + SemanticOf(variable) + "\n";
}

} // namespace

std::string Describe(const EffectCode& code, const EffectSource& source) {
    std::string text;
    if (!code.parameters.empty())
        text += "parameters\n" + Parameters(code);
    text += Techniques(code, source);
    text += fmt::format("{} parameters in {} bytes, {} techniques, {} shaders\n",
                        code.parameters.size(), code.start.size(), code.techniques.size(),
                        code.shaders.size());
    return text;
}

std::string Describe(const CompiledShader& shader) {
    std::string text = ProfileOf(*shader.code) + "\n";
    text += shader.constants.empty() ? "" : "constants\n";
    for (const ShaderConstant& c : shader.constants) {
        text += Indent + Declaration(c);
        const char kind = c.valueClass == ValueClass::Object ? 's' : 'c';
        text += fmt::format(" {}{}", kind, c.registerIndex);
        if (c.registerCount > 1)
            text += fmt::format("-{}{}", kind, c.registerIndex + c.registerCount - 1);
        text += NumbersOf(c) + "\n";
    }
    AppendVariables(text, "inputs", shader.code->inputs);
    AppendVariables(text, "outputs", shader.code->outputs);
    return text;
}

} // namespace Shader
