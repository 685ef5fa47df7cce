// SPDX-License-Identifier: MIT
//
// Takes a preprocessed effect file apart. What it does not know is HLSL and stays in the text:
// names and brackets are enough to tell, and the compiler finds the faults that are left.
#pragma once

#include "platform/d3dx9/effect/expression_reader.hpp"
#include "platform/d3dx9/effect/preprocessor.hpp"
#include "platform/d3dx9/effect/text_edits.hpp"

namespace VornPlatform {

class EffectScanner {
public:
    EffectScanner(const PreprocessedText& input, const std::vector<Token>& tokens);
    /// `text`, `lines` and `files` are left to the caller.
    EffectSource run();
    std::string text() { return edits_.apply(); }

private:
    // What stands in front of a type.
    struct Modifiers {
        bool isStatic = false, isConst = false, isRowMajor = false, saysOrder = false;
        std::vector<Token> blanks; // that HLSL does not know of numbers
    };
    using States = std::vector<SourceState>;

    // The file (effect_scanner.cpp).
    void checkWords() const;
    void pairBrackets();
    void skipBrackets();
    void skipTo(std::string_view end);
    void recover(std::size_t start);
    void report(const EffectError& error);
    void item();
    bool effectItem();
    void skipItem(const char* what);
    void typedefItem();
    void openBuffer();
    void warn(const Token& token, const std::string& message);
    void blankFrom(std::size_t first);

    // Variables, structures, functions (declarations_scan.cpp).
    Modifiers modifiers();
    std::string typeName();
    std::string structType();
    void members(SourceStruct& structure);
    void declaration();
    void function();
    void variables(std::size_t start, const Modifiers& modifiers, const Token& typeToken,
                   const std::string& type);
    SourceParameter declarator(const Modifiers& modifiers, const std::string& type, bool isMember);
    void dimensions(SourceParameter& parameter);
    void colon(SourceParameter& parameter, bool isMember);
    void registerOf(SourceParameter& parameter);
    void orderMatrix(const Token& type, const std::string& name, const Modifiers& modifiers,
                     bool& isRowMajor);
    std::vector<SourceParameter> annotations();

    // Values (values_scan.cpp).
    void initialOf(SourceParameter& parameter);
    void numbersOf(SourceParameter& parameter, bool inAnnotation);
    void fitNumbers(SourceParameter& parameter, Initial& initial, const Token& start);
    void staticNumbersOf(SourceParameter& parameter);
    void braces(std::vector<double>& numbers);
    Value constant(bool inAnnotation);
    void stringOf(SourceParameter& parameter);
    void shaderOf(SourceParameter& parameter);
    void samplerOf(SourceParameter& parameter);

    // Techniques and states (techniques_scan.cpp).
    void technique();
    SourcePass pass();
    void states(States& states, bool inSampler);
    void state(States& states, bool inSampler);
    void samplerStates(States& states);
    StateValue shaderValue(const StateInfo& info);
    ObjectReference object(ObjectType type);
    Expression plainValue(const StateInfo& info);
    CompileCall compileCall();
    bool takeNull();
    [[noreturn]] void failAssembly();

    const PreprocessedText& input_;
    const std::vector<Token>& tokens_;
    std::vector<std::uint32_t> partner_; // of a bracket
    TokenCursor cursor_;
    Declarations declarations_;
    TextEdits edits_;
    EffectSource source_;
    std::map<std::string, std::vector<CompileCall>, std::less<>> shaderArrays_;
    std::vector<std::uint32_t> bufferEnds_; // closing brackets of cbuffers
    std::size_t packing_ = 0;               // of input_.packing, that is behind us
    bool rowMajor_ = false;
    std::uint32_t unsizedAt_ = 0; // in the text: the last array without a size
    int anonymous_ = 0;
    std::string faults_;
    int faultCount_ = 0;
};

} // namespace VornPlatform
