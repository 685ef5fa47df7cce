// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/effect_scanner.hpp"

namespace VornPlatform {

namespace {

constexpr std::size_t MaxDepth = 200;
constexpr int MaxFaults = 20;

bool Opens(const Token& token) {
    return token.kind == TokenKind::Operator && (token.is("(") || token.is("[") || token.is("{"));
}
bool Closes(const Token& token) {
    return token.kind == TokenKind::Operator && (token.is(")") || token.is("]") || token.is("}"));
}
std::string_view PartnerOf(std::string_view bracket) {
    return bracket == "(" ? ")" : bracket == "[" ? "]" : "}";
}

std::string Describe(const Token& token) {
    if (token.text[0] == '"')
        return "this text has no closing \"";
    if (token.is("#"))
        return "# has a meaning only at the start of a line";
    constexpr char Digits[] = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(token.text[0]);
    const std::string number = {'0', 'x', Digits[byte >> 4], Digits[byte & 15]};
    const bool isShown = byte > ' ' && byte < 127;
    return "nothing begins with the character " + number +
           (isShown ? " (" + std::string(token.text) + ")" : "");
}

} // namespace

EffectScanner::EffectScanner(const PreprocessedText& input, const std::vector<Token>& tokens)
    : input_(input), tokens_(tokens), cursor_(tokens, input.lines), edits_(input.text) {}

EffectSource EffectScanner::run() {
    checkWords();
    pairBrackets();
    while (!cursor_.atEnd()) {
        const std::size_t start = cursor_.at();
        try {
            item();
        } catch (const EffectError& error) {
            report(error);
            recover(start);
        }
    }
    if (!faults_.empty())
        throw EffectError(faults_);
    source_.parameters = std::move(declarations_.parameters);
    source_.structs = std::move(declarations_.structs);
    return std::move(source_);
}

// What no word begins with would stop any compiler, so it goes no further.
void EffectScanner::checkWords() const {
    for (const Token& token : tokens_)
        if (token.kind == TokenKind::Unknown ||
            (token.kind == TokenKind::Operator && (token.is("#") || token.is("##"))))
            cursor_.fail(token, Describe(token));
}

void EffectScanner::pairBrackets() {
    partner_.resize(tokens_.size());
    std::vector<std::uint32_t> open;
    for (std::uint32_t at = 0; at < tokens_.size(); ++at) {
        const Token& token = tokens_[at];
        if (Opens(token)) {
            if (open.size() == MaxDepth)
                cursor_.fail(token, "brackets stand in each other more than " +
                                        std::to_string(MaxDepth) + " deep");
            open.push_back(at);
        } else if (Closes(token)) {
            if (open.empty())
                cursor_.fail(token, "there is no bracket that this '" + std::string(token.text) +
                                        "' closes");
            const Token& opening = tokens_[open.back()];
            if (token.text != PartnerOf(opening.text))
                cursor_.fail(token, "expected '" + std::string(PartnerOf(opening.text)) +
                                        "' for the '" + std::string(opening.text) + "' of line " +
                                        std::to_string(cursor_.place(opening).line) + ", found '" +
                                        std::string(token.text) + "'");
            partner_[open.back()] = at;
            partner_[at] = open.back();
            open.pop_back();
        }
    }
    if (!open.empty())
        cursor_.fail(tokens_[open.back()],
                     "this '" + std::string(tokens_[open.back()].text) + "' is never closed");
}

// From an opening one behind the closing one.
void EffectScanner::skipBrackets() {
    cursor_.moveTo(partner_[cursor_.at()] + 1);
}

// Up to what stands outside of brackets, or to the end of the brackets around.
void EffectScanner::skipTo(std::string_view end) {
    while (!cursor_.atEnd() && !cursor_.is(end) && !cursor_.is(";") && !Closes(cursor_.peek()))
        if (Opens(cursor_.peek()))
            skipBrackets();
        else
            cursor_.take();
}

// Behind a declaration with a fault in it.
void EffectScanner::recover(std::size_t start) {
    cursor_.moveTo(start);
    while (!cursor_.atEnd()) {
        if (cursor_.takeIf(";"))
            return;
        const bool isBlock = cursor_.is("{");
        if (Opens(cursor_.peek()))
            skipBrackets();
        else
            cursor_.take();
        if (isBlock && !cursor_.is(";") && !cursor_.is(","))
            return;
    }
}

// The first ones are enough: later ones often follow from them.
void EffectScanner::report(const EffectError& error) {
    if (++faultCount_ <= MaxFaults)
        faults_ += (faults_.empty() ? "" : "\n") + std::string(error.what());
}

void EffectScanner::warn(const Token& token, const std::string& message) {
    const SourcePlace& place = cursor_.place(token);
    if (source_.warnings.size() < 10'000)
        source_.warnings +=
            place.file + "(" + std::to_string(place.line) + "): warning: " + message + "\n";
}

// Everything from a token up to the cursor leaves the text.
void EffectScanner::blankFrom(std::size_t first) {
    if (cursor_.at() > first)
        edits_.blank(tokens_[first].position, tokens_[cursor_.at() - 1].end());
}

void EffectScanner::item() {
    for (; packing_ < input_.packing.size(); ++packing_) {
        if (input_.packing[packing_].first > cursor_.peek().position)
            break;
        rowMajor_ = input_.packing[packing_].second;
    }
    const std::size_t start = cursor_.at();
    if (cursor_.takeIf(";"))
        blankFrom(start);
    else if (!bufferEnds_.empty() && cursor_.at() == bufferEnds_.back()) {
        bufferEnds_.pop_back();
        cursor_.take();
        blankFrom(start);
    } else if (cursor_.is("[")) // an attribute of a function
        skipBrackets();
    else if (!effectItem())
        declaration();
}

// What HLSL does not have. The words are names too where something else follows.
bool EffectScanner::effectItem() {
    const Token& token = cursor_.peek();
    const bool isNamed =
        cursor_.peek(1).kind == TokenKind::Identifier || cursor_.is("{", 1) || cursor_.is("<", 1);
    if (!isNamed)
        return false;
    if (token.isWord("technique"))
        technique();
    else if (token.isWord("technique10") || token.isWord("technique11") || token.isWord("fxgroup"))
        skipItem("of a later Direct3D: it is passed over");
    else if (token.isWord("stateblock"))
        skipItem("passed over: the states of passes are what counts");
    else if (token.is("typedef"))
        typedefItem();
    else if (token.is("cbuffer") || token.is("tbuffer"))
        openBuffer();
    else
        return false;
    return true;
}

void EffectScanner::skipItem(const char* what) {
    const std::size_t start = cursor_.at();
    warn(cursor_.peek(), std::string(cursor_.peek().text) + " is " + what);
    recover(start);
    blankFrom(start);
}

void EffectScanner::typedefItem() {
    cursor_.take();
    modifiers();
    const std::string type = cursor_.peek().is("struct") ? structType() : typeName();
    const Token name = cursor_.expectName("the name of the new type");
    // An array has its size in the text only.
    if (!cursor_.is("["))
        declarations_.addAlias(std::string(name.text), type);
    skipTo(";");
    cursor_.expect(";", "behind the new type");
}

// `cbuffer Name : register(b0) { ... }`: what is in it are parameters like all others.
void EffectScanner::openBuffer() {
    const std::size_t start = cursor_.at();
    while (!cursor_.is("{"))
        if (cursor_.is("("))
            skipBrackets();
        else if (cursor_.atEnd() || cursor_.is(";"))
            cursor_.failExpected("'{' of the buffer");
        else
            cursor_.take();
    bufferEnds_.push_back(partner_[cursor_.at()]);
    cursor_.take();
    blankFrom(start);
}

EffectSource ReadEffectSource(const std::string& path, std::string_view text, const Macros& macros,
                              const IncludeReader& include) {
    PreprocessedText input = Preprocess(path, text, macros, include);
    if (input.lines.empty())
        input.lines.push_back({path, 1});
    const std::vector<Token> tokens = Lex(input.text);
    EffectScanner scanner(input, tokens);
    EffectSource source = scanner.run();
    source.text = scanner.text();
    source.lines = std::move(input.lines);
    source.files = std::move(input.files);
    source.warnings = input.warnings + source.warnings;
    return source;
}

} // namespace VornPlatform
