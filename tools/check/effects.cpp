// SPDX-License-Identifier: MIT
#include "tools/check/effects.hpp"

#include "tools/check/nearest.hpp"

#include "platform/d3dx9/effect/effect_code.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <memory>
#include <sstream>

namespace Check {
namespace {

using namespace VornPlatform;

const ShaderConstant* Find(const std::vector<ShaderConstant>& constants, std::string_view name) {
    const std::size_t dot = name.find('.');
    for (const ShaderConstant& constant : constants)
        if (constant.name == name.substr(0, dot))
            return dot == std::string_view::npos ? &constant
                                                 : Find(constant.members, name.substr(dot + 1));
    return nullptr;
}

std::string TypeOf(const ShaderConstant& constant) {
    if (constant.type == ValueType::Texture)
        return "texture";
    std::string type = constant.type == ValueType::Bool    ? "bool"
                       : constant.type == ValueType::Int   ? "int"
                       : constant.type == ValueType::Float ? "float"
                                                           : "another object";
    if (constant.valueClass == ValueClass::Vector)
        type += std::to_string(constant.columns);
    else if (constant.valueClass == ValueClass::Matrix)
        type += fmt::format("{}x{}", constant.rows, constant.columns);
    return constant.elements > 0 ? type + " array" : type;
}

class EffectCheck {
public:
    EffectCheck(const Table& table, const Folder& folder, const std::string& file,
                Findings& findings)
        : mTable(table), mFile(file), mPath(folder.path(file)), mText(folder.read(file)),
          mFindings(findings) {}

    void Run() {
        const std::string name = mFile.substr(mFile.rfind('/') + 1);
        const auto effect = std::find_if(mTable.effects.begin(), mTable.effects.end(),
                                         [&](const EffectFile& e) { return e.name == name; });
        const bool isEngines = effect != mTable.effects.end();
        try {
            if (isEngines && !effect->profile.empty()) {
                const auto shader =
                    CompileShader(mPath, {}, FileIncludes(), effect->technique, effect->profile);
                checkNames(name, shader->constants);
            } else if (name.ends_with(".fx")) {
                const auto code = CompileEffect(mPath, {}, FileIncludes());
                if (isEngines) {
                    checkTechnique(*code, effect->technique);
                    if (!effect->secondTechnique.empty())
                        checkTechnique(*code, effect->secondTechnique);
                    checkNames(name, code->parameters);
                }
            }
        } catch (const EffectError& error) {
            tellErrors(error.what());
        }
    }

private:
    void checkTechnique(const EffectCode& code, const std::string& name) {
        std::vector<std::string> known;
        for (const EffectTechnique& technique : code.techniques)
            known.push_back(technique.name);
        if (std::find(known.begin(), known.end(), name) == known.end())
            mFindings.Warning("effect", {mFile},
                              fmt::format("there is no technique \"{}\", which the engine draws "
                                          "with{}",
                                          name, Suggestion(name, known)));
    }
    void checkNames(const std::string& file, const std::vector<ShaderConstant>& constants) {
        std::vector<std::string> known;
        for (const ShaderConstant& constant : constants)
            known.push_back(constant.name);
        for (const EffectName& name : mTable.effectNames) {
            if (std::find(name.files.begin(), name.files.end(), file) == name.files.end())
                continue;
            const ShaderConstant* constant = Find(constants, name.name);
            if (!constant)
                mFindings.Warning("effect", {mFile},
                                  fmt::format("there is no {} \"{}\", which the engine sets{}",
                                              name.type, name.name, Suggestion(name.name, known)));
            else if (TypeOf(*constant) != name.type)
                mFindings.Warning("effect", {mFile},
                                  fmt::format("\"{}\" is {}, and the engine sets {}", name.name,
                                              TypeOf(*constant), name.type));
        }
    }
    // Lines of "FILE(LINE): error: MESSAGE", of this file or of one that it includes.
    void tellErrors(const std::string& errors) {
        std::istringstream lines(errors);
        for (std::string line; std::getline(lines, line);) {
            Place place{mFile};
            std::string message = line;
            const std::size_t end = line.find("): ");
            if (line.starts_with(mPath + "(") && end != std::string::npos) {
                place = placeOf(line.substr(mPath.size() + 1, end - mPath.size() - 1));
                message = line.substr(end + 3);
            }
            if (message.starts_with("error: "))
                message.erase(0, 7);
            if (!message.empty())
                mFindings.Error("effect", place, message);
        }
    }
    Place placeOf(const std::string& number) const {
        int line = 0;
        std::from_chars(number.data(), number.data() + number.size(), line);
        std::size_t at = 0;
        for (; line > 1 && at < mText.size(); --line)
            at = std::min(mText.find('\n', at), mText.size() - 1) + 1;
        at = std::min(mText.find_first_not_of(" \t", at), mText.size());
        const std::size_t end = std::min(mText.find('\n', at), mText.size());
        return {mFile, at, end - at};
    }

    const Table& mTable;
    const std::string& mFile;
    const std::string mPath, mText;
    Findings& mFindings;
};

} // namespace

void CheckEffect(const Table& table, const Folder& folder, const std::string& file,
                 Findings& findings) {
    EffectCheck(table, folder, file, findings).Run();
}

} // namespace Check
