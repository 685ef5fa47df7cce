// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class ProfileObject;
class Profiler;

} // namespace Vorn
