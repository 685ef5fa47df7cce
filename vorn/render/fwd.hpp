// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class EmitterCmpt;
class EmitterSystem;
class GraphicsCmpt;
class GraphicsSystem;

} // namespace Vorn
