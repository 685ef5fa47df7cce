// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/hlsl_rewrite.hpp"

#include "platform/d3dx9/effect/hlsl_indices.hpp"
#include "platform/d3dx9/effect/hlsl_initializers.hpp"
#include "platform/d3dx9/effect/hlsl_samplers.hpp"
#include "platform/d3dx9/effect/loop_variables.hpp"
#include "platform/d3dx9/effect/matrix_swizzles.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

bool IsOneOf(std::string_view text, std::initializer_list<std::string_view> words) {
    return std::find(words.begin(), words.end(), text) != words.end();
}

void TakeOut(Words& words, std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < std::min(end, words.size()); ++i)
        words[i].text.clear();
}

// [unroll], [loop], [branch(...)] in front of a statement: hints that nobody here takes.
void TakeOutAttributes(Words& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!words[i].is("["))
            continue;
        const std::size_t before = PreviousWord(words, i), name = NextWord(words, i + 1);
        const bool begins = before == words.size() ||
                            IsOneOf(words[before].text, {"{", "}", ";", ")", "else", "do", ":"});
        if (begins && name < words.size() &&
            IsOneOf(LowerCase(words[name].text),
                    {"unroll", "loop", "branch", "flatten", "fastopt", "call", "forcecase",
                     "isolate", "predicate", "predicateblock", "unused"}))
            TakeOut(words, i, Closing(words, i) + 1);
    }
}

// `vector<float, 3>` and `matrix<float, 4, 3>` in one word.
void SpellTemplate(Words& words, std::size_t at) {
    std::string spelled;
    int numbers = 0;
    std::size_t end = NextWord(words, NextWord(words, at + 1) + 1);
    for (; end < words.size() && !words[end].is(">") && spelled.size() < 16;
         end = NextWord(words, end + 1)) {
        if (words[end].is(","))
            continue;
        if (words[end].kind == TokenKind::Number && numbers++ > 0)
            spelled += "x";
        spelled += words[end].text;
    }
    if (end >= words.size() || !words[end].is(">") || !BuiltInType(spelled))
        return;
    TakeOut(words, at, end + 1);
    words[at].text = spelled;
}

// Behind it stands what it is the type of, or it is the type of a cast.
bool IsUsedAsType(const Words& words, std::size_t at) {
    const std::size_t next = NextWord(words, at + 1), before = PreviousWord(words, at);
    if (next >= words.size() || words[next].isName())
        return next < words.size();
    if (before >= words.size() || !words[before].is("(") || !words[next].is(")"))
        return false;
    const std::size_t operand = NextWord(words, next + 1);
    return operand < words.size() && (words[operand].isName() || words[operand].is("(") ||
                                      words[operand].kind == TokenKind::Number);
}

std::string CanonicalType(std::string_view name, const HlslType& type) {
    std::string spelled = type.type == ValueType::Bool  ? "bool"
                          : type.type == ValueType::Int ? "int"
                                                        : "float";
    if (EqualBlindToCase(name.substr(0, 1), "u"))
        spelled = "uint";
    if (type.valueClass == ValueClass::Matrix)
        spelled += std::to_string(type.rows) + "x";
    if (type.valueClass != ValueClass::Scalar)
        spelled += std::to_string(type.columns);
    return spelled;
}

// Types in their modern spelling: `half3`, `unsigned int`, `FLOAT`.
void SpellTypes(ShaderText& text, bool keepRowMajor) {
    Words& words = text.words;
    for (std::size_t i = 0; i < words.size(); ++i) {
        Word& word = words[i];
        if (!word.isName() || word.text.empty())
            continue;
        const std::size_t next = NextWord(words, i + 1);
        const bool isQualifier = next < words.size() && words[next].isName();
        if (!keepRowMajor && IsOneOf(word.text, {"row_major", "column_major"}))
            word.text.clear();
        else if (isQualifier &&
                 IsOneOf(word.text, {"extern", "shared", "volatile", "inline", "precise", "linear",
                                     "centroid", "nointerpolation", "noperspective"}))
            word.text.clear();
        else if (word.is("unsigned") && isQualifier && words[next].is("int"))
            word.text.clear(), words[next].text = "uint";
        else if ((EqualBlindToCase(word.text, "vector") || EqualBlindToCase(word.text, "matrix")) &&
                 next < words.size() && words[next].is("<"))
            SpellTemplate(words, i);
        else if (const auto type = text.types.find(word.text); type && !type->structure) {
            const auto builtIn = BuiltInType(word.text);
            const bool isKeyword = word.text.starts_with("half") || word.text.starts_with("double");
            const bool isLoose = LowerCase(word.text) != word.text || word.is("dword") ||
                                 word.is("vector") || word.is("matrix");
            if (!builtIn || builtIn->type == ValueType::Sampler)
                continue;
            // What is left of these words is a name.
            if (isKeyword || (isLoose && IsUsedAsType(words, i)))
                word.text = CanonicalType(word.text, *builtIn);
        }
    }
}

