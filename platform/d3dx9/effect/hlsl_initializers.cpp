// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/hlsl_initializers.hpp"

#include <algorithm>
#include <map>

namespace VornPlatform {

namespace {

using VariableTypes = std::map<std::string, HlslType, std::less<>>;

// `TYPE NAME` anywhere. Scopes are not looked at: two variables of one name and different types
// are left out.
VariableTypes FindVariableTypes(const ShaderText& text) {
    VariableTypes found;
    const Words& words = text.words;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::size_t name = NextWord(words, i + 1);
        if (!words[i].isName() || name >= words.size() || !words[name].isName())
            continue;
        const std::optional<HlslType> type = text.types.find(words[i].text);
        if (!type)
            continue;
        const auto [at, isNew] = found.emplace(words[name].text, *type);
        if (!isNew && (at->second.rows != type->rows || at->second.columns != type->columns ||
                       at->second.structure != type->structure))
            at->second = HlslType();
    }
    return found;
}

// How many numbers an expression has; 0 if that takes more than a look.
UINT CountOf(const ShaderText& text, const VariableTypes& variables, WordRange range) {
    const Words& words = text.words;
    std::size_t begin = NextWord(words, range.begin);
    while (begin < range.end && (words[begin].is("-") || words[begin].is("+")))
        begin = NextWord(words, begin + 1);
    const std::size_t last = PreviousWord(words, range.end);
    if (begin >= range.end || last == words.size() || last < begin)
        return 0;
    if (words[begin].kind == TokenKind::Number)
        return begin == last ? 1 : 0;
    if (begin == last) {
        if (words[begin].is("true") || words[begin].is("false"))
            return 1;
        const auto known = variables.find(words[begin].text);
        return known != variables.end() ? text.types.componentsOf(known->second) : 0;
    }
    const std::size_t second = NextWord(words, begin + 1);
    if (words[begin].isName() && words[second].is("[")) {
        // An element of a vector, a row of a matrix, an element of that.
        const auto known = variables.find(words[begin].text);
        const bool isMatrix =
            known != variables.end() && known->second.valueClass == ValueClass::Matrix;
        const std::size_t close = Closing(words, second), next = NextWord(words, close + 1);
        if (close == last && known != variables.end() && known->second.dimensions.empty())
            return isMatrix ? known->second.columns : 0;
        if (isMatrix && next < range.end && words[next].is("[") && Closing(words, next) == last)
            return 1;
    }
    if (words[begin].isName() && words[second].is("(") && Closing(words, second) == last)
        if (const auto type = BuiltInType(words[begin].text))
            return text.types.componentsOf(*type);
    // A chain that ends in a swizzle, and has no operator that could make more of it.
    const std::size_t dot = PreviousWord(words, last);
    for (std::size_t i = begin; i < last; ++i)
        if (words[i].kind == TokenKind::Operator && !words[i].is(".") && !words[i].is("[") &&
            !words[i].is("]"))
            return 0;
    if (!words[dot].is("."))
        return 0;
    return IsSwizzle(words[last].text) ? static_cast<UINT>(words[last].text.size()) : 0;
}

class ListBuilder {
public:
    ListBuilder(ShaderText& text, const VariableTypes& variables)
        : text_(text), variables_(variables) {}

    // `open` is the brace. False for expressions that tell no count.
    bool readLeaves(std::size_t open) {
        for (const WordRange part :
             SplitAtCommas(text_.words, {open + 1, Closing(text_.words, open)})) {
            const std::size_t first = NextWord(text_.words, part.begin);
            if (first < part.end && text_.words[first].is("{")) {
                if (!readLeaves(first))
                    return false;
                continue;
            }
            leaves_.push_back({JoinWords(text_.words, part), CountOf(text_, variables_, part)});
            total_ += leaves_.back().count;
            if (leaves_.back().count == 0)
                return false;
        }
        return true;
    }
    UINT total() const { return total_; }

    // Nothing if the list does not fall into the type's parts.
    std::optional<std::string> build(const HlslType& type, std::vector<UINT> dimensions) {
        dimensions.insert(dimensions.end(), type.dimensions.begin(), type.dimensions.end());
        std::string list;
        if (!append(list, type, dimensions, 0) || next_ != leaves_.size())
            return std::nullopt;
        return list;
    }

private:
    struct Leaf {
        std::string text;
        UINT count = 0;
    };

    bool append(std::string& list, const HlslType& type, const std::vector<UINT>& dimensions,
                std::size_t dimension) {
        if (dimension < dimensions.size()) {
            list += "{";
            for (UINT i = 0; i < dimensions[dimension]; ++i) {
                list += i ? ", " : " ";
                if (!append(list, type, dimensions, dimension + 1))
                    return false;
            }
            list += " }";
            return true;
        }
        return type.structure ? appendStruct(list, *type.structure) : appendValue(list, type);
    }

