// SPDX-License-Identifier: MIT
//
// Names with numbers from 0 on, and the two forms of a D3DXHANDLE: a name, or what Handle has given
// out.
//
//   NameTable table({"worldMatrix", "lights", "lights.pos"});
//   table.Find("lights.pos");     // 2
//   table.Find(table.Handle(2));  // 2
//
// Hosts name parameters by string literals, thousands a frame. So the last number of an address is
// remembered; what stands there is compared all the same.
#pragma once

#include <d3dx9.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace VornPlatform {

class NameTable {
public:
    explicit NameTable(std::vector<std::string> names)
        : mNames(std::move(names)), mHandles(mNames.size()) {
        mNumbers.reserve(mNames.size());
        for (std::size_t i = 0; i < mNames.size(); ++i)
            mNumbers.emplace(mNames[i], static_cast<int>(i)); // the first of a name
    }
    // Views and handles lead into it.
    NameTable(const NameTable&) = delete;
    NameTable& operator=(const NameTable&) = delete;

    std::size_t Size() const { return mNames.size(); }

    /// -1 for what is not there.
    int Find(D3DXHANDLE handle) const {
        if (!handle)
            return -1;
        const auto address = reinterpret_cast<std::uintptr_t>(handle);
        const std::uintptr_t number = address - reinterpret_cast<std::uintptr_t>(mHandles.data());
        if (number < mHandles.size())
            return static_cast<int>(number);
        constexpr std::uint64_t Golden = 0x9E3779B97F4A7C15u;
        Memory& memory = mMemory[(address * Golden) >> (64 - MemoryBits)];
        if (memory.address == handle &&
            std::strcmp(handle, mNames[static_cast<std::size_t>(memory.number)].c_str()) == 0)
            return memory.number;
        return look(handle, memory);
    }

    /// Not a text of use: an address that stands for the name. Null for -1.
    D3DXHANDLE Handle(int number) const {
        return number < 0 ? nullptr : &mHandles[static_cast<std::size_t>(number)];
    }
    const std::string& Name(int number) const { return mNames[static_cast<std::size_t>(number)]; }
    /// The name that a handle stands for, or is.
    const char* Text(D3DXHANDLE handle) const {
        const std::uintptr_t number = reinterpret_cast<std::uintptr_t>(handle) -
                                      reinterpret_cast<std::uintptr_t>(mHandles.data());
        return number < mHandles.size() ? mNames[number].c_str() : handle;
    }

private:
    static constexpr unsigned int MemoryBits = 9;
    struct Memory {
        D3DXHANDLE address = nullptr;
        int number = 0;
    };

    int look(D3DXHANDLE name, Memory& memory) const {
        const auto found = mNumbers.find(name);
        if (found == mNumbers.end())
            return -1;
        memory = {name, found->second};
        return found->second;
    }

    std::vector<std::string> mNames;
    std::vector<char> mHandles; // for their addresses
    std::unordered_map<std::string_view, int> mNumbers;
    mutable std::array<Memory, 1u << MemoryBits> mMemory = {};
};

} // namespace VornPlatform