// A function of the text may have the name of an intrinsic, and take another number of arguments.
bool IsOfTheText(const ShaderText& text, std::size_t at) {
    const Words& words = text.words;
    const auto [first, last] = text.functionsByName.equal_range(words[at].text);
    const std::size_t open = NextWord(words, at + 1);
    if (first == last || !IsIntrinsic(words[at].text) || open >= words.size() ||
        !words[open].is("("))
        return first != last;
    const WordRange inside = {open + 1, Closing(words, open)};
    const std::size_t count =
        JoinWords(words, inside) == "void" ? 0 : SplitAtCommas(words, inside).size();
    return std::any_of(first, last, [&](const auto& named) {
        const std::vector<HlslArgument>& arguments = text.functions[named.second].arguments;
        const auto isNeeded = [](const HlslArgument& a) { return a.start.begin == a.start.end; };
        return count <= arguments.size() &&
               count >= static_cast<std::size_t>(
                            std::count_if(arguments.begin(), arguments.end(), isNeeded));
    });
}

void MakeNamesSafe(ShaderText& text) {
    Words& words = text.words;
    for (std::size_t i = 0; i < words.size(); ++i) {
        Word& word = words[i];
        if (!word.isName() || word.text.empty())
            continue;
        const std::size_t before = PreviousWord(words, i);
        const bool isMember = before < words.size() && words[before].is(".");
        if (isMember && IsSwizzle(word.text))
            continue;
        word.text =
            !isMember && IsOfTheText(text, i) ? FunctionName(word.text) : SafeName(word.text);
    }
}

void CallHelpers(ShaderText& text) {
    for (Word& word : text.words)
        if (word.isName() &&
            IsOneOf(word.text, {"fmod", "ldexp", "frexp", "lit", "texCUBEproj", "tex1D", "tex1Dlod",
                                "tex1Dbias", "tex1Dproj", "tex1Dgrad"}))
            word.text = "hx_" + word.text;
}

// Behind it the compiler leaves out what the function returns, and GLSL wants to see that.
void MakeDiscardsConditional(Words& words) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::size_t end = NextWord(words, i + 1);
        if (!words[i].is("discard") || end >= words.size() || !words[end].is(";"))
            continue;
        words[i].text = "{ if ( true ) discard ; }";
        words[end].text.clear();
    }
}

// `any` and `all` take numbers for truths, which the compiler reads as bits. And `mul` of a whole
// number could be any of several to it.
void SpellArguments(ShaderText& text) {
    Words& words = text.words;
    Words spelled;
    spelled.reserve(words.size());
    std::vector<std::size_t> ends;
    const auto put = [&](std::size_t at, std::initializer_list<const char*> parts) {
        for (const char* part : parts)
            for (const Token& token : Lex(part))
                if (token.kind != TokenKind::End)
                    spelled.push_back({token.kind, words[at].line, std::string(token.text)});
    };
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!ends.empty() && ends.back() == i) {
            ends.pop_back();
            put(i, {")", "*", "1.0", "!=", "0.0", ")"});
            continue;
        }
        spelled.push_back(words[i]);
        const std::size_t open = NextWord(words, i + 1);
        const bool isCall = words[i].isName() && open < words.size() && words[open].is("(") &&
                            Closing(words, open) < words.size();
        if (isCall && (words[i].is("any") || words[i].is("all"))) {
            ends.push_back(Closing(words, open));
            put(open, {"(", "("});
            i = open;
        } else if (isCall && words[i].is("mul")) {
            for (const WordRange part : SplitAtCommas(words, {open + 1, Closing(words, open)})) {
                Word& only = words[NextWord(words, part.begin)];
                const bool isWhole = only.kind == TokenKind::Number &&
                                     only.text.find_first_not_of("0123456789") == std::string::npos;
                if (isWhole && NextWord(words, NextWord(words, part.begin) + 1) >= part.end)
                    only.text += ".0";
            }
        }
    }
    words = std::move(spelled);
}

