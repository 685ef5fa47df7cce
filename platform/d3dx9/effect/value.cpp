// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/value.hpp"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace VornPlatform {

namespace {

constexpr std::size_t MaxNodes = 1000;

void CheckNodes(std::size_t nodes) {
    if (nodes > MaxNodes)
        throw std::invalid_argument("this expression of parameters has more than " +
                                    std::to_string(MaxNodes) + " parts");
}

Value MakeNode(Expression::Kind kind, std::string op, std::vector<Value> operands) {
    Value node;
    for (const Value& operand : operands)
        node.nodes += operand.nodes;
    CheckNodes(node.nodes);
    node.isConstant = false;
    node.expression.kind = kind;
    node.expression.op = std::move(op);
    for (Value& operand : operands)
        node.expression.operands.push_back(ToExpression(std::move(operand)));
    return node;
}

Value MakeComponent(const Value& operand, std::size_t index) {
    Value node = MakeNode(Expression::Kind::Component, "", {operand});
    node.expression.number = static_cast<double>(index);
    return node;
}

// The numbers of an expression are doubles; bits are taken from those that fit.
std::int64_t Bits(double number) {
    constexpr double Limit = 4.6e18;
    return std::isnan(number) ? 0 : static_cast<std::int64_t>(std::clamp(number, -Limit, Limit));
}

double Divide(const std::string& op, double a, double b, bool whole) {
    if (whole && b == 0)
        throw std::invalid_argument("division by 0");
    if (op == "%")
        return std::fmod(a, b);
    return whole ? std::trunc(a / b) : a / b;
}

double Calculate(const std::string& op, double a, double b, bool whole) {
    if (op == "+")
        return a + b;
    if (op == "-")
        return a - b;
    if (op == "*")
        return a * b;
    if (op == "/" || op == "%")
        return Divide(op, a, b, whole);
    if (op == "<")
        return a < b;
    if (op == ">")
        return a > b;
    if (op == "<=")
        return a <= b;
    if (op == ">=")
        return a >= b;
    if (op == "==")
        return a == b;
    if (op == "!=")
        return a != b;
    if (op == "&&")
        return a != 0 && b != 0;
    if (op == "||")
        return a != 0 || b != 0;
    if (op == "&")
        return static_cast<double>(Bits(a) & Bits(b));
    if (op == "|")
        return static_cast<double>(Bits(a) | Bits(b));
    if (op == "^")
        return static_cast<double>(Bits(a) ^ Bits(b));
    if (op == "<<")
        return static_cast<double>(static_cast<std::uint32_t>(Bits(a)) << (Bits(b) & 31));
    if (op == ">>")
        return static_cast<double>(Bits(a) >> (Bits(b) & 31));
    throw std::invalid_argument("there is no operator " + op);
}

// Of two vectors the shorter one counts; a single number goes with all of the other.
template <typename Function>
std::vector<double> Combine(const std::vector<double>& a, const std::vector<double>& b,
                            Function function) {
    const std::size_t size = a.size() == 1 || b.size() == 1 ? std::max(a.size(), b.size())
                                                            : std::min(a.size(), b.size());
    std::vector<double> result(a.empty() || b.empty() ? 0 : size);
    for (std::size_t at = 0; at < result.size(); ++at)
        result[at] = function(a[a.size() == 1 ? 0 : at], b[b.size() == 1 ? 0 : at]);
    return result;
}

bool IsArithmetic(const std::string& op) {
    return op == "+" || op == "-" || op == "*" || op == "/" || op == "%";
}

[[noreturn]] void FailComponents(std::string_view text) {
    throw std::invalid_argument("there is no component ." + std::string(text));
}

// Row by row, from 0.
std::size_t MatrixComponent(std::string_view& rest, const NumericType& type,
                            std::string_view whole) {
    const bool fromZero = rest.substr(0, 2) == "_m";
    const std::size_t digits = fromZero ? 2 : 1;
    if (rest.size() < digits + 2 || rest[0] != '_')
        FailComponents(whole);
    const auto digit = [&](std::size_t at) {
        return static_cast<std::size_t>(rest[at] - (fromZero ? '0' : '1'));
    };
    const std::size_t row = digit(digits), column = digit(digits + 1);
    if (row >= type.rows || column >= type.columns)
        FailComponents(whole);
    rest.remove_prefix(digits + 2);
    return row * type.columns + column;
}

std::vector<std::size_t> ComponentIndices(std::string_view text, const NumericType& type) {
    std::vector<std::size_t> indices;
    for (std::string_view rest = text; !rest.empty();) {
        if (type.isMatrix) {
            indices.push_back(MatrixComponent(rest, type, text));
            continue;
        }
        constexpr std::string_view Names = "xyzwrgba";
        const std::size_t name = Names.find(rest[0]);
        if (name == std::string_view::npos || name % 4 >= type.columns)
            FailComponents(text);
        indices.push_back(name % 4);
        rest.remove_prefix(1);
    }
    if (indices.size() > 4)
        FailComponents(text);
    return indices;
}

std::size_t IndexWithin(const Value& index, std::size_t count) {
    const double at = index.numbers.empty() ? -1 : std::trunc(index.numbers[0]);
    if (!(at >= 0 && at < static_cast<double>(count)))
        throw std::invalid_argument("the index is not within the " + std::to_string(count) +
                                    " elements");
    return static_cast<std::size_t>(at);
}

Value Slice(const Value& value, std::size_t index, std::size_t count) {
    const std::size_t size = value.numbers.size() / count;
    const auto start = value.numbers.begin() + static_cast<std::ptrdiff_t>(index * size);
    return MakeConstant({start, start + static_cast<std::ptrdiff_t>(size)}, value.isWhole);
}

double Dot(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0;
    for (const double product : Combine(a, b, [](double x, double y) { return x * y; }))
        sum += product;
    return sum;
}

constexpr double Pi = 3.14159265358979323846;

struct Function1 {
    std::string_view name;
    double (*function)(double);
};
constexpr Function1 Functions1[] = {
    {"abs", [](double x) { return std::abs(x); }},
    {"acos", [](double x) { return std::acos(x); }},
    {"asin", [](double x) { return std::asin(x); }},
    {"atan", [](double x) { return std::atan(x); }},
    {"ceil", [](double x) { return std::ceil(x); }},
    {"cos", [](double x) { return std::cos(x); }},
    {"degrees", [](double x) { return x * 180 / Pi; }},
    {"exp", [](double x) { return std::exp(x); }},
    {"exp2", [](double x) { return std::exp2(x); }},
    {"floor", [](double x) { return std::floor(x); }},
    {"frac", [](double x) { return x - std::floor(x); }},
    {"log", [](double x) { return std::log(x); }},
    {"log2", [](double x) { return std::log2(x); }},
    {"radians", [](double x) { return x * Pi / 180; }},
    {"round", [](double x) { return std::nearbyint(x); }},
    {"rsqrt", [](double x) { return 1 / std::sqrt(x); }},
    {"saturate", [](double x) { return x > 0 ? std::min(x, 1.0) : 0; }},
    {"sign", [](double x) { return static_cast<double>((x > 0) - (x < 0)); }},
    {"sin", [](double x) { return std::sin(x); }},
    {"sqrt", [](double x) { return std::sqrt(x); }},
    {"tan", [](double x) { return std::tan(x); }},
};
struct Function2 {
    std::string_view name;
    double (*function)(double, double);
};
constexpr Function2 Functions2[] = {
    {"atan2", [](double y, double x) { return std::atan2(y, x); }},
    {"fmod", [](double x, double y) { return std::fmod(x, y); }},
    {"max", [](double x, double y) { return std::max(x, y); }},
    {"min", [](double x, double y) { return std::min(x, y); }},
    {"pow", [](double x, double y) { return std::pow(x, y); }},
};

} // namespace

