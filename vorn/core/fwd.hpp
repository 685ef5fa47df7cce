// SPDX-License-Identifier: MIT
#pragma once

namespace Vorn {

class DataError;
class DeltaClock;
class Timer;
template <typename T>
class BlockAllocator;
template <typename T>
class Singleton;

} // namespace Vorn
