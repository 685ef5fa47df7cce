// SPDX-License-Identifier: MIT
//
// An engine's window with its device, opened and closed for each test, and the small files that the
// stores read.
#pragma once

#include "tests/support/host.hpp"
#include "tests/support/working_folder.hpp"

#include <d3d9.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace Tests {

using Texts = std::vector<std::string>;
using Pixels = std::vector<std::uint32_t>;

inline Texts operator+(Texts a, const Texts& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// A small window for pictures, and a colour to clear it to that nothing else has.
constexpr int SmallWidth = 320, SmallHeight = 240;
constexpr std::uint32_t Ground = 0xFF203040;

/// The little-endian bytes of numbers and records.
template <typename... T>
std::string Raw(const T&... values) {
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&values), sizeof(T)), ...);
    return bytes;
}
template <typename T>
std::string RawArray(const T* values, std::size_t count) {
    return {reinterpret_cast<const char*>(values), count * sizeof(T)};
}

/// An uncompressed picture, rows from the top.
inline std::string Tga(int width, int height, const Pixels& argb) {
    std::string file("\0\0\2\0\0\0\0\0\0\0\0\0", 12);
    file += Raw(static_cast<std::int16_t>(width), static_cast<std::int16_t>(height));
    return file + "\x20\x28" + RawArray(argb.data(), argb.size());
}
inline std::string Tga(std::uint32_t argb) {
    return Tga(1, 1, {argb});
}

/// Numbers as a call of the log has them, set off by blanks.
inline std::string Text(const std::vector<float>& floats) {
    std::string text;
    for (const float f : floats) {
        char number[32];
        std::snprintf(number, sizeof number, "%s%g", text.empty() ? "" : " ",
                      static_cast<double>(f));
        text += number;
    }
    return text;
}

/// A call of the log with its arguments set off by blanks alone: "SetRenderState 27 1".
inline std::string Flat(const std::string& call) {
    std::string flat;
    for (const char c : call) {
        const bool gap = std::strchr("()[]{}, ", c);
        if (!gap || (!flat.empty() && flat.back() != ' '))
            flat += gap ? ' ' : c;
    }
    while (!flat.empty() && flat.back() == ' ')
        flat.pop_back();
    return flat;
}

/// What the device was told since the last time, reference counts aside.
inline Texts Take(VornPlatform::CallLog& log) {
    Texts calls;
    for (const std::string& call : log.Calls())
        if (call.find("Release") == std::string::npos && call.find("AddRef") == std::string::npos)
            calls.push_back(Flat(call));
    log.Clear();
    return calls;
}

/// The first bytes of a buffer; empty where there is none.
template <typename Buffer>
std::string Content(Buffer* buffer, std::size_t size) {
    void* data = nullptr;
    if (!buffer || FAILED(buffer->Lock(0, static_cast<UINT>(size), &data, 0)) || !data)
        return {};
    const std::string bytes(static_cast<const char*>(data), size);
    buffer->Unlock();
    return bytes;
}

inline Pixels PixelsOf(IDirect3DTexture9* texture) {
    IDirect3DSurface9* level = nullptr;
    if (!texture || FAILED(texture->GetSurfaceLevel(0, &level)))
        return {};
    const Pixels pixels = VornPlatform::ReadPixels(level);
    level->Release();
    return pixels;
}

/// Where the standard output of `action` goes.
template <typename Action>
std::string Printed(Action&& action) {
    testing::internal::CaptureStdout();
    action();
    return testing::internal::GetCapturedStdout();
}

/// Ends with nothing alive in the device, whatever the test left in the stores.
class EngineDeviceTest : public testing::Test {
protected:
    explicit EngineDeviceTest(bool recorder) {
        VornPlatform::ForceHeadless();
        VornPlatform::UseRecorder(recorder);
        for (const char* name : {"data/mesh", "data/img", "data/mat"})
            folder.Folder(name);
    }
    ~EngineDeviceTest() override {
        Close();
        VornPlatform::UseRecorder(false);
        EXPECT_EQ(VornPlatform::CountLiveObjects(), VornPlatform::LiveObjects());
    }

    void Open(unsigned int width = 800, unsigned int height = 600, bool fullscreen = false) {
        engine.Init("Device of a test", width, height, fullscreen);
        mOpen = true;
        Pump();
    }
    void Close() {
        testing::internal::CaptureStdout();
        packs.Free();
        EmptyStores();
        testing::internal::GetCapturedStdout();
        if (!mOpen)
            return;
        engine.Free();
        DestroyWindow(Vorn::Engine::mWnd);
        Pump();
        Vorn::Engine::isShutdown = Vorn::Engine::isActive = false;
        mOpen = false;
    }
    void EmptyStores() {
        for (const std::string& name : NamesIn("data/mat"))
            materials.Unload(name);
        for (const std::string& name : NamesIn("data/mesh"))
            meshes.Unload(name);
        for (const std::string& name : NamesIn("data/img"))
            textures.Unload(name);
    }

    Vorn::Engine& engine = *Vorn::Engine::Instance();
    Vorn::Graphic& graphic = *Vorn::Graphic::Instance();
    Vorn::MeshManager& meshes = *Vorn::MeshManager::Instance();
    Vorn::TextureManager& textures = *Vorn::TextureManager::Instance();
    Vorn::MaterialManager& materials = *Vorn::MaterialManager::Instance();
    Vorn::RscPackManager& packs = *Vorn::RscPackManager::Instance();
    const WorkingFolder folder;
    /// Names that a test gives to the stores without a file of that name.
    std::set<std::string> extra = {"none", "none.tga"};

private:
    std::set<std::string> NamesIn(const char* path) const {
        std::set<std::string> names = extra;
        for (const auto& entry : std::filesystem::directory_iterator(path))
            names.insert(entry.path().filename());
        return names;
    }

    bool mOpen = false;
};

/// Nothing is drawn, and every call is known.
class RecorderTest : public EngineDeviceTest {
protected:
    RecorderTest() : EngineDeviceTest(true) {}
};
/// OpenGL draws.
class PictureTest : public EngineDeviceTest {
protected:
    PictureTest() : EngineDeviceTest(false) {}

    /// What stands in the back buffer.
    static Pixels Picture() {
        IDirect3DSurface9* surface = nullptr;
        if (FAILED(
                Vorn::Graphic::GetDevice()->GetBackBuffer(0, 0, D3DBACKBUFFER_TYPE_MONO, &surface)))
            return {};
        const Pixels pixels = VornPlatform::ReadPixels(surface);
        surface->Release();
        return pixels;
    }
};

} // namespace Tests
