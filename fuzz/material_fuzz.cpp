// SPDX-License-Identifier: MIT
//
// Any bytes as a material: it is read or raises a standard exception, and its ramps run.
#include "fuzz/fuzz.hpp"
#include "vorn/vorn.hpp"

#include <stdexcept>
#include <string_view>

FUZZ_TARGET(data, size) {
    auto* textures = Vorn::TextureManager::Instance();
    textures->Load("wool.png"); // no device, so no file
    Vorn::Material material;
    try {
        material.FromText(std::string_view(data, size));
        Fuzz::Require(material.Texture() == textures->Get("wool.png"), "another texture");
    } catch (const std::runtime_error&) {
        Fuzz::Require(!material.Texture(), "a texture after a fault");
    } catch (const std::out_of_range&) {
        Fuzz::Require(!material.Texture(), "a texture that is not there");
    }
    Vorn::Material assigned;
    assigned = material;
    Fuzz::Require(assigned.AdditiveColor() == material.AdditiveColor(), "another colour");
    assigned.mAdditiveRamp.mRate = Vorn3DColorSigned(static_cast<unsigned long>(size));
    assigned.mAdditiveRamp.Advance(1e300);
    assigned.ModulationColor(assigned.AdditiveColor());
    const Vorn::Material copy = assigned;
    Fuzz::Require(copy.Texture() == material.Texture(), "a copy with another texture");
}
