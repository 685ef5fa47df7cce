// SPDX-License-Identifier: MIT
//
// Textures by D3DX: of a size, with leniency, and from a file.
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/recorder/call_log.hpp"
#include "platform/d3dx9/texture/image.hpp"

#include <d3dx9.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

using namespace VornPlatform;

namespace {

std::optional<std::vector<std::uint8_t>> ReadWholeFile(const char* path) {
    // What has no size of its own, such as a pipe, is no picture either.
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return std::nullopt;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error || size > INT_MAX)
        return std::nullopt;
    std::ifstream file(path, std::ios::binary);
    std::vector<std::uint8_t> bytes(size);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    if (!file)
        return std::nullopt;
    return bytes;
}

HRESULT Fill(IDirect3DSurface9& surface, const Image& image, UINT level) {
    D3DLOCKED_RECT locked = {};
    const HRESULT result = surface.LockRect(&locked, nullptr, 0);
    if (FAILED(result))
        return result;
    const UINT width = LevelSide(image.width, level), height = LevelSide(image.height, level);
    const std::size_t row = RowBytes(image.format, width);
    auto* to = static_cast<std::uint8_t*>(locked.pBits);
    for (std::size_t y = 0; y < RowCount(image.format, height); ++y, to += locked.Pitch)
        std::memcpy(to, &image.levels[level][y * row], row);
    return surface.UnlockRect();
}

HRESULT FillLevels(IDirect3DTexture9& texture, const Image& image) {
    for (UINT level = 0; level < image.levels.size(); ++level) {
        IDirect3DSurface9* surface = nullptr;
        HRESULT result = texture.GetSurfaceLevel(level, &surface);
        if (FAILED(result))
            return result;
        result = Fill(*surface, image, level);
        surface->Release();
        if (FAILED(result))
            return result;
    }
    return D3D_OK;
}

HRESULT CreateFromFile(IDirect3DDevice9* device, const char* path, IDirect3DTexture9** texture) {
    auto file = ReadWholeFile(path);
    std::optional<Image> image = file ? ReadImage(*file) : std::nullopt;
    if (!image)
        return D3DXERR_INVALIDDATA;
    file.reset();
    CompleteLevels(*image);

    IDirect3DTexture9* made = nullptr;
    HRESULT result =
        device->CreateTexture(image->width, image->height, static_cast<UINT>(image->levels.size()),
                              0, image->format, D3DPOOL_MANAGED, &made, nullptr);
    if (FAILED(result))
        return result;
    result = FillLevels(*made, *image);
    if (FAILED(result))
        made->Release();
    else
        *texture = made;
    return result;
}

} // namespace

HRESULT D3DXCreateTextureFromFileA(IDirect3DDevice9* device, LPCSTR path,
                                   IDirect3DTexture9** texture) {
    const CallScope call("D3DXCreateTextureFromFileA", device, path);
    if (!texture)
        return D3DERR_INVALIDCALL;
    *texture = nullptr;
    if (!device || !path)
        return D3DERR_INVALIDCALL;
    return Guarded([&] { return CreateFromFile(device, path, texture); });
}

HRESULT D3DXCreateTexture(IDirect3DDevice9* device, UINT w, UINT h, UINT levels, DWORD usage,
                          D3DFORMAT format, D3DPOOL pool, IDirect3DTexture9** texture) {
    const CallScope call("D3DXCreateTexture", device, w, h, levels, usage, format, pool);
    if (!texture)
        return D3DERR_INVALIDCALL;
    *texture = nullptr;
    if (!device)
        return D3DERR_INVALIDCALL;
    const auto side = [](UINT asked, UINT other) {
        constexpr UINT Default = 256;
        if (asked == D3DX_DEFAULT)
            asked = other == D3DX_DEFAULT ? Default : other;
        return std::max(asked, 1u);
    };
    const UINT width = side(w, h), height = side(h, w);
    IDirect3DTexture9* made = nullptr;
    const HRESULT result = device->CreateTexture(
        width, height, std::min(levels, FullLevels(width, height)), usage,
        format == D3DFMT_UNKNOWN ? D3DFMT_A8R8G8B8 : format, pool, &made, nullptr);
    if (SUCCEEDED(result))
        *texture = made;
    return result;
}
