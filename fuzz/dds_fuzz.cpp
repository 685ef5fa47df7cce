// SPDX-License-Identifier: MIT
//
// Any bytes as a DDS file: they give a picture that is whole, or none.
#include "fuzz/picture.hpp"
#include "platform/d3dx9/texture/dds_file.hpp"

FUZZ_TARGET(data, size) {
    if (auto image = VornPlatform::ReadDds({reinterpret_cast<const std::uint8_t*>(data), size}))
        Fuzz::RequireWhole(*image);
}
