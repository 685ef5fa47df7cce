// SPDX-License-Identifier: MIT
//
// Macros, as the preprocessor has them.
#pragma once

#include "platform/d3dx9/effect/effect_source.hpp"
#include "platform/d3dx9/effect/lexer.hpp"

#include <deque>
#include <map>
#include <memory>

namespace VornPlatform {

/// A token of a file. Those that come out of a macro stand where the macro is called.
struct FileToken {
    Token token;
    std::uint32_t file = 0; // which name
    int line = 0;           // from 1
    bool isFinal = false;   // the name of a macro inside of itself
};

struct Macro {
    enum class Kind : std::uint8_t { Plain, File, Line };
    Kind kind = Kind::Plain;
    bool isFunction = false;
    std::vector<std::string_view> parameters;
    std::vector<FileToken> body;
    int calls = 0; // that are being expanded
};

/// Expands macros of tokens that it asks for. All views must outlive it.
class MacroExpander {
public:
    virtual ~MacroExpander() = default;

    /// The next token with nothing left to expand, End in the end.
    FileToken next();
    /// All of a row of tokens.
    std::vector<FileToken> expand(std::vector<FileToken> tokens);

protected:
    // The next token of the files.
    virtual FileToken readFile() = 0;
    virtual const std::string& fileName(std::uint32_t file) const = 0;

    [[noreturn]] void fail(const FileToken& at, const std::string& message) const;
    /// Keeps a text until the end.
    std::string_view keep(std::string text);

    std::map<std::string, std::shared_ptr<Macro>, std::less<>> macros_;

private:
    struct Reading {
        std::vector<FileToken> tokens;
        std::size_t next = 0;
        std::shared_ptr<Macro> macro; // that they come from
        bool isWall = false;          // nothing behind it is read
    };
    using Argument = std::vector<FileToken>;

    FileToken read();
    void push(std::vector<FileToken> tokens, std::shared_ptr<Macro> macro, bool isWall);
    void pop();
    void spend(const FileToken& at, std::size_t tokens);

    std::shared_ptr<Macro> find(const FileToken& name) const;
    bool call(const FileToken& name, const std::shared_ptr<Macro>& macro);
    bool openArguments();
    std::vector<Argument> collectArguments(const FileToken& name, const Macro& macro);
    std::vector<FileToken> substitute(const FileToken& name, const Macro& macro,
                                      const std::vector<Argument>& arguments);
    FileToken made(const FileToken& name, std::string text);
    void paste(std::vector<FileToken>& tokens, const FileToken& next);
    FileToken stringify(const FileToken& name, const Argument& argument);

    std::vector<Reading> readings_;
    std::deque<std::string> texts_;
    std::size_t spent_ = 0, keptBytes_ = 0;
    int depth_ = 0;
};

} // namespace VornPlatform
