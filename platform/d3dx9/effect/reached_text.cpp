// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/reached_text.hpp"

#include "platform/d3dx9/effect/entry_point.hpp"
#include "platform/d3dx9/effect/hlsl_check.hpp"
#include "platform/d3dx9/effect/hlsl_rewrite.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

bool Contains(const std::vector<std::string>& sorted, const std::string& text) {
    return std::binary_search(sorted.begin(), sorted.end(), text);
}

// "=", "+=", "<<=", but no comparison.
bool Assigns(const std::string& op) {
    return op == "++" || op == "--" ||
           (op.ends_with('=') && op != "==" && op != "!=" && op != "<=" && op != ">=");
}

// Behind `x.a[1].b`.
std::size_t BehindChain(const Words& words, std::size_t at) {
    at = NextWord(words, at + 1);
    while (at < words.size()) {
        if (words[at].is("["))
            at = NextWord(words, Closing(words, at) + 1);
        else if (words[at].is("."))
            at = NextWord(words, NextWord(words, at + 1) + 1);
        else
            break;
    }
    return at;
}

} // namespace

ReachedText::ReachedText(const ShaderText& text, const HlslFunction& entry,
                         const std::vector<Words>& given)
    : source_(text), functions_(text.functions.size()), variables_(text.variables.size()),
      computed_(text.variables.size()) {
    for (const SourceParameter& parameter : text.source.parameters)
        if (!parameter.isStatic)
            parameters_.push_back(SafeName(parameter.name));
    std::sort(parameters_.begin(), parameters_.end());
    findComputed();

    for (const Words& words : given)
        reach(words, {0, words.size()});
    functions_[static_cast<std::size_t>(&entry - text.functions.data())] = true;
    reach(text.words, entry.words);
    CheckFunctions(text, functions_);
    findWritten();

    for (const HlslVariable& variable : text.variables)
        if (Contains(written_, variable.name) && !variable.isStatic)
            start_ += variable.name + " = " + BlockCopyName(variable.name) + "; ";
    for (std::size_t i = 0; i < variables_.size(); ++i) {
        const HlslVariable& variable = text.variables[i];
        if (!variables_[i])
            continue;
        const std::string value = "hx_t" + std::to_string(i);
        start_ += variable.type + " " + value + JoinWords(text.words, variable.dimensions) + " = " +
                  JoinWords(text.words, variable.start) + "; " + variable.name + " = " + value +
                  "; ";
    }
}

bool ReachedText::isParameter(const std::string& name) const {
    return Contains(parameters_, name);
}

// Those whose value calls a function or reads a parameter, or another of them: the compiler takes
// constants only, and falls over some others.
void ReachedText::findComputed() {
    const Words& words = source_.words;
    for (std::size_t v = 0; v < source_.variables.size(); ++v) {
        const HlslVariable& variable = source_.variables[v];
        for (std::size_t i = variable.start.begin; i < variable.start.end; ++i) {
            if (!variable.isStatic || !words[i].isName() || words[i].text.empty())
                continue;
            const std::size_t next = NextWord(words, i + 1);
            const bool isCall = next < variable.start.end && words[next].is("(");
            if ((isCall && !BuiltInType(words[i].text)) || isParameter(words[i].text) ||
                computedByName_.contains(words[i].text)) {
                computed_[v] = true;
                computedByName_.emplace(variable.name, v);
                break;
            }
        }
    }
}

void ReachedText::reach(const Words& words, WordRange range) {
    // What is found is looked at when its turn comes: files may nest calls as deep as they like.
    struct Work {
        const Words* words;
        WordRange range;
    };
    std::vector<Work> work{{&words, range}};
    while (!work.empty()) {
        const Work now = work.back();
        work.pop_back();
        for (std::size_t i = now.range.begin; i < now.range.end; ++i) {
            const Word& word = (*now.words)[i];
            if (!word.isName() || word.text.empty())
                continue;
            const auto [first, last] = source_.functionsByName.equal_range(word.text);
            for (auto at = first; at != last; ++at)
                if (!functions_[at->second]) {
                    functions_[at->second] = true;
                    work.push_back({&source_.words, source_.functions[at->second].words});
                }
            const auto variable = computedByName_.find(word.text);
            if (variable != computedByName_.end() && !variables_[variable->second]) {
                variables_[variable->second] = true;
                work.push_back({&source_.words, source_.variables[variable->second].start});
            }
        }
    }
}

// Names are enough: a local variable of a parameter's name makes a copy that nobody reads.
void ReachedText::findWritten() {
    const Words& words = source_.words;
    for (std::size_t f = 0; f < functions_.size(); ++f) {
        if (!functions_[f])
            continue;
        const WordRange body = source_.functions[f].body;
        for (std::size_t i = body.begin; i < body.end; ++i) {
            if (!words[i].isName() || words[i].text.empty())
                continue;
            const std::size_t next = NextWord(words, i + 1);
            if (next < words.size() && words[next].is("(")) {
                // Arguments that the function may write; which ones is told for those of the file.
                const auto parts = SplitAtCommas(words, {next + 1, Closing(words, next)});
                const bool isOurs = words[i].text.starts_with("hl_");
                const auto [first, last] = source_.functionsByName.equal_range(words[i].text);
                for (auto at = first; at != last; ++at)
                    if (const HlslFunction& callee = source_.functions[at->second];
                        !callee.arguments.empty())
                        for (std::size_t k = 0; k < std::min(parts.size(), callee.arguments.size());
                             ++k)
                            if (callee.arguments[k].isOut)
                                noteWritten(words, parts[k]);
                if (!isOurs && (words[i].text.starts_with("hx_") || words[i].is("modf") ||
                                words[i].is("sincos")))
                    for (const WordRange part : parts)
                        noteWritten(words, part);
                continue;
            }
            if (!isParameter(words[i].text))
                continue;
            const std::size_t behind = BehindChain(words, i), before = PreviousWord(words, i);
            const bool isWritten =
                (behind < words.size() && Assigns(words[behind].text)) ||
                (before < words.size() && (words[before].is("++") || words[before].is("--")));
            if (isWritten)
                noteWritten(words, {i, i + 1});
        }
    }
    std::sort(written_.begin(), written_.end());
}

void ReachedText::noteWritten(const Words& words, WordRange target) {
    const std::size_t at = NextWord(words, target.begin);
    if (at < target.end && isParameter(words[at].text))
        written_.push_back(words[at].text);
}

std::string ReachedText::text() const {
    Words words = source_.words;
    const auto takeOut = [&](WordRange range) {
        for (std::size_t i = range.begin; i < std::min(range.end, words.size()); ++i)
            words[i].text.clear();
    };
    for (std::size_t i = 0; i < functions_.size(); ++i)
        if (!functions_[i])
            takeOut(source_.functions[i].words);

    for (std::size_t i = 0; i < source_.variables.size(); ++i) {
        const HlslVariable& variable = source_.variables[i];
        if (computed_[i]) {
            takeOut({variable.dimensions.end, variable.start.end});
            for (std::size_t at = variable.statement.begin; at < variable.nameWord; ++at)
                if (words[at].is("const"))
                    words[at].text.clear();
        } else if (!variable.isStatic && Contains(written_, variable.name)) {
            words[variable.nameWord].text = BlockCopyName(variable.name);
            words[variable.statement.end - 1].text +=
                " static " + variable.type + " " + variable.name +
                JoinWords(source_.words, variable.dimensions) + ";";
        }
    }
    return LaidOut(words);
}

} // namespace VornPlatform
