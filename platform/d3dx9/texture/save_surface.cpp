// SPDX-License-Identifier: MIT
//
// Surfaces to files. What a host cannot lock, such as the back buffer, is read by way of a surface
// in the memory of the system.
#include "platform/d3d9/guarded.hpp"
#include "platform/d3d9/recorder/call_log.hpp"
#include "platform/d3dx9/held.hpp"
#include "platform/d3dx9/texture/dds_file.hpp"
#include "platform/d3dx9/texture/picture_file.hpp"

#include <d3dx9.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

using namespace VornPlatform;

namespace {

using Pixels = std::vector<std::uint8_t>;

/// Rows without a gap, in the format of the surface; nothing for one that cannot be locked.
std::optional<Pixels> ReadLocked(IDirect3DSurface9& surface, const D3DSURFACE_DESC& desc) {
    D3DLOCKED_RECT locked = {};
    if (FAILED(surface.LockRect(&locked, nullptr, D3DLOCK_READONLY)))
        return std::nullopt;
    const std::size_t row = RowBytes(desc.Format, desc.Width);
    Pixels pixels;
    pixels.reserve(LevelBytes(desc.Format, desc.Width, desc.Height));
    const auto* from = static_cast<const std::uint8_t*>(locked.pBits);
    for (std::size_t y = 0; y < RowCount(desc.Format, desc.Height); ++y, from += locked.Pitch)
        pixels.insert(pixels.end(), from, from + row);
    surface.UnlockRect();
    return pixels;
}

std::optional<Pixels> ReadTarget(IDirect3DSurface9& surface, const D3DSURFACE_DESC& desc) {
    IDirect3DDevice9* device = nullptr;
    if (FAILED(surface.GetDevice(&device)))
        return std::nullopt;
    const Held<IDirect3DDevice9> heldDevice(device);
    IDirect3DSurface9* memory = nullptr;
    if (FAILED(device->CreateOffscreenPlainSurface(desc.Width, desc.Height, desc.Format,
                                                   D3DPOOL_SYSTEMMEM, &memory, nullptr)))
        return std::nullopt;
    const Held<IDirect3DSurface9> heldMemory(memory);
    if (FAILED(device->GetRenderTargetData(&surface, memory)))
        return std::nullopt;
    return ReadLocked(*memory, desc);
}

/// The part of a picture of B, G, R, A.
Pixels Part(const Pixels& bgra, UINT width, const RECT& rect) {
    Pixels part;
    for (LONG y = rect.top; y < rect.bottom; ++y) {
        const auto row =
            bgra.begin() + (std::ptrdiff_t(y) * static_cast<std::ptrdiff_t>(width) + rect.left) * 4;
        part.insert(part.end(), row, row + std::ptrdiff_t(rect.right - rect.left) * 4);
    }
    return part;
}

Pixels Encode(D3DXIMAGE_FILEFORMAT type, UINT width, UINT height, Bytes bgra, bool alpha) {
    switch (type) {
    case D3DXIFF_BMP:
        return WritePicture(PictureType::Bmp, width, height, bgra, alpha);
    case D3DXIFF_JPG:
        return WritePicture(PictureType::Jpg, width, height, bgra, alpha);
    case D3DXIFF_TGA:
        return WritePicture(PictureType::Tga, width, height, bgra, alpha);
    case D3DXIFF_PNG:
        return WritePicture(PictureType::Png, width, height, bgra, alpha);
    case D3DXIFF_DDS:
        return WriteDds(width, height, bgra, alpha);
    }
    return {};
}

bool WriteAndClose(std::FILE* file, const Pixels& bytes) {
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && written;
}

/// A new file beside the one of this path; nothing where there cannot be any.
std::FILE* OpenBeside(const std::filesystem::path& path, std::filesystem::path& beside) {
    constexpr int MostLeftBehind = 100; // by programs that were ended
    for (int i = 0; i < MostLeftBehind; ++i) {
        beside = path.parent_path() / (".part" + std::to_string(i));
        std::FILE* file = std::fopen(beside.c_str(), "wbx");
        if (file || errno != EEXIST)
            return file;
    }
    return nullptr;
}

/// The older file stays until the new one is whole. What is no file, such as a pipe, is written to
/// in its place.
HRESULT WriteFile(const char* path, const Pixels& bytes) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_status old = fs::status(path, error);
    if (fs::exists(old) && !fs::is_regular_file(old)) {
        std::FILE* file = std::fopen(path, "wb");
        return file && WriteAndClose(file, bytes) ? D3D_OK : E_FAIL;
    }
    // A link goes on to lead to the picture.
    fs::path target = fs::exists(old) ? fs::canonical(path, error) : fs::path(path);
    if (error && fs::exists(old))
        return E_FAIL;
    fs::path beside;
    std::FILE* file = OpenBeside(target, beside);
    if (!file)
        return E_FAIL;
    bool done = WriteAndClose(file, bytes);
    if (done) {
        if (fs::exists(old))
            fs::permissions(beside, old.permissions(), error);
        fs::rename(beside, target, error);
        done = !error;
    }
    if (!done)
        fs::remove(beside, error);
    return done ? D3D_OK : E_FAIL;
}

HRESULT Save(const char* path, D3DXIMAGE_FILEFORMAT type, IDirect3DSurface9& surface,
             const RECT* rect) {
    D3DSURFACE_DESC desc = {};
    const HRESULT result = surface.GetDesc(&desc);
    if (FAILED(result))
        return result;
    const RECT all = {0, 0, static_cast<LONG>(desc.Width), static_cast<LONG>(desc.Height)};
    const RECT part = rect ? *rect : all;
    const bool inside = part.left >= 0 && part.top >= 0 && part.right <= all.right &&
                        part.bottom <= all.bottom && part.left < part.right &&
                        part.top < part.bottom;
    if (!inside || UnitBytes(desc.Format) == 0 || type > D3DXIFF_DDS)
        return D3DERR_INVALIDCALL;

    std::optional<Pixels> pixels = ReadLocked(surface, desc);
    if (!pixels)
        pixels = ReadTarget(surface, desc);
    if (!pixels)
        return E_FAIL;
    Pixels bgra = ToBgra(desc.Format, desc.Width, desc.Height, *pixels);
    if (rect)
        bgra = Part(bgra, desc.Width, part);

    const bool alpha = desc.Format != D3DFMT_X8R8G8B8 && desc.Format != D3DFMT_L8;
    const Pixels file = Encode(type, static_cast<UINT>(part.right - part.left),
                               static_cast<UINT>(part.bottom - part.top), bgra, alpha);
    return file.empty() ? E_FAIL : WriteFile(path, file);
}

} // namespace

HRESULT D3DXSaveSurfaceToFileA(LPCSTR path, D3DXIMAGE_FILEFORMAT type, IDirect3DSurface9* surface,
                               const PALETTEENTRY* /*palette*/, const RECT* rect) {
    const CallScope call("D3DXSaveSurfaceToFileA", path, type, surface, rect);
    if (!path || !surface)
        return D3DERR_INVALIDCALL;
    return Guarded([&] { return Save(path, type, *surface, rect); });
}
