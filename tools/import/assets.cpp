// SPDX-License-Identifier: MIT
#include "tools/import/assets.hpp"

#include "tools/import/image.hpp"

#include "vorn/core/file.hpp"
#include "vorn/core/json.hpp"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <stdexcept>
#include <string_view>

namespace Import {
namespace {

namespace fs = std::filesystem;

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// "%20" and the like, as some exporters write paths.
std::string withoutEscapes(const std::string& text) {
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto digit = [&](std::size_t at) {
            return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0;
        };
        if (text[i] == '%' && digit(i + 1) && digit(i + 2)) {
            plain += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            plain += text[i];
        }
    }
    return plain;
}

/// The file of that name in a folder, whatever its capitals; empty where there is none.
fs::path inFolder(const fs::path& folder, const std::string& name) {
    std::error_code error;
    if (fs::is_regular_file(folder / name, error))
        return folder / name;
    for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error)) {
        if (lower(i->path().filename().string()) == lower(name) && i->is_regular_file(error))
            return i->path();
    }
    return {};
}

/// Looks where exporters leave textures: at the path itself, then for its last part around the
/// source. `searched` gets all that was tried.
fs::path findTexture(const std::string& source, std::string path,
                     std::vector<std::string>& searched) {
    std::replace(path.begin(), path.end(), '\\', '/');
    if (path.starts_with("file://"))
        path.erase(0, 7);
    path = withoutEscapes(path);
    const fs::path home =
        source.find('/') == std::string::npos ? "." : fs::path(source).parent_path();
    std::vector<fs::path> folders{(home / path).parent_path(), home};
    for (const char* beside :
         {"textures", "Textures", "texture", "tex", "images", "maps", "../textures", "../images"})
        folders.push_back(home / beside);

    const std::string name = fs::path(path).filename().string();
    for (const fs::path& folder : folders) {
        const std::string tried = (folder / name).lexically_normal().string();
        if (std::find(searched.begin(), searched.end(), tried) != searched.end())
            continue;
        searched.push_back(tried);
        if (const fs::path found = inFolder(folder, name); !found.empty())
            return found;
    }
    return {};
}

/// Bytes of the UTF-8 letter that a text begins with; 0 where it is none. Whatever is no UTF-8, the
/// pack, which is JSON, could not name.
std::size_t letterLength(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    }
    // Longer than it need be, half of a pair, and beyond the last letter.
    const bool wrong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xED && byte(1) > 0x9F) ||
                       (lead == 0xF0 && byte(1) < 0x90) || (lead == 0xF4 && byte(1) > 0x8F);
    return wrong ? 0 : length;
}

Json::Value numbers(const std::array<double, 4>& values) {
    Json::Value array(Json::arrayValue);
    for (const double value : values)
        array.append(Vorn::JsonReal(static_cast<float>(value)));
    return array;
}

Json::Value texts(const std::vector<std::string>& values) {
    Json::Value array(Json::arrayValue);
    for (const std::string& value : values)
        array.append(value);
    return array;
}

} // namespace

std::string SafeName(const std::string& name) {
    constexpr std::size_t longest = 80;
    std::string safe;
    for (std::size_t i = 0; i < name.size();) {
        const std::size_t length = letterLength(std::string_view(name).substr(i));
        if (safe.size() + std::max<std::size_t>(length, 1) > longest)
            break;
        const char c = name[i];
        const bool fine =
            length > 1 || (length == 1 && (std::isalnum(static_cast<unsigned char>(c)) != 0 ||
                                           c == '-' || c == '_' || (c == '.' && !safe.empty())));
        safe += fine ? name.substr(i, length) : "_";
        i += std::max<std::size_t>(length, 1);
    }
    return safe;
}

void Assets::AddModel(const std::string& name, std::string bytes) {
    mMeshes.push_back(name + ".mesh");
    mFiles.push_back({"data/mesh/" + mMeshes.back(), std::move(bytes)});
}

