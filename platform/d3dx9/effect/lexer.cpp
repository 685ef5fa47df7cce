// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/lexer.hpp"

#include <algorithm>
#include <charconv>
#include <limits>

namespace VornPlatform {

namespace {

// Not those of <cctype>, which ask the locale.
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}
bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}
bool IsHexDigit(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}
bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f' || c == '\n';
}
char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
int HexValue(char c) {
    return IsDigit(c) ? c - '0' : Lower(c) - 'a' + 10;
}

template <typename Predicate>
std::size_t SkipWhile(std::string_view text, std::size_t at, Predicate predicate) {
    while (at < text.size() && predicate(text[at]))
        ++at;
    return at;
}

std::size_t NumberLength(std::string_view text) {
    if (text.size() > 2 && text[0] == '0' && Lower(text[1]) == 'x')
        return SkipWhile(text, SkipWhile(text, 2, IsHexDigit),
                         [](char c) { return Lower(c) == 'u' || Lower(c) == 'l'; });
    std::size_t at = SkipWhile(text, 0, IsDigit);
    if (at < text.size() && text[at] == '.')
        at = SkipWhile(text, at + 1, IsDigit);
    if (at < text.size() && Lower(text[at]) == 'e') {
        const bool isSigned = at + 1 < text.size() && (text[at + 1] == '+' || text[at + 1] == '-');
        const std::size_t digits = at + (isSigned ? 2 : 1);
        if (digits < text.size() && IsDigit(text[digits]))
            at = SkipWhile(text, digits, IsDigit);
    }
    // "1.xxx" is a number and its components: only what can be a suffix belongs to it.
    return SkipWhile(text, at, [](char c) {
        return std::string_view("fhlu").find(Lower(c)) != std::string_view::npos;
    });
}

// Up to the quote that closes it, or to the end of the line.
std::size_t StringLength(std::string_view text, bool& closed) {
    std::size_t at = 1;
    for (; at < text.size() && text[at] != '\n'; ++at) {
        if (text[at] == '"') {
            closed = true;
            return at + 1;
        }
        if (text[at] == '\\' && at + 1 < text.size() && text[at + 1] != '\n')
            ++at;
    }
    closed = false;
    return at;
}

std::size_t OperatorLength(std::string_view text) {
    constexpr std::string_view Long[] = {
        "<<=", ">>=", "...", "++", "--", "<<", ">>", "<=", ">=", "==", "!=", "&&",
        "||",  "+=",  "-=",  "*=", "/=", "%=", "&=", "|=", "^=", "::", "->", "##"};
    for (const std::string_view known : Long)
        if (text.substr(0, known.size()) == known)
            return known.size();
    return std::string_view("+-*/%<>=!&|^~?:;,.()[]{}#").find(text[0]) != std::string_view::npos;
}

std::optional<double> ReadWhole(std::string_view digits, int base) {
    if (digits.empty())
        return std::nullopt;
    double value = 0;
    for (const char digit : digits) {
        if (!IsHexDigit(digit) || HexValue(digit) >= base)
            return std::nullopt;
        value = value * base + HexValue(digit);
    }
    return value;
}

} // namespace

bool EqualBlindToCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), Lower);
    return lower;
}

bool Token::isWord(std::string_view word) const {
    return kind == TokenKind::Identifier && EqualBlindToCase(text, word);
}

// 0 for what nothing begins with.
std::size_t Lexer::lengthAt(TokenKind& kind) const {
    const std::string_view rest = text_.substr(position_);
    if (IsLetter(rest[0])) {
        kind = TokenKind::Identifier;
        return SkipWhile(rest, 1, [](char c) { return IsLetter(c) || IsDigit(c); });
    }
    if (IsDigit(rest[0]) || (rest.size() > 1 && rest[0] == '.' && IsDigit(rest[1]))) {
        kind = TokenKind::Number;
        return NumberLength(rest);
    }
    if (rest[0] == '"') {
        bool closed = false;
        const std::size_t length = StringLength(rest, closed);
        kind = closed ? TokenKind::String : TokenKind::Unknown;
        return length;
    }
    kind = TokenKind::Operator;
    return OperatorLength(rest);
}

Token Lexer::next() {
    Token token;
    while (position_ < text_.size() && IsBlank(text_[position_])) {
        token.spaceBefore = true;
        line_ += text_[position_++] == '\n';
    }
    token.line = line_;
    token.position = static_cast<std::uint32_t>(position_);
    if (position_ == text_.size())
        return token;
    std::size_t length = lengthAt(token.kind);
    if (length == 0) {
        token.kind = TokenKind::Unknown;
        length = 1;
    }
    token.text = text_.substr(position_, length);
    position_ += length;
    return token;
}

std::vector<Token> Lex(std::string_view text) {
    std::vector<Token> tokens;
    Lexer lexer(text);
    do
        tokens.push_back(lexer.next());
    while (tokens.back().kind != TokenKind::End);
    return tokens;
}

std::string StringValue(std::string_view token) {
    std::string value;
    for (std::size_t at = 1; at + 1 < token.size(); ++at) {
        char c = token[at];
        if (c == '\\' && at + 2 < token.size()) {
            c = token[++at];
            constexpr std::string_view Names = "abfnrtv", Values = "\a\b\f\n\r\t\v";
            if (const std::size_t known = Names.find(c); known != std::string_view::npos)
                c = Values[known];
            else if (c == '0')
                c = '\0';
        }
        value += c;
    }
    return value;
}

std::optional<NumberValue> ReadNumber(std::string_view token) {
    const auto isSuffix = [](char c) { return Lower(c) == 'u' || Lower(c) == 'l'; };
    const auto strip = [&](auto predicate) {
        while (!token.empty() && predicate(token.back()))
            token.remove_suffix(1);
    };
    const auto whole = [](std::optional<double> value) -> std::optional<NumberValue> {
        if (!value)
            return std::nullopt;
        return NumberValue{*value, true};
    };
    if (token.size() > 1 && token[0] == '0' && Lower(token[1]) == 'x') {
        strip(isSuffix);
        return whole(ReadWhole(token.substr(2), 16));
    }

    bool isFloat = token.find('.') != std::string_view::npos;
    strip([&](char c) {
        isFloat = isFloat || Lower(c) == 'f' || Lower(c) == 'h';
        return isSuffix(c) || Lower(c) == 'f' || Lower(c) == 'h';
    });
    isFloat = isFloat || token.find_first_of("eE") != std::string_view::npos;
    if (!isFloat)
        return whole(ReadWhole(token, token.size() > 1 && token[0] == '0' ? 8 : 10));

    double value = 0;
    const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), value);
    if (error == std::errc::result_out_of_range) {
        // Which way it goes out of range is told by the exponent only.
        const std::size_t exponent = token.find_first_of("eE");
        const bool small = exponent != std::string_view::npos && token[exponent + 1] == '-';
        value = small ? 0 : std::numeric_limits<double>::infinity();
    } else if (error != std::errc() || end != token.data() + token.size())
        return std::nullopt;
    return NumberValue{value, false};
}

} // namespace VornPlatform