Value MakeConstant(std::vector<double> numbers, bool isWhole) {
    Value value;
    value.numbers = std::move(numbers);
    value.isWhole = isWhole;
    return value;
}

Expression ToExpression(Value value) {
    if (!value.isConstant)
        return std::move(value.expression);
    Expression expression;
    if (value.numbers.size() == 1) {
        expression.number = value.numbers[0];
        return expression;
    }
    expression.kind = Expression::Kind::List;
    for (const double number : value.numbers)
        expression.operands.emplace_back().number = number;
    return expression;
}

Value ApplyUnary(const std::string& op, Value operand) {
    if (!operand.isConstant)
        return MakeNode(Expression::Kind::Unary, op, {std::move(operand)});
    for (double& number : operand.numbers)
        if (op == "-")
            number = -number;
        else if (op == "!")
            number = number == 0;
        else if (op == "~")
            number = static_cast<double>(~Bits(number));
    operand.isWhole = operand.isWhole || op == "!" || op == "~";
    return operand;
}

Value ApplyBinary(const std::string& op, Value left, Value right) {
    if (!left.isConstant || !right.isConstant)
        return MakeNode(Expression::Kind::Binary, op, {std::move(left), std::move(right)});
    const bool whole = left.isWhole && right.isWhole;
    return MakeConstant(Combine(left.numbers, right.numbers,
                                [&](double a, double b) { return Calculate(op, a, b, whole); }),
                        whole || !IsArithmetic(op));
}

