// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/expression.hpp"

#include "platform/d3dx9/effect/number_bits.hpp"

#include <algorithm>
#include <cmath>

namespace VornPlatform {

namespace {

ExpressionValue OfNumber(double number) {
    ExpressionValue value;
    value.numbers[0] = number;
    return value;
}

ExpressionValue OfPlace(const Place& place, const std::byte* block) {
    if (!place.IsNumeric())
        return OfNumber(0);
    ExpressionValue value;
    value.count = std::min<UINT>(place.numbers, 16);
    value.columns = place.IsMatrix() ? place.constant->columns : value.count;
    for (UINT i = 0; i < value.count; ++i)
        value.numbers[i] =
            NumberOf<double>(place.constant->type, LoadBits(block + place.NumberOffset(i)));
    return value;
}

/// Parameters and elements of their arrays; -1 for what is none.
int PlaceOf(const Expression& expression, const ParameterValues& values) {
    if (expression.kind == Expression::Kind::Parameter)
        return values.places.Names().Find(expression.name.c_str());
    if (expression.kind != Expression::Kind::Element || expression.operands.size() != 2)
        return -1;
    const int array = PlaceOf(expression.operands[0], values);
    if (array < 0 || values.places[array].firstElement < 0)
        return -1;
    const Place& place = values.places[array];
    const double index = std::trunc(Evaluate(expression.operands[1], values)[0]);
    return index >= 0 && index < static_cast<double>(place.elements)
               ? place.firstElement + static_cast<int>(index)
               : -1;
}

double Whole(double number) {
    return std::isfinite(number) ? std::trunc(number) : 0;
}

double Combine(const std::string& op, double a, double b) {
    const auto bits = [](double number) { return static_cast<std::int64_t>(ToDword(number)); };
    const bool equals = op.size() > 1 && op[1] == '=';
    switch (op.empty() ? '\0' : op[0]) {
    case '+':
        return a + b;
    case '-':
        return a - b;
    case '*':
        return a * b;
    case '/':
        return a / b;
    case '%':
        return std::fmod(a, b);
    case '=':
        return a == b;
    case '!':
        return a != b;
    case '<':
        if (op == "<<")
            return static_cast<double>(static_cast<DWORD>(bits(a) << (bits(b) & 31)));
        return equals ? a <= b : a < b;
    case '>':
        if (op == ">>")
            return static_cast<double>(bits(a) >> (bits(b) & 31));
        return equals ? a >= b : a > b;
    case '&':
        return op == "&&" ? a != 0 && b != 0 : static_cast<double>(bits(a) & bits(b));
    case '|':
        return op == "||" ? a != 0 || b != 0 : static_cast<double>(bits(a) | bits(b));
    case '^':
        return static_cast<double>(bits(a) ^ bits(b));
    default:
        return 0;
    }
}

double Apply(const std::string& op, double number) {
    switch (op.empty() ? '\0' : op[0]) {
    case '-':
        return -number;
    case '!':
        return number == 0;
    case '~':
        return static_cast<double>(~ToDword(number));
    default:
        return number;
    }
}

ExpressionValue Element(const Expression& expression, const ParameterValues& values) {
    const int place = PlaceOf(expression, values);
    if (place >= 0)
        return OfPlace(values.places[place], values.block);
    const ExpressionValue whole = Evaluate(expression.operands[0], values);
    const double index = Whole(Evaluate(expression.operands[1], values)[0]);
    // A row of a matrix, or a component of a vector.
    const UINT width = whole.columns < whole.count ? whole.columns : 1;
    if (!(index >= 0 && index < static_cast<double>(whole.count / width)))
        return OfNumber(0);
    ExpressionValue value;
    value.count = value.columns = width;
    std::copy_n(whole.numbers.begin() + static_cast<std::ptrdiff_t>(index) * width, width,
                value.numbers.begin());
    return value;
}

ExpressionValue List(const Expression& expression, const ParameterValues& values) {
    ExpressionValue value;
    value.count = 0;
    for (const Expression& operand : expression.operands) {
        const ExpressionValue part = Evaluate(operand, values);
        for (UINT i = 0; i < part.count && value.count < value.numbers.size(); ++i)
            value.numbers[value.count++] = part.numbers[i];
    }
    value.columns = value.count;
    return value;
}

std::size_t OperandsOf(Expression::Kind kind) {
    switch (kind) {
    case Expression::Kind::Unary:
    case Expression::Kind::Component:
        return 1;
    case Expression::Kind::Binary:
    case Expression::Kind::Element:
        return 2;
    case Expression::Kind::Choice:
        return 3;
    default:
        return 0;
    }
}

} // namespace

DWORD ToDword(double number) {
    number = Whole(number);
    if (!(number >= -2147483648.0 && number < 4294967296.0))
        return 0;
    return static_cast<DWORD>(static_cast<std::int64_t>(number));
}

ExpressionValue Evaluate(const Expression& expression, const ParameterValues& values) {
    using Kind = Expression::Kind;
    const auto& operands = expression.operands;
    if (operands.size() < OperandsOf(expression.kind))
        return OfNumber(0);
    switch (expression.kind) {
    case Kind::Number:
        return OfNumber(expression.number);
    case Kind::Parameter: {
        const int place = PlaceOf(expression, values);
        return place < 0 ? OfNumber(0) : OfPlace(values.places[place], values.block);
    }
    case Kind::Unary: {
        ExpressionValue value = Evaluate(operands[0], values);
        for (UINT i = 0; i < value.count; ++i)
            value.numbers[i] = Apply(expression.op, value.numbers[i]);
        return value;
    }
    case Kind::Binary: {
        const ExpressionValue a = Evaluate(operands[0], values);
        const ExpressionValue b = Evaluate(operands[1], values);
        ExpressionValue value = a.count >= b.count ? a : b; // for its form
        for (UINT i = 0; i < value.count; ++i)
            value.numbers[i] = Combine(expression.op, a[i], b[i]);
        return value;
    }
    case Kind::Choice:
        return Evaluate(operands[Evaluate(operands[0], values)[0] != 0 ? 1 : 2], values);
    case Kind::Component: {
        const double index = expression.number;
        const ExpressionValue whole = Evaluate(operands[0], values);
        return OfNumber(index >= 0 && index < 16 ? whole[static_cast<UINT>(index)] : 0);
    }
    case Kind::Element:
        return Element(expression, values);
    case Kind::List:
        return List(expression, values);
    }
    return OfNumber(0);
}

} // namespace VornPlatform
