// SPDX-License-Identifier: MIT
#include "tools/view/effect_values.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <string_view>

namespace View {
namespace {

using Vorn::Vector3;
using VornPlatform::ShaderConstant;
using VornPlatform::ValueClass;

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

/// The semantic's name for what a matrix is; the names of docs/shaders.md have such meanings too.
std::string MeaningOf(const ShaderConstant& parameter) {
    static constexpr std::array<std::pair<std::string_view, std::string_view>, 5> names = {
        {{"worldMatrix", "WORLD"},
         {"viewMatrix", "VIEW"},
         {"projectionMatrix", "PROJECTION"},
         {"worldInverseTransposeMatrix", "WORLD"},
         {"WorldViewProj", "WORLDVIEWPROJECTION"}}};
    if (!parameter.semantic.empty())
        return Upper(parameter.semantic);
    for (const auto& [name, meaning] : names)
        if (parameter.name == name)
            return std::string(meaning);
    return {};
}

/// By the letters of a meaning; the world is the identity here. False for no meaning of a matrix.
bool MatrixOf(std::string meaning, const Frame& frame, D3DXMATRIX& matrix) {
    const auto take = [&meaning](std::string_view word, bool atEnd) {
        const bool there = atEnd ? meaning.ends_with(word) : meaning.starts_with(word);
        if (there)
            meaning.erase(atEnd ? meaning.size() - word.size() : 0, word.size());
        return there;
    };
    const bool transpose = take("TRANSPOSE", true);
    const bool inverse = take("INVERSE", true) || take("I", true);
    Vorn::Matrix4 product;
    const bool world = take("WORLD", false), view = take("VIEW", false);
    const bool projection = take("PROJECTION", false) || take("PROJ", false);
    if (!meaning.empty() || !(world || view || projection) || (inverse && projection))
        return false;
    if (view)
        product = frame.view;
    if (projection)
        product = frame.projection * product;
    if (inverse && view) {
        // A turn and a step: the turn goes back, and then the step.
        const Vorn::Matrix4 back = product.ExtractRotation().Transposed();
        product = back * Vorn::Matrix4::Translation(product.Col4ToVec3() * -1.0f);
    }
    matrix = product; // transposed, as Direct3D has it
    if (transpose)
        D3DXMatrixTranspose(&matrix, &matrix);
    return true;
}

/// Vectors and numbers by name or semantic; nothing for others.
std::vector<float> NumbersOf(const ShaderConstant& parameter, const Frame& frame) {
    const std::string meaning = Upper(parameter.semantic);
    const auto is = [&](std::initializer_list<std::string_view> names) {
        return std::any_of(names.begin(), names.end(), [&](std::string_view name) {
            return parameter.name == name || meaning == name;
        });
    };
    const auto point = [](const Vector3& v) { return std::vector<float>{v.x, v.y, v.z, 1}; };
    if (is({"cameraPos", "CAMERAPOSITION", "EYEPOSITION", "CAMERAPOS"}))
        return point(frame.eye);
    if (is({"LIGHTPOSITION", "LIGHTPOS"}))
        return point(frame.light);
    if (is({"TIME"}) || (meaning.empty() && is({"Time", "TargetTime"})))
        return {parameter.name == "Time"         ? std::fmod(frame.time, 0.7f)
                : parameter.name == "TargetTime" ? std::fmod(frame.time, 0.07f)
                                                 : frame.time};
    if (meaning.empty() && is({"time"}))
        return {1.0f / 60};
    if (is({"modR", "modG", "modB", "modA"}))
        return {255};
    if (is({"addR", "addG", "addB", "addA", "PF", "PB"}))
        return {0};
    if (is({"R", "G", "B"}))
        return {258};
    if (is({"globalAmbient"}))
        return {0.9f, 0.9f, 0.9f, 0};
    return {};
}

void SetLight(ID3DXEffect& effect, const Frame& frame) {
    const float at[] = {frame.light.x, frame.light.y, frame.light.z};
    const float full[] = {1, 1, 1, 1}, none[] = {0, 0, 0, 1};
    effect.SetValue("lights.pos", at, sizeof at);
    effect.SetValue("lights.ambient", none, sizeof none);
    effect.SetValue("lights.diffuse", full, sizeof full);
    effect.SetValue("lights.specular", full, sizeof full);
    effect.SetFloat("lights.radius", 100);
}

void SetSurface(ID3DXEffect& effect, Vorn::Material& material) {
    const auto set = [&effect](const char* name, const Vorn::Vector4& v) {
        const float four[] = {v.x, v.y, v.z, v.w};
        effect.SetValue(name, four, sizeof four);
    };
    set("material.ambient", material.Ambient());
    set("material.diffuse", material.Diffuse());
    set("material.emissive", material.Emissive());
    set("material.specular", material.Specular());
    effect.SetFloat("material.shininess", material.Shininess());
}

bool IsStructure(const ShaderConstant& parameter, const char* name) {
    return parameter.name == name && parameter.valueClass == ValueClass::Struct;
}

} // namespace

bool IsGiven(const ShaderConstant& parameter) {
    D3DXMATRIX matrix;
    if (parameter.valueClass == ValueClass::Matrix)
        return MatrixOf(MeaningOf(parameter), {}, matrix);
    return IsStructure(parameter, "lights") || IsStructure(parameter, "material") ||
           !NumbersOf(parameter, {}).empty();
}

void SetFrameValues(ID3DXEffect& effect, const std::vector<ShaderConstant>& parameters,
                    const Frame& frame, Vorn::Material& material) {
    for (const ShaderConstant& parameter : parameters) {
        D3DXMATRIX matrix;
        if (IsStructure(parameter, "lights"))
            SetLight(effect, frame);
        else if (IsStructure(parameter, "material"))
            SetSurface(effect, material);
        else if (parameter.valueClass == ValueClass::Matrix) {
            if (MatrixOf(MeaningOf(parameter), frame, matrix))
                effect.SetMatrix(parameter.name.c_str(), &matrix);
        } else if (std::vector<float> numbers = NumbersOf(parameter, frame); !numbers.empty()) {
            numbers.resize(std::max<std::size_t>(parameter.columns, 1));
            effect.SetFloatArray(parameter.name.c_str(), numbers.data(), parameter.columns);
        }
    }
}

} // namespace View
