// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/shader_text.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

// What the compiler's recursion bears, and more than anybody writes.
constexpr int DeepestBrackets = 200;
constexpr int LongestChain = 2000;       // of operators without a bracket, comma or semicolon
constexpr int LongestExpression = 10000; // in commas
constexpr int LongestElse = 500;         // in one function

bool IsOpen(const Word& word) {
    return word.is("(") || word.is("[") || word.is("{");
}
bool IsClose(const Word& word) {
    return word.is(")") || word.is("]") || word.is("}");
}

// Counts what the compilers walk over by recursion.
class ShapeChecker {
public:
    // What is wrong with the word; null for nothing.
    const char* check(const Word& word) {
        if (word.kind == TokenKind::Unknown || word.kind == TokenKind::String)
            return "this is no part of the shader language";
        if (IsOpen(word))
            open_.push_back(endOf(word));
        else if (IsClose(word)) {
            if (open_.empty() || word.text[0] != (inList() ? '}' : open_.back()))
                return "this bracket closes nothing";
            open_.pop_back();
        }
        count(word);
        before_ = &word;
        const bool isDeep = open_.size() > DeepestBrackets || operators_ > LongestChain ||
                            heads_ > DeepestBrackets || elses_ > LongestElse ||
                            commas_ > LongestExpression;
        return isDeep ? "this is nested too deeply" : nullptr;
    }
    // The bracket that is missing at the end; 0 for none.
    char missing() const { return open_.empty() ? '\0' : inList() ? '}' : open_.back(); }

private:
    static constexpr char ListEnd = 'l'; // a brace that closes a start value

    bool inList() const { return !open_.empty() && open_.back() == ListEnd; }

    char endOf(const Word& word) const {
        if (!word.is("{"))
            return word.is("(") ? ')' : ']';
        const bool isList =
            before_ && (before_->is("=") || (inList() && (before_->is("{") || before_->is(","))));
        return isList ? ListEnd : '}';
    }

    void count(const Word& word) {
        const bool isBrace = word.is("{") || word.is("}"), isEnd = word.is(";");
        operators_ += word.kind == TokenKind::Operator && !IsOpen(word) && !IsClose(word);
        if (isEnd || isBrace || word.is(","))
            operators_ = 0;
        // Loops and conditions without braces around what they hold.
        heads_ += word.is("for") || word.is("while") || word.is("do") || word.is("if");
        if (isBrace || (isEnd && (open_.empty() || open_.back() != ')')))
            heads_ = 0;
        // Lists may be as long as they like, expressions and arguments not.
        commas_ += word.is(",") && !inList();
        if (isEnd)
            commas_ = 0;
        elses_ += word.is("else");
        if (open_.empty())
            elses_ = 0;
    }

    std::vector<char> open_; // what closes each
    const Word* before_ = nullptr;
    int operators_ = 0, heads_ = 0, commas_ = 0, elses_ = 0;
};

void CheckShape(const EffectSource& source, const Words& words) {
    ShapeChecker checker;
    for (const Word& word : words)
        if (const char* fault = checker.check(word))
            throw EffectError(PlaceOf(source, word.line),
                              std::string(fault) + ": '" + word.text.substr(0, 32) + "'");
    if (const char missing = checker.missing())
        throw EffectError(PlaceOf(source, words.back().line),
                          std::string("the text ends where a '") + missing + "' is missing");
}

// Walks over the declarations at file scope.
class Reader {
public:
    explicit Reader(ShaderText& text) : text_(text), words_(text.words) {}

    void read() {
        for (at_ = NextWord(words_, 0); at_ < words_.size();)
            if (words_[at_].is(";") || words_[at_].is("}"))
                step();
            else
                readDeclaration();
    }

private:
    void step() { at_ = NextWord(words_, at_ + 1); }
    bool here(std::string_view word) const { return at_ < words_.size() && words_[at_].is(word); }
    std::string takeName() {
        std::string name;
        if (at_ < words_.size() && words_[at_].isName()) {
            name = words_[at_].text;
            step();
        }
        return name;
    }
    void skipBracket() { at_ = NextWord(words_, Closing(words_, at_) + 1); }
    // Up to one of the words at this level; a semicolon ends it in any case.
    void skipTo(std::string_view first, std::string_view second = ";") {
        while (at_ < words_.size() && !here(first) && !here(second) && !here(";"))
            if (IsOpen(words_[at_]))
                skipBracket();
            else
                step();
    }

