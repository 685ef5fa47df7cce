// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/hlsl_check.hpp"

#include "platform/d3dx9/effect/hlsl_expressions.hpp"

namespace VornPlatform {

namespace {

class FunctionWalk : ExpressionWalk {
public:
    FunctionWalk(const ShaderText& text, const Words& words, const SourcePlace* place)
        : ExpressionWalk(text, words, place) {}

    void check(const HlslFunction& function) {
        for (const HlslArgument& argument : function.arguments)
            checkValue(argument.start);
        moveTo(function.body);
        if (atEnd())
            return;
        scopes_.enter();
        scopes_.requireFloats(function.type, PlaceOf(text_.source, function.line));
        for (const HlslArgument& argument : function.arguments) {
            scopes_.requireFloats(argument.type, placeOf(argument.typeWord));
            scopes_.declare(argument.name,
                            scopes_.valueOf(argument.type, argument.dimensions.size()));
        }
        readStatement();
        scopes_.leave();
    }

    void checkValue(WordRange range) {
        moveTo(range);
        if (atEnd())
            return;
        readStart();
        if (!atEnd())
            failExpected("the end of the value");
    }

private:
    void readStatement() {
        if (is("{"))
            readBlock();
        else if (takeIf("if")) {
            readCondition();
            readStatement();
            if (takeIf("else"))
                readStatement();
        } else if (takeIf("while")) {
            readCondition();
            readStatement();
        } else if (takeIf("do")) {
            readStatement();
            expect("while");
            readCondition();
            expect(";");
        } else if (takeIf("for"))
            readFor();
        else if (takeIf("switch")) {
            readCondition();
            ++switches_;
            readBlock();
            --switches_;
        } else if (switches_ > 0 && (is("case") || is("default")))
            readLabel();
        else
            readSimple();
    }

    void readBlock() {
        expect("{");
        scopes_.enter();
        while (!is("}")) {
            if (atEnd())
                failExpected("'}'");
            readStatement();
        }
        step();
        scopes_.leave();
    }

    void readFor() {
        expect("(");
        scopes_.enter();
        readSimple();
        if (!is(";"))
            readRequired("a condition");
        expect(";");
        if (!is(")"))
            readExpression();
        expect(")");
        readStatement();
        scopes_.leave();
    }

    void readLabel() {
        const bool hasValue = is("case");
        step();
        const std::size_t begin = at_;
        if (hasValue)
            readChoice();
        for (std::size_t i = begin; i < at_; ++i)
            if (words_[i].isName() && !words_[i].is("int") &&
                !scopes_.isStaticVariable(words_[i].text))
                fail(i, "a case must be a constant");
        expect(":");
    }

    // What ends with a semicolon.
    void readSimple() {
        if (is("[")) { // an attribute that nobody here knows
            moveTo({Closing(words_, at_) + 1, end_});
            readStatement();
            return;
        }
        if (is("struct") || is("typedef"))
            readLocalType();
        else if (takeIf("return")) {
            if (!is(";"))
                readRequired("");
        } else if (isDeclaration())
            readDeclaration();
        else if (!takeIf("break") && !takeIf("continue") && !takeIf("discard") && !is(";"))
            readExpression();
        expect(";");
    }

    void readLocalType() {
        const bool isStructure = is("struct");
        std::string name = nextWord();
        for (; !atEnd() && !is(";"); step())
            if (is("{"))
                at_ = Closing(words_, at_);
            else if (isName() && !isStructure)
                name = word();
            else if (isName() && !is("struct") && !is(name))
                scopes_.declare(word(), {});
        scopes_.declareType(name);
    }

    // Two names in a row.
    bool isDeclaration() const {
        return isName() && !isReserved() && next() < end_ && words_[next()].isName();
    }

    void readDeclaration() {
        while (isName() && IsQualifier(word()))
            step();
        const std::size_t typeWord = at_;
        if (!isName() || !scopes_.isType(word()))
            fail(at_, atEnd() ? "expected a type" : "'" + shown(word()) + "' is no type");
        const std::string type = word();
        scopes_.requireFloats(type, placeOf(typeWord));
        step();
        do
            readDeclarator(type);
        while (takeIf(","));
    }

    void readDeclarator(const std::string& type) {
        if (!isName() || isReserved())
            failExpected("a name");
        const std::string name = word();
        step();
        std::size_t dimensions = 0;
        for (; is("["); ++dimensions)
            readBracket();
        if (is(":")) // a semantic
            while (!atEnd() && !is(",") && !is(";") && !is("="))
                step();
        scopes_.declare(name, scopes_.valueOf(type, dimensions));
        if (takeIf("="))
            readStart();
    }

    void readStart() {
        if (!takeIf("{")) {
            const std::size_t begin = at_;
            const HlslValue value = readAssignment();
            require(value, begin, "");
            return;
        }
        while (!is("}")) {
            readStart();
            if (!is("}"))
                expect(",");
        }
        step();
    }

    void readCondition() {
        expect("(");
        if (isDeclaration())
            readDeclaration();
        else
            readRequired("a condition");
        expect(")");
    }

    int switches_ = 0; // around the statement
};

} // namespace

void CheckFunctions(const ShaderText& text, const std::vector<bool>& functions) {
    FunctionWalk walk(text, text.words, nullptr);
    for (const HlslVariable& variable : text.variables)
        walk.checkValue(variable.start);
    for (std::size_t i = 0; i < functions.size(); ++i)
        if (functions[i])
            walk.check(text.functions[i]);
}

void CheckArgument(const ShaderText& text, const Words& words, const SourcePlace& place) {
    FunctionWalk(text, words, &place).checkValue({0, words.size()});
}

} // namespace VornPlatform