// The entry that is written for the compiler carries them. Left in place they would make some
// members something of their own.
void TakeOutSemantics(ShaderText& text) {
    Words& words = text.words;
    const auto takeOut = [&](std::size_t begin, std::size_t end) {
        for (std::size_t i = begin; i < std::min(end, words.size()); ++i) {
            if (words[i].is("="))
                return;
            if (words[i].is(":"))
                for (; i < end && !IsOneOf(words[i].text, {";", ",", "=", "{"}); ++i)
                    words[i].text.clear();
        }
    };
    for (std::size_t i = 0; i < words.size(); ++i)
        if (words[i].is("struct")) {
            std::size_t open = i;
            while (open < words.size() && !words[open].is("{") && !words[open].is(";"))
                ++open;
            if (open < words.size() && words[open].is("{"))
                takeOut(open + 1, Closing(words, open));
        }
    for (const HlslFunction& function : text.functions) {
        std::size_t end = function.words.begin;
        for (const HlslArgument& argument : function.arguments) {
            takeOut(argument.words.begin, argument.words.end);
            end = argument.words.end;
        }
        while (end < function.words.end && !words[end].is(")"))
            ++end;
        takeOut(end, function.body.end ? function.body.begin : function.words.end);
    }
}

} // namespace

namespace {

// What has been put in as one word becomes words.
void SplitWords(Words& words) {
    Words split;
    split.reserve(words.size());
    for (Word& word : words)
        if (word.text.find(' ') == std::string::npos)
            split.push_back(std::move(word));
        else
            for (const Token& token : Lex(word.text))
                if (token.kind != TokenKind::End)
                    split.push_back({token.kind, word.line, std::string(token.text)});
    words = std::move(split);
}

} // namespace

void CheckCalls(const ShaderText& text, const Words& words, WordRange range,
                const SourcePlace* place) {
    for (std::size_t i = range.begin; i < std::min(range.end, words.size()); ++i) {
        const std::size_t next = NextWord(words, i + 1);
        if (!words[i].isName() || words[i].text.empty() || next >= range.end ||
            !words[next].is("("))
            continue;
        const std::string& name = words[i].text;
        const bool isKnown = IsIntrinsic(name) || text.types.find(name) ||
                             IsOneOf(name, {"if", "for", "while", "switch", "return"}) ||
                             text.functionsByName.contains(name);
        if (!isKnown)
            throw EffectError(place ? *place : PlaceOf(text.source, words[i].line),
                              "'" + (name.starts_with("hl_") ? name.substr(3) : name) +
                                  "' is no function of Direct3D 9, and the file has none of this "
                                  "name");
    }
}

void RewriteHlsl(ShaderText& text, bool keepRowMajor) {
    text.parse();
    TakeOutAttributes(text.words);
    SpellTypes(text, keepRowMajor);
    MakeNamesSafe(text);
    text.parse();
    for (const HlslFunction& function : text.functions) {
        CheckCalls(text, text.words, function.body);
        for (const HlslArgument& argument : function.arguments)
            CheckCalls(text, text.words, argument.start);
    }
    for (const HlslVariable& variable : text.variables)
        CheckCalls(text, text.words, variable.start);
    RewriteLoopVariables(text);
    RewriteSamplers(text);
    CallHelpers(text);
    MakeDiscardsConditional(text.words);
    SpellArguments(text);
    RewriteMatrixSwizzles(text);
    RewriteInitializers(text);
    SplitWords(text.words);
    CastIndices(text);
    text.parse();
    TakeOutSemantics(text);
}

} // namespace VornPlatform