    std::vector<UINT> readDimensions() {
        std::vector<UINT> dimensions;
        while (here("[")) {
            const std::size_t size = NextWord(words_, at_ + 1);
            const auto number = ReadNumber(size < words_.size() ? words_[size].text : "");
            dimensions.push_back(number && number->value >= 0 && number->value <= MaxShaderNumbers
                                     ? static_cast<UINT>(number->value)
                                     : 0);
            skipBracket();
        }
        return dimensions;
    }

    // Of `vector<float, 3>` a rewrite has made float3 before.
    void readDeclaration() {
        const std::size_t begin = at_;
        const bool isTypedef = here("typedef");
        bool isStatic = false;
        while (isTypedef && here("typedef"))
            step();
        for (; at_ < words_.size() && (IsQualifier(words_[at_].text) || here("["));) {
            isStatic = isStatic || here("static");
            if (here("["))
                skipBracket();
            else
                step();
        }
        std::string type;
        if (here("struct")) {
            step();
            type = takeName();
            skipTo("{");
            if (here("{"))
                skipBracket();
        } else
            type = takeName();
        if (type.empty() && !here(";")) {
            step();
            return;
        }
        if (isTypedef) {
            const std::string name = takeName();
            text_.types.addTypedef(name, type, readDimensions());
            skipTo(";");
            return;
        }
        readDeclarators(begin, type, isStatic);
    }

    void readDeclarators(std::size_t begin, const std::string& type, bool isStatic) {
        const std::size_t first = text_.variables.size();
        while (at_ < words_.size() && !here(";")) {
            HlslVariable variable;
            variable.type = type;
            variable.isStatic = isStatic;
            variable.nameWord = at_;
            variable.name = takeName();
            if (variable.name.empty())
                break;
            if (here("(")) {
                readFunction(begin, type, variable.name);
                return;
            }
            variable.dimensions.begin = at_;
            readDimensions();
            variable.dimensions.end = at_;
            skipTo("=", ",");
            if (here("=")) {
                step();
                variable.start.begin = at_;
                skipTo(",");
                variable.start.end = at_;
            }
            text_.variables.push_back(variable);
            if (here(","))
                step();
        }
        skipTo(";");
        for (std::size_t i = first; i < text_.variables.size(); ++i)
            text_.variables[i].statement = {begin, std::min(at_ + 1, words_.size())};
    }

    void readFunction(std::size_t begin, const std::string& type, const std::string& name) {
        HlslFunction function;
        function.name = name;
        function.type = type;
        function.line = words_[begin].line;
        const std::size_t close = Closing(words_, at_);
        for (const WordRange part : SplitAtCommas(words_, {at_ + 1, close}))
            if (HlslArgument argument = readArgument(part); !argument.type.empty())
                function.arguments.push_back(std::move(argument));
        at_ = NextWord(words_, close + 1);
        if (here(":")) {
            step();
            function.semantic = takeName();
        }
        skipTo("{");
        if (here("{")) {
            function.body = {at_, std::min(Closing(words_, at_) + 1, words_.size())};
            at_ = function.body.end;
            if (at_ < words_.size() && words_[at_].text.empty())
                step();
        }
        function.words = {begin,
                          std::min(function.body.end ? function.body.end : at_ + 1, words_.size())};
        text_.functions.push_back(std::move(function));
    }