Value ApplyChoice(Value condition, Value yes, Value no) {
    if (!condition.isConstant)
        return MakeNode(Expression::Kind::Choice, "?",
                        {std::move(condition), std::move(yes), std::move(no)});
    return !condition.numbers.empty() && condition.numbers[0] != 0 ? yes : no;
}

Value ApplyConstructor(const NumericType& type, std::vector<Value> arguments) {
    const std::size_t size = type.components();
    if (arguments.empty())
        throw std::invalid_argument("the constructor has no arguments");
    const bool isConstant = std::all_of(arguments.begin(), arguments.end(),
                                        [](const Value& value) { return value.isConstant; });
    if (isConstant) {
        std::vector<double> numbers;
        for (const Value& argument : arguments)
            for (const double number : argument.numbers)
                numbers.push_back(ConvertNumber(number, type.kind));
        if (numbers.size() == 1)
            numbers.resize(size, numbers[0]);
        else if (numbers.size() < size || (numbers.size() > size && arguments.size() > 1))
            throw std::invalid_argument("expected " + std::to_string(size) + " numbers, found " +
                                        std::to_string(numbers.size()));
        numbers.resize(size);
        return MakeConstant(std::move(numbers), type.kind != NumberKind::Float);
    }

    // `(int)a` is a - a % 1.
    for (Value& argument : arguments)
        if (type.kind == NumberKind::Bool)
            argument = ApplyBinary("!=", std::move(argument), MakeConstant({0}, false));
        else if (type.kind == NumberKind::Int)
            argument =
                ApplyBinary("-", argument, ApplyBinary("%", argument, MakeConstant({1}, false)));
    if (size == 1)
        return std::move(arguments[0]);
    if (arguments.size() > 1)
        return MakeNode(Expression::Kind::List, "", std::move(arguments));
    // One that is a number fills, one that is a vector is cut: both by its own type.
    const auto own =
        arguments[0].dimensions.empty() ? FindNumericType(arguments[0].type) : std::nullopt;
    if (!own || own->components() != 1)
        return std::move(arguments[0]);
    CheckNodes(arguments[0].nodes * size);
    return MakeNode(Expression::Kind::List, "", std::vector<Value>(size, arguments[0]));
}

