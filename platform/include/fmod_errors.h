// SPDX-License-Identifier: MIT
#ifndef VORN_PLATFORM_FMOD_ERRORS_H
#define VORN_PLATFORM_FMOD_ERRORS_H
#pragma GCC system_header

#include <fmod.hpp>

#pragma GCC visibility push(default)
/// A text for people; never null.
const char* FMOD_ErrorString(FMOD_RESULT result);
#pragma GCC visibility pop

#endif
