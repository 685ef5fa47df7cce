// SPDX-License-Identifier: MIT
#include "tools/view/subject.hpp"

#include "tools/view/pose.hpp"
#include "tools/view/subjects.hpp"

#include <fmt/format.h>
#include <imgui.h>

#include <algorithm>
#include <array>

namespace View {

Bounds Subject::Extent() const {
    Bounds bounds;
    for (const Part& part : Parts()) {
        const bool posed = IsPosable(*part.mesh);
        for (std::uint32_t i = 0; i < part.mesh->mVertexCount; ++i)
            bounds.Add(part.world * PlaceVertex(*part.mesh, i, posed).at);
    }
    return bounds;
}

void Subject::AddVolumes(Lines& lines) const {
    constexpr std::uint32_t box = 0xFFE06CD8u, sphere = 0x80E06CD8u;
    for (const Part& part : Parts()) {
        const Bounds bounds = BoundsOf(*part.mesh, IsPosable(*part.mesh));
        lines.Box(part.world, bounds, box);
        lines.Sphere(part.world * bounds.Middle(), bounds.Radius(), sphere);
    }
}

bool Subject::IsStale() const {
    return std::any_of(mFiles.begin(), mFiles.end(),
                       [](const auto& file) { return StampOf(file.first) != file.second; });
}

void Subject::Accept() {
    for (auto& [path, stamp] : mFiles)
        stamp = StampOf(path);
}

std::unique_ptr<Subject> MakeSubject(const Options& options, const Stage& stage,
                                     Resources& resources) {
    switch (KindOf(stage.File())) {
    case Kind::Model:
        return MakeModel(stage, resources);
    case Kind::Material:
        return MakeMaterial(options, stage, resources);
    case Kind::Picture:
        return MakePicture(stage, resources);
    case Kind::Effect:
        return MakeEffect(options, stage, resources);
    case Kind::Entity:
        return MakeEntity(stage, resources);
    default:
        return MakeScene(stage, resources);
    }
}

namespace {

constexpr std::array<std::pair<const char*, Shape>, 3> Shapes = {
    {{"sphere", Shape::Sphere}, {"cube", Shape::Cube}, {"plane", Shape::Plane}}};

std::string Memory(std::uint64_t bytes) {
    const auto size = static_cast<double>(bytes);
    return bytes < 10240     ? fmt::format("{} bytes", bytes)
           : bytes < 1 << 20 ? fmt::format("{:.0f} KiB", size / 1024)
                             : fmt::format("{:.1f} MiB", size / 1024 / 1024);
}

struct PixelFormat {
    D3DFORMAT format;
    const char* name;
    unsigned int bits;
};
constexpr PixelFormat Formats[] = {{D3DFMT_A8R8G8B8, "A8R8G8B8", 32},
                                   {D3DFMT_X8R8G8B8, "X8R8G8B8", 32},
                                   {D3DFMT_A8L8, "A8L8", 16},
                                   {D3DFMT_A8, "A8", 8},
                                   {D3DFMT_L8, "L8", 8},
                                   {D3DFMT_DXT1, "DXT1", 4},
                                   {D3DFMT_DXT3, "DXT3", 8},
                                   {D3DFMT_DXT5, "DXT5", 8}};

std::string Four(const Vorn::Vector4& v) {
    const auto number = [](float f) { return static_cast<double>(f); };
    return fmt::format("{:.4g}  {:.4g}  {:.4g}  {:.4g}", number(v.x), number(v.y), number(v.z),
                       number(v.w));
}

} // namespace

std::string Counted(std::uint64_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t at = digits.size(); at > 3; at -= 3)
        digits.insert(at - 3, ",");
    return digits;
}

std::string Written(const Vorn::Vector3& v) {
    return fmt::format("{:.4g}  {:.4g}  {:.4g}", static_cast<double>(v.x), static_cast<double>(v.y),
                       static_cast<double>(v.z));
}

