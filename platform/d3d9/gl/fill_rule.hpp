// SPDX-License-Identifier: MIT
//
// Who gets the pixels whose centres lie on an edge is left to the driver by OpenGL, and depends on
// the origin of clip control in some.
#pragma once

namespace VornPlatform {

/// By a triangle that is drawn with the origin at the lower left: true if centres on an edge along
/// a row belong to the side with the greater row numbers, as Direct3D has it where row 0 is the
/// top.
bool EdgeBelongsToLaterRow();

} // namespace VornPlatform
