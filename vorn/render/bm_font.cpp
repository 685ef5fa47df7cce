// SPDX-License-Identifier: MIT
//
// What a font is made of: the description, the texture, the quad. bm_font_text.cpp draws with it.
#include "vorn/render/bm_font.hpp"

#include "vorn/core/file.hpp"
#include "vorn/math/vertex.hpp"
#include "vorn/render/graphic.hpp"
#include "vorn/resource/device_object.hpp"
#include "vorn/resource/texture_manager.hpp"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <system_error>

namespace Vorn {

namespace {

template <typename Record>
struct Key {
    std::string_view name;
    std::uint16_t Record::*field;
};
constexpr Key<Charset> CommonKeys[] = {{"lineHeight", &Charset::lineHeight},
                                       {"base", &Charset::base},
                                       {"scaleW", &Charset::scaleW},
                                       {"scaleH", &Charset::scaleH},
                                       {"pages", &Charset::pages}};
constexpr Key<CharDescriptor> CharKeys[] = {
    {"x", &CharDescriptor::x},
    {"y", &CharDescriptor::y},
    {"width", &CharDescriptor::width},
    {"height", &CharDescriptor::height},
    {"xoffset", &CharDescriptor::xoffset},
    {"yoffset", &CharDescriptor::yoffset},
    {"xadvance", &CharDescriptor::xadvance},
    {"page", &CharDescriptor::page},
};

// Off the front of the line; empty at its end. The end of a line of Windows is a blank.
std::string_view TakeWord(std::string_view& line) {
    constexpr std::string_view blanks = " \t\r\v\f";
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(blanks));
    line.remove_prefix(word.size());
    return word;
}

struct Token {
    std::string_view key, value;
};

// At the first "="; without one, the word is both.
Token Split(std::string_view word) {
    const std::size_t equals = word.find('=');
    if (equals == std::string_view::npos)
        return {word, word};
    return {word.substr(0, equals), word.substr(equals + 1)};
}

// As far as the digits go, and the nearest end of int where they go too far. No stream reads it: a
// host's locale would have a say.
std::optional<int> ReadNumber(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    if (text.starts_with('-'))
        return std::nullopt; // a second sign
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range)
        number = std::numeric_limits<int>::max();
    else if (error != std::errc())
        return std::nullopt;
    return negative ? -number : number;
}

// Negative numbers keep their pattern in 16 bits.
bool FitsField(int number) {
    return number >= std::numeric_limits<std::int16_t>::min() &&
           number <= std::numeric_limits<std::uint16_t>::max();
}

template <typename Record, std::size_t Count>
void Store(const Key<Record> (&keys)[Count], const Token& token, Record& record) {
    const auto key = std::find_if(std::begin(keys), std::end(keys),
                                  [&token](const Key<Record>& k) { return k.name == token.key; });
    if (key == std::end(keys))
        return;
    const std::optional<int> number = ReadNumber(token.value);
    if (number && FitsField(*number))
        record.*key->field = static_cast<std::uint16_t>(*number);
}

void ReadCommon(std::string_view line, Charset& charset) {
    for (std::string_view word = TakeWord(line); !word.empty(); word = TakeWord(line))
        Store(CommonKeys, Split(word), charset);
}

void ReadChar(std::string_view line, Charset& charset) {
    int id = 0;
    for (std::string_view word = TakeWord(line); !word.empty(); word = TakeWord(line)) {
        const Token token = Split(word);
        if (token.key == "id")
            id = ReadNumber(token.value).value_or(id);
        // A glyph that stands for no character in the file has a negative number.
        else if (id >= 0 && id < static_cast<int>(std::size(charset.chars)))
            Store(CharKeys, token, charset.chars[id]);
    }
}

// A square about the origin, as a strip of two triangles by the order of its indices.
bool CreateQuad(IDirect3DVertexBuffer9*& vertices, IDirect3DIndexBuffer9*& indices) {
    const Vertex_UTx corners[] = {{-0.5f, 0.5f, 0, 0, 0, 0, 0, 0},
                                  {0.5f, 0.5f, 0, 0, 0, 0, 1, 0},
                                  {0.5f, -0.5f, 0, 0, 0, 0, 1, 1},
                                  {-0.5f, -0.5f, 0, 0, 0, 0, 0, 1}};
    const unsigned int order[] = {0, 1, 3, 2};
    Graphic& graphic = *Graphic::Instance();
    return graphic.CreateVertexBuffer(sizeof corners, vertices, corners) &&
           graphic.CreateIndexBuffer(sizeof order, indices, order);
}

} // namespace

bool ParseFont(std::istream& stream, Charset& charset) {
    std::string text;
    while (std::getline(stream, text)) {
        std::string_view line = text;
        const std::string_view first = TakeWord(line);
        if (first == "common")
            ReadCommon(line, charset);
        else if (first == "char")
            ReadChar(line, charset);
    }
    return true;
}

bool bmFont::loadCharData(std::string path) {
    std::ifstream file;
    std::uint64_t size = 0;
    if (!OpenFile(path, file, size))
        return false;
    ParseFont(file, *this);
    return true;
}

bool bmFont::loadtextureData() {
    mTexture = TextureManager::Instance()->Get("dFont.tga");
    return mTexture != nullptr;
}

bool bmFont::quadCreation() {
    Release();
    if (CreateQuad(mVertexBuffer, mIndexBuffer))
        return true;
    Release();
    return false;
}

void bmFont::Release() {
    ReleaseObject(mVertexBuffer);
    ReleaseObject(mIndexBuffer);
}

void ParserTestFn() {
    bmFont font;
    font.quadCreation();
    font.Release();
}

} // namespace Vorn
