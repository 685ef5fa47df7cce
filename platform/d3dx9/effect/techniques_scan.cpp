// SPDX-License-Identifier: MIT
//
// Techniques, passes and the states that they and samplers set.
#include "platform/d3dx9/effect/effect_scanner.hpp"

#include <algorithm>

namespace VornPlatform {

void EffectScanner::technique() {
    const std::size_t start = cursor_.at();
    SourceTechnique technique;
    technique.place = cursor_.place(cursor_.take());
    if (cursor_.peek().kind == TokenKind::Identifier)
        technique.name = cursor_.take().text;
    if (cursor_.is("<"))
        technique.annotations = annotations();
    cursor_.expect("{", "of the technique");
    while (!cursor_.takeIf("}")) {
        if (cursor_.takeIf(";"))
            continue;
        if (!cursor_.peek().isWord("pass"))
            cursor_.failExpected("a pass or '}' of the technique");
        technique.passes.push_back(pass());
    }
    blankFrom(start);
    source_.techniques.push_back(std::move(technique));
}

SourcePass EffectScanner::pass() {
    SourcePass pass;
    pass.place = cursor_.place(cursor_.take());
    if (cursor_.peek().kind == TokenKind::Identifier)
        pass.name = cursor_.take().text;
    if (cursor_.is("<"))
        pass.annotations = annotations();
    cursor_.expect("{", "of the pass");
    states(pass.states, false);
    return pass;
}

// Up to the closing bracket. One with a fault in it does not hide the others.
void EffectScanner::states(States& states, bool inSampler) {
    while (!cursor_.takeIf("}")) {
        const std::size_t start = cursor_.at();
        if (cursor_.takeIf(";"))
            continue;
        try {
            state(states, inSampler);
            cursor_.expect(";", "behind the state");
        } catch (const EffectError& error) {
            report(error);
            cursor_.moveTo(start);
            skipTo(";");
        }
    }
}

// `CullMode = NONE`
void EffectScanner::state(States& states, bool inSampler) {
    const Token name = cursor_.expectName("the name of a state");
    const StateInfo* info = FindState(name.text);
    if (!info)
        cursor_.fail(name, "there is no state " + std::string(name.text));
    if (inSampler && info->kind != StateKind::Sampler && info->kind != StateKind::Texture)
        cursor_.fail(name, std::string(name.text) + " is no state of a sampler");

    SourceState state;
    state.name = name.text;
    state.place = cursor_.place(name);
    if (cursor_.takeIf("[")) {
        Expression index = ToExpression(ExpressionReader(cursor_, declarations_, {}).read());
        cursor_.expect("]", "behind the index");
        if (!inSampler)
            state.index = std::move(index);
    }
    cursor_.expect("=", "behind " + state.name);

    switch (info->kind) {
    case StateKind::VertexShader:
    case StateKind::PixelShader:
        state.value = shaderValue(*info);
        break;
    case StateKind::Texture:
        if (!takeNull())
            state.value = object(ObjectType::Texture);
        break;
    case StateKind::SamplerObject:
        if (cursor_.peek().isWord("sampler_state")) {
            // The same as its states one by one.
            const std::size_t first = states.size();
            samplerStates(states);
            for (std::size_t at = first; at < states.size(); ++at)
                states[at].index = state.index;
            return;
        }
        if (!takeNull())
            state.value = object(ObjectType::Sampler);
        break;
    default:
        state.value = plainValue(*info);
    }
    states.push_back(std::move(state));
}

// `sampler_state { ... }`
void EffectScanner::samplerStates(States& into) {
    if (cursor_.peek().isWord("sampler_state"))
        cursor_.take();
    cursor_.expect("{", "of sampler_state");
    states(into, true);
}

// NULL or 0, with or without brackets.
bool EffectScanner::takeNull() {
    const bool inBrackets = cursor_.is("(") || cursor_.is("<");
    const Token& word = cursor_.peek(inBrackets ? 1 : 0);
    if (!word.isWord("null") && !(word.kind == TokenKind::Number && word.is("0")))
        return false;
    if (inBrackets && !cursor_.is(")", 2) && !cursor_.is(">", 2))
        return false;
    cursor_.moveTo(cursor_.at() + (inBrackets ? 3 : 1));
    return true;
}

void EffectScanner::failAssembly() {
    cursor_.fail(cursor_.peek(),
                 "shaders in assembly language are not supported: expected compile");
}

StateValue EffectScanner::shaderValue(const StateInfo& info) {
    if (takeNull())
        return NullValue();
    const Token token = cursor_.peek();
    if (token.isWord("asm"))
        failAssembly();
    if (token.isWord("compile"))
        return compileCall();
    if (!cursor_.is("(") && !cursor_.is("<") && token.kind != TokenKind::Identifier)
        cursor_.failExpected("compile, NULL or the name of a shader");

    const ObjectReference reference = object(ObjectType::Shader);
    const std::string base = reference.name.substr(0, reference.name.find('['));
    const SourceParameter& parameter = *declarations_.parameter(base);
    if (parameter.type != LowerCase(info.name))
        cursor_.fail(token,
                     base + " is a " + parameter.type + ", expected a " + LowerCase(info.name));
    const auto list = shaderArrays_.find(base);
    if (list == shaderArrays_.end())
        return reference;
    const std::size_t open = reference.name.find('[');
    if (open == std::string::npos)
        cursor_.fail(token, base + " is an array: expected " + base + "[...]");
    const std::size_t index = std::stoul(reference.name.substr(open + 1));
    if (index >= list->second.size())
        cursor_.fail(token, base + " has " + std::to_string(list->second.size()) + " shaders");
    return list->second[index];
}

// `compile vs_3_0 Main(args)`
CompileCall EffectScanner::compileCall() {
    CompileCall call;
    call.place = cursor_.place(cursor_.peek());
    if (!cursor_.peek().isWord("compile"))
        cursor_.failExpected("compile");
    cursor_.take();
    call.profile = LowerCase(cursor_.expectName("a profile such as vs_3_0").text);
    call.entry = cursor_.expectName("the name of a function").text;
    if (!cursor_.is("("))
        cursor_.failExpected("'(' behind " + call.entry);
    const std::size_t end = partner_[cursor_.at()];
    std::string argument;
    for (cursor_.take(); cursor_.at() < end;) {
        const Token token = cursor_.take();
        if (token.kind == TokenKind::Operator && token.is(",")) {
            call.arguments.push_back(std::move(argument));
            argument.clear();
            continue;
        }
        // Commas in brackets are the argument's own.
        const bool opens =
            token.kind == TokenKind::Operator && (token.is("(") || token.is("[") || token.is("{"));
        const std::size_t last = opens ? partner_[cursor_.at() - 1] : cursor_.at() - 1;
        for (std::size_t at = cursor_.at() - 1; at <= last; ++at) {
            if (!argument.empty() && tokens_[at].spaceBefore)
                argument += ' ';
            argument += tokens_[at].text;
        }
        cursor_.moveTo(last + 1);
    }
    if (!argument.empty() || !call.arguments.empty())
        call.arguments.push_back(std::move(argument));
    cursor_.expect(")", "behind the arguments");
    return call;
}

// `<name>`, `(name)`, `name`, each with or without an index.
ObjectReference EffectScanner::object(ObjectType type) {
    const bool angle = cursor_.takeIf("<"), round = !angle && cursor_.takeIf("(");
    const Token name = cursor_.expectName("the name of a parameter");
    const SourceParameter* parameter = declarations_.parameter(name.text);
    if (!parameter)
        cursor_.fail(name, "there is no parameter " + std::string(name.text));
    if (FindObjectType(parameter->type) != type)
        cursor_.fail(name, std::string(name.text) + " is a " + parameter->type +
                               ", which this state does not take");
    ObjectReference reference{std::string(name.text)};
    if (cursor_.takeIf("[")) {
        const Value index = ExpressionReader(cursor_, declarations_, {.anyConstant = true}).read();
        if (!index.isConstant || index.numbers.size() != 1)
            cursor_.fail(name, "the index of " + reference.name + " has to be constant");
        if (!(index.numbers[0] >= 0 && index.numbers[0] < 65536))
            cursor_.fail(name, "the index of " + reference.name + " is out of range");
        reference.name += "[" + std::to_string(static_cast<int>(index.numbers[0])) + "]";
        cursor_.expect("]", "behind the index");
    }
    if (angle || round)
        cursor_.expect(angle ? ">" : ")", "behind " + reference.name);
    return reference;
}

Expression EffectScanner::plainValue(const StateInfo& info) {
    const auto read = [&] {
        return ToExpression(
            ExpressionReader(cursor_, declarations_, {.values = info.values}).read());
    };
    if (!cursor_.takeIf("{"))
        return read();
    Expression list;
    list.kind = Expression::Kind::List;
    while (!cursor_.takeIf("}")) {
        list.operands.push_back(read());
        if (!cursor_.is("}"))
            cursor_.expect(",", "between the values");
    }
    return list;
}

} // namespace VornPlatform
