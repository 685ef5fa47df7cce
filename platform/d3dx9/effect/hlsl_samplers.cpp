// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/hlsl_samplers.hpp"

#include "platform/d3dx9/effect/hlsl_rewrite.hpp"

#include <algorithm>
#include <map>

namespace VornPlatform {

namespace {

constexpr UINT MostSamplers = 64; // in one array

std::optional<SamplerKind> DeclaredKind(std::string_view type) {
    if (EqualBlindToCase(type, "samplerCUBE"))
        return SamplerKind::Cube;
    if (EqualBlindToCase(type, "sampler3D"))
        return SamplerKind::Volume;
    if (EqualBlindToCase(type, "sampler2D") || EqualBlindToCase(type, "sampler1D"))
        return SamplerKind::Flat;
    return std::nullopt;
}

// The kinds of all samplers. Where one is handed on to a function, both have the same.
class KindFinder {
public:
    explicit KindFinder(ShaderText& text) : text_(text) {
        for (const SourceParameter& parameter : text.source.parameters)
            if (IsSamplerType(parameter.type))
                kinds_[{nullptr, SafeName(parameter.name)}] = DeclaredKind(parameter.type);
        for (const HlslFunction& function : text.functions)
            for (const HlslArgument& argument : function.arguments)
                if (IsSamplerType(argument.type))
                    kinds_[{&function, argument.name}] = DeclaredKind(argument.type);
    }

    void find() {
        // Each round hands kinds on by one call at least, or is the last.
        do {
            changed_ = false;
            for (const HlslFunction& function : text_.functions)
                look(function);
        } while (changed_);
    }

    SamplerKind kindOf(const HlslFunction* function, const std::string& name) const {
        const auto known = kinds_.find({function, name});
        return known != kinds_.end() && known->second ? *known->second : SamplerKind::Flat;
    }

private:
    using Key = std::pair<const HlslFunction*, std::string>;
    using Kind = std::optional<SamplerKind>;

    void look(const HlslFunction& function) {
        const Words& words = text_.words;
        for (std::size_t i = function.body.begin; i < function.body.end; ++i) {
            const std::size_t open = NextWord(words, i + 1);
            if (!words[i].isName() || words[i].text.empty() || open >= words.size() ||
                !words[open].is("("))
                continue;
            const std::optional<SamplerKind> sampled = SampledKind(words[i].text);
            if (!sampled && !words[i].text.starts_with("hl_"))
                continue;
            const std::vector<WordRange> parts =
                SplitAtCommas(words, {open + 1, Closing(words, open)});
            if (sampled) {
                if (Kind* kind = parts.empty() ? nullptr : findSampler(function, parts[0]))
                    unite(*kind, *sampled, words[i].line);
            } else
                lookAtCall(function, words[i].text, parts, words[i].line);
        }
    }

    void lookAtCall(const HlslFunction& caller, const std::string& name,
                    const std::vector<WordRange>& parts, std::uint32_t line) {
        const auto [first, last] = text_.functionsByName.equal_range(name);
        for (auto at = first; at != last; ++at) {
            const HlslFunction& callee = text_.functions[at->second];
            if (callee.arguments.size() != parts.size())
                continue;
            for (std::size_t i = 0; i < parts.size(); ++i) {
                const auto argument = kinds_.find({&callee, callee.arguments[i].name});
                Kind* kind = argument != kinds_.end() ? findSampler(caller, parts[i]) : nullptr;
                if (!kind)
                    continue;
                if (*kind)
                    unite(argument->second, **kind, line);
                if (argument->second)
                    unite(*kind, *argument->second, line);
            }
        }
    }

    Kind* findSampler(const HlslFunction& function, WordRange part) {
        const std::size_t at = NextWord(text_.words, part.begin);
        if (at >= part.end)
            return nullptr;
        for (const HlslFunction* scope : {&function, static_cast<const HlslFunction*>(nullptr)})
            if (const auto known = kinds_.find({scope, text_.words[at].text});
                known != kinds_.end())
                return &known->second;
        return nullptr;
    }

    void unite(Kind& kind, SamplerKind other, std::uint32_t line) {
        if (kind && *kind != other)
            throw EffectError(PlaceOf(text_.source, line),
                              "one sampler cannot read textures of two kinds");
        changed_ = changed_ || !kind;
        kind = other;
    }

    ShaderText& text_;
    std::map<Key, Kind> kinds_;
    bool changed_ = false;
};

} // namespace

const char* SamplerWord(SamplerKind kind) {
    return kind == SamplerKind::Cube     ? "samplerCUBE"
           : kind == SamplerKind::Volume ? "sampler3D"
                                         : "sampler2D";
}

void NameSamplerElements(Words& words, const EffectSource& source) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::size_t open = NextWord(words, i + 1);
        if (!words[i].isName() || open >= words.size() || !words[open].is("["))
            continue;
        for (const SourceParameter& parameter : source.parameters) {
            if (!IsSamplerType(parameter.type) || parameter.dimensions.empty() ||
                SafeName(parameter.name) != words[i].text)
                continue;
            const std::size_t close = Closing(words, open);
            const auto index = ReadNumber(JoinWords(words, {open + 1, close}));
            if (!index || index->value < 0 || index->value >= ElementCount(parameter.dimensions))
                throw EffectError(PlaceOf(source, words[i].line),
                                  "the index of a sampler must be a number within its array");
            words[i].text =
                "hx_" + parameter.name + "_" + std::to_string(static_cast<UINT>(index->value));
            for (std::size_t at = open; at <= close; ++at)
                words[at].text.clear();
        }
    }
}

void RewriteSamplers(ShaderText& text) {
    KindFinder kinds(text);
    kinds.find();
    for (const SourceParameter& parameter : text.source.parameters) {
        if (!IsSamplerType(parameter.type))
            continue;
        const std::string name = SafeName(parameter.name);
        const SamplerKind kind = kinds.kindOf(nullptr, name);
        if (parameter.dimensions.empty())
            text.samplers.push_back({name, &parameter, 0, kind});
        for (UINT i = 0; i < std::min(ElementCount(parameter.dimensions), MostSamplers); ++i)
            text.samplers.push_back(
                {"hx_" + parameter.name + "_" + std::to_string(i), &parameter, i, kind});
    }
    for (const HlslFunction& function : text.functions)
        for (const HlslArgument& argument : function.arguments)
            if (IsSamplerType(argument.type))
                text.words[argument.typeWord].text =
                    SamplerWord(kinds.kindOf(&function, argument.name));
    NameSamplerElements(text.words, text.source);
}

} // namespace VornPlatform
