// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class Engine;

} // namespace Vorn
