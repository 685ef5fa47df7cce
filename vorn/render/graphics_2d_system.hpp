// SPDX-License-Identifier: MIT
//
// Draws what is flat: images of the host, and the particles of all emitters.
//
//   graphic->RTParticlesBegin();
//   graphic->SetBackBufferColor(0);
//   Graphics2DSystem::Instance()->RenderParticle();
//   graphic->RTParticlesEnd();
//
// All with the view and projection that the device has at that moment. Particles are squares in the
// world's XY plane that do not turn to the camera; they are drawn in the order of the emitters and
// of their pools, tested against the depth that is there and not written into it. Their colours are
// not shown. What states a pass sets stay.
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/core/singleton.hpp"
#include "vorn/render/fwd.hpp"

#include <list>

namespace Vorn {

class VORN_API Graphics2DSystem : public Singleton<Graphics2DSystem> {
public:
    /// EmitterSystem::Init hands its list over, which the particle passes walk. It stays the
    /// system's, who alone may change it. Null until then, and the passes draw nothing.
    void EmitterList(std::list<EmitterCmpt*>* emitters) { mEmitterList = emitters; }
    std::list<EmitterCmpt*>* EmitterList() const { return mEmitterList; }

    /// With `modulate`, `alpha` from 0 to 1 thins it, and there is fog; else `alpha` is not looked
    /// at. Null, and one that is not visible, draw nothing and set nothing.
    void Render2DObj(Vorn2DObj* obj, float alpha, bool modulate);
    /// The living, each with the texture of its emitter; an emitter without one is left out.
    void RenderParticle();
    /// All of the living with the texture "WhiteParticle.dds". Raises std::out_of_range, "invalid
    /// map<K, T> key", if that is not in the store and there is a living one.
    void RenderParticleGlowOverLay();
    void Release() {}

private:
    std::list<EmitterCmpt*>* mEmitterList = nullptr;
};

template <>
VORN_API Graphics2DSystem Singleton<Graphics2DSystem>::mSingleton;

} // namespace Vorn
