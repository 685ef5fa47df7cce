// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/shader_compiler.hpp"

#include "platform/d3d9/counters.hpp"
#include "platform/d3dx9/effect/matrix_columns.hpp"
#include "platform/d3dx9/effect/spirv_check.hpp"
#include "platform/d3dx9/effect/spirv_limits.hpp"
#include "platform/d3dx9/effect/spirv_words.hpp"

// Its headers hide what belongs to HLSL otherwise.
#ifndef ENABLE_HLSL
#define ENABLE_HLSL
#endif
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wshadow"
#include <glslang/Include/intermediate.h>
#include <glslang/MachineIndependent/localintermediate.h>
#include <glslang/Public/ResourceLimits.h>
#include <glslang/Public/ShaderLang.h>
#include <glslang/SPIRV/GlslangToSpv.h>
#include <spirv_cross/spirv.hpp>
#pragma GCC diagnostic pop

#include <algorithm>
#include <mutex>
#include <sstream>

namespace VornPlatform {

namespace {

// Direct3D 9 multiplies two matrices by "*" component by component; the compiler takes it for mul.
// Both are the same in its tree but for the character that they stand at.
class MatrixProducts : public glslang::TIntermTraverser {
public:
    explicit MatrixProducts(const std::string& text) {
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            lines_.push_back(line);
    }

    bool visitBinary(glslang::TVisit, glslang::TIntermBinary* node) override {
        const bool isAssigned = node->getOp() == glslang::EOpMatrixTimesMatrixAssign;
        if ((isAssigned || node->getOp() == glslang::EOpMatrixTimesMatrix) &&
            characterAt(node->getLoc()) == '*')
            node->setOp(isAssigned ? glslang::EOpMulAssign : glslang::EOpMul);
        return true;
    }

private:
    char characterAt(const glslang::TSourceLoc& place) const {
        const auto line = static_cast<std::size_t>(place.line - 1);
        const auto column = static_cast<std::size_t>(place.column - 1);
        return line < lines_.size() && column < lines_[line].size() ? lines_[line][column] : '\0';
    }

    std::vector<std::string> lines_;
};

// "ERROR: 0:12: 'x' : unknown variable" in the author's words.
class MessageReader {
public:
    MessageReader(const EffectSource& source, const SourcePlace& place)
        : source_(source), place_(place) {}

    void read(const char* log) {
        std::istringstream stream(log);
        for (std::string line; std::getline(stream, line);) {
            if (line.starts_with("ERROR: "))
                add(errors, line.substr(7), "error");
            else if (line.starts_with("WARNING: "))
                add(warnings, line.substr(9), "warning");
        }
    }

    std::string errors, warnings;

private:
    void add(std::string& lines, std::string text, const char* kind) const {
        SourcePlace place = place_;
        if (const auto [number, end] = lineOf(text); end != 0) {
            text.erase(0, end);
            if (number >= 1 && static_cast<std::size_t>(number) <= source_.lines.size())
                place = source_.lines[static_cast<std::size_t>(number) - 1];
        } else if (text.find("compilation errors") != std::string::npos)
            return;
        // What follows from an error of the same line says nothing.
        if (text.find("'declaration' : Expected") != std::string::npos && !lines.empty())
            return;
        if (text.starts_with("'' : "))
            text.erase(0, 5);
        for (const char* prefix : {"hl_", "hx_"})
            for (std::size_t at; (at = text.find(prefix)) != std::string::npos;)
                text.erase(at, std::char_traits<char>::length(prefix));
        while (!text.empty() && text.back() == ' ')
            text.pop_back();
        const std::string message =
            place.file + "(" + std::to_string(place.line) + "): " + kind + ": " + text + "\n";
        if (lines.find(message) == std::string::npos)
            lines += message;
    }

    // Of "0:12: "; the second is 0 for a text without a place.
    static std::pair<int, std::size_t> lineOf(const std::string& text) {
        int string = 0, line = 0, end = 0;
        if (std::sscanf(text.c_str(), "%d:%d: %n", &string, &line, &end) < 2 || end <= 0)
            return {0, 0};
        return {line, static_cast<std::size_t>(end)};
    }

