// SPDX-License-Identifier: MIT
//
// The base of the four stores: resources under their names.
//
//   Vorn::TextureManager::Instance()->Load("grass.png");
//   Vorn::Texture* grass = Vorn::TextureManager::Instance()->Get("grass.png");
//
// An entry lives from the first Load of its name to Unload, and its address stays the same all that
// time, across a reset of the device too: what points to it keeps the pointer. Nobody counts who
// does. After Unload nothing may be drawn with it.
#pragma once

#include <map>
#include <stdexcept>
#include <string>

namespace Vorn {

template <typename T>
class RscManager {
public:
    /// Enters a resource. One that is there stays as it is.
    virtual void Load(const std::string& name) = 0;
    /// Ends a resource; a name that is not there is passed over.
    virtual void Unload(const std::string& name) = 0;
    /// Makes the device objects of all entries anew, after a reset of the device.
    virtual void Reload() = 0;
    /// Gives up the device objects of all entries, before a reset. Once is enough, twice does no
    /// harm, and between Release and Reload nothing can be drawn.
    virtual void Release() = 0;

    RscManager() = default;
    RscManager(const RscManager&) = default;
    RscManager& operator=(const RscManager&) = default;

    /// Never loads. Raises std::out_of_range, "invalid map<K, T> key", for a name that is not
    /// there.
    T* Get(const std::string& name) {
        const auto found = mResources.find(name);
        if (found == mResources.end())
            throw std::out_of_range("invalid map<K, T> key");
        return &found->second;
    }
    /// Calls `visit(name, resource)` for each entry, in the order of the names. Nothing may be
    /// loaded or unloaded meanwhile.
    template <typename Visit>
    void ForEach(Visit visit) {
        for (auto& [name, resource] : mResources)
            visit(name, resource);
    }

protected:
    /// Whether the name is there; the second argument is not looked at.
    bool Find(const std::string& name, T* /*unused*/) const { return mResources.contains(name); }

    std::map<std::string, T> mResources;
};

} // namespace Vorn
