// SPDX-License-Identifier: MIT
#include "vorn/physics/physics_cmpt.hpp"

namespace Vorn {

PhysicsCmpt::~PhysicsCmpt() = default;

void PhysicsCmpt::DeserializeValue(const Json::Value&, bool) {}

void PhysicsCmpt::SerializeValue(Json::Value&, bool) const {}

void PhysicsCmpt::Init() {}

void PhysicsCmpt::Deinit() {}

void PhysicsCmpt::Conform(const BaseCmpt&) {}

} // namespace Vorn