    bool appendStruct(std::string& list, const SourceStruct& structure) {
        list += "{";
        for (const SourceParameter& member : structure.members) {
            const std::optional<HlslType> type = text_.types.find(member.type);
            std::vector<UINT> dimensions = member.dimensions;
            if (!type || type->structure >= &structure)
                return false;
            dimensions.insert(dimensions.end(), type->dimensions.begin(), type->dimensions.end());
            list += &member == structure.members.data() ? " " : ", ";
            if (!append(list, *type, dimensions, 0))
                return false;
        }
        list += " }";
        return true;
    }

    bool appendValue(std::string& list, const HlslType& type) {
        const std::size_t first = next_;
        UINT have = 0;
        while (next_ < leaves_.size() && have < type.components())
            have += leaves_[next_++].count;
        if (have != type.components())
            return false;
        if (next_ - first == 1) {
            list += leaves_[first].text;
            return true;
        }
        list += NameOf(type) + "(";
        for (std::size_t i = first; i < next_; ++i)
            list += (i > first ? ", " : "") + leaves_[i].text;
        list += ")";
        return true;
    }

    static std::string NameOf(const HlslType& type) {
        std::string name = type.type == ValueType::Int    ? "int"
                           : type.type == ValueType::Bool ? "bool"
                                                          : "float";
        if (type.valueClass == ValueClass::Matrix)
            name += std::to_string(type.rows) + "x";
        return name + std::to_string(type.columns);
    }

