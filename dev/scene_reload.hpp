// SPDX-License-Identifier: MIT
//
// Shows changed entity, variant and scene files on the entities of the running scene.
#pragma once

#include "vorn/scene/fwd.hpp"

#include <json/value.h>

#include <map>
#include <string>

namespace Vorn::Dev {

/// Entity and variant files, and what was in them when they were last read.
class EntityFiles {
public:
    static bool Is(const std::string& path);

    /// Keeps what a file holds. One that cannot be read is taken for empty.
    void Learn(const std::string& path);
    /// Enters what the file names for the first time, gives it to the factory, and the variants of
    /// its master after it; then the parameters that have changed in it to the living entities of
    /// each template, but for those that an entity's element in the scene file names. Raises what
    /// reading raises; the templates are as before then.
    void Reload(const std::string& path);

private:
    void reloadMaster(const Json::Value& before, const Json::Value& after);
    Json::Value masterOf(const std::string& type) const;

    std::map<std::string, Json::Value> mKnown;
};

/// Reads the scene's file again, as its description too, so that a restart begins with it. What has
/// changed in an element goes to its entity; new elements become entities, and those of elements
/// that went are destroyed. An element that changes its type or variant is another one. Elements
/// are told apart by name; those without one by their order among their kind. A file that cannot be
/// read raises, and all is as before. A fault in an element raises too, after the others.
void ReloadScene(Scene& scene);

} // namespace Vorn::Dev
