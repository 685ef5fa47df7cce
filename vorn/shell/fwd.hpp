// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class Engine;
struct CrashPage;

} // namespace Vorn
