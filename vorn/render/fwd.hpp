// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class Camera;
class EmitterCmpt;
class EmitterSystem;
class Graphic;
class GraphicsCmpt;
class GraphicsSystem;
class HeightMap;
struct VERTEX_2D;
struct VERTEX_LINE;

} // namespace Vorn
