// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/matrix_swizzles.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

// That swizzles of matrices may add: one in the index of another multiplies.
constexpr std::size_t MostAdded = 1u << 18;

// "[0][0]" of "_11" and of "_m00", for up to four of them; nothing for another name.
std::vector<std::string> ReadComponents(std::string_view name) {
    std::vector<std::string> components;
    while (!name.empty()) {
        const bool fromZero = name.starts_with("_m");
        const std::size_t at = fromZero ? 2 : 1;
        const char first = fromZero ? '0' : '1';
        if (name[0] != '_' || name.size() < at + 2 || components.size() == 4)
            return {};
        const int row = name[at] - first, column = name[at + 1] - first;
        if (row < 0 || row > 3 || column < 0 || column > 3)
            return {};
        components.push_back("[" + std::to_string(row) + "][" + std::to_string(column) + "]");
        name.remove_prefix(at + 2);
    }
    return components;
}

bool IsAssignment(const Word& word) {
    return word.is("=") || word.is("+=") || word.is("-=") || word.is("*=") || word.is("/=");
}

// Reads the words once and writes them behind one another, so that what is put in costs nothing.
class SwizzleWriter {
public:
    explicit SwizzleWriter(ShaderText& text) : text_(text), in_(text.words) {}

    Words write() {
        for (at_ = NextWord(in_, 0); at_ < in_.size(); at_ = NextWord(in_, at_ + 1)) {
            const std::size_t name = NextWord(in_, at_ + 1);
            std::vector<std::string> components;
            if (in_[at_].is(".") && name < in_.size() && in_[name].isName())
                components = ReadComponents(in_[name].text);
            if (components.empty())
                copy(in_[at_]);
            else
                replace(components, name);
        }
        return std::move(out_);
    }

private:
    void put(const std::string& text, std::uint32_t line) {
        for (const Token& token : Lex(text))
            if (token.kind != TokenKind::End)
                out_.push_back({token.kind, line, std::string(token.text)});
        if (out_.size() > in_.size() + MostAdded)
            throw EffectError(PlaceOf(text_.source, line), "the shader is too long");
    }

    void copy(const Word& word) {
        depth_ += word.is("(") || word.is("[") || word.is("{");
        const bool closes = word.is(")") || word.is("]") || word.is("}");
        // The end of a value that goes into a swizzle.
        while (!assignments_.empty() && ((assignments_.back().depth == depth_ &&
                                          (closes || word.is(";") || word.is(","))))) {
            put(assignments_.back().end, word.line);
            assignments_.pop_back();
        }
        depth_ -= closes;
        out_.push_back(word);
    }

    // Where the matrix begins that stands at the end of what is written.
    std::size_t operandBegin() const {
        std::size_t begin = out_.size();
        while (begin > 0) {
            const std::size_t last = begin - 1;
            if (out_[last].is(")") || out_[last].is("]")) {
                begin = Opening(out_, last);
                if (begin >= out_.size())
                    return out_.size();
                const bool isCall = out_[last].is(")") && begin > 0 && out_[begin - 1].isName() &&
                                    !out_[begin - 1].is("return");
                if (out_[last].is("]"))
                    continue;
                begin -= isCall;
            } else if (out_[last].isName())
                begin = last;
            else
                return out_.size();
            if (begin == 0 || !out_[begin - 1].is("."))
                return begin;
            --begin;
        }
        return out_.size();
    }

    void replace(const std::vector<std::string>& components, std::size_t name) {
        const std::uint32_t line = in_[name].line;
        const std::size_t begin = operandBegin();
        at_ = name;
        if (begin == out_.size()) {
            put("." + in_[name].text, line);
            return;
        }
        if (components.size() == 1) {
            put(components[0], line);
            return;
        }
        const std::string matrix = JoinWords(out_, {begin, out_.size()});
        out_.resize(begin);
        std::string list;
        for (const std::string& component : components)
            list += (list.empty() ? "" : ", ") + matrix + component;
        const std::string count = std::to_string(components.size());
        const std::size_t next = NextWord(in_, name + 1);
        if (next >= in_.size() || !IsAssignment(in_[next])) {
            put("float" + count + "(" + list + ")", line);
            return;
        }
        at_ = next;
        std::string text = "hx_set" + count + "(" + list + ", ";
        std::string end = ")";
        if (const std::string& op = in_[next].text; op != "=") {
            text += "float" + count + "(" + list + ") " + op.substr(0, 1) + " (";
            end = "))";
        }
        put(text, line);
        assignments_.push_back({depth_, end});
    }

    struct Assignment {
        int depth;
        std::string end;
    };
    ShaderText& text_;
    const Words& in_;
    Words out_;
    std::size_t at_ = 0;
    int depth_ = 0;
    std::vector<Assignment> assignments_;
};

} // namespace

void RewriteMatrixSwizzles(ShaderText& text) {
    text.words = SwizzleWriter(text).write();
}

} // namespace VornPlatform
