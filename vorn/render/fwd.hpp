// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class Camera;
class EmitterCmpt;
class EmitterSystem;
class Graphic;
class Graphics2DSystem;
class GraphicsCmpt;
class GraphicsSystem;
class HeightMap;
class TempFont;
class bmFont;
struct Charset;
struct Particle;
struct VERTEX_2D;
struct VERTEX_LINE;
struct Vorn2DObj;

} // namespace Vorn