std::string Assets::AddMaterial(const std::string& name, const SourceMaterial& material) {
    Json::Value root(Json::objectValue);
    // Many sources leave the ambient colour black and mean the diffuse one.
    const auto& a = material.ambient;
    const bool black = a[0] + a[1] + a[2] <= 0;
    root["Texture"] = texture(material);
    root["Transparency"] = material.transparency;
    root["Lighting"] = material.lighting;
    root["Ambient"] = numbers(black ? material.diffuse : material.ambient);
    root["Diffuse"] = numbers(material.diffuse);
    root["Specular"] = numbers(material.specular);
    root["Emissive"] = numbers(material.emissive);
    root["Shininess"] = Vorn::JsonReal(static_cast<float>(material.shininess));
    mMaterials.push_back(name + ".json");
    mFiles.push_back({"data/mat/" + mMaterials.back(), Vorn::WriteJson(root)});

    if (!material.otherTextures.empty())
        mReport.dropped.push_back(fmt::format("material \"{}\": its textures for {}: a material "
                                              "of the engine has one texture",
                                              material.name,
                                              fmt::join(material.otherTextures, ", ")));
    if (material.texture.wantsTransform)
        mReport.dropped.push_back(
            fmt::format("material \"{}\": the shift, turn or scale of its texture", material.name));
    return root["Texture"].asString();
}

std::string Assets::texture(const SourceMaterial& material) {
    if (material.texture.path.empty()) {
        mReport.changed.push_back(
            fmt::format("material \"{}\" has no texture: it gets a white one", material.name));
        return white();
    }
    const auto known = mTextureOfPath.find(material.texture.path);
    if (known != mTextureOfPath.end())
        return known->second;
    const Image image = findImage(material.texture, material.name);
    const std::string name = image.name.empty() ? white() : addTexture(image);
    mTextureOfPath.emplace(material.texture.path, name);
    return name;
}

Assets::Image Assets::findImage(const SourceTexture& texture, const std::string& materialName) {
    std::string bytes = texture.embedded;
    // An embedded one is often called "*0" or not at all: then after its material.
    fs::path called = texture.path;
    if (!bytes.empty() && texture.path.starts_with('*'))
        called = materialName.empty() ? "texture" : SafeName(materialName);
    if (bytes.empty()) {
        std::vector<std::string> searched;
        called = findTexture(mSource, texture.path, searched);
        if (called.empty()) {
            mReport.warnings.push_back(fmt::format(
                "material \"{}\": no texture \"{}\", it gets a white one; searched:\n      {}",
                materialName, texture.path, fmt::join(searched, "\n      ")));
            return {};
        }
        bytes = Vorn::TextFromFile(called.string());
    }

    const ImageKind kind = KindOfImage(bytes);
    std::string ending = kind.ending;
    if (kind.convertible) {
        bytes = ToPng(bytes);
        ending = bytes.empty() ? "" : ".png";
        mReport.changed.push_back(
            fmt::format("texture \"{}\" is rewritten as PNG", called.filename().string()));
    }
    if (ending.empty()) {
        mReport.warnings.push_back(
            fmt::format("material \"{}\": texture \"{}\" is damaged or of a format that is not "
                        "known, it gets a white one",
                        materialName, called.string()));
        return {};
    }
    std::string stem = SafeName(called.filename().replace_extension().string());
    return {(stem.empty() ? "texture" : stem) + ending, std::move(bytes)};
}

std::string Assets::addTexture(const Image& image) {
    const fs::path path = image.name;
    std::string name = image.name;
    for (int number = 2; !mTextureNames.insert(lower(name)).second; ++number)
        name = fmt::format("{}_{}{}", path.stem().string(), number, path.extension().string());
    mTextures.push_back(name);
    mFiles.push_back({"data/img/" + name, image.bytes});
    return name;
}

std::string Assets::white() {
    if (mWhite.empty())
        mWhite = addTexture({"untextured.tga", WhiteImage()});
    return mWhite;
}

std::vector<OutputFile> Assets::Finish(const std::string& packName) {
    Json::Value pack(Json::objectValue);
    pack["Mesh"] = texts(mMeshes);
    pack["Texture"] = texts(mTextures);
    pack["Material"] = texts(mMaterials);
    pack["Audio"] = Json::Value(Json::arrayValue);
    mFiles.push_back({"data/pack/" + packName + ".json", Vorn::WriteJson(pack)});
    return std::move(mFiles);
}

} // namespace Import
