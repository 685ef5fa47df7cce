// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class CXBOXController;
class InputManager;
enum AnalogMovement : int;
enum ControlType : int;

} // namespace Vorn
