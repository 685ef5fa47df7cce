// SPDX-License-Identifier: MIT
//
// Any bytes as the description of a font, and as a text in it: what the lines say is stored where
// they say it, and a text has a size.
#include "fuzz/fuzz.hpp"
#include "vorn/vorn.hpp"

#include <algorithm>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>

namespace {

// All fields of a font are numbers of 16 bits, one behind the other.
bool Same(const Vorn::Charset& a, const Vorn::Charset& b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

FUZZ_TARGET(data, size) {
    const std::string bytes(data, size);
    const auto font = std::make_unique<Vorn::bmFont>(), again = std::make_unique<Vorn::bmFont>();
    std::istringstream stream(bytes);
    Fuzz::Require(Vorn::ParseFont(stream, *font) && stream.eof(), "not read to the end");

    // A second reading finds everything as it is: each key stores the same, or nothing.
    *again = *font;
    std::istringstream twice(bytes);
    Vorn::ParseFont(twice, *again);
    Fuzz::Require(Same(*font, *again), "another font the second time");

    const Vorn::Point2 whole = font->TextSize(bytes.c_str());
    const auto lines = std::count(bytes.c_str(), bytes.c_str() + std::strlen(bytes.c_str()), '\n');
    Fuzz::Require(whole.x >= 0 && whole.y >= static_cast<float>(lines * font->lineHeight),
                  "a text smaller than its lines");
    font->RenderText(0, 0, 0xFFFFFFFFu, bytes.c_str()); // there is no device
}
