// SPDX-License-Identifier: MIT
//
// Where data is missing or broken the engine goes on, or raises without the name of a file. The
// game stops at the start and says which file it is.
//
//   CheckData();
//   NamingFile("data/physics.json", [] { PhysicsSystem::Instance()->LoadPhysicsInfo(...); });
#pragma once

#include <stdexcept>
#include <string>

namespace Lantern {

/// Runs `act`. What it raises goes on as std::runtime_error whose text names the file.
template <typename Act>
void NamingFile(const std::string& file, Act act) {
    try {
        act();
    } catch (const std::exception& error) {
        const std::string text = error.what();
        throw std::runtime_error(text.find(file) != text.npos ? text : text + " in " + file);
    }
}

/// Raises std::runtime_error for an entity file or a shader that is missing or empty, and for JSON
/// that breaks off.
void CheckData();

/// Loads all that a pack lists, now and not when a scene comes; a fault names the file.
void LoadPack(const std::string& path);

} // namespace Lantern
