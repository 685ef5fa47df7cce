// SPDX-License-Identifier: MIT
//
// Where the characters of a text stand, before any of them is drawn.
//
//   for (const TextLine& line : LayOut(text, {}, [&](char32_t c) { return face.Size(c); }))
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <string_view>
#include <vector>

namespace VornPlatform {

inline constexpr char32_t Replacement = 0xFFFD;

/// Takes the first character off UTF-8 text that is not empty. What is no UTF-8 gives Replacement
/// and takes a byte, or those of a character that is cut off or badly written.
char32_t TakeCharacter(std::string_view& text);

/// From pen to pen, and how far the character reaches out of that (unit: pixels)
struct CharacterSize {
    int advance = 0;
    int before = 0, after = 0;
};

struct PlacedCharacter {
    char32_t character;
    std::int64_t x; // of its pen, from the left end of the line (unit: pixels)
};
struct TextLine {
    std::vector<PlacedCharacter> characters; // that show: without blanks and control characters
    std::int64_t width = 0;                  // all of them lie within it
};

struct TextRules {
    bool singleLine = false; // a line feed breaks no line
    // Lines break between words where they would become wider; a longer word stays whole, and the
    // blanks at the break are left out.
    std::int64_t breakWidth = std::numeric_limits<std::int64_t>::max();
};

/// A tab goes on to the next eighth blank, a carriage return and other control characters have no
/// width. An empty text has no line; a line feed at the end begins one more.
std::vector<TextLine> LayOut(std::string_view text, const TextRules& rules,
                             const std::function<CharacterSize(char32_t)>& size);

} // namespace VornPlatform
