// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/macros.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

// What a few lines of macros could make of them is without bounds.
constexpr std::size_t MaxTokens = 4'000'000, MaxKeptBytes = 32u << 20;
constexpr int MaxDepth = 200;

std::size_t IndexOf(const Macro& macro, const FileToken& token) {
    const auto& names = macro.parameters;
    return static_cast<std::size_t>(std::find(names.begin(), names.end(), token.token.text) -
                                    names.begin());
}

bool IsOperator(const FileToken& token, std::string_view text) {
    return token.token.kind == TokenKind::Operator && token.token.is(text);
}

} // namespace

void MacroExpander::fail(const FileToken& at, const std::string& message) const {
    throw EffectError({fileName(at.file), at.line}, message);
}

std::string_view MacroExpander::keep(std::string text) {
    keptBytes_ += text.size();
    return texts_.emplace_back(std::move(text));
}

void MacroExpander::spend(const FileToken& at, std::size_t tokens) {
    spent_ += tokens;
    if (spent_ > MaxTokens || keptBytes_ > MaxKeptBytes)
        fail(at, "the macros of this file make more than " + std::to_string(MaxTokens) + " words");
}

void MacroExpander::push(std::vector<FileToken> tokens, std::shared_ptr<Macro> macro, bool isWall) {
    if (macro)
        ++macro->calls;
    readings_.push_back({std::move(tokens), 0, std::move(macro), isWall});
}

void MacroExpander::pop() {
    if (readings_.back().macro)
        --readings_.back().macro->calls;
    readings_.pop_back();
}

FileToken MacroExpander::read() {
    while (!readings_.empty()) {
        Reading& reading = readings_.back();
        if (reading.next < reading.tokens.size())
            return reading.tokens[reading.next++];
        if (reading.isWall)
            return {};
        pop();
    }
    return readFile();
}

std::shared_ptr<Macro> MacroExpander::find(const FileToken& name) const {
    if (name.token.kind != TokenKind::Identifier)
        return nullptr;
    const auto found = macros_.find(name.token.text);
    return found == macros_.end() ? nullptr : found->second;
}

FileToken MacroExpander::next() {
    while (true) {
        FileToken token = read();
        const std::shared_ptr<Macro> macro = token.isFinal ? nullptr : find(token);
        if (!macro)
            return token;
        if (macro->calls > 0) {
            token.isFinal = true;
            return token;
        }
        if (!call(token, macro))
            return token;
    }
}

std::vector<FileToken> MacroExpander::expand(std::vector<FileToken> tokens) {
    std::vector<FileToken> expanded;
    push(std::move(tokens), nullptr, true);
    for (FileToken token = next(); token.token.kind != TokenKind::End; token = next())
        expanded.push_back(token);
    pop();
    return expanded;
}

// Puts what the macro stands for in front of what is read next. False for a name of a function-like
// macro that is not called.
bool MacroExpander::call(const FileToken& name, const std::shared_ptr<Macro>& macro) {
    std::vector<Argument> arguments;
    if (macro->kind == Macro::Kind::File) {
        std::string text = "\"";
        for (const char c : fileName(name.file))
            text += c == '"' || c == '\\' ? std::string{'\\', c} : std::string(1, c);
        push({made(name, text + "\"")}, nullptr, false);
        return true;
    }
    if (macro->kind == Macro::Kind::Line) {
        push({made(name, std::to_string(name.line))}, nullptr, false);
        return true;
    }
    if (macro->isFunction) {
        if (!openArguments())
            return false;
        arguments = collectArguments(name, *macro);
    }
    if (++depth_ > MaxDepth)
        fail(name, "macros stand in each other more than " + std::to_string(MaxDepth) + " deep");
    push(substitute(name, *macro, arguments), macro, false);
    --depth_;
    return true;
}

bool MacroExpander::openArguments() {
    FileToken token = read();
    if (IsOperator(token, "("))
        return true;
    if (token.token.kind != TokenKind::End)
        push({token}, nullptr, false);
    return false;
}

