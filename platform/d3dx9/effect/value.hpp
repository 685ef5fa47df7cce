// SPDX-License-Identifier: MIT
//
// What an expression of an effect file comes to: numbers, as far as they are known when it is
// read, or an Expression that hangs on parameters.
#pragma once

#include "platform/d3dx9/effect/effect_source.hpp"
#include "platform/d3dx9/effect/value_type.hpp"

namespace VornPlatform {

struct Value {
    bool isConstant = true;
    bool isWhole = false;        // 1 / 2 is 0
    std::vector<double> numbers; // of a constant
    Expression expression;       // of anything else
    std::size_t nodes = 1;       // of the expression, which is bounded
    // What it is made of, as far as it is known: an array of a type.
    std::string type;
    std::vector<UINT> dimensions;
};

Value MakeConstant(std::vector<double> numbers, bool isWhole);
/// With a constant in place of an Expression: a Number, or a List of them.
Expression ToExpression(Value value);

// What is wrong raises std::invalid_argument with a text for the author.

Value ApplyUnary(const std::string& op, Value operand);
Value ApplyBinary(const std::string& op, Value left, Value right);
Value ApplyChoice(Value condition, Value yes, Value no);
/// `float3(a, 1)`, `(int)a`: a single number fills a vector.
Value ApplyConstructor(const NumericType& type, std::vector<Value> arguments);
/// `.xyz`, `._m03`, `._14`, of numbers and of parameters that are vectors or matrices.
Value ApplyComponents(Value value, std::string_view components);
/// Of an array, a matrix or a vector.
Value ApplyIndex(Value value, Value index);
/// Functions of constants: `sqrt(2)`, `normalize(float3(1, 1, 0))`.
Value ApplyFunction(std::string_view name, const std::vector<Value>& arguments);

} // namespace VornPlatform
