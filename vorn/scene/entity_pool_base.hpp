// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/scene/fwd.hpp"

#include <string>

namespace Vorn {

/// Where entities of one type come from and go back to. The host implements it, most often with
/// EntityPool<T>, and registers it with the EntityFactory under the type's name; the engine only
/// calls it.
class VORN_API EntityPoolBase {
public:
    /// Takes the whole text of an entity file: from now on the pool knows the template "master".
    /// `poolSize` is the number of entities that the file asks to have ready.
    virtual void LoadMaster(const std::string& text, unsigned int poolSize) = 0;
    /// Hands out an entity that holds the values of the template `variant` ("master" for the plain
    /// one), all of its parameters flagged as the template's, and whose `Type` is a key under which
    /// the pool is registered. Null if there is no such template; the engine then raises
    /// std::runtime_error.
    virtual Entity* Fetch(const std::string& variant) = 0;
    /// The entity is the pool's again; the caller no longer uses it.
    virtual void Return(Entity* entity) = 0;
    /// Takes the whole text of a variant file. The result answers the variant's name from
    /// `Variant`; it belongs to the pool, is good until the next load, and is no entity for a
    /// scene.
    virtual Entity* LoadVariant(const std::string& text) = 0;

    virtual ~EntityPoolBase();
};

} // namespace Vorn
