// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class PhysicsCmpt;
class PhysicsSystem;

} // namespace Vorn
