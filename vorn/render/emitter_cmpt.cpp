// SPDX-License-Identifier: MIT
#include "vorn/render/emitter_cmpt.hpp"

namespace Vorn {

EmitterCmpt::~EmitterCmpt() = default;

void EmitterCmpt::DeserializeValue(const Json::Value&, bool) {}

void EmitterCmpt::SerializeValue(Json::Value&, bool) const {}

void EmitterCmpt::Init() {}

void EmitterCmpt::Deinit() {}

void EmitterCmpt::Conform(const BaseCmpt&) {}

} // namespace Vorn
