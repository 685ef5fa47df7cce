// SPDX-License-Identifier: MIT
//
// Variables, structures and functions of an effect file.
#include "platform/d3dx9/effect/effect_scanner.hpp"

#include <algorithm>
#include <charconv>

namespace VornPlatform {

EffectScanner::Modifiers EffectScanner::modifiers() {
    Modifiers found;
    for (;; cursor_.take()) {
        const Token& token = cursor_.peek();
        if (token.is("static"))
            found.isStatic = true;
        else if (token.is("row_major") || token.is("column_major")) {
            found.isRowMajor = token.is("row_major");
            found.saysOrder = true;
        } else if (token.is("const") || token.is("uniform") || token.is("shared") ||
                   token.is("extern") || token.is("volatile")) {
            found.isConst = found.isConst || token.is("const");
            found.blanks.push_back(token);
        } else if (!token.is("inline") && !token.is("precise") && !token.is("centroid") &&
                   !token.is("linear") && !token.is("nointerpolation") &&
                   !token.is("noperspective"))
            return found;
    }
}

// `vector<float, 3>` is "float3"; objects have small letters.
std::string EffectScanner::typeName() {
    Token token = cursor_.expectName("a type");
    if (token.is("unsigned") && cursor_.peek().kind == TokenKind::Identifier)
        token = cursor_.take();
    std::string name(token.text);
    if (FindObjectType(name))
        name = LowerCase(name);
    if (!cursor_.takeIf("<"))
        return declarations_.resolveAlias(name);
    std::vector<Token> inside;
    while (!cursor_.atEnd() && !cursor_.is(">") && !cursor_.is(";"))
        inside.push_back(cursor_.take());
    cursor_.expect(">", "behind the type");
    const bool isVector = token.isWord("vector") && inside.size() == 3;
    if (!isVector && !(token.isWord("matrix") && inside.size() == 5))
        return name;
    name = std::string(inside[0].text) + std::string(inside[2].text);
    return isVector ? name : name + "x" + std::string(inside[4].text);
}

// `struct Name { ... }`, and nothing behind it.
std::string EffectScanner::structType() {
    const Token word = cursor_.take();
    SourceStruct structure;
    if (cursor_.peek().kind == TokenKind::Identifier) {
        structure.name = cursor_.take().text;
        if (!cursor_.is("{"))
            return structure.name; // `struct Light light;`
    } else {
        structure.name = "anonymous_struct_" + std::to_string(++anonymous_);
        edits_.insert(word.end(), " " + structure.name);
    }
    cursor_.expect("{", "of the structure");
    if (declarations_.structure(structure.name))
        cursor_.fail(word, "there is a structure " + structure.name + " already");
    members(structure);
    cursor_.expect("}", "of the structure");
    std::string name = structure.name;
    declarations_.add(std::move(structure));
    return name;
}

void EffectScanner::members(SourceStruct& structure) {
    while (!cursor_.is("}")) {
        if (cursor_.takeIf(";"))
            continue;
        const Modifiers found = modifiers();
        for (const Token& token : found.blanks)
            edits_.blank(token.position, token.end());
        const Token typeToken = cursor_.peek();
        const std::string type = typeToken.is("struct") ? structType() : typeName();
        bool isRowMajor = found.isRowMajor;
        orderMatrix(typeToken, type, found, isRowMajor);
        do {
            SourceParameter member = declarator(found, type, true);
            member.isRowMajor = isRowMajor;
            structure.members.push_back(std::move(member));
        } while (cursor_.takeIf(","));
        cursor_.expect(";", "behind the member");
    }
}

// What #pragma pack_matrix says is said at each matrix: the text has no pragmas.
void EffectScanner::orderMatrix(const Token& type, const std::string& name,
                                const Modifiers& modifiers, bool& isRowMajor) {
    const auto numeric = FindNumericType(name);
    if (!rowMajor_ || modifiers.saysOrder || modifiers.isStatic || !numeric || !numeric->isMatrix)
        return;
    isRowMajor = true;
    edits_.insert(type.position, "row_major ");
}

void EffectScanner::declaration() {
    const std::size_t start = cursor_.at();
    const Modifiers found = modifiers();
    const Token typeToken = cursor_.peek();
    const bool isStruct = typeToken.is("struct");
    const std::string type = isStruct ? structType() : typeName();
    if (isStruct && cursor_.takeIf(";"))
        return;
    if (cursor_.peek().kind == TokenKind::Identifier && cursor_.is("(", 1)) {
        function();
        return;
    }
    variables(start, found, typeToken, type);
}

// The cursor stands at its name. It stays in the text as it is.
void EffectScanner::function() {
    const Token name = cursor_.take();
    skipBrackets();
    while (cursor_.takeIf(":")) {
        cursor_.expectName("a semantic");
        if (cursor_.is("("))
            skipBrackets();
    }
    if (cursor_.is("{"))
        skipBrackets();
    else if (!cursor_.takeIf(";"))
        cursor_.failExpected("'{' or ';' of the function " + std::string(name.text));
}

void EffectScanner::variables(std::size_t start, const Modifiers& modifiers, const Token& typeToken,
                              const std::string& type) {
    const bool isObject = FindObjectType(type).has_value();
    bool isRowMajor = modifiers.isRowMajor;
    if (!isObject) {
        for (const Token& token : modifiers.blanks)
            if (!modifiers.isStatic || !token.is("const"))
                edits_.blank(token.position, token.end());
        orderMatrix(typeToken, type, modifiers, isRowMajor);
    }
    do {
        const Token name = cursor_.peek();
        SourceParameter parameter = declarator(modifiers, type, false);
        parameter.isRowMajor = isRowMajor;
        const std::size_t from = cursor_.at();
        if (cursor_.is("{") || cursor_.takeIf("=")) {
            initialOf(parameter);
            if (!isObject && !modifiers.isStatic)
                blankFrom(from);
        } else if (!isObject && !parameter.dimensions.empty() && parameter.dimensions[0] == 0)
            cursor_.fail(name, "the size of " + parameter.name + " is missing");
        if (!declarations_.add(std::move(parameter)))
            cursor_.fail(name, std::string(name.text) + " is there already, see line " +
                                   std::to_string(declarations_.parameter(name.text)->place.line));
    } while (cursor_.takeIf(","));
    cursor_.expect(";", "behind the declaration");
    if (isObject)
        blankFrom(start);
}

// A name and what belongs to it, up to its start value.
SourceParameter EffectScanner::declarator(const Modifiers& modifiers, const std::string& type,
                                          bool isMember) {
    const Token name = cursor_.expectName("a name");
    SourceParameter parameter;
    parameter.type = type;
    parameter.name = name.text;
    parameter.isStatic = modifiers.isStatic;
    parameter.isConst = modifiers.isConst;
    parameter.isRowMajor = modifiers.isRowMajor;
    parameter.place = cursor_.place(name);
    dimensions(parameter);
    while (true) {
        const std::size_t from = cursor_.at();
        if (cursor_.is(":"))
            colon(parameter, isMember);
        else if (cursor_.is("<")) {
            parameter.annotations = annotations();
            blankFrom(from);
        } else
            return parameter;
    }
}

// Sizes become numbers in the text too: they may be made of what is no constant there.
void EffectScanner::dimensions(SourceParameter& parameter) {
    while (cursor_.is("[")) {
        const Token open = cursor_.take();
        if (cursor_.is("]")) {
            if (!parameter.dimensions.empty())
                cursor_.failExpected("the size of the array");
            parameter.dimensions.push_back(0); // its start value tells
            unsizedAt_ = cursor_.peek().position;
        } else {
            const std::size_t from = cursor_.at();
            const Value size =
                ExpressionReader(cursor_, declarations_, {.anyConstant = true}).read();
            if (!size.isConstant || size.numbers.size() != 1)
                cursor_.fail(open, "the size of " + parameter.name + " has to be constant");
            if (!(size.numbers[0] >= 1 &&
                  size.numbers[0] <= static_cast<double>(MaxParameterNumbers)))
                cursor_.fail(open, "the size of " + parameter.name + " has to be from 1 to " +
                                       std::to_string(MaxParameterNumbers));
            parameter.dimensions.push_back(static_cast<UINT>(size.numbers[0]));
            blankFrom(from);
            edits_.insert(tokens_[from].position, std::to_string(parameter.dimensions.back()));
        }
        cursor_.expect("]", "behind the size");
    }
    if (declarations_.components(parameter.type, parameter.dimensions) > MaxParameterNumbers)
        cursor_.fail(cursor_.peek(), parameter.name + " is larger than " +
                                         std::to_string(MaxParameterNumbers) + " numbers");
}

// `: SEMANTIC`, `: register(c5)`, `: packoffset(c0)`
// The semantics of members are for the shaders.
void EffectScanner::colon(SourceParameter& parameter, bool isMember) {
    const std::size_t from = cursor_.at();
    cursor_.take();
    const Token word = cursor_.expectName("a semantic or a register");
    if (word.isWord("register") && cursor_.is("("))
        registerOf(parameter);
    else if (word.isWord("packoffset") && cursor_.is("("))
        skipBrackets();
    else {
        parameter.semantic = word.text;
        if (isMember)
            return;
    }
    blankFrom(from);
}

// The last word is the register: `(vs, c5)`.
void EffectScanner::registerOf(SourceParameter& parameter) {
    const std::size_t end = partner_[cursor_.at()];
    Token last = cursor_.take();
    for (; cursor_.at() < end; last = cursor_.take())
        if (cursor_.is("[") || cursor_.is(".")) // `(c5[2])` counts from c5
            break;
    unsigned index = 0;
    const std::string_view digits = last.text.substr(1);
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), index);
    if (last.kind != TokenKind::Identifier || error != std::errc() ||
        stop != digits.data() + digits.size() || index > 0xffff)
        cursor_.fail(last, "expected a register such as c5 or s0, found '" +
                               std::string(last.text) + "'");
    parameter.registerKind = LowerCase(last.text)[0];
    parameter.registerIndex = index;
    cursor_.moveTo(end + 1);
}

// `< string UIName = "Gloss"; float UIMin = 0; >`
std::vector<SourceParameter> EffectScanner::annotations() {
    std::vector<SourceParameter> found;
    cursor_.expect("<", "of the annotations");
    while (!cursor_.takeIf(">")) {
        if (cursor_.takeIf(";"))
            continue;
        modifiers();
        std::string type = typeName();
        if (FindNumericType(LowerCase(type)))
            type = LowerCase(type);
        SourceParameter annotation;
        annotation.type = type;
        const Token name = cursor_.expectName("the name of the annotation");
        annotation.name = name.text;
        annotation.place = cursor_.place(name);
        dimensions(annotation);
        if (cursor_.takeIf("=")) {
            const auto object = FindObjectType(type);
            if (object == ObjectType::String)
                stringOf(annotation);
            else if (!object && declarations_.components(type, {}) > 0)
                numbersOf(annotation, true);
            else
                cursor_.fail(name, "an annotation is a text or a number, not a " + type);
        }
        if (!cursor_.is(">"))
            cursor_.expect(";", "behind the annotation");
        found.push_back(std::move(annotation));
    }
    return found;
}

} // namespace VornPlatform
