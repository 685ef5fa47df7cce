// SPDX-License-Identifier: MIT
//
// A place in the tokens of an effect file, for those that read it.
#pragma once

#include "platform/d3dx9/effect/effect_source.hpp"
#include "platform/d3dx9/effect/lexer.hpp"

#include <algorithm>

namespace VornPlatform {

class TokenCursor {
public:
    /// The last token is End. Both must outlive it.
    TokenCursor(const std::vector<Token>& tokens, const std::vector<SourcePlace>& lines)
        : tokens_(tokens), lines_(lines) {}

    std::size_t at() const { return at_; }
    void moveTo(std::size_t at) { at_ = at; }
    const Token& peek(std::size_t ahead = 0) const {
        return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
    }
    bool atEnd() const { return peek().kind == TokenKind::End; }
    bool is(std::string_view text, std::size_t ahead = 0) const {
        return peek(ahead).kind == TokenKind::Operator && peek(ahead).is(text);
    }
    Token take() {
        const Token token = peek();
        at_ += !atEnd();
        return token;
    }
    bool takeIf(std::string_view text) {
        if (!is(text))
            return false;
        ++at_;
        return true;
    }
    /// `what` says it to the author.
    void expect(std::string_view text, std::string_view what) {
        if (!takeIf(text))
            failExpected("'" + std::string(text) + "' " + std::string(what));
    }
    Token expectName(std::string_view what) {
        if (peek().kind != TokenKind::Identifier)
            failExpected(what);
        return take();
    }

    const SourcePlace& place(const Token& token) const {
        return lines_[std::min<std::size_t>(token.line, lines_.size() - 1)];
    }
    [[noreturn]] void fail(const Token& token, const std::string& message) const {
        throw EffectError(place(token), message);
    }
    [[noreturn]] void failExpected(std::string_view what) const {
        // What stands on the next line is missed at the end of this one.
        const Token& token = at_ > 0 ? tokens_[at_ - 1] : peek();
        const std::string found =
            atEnd() ? "the end of the file" : "'" + std::string(peek().text.substr(0, 60)) + "'";
        fail(atEnd() ? token : peek(), "expected " + std::string(what) + ", found " + found);
    }

private:
    const std::vector<Token>& tokens_;
    const std::vector<SourcePlace>& lines_;
    std::size_t at_ = 0;
};

} // namespace VornPlatform
