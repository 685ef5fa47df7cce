// SPDX-License-Identifier: MIT
#include "tools/import/image.hpp"

#include <stb/stb_image.h>
#include <stb/stb_image_write.h>

#include <climits>
#include <memory>
#include <string_view>

namespace Import {
namespace {

const unsigned char* data(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

bool begins(const std::string& bytes, std::string_view magic) {
    return std::string_view(bytes).substr(0, magic.size()) == magic;
}

void append(void* to, void* bytes, int size) {
    static_cast<std::string*>(to)->append(static_cast<const char*>(bytes),
                                          static_cast<std::size_t>(size));
}

} // namespace

ImageKind KindOfImage(const std::string& bytes) {
    if (begins(bytes, "DDS ") && bytes.size() >= 128)
        return {".dds", false};
    int width = 0;
    int height = 0;
    int channels = 0;
    if (bytes.size() > INT_MAX ||
        !stbi_info_from_memory(data(bytes), static_cast<int>(bytes.size()), &width, &height,
                               &channels))
        return {};
    if (begins(bytes, "\x89PNG"))
        return {".png", false};
    if (begins(bytes, "\xFF\xD8"))
        return {".jpg", false};
    if (begins(bytes, "BM"))
        return {".bmp", false};
    for (const std::string_view other :
         {"GIF8", "8BPS", "#?RADIANCE", "#?RGBE", "P5", "P6", "\x53\x80\xF6\x34"}) {
        if (begins(bytes, other))
            return {"", true};
    }
    // A TGA file has no mark of its own: what is left of what can be read is one.
    return {".tga", false};
}

std::string ToPng(const std::string& bytes) {
    int width = 0;
    int height = 0;
    int channels = 0;
    const std::unique_ptr<unsigned char, void (*)(void*)> pixels(
        stbi_load_from_memory(data(bytes), static_cast<int>(bytes.size()), &width, &height,
                              &channels, 4),
        stbi_image_free);
    std::string png;
    if (!pixels || width > INT_MAX / 4 ||
        !stbi_write_png_to_func(append, &png, width, height, 4, pixels.get(), width * 4))
        return {};
    return png;
}

std::string WhiteImage() {
    std::string bytes(18, '\0');
    bytes[2] = 2;
    bytes[12] = 4;
    bytes[14] = 4;
    bytes[16] = 24;
    bytes.append(std::size_t{4} * 4 * 3, '\xFF');
    return bytes;
}

} // namespace Import
