// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/effect/hlsl_scopes.hpp"

#include <algorithm>

namespace VornPlatform {

/// Walks over expressions and raises EffectError for what is none, and for operands that mean
/// nothing.
class ExpressionWalk {
protected:
    /// `place` is that of words which are not the text's.
    ExpressionWalk(const ShaderText& text, const Words& words, const SourcePlace* place)
        : text_(text), words_(words), place_(place), scopes_(text) {}

    void moveTo(WordRange range) {
        end_ = std::min(range.end, words_.size());
        at_ = NextWord(words_, range.begin);
    }
    bool atEnd() const { return at_ >= end_; }
    bool is(std::string_view word) const { return !atEnd() && words_[at_].is(word); }
    bool isName() const { return !atEnd() && words_[at_].isName(); }
    /// Nothing begins a declaration or an expression with it.
    bool isReserved() const;
    const std::string& word() const { return words_[at_].text; }
    std::size_t next() const { return std::min(NextWord(words_, at_ + 1), end_); }
    std::string nextWord() const { return next() < end_ ? words_[next()].text : std::string(); }
    void step() { at_ = NextWord(words_, at_ + 1); }
    bool takeIf(std::string_view word);
    void expect(std::string_view word);
    SourcePlace placeOf(std::size_t at) const;
    [[noreturn]] void fail(std::size_t at, const std::string& message) const;
    [[noreturn]] void failExpected(const std::string& what) const;
    /// The word as its author wrote it.
    static std::string shown(const std::string& word);

    /// With `what` it must be numbers, else something.
    void require(const HlslValue& value, std::size_t at, std::string_view what) const;
    void readRequired(std::string_view what);
    HlslValue readExpression();
    HlslValue readAssignment();
    HlslValue readChoice();
    /// "[2]"; the size of an array may be missing.
    void readBracket();

    const ShaderText& text_;
    const Words& words_;
    const SourcePlace* place_;
    std::size_t at_ = 0, end_ = 0;
    HlslScopes scopes_;

private:
    void requirePlace(const HlslValue& value, std::size_t at) const;
    HlslValue readBinary(int least);
    HlslValue readUnary();
    HlslValue readCast();
    HlslValue readPostfix();
    HlslValue readBehind(HlslValue value);
    HlslValue readIndex(HlslValue value);
    HlslValue memberOf(const HlslValue& value, std::size_t place) const;
    HlslValue readCall(const std::string& name);
    void readArgument(const std::string& function, std::size_t number);
};

} // namespace VornPlatform
