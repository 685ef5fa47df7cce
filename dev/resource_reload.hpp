// SPDX-License-Identifier: MIT
//
// Reads a resource that the stores hold from its file again. It is read beside the old one, which
// goes on when the new one raises; entries, and the pointers to them, stay. False for a name that
// is not in its store.
#pragma once

#include <json/value.h>

#include <string>

namespace Vorn::Dev {

bool ReloadTexture(const std::string& name);
/// Raises std::runtime_error for a file that ends early, and for an index without a vertex.
bool ReloadMesh(const std::string& name);
/// And in the copies that the current scene's entities have. What the game has changed in those,
/// their two colours and ramps, stays. A texture that is not in its store is loaded.
bool ReloadMaterial(const std::string& name);
/// All of the device's shaders, as a reset does it: the render targets are new too. Nothing without
/// a device. Raises std::runtime_error with the compiler's text.
void ReloadShaders();
/// Compiles an effect that is none of them, and drops it.
void CheckEffect(const std::string& path);

/// Enters the model, the material with its texture, and the emitter's texture that an entity's
/// object names and the stores do not have yet. Raises std::runtime_error where there is no file.
void NeedResources(const Json::Value& entity);

} // namespace Vorn::Dev
