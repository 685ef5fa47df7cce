// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace Import {

/// What the engine makes of the bytes of an image file, told by the bytes, not by a name.
struct ImageKind {
    /// The ending of a format that the engine reads (".dds", ".png", ".jpg", ".bmp", ".tga"); empty
    /// for all else.
    std::string ending;
    /// Another format, of which ToPng makes one.
    bool convertible = false;
};
ImageKind KindOfImage(const std::string& bytes);

/// Decodes an image and writes it as PNG; empty where it cannot be decoded.
std::string ToPng(const std::string& bytes);

/// A white TGA image of 4 by 4 pixels.
std::string WhiteImage();

} // namespace Import
