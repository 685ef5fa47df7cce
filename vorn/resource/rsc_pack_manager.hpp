// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/resource/rsc_pack.hpp"

#include <map>
#include <string>

namespace Vorn {

/// The resource packs, by the path that they were read from; docs/resource_pack.md describes the
/// file. A pack stays, with what it loaded, across changes of scenes: the host decides what goes.
class VORN_API RscPackManager : public Singleton<RscPackManager> {
public:
    /// Reads the pack's lists and loads nothing of them yet. A pack that is there is not read
    /// again; two spellings of a path are two packs. Raises std::runtime_error for a file that
    /// cannot be opened, DataError for an element that is no text; the name stays free then. The
    /// pointer is good until the pack is unloaded.
    RscPack* LoadRscPack(const std::string& name);
    /// Unloads the pack's resources with it; a name that is not there is passed over.
    void UnloadRscPack(const std::string& name);
    /// Without a file: a name that is not there becomes an empty pack, which is what LoadRscPack
    /// gives from then on.
    RscPack* Get(const std::string& name);
    /// Unloads all packs. What is loaded later starts anew.
    void Free();
    /// The two halves of a reset of the device, for all four stores.
    void Release();
    void Reload();

private:
    std::map<std::string, RscPack> mPacks;
};

template <>
VORN_API RscPackManager Singleton<RscPackManager>::mSingleton;

} // namespace Vorn
