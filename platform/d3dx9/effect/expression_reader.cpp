// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/expression_reader.hpp"

#include <stdexcept>

namespace VornPlatform {

namespace {

constexpr int MaxDepth = 200;

struct Operator {
    const char* text;
    int rank;
};
constexpr Operator Operators[] = {{"||", 1}, {"&&", 2}, {"|", 3}, {"^", 4},  {"&", 5},  {"==", 6},
                                  {"!=", 6}, {"<", 7},  {">", 7}, {"<=", 7}, {">=", 7}, {"<<", 8},
                                  {">>", 8}, {"+", 9},  {"-", 9}, {"*", 10}, {"/", 10}, {"%", 10}};

// What values refuse becomes an error at a token.
template <typename Function>
Value At(const TokenCursor& cursor, const Token& token, Function function) {
    try {
        return function();
    } catch (const std::invalid_argument& error) {
        cursor.fail(token, error.what());
    }
}

} // namespace

struct ExpressionReader::Depth {
    explicit Depth(ExpressionReader& reader) : reader_(reader) {
        if (++reader_.depth_ > MaxDepth)
            reader_.cursor_.fail(reader_.cursor_.peek(), "more than " + std::to_string(MaxDepth) +
                                                             " brackets or operators in each "
                                                             "other");
    }
    ~Depth() { --reader_.depth_; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;

    ExpressionReader& reader_;
};

Value ExpressionReader::choice() {
    Value condition = binary(1);
    const Token token = cursor_.peek();
    if (!cursor_.takeIf("?"))
        return condition;
    const Depth depth(*this);
    Value yes = choice();
    cursor_.expect(":", "of the choice");
    Value no = choice();
    return At(cursor_, token,
              [&] { return ApplyChoice(std::move(condition), std::move(yes), std::move(no)); });
}

const char* ExpressionReader::operatorHere(int& rank) const {
    if (options_.greaterEnds && cursor_.is(">"))
        return nullptr;
    for (const Operator& known : Operators)
        if (cursor_.is(known.text)) {
            rank = known.rank;
            return known.text;
        }
    return nullptr;
}

Value ExpressionReader::binary(int rank) {
    Value left = unary();
    int found = 0;
    for (const char* op = operatorHere(found); op && found >= rank; op = operatorHere(found)) {
        const Token token = cursor_.take();
        Value right = binary(found + 1);
        left =
            At(cursor_, token, [&] { return ApplyBinary(op, std::move(left), std::move(right)); });
    }
    return left;
}

Value ExpressionReader::unary() {
    const Depth depth(*this);
    for (const char* op : {"-", "!", "~", "+"}) {
        const Token token = cursor_.peek();
        if (!cursor_.takeIf(op))
            continue;
        Value operand = unary();
        return At(cursor_, token, [&] { return ApplyUnary(op, std::move(operand)); });
    }
    if (auto value = cast())
        return std::move(*value);
    return postfix(primary());
}

Value ExpressionReader::postfix(Value value) {
    while (true) {
        const Token token = cursor_.peek();
        if (cursor_.takeIf(".")) {
            const Token name = cursor_.expectName("the name of a member or component");
            value = At(cursor_, name, [&] {
                if (auto member = declarations_.member(value, name.text))
                    return *member;
                return ApplyComponents(std::move(value), name.text);
            });
        } else if (cursor_.takeIf("[")) {
            const Options outer = options_;
            options_.greaterEnds = false;
            Value index = choice();
            options_ = outer;
            cursor_.expect("]", "behind the index");
            value =
                At(cursor_, token, [&] { return ApplyIndex(std::move(value), std::move(index)); });
        } else
            return value;
    }
}

// `(float3)a`
std::optional<Value> ExpressionReader::cast() {
    if (!cursor_.is("(") || !cursor_.is(")", 2) || cursor_.peek(1).kind != TokenKind::Identifier)
        return std::nullopt;
    const auto type = FindNumericType(cursor_.peek(1).text);
    if (!type)
        return std::nullopt;
    const Token token = cursor_.peek(1);
    cursor_.moveTo(cursor_.at() + 3);
    Value operand = unary();
    return At(cursor_, token, [&] {
        std::vector<Value> one;
        one.push_back(std::move(operand));
        return ApplyConstructor(*type, std::move(one));
    });
}

Value ExpressionReader::primary() {
    if (cursor_.is("(") || cursor_.is("<"))
        return bracket();
    const Token token = cursor_.peek();
    if (token.kind == TokenKind::Number) {
        cursor_.take();
        return number(token);
    }
    if (token.kind != TokenKind::Identifier)
        cursor_.failExpected("a value");
    cursor_.take();
    if (!cursor_.is("("))
        return name(token);
    const std::vector<Value> values = arguments();
    return At(cursor_, token, [&] {
        const auto type = FindNumericType(token.text);
        return type ? ApplyConstructor(*type, values) : ApplyFunction(token.text, values);
    });
}

Value ExpressionReader::bracket() {
    const Options outer = options_;
    const bool angle = cursor_.take().is("<");
    options_.greaterEnds = angle;
    options_.parametersFirst = outer.parametersFirst || angle;
    Value value = choice();
    cursor_.expect(angle ? ">" : ")", "behind the expression");
    options_ = outer;
    return value;
}

std::vector<Value> ExpressionReader::arguments() {
    const Options outer = options_;
    options_.greaterEnds = false;
    std::vector<Value> values;
    cursor_.expect("(", "of the arguments");
    if (!cursor_.is(")"))
        do
            values.push_back(choice());
        while (cursor_.takeIf(","));
    cursor_.expect(")", "behind the arguments");
    options_ = outer;
    return values;
}

Value ExpressionReader::name(const Token& token) {
    const auto constant = [&]() -> std::optional<Value> {
        const auto number =
            FindStateValue(options_.values.value_or(StateValues::Plain), token.text);
        if (!number)
            return std::nullopt;
        return MakeConstant({static_cast<double>(*number)}, true);
    };
    const auto parameter = declarations_.value(token.text, options_.anyConstant);
    if (parameter && (options_.parametersFirst || !constant())) {
        if (FindObjectType(parameter->type))
            cursor_.fail(token,
                         std::string(token.text) + " is no number: it is a " + parameter->type);
        return *parameter;
    }
    if (auto value = constant())
        return *value;
    std::string message = "there is no parameter " + std::string(token.text);
    if (options_.values)
        message += ", and no such value for this state; expected " + NamesOf(*options_.values);
    cursor_.fail(token, message);
}

Value ExpressionReader::number(const Token& token) {
    // `VertexBlend = 2Weights`
    const Token& next = cursor_.peek();
    if (options_.values && next.kind == TokenKind::Identifier && !next.spaceBefore) {
        const auto known =
            FindStateValue(*options_.values, std::string(token.text) + std::string(next.text));
        if (known) {
            cursor_.take();
            return MakeConstant({static_cast<double>(*known)}, true);
        }
    }
    const auto value = ReadNumber(token.text);
    if (!value)
        cursor_.fail(token, "this is no number: " + std::string(token.text.substr(0, 60)));
    return MakeConstant({value->value}, value->isInteger);
}

} // namespace VornPlatform