    ShaderText& text_;
    const VariableTypes& variables_;
    std::vector<Leaf> leaves_;
    UINT total_ = 0;
    std::size_t next_ = 0;
};

std::optional<UINT> ConstantOf(const ShaderText& text, WordRange range) {
    const std::string word = JoinWords(text.words, range);
    if (const auto number = ReadNumber(word);
        number && number->value >= 0 && number->value <= MaxShaderNumbers)
        return static_cast<UINT>(number->value);
    for (const SourceParameter& parameter : text.source.parameters)
        if (parameter.isStatic && parameter.name == word && parameter.initial &&
            parameter.initial->numbers.size() == 1 && parameter.initial->numbers[0] >= 0 &&
            parameter.initial->numbers[0] <= MaxShaderNumbers)
            return static_cast<UINT>(parameter.initial->numbers[0]);
    return std::nullopt;
}

// The first word of the declaration that the declarator at `name` belongs to.
std::size_t DeclarationOf(const Words& words, std::size_t name) {
    std::size_t at = name, begin = name;
    while ((at = PreviousWord(words, at)) != words.size()) {
        const Word& word = words[at];
        if (word.is(";") || word.is("{") || word.is("(") || word.is("["))
            break;
        if (word.is("}") || word.is(")") || word.is("]")) {
            // The end of a block, or a list of the declarator before.
            const std::size_t open = Opening(words, at);
            const std::size_t before = PreviousWord(words, open);
            if (word.is("}") && (before == words.size() || !words[before].is("=")))
                break;
            at = open;
        }
        begin = at;
    }
    return begin;
}

void RewriteList(ShaderText& text, const VariableTypes& variables, std::size_t equals,
                 std::size_t open) {
    Words& words = text.words;
    // Back over "[2]" to the name.
    std::vector<std::size_t> brackets;
    std::size_t name = PreviousWord(words, equals);
    while (name < words.size() && words[name].is("]")) {
        const std::size_t bracket = Opening(words, name);
        brackets.insert(brackets.begin(), bracket);
        name = PreviousWord(words, bracket);
    }
    if (name >= words.size() || !words[name].isName())
        return;
    std::size_t typeWord = DeclarationOf(words, name);
    while (typeWord < name && IsQualifier(words[typeWord].text))
        typeWord = NextWord(words, typeWord + 1);
    const std::optional<HlslType> type = text.types.find(words[typeWord].text);
    ListBuilder builder(text, variables);
    if (typeWord >= name || !type || !type->isNumeric() || !builder.readLeaves(open))
        return;

    std::vector<UINT> dimensions;
    UINT known = text.types.componentsOf(*type) * std::max(1u, ElementCount(type->dimensions));
    for (const std::size_t bracket : brackets) {
        const std::size_t close = Closing(words, bracket);
        if (NextWord(words, bracket + 1) == close && known != 0 && brackets.size() == 1) {
            dimensions.push_back(builder.total() / known);
            words.insert(words.begin() + static_cast<std::ptrdiff_t>(close),
                         {TokenKind::Number, words[close].line, std::to_string(dimensions[0])});
            ++open;
        } else if (const auto size = ConstantOf(text, {bracket + 1, close}))
            dimensions.push_back(*size);
        else
            return;
    }
    const std::optional<std::string> list = builder.build(*type, dimensions);
    if (!list)
        return;
    const std::size_t close = Closing(words, open);
    for (std::size_t i = open; i <= close; ++i)
        words[i].text.clear();
    words[open].text = *list;
    words[open].kind = TokenKind::Identifier;
}

// The parts of a vector, so many components each; empty if they are more than a vector has.
std::string Parts(const std::string& vector, const std::vector<UINT>& counts) {
    std::string list;
    std::size_t at = 0;
    for (const UINT count : counts) {
        if (count == 0 || at + count > 4)
            return {};
        list += (list.empty() ? "{ ( " : ", ( ") + vector + " ) . " +
                std::string("xyzw").substr(at, count);
        at += count;
    }
    return list;
}

// `= (Four)v`: what each member takes.
std::vector<UINT> MemberCounts(const ShaderText& text, const SourceStruct& structure) {
    std::vector<UINT> counts;
    for (const SourceParameter& member : structure.members) {
        const std::optional<HlslType> type = text.types.find(member.type);
        const bool isPlain = type && !type->structure && member.dimensions.empty();
        counts.push_back(isPlain ? text.types.componentsOf(*type) : 0);
    }
    return counts;
}

// `= (float[4])v` has a list for each of its numbers.
void RewriteArrayCast(ShaderText& text, const VariableTypes& variables, std::size_t open) {
    Words& words = text.words;
    const std::size_t type = NextWord(words, open + 1), close = Closing(words, open);
    const std::size_t bracket = NextWord(words, type + 1);
    if (bracket > close || close >= words.size() || !words[type].isName())
        return;
    const std::optional<HlslType> element = text.types.find(words[type].text);
    const bool isStruct = bracket == close && element && element->structure;
    if (!isStruct && !words[bracket].is("["))
        return;
    const std::size_t begin = NextWord(words, close + 1);
    std::size_t end = begin;
    while (end < words.size() && !words[end].is(";") && !words[end].is(","))
        end = words[end].is("(") || words[end].is("[") || words[end].is("{")
                  ? Closing(words, end) + 1
                  : end + 1;
    if (end > words.size() || begin >= end)
        return;

    std::string list;
    std::optional<UINT> elements;
    if (!isStruct)
        elements = ConstantOf(text, {bracket + 1, Closing(words, bracket)});
    const std::string value = JoinWords(words, {begin, end});
    const auto variable = variables.find(value);
    if (isStruct) {
        if (words[begin].kind == TokenKind::Number)
            return; // the compiler knows that one
        list = Parts(value, MemberCounts(text, *element->structure));
        if (list.empty())
            return;
    } else if (words[begin].is("{"))
        list = "";
    else if (element && elements && ReadNumber(value)) {
        const std::uint64_t count = std::uint64_t(text.types.componentsOf(*element)) * *elements;
        for (std::uint64_t i = 0; i < std::min<std::uint64_t>(count, MaxShaderNumbers); ++i)
            list += (i ? ", " : "{ ") + value;
    } else if (variable != variables.end() && !variable->second.structure) {
        const HlslType& from = variable->second;
        for (UINT row = 0; row < from.rows; ++row)
            for (UINT column = 0; column < from.columns; ++column) {
                list += list.empty() ? "{ " : ", ";
                list += from.rows == 1 ? value + "." + "xyzw"[column]
                                       : value + "[" + std::to_string(row) + "][" +
                                             std::to_string(column) + "]";
            }
    } else {
        if (element && elements && *elements <= 4)
            list = Parts(value, std::vector<UINT>(*elements, text.types.componentsOf(*element)));
        if (list.empty())
            return;
    }
    for (std::size_t i = open; i <= close; ++i)
        words[i].text.clear();
    if (list.empty())
        return;
    Words made;
    list += " }";
    for (const Token& token : Lex(list))
        if (token.kind != TokenKind::End)
            made.push_back({token.kind, words[open].line, std::string(token.text)});
    words.erase(words.begin() + static_cast<std::ptrdiff_t>(open),
                words.begin() + static_cast<std::ptrdiff_t>(end));
    words.insert(words.begin() + static_cast<std::ptrdiff_t>(open), made.begin(), made.end());
}

} // namespace

void RewriteInitializers(ShaderText& text) {
    const VariableTypes variables = FindVariableTypes(text);
    const Words& words = text.words;
    for (std::size_t i = 0; i < words.size(); ++i) {
        if (!words[i].is("="))
            continue;
        std::size_t open = NextWord(words, i + 1);
        if (open < words.size() && words[open].is("(")) {
            RewriteArrayCast(text, variables, open);
            open = NextWord(words, i + 1);
        }
        if (open < words.size() && words[open].is("{"))
            RewriteList(text, variables, i, open);
    }
}

} // namespace VornPlatform
