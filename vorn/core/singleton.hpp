// SPDX-License-Identifier: MIT
//
// One static instance of a manager, there from the loading of the library to its unloading.
//
//   class Ranking : public Vorn::Singleton<Ranking> { ... };
//   Ranking::Instance()->Enter(name, points);
#pragma once

namespace Vorn {

/// Base of T, which derives from Singleton<T>. There is no lazy creation and no destruction on
/// request; copying and assigning it do nothing. The library's own instances are defined in one
/// source, in the order in which they must come up; that of a host's class is defined here, in
/// whichever order the linker gives.
template <typename T>
class Singleton {
public:
    static T mSingleton;

    Singleton() = default;
    Singleton(const Singleton&) {}
    Singleton& operator=(const Singleton&) { return *this; }

    static T* Instance() { return &mSingleton; }

protected:
    ~Singleton() = default;
};

template <typename T>
T Singleton<T>::mSingleton;

} // namespace Vorn
