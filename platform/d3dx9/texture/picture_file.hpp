// SPDX-License-Identifier: MIT
//
// PNG, JPG and BMP, by stb_image: what it takes on trust is looked at here before it sees the file.
// Greys become L8, or A8L8 with alpha; colours X8R8G8B8, or A8R8G8B8 with alpha. Of 16 bits a
// channel the upper 8 count. BMPs are those without compression.
#pragma once

#include "platform/d3dx9/texture/image.hpp"

namespace VornPlatform {

// Whole files only: to the end chunk, the end mark, the last pixel.
std::optional<Image> ReadPng(Bytes file);
std::optional<Image> ReadJpg(Bytes file);
std::optional<Image> ReadBmp(Bytes file);

enum class PictureType { Png, Jpg, Bmp, Tga };
/// From B, G, R, A. Without `alpha`, and always in a JPG, 24 bits a pixel. Empty on failure.
std::vector<std::uint8_t> WritePicture(PictureType, UINT width, UINT height, Bytes bgra,
                                       bool alpha);

} // namespace VornPlatform
