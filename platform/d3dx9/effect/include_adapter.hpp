// SPDX-License-Identifier: MIT
//
// A host's ID3DXInclude as the compiler reads included files.
#pragma once

#include "platform/d3dx9/effect/effect_source.hpp"

#include <d3dx9.h>

#include <map>

namespace VornPlatform {

/// Null: files beside the one that includes them. What the host hands out is closed when this goes,
/// since it is the `parent` of what it includes itself.
class IncludeAdapter {
public:
    explicit IncludeAdapter(ID3DXInclude* host) : mHost(host) {}
    IncludeAdapter(const IncludeAdapter&) = delete;
    IncludeAdapter& operator=(const IncludeAdapter&) = delete;
    ~IncludeAdapter();

    /// Not to be called when this has gone.
    IncludeReader Reader();

private:
    std::optional<std::string> read(const std::string& name, const std::string& includer);

    ID3DXInclude* mHost;
    std::map<std::string, const void*> mParents; // by name
    std::vector<const void*> mOpen;
};

} // namespace VornPlatform
