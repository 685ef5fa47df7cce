// SPDX-License-Identifier: MIT
#pragma once

#include "vorn/core/api.hpp"
#include "vorn/resource/fwd.hpp"

#include <d3d9.h>

#include <string>

namespace Vorn {

/// An image on the device. Who draws with it keeps the Texture* and takes the device texture out of
/// the slot for each draw: a reset of the device puts another one in.
struct VORN_API Texture {
    /// Where the image was read, with the directory.
    std::string mPath;
    /// The slot, made with `new`: null in a record that was never loaded. In it the device texture,
    /// null where there is none: the file is missing or no image, or the device is being reset.
    IDirect3DTexture9** mTexture = nullptr;

    Texture() = default;
    /// The copy shares the slot and is good as long as what it was copied from; it frees nothing.
    Texture(const Texture& texture);
    Texture& operator=(const Texture& texture);
    /// Releases the device texture, frees the slot, and writes "Removed ", the path and a line end
    /// to standard output. Without a slot, or as a copy, none of it.
    ~Texture();

private:
    void free();

    bool mCopied = false;
};

} // namespace Vorn
