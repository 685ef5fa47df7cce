// SPDX-License-Identifier: MIT
#include "platform/d3d9/gl/lights.hpp"

#include <algorithm>
#include <cmath>

namespace VornPlatform {

namespace {

D3DVECTOR Transform(const D3DVECTOR& v, float w, const D3DMATRIX& m) {
    float out[3];
    for (int i = 0; i < 3; ++i)
        out[i] = v.x * m.m[0][i] + v.y * m.m[1][i] + v.z * m.m[2][i] + w * m.m[3][i];
    return {out[0], out[1], out[2]};
}

D3DVECTOR Normalize(const D3DVECTOR& v) {
    const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    return length > 0.0f ? D3DVECTOR{v.x / length, v.y / length, v.z / length} : v;
}

} // namespace

bool AnyLightOn(const State& state) {
    return std::any_of(state.lights.begin(), state.lights.end(),
                       [](const Light& light) { return light.on; });
}

PackedLights PackLights(const std::array<Light, MaxLights>& lights, const D3DMATRIX& view) {
    PackedLights packed;
    auto* to = packed.vectors.data();
    for (const Light& light : lights) {
        if (!light.on)
            continue;
        const D3DLIGHT9& l = light.values;
        const D3DVECTOR p = Transform(l.Position, 1, view);
        const D3DVECTOR d = Normalize(Transform(l.Direction, 0, view));
        // From the outer cone, where the light ends, to the inner one, where it is whole.
        const float outer = std::cos(l.Phi / 2), inner = std::cos(l.Theta / 2);
        const float width = std::max(inner - outer, 1e-6f);
        to[0] = {p.x, p.y, p.z, static_cast<float>(l.Type)};
        to[1] = {d.x, d.y, d.z, l.Range};
        to[2] = {l.Diffuse.r, l.Diffuse.g, l.Diffuse.b, l.Falloff};
        to[3] = {l.Attenuation0, l.Attenuation1, l.Attenuation2, 0};
        to[4] = {outer, 1 / width, 0, 0};
        to += LightVectors;
        ++packed.count;
    }
    return packed;
}

} // namespace VornPlatform
