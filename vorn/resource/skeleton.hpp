// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/resource/fwd.hpp"

namespace Vorn {

/// Moves the mesh's clock on by `dt` (unit: seconds) and computes mWorld and mFinal of every bone
/// that hangs on a root. The clock and the bones are the mesh's, so everybody who draws it with its
/// bones moves it on.
///
/// At mDuration the clock goes back to 0, and what is beyond is lost. A bone's interval goes on by
/// one key in an update: after a long frame it lags behind the clock, catches up key by key, and
/// the pose runs past the interval's end meanwhile. A bone with one key holds it, a bone with none
/// moves with its parent as if it were part of it, and of two keys of one time the later counts.
VORN_API void UpdateSkeleton(float dt, Mesh& mesh);

/// Writes mFinal of each bone, transposed, to mFinalTransforms: what the shader gets. A mesh
/// without that array, or with fewer bones than mBoneCount, is written as far as both go.
VORN_API void StoreFinalTransforms(Mesh& mesh);

} // namespace Vorn
