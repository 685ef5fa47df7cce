// SPDX-License-Identifier: MIT
//
// How a surface looks: its texture, its answer to light, two colours.
//
//   Vorn::Material grass;
//   grass.Load("grass.json");    // "data/mat/grass.json"; its texture is loaded already
//
// docs/material_file.md describes the file. A material points into the texture store and owns
// nothing. The two ways of copying differ: assigning takes everything over, the ramps with their
// targets too, which drive the other material's colours until AdditiveColor or ModulationColor is
// asked for; a copy that is constructed has the names, flags, colours and the texture only.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/math/color.hpp"
#include "vorn/math/vector4.hpp"
#include "vorn/resource/color_ramp.hpp"
#include "vorn/resource/fwd.hpp"

#include <string>
#include <string_view>

namespace Vorn {

class VORN_API Material {
public:
    Material() = default;
    Material(const Material& material);
    Material& operator=(const Material& material) = default;

    /// Reads "data/mat/" and the name. Raises std::runtime_error for a file that cannot be opened;
    /// DataError for a value of the wrong type; std::out_of_range, "invalid map<K, T> key", for a
    /// texture that is not in the store, "" too. What was read before stays then, and Texture() is
    /// null.
    void Load(std::string name);
    /// The same from a text.
    void FromText(std::string_view text);

    /// The name that Load was given.
    std::string Path() { return mPath; }
    /// The texture's name in its store.
    std::string TexturePath() { return mTexturePath; }
    bool HasTransparency() const { return mHasTransparency; }
    bool HasLighting() const { return mHasLighting; }
    Vector4 Ambient() { return mAmbient; }
    Vector4 Diffuse() { return mDiffuse; }
    Vector4 Emissive() { return mEmissive; }
    Vector4 Specular() { return mSpecular; }
    float Shininess() { return mShininess; }
    Vorn::Texture* Texture() const { return mTexture; }

    /// Packed: 31..24 alpha   23..16 red   15..8 green   7..0 blue. A channel outside 0 to 255
    /// spills into its neighbour. Asking puts the target of the ramp on this material's colour.
    unsigned int AdditiveColor();
    unsigned int ModulationColor();
    /// Of the number the low 32 bits count.
    void AdditiveColor(unsigned long packed) { mAdditiveColor = packed; }
    void ModulationColor(unsigned long packed) { mModulationColor = packed; }

private:
    std::string mPath;
    std::string mTexturePath;
    bool mHasTransparency = false;
    bool mHasLighting = false;
    Vorn3DColorSigned mAdditiveColor;
    Vorn3DColorSigned mModulationColor{255, 255, 255, 255};
    Vector4 mAmbient;
    Vector4 mDiffuse;
    Vector4 mEmissive;
    Vector4 mSpecular;
    float mShininess = 0.0f;
    Vorn::Texture* mTexture = nullptr;

public:
    /// Timed changes of the two colours.
    ColorRamp mAdditiveRamp{{}, {}, {}, &mAdditiveColor};
    ColorRamp mModulationRamp{{}, {}, {}, &mModulationColor};
};

} // namespace Vorn
