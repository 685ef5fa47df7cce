// SPDX-License-Identifier: MIT
#include "vorn/scene/entity_pool_base.hpp"

namespace Vorn {

EntityPoolBase::~EntityPoolBase() = default;

} // namespace Vorn
