// SPDX-License-Identifier: MIT
#include "vorn/resource/material.hpp"

#include "vorn/core/data_error.hpp"
#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"
#include "vorn/resource/texture_manager.hpp"

#include <array>
#include <cstdint>

namespace Vorn {

namespace {

// Any value says yes or no: 0, null, and what is empty say no.
bool ReadFlag(const Json::Value& root, std::string_view key, bool fallback) {
    if (!root.isMember(key.data(), key.data() + key.size()))
        return fallback;
    const Json::Value& value = JsonMember(root, key);
    switch (value.type()) {
    case Json::nullValue:
        return false;
    case Json::stringValue:
        return !value.asString().empty();
    case Json::arrayValue:
    case Json::objectValue:
        return !value.empty();
    default:
        return value.asDouble() != 0.0; // numbers and booleans
    }
}

template <typename T, typename Read>
std::array<T, 4> ReadFour(const Json::Value& list, std::string_view key, Read read) {
    std::array<T, 4> four{};
    for (Json::ArrayIndex i = 0; i < four.size(); ++i)
        if (list.isValidIndex(i))
            four[i] = ReadingIn([key] { return '"' + std::string(key) + '"'; },
                                [&] { return read(&list[i], std::to_string(i)); });
    return four;
}

void ReadLight(const Json::Value& root, std::string_view key, Vector4& light) {
    const Json::Value& list = JsonMember(root, key);
    if (!list.isArray())
        return;
    const auto [x, y, z, w] =
        ReadFour<float>(list, key, [](const Json::Value* value, const std::string& index) {
            return JsonFloat(value, index, 0.0f);
        });
    light = Vector4(x, y, z, w);
}

void ReadColor(const Json::Value& root, std::string_view key, Vorn3DColorSigned& color) {
    const Json::Value& list = JsonMember(root, key);
    if (!list.isArray())
        return;
    const auto [a, r, g, b] =
        ReadFour<int>(list, key, [](const Json::Value* value, const std::string& index) {
            return JsonInt(value, index, 0);
        });
    // By way of the packed form, in which a number beyond 255 carries into its neighbour.
    const unsigned long packed = Vorn3DColorSigned(a, r, g, b);
    color = packed;
}

} // namespace

Material::Material(const Material& material)
    : mPath(material.mPath), mTexturePath(material.mTexturePath),
      mHasTransparency(material.mHasTransparency), mHasLighting(material.mHasLighting),
      mAdditiveColor(material.mAdditiveColor), mModulationColor(material.mModulationColor),
      mTexture(material.mTexture) {}

void Material::Load(std::string name) {
    mPath = std::move(name);
    const std::string path = "data/mat/" + mPath;
    const std::string text = TextFromFile(path);
    ReadingIn([&path] { return path; }, [&] { FromText(text); });
}

void Material::FromText(std::string_view text) {
    const Json::Value root = ParseJson(text);
    mTexture = nullptr;
    mHasTransparency = ReadFlag(root, "Transparency", false);
    mHasLighting = ReadFlag(root, "Lighting", true);
    ReadLight(root, "Ambient", mAmbient);
    ReadLight(root, "Diffuse", mDiffuse);
    ReadLight(root, "Emissive", mEmissive);
    ReadLight(root, "Specular", mSpecular);
    mShininess = JsonFloat(root, "Shininess", 1.0f);
    ReadColor(root, "ModulationColor", mModulationColor);
    ReadColor(root, "AdditiveColor", mAdditiveColor);
    mTexturePath = JsonString(root, "Texture", "");
    mTexture = TextureManager::Instance()->Get(mTexturePath);
}

unsigned int Material::AdditiveColor() {
    mAdditiveRamp.mTarget = &mAdditiveColor;
    return static_cast<unsigned int>(static_cast<unsigned long>(mAdditiveColor));
}

unsigned int Material::ModulationColor() {
    mModulationRamp.mTarget = &mModulationColor;
    return static_cast<unsigned int>(static_cast<unsigned long>(mModulationColor));
}

} // namespace Vorn
