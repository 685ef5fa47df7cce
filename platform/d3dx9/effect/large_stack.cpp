// SPDX-License-Identifier: MIT
#include "platform/d3dx9/effect/large_stack.hpp"

#include <exception>
#include <new>
#include <pthread.h>

namespace VornPlatform {

namespace {

// Of it only what is used takes memory.
constexpr std::size_t StackSize = std::size_t(256) << 20;

struct Call {
    const std::function<void()>& function;
    std::exception_ptr raised;
};

void* Run(void* argument) {
    auto* call = static_cast<Call*>(argument);
    try {
        call->function();
    } catch (...) {
        call->raised = std::current_exception();
    }
    return nullptr;
}

} // namespace

void CallOnLargeStack(const std::function<void()>& function) {
    Call call{function, nullptr};
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, StackSize);
    pthread_t thread;
    const int fault = pthread_create(&thread, &attributes, Run, &call);
    pthread_attr_destroy(&attributes);
    if (fault != 0)
        throw std::bad_alloc();
    pthread_join(thread, nullptr);
    if (call.raised)
        std::rethrow_exception(call.raised);
}

} // namespace VornPlatform
