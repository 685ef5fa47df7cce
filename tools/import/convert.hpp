// SPDX-License-Identifier: MIT
#pragma once

#include "tools/import/options.hpp"
#include "tools/import/source.hpp"
#include "tools/import/worker.hpp"

#include <string>

namespace Import {

/// The whole way of one source: reads it, makes models, textures, materials and a pack of it,
/// checks them, and sends all to `channel`. Runs in the worker. Raises std::runtime_error.
void Convert(const Options& options, Channel& channel);

/// What a scene holds, in lines for a person.
std::string Describe(const SourceScene& scene);

} // namespace Import
