// SPDX-License-Identifier: MIT
//
// Any bytes as a resource pack, without a device: it is read or raises a standard exception, and is
// loaded to its end past whatever raises. When it goes, so do its resources.
#include "fuzz/fuzz.hpp"
#include "tests/support/temp_folder.hpp"
#include "vorn/vorn.hpp"

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// Runs `step` until it says that nothing is left. What raises is a material without its file or
// texture, and the next step goes on behind it.
template <typename Step>
void Exhaust(Step step) {
    for (bool done = false; !done;) {
        try {
            done = step();
        } catch (const std::exception&) {
            done = false;
        }
    }
}

template <typename Store>
void RequireGone(const std::vector<std::string>& names) {
    for (const std::string& name : names) {
        bool gone = false;
        try {
            Store::Instance()->Get(name);
        } catch (const std::out_of_range&) {
            gone = true;
        }
        Fuzz::Require(gone, "a resource outlived its pack");
    }
}

} // namespace

FUZZ_TARGET(data, size) {
    static const Tests::TempFolder folder;
    std::cout.rdbuf(nullptr); // a line to each resource would be many
    auto* packs = Vorn::RscPackManager::Instance();
    const std::string path = folder.File("pack", std::string(data, size));
    Vorn::RscPack* pack = nullptr;
    try {
        pack = packs->LoadRscPack(path);
    } catch (const std::exception&) {
        return;
    }
    Fuzz::Require(pack == packs->LoadRscPack(path), "a pack was read twice");
    try {
        pack->InitLoad();
    } catch (const std::exception&) {
        // So may the first item.
    }
    float progress = 0.0f;
    Exhaust([&] { return pack->Load(&progress); });
    Fuzz::Require(progress <= 1.0f && pack->mLoaded <= pack->mTotal, "more than all was loaded");
    packs->Release();
    packs->Reload();

    const std::vector<std::string> meshes = pack->mMeshes, textures = pack->mTextures,
                                   materials = pack->mMaterials;
    packs->UnloadRscPack(path);
    RequireGone<Vorn::MeshManager>(meshes);
    RequireGone<Vorn::TextureManager>(textures);
    RequireGone<Vorn::MaterialManager>(materials);
}
