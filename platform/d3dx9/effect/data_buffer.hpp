// SPDX-License-Identifier: MIT
#pragma once

#include "platform/d3dx9/counted_object.hpp"

#include <cstddef>
#include <string>
#include <vector>

namespace VornPlatform {

/// Raises std::bad_alloc.
ID3DXBuffer* MakeDataBuffer(const void* data, std::size_t bytes);
/// With its NUL.
ID3DXBuffer* MakeTextBuffer(const std::string& text);

} // namespace VornPlatform
