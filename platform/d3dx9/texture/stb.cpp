// SPDX-License-Identifier: MIT
//
// The code of the single-file libraries, once. Built with signed numbers that wrap, since broken
// JPGs overflow them. Warnings about their code are theirs.
#include <cstdlib>
#include <cstring>

#pragma GCC diagnostic ignored "-Wold-style-cast"

// A broken JPG names tables that it has not brought along: those are empty then, not what happened
// to be in memory. And it is no reason for an assert.
#define STBI_MALLOC(size) std::calloc(1, size)
#define STBI_REALLOC(memory, size) std::realloc(memory, size)
#define STBI_FREE(memory) std::free(memory)
#define STBI_ASSERT(condition) static_cast<void>(0)

#define STB_DXT_IMPLEMENTATION
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include "platform/d3dx9/texture/stb.hpp"
