// SPDX-License-Identifier: MIT
//
// The list of components of a system: in order of registration, with entries that may repeat.
// Entering and erasing take the same short time however long the list is, and allocate nothing once
// the list has been that long before.
//
// A component of class C has a member `Registration<C> mRegistration`, which remembers where it
// stands and takes the component out of its list when it dies: a list never holds what is gone.
#pragma once

#include <algorithm>
#include <list>

namespace Vorn {

template <typename C>
class CmptList;

/// Where a component stands in its system's list. Copying a component copies no registration.
template <typename C>
class Registration {
public:
    Registration() = default;
    Registration(const Registration&) {}
    Registration& operator=(const Registration&) { return *this; }
    ~Registration() {
        if (mList)
            mList->forget(*this);
    }

private:
    friend class CmptList<C>;
    CmptList<C>* mList = nullptr; // null while in no list
    typename std::list<C*>::iterator mFirst;
    unsigned int mCount = 0;
};

template <typename C>
class CmptList {
public:
    CmptList() = default;
    CmptList(const CmptList&) = delete;
    CmptList& operator=(const CmptList&) = delete;
    ~CmptList() {
        for (C* cmpt : mCmpts)
            cmpt->mRegistration.mList = nullptr;
    }

    const std::list<C*>& Cmpts() const { return mCmpts; }
    /// Changed by Add and RemoveFirst only.
    std::list<C*>& Cmpts() { return mCmpts; }

    /// A component that stands in the list of another system is taken out of that first.
    void Add(C* cmpt) {
        Registration<C>& registration = cmpt->mRegistration;
        if (registration.mList && registration.mList != this)
            registration.mList->forget(registration);
        if (mSpare.empty())
            mSpare.push_back(nullptr);
        mSpare.front() = cmpt;
        mCmpts.splice(mCmpts.end(), mSpare, mSpare.begin());
        if (!registration.mList) {
            registration.mList = this;
            registration.mFirst = std::prev(mCmpts.end());
            registration.mCount = 0;
        }
        ++registration.mCount;
    }

    /// Erases the first entry of the component; nothing if there is none. The component must live;
    /// null is passed over.
    void RemoveFirst(C* cmpt) {
        if (cmpt && cmpt->mRegistration.mList == this)
            removeFirst(cmpt->mRegistration);
    }

    /// Erases every entry of the component, which must live; null is passed over.
    void RemoveAll(C* cmpt) {
        if (cmpt && cmpt->mRegistration.mList == this)
            forget(cmpt->mRegistration);
    }

private:
    friend class Registration<C>;

    void removeFirst(Registration<C>& registration) {
        const auto erased = registration.mFirst;
        if (--registration.mCount == 0)
            registration.mList = nullptr;
        else
            registration.mFirst = std::find(std::next(erased), mCmpts.end(), *erased);
        mSpare.splice(mSpare.begin(), mCmpts, erased);
    }

    void forget(Registration<C>& registration) {
        while (registration.mList)
            removeFirst(registration);
    }

    std::list<C*> mCmpts;
    std::list<C*> mSpare; // nodes of erased entries, for the next ones
};

} // namespace Vorn
