// SPDX-License-Identifier: MIT
//
// The device's states as a technique changes them: what a pass sets, in a form that costs no search
// when it is drawn, and what was there before.
//
//   StateKeeper keeper;
//   for (const StateStep& step : pass.steps)
//       keeper.Add(step);
//   keeper.Save(device, flags);     // Begin
//   keeper.Restore(device);         // End
#pragma once

#include "platform/d3dx9/effect/expression.hpp"
#include "platform/d3dx9/held.hpp"

namespace VornPlatform {

struct StateStep {
    EffectState::Kind kind = EffectState::Kind::Render;
    DWORD number = 0;
    UINT index = 0;
    DWORD value = 0;                        // where there is no expression
    const Expression* expression = nullptr; // of parameters
    bool isFloat = false;
    int texture = -1; // the place of the parameter; -1 for none

    /// Its value is a matter of parameters.
    bool Varies() const { return expression || texture >= 0; }
};

/// What stands in `state`, which has to live on; `index` is the device's.
StateStep MakeStep(const EffectState& state, UINT index);

using TextureValues = std::vector<Held<IDirect3DBaseTexture9>>; // by place

/// What a device refuses is left out.
void SetState(IDirect3DDevice9& device, const StateStep& step, const ParameterValues& values,
              const TextureValues& textures);

/// Keeps what it needs, so that saving allocates nothing.
class StateKeeper {
public:
    void Add(const StateStep& step);
    void Save(IDirect3DDevice9& device, DWORD flags);
    /// What the device could not tell stays as it is.
    void Restore(IDirect3DDevice9& device);

private:
    struct Saved {
        EffectState::Kind kind;
        DWORD number;
        UINT index;
        bool isThere = false;
        DWORD value = 0;
        Held<IDirect3DBaseTexture9> texture = nullptr;
    };
    struct SavedMatrix {
        DWORD number;
        bool isThere = false;
        D3DMATRIX matrix = {};
    };

    static void save(IDirect3DDevice9& device, Saved& saved);
    static void restore(IDirect3DDevice9& device, Saved& saved);

    std::vector<Saved> mStates;
    std::vector<SavedMatrix> mMatrices;
    bool mHasVertexShader = false, mHasPixelShader = false;
    Held<IDirect3DVertexShader9> mVertexShader;
    Held<IDirect3DPixelShader9> mPixelShader;
};

} // namespace VornPlatform
