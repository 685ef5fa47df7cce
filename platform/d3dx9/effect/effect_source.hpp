// SPDX-License-Identifier: MIT
//
// An effect file taken apart: HLSL that a compiler of today knows on one side, what belongs to
// effects on the other.
//
//   EffectSource source = ReadEffectSource(path, text, macros, include, options);
//
// Macros and includes are resolved before, since techniques and samplers often come from them. What
// is taken off the text leaves its line ends, so the text has a line for each of `lines`.
// Everything raises EffectError, whose text has the author's file and line.
#pragma once

#include "platform/d3d9/shader_code.hpp"

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace VornPlatform {

struct SourcePlace {
    std::string file;
    int line = 0;
};

/// "FILE(LINE): error: MESSAGE", one line for each fault.
class EffectError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    EffectError(const SourcePlace& place, const std::string& message)
        : std::runtime_error(place.file + "(" + std::to_string(place.line) +
                             "): error: " + message) {}
};

/// A value of a state or an index, which may hang on parameters: evaluated when a pass begins.
struct Expression {
    enum class Kind {
        Number,    // number
        Parameter, // name, "a.b" and "a[2]" included
        Unary,     // op on 1 operand: - ! ~ +
        Binary,    // op on 2: + - * / % < > <= >= == != && || & | ^ << >>
        Choice,    // 3: condition ? yes : no
        Component, // of the operand, `number` from 0: x or r is 0
        Element,   // operands[0] [ operands[1] ]
        List       // float4(...), {...}: the operands' numbers one behind the other
    };
    Kind kind = Kind::Number;
    double number = 0;
    std::string name, op;
    std::vector<Expression> operands;
};

struct CompileCall {
    std::string profile, entry;         // "vs_2_0", "Main"
    std::vector<std::string> arguments; // source text of each
    SourcePlace place;
};

struct NullValue {};
/// `<name>` or a bare name that is an object: a texture, a sampler, a shader parameter. Of an array
/// it is "name[2]"; an element of an array of shaders has become a CompileCall by now.
struct ObjectReference {
    std::string name;
};
using StateValue = std::variant<NullValue, Expression, CompileCall, ObjectReference>;

/// `CullMode = NONE;`, `Sampler[0] = <s>;`. Names of enumerations are numbers by now.
struct SourceState {
    std::string name; // as it stands; keywords are blind to case
    std::optional<Expression> index;
    StateValue value;
    SourcePlace place;
};

/// A start value: the numbers in the order of the text, matrices row by row.
struct Initial {
    std::vector<double> numbers;
    std::string text; // of a string
    /// One number for all components: `float4 c = 1;`.
    bool fills = false;
    /// `VertexShader vs = compile ...`.
    std::optional<CompileCall> compile;
};

struct SourceParameter {
    std::string type; // "float4x4", "half3", "MyStruct", "texture", "string", "vertexshader"
    std::string name, semantic;
    std::vector<UINT> dimensions; // of an array
    std::optional<Initial> initial;
    bool isStatic = false, isConst = false, isRowMajor = false;
    std::vector<SourceParameter> annotations; // types, names, start values
    // Of samplers:
    // `Texture` among them. Of an array the index of each state is that of the sampler.
    std::vector<SourceState> states;
    // Of `register(...)`: its letter and number.
    char registerKind = 0;
    UINT registerIndex = 0;
    SourcePlace place;
};

struct SourceStruct {
    std::string name;
    std::vector<SourceParameter> members;
};

struct SourcePass {
    std::string name;
    std::vector<SourceState> states;
    std::vector<SourceParameter> annotations;
    SourcePlace place;
};
struct SourceTechnique {
    std::string name;
    std::vector<SourcePass> passes;
    std::vector<SourceParameter> annotations;
    SourcePlace place;
};

struct EffectSource {
    /// HLSL: structures, functions, `static` variables with their start values, numeric parameters
    /// without start values, semantics, registers and annotations. No samplers, textures, strings,
    /// techniques: they stand in the tables only.
    std::string text;
    std::vector<SourcePlace> lines;          // where line n + 1 of the text comes from
    std::vector<SourceParameter> parameters; // at file scope, in order, objects included
    std::vector<SourceStruct> structs;
    std::vector<SourceTechnique> techniques;
    /// Every file that was read with its bytes, the main one first: the same again compiles the
    /// same.
    std::vector<std::pair<std::string, std::string>> files;
    std::string warnings; // lines as those of EffectError, with "warning" for "error"
};

/// The content of an included file by its name in the text and the file that includes it; nothing
/// if there is none. `found` gets the name that messages and the next include call it by.
using IncludeReader = std::function<std::optional<std::string>(
    const std::string& name, const std::string& includer, std::string& found)>;
/// Beside the file that includes it, then in the working directory.
IncludeReader FileIncludes();

using Macros = std::vector<std::pair<std::string, std::string>>;

EffectSource ReadEffectSource(const std::string& path, std::string_view text, const Macros& macros,
                              const IncludeReader& include);

} // namespace VornPlatform
