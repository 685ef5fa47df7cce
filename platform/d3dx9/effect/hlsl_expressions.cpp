// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/hlsl_expressions.hpp"

#include "platform/d3dx9/effect/hlsl_rewrite.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

using Kind = HlslValue::Kind;

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), text) != words.end();
}

// How tightly an operator of two sides binds; 0 for none.
int Binding(std::string_view op) {
    constexpr std::pair<std::string_view, int> Bindings[] = {
        {"||", 1}, {"&&", 2}, {"|", 3}, {"^", 4},  {"&", 5},  {"==", 6},
        {"!=", 6}, {"<", 7},  {">", 7}, {"<=", 7}, {">=", 7}, {"<<", 8},
        {">>", 8}, {"+", 9},  {"-", 9}, {"*", 10}, {"/", 10}, {"%", 10}};
    for (const auto& [word, binding] : Bindings)
        if (op == word)
            return binding;
    return 0;
}

bool Assigns(std::string_view op) {
    return IsOneOf(op, {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="});
}

HlslValue Numbers() {
    HlslValue value;
    value.kind = Kind::Numbers;
    return value;
}

} // namespace

// --- words

bool ExpressionWalk::isReserved() const {
    return !atEnd() &&
           IsOneOf(word(), {"if", "else", "for", "while", "do", "switch", "case", "default",
                            "return", "break", "continue", "discard", "struct", "typedef", "void"});
}

bool ExpressionWalk::takeIf(std::string_view word) {
    if (!is(word))
        return false;
    step();
    return true;
}

void ExpressionWalk::expect(std::string_view word) {
    if (!takeIf(word))
        failExpected("'" + std::string(word) + "'");
}

SourcePlace ExpressionWalk::placeOf(std::size_t at) const {
    return place_ ? *place_ : PlaceOf(text_.source, words_[std::min(at, words_.size() - 1)].line);
}

void ExpressionWalk::fail(std::size_t at, const std::string& message) const {
    throw EffectError(placeOf(at), message);
}

void ExpressionWalk::failExpected(const std::string& what) const {
    fail(at_, "expected " + what + ", found " + (atEnd() ? "the end" : "'" + shown(word()) + "'"));
}

std::string ExpressionWalk::shown(const std::string& word) {
    const bool isOurs = word.starts_with("hl_") || word.starts_with("hx_");
    return word.substr(isOurs ? 3 : 0, 60);
}

// --- values

void ExpressionWalk::require(const HlslValue& value, std::size_t at, std::string_view what) const {
    if (value.kind == Kind::Nothing)
        fail(at, "the function gives no value");
    if (!what.empty() && value.kind != Kind::Unknown && value.kind != Kind::Numbers)
        fail(at, std::string(what) + " must be numbers, not " + NameOf(value.kind));
}

void ExpressionWalk::requirePlace(const HlslValue& value, std::size_t at) const {
    require(value, at, "an operand");
    if (!value.isPlace)
        fail(at, "this cannot be assigned to");
}

void ExpressionWalk::readRequired(std::string_view what) {
    const std::size_t begin = at_;
    const HlslValue value = readExpression();
    require(value, begin, what);
}

// --- operators

HlslValue ExpressionWalk::readExpression() {
    HlslValue value = readAssignment();
    while (takeIf(","))
        value = readAssignment();
    return value;
}

HlslValue ExpressionWalk::readAssignment() {
    const std::size_t begin = at_;
    HlslValue left = readChoice();
    if (atEnd() || !Assigns(word()))
        return left;
    if (!left.isPlace)
        fail(begin, "this cannot be assigned to");
    const std::string_view what = is("=") ? "" : "an operand";
    require(left, begin, what);
    step();
    const HlslValue right = readAssignment();
    require(right, begin, what);
    left.isPlace = false;
    return left;
}

HlslValue ExpressionWalk::readChoice() {
    const std::size_t begin = at_;
    HlslValue value = readBinary(1);
    if (!takeIf("?"))
        return value;
    require(value, begin, "a condition");
    value = readExpression();
    require(value, begin, "");
    expect(":");
    const HlslValue other = readAssignment();
    require(other, begin, "");
    value.isPlace = false;
    return value;
}

HlslValue ExpressionWalk::readBinary(int least) {
    const std::size_t begin = at_;
    HlslValue left = readUnary();
    for (int binding = 0; !atEnd() && (binding = Binding(word())) >= least;) {
        require(left, begin, "an operand");
        step();
        const std::size_t place = at_;
        const HlslValue right = readBinary(binding + 1);
        require(right, place, "an operand");
        left = Numbers();
    }
    return left;
}

HlslValue ExpressionWalk::readUnary() {
    if (is("(") && scopes_.isType(nextWord()))
        return readCast();
    const bool steps = is("++") || is("--");
    if (!steps && !is("+") && !is("-") && !is("!") && !is("~"))
        return readPostfix();
    const std::size_t begin = at_;
    step();
    const HlslValue operand = readUnary();
    if (steps)
        requirePlace(operand, begin);
    require(operand, begin, "an operand");
    return Numbers();
}

HlslValue ExpressionWalk::readCast() {
    step();
    // `(float2(1, 2))` begins alike.
    if (nextWord() == "(") {
        const HlslValue inner = readExpression();
        expect(")");
        return readBehind(inner);
    }
    const std::string type = word();
    scopes_.requireFloats(type, placeOf(at_));
    step();
    std::size_t dimensions = 0;
    for (; is("["); ++dimensions)
        readBracket();
    expect(")");
    const std::size_t begin = at_;
    const HlslValue operand = readUnary();
    require(operand, begin, "");
    return scopes_.valueOf(type, dimensions);
}

// --- operands

HlslValue ExpressionWalk::readPostfix() {
    if (takeIf("(")) {
        const HlslValue inner = readExpression();
        expect(")");
        return readBehind(inner);
    }
    if (!atEnd() && words_[at_].kind == TokenKind::Number) {
        step();
        return readBehind(Numbers());
    }
    if (!isName() || isReserved())
        failExpected("a value");
    const std::string name = word();
    if (nextWord() == "(")
        return readBehind(readCall(name));
    if (scopes_.isType(name))
        failExpected("a value");
    step();
    if (const HlslValue* known = scopes_.find(name))
        return readBehind(*known);
    HlslValue unknown; // the compiler says so
    unknown.isPlace = true;
    return readBehind(unknown);
}

HlslValue ExpressionWalk::readBehind(HlslValue value) {
    for (;;) {
        const std::size_t place = at_;
        if (is("["))
            value = readIndex(value);
        else if (takeIf(".")) {
            if (!isName())
                failExpected("a member");
            value = memberOf(value, place);
            step();
        } else if (is("++") || is("--")) {
            requirePlace(value, place);
            value = Numbers();
            step();
        } else
            return value;
    }
}

HlslValue ExpressionWalk::readIndex(HlslValue value) {
    if (value.kind == Kind::Structure || value.kind == Kind::Sampler || value.kind == Kind::Nothing)
        fail(at_, std::string(NameOf(value.kind)) + " has no elements");
    readBracket();
    if (value.kind == Kind::Array && --value.dimensions == 0)
        value.kind = value.element;
    return value;
}

void ExpressionWalk::readBracket() {
    step();
    if (!is("]"))
        readRequired("an index");
    expect("]");
}

HlslValue ExpressionWalk::memberOf(const HlslValue& value, std::size_t place) const {
    if (value.kind == Kind::Unknown || value.kind == Kind::Numbers)
        return value;
    if (value.kind != Kind::Structure)
        fail(place, std::string(NameOf(value.kind)) + " has no members");
    HlslValue found;
    for (const SourceParameter& member : value.structure->members)
        if (SafeName(member.name) == word())
            found = scopes_.valueOf(member.type, member.dimensions.size());
    found.isPlace = value.isPlace;
    return found;
}

HlslValue ExpressionWalk::readCall(const std::string& name) {
    const bool isConstructor = scopes_.isType(name);
    if (isConstructor)
        scopes_.requireFloats(name, placeOf(at_));
    step();
    step();
    for (std::size_t number = 0; !is(")"); ++number) {
        if (number > 0)
            expect(",");
        readArgument(name, number);
    }
    step();
    if (isConstructor)
        return scopes_.valueOf(name, 0);
    if (const auto known = text_.functionsByName.find(name); known != text_.functionsByName.end())
        return scopes_.valueOf(text_.functions[known->second].type, 0);
    if (name == "clip" || name == "sincos")
        return scopes_.valueOf("void", 0);
    return IsIntrinsic(name) ? Numbers() : HlslValue();
}

void ExpressionWalk::readArgument(const std::string& function, std::size_t number) {
    const std::size_t begin = at_;
    const HlslValue argument = readAssignment();
    const bool takesSampler = number == 0 && SampledKind(function);
    require(argument, begin, IsIntrinsic(function) && !takesSampler ? "an argument" : "");
    if (number > 0 && IsOneOf(function, {"sincos", "modf", "hx_frexp"}))
        requirePlace(argument, begin);
    if (takesSampler && argument.kind == Kind::Numbers)
        fail(begin, "'" + function + "' reads a sampler, not numbers");
    if (argument.kind == Kind::Sampler && scopes_.isType(function))
        fail(begin, "a sampler makes no numbers");
}

} // namespace VornPlatform
