// SPDX-License-Identifier: MIT
//
// What the viewer has in the engine's stores. What is missing or broken is noted and drawn without;
// what breaks while it is shown stays as it was.
//
//   Resources resources;
//   Vorn::Mesh* mesh = resources.Mesh("jelly.mesh");   // null, and a problem, if that is broken
//   if (resources.Update())                            // now and then: files that have changed
//       ...
#pragma once

#include "tools/view/files.hpp"

#include "vorn/resource/material.hpp"
#include "vorn/resource/mesh.hpp"
#include "vorn/resource/model_loader.hpp"
#include "vorn/resource/texture.hpp"

#include <functional>
#include <map>
#include <string>

namespace View {

/// What is wrong, by the file's path. Ordered, so that it is told the same way each time.
using Problems = std::map<std::string, std::string>;

/// Shapes that a material or an effect is shown on.
enum class Shape { Sphere, Cube, Plane };

class Resources {
public:
    Resources();
    Resources(const Resources&) = delete;
    Resources& operator=(const Resources&) = delete;
    /// Unloads everything.
    ~Resources();

    // Good until the end; the same again for a name that is there.

    Vorn::Mesh* Mesh(const std::string& name);
    Vorn::Mesh* Mesh(Shape shape);
    /// With its texture.
    Vorn::Material* Material(const std::string& name);
    /// One without a picture is null in the store too: white.
    Vorn::Texture* Texture(const std::string& name);
    /// Grey and dull, for a model that nobody gives a material.
    Vorn::Material& Plain() { return mPlain; }

    /// Reads the files again that have changed. Whether there was one.
    bool Update();
    const Problems& Faults() const { return mProblems; }

private:
    enum class Store { Mesh, Material, Texture };
    struct Entry {
        Store store;
        std::string name;
        Stamp stamp;
        bool loaded = false;
    };

    /// Loads it, or loads it again in its place. False, and the problem noted, where the file is
    /// no good; then nothing has changed.
    bool read(const std::string& path, Entry& entry);
    Entry& enter(Store store, const std::string& folder, const std::string& name);
    void readMesh(const std::string& path, const Entry& entry);
    void readMaterial(const std::string& path, const Entry& entry);
    void readTexture(const std::string& path, const Entry& entry);

    std::map<std::string, Entry> mEntries; // by path
    Problems mProblems;
    Vorn::ModelLoader mLoader;
    Vorn::Material mPlain;
};

} // namespace View
