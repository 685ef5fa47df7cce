// SPDX-License-Identifier: MIT
//
// The words of HLSL and of effect files.
//
//   for (const Token& token : Lex(source.text)) ...
//
// The text has no comments and no joined lines any more (preprocessor.hpp takes them out). A token
// is a view of the text, which must outlive it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VornPlatform {

enum class TokenKind : std::uint8_t {
    Identifier, // keywords too
    Number,     // with its suffix: "1.5f", "0xffu", ".5"
    String,     // with its quotes
    Operator,   // as long as it gets: ">>=", "##"
    Unknown,    // a byte that nothing begins with, or a string without an end
    End
};

struct Token {
    TokenKind kind = TokenKind::End;
    bool spaceBefore = false;   // or a line end
    std::uint32_t line = 0;     // from 0, as in EffectSource::lines
    std::uint32_t position = 0; // in the text (unit: bytes)
    std::string_view text;

    std::uint32_t end() const { return position + static_cast<std::uint32_t>(text.size()); }
    bool is(std::string_view other) const { return text == other; }
    /// An identifier, blind to case; `word` is in small letters.
    bool isWord(std::string_view word) const;
};

/// Behind the last token it gives End for ever.
class Lexer {
public:
    explicit Lexer(std::string_view text) : text_(text) {}
    Token next();

private:
    std::size_t lengthAt(TokenKind& kind) const;

    std::string_view text_;
    std::size_t position_ = 0;
    std::uint32_t line_ = 0;
};

/// All of them, End included.
std::vector<Token> Lex(std::string_view text);

bool EqualBlindToCase(std::string_view a, std::string_view b);
/// Letters of ASCII become small.
std::string LowerCase(std::string_view text);

/// The characters that a string token stands for.
std::string StringValue(std::string_view token);

struct NumberValue {
    double value = 0;
    bool isInteger = false;
};
/// Of a number token; nothing if it has digits or letters that make no number ("0x", "09").
std::optional<NumberValue> ReadNumber(std::string_view token);

} // namespace VornPlatform
