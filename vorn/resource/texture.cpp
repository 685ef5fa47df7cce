// SPDX-License-Identifier: MIT
#include "vorn/resource/texture.hpp"

#include "vorn/resource/device_object.hpp"

#include <iostream>

namespace Vorn {

Texture::Texture(const Texture& texture)
    : mPath(texture.mPath), mTexture(texture.mTexture), mCopied(texture.mTexture != nullptr) {}

Texture& Texture::operator=(const Texture& texture) {
    // A copy of ourselves has our slot, which must stay.
    if (mTexture != texture.mTexture) {
        free();
        mTexture = texture.mTexture;
        mCopied = mTexture != nullptr; // an empty copy shares nothing and may get a slot of its own
    }
    mPath = texture.mPath;
    return *this;
}

Texture::~Texture() {
    free();
}

void Texture::free() {
    if (!mTexture || mCopied)
        return;
    ReleaseObject(*mTexture);
    delete mTexture;
    mTexture = nullptr;
    std::cout << "Removed " << mPath << '\n';
}

} // namespace Vorn
