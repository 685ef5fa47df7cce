// SPDX-License-Identifier: MIT
//
// The HLSL of a file as words that may be changed, and the functions and variables that it
// declares.
//
//   ShaderText text(source);
//   for (const HlslFunction& function : text.functions) ...
//
// A word keeps the line that it came from, so whatever is put in or taken out, messages of the
// compiler still point at the author's lines.
#pragma once

#include "platform/d3dx9/effect/hlsl_types.hpp"
#include "platform/d3dx9/effect/lexer.hpp"

namespace VornPlatform {

struct Word {
    TokenKind kind = TokenKind::End;
    std::uint32_t line = 0;
    std::string text; // empty where the word has been taken out

    bool is(std::string_view other) const { return text == other; }
    bool isName() const { return kind == TokenKind::Identifier; }
};
using Words = std::vector<Word>;

/// Half open, indices of words.
struct WordRange {
    std::size_t begin = 0, end = 0;
};

struct HlslArgument {
    WordRange words; // up to the comma
    std::string type, name, semantic;
    std::vector<UINT> dimensions;
    bool isIn = true, isOut = false, isUniform = false;
    WordRange start; // the words of its default value
    std::size_t typeWord = 0;
};

struct HlslFunction {
    std::string name, type, semantic;
    WordRange words, body; // the body with its braces; empty of a mere declaration
    std::vector<HlslArgument> arguments;
    std::uint32_t line = 0;
};

/// One declarator at file scope.
struct HlslVariable {
    std::string name, type;
    WordRange statement, dimensions, start; // of all its declaration; of "[2]"; behind "="
    std::size_t nameWord = 0;
    bool isStatic = false;
};

/// A sampler as the rewritten text declares it: those of an array one by one.
struct HlslSampler {
    std::string name;
    const SourceParameter* parameter = nullptr;
    UINT element = 0;
    SamplerKind kind = SamplerKind::Flat;
};

struct ShaderText {
    /// Raises EffectError for what no compiler takes, such as brackets without an end.
    explicit ShaderText(const EffectSource& source);

    /// Takes functions and variables from the words anew.
    void parse();

    const EffectSource& source;
    HlslTypes types;
    Words words;
    std::vector<HlslFunction> functions;
    /// Indices of `functions`: those of one name take different arguments.
    std::multimap<std::string, std::size_t, std::less<>> functionsByName;
    std::vector<HlslVariable> variables;
    std::vector<HlslSampler> samplers;
};

/// The bracket that closes the one at `open`; `words.size()` if there is none.
std::size_t Closing(const Words& words, std::size_t open);
/// The bracket that opens the one at `close`; `words.size()` if there is none.
std::size_t Opening(const Words& words, std::size_t close);
/// The next word that has not been taken out, or `words.size()`.
std::size_t NextWord(const Words& words, std::size_t at);
/// The one before, or `words.size()`.
std::size_t PreviousWord(const Words& words, std::size_t at);
/// The words with a blank between them.
std::string JoinWords(const Words& words, WordRange range);
/// The parts between commas at the top level of the range; none of an empty one.
std::vector<WordRange> SplitAtCommas(const Words& words, WordRange range);
/// "in", "uniform", "row_major" and the like.
bool IsQualifier(std::string_view word);
/// The place of a line of the text.
SourcePlace PlaceOf(const EffectSource& source, std::uint32_t line);
/// Text of words with their lines: line n + 1 holds those of line n.
std::string LaidOut(const Words& words);

} // namespace VornPlatform
