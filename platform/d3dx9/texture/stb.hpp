// SPDX-License-Identifier: MIT
//
// The single-file libraries, as we use them: no files of their own, and only the formats that have
// no reader of ours. stb.cpp holds their code.
#pragma once

#include "platform/d3d9/limits.hpp"

#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STBI_MAX_DIMENSIONS static_cast<int>(VornPlatform::MaxTextureSize)
#define STBI_WRITE_NO_STDIO
#include <stb/stb_dxt.h>
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>