void DescribeMesh(const Vorn::Mesh& mesh, Numbers& numbers) {
    std::size_t keys = 0;
    for (const Vorn::Bone& bone : mesh.mBones)
        keys += bone.mKeys.size();
    const Bounds bounds = BoundsOf(mesh, false);
    numbers.emplace_back("Model", "");
    numbers.emplace_back("Vertices",
                         Counted(mesh.mVertexCount) + (mesh.mSkinned ? "  skinned" : "  static"));
    numbers.emplace_back("Triangles", Counted(mesh.mIndexCount / 3));
    if (!mesh.mBones.empty()) {
        numbers.emplace_back("Bones", Counted(mesh.mBones.size()));
        numbers.emplace_back("Keys", Counted(keys));
        numbers.emplace_back("Duration",
                             fmt::format("{:.3g} s", static_cast<double>(mesh.mDuration)));
    }
    numbers.emplace_back("Lowest corner", Written(bounds.low));
    numbers.emplace_back("Highest corner", Written(bounds.high));
    numbers.emplace_back("Size", Written(bounds.Size()));
    numbers.emplace_back("Memory",
                         Memory(std::uint64_t{mesh.mVertexCount} * sizeof(Vorn::Vertex_UTx) +
                                std::uint64_t{mesh.mIndexCount} * 4));
}

void DescribeMaterial(Vorn::Material& material, Numbers& numbers) {
    numbers.emplace_back("Material", "");
    numbers.emplace_back("File", material.Path().empty() ? "none: plain grey" : material.Path());
    numbers.emplace_back("Ambient", Four(material.Ambient()));
    numbers.emplace_back("Diffuse", Four(material.Diffuse()));
    numbers.emplace_back("Emissive", Four(material.Emissive()));
    numbers.emplace_back("Specular", Four(material.Specular()));
    numbers.emplace_back("Shininess",
                         fmt::format("{:.4g}", static_cast<double>(material.Shininess())));
    numbers.emplace_back("Modulation", fmt::format("#{:08X}", material.ModulationColor()));
    numbers.emplace_back("Additive", fmt::format("#{:08X}", material.AdditiveColor()));
    if (material.HasTransparency())
        numbers.emplace_back("Transparency", "yes");
    DescribeTexture(material.Texture(), numbers);
}

void DescribeTexture(const Vorn::Texture* texture, Numbers& numbers) {
    if (!texture)
        return;
    numbers.emplace_back("Texture", "");
    numbers.emplace_back("File", std::filesystem::path(texture->mPath).filename().string());
    IDirect3DTexture9* const picture = texture->mTexture ? *texture->mTexture : nullptr;
    D3DSURFACE_DESC description{};
    if (!picture || FAILED(picture->GetLevelDesc(0, &description))) {
        numbers.emplace_back("Picture", "none: white");
        return;
    }
    const auto format = std::find_if(std::begin(Formats), std::end(Formats), [&](const auto& one) {
        return one.format == description.Format;
    });
    std::uint64_t bits = 0;
    for (DWORD level = 0; level < picture->GetLevelCount(); ++level)
        bits += std::uint64_t{std::max(1u, description.Width >> level)} *
                std::max(1u, description.Height >> level) *
                (format == std::end(Formats) ? 32u : format->bits);
    numbers.emplace_back("Pixels", fmt::format("{} x {}", description.Width, description.Height));
    numbers.emplace_back("Format", format == std::end(Formats)
                                       ? fmt::format("{}", static_cast<int>(description.Format))
                                       : format->name);
    numbers.emplace_back("Levels", Counted(picture->GetLevelCount()));
    numbers.emplace_back("Memory", Memory(bits / 8));
}

std::vector<std::string> MeshChoices() {
    std::vector<std::string> names;
    for (const auto& [name, shape] : Shapes)
        names.emplace_back(name);
    for (std::string& name : Stage::Names("mesh"))
        names.push_back(std::move(name));
    return names;
}

Vorn::Mesh* MeshNamed(const std::string& name, Resources& resources) {
    for (const auto& [shapeName, shape] : Shapes)
        if (name == shapeName)
            return resources.Mesh(shape);
    return resources.Mesh(name);
}

void PushFieldWidth(float label) {
    constexpr float Usual = 110;
    const float most = ImGui::GetContentRegionAvail().x * 0.6f;
    const float wanted = label + ImGui::GetStyle().ItemInnerSpacing.x;
    ImGui::PushItemWidth(-std::clamp(wanted, Usual, std::max(most, Usual)));
}

bool Choose(const char* label, std::string& chosen, const std::vector<std::string>& from) {
    bool changed = false;
    if (!ImGui::BeginCombo(label, chosen.c_str()))
        return false;
    for (const std::string& name : from)
        if (ImGui::Selectable(name.c_str(), name == chosen) && name != chosen) {
            chosen = name;
            changed = true;
        }
    ImGui::EndCombo();
    return changed;
}

} // namespace View
