// SPDX-License-Identifier: MIT
#include "vorn/resource/rsc_pack.hpp"

#include "vorn/resource/material_manager.hpp"
#include "vorn/resource/mesh_manager.hpp"
#include "vorn/resource/texture_manager.hpp"
#include "vorn/sound/sound_loader.hpp"

#include <functional>
#include <memory>
#include <stdexcept>

namespace Vorn {

namespace {

// Whether the cursor stands on an item of this very list: one that InitLoad did not set, or that
// was copied from another pack, does not.
bool IsIn(const std::vector<std::string>& list, RscPack::Cursor cursor) {
    const std::string* const at = std::to_address(cursor);
    const std::less<> before;
    return !before(at, list.data()) && before(at, list.data() + list.size());
}

template <typename Store>
bool LoadFrom(const std::vector<std::string>& list, RscPack::Cursor& cursor) {
    if (!IsIn(list, cursor))
        return false;
    const std::string& name = *cursor++;
    Store::Instance()->Load(name);
    return true;
}

template <typename Store>
void UnloadAll(const std::vector<std::string>& list) {
    for (const std::string& name : list)
        Store::Instance()->Unload(name);
}

} // namespace

RscPack::~RscPack() {
    UnloadAll<MeshManager>(mMeshes);
    UnloadAll<TextureManager>(mTextures);
    UnloadAll<MaterialManager>(mMaterials);
    for (const std::string& name : mAudio) {
        try {
            SoundLoader::Instance()->Unload(name);
        } catch (const std::out_of_range&) {
            // It was never made.
        }
    }
}

void RscPack::InitLoad() {
    mMeshCursor = mMeshes.begin();
    mTextureCursor = mTextures.begin();
    mMaterialCursor = mMaterials.begin();
    mAudioCursor = mAudio.begin();
    mTotal = static_cast<std::uint32_t>(mMeshes.size() + mTextures.size() + mMaterials.size() +
                                        mAudio.size());
    mLoaded = 0;
    if (loadNext())
        mLoaded = 1;
}

bool RscPack::Load(float* progress) {
    if (!loadNext())
        return true;
    ++mLoaded;
    if (progress)
        *progress = static_cast<float>(static_cast<double>(mLoaded) / static_cast<double>(mTotal));
    return false;
}

void RscPack::Unload() {
    UnloadAll<MeshManager>(mMeshes);
    UnloadAll<TextureManager>(mTextures);
    UnloadAll<MaterialManager>(mMaterials);
    UnloadAll<SoundLoader>(mAudio);
}

bool RscPack::loadNext() {
    return LoadFrom<MeshManager>(mMeshes, mMeshCursor) ||
           LoadFrom<TextureManager>(mTextures, mTextureCursor) ||
           LoadFrom<MaterialManager>(mMaterials, mMaterialCursor) ||
           LoadFrom<SoundLoader>(mAudio, mAudioCursor);
}

} // namespace Vorn
