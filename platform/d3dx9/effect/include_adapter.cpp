// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/include_adapter.hpp"

namespace VornPlatform {

IncludeAdapter::~IncludeAdapter() {
    for (; !mOpen.empty(); mOpen.pop_back())
        mHost->Close(mOpen.back());
}

IncludeReader IncludeAdapter::Reader() {
    if (!mHost)
        return FileIncludes();
    return [this](const std::string& name, const std::string& includer, std::string& found) {
        found = name;
        return read(name, includer);
    };
}

std::optional<std::string> IncludeAdapter::read(const std::string& name,
                                                const std::string& includer) {
    const auto parent = mParents.find(includer);
    const void* data = nullptr;
    UINT bytes = 0;
    mOpen.reserve(mOpen.size() + 1); // what is open is closed whatever happens
    const HRESULT result =
        mHost->Open(D3DXINC_LOCAL, name.c_str(),
                    parent == mParents.end() ? nullptr : parent->second, &data, &bytes);
    if (FAILED(result))
        return std::nullopt;
    mOpen.push_back(data);
    mParents[name] = data;
    return data ? std::string(static_cast<const char*>(data), bytes) : std::string();
}

} // namespace VornPlatform
