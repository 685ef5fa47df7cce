// SPDX-License-Identifier: MIT
#include "platform/d3dx9/texture/block_compression.hpp"
#include "platform/d3dx9/texture/dds_file.hpp"
#include "platform/d3dx9/texture/picture_file.hpp"
#include "tests/d3dx9/picture_files.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <random>

using namespace VornPlatform;

namespace Tests {

struct PictureCase {
    const char* what;
    FileBytes file;
    D3DFORMAT format;
    FileBytes pixels;
};

// From a copy that ends where the data ends, so that a sanitizer sees who reads past it.
static std::optional<Image> Read(const FileBytes& file) {
    const auto bytes = std::make_unique<std::uint8_t[]>(file.size());
    std::copy(file.begin(), file.end(), bytes.get());
    return ReadImage({bytes.get(), file.size()});
}

static void ExpectPictures(const std::vector<PictureCase>& cases, UINT width, UINT height) {
    for (const PictureCase& c : cases) {
        SCOPED_TRACE(c.what);
        const auto image = Read(c.file);
        if (!image) {
            ADD_FAILURE() << "not read";
            continue;
        }
        EXPECT_EQ(image->format, c.format);
        EXPECT_EQ(image->width, width);
        EXPECT_EQ(image->height, height);
        ASSERT_EQ(image->levels.size(), 1u);
        EXPECT_EQ(image->levels[0], c.pixels);
        for (std::size_t size = 0; size < c.file.size(); ++size)
            EXPECT_FALSE(Read({c.file.begin(), c.file.begin() + std::ptrdiff_t(size)}))
                << "cut to " << size;
    }
}

// Two pixels side by side.
static DdsHeader Pair(std::uint32_t flags, std::uint32_t bits, std::uint32_t red,
                      std::uint32_t green, std::uint32_t blue, std::uint32_t alpha) {
    DdsHeader header;
    header.height = 1;
    header.flags = flags, header.bits = bits;
    header.red = red, header.green = green, header.blue = blue, header.alpha = alpha;
    return header;
}

TEST(DdsFile, UncompressedPixelsGoByTheirMasks) {
    constexpr std::uint32_t Color = 0x40, WithAlpha = 0x41, Grey = 0x20000, GreyAlpha = 0x20001;
    const FileBytes eight = {1, 2, 3, 4, 5, 6, 7, 8};
    ExpectPictures(
        {{"A8R8G8B8", Pair(WithAlpha, 32, 0xff0000, 0xff00, 0xff, 0xff000000).File(eight),
          D3DFMT_A8R8G8B8, eight},
         {"X8R8G8B8",
          Pair(Color, 32, 0xff0000, 0xff00, 0xff, 0).File(eight),
          D3DFMT_X8R8G8B8,
          {1, 2, 3, 255, 5, 6, 7, 255}},
         {"A mask of alpha that no flag tells of",
          Pair(Color, 32, 0xff0000, 0xff00, 0xff, 0xff000000).File(eight),
          D3DFMT_X8R8G8B8,
          {1, 2, 3, 255, 5, 6, 7, 255}},
         {"A8B8G8R8",
          Pair(WithAlpha, 32, 0xff, 0xff00, 0xff0000, 0xff000000).File(eight),
          D3DFMT_A8R8G8B8,
          {3, 2, 1, 4, 7, 6, 5, 8}},
         {"R8G8B8",
          Pair(Color, 24, 0xff0000, 0xff00, 0xff, 0).File({1, 2, 3, 4, 5, 6}),
          D3DFMT_X8R8G8B8,
          {1, 2, 3, 255, 4, 5, 6, 255}},
         {"R5G6B5",
          Pair(Color, 16, 0xf800, 0x7e0, 0x1f, 0).File({0x1f, 0x00, 0x20, 0x84}),
          D3DFMT_X8R8G8B8,
          {255, 0, 0, 255, 0, 134, 132, 255}},
         {"A1R5G5B5",
          Pair(WithAlpha, 16, 0x7c00, 0x3e0, 0x1f, 0x8000).File({0, 0xfc, 0xe0, 0x03}),
          D3DFMT_A8R8G8B8,
          {0, 0, 255, 255, 0, 255, 0, 0}},
         {"A4R4G4B4",
          Pair(WithAlpha, 16, 0xf00, 0xf0, 0xf, 0xf000).File({0x21, 0x43, 0, 0xf0}),
          D3DFMT_A8R8G8B8,
          {17, 34, 51, 68, 0, 0, 0, 255}},
         {"R3G3B2",
          Pair(Color, 8, 0xe0, 0x1c, 3, 0).File({0xe1, 0x08}),
          D3DFMT_X8R8G8B8,
          {85, 0, 255, 255, 0, 73, 0, 255}},
         {"A2B10G10R10",
          Pair(WithAlpha, 32, 0x3ff, 0xffc00, 0x3ff00000, 0xc0000000)
              .File({0xff, 0x03, 0, 0x40, 0, 0, 0x08, 0x80}),
          D3DFMT_A8R8G8B8,
          {0, 0, 255, 85, 0, 128, 0, 170}},
         {"L8", Pair(Grey, 8, 0xff, 0, 0, 0).File({7, 9}), D3DFMT_L8, {7, 9}},
         {"A8L8",
          Pair(GreyAlpha, 16, 0xff, 0, 0, 0xff00).File({7, 9, 8, 1}),
          D3DFMT_A8L8,
          {7, 9, 8, 1}},
         {"L16",
          Pair(Grey, 16, 0xffff, 0, 0, 0).File({0, 0x80, 0xff, 0xff}),
          D3DFMT_L8,
          {128, 255}},
         {"A8", Pair(2, 8, 0, 0, 0, 0xff).File({7, 9}), D3DFMT_A8, {7, 9}}},
        2, 1);
}

TEST(DdsFile, CompressedBlocksStayAsTheyAreWithTheLevelsOfTheFile) {
    for (const auto& [name, unit] : {std::pair("DXT1", 8u), {"DXT3", 16u}, {"DXT5", 16u}}) {
        SCOPED_TRACE(name);
        FileBytes blocks((2 + 1) * unit);
        for (std::size_t i = 0; i < blocks.size(); ++i)
            blocks[i] = static_cast<std::uint8_t>(i * 7);
        // 8 by 4 pixels are two blocks, the level below takes one.
        const auto image = Read(DdsHeader::Compressed(name, 8, 4, 2).File(blocks));
        ASSERT_TRUE(image);
        EXPECT_EQ(image->format, MAKEFOURCC(name[0], name[1], name[2], name[3]));
        ASSERT_EQ(image->levels.size(), 2u);
        EXPECT_EQ(Joined({image->levels[0], image->levels[1]}), blocks);
        blocks.pop_back();
        EXPECT_FALSE(Read(DdsHeader::Compressed(name, 8, 4, 2).File(blocks)));
    }
}

TEST(DdsFile, HeadersThatMakeNoSenseAreRefused) {
    const FileBytes pixels(1024);
    const auto refused = [&pixels](const char* what, auto change) {
        DdsHeader header;
        change(header);
        EXPECT_FALSE(Read(header.File(pixels))) << what;
    };
    refused("no width", [](DdsHeader& h) { h.width = 0; });
    refused("no height", [](DdsHeader& h) { h.height = 0; });
    refused("too wide", [](DdsHeader& h) { h.width = 16385, h.height = 1; });
    refused("absurd", [](DdsHeader& h) { h.width = h.height = 0xffffffff; });
    refused("as large as may be, and not there", [](DdsHeader& h) { h.width = h.height = 16384; });
    refused("more levels than a size has", [](DdsHeader& h) { h.levels = 3; });
    refused("levels without end", [](DdsHeader& h) { h.levels = 0xffffffff; });
    refused("cube map", [](DdsHeader& h) { h.caps2 = 0xfe00; });
    refused("volume", [](DdsHeader& h) { h.caps2 = 0x200000; });
    refused("depth", [](DdsHeader& h) { h.depth = 2; });
    refused("masks with holes", [](DdsHeader& h) { h.green = 0xf0f0; });
    refused("no masks", [](DdsHeader& h) { h.red = h.green = h.blue = 0; });
    refused("odd bits", [](DdsHeader& h) { h.bits = 12; });
    refused("no kind", [](DdsHeader& h) { h.flags = 0; });
    refused("palette", [](DdsHeader& h) { h.flags = 0x20, h.bits = 8; });
    refused("DXT2", [](DdsHeader& h) { h.flags = 4, h.fourCC = MAKEFOURCC('D', 'X', 'T', '2'); });
    refused("DX10", [](DdsHeader& h) { h.flags = 4, h.fourCC = MAKEFOURCC('D', 'X', '1', '0'); });
}

TEST(DdsFile, WrittenOnesReadTheSame) {
    const FileBytes pixels = {1, 2, 3, 4, 5, 6, 7, 8};
    const auto image = Read(WriteDds(1, 2, pixels, true));
    ASSERT_TRUE(image);
    EXPECT_EQ(image->format, D3DFMT_A8R8G8B8);
    EXPECT_EQ(image->levels[0], pixels);
    EXPECT_EQ(Read(WriteDds(1, 2, pixels, false))->format, D3DFMT_X8R8G8B8);
}

TEST(BlockCompression, BlocksShowTheColoursBetweenTheirEnds) {
    // Red and blue; the first four pixels are the four entries, the rest is the first.
    const FileBytes four = {0x00, 0xf8, 0x1f, 0x00, 0xe4, 0, 0, 0};
    const FileBytes three = {0x1f, 0x00, 0x00, 0xf8, 0xe4, 0, 0, 0};
    const auto row = [](D3DFORMAT format, const FileBytes& blocks) {
        return DecompressBlocks(format, 4, 1, blocks);
    };
    EXPECT_EQ(row(D3DFMT_DXT1, four),
              FileBytes({0, 0, 255, 255, 255, 0, 0, 255, 85, 0, 170, 255, 170, 0, 85, 255}));
    EXPECT_EQ(row(D3DFMT_DXT1, three),
              FileBytes({255, 0, 0, 255, 0, 0, 255, 255, 128, 0, 128, 255, 0, 0, 0, 0}));
    // Beside an alpha of its own a block has four colours, whatever their order.
    const FileBytes alpha4 = {0x10, 0xf8, 0, 0, 0, 0, 0, 0};
    EXPECT_EQ(row(D3DFMT_DXT3, Joined({alpha4, three})),
              FileBytes({255, 0, 0, 0, 0, 0, 255, 17, 170, 0, 85, 136, 85, 0, 170, 255}));
    // Six steps and the two ends: indices 0, 1, 6, 7, three bits each.
    const FileBytes low = {0, 250, 0x88, 0x0f, 0, 0, 0, 0}, high = {250, 5, 0x88, 0x0f, 0, 0, 0, 0};
    const auto alphas = [&](const FileBytes& block) {
        const auto pixels = row(D3DFMT_DXT5, Joined({block, four}));
        return FileBytes({pixels[3], pixels[7], pixels[11], pixels[15]});
    };
    EXPECT_EQ(alphas(low), FileBytes({0, 250, 0, 255}));
    EXPECT_EQ(alphas(high), FileBytes({250, 5, 75, 40}));
}

TEST(BlockCompression, WhatIsCompressedComesOutNearlyTheSame) {
    std::mt19937 random(7);
    for (const D3DFORMAT format : {D3DFMT_DXT1, D3DFMT_DXT3, D3DFMT_DXT5})
        for (const UINT side : {1u, 3u, 4u, 8u}) {
            // One colour a block, with transparent pixels between.
            FileBytes pixels;
            for (UINT i = 0; i < side * side; ++i) {
                const FileBytes pixel = random() % 3 ? FileBytes{40, 80, 200, 255} : FileBytes(4);
                pixels.insert(pixels.end(), pixel.begin(), pixel.end());
            }
            const auto back =
                DecompressBlocks(format, side, side, CompressBlocks(format, side, side, pixels));
            ASSERT_EQ(back.size(), pixels.size());
            for (std::size_t i = 0; i < pixels.size(); ++i)
                EXPECT_NEAR(back[i], pixels[i], 8) << format << ", side " << side << ", byte " << i;
        }
}

TEST(ImageLevels, TheMissingOnesAreMeansOfTheOneBefore) {
    const auto completed = [](D3DFORMAT format, UINT width, UINT height, const FileBytes& pixels) {
        Image image = {format, width, height, {pixels}};
        CompleteLevels(image);
        return image.levels;
    };
    EXPECT_EQ(completed(D3DFMT_L8, 4, 2, {0, 10, 20, 30, 40, 50, 60, 71}),
              std::vector<FileBytes>({{0, 10, 20, 30, 40, 50, 60, 71}, {25, 45}, {35}}));
    EXPECT_EQ(completed(D3DFMT_A8R8G8B8, 1, 2, {0, 1, 2, 255, 2, 3, 4, 0}),
              std::vector<FileBytes>({{0, 1, 2, 255, 2, 3, 4, 0}, {1, 2, 3, 128}}));
    // Five become two: each has half of the one in the middle.
    EXPECT_EQ(completed(D3DFMT_L8, 5, 1, {10, 20, 100, 50, 60}),
              std::vector<FileBytes>({{10, 20, 100, 50, 60}, {32, 64}, {48}}));

    // What the file holds stays, and the rest comes from its last level.
    Image image = {D3DFMT_L8, 4, 4, {FileBytes(16, 200), FileBytes(4, 8)}};
    CompleteLevels(image);
    EXPECT_EQ(image.levels, std::vector<FileBytes>({FileBytes(16, 200), FileBytes(4, 8), {8}}));

    // Compressed as before, down to a block for a pixel.
    const FileBytes red = {0x00, 0xf8, 0x00, 0xf8, 0, 0, 0, 0};
    const auto levels = completed(D3DFMT_DXT1, 8, 8, Joined({red, red, red, red}));
    ASSERT_EQ(levels.size(), 4u);
    for (std::size_t level = 1; level < 4; ++level) {
        ASSERT_EQ(levels[level].size(), 8u);
        EXPECT_EQ(DecompressBlocks(D3DFMT_DXT1, 1, 1, levels[level]), FileBytes({0, 0, 255, 255}));
    }
}

TEST(TgaFile, EveryTypeAndDepth) {
    const FileBytes palette24 = {1, 2, 3, 4, 5, 6}, palette16 = {0, 0xfc, 0xe0, 0x03};
    const auto indexed = [](std::uint32_t type, std::uint32_t bits, std::uint32_t first,
                            std::uint32_t descriptor = 0x20) {
        return TgaHeader{type, 8, descriptor, 2, 2, 1, first, 2, bits};
    };
    const FileBytes two = {1, 2, 3, 255, 4, 5, 6, 255};
    const FileBytes four = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    ExpectPictures(
        {{"palette of 24", indexed(1, 24, 0).File(Joined({palette24, {0, 1, 1, 0}})),
          D3DFMT_X8R8G8B8, Joined({two, {4, 5, 6, 255, 1, 2, 3, 255}})},
         {"palette that begins at 7", indexed(1, 24, 7).File(Joined({palette24, {7, 8, 7, 8}})),
          D3DFMT_X8R8G8B8, Joined({two, two})},
         {"palette of 32, packed",
          indexed(9, 32, 0, 0x28).File({1, 2, 3, 4, 5, 6, 7, 8, 0x81, 1, 0x01, 0, 1}),
          D3DFMT_A8R8G8B8,
          {5, 6, 7, 8, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8}},
         {"palette of 16 with alpha",
          indexed(1, 16, 0, 0x21).File(Joined({palette16, {0, 1, 0, 1}})),
          D3DFMT_A8R8G8B8,
          {0, 0, 255, 255, 0, 255, 0, 0, 0, 0, 255, 255, 0, 255, 0, 0}},
         {"32", TgaHeader{}.File(four), D3DFMT_A8R8G8B8, four},
         {"32, alpha not told of", TgaHeader{2, 32, 0x20}.File(four), D3DFMT_A8R8G8B8, four},
         {"32, alpha not told of and nowhere set",
          TgaHeader{2, 32, 0x20}.File({1, 2, 3, 0, 4, 5, 6, 0, 4, 5, 6, 0, 1, 2, 3, 0}),
          D3DFMT_X8R8G8B8, Joined({two, {4, 5, 6, 255, 1, 2, 3, 255}})},
         {"24, behind a comment",
          TgaHeader{2, 24, 0x20, 2, 2, 0, 0, 0, 0, {'h', 'i'}}.File(
              {1, 2, 3, 4, 5, 6, 1, 2, 3, 4, 5, 6}),
          D3DFMT_X8R8G8B8, Joined({two, two})},
         {"24 from the lower left", TgaHeader{2, 24, 0}.File({1, 2, 3, 4, 5, 6, 0, 0, 0, 9, 9, 9}),
          D3DFMT_X8R8G8B8, Joined({{0, 0, 0, 255, 9, 9, 9, 255}, two})},
         {"24 from the lower right",
          TgaHeader{2, 24, 0x10}.File({1, 2, 3, 4, 5, 6, 0, 0, 0, 9, 9, 9}),
          D3DFMT_X8R8G8B8,
          {9, 9, 9, 255, 0, 0, 0, 255, 4, 5, 6, 255, 1, 2, 3, 255}},
         {"24 from the upper right",
          TgaHeader{2, 24, 0x30}.File({1, 2, 3, 4, 5, 6, 0, 0, 0, 9, 9, 9}),
          D3DFMT_X8R8G8B8,
          {4, 5, 6, 255, 1, 2, 3, 255, 9, 9, 9, 255, 0, 0, 0, 255}},
         {"16",
          TgaHeader{2, 16, 0x21}.File({0, 0xfc, 0xe0, 0x03, 0, 0xfc, 0xe0, 0x03}),
          D3DFMT_A8R8G8B8,
          {0, 0, 255, 255, 0, 255, 0, 0, 0, 0, 255, 255, 0, 255, 0, 0}},
         {"16 without alpha",
          TgaHeader{2, 16, 0x20}.File({0, 0xfc, 0xe0, 0x03, 0, 0, 0, 0}),
          D3DFMT_X8R8G8B8,
          {0, 0, 255, 255, 0, 255, 0, 255, 0, 0, 0, 255, 0, 0, 0, 255}},
         {"15",
          TgaHeader{2, 15, 0x20}.File({0, 0x7c, 0xe0, 0x03, 0x1f, 0, 0, 0}),
          D3DFMT_X8R8G8B8,
          {0, 0, 255, 255, 0, 255, 0, 255, 255, 0, 0, 255, 0, 0, 0, 255}},
         {"24, packed across rows", TgaHeader{10, 24, 0x20}.File({0x82, 1, 2, 3, 0x00, 4, 5, 6}),
          D3DFMT_X8R8G8B8, Joined({{1, 2, 3, 255, 1, 2, 3, 255}, two})},
         {"a packet beyond the end",
          TgaHeader{10, 24, 0x20}.File({0xff, 1, 2, 3}),
          D3DFMT_X8R8G8B8,
          {1, 2, 3, 255, 1, 2, 3, 255, 1, 2, 3, 255, 1, 2, 3, 255}},
         {"grey", TgaHeader{3, 8, 0}.File({1, 2, 3, 4}), D3DFMT_L8, {3, 4, 1, 2}},
         {"grey with alpha",
          TgaHeader{3, 16, 0x28}.File({1, 2, 3, 4, 5, 6, 7, 8}),
          D3DFMT_A8L8,
          {1, 2, 3, 4, 5, 6, 7, 8}},
         {"grey, packed",
          TgaHeader{11, 8, 0x20}.File({0x80, 1, 0x02, 2, 3, 4}),
          D3DFMT_L8,
          {1, 2, 3, 4}}},
        2, 2);
}

TEST(TgaFile, HeadersThatMakeNoSenseAreNoPicture) {
    const FileBytes pixels(4096);
    const auto refused = [&pixels](const char* what, const TgaHeader& header) {
        EXPECT_FALSE(Read(header.File(pixels))) << what;
    };
    refused("no pixels", {0});
    refused("packed otherwise", {32});
    refused("no palette", {1, 8});
    refused("palette without entries", {1, 8, 0x20, 2, 2, 1, 0, 0, 24});
    refused("palette of odd entries", {1, 8, 0x20, 2, 2, 1, 0, 2, 12});
    refused("index beyond the palette", {1, 8, 0x20, 2, 2, 1, 1, 2, 24});
    refused("another kind of palette", {2, 24, 0x20, 2, 2, 2});
    refused("a depth of colours that is none", {2, 8});
    refused("a depth of greys that is none", {3, 32});
    refused("interleaved", {2, 24, 0x60});
    refused("too much alpha", {2, 32, 0x2f});
    refused("no width", {2, 24, 0x20, 0, 2});
    refused("too wide", {2, 24, 0x20, 16385, 1});
    refused("as large as may be, and not there", {10, 32, 0x28, 16384, 16384});
    EXPECT_FALSE(Read({}));
    const std::string text = "# No picture at all, but long enough to have the header of one.";
    EXPECT_FALSE(Read({text.begin(), text.end()}));
}

TEST(PictureFile, TheContentDecidesTheFormat) {
    ExpectPictures(
        {{"PNG, colour",
          PngFile(2, 1, 8, 2, {0, 1, 2, 3, 4, 5, 6}),
          D3DFMT_X8R8G8B8,
          {3, 2, 1, 255, 6, 5, 4, 255}},
         {"PNG, alpha",
          PngFile(2, 1, 8, 6, {0, 1, 2, 3, 4, 5, 6, 7, 8}),
          D3DFMT_A8R8G8B8,
          {3, 2, 1, 4, 7, 6, 5, 8}},
         {"PNG, palette",
          PngFile(2, 1, 1, 3, {0, 0x40}, {1, 2, 3, 4, 5, 6}),
          D3DFMT_X8R8G8B8,
          {3, 2, 1, 255, 6, 5, 4, 255}},
         {"PNG, grey", PngFile(2, 1, 8, 0, {0, 1, 2}), D3DFMT_L8, {1, 2}},
         {"PNG, grey of 16 bits", PngFile(2, 1, 16, 0, {0, 1, 200, 2, 200}), D3DFMT_L8, {1, 2}},
         {"PNG, grey and alpha", PngFile(2, 1, 8, 4, {0, 1, 2, 3, 4}), D3DFMT_A8L8, {1, 2, 3, 4}},
         {"BMP",
          BmpHeader{2, 1}.File({1, 2, 3, 4, 5, 6}),
          D3DFMT_X8R8G8B8,
          {1, 2, 3, 255, 4, 5, 6, 255}},
         {"BMP with alpha",
          BmpHeader{2, 1, 32}.File({1, 2, 3, 4, 5, 6, 7, 8}),
          D3DFMT_A8R8G8B8,
          {1, 2, 3, 4, 5, 6, 7, 8}},
         {"BMP with a palette",
          BmpHeader{2, 1, 8, 62}.File({1, 2, 3, 0, 4, 5, 6, 0, 1, 0}),
          D3DFMT_X8R8G8B8,
          {4, 5, 6, 255, 1, 2, 3, 255}}},
        2, 1);
}

TEST(PictureFile, SizesAreNotTakenOnTrust) {
    EXPECT_FALSE(Read(PngFile(16384, 16384, 8, 6, {0, 1, 2})));
    EXPECT_FALSE(Read(PngFile(16385, 1, 1, 0, FileBytes(2050))));
    EXPECT_FALSE(Read(PngFile(0xffffffff, 0xffffffff, 8, 2, {0, 1, 2})));
    EXPECT_FALSE(Read(BmpHeader{16384, 16384}.File(FileBytes(64))));
    EXPECT_FALSE(Read(BmpHeader{2, 0x80000000}.File(FileBytes(64))));
    EXPECT_FALSE(Read(BmpHeader{0, 2}.File(FileBytes(64))));
    EXPECT_FALSE(Read(BmpHeader{2, 1, 8, 0xfffffff0}.File(FileBytes(64))));
    FileBytes jpg = WritePicture(PictureType::Jpg, 8, 8, FileBytes(256, 128), false);
    for (std::size_t i = 0; i + 9 < jpg.size(); ++i)
        if (jpg[i] == 0xff && jpg[i + 1] == 0xc0)
            Put(jpg, i + 5, 0x00400040, 4); // 16384 each, the high byte first
    EXPECT_FALSE(Read(jpg));
}

TEST(PictureFile, WrittenOnesReadTheSame) {
    FileBytes pixels;
    for (std::uint8_t i = 0; i < 240; ++i)
        pixels.push_back(i % 4 == 3 ? static_cast<std::uint8_t>(255 - i) : i);
    FileBytes opaque = pixels;
    for (std::size_t i = 3; i < opaque.size(); i += 4)
        opaque[i] = 255;
    for (const PictureType type : {PictureType::Png, PictureType::Bmp, PictureType::Tga}) {
        SCOPED_TRACE(static_cast<int>(type));
        const auto image = Read(WritePicture(type, 10, 6, pixels, true));
        ASSERT_TRUE(image);
        EXPECT_EQ(image->format, D3DFMT_A8R8G8B8);
        EXPECT_EQ(image->levels[0], pixels);
        const auto plain = Read(WritePicture(type, 10, 6, pixels, false));
        ASSERT_TRUE(plain);
        EXPECT_EQ(plain->format, D3DFMT_X8R8G8B8);
        EXPECT_EQ(plain->levels[0], opaque);
    }

    const FileBytes jpg = WritePicture(PictureType::Jpg, 10, 6, opaque, true);
    const auto image = Read(jpg);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->format, D3DFMT_X8R8G8B8);
    for (std::size_t i = 0; i < opaque.size(); ++i)
        EXPECT_NEAR(image->levels[0][i], opaque[i], 24);
    for (std::size_t size = 0; size < jpg.size(); ++size)
        EXPECT_FALSE(Read({jpg.begin(), jpg.begin() + std::ptrdiff_t(size)})) << size;
}

} // namespace Tests
