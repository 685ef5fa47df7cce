// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/preprocessor.hpp"

#include "platform/d3dx9/effect/clean_text.hpp"
#include "platform/d3dx9/effect/condition.hpp"

#include <algorithm>
#include <set>

namespace VornPlatform {

namespace {

constexpr std::size_t MaxDepth = 64, MaxIncludes = 4096, MaxBytes = 16u << 20;
constexpr std::size_t MaxTokens = 4'000'000, MaxLines = 1'000'000, MaxText = 64u << 20;

class Preprocessor : private MacroExpander {
public:
    Preprocessor(const Macros& macros, const IncludeReader& include) : include_(include) {
        define("D3DX", "1");
        define("D3DX_VERSION", "0x0902");
        define("DIRECT3D", "1");
        define("DIRECT3D_VERSION", "0x0900");
        for (const auto& [kind, name] :
             {std::pair(Macro::Kind::File, "__FILE__"), std::pair(Macro::Kind::Line, "__LINE__")}) {
            macros_[name] = std::make_shared<Macro>();
            macros_[name]->kind = kind;
        }
        for (const auto& [name, value] : macros)
            define(name, value);
    }

    PreprocessedText run(const std::string& path, std::string_view text) {
        open(path, std::string(text));
        for (FileToken token = next(); token.token.kind != TokenKind::End; token = next())
            emit(token);
        for (const auto& [file, line] : lines_)
            result_.lines.push_back({names_[file], line});
        return std::move(result_);
    }

private:
    struct Condition {
        FileToken start;
        bool outerLive = true, live = true; // what stands here counts
        bool taken = false, seenElse = false;
    };
    struct OpenFile {
        std::string name; // as it was found
        std::string_view text;
        Lexer lexer;
        std::optional<Token> waiting;
        std::optional<std::uint32_t> lastLine = {}; // of the last token
        std::uint32_t shownName = 0;                // of names_; #line changes it
        std::int64_t shift = 1;                     // from the token's line to the author's
        std::vector<Condition> conditions = {};
    };

    const std::string& fileName(std::uint32_t file) const override { return names_[file]; }

    void define(const std::string& name, const std::string& value) {
        auto macro = std::make_shared<Macro>();
        for (const Token& token : Lex(keep(value)))
            if (token.kind != TokenKind::End)
                macro->body.push_back({token});
        macros_[name] = std::move(macro);
    }

    std::uint32_t nameIndex(const std::string& name) {
        const auto found = std::find(names_.begin(), names_.end(), name);
        if (found == names_.end()) {
            names_.push_back(name);
            return static_cast<std::uint32_t>(names_.size() - 1);
        }
        return static_cast<std::uint32_t>(found - names_.begin());
    }

    void open(const std::string& name, std::string text) {
        const std::string_view clean = cleanTexts_.emplace_back(CleanText(text, name));
        files_.push_back({name, clean, Lexer(clean), {}});
        files_.back().shownName = nameIndex(name);
        auto& all = result_.files;
        std::pair entry(name, std::move(text));
        if (std::find(all.begin(), all.end(), entry) == all.end())
            all.push_back(std::move(entry));
    }

    // Files.

    Token take() {
        OpenFile& file = files_.back();
        const Token token = file.waiting ? *file.waiting : file.lexer.next();
        file.waiting.reset();
        return token;
    }

    FileToken placed(const Token& token) const {
        const OpenFile& file = files_.back();
        const std::int64_t line = token.line + file.shift;
        return {token, file.shownName,
                static_cast<int>(std::clamp<std::int64_t>(line, 0, 0x7fffffff))};
    }

    bool isLive() const {
        const auto& conditions = files_.back().conditions;
        return conditions.empty() || conditions.back().live;
    }

    FileToken readFile() override {
        while (true) {
            const Token token = take();
            OpenFile& file = files_.back();
            if (token.kind == TokenKind::End) {
                if (!file.conditions.empty())
                    fail(file.conditions.back().start, "this #if has no #endif");
                if (files_.size() == 1)
                    return placed(token);
                files_.pop_back();
                continue;
            }
            const bool startsLine = file.lastLine != token.line;
            file.lastLine = token.line;
            if (startsLine && token.is("#"))
                directive(placed(token));
            else if (isLive())
                return placed(token);
        }
    }

    std::vector<FileToken> restOfLine() {
        std::vector<FileToken> tokens;
        Token token = take();
        for (; token.kind != TokenKind::End && token.line == files_.back().lastLine; token = take())
            tokens.push_back(placed(token));
        files_.back().waiting = token;
        return tokens;
    }

    // As it stands in the file, from a token to the end of its line.
    std::string_view restAsText(const FileToken& from) const {
        const std::string_view rest = files_.back().text.substr(from.token.position);
        return rest.substr(0, rest.find('\n'));
    }

    // Directives.

