// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/entry_point.hpp"

#include "platform/d3dx9/effect/hlsl_check.hpp"
#include "platform/d3dx9/effect/hlsl_rewrite.hpp"
#include "platform/d3dx9/effect/hlsl_samplers.hpp"
#include "platform/d3dx9/effect/reached_text.hpp"
#include "platform/d3dx9/effect/semantics.hpp"

#include <algorithm>

namespace VornPlatform {

namespace {

constexpr BYTE UsagePosition = 0, UsageColor = 10, UsageDepth = 12;
constexpr std::size_t MostVariables = 64;

struct Leaf {
    std::string path; // "hl_a0.uv[1]"
    HlslType type;
    Semantic semantic;
};

// The author's arguments, split up into what has a semantic.
class InterfaceReader {
public:
    // `shown` is what messages call the value.
    InterfaceReader(const ShaderText& text, const SourcePlace& place, std::string shown)
        : text_(text), place_(place), shown_(std::move(shown)) {}

    void read(const std::string& path, const std::string& typeName,
              const std::vector<UINT>& dimensions, const std::string& semantic) {
        std::optional<Semantic> inherited;
        if (!semantic.empty())
            inherited = require(semantic, path);
        readValue(path, typeName, dimensions, inherited);
    }

    std::vector<Leaf> leaves;

private:
    Semantic require(const std::string& word, const std::string& path) const {
        if (const auto semantic = ReadSemantic(word))
            return *semantic;
        fail("'" + word + "' of '" + shownOf(path) + "' is no semantic of Direct3D 9");
    }
    // Behind the name of our own stand the author's members.
    std::string shownOf(const std::string& path) const {
        return shown_ + path.substr(std::min(path.size(), path.find_first_of(".[")));
    }
    [[noreturn]] void fail(const std::string& message) const { throw EffectError(place_, message); }

    void readValue(const std::string& path, const std::string& typeName,
                   std::vector<UINT> dimensions, std::optional<Semantic>& semantic) {
        const std::optional<HlslType> type = text_.types.find(typeName);
        if (!type || !type->isNumeric() || text_.types.componentsOf(*type) == 0)
            fail("'" + typeName + "' of '" + shownOf(path) +
                 "' is no type that goes into a shader or out of it");
        dimensions.insert(dimensions.end(), type->dimensions.begin(), type->dimensions.end());
        readElements(path, *type, dimensions, 0, semantic);
    }

    void readElements(const std::string& path, const HlslType& type,
                      const std::vector<UINT>& dimensions, std::size_t dimension,
                      std::optional<Semantic>& semantic) {
        if (dimension < dimensions.size()) {
            for (UINT i = 0; i < dimensions[dimension]; ++i)
                readElements(path + "[" + std::to_string(i) + "]", type, dimensions, dimension + 1,
                             semantic);
            return;
        }
        if (type.structure) {
            for (const SourceParameter& member : type.structure->members) {
                const std::string inner = path + "." + SafeName(member.name);
                if (member.semantic.empty()) {
                    readValue(inner, member.type, member.dimensions, semantic);
                    continue;
                }
                std::optional<Semantic> own = require(member.semantic, inner);
                readValue(inner, member.type, member.dimensions, own);
            }
            return;
        }
        if (!semantic)
            fail("'" + shownOf(path) + "' has no semantic");
        const bool isMatrix = type.valueClass == ValueClass::Matrix;
        for (UINT row = 0; row < (isMatrix ? type.rows : 1); ++row) {
            HlslType one = type;
            one.rows = 1;
            if (leaves.size() == MostVariables || semantic->index > 15)
                fail("'" + shownOf(path) + "' is more than a shader takes");
            leaves.push_back(
                {isMatrix ? path + "[" + std::to_string(row) + "]" : path, one, *semantic});
            ++semantic->index;
        }
    }