std::vector<MacroExpander::Argument> MacroExpander::collectArguments(const FileToken& name,
                                                                     const Macro& macro) {
    std::vector<Argument> arguments(1);
    for (std::size_t open = 1;;) {
        FileToken token = read();
        if (token.token.kind == TokenKind::End)
            fail(name, "the arguments of the macro " + std::string(name.token.text) +
                           " have no end: expected )");
        spend(name, 1);
        open += IsOperator(token, "(");
        open -= IsOperator(token, ")");
        if (open == 0)
            break;
        if (open == 1 && IsOperator(token, ",")) {
            arguments.emplace_back();
            continue;
        }
        // It is inside of itself here, and where it gets to it may not be any more.
        if (const auto inner = find(token); inner && inner->calls > 0)
            token.isFinal = true;
        arguments.back().push_back(token);
    }
    const std::size_t expected = macro.parameters.size();
    if (expected == 0 && arguments.size() == 1 && arguments[0].empty())
        arguments.clear();
    if (arguments.size() != expected)
        fail(name, "the macro " + std::string(name.token.text) + " takes " +
                       std::to_string(expected) + " arguments, found " +
                       std::to_string(arguments.size()));
    return arguments;
}

std::vector<FileToken> MacroExpander::substitute(const FileToken& name, const Macro& macro,
                                                 const std::vector<Argument>& arguments) {
    std::vector<FileToken> result;
    std::vector<std::optional<Argument>> expanded(arguments.size());
    bool pastes = false, nothingLeft = false;
    const std::vector<FileToken>& body = macro.body;
    const auto isPaste = [&body](std::size_t at) {
        return at > 0 && at + 1 < body.size() && IsOperator(body[at], "##");
    };
    for (std::size_t at = 0; at < body.size(); ++at) {
        if (isPaste(at)) {
            pastes = true;
            continue;
        }
        const bool strings = macro.isFunction && IsOperator(body[at], "#") &&
                             at + 1 < body.size() &&
                             IndexOf(macro, body[at + 1]) < arguments.size();
        const FileToken& word = body[strings ? at + 1 : at];
        const std::size_t index = IndexOf(macro, word);

        Argument piece;
        if (strings) {
            piece = {stringify(name, arguments[index])};
            ++at;
        } else if (index >= arguments.size())
            piece = {word};
        else if (pastes || isPaste(at + 1))
            piece = arguments[index];
        else {
            if (!expanded[index])
                expanded[index] = expand(arguments[index]);
            piece = *expanded[index];
        }
        spend(name, piece.size());
        if (!piece.empty())
            piece.front().token.spaceBefore = word.token.spaceBefore;

        std::size_t from = 0;
        if (pastes && !nothingLeft && !piece.empty() && !result.empty()) {
            paste(result, piece.front());
            from = 1;
        }
        nothingLeft = piece.empty() && (!pastes || nothingLeft);
        pastes = false;
        result.insert(result.end(), piece.begin() + static_cast<std::ptrdiff_t>(from), piece.end());
    }
    for (FileToken& token : result) {
        token.file = name.file;
        token.line = name.line;
    }
    if (!result.empty())
        result.front().token.spaceBefore = name.token.spaceBefore;
    return result;
}

// A token that stands in no file.
FileToken MacroExpander::made(const FileToken& name, std::string text) {
    spend(name, 1);
    FileToken token = name;
    const std::string_view kept = keep(std::move(text));
    token.token = Lexer(kept).next();
    token.token.spaceBefore = name.token.spaceBefore;
    return token;
}

// Two tokens that make no single one together stay two.
void MacroExpander::paste(std::vector<FileToken>& tokens, const FileToken& next) {
    FileToken left = tokens.back();
    tokens.pop_back();
    std::string text(left.token.text);
    text += next.token.text;
    Lexer lexer(keep(std::move(text)));
    bool spaceBefore = left.token.spaceBefore;
    for (Token token = lexer.next(); token.kind != TokenKind::End; token = lexer.next()) {
        left.token = token;
        left.token.spaceBefore = spaceBefore;
        left.isFinal = false;
        tokens.push_back(left);
        spaceBefore = false;
    }
}

FileToken MacroExpander::stringify(const FileToken& name, const Argument& argument) {
    std::string text = "\"";
    for (const FileToken& token : argument) {
        if (token.token.spaceBefore && text.size() > 1)
            text += ' ';
        if (text.size() + token.token.text.size() > MaxKeptBytes)
            fail(name, "a text of more than " + std::to_string(MaxKeptBytes) + " characters");
        for (const char c : token.token.text) {
            if (token.token.kind == TokenKind::String && (c == '"' || c == '\\'))
                text += '\\';
            text += c;
        }
    }
    return made(name, text + "\"");
}

} // namespace VornPlatform