    void directive(const FileToken& hash) {
        std::vector<FileToken> line = restOfLine();
        if (line.empty())
            return;
        const FileToken name = line.front();
        const std::string_view word = name.token.text;
        const bool isLineMark = name.token.kind == TokenKind::Number; // `# 12 "file"`
        if (!isLineMark)
            line.erase(line.begin());
        if (conditional(word, hash, line) || !isLive())
            return;
        if (word == "define")
            defineDirective(name, line);
        else if (word == "undef")
            macros_.erase(std::string(onlyName(name, line)));
        else if (word == "include")
            includeDirective(name, line);
        else if (word == "line" || isLineMark)
            lineDirective(name, line);
        else if (word == "error")
            fail(name, "#error " + (line.empty() ? "" : std::string(restAsText(line[0]))));
        else if (word == "pragma")
            pragma(line);
        else if (word == "warning")
            warn(name, line.empty() ? "" : std::string(restAsText(line[0])));
        else
            fail(name, "there is no directive #" + std::string(word));
    }

    void warn(const FileToken& at, const std::string& message) {
        if (result_.warnings.size() < 10'000)
            result_.warnings +=
                names_[at.file] + "(" + std::to_string(at.line) + "): warning: " + message + "\n";
    }

    std::string_view onlyName(const FileToken& directive, const std::vector<FileToken>& line) {
        if (line.empty() || line[0].token.kind != TokenKind::Identifier)
            fail(directive,
                 "expected a name behind #" + std::string(directive.token.text) + ", found " +
                     (line.empty() ? "the end of the line" : std::string(line[0].token.text)));
        return line[0].token.text;
    }

    // True for what belongs to conditions, also where nothing counts.
    bool conditional(std::string_view word, const FileToken& hash,
                     const std::vector<FileToken>& line) {
        auto& conditions = files_.back().conditions;
        if (word == "if" || word == "ifdef" || word == "ifndef") {
            Condition condition;
            condition.start = hash;
            condition.outerLive = isLive();
            condition.taken = condition.live = condition.outerLive && isTrue(word, hash, line);
            conditions.push_back(condition);
            return true;
        }
        if (word != "elif" && word != "else" && word != "endif")
            return false;
        if (conditions.empty())
            fail(hash, "#" + std::string(word) + " without #if");
        Condition& condition = conditions.back();
        if (word == "endif") {
            conditions.pop_back();
            return true;
        }
        if (condition.seenElse)
            fail(hash, "#" + std::string(word) + " behind #else");
        condition.seenElse = word == "else";
        condition.live =
            condition.outerLive && !condition.taken && (word == "else" || isTrue("if", hash, line));
        condition.taken = condition.taken || condition.live;
        return true;
    }

    bool isTrue(std::string_view word, const FileToken& hash, const std::vector<FileToken>& line) {
        if (word != "if") {
            FileToken directive = hash;
            directive.token.text = word;
            return macros_.contains(onlyName(directive, line)) == (word == "ifdef");
        }
        try {
            return IsConditionTrue(expand(replaceDefined(hash, line)));
        } catch (const std::invalid_argument& error) {
            fail(hash, std::string("in the condition: ") + error.what());
        }
    }

    // `defined A` and `defined(A)` become numbers before macros are expanded.
    std::vector<FileToken> replaceDefined(const FileToken& hash,
                                          const std::vector<FileToken>& line) const {
        std::vector<FileToken> replaced;
        for (std::size_t at = 0; at < line.size(); ++at) {
            replaced.push_back(line[at]);
            if (!line[at].token.is("defined"))
                continue;
            const bool bracket = at + 1 < line.size() && line[at + 1].token.is("(");
            const std::size_t name = at + (bracket ? 2 : 1), last = name + (bracket ? 1 : 0);
            if (last >= line.size() || line[name].token.kind != TokenKind::Identifier ||
                (bracket && !line[last].token.is(")")))
                fail(hash, "expected defined(NAME)");
            replaced.back().token.kind = TokenKind::Number;
            replaced.back().token.text = macros_.contains(line[name].token.text) ? "1" : "0";
            at = last;
        }
        return replaced;
    }

    void defineDirective(const FileToken& directive, const std::vector<FileToken>& line) {
        const std::string_view name = onlyName(directive, line);
        if (name == "defined")
            fail(directive, "defined is no name for a macro");
        auto macro = std::make_shared<Macro>();
        std::size_t at = 1;
        if (at < line.size() && line[at].token.is("(") && !line[at].token.spaceBefore)
            at = readParameters(directive, line, *macro);
        macro->body.assign(line.begin() + static_cast<std::ptrdiff_t>(at), line.end());
        if (!macro->body.empty())
            macro->body.front().token.spaceBefore = false;

        std::shared_ptr<Macro>& known = macros_[std::string(name)];
        const auto sameText = [](const FileToken& a, const FileToken& b) {
            return a.token.text == b.token.text;
        };
        if (known && !std::equal(known->body.begin(), known->body.end(), macro->body.begin(),
                                 macro->body.end(), sameText))
            warn(directive, "the macro " + std::string(name) + " is defined anew");
        known = std::move(macro);
    }

    // Where the body begins.
    std::size_t readParameters(const FileToken& directive, const std::vector<FileToken>& line,
                               Macro& macro) {
        macro.isFunction = true;
        const auto is = [&line](std::size_t at, std::string_view text) {
            return at < line.size() && line[at].token.is(text);
        };
        if (is(2, ")"))
            return 3;
        for (std::size_t at = 2; at < line.size(); at += 2) {
            if (line[at].token.kind != TokenKind::Identifier)
                break;
            auto& names = macro.parameters;
            if (std::find(names.begin(), names.end(), line[at].token.text) != names.end())
                fail(directive,
                     "two parameters of the macro are called " + std::string(line[at].token.text));
            names.push_back(line[at].token.text);
            if (is(at + 1, ")"))
                return at + 2;
            if (!is(at + 1, ","))
                break;
        }
        fail(directive, "expected the names of the macro's parameters, separated by commas, and )");
    }

    void includeDirective(const FileToken& directive, std::vector<FileToken> line) {
        const bool written =
            !line.empty() && (line[0].token.kind == TokenKind::String || line[0].token.is("<"));
        if (!written)
            line = expand(line);
        std::string name;
        if (!line.empty() && line[0].token.kind == TokenKind::String)
            name = line[0].token.text.substr(1, line[0].token.text.size() - 2);
        else if (written) {
            const std::string_view rest = restAsText(line[0]);
            const std::size_t end = rest.find('>');
            name = end == std::string_view::npos ? "" : rest.substr(1, end - 1);
        }
        if (name.empty())
            fail(directive, "expected #include \"FILE\"");
        if (files_.size() >= MaxDepth)
            fail(directive, "includes stand in each other more than " + std::to_string(MaxDepth) +
                                " deep: does " + name + " include itself?");
        std::string found;
        std::optional<std::string> text =
            include_ ? include_(name, files_.back().name, found) : std::nullopt;
        if (!text)
            fail(directive, "there is no file " + name + " to include");
        if (found.empty())
            found = name;
        if (once_.contains(found))
            return;
        bytes_ += text->size();
        if (++includes_ > MaxIncludes || bytes_ > MaxBytes)
            fail(directive, "more than " + std::to_string(MaxIncludes) + " includes or " +
                                std::to_string(MaxBytes) + " bytes");
        open(found, std::move(*text));
    }

    void lineDirective(const FileToken& directive, std::vector<FileToken> line) {
        line = expand(line);
        const auto number = line.empty() || line[0].token.kind != TokenKind::Number
                                ? std::nullopt
                                : ReadNumber(line[0].token.text);
        if (!number || !number->isInteger || number->value > 0x7fffffff)
            fail(directive, "expected the number of a line");
        OpenFile& file = files_.back();
        file.shift = static_cast<std::int64_t>(number->value) - *file.lastLine - 1;
        if (line.size() > 1 && line[1].token.kind == TokenKind::String) {
            if (names_.size() > MaxIncludes)
                fail(directive, "too many names of files");
            file.shownName = nameIndex(StringValue(line[1].token.text));
        }
    }

    void pragma(const std::vector<FileToken>& line) {
        if (!line.empty() && line[0].token.is("once"))
            once_.insert(files_.back().name);
        if (line.size() > 2 && line[0].token.isWord("pack_matrix") && line[1].token.is("("))
            result_.packing.emplace_back(static_cast<std::uint32_t>(result_.text.size()),
                                         line[2].token.isWord("row_major"));
    }

    // What comes out.

    void emit(const FileToken& token) {
        std::string& text = result_.text;
        const std::string_view word = token.token.text;
        if (lines_.empty() || lines_.back() != std::pair(token.file, token.line)) {
            if (!lines_.empty())
                text += '\n';
            lines_.emplace_back(token.file, token.line);
        } else if (token.token.spaceBefore || last_.data() + last_.size() != word.data())
            text += ' '; // what macros put side by side stays apart
        text += word;
        last_ = word;
        if (++tokens_ > MaxTokens || lines_.size() > MaxLines || text.size() > MaxText)
            fail(token, "the text is longer than " + std::to_string(MaxTokens) + " words, " +
                            std::to_string(MaxLines) + " lines or " + std::to_string(MaxText) +
                            " bytes");
    }

    const IncludeReader& include_;
    std::vector<OpenFile> files_;
    std::deque<std::string> cleanTexts_;
    std::vector<std::string> names_;
    std::set<std::string> once_;
    std::size_t includes_ = 0, bytes_ = 0, tokens_ = 0;
    std::vector<std::pair<std::uint32_t, int>> lines_;
    std::string_view last_;
    PreprocessedText result_;
};

} // namespace

PreprocessedText Preprocess(const std::string& path, std::string_view text, const Macros& macros,
                            const IncludeReader& include) {
    if (text.size() > MaxBytes)
        throw EffectError({path, 1}, "more than " + std::to_string(MaxBytes) + " bytes");
    return Preprocessor(macros, include).run(path, text);
}

} // namespace VornPlatform