    const ShaderText& text_;
    const SourcePlace& place_;
    const std::string shown_;
};

std::string FloatType(UINT columns) {
    return columns == 1 ? "float" : "float" + std::to_string(columns);
}

std::string CastType(const HlslType& type) {
    const std::string base = type.type == ValueType::Int    ? "int"
                             : type.type == ValueType::Bool ? "bool"
                                                            : "float";
    return type.columns == 1 ? base : base + std::to_string(type.columns);
}

class EntryWriter {
public:
    EntryWriter(const ShaderText& text, const CompileCall& call, const HlslFunction& function,
                Profile profile)
        : text_(text), call_(call), function_(function),
          place_(PlaceOf(text.source, function.line)) {
        entry_.profile = profile;
    }

    EntryText write() {
        const std::vector<std::vector<Word>> given = readGiven();
        ReachedText reached(text_, function_, given);
        std::string call = FunctionName(call_.entry) + "(";
        std::size_t next = 0;
        for (std::size_t i = 0; i < function_.arguments.size(); ++i) {
            const HlslArgument& argument = function_.arguments[i];
            call += i ? ", " : "";
            if (argument.isUniform || IsSamplerType(argument.type))
                call += uniformValue(argument, given, next);
            else
                call += passArgument(argument, i);
        }
        call += ");";
        if (next < given.size())
            throw EffectError(call_.place, "'" + call_.entry + "' has " + std::to_string(next) +
                                               " uniform arguments, and gets " +
                                               std::to_string(given.size()));
        if (function_.type != "void") {
            before_ += function_.type + " hx_r; ";
            call = "hx_r = " + call;
            takeOutputs("hx_r", call_.entry, function_.type, {}, function_.semantic);
        }
        requireOutputs();

        std::string head;
        for (const HlslSampler& sampler : text_.samplers)
            head += std::string(SamplerWord(sampler.kind)) + " " + sampler.name + "; ";
        head += HelpersFor(text_.words);
        entry_.text = head + reached.text() + "\n" + "void " + EntryName + "(" + parameters() +
                      ") { " + reached.start() + before_ + call + " " + after_ + "}\n";
        return std::move(entry_);
    }

private:
    // The words of the `compile` call's arguments, with the names that they have in the text.
    std::vector<std::vector<Word>> readGiven() const {
        std::vector<std::vector<Word>> given;
        for (const std::string& argument : call_.arguments) {
            std::vector<Word> words;
            for (const Token& token : Lex(argument)) {
                if (token.kind == TokenKind::End)
                    continue;
                std::string word(token.text);
                const bool isFunction = text_.functionsByName.contains(FunctionName(word));
                words.push_back({token.kind, 0, isFunction ? FunctionName(word) : SafeName(word)});
            }
            NameSamplerElements(words, text_.source);
            CheckCalls(text_, words, {0, words.size()}, &call_.place);
            CheckArgument(text_, words, call_.place);
            given.push_back(std::move(words));
        }
        return given;
    }

    std::string uniformValue(const HlslArgument& argument,
                             const std::vector<std::vector<Word>>& given, std::size_t& next) const {
        if (next < given.size()) {
            const std::vector<Word>& words = given[next++];
            return asArgument(argument, JoinWords(words, {0, words.size()}));
        }
        if (argument.start.end > argument.start.begin)
            return asArgument(argument, JoinWords(text_.words, argument.start));
        throw EffectError(call_.place, "'" + argument.name + "' of '" + call_.entry +
                                           "' is uniform and gets no value");
    }

    // The compiler hands a number on as what it is.
    std::string asArgument(const HlslArgument& argument, const std::string& value) const {
        const std::optional<HlslType> type = text_.types.find(argument.type);
        const bool isPlain = type && type->isNumeric() && !type->structure &&
                             type->dimensions.empty() && argument.dimensions.empty();
        return isPlain ? "(" + argument.type + ")(" + value + ")" : value;
    }

