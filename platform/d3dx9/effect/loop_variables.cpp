// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/loop_variables.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

// A use that is further away is not looked for: no file may make this take for ever.
constexpr std::size_t FarthestUse = 20000;

// Behind the statement that begins at `at`.
std::size_t StatementEnd(const Words& words, std::size_t at) {
    for (; at < words.size(); at = NextWord(words, at + 1)) {
        if (words[at].is("{"))
            return std::min(Closing(words, at) + 1, words.size());
        if (words[at].is("("))
            at = Closing(words, at);
        else if (words[at].is(";"))
            return at + 1;
    }
    return words.size();
}

bool IsDeclared(const ShaderText& text, std::size_t name) {
    const std::size_t before = PreviousWord(text.words, name);
    return before < text.words.size() && text.words[before].isName() &&
           text.types.find(text.words[before].text).has_value();
}

// Whether the first word of that name behind the loop, in the block around it, is not another
// declaration.
bool IsUsedBehind(const ShaderText& text, const std::string& name, std::size_t from) {
    const Words& words = text.words;
    int depth = 0;
    for (std::size_t i = from; i < std::min(words.size(), from + FarthestUse); ++i) {
        depth += words[i].is("{") - words[i].is("}");
        if (depth < 0)
            return false;
        const std::size_t before = PreviousWord(words, i);
        if (words[i].is(name) && before < words.size() && !words[before].is("."))
            return !IsDeclared(text, i);
    }
    return false;
}

bool IsDeclaredBefore(const ShaderText& text, const HlslFunction& function, const std::string& name,
                      std::size_t loop) {
    const Words& words = text.words;
    const std::size_t from = std::max(function.words.begin, loop - std::min(loop, FarthestUse));
    for (std::size_t i = from; i < loop; ++i) {
        const std::size_t type = words[i].is(name) ? PreviousWord(words, i) : words.size();
        if (type < words.size() && IsDeclared(text, i)) {
            const std::size_t bracket = PreviousWord(words, type);
            const std::size_t head =
                bracket < words.size() ? PreviousWord(words, bracket) : bracket;
            if (head >= words.size() || !words[head].is("for"))
                return true;
        }
    }
    return false;
}

} // namespace

void RewriteLoopVariables(ShaderText& text) {
    Words& words = text.words;
    for (const HlslFunction& function : text.functions)
        for (std::size_t i = function.body.begin; i < function.body.end; ++i) {
            const std::size_t open = NextWord(words, i + 1);
            if (!words[i].is("for") || open >= function.body.end || !words[open].is("("))
                continue;
            const std::size_t type = NextWord(words, open + 1);
            const std::size_t name = NextWord(words, type + 1), equals = NextWord(words, name + 1);
            const std::size_t before = PreviousWord(words, i);
            const bool standsAlone =
                words[before].is(";") || words[before].is("{") || words[before].is("}");
            if (equals >= function.body.end || !words[name].isName() || !words[equals].is("=") ||
                !IsDeclared(text, name) || !standsAlone)
                continue;
            const std::size_t end = StatementEnd(words, NextWord(words, Closing(words, open) + 1));
            if (!IsUsedBehind(text, words[name].text, end) ||
                IsDeclaredBefore(text, function, words[name].text, i))
                continue;
            words[i].text = words[type].text + " " + words[name].text + "; for";
            words[type].text.clear();
        }
}

} // namespace VornPlatform
