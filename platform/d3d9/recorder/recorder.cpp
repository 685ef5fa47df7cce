// SPDX-License-Identifier: MIT
//
// The backend without a machine. What a host writes and clears can be read back; drawing is for the
// other one.
#include "platform/d3d9/backend.hpp"
#include "platform/d3d9/counters.hpp"
#include "platform/d3d9/memory.hpp"
#include "platform/d3d9/pixel_format.hpp"

#include <cstring>
#include <utility>

namespace VornPlatform {

namespace {

class RecorderTexture final : public GpuTexture {
public:
    RecorderTexture(const TextureDesc& desc, const PixelFormat& format)
        : mDesc(desc), mFormat(format) {
        const bool kept = format.use == PixelUse::Color;
        for (UINT level = 0; kept && level < desc.levels; ++level)
            mLevels.push_back(MakeMemory(std::size_t(pitch(level)) *
                                         BlocksOf(format, LevelSide(desc.height, level))));
        ++recorderObjects.textures;
    }
    ~RecorderTexture() override { --recorderObjects.textures; }

    bool IsThere() const {
        for (const Memory& level : mLevels)
            if (!level)
                return false;
        return true;
    }

    void Write(UINT level, const RECT& rect, const void* pixels, UINT pitch) override {
        const auto* from = static_cast<const std::byte*>(pixels);
        forEachRow(level, rect, [&](std::byte* row, std::size_t bytes, std::size_t index) {
            std::memcpy(row, from + index * pitch, bytes);
        });
    }

    bool Read(UINT level, const RECT& rect, void* pixels, UINT pitch) override {
        if (mLevels.empty() || mFormat.blockSide > 1)
            return false;
        auto* to = static_cast<std::byte*>(pixels);
        forEachRow(level, rect, [&](std::byte* row, std::size_t bytes, std::size_t index) {
            std::byte* line = to + index * pitch;
            std::memcpy(line, row, bytes);
            for (std::size_t x = 3; mDesc.format == D3DFMT_X8R8G8B8 && x < bytes; x += 4)
                line[x] = std::byte(0xff);
        });
        return true;
    }

    void GenerateMips() override {} // they only show where something is drawn

    void Fill(const RECT& rect, D3DCOLOR color) {
        forEachRow(0, rect, [&](std::byte* row, std::size_t bytes, std::size_t /*index*/) {
            for (std::size_t x = 0; x < bytes; x += sizeof color)
                std::memcpy(row + x, &color, sizeof color);
        });
    }

private:
    UINT pitch(UINT level) const { return PitchOf(mFormat, LevelSide(mDesc.width, level)); }

    template <typename Function>
    void forEachRow(UINT level, const RECT& rect, Function function) {
        const UINT side = mFormat.blockSide;
        const std::size_t left = static_cast<UINT>(rect.left) / side;
        const std::size_t right = BlocksOf(mFormat, static_cast<UINT>(rect.right));
        const std::size_t top = static_cast<UINT>(rect.top) / side;
        const std::size_t bottom = BlocksOf(mFormat, static_cast<UINT>(rect.bottom));
        for (std::size_t y = top; y < bottom; ++y)
            function(mLevels[level].get() + y * pitch(level) + left * mFormat.blockBytes,
                     (right - left) * mFormat.blockBytes, y - top);
    }

    TextureDesc mDesc;
    const PixelFormat& mFormat;
    std::vector<Memory> mLevels; // none of a depth buffer
};

class RecorderBuffer final : public GpuBuffer {
public:
    explicit RecorderBuffer(Memory memory) : mMemory(std::move(memory)) {
        ++recorderObjects.buffers;
    }
    ~RecorderBuffer() override { --recorderObjects.buffers; }

    void* Map(UINT offset, UINT /*size*/, bool /*discard*/) override {
        return mMemory.get() + offset;
    }
    void Unmap() override {}
    void Write(UINT offset, UINT size, const void* data) override {
        std::memcpy(mMemory.get() + offset, data, size);
    }

private:
    Memory mMemory;
};

class RecorderBackend final : public Backend {
public:
    std::unique_ptr<GpuTexture> CreateTexture(const TextureDesc& desc) override {
        auto texture = std::make_unique<RecorderTexture>(desc, *FindPixelFormat(desc.format));
        if (!texture->IsThere())
            return nullptr;
        return texture;
    }

    std::unique_ptr<GpuBuffer> CreateBuffer(BufferKind /*kind*/, UINT size) override {
        Memory memory = MakeMemory(size);
        return memory ? std::make_unique<RecorderBuffer>(std::move(memory)) : nullptr;
    }

    void Clear(const Target& target, const RECT& rect, DWORD flags, D3DCOLOR color,
               float /*z*/) override {
        if (flags & D3DCLEAR_TARGET)
            static_cast<RecorderTexture*>(target.color)->Fill(rect, color);
    }
    void Draw(const State& /*state*/, unsigned int /*changed*/,
              const Primitive& /*primitive*/) override {}
    void Present(GpuTexture& /*backBuffer*/, UINT /*width*/, UINT /*height*/, HWND /*window*/,
                 bool /*waitForDisplay*/) override {}
};

} // namespace

std::unique_ptr<Backend> MakeRecorderBackend() {
    return std::make_unique<RecorderBackend>();
}

} // namespace VornPlatform