    std::string passArgument(const HlslArgument& argument, std::size_t number) {
        const std::string name = "hx_a" + std::to_string(number);
        std::string declaration = argument.type + " " + name;
        for (const UINT dimension : argument.dimensions)
            declaration += "[" + std::to_string(dimension) + "]";
        before_ += declaration + "; ";
        if (argument.isIn)
            takeInputs(name, argument);
        if (argument.isOut)
            takeOutputs(name, argument.name, argument.type, argument.dimensions, argument.semantic);
        return name;
    }

    void takeInputs(const std::string& name, const HlslArgument& argument) {
        InterfaceReader reader(text_, place_, argument.name);
        reader.read(name, argument.type, argument.dimensions, argument.semantic);
        for (const Leaf& leaf : reader.leaves)
            before_ += leaf.path + " = (" + CastType(leaf.type) + ")" + inputOf(leaf) + "; ";
    }

    std::string inputOf(const Leaf& leaf) {
        const bool isPixel = entry_.profile.stage == ShaderStage::Pixel;
        if (leaf.semantic.kind == Semantic::Kind::Face && isPixel) {
            readsFace_ = true;
            return "(hx_face ? 1.0 : -1.0)";
        }
        if (leaf.semantic.kind == Semantic::Kind::PixelPlace && isPixel) {
            readsPlace_ = true;
            return "float4(floor(hx_place.xy), hx_place.zw)";
        }
        if (leaf.semantic.kind != Semantic::Kind::Usage)
            throw EffectError(place_, "'" + leaf.path + "' is there for pixel shaders only");
        // Structures that both stages share bring them along; no pixel shader can read them.
        if (isPixel && (leaf.semantic.usage == UsagePosition || leaf.semantic.usage == UsageDepth))
            return "0.0";
        for (std::size_t i = 0; i < entry_.inputs.size(); ++i)
            if (entry_.inputs[i].usage == leaf.semantic.usage &&
                entry_.inputs[i].index == leaf.semantic.index) {
                inputColumns_[i] = std::max(inputColumns_[i], leaf.type.columns);
                return entry_.inputs[i].name;
            }
        entry_.inputs.push_back({"hx_i" + std::to_string(entry_.inputs.size()), leaf.semantic.usage,
                                 leaf.semantic.index});
        inputColumns_.push_back(leaf.type.columns);
        return entry_.inputs.back().name;
    }

    void takeOutputs(const std::string& path, const std::string& shown, const std::string& type,
                     const std::vector<UINT>& dimensions, const std::string& semantic) {
        InterfaceReader reader(text_, place_, shown);
        reader.read(path, type, dimensions, semantic);
        for (const Leaf& leaf : reader.leaves)
            takeOutput(leaf);
    }

    void takeOutput(const Leaf& leaf) {
        const bool isPixel = entry_.profile.stage == ShaderStage::Pixel;
        const BYTE usage = leaf.semantic.usage;
        if (leaf.semantic.kind != Semantic::Kind::Usage ||
            (isPixel && usage != UsageColor && usage != UsageDepth))
            throw EffectError(place_, "'" + leaf.path + "' has a semantic of inputs only");
        for (const EntryVariable& other : entry_.outputs)
            if (other.usage == usage && other.index == leaf.semantic.index)
                throw EffectError(place_, "'" + leaf.path + "' has the semantic of another output");
        const std::string name = "hx_o" + std::to_string(entry_.outputs.size());
        entry_.outputs.push_back({name, usage, leaf.semantic.index});

        // The backend wants all of these two; what is missing is that of a vector of the fixed
        // function.
        UINT columns = leaf.type.columns;
        std::string value = "(" + FloatType(columns) + ")" + leaf.path;
        if ((isPixel && usage == UsageColor) || (!isPixel && usage == UsagePosition))
            for (; columns < 4; ++columns)
                value += columns == 3 ? ", 1.0" : ", 0.0";
        if (columns != leaf.type.columns)
            value = "float4(" + value + ")";
        if (!isPixel && usage == UsageColor && entry_.profile.model < 3)
            value = "saturate(" + value + ")";
        outputColumns_.push_back(columns);
        after_ += name + " = " + value + "; ";
    }

