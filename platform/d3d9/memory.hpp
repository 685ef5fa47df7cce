// SPDX-License-Identifier: MIT
//
// Memory of the size that a host asks for. Untouched zeros cost nothing, so a huge texture that is
// never filled does no harm.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace VornPlatform {

struct FreeMemory {
    void operator()(std::byte* memory) const { std::free(memory); }
};
using Memory = std::unique_ptr<std::byte[], FreeMemory>;

/// Zeros; null if there are not so many.
inline Memory MakeMemory(std::size_t size) {
    return Memory(static_cast<std::byte*>(std::calloc(size ? size : 1, 1)));
}

} // namespace VornPlatform