Value ApplyComponents(Value value, std::string_view components) {
    NumericType type = FindNumericType(value.type).value_or(NumericType{NumberKind::Float, 1, 4});
    if (!value.dimensions.empty())
        throw std::invalid_argument("an array has no component ." + std::string(components));
    if (value.isConstant) {
        if (!type.isMatrix)
            type.columns = static_cast<UINT>(std::min<std::size_t>(value.numbers.size(), 4));
        std::vector<double> numbers;
        for (const std::size_t index : ComponentIndices(components, type))
            numbers.push_back(index < value.numbers.size() ? value.numbers[index] : 0);
        return MakeConstant(std::move(numbers), value.isWhole);
    }
    const std::vector<std::size_t> indices = ComponentIndices(components, type);
    CheckNodes(value.nodes * indices.size());
    std::vector<Value> parts;
    for (const std::size_t index : indices)
        parts.push_back(MakeComponent(value, index));
    if (parts.size() > 1)
        return MakeNode(Expression::Kind::List, "", std::move(parts));
    parts[0].type = "float";
    return std::move(parts[0]);
}

Value ApplyIndex(Value value, Value index) {
    const std::optional<NumericType> type = FindNumericType(value.type);
    const bool isArray = !value.dimensions.empty(), isMatrix = !isArray && type && type->isMatrix;
    const std::size_t count = isArray    ? value.dimensions[0]
                              : isMatrix ? type->rows
                              : type     ? type->columns
                                         : std::max<std::size_t>(value.numbers.size(), 4);
    if (index.isConstant && value.isConstant) {
        const std::size_t size = isArray || isMatrix ? count : value.numbers.size();
        const std::size_t at = IndexWithin(index, size);
        Value element = Slice(value, at, size);
        if (isArray) {
            element.type = value.type;
            element.dimensions.assign(value.dimensions.begin() + 1, value.dimensions.end());
        }
        return element;
    }
    if (index.isConstant && !isMatrix) {
        const std::size_t at = IndexWithin(index, count);
        if (!isArray)
            return MakeComponent(value, at);
        if (value.expression.kind == Expression::Kind::Parameter) {
            value.expression.name += "[" + std::to_string(at) + "]";
            value.dimensions.erase(value.dimensions.begin());
            return value;
        }
    }
    Value element = MakeNode(Expression::Kind::Element, "", {value, std::move(index)});
    if (isArray) {
        element.type = value.type;
        element.dimensions.assign(value.dimensions.begin() + 1, value.dimensions.end());
    } else if (isMatrix)
        element.type = "float" + std::to_string(type->columns);
    else
        element.type = "float";
    return element;
}

Value ApplyFunction(std::string_view name, const std::vector<Value>& arguments) {
    for (const Value& argument : arguments)
        if (!argument.isConstant)
            throw std::invalid_argument("functions of parameters are not possible here: " +
                                        std::string(name));
    std::vector<std::vector<double>> values;
    bool whole = name == "abs" || name == "min" || name == "max";
    for (const Value& argument : arguments) {
        values.push_back(argument.numbers);
        whole = whole && argument.isWhole;
    }
    if (values.size() == 1)
        for (const Function1& known : Functions1)
            if (known.name == name) {
                std::transform(values[0].begin(), values[0].end(), values[0].begin(),
                               known.function);
                return MakeConstant(values[0], whole);
            }
    if (values.size() == 2)
        for (const Function2& known : Functions2)
            if (known.name == name)
                return MakeConstant(Combine(values[0], values[1], known.function), whole);
    if (values.size() == 1 && name == "length")
        return MakeConstant({std::sqrt(Dot(values[0], values[0]))}, false);
    if (values.size() == 1 && name == "normalize") {
        const std::vector<double> length{std::sqrt(Dot(values[0], values[0]))};
        return MakeConstant(Combine(values[0], length, [](double x, double y) { return x / y; }),
                            false);
    }
    if (values.size() == 2 && name == "dot")
        return MakeConstant({Dot(values[0], values[1])}, false);
    throw std::invalid_argument("there is no function " + std::string(name) + " of " +
                                std::to_string(values.size()) + " constants");
}

} // namespace VornPlatform
