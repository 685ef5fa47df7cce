// SPDX-License-Identifier: MIT
#include "tools/import/convert.hpp"

#include <fmt/format.h>

#include <iterator>
#include <set>

namespace Import {

std::string Describe(const SourceScene& scene) {
    std::string text;
    const auto line = [&]<class... Args>(fmt::format_string<Args...> format, Args&&... args) {
        fmt::format_to(std::back_inserter(text), format, std::forward<Args>(args)...);
        text += '\n';
    };
    line("  format: {}", scene.format.empty() ? "not named" : scene.format);
    line("  units: {}; axes: {}", scene.unitText, scene.axesText);

    line("  meshes: {}", scene.meshes.size());
    std::set<std::size_t> bones;
    for (const SourceMesh& mesh : scene.meshes) {
        line("    \"{}\": {} vertices, {} triangles, {} bones{}, material \"{}\"", mesh.name,
             mesh.positions.size(), mesh.triangles.size(), mesh.bones.size(),
             mesh.morphTargets > 0 ? fmt::format(", {} morph targets", mesh.morphTargets) : "",
             scene.materials[mesh.material].name);
        for (const SourceBone& bone : mesh.bones)
            bones.insert(bone.node);
    }
    line("  materials: {}", scene.materials.size());
    for (const SourceMaterial& material : scene.materials) {
        const SourceTexture& texture = material.texture;
        line("    \"{}\": {}{}", material.name,
             texture.path.empty() ? "no texture" : "texture \"" + texture.path + '"',
             texture.embedded.empty() ? "" : " (in the file)");
    }
    line("  bones: {}", bones.size());
    for (const std::size_t bone : bones)
        line("    \"{}\"", scene.nodes[bone].name);
    line("  animations: {}", scene.animations.size());
    for (std::size_t i = 0; i < scene.animations.size(); ++i)
        line("    {}: \"{}\", {:.3f} s, {} tracks", i, scene.animations[i].name,
             scene.animations[i].duration, scene.animations[i].channels.size());
    line("  left out at import: {} camera(s), {} light(s)", scene.cameras, scene.lights);
    for (const std::string& note : scene.readerNotes)
        line("  note: {}", note);
    return text;
}

} // namespace Import
