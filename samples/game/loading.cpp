// SPDX-License-Identifier: MIT
#include "samples/game/loading.hpp"

#include "vorn/vorn.hpp"

#include <filesystem>

namespace Lantern {

using namespace Vorn;

namespace {

namespace fs = std::filesystem;

// The engine reads what is in the folder, so that what is not would be missed late, when a script
// makes it.
constexpr const char* Entities[] = {
    "bolt.ent",        "boom.var",        "bubbles.var",      "burst.ent",        "chip.var",
    "dart.ent",        "decor.ent",       "decor_coral1.var", "decor_coral2.var", "decor_jelly.var",
    "decor_rock2.var", "decor_rock3.var", "decor_wreck.var",  "flash.var",        "glint.var",
    "herald.ent",      "jelly.ent",       "lantern.ent",      "mother.ent",       "pearl.ent",
    "plankton.var",    "puffer.ent",      "ring.var",         "rock.ent",         "rock2.var",
    "rock3.var",       "small.var",       "spark.var",        "spine.var",        "vent.var"};
// Of these the engine says less than their names.
constexpr const char* Shaders[] = {
    "basicshader.fx", "distortionshader.fx", "shadow.fx",   "skel.psh",
    "skel.vsh",       "twodbasicshader.fx",  "vornlight.fx"};

void Need(const std::string& file) {
    if (TextFromFile(file).empty())
        throw std::runtime_error("empty file: " + file);
}

bool IsJson(const fs::path& path) {
    const std::string extension = path.extension().string();
    return extension == ".json" || extension == ".ent" || extension == ".var" ||
           extension == ".scene";
}

template <typename Store>
void LoadAll(const std::vector<std::string>& names, const char* folder) {
    for (const std::string& name : names)
        NamingFile(folder + name, [&name] { Store::Instance()->Load(name); });
}

} // namespace

void CheckData() {
    for (const char* name : Shaders)
        Need(std::string("data/shaders/") + name);
    for (const char* name : Entities)
        Need(std::string("data/entity/") + name);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator("data")) {
        const std::string file = entry.path().string();
        bool whole = true;
        if (IsJson(file))
            ParseJson(TextFromFile(file), whole);
        if (!whole)
            throw std::runtime_error("broken JSON: " + file);
    }
}

void LoadPack(const std::string& path) {
    const RscPack& pack = *RscPackManager::Instance()->LoadRscPack(path);
    LoadAll<MeshManager>(pack.mMeshes, "data/mesh/");
    LoadAll<TextureManager>(pack.mTextures, "data/img/");
    LoadAll<MaterialManager>(pack.mMaterials, "data/mat/");
    LoadAll<SoundLoader>(pack.mAudio, "data/audio/");
}

} // namespace Lantern
