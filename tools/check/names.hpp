// SPDX-License-Identifier: MIT
#pragma once

#include "tools/check/form.hpp"
#include "tools/check/game.hpp"

namespace Check {

/// Looks up what files name: resources in packs, files, types, variants, categories, volumes.
void CheckNames(const Game& game, const std::vector<Reference>& references, Findings& findings);

/// What belongs together: that entity and variant files say what they describe, materials their
/// texture, and that no two describe the same. The types and variants of scenes go into
/// `references`.
void CheckEntities(const Game& game, std::vector<Reference>& references, Findings& findings);

/// Adds to the first finding of each file where the file is used from, as far as something names
/// it.
void AddUses(const Game& game, const std::vector<Reference>& references,
             std::vector<Finding>& findings);

} // namespace Check
