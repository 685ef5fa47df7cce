// SPDX-License-Identifier: MIT
#include "tools/view/files.hpp"

#include "vorn/core/file.hpp"

#include <json/reader.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>

namespace View {
namespace {

namespace fs = std::filesystem;

/// Of the name's last dot, in small letters.
std::string Extension(const fs::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return extension;
}

bool Has(const Json::Value& root, std::initializer_list<const char*> keys) {
    return std::any_of(keys.begin(), keys.end(),
                       [&root](const char* key) { return root.isMember(key); });
}

Kind KindOfJson(const Json::Value& root) {
    if (Has(root, {"Entities"}))
        return Kind::Scene;
    if (Has(root, {"GraphicsCmpt", "PhysicsCmpt", "EmitterCmpt"}))
        return Kind::Entity;
    if (Has(root, {"Texture", "Ambient", "Diffuse", "Emissive", "Specular", "ModulationColor"}) &&
        !root["Texture"].isArray())
        return Kind::Material;
    throw std::runtime_error("it is neither a material nor an entity nor a scene");
}

/// Goes along the bytes of a file and raises where they end too early.
class Walk {
public:
    explicit Walk(std::string_view bytes) : mBytes(bytes) {}

    std::string_view Take(std::uint64_t size, const char* what) {
        if (size > mBytes.size() - mAt)
            throw std::runtime_error(
                fmt::format("it ends at byte {}, within {}", mBytes.size(), what));
        const std::string_view taken = mBytes.substr(mAt, static_cast<std::size_t>(size));
        mAt += static_cast<std::size_t>(size);
        return taken;
    }
    std::uint32_t Number(const char* what) {
        std::uint32_t number = 0;
        std::memcpy(&number, Take(sizeof number, what).data(), sizeof number);
        return number;
    }
    bool AtEnd() const { return mAt == mBytes.size(); }

private:
    std::string_view mBytes;
    std::size_t mAt = 0;
};

// docs/model_file.md has the form.
void WalkModel(Walk walk) {
    walk.Take(16, "its header");
    const bool skinned = walk.Number("its header") == 1;
    const std::uint32_t indices = walk.Number("its header");
    const std::string_view list = walk.Take(std::uint64_t{4} * indices, "the indices");
    const std::uint32_t vertices = walk.Number("the number of vertices");
    walk.Take(std::uint64_t{skinned ? 52u : 32u} * vertices, "the vertices");
    for (std::size_t i = 0; i < list.size(); i += 4) {
        std::uint32_t index = 0;
        std::memcpy(&index, list.data() + i, sizeof index);
        if (index >= vertices)
            throw std::runtime_error(
                fmt::format("index {} is {}, and there are {} vertices", i / 4, index, vertices));
    }
    if (walk.AtEnd() && !skinned)
        return;
    walk.Take(8, "the skeleton");
    const std::uint32_t bones = walk.Number("the skeleton");
    for (std::uint32_t i = 0; i < bones; ++i) {
        const auto name = static_cast<unsigned char>(walk.Take(1, "a bone")[0]);
        walk.Take(60u + name, "a bone");
    }
    if (walk.AtEnd() && bones == 0)
        return;
    walk.Take(12, "the animation");
    const std::uint32_t tracks = walk.Number("the animation");
    for (std::uint32_t i = 0; i < tracks; ++i)
        walk.Take(std::uint64_t{32} * walk.Number("a track"), "a track");
}

} // namespace

bool IsPicture(const fs::path& file) {
    constexpr std::array<std::string_view, 6> pictures = {".png", ".dds",  ".tga",
                                                          ".jpg", ".jpeg", ".bmp"};
    return std::find(pictures.begin(), pictures.end(), Extension(file)) != pictures.end();
}

Kind KindOf(const fs::path& file) {
    const std::string extension = Extension(file);
    if (extension == ".ent" || extension == ".var")
        return Kind::Entity;
    if (extension == ".scene")
        return Kind::Scene;
    if (extension == ".fx")
        return Kind::Effect;
    if (IsPicture(file))
        return Kind::Picture;
    if (extension == ".mesh" || extension == ".model")
        return Kind::Model;
    if (extension == ".json")
        return KindOfJson(ReadJson(file));
    try {
        CheckModel(file);
        return Kind::Model;
    } catch (const std::runtime_error&) {
        throw std::runtime_error(
            "it is no model, material, entity, emitter, effect, scene or picture");
    }
}

Json::Value ReadJson(const fs::path& file) {
    const std::string text = Vorn::TextFromFile(file.string());
    Json::CharReaderBuilder builder;
    builder["stackLimit"] = 1000;
    const std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
    Json::Value root;
    std::string faults;
    bool whole = false;
    try {
        whole = reader->parse(text.data(), text.data() + text.size(), &root, &faults);
    } catch (const std::exception& error) {
        faults = error.what();
    }
    if (!whole) {
        // "* Line 3, Column 5\n  Missing ...\n", and further ones below.
        std::string fault = faults.substr(std::min(faults.find_first_not_of("* "), faults.size()));
        fault.resize(std::min(fault.find("\n*"), fault.size()));
        if (const std::size_t line = fault.find("\n  "); line != std::string::npos)
            fault.replace(line, 3, ": ");
        fault.erase(std::find(fault.begin(), fault.end(), '\n'), fault.end());
        throw std::runtime_error(fault.empty() ? "it is no JSON" : fault);
    }
    if (!root.isObject())
        throw std::runtime_error("it is no JSON object");
    return root;
}

void CheckModel(const fs::path& file) {
    const std::string bytes = Vorn::TextFromFile(file.string());
    WalkModel(Walk(bytes));
}

Stamp StampOf(const fs::path& file) {
    std::error_code none;
    Stamp stamp;
    stamp.size = fs::file_size(file, none);
    if (none)
        return {};
    stamp.time = fs::last_write_time(file, none);
    return stamp;
}

} // namespace View
