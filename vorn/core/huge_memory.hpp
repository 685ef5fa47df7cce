// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace Vorn {

/// Asks the machine to give a block of memory, fresh from `new`, in pages as large as it has. What
/// lies in memory is the same either way; a block of many megabytes is there several times sooner
/// than in pages of 4 KiB, each of which the machine makes and clears by itself. A small block, and
/// a machine without such pages, are passed over.
void PreferHugePages(void* block, std::size_t size);

} // namespace Vorn
