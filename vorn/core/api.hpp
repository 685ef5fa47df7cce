// SPDX-License-Identifier: MIT
#pragma once

/// Marks what the shared library exports; everything else in it is hidden.
#define VORN_API __attribute__((visibility("default")))
