// SPDX-License-Identifier: MIT
//
// A system holds the components of one kind that are registered with it and walks them each frame.
// It does not own them. Nothing in the engine calls Init, Update or Deinit of a system: the order
// of a frame is the host's.
#pragma once

#include "vorn/core/singleton.hpp"

namespace Vorn {

/// Base of the system class S with components of class C. A system's list may not change while the
/// system walks it.
template <typename S, typename C>
class System : public Singleton<S> {
public:
    virtual ~System() = default;

    /// Once the entities of a scene are registered: `Init` of each component, in order of
    /// registration.
    virtual void Init() = 0;
    virtual void Update(float dt) = 0;
    /// `Deinit` of each component; they stay registered.
    virtual void Deinit() = 0;
    /// Appends to the list, also a component that stands there already.
    virtual void Register(C* cmpt) = 0;
    /// Does nothing to the list for null and for a component that is not in it. The component must
    /// live: one that dies has left the list already.
    virtual void Unregister(C* cmpt) = 0;
};

} // namespace Vorn
