// SPDX-License-Identifier: MIT
#include "vorn/render/graphics_cmpt.hpp"

namespace Vorn {

GraphicsCmpt::~GraphicsCmpt() = default;

void GraphicsCmpt::DeserializeValue(const Json::Value&, bool) {}

void GraphicsCmpt::SerializeValue(Json::Value&, bool) const {}

void GraphicsCmpt::Init() {}

void GraphicsCmpt::Deinit() {}

void GraphicsCmpt::Conform(const BaseCmpt&) {}

} // namespace Vorn