    HlslArgument readArgument(WordRange range) {
        const std::size_t back = std::exchange(at_, NextWord(words_, range.begin));
        HlslArgument argument;
        argument.words = range;
        for (; at_ < range.end && IsQualifier(words_[at_].text); step()) {
            argument.isOut = argument.isOut || here("out") || here("inout");
            argument.isIn = here("out") ? false : argument.isIn;
            argument.isUniform = argument.isUniform || here("uniform");
        }
        argument.typeWord = at_;
        argument.type = takeName();
        if (at_ < range.end)
            argument.name = takeName();
        if (argument.type == "void" && argument.name.empty())
            argument.type.clear();
        argument.dimensions = readDimensions();
        if (at_ < range.end && here(":")) {
            step();
            argument.semantic = takeName();
        }
        if (at_ < range.end && here("="))
            argument.start = {NextWord(words_, at_ + 1), range.end};
        at_ = back;
        return argument;
    }

    ShaderText& text_;
    const Words& words_;
    std::size_t at_ = 0;
};

} // namespace

ShaderText::ShaderText(const EffectSource& from) : source(from), types(from) {
    for (const Token& token : Lex(source.text))
        if (token.kind != TokenKind::End)
            words.push_back({token.kind, token.line, std::string(token.text)});
    CheckShape(source, words);
}

void ShaderText::parse() {
    functions.clear();
    variables.clear();
    Reader(*this).read();
    functionsByName.clear();
    for (std::size_t i = 0; i < functions.size(); ++i)
        functionsByName.emplace(functions[i].name, i);
}

std::size_t Closing(const Words& words, std::size_t open) {
    int depth = 0;
    for (std::size_t i = open; i < words.size(); ++i) {
        depth += IsOpen(words[i]) - IsClose(words[i]);
        if (depth == 0)
            return i;
    }
    return words.size();
}

std::size_t Opening(const Words& words, std::size_t close) {
    int depth = 0;
    for (std::size_t i = close + 1; i-- > 0;) {
        depth += IsClose(words[i]) - IsOpen(words[i]);
        if (depth == 0)
            return i;
    }
    return words.size();
}

std::size_t NextWord(const Words& words, std::size_t at) {
    while (at < words.size() && words[at].text.empty())
        ++at;
    return std::min(at, words.size());
}

std::size_t PreviousWord(const Words& words, std::size_t at) {
    while (at-- > 0)
        if (!words[at].text.empty())
            return at;
    return words.size();
}

std::string JoinWords(const Words& words, WordRange range) {
    std::string text;
    for (std::size_t i = range.begin; i < std::min(range.end, words.size()); ++i)
        if (!words[i].text.empty())
            text += (text.empty() ? "" : " ") + words[i].text;
    return text;
}

std::vector<WordRange> SplitAtCommas(const Words& words, WordRange range) {
    std::vector<WordRange> parts;
    range.end = std::min(range.end, words.size());
    std::size_t begin = range.begin;
    for (std::size_t i = range.begin; i < range.end; ++i)
        if (IsOpen(words[i]))
            i = std::min(Closing(words, i), range.end - 1);
        else if (words[i].is(",")) {
            parts.push_back({begin, i});
            begin = i + 1;
        }
    if (NextWord(words, begin) < range.end)
        parts.push_back({begin, range.end});
    return parts;
}

bool IsQualifier(std::string_view word) {
    constexpr std::string_view Known[] = {"in",        "out",          "inout",    "uniform",
                                          "const",     "static",       "extern",   "inline",
                                          "row_major", "column_major", "volatile", "shared"};
    return std::find(std::begin(Known), std::end(Known), word) != std::end(Known);
}

SourcePlace PlaceOf(const EffectSource& source, std::uint32_t line) {
    if (source.lines.empty())
        return {source.files.empty() ? "" : source.files[0].first, static_cast<int>(line) + 1};
    return source.lines[std::min<std::size_t>(line, source.lines.size() - 1)];
}

std::string LaidOut(const Words& words) {
    std::string text;
    std::uint32_t line = 0;
    for (const Word& word : words) {
        if (word.text.empty())
            continue;
        for (; line < word.line; ++line)
            text += '\n';
        text += word.text;
        text += ' ';
    }
    return text;
}

} // namespace VornPlatform
