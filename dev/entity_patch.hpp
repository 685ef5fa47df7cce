// SPDX-License-Identifier: MIT
//
// Entity objects as JSON, compared and laid over entities that live: a parameter is a member of the
// object, or of the object of a component.
#pragma once

#include "vorn/scene/fwd.hpp"

#include <json/value.h>

#include <vector>

namespace Vorn::Dev {

/// The object of a variant with all that its master gives it.
Json::Value Layered(const Json::Value& master, const Json::Value& variant);
/// The parameters of `after` that are otherwise in `before` or not there; in place of one that is
/// there no more its value in `defaults`, if it has one. Identity, "Type", "Variant", "Name", is
/// none.
Json::Value Difference(const Json::Value& before, const Json::Value& after,
                       const Json::Value& defaults);
/// `patch` without the parameters that `other` names.
Json::Value Without(Json::Value patch, const Json::Value& other);
/// All parameters that a template's entities write, for Difference.
Json::Value DefaultsOf(const std::string& type, const std::string& variant);

/// Lays a patch over an entity: parameters that it does not name stay. Meshes, materials and
/// textures that it names are loaded if need be, and taken by their components; an emitter's
/// particles start anew. Raises as those do that read them; what was read before stays changed.
void Apply(Entity& entity, const Json::Value& patch);

/// The entity that stands for each element of a scene's description, or null: by name, and those
/// without one in the order of the list, by type and variant.
std::vector<Entity*> EntitiesOf(const Scene& scene, const Json::Value& elements);

} // namespace Vorn::Dev
