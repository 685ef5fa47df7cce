// SPDX-License-Identifier: MIT
//
// Any bytes as a file of a picture, of the type that they look like: PNG, JPG and BMP above all,
// since the others have targets of their own. They give a picture that is whole, or none.
#include "fuzz/picture.hpp"

FUZZ_TARGET(data, size) {
    if (auto image = VornPlatform::ReadImage({reinterpret_cast<const std::uint8_t*>(data), size}))
        Fuzz::RequireWhole(*image);
}
