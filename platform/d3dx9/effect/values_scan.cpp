// SPDX-License-Identifier: MIT
//
// Start values of an effect file.
#include "platform/d3dx9/effect/effect_scanner.hpp"

#include <algorithm>

namespace VornPlatform {

// The cursor stands behind the =, or at the { of a sampler that has none.
void EffectScanner::initialOf(SourceParameter& parameter) {
    const auto object = FindObjectType(parameter.type);
    const bool equals = tokens_[cursor_.at() - 1].is("=");
    if (object == ObjectType::Sampler)
        samplerOf(parameter);
    else if (!equals)
        cursor_.failExpected("'=' or ';' behind " + parameter.name);
    else if (object == ObjectType::String)
        stringOf(parameter);
    else if (object == ObjectType::Shader)
        shaderOf(parameter);
    else if (object == ObjectType::Texture) {
        if (!takeNull())
            cursor_.failExpected("NULL as the start value of a texture");
    } else if (parameter.isStatic)
        staticNumbersOf(parameter);
    else
        numbersOf(parameter, false);
}

Value EffectScanner::constant(bool inAnnotation) {
    const Token token = cursor_.peek();
    Value value =
        ExpressionReader(cursor_, declarations_, {.greaterEnds = inAnnotation, .anyConstant = true})
            .read();
    if (!value.isConstant)
        cursor_.fail(token, "a start value has to be constant");
    return value;
}

// Nested or flat, the numbers come one behind the other.
void EffectScanner::braces(std::vector<double>& numbers) {
    cursor_.expect("{", "of the values");
    while (!cursor_.takeIf("}")) {
        if (cursor_.is("{"))
            braces(numbers);
        else {
            const Value value = constant(false);
            numbers.insert(numbers.end(), value.numbers.begin(), value.numbers.end());
        }
        if (!cursor_.is("}"))
            cursor_.expect(",", "between the values");
    }
}

void EffectScanner::numbersOf(SourceParameter& parameter, bool inAnnotation) {
    const Token start = cursor_.peek();
    Initial initial;
    if (cursor_.is("{"))
        braces(initial.numbers);
    else {
        initial.numbers = constant(inAnnotation).numbers;
        const std::uint64_t total = declarations_.components(parameter.type, parameter.dimensions);
        initial.fills = initial.numbers.size() == 1 && total > 1;
        if (total > 0 && total < initial.numbers.size())
            initial.numbers.resize(total); // as an assignment cuts a vector
    }
    fitNumbers(parameter, initial, start);
    parameter.initial = std::move(initial);
}

void EffectScanner::fitNumbers(SourceParameter& parameter, Initial& initial, const Token& start) {
    std::vector<UINT>& dimensions = parameter.dimensions;
    if (!dimensions.empty() && dimensions[0] == 0) {
        const std::uint64_t element = declarations_.components(
            parameter.type, std::vector<UINT>(dimensions.begin() + 1, dimensions.end()));
        const std::uint64_t size =
            element == 0 ? 0 : (initial.numbers.size() + element - 1) / element;
        if (size == 0 || size > MaxParameterNumbers)
            cursor_.fail(start, "the size of " + parameter.name + " is missing");
        dimensions[0] = static_cast<UINT>(size);
        edits_.insert(unsizedAt_, std::to_string(size));
    }
    const std::uint64_t total = declarations_.components(parameter.type, dimensions);
    const std::size_t found = initial.numbers.size();
    if (total > 0 && found > total)
        cursor_.fail(start, "expected " + std::to_string(total) + " numbers for " + parameter.name +
                                ", found " + std::to_string(found));
    if (found < total && !initial.fills)
        warn(start, "expected " + std::to_string(total) + " numbers for " + parameter.name +
                        ", found " + std::to_string(found) + ": the others are 0");
    declarations_.convert(initial.numbers, parameter.type, dimensions);
}

// The text keeps the value of a static variable, so it may be anything that HLSL can work out.
void EffectScanner::staticNumbersOf(SourceParameter& parameter) {
    const std::size_t start = cursor_.at();
    const std::vector<UINT> dimensions = parameter.dimensions;
    try {
        numbersOf(parameter, false);
        if (cursor_.is(",") || cursor_.is(";"))
            return;
    } catch (const EffectError&) {
        // Then it is not known here.
    }
    parameter.initial.reset();
    parameter.dimensions = dimensions;
    cursor_.moveTo(start);
    skipTo(",");
}

// Texts side by side are one. Of several in braces the first counts.
void EffectScanner::stringOf(SourceParameter& parameter) {
    const bool isList = cursor_.takeIf("{"), inBrackets = !isList && cursor_.takeIf("(");
    if (cursor_.peek().kind != TokenKind::String)
        cursor_.failExpected("a text in \" \" for " + parameter.name);
    parameter.initial.emplace();
    while (cursor_.peek().kind == TokenKind::String)
        parameter.initial->text += StringValue(cursor_.take().text);
    if (inBrackets)
        cursor_.expect(")", "behind the text");
    while (isList && (cursor_.is(",") || cursor_.peek().kind == TokenKind::String))
        cursor_.take();
    if (isList)
        cursor_.expect("}", "behind the texts");
}

void EffectScanner::shaderOf(SourceParameter& parameter) {
    if (takeNull())
        return;
    if (cursor_.peek().isWord("asm"))
        failAssembly();
    if (!cursor_.is("{")) {
        parameter.initial.emplace().compile = compileCall();
        return;
    }
    std::vector<CompileCall>& calls = shaderArrays_[parameter.name];
    cursor_.take();
    while (!cursor_.takeIf("}")) {
        if (cursor_.peek().isWord("asm"))
            failAssembly();
        calls.push_back(compileCall());
        if (!cursor_.is("}"))
            cursor_.expect(",", "between the shaders");
    }
}

void EffectScanner::samplerOf(SourceParameter& parameter) {
    const bool isArray = !parameter.dimensions.empty() && cursor_.is("{");
    if (!isArray) {
        samplerStates(parameter.states);
        return;
    }
    cursor_.take();
    for (UINT element = 0; !cursor_.takeIf("}"); ++element) {
        States states;
        samplerStates(states);
        for (SourceState& state : states) {
            state.index.emplace().number = element;
            parameter.states.push_back(std::move(state));
        }
        if (!cursor_.is("}"))
            cursor_.expect(",", "between the samplers");
        if (parameter.dimensions[0] == 0 || element >= parameter.dimensions[0])
            parameter.dimensions[0] = element + 1;
    }
}

} // namespace VornPlatform