    void requireOutputs() const {
        const bool isPixel = entry_.profile.stage == ShaderStage::Pixel;
        for (const EntryVariable& output : entry_.outputs)
            if (output.usage == (isPixel ? UsageColor : UsagePosition) && output.index == 0)
                return;
        throw EffectError(place_, "'" + call_.entry + "' does not write " +
                                      (isPixel ? "COLOR0" : "POSITION0") + ", which a " +
                                      (isPixel ? "pixel" : "vertex") + " shader must");
    }

    std::string parameters() const {
        std::string list;
        const auto add = [&](const std::string& parameter) {
            list += (list.empty() ? "" : ", ") + parameter;
        };
        for (std::size_t i = 0; i < entry_.inputs.size(); ++i)
            add("in " + FloatType(inputColumns_[i]) + " " + entry_.inputs[i].name + " : HLI" +
                std::to_string(i));
        if (readsPlace_)
            add("in float4 hx_place : SV_Position");
        if (readsFace_)
            add("in bool hx_face : SV_IsFrontFace");
        for (std::size_t i = 0; i < entry_.outputs.size(); ++i)
            add("out " + FloatType(outputColumns_[i]) + " " + entry_.outputs[i].name + " : HLO" +
                std::to_string(i));
        return list;
    }

    const ShaderText& text_;
    const CompileCall& call_;
    const HlslFunction& function_;
    const SourcePlace place_;
    EntryText entry_;
    std::vector<UINT> inputColumns_, outputColumns_;
    std::string before_, after_;
    bool readsPlace_ = false, readsFace_ = false;
};

} // namespace

std::optional<Profile> ReadProfile(std::string_view name) {
    const std::string word = LowerCase(name);
    const bool isVertex = word.starts_with("vs_");
    if ((!isVertex && !word.starts_with("ps_")) || word.size() < 6 || word.size() > 7 ||
        word[4] != '_')
        return std::nullopt;
    constexpr std::string_view Versions[] = {"1_1", "1_2", "1_3", "1_4",  "2_0", "2_a",
                                             "2_b", "3_0", "2_x", "2_sw", "3_sw"};
    if (std::find(std::begin(Versions), std::end(Versions), word.substr(3)) == std::end(Versions))
        return std::nullopt;
    Profile profile;
    profile.stage = isVertex ? ShaderStage::Vertex : ShaderStage::Pixel;
    profile.model = word[3] - '0';
    const DWORD minor = word[5] >= '1' && word[5] <= '4' ? static_cast<DWORD>(word[5] - '0') : 0;
    profile.version =
        (isVertex ? 0xfffe0000 : 0xffff0000) | static_cast<DWORD>(profile.model) << 8 | minor;
    return profile;
}

std::string BlockCopyName(const std::string& name) {
    return "hx_u_" + SafeName(name);
}

EntryText WriteEntry(const ShaderText& text, const CompileCall& call) {
    const std::optional<Profile> profile = ReadProfile(call.profile);
    if (!profile)
        throw EffectError(call.place, "'" + call.profile + "' is no profile of Direct3D 9");
    const HlslFunction* found = nullptr;
    for (const HlslFunction& function : text.functions) {
        if (function.name != FunctionName(call.entry) || function.body.end == 0)
            continue;
        const auto uniforms = std::count_if(
            function.arguments.begin(), function.arguments.end(),
            [](const HlslArgument& a) { return a.isUniform || IsSamplerType(a.type); });
        if (!found || static_cast<std::size_t>(uniforms) == call.arguments.size())
            found = &function;
    }
    if (!found)
        throw EffectError(call.place, "there is no function '" + call.entry + "'");
    return EntryWriter(text, call, *found, *profile).write();
}

} // namespace VornPlatform
