// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/resource/fwd.hpp"

#include <cstdint>
#include <string>
#include <vector>

namespace Vorn {

/// The names of what a scene needs of the four stores, loaded one item at a time.
///
///   Vorn::RscPack* pack = Vorn::RscPackManager::Instance()->LoadRscPack("data/meadow.pack");
///   pack->InitLoad();
///   for (float done = 0; !pack->Load(&done);)
///       ShowProgress(done);
///
/// The stores do not count: two packs that list one name hold one resource, and the unload of
/// either ends it for both. So does the end of a copy.
struct VORN_API RscPack {
    using Cursor = std::vector<std::string>::iterator;

    std::vector<std::string> mMeshes;
    /// The next mesh to load. Cursors are good on the object on which InitLoad ran.
    Cursor mMeshCursor{};
    std::vector<std::string> mTextures;
    Cursor mTextureCursor{};
    /// Behind the textures, since a material looks its texture up.
    std::vector<std::string> mMaterials;
    Cursor mMaterialCursor{};
    std::vector<std::string> mAudio;
    Cursor mAudioCursor{};
    /// Items loaded since InitLoad.
    std::uint32_t mLoaded = 0;
    std::uint32_t mTotal = 0;

    RscPack() = default;
    RscPack(const RscPack&) = default;
    RscPack& operator=(const RscPack&) = default;
    /// Unloads, and passes over sounds that were never made.
    ~RscPack();

    /// Starts anew, and loads the first item. An item that raises, here and in Load, is not counted
    /// and not tried again: the next step goes on behind it.
    void InitLoad();
    /// Loads the next item: meshes, textures, materials, sounds. True once nothing is left, and
    /// without an InitLoad; then `progress` stays. Else `progress` becomes the part that is done,
    /// exactly 1 after the last item; null asks for none.
    bool Load(float* progress);
    /// Unloads every name from its store, loaded or not. The lists stay.
    void Unload();

private:
    bool loadNext();
};

} // namespace Vorn