    const EffectSource& source_;
    const SourcePlace& place_;
};

[[noreturn]] void Fail(std::string errors, const SourcePlace& place) {
    if (errors.empty())
        throw EffectError(place, "the shader does not compile");
    errors.pop_back();
    throw EffectError(errors);
}

// "%" takes the sign of the left side in HLSL, and that of the right one in what the compiler makes
// of it.
void CorrectRemainders(std::vector<std::uint32_t>& spirv) {
    ForEachInstruction(spirv, [](std::uint32_t code, std::uint32_t* words, std::size_t) {
        if (code == spv::OpFMod)
            words[0] = (words[0] & 0xffff0000) | spv::OpFRem;
        if (code == spv::OpSMod)
            words[0] = (words[0] & 0xffff0000) | spv::OpSRem;
    });
}

} // namespace

namespace {

// The linker names functions, and no lines.
void TellRecursion(std::string_view log, const EntryText& entry, const EffectSource& source) {
    constexpr std::string_view Found = "Recursion detected:";
    const std::size_t found = log.find(Found);
    if (found == log.npos)
        return;
    const std::size_t begin = log.find_first_not_of(" \n", found + Found.size());
    const std::string name(log.substr(begin, log.find('(', begin) - begin));
    const std::size_t declared = entry.text.find(" " + name + " (");
    if (begin == log.npos || declared == entry.text.npos)
        return;
    const auto line = std::count(entry.text.begin(),
                                 entry.text.begin() + static_cast<std::ptrdiff_t>(declared), '\n');
    throw EffectError(PlaceOf(source, static_cast<std::uint32_t>(line)),
                      "recursion: '" + (name.starts_with("hl_") ? name.substr(3) : name) +
                          "' is called by itself");
}

std::vector<std::uint32_t> ToSpirv(const glslang::TIntermediate& tree, bool withLines) {
    glslang::SpvOptions options;
    options.generateDebugInfo = withLines;
    std::vector<std::uint32_t> spirv;
    glslang::GlslangToSpv(tree, spirv, &options);
    CorrectRemainders(spirv);
    SplitMatrixFunctions(spirv);
    return spirv;
}

// `spirv` has lines, which cost time in all that is well.
[[noreturn]] void Refuse(const std::vector<std::uint32_t>& spirv, const EffectSource& source,
                         const SourcePlace& place) {
    const SpirvFault fault = FindFault(spirv).value_or(SpirvFault());
    throw EffectError(fault.line > 0 ? PlaceOf(source, static_cast<std::uint32_t>(fault.line - 1))
                                     : place,
                      "this has no meaning: " + fault.message);
}

} // namespace

std::vector<std::uint32_t> CompileToSpirv(const EntryText& entry, const EffectSource& source,
                                          const SourcePlace& place, std::string& warnings) {
    // It keeps state of its own for the process.
    static std::mutex mutex;
    const std::scoped_lock lock(mutex);
    static const bool isReady = glslang::InitializeProcess();
    if (!isReady)
        throw EffectError(place, "the shader compiler does not start");
    ++shaderCount.compiled;

    const EShLanguage stage =
        entry.profile.stage == ShaderStage::Vertex ? EShLangVertex : EShLangFragment;
    const auto messages = static_cast<EShMessages>(EShMsgReadHlsl | EShMsgHlslDX9Compatible |
                                                   EShMsgSpvRules | EShMsgVulkanRules);
    glslang::TShader shader(stage);
    const char* text = entry.text.c_str();
    shader.setStrings(&text, 1);
    shader.setEntryPoint(EntryName);
    shader.setSourceEntryPoint(EntryName);
    shader.setEnvInput(glslang::EShSourceHlsl, stage, glslang::EShClientVulkan, 100);
    shader.setEnvClient(glslang::EShClientVulkan, glslang::EShTargetVulkan_1_0);
    shader.setEnvTarget(glslang::EShTargetSpv, glslang::EShTargetSpv_1_0);

    MessageReader log(source, place);
    bool isFine = shader.parse(GetDefaultResources(), 100, false, messages);
    log.read(shader.getInfoLog());
    glslang::TProgram program;
    if (isFine) {
        program.addShader(&shader);
        isFine = program.link(messages);
        if (!isFine)
            TellRecursion(program.getInfoLog(), entry, source);
        log.read(program.getInfoLog());
    }
    glslang::TIntermediate* tree = isFine ? program.getIntermediate(stage) : nullptr;
    if (!tree || !log.errors.empty())
        Fail(log.errors, place);
    warnings += log.warnings;

    MatrixProducts products(entry.text);
    tree->getTreeRoot()->traverse(&products);
    std::vector<std::uint32_t> spirv = ToSpirv(*tree, false);
    CheckLimits(spirv, place);
    if (FindFault(spirv))
        Refuse(ToSpirv(*tree, true), source, place);
    return spirv;
}

} // namespace VornPlatform
