// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/condition.hpp"

#include <cstdint>
#include <stdexcept>

namespace VornPlatform {

namespace {

// Numbers of 64 bits that wrap.
using Number = std::int64_t;

struct Operator {
    std::string_view text;
    int rank;
};
constexpr Operator Operators[] = {{"||", 1}, {"&&", 2}, {"|", 3}, {"^", 4},  {"&", 5},  {"==", 6},
                                  {"!=", 6}, {"<", 7},  {">", 7}, {"<=", 7}, {">=", 7}, {"<<", 8},
                                  {">>", 8}, {"+", 9},  {"-", 9}, {"*", 10}, {"/", 10}, {"%", 10}};

constexpr Number Wrap(std::uint64_t value) {
    return static_cast<Number>(value);
}

class Reader {
public:
    explicit Reader(const std::vector<FileToken>& tokens) : tokens_(tokens) {}

    Number whole() {
        const Number value = choice(true);
        if (at_ < tokens_.size())
            throw std::invalid_argument("expected an operator, found " + found());
        return value;
    }

private:
    std::string found() const {
        return at_ < tokens_.size() ? std::string(tokens_[at_].token.text) : "the end of the line";
    }
    bool take(std::string_view text) {
        if (at_ == tokens_.size() || !tokens_[at_].token.is(text))
            return false;
        ++at_;
        return true;
    }
    void expect(std::string_view text) {
        if (!take(text))
            throw std::invalid_argument("expected " + std::string(text) + ", found " + found());
    }

    // What is not `live` is read and not evaluated: `defined(A) && 8 / A`.
    Number choice(bool live) {
        if (++depth_ > 200)
            throw std::invalid_argument("more than 200 brackets or operators in each other");
        Number value = binary(1, live);
        if (take("?")) {
            const Number yes = choice(live && value);
            expect(":");
            const Number no = choice(live && !value);
            value = value ? yes : no;
        }
        --depth_;
        return value;
    }

    const Operator* operatorHere() const {
        if (at_ < tokens_.size())
            for (const Operator& known : Operators)
                if (tokens_[at_].token.is(known.text))
                    return &known;
        return nullptr;
    }

    Number binary(int rank, bool live) {
        Number left = unary(live);
        for (const Operator* op = operatorHere(); op && op->rank >= rank; op = operatorHere()) {
            ++at_;
            const bool decided = (op->text == "&&" && !left) || (op->text == "||" && left);
            const Number right = binary(op->rank + 1, live && !decided);
            left = live ? apply(op->text, left, right) : 0;
        }
        return left;
    }

    static Number apply(std::string_view op, Number left, Number right) {
        const auto a = static_cast<std::uint64_t>(left), b = static_cast<std::uint64_t>(right);
        if (op == "||")
            return left || right;
        if (op == "&&")
            return left && right;
        if (op == "|")
            return left | right;
        if (op == "^")
            return left ^ right;
        if (op == "&")
            return left & right;
        if (op == "==")
            return left == right;
        if (op == "!=")
            return left != right;
        if (op == "<")
            return left < right;
        if (op == ">")
            return left > right;
        if (op == "<=")
            return left <= right;
        if (op == ">=")
            return left >= right;
        if (op == "<<")
            return Wrap(a << (b & 63));
        if (op == ">>")
            return left >> (b & 63);
        if (op == "+")
            return Wrap(a + b);
        if (op == "-")
            return Wrap(a - b);
        if (op == "*")
            return Wrap(a * b);
        if (right == 0)
            throw std::invalid_argument("division by 0");
        if (right == -1) // the only one that can overflow
            return op == "/" ? Wrap(0 - a) : 0;
        return op == "/" ? left / right : left % right;
    }

    Number unary(bool live) {
        if (++depth_ > 200)
            throw std::invalid_argument("more than 200 brackets or operators in each other");
        Number value = 0;
        if (take("!"))
            value = !unary(live);
        else if (take("-"))
            value = Wrap(0 - static_cast<std::uint64_t>(unary(live)));
        else if (take("+"))
            value = unary(live);
        else if (take("~"))
            value = ~unary(live);
        else
            value = primary(live);
        --depth_;
        return value;
    }

    Number primary(bool live) {
        if (take("(")) {
            const Number value = choice(live);
            expect(")");
            return value;
        }
        if (at_ == tokens_.size())
            throw std::invalid_argument("expected a number, found " + found());
        const Token& token = tokens_[at_].token;
        if (token.kind == TokenKind::Identifier) {
            ++at_;
            return token.is("true");
        }
        const auto number = token.kind == TokenKind::Number ? ReadNumber(token.text) : std::nullopt;
        if (!number || !number->isInteger || number->value > 9e18)
            throw std::invalid_argument("expected a whole number, found " + found());
        ++at_;
        return static_cast<Number>(number->value);
    }

    const std::vector<FileToken>& tokens_;
    std::size_t at_ = 0;
    int depth_ = 0;
};

} // namespace

bool IsConditionTrue(const std::vector<FileToken>& tokens) {
    return Reader(tokens).whole() != 0;
}

} // namespace VornPlatform
