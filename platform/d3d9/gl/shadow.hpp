// SPDX-License-Identifier: MIT
//
// A value that OpenGL holds, kept here too, so that setting it again costs a comparison:
//
//   if (mDepthFunction.Set(function))
//       glDepthFunc(function);
#pragma once

#include "platform/d3d9/gl/gl_counters.hpp"

namespace VornPlatform {

template <typename T>
class Shadow {
public:
    /// True if OpenGL has to be told.
    bool Set(const T& value) {
        if (mKnown && mValue == value)
            return false;
        mValue = value;
        mKnown = true;
        ++glCounters.stateChanges;
        return true;
    }
    /// OpenGL has forgotten it.
    void Forget() { mKnown = false; }
    const T& Value() const { return mValue; }

private:
    T mValue = {};
    bool mKnown = false;
};

} // namespace VornPlatform
